// Plain loops of the log-domain operations.
#pragma once

#include <cstdint>

extern "C" void plainLogAdd_32f(const float* source, float* result, int32_t length);       // log1p(exp(d)) in double
extern "C" void plainLogAddFloat_32f(const float* source, float* result, int32_t length);  // log1pf(expf(d))
// The same with the exponentials and logarithms of a peer, where it is installed.
extern "C" void eigenLogAdd_32f(const float* source, float* result, int32_t length);
extern "C" void sleefLogAdd_32f(const float* source, float* result, int32_t length);
extern "C" void plainLogAdd_64f(const double* source, double* result, int32_t length);
extern "C" void plainLogSum_32f(const float* source, float* result, int32_t length);
extern "C" void plainLogSum_64f(const double* source, double* result, int32_t length);
