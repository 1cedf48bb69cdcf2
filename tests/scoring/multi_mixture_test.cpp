// Multi-mixture scorers: every member in bits against the plain model.
#include <gtest/gtest.h>

#include "scoring/gaussian_model.h"

namespace {

using model::Frame;

template <class Combine, class T, class R, class S, class Strided, class Listed>
void expectModels(Strided strided, Listed listed, S (*score)(const Frame<T>&, R, int32_t)) {
  constexpr bool kInPlace = cases::ModelShape<Listed>::kInPlace;
  kit::Random random;
  cases::forEachShape([&](int32_t width, int32_t count, kit::Random::Kind kind, kit::Place place) {
    const cases::Model<T, R> m(random, width, count, kind, place);
    const std::vector<R> vals = m.vals.values(), old = kInPlace ? vals : cases::oldResults<R>(random, count);
    const auto expected = cases::expected<Combine>(m.frames(false), vals, old, m.sf, score);
    kit::Area<R> first(old, place), second(old, place);
    ASSERT_EQ(cases::call(strided, m.args(first.data())), qorStatusOk);
    ASSERT_BITS(first.values(), expected) << "sf " << m.sf;
    ASSERT_EQ(cases::call(listed, m.args(second.data())), qorStatusOk);
    ASSERT_BITS(second.values(), expected) << "rows, sf " << m.sf;
    ASSERT_BITS(m.vals.values(), vals);
    ASSERT_TRUE(m.untouched() && first.edgesKept() && second.edgesKept());
  });
}

TEST(LogGaussMultiMix, Real) {
  expectModels<cases::Write>(qorsLogGaussMultiMix_32f_D2, qorsLogGaussMultiMix_32f_D2L, model::plainScore<float, float>);
  expectModels<cases::Write>(qorsLogGaussMultiMix_64f_D2, qorsLogGaussMultiMix_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGaussMultiMix, Int16) {
  expectModels<cases::Write>(qorsLogGaussMultiMix_16s32s_D2Sfs, qorsLogGaussMultiMix_16s32s_D2LSfs, model::truncatedScore);
  expectModels<cases::Write>(qorsLogGaussMultiMix_Scaled_16s32f_D2, qorsLogGaussMultiMix_Scaled_16s32f_D2L, model::scaledScore);
  expectModels<cases::Write>(qorsLogGaussMultiMix_Low_16s32s_D2Sfs, qorsLogGaussMultiMix_Low_16s32s_D2LSfs, model::lowScore);
  expectModels<cases::Write>(qorsLogGaussMultiMix_LowScaled_16s32f_D2, qorsLogGaussMultiMix_LowScaled_16s32f_D2L,
                             model::lowScaledScore);
}

TEST(LogGaussMaxMultiMix, Real) {
  expectModels<cases::KeepMax>(qorsLogGaussMaxMultiMix_32f_D2, qorsLogGaussMaxMultiMix_32f_D2L, model::plainScore<float, float>);
  expectModels<cases::KeepMax>(qorsLogGaussMaxMultiMix_64f_D2, qorsLogGaussMaxMultiMix_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGaussMaxMultiMix, Int16) {
  expectModels<cases::KeepMaxThroughFloat>(qorsLogGaussMaxMultiMix_16s32s_D2Sfs, qorsLogGaussMaxMultiMix_16s32s_D2LSfs,
                                           model::limitedScore);
  expectModels<cases::KeepMax>(qorsLogGaussMaxMultiMix_Scaled_16s32f_D2, qorsLogGaussMaxMultiMix_Scaled_16s32f_D2L,
                               model::scaledScore);
  expectModels<cases::KeepMaxTowardZero>(qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs, qorsLogGaussMaxMultiMix_Low_16s32s_D2LSfs,
                                         model::lowScore);
  expectModels<cases::KeepMax>(qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2, qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2L,
                               model::lowScaledScore);
}

TEST(LogGaussAddMultiMix, EveryMember) {
  expectModels<cases::LogAdd>(qorsLogGaussAddMultiMix_32f_D2, qorsLogGaussAddMultiMix_32f_D2L, model::plainScore<float, float>);
  expectModels<cases::LogAdd>(qorsLogGaussAddMultiMix_64f_D2, qorsLogGaussAddMultiMix_64f_D2L, model::plainScore<double, double>);
  expectModels<cases::LogAdd>(qorsLogGaussAddMultiMix_Scaled_16s32f_D2, qorsLogGaussAddMultiMix_Scaled_16s32f_D2L,
                              model::scaledScore);
  expectModels<cases::LogAdd>(qorsLogGaussAddMultiMix_LowScaled_16s32f_D2, qorsLogGaussAddMultiMix_LowScaled_16s32f_D2L,
                              model::lowScaledScore);
}

TEST(MahDistMultiMix, Real) {
  expectModels<cases::Write>(qorsMahDistMultiMix_32f_D2, qorsMahDistMultiMix_32f_D2L, model::realDistance<float, float>);
  expectModels<cases::Write>(qorsMahDistMultiMix_64f_D2, qorsMahDistMultiMix_64f_D2L, model::realDistance<double, double>);
}

// ---- Named cases ----

TEST(LogGaussMultiMix, ASecondCallAddsTheDistanceAgain) {
  const float means[] = {1, 2, 3, 4}, variances[] = {1, 1, 2, 2}, x[] = {0, 0};
  float slots[] = {10, 20};
  for (int i = 0; i < 2; ++i) ASSERT_EQ(qorsLogGaussMultiMix_32f_D2(means, variances, 2, x, 2, slots, 2), qorStatusOk);
  EXPECT_EQ(slots[0], 10 - 2 * 2.5F);
  EXPECT_EQ(slots[1], 20 - 2 * 25.0F);
}

TEST(LogGaussMaxMultiMix, AnOldResultThatWinsIsKeptOrRoundedToAFloat) {
  const int16_t mean[] = {100}, variance[] = {100}, x[] = {0};
  const int32_t val[] = {-5};
  int32_t low = 16777217, through = 16777217;
  ASSERT_EQ(qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(mean, variance, 1, x, 1, val, &low, 1, 0), qorStatusOk);
  ASSERT_EQ(qorsLogGaussMaxMultiMix_16s32s_D2Sfs(mean, variance, 1, x, 1, val, &through, 1, 0), qorStatusOk);
  EXPECT_EQ(low, 16777217);
  EXPECT_EQ(through, 16777216);
}

TEST(LogGaussMaxMultiMix, ALimitedScoreWinsAsTheMostNegativeValue) {
  const int16_t mean[] = {100}, variance[] = {-32768}, x[] = {0};  // minus a negative sum
  const int32_t val[] = {INT32_MAX};
  int32_t result = 5;
  ASSERT_EQ(qorsLogGaussMaxMultiMix_16s32s_D2Sfs(mean, variance, 1, x, 1, val, &result, 1, -1), qorStatusOk);
  EXPECT_EQ(result, INT32_MIN);
}

// Features far from the origin keep their scores: the expanded square x^2 - 2 x m + m^2 loses them.
TEST(LogGaussMultiMix, AnOffsetOfAThousandDeviationsChangesNothing) {
  kit::Random random;
  constexpr int32_t kWidth = 39, kCount = 50;
  const float offset = 1024.0F;  // standard deviations are 1; the sums below stay exact in the features themselves
  std::vector<float> means, variances(kWidth * kCount, 1.0F), x, farMeans, farX;
  for (int i = 0; i < kWidth * kCount; ++i) means.push_back(static_cast<float>(random.integer(-300, 300)) / 128.0F);
  for (int i = 0; i < kWidth; ++i) x.push_back(static_cast<float>(random.integer(-300, 300)) / 128.0F);
  for (const float m : means) farMeans.push_back(m + offset);
  for (const float v : x) farX.push_back(v + offset);
  std::vector<float> near(kCount, 0.0F), far(kCount, 0.0F), worst(1, 0.0F);
  ASSERT_EQ(qorsLogGaussMultiMix_32f_D2(means.data(), variances.data(), kWidth, x.data(), kWidth, near.data(), kCount),
            qorStatusOk);
  ASSERT_EQ(qorsLogGaussMultiMix_32f_D2(farMeans.data(), variances.data(), kWidth, farX.data(), kWidth, far.data(), kCount),
            qorStatusOk);
  EXPECT_BITS(far, near);
  for (int32_t g = 0; g < kCount; ++g) {  // the expanded form, in float, is off by more than a tenth somewhere
    float xx = 0, xm = 0, mm = 0;
    for (int32_t c = 0; c < kWidth; ++c) {
      const float a = farX[static_cast<std::size_t>(c)], b = farMeans[static_cast<std::size_t>(g * kWidth + c)];
      xx += a * a, xm += a * b, mm += b * b;
    }
    worst[0] = std::max(worst[0], std::fabs((xx - 2 * xm + mm) * -0.5F - near[static_cast<std::size_t>(g)]));
  }
  EXPECT_GT(worst[0], 0.1F);
}

}  // namespace
