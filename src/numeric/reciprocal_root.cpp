// Exports: reciprocal square roots with a floor.
#include "numeric/reciprocal_root.h"

using namespace qorsr;

QorStatus qorsRecSqrt_32f(float* values, int32_t length, float floor) { return reciprocalRoots(values, length, floor); }
QorStatus qorsRecSqrt_32s16s_Sfs(const int32_t* source, int16_t* result, int32_t length, int32_t floor, int32_t scaleFactor) {
  return reciprocalRoots(source, result, length, floor, scaleFactor);
}
QorStatus qorsRecSqrt_32s_Sfs(int32_t* values, int32_t length, int32_t floor, int32_t scaleFactor) {
  return reciprocalRoots(values, length, floor, scaleFactor);
}
