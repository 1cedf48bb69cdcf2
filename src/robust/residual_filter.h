// A filter of 17 taps, from 10 coefficients and over frames of 80 samples.
//
//   h[8] = c[0],  h[8 - k] = c[k],  h[8 + k] = c[k + 1],  k = 1 to 8      required: the two sides are one coefficient apart
//   y[i] = h[0] x[i] + h[1] x[i+1] + ... + h[16] x[i+16]
// Floats are added in this order. 16 bits: the products of taps 0 and 1, 2 and 3, ..., 14 and 15 are added in 32 bits that wrap, these
// sums and that of tap 16 exactly; times 2^-sf, limited and rounded.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "robust/tap_sums.h"

namespace qorsr {

inline constexpr int32_t kResidualTaps = 17, kResidualFrame = 80;

template <class T>
QorStatus arrangeTaps(const T* coefficients, T* taps) {
  if (QorStatus bad = Checks().null(coefficients, taps)) return bad;
  constexpr int kMiddle = kResidualTaps / 2;
  taps[kMiddle] = coefficients[0];
  for (int k = 1; k <= kMiddle; ++k) taps[kMiddle - k] = coefficients[k];
  for (int k = 1; k <= kMiddle; ++k) taps[kMiddle + k] = coefficients[k + 1];
  return qorStatusOk;
}

inline QorStatus filterResidual(const float* source, float* result, const float* taps) {
  if (QorStatus bad = Checks().null(source, result, taps)) return bad;
  coverColumns<float>(kResidualFrame, [=](int32_t i, auto n) {
    using L = Lanes<float, n>;
    L sum = L(taps[0]) * L::load(source + i);
    for (int k = 1; k < kResidualTaps; ++k) sum += L(taps[k]) * L::load(source + i + k);
    sum.store(result + i);
  });
  return qorStatusOk;
}

// ---- 16 bits ----

// Two taps and the first of their samples. The last tap makes a pair with the sample in front of its own, which weighs nothing.
struct ResidualPair {
  int16_t first, second;
  int32_t sample;
};
inline ResidualPair residualPair(const int16_t* taps, int32_t j) {
  constexpr int32_t kLast = kResidualTaps - 1;
  return 2 * j < kLast ? ResidualPair{taps[2 * j], taps[2 * j + 1], 2 * j} : ResidualPair{0, taps[kLast], kLast - 1};
}

QORSR_IN_GUARDED_MODE inline void filterShorts(const int16_t* source, int16_t* result, const int16_t* taps, double multiplier) {
  constexpr int32_t kPairs = (kResidualTaps + 1) / 2;
  constexpr int kBlock = std::min(16, kNativeLanes<int16_t>);  // divides the frame
  static_assert(kResidualFrame % kBlock == 0 && kResidualFrame % kRoundedTogether == 0);
  ResidualPair pairs[kPairs];
  for (int32_t j = 0; j < kPairs; ++j) pairs[j] = residualPair(taps, j);
  alignas(64) double sums[kResidualFrame];
  for (int32_t first = 0, end; first < kPairs; first = end) {
    end = endOfRun(first, kPairs, [&](int32_t j) { return magnitudeOf(pairs[j].first) + magnitudeOf(pairs[j].second); });
    for (int32_t i = 0; i < kResidualFrame; i += kBlock) {
      Lanes<int32_t, kBlock / 2> even(0), odd(0);
      for (int32_t j = first; j < end; ++j) {
        const auto h = tapPair<kBlock / 2>(pairs[j].first, pairs[j].second);
        const int16_t* const x = source + i + pairs[j].sample;
        even += pairDots(Lanes<int16_t, kBlock>::load(x), h);
        odd += pairDots(Lanes<int16_t, kBlock>::load(x + 1), h);
      }
      const auto inTurn = interleaved(even, odd);
      addRun(inTurn.first, first == 0, sums + i);
      addRun(inTurn.second, first == 0, sums + i + kBlock / 2);
    }
  }
  for (int32_t i = 0; i < kResidualFrame; i += kRoundedTogether) {
    roundedShort(Lanes<double, kRoundedTogether>::load(sums + i), multiplier).store(result + i);
  }
}

inline QorStatus filterResidual(const int16_t* source, int16_t* result, const int16_t* taps, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, result, taps)) return bad;
  const EnvironmentGuard guard(Rounding::kNearest);
  filterShorts(source, result, taps, twoToMinus<double>(scaleFactor));
  return qorStatusOk;
}

}  // namespace qorsr
