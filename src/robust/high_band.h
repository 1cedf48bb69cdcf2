// The high band of a frame in three values, coded against the low one.
//
//   A0, A1, A2 = L(sum of A[33..38], of A[39..48], of A[49..64]),  b[j] = L(low[j])
//   T0, T1, T2 = L(half the sum of B[66..76], of B[78..96], of B[98..128])
//   y[j] = 0.1 (T0 - (A0 - b[j])) + 0.2 (T1 - (A1 - b[j])) + 0.7 (T2 - (A2 - b[j])),  j = 0 to 2
// L is the natural logarithm, taken in double, and -10 where its argument is not above exp(-10). Floats are added in the order of the bins.
//
// Integers: logarithms have 7 fraction bits, and are -1280 where the argument is not above 0; sums are saturated to 32 bits, those of B
// divided by 8 and rounded to nearest even, with 177 (log 4) added to their logarithms. The three terms have factors in 1024ths and are
// shifted one by one (required).
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/elementary.h"
#include "frame/environment.h"
#include "frame/lanes.h"

namespace qorsr {

// Bins first to last, both included.
struct Bins {
  int32_t first, last;
};
inline constexpr Bins kBinsOfA[] = {{33, 38}, {39, 48}, {49, 64}}, kBinsOfB[] = {{66, 76}, {78, 96}, {98, 128}};

// Numbers whose logarithms are taken: three of A, three of B, three of the low band; then room for whole blocks of lanes.
struct HighBandLogs {
  static constexpr int kBlock = 4, kUsed = 9, kAll = 12;
  alignas(64) double value[kAll] = {};

  double* a() { return value; }
  double* b() { return value + 3; }
  double* low() { return value + 6; }

  // The logarithm of what lies above `least`, elsewhere `otherwise`.
  void take(double least, double otherwise) {
    using L = Lanes<double, kBlock>;
    for (int i = 0; i < kAll; i += kBlock) {
      const L x = L::load(value + i), bound(least);
      selectLess(bound, x, log(selectLess(bound, x, x, L(1.0))), L(otherwise)).store(value + i);
    }
  }
};

// ---- Floats ----

inline float sumOfBins(const float* x, Bins bins) {
  float sum = x[bins.first];
  for (int32_t i = bins.first + 1; i <= bins.last; ++i) sum += x[i];
  return sum;
}

inline QorStatus codeHighBand(const float* lowBand, const float* spectrumA, const float* spectrumB, float* result) {
  if (QorStatus bad = Checks().null(lowBand, spectrumA, spectrumB, result)) return bad;
  HighBandLogs logs;
  for (int k = 0; k < 3; ++k) {
    logs.a()[k] = static_cast<double>(sumOfBins(spectrumA, kBinsOfA[k]));
    logs.b()[k] = static_cast<double>(0.5F * sumOfBins(spectrumB, kBinsOfB[k]));
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

inline int64_t sumOfBins(const int32_t* x, Bins bins) {
  int64_t sum = 0;
  for (int32_t i = bins.first; i <= bins.last; ++i) sum += x[i];
  return sum;
}
inline int64_t eighth(int64_t sum) { return (sum + 3 + (sum >> 3 & 1)) >> 3; }  // to nearest, ties to even

// required: a scale factor below -7 shifts left, by scaleFactor + 7 modulo 32.
inline int32_t scaledCode(int32_t code, int32_t scaleFactor) {
  const int64_t shift = int64_t{scaleFactor} + 7;
  return shift >= 0 ? shiftRight(code, shift) : shiftLeft(code, shift & 31);
}

QORSR_IN_GUARDED_MODE inline void codeIntegers(const int32_t* lowBand, const int32_t* spectrumA, const int32_t* spectrumB,
                                               int32_t* result, int32_t scaleFactor) {
  HighBandLogs logs;
  for (int k = 0; k < 3; ++k) {
    logs.a()[k] = saturate<int32_t>(sumOfBins(spectrumA, kBinsOfA[k]));
    logs.b()[k] = saturate<int32_t>(eighth(sumOfBins(spectrumB, kBinsOfB[k])));
    logs.low()[k] = lowBand[k];
  }
  logs.take(0.0, -10.0);
  int32_t log[HighBandLogs::kUsed];
  for (int i = 0; i < HighBandLogs::kUsed; ++i) log[i] = limitAndRound<int32_t>(logs.value[i] * 128.0);
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
  const EnvironmentGuard guard(Rounding::kNearest);
  codeIntegers(lowBand, spectrumA, spectrumB, result, scaleFactor);
  return qorStatusOk;
}

}  // namespace qorsr
