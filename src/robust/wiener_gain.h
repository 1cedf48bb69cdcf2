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
// lies farther from the next whole number than it is rounded by. So it holds in every rounding mode. What is to be rounded down gets an
// offset of kPositive first, and is truncated. A divisor of 0 becomes -2^31, and its quotient 0.
inline constexpr int32_t kPositive = 1 << 28;

template <int N>
inline Lanes<int32_t, N> lowestWhereZero(const Lanes<int32_t, N>& a) {
  return Lanes<int32_t, N>::each(a, [](auto v) { return decltype(v)(v | ((v == decltype(v){}) & INT32_MIN)); });
}

template <int N>
inline Lanes<int32_t, N> wienerGain(const Lanes<int32_t, N>& x, const Lanes<int32_t, N>& n, const Lanes<int32_t, N>& p) {
  using I = Lanes<int32_t, N>;
  using L = Lanes<double, N>;
  const L i = as<double>(truncated(Lanes<float, N>(16384.0F) / as<float>(lowestWhereZero(n))));
  const L evidence = as<double>(p) * L(4014.0 / 16384.0) + as<double>(max(x - n, I(0))) * L(82.0 / 16384.0);
  const I raised = truncated(evidence * i + L(kPositive)), divisor = lowestWhereZero(raised - I(kPositive - 4096));
  const L g = as<double>(truncated(as<double>(raised - I(kPositive)) * L(16384.0) / as<double>(divisor)));
  const I product = truncated(as<double>(x) * L(1.0 / 16384.0) * g + L(kPositive)) - I(kPositive);
  const L b = min(max(as<double>(product) * i, L(1301.0)), L(0x1p30));  // larger ones all give 16383
  return truncated(b * L(128.0) / as<double>(truncated(b * L(1.0 / 128.0)) + I(128)));
}

inline void wienerGains(const int16_t* present, const int16_t* noise, const int16_t* denoised, int16_t* gain, int32_t length) {
  constexpr int kLeast = 4, kBlock = std::max(kLeast, kNativeLanes<double>);
  const auto gains = [](const int16_t* x, const int16_t* n, const int16_t* p, auto lanes) __attribute__((always_inline)) {
    return saturated(wienerGain(loadAs<int32_t, lanes>(x), loadAs<int32_t, lanes>(n), loadAs<int32_t, lanes>(p)));
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
