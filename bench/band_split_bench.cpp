// A front-end with a split band against plain loops: the filter pair over frames of 160 samples and longer signals, the coding of the high
// band, the blind equaliser over cepstra of 12 to 39 numbers.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "band_split_plain.h"
#include "kit/bench.h"
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

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

template <class T, class Function, class... ScaleFactor>
std::function<void()> split(int32_t length, int32_t taps, Function function, ScaleFactor... scaleFactor) {
  return
      [=, x = numbers<T>(length + taps, 1, -9000, 9000), h = numbers<T>(taps, 2, -900, 900),
       low = std::vector<T>(static_cast<std::size_t>(length)), high = std::vector<T>(static_cast<std::size_t>(length))]() mutable {
        function(x.data(), low.data(), high.data(), length, h.data(), taps, scaleFactor...);
      };
}
template <class T, class Function, class... ScaleFactor>
std::function<void()> coding(Function function, ScaleFactor... scaleFactor) {
  return [=, low = numbers<T>(3, 1, 10, 9000), a = numbers<T>(65, 2, 10, 9000), b = numbers<T>(129, 3, 10, 9000)]() {
    T y[3];
    function(low.data(), a.data(), b.data(), y, scaleFactor...);
    asm volatile("" ::"r"(y) : "memory");
  };
}
// One frame of a stream after the other; all contenders have their vectors at the same distances.
template <class T>
struct Stream {
  static constexpr int kFrames = 16, kPitch = 272;
  alignas(64) T cepstra[kFrames][kPitch] = {};
  alignas(64) T reference[kPitch] = {};
  alignas(64) T bias[kPitch] = {};
  int frame = 0;
};
template <class T, class Function, class Energy>
std::function<void()> equaliser(int32_t length, Function function, Energy energy) {
  auto stream = std::make_shared<Stream<T>>();
  for (auto& cepstrum : stream->cepstra) std::ranges::copy(numbers<T>(length, 2, -90, 90), cepstrum);
  return [=] {
    stream->frame = (stream->frame + 1) % Stream<T>::kFrames;
    function(stream->reference, stream->cepstra[stream->frame], stream->bias, length, energy);
  };
}

void addTasks(const bench::Level& level) {
  const auto both = [&](const std::string& task, double items, const std::string& unit, const std::function<void()>& ours,
                        const std::function<void()>& plain) {
    bench::add({task, "ours", level.name, items, unit}, ours);
    bench::add({task, "plain", level.name}, plain);
  };
  for (const int32_t taps : {2, 31, 118}) {
    for (const int32_t length : {160, 2000}) {
      const std::string task = ", " + std::to_string(length) + " samples, " + std::to_string(taps) + " taps";
      both("LowHighFilter_32f" + task, length, "samples", split<float>(length, taps, OURS(qorsLowHighFilter_Aurora_32f)),
           split<float>(length, taps, PLAIN(plainLowHighFilter_32f)));
      both("LowHighFilter_16s" + task, length, "samples", split<int16_t>(length, taps, OURS(qorsLowHighFilter_Aurora_16s_Sfs), 15),
           split<int16_t>(length, taps, PLAIN(plainLowHighFilter_16s), 15));
    }
  }
  both("HighBandCoding_32f", 1, "frames", coding<float>(OURS(qorsHighBandCoding_Aurora_32f)),
       coding<float>(PLAIN(plainHighBandCoding_32f)));
  both("HighBandCoding_32s", 1, "frames", coding<int32_t>(OURS(qorsHighBandCoding_Aurora_32s_Sfs), -7),
       coding<int32_t>(PLAIN(plainHighBandCoding_32s), -7));
  for (const int32_t length : {12, 13, 39, 256}) {
    const std::string task = ", " + std::to_string(length) + " numbers";
    both("BlindEqualization_32f" + task, length, "numbers", equaliser<float>(length, OURS(qorsBlindEqualization_Aurora_32f), 4.0F),
         equaliser<float>(length, PLAIN(plainBlindEqualization_32f), 4.0F));
    both("BlindEqualization_16s" + task, length, "numbers", equaliser<int16_t>(length, OURS(qorsBlindEqualization_Aurora_16s), 250),
         equaliser<int16_t>(length, PLAIN(plainBlindEqualization_16s), 250));
  }
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) addTasks(level);
  return bench::run(argc, argv);
}
