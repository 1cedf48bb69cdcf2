// Entropy: (sum of x log x) / log 2, not negated (required), in float, the terms added in order. Zeros add nothing.
//
// Logarithms are formed a few registers at a time; what is serial is the sum alone.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "frame/checks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr float kLog2OfEntropy = 0.6931472F;

// x log x; 0 of 0, a NaN of a NaN.
template <int N>
inline Lanes<float, N> entropyTerms(const Lanes<float, N>& x) {
  using L = Lanes<float, N>;
  return selectLess(x, L(std::numeric_limits<float>::denorm_min()), L(0.0F), x * log(x));
}

// The sum of x log x of x = source[i] * factor. False, and no sum, if an element is negative.
template <class T>
inline bool entropySum(const T* source, int32_t length, float factor, float& sum) {
  constexpr int kOne = kNativeLanes<float>;
  alignas(64) float terms[kOne];
  sum = 0.0F;
  const auto add = [&](const Lanes<float, kOne>& x, int32_t n) __attribute__((always_inline)) {
    if (anyLess(x, Lanes<float, kOne>(0.0F))) return false;
    entropyTerms(x).store(terms);
    for (int32_t k = 0; k < n; ++k) sum += terms[k];
    return true;
  };
  int32_t i = 0;
  const Lanes<float, kOne> factors(factor);
  for (; length - i >= kOne; i += kOne) {
    if (!add(loadAs<float, kOne>(source + i) * factors, kOne)) return false;
  }
  if (i == length) return true;
  T last[kOne] = {};
  for (int32_t k = 0; k < length - i; ++k) last[k] = source[i + k];
  return add(loadAs<float, kOne>(last) * factors, length - i);
}

inline QorStatus entropy(const float* source, int32_t length, float* result) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  float sum;
  if (!entropySum(source, length, 1.0F, sum)) {
    *result = std::bit_cast<float>(0xFFC00000U);
    return qorStatusLogNegative;
  }
  *result = sum / kLog2OfEntropy;
  return qorStatusOk;
}

// required: 1 / 2^s for a positive s, 2^-s for another, s modulo 32.
inline float entropyFactor(int32_t scaleFactor) {
  const auto s = static_cast<uint32_t>(scaleFactor);
  return scaleFactor > 0 ? 1.0F / static_cast<float>(1U << (s % 32)) : static_cast<float>(1U << ((0 - s) % 32));
}

inline QorStatus entropy(const int16_t* source, int32_t sourceScale, int32_t length, int32_t* result, int32_t resultScale) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  float sum;
  if (!entropySum(source, length, entropyFactor(sourceScale), sum)) return qorStatusLogNegative;
  const float value = entropyFactor(resultScale) * sum / kLog2OfEntropy;
  *result = value >= 2147483648.0F ? INT32_MAX : value <= -2147483648.0F ? INT32_MIN : static_cast<int32_t>(value);
  return qorStatusOk;
}

}  // namespace qorsr
