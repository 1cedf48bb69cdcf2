// Exports: weighted means and variances of columns.
#include "frame/matrix/weighted_moments.h"

using namespace qorsr;

QorStatus qorsWeightedMeanColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                        int32_t width) {
  return weightedMeanColumn(strided(source, stride), weights, height, means, width);
}
QorStatus qorsWeightedVarColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height,
                                       const float* means, float* variances, int32_t width) {
  return weightedVarColumn(strided(source, stride), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanVarColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height, float* means,
                                           float* variances, int32_t width) {
  return weightedMeanVarColumn(strided(source, stride), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height, float* means,
                                         int32_t width) {
  return weightedMeanColumn(listed(rows), weights, height, means, width);
}
QorStatus qorsWeightedVarColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height, const float* means,
                                        float* variances, int32_t width) {
  return weightedVarColumn(listed(rows), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanVarColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height, float* means,
                                            float* variances, int32_t width) {
  return weightedMeanVarColumn(listed(rows), weights, height, means, variances, width);
}

QorStatus qorsWeightedMeanColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height, double* means,
                                        int32_t width) {
  return weightedMeanColumn(strided(source, stride), weights, height, means, width);
}
QorStatus qorsWeightedVarColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height,
                                       const double* means, double* variances, int32_t width) {
  return weightedVarColumn(strided(source, stride), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanVarColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height,
                                           double* means, double* variances, int32_t width) {
  return weightedMeanVarColumn(strided(source, stride), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height, double* means,
                                         int32_t width) {
  return weightedMeanColumn(listed(rows), weights, height, means, width);
}
QorStatus qorsWeightedVarColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height, const double* means,
                                        double* variances, int32_t width) {
  return weightedVarColumn(listed(rows), weights, height, means, variances, width);
}
QorStatus qorsWeightedMeanVarColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height, double* means,
                                            double* variances, int32_t width) {
  return weightedMeanVarColumn(listed(rows), weights, height, means, variances, width);
}
