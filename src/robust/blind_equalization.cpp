// Exports: blind equalisation of cepstra.
#include "robust/blind_equalization.h"

using namespace qorsr;

QorStatus qorsBlindEqualization_Aurora_32f(const float* reference, float* cepstrum, float* bias, int32_t length, float logEnergy) {
  return equalizeBlindly<FloatEqualizer>(reference, cepstrum, bias, length, logEnergy);
}
QorStatus qorsBlindEqualization_Aurora_16s(const int16_t* reference, int16_t* cepstrum, int16_t* bias, int32_t length,
                                           int32_t logEnergy) {
  return equalizeBlindly<ShortEqualizer>(reference, cepstrum, bias, length, logEnergy);
}
