// Plain models of rounding and saturation: one value at a time, in double or integers, where every step is exact.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace model {

// 2^-sf as a float, by repeated halving or doubling.
inline float scaleMultiplier(int32_t sf) {
  const int64_t steps = sf < 0 ? -static_cast<int64_t>(sf) : sf;
  float multiplier = 1.0F;
  for (int64_t i = 0; i < steps && i < 400; ++i) multiplier *= sf < 0 ? 2.0F : 0.5F;  // long since infinite, or zero
  return multiplier;
}

// To nearest, ties to even, of a double, whatever the rounding mode.
inline double nearestEven(double value) {
  const double down = std::floor(value), rest = value - down;
  if (rest < 0.5) return down;
  if (rest > 0.5) return down + 1.0;
  return std::fmod(down, 2.0) == 0.0 ? down : down + 1.0;
}

// The conversion of a float result to Int with rounding mode 0 (truncate), 1 (nearest even), other (half away from zero, the half
// being added in float) and a scale factor. A NaN gives 0.
template <class Int>
Int convertScaled(float value, int mode, int32_t sf) {
  if (sf != 0) value *= scaleMultiplier(sf);
  if (std::isnan(value)) return 0;
  if (sizeof(Int) == 2 && value > 32767.0F) value = 32767.0F;
  if (mode != 0 && mode != 1) value += std::copysign(0.5F, value);
  const double rounded = mode == 1 ? nearestEven(static_cast<double>(value)) : std::trunc(static_cast<double>(value));
  constexpr double kLow = std::numeric_limits<Int>::min(), kHigh = std::numeric_limits<Int>::max();
  return rounded < kLow    ? std::numeric_limits<Int>::min()
         : rounded > kHigh ? std::numeric_limits<Int>::max()
                           : static_cast<Int>(rounded);
}

// A double limited to the range of a 32-bit integer and rounded to nearest even; a NaN gives 0.
inline int32_t limitAndRound32(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int32_t>(nearestEven(std::fmin(std::fmax(value, -2147483648.0), 2147483647.0)));
}

}  // namespace model
