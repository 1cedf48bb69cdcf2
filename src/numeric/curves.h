// Curves, element by element.
//
//   ExpNegSqr   y = exp(-x^2), the square in the type of the source
//   SinC        y = sin(x) / x, and 1 for 0
//   UnitCurve   y = 0 below 0, x^2 to 1, 2 - (2 - x)^2 to 2, 2 beyond and for a NaN
// In 16 bits with Q fraction bits the unit curve is formed with 2 Q of them in 32-bit integers, and shifted.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"

namespace qorsr {

// ---- Exponential and sine: y = curve(x), x also in place ----

// Registers taken together: enough to hide the latency of long chains of operations (curves).
inline constexpr int kRegistersOfCurve = 4;

// From numbers to numbers of type To, which may be a wider one.
template <class To, class From, class Curve>
void drawCurve(const From* source, To* result, int32_t length, Curve curve) {
  constexpr int kOne = kNativeLanes<To>, kMany = kRegistersOfCurve * kOne;
  int32_t i = 0;
  for (; length - i >= kMany; i += kMany) curve(Lanes<From, kMany>::load(source + i)).store(result + i);
  for (; length - i >= kOne; i += kOne) curve(Lanes<From, kOne>::load(source + i)).store(result + i);
  if (i == length) return;
  const Tail<From, kOne> sourceTail(length - i);
  const Tail<To, kOne> resultTail(length - i);
  resultTail.store(curve(sourceTail.load(source + i)), result + i);
}

template <class To>
struct ExpNegSqr {
  template <class T, int N>
  Lanes<To, N> operator()(const Lanes<T, N>& x) const {
    return expOfMinus(as<To>(x * x));
  }
};
template <class To>
struct SinC {
  template <class T, int N>
  Lanes<To, N> operator()(const Lanes<T, N>& x) const {
    using L = Lanes<To, N>;
    const L magnitude = abs(as<To>(x));
    // Below the least number there is only 0; a NaN stays.
    return selectLess(magnitude, L(std::numeric_limits<To>::denorm_min()), L(To(1)), sinOfMagnitude(magnitude) / magnitude);
  }
};

template <template <class> class Curve, class From, class To>
QorStatus curve(const From* source, To* result, int32_t length) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  drawCurve(source, result, length, Curve<To>());
  return qorStatusOk;
}

// ---- Unit curve ----

template <class At, class T>
void eachInPlace(int32_t length, T* result, const At& at) {
  coverLastFirst<T, kNativeLanes<T>>(length, at, [&](int32_t i, const auto& value) { value.store(result + i); });
}

inline QorStatus unitCurve(const float* source, float* result, int32_t length) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  constexpr float kAboveTwo = 0x1.000002p1F;
  eachInPlace(
      length, result, [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        const L x = L::load(source + i), rest = L(2.0F) - x;
        const L upper = selectLess(x, L(kAboveTwo), L(2.0F) - rest * rest, L(2.0F));
        return selectLess(x, L(0.0F), L(0.0F), selectLess(x, L(1.0F), x * x, upper));
      });
  return qorStatusOk;
}

// The curve with 2 Q fraction bits, of integers with Q of them. Products of lanes: the upper halves of 0 to 2^14 are 0.
template <int N>
inline Lanes<int32_t, N> unitCurveOf(const Lanes<int32_t, N>& x, int32_t fractionBits) {
  using L = Lanes<int32_t, N>;
  const int32_t one = int32_t{1} << fractionBits, two = 2 * one;
  const L limited = max(L(0), min(L(two), x));
  const L base = min(limited, L(two) - limited);
  L square = base;
  if constexpr (N == 1) {
    square.part[0] *= base.part[0];
  } else {
    square = pairDots(std::bit_cast<Lanes<int16_t, 2 * N>>(base), std::bit_cast<Lanes<int16_t, 2 * N>>(base));
  }
  return selectLess(limited, L(one), square, L(two << fractionBits) - square);
}

inline QorStatus unitCurve(const int16_t* source, int32_t fractionBits, int16_t* result, int32_t length, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  if (fractionBits < 0 || fractionBits > 14) {  // required: no error
    for (int32_t i = 0; i < length; ++i) result[i] = 0;
    return qorStatusOk;
  }
  const int64_t shift = int64_t{scaleFactor} + 2 * int64_t{fractionBits};  // modulo 32, either way (required)
  const int right = shift >= 1 ? static_cast<int>(shift % 32) : 0, left = shift >= 1 ? 0 : static_cast<int>(-shift % 32);
  coverLastFirst<int32_t, kNativeLanes<int32_t>>(
      length,
      [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<int32_t, n>;
        const L t = shiftLeft(unitCurveOf(loadAs<int32_t, n>(source + i), fractionBits) >> right, left);
        return saturated(shiftLeft(min(t, L(32767)), 16) >> 16);  // limited above only: else the low half
      },
      [&](int32_t i, const auto& value) { value.store(result + i); });
  return qorStatusOk;
}

}  // namespace qorsr
