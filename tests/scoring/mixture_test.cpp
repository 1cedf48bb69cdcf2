// Whole mixtures: every member in bits against the plain model.
#include <gtest/gtest.h>

#include "scoring/gaussian_model.h"

namespace {

using model::Frame;

// Chunks of 100 scores, from the second on with the result so far in front.
template <class R>
R mixtureOf(const std::vector<R>& scores) {
  R running = 0;
  for (std::size_t first = 0; first < scores.size(); first += 100) {
    std::vector<R> chunk;
    if (first > 0) chunk.push_back(running);
    for (std::size_t i = first; i < scores.size() && i < first + 100; ++i) chunk.push_back(scores[i]);
    running = model::logSum(chunk);
  }
  return running;
}

template <class T, class R, class Strided, class Listed>
void expectMixtures(Strided strided, Listed listed, R (*score)(const Frame<T>&, R, int32_t)) {
  kit::Random random;
  const auto check = [&](int32_t width, int32_t count, kit::Random::Kind kind, kit::Place place) {
    const cases::Model<T, R> m(random, width, count, kind, place);
    const auto frames = m.frames(cases::ModelShape<Listed>::kUnit);
    std::vector<R> scores;
    for (std::size_t g = 0; g < frames.size(); ++g) scores.push_back(score(frames[g], m.vals.values()[g], m.sf));
    const R expected = mixtureOf(scores);
    R result = R(77);
    ASSERT_EQ(cases::call(strided, m.args(&result)), qorStatusOk);
    ASSERT_BITS(result, expected) << "sf " << m.sf;
    result = R(77);
    ASSERT_EQ(cases::call(listed, m.args(&result)), qorStatusOk);
    ASSERT_BITS(result, expected) << "rows, sf " << m.sf;
    ASSERT_TRUE(m.untouched());
  };
  cases::forEachShape(check);
  for (const int32_t count : {199, 200, 201, 300, 1000}) check(5, count, kit::Random::kPlain, kit::Place::kAtGuard);
}

TEST(LogGaussMixture, Real) {
  expectMixtures(qorsLogGaussMixture_32f_D2, qorsLogGaussMixture_32f_D2L, model::plainScore<float, float>);
  expectMixtures(qorsLogGaussMixture_64f_D2, qorsLogGaussMixture_64f_D2L, model::plainScore<double, double>);
  expectMixtures(qorsLogGaussMixture_IdVar_32f_D2, qorsLogGaussMixture_IdVar_32f_D2L, model::plainScore<float, float>);
  expectMixtures(qorsLogGaussMixture_IdVar_64f_D2, qorsLogGaussMixture_IdVar_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGaussMixture, Int16) {
  expectMixtures(qorsLogGaussMixture_Scaled_16s32f_D2, qorsLogGaussMixture_Scaled_16s32f_D2L, model::groupScaledScore);
  expectMixtures(qorsLogGaussMixture_IdVarScaled_16s32f_D2, qorsLogGaussMixture_IdVarScaled_16s32f_D2L, model::groupScaledScore);
  expectMixtures(qorsLogGaussMixture_LowScaled_16s32f_D2, qorsLogGaussMixture_LowScaled_16s32f_D2L, model::lowScaledScore);
  expectMixtures(qorsLogGaussMixture_IdVarLowScaled_16s32f_D2, qorsLogGaussMixture_IdVarLowScaled_16s32f_D2L,
                 model::unitLowScaledScore);
}

// Scores of one size, where the grouping of the log additions shows: a Gaussian at the frame scores its val.
template <class R>
void expectGrouping(QorStatus (*mixture)(const R*, const R*, const R*, int32_t, int32_t, int32_t, const R*, R*)) {
  kit::Random random;
  const R x[] = {0};
  for (const int32_t count : {1, 2, 4, 5, 7, 8, 11, 99, 100, 101, 102, 106, 107, 108, 199, 200, 201, 207, 300, 1000}) {
    const std::vector<R> zeros(static_cast<std::size_t>(count), R(0)), ones(zeros.size(), R(1));
    std::vector<R> vals;
    for (int32_t g = 0; g < count; ++g) vals.push_back(static_cast<R>(random.real(-3, 0)));
    R result = 77;
    ASSERT_EQ(mixture(x, zeros.data(), ones.data(), count, 1, 1, vals.data(), &result), qorStatusOk);
    ASSERT_BITS(result, mixtureOf(vals)) << count;
  }
}

TEST(LogGaussMixture, ChunksOfAHundredInTheGroupingOfTheLogSum) {
  expectGrouping<float>(qorsLogGaussMixture_32f_D2);
  expectGrouping<double>(qorsLogGaussMixture_64f_D2);
}

TEST(LogGaussMixture, OneGaussianGivesItsScore) {
  const float x[] = {1, 2}, mean[] = {3, 4}, variance[] = {0.5F, 0.25F}, val[] = {-7};
  float result = 0;
  ASSERT_EQ(qorsLogGaussMixture_32f_D2(x, mean, variance, 1, 2, 2, val, &result), qorStatusOk);
  EXPECT_EQ(result, -7 - 1.5F);
}

TEST(LogGaussMixture, ValIsNotDoubled) {  // unlike one frame, where val + val overflows
  const float x[] = {0}, mean[] = {0}, variance[] = {1}, val[] = {3e38F};
  float result = 0, single = 0;
  ASSERT_EQ(qorsLogGaussMixture_32f_D2(x, mean, variance, 1, 1, 1, val, &result), qorStatusOk);
  ASSERT_EQ(qorsLogGaussSingle_32f(x, mean, variance, 1, &single, val[0]), qorStatusOk);
  EXPECT_EQ(result, 3e38F);
  EXPECT_TRUE(std::isinf(single));
}

}  // namespace
