// The plain loops of dct_lifter_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

#define PLAIN_API extern "C" __attribute__((visibility("default")))

// `rows`: `orders` rows of `length` cosines; `lifter`: a weight for each.
PLAIN_API void plainDctLifter_32f(const float* source, float* destination, const float* rows, const float* lifter, int32_t length,
                                  int32_t orders);
PLAIN_API void plainDctLifter_16s(const int16_t* source, int16_t* destination, const float* rows, const float* lifter,
                                  int32_t length, int32_t orders, float scale);
