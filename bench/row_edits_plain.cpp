// Plain loops of the weighted statistics and of the edits of rows and columns: what one would write first.
#include "row_edits_plain.h"

#include <algorithm>
#include <cstdint>

namespace {

template <class T>
T* rowOf(T* matrix, int32_t stride, int32_t r) {
  return matrix + static_cast<int64_t>(r) * stride;
}

template <class T>
void weightedMeanVar(const T* source, int32_t stride, const T* weights, int32_t height, T* means, T* variances, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    T sum = 0, squares = 0;
    for (int32_t r = 0; r < height; ++r) {
      const T x = rowOf(source, stride, r)[c], weighted = x * weights[r];
      sum += weighted;
      squares += weighted * x;
    }
    means[c] = sum;
    variances[c] = squares - sum * sum;
  }
}

int16_t limited(int32_t value) { return static_cast<int16_t>(std::clamp(value, -32768, 32767)); }

}  // namespace

void plainWeightedMeanColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                 int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    float sum = 0;
    for (int32_t r = 0; r < height; ++r) sum += rowOf(source, stride, r)[c] * weights[r];
    means[c] = sum;
  }
}
void plainWeightedVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height, const float* means,
                                float* variances, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    float sum = 0;
    for (int32_t r = 0; r < height; ++r) {
      const float x = rowOf(source, stride, r)[c];
      sum += x * x * weights[r];
    }
    variances[c] = sum - means[c] * means[c];
  }
}
void plainWeightedMeanVarColumn_32f(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                    float* variances, int32_t width) {
  weightedMeanVar(source, stride, weights, height, means, variances, width);
}
void plainWeightedMeanVarColumn_64f(const double* source, int32_t stride, const double* weights, int32_t height, double* means,
                                    double* variances, int32_t width) {
  weightedMeanVar(source, stride, weights, height, means, variances, width);
}
void plainNormalizeColumn_32f(float* matrix, int32_t stride, int32_t height, const float* means, const float* scales,
                              int32_t width) {
  for (int32_t r = 0; r < height; ++r) {
    float* x = rowOf(matrix, stride, r);
    for (int32_t c = 0; c < width; ++c) x[c] = (x[c] - means[c]) * scales[c];
  }
}
void plainNormalizeColumn_16s(int16_t* matrix, int32_t stride, int32_t height, const int16_t* means, const int16_t* scales,
                              int32_t width, int32_t shift) {
  for (int32_t r = 0; r < height; ++r) {
    int16_t* x = rowOf(matrix, stride, r);
    for (int32_t c = 0; c < width; ++c) x[c] = limited(((x[c] - means[c]) * scales[c]) >> shift);
  }
}
void plainSubRow_16s(const int16_t* row, int32_t width, int16_t* matrix, int32_t stride, int32_t height) {
  for (int32_t r = 0; r < height; ++r) {
    int16_t* x = rowOf(matrix, stride, r);
    for (int32_t c = 0; c < width; ++c) x[c] = limited(x[c] - row[c]);
  }
}
void plainSubRow_32f(const float* row, int32_t width, float* matrix, int32_t stride, int32_t height) {
  for (int32_t r = 0; r < height; ++r) {
    float* x = rowOf(matrix, stride, r);
    for (int32_t c = 0; c < width; ++c) x[c] -= row[c];
  }
}
void plainAddAllRowSum_32f(const float* source, int32_t stride, int32_t height, float* sum, int32_t width) {
  for (int32_t r = 0; r < height; ++r) {
    const float* x = rowOf(source, stride, r);
    for (int32_t c = 0; c < width; ++c) sum[c] += x[c];
  }
}
void plainAddNRows_32f(const float* source, int32_t height, int32_t offset, int32_t stride, const int32_t* indices1,
                       const uint16_t* indices2, int32_t indexCount, float* destination, int32_t width, float start) {
  for (int32_t i = 0; i < indexCount; ++i) {
    if (indices1[i] + indices2[i] < 0 || indices1[i] + indices2[i] >= height) return;
  }
  for (int32_t c = 0; c < width; ++c) destination[c] = start;
  for (int32_t i = 0; i < indexCount; ++i) {
    const float* x = rowOf(source, stride, indices1[i] + indices2[i]) + offset;
    for (int32_t c = 0; c < width; ++c) destination[c] += x[c];
  }
}
void plainAddMulRow_64f(const double* source, double* destination, int32_t length, double factor) {
  for (int32_t i = 0; i < length; ++i) destination[i] += source[i] * factor;
}
void plainCopyColumn_32f(const float* source, int32_t width, float* destination, int32_t stride, int32_t height) {
  for (int32_t r = 0; r < height; ++r) {
    for (int32_t c = 0; c < width; ++c) rowOf(destination, stride, r)[c] = rowOf(source, width, r)[c];
  }
}
void plainCopyColumn_Indirect_32f(const float* source, int32_t width, int32_t stride, float* destination, const int32_t* columns,
                                  int32_t count, int32_t destinationStride, int32_t height) {
  for (int32_t k = 0; k < count; ++k) {
    if (columns[k] < 0 || columns[k] >= width) return;
  }
  for (int32_t r = 0; r < height; ++r) {
    for (int32_t k = 0; k < count; ++k) rowOf(destination, destinationStride, r)[k] = rowOf(source, stride, r)[columns[k]];
  }
}
void plainDotProdColumn_64f(const double* const* rows, int32_t height, double* result, int32_t first, int32_t second,
                            int32_t firstRow) {
  double sum = 0;
  for (int32_t r = firstRow; r < height; ++r) sum += rows[r][first] * rows[r][second];
  *result = sum;
}
