#include "quantise/codebook.h"

#include "quantise/codebook_training.h"

using namespace qorsr;

QorStatus qorsCdbkGetSize_32f(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode, int32_t* bytes) {
  return codebookGetSize<CdbkState_32f>(dimension, step, height, size, mode, bytes);
}
QorStatus qorsCdbkGetSize_16s(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode, int32_t* bytes) {
  return codebookGetSize<CdbkState_16s>(dimension, step, height, size, mode, bytes);
}
QorStatus qorsCdbkInit_L2_32f(CdbkState_32f* state, const float* source, int32_t dimension, int32_t step, int32_t height,
                              int32_t size, int32_t mode) {
  return codebookInit(state, source, dimension, step, height, size, mode, false);
}
QorStatus qorsCdbkInit_L2_16s(CdbkState_16s* state, const int16_t* source, int32_t dimension, int32_t step, int32_t height,
                              int32_t size, int32_t mode) {
  return codebookInit(state, source, dimension, step, height, size, mode, true);
}
QorStatus qorsCdbkInitAlloc_L2_32f(CdbkState_32f** state, const float* source, int32_t dimension, int32_t step, int32_t height,
                                   int32_t size, int32_t mode) {
  return trainUnweighted(state, source, dimension, step, height, size, mode);
}
QorStatus qorsCdbkInitAlloc_L2_16s(CdbkState_16s** state, const int16_t* source, int32_t dimension, int32_t step, int32_t height,
                                   int32_t size, int32_t mode) {
  return trainUnweighted(state, source, dimension, step, height, size, mode);
}
QorStatus qorsCdbkInitAlloc_WgtL2_32f(CdbkState_32f** state, const float* source, const float* weights, int32_t dimension,
                                      int32_t step, int32_t height, int32_t size, int32_t mode) {
  return trainWeighted(state, source, weights, dimension, step, height, size, mode);
}
QorStatus qorsCdbkInitAlloc_WgtL2_16s(CdbkState_16s** state, const int16_t* source, const int16_t* weights, int32_t dimension,
                                      int32_t step, int32_t height, int32_t size, int32_t mode) {
  return trainWeighted(state, source, weights, dimension, step, height, size, mode);
}
QorStatus qorsCdbkFree_32f(CdbkState_32f* state) { return codebookFree(state); }
QorStatus qorsCdbkFree_16s(CdbkState_16s* state) { return codebookFree(state); }
QorStatus qorsGetCdbkSize_32f(const CdbkState_32f* state, int32_t* count) { return codebookSize(state, count); }
QorStatus qorsGetCdbkSize_16s(const CdbkState_16s* state, int32_t* count) { return codebookSize(state, count); }
QorStatus qorsGetCodebook_32f(const CdbkState_32f* state, float* destination, int32_t step) {
  return codebookRows(state, destination, step);
}
QorStatus qorsGetCodebook_16s(const CdbkState_16s* state, int16_t* destination, int32_t step) {
  return codebookRows(state, destination, step);
}
