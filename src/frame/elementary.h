// Elementary functions, the library's own: the same bits at every instruction level, with every compiler, on every processor.
//
//   exp, log, log10, sin, cos, pow       of Lanes<double, N> and Lanes<float, N>, and of one number
//   expOfMinus(x) = exp(-x), x not negative;  sinOfMagnitude(x) = sin(|x|)       the same bits, for less
//
// Those of a system's mathematical library differ in their last bits from one installation and processor to the next. Here each lane
// is computed alone, by additions, subtractions, multiplications and divisions in a fixed order and without contraction, so neither
// the number of lanes nor a neighbour shows in a result.
//
// Error, in last places of the result (of a denormal one: of its own), in the default rounding mode; measured beside a reference of 160
// bits and asserted by tests/frame/lanes_elementary_accuracy_unit_test.cpp:
//                 exp     log     log10   sin     cos     pow
//   double        0.77    0.64    0.62    0.81    0.79    0.75
//   float         0.78    0.64    0.61    0.61    0.61    0.50
// (exp: 0.66 and 0.69 where the result is a normal number.)
// Ranges are whole: denormals, overflow, zeros with their signs, infinities, NaN and angles of any size are treated as by the
// functions of C (Annex F), but for exception flags, and the sign and payload of a NaN. In another rounding mode than to nearest fewer
// digits hold: eight of doubles, two of floats.
#pragma once

#include "frame/elementary/exponential.h"  // IWYU pragma: export
#include "frame/elementary/logarithm.h"    // IWYU pragma: export
#include "frame/elementary/power.h"        // IWYU pragma: export
#include "frame/elementary/sine.h"         // IWYU pragma: export
