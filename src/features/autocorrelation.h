// Autocorrelation of a signal: r(k) = sum over n from 0 to length - 1 - k of x(n) x(n + k), not scaled; 0 for a lag beyond the signal.
//
// Direct sums run in float in the order of n. Lags lie side by side in lanes, so that each keeps the scalar order. Where both the
// signal and the lags are many, the sums are the inverse transform of the power spectrum of the signal with as many zeros behind it
// (Wiener and Khinchin); they then differ from the direct ones by rounding.
#pragma once

#include <cstdint>

#include "frame/column_blocks.h"
#include "qorsr.h"

namespace qorsr {

// r[k] = r(first + k), k = 0 to lags - 1, by direct sums.
inline void directLags(const float* x, int64_t length, int64_t first, int32_t lags, float* r) {
  coverColumns<float>(lags, [=](int32_t k, auto lanes) {
    constexpr int N = lanes;
    const int64_t lag = first + k, shared = length - lag - (N - 1);  // terms that all N lags have
    Lanes<float, N> sum(0.0F);
    for (int64_t n = 0; n < shared; ++n) sum += Lanes<float, N>(x[n]) * Lanes<float, N>::load(x + n + lag);
    sum.store(r + k);
    for (int64_t i = 0; i < N - 1; ++i) {
      for (int64_t n = shared < 0 ? 0 : shared; n < length - lag - i; ++n) r[k + i] += x[n] * x[n + lag + i];
    }
  });
}

// r[k] = r(k), k = 0 to lags - 1, by direct sums or by the transform. qorStatusNoMemory where the transform finds none.
QorStatus autocorrelation(const float* x, int32_t length, float* r, int32_t lags);

}  // namespace qorsr
