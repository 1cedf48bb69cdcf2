// Exports: products of a matrix and a vector.
#include "frame/matrix/products.h"

using namespace qorsr;

QorStatus qorsMatVecMul_32f_D2(const float* matrix, int32_t stride, const float* vector, int32_t width, float* result,
                               int32_t height) {
  return matVec(strided(matrix, stride), vector, width, result, height, RealResult{});
}
QorStatus qorsMatVecMul_32f_D2L(const float* const* rows, const float* vector, int32_t width, float* result, int32_t height) {
  return matVec(listed(rows), vector, width, result, height, RealResult{});
}
QorStatus qorsMatVecMul_16s_D2Sfs(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width, int16_t* result,
                                  int32_t height, int32_t scaleFactor) {
  return matVec(strided(matrix, stride), vector, width, result, height, ShiftedResult<int16_t>(scaleFactor));
}
QorStatus qorsMatVecMul_16s_D2LSfs(const int16_t* const* rows, const int16_t* vector, int32_t width, int16_t* result,
                                   int32_t height, int32_t scaleFactor) {
  return matVec(listed(rows), vector, width, result, height, ShiftedResult<int16_t>(scaleFactor));
}
QorStatus qorsMatVecMul_16s32s_D2Sfs(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width, int32_t* result,
                                     int32_t height, int32_t scaleFactor) {
  return matVec(strided(matrix, stride), vector, width, result, height, ShiftedResult<int32_t>(scaleFactor));
}
QorStatus qorsMatVecMul_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* vector, int32_t width, int32_t* result,
                                      int32_t height, int32_t scaleFactor) {
  return matVec(listed(rows), vector, width, result, height, ShiftedResult<int32_t>(scaleFactor));
}
QorStatus qorsMatVecMul_32s_D2Sfs(const int32_t* matrix, int32_t stride, const int32_t* vector, int32_t width, int32_t* result,
                                  int32_t height, int32_t scaleFactor) {
  return matVec(strided(matrix, stride), vector, width, result, height, RoundedResult<int32_t>(scaleFactor));
}
QorStatus qorsMatVecMul_32s_D2LSfs(const int32_t* const* rows, const int32_t* vector, int32_t width, int32_t* result,
                                   int32_t height, int32_t scaleFactor) {
  return matVec(listed(rows), vector, width, result, height, RoundedResult<int32_t>(scaleFactor));
}

QorStatus qorsVecMatMul_32f_D2(const float* vector, const float* matrix, int32_t stride, int32_t height, float* result,
                               int32_t width) {
  return vecMat(vector, strided(matrix, stride), height, result, width, RealResult{});
}
QorStatus qorsVecMatMul_32f_D2L(const float* vector, const float* const* rows, int32_t height, float* result, int32_t width) {
  return vecMat(vector, listed(rows), height, result, width, RealResult{});
}
QorStatus qorsVecMatMul_16s_D2Sfs(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height, int16_t* result,
                                  int32_t width, int32_t scaleFactor) {
  return vecMat(vector, strided(matrix, stride), height, result, width, RoundedResult<int16_t>(scaleFactor));
}
QorStatus qorsVecMatMul_16s_D2LSfs(const int16_t* vector, const int16_t* const* rows, int32_t height, int16_t* result,
                                   int32_t width, int32_t scaleFactor) {
  return vecMat(vector, listed(rows), height, result, width, RoundedResult<int16_t>(scaleFactor));
}
QorStatus qorsVecMatMul_16s32s_D2Sfs(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height, int32_t* result,
                                     int32_t width, int32_t scaleFactor) {
  return vecMat(vector, strided(matrix, stride), height, result, width, RoundedResult<int32_t>(scaleFactor));
}
QorStatus qorsVecMatMul_16s32s_D2LSfs(const int16_t* vector, const int16_t* const* rows, int32_t height, int32_t* result,
                                      int32_t width, int32_t scaleFactor) {
  return vecMat(vector, listed(rows), height, result, width, RoundedResult<int32_t>(scaleFactor));
}
QorStatus qorsVecMatMul_32s_D2Sfs(const int32_t* vector, const int32_t* matrix, int32_t stride, int32_t height, int32_t* result,
                                  int32_t width, int32_t scaleFactor) {
  return vecMat(vector, strided(matrix, stride), height, result, width, RoundedResult<int32_t>(scaleFactor));
}
QorStatus qorsVecMatMul_32s_D2LSfs(const int32_t* vector, const int32_t* const* rows, int32_t height, int32_t* result,
                                   int32_t width, int32_t scaleFactor) {
  return vecMat(vector, listed(rows), height, result, width, RoundedResult<int32_t>(scaleFactor));
}
