// Plain models of the Gaussian scorers: one element after the other, in the order of the definition.
#pragma once

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace model {

// A feature vector, a mean and variances; no variances: the identity.
template <class T>
struct Frame {
  std::vector<T> x, mean, variance;

  std::size_t size() const { return x.size(); }
  bool unit() const { return variance.empty(); }
};

// ---- Real sums: eight lanes (doubles: four), joined by halves ----

template <class Acc>
Acc joinLanes(std::vector<Acc> lanes) {
  while (lanes.size() > 1) {
    const std::size_t half = lanes.size() / 2;
    for (std::size_t j = 0; j < half; ++j) lanes[j] = lanes[j] + lanes[j + half];
    lanes.resize(half);
  }
  return lanes[0];
}

// The sum of term(0) to term(n - 1). The last group comes first: of a whole number of groups a whole one; else what is left behind
// them, at the end of the lanes (at their beginning where there is no whole group).
template <class Acc>
Acc laneSum(std::size_t n, const std::function<Acc(std::size_t)>& term) {
  constexpr std::size_t kLanes = 32 / sizeof(Acc);
  std::vector<Acc> lanes(kLanes, Acc(0));
  const std::size_t first = n < kLanes ? 0 : n - kLanes, grouped = (n - 1) / kLanes * kLanes;
  for (std::size_t c = grouped; c < n; ++c) lanes[c - first] = term(c);
  for (std::size_t c = 0; c < grouped; ++c) lanes[c % kLanes] = lanes[c % kLanes] + term(c);
  return joinLanes(lanes);
}

// `weigh(square, c)`: the square of element c multiplied by, or divided by, its variance.
template <class Acc, class T, class Weigh>
Acc realSum(const Frame<T>& f, const Weigh& weigh) {
  return laneSum<Acc>(f.size(), [&](std::size_t c) {
    const Acc d = static_cast<Acc>(f.x[c]) - static_cast<Acc>(f.mean[c]), square = d * d;
    return weigh(square, c);
  });
}
template <class Acc, class T>
Acc realSum(const Frame<T>& f) {
  return realSum<Acc>(f, [&](Acc square, std::size_t c) { return f.unit() ? square : square * static_cast<Acc>(f.variance[c]); });
}

inline float foldedScore(const Frame<float>& f, float val, int32_t) { return (val + val - realSum<float>(f)) * 0.5F; }
template <class Acc, class T>
Acc plainScore(const Frame<T>& f, Acc val, int32_t) {
  return val - realSum<Acc>(f) * Acc(0.5);
}
template <class Acc, class T>
Acc realDistance(const Frame<T>& f, Acc, int32_t) {
  return realSum<Acc>(f);
}

// The same in long double, where rounding does not show, and the sum of the magnitudes of its terms.
struct Exact {
  long double sum, magnitude;
};
template <class T>
Exact exactSum(const Frame<T>& f) {
  Exact e{0, 0};
  for (std::size_t c = 0; c < f.size(); ++c) {
    const long double d = static_cast<long double>(f.x[c]) - static_cast<long double>(f.mean[c]);
    const long double term = d * d * (f.unit() ? 1.0L : static_cast<long double>(f.variance[c]));
    e.sum += term;
    e.magnitude += std::fabs(term);
  }
  return e;
}

// ---- 16 bits, float sums ----

inline int32_t saturated(int32_t d) { return d > 32767 ? 32767 : d < -32768 ? -32768 : d; }

// Saturation in groups of eight, and not behind them.
inline float shortTerm(const Frame<int16_t>& f, std::size_t c) {
  const int32_t d = f.x[c] - f.mean[c];
  const auto real = static_cast<float>(c < f.size() / 8 * 8 ? saturated(d) : d);
  const float square = real * real;
  return f.unit() ? square : square * static_cast<float>(f.variance[c]);
}
// In lanes: blocks of frames, and many Gaussians.
inline float shortSum(const Frame<int16_t>& f) {
  return laneSum<float>(f.size(), [&](std::size_t c) { return shortTerm(f, c); });
}
// Group by group, the rest one at a time: one frame against one Gaussian, and mixtures.
inline float groupedShortSum(const Frame<int16_t>& f) {
  float total = 0;
  std::size_t c = 0;
  for (; c + 8 <= f.size(); c += 8) {
    float p[8];
    for (std::size_t j = 0; j < 8; ++j) p[j] = shortTerm(f, c + j);
    total = total + (((p[0] + p[4]) + (p[2] + p[6])) + ((p[1] + p[5]) + (p[3] + p[7])));
  }
  for (; c < f.size(); ++c) total = total + shortTerm(f, c);
  return total;
}

// The sum times the exact power of two 2^-(sf + 1), rounded once.
inline float scaledExactly(float sum, int32_t sf) {
  const int64_t e = int64_t{sf} + 1, limited = e < -900 ? -900 : e > 900 ? 900 : e;
  return static_cast<float>(std::ldexp(static_cast<double>(sum), static_cast<int>(-limited)));
}
// The float power 2^-n: infinite from n = -128 down, zero from 150 up.
inline float floatPower(int64_t n) {
  if (n <= -128) return INFINITY;  // in every rounding mode
  return static_cast<float>(std::ldexp(1.0, static_cast<int>(n >= 150 ? -1000 : -n)));
}
inline float limited(float r) { return r < -2147483648.0F ? -2147483648.0F : r > 2147483648.0F ? 2147483648.0F : r; }
// Toward zero; what does not fit is the most negative value.
inline int32_t truncated(float r) { return r >= -2147483648.0F && r < 2147483648.0F ? static_cast<int32_t>(r) : INT32_MIN; }
inline int32_t limitedAndRounded(float r) {
  const double whole = std::nearbyint(static_cast<double>(limited(r)));
  return whole < 2147483648.0 ? static_cast<int32_t>(whole) : INT32_MIN;
}

inline int32_t roundedScore(const Frame<int16_t>& f, int32_t val, int32_t sf) {
  return limitedAndRounded(static_cast<float>(val) - scaledExactly(groupedShortSum(f), sf));
}
inline int32_t truncatedScore(const Frame<int16_t>& f, int32_t val, int32_t sf) {
  return truncated(static_cast<float>(val) - scaledExactly(shortSum(f), sf));
}
inline float limitedScore(const Frame<int16_t>& f, int32_t val, int32_t sf) {
  return limited(static_cast<float>(val) - shortSum(f) * floatPower(int64_t{sf} + 1));
}
inline float scaledScore(const Frame<int16_t>& f, float val, int32_t sf) { return val - shortSum(f) * floatPower(int64_t{sf} + 1); }
inline float groupScaledScore(const Frame<int16_t>& f, float val, int32_t sf) {
  return val - groupedShortSum(f) * floatPower(int64_t{sf} + 1);
}
inline float shortDistance(const Frame<int16_t>& f, float, int32_t) { return groupedShortSum(f); }

// ---- 16 bits, integer sums ----

// An arithmetic shift by any count: left (positive) losing high bits, or right; in steps of one.
inline int32_t shifted(int32_t value, int64_t left) {
  for (int64_t i = 0; i < left && i < 32; ++i) value = static_cast<int32_t>(static_cast<uint32_t>(value) * 2u);
  for (int64_t i = 0; i < -left && i < 32; ++i) value = value < 0 ? -((-static_cast<int64_t>(value) + 1) / 2) : value / 2;
  return value;
}

// A lane's two sums, negative, shifted and added.
inline int32_t shiftedLane(uint32_t upper, uint32_t lower, int64_t sf) {
  const auto h = shifted(static_cast<int32_t>(0u - upper), 15 - sf);
  const auto l = shifted(static_cast<int32_t>(0u - lower), sf > 15 ? -15 : -sf);
  return static_cast<int32_t>(static_cast<uint32_t>(h) + static_cast<uint32_t>(l));
}

// The sum of the shifted lanes.
inline int32_t integerLanes(const Frame<int16_t>& f, int64_t sf) {
  uint32_t upper[4] = {}, lower[4] = {}, total = 0;
  const std::size_t n = f.size(), whole = n / 8 * 8;
  const auto addTo = [&](std::size_t c, int64_t d, uint32_t& u, uint32_t& l) {
    const auto square = static_cast<uint64_t>(d * d);
    const int64_t v = f.unit() ? 1 : f.variance[c];
    u += static_cast<uint32_t>(static_cast<int64_t>(square >> 16) * v);
    l += static_cast<uint32_t>(static_cast<int64_t>((square & 0xFFFF) >> 1) * v);
  };
  for (std::size_t c = 0; c < whole; ++c) addTo(c, saturated(f.x[c] - f.mean[c]), upper[c % 8 / 2], lower[c % 8 / 2]);
  for (int j = 0; j < 4; ++j) total += static_cast<uint32_t>(shiftedLane(upper[j], lower[j], sf));
  for (std::size_t c = whole; c < n; c += 2) {
    uint32_t u = 0, l = 0;
    const bool alone = c + 1 == n;
    const int32_t d = f.x[c] - f.mean[c];
    addTo(c, alone && f.unit() ? d : saturated(d), u, l);
    if (!alone) addTo(c + 1, saturated(f.x[c + 1] - f.mean[c + 1]), u, l);
    total += static_cast<uint32_t>(shiftedLane(u, l, sf));
  }
  return static_cast<int32_t>(total);
}

inline int32_t lowScore(const Frame<int16_t>& f, int32_t val, int32_t sf) {
  if (sf < 0 && !f.unit()) return truncated(static_cast<float>(val) - scaledExactly(groupedShortSum(f), sf));
  return static_cast<int32_t>(static_cast<uint32_t>(val) + static_cast<uint32_t>(integerLanes(f, sf)));
}
inline float lowScaledScore(const Frame<int16_t>& f, float val, int32_t sf) {
  if (sf < 0) return val - scaledExactly(groupedShortSum(f), sf);
  return val + static_cast<float>(integerLanes(f, sf));
}

// Identity variance: pairs of squares that wrap, in four float lanes.
inline float unitLowScaledScore(const Frame<int16_t>& f, float val, int32_t sf) {
  float lane[4] = {};
  const std::size_t n = f.size(), even = n / 2 * 2;
  const auto square = [](int64_t d) { return static_cast<uint32_t>(d * d); };
  for (std::size_t c = 0; c < even; c += 2) {
    const uint32_t pair = square(saturated(f.x[c] - f.mean[c])) + square(saturated(f.x[c + 1] - f.mean[c + 1]));
    float& l = lane[c % 8 / 2];
    l = l + static_cast<float>(static_cast<int32_t>(pair));
  }
  float total = (lane[0] + lane[2]) + (lane[1] + lane[3]);
  if (even < n) total = total + static_cast<float>(static_cast<int32_t>(square(f.x[even] - f.mean[even])));
  return val - scaledExactly(total, sf);
}

// Runs `compute` with every operation rounding toward zero.
inline void towardZero(const std::function<void()>& compute) {
  const int mode = std::fegetround();
  std::fesetround(FE_TOWARDZERO);
  compute();
  std::fesetround(mode);
}

}  // namespace model
