// One feature vector against one Gaussian with a block-diagonal inverse covariance A: Q = d^T A d, d = x - m, block by block.
//
//   y[r] = sum over j of d[o + j] * A[r][j] in lanes, o where the block of row r begins;   Q = sum over r of d[r] * y[r], lane by
//   lane. Eight float or four double lanes, joined once at the end. 16-bit differences saturate.
//
// A record counts blocks and rows in 16 bits. Where those wrapped, only the blocks that lie within the length are taken.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "scoring/block_matrix.h"

namespace qorsr {

// Up to so many differences stand on the stack.
inline constexpr int kBlockDiagonalStack = 111;

template <class Sum, class Difference, class Record>
Sum blockDiagonalSum(const Difference* d, int32_t length, const Record& record) {
  constexpr int N = 32 / static_cast<int>(sizeof(Sum));
  using L = Lanes<Sum, N>;
  L total(Sum(0));
  int64_t row = 0;
  for (int32_t b = 0; b < record.blockCount; ++b) {
    const int32_t size = record.blockSizes[b];
    if (size > length - row) break;
    const Difference* block = d + row;
    const Tail<Sum, N> tail(size % N);
    for (int32_t r = 0; r < size; ++r, ++row) {
      const auto* a = record.rows[row];
      L y(Sum(0));
      int32_t j = 0;
      for (; j <= size - N; j += N) y += loadAs<Sum, N>(block + j) * loadAs<Sum, N>(a + j);
      tail.forParts([&](auto part) { y.part[part.kIndex] = y.part[part.kIndex] + part.load(block + j) * part.load(a + j); });
      total += y * L(static_cast<Sum>(d[row]));
    }
  }
  return joinHalves(total);
}

// x - mean in the type of the sums; of 16-bit numbers, limited to 16 bits.
template <class Sum, class T>
auto differenceFor(T x, T mean) {
  if constexpr (std::is_same_v<T, int16_t>) {
    return saturate<int16_t>(static_cast<int32_t>(x) - mean);
  } else {
    return static_cast<Sum>(x) - static_cast<Sum>(mean);
  }
}

template <class Sum, class Score, class T, class Record, class Result, class Val>
QorStatus scoreBlockDiagonal(Score score, const T* x, const T* mean, const Record* record, int32_t length, Result* result,
                             Val val) {
  if (QorStatus bad = Checks()
                          .null(x, mean, record, result)
                          .size(length)
                          .require([&] { return record->dimension == length; }, qorStatusBadSize))
    return bad;
  const Scratch<decltype(differenceFor<Sum>(*x, *mean)), kBlockDiagonalStack> d(length);
  if (!d) return qorStatusNoMemory;
  for (int32_t i = 0; i < length; ++i) d[i] = differenceFor<Sum>(x[i], mean[i]);
  *result = score(blockDiagonalSum<Sum>(d.get(), length, *record), val);
  return qorStatusOk;
}

// ---- How the sum becomes a score ----

namespace score {

// The half and the difference in double, rounded once.
struct HalvedInDouble {
  float operator()(float sum, float val) const {
    return static_cast<float>(static_cast<double>(val) - static_cast<double>(sum) * 0.5);
  }
};

struct HalvedAndScaled {
  int32_t scaleFactor;

  float operator()(float sum, float val) const { return val - sum * twoToMinus<float>(scaleFactor) * 0.5F; }
  // Saturated above and below, else truncated; 2^31 itself becomes the most negative value (required).
  int32_t operator()(float sum, int32_t val) const {
    const float value = (*this)(sum, static_cast<float>(val));
    return value > 2147483648.0F ? INT32_MAX : truncateOrLowest<int32_t>(value);
  }
};

}  // namespace score

}  // namespace qorsr
