// Wiener gains: x the present spectrum, n the noise, p the denoised spectrum of the frame before,
//
//   a = (0.02 max(x - n, 0) + 0.98 p) / n      the signal-to-noise ratio before this frame's evidence
//   b = max(a / (a + 1) x / n, 10^(-22/20))    and with it, at least -22 dB
//   y = b / (b + 1)
// (Ephraim and Malah, "Speech enhancement using a minimum mean-square error short-time spectral amplitude estimator", 1984: decision
// directed.) In float with r = 1 / n, each operation rounded on its own; a NaN takes the floor.
//
// 16 bits give Q14: i = 16384 / n, A = ((4014 p + 82 max(x - n, 0)) i) >> 14, g = 16384 A / (A + 4096), b = max(((x g) >> 14) i, 1301),
// y = 128 b / ((b >> 7) + 128), quotients truncated. No noise, and a divisor A + 4096 of 0, give what the floor gives.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

template <int N>
inline Lanes<float, N> wienerGain(const Lanes<float, N>& x, const Lanes<float, N>& n, const Lanes<float, N>& p) {
  using L = Lanes<float, N>;
  const L one(1.0F), r = one / n;
  const L a = (max(x - n, L(0.0F)) * L(0.02F) + p * L(0.98F)) * r;
  const L b = max(a / (a + one) * (x * r), L(0.07943282F));
  return b / (b + one);
}

inline void wienerGains(const float* present, const float* noise, const float* denoised, float* gain, int32_t length) {
  coverLastFirst<float>(
      length,
      [=](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        return wienerGain(L::load(present + i), L::load(noise + i), L::load(denoised + i));
      },
      [=](int32_t i, const auto& value) { value.store(gain + i); });
}

// ---- 16 bits ----

// Whole numbers of at most 53 bits in lanes of doubles, where a product is exact, and a quotient, truncated, is that of integers: it
// lies farther from the next whole number than it is rounded by. So it holds in every rounding mode.
template <int N>
inline Lanes<double, N> wholePart(const Lanes<double, N>& a) {  // fits 32 bits
  return as<double>(truncated(a));
}
template <int N>
inline Lanes<double, N> floorOf(const Lanes<double, N>& a) {
  const Lanes<double, N> whole = wholePart(a);
  return selectLess(a, whole, whole - Lanes<double, N>(1.0), whole);
}

template <int N>
inline Lanes<int32_t, N> wienerGain(const Lanes<double, N>& x, const Lanes<double, N>& n, const Lanes<double, N>& p) {
  using L = Lanes<double, N>;
  const L floor(1301.0), zero(0.0), one(1.0);
  const L i = wholePart(L(16384.0) / n);
  const L evidence = p * L(4014.0) + L(82.0) * max(x - n, zero);
  const L a = floorOf(evidence * i * L(0x1p-14)), divisor = a + L(4096.0);
  const L g = wholePart(L(16384.0) * a / divisor);
  const L product = max(floorOf(x * g * L(0x1p-14)) * i, floor);
  const L known = min(selectLess(abs(n), one, zero, one), selectLess(abs(divisor), one, zero, one));
  const L b = min(selectLess(zero, known, product, floor), L(0x1p30));  // larger ones all give 16383
  return truncated(L(128.0) * b / (wholePart(b * L(0x1p-7)) + L(128.0)));
}

inline void wienerGains(const int16_t* present, const int16_t* noise, const int16_t* denoised, int16_t* gain, int32_t length) {
  constexpr int kLeast = 4, kBlock = std::max(kLeast, kNativeLanes<double>);
  const auto gains = [](const int16_t* x, const int16_t* n, const int16_t* p, auto lanes) __attribute__((always_inline)) {
    return saturated(wienerGain(loadAs<double, lanes>(x), loadAs<double, lanes>(n), loadAs<double, lanes>(p)));
  };
  const auto at = [=](int32_t i, auto lanes) __attribute__((always_inline)) {
    return gains(present + i, noise + i, denoised + i, lanes);
  };
  const auto store = [=](int32_t i, const auto& value) { value.store(gain + i); };
  if (length >= kBlock) return lastFirst<kBlock>(length, at, store);
  if (length >= kLeast) return lastFirst<kLeast>(length, at, store);
  int16_t x[kLeast] = {}, n[kLeast] = {}, p[kLeast] = {}, all[kLeast];
  std::copy_n(present, length, x);
  std::copy_n(noise, length, n);
  std::copy_n(denoised, length, p);
  gains(x, n, p, LaneCount<kLeast>()).store(all);
  std::copy_n(all, length, gain);
}

template <class T>
QorStatus designWienerFilter(const T* present, const T* noise, const T* denoised, T* gain, int32_t length) {
  if (QorStatus bad = Checks().null(present, noise, denoised, gain).size(length)) return bad;
  wienerGains(present, noise, denoised, gain, length);
  return qorStatusOk;
}

}  // namespace qorsr
