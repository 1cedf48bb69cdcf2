// Deltas and accelerations with the windows of one and two frames, in blocks.
//
//   Win1   (x(t+1) - x(t-1)) * factor
//   Win2   ((x(t+1) - x(t-1)) + p + p) * factor     p = x(t+2) - x(t-2)
//
// The acceleration is the same window over the deltas. Both are computed from what stands in the destination. 16-bit differences
// and window sums wrap; their product with the factor is exact, is shifted by the scale factor and then limited.
#pragma once

#include <cstddef>
#include <cstdint>

#include "features/delta_arithmetic.h"
#include "features/delta_stream.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

struct Win1 {
  static constexpr int kReach = 1;
  template <class L>
  static L slope(const L (&x)[3]) {
    return x[2] - x[0];
  }
};

struct Win2 {
  static constexpr int kReach = 2;
  template <class L>
  static L slope(const L (&x)[5]) {
    const L p = x[4] - x[0];
    return x[3] - x[1] + p + p;
  }
};

template <class Window, int kCount, class Arithmetic, class Factors>
struct WindowMember {
  using T = typename Arithmetic::Element;
  static constexpr int kDerivatives = kCount;
  static constexpr int lag(int derivative) { return derivative * Window::kReach; }
  static constexpr int kLookBack = lag(kCount + 1);

  const T* source;
  T* destination;
  int32_t width, step;
  Arithmetic arithmetic;
  Factors factors;

  bool given() const { return factors.given(); }

  // Rows from `from` to `to` - 1; source row 0 belongs to row `first`.
  void features(std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    coverColumns<T, Arithmetic::kWidest>(width, [&](int32_t c, auto n) {
      const T* in = source + (from - first) * width + c;
      T* out = destination + from * step + c;
      if constexpr (Factors::kOfFeatures) {
        const auto factor = factors.template at<n>(0, c);
        for (std::ptrdiff_t row = from; row < to; ++row, in += width, out += step) {
          arithmetic.scaled(Arithmetic::template load<n>(in), factor).store(out);
        }
      } else {
        for (std::ptrdiff_t row = from; row < to; ++row, in += width, out += step) Lanes<T, n>::load(in).store(out);
      }
    });
  }

  template <int kWhich>
  void derivative(Derivative<kWhich>, std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t last) const {
    coverColumns<T, Arithmetic::kWidest>(width, [&](int32_t c, auto n) {
      const T* in = destination + std::ptrdiff_t{kWhich - 1} * width + c;
      T* out = destination + std::ptrdiff_t{kWhich} * width + c;
      const auto factor = factors.template at<n>(kWhich, c);
      slideWindow<Window::kReach>(
          from, to, last, [&](std::ptrdiff_t row) { return Arithmetic::template load<n>(in + row * step); },
          [&](std::ptrdiff_t row, const auto& x) { arithmetic.scaled(Window::slope(x), factor).store(out + row * step); });
    });
  }
};

template <class Window, int kCount, class T, class Arithmetic, class Factors>
QorStatus windowDelta(const T* source, int32_t width, T* destination, int32_t step, int32_t height, int32_t flags,
                      Arithmetic arithmetic, Factors factors) {
  const WindowMember<Window, kCount, Arithmetic, Factors> member{source, destination, width, step, arithmetic, factors};
  return streamDelta(member, source, destination, width, step, height, flags);
}

}  // namespace qorsr
