// Plain loops of the cosine transform with lifter: what one would write first.
#include "dct_lifter_plain.h"

#include <cmath>
#include <cstdint>

void plainDctLifter_32f(const float* source, float* destination, const float* rows, const float* lifter, int32_t length,
                        int32_t orders) {
  for (int32_t i = 0; i < orders; ++i) {
    float sum = 0;
    for (int32_t j = 0; j < length; ++j) sum += source[j] * rows[i * length + j];
    destination[i] = lifter[i] * sum;
  }
}

void plainDctLifter_16s(const int16_t* source, int16_t* destination, const float* rows, const float* lifter, int32_t length,
                        int32_t orders, float scale) {
  for (int32_t i = 0; i < orders; ++i) {
    float sum = 0;
    for (int32_t j = 0; j < length; ++j) sum += static_cast<float>(source[j]) * rows[i * length + j];
    const float value = lifter[i] * sum * scale;
    destination[i] = static_cast<int16_t>(value < -32768.0F ? -32768.0F : value > 32767.0F ? 32767.0F : __builtin_rintf(value));
  }
}
