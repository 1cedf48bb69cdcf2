// Plain loops of the column and row statistics: what one would write first.
#include <cstdint>

#include "column_statistics_plain.h"

void plainSumColumn_32f(const float* source, int32_t stride, int32_t height, float* result, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    float sum = 0;
    for (int32_t r = 0; r < height; ++r) sum += source[static_cast<int64_t>(r) * stride + c];
    result[c] = sum;
  }
}

void plainSumRow_32f(const float* source, int32_t width, int32_t stride, float* result, int32_t height) {
  for (int32_t r = 0; r < height; ++r) {
    float sum = 0;
    for (int32_t c = 0; c < width; ++c) sum += source[static_cast<int64_t>(r) * stride + c];
    result[r] = sum;
  }
}

void plainMeanVarColumn_32f(const float* source, int32_t height, int32_t stride, float* means, float* variances, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    float sum = 0, squares = 0;
    for (int32_t r = 0; r < height; ++r) {
      const float x = source[static_cast<int64_t>(r) * stride + c];
      sum += x;
      squares += x * x;
    }
    const auto n = static_cast<float>(height);
    means[c] = sum / n;
    variances[c] = (squares - means[c] * means[c] * n) / (n - 1);
  }
}

void plainMeanVarColumn_16s32s(const int16_t* source, int32_t height, int32_t stride, int32_t* means, int32_t* variances,
                               int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    double sum = 0, squares = 0;
    for (int32_t r = 0; r < height; ++r) {
      const double x = source[static_cast<int64_t>(r) * stride + c];
      sum += x;
      squares += x * x;
    }
    const double mean = sum / height;
    means[c] = static_cast<int32_t>(__builtin_lrint(mean));
    variances[c] = static_cast<int32_t>(__builtin_lrint((squares - mean * mean * height) / (height - 1)));
  }
}

void plainSumColumn_16s32s(const int16_t* source, int32_t stride, int32_t height, int32_t* result, int32_t width, float factor) {
  for (int32_t c = 0; c < width; ++c) {
    float sum = 0;
    for (int32_t r = 0; r < height; ++r) sum += static_cast<float>(source[static_cast<int64_t>(r) * stride + c]);
    const float value = sum * factor;
    result[c] = value >= 2147483648.0F   ? INT32_MAX
                : value < -2147483648.0F ? INT32_MIN
                                         : static_cast<int32_t>(__builtin_lrintf(value));
  }
}
