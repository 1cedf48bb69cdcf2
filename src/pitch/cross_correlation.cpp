// Exports: normalised cross-correlation of 16-bit signals.
#include "pitch/cross_correlation.h"

using namespace qorsr;

QorStatus qorsCrossCorrCoeff_16s32f(const int16_t* first, const int16_t* second, int32_t length, float* result) {
  return crossCorrelation(first, second, length, result);
}
QorStatus qorsCrossCorrCoeffPartial_16s32f(const int16_t* first, const int16_t* second, int32_t length, float energy,
                                           float* result) {
  return partialCrossCorrelation(first, second, length, energy, result);
}
QorStatus qorsCrossCorrCoeffDecim_16s32f(const int16_t* first, const int16_t* second, int32_t maximumLength, int32_t minimumLength,
                                         float* results, int32_t step) {
  return decimatedCrossCorrelation(first, second, maximumLength, minimumLength, results, step);
}
QorStatus qorsCrossCorrCoeffInterpolation_16s32f(const int16_t* first, const int16_t* second, int32_t length, float* position,
                                                 float* coefficient) {
  return interpolatedCrossCorrelation(first, second, length, position, coefficient);
}
