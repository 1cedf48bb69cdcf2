// Exports: conversions between predictor, cepstrum and reflection coefficients.
#include "features/lp_conversions.h"

using namespace qorsr;

QorStatus qorsLPToCepstrum_32f(const float* source, float* destination, int32_t order) {
  return convertModel(predictorToCepstrum, source, destination, order);
}
QorStatus qorsLPToCepstrum_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor) {
  return convertModel(predictorToCepstrum, source, destination, order, scaleFactor);
}
QorStatus qorsCepstrumToLP_32f(const float* source, float* destination, int32_t order) {
  return convertModel(cepstrumToPredictor, source, destination, order);
}
QorStatus qorsCepstrumToLP_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor) {
  return convertModel(cepstrumToPredictor, source, destination, order, scaleFactor);
}
QorStatus qorsLPToReflection_32f(const float* source, float* destination, int32_t order) {
  return convertModel(predictorToReflection, source, destination, order);
}
QorStatus qorsLPToReflection_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor) {
  return predictorToReflection(source, destination, order, scaleFactor);
}
QorStatus qorsReflectionToLP_32f(const float* source, float* destination, int32_t order) {
  return convertModel(reflectionToPredictor, source, destination, order);
}
QorStatus qorsReflectionToLP_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor) {
  return convertModel(reflectionToPredictor, source, destination, order, scaleFactor);
}
