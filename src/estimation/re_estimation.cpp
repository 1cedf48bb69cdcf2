// Exports: model re-estimation.
#include "estimation/re_estimation.h"

using namespace qorsr;

QorStatus qorsUpdateMean_32f(const float* source, float* destination, int32_t length, float occupancy) {
  return updateMean(source, destination, length, occupancy);
}
QorStatus qorsUpdateMean_64f(const double* source, double* destination, int32_t length, double occupancy) {
  return updateMean(source, destination, length, occupancy);
}

QorStatus qorsUpdateVar_32f(const float* first, const float* second, const float* floors, float* destination, int32_t length,
                            float firstOccupancy, float secondOccupancy) {
  return updateVar(first, second, floors, destination, length, firstOccupancy, secondOccupancy);
}
QorStatus qorsUpdateVar_64f(const double* first, const double* second, const double* floors, double* destination, int32_t length,
                            double firstOccupancy, double secondOccupancy) {
  return updateVar(first, second, floors, destination, length, firstOccupancy, secondOccupancy);
}

QorStatus qorsUpdateWeight_32f(const float* counts, float* destination, int32_t length, float* sum, float total, float floor) {
  return updateWeight(counts, destination, length, sum, total, floor);
}
QorStatus qorsUpdateWeight_64f(const double* counts, double* destination, int32_t length, double* sum, double total, double floor) {
  return updateWeight(counts, destination, length, sum, total, floor);
}

QorStatus qorsNewVar_32f(const float* means, const float* squares, float* destination, int32_t length, float a, float b) {
  return newVar(means, squares, destination, length, a, b);
}
QorStatus qorsNewVar_32f_I(const float* means, float* squares, int32_t length, float a, float b) {
  return newVarInPlace(means, squares, length, a, b);
}
QorStatus qorsNewVar_32s_Sfs(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a, float b,
                             int32_t scaleFactor) {
  return newVarScaled(means, squares, destination, length, a, b, scaleFactor);
}
QorStatus qorsNewVar_32s_ISfs(const int32_t* means, int32_t* squares, int32_t length, float a, float b, int32_t scaleFactor) {
  return newVarScaled(means, squares, squares, length, a, b, scaleFactor);
}

QorStatus qorsMeanVarAcc_32f(const float* source, const float* mean, float* accumulatedMean, float* accumulatedVariance,
                             int32_t length, float weight) {
  return meanVarAcc(source, mean, accumulatedMean, accumulatedVariance, length, weight);
}
QorStatus qorsMeanVarAcc_64f(const double* source, const double* mean, double* accumulatedMean, double* accumulatedVariance,
                             int32_t length, double weight) {
  return meanVarAcc(source, mean, accumulatedMean, accumulatedVariance, length, weight);
}
