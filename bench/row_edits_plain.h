// The plain loops of row_edits_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

extern "C" void plainWeightedMeanColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                            int32_t width);
extern "C" void plainWeightedVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height,
                                           const float* means, float* variances, int32_t width);
extern "C" void plainWeightedMeanVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height,
                                               float* means, float* variances, int32_t width);
extern "C" void plainWeightedMeanVarColumn_64f(const double* source, int32_t stride, const double* weights, int32_t height,
                                               double* means, double* variances, int32_t width);
extern "C" void plainNormalizeColumn_32f(float* matrix, int32_t stride, int32_t height, const float* means, const float* scales,
                                         int32_t width);
extern "C" void plainNormalizeColumn_16s(int16_t* matrix, int32_t stride, int32_t height, const int16_t* means,
                                         const int16_t* scales, int32_t width, int32_t shift);
extern "C" void plainSubRow_16s(const int16_t* row, int32_t width, int16_t* matrix, int32_t stride, int32_t height);
extern "C" void plainSubRow_32f(const float* row, int32_t width, float* matrix, int32_t stride, int32_t height);
extern "C" void plainAddAllRowSum_32f(const float* source, int32_t stride, int32_t height, float* sum, int32_t width);
extern "C" void plainAddNRows_32f(const float* source, int32_t height, int32_t offset, int32_t stride, const int32_t* indices1,
                                  const uint16_t* indices2, int32_t indexCount, float* destination, int32_t width, float start);
extern "C" void plainAddMulRow_64f(const double* source, double* destination, int32_t length, double factor);
extern "C" void plainCopyColumn_32f(const float* source, int32_t width, float* destination, int32_t stride, int32_t height);
extern "C" void plainCopyColumn_Indirect_32f(const float* source, int32_t width, int32_t stride, float* destination,
                                             const int32_t* columns, int32_t count, int32_t destinationStride, int32_t height);
extern "C" void plainDotProdColumn_64f(const double* const* rows, int32_t height, double* result, int32_t first, int32_t second,
                                       int32_t firstRow);
