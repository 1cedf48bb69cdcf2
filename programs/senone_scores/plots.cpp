#include "plots.h"

#include <algorithm>

#include "common/gnuplot.h"
#include "common/sound_plot.h"
#include "common/text.h"

namespace senones {
namespace {

using program::fixed;
using program::quoted;

constexpr int pictureWidth = 1200, pictureHeight = 1040;
constexpr size_t mostPoints = 2400;  // of a waveform
constexpr float shownDecibels = 60, shownScores = 30;
constexpr float decibels = 4.342944819F;  // of a natural logarithm of energies
constexpr double labelWidth = 0.013;      // of the width of a panel

// Rows become columns; each value is shown below the largest of its frame, or of all.
std::string image(const std::string& name, const std::vector<float>& values, size_t width, float unit, bool byFrame) {
  const size_t frames = values.size() / width;
  const float largest = *std::max_element(values.begin(), values.end());
  std::vector<float> turned(values.size());
  for (size_t f = 0; f < frames; ++f) {
    const float* const row = &values[f * width];
    const float top = byFrame ? *std::max_element(row, row + width) : largest;
    for (size_t k = 0; k < width; ++k) turned[k * frames + f] = unit * (row[k] - top);
  }
  return program::matrixBlock(name, turned.data(), width, frames);
}

std::string panel(double bottom, double height, const std::string& label) {
  return "set bmargin at screen " + fixed(bottom, 4) + "\nset tmargin at screen " + fixed(bottom + height, 4) + "\nset ylabel " +
         quoted(label) + "\n";
}

std::string scale(const std::string& label, float depth) {
  return "set cbrange [-" + fixed(static_cast<double>(depth), 0) + ":0]\nset cblabel " + quoted(label) + "\n";
}

std::string phoneTics(const AcousticModel& model) {
  std::string tics;
  for (size_t k = 0; k < model.phones.size(); ++k) {
    tics += (k > 0 ? ", " : "") + quoted(model.phones[k]) + " " + std::to_string(k + 1);
  }
  return "set ytics (" + tics + ") font ',8'\n";
}

std::string rows(size_t count) { return "set yrange [0.5:" + fixed(static_cast<double>(count) + 0.5, 1) + "]\n"; }

// Where the middles of frames lie, in seconds.
struct FrameTimes {
  double first, hop;

  double operator()(double frame) const { return first + frame * hop; }
  std::string plot(const std::string& name) const {
    return "plot $" + name + " matrix using (" + fixed(first, 5) + "+$1*" + fixed(hop, 5) + "):($2+1):3 with image notitle\n";
  }
};

// Names of the stretches of one phone, above the map of phones; where they would touch, the second is left out.
std::string stretchLabels(const AcousticModel& model, const Recording& recording, const FrameTimes& times) {
  std::string labels;
  double free = 0;
  for (const Stretch& s : stretches(model, recording, leastStretch)) {
    const double at = times(s.first + 0.5 * (s.frames - 1));
    if (at < free) continue;
    free = at + labelWidth * recording.sound.seconds();
    labels += "set label " + quoted(model.phones[static_cast<size_t>(s.phone)]) + " at first " + fixed(at, 4) +
              ",graph 1.015 left rotate by 90 font ',9' tc rgb '#303840'\n";
  }
  return labels;
}

std::string wavePanel(const Recording& recording) {
  const auto peak = static_cast<double>(program::peak(recording.sound));
  const std::string high = fixed(peak, 5), label = fixed(peak, 2), end = fixed(1.1 * peak, 5);
  return program::waveformBlock("wave", recording.sound, mostPoints) + panel(0.855, 0.105, "amplitude") + "set title " +
         quoted(recording.name + ": waveform, mel spectrogram, scores of the phones (red: best of the frame)") + "\nset yrange [-" +
         end + ":" + end + "]\nset ytics ('-" + label + "' -" + high + ", '0' 0, '" + label + "' " + high +
         ")\nplot $wave using 1:2 with lines lw 0.6 lc rgb '#20508c' notitle\nunset title\n";
}

std::string melPanel(const Recording& recording, const FrontEndSettings& settings, const FrameTimes& times) {
  const auto filters = static_cast<size_t>(recording.features.filters);
  return image("mel", recording.features.logMel, filters, decibels, false) + panel(0.70, 0.135, "filter centre, kHz") +
         rows(filters) + program::melTics(settings.lowHz, settings.highHz, settings.filters) + scale("dB", shownDecibels) +
         program::spectrogramPalette + times.plot("mel");
}

std::string phonePanel(const AcousticModel& model, const Recording& recording, const FrameTimes& times) {
  return image("phones", recording.phones, model.phones.size(), 1, true) + panel(0.06, 0.58, "best senone of each phone") +
         rows(model.phones.size()) + phoneTics(model) + stretchLabels(model, recording, times) +
         scale("log likelihood below the best senone of the frame", shownScores) +
         "set palette defined (0 '#ffffff', 0.6 '#b9cbe3', 0.85 '#3f74b5', 0.97 '#0d2f63', 1 '#d7301f')\n" +
         "set xlabel 'seconds'\nset format x '%g'\n" + times.plot("phones");
}

}  // namespace

std::string drawScores(const std::filesystem::path& png, const AcousticModel& model, const Recording& recording,
                       const FrontEndSettings& settings) {
  const FrameTimes times{0.5 * settings.frame / settings.rate, static_cast<double>(settings.hop) / settings.rate};
  const std::string script =
      "set multiplot\nset tics out nomirror\nset border lc rgb '#808890'\nset lmargin at screen 0.07\n"
      "set rmargin at screen 0.875\nset xrange [0:" +
      fixed(recording.sound.seconds(), 4) + "]\nset format x ''\n" + wavePanel(recording) + melPanel(recording, settings, times) +
      phonePanel(model, recording, times) + "unset multiplot\n";
  return program::drawPng(png, pictureWidth, pictureHeight, script);
}

}  // namespace senones
