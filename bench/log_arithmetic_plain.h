// Plain loops of the log-domain operations.
#pragma once

#include <cstdint>

#define PLAIN_API extern "C" __attribute__((visibility("default")))

PLAIN_API void plainLogAdd_32f(const float* source, float* result, int32_t length);       // log1p(exp(d)) in double
PLAIN_API void plainLogAddFloat_32f(const float* source, float* result, int32_t length);  // log1pf(expf(d))
PLAIN_API void plainLogAdd_64f(const double* source, double* result, int32_t length);
PLAIN_API void plainLogSum_32f(const float* source, float* result, int32_t length);
PLAIN_API void plainLogSum_64f(const double* source, double* result, int32_t length);

#undef PLAIN_API
