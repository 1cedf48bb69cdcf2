#include "common/resampling.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "common/fault.h"
#include "qorsr.h"

namespace program {
namespace {

constexpr int halfPeriods = 32;                   // of the lower rate on either side of an output
constexpr float rollOff = 0.945F, alpha = 10.0F;  // cut-off, and shape of the window

struct FreeResampler {
  void operator()(ResamplePolyphaseFixedState_32f* state) const { qorsResamplePolyphaseFixedFree_32f(state); }
};
using Resampler = std::unique_ptr<ResamplePolyphaseFixedState_32f, FreeResampler>;

Resampler makeResampler(int from, int to, int length) {
  ResamplePolyphaseFixedState_32f* state = nullptr;
  check(qorsResamplePolyphaseFixedInitAlloc_32f(&state, from, to, length, rollOff, alpha, 1),
        "qorsResamplePolyphaseFixedInitAlloc_32f");
  return Resampler(state);
}

}  // namespace

Sound resampled(const Sound& sound, int rate) {
  if (sound.rate == rate || sound.samples.empty()) return {rate, sound.samples};
  const double ratio = static_cast<double>(rate) / sound.rate;
  const auto margin = static_cast<size_t>(std::ceil(halfPeriods * std::max(1.0, 1 / ratio)));  // samples on either side
  const auto length = static_cast<int32_t>(2 * margin + 3) / 4 * 4;
  const size_t history = static_cast<size_t>(length) / 2 + 2, count = sound.samples.size();
  std::vector<float> padded(count + 2 * history);
  std::copy(sound.samples.begin(), sound.samples.end(), padded.begin() + static_cast<std::ptrdiff_t>(history));
  Sound result{rate, std::vector<float>(static_cast<size_t>(std::ceil(static_cast<double>(count) * ratio)) + 2)};
  const Resampler resampler = makeResampler(sound.rate, rate, length);
  auto time = static_cast<double>(history);
  int32_t made = 0;
  check(qorsResamplePolyphaseFixed_32f(resampler.get(), padded.data(), static_cast<int32_t>(count), result.samples.data(), 1, &time,
                                       &made),
        "qorsResamplePolyphaseFixed_32f");
  result.samples.resize(static_cast<size_t>(made));
  return result;
}

}  // namespace program
