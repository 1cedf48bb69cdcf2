// Exports: spectrum of an all-pole model.
#include "features/lp_spectrum.h"

using namespace qorsr;

QorStatus qorsLPToSpectrum_32f(const float* source, int32_t length, float* destination, int32_t order, float value) {
  return predictorToSpectrum(source, length, destination, order, value);
}
QorStatus qorsLPToSpectrum_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order, int32_t value,
                                   int32_t scaleFactor) {
  return predictorToSpectrum(source, length, destination, order, value, scaleFactor);
}
