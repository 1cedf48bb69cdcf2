// Exports: peaks of a contour.
#include "pitch/peaks.h"

using namespace qorsr;

QorStatus qorsFindPeaks_32f8u(const float* source, uint8_t* flags, int32_t length, int32_t searchSize, int32_t halfWidth) {
  return findPeaks(source, flags, length, searchSize, halfWidth);
}
QorStatus qorsFindPeaks_32s8u(const int32_t* source, uint8_t* flags, int32_t length, int32_t searchSize, int32_t halfWidth) {
  return findPeaks(source, flags, length, searchSize, halfWidth);
}
