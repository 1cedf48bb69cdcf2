// The high band of a frame in three values, coded against the low one.
//
//   A0, A1, A2 = L(sum of A[33..38], of A[39..48], of A[49..64]),  b[j] = L(low[j])
//   T0, T1, T2 = L(half the sum of B[66..76], of B[78..96], of B[98..128])
//   y[j] = 0.1 (T0 - (A0 - b[j])) + 0.2 (T1 - (A1 - b[j])) + 0.7 (T2 - (A2 - b[j])),  j = 0 to 2
// L is the natural logarithm, taken in double, and -10 where its argument is not above exp(-10). Floats are added
// in four lanes.
//
// Integers: logarithms have 7 fraction bits, and are -1280 where the argument is not above 0; sums are saturated to 32 bits, those of B
// divided by 8 and rounded to nearest even, with 177 (log 4) added to their logarithms. The three terms have factors in 1024ths and are
// shifted one by one (required).
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "robust/nearest.h"

namespace qorsr {

// Bins first to last, both included.
struct Bins {
  int32_t first, last;
};
inline constexpr Bins kBinsOfA[] = {{33, 38}, {39, 48}, {49, 64}}, kBinsOfB[] = {{66, 76}, {78, 96}, {98, 128}};

// Numbers whose logarithms are taken: three of A, three of B, three of the low band; then room for whole blocks of lanes.
struct HighBandLogs {
  static constexpr int kAll = 12;
  alignas(64) double value[kAll] = {};

  double* a() { return value; }
  double* b() { return value + 3; }
  double* low() { return value + 6; }

  // The logarithm of what lies above `least`, elsewhere `otherwise`.
  void take(double least, double otherwise) {
    takeOf<8>(value, least, otherwise);
    takeOf<2>(value + 8, least, otherwise);
  }

 private:
  template <int N>
  static void takeOf(double* x, double least, double otherwise) {
    using L = Lanes<double, N>;
    const L z = L::load(x), bound(least);
    selectLess(bound, z, log(selectLess(bound, z, z, L(1.0))), L(otherwise)).store(x);
  }
};

// ---- Floats ----

// Whole groups of four bins in four lanes, joined by halves; then what is left, bin by bin.
template <class Sum, class T>
inline Sum sumOfBins(const T* x, Bins bins) {
  int32_t i = bins.first;
  auto lanes = loadAs<Sum, 4>(x + i);
  for (i += 4; i <= bins.last - 3; i += 4) lanes += loadAs<Sum, 4>(x + i);
  Sum sum = joinHalves(lanes);
  for (; i <= bins.last; ++i) sum += static_cast<Sum>(x[i]);
  return sum;
}

inline QorStatus codeHighBand(const float* lowBand, const float* spectrumA, const float* spectrumB, float* result) {
  if (QorStatus bad = Checks().null(lowBand, spectrumA, spectrumB, result)) return bad;
  HighBandLogs logs;
  for (int k = 0; k < 3; ++k) {
    logs.a()[k] = static_cast<double>(sumOfBins<float>(spectrumA, kBinsOfA[k]));
    logs.b()[k] = static_cast<double>(0.5F * sumOfBins<float>(spectrumB, kBinsOfB[k]));
    logs.low()[k] = static_cast<double>(lowBand[k]);
  }
  logs.take(0x1.7cd79b5647c9bp-15, -10.0);  // exp(-10)
  for (int j = 0; j < 3; ++j) {
    const auto low = static_cast<float>(logs.low()[j]);
    const auto term = [&](int k) { return static_cast<float>(logs.b()[k]) - (static_cast<float>(logs.a()[k]) - low); };
    result[j] = 0.1F * term(0) + 0.2F * term(1) + 0.7F * term(2);
  }
  return qorStatusOk;
}

// ---- 32 bits ----

// Sums of whole numbers are exact in double. Their limit matters above alone: what is not above 0 has one logarithm.
inline double limitedAbove(double sum) { return sum < 2147483647.0 ? sum : 2147483647.0; }
// The nearest whole number, ties to even, of a number below 2^51, in a mode that is known to be nearest.
inline double nearestWhole(double value) {
  constexpr double kWhole = 0x1.8p52;  // here the last place of a double is 1
  return value + kWhole - kWhole;
}

// required: a scale factor below -7 shifts left, by scaleFactor + 7 modulo 32.
inline int32_t scaledCode(int32_t code, int32_t scaleFactor) {
  const int64_t shift = int64_t{scaleFactor} + 7;
  return shift >= 0 ? shiftRight(code, shift) : shiftLeft(code, shift & 31);
}

QORSR_IN_GUARDED_MODE inline void codeIntegers(const int32_t* lowBand, const int32_t* spectrumA, const int32_t* spectrumB,
                                               int32_t* result, int32_t scaleFactor) {
  HighBandLogs logs;
  for (int k = 0; k < 3; ++k) {
    logs.a()[k] = limitedAbove(sumOfBins<double>(spectrumA, kBinsOfA[k]));
    logs.b()[k] = limitedAbove(nearestWhole(sumOfBins<double>(spectrumB, kBinsOfB[k]) * 0.125));
    logs.low()[k] = lowBand[k];
  }
  logs.take(0.0, -10.0);
  int32_t log[HighBandLogs::kAll];
  for (int i = 0; i < HighBandLogs::kAll; i += 4) {
    nearest(Lanes<double, 4>::load(logs.value + i) * Lanes<double, 4>(128.0)).store(log + i);
  }
  for (int j = 0; j < 3; ++j) {
    const auto difference = [&](int k) { return log[k] - log[6 + j]; };
    const auto top = [&](int k) { return log[3 + k] + 177; };
    const int32_t code = ((top(0) * 102 - difference(0) * 102) >> 10) + ((top(1) - difference(1)) * 205 >> 10) +
                         ((top(2) - difference(2)) * 717 >> 10);
    result[j] = scaledCode(code, scaleFactor);
  }
}

inline QorStatus codeHighBand(const int32_t* lowBand, const int32_t* spectrumA, const int32_t* spectrumB, int32_t* result,
                              int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(lowBand, spectrumA, spectrumB, result)) return bad;
  roundingToNearest([=] { codeIntegers(lowBand, spectrumA, spectrumB, result, scaleFactor); });
  return qorStatusOk;
}

}  // namespace qorsr
