// Plain loops of the log-domain operations: what one would write first.
#include "log_arithmetic_plain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

void plainLogAdd_32f(const float* source, float* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const double hi = static_cast<double>(std::max(source[i], result[i])), lo = static_cast<double>(std::min(source[i], result[i]));
    result[i] = static_cast<float>(hi + std::log1p(std::exp(lo - hi)));
  }
}

void plainLogAddFloat_32f(const float* source, float* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const float hi = std::max(source[i], result[i]), lo = std::min(source[i], result[i]);
    result[i] = hi + log1pf(expf(lo - hi));
  }
}

void plainLogAdd_64f(const double* source, double* result, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const double hi = std::max(source[i], result[i]), lo = std::min(source[i], result[i]);
    result[i] = hi + std::log1p(std::exp(lo - hi));
  }
}

namespace {

// The largest term in front, then one exponential a term.
template <class T>
T logSum(const T* source, int32_t length) {
  const T largest = *std::max_element(source, source + length);
  T sum = 0;
  for (int32_t i = 0; i < length; ++i) sum += std::exp(source[i] - largest);
  return largest + std::log(sum);
}

}  // namespace

void plainLogSum_32f(const float* source, float* result, int32_t length) { *result = logSum(source, length); }
void plainLogSum_64f(const double* source, double* result, int32_t length) { *result = logSum(source, length); }
