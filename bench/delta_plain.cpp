// Plain loops of deltas and accelerations: what one would write first.
#include "delta_plain.h"

#include <algorithm>
#include <cstdint>

namespace {

template <class T>
T* rowOf(T* base, int32_t step, int32_t row, int32_t height) {
  return base + static_cast<int64_t>(std::clamp(row, 0, height - 1)) * step;
}

template <class T>
void copyRows(const T* source, int32_t width, T* destination, int32_t step, int32_t height) {
  for (int32_t t = 0; t < height; ++t) {
    for (int32_t i = 0; i < width; ++i)
      destination[static_cast<int64_t>(t) * step + i] = source[static_cast<int64_t>(t) * width + i];
  }
}

void slopes(const float* in, float* out, int32_t width, int32_t step, int32_t height, float q) {
  for (int32_t t = 0; t < height; ++t) {
    const float *a = rowOf(in, step, t - 2, height), *b = rowOf(in, step, t - 1, height), *c = rowOf(in, step, t + 1, height),
                *d = rowOf(in, step, t + 2, height);
    float* result = out + static_cast<int64_t>(t) * step;
    for (int32_t i = 0; i < width; ++i) result[i] = (c[i] - b[i] + 2 * (d[i] - a[i])) * q;
  }
}

int16_t limited(int32_t x) { return static_cast<int16_t>(std::clamp(x, -32768, 32767)); }

void slopes16(const int16_t* in, int16_t* out, int32_t width, int32_t step, int32_t height, int16_t q, int32_t shift) {
  for (int32_t t = 0; t < height; ++t) {
    const int16_t *a = rowOf(in, step, t - 2, height), *b = rowOf(in, step, t - 1, height), *c = rowOf(in, step, t + 1, height),
                  *d = rowOf(in, step, t + 2, height);
    int16_t* result = out + static_cast<int64_t>(t) * step;
    for (int32_t i = 0; i < width; ++i) {
      const auto slope = static_cast<int16_t>(c[i] - b[i] + 2 * (d[i] - a[i]));
      result[i] = limited((slope * q) >> shift);
    }
  }
}

}  // namespace

void plainDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height, float q) {
  copyRows(source, width, destination, step, height);
  slopes(destination, destination + width, width, step, height, q);
}

void plainDeltaDelta_Win2_32f(const float* source, int32_t width, float* destination, int32_t step, int32_t height, float q,
                              float q2) {
  plainDelta_Win2_32f(source, width, destination, step, height, q);
  slopes(destination + width, destination + 2 * width, width, step, height, q2);
}

void plainDeltaDelta_Aurora_32f(const float* source, float* destination, int32_t step, int32_t height) {
  for (int32_t t = 0; t < height; ++t) {
    const float* s = source + static_cast<int64_t>(t) * 14;
    float* x = destination + static_cast<int64_t>(t) * step;
    for (int32_t i = 0; i < 12; ++i) x[i] = s[i];
    x[12] = s[12] * 0.6F / 23.0F + s[13] * 0.4F;
  }
  for (int32_t t = 0; t < height; ++t) {
    const float* x[9];
    for (int32_t k = 0; k < 9; ++k) x[k] = rowOf(destination, step, t + k - 4, height);
    float* d = destination + static_cast<int64_t>(t) * step + 13;
    float* a = d + 13;
    for (int32_t i = 0; i < 13; ++i) {
      d[i] = -x[0][i] - 0.75F * x[1][i] - 0.5F * x[2][i] - 0.25F * x[3][i] + 0.25F * x[5][i] + 0.5F * x[6][i] + 0.75F * x[7][i] +
             x[8][i];
      a[i] = x[0][i] + 0.25F * x[1][i] - 0.285714F * x[2][i] - 0.607143F * x[3][i] - 0.714286F * x[4][i] - 0.607143F * x[5][i] -
             0.285714F * x[6][i] + 0.25F * x[7][i] + x[8][i];
    }
  }
}

void plainDeltaDelta_Win2_16s(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height, int16_t q,
                              int16_t q2, int32_t shift) {
  copyRows(source, width, destination, step, height);
  slopes16(destination, destination + width, width, step, height, q, shift);
  slopes16(destination + width, destination + 2 * width, width, step, height, q2, shift);
}

void plainEvalDelta_32f(float* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window, float q) {
  const float* x = buffer + offset;
  for (int32_t t = 0; t < height; ++t) {
    float* d = buffer + static_cast<int64_t>(t) * step + offset + width;
    for (int32_t i = 0; i < width; ++i) {
      float sum = 0;
      for (int32_t k = 1; k <= window; ++k) {
        const int32_t ahead = t >= height - window ? height - 1 : t + k, behind = t < window ? 0 : t - k;
        sum += static_cast<float>(k) * (x[static_cast<int64_t>(ahead) * step + i] - x[static_cast<int64_t>(behind) * step + i]);
      }
      d[i] = sum * q;
    }
  }
}

void plainEvalDelta_16s(int16_t* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t window, int16_t q,
                        int32_t shift) {
  const int16_t* x = buffer + offset;
  for (int32_t t = 0; t < height; ++t) {
    int16_t* d = buffer + static_cast<int64_t>(t) * step + offset + width;
    for (int32_t i = 0; i < width; ++i) {
      int32_t sum = 0;
      for (int32_t k = 1; k <= window; ++k) {
        const int32_t ahead = t >= height - window ? height - 1 : t + k, behind = t < window ? 0 : t - k;
        sum += k * static_cast<int16_t>(x[static_cast<int64_t>(ahead) * step + i] - x[static_cast<int64_t>(behind) * step + i]);
      }
      d[i] = limited((sum * q) >> shift);
    }
  }
}

void plainWriteRows_32f(float* destination, int32_t step, int32_t height, float value) {
  for (int64_t i = 0; i < int64_t{step} * height; ++i) destination[i] = value;
}
