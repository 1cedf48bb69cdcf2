// Exports: coding of the high band.
#include "robust/high_band.h"

using namespace qorsr;

QorStatus qorsHighBandCoding_Aurora_32f(const float* lowBand, const float* spectrumA, const float* spectrumB, float* result) {
  return codeHighBand(lowBand, spectrumA, spectrumB, result);
}
QorStatus qorsHighBandCoding_Aurora_32s_Sfs(const int32_t* lowBand, const int32_t* spectrumA, const int32_t* spectrumB,
                                            int32_t* result, int32_t scaleFactor) {
  return codeHighBand(lowBand, spectrumA, spectrumB, result, scaleFactor);
}
