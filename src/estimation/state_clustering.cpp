// Exports: statistics and likelihoods of clustered states.
#include "estimation/state_clustering.h"

using namespace qorsr;

QorStatus qorsDcsClustLAccumulate_32f(const float* mean, const float* variance, float* sum, float* squares, int32_t length,
                                      float occupancy) {
  return accumulateInverse(mean, variance, sum, squares, length, occupancy);
}
QorStatus qorsDcsClustLAccumulate_64f(const double* mean, const double* variance, double* sum, double* squares, int32_t length,
                                      double occupancy) {
  return accumulateInverse(mean, variance, sum, squares, length, occupancy);
}
QorStatus qorsDcsClustLAccumulate_DirectVar_32f(const float* mean, const float* variance, float* sum, float* squares,
                                                int32_t length, float occupancy) {
  return accumulateDirect(mean, variance, sum, squares, length, occupancy);
}
QorStatus qorsDcsClustLAccumulate_DirectVar_64f(const double* mean, const double* variance, double* sum, double* squares,
                                                int32_t length, double occupancy) {
  return accumulateDirect(mean, variance, sum, squares, length, occupancy);
}

QorStatus qorsDcsClustLCompute_32f64f(const float* sum, const float* squares, int32_t length, double* result, float occupancy) {
  return clusterLikelihood(sum, squares, length, result, static_cast<double>(occupancy));
}
QorStatus qorsDcsClustLCompute_64f(const double* sum, const double* squares, int32_t length, double* result, double occupancy) {
  return clusterLikelihood(sum, squares, length, result, occupancy);
}
