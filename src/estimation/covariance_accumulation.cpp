// Exports: accumulation of full covariance matrices.
#include "estimation/covariance_accumulation.h"

using namespace qorsr;

QorStatus qorsAccCovarianceMatrix_16s64f_D2(const int16_t* source, int32_t sourceStride, int32_t height, const int16_t* mean,
                                            double* result, int32_t width, int32_t resultStride, double factor) {
  return accCovarianceMatrix(strided(source, sourceStride), height, mean, strided(result, resultStride), width, factor);
}
QorStatus qorsAccCovarianceMatrix_16s64f_D2L(const int16_t* const* rows, int32_t height, const int16_t* mean, double* const* result,
                                             int32_t width, double factor) {
  return accCovarianceMatrix(listed(rows), height, mean, listed(result), width, factor);
}
QorStatus qorsAccCovarianceMatrix_32f64f_D2(const float* source, int32_t sourceStride, int32_t height, const float* mean,
                                            double* result, int32_t width, int32_t resultStride, double factor) {
  return accCovarianceMatrix(strided(source, sourceStride), height, mean, strided(result, resultStride), width, factor);
}
QorStatus qorsAccCovarianceMatrix_32f64f_D2L(const float* const* rows, int32_t height, const float* mean, double* const* result,
                                             int32_t width, double factor) {
  return accCovarianceMatrix(listed(rows), height, mean, listed(result), width, factor);
}
