// Eigen's expressions of the same scores, at the level and with the flags of the plain loops.
#if __has_include(<eigen3/Eigen/Core>)
#include <eigen3/Eigen/Core>

#include "gaussian_plain.h"

namespace {

using Rows = Eigen::Array<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using RowsView = Eigen::Map<const Rows, Eigen::Unaligned, Eigen::OuterStride<>>;
using View = Eigen::Map<const Eigen::ArrayXf>;
using Row = Eigen::Map<const Eigen::Array<float, 1, Eigen::Dynamic>>;

}  // namespace

void eigenGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                        const float* vals, float* scores, int32_t count) {
  const RowsView m(means, count, width, Eigen::OuterStride<>(stride)), v(variances, count, width, Eigen::OuterStride<>(stride));
  const Row frame(x, width);
  for (int32_t g = 0; g < count; ++g) scores[g] = vals[g] - 0.5F * ((m.row(g) - frame).square() * v.row(g)).sum();
}

// means and variances: `width` rows of `count` Gaussians.
void eigenTurnedGaussians_32f(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                              const float* vals, float* scores, int32_t count) {
  constexpr int32_t kBlock = 256;
  for (int32_t first = 0; first < count; first += kBlock) {
    const int32_t n = count - first < kBlock ? count - first : kBlock;
    Eigen::Array<float, Eigen::Dynamic, 1, 0, kBlock, 1> sum = Eigen::Array<float, Eigen::Dynamic, 1, 0, kBlock, 1>::Zero(n);
    for (int32_t c = 0; c < width; ++c) {
      sum += (View(means + c * stride + first, n) - x[c]).square() * View(variances + c * stride + first, n);
    }
    Eigen::Map<Eigen::ArrayXf>(scores + first, n) = View(vals + first, n) - 0.5F * sum;
  }
}

void eigenFrames_32f(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width, float* scores,
                     int32_t height, float val) {
  const RowsView frames(source, height, width, Eigen::OuterStride<>(stride));
  const Row m(mean, width), v(variance, width);
  for (int32_t r = 0; r < height; ++r) scores[r] = val - 0.5F * ((frames.row(r) - m).square() * v).sum();
}
#endif
