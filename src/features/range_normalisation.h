// A vector mapped onto 0 to `range`, clipped at two points of the interval from min to max in which its numbers lie.
//
//   d = max - min, high = upper * d + min, low = d * lower + min
//   y = max(0, min(high, x) - low) * gain       gain = range / (upper * d - d * lower)
//
// In float, every operation rounded on its own; a NaN stays one. Whole results are rounded to nearest, ties to even, and limited to
// their type; a NaN gives 0.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "features/extremes.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

struct RangeMap {
  float high, low, gain;

  RangeMap(float min, float max, float lower, float upper, float range) {
    const float d = max - min;
    high = upper * d + min;
    low = d * lower + min;
    gain = range / (upper * d - d * lower);
  }

  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& x) const {
    using L = Lanes<float, N>;
    return max(L(0.0F), min(L(high), x) - L(low)) * L(gain);
  }
};

// ---- Results ----

// Whole results of a type, in lanes of 16 bits. No y is below 0; a NaN converts to the most negative number.
template <class To, int N>
inline Lanes<int16_t, N> wholeResults(const Lanes<float, N>& y) {
  constexpr float kMost = std::numeric_limits<To>::max();
  return max(saturated(nearest(min(Lanes<float, N>(kMost), y))), Lanes<int16_t, N>(0));
}

template <int N>
inline void storeResults(const Lanes<int16_t, N>& y, uint8_t* destination) {
  using L = Lanes<int16_t, N>;
  for (int i = 0; i < L::kParts; ++i) {
    if constexpr (N == 1) {
      *destination = static_cast<uint8_t>(y.part[i]);
    } else {
      native::store(destination + i * L::kPart, __builtin_convertvector(y.part[i], native::Vector<uint8_t, L::kPart>));
    }
  }
}
template <class T, int N>
inline void storeResults(const Lanes<T, N>& y, T* destination) {
  y.store(destination);
}

template <class From, class To>
QORSR_IN_GUARDED_MODE void mapNumbers(const From* source, To* destination, int32_t length, RangeMap map) {
  using Element = std::conditional_t<std::is_same_v<To, float>, float, int16_t>;
  const auto at = [&](int32_t i, auto n) {
    const auto y = map(loadAs<float, n>(source + i));
    if constexpr (std::is_same_v<To, float>) {
      return y;
    } else {
      return wholeResults<To>(y);
    }
  };
  coverLastFirst<Element, kNativeLanes<Element>>(length, at, [&](int32_t i, const auto& y) { storeResults(y, destination + i); });
}

// ---- Family bodies; source and destination may be the same memory ----

template <class T>
struct RangeRatios {
  float lower, upper;
  T range;

  bool areGood() const { return !(lower < 0.0F) && lower < upper && !(upper > 1.0F) && !(range < T(0)); }
};

template <class From, class To>
QorStatus mapRange(const From* source, To* destination, int32_t length, Extremes<From> ends, const RangeRatios<To>& to) {
  if (ends.least == ends.greatest) {
    std::fill_n(destination, length, To(0));
    return qorStatusDegenerateInput;
  }
  const RangeMap map(static_cast<float>(ends.least), static_cast<float>(ends.greatest), to.lower, to.upper,
                     static_cast<float>(to.range));
  if (std::is_same_v<To, float> || EnvironmentGuard::isCallersNearest()) {
    mapNumbers(source, destination, length, map);
  } else {
    const EnvironmentGuard guard(Rounding::kNearest);
    mapNumbers(source, destination, length, map);
  }
  return qorStatusOk;
}

// Ends given.
template <class From, class To>
QorStatus normaliseRange(const From* source, To* destination, int32_t length, Extremes<From> ends, const RangeRatios<To>& to) {
  if (QorStatus bad = Checks()
                          .null(source, destination)
                          .size(length)
                          .require(to.areGood() && !(ends.least > ends.greatest), qorStatusBadArgument)) {
    return bad;
  }
  return mapRange(source, destination, length, ends, to);
}

// Ends found in the data. A single number has no range, also if it is none.
template <class From, class To>
QorStatus normaliseRange(const From* source, To* destination, int32_t length, const RangeRatios<To>& to) {
  using Limits = std::numeric_limits<From>;
  constexpr From kMost = Limits::has_infinity ? Limits::infinity() : Limits::max();
  constexpr From kLeast = Limits::has_infinity ? -Limits::infinity() : Limits::min();
  if (QorStatus bad = Checks().null(source, destination).size(length).require(to.areGood(), qorStatusBadArgument)) return bad;
  const Extremes<From> ends = length < 2 ? Extremes<From>{0, 0} : extremes(source, length, {kMost, kLeast});
  return mapRange(source, destination, length, ends, to);
}

}  // namespace qorsr
