// Plain loops of the numeric vectors: what one would write first. And loops over SLEEF's vector functions.
#include "numeric_vectors_plain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>

#if QORSR_HAVE_SLEEF
#include <immintrin.h>
#include <sleef.h>
#endif

void plainExpNegSqr_32f(const float* source, float* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) result[i] = std::exp(-source[i] * source[i]);
}
void plainExpNegSqr_64f(const double* source, double* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) result[i] = std::exp(-source[i] * source[i]);
}
void plainSinC_32f(const float* source, float* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) result[i] = source[i] == 0 ? 1 : std::sin(source[i]) / source[i];
}
void plainSinC_64f(const double* source, double* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) result[i] = source[i] == 0 ? 1 : std::sin(source[i]) / source[i];
}
void plainNthMax_32f(const float* source, float* scratch, int32_t length, int32_t n, float* result) {
  std::copy(source, source + length, scratch);
  std::nth_element(scratch, scratch + n, scratch + length, std::greater<>());
  *result = scratch[n];
}
void plainEntropy_32f(const float* source, int32_t length, float* result) {
  float sum = 0;
  for (int32_t i = 0; i < length; ++i) {
    if (source[i] > 0) sum += source[i] * std::log(source[i]);
  }
  *result = sum / 0.6931472F;
}
void plainWeightedSum_32f(const float* first, const float* second, float* result, int32_t length, float w1, float w2) {
  const float r = 1 / (w1 + w2), a = w1 * r, b = w2 * r;
  for (int32_t i = 0; i < length; ++i) result[i] = first[i] * a + second[i] * b;
}
void plainWeightedSum_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length, float w1, float w2) {
  const float r = 1 / (w1 + w2), a = w1 * r, b = w2 * r;
  for (int32_t i = 0; i < length; ++i) {
    const float sum = static_cast<float>(first[i]) * a + static_cast<float>(second[i]) * b;
    result[i] = static_cast<int16_t>(std::max(std::min(sum, 32767.0F), -32768.0F));
  }
}
void plainUnitCurve_32f(const float* source, float* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const float x = source[i];
    result[i] = x < 0 ? 0 : x < 1 ? x * x : x <= 2 ? 2 - (2 - x) * (2 - x) : 2;
  }
}

#if QORSR_HAVE_SLEEF

namespace {

#if defined(__AVX512F__)
using Floats = __m512;
using Doubles = __m512d;
#define QORSR_SLEEF(name) Sleef_##name##f16_u10avx512f
#define QORSR_SLEEF_DOUBLE(name) Sleef_##name##d8_u10avx512f
#elif defined(__AVX2__)
using Floats = __m256;
using Doubles = __m256d;
#define QORSR_SLEEF(name) Sleef_##name##f8_u10avx2
#define QORSR_SLEEF_DOUBLE(name) Sleef_##name##d4_u10avx2
#else
using Floats = __m128;
using Doubles = __m128d;
#define QORSR_SLEEF(name) Sleef_##name##f4_u10sse2
#define QORSR_SLEEF_DOUBLE(name) Sleef_##name##d2_u10sse2
#endif

template <class V, class T, class F>
void eachVector(const T* source, T* result, int32_t length, F f) {
  constexpr int32_t kLanes = sizeof(V) / sizeof(T);
  for (int32_t i = 0; i + kLanes <= length; i += kLanes) {
    V v;
    std::memcpy(&v, source + i, sizeof(v));
    v = f(v);
    std::memcpy(result + i, &v, sizeof(v));
  }
}

}  // namespace

bool hasSleef() { return true; }
void sleefExpNegSqr_32f(const float* source, float* result, int32_t length) {
  eachVector<Floats>(source, result, length, [](Floats x) { return QORSR_SLEEF(exp)(-(x * x)); });
}
void sleefExpNegSqr_64f(const double* source, double* result, int32_t length) {
  eachVector<Doubles>(source, result, length, [](Doubles x) { return QORSR_SLEEF_DOUBLE(exp)(-(x * x)); });
}
void sleefSinC_32f(const float* source, float* result, int32_t length) {
  eachVector<Floats>(source, result, length, [](Floats x) { return QORSR_SLEEF(sin)(x) / x; });
}
void sleefSinC_64f(const double* source, double* result, int32_t length) {
  eachVector<Doubles>(source, result, length, [](Doubles x) { return QORSR_SLEEF_DOUBLE(sin)(x) / x; });
}

#else

bool hasSleef() { return false; }
void sleefExpNegSqr_32f(const float*, float*, int32_t) {}
void sleefExpNegSqr_64f(const double*, double*, int32_t) {}
void sleefSinC_32f(const float*, float*, int32_t) {}
void sleefSinC_64f(const double*, double*, int32_t) {}

#endif
