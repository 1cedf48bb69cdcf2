// The loops that one would write first: model re-estimation and state clustering.
#pragma once

#include <cstdint>

extern "C" void plainUpdateMean_32f(const float* source, float* destination, int32_t length, float occupancy);
extern "C" void plainUpdateMean_64f(const double* source, double* destination, int32_t length, double occupancy);
extern "C" int32_t plainUpdateVar_32f(const float* first, const float* second, const float* floors, float* destination,
                                      int32_t length, float occupancy1, float occupancy2);
extern "C" int32_t plainUpdateVar_64f(const double* first, const double* second, const double* floors, double* destination,
                                      int32_t length, double occupancy1, double occupancy2);
extern "C" int32_t plainUpdateWeight_32f(const float* counts, float* destination, int32_t length, float* sum, float total,
                                         float floor);
extern "C" int32_t plainUpdateWeight_64f(const double* counts, double* destination, int32_t length, double* sum, double total,
                                         double floor);
extern "C" void plainNewVar_32f_I(const float* means, float* squares, int32_t length, float a, float b);
extern "C" void plainNewVar_32s(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a,
                                float b, float scale);
extern "C" void plainNewVar_32f(const float* means, const float* squares, float* destination, int32_t length, float a, float b);
extern "C" void plainMeanVarAcc_32f(const float* source, const float* mean, float* sums, float* squares, int32_t length,
                                    float weight);
extern "C" void plainMeanVarAcc_64f(const double* source, const double* mean, double* sums, double* squares, int32_t length,
                                    double weight);
extern "C" void plainAccCovariance_16s64f(const int16_t* source, int32_t stride, int32_t height, const int16_t* mean,
                                          double* result, int32_t width, int32_t resultStride, double factor);
extern "C" void plainAccCovariance_32f64f(const float* source, int32_t stride, int32_t height, const float* mean, double* result,
                                          int32_t width, int32_t resultStride, double factor);
extern "C" void plainDcsClustLAccumulate_32f(const float* mean, const float* variance, float* sum, float* squares, int32_t length,
                                             float occupancy);
extern "C" void plainDcsClustLAccumulate_64f(const double* mean, const double* variance, double* sum, double* squares,
                                             int32_t length, double occupancy);
extern "C" void plainDcsClustLAccumulate_DirectVar_32f(const float* mean, const float* variance, float* sum, float* squares,
                                                       int32_t length, float occupancy);
extern "C" void plainDcsClustLAccumulate_DirectVar_64f(const double* mean, const double* variance, double* sum, double* squares,
                                                       int32_t length, double occupancy);
extern "C" double plainDcsClustLCompute_64f(const double* sum, const double* squares, int32_t length, double occupancy);
extern "C" double plainDcsClustLCompute_32f64f(const float* sum, const float* squares, int32_t length, float occupancy);
