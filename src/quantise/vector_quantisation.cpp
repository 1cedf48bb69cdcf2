#include "quantise/vector_quantisation.h"

using namespace qorsr;

QorStatus qorsVQ_32f(const float* source, int32_t step, int32_t* indices, int32_t height, const CdbkState_32f* state) {
  return quantise(source, step, indices, NoDistances(), height, state);
}
QorStatus qorsVQ_16s(const int16_t* source, int32_t step, int32_t* indices, int32_t height, const CdbkState_16s* state) {
  return quantise(source, step, indices, NoDistances(), height, state);
}
QorStatus qorsVQDist_32f(const float* source, int32_t step, int32_t* indices, float* distances, int32_t height,
                         const CdbkState_32f* state) {
  return quantise(source, step, indices, distances, height, state);
}
QorStatus qorsVQDist_16s32s_Sfs(const int16_t* source, int32_t step, int32_t* indices, int32_t* distances, int32_t height,
                                const CdbkState_16s* state, int32_t scaleFactor) {
  return quantise(source, step, indices, distances, height, state, scaleFactor);
}

QorStatus qorsVQSingle_Sort_32f(const float* x, int32_t* indices, CdbkState_32f* state, int32_t k) {
  return quantiseSorted(x, indices, NoDistances(), state, k);
}
QorStatus qorsVQSingle_Sort_16s(const int16_t* x, int32_t* indices, CdbkState_16s* state, int32_t k) {
  return quantiseSorted(x, indices, NoDistances(), state, k);
}
QorStatus qorsVQDistSingle_Sort_32f(const float* x, int32_t* indices, float* distances, CdbkState_32f* state, int32_t k) {
  return quantiseSorted(x, indices, distances, state, k);
}
QorStatus qorsVQDistSingle_Sort_16s32s_Sfs(const int16_t* x, int32_t* indices, int32_t* distances, CdbkState_16s* state, int32_t k,
                                           int32_t scaleFactor) {
  return quantiseSorted(x, indices, distances, state, k, scaleFactor);
}

QorStatus qorsVQSingle_Thresh_32f(const float* x, int32_t* indices, CdbkState_32f* state, float threshold, int32_t* count) {
  return quantiseWithin(x, indices, NoDistances(), state, threshold, count);
}
QorStatus qorsVQSingle_Thresh_16s(const int16_t* x, int32_t* indices, CdbkState_16s* state, float threshold, int32_t* count) {
  return quantiseWithin(x, indices, NoDistances(), state, threshold, count);
}
QorStatus qorsVQDistSingle_Thresh_32f(const float* x, int32_t* indices, float* distances, CdbkState_32f* state, float threshold,
                                      int32_t* count) {
  return quantiseWithin(x, indices, distances, state, threshold, count);
}
QorStatus qorsVQDistSingle_Thresh_16s32s_Sfs(const int16_t* x, int32_t* indices, int32_t* distances, CdbkState_16s* state,
                                             float threshold, int32_t* count, int32_t scaleFactor) {
  return quantiseWithinScaled(x, indices, distances, state, threshold, count, scaleFactor);
}
