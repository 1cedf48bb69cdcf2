#include "frame/elementary/power.h"

#include <cstdint>
#include <limits>

namespace qorsr::elementary {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kAllWhole = 0x1p53;  // from here on every number is an even whole one

bool isWhole(double y) { return y >= kAllWhole || y <= -kAllWhole || static_cast<double>(static_cast<int64_t>(y)) == y; }
bool isOdd(double y) { return y < kAllWhole && y > -kAllWhole && static_cast<int64_t>(y) % 2 != 0; }  // of a whole number

double magnitude(double x) { return abs(Lanes<double, 1>(x)).part[0]; }

// x is not negative, y not 0, neither is a NaN.
double powOfMagnitude(double x, double y) {
  if (x == 1.0) return 1.0;
  const bool grows = (x > 1.0) == (y > 0.0);
  if (x == 0.0 || x == kInfinity || y == kInfinity || y == -kInfinity) return grows ? kInfinity : 0.0;
  Mantissa<double, 1> m;
  if (x < std::numeric_limits<double>::min()) {
    m = mantissaOf(Lanes<double, 1>(x * 0x1p54));
    m.k -= Lanes<double, 1>(54.0);
  } else {
    m = mantissaOf(Lanes<double, 1>(x));
  }
  return powOfNormal(m, Lanes<double, 1>(y)).part[0];
}

}  // namespace

double powOfAny(double x, double y) {
  if (y == 0.0 || x == 1.0) return 1.0;
  if (x != x || y != y) return kNaN;
  const bool negative = std::bit_cast<int64_t>(x) < 0;
  if (negative && x != 0.0 && x != -kInfinity && !isWhole(y)) return kNaN;
  const double power = powOfMagnitude(magnitude(x), y);
  return negative && isWhole(y) && isOdd(y) ? -power : power;
}

}  // namespace qorsr::elementary
