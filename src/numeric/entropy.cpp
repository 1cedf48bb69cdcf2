// Exports: entropy of a distribution.
#include "numeric/entropy.h"

using namespace qorsr;

QorStatus qorsEntropy_32f(const float* source, int32_t length, float* result) { return entropy(source, length, result); }
QorStatus qorsEntropy_16s32s_Sfs(const int16_t* source, int32_t sourceScaleFactor, int32_t length, int32_t* result,
                                 int32_t scaleFactor) {
  return entropy(source, sourceScaleFactor, length, result, scaleFactor);
}
