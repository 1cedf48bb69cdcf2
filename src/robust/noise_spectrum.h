// The noise estimate of a spectrum, carried on from frame to frame: x the present spectrum, n the noise so far,
//
//   y = n (0.1 x / (x + n) (n / (n + 0.1 x) + 1) + 0.9)
// which rises by at most a factor of 1.1 a frame and falls by at most one of 0.9. A divisor of 0 gives 0.
//
// required: every operation rounds toward zero. Integers are converted to float; what is a divisor of 0 is decided by whole numbers:
// x + n, and n + 0.1 x truncated (16 bits: their sum truncated, 32 bits: the tenth alone). Results are scaled, limited and truncated.
#pragma once

#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

// 0 where |divisor| < least, elsewhere the value.
template <int N>
inline Lanes<float, N> zeroWhereBelow(const Lanes<float, N>& divisor, float least, const Lanes<float, N>& value) {
  using L = Lanes<float, N>;
  return selectLess(abs(divisor), L(least), L(0.0F), value);
}
inline constexpr float kLeastFloat = std::numeric_limits<float>::denorm_min();

template <int N>
inline Lanes<float, N> noiseUpdate(const Lanes<float, N>& x, const Lanes<float, N>& n) {
  using L = Lanes<float, N>;
  const L tenth = L(0.1F) * x, sum = x + n, mixed = n + tenth;
  const L y = n * (tenth / sum * (n / mixed + L(1.0F)) + L(0.9F));
  return zeroWhereBelow(sum, kLeastFloat, zeroWhereBelow(mixed, kLeastFloat, y));
}

// Of integers, with divisors that are not zero.
template <int N>
inline Lanes<float, N> scaledNoiseUpdate(const Lanes<float, N>& x, const Lanes<float, N>& n, const Lanes<float, N>& sum,
                                         const Lanes<float, N>& mixed, float multiplier) {
  using L = Lanes<float, N>;
  const L y = n * (x / sum * L(0.1F) * (n / mixed + L(1.0F)) + L(0.9F)) * L(multiplier);
  return zeroWhereNaN(y);  // 0 times infinity
}

template <int N>
inline Lanes<int16_t, N> noiseUpdate(const Lanes<int16_t, N>& present, const Lanes<int16_t, N>& noise, float multiplier) {
  using L = Lanes<float, N>;
  const L x = as<float>(present), n = as<float>(noise), sum = x + n, mixed = L(0.1F) * x + n;
  const L y = zeroWhereBelow(sum, 1.0F, zeroWhereBelow(mixed, 1.0F, scaledNoiseUpdate(x, n, sum, mixed, multiplier)));
  return saturated(truncated(max(min(y, L(32767.0F)), L(-32768.0F))));
}

template <int N>
inline Lanes<int32_t, N> noiseUpdate(const Lanes<int32_t, N>& present, const Lanes<int32_t, N>& noise, float multiplier) {
  using L = Lanes<float, N>;
  const L x = as<float>(present), n = as<float>(noise);
  const auto exactNoise = as<double>(noise);
  const L sum = as<float>(as<double>(present) + exactNoise);
  const L mixed = as<float>(as<double>(truncated(L(0.1F) * x)) + exactNoise);
  const L y = zeroWhereBelow(sum, 1.0F, zeroWhereBelow(mixed, 1.0F, scaledNoiseUpdate(x, n, sum, mixed, multiplier)));
  // required: what is limited at 2^31 becomes the most negative integer
  return truncated(max(min(y, L(2147483648.0F)), L(-2147483648.0F)));
}

// The noise may be updated in place.
template <class T, class... Multiplier>
QORSR_IN_GUARDED_MODE void updateNoise(const T* present, const T* noise, T* result, int32_t length, Multiplier... multiplier) {
  coverLastFirst<float>(
      length,
      [=](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<T, n>;
        return noiseUpdate(L::load(present + i), L::load(noise + i), multiplier...);
      },
      [=](int32_t i, const auto& value) { value.store(result + i); });
}

template <class T, class... ScaleFactor>
QorStatus updateNoiseSpectrum(const T* present, const T* noise, T* result, int32_t length, ScaleFactor... scaleFactor) {
  if (QorStatus bad = Checks().null(present, noise, result).size(length)) return bad;
  const EnvironmentGuard guard(Rounding::kTowardZero);
  updateNoise(present, noise, result, length, twoToMinus<float>(scaleFactor)...);
  return qorStatusOk;
}

}  // namespace qorsr
