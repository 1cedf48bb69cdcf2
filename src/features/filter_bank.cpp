// Exports: life cycle of filter banks, exchange of centres and weights, evaluation.
#include "features/filter_bank_exchange.h"
#include "features/filter_bank_front.h"

using namespace qorsr;

QorStatus qorsEmptyFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, int32_t filterCount, int32_t flags) {
  return initEmptyBank(state, order, length, filterCount, flags);
}
QorStatus qorsEmptyFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, int32_t filterCount, int32_t flags) {
  return initEmptyBank(state, order, length, filterCount, flags);
}
QorStatus qorsFBankFree_32f(FBankState_32f* state) { return releaseBank(state); }
QorStatus qorsFBankFree_16s(FBankState_16s* state) { return releaseBank(state); }

QorStatus qorsFBankGetCenters_32f(const FBankState_32f* state, int32_t* centers) { return getCenters(state, centers); }
QorStatus qorsFBankGetCenters_16s(const FBankState_16s* state, int32_t* centers) { return getCenters(state, centers); }
QorStatus qorsFBankSetCenters_32f(FBankState_32f* state, const int32_t* centers) { return setCenters(state, centers); }
QorStatus qorsFBankSetCenters_16s(FBankState_16s* state, const int32_t* centers) { return setCenters(state, centers); }

QorStatus qorsFBankGetCoeffs_32f(const FBankState_32f* state, int32_t filter, float* weights) {
  return getCoeffs(state, filter, weights);
}
QorStatus qorsFBankGetCoeffs_16s(const FBankState_16s* state, int32_t filter, float* weights) {
  return getCoeffs(state, filter, weights);
}
QorStatus qorsFBankSetCoeffs_32f(FBankState_32f* state, int32_t filter, const float* weights) {
  return setCoeffs(state, filter, weights);
}
QorStatus qorsFBankSetCoeffs_16s(FBankState_16s* state, int32_t filter, const float* weights) {
  return setCoeffs(state, filter, weights);
}

QorStatus qorsEvalFBank_32f(const float* source, float* result, const FBankState_32f* state) {
  return evalFilterBank(source, result, state);
}
QorStatus qorsEvalFBank_16s_Sfs(const int16_t* source, int16_t* result, const FBankState_16s* state, int32_t scaleFactor) {
  return evalFilterBank(source, result, state, scaleFactor);
}
QorStatus qorsEvalFBank_16s32s_Sfs(const int16_t* source, int32_t* result, const FBankState_16s* state, int32_t scaleFactor) {
  return evalFilterBank(source, result, state, scaleFactor);
}
QorStatus qorsEvalFBank_32s_Sfs(const int32_t* source, int32_t* result, const FBankState_32s* state, int32_t scaleFactor) {
  return evalFilterBank(source, result, state, scaleFactor);
}
