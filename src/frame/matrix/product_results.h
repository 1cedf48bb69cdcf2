// What products of all types share: groups of rows, and finishes, which make results of the sums of a group.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/bits.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

// ---- Finishes: from the sums of a group to results ----
//
// Inlined by force, and so is what calls them: VecMatMul 16s gains 1.19 to 1.25 at x86-64-v4 (products, 13 to 40 columns).

struct RealResult {
  using Result = float;
  static constexpr bool kNeedsNearest = false;

  void operator()(const Lanes<float, 4>& sums, float* at) const { sums.store(at); }
};

namespace detail {

template <int N>
[[gnu::always_inline]] inline void storeSaturated(const Lanes<int32_t, N>& v, int32_t* at) {
  v.store(at);
}
template <int N>
[[gnu::always_inline]] inline void storeSaturated(const Lanes<int32_t, N>& v, int16_t* at) {
  if constexpr (N == 4) {
    int16_t twice[8];
    saturated(v, v).store(twice);
    std::memcpy(at, twice, 4 * sizeof(int16_t));
  } else {
    saturated(v).store(at);
  }
}

// Limited to the range of 32-bit integers.
template <int N>
[[gnu::always_inline]] inline Lanes<double, N> limitedTo32(const Lanes<double, N>& v) {
  return max(min(v, Lanes<double, N>(2147483647.0)), Lanes<double, N>(-2147483648.0));
}

}  // namespace detail

// A sum in double, scaled, limited and rounded to nearest, ties to even; a NaN gives 0. In a guarded mode only.
template <class To>
class RoundedResult {
 public:
  using Result = To;
  static constexpr bool kNeedsNearest = true;

  explicit RoundedResult(int32_t scaleFactor) : power_(twoToMinus<double>(scaleFactor)) {}

  template <int N>
  [[gnu::always_inline]] void operator()(const Lanes<double, N>& sums, To* at) const {
    detail::storeSaturated(nearest(detail::limitedTo32(zeroWhereNaN(sums * Lanes<double, N>(power_)))), at);
  }

 private:
  double power_;
};

// An exact sum, shifted without rounding and saturated: right with floor, left as the exact product with the power of two.
template <class To>
class ShiftedResult {
 public:
  using Result = To;
  static constexpr bool kNeedsNearest = false;

  explicit ShiftedResult(int32_t scaleFactor)
      : scaleFactor_(scaleFactor),
        power_(twoToMinus<double>(std::clamp(scaleFactor, -32, kPlaces))),
        below_(scaleFactor <= 0 ? 0.0 : 1.0 - twoToMinus<double>(-std::min(scaleFactor, kPlaces))) {}

  // The floor of n / 2^s is n / 2^s truncated, for a negative n (n - (2^s - 1)) / 2^s truncated.
  template <int N>
  [[gnu::always_inline]] void operator()(const Lanes<double, N>& sums, To* at) const {
    using L = Lanes<double, N>;
    const L zero(0.0), start = sums + selectLess(sums, zero, L(below_), zero);
    detail::storeSaturated(truncated(detail::limitedTo32(start * L(power_))), at);
  }

  To exactly(int64_t sum) const {
    if (scaleFactor_ >= 0) return saturate<To>(shiftRight(sum, scaleFactor_));
    return saturate<To>(saturate<int32_t>(sum) * (int64_t{1} << (scaleFactor_ < -31 ? 31 : -scaleFactor_)));
  }

 private:
  // Sums of kExactColumns products are at most 2^49 in magnitude, so that more places shift out no more.
  static constexpr int32_t kPlaces = 50;

  int32_t scaleFactor_;
  double power_, below_;
};

// Above this width the sums of 16-bit products take more than a double holds beside the offset.
inline constexpr int32_t kExactColumns = 1 << 19;

// ---- Rows in groups ----

// Rows first to first + R - 1 of a matrix; with a height below R, the last row stands for those that are missing.
template <class T, int R>
struct RowGroup {
  const T* row[R];

  template <class Rows>
  RowGroup(const Rows& rows, int32_t first, int32_t height) {
    for (int32_t i = 0; i < R; ++i) row[i] = rows[height >= R ? first + i : std::min(i, height - 1)];
  }
  const T* operator[](int i) const { return row[i]; }
};
template <class T>
using FourRows = RowGroup<T, 4>;

// Calls dots(R rows) -> R sums, for all rows, and finish(sums, where) for each group.
template <class T, int R, class Rows, class Dots, class Result, class Finish>
inline void forRowGroups(const Rows& rows, int32_t height, const Dots& dots, Result* result, const Finish& finish) {
  if constexpr (R > 4) {
    if (height < R) return forRowGroups<T, 4>(rows, height, dots, result, finish);
  }
  if (height < R) {
    Result results[R];
    finish(dots(RowGroup<T, R>(rows, 0, height)), results);
    std::copy_n(results, height, result);
    return;
  }
  for (int64_t r = 0; r < height; r += R) {
    const auto first = static_cast<int32_t>(std::min<int64_t>(r, height - R));  // the last group may overlap the one before it
    finish(dots(RowGroup<T, R>(rows, first, R)), result + first);
  }
}

}  // namespace qorsr
