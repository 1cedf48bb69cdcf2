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

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr int32_t kBeginFlag = 1, kEndFlag = 2;

// 0: the features, 1: the delta, 2: the acceleration.
template <int K>
using Derivative = std::integral_constant<int, K>;

// Walks down the rows from `from` to `to` - 1 with a window of `kReach` rows on either side, limited to rows 0 to `last`:
// body(row, window), the window an array of what load(row) gave. Each row is loaded once.
template <int kReach, class Load, class Body>
inline void slideWindow(std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t last, const Load& load, const Body& body) {
  constexpr int kSpan = 2 * kReach + 1;
  decltype(load(from)) window[kSpan];
  for (int k = 1; k < kSpan; ++k) window[k] = load(std::clamp<std::ptrdiff_t>(from - kReach - 1 + k, 0, last));
  for (std::ptrdiff_t row = from; row < to; ++row) {
    for (int k = 1; k < kSpan; ++k) window[k - 1] = window[k];
    window[kSpan - 1] = load(std::min(row + kReach, last));
    body(row, window);
  }
}

// Takes the rows in groups small enough that each stage finds the results of the one before it in the nearest cache.
template <class Member>
void streamRows(const Member& member, int32_t height, int32_t flags) {
  constexpr std::ptrdiff_t kGroup = 32, kLookBack = Member::kLookBack;
  const bool begin = (flags & kBeginFlag) != 0, end = (flags & kEndFlag) != 0;
  const std::ptrdiff_t first = begin ? 0 : kLookBack, last = first + height - 1;
  std::ptrdiff_t next[3] = {first};
  for (int k = 1; k <= Member::kDerivatives; ++k) next[k] = begin ? 0 : kLookBack - Member::lag(k);
  std::ptrdiff_t stop = first;
  const auto advance = [&](auto k) {
    const std::ptrdiff_t ready = end && stop == last + 1 ? stop : stop - Member::lag(k);
    member.derivative(k, next[k], ready, last);
    next[k] = ready;
  };
  do {
    stop = std::min(stop + kGroup, last + 1);
    member.features(first, next[0], stop);
    next[0] = stop;
    advance(Derivative<1>());
    if constexpr (Member::kDerivatives == 2) advance(Derivative<2>());
  } while (stop <= last);
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
                          .require(height > 0 || (flags & kEndFlag) != 0, qorStatusBadSize)
                          .require(step >= kParts * width, qorStatusBadStride)
                          .require((flags & kBeginFlag) == 0 || height >= Member::kLookBack, qorStatusBadSize))
    return bad;
  streamRows(member, height, flags);
  return qorStatusOk;
}

}  // namespace qorsr
