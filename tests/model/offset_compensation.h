// Plain models of the offset filter and of the removal of the mean: one sample after the other.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace model {

// y(n) for n = 0 to x.size() - 1; `before` is x(-1), `y` is y(-1).
inline std::vector<float> offsetFilter(const std::vector<float>& x, float before, float y, float c) {
  std::vector<float> result;
  for (std::size_t n = 0; n < x.size(); ++n) {
    const float fed = c * y;
    y = n == 0 ? (fed + x[0]) - before : (x[n] - x[n - 1]) + fed;
    result.push_back(y);
  }
  return result;
}

inline int16_t limited(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int16_t>(std::trunc(std::clamp(value, -32768.0, 32767.0)));
}

inline std::vector<int16_t> offsetFilter(const std::vector<int16_t>& x, int16_t before, int16_t y, float c) {
  std::vector<int16_t> result;
  for (std::size_t n = 0; n < x.size(); ++n) {
    const float fed = c * static_cast<float>(y), now = x[n], last = n == 0 ? before : x[n - 1];
    float sum = n == 0 ? (fed + now) - last : (now - last) + fed;
    if (n > 0) sum += sum < 0.0F ? -0.5F : 0.5F;
    result.push_back(y = limited(static_cast<double>(sum)));
  }
  return result;
}

inline std::vector<int16_t> offsetFilterQ15(const std::vector<int16_t>& x, int16_t before, int16_t y, int16_t c) {
  std::vector<int16_t> result;
  for (std::size_t n = 0; n < x.size(); ++n) {
    const double sum = (x[n] - (n == 0 ? before : x[n - 1])) * 32768.0 + static_cast<double>(c) * y;
    result.push_back(y = limited(sum / 32768.0));
  }
  return result;
}

inline std::vector<int16_t> withoutMean(const std::vector<int16_t>& x) {
  int64_t sum = 0;
  for (const int16_t v : x) sum += v;
  const int64_t twice = 2 * sum / static_cast<int64_t>(x.size());
  std::vector<int16_t> result;
  for (const int16_t v : x) {
    const int64_t t = 2 * int64_t{v} - twice;
    const int64_t half = t < 0 ? -((1 - t) / 2) : (1 + t) / 2;
    result.push_back(static_cast<int16_t>(std::clamp<int64_t>(half, -32767, 32767)));
  }
  return result;
}

}  // namespace model
