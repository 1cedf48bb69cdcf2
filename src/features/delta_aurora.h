// Deltas and accelerations of the Aurora front-end: 13 features, both windows spanning nine frames of features.
//
//   d(t) = -x(t-4) - 0.75 x(t-3) - 0.5 x(t-2) - 0.25 x(t-1) + 0.25 x(t+1) + 0.5 x(t+2) + 0.75 x(t+3) + x(t+4)
//   a(t) = x(t-4) + 0.25 x(t-3) - 0.285714 x(t-2) - 0.607143 x(t-1) - 0.714286 x(t) - 0.607143 x(t+1) - 0.285714 x(t+2)
//          + 0.25 x(t+3) + x(t+4)
//
// in float, added from the left. A source row has 14 elements: 12 cepstral coefficients, the one of order 0, the log energy;
// feature 12 is (c0 * 0.6) / 23 + logE * 0.4.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "features/delta_arithmetic.h"
#include "features/delta_stream.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr int32_t kAuroraWidth = 13, kAuroraSourceWidth = 14;
inline constexpr int kAuroraReach = 4, kAuroraSpan = 2 * kAuroraReach + 1;

// Terms 0 to 3 of a window, from the left.
template <int N>
[[gnu::always_inline]] inline Lanes<float, N> auroraPast(const Lanes<float, N> (&x)[kAuroraSpan], float w0, float w1, float w2,
                                                         float w3) {
  using L = Lanes<float, N>;
  return x[0] * L(w0) + x[1] * L(w1) + x[2] * L(w2) + x[3] * L(w3);
}
template <int N>
[[gnu::always_inline]] inline Lanes<float, N> auroraDelta(const Lanes<float, N> (&x)[kAuroraSpan]) {
  using L = Lanes<float, N>;
  return auroraPast(x, -1.0F, -0.75F, -0.5F, -0.25F) + x[5] * L(0.25F) + x[6] * L(0.5F) + x[7] * L(0.75F) + x[8];
}
template <int N>
[[gnu::always_inline]] inline Lanes<float, N> auroraAcceleration(const Lanes<float, N> (&x)[kAuroraSpan]) {
  using L = Lanes<float, N>;
  return auroraPast(x, 1.0F, 0.25F, -0.285714F, -0.607143F) + x[4] * L(-0.714286F) + x[5] * L(-0.607143F) + x[6] * L(-0.285714F) +
         x[7] * L(0.25F) + x[8];
}

// The coefficient of order 0 and the log energy in one.
template <class T>
inline float auroraEnergy(const T* sourceRow) {
  return static_cast<float>(sourceRow[12]) * 0.6F / 23.0F + static_cast<float>(sourceRow[13]) * 0.4F;
}

// Columns of a width that is known when compiling, in blocks of kLanes; the last block overlaps the one before it.
template <int kWidth, int kLanes, class Body>
[[gnu::always_inline]] inline void coverKnownColumns(const Body& body) {
  static_assert(kWidth >= kLanes);
  for (int32_t c = 0; c < kWidth - kLanes; c += kLanes) body(c, LaneCount<kLanes>());
  body(kWidth - kLanes, LaneCount<kLanes>());
}

// The rows of a window, at some column, as lanes.
template <class As, int N>
struct AuroraFrames {
  Lanes<As, N> rows[kAuroraSpan];

  template <class T>
  [[gnu::always_inline]] AuroraFrames(const T* const (&x)[kAuroraSpan], int32_t column) {
    for (int k = 0; k < kAuroraSpan; ++k) rows[k] = loadAs<As, N>(x[k] + column);
  }
};

// In float: values as they are, or times the table's factors.
template <class Factors>
struct AuroraReal {
  using Element = float;
  static constexpr int kLanes = std::min(8, kNativeLanes<float>);
  Factors factors;

  template <int N>
  [[gnu::always_inline]] Lanes<float, N> feature(const Lanes<float, N>& x, int32_t column) const {
    return finished(x, 0, column);
  }
  [[gnu::always_inline]] Lanes<float, 1> energy(const float* sourceRow, int32_t column) const {
    return finished(Lanes<float, 1>(auroraEnergy(sourceRow)), 0, column);
  }
  template <int N>
  [[gnu::always_inline]] void derivatives(const float* const (&x)[kAuroraSpan], int32_t column, Lanes<float, N>& delta,
                                          Lanes<float, N>& acceleration) const {
    const AuroraFrames<float, N> frames(x, column);
    delta = finished(auroraDelta(frames.rows), 1, column);
    acceleration = finished(auroraAcceleration(frames.rows), 2, column);
  }

 private:
  template <int N>
  [[gnu::always_inline]] Lanes<float, N> finished(const Lanes<float, N>& value, int derivative, int32_t column) const {
    if constexpr (Factors::kOfFeatures) return value * factors.template at<N>(derivative, column);
    return value;
  }
};

// In 16 bits. Deltas are exact integers (four times d, hence two more bits to shift); accelerations are the float sum, truncated.
// Without factors values are shifted by the scale factor and limited; with a table they are limited, and their exact product with
// the factor is shifted and limited.
template <class Factors>
struct AuroraFixed {
  using Element = int16_t;
  static constexpr int kLanes = 8;
  Factors factors;
  FixedArithmetic whole, quarters;  // units of 1 and of 1/4, by the scale factor

  AuroraFixed(Factors f, int32_t scaleFactor)
      : factors(f), whole{ScaleShift(scaleFactor)}, quarters{ScaleShift(int64_t{scaleFactor} + 2)} {}

  template <int N>
  Lanes<int16_t, N> feature(const Lanes<int16_t, N>& x, int32_t column) const {
    if constexpr (Factors::kOfFeatures) {
      return whole.scaled(x, factors.template at<N>(0, column));
    } else {
      return whole.limited(lowerHalf(as<int32_t>(x)), upperHalf(as<int32_t>(x)));
    }
  }
  Lanes<int16_t, 1> energy(const int16_t* sourceRow, int32_t column) const {
    const Lanes<int32_t, 1> value(static_cast<int32_t>(auroraEnergy(sourceRow)));
    if constexpr (Factors::kOfFeatures) {
      return whole.scaled(FixedArithmetic{ScaleShift(0)}.limited(value), factors.template at<1>(0, column));
    } else {
      return whole.limited(value);
    }
  }
  template <int N>
  void derivatives(const int16_t* const (&x)[kAuroraSpan], int32_t column, Lanes<int16_t, N>& delta,
                   Lanes<int16_t, N>& acceleration) const {
    const AuroraFrames<int32_t, N> frames(x, column);
    auto ramp = frames.rows[8] - frames.rows[0], sum = ramp;  // 4 d4 + 3 d3 + 2 d2 + d1 as d4 + (d4 + d3) + (d4 + d3 + d2) + ...
    for (int k = 3; k >= 1; --k) sum += ramp += frames.rows[4 + k] - frames.rows[4 - k];
    delta = finished(sum, quarters, 2, 1, column);
    acceleration = finished(truncated(auroraAcceleration(AuroraFrames<float, N>(x, column).rows)), whole, 0, 2, column);
  }

 private:
  // `value` in units of 2^-fraction.
  template <int N>
  Lanes<int16_t, N> finished(const Lanes<int32_t, N>& value, const FixedArithmetic& plain, int fraction, int derivative,
                             int32_t column) const {
    if constexpr (Factors::kOfFeatures) {
      const FixedArithmetic toWhole{ScaleShift(fraction)};
      return whole.scaled(toWhole.limited(lowerHalf(value), upperHalf(value)), factors.template at<N>(derivative, column));
    } else {
      return plain.limited(lowerHalf(value), upperHalf(value));
    }
  }
};

template <class Arithmetic>
struct AuroraMember {
  using T = typename Arithmetic::Element;
  static constexpr int kDerivatives = 2, kLanes = Arithmetic::kLanes;
  static constexpr int lag(int) { return kAuroraReach; }
  static constexpr std::ptrdiff_t kLookBack = 2 * kAuroraReach;

  const T* source;
  T* destination;
  int32_t step;
  Arithmetic arithmetic;

  bool given() const { return arithmetic.factors.given(); }

  void startUp(std::ptrdiff_t last) const {
    features(0, 0, kLookBack);
    edge(0, kLookBack - kAuroraReach, last);
  }
  // Rows whose window is limited to rows 0 to `last`.
  void edge(std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t last) const {
    derivatives(from, to, [&](std::ptrdiff_t row) { return destination + std::clamp<std::ptrdiff_t>(row, 0, last) * step; });
  }
  void finish(std::ptrdiff_t rows) const { edge(rows - kAuroraReach, rows, rows - 1); }

  // Rows `from` to `to` - 1, source row 0 belonging to row `first`: each new row completes both derivatives of the row four before.
  void steady(std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    features(first, from, to);
    derivatives(from - kAuroraReach, to - kAuroraReach,
                [base = destination, pitch = std::ptrdiff_t{step}](std::ptrdiff_t row) { return base + row * pitch; });
  }

 private:
  void features(std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    for (std::ptrdiff_t row = from; row < to; ++row) {
      const T* in = source + (row - first) * kAuroraSourceWidth;
      T* out = destination + row * step;
      coverKnownColumns<kAuroraWidth - 1, kLanes>(
          [&](int32_t c, auto n) { arithmetic.feature(Lanes<T, n>::load(in + c), c).store(out + c); });
      arithmetic.energy(in, kAuroraWidth - 1).store(out + kAuroraWidth - 1);
    }
  }

  template <class RowAt>
  void derivatives(std::ptrdiff_t from, std::ptrdiff_t to, const RowAt& rowAt) const {
    for (std::ptrdiff_t row = from; row < to; ++row) {
      const T* x[kAuroraSpan];
      for (int k = 0; k < kAuroraSpan; ++k) x[k] = rowAt(row + k - kAuroraReach);
      T* out = destination + row * step + kAuroraWidth;
      coverKnownColumns<kAuroraWidth, kLanes>([&](int32_t c, auto n) {
        Lanes<T, n> delta, acceleration;
        arithmetic.derivatives(x, c, delta, acceleration);
        delta.store(out + c);
        acceleration.store(out + kAuroraWidth + c);
      });
    }
  }
};

template <class T, class Arithmetic>
QorStatus auroraDeltaDelta(const T* source, T* destination, int32_t step, int32_t height, int32_t flags, Arithmetic arithmetic) {
  const AuroraMember<Arithmetic> member{source, destination, step, arithmetic};
  return streamDelta(member, source, destination, kAuroraWidth, step, height, flags);
}

}  // namespace qorsr
