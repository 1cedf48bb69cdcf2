// Exports: distance, merging and splitting of Gaussians.
#include "estimation/gaussian_operations.h"

using namespace qorsr;

QorStatus qorsGaussianDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                               int32_t length, float* result, float weight1, float det1, float weight2, float det2) {
  return gaussianDist<float>({mean1, variance1, mean2, variance2}, length, result, weight1, det1, weight2, det2);
}
QorStatus qorsGaussianDist_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                               int32_t length, double* result, double weight1, double det1, double weight2, double det2) {
  return gaussianDist<double>({mean1, variance1, mean2, variance2}, length, result, weight1, det1, weight2, det2);
}

QorStatus qorsGaussianMerge_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2, float* mean,
                                float* variance, int32_t length, float* det, float weight1, float weight2) {
  return gaussianMerge<float>({mean1, variance1, mean2, variance2}, mean, variance, length, det, weight1, weight2);
}
QorStatus qorsGaussianMerge_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                                double* mean, double* variance, int32_t length, double* det, double weight1, double weight2) {
  return gaussianMerge<double>({mean1, variance1, mean2, variance2}, mean, variance, length, det, weight1, weight2);
}

QorStatus qorsGaussianSplit_32f(float* mean, const float* variance, float* mean2, float* variance2, int32_t length, float factor) {
  return gaussianSplit(mean, variance, mean2, variance2, length, factor);
}
QorStatus qorsGaussianSplit_64f(double* mean, const double* variance, double* mean2, double* variance2, int32_t length,
                                double factor) {
  return gaussianSplit(mean, variance, mean2, variance2, length, factor);
}
