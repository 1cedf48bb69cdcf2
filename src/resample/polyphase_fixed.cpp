// Exports: resampling by a fixed ratio.
#include "resample/polyphase_fixed.h"

using namespace qorsr;

QorStatus qorsResamplePolyphaseFixedGetSize_16s(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t* size,
                                                int32_t* rowLength, int32_t* rows, int32_t hint) {
  return fixedGetSize<ResamplePolyphaseFixedState_16s>(inRate, outRate, filterLength, size, rowLength, rows, hint);
}
QorStatus qorsResamplePolyphaseFixedGetSize_32f(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t* size,
                                                int32_t* rowLength, int32_t* rows, int32_t hint) {
  return fixedGetSize<ResamplePolyphaseFixedState_32f>(inRate, outRate, filterLength, size, rowLength, rows, hint);
}

QorStatus qorsResamplePolyphaseFixedInit_16s(ResamplePolyphaseFixedState_16s* state, int32_t inRate, int32_t outRate,
                                             int32_t filterLength, int32_t hint) {
  return fixedInit(state, inRate, outRate, filterLength, hint);
}
QorStatus qorsResamplePolyphaseFixedInit_32f(ResamplePolyphaseFixedState_32f* state, int32_t inRate, int32_t outRate,
                                             int32_t filterLength, int32_t hint) {
  return fixedInit(state, inRate, outRate, filterLength, hint);
}

QorStatus qorsResamplePolyphaseFixedInitAlloc_16s(ResamplePolyphaseFixedState_16s** state, int32_t inRate, int32_t outRate,
                                                  int32_t filterLength, float rollOff, float alpha, int32_t hint) {
  return fixedInitAlloc(state, inRate, outRate, filterLength, rollOff, alpha, hint);
}
QorStatus qorsResamplePolyphaseFixedInitAlloc_32f(ResamplePolyphaseFixedState_32f** state, int32_t inRate, int32_t outRate,
                                                  int32_t filterLength, float rollOff, float alpha, int32_t hint) {
  return fixedInitAlloc(state, inRate, outRate, filterLength, rollOff, alpha, hint);
}

QorStatus qorsResamplePolyphaseFixedFree_16s(ResamplePolyphaseFixedState_16s* state) { return polyphaseFree(state); }
QorStatus qorsResamplePolyphaseFixedFree_32f(ResamplePolyphaseFixedState_32f* state) { return polyphaseFree(state); }

QorStatus qorsResamplePolyphaseFixed_16s(const ResamplePolyphaseFixedState_16s* state, const int16_t* source, int32_t length,
                                         int16_t* destination, float norm, double* time, int32_t* count) {
  return resampleFixed(state, source, length, destination, norm, time, count);
}
QorStatus qorsResamplePolyphaseFixed_32f(const ResamplePolyphaseFixedState_32f* state, const float* source, int32_t length,
                                         float* destination, float norm, double* time, int32_t* count) {
  return resampleFixed(state, source, length, destination, norm, time, count);
}

QorStatus qorsResamplePolyphaseGetFixedFilter_16s(const ResamplePolyphaseFixedState_16s* state, int16_t* filter, int32_t rowLength,
                                                  int32_t rows) {
  return getFixedFilter(state, filter, rowLength, rows);
}
QorStatus qorsResamplePolyphaseGetFixedFilter_32f(const ResamplePolyphaseFixedState_32f* state, float* filter, int32_t rowLength,
                                                  int32_t rows) {
  return getFixedFilter(state, filter, rowLength, rows);
}
QorStatus qorsResamplePolyphaseSetFixedFilter_16s(ResamplePolyphaseFixedState_16s* state, const int16_t* filter, int32_t rowLength,
                                                  int32_t rows) {
  return setFixedFilter(state, filter, rowLength, rows);
}
QorStatus qorsResamplePolyphaseSetFixedFilter_32f(ResamplePolyphaseFixedState_32f* state, const float* filter, int32_t rowLength,
                                                  int32_t rows) {
  return setFixedFilter(state, filter, rowLength, rows);
}
