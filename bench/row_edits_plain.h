// The plain loops of row_edits_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

#define PLAIN_API extern "C" __attribute__((visibility("default")))

PLAIN_API void plainWeightedMeanColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                           int32_t width);
PLAIN_API void plainWeightedVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height,
                                          const float* means, float* variances, int32_t width);
PLAIN_API void plainWeightedMeanVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height,
                                              float* means, float* variances, int32_t width);
PLAIN_API void plainWeightedMeanVarColumn_64f(const double* source, int32_t stride, const double* weights, int32_t height,
                                              double* means, double* variances, int32_t width);
PLAIN_API void plainNormalizeColumn_32f(float* matrix, int32_t stride, int32_t height, const float* means, const float* scales,
                                        int32_t width);
PLAIN_API void plainNormalizeColumn_16s(int16_t* matrix, int32_t stride, int32_t height, const int16_t* means,
                                        const int16_t* scales, int32_t width, int32_t shift);
PLAIN_API void plainSubRow_16s(const int16_t* row, int32_t width, int16_t* matrix, int32_t stride, int32_t height);
PLAIN_API void plainSubRow_32f(const float* row, int32_t width, float* matrix, int32_t stride, int32_t height);
PLAIN_API void plainAddAllRowSum_32f(const float* source, int32_t stride, int32_t height, float* sum, int32_t width);
PLAIN_API void plainAddNRows_32f(const float* source, int32_t height, int32_t offset, int32_t stride, const int32_t* indices1,
                                 const uint16_t* indices2, int32_t indexCount, float* destination, int32_t width, float start);
PLAIN_API void plainAddMulRow_64f(const double* source, double* destination, int32_t length, double factor);
PLAIN_API void plainCopyColumn_32f(const float* source, int32_t width, float* destination, int32_t stride, int32_t height);
PLAIN_API void plainCopyColumn_Indirect_32f(const float* source, int32_t width, int32_t stride, float* destination,
                                            const int32_t* columns, int32_t count, int32_t destinationStride, int32_t height);
PLAIN_API void plainDotProdColumn_64f(const double* const* rows, int32_t height, double* result, int32_t first, int32_t second,
                                      int32_t firstRow);
