#include "common/sound_plot.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/filter_bank.h"
#include "common/gnuplot.h"
#include "common/text.h"

namespace program {

// Least and greatest of groups of samples in turn, so that the drawn line covers what a full one would.
std::string waveformBlock(const std::string& name, const Sound& sound, size_t mostPoints) {
  const std::vector<float>& samples = sound.samples;
  const size_t group = std::max<size_t>(1, 2 * samples.size() / mostPoints);
  std::vector<double> x;
  std::vector<float> y;
  for (size_t begin = 0; begin < samples.size(); begin += group) {
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto [least, most] =
        std::minmax_element(first, first + static_cast<std::ptrdiff_t>(std::min(group, samples.size() - begin)));
    for (const float value : {*least, *most}) {
      x.push_back(static_cast<double>(begin) / sound.rate);
      y.push_back(value);
    }
  }
  return curveBlock(name, x, y);
}

std::string melTics(float lowHz, float highHz, int filters) {
  const auto mel = [](double hertz) { return std::log1p(hertz / static_cast<double>(melDiv)); };
  const double low = mel(static_cast<double>(lowHz)), high = mel(static_cast<double>(highHz));
  std::string tics;
  for (const double kilohertz : {0.25, 0.5, 1.0, 2.0, 3.0, 4.0, 6.0, 8.0}) {
    const double height = (mel(1000 * kilohertz) - low) / (high - low) * (filters + 1);
    if (height < 0.5 || height > filters + 0.5) continue;
    tics += (tics.empty() ? "'" : ", '") + fixed(kilohertz, kilohertz < 1 ? 2 : 0) + "' " + fixed(height, 3);
  }
  return "set ytics (" + tics + ")\n";
}

float peak(const Sound& sound) {
  float largest = 1e-4F;
  for (const float sample : sound.samples) largest = std::max(largest, std::fabs(sample));
  return largest;
}

}  // namespace program
