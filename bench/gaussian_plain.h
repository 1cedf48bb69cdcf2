// The loops that one would write first, and Eigen's expressions, which are compiled at each level beside them.
#pragma once

#include <cstdint>

extern "C" {
// One frame against `count` Gaussians: scores[g] = vals[g] - Q / 2.
void plainGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                        const float* vals, float* scores, int32_t count);
void plainGaussians_64f(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                        const double* vals, double* scores, int32_t count);
void plainGaussians_16s32f(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x, int32_t width,
                           const float* vals, float* scores, int32_t count, float power);
// `height` frames against one Gaussian.
void plainFrames_32f(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width, float* scores,
                     int32_t height, float val);
void plainFrames_16s32f(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance, int32_t width,
                        float* scores, int32_t height, float val, float power);
// log of the sum of exp(score).
void plainMixture_32f(const float* x, const float* means, const float* variances, int32_t count, int32_t stride, int32_t width,
                      const float* vals, float* result);

// Rows of Gaussians, and columns of them: the model turned so that Gaussians are contiguous.
void eigenGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                        const float* vals, float* scores, int32_t count);
void eigenTurnedGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                              const float* vals, float* scores, int32_t count);
void eigenFrames_32f(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width, float* scores,
                     int32_t height, float val);
}
