// Frame-block scorers: named cases, and what the caller's rounding mode may change.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>

#include "scoring/frame_block_calls.h"
#include "scoring/gaussian_cases.h"

namespace {

// One frame is rounded, a block is truncated.
TEST(LogGauss, OneFrameIsTheSingleScoreUpToItsRounding) {
  const int16_t x[] = {3}, mean[] = {0}, variance[] = {3};  // 27 / 4 = 6.75
  int32_t block = 0, single = 0;
  ASSERT_EQ(qorsLogGauss_16s32s_D2Sfs(x, 1, mean, variance, 1, &block, 1, 0, 1), qorStatusOk);
  ASSERT_EQ(qorsLogGaussSingle_16s32s_Sfs(x, mean, variance, 1, &single, 0, 1), qorStatusOk);
  EXPECT_EQ(block, -6);
  EXPECT_EQ(single, -7);
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    const auto a = random.vector<float>(n), m = random.vector<float>(n), v = random.vector<float>(n);
    float one = 0, alone = 0;
    ASSERT_EQ(qorsLogGauss_32f_D2(a.data(), n, m.data(), v.data(), n, &one, 1, 3), qorStatusOk);
    ASSERT_EQ(qorsLogGaussSingle_32f(a.data(), m.data(), v.data(), n, &alone, 3), qorStatusOk);
    ASSERT_BITS(one, alone) << n;
  }
}

TEST(LogGaussMax, AnOldResultThatWinsComesBackRoundedToAFloat) {
  const int16_t x[] = {0}, mean[] = {100}, variance[] = {100};
  int32_t plain = 16777217, unit = 16777217, low = 16777217, unitLow = 16777217;
  ASSERT_EQ(qorsLogGaussMax_16s32s_D2Sfs(x, 1, mean, variance, 1, &plain, 1, -5, 0), qorStatusOk);
  ASSERT_EQ(qorsLogGaussMax_IdVar_16s32s_D2Sfs(x, 1, mean, 1, &unit, 1, -5, 0), qorStatusOk);
  ASSERT_EQ(qorsLogGaussMax_Low_16s32s_D2Sfs(x, 1, mean, variance, 1, &low, 1, -5, 0), qorStatusOk);
  ASSERT_EQ(qorsLogGaussMax_IdVarLow_16s32s_D2Sfs(x, 1, mean, 1, &unitLow, 1, -5, 0), qorStatusOk);
  EXPECT_EQ(plain, 16777216);
  EXPECT_EQ(unit, 16777216);
  EXPECT_EQ(low, 16777216);
  EXPECT_EQ(unitLow, 16777216);
  int32_t odd = 16777219;  // toward zero, not to nearest (16777220)
  ASSERT_EQ(qorsLogGaussMax_16s32s_D2Sfs(x, 1, mean, variance, 1, &odd, 1, -5, 0), qorStatusOk);
  EXPECT_EQ(odd, 16777218);
}

TEST(LogGaussMax, ATallBlock) {
  constexpr int32_t kHeight = 1003, kWidth = 5;
  kit::Random random;
  const auto x = random.vector<double>(kHeight * kWidth), mean = random.vector<double>(kWidth);
  const std::vector<double> old = cases::oldResults<double>(random, kHeight);
  std::vector<double> whole = old, scores(kHeight);
  ASSERT_EQ(qorsLogGaussMax_IdVar_64f_D2(x.data(), kWidth, mean.data(), kWidth, whole.data(), kHeight, -3), qorStatusOk);
  ASSERT_EQ(qorsLogGauss_IdVar_64f_D2(x.data(), kWidth, mean.data(), kWidth, scores.data(), kHeight, -3), qorStatusOk);
  for (std::size_t i = 0; i < old.size(); ++i) scores[i] = scores[i] > old[i] ? scores[i] : old[i];
  EXPECT_BITS(whole, scores);
}

// Integer results are formed toward zero throughout, whatever mode the caller computes in; others follow the caller.
TEST(LogGaussMax, IntegerResultsDoNotFollowTheCallersMode) {
  constexpr int32_t kHeight = 9, kWidth = 13;
  kit::Random random;
  for (int round = 0; round < 20; ++round) {
    const auto x = random.vector<int16_t>(kHeight * kWidth), mean = random.vector<int16_t>(kWidth);
    const auto variance = random.vector<int16_t>(kWidth, kit::Random::kSmall);
    const std::vector<int32_t> old(kHeight, -(1 << 29));
    const int32_t sf = static_cast<int32_t>(random.integer(-2, 20)), val = static_cast<int32_t>(random.integer(-99999, 99999));
    const auto run = [&](int mode) {
      std::vector<int32_t> first = old, second = old;
      std::fesetround(mode);
      qorsLogGaussMax_16s32s_D2Sfs(x.data(), kWidth, mean.data(), variance.data(), kWidth, first.data(), kHeight, val, sf);
      qorsLogGaussMax_Low_16s32s_D2Sfs(x.data(), kWidth, mean.data(), variance.data(), kWidth, second.data(), kHeight, val, sf);
      std::fesetround(FE_TONEAREST);
      first.insert(first.end(), second.begin(), second.end());
      return first;
    };
    const std::vector<int32_t> expected = run(FE_TONEAREST);
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD})
      ASSERT_BITS(run(mode), expected) << "mode " << mode << " sf " << sf;
  }
}

TEST(LogGaussAdd, OnTheFloorGivesTheScores) {
  kit::Random random;
  for (const int32_t width : {1, 2, 3, 4, 13}) {
    constexpr int32_t kHeight = 7;
    const auto x = random.vector<float>(kHeight * width), mean = random.vector<float>(width),
               variance = random.vector<float>(width);
    std::vector<float> scores(kHeight), sums(kHeight, -4500000.0F), unitScores(kHeight), unitSums(kHeight, -4500000.0F);
    ASSERT_EQ(qorsLogGauss_32f_D2(x.data(), width, mean.data(), variance.data(), width, scores.data(), kHeight, -2), qorStatusOk);
    ASSERT_EQ(qorsLogGaussAdd_32f_D2(x.data(), width, mean.data(), variance.data(), width, sums.data(), kHeight, -2), qorStatusOk);
    EXPECT_BITS(sums, scores) << width;
    ASSERT_EQ(qorsLogGauss_IdVar_32f_D2(x.data(), width, mean.data(), width, unitScores.data(), kHeight, -2), qorStatusOk);
    ASSERT_EQ(qorsLogGaussAdd_IdVar_32f_D2(x.data(), width, mean.data(), width, unitSums.data(), kHeight, -2), qorStatusOk);
    EXPECT_BITS(unitSums, unitScores) << width;
  }
}

// Scores and old results of one size, where the forms of the log addition differ in their last bits.
TEST(LogGaussAdd, TakesTheAccurateForm) {
  kit::Random random;
  int differ = 0;
  for (const int32_t count : {1, 2, 3, 4, 5, 9, 128, 129, 300}) {
    const auto n = static_cast<std::size_t>(count);
    std::vector<float> old, vals, expected, zeros(n, 0.0F), ones(n, 1.0F), blockExpected;
    for (int32_t i = 0; i < count; ++i) {
      old.push_back(static_cast<float>(random.real(-9, 0)));
      vals.push_back(static_cast<float>(random.real(-9, 0)));
      expected.push_back(model::logAddAccurate(vals.back(), old.back()));
      blockExpected.push_back(model::logAddAccurate(-4.0F, old.back()));
      differ += expected.back() != model::logAddFast(vals.back(), old.back());
    }
    std::vector<float> block = old, slots = old;
    ASSERT_EQ(qorsLogGaussAdd_32f_D2(zeros.data(), 1, zeros.data(), ones.data(), 1, block.data(), count, -4), qorStatusOk);
    ASSERT_BITS(block, blockExpected) << count;
    ASSERT_EQ(qorsLogGaussAddMultiMix_32f_D2(zeros.data(), ones.data(), 1, zeros.data(), 1, vals.data(), slots.data(), count),
              qorStatusOk);
    ASSERT_BITS(slots, expected) << count;
  }
  EXPECT_GT(differ, 0);
}

TEST(LogGaussAdd, TwoChunksAreTwoCalls) {
  constexpr int32_t kHeight = 129, kWidth = 6;
  kit::Random random;
  const auto x = random.vector<float>(kHeight * kWidth), mean = random.vector<float>(kWidth);
  const std::vector<float> variance(kWidth, 0.1F);
  std::vector<float> whole(kHeight, -20.0F), pieces = whole;
  ASSERT_EQ(qorsLogGaussAdd_32f_D2(x.data(), kWidth, mean.data(), variance.data(), kWidth, whole.data(), kHeight, -9), qorStatusOk);
  for (int32_t i = 0; i < kHeight; ++i) {
    ASSERT_EQ(qorsLogGaussAdd_32f_D2(x.data() + i * kWidth, kWidth, mean.data(), variance.data(), kWidth, pieces.data() + i, 1, -9),
              qorStatusOk);
  }
  EXPECT_BITS(whole, pieces);
}

}  // namespace
