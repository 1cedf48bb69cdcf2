// Plain loops of pitch analysis.
#pragma once

#include <cstdint>

extern "C" {
float plainCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length);
float plainPartialCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float energy);
void plainDecimatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t most, int32_t least, float* results,
                                    int32_t step);
float plainInterpolatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float* position);
float plainPeriodicityLSPE(const float* x, int32_t length, int32_t longest, int32_t shortest, int32_t* period);
float plainPeriodicity(const float* x, int32_t length, int32_t longest, int32_t shortest, int32_t* period);
void plainFrequencies(const float* marks, float* candidates, int32_t length);
void plainPeaks(const float* x, uint8_t* flags, int32_t length, int32_t search);
}
