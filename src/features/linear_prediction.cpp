// Exports: linear prediction.
#include "features/linear_prediction.h"

using namespace qorsr;

QorStatus qorsLinearPrediction_Auto_32f(const float* source, int32_t length, float* destination, int32_t order) {
  return predict(autocorrelationPrediction, source, length, destination, order);
}
QorStatus qorsLinearPredictionNeg_Auto_32f(const float* source, int32_t length, float* destination, int32_t order) {
  return predict(negatedPrediction, source, length, destination, order);
}
QorStatus qorsLinearPrediction_Cov_32f(const float* source, int32_t length, float* destination, int32_t order) {
  return predict(covariancePrediction, source, length, destination, order);
}
QorStatus qorsLinearPrediction_Auto_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                            int32_t scaleFactor) {
  return predict<kStackSignal>(autocorrelationPrediction, source, length, destination, order, scaleFactor);
}
QorStatus qorsLinearPredictionNeg_Auto_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                               int32_t scaleFactor) {
  return predict<kStackSignal>(negatedPrediction, source, length, destination, order, scaleFactor);
}
QorStatus qorsLinearPrediction_Cov_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                           int32_t scaleFactor) {
  return predict<0>(covariancePrediction, source, length, destination, order, scaleFactor);
}

QorStatus qorsDurbin_32f(const float* autocorrelations, float* destination, int32_t order, float* residual) {
  return durbin(autocorrelations, destination, order, residual);
}
QorStatus qorsDurbin_16s_Sfs(const int16_t* autocorrelations, int16_t* destination, int32_t order, float* residual,
                             int32_t scaleFactor) {
  return durbin(autocorrelations, destination, order, residual, scaleFactor);
}
QorStatus qorsSchur_32f(const float* autocorrelations, float* destination, int32_t order, float* residual) {
  return schur(autocorrelations, destination, order, residual);
}
QorStatus qorsSchur_16s_Sfs(const int16_t* autocorrelations, int16_t* destination, int32_t order, float* residual,
                            int32_t scaleFactor) {
  return schur(autocorrelations, destination, order, residual, scaleFactor);
}
