// Deltas and accelerations with the windows of one and two frames, in blocks.
//
//   Win1   (x(t+1) - x(t-1)) * factor
//   Win2   ((x(t+1) - x(t-1)) + p + p) * factor     p = x(t+2) - x(t-2)
//
// The acceleration is the same window over the deltas. Both are computed from what stands in the destination. 16-bit differences
// and window sums wrap; their product with the factor is exact, is shifted by the scale factor and then limited.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

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
  static constexpr int kDerivatives = kCount, kReach = Window::kReach, kSpan = 2 * kReach + 1;
  static constexpr int lag(int derivative) { return derivative * kReach; }
  static constexpr int kLookBack = lag(kCount + 1);
  static constexpr int kWidest = kNativeLanes<T>;

  const T* source;
  T* destination;
  int32_t width, step;
  Arithmetic arithmetic;
  Factors factors;

  bool given() const { return factors.given(); }

  // The first rows of a block that begins an utterance.
  void startUp(std::ptrdiff_t last) const {
    coverColumns<T, kWidest>(width, [&](int32_t c, auto n) {
      const auto factor = factorOf<0, n>(c);
      for (std::ptrdiff_t row = 0; row < kLookBack; ++row) {
        feature(Lanes<T, n>::load(source + row * width + c), factor).store(destination + row * step + c);
      }
    });
    edge<1>(0, kLookBack - lag(1), last);
    if constexpr (kCount == 2) edge<2>(0, kLookBack - lag(2), last);
  }

  // What waits for frames behind the last one.
  void finish(std::ptrdiff_t rows) const {
    edge<1>(rows - lag(1), rows, rows - 1);
    if constexpr (kCount == 2) edge<2>(rows - lag(2), rows, rows - 1);
  }

  // Rows `from` to `to` - 1, source row 0 belonging to row `first`: each new row completes a delta and an acceleration before it.
  void steady(std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    coverColumns<T, kWidest>(width, [&](int32_t c, auto n) { columns<n>(c, first, from, to); });
  }

 private:
  template <int N>
  [[gnu::always_inline]] void columns(int32_t c, std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    constexpr LaneCount<N> n{};
    const std::ptrdiff_t w = width, pitch = step;
    const Arithmetic a = arithmetic;
    const auto factor0 = factorOf<0, n>(c), factor1 = factorOf<1, n>(c), factor2 = factorOf<2, n>(c);
    const T* in = source + (from - first) * w + c;
    T* out = destination + from * pitch + c;  // of the newest row, and of what it completes
    T *outDelta = out - kReach * pitch + w, *outAcceleration = outDelta - kReach * pitch + w;
    WindowOf<n> x, d;
    for (int k = 1; k < kSpan; ++k) {
      x.rows[k] = load<n>(out + (k - kSpan) * pitch);
      if constexpr (kCount == 2) d.rows[k] = load<n>(outDelta + (k - kSpan) * pitch);
    }
    const auto nextRow = [&]() __attribute__((always_inline)) {
      const Lanes<T, n> newest = feature(Lanes<T, n>::load(in), factor0);
      newest.store(out);
      x.advance(Arithmetic::windowed(newest));
      const Lanes<T, n> delta = a.scaled(Window::slope(x.rows), factor1);
      delta.store(outDelta);
      if constexpr (kCount == 2) {
        d.advance(Arithmetic::windowed(delta));
        a.scaled(Window::slope(d.rows), factor2).store(outAcceleration);
        outAcceleration += pitch;
      }
      in += w;
      out += pitch;
      outDelta += pitch;
    };
    repeatWrittenOut(to - from, nextRow, std::make_integer_sequence<int, kSpan>());
  }

  // Rows of a derivative whose window is limited to rows 0 to `last`.
  template <int kWhich>
  void edge(std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t last) const {
    coverColumns<T, kWidest>(width, [&](int32_t c, auto n) {
      const T* in = destination + std::ptrdiff_t{kWhich - 1} * width + c;
      T* out = destination + std::ptrdiff_t{kWhich} * width + c;
      const auto factor = factorOf<kWhich, n>(c);
      for (std::ptrdiff_t row = from; row < to; ++row) {
        WindowOf<n> x;
        for (int k = 0; k < kSpan; ++k) x.rows[k] = load<n>(in + std::clamp<std::ptrdiff_t>(row + k - kReach, 0, last) * step);
        arithmetic.scaled(Window::slope(x.rows), factor).store(out + row * step);
      }
    });
  }

  template <int N>
  using WindowOf = MovingWindow<decltype(Arithmetic::windowed(Lanes<T, N>())), kSpan>;

  template <int N>
  static auto load(const T* p) {
    return Arithmetic::windowed(Lanes<T, N>::load(p));
  }
  template <int kWhich, int N>
  Lanes<T, N> factorOf(int32_t column) const {
    if constexpr (kWhich <= kCount && (kWhich > 0 || Factors::kOfFeatures)) return factors.template at<N>(kWhich, column);
    return Lanes<T, N>(T(0));  // of what there is not
  }
  template <int N>
  Lanes<T, N> feature(const Lanes<T, N>& x, const Lanes<T, N>& factor) const {
    if constexpr (Factors::kOfFeatures) return arithmetic.scaled(Arithmetic::windowed(x), factor);
    return x;
  }
};

template <class Window, int kCount, class T, class Arithmetic, class Factors>
QorStatus windowDelta(const T* source, int32_t width, T* destination, int32_t step, int32_t height, int32_t flags,
                      Arithmetic arithmetic, Factors factors) {
  const WindowMember<Window, kCount, Arithmetic, Factors> member{source, destination, width, step, arithmetic, factors};
  return streamDelta(member, source, destination, width, step, height, flags);
}

}  // namespace qorsr
