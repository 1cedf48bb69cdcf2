// Plain loops of spectral noise reduction.
#pragma once

#include <cstdint>

extern "C" void plainPowerSpectrum_32f(const float* x, float* y, int32_t length);
extern "C" void plainPowerSpectrum_16s(const int16_t* x, int16_t* y, int32_t length);
extern "C" void plainPowerSpectrum_32s(const int32_t* x, int32_t* y, int32_t length, int32_t scaleFactor);
extern "C" void plainPowerSpectrum_32s64s(const int32_t* x, int64_t* y, int32_t length, int32_t scaleFactor);
extern "C" void plainNoiseUpdate_32f(const float* x, const float* n, float* y, int32_t length);
extern "C" void plainNoiseUpdate_16s(const int16_t* x, const int16_t* n, int16_t* y, int32_t length, int32_t scaleFactor);
extern "C" void plainNoiseUpdate_32s(const int32_t* x, const int32_t* n, int32_t* y, int32_t length, int32_t scaleFactor);
extern "C" void plainWienerGain_32f(const float* x, const float* n, const float* p, float* y, int32_t length);
extern "C" void plainWienerGain_16s(const int16_t* x, const int16_t* n, const int16_t* p, int16_t* y, int32_t length);
extern "C" void plainResidual_32f(const float* x, float* y, const float* h);
extern "C" void plainResidual_16s(const int16_t* x, int16_t* y, const int16_t* h, int32_t scaleFactor);
extern "C" void plainWave_32f(const float* x, float* y);
extern "C" void plainWave_16s(const int16_t* x, int16_t* y);
