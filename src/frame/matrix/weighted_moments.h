// Weighted means and variances of columns.
//
//   mean[c] = sum over r of x[r][c] w[r]
//   var[c]  = sum over r of x[r][c]^2 w[r] - mean[c]^2
//
// The weights are taken as they are: they sum to 1 where a true mean is wanted. Sums start at zero and take rows in pairs from the
// top down, (p0 + p1), (p2 + p3), ..., an odd last row alone. A term of the second sum is (x * x) * w where the mean is given and
// (x * w) * x where both are formed in one pass. There is no floor: rounding, or a foreign mean, may leave a variance below zero.
#pragma once

#include <cstdint>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/row_pairs.h"
#include "frame/rows.h"

namespace qorsr {

// Terms of one sum are inlined by force: with one to three columns a call for each row would cost four times as much.

template <class T, class Rows>
QorStatus weightedMeanColumn(Rows rows, const T* weights, int32_t height, T* means, int32_t width) {
  if (QorStatus bad = Checks().null(rows, weights, means).stride(rows, width).size(width, height)) return bad;
  coverColumnsInTiles<T>(width, height, sizeof(T), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<T, n>;
    L sum = first > 0 ? L::load(means + c) : L(T(0));
    addInPairs(
        first, end, [&](int32_t r) __attribute__((always_inline)) { return L::load(rows[r] + c) * L(weights[r]); }, sum);
    sum.store(means + c);
  });
  return qorStatusOk;
}

template <class T, class Rows>
QorStatus weightedVarColumn(Rows rows, const T* weights, int32_t height, const T* means, T* variances, int32_t width) {
  if (QorStatus bad = Checks().null(rows, weights, means, variances).stride(rows, width).size(width, height)) return bad;
  coverColumnsInTiles<T>(width, height, sizeof(T), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<T, n>;
    L sum = first > 0 ? L::load(variances + c) : L(T(0));
    const auto term = [&](int32_t r) __attribute__((always_inline)) {
      const L x = L::load(rows[r] + c);
      return x * x * L(weights[r]);
    };
    addInPairs(first, end, term, sum);
    const L mean = L::load(means + c);
    (end == height ? sum - mean * mean : sum).store(variances + c);
  });
  return qorStatusOk;
}

template <class T, class Rows>
QorStatus weightedMeanVarColumn(Rows rows, const T* weights, int32_t height, T* means, T* variances, int32_t width) {
  if (QorStatus bad = Checks().null(rows, weights, means, variances).stride(rows, width).size(width, height)) return bad;
  const auto block = [&]<int N>(int32_t c, LaneCount<N>, int32_t first, int32_t end) {
    using L = Lanes<T, N>;
    TwoSums<L> sums = first > 0 ? TwoSums<L>::load(means + c, variances + c) : TwoSums<L>{L(T(0)), L(T(0))};
    const auto terms = [&](int32_t r) {
      const L x = L::load(rows[r] + c), weighted = x * L(weights[r]);
      return TwoSums<L>{weighted, weighted * x};
    };
    addInPairs(first, end, terms, sums);
    if (end == height) sums.second -= sums.first * sums.first;
    sums.store(means + c, variances + c);
  };
  coverColumnsInTiles<T>(width, height, sizeof(T), [&](int32_t c, auto n, int32_t first, int32_t end) {
    if constexpr (Lanes<T, n>::kParts > 2) {  // two sums and two rows of terms: the registers hold half of the widest block
      block(c, LaneCount<n / 2>(), first, end);
      block(c + n / 2, LaneCount<n / 2>(), first, end);
    } else {
      block(c, n, first, end);
    }
  });
  return qorStatusOk;
}

}  // namespace qorsr
