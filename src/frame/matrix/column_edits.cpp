// Exports: columns copied, gathered, padded, and edited one at a time.
#include "frame/matrix/column_edits.h"

using namespace qorsr;

QorStatus qorsCopyColumn_16s_D2(const int16_t* source, int32_t width, int16_t* destination, int32_t destinationStride,
                                int32_t height) {
  return copyColumns(source, width, strided(destination, destinationStride), height);
}
QorStatus qorsCopyColumn_32f_D2(const float* source, int32_t width, float* destination, int32_t destinationStride, int32_t height) {
  return copyColumns(source, width, strided(destination, destinationStride), height);
}

QorStatus qorsCopyColumn_Indirect_16s_D2(const int16_t* source, int32_t sourceWidth, int32_t sourceStride, int16_t* destination,
                                         const int32_t* columns, int32_t columnCount, int32_t destinationStride, int32_t height) {
  return copyColumnsIndirect(strided(source, sourceStride), sourceWidth, strided(destination, destinationStride), columns,
                             columnCount, height);
}
QorStatus qorsCopyColumn_Indirect_16s_D2L(const int16_t* const* source, int32_t sourceWidth, int16_t* const* destination,
                                          const int32_t* columns, int32_t columnCount, int32_t height) {
  return copyColumnsIndirect(listed(source), sourceWidth, listed(destination), columns, columnCount, height);
}
QorStatus qorsCopyColumn_Indirect_32f_D2(const float* source, int32_t sourceWidth, int32_t sourceStride, float* destination,
                                         const int32_t* columns, int32_t columnCount, int32_t destinationStride, int32_t height) {
  return copyColumnsIndirect(strided(source, sourceStride), sourceWidth, strided(destination, destinationStride), columns,
                             columnCount, height);
}
QorStatus qorsCopyColumn_Indirect_32f_D2L(const float* const* source, int32_t sourceWidth, float* const* destination,
                                          const int32_t* columns, int32_t columnCount, int32_t height) {
  return copyColumnsIndirect(listed(source), sourceWidth, listed(destination), columns, columnCount, height);
}
QorStatus qorsCopyColumn_Indirect_64f_D2(const double* source, int32_t sourceWidth, int32_t sourceStride, double* destination,
                                         const int32_t* columns, int32_t columnCount, int32_t destinationStride, int32_t height) {
  return copyColumnsIndirect(strided(source, sourceStride), sourceWidth, strided(destination, destinationStride), columns,
                             columnCount, height);
}
QorStatus qorsCopyColumn_Indirect_64f_D2L(const double* const* source, int32_t sourceWidth, double* const* destination,
                                          const int32_t* columns, int32_t columnCount, int32_t height) {
  return copyColumnsIndirect(listed(source), sourceWidth, listed(destination), columns, columnCount, height);
}

QorStatus qorsCopyWithPadding_16s(const int16_t* source, int32_t length, int16_t* destination, int32_t paddedLength) {
  return copyWithPadding(source, length, destination, paddedLength);
}
QorStatus qorsCopyWithPadding_32f(const float* source, int32_t length, float* destination, int32_t paddedLength) {
  return copyWithPadding(source, length, destination, paddedLength);
}

QorStatus qorsAddMulColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t sourceColumn,
                                   int32_t destinationColumn, int32_t firstRow, double factor) {
  return addScaledColumn(listed(rows), width, height, sourceColumn, destinationColumn, firstRow, factor);
}
QorStatus qorsMulColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t column, int32_t firstRow,
                                double factor) {
  return scaleColumn(listed(rows), width, height, column, firstRow, factor);
}
QorStatus qorsDotProdColumn_64f_D2L(const double* const* rows, int32_t width, int32_t height, double* result, int32_t firstColumn,
                                    int32_t secondColumn, int32_t firstRow) {
  return dotColumns(listed(rows), width, height, result, firstColumn, secondColumn, firstRow);
}
