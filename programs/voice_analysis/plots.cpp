#include "plots.h"

#include <algorithm>
#include <cmath>

#include "common/gnuplot.h"
#include "common/sound_plot.h"
#include "common/text.h"

namespace voice {
namespace {

using program::fixed;
using program::quoted;

constexpr int pictureWidth = 1200, pictureHeight = 940;
constexpr size_t mostPoints = 2400, mostColumns = 1100, mostRows = 220;
constexpr double wideWindow = 0.006, leastHop = 0.002;  // of the spectrogram, seconds
constexpr double padding = 0.1;
constexpr float shownDecibels = 55;
constexpr int envelopeOrder = 9;  // 512 points

float decibels(double power) { return static_cast<float>(10 * std::log10(power + 1e-14)); }

std::string panel(double bottom, double height, const std::string& label) {
  return "set bmargin at screen " + fixed(bottom, 4) + "\nset tmargin at screen " + fixed(bottom + height, 4) + "\nset ylabel " +
         quoted(label) + "\n";
}

class Picture {
 public:
  Picture(const Recording& recording, const program::Sound& sound, const Run& run)
      : recording_(recording),
        sound_(sound),
        run_(run),
        samples_(paddedSamples(sound, padding)),
        model_(sound.rate, run.options.ceilingHz),
        moment_(momentOf()) {}

  std::string script() {
    return "set multiplot\nset tics out nomirror\nset border lc rgb '#808890'\nset lmargin at screen 0.07\n"
           "set rmargin at screen 0.87\nset xrange [0:" +
           fixed(sound_.seconds(), 4) + "]\nset format x ''\n" + wavePanel() + spectrogramPanel() + momentPanel() +
           "unset multiplot\n";
  }

 private:
  double momentOf() const {
    const double last = recording_.analysis.frames.back().seconds;
    return run_.moment ? std::min(*run_.moment, last) : recording_.analysis.frames[loudestFrame(recording_.analysis)].seconds;
  }

  // Of the nearest frame.
  double pitchAt(double seconds) const {
    const std::vector<Frame>& frames = recording_.analysis.frames;
    const auto nearest = std::min_element(frames.begin(), frames.end(), [seconds](const Frame& a, const Frame& b) {
      return std::fabs(a.seconds - seconds) < std::fabs(b.seconds - seconds);
    });
    return static_cast<double>(nearest->pitch.hertz);
  }

  std::string wavePanel() const {
    const std::string peak = fixed(1.1 * static_cast<double>(program::peak(sound_)), 5);
    return program::waveformBlock("wave", sound_, mostPoints) + panel(0.85, 0.11, "amplitude") + "set title " +
           quoted(recording_.name) + "\nset yrange [-" + peak + ":" + peak + "]\nset ytics (0)\n" +
           "plot $wave using 1:2 with lines lw 0.6 lc rgb '#20508c' notitle\nunset title\nset ytics autofreq\n";
  }

  // Rows of frequencies upwards, columns of time, in decibels below the loudest, with the weight that pre-emphasis gives.
  std::string spectrogramBlock(size_t& columns, double& hop, size_t& rows, double& rowHz) const {
    Spectrum spectrum(sound_.rate, wideWindow);
    hop = std::max(leastHop, sound_.seconds() / static_cast<double>(mostColumns));
    columns = std::max<size_t>(1, static_cast<size_t>(sound_.seconds() / hop));
    const auto bins = static_cast<size_t>(model_.ceilingHz() / spectrum.binHz());
    const size_t group = (bins + mostRows - 1) / mostRows;
    rows = bins / group;
    rowHz = spectrum.binHz() * static_cast<double>(group);
    std::vector<float> image(rows * columns);
    float loudest = -200;
    for (size_t c = 0; c < columns; ++c) {
      const std::vector<float>& power = spectrum.evaluate(samples_, (static_cast<double>(c) + 0.5) * hop);
      for (size_t r = 0; r < rows; ++r) {
        float most = 0;
        for (size_t b = r * group; b < (r + 1) * group; ++b) most = std::max(most, power[b + 1]);
        image[r * columns + c] = decibels(static_cast<double>(most) * model_.emphasis(static_cast<double>(r + 1) * rowHz));
        loudest = std::max(loudest, image[r * columns + c]);
      }
    }
    for (float& value : image) value = std::max(value - loudest, -shownDecibels - 1);
    return program::matrixBlock("spectrogram", image.data(), rows, columns);
  }

  // One line of numbers a voiced frame; an empty one parts the curves.
  std::string voicedBlock(const std::string& name, const std::vector<std::string>& lines) const {
    std::string text = "$" + name + " << EOD\n";
    for (const std::string& line : lines) text += line + "\n";
    return text + "EOD\n";
  }

  std::string spectrogramPanel() const {
    size_t columns = 0, rows = 0;
    double hop = 0, rowHz = 0;
    std::string script = spectrogramBlock(columns, hop, rows, rowHz);
    std::vector<std::string> pitch, formants;
    double highest = 0;
    for (const Frame& frame : recording_.analysis.frames) {
      const std::string at = fixed(frame.seconds, 4) + " ";
      const bool voiced = frame.pitch.hertz > 0;
      if (voiced || (!pitch.empty() && !pitch.back().empty()))
        pitch.push_back(voiced ? at + fixed(static_cast<double>(frame.pitch.hertz), 2) : "");
      highest = std::max(highest, static_cast<double>(frame.pitch.hertz));
      for (const Resonance& formant : frame.formants) {
        if (voiced && formant.hertz > 0) formants.push_back(at + fixed(static_cast<double>(formant.hertz) / 1000, 4));
      }
    }
    script += voicedBlock("pitch", pitch) + voicedBlock("formants", formants);
    script += panel(0.40, 0.43, "kHz") + "set yrange [0:" + fixed(model_.ceilingHz() / 1000, 4) + "]\n" +
              program::spectrogramPalette + "set cbrange [-" + fixed(static_cast<double>(shownDecibels), 0) +
              ":0]\nunset colorbox\nset y2range [0:" + fixed(std::max(100.0, 1.6 * highest), 1) +
              "]\nset y2tics\nset y2label 'pitch, Hz' offset -1\nset xlabel 'seconds' offset 0,0.5\nset format x '%g'\n" +
              "set arrow 1 from first " + fixed(moment_, 4) + ",graph 0 to first " + fixed(moment_, 4) +
              ",graph 1 nohead front lw 1 dt 3 lc rgb '#ffffff'\nplot $spectrogram matrix using ((0.5+$1)*" + fixed(hop, 6) +
              "):((1+$2)*" + fixed(rowHz / 1000, 6) + "):3 with image notitle";
    if (!formants.empty()) script += ", $formants using 1:2 with points pt 7 ps 0.35 lc rgb '#f4f4f4' notitle";
    if (!pitch.empty()) script += ", $pitch using 1:2 axes x1y2 with linespoints pt 7 ps 0.3 lw 2 lc rgb '#39c5ff' notitle";
    return script + "\nunset arrow\nunset y2tics\nunset y2label\n";
  }

  // Both without the pre-emphasis that the model is fitted with.
  std::string momentPanel() {
    const AllPole model = model_.fit(samples_, moment_, pitchAt(moment_));
    std::vector<double> x, envelopeX;
    std::vector<float> y, envelopeY;
    for (size_t b = 1; b < model_.spectrum().size(); ++b) {
      const double hertz = static_cast<double>(b) * model_.binHz();
      x.push_back(hertz / 1000);
      y.push_back(decibels(static_cast<double>(model_.spectrum()[b]) / model_.emphasis(hertz)));
    }
    std::string script = program::curveBlock("moment", x, y);
    if (!model.a.empty()) {
      const std::vector<float> envelope = model_.envelope(model, envelopeOrder);
      for (size_t i = 4; i < envelope.size(); ++i) {
        const double hertz = model_.ceilingHz() * static_cast<double>(i) / static_cast<double>(envelope.size());
        envelopeX.push_back(hertz / 1000);
        envelopeY.push_back(decibels(static_cast<double>(envelope[i])));
      }
      script += program::curveBlock("envelope", envelopeX, envelopeY);
    }
    const float top = *std::max_element(y.begin(), y.end());
    script += panel(0.065, 0.25, "dB") + "set xrange [0:" + fixed(model_.ceilingHz() / 1000, 4) + "]\nset yrange [" +
              fixed(static_cast<double>(top) - 80, 1) + ":" + fixed(static_cast<double>(top) + 8, 1) +
              "]\nset xlabel 'kHz'\nset title " + quoted("spectrum at " + fixed(moment_, 3) + " s") +
              "\nset key top right\nset grid lc rgb '#d0d4da'\n" +
              "plot $moment using 1:2 with lines lw 0.8 lc rgb '#20508c' title 'transform'";
    if (!model.a.empty()) script += ", $envelope using 1:2 with lines lw 2 lc rgb '#d7301f' title 'all-pole model'";
    return script + "\n";
  }

  const Recording& recording_;
  const program::Sound& sound_;
  const Run& run_;
  Padded<float> samples_;
  FormantModel model_;
  double moment_;
};

}  // namespace

std::string drawVoice(const std::filesystem::path& png, const Recording& recording, const Run& run) {
  const program::Sound sound = program::readWav(recording.file, longestSeconds, run.channel);
  return program::drawPng(png, pictureWidth, pictureHeight, Picture(recording, sound, run).script());
}

}  // namespace voice
