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

#include <bit>
#include <cstdint>
#include <limits>

#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/rows.h"
#include "frame/sum_of_logs.h"

namespace qorsr {

inline constexpr double kClusterLogTwoPi = std::bit_cast<double>(uint64_t{0x3FFD67F1C864BEB5});  // required
inline constexpr double kNoLikelihood = -1.0e10;

template <class L>
struct Statistics {
  L sum, squares;
};

// What `at` computes, a register at a time. Inlined, so that what it holds stays in registers: 1.26 at v3 (re_estimation,
// DcsClustLAccumulate 32f, 39 elements).
template <class T, class At>
[[gnu::always_inline]] inline void storeStatistics(T* sum, T* squares, int32_t length, const At& at) {
  coverLastFirst<T>(length, at, [=](int32_t i, const auto& statistics) {
    statistics.sum.store(sum + i);
    statistics.squares.store(squares + i);
  });
}

// ---- By the fast way of inverse variances ----

// `term` is the share of the variance.
template <class T, class L>
inline Statistics<L> fastStatistics(const T* mean, T occupancy, const L& term) {
  const L m = L::load(mean), sum = L(occupancy) * m;
  return {sum, sum * m + term};
}

// Inlined, as is the form for doubles: calls of 13 elements take 1.2 times as long without (re_estimation).
[[gnu::always_inline]] inline void accumulateFast(const float* mean, const float* variance, float* sum, float* squares,
                                                  int32_t length, float occupancy) {
  storeStatistics(sum, squares, length - length % 2, [=](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L v = L::load(variance + i), r = L(1.0F) / v;
    // Of zero the reciprocal stays infinite: the product counts as 0 there, where it is not a number.
    const L product = L::each(v, v * r, [](auto x, auto p) { return decltype(p)(x != decltype(x){} ? p : decltype(p){}); });
    return fastStatistics(mean + i, occupancy, (L(2.0F) - product) * r * L(occupancy));
  });
  if (length % 2 != 0) {
    const int32_t i = length - 1;
    const auto last = fastStatistics(mean + i, occupancy, Lanes<float, 1>(occupancy / variance[i]));
    last.sum.store(sum + i);
    last.squares.store(squares + i);
  }
}

template <int First>
constexpr int everyOtherPair(int i, int) {
  return i / 2 * 4 + 2 * First + i % 2;
}

[[gnu::always_inline]] inline void accumulateFast(const double* mean, const double* variance, double* sum, double* squares,
                                                  int32_t length, double occupancy) {
  using Pair = Lanes<double, 2>;
  using One = Lanes<double, 1>;
  const auto put = [=](int32_t i, const auto& term) {
    const auto statistics = fastStatistics(mean + i, occupancy, term);
    statistics.sum.store(sum + i);
    statistics.squares.store(squares + i);
  };
  int32_t i = 0;
  if constexpr (kNativeLanes < double >> 2) {  // whole registers of partners: 1.3 at v3, 1.15 at v4 (re_estimation, 39 elements)
    constexpr int kWide = kNativeLanes<double>;
    using Wide = Lanes<double, kWide>;
    for (; i <= length - 2 * kWide; i += 2 * kWide) {
      const Wide a = Wide::load(variance + i), b = Wide::load(variance + i + kWide);
      const Wide ours = permuted<everyOtherPair<0>>(a, b), partners = permuted<everyOtherPair<1>>(a, b);
      const Wide q = Wide(occupancy) / (ours * partners);
      const auto terms = interleaved<2>(partners * q, ours * q);
      put(i, terms.first);
      put(i + kWide, terms.second);
    }
  }
  for (; i <= length - 4; i += 4) {
    const Pair v01 = Pair::load(variance + i), v23 = Pair::load(variance + i + 2), q = Pair(occupancy) / (v01 * v23);
    put(i, v23 * q);
    put(i + 2, v01 * q);
  }
  if (i <= length - 2) {
    const One v0(variance[i]), v1(variance[i + 1]), q = One(occupancy) / (v0 * v1);
    put(i, v1 * q);
    put(i + 1, v0 * q);
    i += 2;
  }
  if (i < length) put(i, One(occupancy / variance[i]));
}

// ---- Family bodies ----

template <class T>
QorStatus accumulateInverse(const T* mean, const T* variance, T* sum, T* squares, int32_t length, T occupancy) {
  if (QorStatus bad = Checks().null(mean, variance, sum, squares).size(length)) return bad;
  if (length >= 8 && isAligned16(mean) && isAligned16(variance) && isAligned16(sum) && isAligned16(squares)) {
    accumulateFast(mean, variance, sum, squares, length, occupancy);
  } else {
    storeStatistics(sum, squares, length, [=](int32_t i, auto n) {
      using L = Lanes<T, n>;
      const L m = L::load(mean + i), factor(occupancy);
      return Statistics<L>{m * factor, (L(1) / L::load(variance + i) + m * m) * factor};
    });
  }
  return qorStatusOk;
}

template <class T>
QorStatus accumulateDirect(const T* mean, const T* variance, T* sum, T* squares, int32_t length, T occupancy) {
  if (QorStatus bad = Checks().null(mean, variance, sum, squares).size(length)) return bad;
  storeStatistics(sum, squares, length, [=](int32_t i, auto n) {
    using L = Lanes<T, n>;
    const L m = L::load(mean + i), factor(occupancy);
    return Statistics<L>{m * factor, (m * m + L::load(variance + i)) * factor};
  });
  return qorStatusOk;
}

// The sum of the logarithms of d = squares * N - sum^2, and the status of the first d that has none.
template <class T>
QorStatus sumOfSpreads(const T* sum, const T* squares, int32_t length, double occupancy, double& result) {
  double d[SumOfLogs::kRun];
  SumOfLogs logs;
  for (const Chunk chunk : chunksOf(length, SumOfLogs::kRun)) {
    const T *const x = sum + chunk.first, *const xx = squares + chunk.first;
    coverColumns<double>(chunk.count, [=, &d](int32_t i, auto n) {
      using L = Lanes<double, n>;
      const L s = loadAs<double, n>(x + i);
      (loadAs<double, n>(xx + i) * L(occupancy) - s * s).store(d + i);
    });
    if (QorStatus warning = addPastNan(logs, d, chunk.count)) return warning;
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
  const double logOccupancy = log(occupancy), constant = length * ((logOccupancy - 1.0 - kClusterLogTwoPi) + logOccupancy);
  double logs;
  if (QorStatus warning = sumOfSpreads(sum, squares, length, occupancy, logs)) {
    *result = warning == qorStatusLogZero ? -std::numeric_limits<double>::infinity() : kLogOfNegative<double>;
    return warning;
  }
  *result = occupancy * 0.5 * (constant - logs);
  return qorStatusOk;
}

}  // namespace qorsr
