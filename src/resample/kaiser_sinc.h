// The prototype of both resamplers: a sinc under a Kaiser window.
//
//   t[k] = sin(r w k) / (w k) * I0(alpha sqrt(1 - (k / last)^2)) / I0(alpha),   w = pi / base,   t[0] = r (Kaiser, 1974)
//
// with I0 the modified Bessel function of the first kind by its power series. All in double.
#pragma once

#include <cstdint>
#include <limits>
#include <numbers>

#include "frame/bits.h"
#include "frame/elementary.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr int32_t kAccurate = 2;  // the hint for float tables and double sums

// I0(x) = sum over n of ((x / 2)^n / n!)^2, until a term is below 1e-21 of the sum. Terms rise before they fall, so what other lanes
// still add changes no sum that is done. A sum that overflowed, or is NaN, is done too.
template <int N>
Lanes<double, N> besselI0(const Lanes<double, N>& x) {
  using L = Lanes<double, N>;
  const L half = x * L(0.5), infinity(std::numeric_limits<double>::infinity());
  L term(1.0), sum(1.0);
  for (double n = 1.0;; n += 1.0) {
    const L ratio = half / L(n);
    term *= ratio * ratio;
    sum += term;
    if (allLess(selectLess(sum, infinity, term - L(1e-21) * sum, L(-1.0)), L(0.0))) return sum;
  }
}

// Fills t[0] to t[last]. relative(k): k / last, as the caller's definition forms it.
template <class Relative>
void fillKaiserSinc(double* t, int64_t last, int64_t base, float rollOff, float alpha, const Relative& relative) {
  constexpr int N = 8;
  using L = Lanes<double, N>;
  const L w(std::numbers::pi / static_cast<double>(base)), slope = L(static_cast<double>(rollOff)) * w,
                                                           a(static_cast<double>(alpha));
  const L scale = L(1.0) / besselI0(a);
  static constexpr double kFirst[N] = {0, 1, 2, 3, 4, 5, 6, 7};
  t[0] = static_cast<double>(rollOff);
  for (int64_t first = 1; first <= last; first += N) {
    const L k = L::load(kFirst) + L(static_cast<double>(first)), x = relative(k);
    const L under = L(1.0) - x * x;
    const L root = sqrt(selectLess(L(0.0), under, under, L(0.0)));
    const L value = sin(slope * k) / (w * k) * scale * besselI0(a * root);
    if (first + N - 1 <= last) {
      value.store(t + first);
    } else {
      Tail<double, N>(static_cast<int>(last - first + 1)).store(value, t + first);
    }
  }
}

// The nearest 16-bit number, halves away from zero.
inline int16_t nearestShort(double value) {
  return static_cast<int16_t>(truncateOrLowest<int32_t>(value < 0.0 ? value - 0.5 : value + 0.5));
}

// A sample: the same, limited to 16 bits; a NaN gives 0.
inline void storeSample(double value, int16_t* sample) {
  *sample = value >= 32767.0 ? INT16_MAX : value < -32768.0 ? INT16_MIN : value == value ? nearestShort(value) : int16_t{0};
}
inline void storeSample(double value, float* sample) { *sample = static_cast<float>(value); }

// A position in time as whole samples and the rest. Beyond 32 bits, and NaN: no position.
struct Position {
  int64_t whole;
  double rest;
};
inline bool isPosition(double time) { return time > -2147483649.0 && time < 2147483648.0; }
inline Position positionOf(double time) {
  const auto whole = static_cast<int64_t>(time);
  return {whole, time - static_cast<double>(whole)};
}

}  // namespace qorsr
