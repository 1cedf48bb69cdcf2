// How far a warping distance is from that of the best path in extended precision: the error that the documentation states, relative
// to the distance.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "kit/accuracy.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr long double kFar = std::numeric_limits<long double>::infinity();

// With delta at its widest the region is bounded by its slopes alone; two sequences of one length then have every cell that a path
// from a free start to a free end can take.
long double exactDistance(const std::vector<float>& x, const std::vector<float>& y, int32_t n, int32_t width) {
  const auto local = [&](int32_t i, int32_t j) {
    long double sum = 0;
    for (int32_t e = 0; e < width; ++e) {
      const long double d =
          static_cast<long double>(x[static_cast<std::size_t>(i * width + e)]) - y[static_cast<std::size_t>(j * width + e)];
      sum += d * d;
    }
    return std::sqrt(sum);
  };
  std::vector<long double> column(static_cast<std::size_t>(n));
  for (int32_t j = 0; j < n; ++j) column[static_cast<std::size_t>(j)] = local(0, j);
  for (int32_t i = 1; i < n; ++i) {
    const auto before = [&column](int32_t j) { return j < 0 ? kFar : column[static_cast<std::size_t>(j)]; };
    std::vector<long double> next(static_cast<std::size_t>(n));
    for (int32_t j = 0; j < n; ++j) {
      next[static_cast<std::size_t>(j)] = std::min({before(j), before(j - 1), before(j - 2)}) + local(i, j);
    }
    column = next;
  }
  return *std::min_element(column.begin(), column.end());
}

kit::LargestError largestError(int32_t leastWidth, int32_t mostWidth) {
  kit::LargestError largest;
  kit::Random random = kit::Random::fixed(static_cast<uint64_t>(mostWidth));
  for (int32_t n = 2; n <= 200; n += 1 + n / 4) {
    for (int32_t width = leastWidth; width <= mostWidth; ++width) {
      std::vector<float> x, y;
      for (int32_t i = 0; i < n * width; ++i) x.push_back(static_cast<float>(random.real(-10, 10)));
      for (int32_t i = 0; i < n * width; ++i) y.push_back(static_cast<float>(random.real(-10, 10)));
      float distance = 0;
      EXPECT_EQ(qorsDTW_L2_32f_D2(x.data(), n, y.data(), n, width, width, &distance, n, 1e30F), qorStatusOk);
      largest.addRelative(distance, exactDistance(x, y, n, width));
    }
  }
  return largest;
}

TEST(DtwAccuracy, FloatDistances) { largestError(1, 13).expectDocumented(4.3e-7L); }
TEST(DtwAccuracy, DoubleDistances) { largestError(14, 40).expectDocumented(5.8e-7L); }

}  // namespace
