// Exports: sums of columns and rows.
#include "frame/matrix/column_sums.h"

using namespace qorsr;

QorStatus qorsSumColumn_16s32f_D2(const int16_t* source, int32_t stride, int32_t height, float* result, int32_t width) {
  return sumColumn(strided(source, stride), height, result, width);
}
QorStatus qorsSumColumn_16s32f_D2L(const int16_t* const* rows, int32_t height, float* result, int32_t width) {
  return sumColumn(listed(rows), height, result, width);
}
QorStatus qorsSumColumn_16s32s_D2Sfs(const int16_t* source, int32_t stride, int32_t height, int32_t* result, int32_t width,
                                     int32_t scaleFactor) {
  return sumColumnScaled(strided(source, stride), height, result, width, scaleFactor);
}
QorStatus qorsSumColumn_16s32s_D2LSfs(const int16_t* const* rows, int32_t height, int32_t* result, int32_t width,
                                      int32_t scaleFactor) {
  return sumColumnScaled(listed(rows), height, result, width, scaleFactor);
}
QorStatus qorsSumColumn_32f_D2(const float* source, int32_t stride, int32_t height, float* result, int32_t width) {
  return sumColumn(strided(source, stride), height, result, width);
}
QorStatus qorsSumColumn_32f_D2L(const float* const* rows, int32_t height, float* result, int32_t width) {
  return sumColumn(listed(rows), height, result, width);
}
QorStatus qorsSumColumn_64f_D2(const double* source, int32_t stride, int32_t height, double* result, int32_t width) {
  return sumColumn(strided(source, stride), height, result, width);
}
QorStatus qorsSumColumn_64f_D2L(const double* const* rows, int32_t height, double* result, int32_t width) {
  return sumColumn(listed(rows), height, result, width);
}

QorStatus qorsSumRow_16s32f_D2(const int16_t* source, int32_t width, int32_t stride, float* result, int32_t height) {
  return sumRow(strided(source, stride), width, result, height);
}
QorStatus qorsSumRow_16s32f_D2L(const int16_t* const* rows, int32_t width, float* result, int32_t height) {
  return sumRow(listed(rows), width, result, height);
}
QorStatus qorsSumRow_16s32s_D2Sfs(const int16_t* source, int32_t width, int32_t stride, int32_t* result, int32_t height,
                                  int32_t scaleFactor) {
  return sumRowScaled(strided(source, stride), width, result, height, scaleFactor);
}
QorStatus qorsSumRow_16s32s_D2LSfs(const int16_t* const* rows, int32_t width, int32_t* result, int32_t height,
                                   int32_t scaleFactor) {
  return sumRowScaled(listed(rows), width, result, height, scaleFactor);
}
QorStatus qorsSumRow_32f_D2(const float* source, int32_t width, int32_t stride, float* result, int32_t height) {
  return sumRow(strided(source, stride), width, result, height);
}
QorStatus qorsSumRow_32f_D2L(const float* const* rows, int32_t width, float* result, int32_t height) {
  return sumRow(listed(rows), width, result, height);
}
QorStatus qorsSumRow_64f_D2(const double* source, int32_t width, int32_t stride, double* result, int32_t height) {
  return sumRow(strided(source, stride), width, result, height);
}
QorStatus qorsSumRow_64f_D2L(const double* const* rows, int32_t width, double* result, int32_t height) {
  return sumRow(listed(rows), width, result, height);
}

QorStatus qorsSumRowAbs_64f(const double* source, int32_t length, double* result) { return sumRowAbs(source, length, result); }
QorStatus qorsSumRowSqr_64f(double* source, int32_t length, double* result, double scale) {
  return sumRowSqr(source, length, result, scale);
}

QorStatus qorsSumColumnAbs_64f_D2L(const double* const* rows, int32_t width, int32_t height, double* result, int32_t column,
                                   int32_t firstRow) {
  return sumOneColumnAbs(listed(rows), width, height, result, column, firstRow);
}
QorStatus qorsSumColumnSqr_64f_D2L(double* const* rows, int32_t width, int32_t height, double* result, int32_t column,
                                   int32_t firstRow, double scale) {
  return sumOneColumnSqr(listed(rows), width, height, result, column, firstRow, scale);
}
