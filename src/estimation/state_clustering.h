// Statistics of model states and the likelihood of their pooled data, for clustering with a decision tree.
//
//   Accumulate  sum = mean * occ;   squares = (1/v + mean^2) * occ for an inverse variance v, (mean^2 + v) * occ for a direct one
//   Compute     (N/2) * (D * ((log N - 1 - log 2pi) + log N) - sum over i of log(squares[i] * N - sum[i]^2))
//
// required: with an inverse variance, a length of at least 8 and all four vectors on 16-byte boundaries, the squares come from
// (occ * mean) * mean plus the variance by another way:
//   float   r = 1/v and one Newton step, (2 - v * r) * r * occ, by fours and then a pair; a single last element: occ / v
//   double  one division for two elements, q = occ / (v0 * v2): v2 * q and v0 * q (likewise v1 and v3), then a pair; a last
//           one: occ / v
//
// The logarithms of the likelihood are summed by SumOfLogs.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/lanes/units.h"
#include "frame/rows.h"
#include "frame/sum_of_logs.h"

namespace qorsr {

inline constexpr double kClusterLog2Pi = std::bit_cast<double>(uint64_t{0x3FFD67F1C864BEB5});  // required
inline constexpr double kNoLikelihood = -1.0e10;

template <class T>
struct State {
  const T *mean, *variance;
  T *sum, *squares;
  T occupancy;
};

template <class T, int N>
struct Statistics {
  Lanes<T, N> sum, squares;

  [[gnu::always_inline]] void store(const State<T>& s, int32_t i) const {
    sum.store(s.sum + i);
    squares.store(s.squares + i);
  }
};

// ---- By the formula ----

struct InverseVariance {
  template <class L>
  L operator()(const L& v, const L& square, const L& occupancy) const {
    return (L(1) / v + square) * occupancy;
  }
};
struct DirectVariance {
  template <class L>
  L operator()(const L& v, const L& square, const L& occupancy) const {
    return (square + v) * occupancy;
  }
};

template <class Variance, class T>
[[gnu::always_inline]] inline void accumulatePlain(const State<T> s, int32_t length) {
  coverLastFirst<T, kNativeLanes<T>>(
      length,
      [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<T, n>;
        const L mean = L::load(s.mean + i), variance = L::load(s.variance + i), occupancy(s.occupancy);
        return Statistics<T, n>{mean * occupancy, Variance()(variance, mean * mean, occupancy)};
      },
      [&](int32_t i, const auto& statistics) __attribute__((always_inline)) { statistics.store(s, i); });
}

// ---- By the fast way of inverse variances ----

// `term` is the share of the variance.
template <class L, class T>
[[gnu::always_inline]] inline void storeFast(const State<T>& s, int32_t i, const L& term) {
  const L mean = L::load(s.mean + i), sum = L(s.occupancy) * mean;
  sum.store(s.sum + i);
  (sum * mean + term).store(s.squares + i);
}

template <int N>
[[gnu::always_inline]] inline Statistics<float, N> refinedStatistics(const State<float>& s, int32_t i) {
  using L = Lanes<float, N>;
  const L mean = L::load(s.mean + i), v = L::load(s.variance + i), occupancy(s.occupancy), r = L(1.0F) / v;
  // Of zero the reciprocal stays infinite: the product counts as 0 there, where it is not a number.
  const L product = L::each(v, v * r, [](auto x, auto p) { return decltype(p)(x != decltype(x){} ? p : decltype(p){}); });
  const L sum = occupancy * mean;
  return {sum, sum * mean + (L(2.0F) - product) * r * occupancy};
}

[[gnu::always_inline]] inline void accumulateFast(const State<float> s, int32_t length) {
  coverLastFirst<float, kNativeLanes<float>>(
      length - length % 2, [&](int32_t i, auto n) __attribute__((always_inline)) { return refinedStatistics<n>(s, i); },
      [&](int32_t i, const auto& statistics) __attribute__((always_inline)) { statistics.store(s, i); });
  if (length % 2 != 0) {
    const int32_t i = length - 1;
    storeFast(s, i, Lanes<float, 1>(s.occupancy / s.variance[i]));
  }
}

[[gnu::always_inline]] inline void accumulateFast(const State<double>& s, int32_t length) {
  int32_t i = 0;
  constexpr int kWide = kNativeLanes < double >> 4 ? kNativeLanes<double> : 4;
  using Wide = Lanes<double, kWide>;
  for (; i <= length - 2 * kWide; i += 2 * kWide) {  // pairs of elements 0 and 1, 4 and 5 ..., with their partners
    const Wide a = Wide::load(s.variance + i), b = Wide::load(s.variance + i + kWide);
    const Wide ours = shuffleUnits<EveryOtherUnit<0>>(a, b), partners = shuffleUnits<EveryOtherUnit<1>>(a, b);
    const Wide q = Wide(s.occupancy) / (ours * partners), term = partners * q, partnersTerm = ours * q;
    storeFast(s, i, shuffleUnits<UnitsInTurn<0>>(term, partnersTerm));
    storeFast(s, i + kWide, shuffleUnits<UnitsInTurn<1>>(term, partnersTerm));
  }
  for (; i <= length - 4; i += 4) {
    using Pair = Lanes<double, 2>;
    const Pair v01 = Pair::load(s.variance + i), v23 = Pair::load(s.variance + i + 2);
    const Pair q = Pair(s.occupancy) / (v01 * v23);
    storeFast(s, i, v23 * q);
    storeFast(s, i + 2, v01 * q);
  }
  using One = Lanes<double, 1>;
  if (i <= length - 2) {
    const double v0 = s.variance[i], v1 = s.variance[i + 1], q = s.occupancy / (v0 * v1);
    storeFast(s, i, One(v1 * q));
    storeFast(s, i + 1, One(v0 * q));
    i += 2;
  }
  if (i < length) storeFast(s, i, One(s.occupancy / s.variance[i]));
}

// ---- Family bodies ----

template <class T>
[[gnu::always_inline]] inline QorStatus accumulateChecks(const State<T>& s, int32_t length) {
  return Checks().null(s.mean, s.variance, s.sum, s.squares).size(length);
}

template <class T>
[[gnu::always_inline]] inline QorStatus accumulateInverse(const State<T>& s, int32_t length) {
  if (QorStatus bad = accumulateChecks(s, length)) return bad;
  if (length >= 8 && isAligned16(s.mean) && isAligned16(s.variance) && isAligned16(s.sum) && isAligned16(s.squares)) {
    accumulateFast(s, length);
  } else {
    accumulatePlain<InverseVariance>(s, length);
  }
  return qorStatusOk;
}

template <class T>
[[gnu::always_inline]] inline QorStatus accumulateDirect(const State<T>& s, int32_t length) {
  if (QorStatus bad = accumulateChecks(s, length)) return bad;
  accumulatePlain<DirectVariance>(s, length);
  return qorStatusOk;
}

// The sum of the logarithms of d = squares * N - sum^2, and the status of the first d that has none.
template <class T>
QorStatus sumOfSpreads(const T* sum, const T* squares, int32_t length, double occupancy, double& result) {
  double d[SumOfLogs::kRun];
  SumOfLogs logs;
  for (int64_t first = 0; first < length; first += SumOfLogs::kRun) {
    const auto count = static_cast<int32_t>(std::min<int64_t>(length - first, SumOfLogs::kRun));
    coverColumns<double>(
        count, [&](int32_t i, auto n) __attribute__((always_inline)) {
          using L = Lanes<double, n>;
          const L x = loadAs<double, n>(sum + first + i);
          (loadAs<double, n>(squares + first + i) * L(occupancy) - x * x).store(d + i);
        });
    if (QorStatus warning = addPastNan(logs, d, count)) return warning;
  }
  result = logs.value();
  return qorStatusOk;
}

template <class T>
QorStatus clusterLikelihood(const T* sum, const T* squares, int32_t length, double* result, double occupancy) {
  if (QorStatus bad = Checks().null(sum, squares, result).size(length).require(!(occupancy < 0.0), qorStatusBadStatistic))
    return bad;
  *result = kNoLikelihood;
  if (occupancy == 0.0) return qorStatusZeroOccupancy;
  const double logOccupancy = log(occupancy), constant = length * ((logOccupancy - 1.0 - kClusterLog2Pi) + logOccupancy);
  double logs;
  if (QorStatus warning = sumOfSpreads(sum, squares, length, occupancy, logs)) {
    *result = warning == qorStatusLogZero ? -std::numeric_limits<double>::infinity() : kLogOfNegative<double>;
    return warning;
  }
  *result = occupancy * 0.5 * (constant - logs);
  return qorStatusOk;
}

}  // namespace qorsr
