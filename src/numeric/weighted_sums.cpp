// Exports: weighted sums of two vectors.
#include "numeric/weighted_sums.h"

using namespace qorsr;

QorStatus qorsWeightedSum_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length, float firstWeight,
                              float secondWeight) {
  return weightedSum<false>(first, second, result, length, firstWeight, secondWeight);
}
QorStatus qorsWeightedSum_32f(const float* first, const float* second, float* result, int32_t length, float firstWeight,
                              float secondWeight) {
  return weightedSum<false>(first, second, result, length, firstWeight, secondWeight);
}
QorStatus qorsWeightedSum_64f(const double* first, const double* second, double* result, int32_t length, double firstWeight,
                              double secondWeight) {
  return weightedSum<false>(first, second, result, length, firstWeight, secondWeight);
}
QorStatus qorsWeightedSumHalf_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length, float firstWeight,
                                  float secondWeight) {
  return weightedSum<true>(first, second, result, length, firstWeight, secondWeight);
}
QorStatus qorsWeightedSumHalf_32f(const float* first, const float* second, float* result, int32_t length, float firstWeight,
                                  float secondWeight) {
  return weightedSum<true>(first, second, result, length, firstWeight, secondWeight);
}
QorStatus qorsWeightedSumHalf_64f(const double* first, const double* second, double* result, int32_t length, double firstWeight,
                                  double secondWeight) {
  return weightedSum<true>(first, second, result, length, firstWeight, secondWeight);
}
