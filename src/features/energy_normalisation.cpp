// Exports: normalisation of log energies.
#include "features/energy_normalisation.h"

using namespace qorsr;

QorStatus qorsNormEnergy_32f(float* buffer, int32_t step, int32_t height, float silence, float scale) {
  return normaliseEnergy(buffer, step, height, silence, scale);
}
QorStatus qorsNormEnergy_RT_32f(float* buffer, int32_t step, int32_t height, float silence, float greatest, float scale) {
  return normaliseEnergy(buffer, step, height, silence, greatest, scale);
}
QorStatus qorsNormEnergy_16s(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t top, float scale) {
  return normaliseEnergy(buffer, step, height, silence, top, scale);
}
QorStatus qorsNormEnergy_RT_16s(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top,
                                float scale) {
  return normaliseEnergy(buffer, step, height, silence, greatest, top, scale);
}
