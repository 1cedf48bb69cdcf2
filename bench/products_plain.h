// The plain loops of products_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

extern "C" void plainMatVecMul_32f(const float* matrix, int32_t stride, const float* vector, int32_t width, float* result,
                                   int32_t height);
extern "C" void plainMatVecMul_16s32s(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width, int32_t* result,
                                      int32_t height, int32_t shift);
extern "C" void plainMatVecMul_32s(const int32_t* matrix, int32_t stride, const int32_t* vector, int32_t width, int32_t* result,
                                   int32_t height, double power);
extern "C" void plainVecMatMul_32f(const float* vector, const float* matrix, int32_t stride, int32_t height, float* result,
                                   int32_t width);
extern "C" void plainVecMatMul_16s32s(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height, int32_t* result,
                                      int32_t width, double power);
extern "C" void plainVecMatMul_32s(const int32_t* vector, const int32_t* matrix, int32_t stride, int32_t height, int32_t* result,
                                   int32_t width, double power);
