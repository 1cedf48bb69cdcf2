// A filter of 17 taps, from 10 coefficients and over frames of 80 samples.
//
//   h[8] = c[0],  h[8 - k] = c[k],  h[8 + k] = c[k + 1],  k = 1 to 8      required: the two sides are one coefficient apart
//   y[i] = h[0] x[i] + h[1] x[i+1] + ... + h[16] x[i+16]
// Floats are added in this order. 16 bits: the products of taps 0 and 1, 2 and 3, ..., 14 and 15 are added in 32 bits that wrap, these
// sums and that of tap 16 exactly; times 2^-sf, limited and rounded.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "robust/nearest.h"
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

QORSR_IN_GUARDED_MODE inline void filterShorts(const int16_t* source, int16_t* result, const int16_t* taps, double multiplier) {
  constexpr int32_t kLast = kResidualTaps - 1, kPairs = kResidualTaps / 2 + 1;
  constexpr int kBlock = std::min(16, kNativeLanes<int16_t>);  // divides the frame
  static_assert(kResidualFrame % kBlock == 0 && kResidualFrame % kRoundedTogether == 0);
  int16_t pairs[kPairs][2];  // the last tap makes one with the sample in front of its own, which weighs nothing
  std::memcpy(pairs, taps, kLast * sizeof(int16_t));
  pairs[kPairs - 1][0] = 0;
  pairs[kPairs - 1][1] = taps[kLast];
  alignas(64) double sums[kResidualFrame];
  for (int32_t first = 0, end; first < kPairs; first = end) {
    end = endOfRun(first, kPairs, [&](int32_t j) { return magnitudeOf(pairs[j][0]) + magnitudeOf(pairs[j][1]); });
    for (int32_t i = 0; i < kResidualFrame; i += kBlock) {
      Lanes<int32_t, kBlock / 2> even(0), odd(0);
      for (int32_t j = first; j < end; ++j) {
        const auto h = tapPair<kBlock / 2>(pairs[j][0], pairs[j][1]);
        const int16_t* const x = source + i + std::min(2 * j, kLast - 1);
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
  roundingToNearest([=] { filterShorts(source, result, taps, finiteMultiplier(scaleFactor)); });
  return qorStatusOk;
}

}  // namespace qorsr
