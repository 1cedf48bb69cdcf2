// An angle of any size as quarter turns and the rest, exactly: for the few that floating-point parts of pi do not serve.
//
//   x = m 2^e, m whole:  x 2/pi = m (2/pi) 2^e.  Only the digits of 2/pi that matter are multiplied: those before them give whole
//   turns, those behind them less than is kept. No double comes closer to a multiple of pi/2 than 2^-62, so 62 bits and those of a
//   result of twice the precision are kept. (Payne and Hanek, "Radian reduction for trigonometric functions", ACM SIGNUM Newsletter
//   18, 1983.)
#pragma once

#include <cstdint>

namespace qorsr::elementary {

// high + low is the rest, at most pi/4 in magnitude; of `quarters` the low two bits count.
struct ReducedAngle {
  double high, low;
  uint64_t quarters;
};

// x is not negative. Infinity and NaN give a NaN. Beyond the least that two parts of pi/2 serve: at least 1/2.
ReducedAngle reduceAngle(double x);

}  // namespace qorsr::elementary
