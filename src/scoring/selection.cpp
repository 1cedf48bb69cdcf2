// Exports: short lists and sign tables of Gaussian selection.
#include "scoring/selection.h"

using namespace qorsr;

QorStatus qorsFillShortlist_Row_1u(const int32_t* indices, int32_t width, int32_t count, uint8_t* const* table, int32_t height,
                                   int32_t stride, int32_t shift) {
  return fillShortlist<GroupsAreRows>(EqualGroups{indices, count}, BitTable{table, height, stride, shift}, width);
}
QorStatus qorsFillShortlist_RowVar_1u(const int32_t* indices, const int32_t* counts, int32_t width, uint8_t* const* table,
                                      int32_t height, int32_t stride, int32_t shift) {
  return fillShortlist<GroupsAreRows>(ListedGroups{indices, counts}, BitTable{table, height, stride, shift}, width);
}
QorStatus qorsFillShortlist_Column_1u(const int32_t* indices, int32_t count, uint8_t* const* table, int32_t height, int32_t stride,
                                      int32_t shift, int32_t width) {
  return fillShortlist<GroupsAreColumns>(EqualGroups{indices, count}, BitTable{table, height, stride, shift}, width);
}
QorStatus qorsFillShortlist_ColumnVar_1u(const int32_t* indices, const int32_t* counts, uint8_t* const* table, int32_t height,
                                         int32_t stride, int32_t shift, int32_t width) {
  return fillShortlist<GroupsAreColumns>(ListedGroups{indices, counts}, BitTable{table, height, stride, shift}, width);
}

QorStatus qorsBuildSignTable_8u1u(const int32_t* indices, int32_t count, const uint8_t* const* source, int32_t sourceHeight,
                                  int32_t sourceStride, int32_t shift, uint8_t* result, int32_t resultRows, int32_t resultBits) {
  return buildSignTable(EqualGroups{indices, count}, SourceTable{source, sourceHeight, sourceStride, shift}, result, resultRows,
                        resultBits);
}
QorStatus qorsBuildSignTable_Var_8u1u(const int32_t* indices, const int32_t* counts, const uint8_t* const* source,
                                      int32_t sourceHeight, int32_t sourceStride, int32_t shift, uint8_t* result,
                                      int32_t resultRows, int32_t resultBits) {
  return buildSignTable(ListedGroups{indices, counts}, SourceTable{source, sourceHeight, sourceStride, shift}, result, resultRows,
                        resultBits);
}
