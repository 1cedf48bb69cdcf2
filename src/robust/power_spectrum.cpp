// Exports: power spectra of packed transforms.
#include "robust/power_spectrum.h"

using namespace qorsr;

QorStatus qorsSmoothedPowerSpectrumAurora_32f(const float* spectrum, float* power, int32_t length) {
  return smoothedPowerSpectrum(spectrum, power, length);
}
QorStatus qorsSmoothedPowerSpectrumAurora_16s(const int16_t* spectrum, int16_t* power, int32_t length) {
  return smoothedPowerSpectrum(spectrum, power, length);
}
QorStatus qorsSmoothedPowerSpectrumAurora_32s_Sfs(const int32_t* spectrum, int32_t* power, int32_t length, int32_t scaleFactor) {
  return smoothedPowerSpectrum(spectrum, power, length, scaleFactor);
}
QorStatus qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(const int32_t* spectrum, int64_t* power, int32_t length, int32_t scaleFactor) {
  return smoothedPowerSpectrum(spectrum, power, length, scaleFactor);
}
