// Exports: the split of a signal into two bands.
#include "robust/band_split.h"

using namespace qorsr;

QorStatus qorsLowHighFilter_Aurora_32f(const float* source, float* low, float* high, int32_t length, const float* taps,
                                       int32_t tapCount) {
  return splitBands(source, low, high, length, taps, tapCount);
}
QorStatus qorsLowHighFilter_Aurora_16s_Sfs(const int16_t* source, int16_t* low, int16_t* high, int32_t length, const int16_t* taps,
                                           int32_t tapCount, int32_t scaleFactor) {
  return splitBands(source, low, high, length, taps, tapCount, scaleFactor);
}
