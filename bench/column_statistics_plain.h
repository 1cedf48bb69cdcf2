// The plain loops of column_statistics_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

extern "C" void plainSumColumn_32f(const float* source, int32_t stride, int32_t height, float* result, int32_t width);
extern "C" void plainSumRow_32f(const float* source, int32_t width, int32_t stride, float* result, int32_t height);
extern "C" void plainMeanVarColumn_32f(const float* source, int32_t height, int32_t stride, float* means, float* variances,
                                       int32_t width);
extern "C" void plainMeanVarColumn_16s32s(const int16_t* source, int32_t height, int32_t stride, int32_t* means, int32_t* variances,
                                          int32_t width);
extern "C" void plainSumColumn_16s32s(const int16_t* source, int32_t stride, int32_t height, int32_t* result, int32_t width,
                                      float factor);
