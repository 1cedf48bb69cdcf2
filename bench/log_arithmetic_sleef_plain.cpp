// SLEEF's vectors in the same additions, of the width of the level; what is left, element by element.
#if __has_include(<sleef.h>)
#include <immintrin.h>
#include <sleef.h>

#include "log_arithmetic_plain.h"

void sleefLogAdd_32f(const float* source, float* result, int32_t length) {
  int32_t i = 0;
#if defined(__AVX512F__)
  for (; i <= length - 16; i += 16) {
    const __m512 a = _mm512_loadu_ps(source + i), b = _mm512_loadu_ps(result + i);
    const __m512 hi = _mm512_max_ps(a, b), d = _mm512_sub_ps(_mm512_min_ps(a, b), hi);
    _mm512_storeu_ps(result + i, _mm512_add_ps(hi, Sleef_log1pf16_u10avx512f(Sleef_expf16_u10avx512f(d))));
  }
#elif defined(__AVX2__)
  for (; i <= length - 8; i += 8) {
    const __m256 a = _mm256_loadu_ps(source + i), b = _mm256_loadu_ps(result + i);
    const __m256 hi = _mm256_max_ps(a, b), d = _mm256_sub_ps(_mm256_min_ps(a, b), hi);
    _mm256_storeu_ps(result + i, _mm256_add_ps(hi, Sleef_log1pf8_u10avx2(Sleef_expf8_u10avx2(d))));
  }
#else
  for (; i <= length - 4; i += 4) {
    const __m128 a = _mm_loadu_ps(source + i), b = _mm_loadu_ps(result + i);
    const __m128 hi = _mm_max_ps(a, b), d = _mm_sub_ps(_mm_min_ps(a, b), hi);
    _mm_storeu_ps(result + i, _mm_add_ps(hi, Sleef_log1pf4_u10sse2(Sleef_expf4_u10sse2(d))));
  }
#endif
  plainLogAddFloat_32f(source + i, result + i, length - i);
}
#endif
