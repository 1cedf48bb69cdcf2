// Measures of reflection coefficients, element by element: area ratios, their logarithms and running product, and tilts.
//
//   AR (1 - k) / (1 + k);  LAR ln((1 - c) / (1 + c)), c = k limited to +-limit;  TrueAR the product of AR up to each element;
//   tilts (|k1| - |k2|) / (|k1| + |k2|) and (|k1| - |k2|) / (k1 + k2).
//
// All in float. An element whose denominator is zero, or whose division is invalid although no operand is a NaN, gives the warning of
// a division by zero, whatever flags stand. Required: such an element leaves no exception flag behind.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "features/lp_conversions.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/environment.h"

namespace qorsr {

struct AreaRatio {
  template <class L>
  static L numerator(const L& k, const L&) {
    return L(1.0F) - k;
  }
  template <class L>
  static L denominator(const L& k, const L&) {
    return L(1.0F) + k;
  }
};
struct AbsoluteTilt {
  template <class L>
  static L numerator(const L& k1, const L& k2) {
    return abs(k1) - abs(k2);
  }
  template <class L>
  static L denominator(const L& k1, const L& k2) {
    return abs(k1) + abs(k2);
  }
};
struct Tilt : AbsoluteTilt {
  template <class L>
  static L denominator(const L& k1, const L& k2) {
    return k1 + k2;
  }
};

inline bool isInvalid(float k1, float k2, float denominator, float result) {
  return denominator == 0.0F || (result != result && k1 == k1 && k2 == k2);
}

// destination[i] = numerator / denominator times `factor`, of coefficients that are loaded times `load`.
template <class Measure, class T>
QORSR_IN_GUARDED_MODE inline QorStatus measure(const T* first, const T* second, float* destination, int32_t length, float load,
                                               float factor) {
  bool invalid = false;
  coverColumns<float>(length, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L k1 = loadAs<float, n>(first + i) * L(load), k2 = loadAs<float, n>(second + i) * L(load);
    const L denominator = Measure::denominator(k1, k2), result = Measure::numerator(k1, k2) / denominator;
    (result * L(factor)).store(destination + i);
    if (allLess(L(0.0F), abs(denominator)) && allLess(L(-1.0F), abs(result))) return;  // no zero, no NaN
    float all[4][n];
    k1.store(all[0]), k2.store(all[1]), denominator.store(all[2]), result.store(all[3]);
    for (int j = 0; j < n; ++j) invalid |= isInvalid(all[0][j], all[1][j], all[2][j], all[3][j]);
  });
  return invalid ? qorStatusDivideByZero : qorStatusOk;
}

template <class T>
inline void logAreaRatios(const T* source, float* destination, int32_t length, float limit, float load, float factor) {
  coverColumns<float>(length, [=](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L k = loadAs<float, n>(source + i) * L(load), c = max(L(-limit), min(L(limit), k));  // a NaN stays one
    (log((L(1.0F) - c) / (L(1.0F) + c)) * L(factor)).store(destination + i);
  });
}

// What the product becomes behind a pole.
inline float behindPole(float k, float product) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  const bool outside = k < -1.0F || k > 1.0F;
  return (outside ? product < 0.0F : product > 0.0F) ? kInfinite : -kInfinite;
}

// Required: a coefficient of -1 is a pole, and one of 1 behind it gives this NaN from there on.
inline QorStatus trueAreaRatios(const float* source, float* destination, int32_t length) {
  float product = 1.0F;
  int32_t i = 0;
  for (; i < length && source[i] != -1.0F; ++i) {
    product = product * (1.0F - source[i]) / (source[i] + 1.0F);
    destination[i] = product;
  }
  const QorStatus status = i < length ? qorStatusDivideByZero : qorStatusOk;
  for (; i < length && source[i] != 1.0F; ++i) destination[i] = product = behindPole(source[i], product);
  for (; i < length; ++i) destination[i] = std::bit_cast<float>(0xFFC00000U);
  return status;
}

// ---- Members ----

inline constexpr int kStackMeasures = 100;

template <class Measure>
inline QorStatus measureReflections(const float* first, const float* second, float* destination, int32_t length) {
  if (QorStatus bad = Checks().null(first, second, destination).size(length)) return bad;
  const CallersFlags flags;
  const QorStatus status = measure<Measure>(first, second, destination, length, 1.0F, 1.0F);
  if (status != qorStatusOk) flags.bringBack();
  return status;
}

template <class Measure>
inline QorStatus measureReflections(const int16_t* first, const int16_t* second, int16_t* destination, int32_t length, float load,
                                    int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(first, second, destination).size(length)) return bad;
  const Scratch<float, kStackMeasures> floats(length);
  if (!floats) return qorStatusNoMemory;
  const float factor = twoToMinus<float>(scaleFactor);
  const CallersFlags flags;
  const QorStatus status = measure<Measure>(first, second, floats.get(), length, load, factor);
  if (status != qorStatusOk) flags.bringBack();
  convertFloats(floats.get(), destination, length, kNearestEven, 0);
  return status;
}

inline QorStatus trueAreaRatios(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t length,
                                int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, destination).size(length)) return bad;
  const Scratch<float, kStackMeasures> floats(length);
  if (!floats) return qorStatusNoMemory;
  loadScaled(source, floats.get(), length, loadFactor(sourceScale));
  const QorStatus status = trueAreaRatios(floats.get(), floats.get(), length);
  storeScaled(floats.get(), destination, length, scaleFactor);
  return status;
}

template <class T>
inline Checks checkLimited(const T* source, const T* destination, int32_t length, float limit) {
  return Checks().null(source, destination).size(length).require(!(limit <= 0.0F || limit >= 1.0F), qorStatusBadRange);
}

inline QorStatus logAreaRatios(const float* source, float* destination, int32_t length, float limit) {
  if (QorStatus bad = checkLimited(source, destination, length, limit)) return bad;
  logAreaRatios(source, destination, length, limit, 1.0F, 1.0F);
  return qorStatusOk;
}

// Required: truncated toward zero, unlike all others.
inline QorStatus logAreaRatios(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t length, float limit,
                               int32_t scaleFactor) {
  if (QorStatus bad = checkLimited(source, destination, length, limit)) return bad;
  const Scratch<float, kStackMeasures> floats(length);
  if (!floats) return qorStatusNoMemory;
  logAreaRatios(source, floats.get(), length, limit, twoToMinus<float>(sourceScale), twoToMinus<float>(scaleFactor));
  convertFloats(floats.get(), destination, length, kTruncate, 0);
  return qorStatusOk;
}

}  // namespace qorsr
