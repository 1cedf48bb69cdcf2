// Time derivatives of feature rows that arrive in blocks.
//
// A member has features x(t) (derivative 0) and one or two derivatives, side by side in each row of the caller's buffer, and says
// how far a derivative lags behind the newest row (its window reaches into the future) and how many rows must be kept of the block
// before (the look-back). Rows are counted from the caller's destination. With B the look-back, a block fills
//
//   features:      rows first to last,         first = 0 (begin) or B
//   derivative k:  rows 0 (begin) or B - lag(k)  to  last (end) or last - lag(k)
//
// and that is all that the begin and end flags change: a window that passes row 0 or the last row takes that row's value, and
// without these flags no window passes them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// 0: the features, 1: the delta, 2: the acceleration.
template <int K>
using Derivative = std::integral_constant<int, K>;

// kSpan rows around one row, which moves down: `advance` takes the next row in.
template <class V, int kSpan>
struct MovingWindow {
  V rows[kSpan];

  [[gnu::always_inline]] void advance(const V& newest) {
    for (int k = 1; k < kSpan; ++k) rows[k - 1] = rows[k];
    rows[kSpan - 1] = newest;
  }
};

// Calls step() `count` times, written out kSpan times in a row: a window of kSpan rows is then back in the registers that it left,
// and its movement costs nothing.
template <class Step, int... kEach>
[[gnu::always_inline]] inline void repeatWrittenOut(std::ptrdiff_t count, const Step& step, std::integer_sequence<int, kEach...>) {
  constexpr std::ptrdiff_t kSpan = sizeof...(kEach);
  for (; count >= kSpan; count -= kSpan) ((static_cast<void>(kEach), step()), ...);
  for (; count > 0; --count) step();
}

// Rows come in order: the start-up rows with their left edge, then one row at a time that completes a row of each derivative, then
// the right edge. Columns are independent of each other; groups of rows keep all columns of a group in the nearest cache.
template <class Member>
void streamRows(const Member& member, int32_t height, int32_t flags) {
  constexpr std::ptrdiff_t kGroup = 64, kLookBack = Member::kLookBack;
  const bool begin = (flags & qorDeltaBegin) != 0, end = (flags & qorDeltaEnd) != 0;
  const std::ptrdiff_t first = begin ? 0 : kLookBack, rows = first + height;
  if (begin) member.startUp(rows - 1);
  for (std::ptrdiff_t row = kLookBack; row < rows; row += kGroup) member.steady(first, row, std::min(row + kGroup, rows));
  if (end) member.finish(rows);
}

// The checks that all members share, in their order, then the rows.
template <class Member, class T>
QorStatus streamDelta(const Member& member, const T* source, const T* destination, int32_t width, int32_t step, int32_t height,
                      int32_t flags) {
  constexpr int64_t kParts = Member::kDerivatives + 1;
  if (QorStatus bad = Checks()
                          .null(source, destination)
                          .require(member.given(), qorStatusNullPointer)
                          .size(width)
                          .atLeast(0, height)
                          .require(height > 0 || (flags & qorDeltaEnd) != 0, qorStatusBadSize)
                          .require(step >= kParts * width, qorStatusBadStride)
                          .require((flags & qorDeltaBegin) == 0 || height >= Member::kLookBack, qorStatusBadSize))
    return bad;
  streamRows(member, height, flags);
  return qorStatusOk;
}

}  // namespace qorsr
