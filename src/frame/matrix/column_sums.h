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

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/rows.h"
#include "frame/tuning.h"

namespace qorsr {

// ---- Kernels ----

// Sum of four lanes, neighbours first.
template <class T>
inline T joinNeighbours(const Lanes<T, 4>& a) {
  const Lanes<T, 2> sums = permuted<order::everySecond<0>, 2>(a) + permuted<order::everySecond<1>, 2>(a);
  return joinHalves(sums);
}
// Of four sets at once: lane i of the result is that of set i.
inline Lanes<float, 4> joinNeighbours(const Lanes<float, 4> (&sets)[4]) {
  const Transposed t = transposed(sets[0], sets[1], sets[2], sets[3]);
  return (t.lane[0] + t.lane[1]) + (t.lane[2] + t.lane[3]);
}

// The sum of rows 0 to end - 1 of one block of columns; with first > 0, going on from `running`, the sum of those above.
template <class Acc, int N, class Rows>
inline Lanes<Acc, N> columnSum(const Rows& rows, int32_t first, int32_t end, int32_t column, const Acc* running) {
  const auto row = [&](int32_t r) { return loadAs<Acc, N>(rows[r] + column); };
  Lanes<Acc, N> total;
  int32_t r = first;
  if (first > 0) {
    total = Lanes<Acc, N>::load(running + column);
  } else if (end == 1) {
    return row(0);
  } else {
    total = row(0) + row(1);
    r = 2;
  }
  for (; r < end - 1; r += 2) total += row(r) + row(r + 1);
  if (r < end) total += row(r);
  return total;
}

// The lanes of one row without its last width mod 4 elements; c is where they begin.
template <class Acc, int R, class Rows>
[[gnu::always_inline]] inline int32_t wholeGroups(const Rows& rows, int32_t first, int32_t width, Lanes<Acc, 4> (&lanes)[R]) {
  decltype(&rows[0][0]) row[R];
  for (int i = 0; i < R; ++i) {
    row[i] = rows[first + i];
    lanes[i] = Lanes<Acc, 4>(Acc(0));
  }
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
    if (width >= 4) return shiftIn<kRest>(loadAs<Acc, 4>(end - 4), L(Acc(0)));
  }
  const auto at = [&](int k) { return k < kRest ? static_cast<Acc>(end[k - kRest]) : Acc(0); };
  return L::of(at(0), at(1), at(2), Acc(0));
}

// Sums of R rows (4 or 1) at once, so that their chains of additions overlap and their lanes are joined together.
template <class Acc, int R, int kRest, class Rows>
inline void rowSums(const Rows& rows, int32_t first, int32_t width, Acc* result) {
  Lanes<Acc, 4> lanes[R];
  wholeGroups<Acc, R>(rows, first, width, lanes);
  if constexpr (kRest > 0) {
    for (int i = 0; i < R; ++i) lanes[i] += restOfRow<Acc, kRest>(rows[first + i] + width, width);
  }
  if constexpr (R == 4 && std::is_same_v<Acc, float>) {
    joinNeighbours(lanes).store(result + first);
  } else {
    for (int i = 0; i < R; ++i) result[first + i] = joinNeighbours(lanes[i]);
  }
}

// Required: in the last row of an odd height the rest joins lane 0, one by one.
template <class Acc, class Rows>
inline Acc sumOfLastRow(const Rows& rows, int32_t last, int32_t width) {
  using L = Lanes<Acc, 4>;
  L lanes[1];
  for (int32_t c = wholeGroups<Acc, 1>(rows, last, width, lanes); c < width; ++c) {
    lanes[0] += L::of(static_cast<Acc>(rows[last][c]), 0, 0, 0);
  }
  return joinNeighbours(lanes[0]);
}

// Four rows at a time; one after the other where they are long and come from memory, which is read fastest in its order.
template <class Acc, int kRest, class Rows>
void sumRows(const Rows& rows, int32_t width, Acc* result, int32_t height) {
  const bool far = width >= kFarColumns && static_cast<int64_t>(sizeof(rows[0][0])) * width * height > kFarBytes;
  const int32_t paired = height - height % 2;
  int32_t r = 0;
  for (; !far && r <= paired - 4; r += 4) rowSums<Acc, 4, kRest>(rows, r, width, result);
  for (; r < paired; ++r) rowSums<Acc, 1, kRest>(rows, r, width, result);
  if (r < height) result[r] = sumOfLastRow<Acc>(rows, r, width);
}

// Sum of f(element) over one row. `f` works on lanes of any width and may store what it loads.
template <class F>
inline double rowReduce(int32_t length, F f) {
  Lanes<double, 8> lanes(0.0);
  int32_t i = 0;
  for (; i <= length - 8; i += 8) lanes += f(i, LaneCount<8>());
  double first = 0.0;
  for (; i < length; ++i) first += f(i, LaneCount<1>()).part[0];
  return joinHalves(lanes) + first;
}

// Sum of f(row) over rows firstRow to height - 1, in four running sums joined as (s0 + s2) + (s1 + s3).
template <class F>
inline double columnReduce(int32_t firstRow, int32_t height, F f) {
  double s[4] = {};
  int32_t r = firstRow;
  for (; r < height - 3; r += 4) {
    for (int i = 0; i < 4; ++i) s[i] += f(r + i);
  }
  for (int i = 0; r < height; ++r, ++i) s[i] += f(r);
  return (s[0] + s[2]) + (s[1] + s[3]);
}

// ---- Family bodies ----

template <class Rows, class Acc>
QorStatus sumColumn(Rows rows, int32_t height, Acc* result, int32_t width) {
  if (QorStatus bad = Checks().null(rows, result).size(height, width).stride(rows, width)) return bad;
  coverColumnsInTiles<Acc>(width, height, sizeof(*rows[0]), [&](int32_t c, auto n, int32_t first, int32_t end) {
    columnSum<Acc, n>(rows, first, end, c, result).store(result + c);
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

// The float sums stand in the result array itself until they are converted there.
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
