// What the front-end benchmark opens by name at every level: the program's own part, plain loops, and the transform.
#pragma once

#include <cstdint>

// Pre-emphasis and window of one frame; the rest of the transform's length is zero.
extern "C" void programWindow(const float* samples, const float* window, int32_t frameLength, float* frame, int32_t fftLength);
// Natural logarithms, of at least the floor.
extern "C" void programLog(float* values, int32_t length, float floor);

// y[k] = sum over the bins of filter k; `first` and `count` say which, weights stand one filter behind the other.
extern "C" void plainEvalFBank(const float* spectrum, const float* weights, const int32_t* first, const int32_t* count,
                               int32_t filters, float* result);
// The same in integers, Q14 weights and Q30 ones: sums in 64 bits; each product of the latter loses 8 bits, and results are rounded.
extern "C" void plainEvalFBank16(const int16_t* spectrum, const int32_t* weights, const int32_t* first, const int32_t* count,
                                 int32_t filters, int16_t* result, int32_t shift);
extern "C" void plainEvalFBank32(const int32_t* spectrum, const int32_t* weights, const int32_t* first, const int32_t* count,
                                 int32_t filters, int32_t* result);

// The library's transform has no export of its own, so its source is compiled here too, with the library's flags.
extern "C" int64_t transformSetupBytes(int32_t order);
extern "C" int64_t transformWorkBytes(int32_t order);
extern "C" void transformInit(void* setup, int32_t order);
extern "C" void transformForward(const void* setup, const float* samples, float* spectrum, void* work);
