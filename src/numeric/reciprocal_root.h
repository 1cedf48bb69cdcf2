// Reciprocal square roots with a floor.
//
//   r = 1 / sqrt(x),  y = (3 - (x r) r) (r / 2): one Newton step;  y = the floor itself where x lies below it
// In float an x equal to the floor lies below it, in integers it does not (required). Integers are converted to float; y times a power
// of two is limited and converted back.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

template <int N>
inline Lanes<float, N> reciprocalRoot(const Lanes<float, N>& x) {
  using L = Lanes<float, N>;
  const L r = L(1.0F) / sqrt(x);
  return (L(3.0F) - x * r * r) * (r * L(0.5F));
}

inline QorStatus statusOfRoots(bool any) { return any ? qorStatusOk : qorStatusDegenerateInput; }

inline QorStatus reciprocalRoots(float* values, int32_t length, float floor) {
  if (QorStatus bad = Checks().null(values).size(length).require(!(floor <= 0.0F), qorStatusBadArgument)) return bad;
  bool any = false;
  coverLastFirst<float, kNativeLanes<float>>(
      length,
      [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        const L x = L::load(values + i), least(floor);
        any |= anyLess(least, x);
        return selectLess(least, x, reciprocalRoot(x), least);
      },
      [&](int32_t i, const auto& value) { value.store(values + i); });
  return statusOfRoots(any);
}

// y of integers; whether any of them reaches the floor.
template <class Store>
[[gnu::always_inline]] inline bool rootsOfIntegers(const int32_t* source, int32_t length, int32_t floor, const Store& store) {
  const auto least = static_cast<float>(floor);
  bool any = false;
  coverLastFirst<int32_t, kNativeLanes<int32_t>>(
      length,
      [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        const L x = loadAs<float, n>(source + i);
        any |= !allLess(x, L(least));
        return selectLess(x, L(least), L(least), reciprocalRoot(x));
      },
      store);
  return any;
}

inline QorStatus reciprocalRoots(const int32_t* source, int16_t* result, int32_t length, int32_t floor, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, result).size(length).require(floor >= 1, qorStatusBadArgument)) return bad;
  const auto multiplier = twoToMinus<float>(scaleFactor);
  return statusOfRoots(rootsOfIntegers(
      source, length, floor, [&](int32_t i, const auto& y) __attribute__((always_inline)) {
        using L = std::decay_t<decltype(y)>;
        saturated(truncated(max(min(y * L(multiplier), L(32767.0F)), L(-32768.0F)))).store(result + i);
      }));
}

inline QorStatus reciprocalRoots(int32_t* values, int32_t length, int32_t floor, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(values).size(length).require(floor >= 1, qorStatusBadArgument)) return bad;
  if (!isAligned16(values)) {
    const auto multiplier = twoToMinus<float>(scaleFactor);
    return statusOfRoots(rootsOfIntegers(
        values, length, floor, [&](int32_t i, const auto& y) __attribute__((always_inline)) {
          using L = std::decay_t<decltype(y)>;
          // required: what is limited at 2^31 becomes the most negative integer
          truncated(max(min(y * L(multiplier), L(2147483648.0F)), L(-2147483648.0F))).store(values + i);
        }));
  }
  // required: on an aligned address the conversion rounds to nearest and saturates
  constexpr int32_t kBlock = 256;
  alignas(64) float roots[kBlock];
  bool any = false;
  for (int32_t done = 0; done < length; done += kBlock) {
    const int32_t count = length - done < kBlock ? length - done : kBlock;
    any |= rootsOfIntegers(values + done, count, floor, [&](int32_t i, const auto& y) { y.store(roots + i); });
    convertFloats(roots, values + done, count, kNearestEven, scaleFactor);
  }
  return statusOfRoots(any);
}

}  // namespace qorsr
