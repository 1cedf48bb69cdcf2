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

namespace qorsr {

// ---- Kernels ----

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

// Sums of R rows (4 or 1) at once, so that their chains of additions overlap and their lanes are joined together.
template <class Acc, int R, class Rows>
inline void rowSums(const Rows& rows, int32_t first, int32_t width, Acc* result, bool tailInLaneZero) {
  Lanes<Acc, 4> lanes[R];
  for (auto& l : lanes) l = Lanes<Acc, 4>(Acc(0));
  int32_t c = 0;
  for (; c <= width - 8; c += 8) {
    for (int i = 0; i < R; ++i) lanes[i] += loadAs<Acc, 4>(rows[first + i] + c) + loadAs<Acc, 4>(rows[first + i] + c + 4);
  }
  if (c <= width - 4) {
    for (int i = 0; i < R; ++i) lanes[i] += loadAs<Acc, 4>(rows[first + i] + c);
    c += 4;
  }
  const int32_t rest = width - c;
  for (int i = 0; i < R; ++i) {
    const auto at = [&](int k) { return k < rest ? static_cast<Acc>(rows[first + i][c + k]) : Acc(0); };
    using L = Lanes<Acc, 4>;
    if (tailInLaneZero) {
      for (int k = 0; k < rest; ++k) lanes[i] += L::of(at(k), 0, 0, 0);
    } else if (rest > 0) {  // a zero in the lanes beyond changes nothing: a lane that began at +0 never holds -0
      lanes[i] += rest == 1 ? L::of(at(0), 0, 0, 0) : L::of(at(0), at(1), at(2), 0);
    }
  }
  if constexpr (R == 4 && std::is_same_v<Acc, float>) {
    joinNeighbours4(lanes[0], lanes[1], lanes[2], lanes[3]).store(result + first);
  } else {
    for (int i = 0; i < R; ++i) Lanes<Acc, 1>(joinNeighbours(lanes[i])).store(result + first + i);
  }
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
  int32_t r = 0;
  for (; r <= height - 4; r += 4) rowSums<Acc, 4>(rows, r, width, result, false);
  for (; r < height; ++r) rowSums<Acc, 1>(rows, r, width, result, r == height - 1 && height % 2 == 1);
  return qorStatusOk;
}

// The float sums stand in the result array itself until they are converted there.
template <class Rows>
QorStatus sumColumnScaled(Rows rows, int32_t height, int32_t* result, int32_t width, int32_t scaleFactor) {
  float* sums = reinterpret_cast<float*>(result);
  if (QorStatus bad = sumColumn(rows, height, sums, width)) return bad;
  return qorConvert_32f32s_Sfs(sums, result, width, kNearestEven, scaleFactor);
}

template <class Rows>
QorStatus sumRowScaled(Rows rows, int32_t width, int32_t* result, int32_t height, int32_t scaleFactor) {
  float* sums = reinterpret_cast<float*>(result);
  if (QorStatus bad = sumRow(rows, width, sums, height)) return bad;
  return qorConvert_32f32s_Sfs(sums, result, height, kNearestEven, scaleFactor);
}

}  // namespace qorsr
