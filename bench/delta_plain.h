// The plain loops of delta_plain.cpp, opened by name at every level. Whole utterances, rows of features, deltas, accelerations.
#pragma once

#include <cstdint>

#define PLAIN_API extern "C" __attribute__((visibility("default")))

PLAIN_API void plainDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height, float q);
PLAIN_API void plainDeltaDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                        float q, float q2);
PLAIN_API void plainDeltaDelta_Aurora_32f(const float* source, float* destination, int32_t step, int32_t height);
PLAIN_API void plainDeltaDelta_Win2_16s(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                        int16_t q, int16_t q2, int32_t shift);
PLAIN_API void plainEvalDelta_32f(float* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window,
                                  float q);
PLAIN_API void plainEvalDelta_16s(int16_t* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window,
                                  int16_t q, int32_t shift);

// Only writes the rows that a member fills: what stores allow at most.
PLAIN_API void plainWriteRows_32f(float* destination, int32_t step, int32_t height, float value);
