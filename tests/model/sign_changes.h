// Plain models of the counts of sign changes.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace model {

template <class T>
int sign(T x) {
  return x > T(0) ? 1 : x < T(0) ? -1 : 0;
}

inline int64_t negativeProducts(const std::vector<float>& x) {
  int64_t count = 0;
  for (std::size_t n = 0; n + 1 < x.size(); ++n) {
    const float product = x[n] * x[n + 1];
    if (product < 0.0F) ++count;
  }
  return count;
}
inline int64_t negativeProducts(const std::vector<int16_t>& x) {
  int64_t count = 0;
  for (std::size_t n = 0; n + 1 < x.size(); ++n) count += int32_t{x[n]} * x[n + 1] < 0;
  return count;
}

template <class T>
int64_t signSteps(const std::vector<T>& x) {
  int64_t sum = 0;
  for (std::size_t n = 0; n + 1 < x.size(); ++n) sum += std::abs(sign(x[n + 1]) - sign(x[n]));
  return sum;
}

inline int64_t differentSignBits(const std::vector<float>& x) {
  int64_t count = 0;
  for (std::size_t n = 0; n + 1 < x.size(); ++n) count += std::signbit(x[n]) != std::signbit(x[n + 1]);
  return count;
}

}  // namespace model
