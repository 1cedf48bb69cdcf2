// The loops that one would write first: distances, merging and splitting of Gaussians.
#pragma once

#include <cstdint>

extern "C" float plainGaussianDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                       int32_t length, float weight1, float det1, float weight2, float det2);
extern "C" double plainGaussianDist_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                                        int32_t length, double weight1, double det1, double weight2, double det2);
extern "C" float plainGaussianMerge_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                        float* mean, float* variance, int32_t length, float weight1, float weight2);
extern "C" double plainGaussianMerge_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                                         double* mean, double* variance, int32_t length, double weight1, double weight2);
extern "C" void plainGaussianSplit_32f(float* mean, const float* variance, float* mean2, float* variance2, int32_t length,
                                       float factor);
extern "C" void plainGaussianSplit_64f(double* mean, const double* variance, double* mean2, double* variance2, int32_t length,
                                       double factor);
extern "C" double plainBhatDist(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                int32_t length);
extern "C" double plainBhatDistSLog(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                    int32_t length, float logs1, float logs2);
