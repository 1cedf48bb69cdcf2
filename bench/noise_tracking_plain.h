// Plain loops of noise tracking and of suppression gains.
#pragma once

#include <cstdint>

// What a stream keeps: constants, and four arrays of bins.
template <class Number>
struct PlainMinima {
  int32_t bins, window, counter;
  Number noiseSmoothing, presenceSmoothing, spectrumSmoothing;
  Number *presence, *smoothed, *minimum, *latest;
};

extern "C" void plainUpdateNoise_32f(const float* x, PlainMinima<float>* state, float* noise);
extern "C" void plainUpdateNoise_32s(const int32_t* x, PlainMinima<int32_t>* state, int32_t* noise);
// table: F at q / 2^22 for q up to 128; octaves: three coefficients of 24 octaves.
extern "C" void plainEphraimMalah_32f(const float* prior, const float* posterior, float* gain, int32_t length, const int32_t* table,
                                      const int32_t (*octaves)[3]);
extern "C" void plainEphraimMalah_32s(const int32_t* prior, const int32_t* posterior, int32_t* gain, int32_t length,
                                      const int32_t* table, const int32_t (*octaves)[3]);
extern "C" void plainWiener_32f(const float* snr, float* gain, int32_t length);
// tables: 64, 16 and 8 steps.
extern "C" void plainWiener_32s(const int32_t* snr, int32_t* gain, int32_t length, const int32_t* fine, const int32_t* middle,
                                const int32_t* coarse);
