// Exports: tracking of the noise's power spectrum.
#include "robust/noise_tracking.h"

using namespace qorsr;

QorStatus qorsGetSizeMCRA_32f(int32_t length, int32_t* size) { return minimaSize(length, size); }
QorStatus qorsGetSizeMCRA_32s(int32_t length, int32_t* size) { return minimaSize(length, size); }

QorStatus qorsInitMCRA_32f(int32_t sampleRate, int32_t length, MCRAState_32f* state) {
  return initMinima(sampleRate, length, state);
}
QorStatus qorsInitMCRA_32s(int32_t sampleRate, int32_t length, MCRAState_32s* state) {
  return initMinima(sampleRate, length, state);
}
QorStatus qorsAltInitMCRA_32f(int32_t sampleRate, int32_t length, int32_t hop, MCRAState_32f* state) {
  return initMinima(sampleRate, length, hop, state);
}
QorStatus qorsAltInitMCRA_32s(int32_t sampleRate, int32_t length, int32_t hop, MCRAState_32s* state) {
  return initMinima(sampleRate, length, hop, state);
}

QorStatus qorsUpdateNoisePSDMCRA_32f_I(const float* spectrum, MCRAState_32f* state, float* noise) {
  return updateNoise(spectrum, state, noise);
}
QorStatus qorsUpdateNoisePSDMCRA_32s_I(const int32_t* spectrum, MCRAState_32s* state, int32_t* noise) {
  return updateNoise(spectrum, state, noise);
}
