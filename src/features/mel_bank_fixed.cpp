// Exports: construction of mel banks in fixed point.
#include "features/mel_bank_fixed.h"

using namespace qorsr;

QorStatus qorsMelFBankGetSize_32s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  return fixedMelBankSize(length, filterCount, flags, size);
}
QorStatus qorsMelFBankInit_32s(FBankState_32s* state, int32_t* order, int32_t length, int32_t sampleFrequency, int32_t lowFrequency,
                               int32_t highFrequency, int32_t filterCount, int32_t melMul, int32_t melDiv, int32_t flags) {
  return initFixedMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv}, flags);
}
