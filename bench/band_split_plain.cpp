// Plain loops of a front-end with a split band: what one would write first.
#include "band_split_plain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

void plainLowHighFilter_32f(const float* x, float* low, float* high, int32_t length, const float* h, int32_t taps) {
  for (int32_t i = 0; i < length / 2; ++i) {
    float even = 0, odd = 0;
    for (int32_t k = 0; k + 1 < taps; k += 2) {
      even += h[k] * x[2 * i + k];
      odd += h[k + 1] * x[2 * i + k + 1];
    }
    if (taps % 2 != 0) even += h[taps - 1] * x[2 * i + taps - 1];
    low[i] = even + odd;
    high[i] = i % 2 == 0 ? odd - even : even - odd;
  }
}
void plainLowHighFilter_16s(const int16_t* x, int16_t* low, int16_t* high, int32_t length, const int16_t* h, int32_t taps,
                            int32_t scaleFactor) {
  const double factor = std::ldexp(1.0, -scaleFactor);
  const auto rounded = [=](int64_t sum) {
    return static_cast<int16_t>(std::lrint(std::min(std::max(static_cast<double>(sum) * factor, -32768.0), 32767.0)));
  };
  for (int32_t i = 0; i < length / 2; ++i) {
    int64_t even = 0, odd = 0;
    for (int32_t k = 0; k + 1 < taps; k += 2) {
      even += h[k] * x[2 * i + k];
      odd += h[k + 1] * x[2 * i + k + 1];
    }
    if (taps % 2 != 0) even += h[taps - 1] * x[2 * i + taps - 1];
    low[i] = rounded(even + odd);
    high[i] = rounded(i % 2 == 0 ? odd - even : even - odd);
  }
}

namespace {

constexpr int kA[][2] = {{33, 38}, {39, 48}, {49, 64}}, kB[][2] = {{66, 76}, {78, 96}, {98, 128}};

template <class Sum, class T>
Sum sumOf(const T* x, const int (&bins)[2]) {
  Sum sum = 0;
  for (int i = bins[0]; i <= bins[1]; ++i) sum += x[i];
  return sum;
}

}  // namespace
void plainHighBandCoding_32f(const float* low, const float* a, const float* b, float* y) {
  const auto log = [](float z) {
    return static_cast<double>(z) > 4.5399929762484854e-05 ? static_cast<float>(std::log(static_cast<double>(z))) : -10.0F;
  };
  float logA[3], logB[3];
  for (int k = 0; k < 3; ++k) logA[k] = log(sumOf<float>(a, kA[k])), logB[k] = log(0.5F * sumOf<float>(b, kB[k]));
  for (int j = 0; j < 3; ++j) {
    const float base = log(low[j]);
    y[j] = 0.1F * (logB[0] - (logA[0] - base)) + 0.2F * (logB[1] - (logA[1] - base)) + 0.7F * (logB[2] - (logA[2] - base));
  }
}
void plainHighBandCoding_32s(const int32_t* low, const int32_t* a, const int32_t* b, int32_t* y, int32_t scaleFactor) {
  const auto log = [](int64_t z) {
    return z > 0 ? static_cast<int32_t>(std::lrint(128.0 * std::log(static_cast<double>(std::min<int64_t>(z, INT32_MAX))))) : -1280;
  };
  int32_t logA[3], logB[3];
  for (int k = 0; k < 3; ++k) {
    const auto sum = sumOf<int64_t>(b, kB[k]);
    logA[k] = log(sumOf<int64_t>(a, kA[k]));
    logB[k] = log((sum + 3 + (sum >> 3 & 1)) >> 3) + 177;
  }
  for (int j = 0; j < 3; ++j) {
    const int32_t base = log(low[j]);
    const int32_t code = ((logB[0] * 102 - (logA[0] - base) * 102) >> 10) + ((logB[1] - (logA[1] - base)) * 205 >> 10) +
                         ((logB[2] - (logA[2] - base)) * 717 >> 10);
    y[j] = code >> (scaleFactor + 7);
  }
}

void plainBlindEqualization_32f(const float* r, float* c, float* b, int32_t length, float logEnergy) {
  const float mu = std::min(std::max(logEnergy - 3.296875F, 0.0F), 1.0F) * 0.0087890625F;
  for (int32_t i = 0; i < length; ++i) {
    c[i] -= b[i];
    b[i] += mu * (c[i] - r[i]);
  }
}
void plainBlindEqualization_16s(const int16_t* r, int16_t* c, int16_t* b, int32_t length, int32_t logEnergy) {
  const int32_t m = 9 * std::min(std::max(logEnergy, 211) - 211, 64);
  const auto saturated = [](int32_t x) { return static_cast<int16_t>(std::min(std::max(x, -32768), 32767)); };
  for (int32_t i = 0; i < length; ++i) {
    const int32_t t = c[i] - b[i];
    c[i] = saturated(t);
    b[i] = saturated(b[i] + (m * (t - r[i]) >> 16));
  }
}
