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

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

struct EqualizedFloats {
  float mu;

  explicit EqualizedFloats(float logEnergy) {
    const float above = logEnergy - 3.296875F, rising = above > 0.0F ? above : 0.0F;
    mu = (rising < 1.0F ? rising : 1.0F) * 0.0087890625F;
  }
  template <int N>
  [[gnu::always_inline]] void at(const float* reference, float* cepstrum, float* bias) const {
    using L = Lanes<float, N>;
    const L corrected = L::load(cepstrum) - L::load(bias);
    corrected.store(cepstrum);
    (L::load(bias) + L(mu) * (corrected - L::load(reference))).store(bias);
  }
};

struct EqualizedShorts {
  int32_t m;

  explicit EqualizedShorts(int32_t logEnergy) : m(9 * std::min(std::max(logEnergy, 211) - 211, 64)) {}
  template <int N>
  [[gnu::always_inline]] void at(const int16_t* reference, int16_t* cepstrum, int16_t* bias) const {
    using L = Lanes<int32_t, N>;
    const L corrected = loadAs<int32_t, N>(cepstrum) - loadAs<int32_t, N>(bias);
    saturated(corrected).store(cepstrum);
    const L step = L(m) * (corrected - loadAs<int32_t, N>(reference)) >> 16;  // below 2^26
    saturated(loadAs<int32_t, N>(bias) + step).store(bias);
  }
};

// Whether `count` numbers at a and as many at b share memory.
template <class T>
bool overlap(const T* a, const T* b, int32_t count) {
  const auto x = reinterpret_cast<std::uintptr_t>(a), y = reinterpret_cast<std::uintptr_t>(b);
  return (x < y ? y - x : x - y) < static_cast<std::uintptr_t>(count) * sizeof(T);
}

template <class Equalized, class T, class Energy>
QorStatus equalizeBlindly(const T* reference, T* cepstrum, T* bias, int32_t length, Energy logEnergy) {
  if (QorStatus bad = Checks().null(reference, cepstrum, bias).size(length)) return bad;
  const Equalized equalized(logEnergy);
  if (overlap<T>(cepstrum, bias, length) || overlap<T>(reference, cepstrum, length) || overlap<T>(reference, bias, length)) {
    for (int32_t i = 0; i < length; ++i) equalized.template at<1>(reference + i, cepstrum + i, bias + i);
  } else {
    coverColumnsOnce<T, kOneRegister<T>>(
        length, [=](int32_t i, auto n)
                    __attribute__((always_inline)) { equalized.template at<n>(reference + i, cepstrum + i, bias + i); });
  }
  return qorStatusOk;
}

}  // namespace qorsr
