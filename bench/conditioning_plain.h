// The plain loops of conditioning_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

extern "C" void plainCompensateOffset_32f(const float* x, float* y, int32_t length, float* before, float result, float c);
extern "C" void plainCompensateOffset_16s(const int16_t* x, int16_t* y, int32_t length, int16_t* before, int16_t result, float c);
extern "C" void plainCompensateOffsetQ15_16s(const int16_t* x, int16_t* y, int32_t length, int16_t* before, int16_t result,
                                             int16_t c);
extern "C" void plainZeroMean_16s(int16_t* x, int32_t length);
extern "C" void plainSignChangeRate_32f(const float* x, int32_t length, float* result);
extern "C" void plainSignChangeRate_Count0_32f(const float* x, int32_t length, float* result);
extern "C" void plainSignChangeRateXor_32f(const float* x, int32_t length, int32_t* result);
extern "C" void plainSignChangeRate_16s(const int16_t* x, int32_t length, int32_t* result);
extern "C" void plainSignChangeRate_Count0_16s(const int16_t* x, int32_t length, int32_t* result);
extern "C" void plainNormEnergy_32f(float* e, int32_t step, int32_t height, float silence, float scale);
extern "C" void plainNormEnergy_RT_32f(float* e, int32_t step, int32_t height, float silence, float greatest, float scale);
extern "C" void plainNormEnergy_16s(int16_t* e, int32_t step, int32_t height, int16_t silence, int16_t top, float scale);
extern "C" void plainNormEnergy_RT_16s(int16_t* e, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top,
                                       float scale);
extern "C" void plainSumMeanVar_32f(const float* x, int32_t step, int32_t height, float* sums, float* squares, int32_t width);
extern "C" void plainSumMeanVar_16s32f(const int16_t* x, int32_t step, int32_t height, float* sums, float* squares, int32_t width);
extern "C" void plainNormalizeInRange_32f(const float* x, float* y, int32_t length, float lower, float upper, float range);
extern "C" void plainNormalizeInRangeMinMax_32f(const float* x, float* y, int32_t length, float min, float max, float lower,
                                                float upper, float range);
extern "C" void plainNormalizeInRange_16s(const int16_t* x, int16_t* y, int32_t length, float lower, float upper, int16_t range);
extern "C" void plainNormalizeInRange_32f8u(const float* x, uint8_t* y, int32_t length, float lower, float upper, uint8_t range);
