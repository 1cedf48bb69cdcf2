// Plain loops of voice activity.
#pragma once

#include <cstdint>

// What a stream keeps, in the order of the definition.
template <class Number>
struct PlainActivity {
  Number mean, spectral, energy, variance, previous;
  int32_t onset, index, hangover, longCounter, shortCounter, frames;
  uint8_t ring[8];
};

extern "C" int32_t plainActivity_32f(const float* bands, const float* frame, int32_t count, PlainActivity<float>* v);
extern "C" int32_t plainActivity_16s(const int16_t* bands, const int16_t* frame, int32_t count, PlainActivity<int32_t>* v);
