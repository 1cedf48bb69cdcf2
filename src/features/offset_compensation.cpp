// Exports: removal of an offset.
#include "features/offset_compensation.h"

using namespace qorsr;

QorStatus qorsCompensateOffset_32f(const float* source, float* destination, int32_t length, float* before, float result,
                                   float coefficient) {
  return compensateOffset(source, destination, length, before, result, coefficient);
}
QorStatus qorsCompensateOffset_32f_I(float* buffer, int32_t length, float* before, float result, float coefficient) {
  return compensateOffset(buffer, buffer, length, before, result, coefficient);
}
QorStatus qorsCompensateOffset_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t* before, int16_t result,
                                   float coefficient) {
  return compensateOffset(source, destination, length, before, result, coefficient);
}
QorStatus qorsCompensateOffset_16s_I(int16_t* buffer, int32_t length, int16_t* before, int16_t result, float coefficient) {
  return compensateOffset(buffer, buffer, length, before, result, coefficient);
}
QorStatus qorsCompensateOffsetQ15_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t* before, int16_t result,
                                      int16_t coefficient) {
  return compensateOffsetFixed(source, destination, length, before, result, coefficient);
}
QorStatus qorsCompensateOffsetQ15_16s_I(int16_t* buffer, int32_t length, int16_t* before, int16_t result, int16_t coefficient) {
  return compensateOffsetFixed(buffer, buffer, length, before, result, coefficient);
}

QorStatus qorsZeroMean_16s(int16_t* buffer, int32_t length) { return zeroMean(buffer, length); }
