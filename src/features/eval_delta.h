// Deltas of a whole utterance in memory, by regression over windows of any size W.
//
//   rows 0 to W - 1                     sum over k of k * (x(r + k) - x(0))
//   rows W to height - W - 1            sum over k of k * (x(r + k) - x(r - k))            k = 1 .. W
//   rows height - W to height - 1       sum over k of k * (x(height - 1) - x(r - k))
//
// times a factor. The edges are not the usual clamped windows: required. Float sums start at 0 and
// take k from 1 to W in order. 16-bit differences wrap, as do the sum in 32 bits and its product with the factor, which is shifted
// by the scale factor and limited.
#pragma once

#include <cstddef>
#include <cstdint>

#include "features/delta_arithmetic.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// Features begin `offset` elements into a row; the deltas stand right behind them.
template <class T, class Arithmetic, class Factors>
QorStatus evalDelta(T* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window, Arithmetic arithmetic,
                    Factors factors) {
  if (QorStatus bad = Checks()
                          .null(buffer)
                          .require(factors.given(), qorStatusNullPointer)
                          .size(height, width, window)
                          .atLeast(0, offset)
                          .require(height >= int64_t{2} * window, qorStatusBadSize)
                          .require(step >= offset + int64_t{2} * width, qorStatusBadStride))
    return bad;
  coverColumns<T, kNativeLanes<T>>(width, [&](int32_t c, auto n) {
    const T* in = buffer + std::ptrdiff_t{offset} + c;
    T* out = buffer + std::ptrdiff_t{offset} + width + c;
    const auto factor = factors.template at<n>(1, c);
    const auto row = [&](std::ptrdiff_t r) { return Arithmetic::windowed(Lanes<T, n>::load(in + r * step)); };
    const auto first = row(0), last = row(height - 1);
    const auto put = [&](std::ptrdiff_t r, const auto& ahead, const auto& behind) {
      arithmetic.regression(window, ahead, behind, factor).store(out + r * step);
    };
    std::ptrdiff_t r = 0;
    for (; r < window; ++r)
      put(
          r, [&](int32_t k) { return row(r + k); }, [&](int32_t) { return first; });
    for (; r < height - window; ++r)
      put(
          r, [&](int32_t k) { return row(r + k); }, [&](int32_t k) { return row(r - k); });
    for (; r < height; ++r)
      put(
          r, [&](int32_t) { return last; }, [&](int32_t k) { return row(r - k); });
  });
  return qorStatusOk;
}

}  // namespace qorsr
