// Pitch analysis of frames of speech against the plain loop.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "pitch_plain.h"
#include "qorsr.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

// A hum of 70.3 samples a period with a little noise.
struct Sound {
  std::vector<int16_t> x16;
  std::vector<float> x, magnitude, marks;

  Sound() {
    uint32_t noise = 1;
    for (int i = 0; i < 4096; ++i) {
      noise = noise * 1664525U + 1013904223U;
      const double phase = 6.283185307179586 * i / 70.3;
      const double value = 6000 * std::sin(phase) + 3000 * std::sin(2 * phase + 1) + static_cast<double>(noise >> 20) / 4;
      x16.push_back(static_cast<int16_t>(value));
      x.push_back(static_cast<float>(value));
      magnitude.push_back(static_cast<float>(std::fabs(value)));
      marks.push_back(static_cast<float>(70 * i + static_cast<int>(noise >> 29)));
    }
  }
};

template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, double items, const std::string& unit, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name, items, unit}, ours);
  bench::add({task, "plain", level.name, items, unit}, plain);
}

void addCorrelations(const bench::Level& level, const Sound& sound, std::vector<float>& results) {
  constexpr int32_t kLength = 400, kLags = 300;
  const int16_t* const x = sound.x16.data() + 1024;
  float* const r = results.data();
  compare(
      level, "CrossCorrCoeff_16s32f, 400 samples, 300 lags", kLags, "lags",
      [=, f = OURS(qorsCrossCorrCoeff_16s32f)] {
        for (int32_t lag = 0; lag < kLags; ++lag) f(x, x + lag, kLength, r + lag);
      },
      [=, f = PLAIN(plainCrossCorrelation)] {
        for (int32_t lag = 0; lag < kLags; ++lag) r[lag] = f(x, x + lag, kLength);
      });
  compare(
      level, "CrossCorrCoeffPartial_16s32f, 400 samples, 300 lags", kLags, "lags",
      [=, f = OURS(qorsCrossCorrCoeffPartial_16s32f)] {
        for (int32_t lag = 0; lag < kLags; ++lag) f(x, x + lag, kLength, 1e9F, r + lag);
      },
      [=, f = PLAIN(plainPartialCrossCorrelation)] {
        for (int32_t lag = 0; lag < kLags; ++lag) r[lag] = f(x, x + lag, kLength, 1e9F);
      });
  compare(
      level, "CrossCorrCoeffInterpolation_16s32f, 400 samples, 300 lags", kLags, "lags",
      [=, f = OURS(qorsCrossCorrCoeffInterpolation_16s32f)] {
        for (int32_t lag = 0; lag < kLags; ++lag) f(x, x + lag, kLength, r + 400, r + lag);
      },
      [=, f = PLAIN(plainInterpolatedCrossCorrelation)] {
        for (int32_t lag = 0; lag < kLags; ++lag) r[lag] = f(x, x + lag, kLength, r + 400);
      });
  for (const int32_t step : {1, 4}) {
    compare(
        level, "CrossCorrCoeffDecim_16s32f, 100 to 400 samples, step " + std::to_string(step), 1, "calls",
        [=, f = OURS(qorsCrossCorrCoeffDecim_16s32f)] { f(x, x + 70, 400, 100, r, step); },
        [=, f = PLAIN(plainDecimatedCrossCorrelation)] { f(x, x + 70, 400, 100, r, step); });
  }
}

void addPeriods(const bench::Level& level, const Sound& sound, std::vector<float>& results) {
  const float *x = sound.x.data(), *magnitude = sound.magnitude.data();
  float* const value = results.data();
  static int32_t period;
  compare(
      level, "PeriodicityLSPE_32f, 400 samples, periods 32 to 200", 1, "frames",
      [=, f = OURS(qorsPeriodicityLSPE_32f)] { f(x, 400, value, &period, 200, 32); },
      [=, f = PLAIN(plainPeriodicityLSPE)] { *value = f(x, 400, 200, 32, &period); });
  compare(
      level, "Periodicity_32f, 400 samples, periods 32 to 200", 1, "frames",
      [=, f = OURS(qorsPeriodicity_32f)] { f(magnitude, 400, value, &period, 200, 32); },
      [=, f = PLAIN(plainPeriodicity)] { *value = f(magnitude, 400, 200, 32, &period); });
}

void addContours(const bench::Level& level, const Sound& sound, std::vector<float>& results, std::vector<uint8_t>& flags) {
  const float *x = sound.x.data(), *marks = sound.marks.data();
  float* const r = results.data();
  uint8_t* const peaks = flags.data();
  for (const int32_t length : {100, 4096}) {
    const std::string size = ", " + std::to_string(length);
    compare(
        level, "PitchmarkToF0Cand_32f" + size, length, "marks", [=, f = OURS(qorsPitchmarkToF0Cand_32f)] { f(marks, r, length); },
        [=, f = PLAIN(plainFrequencies)] { f(marks, r, length); });
    compare(
        level, "FindPeaks_32f8u" + size + ", search 3", length, "values",
        [=, f = OURS(qorsFindPeaks_32f8u)] { f(x, peaks, length, 3, 0); }, [=, f = PLAIN(plainPeaks)] { f(x, peaks, length, 3); });
  }
}

}  // namespace

int main(int argc, char** argv) {
  static const Sound sound;
  static std::vector<float> results(4096);
  static std::vector<uint8_t> flags(4096);
  for (const bench::Level& level : bench::levels()) {
    addCorrelations(level, sound, results);
    addPeriods(level, sound, results);
    addContours(level, sound, results, flags);
  }
  return bench::run(argc, argv);
}
