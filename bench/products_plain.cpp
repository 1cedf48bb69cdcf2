// Plain loops of the products of a matrix and a vector: what one would write first.
#include "products_plain.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

int32_t rounded(double value) { return static_cast<int32_t>(std::lrint(std::clamp(value, -2147483648.0, 2147483647.0))); }

int32_t limited(int64_t value) { return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX)); }

template <class Acc, class T>
Acc rowDot(const T* row, const T* vector, int32_t width) {
  Acc sum = 0;
  for (int32_t c = 0; c < width; ++c) sum += static_cast<Acc>(row[c]) * static_cast<Acc>(vector[c]);
  return sum;
}

template <class Acc, class T>
Acc columnDot(const T* vector, const T* matrix, int32_t stride, int32_t height, int32_t c) {
  Acc sum = 0;
  for (int32_t r = 0; r < height; ++r)
    sum += static_cast<Acc>(vector[r]) * static_cast<Acc>(matrix[static_cast<int64_t>(r) * stride + c]);
  return sum;
}

}  // namespace

void plainMatVecMul_32f(const float* matrix, int32_t stride, const float* vector, int32_t width, float* result, int32_t height) {
  for (int32_t r = 0; r < height; ++r) result[r] = rowDot<float>(matrix + static_cast<int64_t>(r) * stride, vector, width);
}
void plainMatVecMul_16s32s(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width, int32_t* result,
                           int32_t height, int32_t shift) {
  for (int32_t r = 0; r < height; ++r) {
    result[r] = limited(rowDot<int64_t>(matrix + static_cast<int64_t>(r) * stride, vector, width) >> shift);
  }
}
void plainMatVecMul_32s(const int32_t* matrix, int32_t stride, const int32_t* vector, int32_t width, int32_t* result,
                        int32_t height, double power) {
  for (int32_t r = 0; r < height; ++r) {
    result[r] = rounded(rowDot<double>(matrix + static_cast<int64_t>(r) * stride, vector, width) * power);
  }
}
void plainVecMatMul_32f(const float* vector, const float* matrix, int32_t stride, int32_t height, float* result, int32_t width) {
  for (int32_t c = 0; c < width; ++c) result[c] = columnDot<float>(vector, matrix, stride, height, c);
}
void plainVecMatMul_16s32s(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height, int32_t* result,
                           int32_t width, double power) {
  for (int32_t c = 0; c < width; ++c) result[c] = rounded(columnDot<double>(vector, matrix, stride, height, c) * power);
}
void plainVecMatMul_32s(const int32_t* vector, const int32_t* matrix, int32_t stride, int32_t height, int32_t* result,
                        int32_t width, double power) {
  for (int32_t c = 0; c < width; ++c) result[c] = rounded(columnDot<double>(vector, matrix, stride, height, c) * power);
}
