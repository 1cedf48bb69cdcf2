// Removal of a constant offset: by a recursive high-pass, or by the mean.
//
//   y[n] = x[n] - x[n - 1] + c y[n - 1]     c close to 1; y[0] goes on from the last sample and the last result of the call before
//   y[n] = x[n] - mean                      mean and results kept to halves, which are rounded away from zero
//
// The filter is serial: each result waits for the one before it.
#pragma once

#include <cstdint>

#include "features/whole_sums.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// ---- The filter, in three arithmetics: first() makes y[0], next() each result behind it ----

struct FloatOffsetFilter {
  float coefficient;

  float first(float x, float before, float y) const { return (coefficient * y + x) - before; }
  float next(float x, float before, float y) const { return (x - before) + coefficient * y; }
};

// 16-bit samples through float. required: y[0] is truncated, all others are rounded half away from zero.
struct ShortOffsetFilter {
  float coefficient;

  int16_t first(int16_t x, int16_t before, int16_t y) const {
    return stored((coefficient * static_cast<float>(y) + static_cast<float>(x)) - static_cast<float>(before));
  }
  int16_t next(int16_t x, int16_t before, int16_t y) const {
    const float sum = static_cast<float>(int32_t{x} - before) + coefficient * static_cast<float>(y);
    return stored(sum + __builtin_copysignf(0.5F, sum));
  }

 private:
  // Toward zero, limited to 16 bits; a NaN gives 0.
  static int16_t stored(float value) {
    if (!(value < 32767.0F)) return value >= 32767.0F ? INT16_MAX : int16_t{0};
    return value <= -32768.0F ? INT16_MIN : static_cast<int16_t>(value);
  }
};

// 16-bit samples in whole numbers, c in Q15: the exact sum, toward zero.
struct FixedOffsetFilter {
  int16_t coefficient;

  int16_t first(int16_t x, int16_t before, int16_t y) const { return next(x, before, y); }
  int16_t next(int16_t x, int16_t before, int16_t y) const {
    const int64_t sum = (int64_t{x} - before) * 32768 + int32_t{coefficient} * y;
    return saturate<int16_t>(sum / 32768);
  }
};

// Source and destination may be the same memory.
template <class T, class Filter>
inline void compensateOffset(const T* source, T* destination, int32_t length, T* before, T result, Filter filter) {
  T x = source[0], y = filter.first(x, *before, result);
  destination[0] = y;
  for (int32_t n = 1; n < length; ++n) {
    const T last = x;
    x = source[n];
    y = filter.next(x, last, y);
    destination[n] = y;
  }
  *before = x;
}

// ---- The mean ----

inline int64_t sumOfShorts(const int16_t* x, int32_t length) {
  return wholeSum<2 * kNativeLanes<int16_t>>(length, [=]<int N>(int32_t i, LaneCount<N>) {
    if constexpr (N == 1) {
      return x[i];
    } else {
      return pairDots(Lanes<int16_t, N>::load(x + i), Lanes<int16_t, N>(1));
    }
  });
}

// With twice the mean m2 = 2h + odd, t = 2x - m2 and t / 2, half away from zero, is d = x - h where m2 is even; where it is odd, d for a
// positive t = 2d - 1 and d - 1 for a negative one.
template <bool Odd, int N>
inline Lanes<int16_t, N> withoutMean(const Lanes<int16_t, N>& x, int16_t half) {
  using L = Lanes<int16_t, N>;
  L d = subtractSaturated(x, L(half));
  if constexpr (Odd) d = subtractSaturated(d, selectLess(L(0), d, L(0), L(1)));
  return max(d, L(-32767));  // required: the range is symmetric
}

inline void subtractMean(int16_t* buffer, int32_t length) {
  const int64_t twice = 2 * sumOfShorts(buffer, length) / length;
  const auto half = static_cast<int16_t>(twice >> 1);
  const auto subtract = [=]<bool Odd>(std::bool_constant<Odd>) {
    coverLastFirst<int16_t, kNativeLanes<int16_t>>(
        length, [=](int32_t i, auto n) { return withoutMean<Odd>(Lanes<int16_t, n>::load(buffer + i), half); },
        [=](int32_t i, const auto& y) { y.store(buffer + i); });
  };
  twice % 2 != 0 ? subtract(std::true_type()) : subtract(std::false_type());
}

// ---- Family bodies ----

template <class T, class Filter>
QorStatus compensateOffset(const T* source, T* destination, int32_t length, T* before, T result, Filter filter, int32_t longest,
                           bool coefficientIsGood) {
  if (QorStatus bad = Checks()
                          .null(source, destination, before)
                          .size(length)
                          .require(length <= longest, qorStatusBadSize)
                          .require(coefficientIsGood, qorStatusBadArgument)) {
    return bad;
  }
  compensateOffset(source, destination, length, before, result, filter);
  return qorStatusOk;
}

inline QorStatus compensateOffset(const float* source, float* destination, int32_t length, float* before, float result,
                                  float coefficient) {
  return compensateOffset(source, destination, length, before, result, FloatOffsetFilter{coefficient}, INT32_MAX, true);
}
inline QorStatus compensateOffset(const int16_t* source, int16_t* destination, int32_t length, int16_t* before, int16_t result,
                                  float coefficient) {
  return compensateOffset(source, destination, length, before, result, ShortOffsetFilter{coefficient}, INT32_MAX, true);
}
inline QorStatus compensateOffsetFixed(const int16_t* source, int16_t* destination, int32_t length, int16_t* before, int16_t result,
                                       int16_t coefficient) {
  constexpr int32_t kLongest = 65535;
  return compensateOffset(source, destination, length, before, result, FixedOffsetFilter{coefficient}, kLongest, coefficient >= 0);
}

// The size is tested first here.
inline QorStatus zeroMean(int16_t* buffer, int32_t length) {
  if (QorStatus bad = Checks().size(length).null(buffer)) return bad;
  subtractMean(buffer, length);
  return qorStatusOk;
}

}  // namespace qorsr
