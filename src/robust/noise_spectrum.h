// The noise estimate of a spectrum, carried on from frame to frame: x the present spectrum, n the noise so far,
//
//   y = n (0.1 x / (x + n) (n / (n + 0.1 x) + 1) + 0.9)
// which rises by at most a factor of 1.1 a frame and falls by at most one of 0.9. A divisor of 0 gives 0.
//
// required: every operation rounds toward zero. Integers are converted to float; what is a divisor of 0 is decided by whole numbers:
// x + n, and n + 0.1 x truncated (16 bits: their sum truncated, 32 bits: the tenth alone). Results are scaled, limited and truncated.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

// 0 where a divisor is, elsewhere the value.
template <int N>
inline Lanes<float, N> zeroWhereNone(const Lanes<float, N>& sum, const Lanes<float, N>& mixed, const Lanes<float, N>& value) {
  Lanes<float, N> v;
  for (int i = 0; i < v.kParts; ++i) {
    using Part = typename Lanes<float, N>::Part;
    v.part[i] = ((sum.part[i] == Part{}) | (mixed.part[i] == Part{})) ? Part{} : value.part[i];
  }
  return v;
}

template <int N>
inline Lanes<float, N> noiseUpdate(const float* present, const float* noise) {
  using L = Lanes<float, N>;
  const L x = L::load(present), n = L::load(noise), tenth = L(0.1F) * x, sum = x + n, mixed = n + tenth;
  return zeroWhereNone(sum, mixed, n * (tenth / sum * (n / mixed + L(1.0F)) + L(0.9F)));
}

// Of integers, with their divisors.
template <int N>
inline Lanes<float, N> scaledNoiseUpdate(const Lanes<float, N>& x, const Lanes<float, N>& n, const Lanes<float, N>& sum,
                                         const Lanes<float, N>& mixed, float multiplier) {
  using L = Lanes<float, N>;
  return n * (x / sum * L(0.1F) * (n / mixed + L(1.0F)) + L(0.9F)) * L(multiplier);
}

template <int N>
inline Lanes<int16_t, N> noiseUpdate(const int16_t* present, const int16_t* noise, float multiplier) {
  using L = Lanes<float, N>;
  const L x = loadAs<float, N>(present), n = loadAs<float, N>(noise), sum = x + n, mixed = L(0.1F) * x + n;
  const L divisor = selectLess(abs(mixed), L(1.0F), L(0.0F), mixed);  // truncated it is 0
  const L y = zeroWhereNone(sum, divisor, scaledNoiseUpdate(x, n, sum, mixed, multiplier));
  return saturated(truncated(max(min(y, L(32767.0F)), L(-32768.0F))));
}

template <int N>
inline Lanes<int32_t, N> noiseUpdate(const int32_t* present, const int32_t* noise, float multiplier) {
  using L = Lanes<float, N>;
  const L x = loadAs<float, N>(present), n = loadAs<float, N>(noise);
  const auto exactNoise = loadAs<double, N>(noise);
  const L sum = as<float>(loadAs<double, N>(present) + exactNoise);
  const L mixed = as<float>(as<double>(truncated(L(0.1F) * x)) + exactNoise);
  const L y = zeroWhereNone(sum, mixed, scaledNoiseUpdate(x, n, sum, mixed, multiplier));
  // required: what is limited at 2^31 becomes the most negative integer
  return truncated(max(min(y, L(2147483648.0F)), L(-2147483648.0F)));
}

// The noise may be updated in place.
template <class T, class... Multiplier>
QORSR_IN_GUARDED_MODE void updateNoise(const T* present, const T* noise, T* result, int32_t length, Multiplier... multiplier) {
  coverLastFirst<T>(
      length,
      [=](int32_t i, auto n) __attribute__((always_inline)) { return noiseUpdate<n>(present + i, noise + i, multiplier...); },
      [=](int32_t i, const auto& value) { value.store(result + i); });
}

template <class T, class... ScaleFactor>
QorStatus updateNoiseSpectrum(const T* present, const T* noise, T* result, int32_t length, ScaleFactor... scaleFactor) {
  if (QorStatus bad = Checks().null(present, noise, result).size(length)) return bad;
  const EnvironmentGuard guard(Rounding::kTowardZero);
  // At most 2^127: 0 stays 0, and all else, at least 2^-24, is limited as by an infinite power.
  updateNoise(present, noise, result, length, twoToMinus<float>(std::max(scaleFactor, -127))...);
  return qorStatusOk;
}

}  // namespace qorsr
