// Plain loops of resampling: what one would write first.
#pragma once

#include <cstdint>

extern "C" {
// `rows` of a fixed ratio, `pitch` elements apart, of 2 half taps, phase 0 with one more. The number of outputs.
int32_t plainFixed_32f(const float* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const float* source, int32_t length,
                       float* destination);
int32_t plainFixedDouble_32f(const float* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const float* source,
                             int32_t length, float* destination);
int32_t plainFixed_16s(const int16_t* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const int16_t* source,
                       int32_t length, int16_t* destination);

// `table` of a filter for any ratio, `length` entries and one more, nStep a sample.
int32_t plainPolyphase_32f(const float* table, int32_t entries, int32_t nStep, const float* source, int32_t length,
                           float* destination, double factor, double time);
int32_t plainPolyphase_16s(const int16_t* table, int32_t entries, int32_t nStep, double gain, const int16_t* source, int32_t length,
                           int16_t* destination, double factor, double time);
}
