// Sums and sums of squares of columns: what a mean and a variance are made of.
//
//   sum[c] = x[0][c] + x[1][c] + ...     square[c] = x[0][c]^2 + x[1][c]^2 + ...
//
// In float, the rows added in pairs; accumulating members go on from the numbers that stand in the results.
#pragma once

#include <cstdint>

#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/row_pairs.h"
#include "frame/rows.h"
#include "frame/tuning.h"

namespace qorsr {

// Overwrites the sums, or goes on from those that stand there: then no column may be visited twice.
template <bool GoOn, class Rows>
void sumPowers(const Rows& rows, int32_t height, float* sums, float* squares, int32_t width) {
  const auto body = [=](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<float, n>;
    const auto terms = [&](int32_t r) {
      const L x = loadAs<float, n>(rows[r] + c);
      return TwoSums<L>{x, x * x};
    };
    const auto standing = [&] { return TwoSums<L>::load(sums + c, squares + c); };
    if constexpr (GoOn) {
      TwoSums<L> all = standing();
      addInPairs(first, end, terms, all);
      all.store(sums + c, squares + c);
    } else {
      sumInPairs(first, end, terms, standing).store(sums + c, squares + c);
    }
  };
  constexpr int kLanes = 2 * kNativeLanes<float>;  // two sums and two rows of them fill the registers
  if (width > kWidestBlock<float> && int64_t{height} * width * static_cast<int64_t>(sizeof(*rows[0])) > kTiledBytes) {
    return coverColumnsInTiles<float>(width, height, sizeof(*rows[0]), body);
  }
  const auto whole = [&](int32_t c, auto n) { body(c, n, 0, height); };
  if constexpr (GoOn) {
    coverColumnsOnce<float, kLanes>(width, whole);
  } else {
    coverColumns<float, kLanes>(width, whole);
  }
}

template <class T>
Checks powerChecks(const T* source, int32_t step, int32_t height, const void* sums, const void* squares, int32_t width) {
  return Checks().stride(strided(source, step), width).null(source, sums, squares).size(height, width);
}

template <bool GoOn, class T>
QorStatus sumPowers(const T* source, int32_t step, int32_t height, float* sums, float* squares, int32_t width) {
  if (QorStatus bad = powerChecks(source, step, height, sums, squares, width)) return bad;
  sumPowers<GoOn>(strided(source, step), height, sums, squares, width);
  return qorStatusOk;
}

// Whole results: float sums of some columns at a time, converted.
template <bool GoOn>
QorStatus sumPowers(const int16_t* source, int32_t step, int32_t height, int32_t* sums, int32_t* squares, int32_t width,
                    int32_t scaleFactor) {
  if (QorStatus bad = powerChecks(source, step, height, sums, squares, width)) return bad;
  constexpr int32_t kColumns = 512;
  float someSums[kColumns], someSquares[kColumns];
  for (const Chunk chunk : chunksOf(width, kColumns)) {
    int32_t *const wholeSums = sums + chunk.first, *const wholeSquares = squares + chunk.first;
    for (int32_t c = 0; GoOn && c < chunk.count; ++c) {
      someSums[c] = static_cast<float>(wholeSums[c]);
      someSquares[c] = static_cast<float>(wholeSquares[c]);
    }
    sumPowers<GoOn>(strided(source + chunk.first, step), height, someSums, someSquares, chunk.count);
    convertFloats(someSums, wholeSums, chunk.count, kNearestEven, scaleFactor);
    convertFloats(someSquares, wholeSquares, chunk.count, kNearestEven, scaleFactor);
  }
  return qorStatusOk;
}

}  // namespace qorsr
