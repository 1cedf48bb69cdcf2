// Exports: conversions between hertz and mel.
#include "features/mel_conversion.h"

using namespace qorsr;

QorStatus qorsLinearToMel_32f(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  return hertzToMel(source, result, length, melMul, melDiv);
}
QorStatus qorsMelToLinear_32f(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  return melToHertz(source, result, length, melMul, melDiv);
}
