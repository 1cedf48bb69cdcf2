// Deltas and accelerations of the Aurora front-end: 13 features, both windows spanning nine frames of features.
//
//   d(t) = -x(t-4) - 0.75 x(t-3) - 0.5 x(t-2) - 0.25 x(t-1) + 0.25 x(t+1) + 0.5 x(t+2) + 0.75 x(t+3) + x(t+4)
//   a(t) = x(t-4) + 0.25 x(t-3) - 0.285714 x(t-2) - 0.607143 x(t-1) - 0.714286 x(t) - 0.607143 x(t+1) - 0.285714 x(t+2)
//          + 0.25 x(t+3) + x(t+4)
//
// in float, added from the left. A source row has 14 elements: 12 cepstral coefficients, the one of order 0, the log energy;
// feature 12 is (c0 * 0.6) / 23 + logE * 0.4.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "features/delta_arithmetic.h"
#include "features/delta_stream.h"
#include "frame/bits.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr int32_t kAuroraWidth = 13, kAuroraSourceWidth = 14;

// Terms 0 to 3 of a window, from the left.
template <int N>
inline Lanes<float, N> auroraPast(const Lanes<float, N> (&x)[9], float w0, float w1, float w2, float w3) {
  using L = Lanes<float, N>;
  return x[0] * L(w0) + x[1] * L(w1) + x[2] * L(w2) + x[3] * L(w3);
}
template <int N>
inline Lanes<float, N> auroraDelta(const Lanes<float, N> (&x)[9]) {
  using L = Lanes<float, N>;
  return auroraPast(x, -1.0F, -0.75F, -0.5F, -0.25F) + x[5] * L(0.25F) + x[6] * L(0.5F) + x[7] * L(0.75F) + x[8];
}
template <int N>
inline Lanes<float, N> auroraAcceleration(const Lanes<float, N> (&x)[9]) {
  using L = Lanes<float, N>;
  return auroraPast(x, 1.0F, 0.25F, -0.285714F, -0.607143F) + x[4] * L(-0.714286F) + x[5] * L(-0.607143F) + x[6] * L(-0.285714F) +
         x[7] * L(0.25F) + x[8];
}

// The coefficient of order 0 and the log energy in one.
template <class T>
inline float auroraEnergy(const T* sourceRow) {
  return static_cast<float>(sourceRow[12]) * 0.6F / 23.0F + static_cast<float>(sourceRow[13]) * 0.4F;
}

// In float: values as they are, or times the table's factors.
template <class Factors>
struct AuroraReal {
  using Element = float;
  static constexpr int kWidest = kNativeLanes<float>;
  Factors factors;

  template <int kWhich, int N>
  static Lanes<float, N> load(const float* p) {
    return Lanes<float, N>::load(p);
  }
  static Lanes<float, 1> energy(const float* sourceRow) { return Lanes<float, 1>(auroraEnergy(sourceRow)); }
  template <int kWhich, int N>
  static Lanes<float, N> window(const Lanes<float, N> (&x)[9]) {
    if constexpr (kWhich == 1) return auroraDelta(x);
    if constexpr (kWhich == 2) return auroraAcceleration(x);
  }
  template <int kWhich, int N>
  Lanes<float, N> finish(const Lanes<float, N>& value, int32_t column) const {
    if constexpr (Factors::kOfDerivatives) return value * factors.template at<N>(kWhich, column);
    return value;
  }
};

// In 16 bits. Deltas are exact integers (four times d, hence two more bits to shift); accelerations are the float sum, truncated.
// Without factors values are shifted by the scale factor and limited; with a table they are limited, and their exact product with
// the factor is shifted and limited.
template <class Factors>
struct AuroraFixed {
  using Element = int16_t;
  static constexpr int kWidest = 8;
  Factors factors;
  FixedArithmetic arithmetic;

  template <int kWhich, int N>
  static auto load(const int16_t* p) {
    return loadAs<std::conditional_t<kWhich == 2, float, int32_t>, N>(p);
  }
  static Lanes<int32_t, 1> energy(const int16_t* sourceRow) {
    return Lanes<int32_t, 1>(static_cast<int32_t>(auroraEnergy(sourceRow)));
  }
  template <int kWhich, int N>
  static Lanes<int32_t, N> window(const Lanes<int32_t, N> (&x)[9]) {
    Lanes<int32_t, N> sum = x[8] - x[0], all = sum;  // 4 d4 + 3 d3 + 2 d2 + d1 as d4 + (d4 + d3) + (d4 + d3 + d2) + ...
    for (int k = 3; k >= 1; --k) all += sum += x[4 + k] - x[4 - k];
    return all;
  }
  template <int kWhich, int N>
  static Lanes<int32_t, N> window(const Lanes<float, N> (&x)[9]) {
    return truncated(auroraAcceleration(x));
  }
  template <int kWhich, int N>
  Lanes<int16_t, N> finish(const Lanes<int32_t, N>& value, int32_t column) const {
    constexpr int kFraction = kWhich == 1 ? 2 : 0;
    if constexpr (Factors::kOfDerivatives) {
      return arithmetic.scaled(limited(value >> kFraction), factors.template at<N>(kWhich, column));
    } else {
      return limited(shiftByScale(value, int64_t{arithmetic.scaleFactor} + kFraction));
    }
  }

 private:
  template <int N>
  static Lanes<int16_t, N> limited(const Lanes<int32_t, N>& value) {
    if constexpr (N == 1) {
      return Lanes<int16_t, 1>(saturate<int16_t>(value.part[0]));
    } else {
      return saturated(lowerHalf(value), upperHalf(value));
    }
  }
};

template <class Arithmetic>
struct AuroraMember {
  using T = typename Arithmetic::Element;
  static constexpr int kDerivatives = 2, kReach = 4, kLookBack = 2 * kReach;
  static constexpr int lag(int) { return kReach; }

  const T* source;
  T* destination;
  int32_t step;
  Arithmetic arithmetic;

  bool given() const { return arithmetic.factors.given(); }

  void features(std::ptrdiff_t first, std::ptrdiff_t from, std::ptrdiff_t to) const {
    for (std::ptrdiff_t row = from; row < to; ++row) {
      const T* in = source + (row - first) * kAuroraSourceWidth;
      T* out = destination + row * step;
      coverColumns<T, Arithmetic::kWidest>(kAuroraWidth - 1, [&](int32_t c, auto n) {
        arithmetic.template finish<0>(arithmetic.template load<0, n>(in + c), c).store(out + c);
      });
      arithmetic.template finish<0>(arithmetic.energy(in), kAuroraWidth - 1).store(out + kAuroraWidth - 1);
    }
  }

  template <int kWhich>
  void derivative(Derivative<kWhich>, std::ptrdiff_t from, std::ptrdiff_t to, std::ptrdiff_t last) const {
    coverColumns<T, Arithmetic::kWidest>(kAuroraWidth, [&](int32_t c, auto n) {
      const T* in = destination + c;
      T* out = destination + kWhich * kAuroraWidth + c;
      slideWindow<kReach>(
          from, to, last, [&](std::ptrdiff_t row) { return arithmetic.template load<kWhich, n>(in + row * step); },
          [&](std::ptrdiff_t row, const auto& x) {
            arithmetic.template finish<kWhich>(arithmetic.template window<kWhich>(x), c).store(out + row * step);
          });
    });
  }
};

template <class T, class Arithmetic>
QorStatus auroraDeltaDelta(const T* source, T* destination, int32_t step, int32_t height, int32_t flags, Arithmetic arithmetic) {
  const AuroraMember<Arithmetic> member{source, destination, step, arithmetic};
  return streamDelta(member, source, destination, kAuroraWidth, step, height, flags);
}

}  // namespace qorsr
