// Exports: updates of a noise spectrum.
#include "robust/noise_spectrum.h"

using namespace qorsr;

QorStatus qorsNoiseSpectrumUpdate_Aurora_32f(const float* present, const float* noise, float* result, int32_t length) {
  return updateNoiseSpectrum(present, noise, result, length);
}
QorStatus qorsNoiseSpectrumUpdate_Aurora_16s_Sfs(const int16_t* present, const int16_t* noise, int16_t* result, int32_t length,
                                                 int32_t scaleFactor) {
  return updateNoiseSpectrum(present, noise, result, length, scaleFactor);
}
QorStatus qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(const int32_t* present, const int32_t* noise, int32_t* result, int32_t length,
                                                 int32_t scaleFactor) {
  return updateNoiseSpectrum(present, noise, result, length, scaleFactor);
}
