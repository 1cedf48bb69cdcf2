// Plain models of the products of a matrix and a vector.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "model/convert.h"
#include "model/table.h"

namespace model {

// Groups of 16 in 16 lanes, joined to 8 and to 4; groups of 4; the rest in lane 0; (l0 + l2) + (l1 + l3).
inline float dot(const std::vector<float>& x, const std::vector<float>& v) {
  float lane[16] = {};
  const std::size_t n = x.size();
  std::size_t c = 0;
  for (; n - c >= 16; c += 16) {
    for (std::size_t k = 0; k < 16; ++k) {
      const float product = x[c + k] * v[c + k];
      lane[k] = lane[k] + product;
    }
  }
  for (std::size_t k = 0; k < 8; ++k) lane[k] = lane[k] + lane[k + 8];
  for (std::size_t k = 0; k < 4; ++k) lane[k] = lane[k] + lane[k + 4];
  for (; n - c >= 4; c += 4) {
    for (std::size_t k = 0; k < 4; ++k) {
      const float product = x[c + k] * v[c + k];
      lane[k] = lane[k] + product;
    }
  }
  for (; c < n; ++c) {
    const float product = x[c] * v[c];
    lane[0] = lane[0] + product;
  }
  return (lane[0] + lane[2]) + (lane[1] + lane[3]);
}

// Even and odd elements in two lanes.
inline double dot(const std::vector<int32_t>& x, const std::vector<int32_t>& v) {
  double lane[2] = {};
  for (std::size_t c = 0; c < x.size(); ++c) lane[c % 2] = lane[c % 2] + static_cast<double>(x[c]) * static_cast<double>(v[c]);
  return lane[0] + lane[1];
}

// Exact: the sum of 64 bits cannot overflow.
inline int64_t dot(const std::vector<int16_t>& x, const std::vector<int16_t>& v) {
  int64_t sum = 0;
  for (std::size_t c = 0; c < x.size(); ++c) sum += static_cast<int64_t>(x[c]) * v[c];
  return sum;
}

// Row after row, in Acc.
template <class Acc, class T>
Acc columnDot(const std::vector<T>& v, const Table<T>& x, std::size_t c) {
  Acc sum = 0;
  for (std::size_t r = 0; r < x.size(); ++r) {
    const Acc product = static_cast<Acc>(v[r]) * static_cast<Acc>(x[r][c]);
    sum = sum + product;
  }
  return sum;
}

// An exact sum times 2^-sf, floored, limited to To.
template <class To>
To shiftedSum(int64_t sum, int32_t sf) {
  constexpr double kLow = std::numeric_limits<To>::min(), kHigh = std::numeric_limits<To>::max();
  // Below 2^53 a double holds the sum; what is larger is far beyond the limits unless it is shifted right a long way, where the
  // bits that a double drops do not matter: the floor is taken in integers first.
  int64_t floored = sum;
  int64_t left = 0;
  if (sf >= 0) {
    for (int32_t k = 0; k < sf && floored != 0 && floored != -1; ++k)
      floored = (floored - (floored % 2 != 0 && floored < 0 ? 1 : 0)) / 2;
  } else {
    left = -static_cast<int64_t>(sf);
  }
  const double value = std::ldexp(static_cast<double>(floored), static_cast<int>(left > 2000 ? 2000 : left));
  return value < kLow ? std::numeric_limits<To>::min() : value > kHigh ? std::numeric_limits<To>::max() : static_cast<To>(value);
}

// A sum in double times 2^-sf, limited to To, to nearest even; a NaN gives 0. The power is infinite from -1024 on, zero from 1075.
template <class To>
To roundedSum(double sum, int32_t sf) {
  const double power = sf <= -1024 ? HUGE_VAL : sf >= 1075 ? 0.0 : std::ldexp(1.0, -sf);
  const double value = sum * power;
  if (std::isnan(value)) return 0;
  constexpr double kLow = std::numeric_limits<To>::min(), kHigh = std::numeric_limits<To>::max();
  return static_cast<To>(nearestEven(std::fmin(std::fmax(value, kLow), kHigh)));
}

}  // namespace model
