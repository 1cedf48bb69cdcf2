// Plain loops of noise tracking and of suppression gains: what one would write first.
#include "noise_tracking_plain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

void plainUpdateNoise_32f(const float* x, PlainMinima<float>* state, float* noise) {
  const float as = state->spectrumSmoothing, ap = state->presenceSmoothing, ad = state->noiseSmoothing;
  float *const p = state->presence, *const s = state->smoothed, *const m = state->minimum, *const t = state->latest;
  const int32_t bins = state->bins;
  for (int32_t k = 0; k < bins; ++k) s[k] = as * s[k] + (1 - as) * x[k];
  if (state->counter == state->window) {
    for (int32_t k = 0; k < bins; ++k) {
      m[k] = std::min(s[k], t[k]);
      t[k] = s[k];
    }
    state->counter = 0;
  } else {
    for (int32_t k = 0; k < bins; ++k) {
      m[k] = std::min(m[k], s[k]);
      t[k] = std::min(t[k], s[k]);
    }
  }
  for (int32_t k = 0; k < bins; ++k) {
    p[k] *= ap;
    if (s[k] > 5 * m[k]) p[k] += 1 - ap;
  }
  for (int32_t k = 0; k < bins; ++k) {
    const float a = ad + (1 - ad) * p[k];
    noise[k] = a * noise[k] + (1 - a) * x[k];
  }
  ++state->counter;
}

void plainUpdateNoise_32s(const int32_t* x, PlainMinima<int32_t>* state, int32_t* noise) {
  const int64_t as = state->spectrumSmoothing;
  const double ap = state->presenceSmoothing, ad = state->noiseSmoothing, one = 2147483647.0;
  int32_t *const p = state->presence, *const s = state->smoothed, *const m = state->minimum, *const t = state->latest;
  const int32_t bins = state->bins;
  for (int32_t k = 0; k < bins; ++k) s[k] = static_cast<int32_t>((as * s[k] + (0x7fffffff - as) * x[k]) >> 31);
  if (state->counter == state->window) {
    for (int32_t k = 0; k < bins; ++k) {
      m[k] = std::min(s[k], t[k]);
      t[k] = s[k];
    }
    state->counter = 0;
  } else {
    for (int32_t k = 0; k < bins; ++k) {
      m[k] = std::min(m[k], s[k]);
      t[k] = std::min(t[k], s[k]);
    }
  }
  for (int32_t k = 0; k < bins; ++k) {
    const double limit = std::min(5.0 * m[k], one);
    const double presence = p[k] * ap * 0x1p-31 + (limit < s[k] ? one - ap : 0.0);
    const double a = ad + presence * (one - ad) * 0x1p-31;
    p[k] = static_cast<int32_t>(std::lrint(presence));
    noise[k] = static_cast<int32_t>(std::lrint(a * noise[k] * 0x1p-31 + (one - a) * x[k] * 0x1p-31));
  }
  ++state->counter;
}

namespace {

int64_t ratioOf(int64_t q, const int32_t (*octaves)[3]) {
  const int b = 63 - std::countl_zero(static_cast<uint64_t>(q));
  const int32_t* const c = octaves[b - 7];
  const int64_t e = q - (int64_t{1} << b);
  return ((e * (((e * c[1]) >> 13) - c[2])) >> (b - 2)) + c[0];
}

}  // namespace

void plainEphraimMalah_32f(const float* prior, const float* posterior, float* gain, int32_t length, const int32_t* table,
                           const int32_t (*octaves)[3]) {
  for (int32_t i = 0; i < length; ++i) {
    if (prior[i] < 0 || prior[i] > 1) return;
  }
  for (int32_t i = 0; i < length; ++i) {
    const float snr = std::min(std::max(posterior[i], 3.1e-5F), 100.0F);
    const auto q = static_cast<int64_t>(static_cast<double>(snr * prior[i]) * 4194304.0);
    gain[i] = q < 129 ? prior[i] * static_cast<float>(table[q]) : prior[i] * static_cast<float>(ratioOf(q, octaves)) / 4194304.0F;
  }
}
void plainEphraimMalah_32s(const int32_t* prior, const int32_t* posterior, int32_t* gain, int32_t length, const int32_t* table,
                           const int32_t (*octaves)[3]) {
  for (int32_t i = 0; i < length; ++i) {
    if (prior[i] < 0) return;
  }
  for (int32_t i = 0; i < length; ++i) {
    const int64_t p = prior[i], snr = std::min(std::max(posterior[i], 1), 3276800), q = (snr * p) >> 24;
    const int64_t value = q < 129 ? p * table[q] : (p * ratioOf(q, octaves)) >> 22;
    gain[i] = static_cast<int32_t>(std::min<int64_t>(value, 0x7fffffff));
  }
}

void plainWiener_32f(const float* snr, float* gain, int32_t length) {
  float least = snr[0];
  for (int32_t i = 1; i < length; ++i) least = std::min(least, snr[i]);
  for (int32_t i = 0; i < length; ++i) {
    const float x = least < 0 ? std::max(snr[i], 0.0F) : snr[i];
    gain[i] = x / (1 + x);
  }
}
void plainWiener_32s(const int32_t* snr, int32_t* gain, int32_t length, const int32_t* fine, const int32_t* middle,
                     const int32_t* coarse) {
  for (int32_t i = 0; i < length; ++i) {
    const int32_t v = snr[i];
    if (v < 0) {
      gain[i] = 0;
    } else if (v < 1 << 17) {
      gain[i] = fine[v >> 11];
    } else if (v < 1 << 21) {
      gain[i] = middle[v >> 17];
    } else if (v < 1 << 24) {
      gain[i] = coarse[v >> 21];
    } else {
      gain[i] = v < 1 << 25 ? 2143297520 : 0x7fffffff;
    }
  }
}
