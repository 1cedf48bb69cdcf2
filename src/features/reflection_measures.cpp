// Exports: measures of reflection coefficients.
#include "features/reflection_measures.h"

using namespace qorsr;

QorStatus qorsReflectionToAR_32f(const float* source, float* destination, int32_t order) {
  return measureReflections<AreaRatio>(source, source, destination, order);
}
QorStatus qorsReflectionToAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                     int32_t destinationScale) {
  return measureReflections<AreaRatio>(source, source, destination, order, loadFactor(sourceScale), destinationScale);
}
QorStatus qorsReflectionToTrueAR_32f(const float* source, float* destination, int32_t order) {
  return convertModel(trueAreaRatios, source, destination, order);
}
QorStatus qorsReflectionToTrueAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                         int32_t destinationScale) {
  return trueAreaRatios(source, sourceScale, destination, order, destinationScale);
}
QorStatus qorsReflectionToLAR_32f(const float* source, float* destination, int32_t order, float limit) {
  return logAreaRatios(source, destination, order, limit);
}
QorStatus qorsReflectionToLAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order, float limit,
                                      int32_t destinationScale) {
  return logAreaRatios(source, sourceScale, destination, order, limit, destinationScale);
}
QorStatus qorsReflectionToAbsTilt_32f(const float* first, const float* second, float* destination, int32_t order) {
  return measureReflections<AbsoluteTilt>(first, second, destination, order);
}
QorStatus qorsReflectionToAbsTilt_16s_Sfs(const int16_t* first, const int16_t* second, int16_t* destination, int32_t order,
                                          int32_t scaleFactor) {
  return measureReflections<AbsoluteTilt>(first, second, destination, order, 1.0F, scaleFactor);
}
QorStatus qorsReflectionToTilt_32f(const float* first, const float* second, float* destination, int32_t order) {
  return measureReflections<Tilt>(first, second, destination, order);
}
QorStatus qorsReflectionToTilt_16s_Sfs(const int16_t* first, const int16_t* second, int16_t* destination, int32_t order,
                                       int32_t scaleFactor) {
  return measureReflections<Tilt>(first, second, destination, order, 1.0F, scaleFactor);
}
