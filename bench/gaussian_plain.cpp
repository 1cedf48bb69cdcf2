#include "gaussian_plain.h"

#include <cmath>

namespace {

template <class Sum, class T>
Sum distance(const T* x, const T* mean, const T* variance, int32_t width) {
  Sum sum = 0;
  for (int32_t c = 0; c < width; ++c) {
    const Sum d = static_cast<Sum>(x[c]) - static_cast<Sum>(mean[c]);
    sum += d * d * static_cast<Sum>(variance[c]);
  }
  return sum;
}

template <class T>
void gaussians(const T* means, const T* variances, int32_t stride, const T* x, int32_t width, const T* vals, T* scores,
               int32_t count) {
  for (int32_t g = 0; g < count; ++g) {
    scores[g] = vals[g] - distance<T>(x, means + g * stride, variances + g * stride, width) / 2;
  }
}

}  // namespace

void plainGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                        const float* vals, float* scores, int32_t count) {
  gaussians(means, variances, stride, x, width, vals, scores, count);
}
void plainGaussians_64f(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                        const double* vals, double* scores, int32_t count) {
  gaussians(means, variances, stride, x, width, vals, scores, count);
}
void plainGaussians_16s32f(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x, int32_t width,
                           const float* vals, float* scores, int32_t count, float power) {
  for (int32_t g = 0; g < count; ++g) {
    scores[g] = vals[g] - distance<float>(x, means + g * stride, variances + g * stride, width) * power;
  }
}
void plainFrames_32f(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width, float* scores,
                     int32_t height, float val) {
  for (int32_t r = 0; r < height; ++r) scores[r] = val - distance<float>(source + r * stride, mean, variance, width) / 2;
}
void plainFrames_16s32f(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance, int32_t width,
                        float* scores, int32_t height, float val, float power) {
  for (int32_t r = 0; r < height; ++r) scores[r] = val - distance<float>(source + r * stride, mean, variance, width) * power;
}
void plainMixture_32f(const float* x, const float* means, const float* variances, int32_t count, int32_t stride, int32_t width,
                      const float* vals, float* result) {
  float sum = -1e30F;
  for (int32_t g = 0; g < count; ++g) {
    const float score = vals[g] - distance<float>(x, means + g * stride, variances + g * stride, width) / 2;
    const float high = score > sum ? score : sum, low = score > sum ? sum : score;
    sum = high + std::log1p(std::exp(low - high));
  }
  *result = sum;
}
