// Spectral noise reduction against plain loops, frame by frame: spectra of 64 to 512 numbers, frames of 80 and 200 samples.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "noise_reduction_plain.h"
#include "qorsr.h"

namespace {

template <class T>
std::vector<T> numbers(int32_t length, uint32_t seed, double low, double high) {
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    seed = seed * 1664525u + 1013904223u;
    v.push_back(static_cast<T>(low + (high - low) * static_cast<double>(seed >> 8) / (1 << 24)));
  }
  return v;
}
template <class T>
std::vector<T> room(int32_t length) {
  return std::vector<T>(static_cast<std::size_t>(length));
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

template <class T, class Result, class Function, class... ScaleFactor>
std::function<void()> spectrum(int32_t n, Function function, ScaleFactor... scaleFactor) {
  return [=, x = numbers<T>(n, 1, -90, 90), y = room<Result>(n / 4 + 1)]() mutable {
    function(x.data(), y.data(), n, scaleFactor...);
  };
}
template <class T, class Function, class... ScaleFactor>
std::function<void()> update(int32_t n, Function function, ScaleFactor... scaleFactor) {
  return [=, x = numbers<T>(n, 1, 20, 9000), noise = numbers<T>(n, 2, 10, 900), y = room<T>(n)]() mutable {
    function(x.data(), noise.data(), y.data(), n, scaleFactor...);
  };
}
template <class T, class Function>
std::function<void()> gain(int32_t n, Function function) {
  return [=, x = numbers<T>(n, 1, 20, 9000), noise = numbers<T>(n, 2, 10, 900), p = numbers<T>(n, 3, 0, 8000),
          y = room<T>(n)]() mutable { function(x.data(), noise.data(), p.data(), y.data(), n); };
}
template <class T, class Function, class... ScaleFactor>
std::function<void()> filter(Function function, ScaleFactor... scaleFactor) {
  return [=, x = numbers<T>(96, 1, -9000, 9000), h = numbers<T>(17, 2, -3000, 3000), y = room<T>(80)]() mutable {
    function(x.data(), y.data(), h.data(), scaleFactor...);
  };
}
template <class T, class Function>
std::function<void()> wave(Function function) {
  return [=, x = numbers<T>(200, 1, -9000, 9000), y = room<T>(200)]() mutable { function(x.data(), y.data()); };
}

void addSpectra(const bench::Level& level, int32_t n) {
  const auto both = [&](const std::string& task, const std::function<void()>& ours, const std::function<void()>& plain) {
    const std::string name = task + ", " + std::to_string(n) + " numbers";
    bench::add({name, "ours", level.name, static_cast<double>(n), "numbers"}, ours);
    bench::add({name, "plain", level.name}, plain);
  };
  if (n % 4 == 0) {
    both("SmoothedPowerSpectrum_32f", spectrum<float, float>(n, OURS(qorsSmoothedPowerSpectrumAurora_32f)),
         spectrum<float, float>(n, PLAIN(plainPowerSpectrum_32f)));
    both("SmoothedPowerSpectrum_16s", spectrum<int16_t, int16_t>(n, OURS(qorsSmoothedPowerSpectrumAurora_16s)),
         spectrum<int16_t, int16_t>(n, PLAIN(plainPowerSpectrum_16s)));
    both("SmoothedPowerSpectrum_32s", spectrum<int32_t, int32_t>(n, OURS(qorsSmoothedPowerSpectrumAurora_32s_Sfs), 2),
         spectrum<int32_t, int32_t>(n, PLAIN(plainPowerSpectrum_32s), 2));
    both("SmoothedPowerSpectrum_32s64s", spectrum<int32_t, int64_t>(n, OURS(qorsSmoothedPowerSpectrumAurora_32s64s_Sfs), 2),
         spectrum<int32_t, int64_t>(n, PLAIN(plainPowerSpectrum_32s64s), 2));
  }
  both("NoiseSpectrumUpdate_32f", update<float>(n, OURS(qorsNoiseSpectrumUpdate_Aurora_32f)),
       update<float>(n, PLAIN(plainNoiseUpdate_32f)));
  both("NoiseSpectrumUpdate_16s", update<int16_t>(n, OURS(qorsNoiseSpectrumUpdate_Aurora_16s_Sfs), 0),
       update<int16_t>(n, PLAIN(plainNoiseUpdate_16s), 0));
  both("NoiseSpectrumUpdate_32s", update<int32_t>(n, OURS(qorsNoiseSpectrumUpdate_Aurora_32s_Sfs), 0),
       update<int32_t>(n, PLAIN(plainNoiseUpdate_32s), 0));
  both("WienerFilterDesign_32f", gain<float>(n, OURS(qorsWienerFilterDesign_Aurora_32f)),
       gain<float>(n, PLAIN(plainWienerGain_32f)));
  both("WienerFilterDesign_16s", gain<int16_t>(n, OURS(qorsWienerFilterDesign_Aurora_16s)),
       gain<int16_t>(n, PLAIN(plainWienerGain_16s)));
}

void addFrames(const bench::Level& level) {
  const auto add = [&](const std::string& task, const std::string& contender, const std::function<void()>& body) {
    bench::add({task + ", a frame", contender, level.name, contender == "ours" ? 1.0 : 0.0, "frames"}, body);
  };
  add("ResidualFilter_32f", "ours", filter<float>(OURS(qorsResidualFilter_Aurora_32f)));
  add("ResidualFilter_32f", "plain", filter<float>(PLAIN(plainResidual_32f)));
  add("ResidualFilter_16s", "ours", filter<int16_t>(OURS(qorsResidualFilter_Aurora_16s_Sfs), 15));
  add("ResidualFilter_16s", "plain", filter<int16_t>(PLAIN(plainResidual_16s), 15));
  add("WaveProcessing_32f", "ours", wave<float>(OURS(qorsWaveProcessing_Aurora_32f)));
  add("WaveProcessing_32f", "plain", wave<float>(PLAIN(plainWave_32f)));
  add("WaveProcessing_16s", "ours", wave<int16_t>(OURS(qorsWaveProcessing_Aurora_16s)));
  add("WaveProcessing_16s", "plain", wave<int16_t>(PLAIN(plainWave_16s)));
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t n : {4, 12, 25, 64, 65, 128, 256, 512}) addSpectra(level, n);
    addFrames(level);
  }
  return bench::run(argc, argv);
}
