// Bhattacharyya distance of two diagonal Gaussians: with d = mx - my and s = vx + vy,
//
//   1/4 sum of d^2 / s  +  1/4 sum of log(s^2 / (vx vy))  -  1/4 n log 4
//
// A first pass looks for elements that have no logarithm, in groups of four and then one by one, in means and variances alike
// (required: a mean of zero counts). Then, by member:
//   double, Dist  d and s in double; the ratios of four elements are multiplied into one, (q0 q2)(q1 q3), what remains into the
//                 last product; d^2 / s in two lanes, even and odd elements, the last one to three in lane 0
//   double, SLog  the same with s in place of the ratio; the caller gives the sums of the logarithms of the variances
//   float         d, s and d^2 / s in float, eight lanes joined by halves, the tail in a partial load; u = (1 / vx) vy, and the
//                 ratio is 2 + u + 1 / u; the sum of logarithms is rounded to float
// log 4 and log 2 are 1.386294 and 0.693147 (required).
#pragma once

#include <cstdint>

#include "estimation/gaussian_operations.h"
#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/sum_of_logs.h"

namespace qorsr {

inline constexpr double kShortLog4 = 1.386294, kShortLog2 = 0.693147;

// ---- The first pass ----

// Whether some element of the four vectors is zero or negative. A NaN is neither.
inline bool anyWithoutLog(const GaussianPair<float>& p, int32_t length) {
  using L = Lanes<float, 8>;
  L least(1.0F);
  bool any = false;
  for (const float* v : {p.mean1, p.variance1, p.mean2, p.variance2}) {
    int32_t i = 0;
    for (; i <= length - 8; i += 8) least = min(L::load(v + i), least);  // a NaN leaves what was there
    for (; i < length; ++i) any |= v[i] <= 0.0F;
  }
  float lanes[8];
  least.store(lanes);
  for (const float lane : lanes) any |= lane <= 0.0F;
  return any;
}

// The status of elements i to i + count - 1: a negative one decides before a zero.
inline QorStatus groupStatus(const GaussianPair<float>& p, int32_t i, int32_t count) {
  bool negative = false, zero = false;
  for (const float* v : {p.mean1, p.variance1, p.mean2, p.variance2}) {
    for (int32_t k = 0; k < count; ++k) {
      negative |= v[i + k] < 0.0F;
      zero |= v[i + k] == 0.0F;
    }
  }
  return negative ? qorStatusLogNegative : zero ? qorStatusLogZero : qorStatusOk;
}

// The status of the first group of four, or single last element, that is not all positive.
inline QorStatus firstWithoutLog(const GaussianPair<float>& p, int32_t length) {
  if (!anyWithoutLog(p, length)) return qorStatusOk;
  const int32_t grouped = length - length % 4;
  for (int32_t i = 0; i < grouped; i += 4) {
    if (QorStatus bad = groupStatus(p, i, 4)) return bad;
  }
  for (int32_t i = grouped; i < length; ++i) {
    if (QorStatus bad = groupStatus(p, i, 1)) return bad;
  }
  return qorStatusOk;
}

// ---- Whose logarithms are summed ----

struct VarianceRatio {
  template <int N>
  Lanes<double, N> operator()(const Lanes<double, N>& vx, const Lanes<double, N>& vy, const Lanes<double, N>& s) const {
    return s * s / (vx * vy);
  }
  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& vx, const Lanes<float, N>& vy, const Lanes<float, N>&) const {
    using L = Lanes<float, N>;
    const L u = L(1.0F) / vx * vy;
    return L(2.0F) + u + L(1.0F) / u;
  }
};
struct VarianceSum {
  template <class L>
  L operator()(const L&, const L&, const L& s) const {
    return s;
  }
};

// ---- Sums of d^2 / s and of logarithms ----

template <class T>
struct BhatSums {
  T distance, logs;
};

// Both terms of N elements from element i on.
template <int N>
struct BhatTerms {
  Lanes<double, N> distance, logs;

  template <class Term>
  BhatTerms(const GaussianPair<float>& p, int32_t i, Term term) {
    using L = Lanes<double, N>;
    const L vx = loadAs<double, N>(p.variance1 + i), vy = loadAs<double, N>(p.variance2 + i), s = vx + vy;
    const L d = loadAs<double, N>(p.mean1 + i) - loadAs<double, N>(p.mean2 + i);
    distance = d * d / s;
    logs = term(vx, vy, s);
  }
};

template <class Term>
BhatSums<double> bhatSumsDouble(const GaussianPair<float>& p, int32_t length, Term term) {
  double products[SumOfLogs::kRun];
  int32_t count = 0, i = 0;
  SumOfLogs logs;
  Lanes<double, 2> lanes(0.0);
  for (; i <= length - 4; i += 4) {
    const BhatTerms<4> terms(p, i, term);
    lanes += lowerHalf(terms.distance);
    lanes += upperHalf(terms.distance);
    if (count == SumOfLogs::kRun) {
      logs.add(products, count);
      count = 0;
    }
    const Lanes<double, 2> half = lowerHalf(terms.logs) * upperHalf(terms.logs);
    products[count++] = (lowerHalf(half) * upperHalf(half)).part[0];
  }
  if (count == 0) products[count++] = 1.0;  // fewer than four elements
  double first = lowerHalf(lanes).part[0];
  for (; i < length; ++i) {
    const BhatTerms<1> terms(p, i, term);
    products[count - 1] *= terms.logs.part[0];
    first += terms.distance.part[0];
  }
  logs.add(products, count);
  return {first + upperHalf(lanes).part[0], logs.value()};
}

template <class Term>
BhatSums<float> bhatSumsFloat(const GaussianPair<float>& p, int32_t length, Term term) {
  using L = Lanes<float, 8>;
  float chunk[SumOfLogs::kRun];
  SumOfLogs logs;
  L distance(0.0F);
  const auto join = [&](const L& mx, const L& vx, const L& my, const L& vy) {
    const L d = mx - my, s = vx + vy;
    distance += d * d / s;
    return term(vx, vy, s);
  };
  int32_t i = 0, count = 0;
  for (; i <= length - 8; i += 8) {
    if (count == SumOfLogs::kRun) {
      logs.add(chunk, count);
      count = 0;
    }
    join(L::load(p.mean1 + i), L::load(p.variance1 + i), L::load(p.mean2 + i), L::load(p.variance2 + i)).store(chunk + count);
    count += 8;
  }
  logs.add(chunk, count);
  if (i < length) {
    const Tail<float, 8> tail(length - i);
    const L last =
        join(tail.load(p.mean1 + i), tail.load(p.variance1 + i, 1.0F), tail.load(p.mean2 + i), tail.load(p.variance2 + i, 1.0F));
    last.store(chunk);
    logs.add(chunk, tail.size());
  }
  return {joinHalves(distance), static_cast<float>(logs.value())};
}

// ---- Family bodies ----

// Checks and the first pass; `formula` computes the distance.
template <class T, class Formula>
QorStatus bhatDistance(const GaussianPair<float>& pair, int32_t length, T* result, Formula formula) {
  if (QorStatus bad = Checks().null(pair.mean1, pair.variance1, pair.mean2, pair.variance2, result).size(length)) return bad;
  if (QorStatus warning = firstWithoutLog(pair, length)) {
    *result = LogMarker<T>{warning}.value();
    return warning;
  }
  *result = static_cast<T>(formula());
  return qorStatusOk;
}

inline QorStatus bhatDist(const GaussianPair<float>& pair, int32_t length, double* result) {
  return bhatDistance(pair, length, result, [&] {
    const BhatSums<double> sums = bhatSumsDouble(pair, length, VarianceRatio());
    return (sums.logs - length * kShortLog4) * 0.5 * 0.5 + sums.distance * 0.25;
  });
}
inline QorStatus bhatDist(const GaussianPair<float>& pair, int32_t length, float* result) {
  return bhatDistance(pair, length, result, [&] {
    const BhatSums<float> sums = bhatSumsFloat(pair, length, VarianceRatio());
    return (static_cast<double>(sums.logs * 0.5F) - length * kShortLog4 * 0.5) * 0.5 + static_cast<double>(sums.distance * 0.25F);
  });
}

// A quarter of the logarithms of both variances, in float.
inline double quarterOf(float logs1, float logs2) { return static_cast<double>((logs1 + logs2) * 0.25F); }

inline QorStatus bhatDistSLog(const GaussianPair<float>& pair, int32_t length, double* result, float logs1, float logs2) {
  return bhatDistance(pair, length, result, [&] {
    const BhatSums<double> sums = bhatSumsDouble(pair, length, VarianceSum());
    return (sums.logs - length * kShortLog2) * 0.5 - quarterOf(logs1, logs2) + sums.distance * 0.25;
  });
}
inline QorStatus bhatDistSLog(const GaussianPair<float>& pair, int32_t length, float* result, float logs1, float logs2) {
  return bhatDistance(pair, length, result, [&] {
    const BhatSums<float> sums = bhatSumsFloat(pair, length, VarianceSum());
    return (static_cast<double>(sums.logs) - length * kShortLog2) * 0.5 - quarterOf(logs1, logs2) +
           static_cast<double>(sums.distance * 0.25F);
  });
}

}  // namespace qorsr
