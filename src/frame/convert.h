// Conversion of float results to integers with a scale factor: dst[i] = saturate(round(source[i] * 2^-sf)).
//
//   Rounding modes: 0 truncates toward zero; 1 rounds to nearest, ties to even; any other adds one half with the sign of the value,
//   in float, and truncates. The multiplier is a float made by repeated multiplication, so sf of -128 and below gives infinity and
//   150 and above zero; with sf = 0 nothing is multiplied. A NaN (also 0 * infinity) gives 0. To 32 bits, every float above
//   2147483520.0 gives 2147483647.
//
// Source and destination may be the same memory. Statuses: null pointers, then a length below 1.
#pragma once

#include <cstdint>

#include "qorsr.h"

namespace qorsr {

inline constexpr int kTruncate = 0, kNearestEven = 1, kNearestAway = 2;

QorStatus convertFloats(const float* source, int16_t* destination, int32_t length, int mode, int32_t scaleFactor);
QorStatus convertFloats(const float* source, int32_t* destination, int32_t length, int mode, int32_t scaleFactor);

// value limited to the range of Int, then rounded to nearest, ties to even, whatever the caller's rounding mode; a NaN gives 0.
template <class Int>
Int limitAndRound(double value) {
  constexpr double kLow = -2147483648.0, kHigh = 2147483647.0;
  static_assert(sizeof(Int) == 4);
  if (!(value > kLow)) return value <= kLow ? INT32_MIN : 0;
  if (value >= kHigh) return INT32_MAX;
  const double whole = static_cast<double>(static_cast<int32_t>(value));  // toward zero
  const double rest = value - whole;                                      // exact
  const int32_t base = static_cast<int32_t>(value);
  const double half = rest < 0 ? -rest : rest;
  const bool away = half > 0.5 || (half == 0.5 && base % 2 != 0);
  return away ? base + (value < 0 ? -1 : 1) : base;
}

}  // namespace qorsr
