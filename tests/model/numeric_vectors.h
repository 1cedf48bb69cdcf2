// Curves, reciprocal roots, ranks, entropy and blends, one element after the other.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "model/convert.h"

namespace model {

// ---- Curves whose last bits the definition leaves open: in more digits than double, where the machine has them ----

inline double expNegSqr(double square) { return static_cast<double>(std::exp(-static_cast<long double>(square))); }
inline double sinC(double x) {
  return x == 0 ? 1.0 : static_cast<double>(std::sin(static_cast<long double>(x)) / static_cast<long double>(x));
}

inline float unitCurve(float x) {
  if (x < 0) return 0;
  if (x < 1) return x * x;
  if (x <= 2) {
    const float rest = 2 - x;
    return 2 - rest * rest;
  }
  return 2;
}
inline int16_t unitCurve(int16_t x, int32_t q, int32_t sf) {
  if (q < 0 || q > 14) return 0;
  const int64_t one = int64_t{1} << q, two = 2 * one;
  int64_t t = 0;
  if (x >= two) {
    t = two << q;
  } else if (x >= one) {
    t = (two << q) - (two - x) * (two - x);
  } else if (x >= 1) {
    t = int64_t{x} * x;
  }
  const int64_t s = int64_t{sf} + 2 * q;
  if (s >= 1) return static_cast<int16_t>(std::min<int64_t>(t >> (s % 32), 32767));
  const auto low = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(t) << (-s % 32)));  // high bits are lost
  return static_cast<int16_t>(static_cast<uint16_t>(std::min(low, 32767)));
}

// ---- Reciprocal roots ----

inline float newtonRoot(float x) {
  const float r = 1.0F / std::sqrt(x);
  return (3.0F - x * r * r) * (r * 0.5F);
}
inline float reciprocalRoot(float x, float floor) { return floor < x ? newtonRoot(x) : floor; }
inline float reciprocalRoot(int32_t x, int32_t floor) {
  const auto number = static_cast<float>(x), least = static_cast<float>(floor);
  return number < least ? least : newtonRoot(number);
}
inline int16_t truncatedRoot16(float y, int32_t sf) {
  return static_cast<int16_t>(std::max(std::min(y * scaleMultiplier(sf), 32767.0F), -32768.0F));
}
inline int32_t truncatedRoot32(float y, int32_t sf) {
  const float limited = std::max(std::min(y * scaleMultiplier(sf), 2147483648.0F), -2147483648.0F);
  return limited < 2147483648.0F ? static_cast<int32_t>(limited) : INT32_MIN;
}

// ---- Rank ----

template <class T>
T nthMax(std::vector<T> a, int32_t rank) {
  auto low = std::ptrdiff_t{0}, high = static_cast<std::ptrdiff_t>(a.size()) - 1;
  const auto at = [&](std::ptrdiff_t i) -> T& { return a[static_cast<std::size_t>(i)]; };
  while (true) {
    const T pivot = at(low);
    std::ptrdiff_t i = low + 1, j = high;
    while (true) {
      while (i <= j && at(i) >= pivot) ++i;
      while (at(j) < pivot) --j;
      if (i >= j) break;
      std::swap(at(i), at(j));
      ++i, --j;
    }
    std::swap(at(low), at(j));
    std::ptrdiff_t run = j;
    while (run > low && at(run - 1) == pivot) --run;
    if (rank > j) {
      low = j + 1;
    } else if (rank >= run) {
      return pivot;
    } else {
      high = run - 1;
    }
  }
}

// ---- Entropy: the terms as the library's logarithm gives them are open in their last bit ----

// The sum in double, and of the magnitudes of its terms; false if an element is negative.
template <class T>
bool entropySum(const std::vector<T>& source, float factor, double& sum, double& magnitudes) {
  sum = magnitudes = 0;
  for (const T element : source) {
    const auto x = static_cast<double>(static_cast<float>(element) * factor);
    if (x < 0) return false;
    if (x == 0) continue;
    sum += x * std::log(x);
    magnitudes += std::fabs(x * std::log(x));
  }
  return true;
}
inline float entropyFactor(int32_t s) {
  const int shift = static_cast<int>((s > 0 ? int64_t{s} : -int64_t{s}) % 32);
  return s > 0 ? std::ldexp(1.0F, -shift) : std::ldexp(1.0F, shift);
}

// ---- Blends ----

template <class Real>
Real blend(Real first, Real second, Real w1, Real w2, bool half) {
  const Real all = w1 + w2, r = 1 / all, a = half ? r : w1 * r, b = w2 * r;
  return first * a + second * b;
}
template <class Real>
Real blendMarker(Real first, Real second, Real w1, Real w2) {
  const Real sum = first * w1 + second * w2;
  if (sum > 0) return std::numeric_limits<Real>::infinity();
  if (sum < 0) return -std::numeric_limits<Real>::infinity();
  return std::numeric_limits<Real>::quiet_NaN();
}
inline int16_t shortBlend(float sum, bool rounded) {
  if (std::isnan(sum)) return 0;
  const float limited = std::max(std::min(sum, 32767.0F), -32768.0F);
  return static_cast<int16_t>(rounded ? std::nearbyint(limited) : limited);
}

}  // namespace model
