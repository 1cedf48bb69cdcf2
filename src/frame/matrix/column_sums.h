// Sums of columns, of rows, and of one row or column with magnitudes or squares.
//
//   column: ((r0 + r1) + (r2 + r3)) + (r4 + r5) ..., an odd last row last; columns are independent of each other.
//   row:    four lanes; x[8k + j] + x[8k + 4 + j] joins lane j, a last group of four joins the lanes, up to three remaining
//           elements join lanes 0 to 2 (required: in the last row of an odd height they join lane 0, one by one);
//           (l0 + l1) + (l2 + l3).
//   single: eight lanes of doubles joined by halves, the tail in lane 0; one column of row pointers: four sums over rows.
//
// Sums run in Acc: float for int16 and float elements, double for double.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/reduce.h"
#include "frame/row_pairs.h"
#include "frame/rows.h"
#include "frame/tuning.h"

namespace qorsr {

// The last K of n lanes, then what stands behind them.
template <int K>
constexpr int shiftedIn(int i, int n) {
  return n - K + i;
}

// ---- Kernels ----

// Sum of four lanes, neighbours first.
template <class T>
inline T joinNeighbours(const Lanes<T, 4>& a) {
  const Lanes<T, 2> sums = permuted<order::everySecond<0>, 2>(a) + permuted<order::everySecond<1>, 2>(a);
  return joinHalves(sums);
}
// Of four sets at once: lane i of the result is that of set i.
inline Lanes<float, 4> joinNeighbours(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c,
                                      const Lanes<float, 4>& d) {
  const Transposed t = transposed(a, b, c, d);
  return (t.lane[0] + t.lane[1]) + (t.lane[2] + t.lane[3]);
}

// The lanes of R rows without their last width mod 4 elements; where these begin. Inlined by force, as the rest is: SumRow gains 1.2
// to 3.2 (column_statistics, 13 to 64 columns, all levels).
template <class Acc, int R, class T>
[[gnu::always_inline]] inline int32_t wholeGroups(const T* const (&row)[R], int32_t width, Lanes<Acc, 4> (&lanes)[R]) {
  for (auto& l : lanes) l = Lanes<Acc, 4>(Acc(0));
  int32_t c = 0;
  for (; c <= width - 8; c += 8) {
    for (int i = 0; i < R; ++i) lanes[i] += loadAs<Acc, 4>(row[i] + c) + loadAs<Acc, 4>(row[i] + c + 4);
  }
  if (c <= width - 4) {
    for (int i = 0; i < R; ++i) lanes[i] += loadAs<Acc, 4>(row[i] + c);
    c += 4;
  }
  return c;
}

// The last kRest elements in front of `end`, then zeros. A zero changes nothing: a lane that began at +0 never holds -0.
template <class Acc, int kRest, class T>
[[gnu::always_inline]] inline Lanes<Acc, 4> restOfRow(const T* end, int32_t width) {
  using L = Lanes<Acc, 4>;
  if constexpr (L::kParts == 1) {
    if (width >= 4) return permuted<shiftedIn<kRest>>(loadAs<Acc, 4>(end - 4), L(Acc(0)));
  }
  const auto at = [&](int k) { return k < kRest ? static_cast<Acc>(end[k - kRest]) : Acc(0); };
  return L::of(at(0), at(1), at(2), Acc(0));
}

// Sums of R rows (4 or 1) at once, so that their chains of additions overlap and their lanes are joined together.
template <class Acc, int kRest, int R, class T>
inline void rowSums(const T* const (&row)[R], int32_t width, Acc* result) {
  Lanes<Acc, 4> lanes[R];
  wholeGroups<Acc>(row, width, lanes);
  if constexpr (kRest > 0) {
    for (int i = 0; i < R; ++i) lanes[i] += restOfRow<Acc, kRest>(row[i] + width, width);
  }
  if constexpr (R == 4 && std::is_same_v<Acc, float>) {
    joinNeighbours(lanes[0], lanes[1], lanes[2], lanes[3]).store(result);
  } else {
    for (int i = 0; i < R; ++i) storeBits(joinNeighbours(lanes[i]), result + i);
  }
}

// Required: in the last row of an odd height the rest joins lane 0, one by one.
template <class Acc, class T>
inline Acc sumOfLastRow(const T* last, int32_t width) {
  using L = Lanes<Acc, 4>;
  const T* const row[1] = {last};
  L lanes[1];
  for (int32_t c = wholeGroups<Acc>(row, width, lanes); c < width; ++c) lanes[0] += L::of(static_cast<Acc>(last[c]), 0, 0, 0);
  return joinNeighbours(lanes[0]);
}

// Four rows at a time; one after the other where they are long and come from memory, which is read fastest in its order.
template <class Acc, int kRest, class Rows>
void sumRows(Rows rows, int32_t width, Acc* result, int32_t height) {
  const bool far = width >= kFarColumns && static_cast<int64_t>(sizeof(rows[0][0])) * width * height > kFarBytes;
  const int32_t paired = height - height % 2;
  int32_t r = 0;
  for (; !far && r <= paired - 4; r += 4) {
    rowSums<Acc, kRest, 4>({rows[r], rows[r + 1], rows[r + 2], rows[r + 3]}, width, result + r);
  }
  for (; r < paired; ++r) rowSums<Acc, kRest, 1>({rows[r]}, width, result + r);
  if (r < height) storeBits(sumOfLastRow<Acc>(rows[r], width), result + r);
}

// ---- Family bodies ----

template <class Rows, class Acc>
QorStatus sumColumn(Rows rows, int32_t height, Acc* result, int32_t width) {
  if (QorStatus bad = Checks().null(rows, result).size(height, width).stride(rows, width)) return bad;
  coverColumnsInTiles<Acc>(width, height, sizeof(*rows[0]), [&](int32_t c, auto n, int32_t first, int32_t end) {
    const auto row = [&](int32_t r) { return loadAs<Acc, n>(rows[r] + c); };
    sumInPairs(first, end, row, [&] { return Lanes<Acc, n>::load(result + c); }).store(result + c);
  });
  return qorStatusOk;
}

template <class Rows, class Acc>
QorStatus sumRow(Rows rows, int32_t width, Acc* result, int32_t height) {
  if (QorStatus bad = Checks().null(rows, result).size(height, width).stride(rows, width)) return bad;
  switch (width % 4) {
    case 0:
      sumRows<Acc, 0>(rows, width, result, height);
      break;
    case 1:
      sumRows<Acc, 1>(rows, width, result, height);
      break;
    case 2:
      sumRows<Acc, 2>(rows, width, result, height);
      break;
    default:
      sumRows<Acc, 3>(rows, width, result, height);
  }
  return qorStatusOk;
}

inline QorStatus sumRowAbs(const double* source, int32_t length, double* result) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  *result = rowReduce(length, [&](int32_t i, auto n) { return abs(Lanes<double, n>::load(source + i)); });
  return qorStatusOk;
}

inline QorStatus sumRowSqr(double* source, int32_t length, double* result, double scale) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  *result = rowReduce(length, [&](int32_t i, auto n) {
    const auto scaled = Lanes<double, n>::load(source + i) * Lanes<double, n>(scale);
    scaled.store(source + i);
    return scaled * scaled;
  });
  return qorStatusOk;
}

inline QorStatus sumOneColumnAbs(ListedRows<const double> rows, int32_t width, int32_t height, double* result, int32_t column,
                                 int32_t firstRow) {
  if (QorStatus bad = Checks().null(rows, result).size(width, height).index(column, width).index(firstRow, height)) return bad;
  *result = columnReduce(firstRow, height, [&](int32_t r) { return __builtin_fabs(rows[r][column]); });
  return qorStatusOk;
}

inline QorStatus sumOneColumnSqr(ListedRows<double> rows, int32_t width, int32_t height, double* result, int32_t column,
                                 int32_t firstRow, double scale) {
  if (QorStatus bad = Checks().null(rows, result).size(width, height).index(column, width).index(firstRow, height)) return bad;
  *result = columnReduce(firstRow, height, [&](int32_t r) {
    const double scaled = rows[r][column] * scale;
    rows[r][column] = scaled;
    return scaled * scaled;
  });
  return qorStatusOk;
}

// The float sums stand in the result array itself until they are converted there; no float is read or written there but by its bits.
template <class Rows>
QorStatus sumColumnScaled(Rows rows, int32_t height, int32_t* result, int32_t width, int32_t scaleFactor) {
  float* sums = reinterpret_cast<float*>(result);
  if (QorStatus bad = sumColumn(rows, height, sums, width)) return bad;
  return convertFloats(sums, result, width, kNearestEven, scaleFactor);
}

template <class Rows>
QorStatus sumRowScaled(Rows rows, int32_t width, int32_t* result, int32_t height, int32_t scaleFactor) {
  float* sums = reinterpret_cast<float*>(result);
  if (QorStatus bad = sumRow(rows, width, sums, height)) return bad;
  return convertFloats(sums, result, height, kNearestEven, scaleFactor);
}

}  // namespace qorsr
