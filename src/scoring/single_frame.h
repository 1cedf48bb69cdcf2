// One feature vector against one Gaussian: log likelihood, or the bare distance.
//
// Three forms have a body of their own: variances that are divided by, block-diagonal inverse covariances (block_diagonal.h), and
// the 16-bit distance with an integer result.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/memory.h"
#include "scoring/block_diagonal.h"
#include "scoring/scores.h"

namespace qorsr {

template <class Score, class T, class Variances, class Result, class Val = NoVals>
QorStatus scoreOne(Score score, const T* x, Gaussians<SharedRow<T>, Variances> gaussian, int32_t length, Result* result,
                   Val val = {}) {
  if (QorStatus bad = Checks().null(x, gaussian.mean, gaussian.variance, result).size(length)) return bad;
  withArithmetic(score, [&](const auto& decided) {
    *result = decided(quadraticSum(decided.sums(), SharedRow{x}, gaussian.mean, gaussian.variance, length), val);
  });
  return qorStatusOk;
}

// ---- Variances, not their inverses ----

template <class T>
bool anyZero(const T* values, int32_t length) {
  bool zero = false;
  coverColumns<T, kNativeLanes<T>>(
      length, [&](int32_t i, auto n) __attribute__((always_inline)) {
        for (const auto part : Lanes<T, n>::load(values + i).part) zero |= native::anyHolds(part == typename Lanes<T, n>::Part{});
      });
  return zero;
}

// Returns whether a value is zero.
template <class T>
bool storeReciprocals(const T* values, float* reciprocals, int32_t length) {
  bool zero = false;
  coverColumns<float, kNativeLanes<float>>(
      length, [&](int32_t i, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        const L value = loadAs<float, n>(values + i);
        for (const auto part : value.part) zero |= native::anyHolds(part == typename L::Part{});
        (L(1.0F) / value).store(reciprocals + i);
      });
  return zero;
}

// The reciprocals of the variances are formed first, in float. A zero variance is a warning.
template <class Score, class T, class Result, class Val>
QorStatus scoreByReciprocals(Score score, const T* x, const T* mean, const T* variance, int32_t length, Result* result, Val val) {
  if (QorStatus bad = Checks().null(x, mean, variance, result).size(length)) return bad;
  const Scratch<float> reciprocals(length);
  if (!reciprocals) return qorStatusNoMemory;
  float* const inverse = reciprocals.get();
  const bool zero = storeReciprocals(variance, inverse, length);
  *result = score(quadraticSum(RealSums<float>(), SharedRow{x}, SharedRow{mean}, SharedRow<float>{inverse}, length), val);
  return zero ? qorStatusDivideByZero : qorStatusOk;
}

// True divisions, in double. `refuse`: required of float data, a zero variance leaves the result alone.
template <class T>
QorStatus scoreByDivision(const T* x, const T* mean, const T* variance, int32_t length, double* result, double val, bool refuse) {
  if (QorStatus bad = Checks().null(x, mean, variance, result).size(length)) return bad;
  if (refuse && anyZero(variance, length)) return qorStatusDivideByZero;
  *result =
      score::Plain<double>()(quadraticSum(RealSums<double>(), SharedRow{x}, SharedRow{mean}, DivisorRows{variance}, length), val);
  return qorStatusOk;
}

namespace score {
// val - (the sum, scaled and rounded to 32 bits), limited.
struct Converted {
  int32_t scaleFactor;

  int32_t operator()(float sum, int32_t val) const {
    int32_t scaled;
    convertFloats(&sum, &scaled, 1, kNearestEven, scaleFactor == INT32_MAX ? scaleFactor : scaleFactor + 1);
    return saturate<int32_t>(int64_t{val} - scaled);
  }
};
}  // namespace score

// ---- 16-bit distance as an integer ----

// required: two roads. With all vectors aligned the float sum, limited and rounded, and no scale factor at all; else the exact sum,
// shifted by the scale factor and saturated.
inline QorStatus distanceScaled(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length, int32_t* result,
                                int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(x, mean, variance, result).size(length)) return bad;
  if (isAligned16(x) && isAligned16(mean) && isAligned16(variance)) {
    *result =
        score::limitAndRoundAsCaller(quadraticSum(GroupedShortSums(), SharedRow{x}, SharedRow{mean}, SharedRow{variance}, length));
    return qorStatusOk;
  }
  int64_t sum = 0;
  for (int32_t i = 0; i < length; ++i) {
    const int64_t d = x[i] - mean[i];
    sum = wrapAdd(sum, d * d * variance[i]);
  }
  *result = saturate<int32_t>(shiftByScale(sum, scaleFactor));
  return qorStatusOk;
}

}  // namespace qorsr
