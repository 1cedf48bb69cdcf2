// The plain loops of linear_prediction_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

extern "C" void plainAutocorrelation(const float* x, int32_t length, float* r, int32_t lags);
extern "C" int plainDurbin(const float* r, float* a, int32_t order, float* residual);
extern "C" int plainLinearPrediction_32f(const float* x, int32_t length, float* a, int32_t order);
extern "C" int plainLinearPrediction_16s(const int16_t* x, int32_t length, int16_t* a, int32_t order, float scale);
extern "C" void plainCovariancePrediction(const float* x, int32_t length, float* a, int32_t order);
extern "C" void plainSchur(const float* r, float* k, int32_t order, float* residual);
