// The two comparisons that codebooks are trained and searched with, of numbers widened to double.
#pragma once

namespace qorsr {

// a < b by a relative margin of a millionth: b > a * 1.000001.
inline bool isBelow(double a, double b) { return b > a * 1.000001; }

// |max(a, b)| * 0.0001 >= |a - b|.
inline bool isClose(double a, double b) {
  const double larger = a > b ? a : b, difference = a - b;
  return (larger < 0 ? -larger : larger) * static_cast<double>(0.0001F) >= (difference < 0 ? -difference : difference);
}

// A number that is further above another than this stays so whatever numbers between them are passed first: with the rounding of
// the products above, one that isBelow it and one that is not are told apart by a plain comparison.
inline constexpr float kClearMargin = 1.0000012F;

}  // namespace qorsr
