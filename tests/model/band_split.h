// Plain models of a front-end with a split band: its two mel banks, the split, the coding of the high band, the blind equaliser.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "model/convert.h"
#include "model/filter_bank.h"
#include "model/noise_reduction.h"

namespace model {

// ---- Banks ----

// Entries of the low band (27, from 1 Hz, 24 intervals) and of the high one (5, from 80 Hz, 4 intervals) as bins of 62.5 Hz.
inline std::vector<int32_t> auroraEntries(bool low) {
  const auto mel = [](double hertz) { return 2595.0 * std::log10(1.0 + hertz / 700.0); };
  const double from = mel(low ? 1.0 : 80.0), span = mel(4000.0) - from, intervals = low ? 24.0 : 4.0;
  std::vector<int32_t> c;
  for (int i = 0; i < (low ? 27 : 5); ++i) {
    const double m = i * span / intervals + from;
    c.push_back(static_cast<int32_t>(nearestEven(std::min(128.0 / 8000.0 * 700.0 * (std::pow(10.0, m / 2595.0) - 1.0), 64.0))));
  }
  return c;
}
// The centres that evaluation takes.
inline std::vector<int32_t> auroraCenters(bool low) {
  std::vector<int32_t> c = auroraEntries(low);
  if (low) {
    c.insert(c.begin(), 0);
    c.pop_back();
  }
  return c;
}

inline void rise(float& w, int64_t step, int64_t span) { w = static_cast<float>(step) / static_cast<float>(span); }
inline void rise(int32_t& w, int64_t step, int64_t span) { w = static_cast<int32_t>(step * 16384 / span); }
inline void fall(float& w, int64_t step, int64_t span) { w = 1.0F - static_cast<float>(step) / static_cast<float>(span); }
inline void fall(int32_t& w, int64_t step, int64_t span) { w = static_cast<int32_t>(16384 - step * 16384 / span); }
inline void divide(float& w, double sum) { w = w / static_cast<float>(sum); }
inline void divide(int32_t& w, double sum) { w = static_cast<int32_t>(int64_t{w} * 16384 / static_cast<int64_t>(sum)); }

// Filter k, from 1 on, of the centres that evaluation takes.
template <class Weight>
Filter<Weight> auroraFilter(bool low, std::size_t k) {
  const std::vector<int32_t> c = auroraCenters(low);
  const int64_t from = c[k - 1], top = c[k], to = c[k + 1];
  Filter<Weight> f = makeFilter<Weight>(
      c, k, 64,
      [&](int64_t j) {
        Weight w = 0;
        if (low && k == 1) {
          fall(w, j - from, to - top);
        } else if (j > from) {
          rise(w, j - from, top - from);
        }
        return w;
      },
      [&](int64_t j) {
        Weight w = 0;
        if (j < to) fall(w, j - top, to - top);
        return w;
      });
  if (low) {
    Weight sum = 0;
    for (const Weight w : f.all()) sum += w;
    for (Weight& w : f.rising) divide(w, static_cast<double>(sum));
    for (Weight& w : f.falling) divide(w, static_cast<double>(sum));
  }
  return f;
}

// ---- Split ----

struct Bands {
  std::vector<float> low, high;
};
inline Bands splitBands(const std::vector<float>& x, std::size_t length, const std::vector<float>& h) {
  Bands bands;
  for (std::size_t i = 0; i < length / 2; ++i) {
    float even = 0, odd = 0;
    for (std::size_t k = 0; k < h.size(); k += 2) even += h[k] * x[2 * i + k];
    for (std::size_t k = 1; k < h.size(); k += 2) odd += h[k] * x[2 * i + k];
    bands.low.push_back(even + odd);
    bands.high.push_back((i % 2 == 0 ? -1.0F : 1.0F) * (even - odd));
  }
  return bands;
}
struct ShortBands {
  std::vector<int16_t> low, high;
};
inline ShortBands splitBands(const std::vector<int16_t>& x, std::size_t length, const std::vector<int16_t>& h, int32_t sf) {
  ShortBands bands;
  for (std::size_t i = 0; i < length / 2; ++i) {
    int64_t low = 0, high = 0;
    for (std::size_t k = 0; k < h.size(); ++k) {
      const int64_t product = int64_t{h[k]} * x[2 * i + k];
      low += product;
      high += k % 2 == 0 ? product : -product;
    }
    bands.low.push_back(scaledTo16(static_cast<double>(low), sf));
    bands.high.push_back(scaledTo16(static_cast<double>(i % 2 == 0 ? -high : high), sf));
  }
  return bands;
}

// ---- Coding of the high band ----

inline constexpr std::size_t kBinsA[][2] = {{33, 38}, {39, 48}, {49, 64}}, kBinsB[][2] = {{66, 76}, {78, 96}, {98, 128}};

inline float limitedLog(float z) {
  return static_cast<double>(z) > std::exp(-10.0) ? static_cast<float>(std::log(static_cast<double>(z))) : -10.0F;
}
inline std::vector<float> codedHighBand(const std::vector<float>& low, const std::vector<float>& a, const std::vector<float>& b) {
  const auto sum = [](const std::vector<float>& x, const std::size_t(&bins)[2]) {
    float lane[4] = {};
    std::size_t i = bins[0];
    for (; i + 3 <= bins[1]; i += 4) {
      for (std::size_t j = 0; j < 4; ++j) lane[j] += x[i + j];
    }
    float total = (lane[0] + lane[2]) + (lane[1] + lane[3]);
    for (; i <= bins[1]; ++i) total += x[i];
    return total;
  };
  std::vector<float> y;
  for (const float l : low) {
    const auto term = [&](int k) { return limitedLog(0.5F * sum(b, kBinsB[k])) - (limitedLog(sum(a, kBinsA[k])) - limitedLog(l)); };
    y.push_back((0.1F * term(0) + 0.2F * term(1)) + 0.7F * term(2));
  }
  return y;
}

inline int32_t limitedLog(int64_t z) {
  return z <= 0 ? -1280 : static_cast<int32_t>(nearestEven(128.0 * std::log(static_cast<double>(z))));
}
inline std::vector<int32_t> codedHighBand(const std::vector<int32_t>& low, const std::vector<int32_t>& a,
                                          const std::vector<int32_t>& b, int32_t sf) {
  const auto sum = [](const std::vector<int32_t>& x, const std::size_t(&bins)[2]) {
    int64_t total = 0;
    for (std::size_t i = bins[0]; i <= bins[1]; ++i) total += x[i];
    return total;
  };
  const auto logA = [&](int k) { return limitedLog(int64_t{limitedTo<int32_t>(sum(a, kBinsA[k]))}); };
  const auto logB = [&](int k) {
    return limitedLog(
               int64_t{limitedTo<int32_t>(static_cast<int64_t>(nearestEven(static_cast<double>(sum(b, kBinsB[k])) / 8.0)))}) +
           177;
  };
  std::vector<int32_t> y;
  for (const int32_t l : low) {
    const int32_t base = limitedLog(int64_t{l});
    const int32_t r = ((logB(0) * 102 - (logA(0) - base) * 102) >> 10) + (((logB(1) - (logA(1) - base)) * 205) >> 10) +
                      (((logB(2) - (logA(2) - base)) * 717) >> 10);
    const int64_t shift = int64_t{sf} + 7;
    y.push_back(shift >= 0 ? r >> std::min<int64_t>(shift, 31)
                           : wrapped32(int64_t{r} * (int64_t{1} << (((shift % 32) + 32) % 32))));
  }
  return y;
}

// ---- Blind equaliser, in vectors that may overlap ----

inline void equalize(const float* reference, float* cepstrum, float* bias, int32_t length, float logEnergy) {
  const float rising = logEnergy - 3.296875F > 0 ? logEnergy - 3.296875F : 0.0F;
  const float mu = (rising < 1.0F ? rising : 1.0F) * 0.0087890625F;
  for (int32_t i = 0; i < length; ++i) {
    const float corrected = cepstrum[i] - bias[i];
    cepstrum[i] = corrected;
    const float error = corrected - reference[i], step = mu * error;
    bias[i] = bias[i] + step;
  }
}
inline void equalize(const int16_t* reference, int16_t* cepstrum, int16_t* bias, int32_t length, int32_t logEnergy) {
  const int64_t m = 9 * std::clamp<int64_t>(int64_t{logEnergy} - 211, 0, 64);
  for (int32_t i = 0; i < length; ++i) {
    const int32_t t = cepstrum[i] - bias[i];
    cepstrum[i] = limitedTo<int16_t>(t);
    bias[i] = limitedTo<int16_t>(bias[i] + ((m * (t - reference[i])) >> 16));
  }
}

}  // namespace model
