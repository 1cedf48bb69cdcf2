#include "plots.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/gnuplot.h"
#include "common/sound_plot.h"
#include "common/text.h"

namespace words {
namespace {

using program::fixed;
using program::melTics;
using program::quoted;

constexpr int pictureWidth = 1200, pictureHeight = 760;
constexpr size_t mostPoints = 1600;       // of a waveform: what the picture's width can show
constexpr float decibels = 8.685889638F;  // of a natural logarithm of magnitudes

// Filters upwards, frames to the right, in decibels below the loudest.
std::string melImage(const std::string& name, const Matrix& logMel) {
  const float loudest = *std::max_element(logMel.values.begin(), logMel.values.end());
  Matrix image(logMel.columns, logMel.rows);
  for (int f = 0; f < logMel.rows; ++f) {
    for (int k = 0; k < logMel.columns; ++k) image.row(k)[f] = decibels * (logMel.row(f)[k] - loudest);
  }
  return program::matrixBlock(name, image.values.data(), static_cast<size_t>(image.rows), static_cast<size_t>(image.columns));
}

// Coefficients upwards, frames to the right; each coefficient about its mean, in its standard deviations.
std::string cepstraImage(const std::string& name, const Matrix& cepstra) {
  Matrix image(cepstra.columns, cepstra.rows);
  for (int c = 0; c < cepstra.columns; ++c) {
    double sum = 0, squares = 0;
    for (int f = 0; f < cepstra.rows; ++f) {
      const auto value = static_cast<double>(cepstra.row(f)[c]);
      sum += value;
      squares += value * value;
    }
    const double mean = sum / cepstra.rows, deviation = std::sqrt(std::max(squares / cepstra.rows - mean * mean, 1e-12));
    for (int f = 0; f < cepstra.rows; ++f) {
      image.row(c)[f] = static_cast<float>((static_cast<double>(cepstra.row(f)[c]) - mean) / deviation);
    }
  }
  return program::matrixBlock(name, image.values.data(), static_cast<size_t>(image.rows), static_cast<size_t>(image.columns));
}

// Where a panel stands: column 0 left, 1 right; rows from the top. Only the right column has scales of colours and no axis labels.
std::string panel(int column, int row, const std::string& label) {
  constexpr double left[] = {0.07, 0.525}, width = 0.39;
  constexpr double bottom[] = {0.72, 0.39, 0.065}, height[] = {0.215, 0.275, 0.275};
  return "set lmargin at screen " + fixed(left[column], 4) + "\nset rmargin at screen " + fixed(left[column] + width, 4) +
         "\nset bmargin at screen " + fixed(bottom[row], 4) + "\nset tmargin at screen " + fixed(bottom[row] + height[row], 4) +
         "\nset ylabel " + quoted(column == 0 ? label : "") + "\n" + (column == 0 ? "unset colorbox\n" : "set colorbox\n");
}

// One utterance's column of the picture.
class Column {
 public:
  Column(int number, const Pictured& pictured, double seconds, const FrontEndOptions& options)
      : number_(number),
        id_(number == 0 ? "left" : "right"),
        pictured_(pictured),
        options_(options),
        seconds_(seconds),
        hop_(static_cast<double>(options.hopMs) / 1000),
        frame_(static_cast<double>(options.frameMs) / 1000) {}

  std::string script() const { return wavePanel() + melPanel() + cepstraPanel(); }

 private:
  std::string wavePanel() const {
    const Analysis& analysis = pictured_.analysis;
    const std::string peak = fixed(1.1 * static_cast<double>(program::peak(pictured_.sound)), 5);
    const int last = analysis.firstFrame + analysis.features.rows;
    std::string script = program::waveformBlock(id_ + "_wave", pictured_.sound, mostPoints) + panel(number_, 0, "amplitude") +
                         "set title " + quoted(pictured_.title) + " font ',12'\nset xrange [0:" + fixed(seconds_, 4) +
                         "]\nset yrange [-" + peak + ":" + peak + "]\nset format x ''\n";
    if (analysis.firstFrame > 0) script += shade(1, 0, analysis.firstFrame * hop_);
    if (last < analysis.logMel.rows) script += shade(2, (last - 1) * hop_ + frame_, pictured_.sound.seconds());
    return script + "plot $" + id_ + "_wave using 1:2 with lines lw 0.6 lc rgb '#20508c' notitle\nunset object\nunset title\n";
  }

  std::string melPanel() const {
    const Matrix& mel = pictured_.analysis.logMel;
    return melImage(id_ + "_mel", mel) + panel(number_, 1, "mel filter, centre in kHz") +
           "set yrange [0.5:" + fixed(mel.columns + 0.5, 1) + "]\n" + melTics(options_.lowHz, options_.highHz, options_.filters) +
           program::spectrogramPalette + "set cbrange [-" + fixed(static_cast<double>(options_.floorDb), 0) +
           ":0]\nset cblabel 'dB'\n" + image("mel") + "set ytics autofreq\n";
  }

  std::string cepstraPanel() const {
    const Matrix& cepstra = pictured_.analysis.cepstra;
    return cepstraImage(id_ + "_cepstra", cepstra) + panel(number_, 2, "cepstrum, order 0 on top") +
           "set yrange [0.5:" + fixed(cepstra.columns + 0.5, 1) + "]\nset xlabel 'seconds'\nset format x '%g'\n" +
           "set palette defined (-1 '#2166ac', 0 '#f7f7f7', 1 '#b2182b')\nset cbrange [-3:3]\nset cblabel 'standard deviations'\n" +
           image("cepstra") + "unset xlabel\n";
  }

  static std::string shade(int object, double from, double to) {
    return "set object " + std::to_string(object) + " rect from first " + fixed(from, 4) + ",graph 0 to first " + fixed(to, 4) +
           ",graph 1 fc rgb '#d9dde4' fs solid 1 noborder behind\n";
  }

  std::string image(const std::string& what) const {
    std::string lines;
    for (const double x : pictured_.boundaries) {
      lines += "set arrow from first " + fixed(x, 4) + ",graph 0 to first " + fixed(x, 4) +
               ",graph 1 nohead front lw 1 lc rgb '#30a0a0'\n";
    }
    return lines + "plot $" + id_ + "_" + what + " matrix using (" + fixed(frame_ / 2, 5) + "+$1*" + fixed(hop_, 5) +
           "):($2+1):3 with image notitle\nunset arrow\n";
  }

  int number_;
  std::string id_;
  const Pictured& pictured_;
  const FrontEndOptions& options_;
  double seconds_, hop_, frame_;
};

}  // namespace

std::string drawPair(const std::filesystem::path& png, const Pictured& left, const Pictured& right,
                     const FrontEndOptions& options) {
  const double seconds = std::max(left.sound.seconds(), right.sound.seconds());
  const std::string script = "set multiplot\nset tics out nomirror\nset border lc rgb '#808890'\n" +
                             Column(0, left, seconds, options).script() + Column(1, right, seconds, options).script() +
                             "unset multiplot\n";
  return program::drawPng(png, pictureWidth, pictureHeight, script);
}

}  // namespace words
