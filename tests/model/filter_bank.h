// Plain models of filter banks: sections of bins and weights, and their sums as the definitions order them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace model {

// One triangle: weights of the bins from `first` on, of the rising side and of the falling one.
template <class Weight>
struct Filter {
  int64_t risingFirst, fallingFirst;
  std::vector<Weight> rising, falling;

  // All weights in the order of exchange.
  std::vector<Weight> all() const {
    std::vector<Weight> v = rising;
    v.insert(v.end(), falling.begin(), falling.end());
    return v;
  }
};

// The triangle of three centres with bins cut to 0 .. half, and weights risingOf(bin), fallingOf(bin).
template <class Weight, class Rising, class Falling>
Filter<Weight> makeFilter(const std::vector<int32_t>& c, std::size_t k, int64_t half, Rising risingOf, Falling fallingOf) {
  Filter<Weight> f;
  f.risingFirst = std::max<int64_t>(c[k - 1], 0);
  f.fallingFirst = std::max<int64_t>(int64_t{c[k]} + 1, 0);
  for (int64_t j = f.risingFirst; j <= std::min<int64_t>(c[k], half); ++j) f.rising.push_back(risingOf(j));
  for (int64_t j = f.fallingFirst; j <= std::min<int64_t>(c[k + 1], half); ++j) f.falling.push_back(fallingOf(j));
  return f;
}

inline int64_t powerOfTwoFor(int64_t length) {
  int64_t power = 2;
  while (power < length) power *= 2;
  return power;
}
inline int32_t orderFor(int64_t length) {
  int32_t order = 1;
  while ((int64_t{1} << order) < length) ++order;
  return order;
}

// The float sum: eight lanes, blocks of eight and then lane 0; a rising side's first bin into lane 0 ahead of its blocks, but for
// the first filter.
inline float evaluate(const Filter<float>& f, bool firstFilter, const std::vector<float>& x) {
  float lane[8] = {};
  const auto add = [&](const std::vector<float>& w, std::size_t i, std::size_t bin) {
    for (; w.size() - i >= 8; i += 8, bin += 8) {
      for (std::size_t j = 0; j < 8; ++j) lane[j] += w[i + j] * x[bin + j];
    }
    for (; i < w.size(); ++i, ++bin) lane[0] += w[i] * x[bin];
  };
  if (!firstFilter && !f.rising.empty()) {
    lane[0] += f.rising[0] * x[static_cast<std::size_t>(f.risingFirst)];
    add(f.rising, 1, static_cast<std::size_t>(f.risingFirst) + 1);
  } else {
    add(f.rising, 0, static_cast<std::size_t>(f.risingFirst));
  }
  add(f.falling, 0, static_cast<std::size_t>(f.fallingFirst));
  return ((lane[0] + lane[4]) + (lane[2] + lane[6])) + ((lane[1] + lane[5]) + (lane[3] + lane[7]));
}

// The sum of term(weight, sample) over both sides, in 64 bits that wrap.
template <class T, class Term>
int64_t integerSum(const Filter<int32_t>& f, const std::vector<T>& x, Term term) {
  uint64_t sum = 0;
  for (std::size_t i = 0; i < f.rising.size(); ++i) {
    sum += static_cast<uint64_t>(term(f.rising[i], x[static_cast<std::size_t>(f.risingFirst) + i]));
  }
  for (std::size_t i = 0; i < f.falling.size(); ++i) {
    sum += static_cast<uint64_t>(term(f.falling[i], x[static_cast<std::size_t>(f.fallingFirst) + i]));
  }
  return static_cast<int64_t>(sum);
}

// floor(value * 2^-shift), or value * 2^-shift modulo 2^64 to the left; all sign bits, or 0, from 64 on.
inline int64_t shifted(int64_t value, int64_t shift) {
  if (shift >= 0) return value >> std::min<int64_t>(shift, 63);
  return shift <= -64 ? 0 : static_cast<int64_t>(static_cast<uint64_t>(value) << -shift);
}

// A 16-bit bank's result before the limits of its destination.
inline int64_t evaluate16(const Filter<int32_t>& f, const std::vector<int16_t>& x, int32_t sf) {
  const int64_t sum = integerSum(f, x, [](int64_t w, int64_t s) { return w * s; });
  return shifted(sum, int64_t{sf} + 14);
}

// The same of magnitudes: the low 32 bits of each product.
inline int64_t evaluateMagnitudes(const Filter<int32_t>& f, const std::vector<int32_t>& x, int32_t sf) {
  const int64_t sum = integerSum(f, x, [](uint32_t w, uint32_t s) { return static_cast<int64_t>(static_cast<int32_t>(w * s)); });
  return shifted(sum, int64_t{sf} + 20);
}

template <class Int>
Int limited(int64_t value) {
  return static_cast<Int>(std::clamp<int64_t>(value, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

// A fixed-point bank's result.
inline int32_t evaluateFixed(const Filter<int32_t>& f, const std::vector<int32_t>& x, int32_t sf) {
  int64_t value = integerSum(f, x, [](int64_t w, int64_t s) { return (w * s) >> 8; });
  if (sf >= 0) {
    value >>= sf;
  } else if (value >= int64_t{1} << (63 + sf)) {
    value = INT64_MAX;
  } else {
    value = static_cast<int64_t>(static_cast<uint64_t>(value) << -sf);
  }
  const int64_t rounded = (value >> 22) + ((value & 0x200000) != 0 ? 1 : 0);
  return rounded > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(rounded)));
}

// The weight that a 16-bit bank stores for a float.
inline int32_t storedWeight(float value) {
  const double scaled = static_cast<double>(value * 16384.0F);
  if (!(scaled < 2147483648.0) || scaled < -2147483648.0) return INT32_MIN;  // a NaN, too
  return static_cast<int32_t>(scaled);
}

}  // namespace model
