// Exports: singular value decomposition.
#include "matching/singular_values.h"

using namespace qorsr;

QorStatus qorsSVD_64f_D2(const double* source, double* u, int32_t height, double* w, double* v, int32_t width, int32_t stride,
                         int32_t limit) {
  return singularValues(source, u, height, w, v, width, stride, limit, Sorting::kNone);
}
QorStatus qorsSVD_64f_D2L(const double* const* source, double* const* u, int32_t height, double* w, double* const* v, int32_t width,
                          int32_t limit) {
  return singularValues(source, u, height, w, v, width, limit, Sorting::kNone);
}
QorStatus qorsSVD_64f_D2_I(double* matrix, int32_t height, double* w, double* v, int32_t width, int32_t stride, int32_t limit) {
  return singularValues(matrix, matrix, height, w, v, width, stride, limit, Sorting::kNone);
}
QorStatus qorsSVD_64f_D2L_I(double* const* rows, int32_t height, double* w, double* const* v, int32_t width, int32_t limit) {
  return singularValues(rows, rows, height, w, v, width, limit, Sorting::kNone);
}

QorStatus qorsSVDSort_64f_D2(const double* source, double* u, int32_t height, double* w, double* v, int32_t width, int32_t stride,
                             int32_t limit) {
  return singularValues(source, u, height, w, v, width, stride, limit, Sorting::kDownward);
}
QorStatus qorsSVDSort_64f_D2L(const double* const* source, double* const* u, int32_t height, double* w, double* const* v,
                              int32_t width, int32_t limit) {
  return singularValues(source, u, height, w, v, width, limit, Sorting::kDownward);
}
QorStatus qorsSVDSort_64f_D2_I(double* matrix, int32_t height, double* w, double* v, int32_t width, int32_t stride, int32_t limit) {
  return singularValues(matrix, matrix, height, w, v, width, stride, limit, Sorting::kDownward);
}
QorStatus qorsSVDSort_64f_D2L_I(double* const* rows, int32_t height, double* w, double* const* v, int32_t width, int32_t limit) {
  return singularValues(rows, rows, height, w, v, width, limit, Sorting::kDownward);
}

QorStatus qorsQRTransColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t firstColumn, int32_t secondColumn,
                                    double c, double s) {
  return rotateColumns(rows, width, height, firstColumn, secondColumn, c, s);
}
