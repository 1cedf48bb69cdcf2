// Exports: edits of rows in place, and sums of rows.
#include "frame/matrix/row_edits.h"

using namespace qorsr;

QorStatus qorsNormalizeColumn_32f_D2(float* matrix, int32_t stride, int32_t height, const float* means, const float* scales,
                                     int32_t width) {
  return normalizeColumns(strided(matrix, stride), height, means, scales, width);
}
QorStatus qorsNormalizeColumn_32f_D2L(float* const* rows, int32_t height, const float* means, const float* scales, int32_t width) {
  return normalizeColumns(listed(rows), height, means, scales, width);
}
QorStatus qorsNormalizeColumn_16s_D2Sfs(int16_t* matrix, int32_t stride, int32_t height, const int16_t* means,
                                        const int16_t* scales, int32_t width, int32_t scaleFactor) {
  return normalizeColumnsScaled(strided(matrix, stride), height, means, scales, width, scaleFactor);
}
QorStatus qorsNormalizeColumn_16s_D2LSfs(int16_t* const* rows, int32_t height, const int16_t* means, const int16_t* scales,
                                         int32_t width, int32_t scaleFactor) {
  return normalizeColumnsScaled(listed(rows), height, means, scales, width, scaleFactor);
}

QorStatus qorsSubRow_16s_D2(const int16_t* row, int32_t width, int16_t* matrix, int32_t stride, int32_t height) {
  return subtractRow(row, width, strided(matrix, stride), height);
}
QorStatus qorsSubRow_16s_D2L(const int16_t* row, int32_t width, int16_t* const* rows, int32_t height) {
  return subtractRow(row, width, listed(rows), height);
}
QorStatus qorsSubRow_32f_D2(const float* row, int32_t width, float* matrix, int32_t stride, int32_t height) {
  return subtractRow(row, width, strided(matrix, stride), height);
}
QorStatus qorsSubRow_32f_D2L(const float* row, int32_t width, float* const* rows, int32_t height) {
  return subtractRow(row, width, listed(rows), height);
}

QorStatus qorsAddAllRowSum_32f_D2(const float* source, int32_t stride, int32_t height, float* sum, int32_t width) {
  return addAllRows(strided(source, stride), height, sum, width);
}
QorStatus qorsAddAllRowSum_32f_D2L(const float* const* rows, int32_t height, float* sum, int32_t width) {
  return addAllRows(listed(rows), height, sum, width);
}
QorStatus qorsAddNRows_32f_D2(const float* source, int32_t height, int32_t offset, int32_t stride, const int32_t* indices1,
                              const uint16_t* indices2, int32_t indexCount, float* destination, int32_t width, float start) {
  return addIndexedRows({{source, stride}, indices1, indices2, indexCount}, height, offset, destination, width, start);
}
QorStatus qorsAddMulRow_64f(const double* source, double* destination, int32_t length, double factor) {
  return addScaledRow(source, destination, length, factor);
}
