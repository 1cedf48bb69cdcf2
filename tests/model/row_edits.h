// Plain models of the edits of rows: one element at a time.
#pragma once

#include <cstdint>

namespace model {

inline float normalized(float x, float mean, float scale) {
  const float centred = x - mean;
  return centred * scale;
}

inline int16_t limited16(int64_t value) { return static_cast<int16_t>(value < -32768 ? -32768 : value > 32767 ? 32767 : value); }

// The product is shifted by the scale factor's magnitude modulo 32: right with floor, left modulo 2^32, then limited.
inline int16_t normalizedScaled(int16_t x, int16_t mean, int16_t scale, int32_t sf) {
  const int64_t product = (static_cast<int64_t>(x) - mean) * scale;
  const int64_t magnitude = sf < 0 ? -static_cast<int64_t>(sf) : sf;
  const int64_t power = int64_t{1} << (magnitude % 32);
  if (sf >= 0) {
    const int64_t towardZero = product / power;
    return limited16(towardZero - (product < 0 && towardZero * power != product ? 1 : 0));
  }
  const int64_t low = ((product * power) % 4294967296 + 4294967296) % 4294967296;  // magnitudes stay below 2^62
  return limited16(low >= 2147483648 ? low - 4294967296 : low);
}

inline float subtracted(float x, float y) { return x - y; }
inline int16_t subtracted(int16_t x, int16_t y) { return limited16(static_cast<int64_t>(x) - y); }

}  // namespace model
