// Plain loops of a front-end with a split band.
#pragma once

#include <cstdint>

extern "C" void plainLowHighFilter_32f(const float* x, float* low, float* high, int32_t length, const float* h, int32_t taps);
extern "C" void plainLowHighFilter_16s(const int16_t* x, int16_t* low, int16_t* high, int32_t length, const int16_t* h,
                                       int32_t taps, int32_t scaleFactor);
extern "C" void plainHighBandCoding_32f(const float* low, const float* a, const float* b, float* y);
extern "C" void plainHighBandCoding_32s(const int32_t* low, const int32_t* a, const int32_t* b, int32_t* y, int32_t scaleFactor);
extern "C" void plainBlindEqualization_32f(const float* r, float* c, float* b, int32_t length, float logEnergy);
extern "C" void plainBlindEqualization_16s(const int16_t* r, int16_t* c, int16_t* b, int32_t length, int32_t logEnergy);
