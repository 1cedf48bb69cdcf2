// Exports: construction of mel banks and mixed banks.
#include "features/mel_bank.h"

using namespace qorsr;

QorStatus qorsMelFBankGetSize_32f(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  return melBankSize<FBankState_32f>(length, filterCount, flags, size);
}
QorStatus qorsMelFBankGetSize_16s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  return melBankSize<FBankState_16s>(length, filterCount, flags, size);
}
QorStatus qorsMelFBankInit_32f(FBankState_32f* state, int32_t* order, int32_t length, float sampleFrequency, float lowFrequency,
                               float highFrequency, int32_t filterCount, float melMul, float melDiv, int32_t flags) {
  return initMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInit_16s(FBankState_16s* state, int32_t* order, int32_t length, float sampleFrequency, float lowFrequency,
                               float highFrequency, int32_t filterCount, float melMul, float melDiv, int32_t flags) {
  return initMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                    float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                    int32_t flags) {
  return allocateMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                    float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                    int32_t flags) {
  return allocateMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}

QorStatus qorsMelLinFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                       float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                       int32_t linearFilterCount, float melMul, float melDiv, int32_t flags) {
  return allocateMixedBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags},
                           {joinFrequency, linearFilterCount});
}
QorStatus qorsMelLinFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                       float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                       int32_t linearFilterCount, float melMul, float melDiv, int32_t flags) {
  return allocateMixedBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags},
                           {joinFrequency, linearFilterCount});
}
