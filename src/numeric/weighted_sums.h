// Two vectors blended: W = w1 + w2, r = 1 / W,
//
//   WeightedSum       y = first (w1 r) + second (w2 r)
//   WeightedSumHalf   y = first r + second (w2 r)
// each product, and r, rounded on its own. W = 0 gives markers: by the sign of first w1 + second w2, NaN, infinity or minus infinity.
// 16 bits: in float, limited, and converted as length and addresses say (required).
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

// How results are formed from sums, and what markers are.
template <class T>
struct BlendOfReals {
  using Real = T;
  template <int N>
  static Lanes<T, N> result(const Lanes<T, N>& sum) {
    return sum;
  }
  static constexpr T kHighest = std::numeric_limits<T>::infinity(), kLowest = -kHighest;
  static constexpr T kNone = std::numeric_limits<T>::quiet_NaN();
};
struct BlendOfShorts {
  using Real = float;
  template <int N>
  static Lanes<float, N> limited(const Lanes<float, N>& sum) {
    using L = Lanes<float, N>;
    return max(min(zeroWhereNaN(sum), L(32767.0F)), L(-32768.0F));
  }
  static constexpr float kHighest = 32767.0F, kLowest = -32768.0F, kNone = 0.0F;
};
struct BlendTruncated : BlendOfShorts {
  template <int N>
  static Lanes<int16_t, N> result(const Lanes<float, N>& sum) {
    return saturated(truncated(limited(sum)));
  }
};
struct BlendRounded : BlendOfShorts {  // in a mode that is known to be nearest
  template <int N>
  static Lanes<int16_t, N> result(const Lanes<float, N>& sum) {
    return saturated(nearest(limited(sum)));
  }
};

template <class Blend, class T, class Real, class Sum>
[[gnu::always_inline]] inline void blendBy(const T* first, const T* second, T* result, int32_t length, const Sum& sum) {
  coverLastFirst<Real, kNativeLanes<Real>>(
      length,
      [&](int32_t i, auto n)
          __attribute__((always_inline)) { return Blend::result(sum(loadAs<Real, n>(first + i), loadAs<Real, n>(second + i))); },
      [&](int32_t i, const auto& value) { value.store(result + i); });
}

// a first + b second; or, of weights whose sum is 0, the markers.
template <class Blend, class T, class Real = typename Blend::Real>
QORSR_IN_GUARDED_MODE void blend(const T* first, const T* second, T* result, int32_t length, Real a, Real b) {
  blendBy<Blend, T, Real>(first, second, result, length, [=](const auto& x, const auto& y) {
    using L = std::decay_t<decltype(x)>;
    return x * L(a) + y * L(b);
  });
}
template <class Blend, class T, class Real = typename Blend::Real>
void blendMarkers(const T* first, const T* second, T* result, int32_t length, Real a, Real b) {
  blendBy<Blend, T, Real>(first, second, result, length, [=](const auto& x, const auto& y) {
    using L = std::decay_t<decltype(x)>;
    const L sum = x * L(a) + y * L(b), zero(Real(0));
    return selectLess(zero, sum, L(Blend::kHighest), selectLess(sum, zero, L(Blend::kLowest), L(Blend::kNone)));
  });
}

template <bool Half, class T, class Real>
QorStatus weightedSum(const T* first, const T* second, T* result, int32_t length, Real w1, Real w2) {
  if (QorStatus bad = Checks().null(first, second, result).size(length)) return bad;
  using Plain = std::conditional_t<std::is_same_v<T, int16_t>, BlendTruncated, BlendOfReals<Real>>;
  const Real all = w1 + w2;
  if (all == Real(0)) {
    blendMarkers<Plain>(first, second, result, length, w1, w2);
    return qorStatusDivideByZero;
  }
  const Real r = Real(1) / all, a = Half ? r : w1 * r, b = w2 * r;
  if constexpr (std::is_same_v<T, int16_t>) {
    if (length >= 8 && isAligned16(first) && isAligned16(second) && isAligned16(result)) {
      EnvironmentGuard guard(Rounding::kNearest);
      blend<BlendRounded>(first, second, result, length, a, b);
      return qorStatusOk;
    }
  }
  blend<Plain>(first, second, result, length, a, b);
  return qorStatusOk;
}

}  // namespace qorsr
