#include "signal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "common/fault.h"

namespace voice {
namespace {

constexpr float largest = 30000;          // of 16-bit samples: room for correlations to round
constexpr double tapsOfTransition = 3.3;  // of a Hamming window: taps times the width of the transition band, in cycles
constexpr double offsetHz = 15;
constexpr size_t block = 4096;

// A windowed sinc: gain 1 below the corner, little from 1.6 times the corner on.
std::vector<float> lowPass(double cornerHz, double rate) {
  const double transition = 0.6 * cornerHz, middle = cornerHz + transition / 2;
  const int half = std::max(1, static_cast<int>(tapsOfTransition * rate / transition / 2));
  std::vector<double> taps;
  double sum = 0;
  for (int i = -half; i <= half; ++i) {
    const double x = std::numbers::pi * 2 * middle / rate * i;
    taps.push_back((i == 0 ? 1 : std::sin(x) / x) * (0.54 + 0.46 * std::cos(std::numbers::pi * i / (half + 1))));
    sum += taps.back();
  }
  std::vector<float> result;
  for (const double tap : taps) result.push_back(static_cast<float>(tap / sum));
  return result;
}

// Each result is a row of samples times the taps; rows overlap.
std::vector<float> filtered(const program::Sound& sound, const std::vector<float>& taps) {
  const size_t count = sound.samples.size(), half = taps.size() / 2;
  Padded<float> samples(count, half);
  std::copy(sound.samples.begin(), sound.samples.end(), samples.at(0));
  std::vector<float> result(count);
  std::vector<const float*> rows;
  for (size_t begin = 0; begin < count; begin += block) {
    rows.clear();
    for (size_t i = begin; i < std::min(count, begin + block); ++i) {
      rows.push_back(samples.at(static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(half)));
    }
    program::check(qorsMatVecMul_32f_D2L(rows.data(), taps.data(), static_cast<int32_t>(taps.size()), result.data() + begin,
                                         static_cast<int32_t>(rows.size())),
                   "qorsMatVecMul_32f_D2L");
  }
  return result;
}

// As 16-bit numbers, the loudest sample at the same height always.
void toShort(const std::vector<float>& samples, int16_t* result) {
  float peak = 0;
  for (const float value : samples) peak = std::max(peak, std::fabs(value));
  const float scale = peak > 0 ? largest / peak : 0;
  for (size_t i = 0; i < samples.size(); ++i) result[i] = static_cast<int16_t>(std::lrintf(scale * samples[i]));
}

}  // namespace

program::Sound withoutOffset(const program::Sound& sound) {
  program::Sound result = sound;
  const float coefficient = static_cast<float>(std::exp(-2 * std::numbers::pi * offsetHz / sound.rate));
  float before = sound.samples.front();
  program::check(
      qorsCompensateOffset_32f_I(result.samples.data(), static_cast<int32_t>(result.samples.size()), &before, 0, coefficient),
      "qorsCompensateOffset_32f_I");
  return result;
}

Padded<float> paddedSamples(const program::Sound& sound, double padding) {
  Padded<float> samples(sound.samples.size(), static_cast<size_t>(padding * sound.rate) + 1);
  std::copy(sound.samples.begin(), sound.samples.end(), samples.at(0));
  return samples;
}

Harmonics harmonicsOf(const program::Sound& sound, double cornerHz, double coarseRate, double padding) {
  const int step = std::max(1, static_cast<int>(sound.rate / coarseRate));
  const size_t count = sound.samples.size(), extra = static_cast<size_t>(padding * sound.rate) + 1;
  const size_t coarseCount = (count + static_cast<size_t>(step) - 1) / static_cast<size_t>(step);
  Harmonics result{step,
                   static_cast<double>(sound.rate),
                   static_cast<double>(sound.rate) / step,
                   Padded<int16_t>(count, extra),
                   Padded<int16_t>(coarseCount, extra / static_cast<size_t>(step) + 1),
                   Padded<int16_t>(count, extra)};
  toShort(sound.samples, result.whole.at(0));
  if (2.8 * cornerHz < sound.rate) {
    toShort(filtered(sound, lowPass(cornerHz, sound.rate)), result.fine.at(0));
  } else {
    toShort(sound.samples, result.fine.at(0));
  }
  for (size_t i = 0; i < coarseCount; ++i) {
    *result.coarse.at(static_cast<std::ptrdiff_t>(i)) = result.fine.at(0)[i * static_cast<size_t>(step)];
  }
  return result;
}

}  // namespace voice
