// Sums of columns, of rows, and of one row or column with magnitudes or squares.
//
//   column: ((r0 + r1) + (r2 + r3)) + (r4 + r5) ..., an odd last row last; columns are independent of each other.
//   row:    four lanes; x[8k + j] + x[8k + 4 + j] joins lane j, a last group of four joins the lanes, up to three remaining
//   elements
//           join lanes 0 to 2 (required: in the last row of an odd height they join lane 0, one by one); (l0 + l1) + (l2 + l3).
//   single: eight lanes of doubles joined by halves, the tail in lane 0; one column of row pointers: four sums over rows.
//
// Sums run in Acc: float for int16 and float elements, double for double.
#pragma once

#include <cstdint>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Kernels ----

template <class Acc, int N, class Rows>
inline Lanes<Acc, N> columnSum(const Rows& rows, int32_t height, int32_t column) {
  const auto row = [&](int32_t r) { return loadAs<Acc, N>(rows[r] + column); };
  Lanes<Acc, N> total = row(0);
  if (height == 1) return total;
  total += row(1);
  int32_t r = 2;
  for (; r < height - 1; r += 2) total += row(r) + row(r + 1);
  if (r < height) total += row(r);
  return total;
}

// Sums of R rows at once, so that their chains of additions overlap. `inLaneZero`: where the last elements go.
template <class Acc, int R, class Rows>
inline void rowSums(const Rows& rows, int32_t first, int32_t width, Acc* result, bool inLaneZero) {
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
  for (int i = 0; i < R; ++i) {
    Acc l[4];
    lanes[i].store(l);
    for (int32_t k = c; k < width; ++k) l[inLaneZero ? 0 : k - c] += static_cast<Acc>(rows[first + i][k]);
    const Acc sum = (l[0] + l[1]) + (l[2] + l[3]);
    Lanes<Acc, 1>(sum).store(result + first + i);
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
  coverColumns<Acc>(width, [&](int32_t c, auto n) { columnSum<Acc, n>(rows, height, c).store(result + c); });
  return qorStatusOk;
}

template <class Rows, class Acc>
QorStatus sumRow(Rows rows, int32_t width, Acc* result, int32_t height) {
  if (QorStatus bad = Checks().null(rows, result).size(height, width).stride(rows, width)) return bad;
  int32_t r = 0;
  for (; r <= height - 4; r += 4) rowSums<Acc, 4>(rows, r, width, result, false);
  for (; r <= height - 2; r += 2) rowSums<Acc, 2>(rows, r, width, result, false);
  if (r < height) rowSums<Acc, 1>(rows, r, width, result, true);
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
