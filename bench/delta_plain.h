// The plain loops of delta_plain.cpp, opened by name at every level. Whole utterances, rows of features, deltas, accelerations.
#pragma once

#include <cstdint>

extern "C" void plainDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height, float q);
extern "C" void plainDeltaDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                         float q, float q2);
extern "C" void plainDeltaDelta_Aurora_32f(const float* source, float* destination, int32_t step, int32_t height);
extern "C" void plainDeltaDelta_Win2_16s(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                         int16_t q, int16_t q2, int32_t shift);
extern "C" void plainEvalDelta_32f(float* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window,
                                   float q);
extern "C" void plainEvalDelta_16s(int16_t* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window,
                                   int16_t q, int32_t shift);

// Only writes the rows that a member fills: what stores allow at most.
extern "C" void plainWriteRows_32f(float* destination, int32_t step, int32_t height, float value);
