// Plain loops of dynamic time warping: what one would write first.
#include "dtw_plain.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>

namespace {

// Up to a width of 13 all is float; above, the squares are summed in double.
float distance(const float* x, const float* y, int32_t width) {
  if (width <= 13) {
    float sum = 0;
    for (int32_t e = 0; e < width; ++e) {
      const float d = x[e] - y[e];
      sum += d * d;
    }
    return std::sqrt(sum);
  }
  double sum = 0;
  for (int32_t e = 0; e < width; ++e) {
    const float d = x[e] - y[e];
    sum += static_cast<double>(d * d);
  }
  return static_cast<float>(std::sqrt(sum));
}

}  // namespace

float plainDtw_32f(const float* source1, int32_t height1, const float* source2, int32_t height2, int32_t width, int32_t stride,
                   int32_t delta, float beam, float* work) {
  const int64_t n = height1, m = height2;
  const auto row1 = [=](int64_t i) { return source1 + i * stride; };
  const auto row2 = [=](int64_t j) { return source2 + j * stride; };
  float *old = work, *cells = work + m, least = FLT_MAX;
  int64_t first = 0, end = std::min<int64_t>(delta, m - 1) + 1;
  for (int64_t j = 0; j < end; ++j) old[j] = distance(row1(0), row2(j), width);
  beam += FLT_EPSILON;
  for (int64_t i = 1; i < n; ++i) {
    const int64_t upper = std::min(3 * i < 2 * m - n ? delta + 2 * i : m + delta + ((i - n - 1) >> 1), m - 1);
    const int64_t lower = std::max<int64_t>(3 * i > 4 * n - 2 * m - 2 ? m - 2 * n - delta + 2 * i + 1 : (i >> 1) - delta, 0);
    const int64_t newFirst = std::max(first, lower), newEnd = std::min(end + 2, upper + 1);
    least = FLT_MAX;
    for (int64_t j = newFirst; j < newEnd; ++j) {
      float best = FLT_MAX;
      for (int64_t k = std::max(first, j - 2); k <= std::min(end - 1, j); ++k) best = std::min(best, old[k]);
      cells[j] = best + distance(row1(i), row2(j), width);
      least = std::min(least, cells[j]);
    }
    if (least >= FLT_MAX) return least;
    first = newFirst;
    end = newEnd;
    while (end - 1 > first && cells[end - 1] > least + beam) --end;
    while (first < end - 1 && cells[first] > least + beam) ++first;
    std::swap(old, cells);
  }
  return least;
}
