// Means and variances of large matrices: tiles of rows, sums that leave 53 bits, more rows than a float counts.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/column_moments.h"
#include "qorsr.h"

namespace {

// f(column) for every column.
template <class F>
std::vector<float> columns(int32_t width, F f) {
  std::vector<float> v;
  for (int32_t c = 0; c < width; ++c) v.push_back(f(static_cast<std::size_t>(c)));
  return v;
}

TEST(Moments, AWideTallMatrixIsTakenInTilesWithTheSameBits) {
  kit::Random random;
  for (const int32_t width : {131, 300, 5000}) {
    const int32_t height = width == 5000 ? 23 : 801;  // beyond the near cache, an odd number of rows
    kit::Matrix<float> m(height, width, width, kit::Place::kAtGuard);
    m.fill(random, kit::Random::kPlain);
    const auto table = model::tableOf<float>(m);
    const float r = model::reciprocalByDouble(height), q = model::reciprocalByDouble(height - 1);
    std::vector<float> means(static_cast<std::size_t>(width)), variances(means.size()), sums(means.size());
    ASSERT_EQ(qorsSumColumn_32f_D2(m.block(), width, height, sums.data(), width), qorStatusOk);
    EXPECT_BITS(sums, columns(width, [&](std::size_t c) { return model::columnSum<float>(table, c); }));
    ASSERT_EQ(qorsMeanColumn_32f_D2(m.block(), height, width, means.data(), width), qorStatusOk);
    EXPECT_BITS(means, columns(width, [&](std::size_t c) { return model::columnMean(table, c, r); }));
    ASSERT_EQ(qorsVarColumn_32f_D2(m.block(), height, width, means.data(), variances.data(), width), qorStatusOk);
    EXPECT_BITS(variances, columns(width, [&](std::size_t c) { return model::columnVariance(table, c, means[c], q); }));
    ASSERT_EQ(qorsMeanVarColumn_32f_D2(m.block(), height, width, means.data(), variances.data(), width), qorStatusOk);
    EXPECT_BITS(means, columns(width, [&](std::size_t c) { return model::columnMeanVar(table, c, r, q).mean; }));
    EXPECT_BITS(variances, columns(width, [&](std::size_t c) { return model::columnMeanVar(table, c, r, q).variance; }));
  }
}

TEST(MeanVarColumn, Int16SumsOfManyRows) {
  // Around the height up to which whole numbers hold the sums, and one at which a sum of squares no longer fits 53 bits.
  constexpr int32_t kWidth = 9;
  for (const int32_t height : {(1 << 14) + 1, (1 << 22) - 1, (1 << 22) + 1, (1 << 23) + 3}) {
    std::vector<int16_t> x(static_cast<std::size_t>(height) * kWidth, -32768);
    x[5] = 32767;
    x[x.size() - 2] = 1;
    int16_t means[kWidth];
    int32_t variances[kWidth], expectedVariances[kWidth];
    int16_t expectedMeans[kWidth];
    for (int32_t c = 0; c < kWidth; ++c) {
      double sum = 0, squares = 0;
      for (int32_t r = 0; r < height; ++r) {
        const double value = x[static_cast<std::size_t>(r) * kWidth + static_cast<std::size_t>(c)];
        sum += value;
        squares += value * value;
      }
      const double mean = sum * (1.0 / height);
      expectedMeans[c] = static_cast<int16_t>(model::limitAndRound32(mean));
      expectedVariances[c] = model::limitAndRound32((squares - mean * mean * height) * (1.0 / (height - 1)));
    }
    ASSERT_EQ(qorsMeanVarColumn_16s16s32s_D2(x.data(), height, kWidth, means, variances, kWidth), qorStatusOk);
    EXPECT_BITS(means, expectedMeans, kWidth);
    EXPECT_BITS(variances, expectedVariances, kWidth);
  }
}

// 2^24 + 1, the first number that is none as a float, shows where 1/n and 1/(n - 1) are rounded: in double, 2^-24 - 2^-48; in float,
// 2^-24.
TEST(Moments, ReciprocalsOfMoreRowsThanAFloatCounts) {
  constexpr int32_t kOdd = (1 << 24) + 1;
  constexpr float kBelowOne = 1.0F - 0x1p-24F;
  const float zero = 0.0F, ones[2] = {1.0F, -1.0F};
  float mean = 0, variance = 0;
  std::vector<float> column(kOdd + 1, 1.0F);
  std::vector<const float*> rows(kOdd + 1, &ones[0]);
  ASSERT_EQ(qorsMeanColumn_32f_D2(column.data(), kOdd, 1, &mean, 1), qorStatusOk);
  EXPECT_BITS(mean, kBelowOne);
  ASSERT_EQ(qorsMeanColumn_32f_D2L(rows.data(), kOdd, &mean, 1), qorStatusOk);
  EXPECT_BITS(mean, 1.0F);
  ASSERT_EQ(qorsMeanVarColumn_32f_D2(column.data(), kOdd, 1, &mean, &variance, 1), qorStatusOk);
  EXPECT_BITS(mean, kBelowOne);
  ASSERT_EQ(qorsMeanVarColumn_32f_D2L(rows.data(), kOdd, &mean, &variance, 1), qorStatusOk);
  EXPECT_BITS(mean, 1.0F);
  ASSERT_EQ(qorsVarColumn_32f_D2(column.data(), kOdd + 1, 1, &zero, &variance, 1), qorStatusOk);  // squares end at 2^24
  EXPECT_BITS(variance, kBelowOne);
  ASSERT_EQ(qorsVarColumn_32f_D2L(rows.data(), kOdd + 1, &zero, &variance, 1), qorStatusOk);
  EXPECT_BITS(variance, 1.0F);
  for (std::size_t r = 1; r < column.size(); r += 2) column[r] = -1.0F, rows[r] = &ones[1];
  for (const bool listed : {false, true}) {  // a mean of zero, squares of 2^24 + 2: times 2^-24 it would be 1 + 2^-23
    ASSERT_EQ(listed ? qorsMeanVarColumn_32f_D2L(rows.data(), kOdd + 1, &mean, &variance, 1)
                     : qorsMeanVarColumn_32f_D2(column.data(), kOdd + 1, 1, &mean, &variance, 1),
              qorStatusOk);
    EXPECT_BITS(mean, 0.0F);
    EXPECT_BITS(variance, 1.0F) << listed;
  }
  alignas(16) const int16_t shorts[3] = {0, 1, 0};  // off the boundary: truncated
  std::vector<const int16_t*> shortRows(kOdd + 1, &shorts[1]);
  int16_t whole = 77;
  ASSERT_EQ(qorsMeanColumn_16s_D2L(shortRows.data(), kOdd, &whole, 1), qorStatusOk);
  EXPECT_BITS(whole, int16_t{1});
  shortRows[5] = &shorts[0];
  ASSERT_EQ(qorsVarColumn_16s_D2LSfs(shortRows.data(), kOdd + 1, &shorts[0], &whole, 1, 0), qorStatusOk);
  EXPECT_BITS(whole, int16_t{0});
}

}  // namespace
