// Sums of doubles over one row or one column, in a fixed grouping.
#pragma once

#include <cstdint>

#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// Sum of f(i, LaneCount<N>) over the elements of one row: eight lanes, joined by halves, and the tail, which is added up in order
// behind them. `f` works on lanes of any width and may store what it loads.
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

}  // namespace qorsr
