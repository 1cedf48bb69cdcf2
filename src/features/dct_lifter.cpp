// Exports: cosine transform and lifter.
#include "features/dct_lifter.h"

#include "qorsr.h"

using namespace qorsr;

// ---- Sizes ----

QorStatus qorsDCTLifterGetSize_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return dctLifterGetSize(dctLength, cepstrumLength, size, dctLifterBytes<DCTLifterState_32f>);
}
QorStatus qorsDCTLifterGetSize_C0_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return qorsDCTLifterGetSize_32f(dctLength, cepstrumLength, size);
}
QorStatus qorsDCTLifterGetSize_Mul_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return qorsDCTLifterGetSize_32f(dctLength, cepstrumLength, size);
}
QorStatus qorsDCTLifterGetSize_MulC0_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return qorsDCTLifterGetSize_32f(dctLength, cepstrumLength, size);
}
QorStatus qorsDCTLifterGetSize_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return dctLifterGetSize(dctLength, cepstrumLength, size, dctLifterBytes<DCTLifterState_16s>);
}
QorStatus qorsDCTLifterGetSize_C0_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return qorsDCTLifterGetSize_16s(dctLength, cepstrumLength, size);
}
QorStatus qorsDCTLifterGetSize_Mul_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  return qorsDCTLifterGetSize_16s(dctLength, cepstrumLength, size);
}
QorStatus qorsDCTLifterGetSize_MulC0_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size) {
  constexpr int32_t kLongest = 8192;  // required: of this one function
  return dctLifterGetSize(dctLength, cepstrumLength, size, dctLifterBytesMulC016s, kLongest);
}

// ---- States in a caller's block ----

QorStatus qorsDCTLifterInit_32f(DCTLifterState_32f* state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                float scale) {
  return dctLifterInit(state, dctLength, cepstrumLength, SineLifter{lifterLength, scale});
}
QorStatus qorsDCTLifterInit_16s(DCTLifterState_16s* state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                float scale) {
  return dctLifterInit(state, dctLength, cepstrumLength, SineLifter{lifterLength, scale});
}
QorStatus qorsDCTLifterInit_C0_32f(DCTLifterState_32f* state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                   float scale, float weight0) {
  return dctLifterInit(state, dctLength, cepstrumLength, SineLifterC0{{lifterLength, scale}, weight0});
}
QorStatus qorsDCTLifterInit_C0_16s(DCTLifterState_16s* state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                   float scale, float weight0) {
  return dctLifterInit(state, dctLength, cepstrumLength, SineLifterC0{{lifterLength, scale}, weight0});
}
QorStatus qorsDCTLifterInit_Mul_32f(DCTLifterState_32f* state, int32_t dctLength, const float* weights, int32_t cepstrumLength) {
  return dctLifterInit(state, dctLength, cepstrumLength, GivenLifter<float>{weights});
}
QorStatus qorsDCTLifterInit_Mul_16s(DCTLifterState_16s* state, int32_t dctLength, const float* weights, int32_t cepstrumLength) {
  return dctLifterInit(state, dctLength, cepstrumLength, GivenLifter<float>{weights});
}
QorStatus qorsDCTLifterInit_MulC0_32f(DCTLifterState_32f* state, int32_t dctLength, const float* weights, int32_t cepstrumLength) {
  return dctLifterInit(state, dctLength, cepstrumLength, GivenLifterC0<float>{{weights}});
}
// required: integer weights, in this one function.
QorStatus qorsDCTLifterInit_MulC0_16s(DCTLifterState_16s* state, int32_t dctLength, const int32_t* weights,
                                      int32_t cepstrumLength) {
  return dctLifterInit(state, dctLength, cepstrumLength, GivenLifterC0<int32_t>{{weights}}, dctLifterBytesMulC016s);
}

// ---- Allocated states ----

QorStatus qorsDCTLifterInitAlloc_32f(DCTLifterState_32f** state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                     float scale) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, SineLifter{lifterLength, scale});
}
QorStatus qorsDCTLifterInitAlloc_16s(DCTLifterState_16s** state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                     float scale) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, SineLifter{lifterLength, scale});
}
QorStatus qorsDCTLifterInitAlloc_C0_32f(DCTLifterState_32f** state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                        float scale, float weight0) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, SineLifterC0{{lifterLength, scale}, weight0});
}
QorStatus qorsDCTLifterInitAlloc_C0_16s(DCTLifterState_16s** state, int32_t dctLength, int32_t cepstrumLength, int32_t lifterLength,
                                        float scale, float weight0) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, SineLifterC0{{lifterLength, scale}, weight0});
}
QorStatus qorsDCTLifterInitAlloc_Mul_32f(DCTLifterState_32f** state, int32_t dctLength, const float* weights,
                                         int32_t cepstrumLength) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, GivenLifter<float>{weights});
}
QorStatus qorsDCTLifterInitAlloc_Mul_16s(DCTLifterState_16s** state, int32_t dctLength, const float* weights,
                                         int32_t cepstrumLength) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, GivenLifter<float>{weights});
}
QorStatus qorsDCTLifterInitAlloc_MulC0_32f(DCTLifterState_32f** state, int32_t dctLength, const float* weights,
                                           int32_t cepstrumLength) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, GivenLifterC0<float>{{weights}});
}
QorStatus qorsDCTLifterInitAlloc_MulC0_16s(DCTLifterState_16s** state, int32_t dctLength, const float* weights,
                                           int32_t cepstrumLength) {
  return dctLifterInitAlloc(state, dctLength, cepstrumLength, GivenLifterC0<float>{{weights}});
}

QorStatus qorsDCTLifterFree_32f(DCTLifterState_32f* state) { return dctLifterFree(state); }
QorStatus qorsDCTLifterFree_16s(DCTLifterState_16s* state) { return dctLifterFree(state); }

// ---- Transform ----

QorStatus qorsDCTLifter_32f(const float* source, float* destination, const DCTLifterState_32f* state) {
  if (QorStatus bad = Checks().null(state, source, destination)) return bad;
  dctLifter(source, destination, state);
  return qorStatusOk;
}
QorStatus qorsDCTLifter_16s_Sfs(const int16_t* source, int16_t* destination, DCTLifterState_16s* state, int32_t scaleFactor) {
  return dctLifterScaled(source, destination, state, scaleFactor);
}
QorStatus qorsDCTLifter_32s16s_Sfs(const int32_t* source, int16_t* destination, DCTLifterState_16s* state, int32_t scaleFactor) {
  return dctLifterScaled(source, destination, state, scaleFactor);
}
