// Eigen's exponentials and logarithms in the same additions, at the level and with the flags of the plain loops.
#if __has_include(<eigen3/Eigen/Core>)
#include <eigen3/Eigen/Core>

#include "log_arithmetic_plain.h"

void eigenLogAdd_32f(const float* source, float* result, int32_t length) {
  const Eigen::Map<const Eigen::ArrayXf> a(source, length);
  Eigen::Map<Eigen::ArrayXf> b(result, length);
  b = a.max(b) + (1.0F + (-(a - b).abs()).exp()).log();
}
#endif
