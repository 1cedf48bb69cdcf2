// Blind equalisation of cepstra: each frame's cepstrum is corrected by a bias, which follows what is left of it towards a reference.
//
//   mu = min(max(logEnergy - 211/64, 0), 1) 9/1024
//   c'[i] = c[i] - b[i],  b'[i] = b[i] + mu (c'[i] - r[i])
// (Mauuary, "Blind equalization in the cepstral domain for robust telephone based speech recognition", EUSIPCO 1998: an LMS filter whose
// step follows the energy.)
//
// 16 bits: the energy has 6 fraction bits, m = 9 min(max(logEnergy - 211, 0), 64); t = c - b in 32 bits, c' is t saturated, and
// b' = saturated(b + ((m (t - r)) >> 16)).
// Vectors may overlap: then element follows element, each read when it is its turn.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// A corrected cepstrum and its bias.
template <class T, int N>
struct Equalized {
  Lanes<T, N> cepstrum, bias;
};

struct FloatEqualizer {
  using Computed = float;
  static constexpr int kBlock = kOneRegister<float>;
  float mu;

  explicit FloatEqualizer(float logEnergy) {
    const float above = logEnergy - 3.296875F, rising = above > 0.0F ? above : 0.0F;
    mu = (rising < 1.0F ? rising : 1.0F) * 0.0087890625F;
  }
  template <int N>
  Equalized<float, N> at(const float* reference, const float* cepstrum, const float* bias) const {
    using L = Lanes<float, N>;
    const L b = L::load(bias), corrected = L::load(cepstrum) - b;
    return {corrected, b + L(mu) * (corrected - L::load(reference))};
  }
  void inTurn(const float* reference, float* cepstrum, float* bias) const {
    const float corrected = *cepstrum - *bias;
    *cepstrum = corrected;
    *bias = *bias + mu * (corrected - *reference);
  }
};

struct ShortEqualizer {
  using Computed = int32_t;
  static constexpr int kBlock = kOneRegister<int16_t>;
  int32_t m;

  explicit ShortEqualizer(int32_t logEnergy) : m(9 * std::min(std::max(logEnergy, 211) - 211, 64)) {}
  template <int N>
  Equalized<int16_t, N> at(const int16_t* reference, const int16_t* cepstrum, const int16_t* bias) const {
    using L = Lanes<int32_t, N>;
    const L b = loadAs<int32_t, N>(bias), corrected = loadAs<int32_t, N>(cepstrum) - b;
    const L step = L(m) * (corrected - loadAs<int32_t, N>(reference)) >> 16;  // the product is below 2^26
    return {saturated(corrected), saturated(b + step)};
  }
  void inTurn(const int16_t* reference, int16_t* cepstrum, int16_t* bias) const {
    const int32_t corrected = *cepstrum - *bias;
    *cepstrum = saturate<int16_t>(corrected);
    *bias = saturate<int16_t>(*bias + (m * (corrected - *reference) >> 16));
  }
};

// Whether `count` numbers at a and as many at b share memory.
template <class T>
bool overlap(const T* a, const T* b, int32_t count) {
  const auto x = reinterpret_cast<std::uintptr_t>(a), y = reinterpret_cast<std::uintptr_t>(b);
  return (x < y ? y - x : x - y) < static_cast<std::uintptr_t>(count) * sizeof(T);
}

template <class Equalizer, class T, class Energy>
QorStatus equalizeBlindly(const T* reference, T* cepstrum, T* bias, int32_t length, Energy logEnergy) {
  if (QorStatus bad = Checks().null(reference, cepstrum, bias).size(length)) return bad;
  const Equalizer equalizer(logEnergy);
  if (overlap<T>(cepstrum, bias, length) || overlap<T>(reference, cepstrum, length) || overlap<T>(reference, bias, length)) {
    for (int32_t i = 0; i < length; ++i) equalizer.inTurn(reference + i, cepstrum + i, bias + i);
    return qorStatusOk;
  }
  // Each column once: what a call stores in two pieces, the next one would wait for.
  coverColumnsOnce<typename Equalizer::Computed, Equalizer::kBlock>(length, [=](int32_t i, auto n) {
    const Equalized<T, n> value = equalizer.template at<n>(reference + i, cepstrum + i, bias + i);
    value.cepstrum.store(cepstrum + i);
    value.bias.store(bias + i);
  });
  return qorStatusOk;
}

}  // namespace qorsr
