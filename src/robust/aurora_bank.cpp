// Exports: the two fixed mel banks of a front-end with a split band.
#include "robust/aurora_bank.h"

using namespace qorsr;

QorStatus qorsMelFBankGetSizeLow_Aurora_32f(int32_t* size) { return auroraBankSize<FBankState_32f>(kLowBand, size); }
QorStatus qorsMelFBankGetSizeLow_Aurora_16s(int32_t* size) { return auroraBankSize<FBankState_16s>(kLowBand, size); }
QorStatus qorsMelFBankGetSizeHigh_Aurora_32f(int32_t* size) { return auroraBankSize<FBankState_32f>(kHighBand, size); }
QorStatus qorsMelFBankGetSizeHigh_Aurora_16s(int32_t* size) { return auroraBankSize<FBankState_16s>(kHighBand, size); }

QorStatus qorsMelFBankInitLow_Aurora_32f(FBankState_32f* state) { return initAuroraBank(kLowBand, state); }
QorStatus qorsMelFBankInitLow_Aurora_16s(FBankState_16s* state) { return initAuroraBank(kLowBand, state); }
QorStatus qorsMelFBankInitHigh_Aurora_32f(FBankState_32f* state) { return initAuroraBank(kHighBand, state); }
QorStatus qorsMelFBankInitHigh_Aurora_16s(FBankState_16s* state) { return initAuroraBank(kHighBand, state); }

QorStatus qorsMelFBankInitAllocLow_Aurora_32f(FBankState_32f** state) { return allocateAuroraBank(kLowBand, state); }
QorStatus qorsMelFBankInitAllocLow_Aurora_16s(FBankState_16s** state) { return allocateAuroraBank(kLowBand, state); }
QorStatus qorsMelFBankInitAllocHigh_Aurora_32f(FBankState_32f** state) { return allocateAuroraBank(kHighBand, state); }
QorStatus qorsMelFBankInitAllocHigh_Aurora_16s(FBankState_16s** state) { return allocateAuroraBank(kHighBand, state); }
