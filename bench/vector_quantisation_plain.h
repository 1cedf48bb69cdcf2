// Plain loops of vector quantisation: what one would write first.
#pragma once

#include <cstdint>

extern "C" {
// The index of the nearest of `count` rows for each of `height` vectors, rows and vectors without gaps.
void plainNearest_32f(const float* source, int32_t height, const float* book, int32_t count, int32_t width, int32_t* indices);
void plainNearest_16s(const int16_t* source, int32_t height, const int16_t* book, int32_t count, int32_t width, int32_t* indices);

// A codebook of `size` rows by splits, as qorsCdbkInitAlloc_L2_32f() defines it in mode 2, every distance of every round computed.
void plainTrain_32f(const float* source, int32_t height, int32_t width, int32_t size, float* book);
}
