// New means, variances and weights from accumulated statistics, and the accumulation of first and second moments.
//
//   UpdateMean   destination += source / occupancy                     float: times the reciprocal, double: a true division
//   UpdateVar    m = first / occ1;  v = second / occ2 - m * m;         v where floor < v, else the floor (also for a NaN)
//   UpdateWeight w = count * (1 / total);                              w where floor < w, else the floor
//                sum of the weights: float in four lanes, (l0 + l2) + (l1 + l3); double in two; the last elements in lane 0
//   NewVar       (square - mean * mean * a) * b                        where each step is rounded differs by member; no floor
//   MeanVarAcc   d = x - mean, e = d * weight;                         first += e, second += d * e
//
// Elements are independent of each other, so the number that is worked on at once never shows, the lanes of the sum apart. One
// register at a time: the loops wait for memory.
#pragma once

#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Division by an occupancy: required to differ by type ----

template <class T>
struct Quotient;
template <>
struct Quotient<float> {
  float reciprocal;
  explicit Quotient(float divisor) : reciprocal(1.0F / divisor) {}
  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& x) const {
    return x * Lanes<float, N>(reciprocal);
  }
};
template <>
struct Quotient<double> {
  double divisor;
  explicit Quotient(double d) : divisor(d) {}
  template <int N>
  Lanes<double, N> operator()(const Lanes<double, N>& x) const {
    return x / Lanes<double, N>(divisor);
  }
};

// ---- Overlap ----

// Whether what is written at `destination` is read later at `source`, when both run upwards over `length` elements.
template <class T>
bool feedsItself(const T* destination, const T* source, int32_t length) {
  const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(destination) - reinterpret_cast<std::uintptr_t>(source);
  return ahead != 0 && ahead < static_cast<std::uintptr_t>(length) * sizeof(T);
}

// Registers of elements, or one element after the other where an earlier result is a later input. What replaces its input is visited
// once: the next call's loads would wait for stores that overlap.
template <class T, class Body>
inline void coverInPlace(int32_t length, bool oneByOne, const Body& body) {
  if (!oneByOne) return coverColumnsOnce<T, kOneRegister<T>>(length, body);
  for (int32_t i = 0; i < length; ++i) body(i, LaneCount<1>());
}

// destination[i] = at(i), a register at a time. Inlined, so that what `at` holds stays in registers: NewVar 32s takes 1.4 times as long
// at v3 without (re_estimation).
template <class T, class At>
[[gnu::always_inline]] inline void storeElements(T* destination, int32_t length, const At& at) {
  coverLastFirst<T>(length, at, [=](int32_t i, const auto& result) { result.store(destination + i); });
}

// ---- Checks of an update: pointers, length, then every occupancy against zero, then every one against what can be divided by ----

template <class T>
bool isTooSmall(T occupancy) {
  return (occupancy < 0 ? -occupancy : occupancy) <= std::numeric_limits<T>::min();  // a NaN is not
}

template <class... Occupancies>
Checks& checkOccupancies(Checks& checks, Occupancies... occupancies) {
  return checks.require(!((occupancies < 0) || ...), qorStatusBadStatistic)
      .require(!(isTooSmall(occupancies) || ...), qorStatusZeroOccupancy);
}

// ---- Updates ----

template <class T>
QorStatus updateMean(const T* source, T* destination, int32_t length, T occupancy) {
  Checks checks;
  if (QorStatus bad = checkOccupancies(checks.null(source, destination).size(length), occupancy)) return bad;
  const Quotient<T> over(occupancy);
  coverInPlace<T>(length, feedsItself(destination, source, length), [=](int32_t i, auto n) {
    using L = Lanes<T, n>;
    (L::load(destination + i) + over(L::load(source + i))).store(destination + i);
  });
  return qorStatusOk;
}

template <class T>
QorStatus updateVar(const T* first, const T* second, const T* floors, T* destination, int32_t length, T firstOccupancy,
                    T secondOccupancy) {
  Checks checks;
  checks.null(first, second, floors, destination).size(length);
  if (QorStatus bad = checkOccupancies(checks, firstOccupancy, secondOccupancy)) return bad;
  const Quotient<T> overFirst(firstOccupancy), overSecond(secondOccupancy);
  bool anyAbove = false;
  storeElements(destination, length, [=, &anyAbove](int32_t i, auto n) {
    using L = Lanes<T, n>;
    const L mean = overFirst(L::load(first + i));
    const L variance = overSecond(L::load(second + i)) - mean * mean;
    const L floor = L::load(floors + i);
    anyAbove |= anyLess(floor, variance);
    return max(variance, floor);
  });
  return anyAbove ? qorStatusOk : qorStatusAllFloored;
}

template <class T>
QorStatus updateWeight(const T* counts, T* destination, int32_t length, T* sum, T total, T floor) {
  Checks checks;
  if (QorStatus bad = checkOccupancies(checks.null(counts, destination, sum).size(length), total)) return bad;
  constexpr int kSumLanes = 16 / static_cast<int>(sizeof(T));
  using L = Lanes<T, kSumLanes>;
  const T r = T(1) / total;
  L lanes(T(0)), most(floor);
  int32_t i = 0;
  for (; i <= length - kSumLanes; i += kSumLanes) {
    const L weight = L::load(counts + i) * L(r), kept = max(weight, L(floor));
    most = max(weight, most);  // a NaN leaves what was there
    kept.store(destination + i);
    lanes += kept;
  }
  bool anyAbove = anyLess(L(floor), most);
  for (; i < length; ++i) {
    const T weight = counts[i] * r;
    anyAbove |= floor < weight;
    destination[i] = floor < weight ? weight : floor;
    lanes.part[0][0] += destination[i];
  }
  *sum = joinHalves(lanes);
  return anyAbove ? qorStatusOk : qorStatusAllFloored;
}

// ---- New variances ----

// The square of the mean is rounded to float, the rest runs in double and is rounded once (required; in place it is all float).
inline QorStatus newVar(const float* means, const float* squares, float* destination, int32_t length, float a, float b) {
  if (QorStatus bad = Checks().null(means, squares, destination).size(length)) return bad;
  const auto at = [=](int32_t i, auto n) __attribute__((always_inline)) {  // 1.4 at SSE3 (re_estimation, 8192 elements)
    using L = Lanes<double, n>;
    const auto mean = Lanes<float, n>::load(means + i);
    return as<float>((loadAs<double, n>(squares + i) - as<double>(mean * mean) * L(static_cast<double>(a))) *
                     L(static_cast<double>(b)));
  };
  if (feedsItself(destination, means, length) || feedsItself(destination, squares, length)) {
    for (int32_t i = 0; i < length; ++i) at(i, LaneCount<1>()).store(destination + i);
  } else {
    storeElements(destination, length, at);
  }
  return qorStatusOk;
}

// In float throughout, for float and 32-bit integer data.
template <int N, class T>
inline Lanes<float, N> newVarInFloat(const T* means, const T* squares, float a, float b) {
  using L = Lanes<float, N>;
  const L mean = loadAs<float, N>(means);
  return (loadAs<float, N>(squares) - mean * mean * L(a)) * L(b);
}

inline QorStatus newVarInPlace(const float* means, float* squares, int32_t length, float a, float b) {
  if (QorStatus bad = Checks().null(means, squares).size(length)) return bad;
  coverColumnsOnce<float, kOneRegister<float>>(
      length, [=](int32_t i, auto n) { newVarInFloat<n>(means + i, squares + i, a, b).store(squares + i); });
  return qorStatusOk;
}

// Rounded to nearest, ties to even, and saturated; a NaN gives 0. Only in a mode that is known to be nearest.
template <int N>
inline Lanes<int32_t, N> nearestSaturated(const Lanes<float, N>& a) {
  const Lanes<int32_t, N> whole = nearest(a);
  bool extreme = false;
  for (const auto part : whole.part) extreme |= native::anyHolds(part == decltype(part){} + INT32_MIN);
  if (__builtin_expect(!extreme, true)) return whole;
  const Lanes<float, N> number = zeroWhereNaN(a);
  return largestAbove(nearest(number), number, 2147483520.0F);
}

// The variances follow the caller's rounding mode, their conversion rounds to nearest: in two steps, unless the modes are the same.
// Asking for the mode and the masks takes as long as some 20 elements.
inline QorStatus newVarNearest(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a, float b,
                               int32_t scaleFactor) {
  if (EnvironmentGuard::isCallersNearest()) {
    const float multiplier = twoToMinus<float>(scaleFactor);
    storeElements(destination, length, [=](int32_t i, auto n) {
      return nearestSaturated(newVarInFloat<n>(means + i, squares + i, a, b) * Lanes<float, n>(multiplier));
    });
    return qorStatusOk;
  }
  constexpr int32_t kChunk = 256;
  float variances[kChunk];
  for (const Chunk chunk : chunksOf(length, kChunk)) {
    const int32_t *const m = means + chunk.first, *const s = squares + chunk.first;
    storeElements(variances, chunk.count, [=](int32_t i, auto n) { return newVarInFloat<n>(m + i, s + i, a, b); });
    convertFloats(variances, destination + chunk.first, chunk.count, kNearestEven, scaleFactor);
  }
  return qorStatusOk;
}

// required: with means and squares on 16-byte boundaries the results are rounded to nearest and saturated, a NaN giving 0; else
// they are truncated, and what does not fit, a NaN too, gives the most negative integer.
inline QorStatus newVarScaled(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a, float b,
                              int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(means, squares, destination).size(length)) return bad;
  if (isAligned16(means) && isAligned16(squares)) return newVarNearest(means, squares, destination, length, a, b, scaleFactor);
  const float multiplier = twoToMinus<float>(scaleFactor);
  storeElements(destination, length, [=](int32_t i, auto n) {
    return truncated(newVarInFloat<n>(means + i, squares + i, a, b) * Lanes<float, n>(multiplier));
  });
  return qorStatusOk;
}

// ---- Accumulation of moments ----

template <class T>
QorStatus meanVarAcc(const T* source, const T* mean, T* accumulatedMean, T* accumulatedVariance, int32_t length, T weight) {
  if (QorStatus bad = Checks().null(source, mean, accumulatedMean, accumulatedVariance).size(length)) return bad;
  coverColumnsOnce<T, kOneRegister<T>>(length, [=](int32_t i, auto n) {
    using L = Lanes<T, n>;
    const L d = L::load(source + i) - L::load(mean + i), e = d * L(weight);
    (L::load(accumulatedMean + i) + e).store(accumulatedMean + i);
    (L::load(accumulatedVariance + i) + d * e).store(accumulatedVariance + i);
  });
  return qorStatusOk;
}

}  // namespace qorsr
