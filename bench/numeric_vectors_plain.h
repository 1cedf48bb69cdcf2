// Plain loops of the numeric vectors.
#pragma once

#include <cstdint>

extern "C" void plainExpNegSqr_32f(const float* source, float* result, int32_t length);
extern "C" void plainExpNegSqr_64f(const double* source, double* result, int32_t length);
extern "C" void plainSinC_32f(const float* source, float* result, int32_t length);
extern "C" void plainSinC_64f(const double* source, double* result, int32_t length);
extern "C" void plainNthMax_32f(const float* source, float* scratch, int32_t length, int32_t n, float* result);
extern "C" void plainEntropy_32f(const float* source, int32_t length, float* result);
extern "C" void plainWeightedSum_32f(const float* first, const float* second, float* result, int32_t length, float w1, float w2);
extern "C" void plainWeightedSum_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length, float w1,
                                     float w2);
extern "C" void plainUnitCurve_32f(const float* source, float* result, int32_t length);

// SLEEF's vector functions of this level, where it is installed (else nothing is done), with errors of at most 1 last place.
extern "C" bool hasSleef();
extern "C" void sleefExpNegSqr_32f(const float* source, float* result, int32_t length);
extern "C" void sleefExpNegSqr_64f(const double* source, double* result, int32_t length);
extern "C" void sleefSinC_32f(const float* source, float* result, int32_t length);
extern "C" void sleefSinC_64f(const double* source, double* result, int32_t length);
