// The plain loops of dct_lifter_plain.cpp, opened by name at every level.
#pragma once

#include <cstdint>

// `rows`: `orders` rows of `length` cosines; `lifter`: a weight for each.
extern "C" void plainDctLifter_32f(const float* source, float* destination, const float* rows, const float* lifter, int32_t length,
                                   int32_t orders);
extern "C" void plainDctLifter_16s(const int16_t* source, int16_t* destination, const float* rows, const float* lifter,
                                   int32_t length, int32_t orders, float scale);
