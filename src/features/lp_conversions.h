// Conversions between predictor, cepstrum and reflection coefficients of an all-pole model.
//
//   c[m] = -(a[m] + 1/m sum of (m - k) a[k] c[m - k]),  k = 1 to m - 1, and backwards with a and c exchanged.
//   Step down: k[m] = -a[m], a'[i] = (a[i] + k a[m - i]) / (1 - k k).   Step up: a'[m] = -k[m], a'[i] = a[i] - k[m] a[m - i].
//
// All in float, sums in the order of k. 16-bit members load with one power of two and store with its inverse.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "features/reflected.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

// ---- Cepstrum ----

// m is counted from 1, arrays from 0: element m - 1 holds coefficient m.
template <class Term>
inline void convertByRecursion(const float* source, float* destination, int32_t order, const Term& term) {
  for (int32_t m = 1; m <= order; ++m) {
    float sum = 0.0F;
    for (int32_t k = 1; k < m; ++k) sum += term(static_cast<float>(m - k), source[k - 1], destination[k - 1], m - k - 1);
    destination[m - 1] = 0.0F - (source[m - 1] + 1.0F / static_cast<float>(m) * sum);
  }
}

inline QorStatus predictorToCepstrum(const float* a, float* c, int32_t order) {
  convertByRecursion(a, c, order, [c](float weight, float ofSource, float, int32_t rest) { return weight * ofSource * c[rest]; });
  return qorStatusOk;
}

inline QorStatus cepstrumToPredictor(const float* c, float* a, int32_t order) {
  convertByRecursion(c, a, order, [c](float weight, float, float ofResult, int32_t rest) { return weight * c[rest] * ofResult; });
  return qorStatusOk;
}

// ---- Reflection coefficients ----

inline constexpr int kStackStepOrder = 15;

// Coefficients of the stages above one of magnitude 1 stand in `reflections` when it is met; `unwritten` is how many do not.
inline QorStatus stepDown(float* a, float* old, float* reflections, int32_t order, int32_t* unwritten) {
  for (int32_t m = order; m >= 1; --m) {
    const float k = 0.0F - a[m - 1];
    if (k == 1.0F || k == -1.0F) {
      *unwritten = m;
      return qorStatusUnstableReflection;
    }
    const float d = 1.0F / (1.0F - k * k);
    reflections[m - 1] = k;
    combineWithReversed(a, old, m - 1, [k, d](auto straight, auto reversed) {
      using L = decltype(straight);
      return (straight + reversed * L(k)) * L(d);
    });
  }
  *unwritten = 0;
  return qorStatusOk;
}

inline QorStatus predictorToReflection(const float* source, float* destination, int32_t order) {
  const int64_t count = int64_t{order} + 1;
  const Scratch<float, 2 * (kStackStepOrder + 1)> arrays(2 * count);
  if (!arrays) return qorStatusNoMemory;
  std::memcpy(arrays.get(), source, static_cast<std::size_t>(order) * sizeof(float));
  int32_t unwritten = 0;
  return stepDown(arrays.get(), arrays.get() + count, destination, order, &unwritten);
}

inline QorStatus reflectionToPredictor(const float* source, float* destination, int32_t order) {
  const Scratch<float, kStackStepOrder + 1> old(int64_t{order} + 1);
  if (!old) return qorStatusNoMemory;
  for (int32_t m = 1; m <= order; ++m) {
    const float k = source[m - 1];
    destination[m - 1] = 0.0F - k;
    subtractReflected(destination, old.get(), m - 1, k);
  }
  return qorStatusOk;
}

// ---- Members ----

using Conversion = QorStatus(const float* source, float* destination, int32_t order);

inline QorStatus convertModel(Conversion* conversion, const float* source, float* destination, int32_t order) {
  if (QorStatus bad = Checks().null(source, destination).size(order)) return bad;
  return conversion(source, destination, order);
}

// 2^scaleFactor for a load, as 2^-scaleFactor for a store.
inline float loadFactor(int32_t scaleFactor) { return twoToMinus<float>(scaleFactor == INT32_MIN ? INT32_MAX : -scaleFactor); }

inline void loadScaled(const int16_t* source, float* destination, int32_t count, float factor) {
  for (int32_t i = 0; i < count; ++i) destination[i] = static_cast<float>(source[i]) * factor;
}

// To nearest, ties to even, and saturated. Replaces the floats.
inline void storeScaled(float* source, int16_t* destination, int32_t count, int32_t scaleFactor) {
  const float factor = twoToMinus<float>(scaleFactor);
  for (int32_t i = 0; i < count; ++i) source[i] *= factor;
  convertFloats(source, destination, count, kNearestEven, 0);
}

inline constexpr int kStackElements = 256;

inline QorStatus convertModel(Conversion* conversion, const int16_t* source, int16_t* destination, int32_t order,
                              int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, destination).size(order)) return bad;
  const Scratch<float, kStackElements> floats(2 * int64_t{order});
  if (!floats) return qorStatusNoMemory;
  loadScaled(source, floats.get(), order, loadFactor(scaleFactor));
  if (QorStatus bad = conversion(floats.get(), floats.get() + order, order)) return bad;
  storeScaled(floats.get() + order, destination, order, scaleFactor);
  return qorStatusOk;
}

// Required: where a stage is unstable, the coefficients of the stages above it are stored.
inline QorStatus predictorToReflection(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, destination).size(order)) return bad;
  const int64_t count = int64_t{order} + 1;
  const Scratch<float, 3 * (kStackStepOrder + 1)> arrays(3 * count);
  if (!arrays) return qorStatusNoMemory;
  float* const reflections = arrays.get() + 2 * count;
  loadScaled(source, arrays.get(), order, loadFactor(scaleFactor));
  int32_t unwritten = 0;
  const QorStatus status = stepDown(arrays.get(), arrays.get() + count, reflections, order, &unwritten);
  if (unwritten < order) storeScaled(reflections + unwritten, destination + unwritten, order - unwritten, scaleFactor);
  return status;
}

}  // namespace qorsr
