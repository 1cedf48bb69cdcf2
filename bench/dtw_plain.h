// Plain loops of dynamic time warping: what one would write first.
#pragma once

#include <cstdint>

extern "C" {
// `work` holds two columns of height2 floats; height1 is at least height2.
float plainDtw_32f(const float* source1, int32_t height1, const float* source2, int32_t height2, int32_t width, int32_t stride,
                   int32_t delta, float beam, float* work);
}
