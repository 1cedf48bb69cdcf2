// Exports: Wiener gains.
#include "robust/wiener_gain.h"

using namespace qorsr;

QorStatus qorsWienerFilterDesign_Aurora_32f(const float* present, const float* noise, const float* denoised, float* gain,
                                            int32_t length) {
  return designWienerFilter(present, noise, denoised, gain, length);
}
QorStatus qorsWienerFilterDesign_Aurora_16s(const int16_t* present, const int16_t* noise, const int16_t* denoised, int16_t* gain,
                                            int32_t length) {
  return designWienerFilter(present, noise, denoised, gain, length);
}
