// Exports: resampling by any ratio.
#include "resample/polyphase.h"

using namespace qorsr;

QorStatus qorsResamplePolyphaseInitAlloc_16s(ResamplePolyphaseState_16s** state, float window, int32_t nStep, float rollOff,
                                             float alpha, int32_t hint) {
  return polyphaseInitAlloc(state, window, nStep, rollOff, alpha, hint == kAccurate);
}
QorStatus qorsResamplePolyphaseInitAlloc_32f(ResamplePolyphaseState_32f** state, float window, int32_t nStep, float rollOff,
                                             float alpha, int32_t) {
  return polyphaseInitAlloc(state, window, nStep, rollOff, alpha, true);
}
QorStatus qorsResamplePolyphaseFree_16s(ResamplePolyphaseState_16s* state) { return polyphaseFree(state); }
QorStatus qorsResamplePolyphaseFree_32f(ResamplePolyphaseState_32f* state) { return polyphaseFree(state); }

QorStatus qorsResamplePolyphase_16s(const ResamplePolyphaseState_16s* state, const int16_t* source, int32_t length,
                                    int16_t* destination, double factor, float norm, double* time, int32_t* count) {
  return resamplePolyphase(state, source, length, destination, factor, norm, time, count);
}
QorStatus qorsResamplePolyphase_32f(const ResamplePolyphaseState_32f* state, const float* source, int32_t length,
                                    float* destination, double factor, float norm, double* time, int32_t* count) {
  return resamplePolyphase(state, source, length, destination, factor, norm, time, count);
}
