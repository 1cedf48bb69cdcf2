// Single-frame scorers: every member in bits against the plain model.
#include <gtest/gtest.h>

#include "kit/core.h"
#include "scoring/gaussian_cases.h"

namespace {

using I = int32_t;
using model::Frame;

template <class T, class R>
struct Args {
  const T *x, *mean, *variance;
  I length;
  R* result;
  R val;
  I sf;
};

// The shape of an argument list tells which arguments a member takes.
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, R*, R), const Args<T, R>& a) {
  return f(a.x, a.mean, a.variance, a.length, a.result, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, R*, R, I), const Args<T, R>& a) {
  return f(a.x, a.mean, a.variance, a.length, a.result, a.val, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, R*, R), const Args<T, R>& a) {
  return f(a.x, a.mean, a.length, a.result, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, R*, R, I), const Args<T, R>& a) {
  return f(a.x, a.mean, a.length, a.result, a.val, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, R*), const Args<T, R>& a) {
  return f(a.x, a.mean, a.variance, a.length, a.result);
}

template <class F>
struct Takes {
  static constexpr bool kVariance = false;
};
template <class T, class... Rest>
struct Takes<QorStatus (*)(const T*, const T*, const T*, Rest...)> {
  static constexpr bool kVariance = true;
};

template <class T, class R, class Member>
void expectScores(Member member, R (*score)(const Frame<T>&, R, int32_t)) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (int round = 0; round < 27; ++round) {
      const auto kind = kit::kKinds[round % 3];
      const auto place = [&](int k) { return kit::kPlaces[(round / 3 + k * (round / 9)) % 3]; };
      const kit::Area<T> x(random.vector<T>(n, kind), place(0)), mean(random.vector<T>(n, kind), place(1)),
          variance(random.vector<T>(n, kind), place(2));
      const R val = cases::val<R>(random);
      const int32_t sf = cases::scaleFactor(random);
      const bool takesVariance = Takes<Member>::kVariance;
      const R expected = score({x.values(), mean.values(), takesVariance ? variance.values() : std::vector<T>()}, val, sf);
      R result = R(77);
      ASSERT_EQ(call(member, {x.data(), mean.data(), variance.data(), n, &result, val, sf}), qorStatusOk);
      ASSERT_BITS(result, expected) << "length " << n << " round " << round << " sf " << sf << " val " << val;
    }
  }
}

TEST(LogGaussSingle, Real) {
  expectScores(qorsLogGaussSingle_32f, model::foldedScore);
  expectScores(qorsLogGaussSingle_64f, model::plainScore<double, double>);
  expectScores(qorsLogGaussSingle_32f64f, model::plainScore<double, float>);
  expectScores(qorsLogGaussSingle_IdVar_32f, model::foldedScore);
  expectScores(qorsLogGaussSingle_IdVar_64f, model::plainScore<double, double>);
  expectScores(qorsLogGaussSingle_IdVar_32f64f, model::plainScore<double, float>);
}
TEST(LogGaussSingle, FloatSumsOfInt16) {
  expectScores(qorsLogGaussSingle_16s32s_Sfs, model::roundedScore);
  expectScores(qorsLogGaussSingle_Scaled_16s32f, model::groupScaledScore);
  expectScores(qorsLogGaussSingle_IdVar_16s32s_Sfs, model::roundedScore);
  expectScores(qorsLogGaussSingle_IdVarScaled_16s32f, model::groupScaledScore);
}
TEST(LogGaussSingle, IntegerSumsOfInt16) {
  expectScores(qorsLogGaussSingle_Low_16s32s_Sfs, model::lowScore);
  expectScores(qorsLogGaussSingle_LowScaled_16s32f, model::lowScaledScore);
  expectScores(qorsLogGaussSingle_IdVarLow_16s32s_Sfs, model::lowScore);
  expectScores(qorsLogGaussSingle_IdVarLowScaled_16s32f, model::unitLowScaledScore);
}
TEST(MahDistSingle, OneElementTypeOfSums) {
  expectScores(qorsMahDistSingle_32f, model::realDistance<float, float>);
  expectScores(qorsMahDistSingle_64f, model::realDistance<double, double>);
  expectScores(qorsMahDistSingle_32f64f, model::realDistance<double, float>);
  expectScores(qorsMahDistSingle_16s32f, model::shortDistance);
}

// The documented grouping of real sums is one of many: whatever it is, the score lies within rounding of the exact one.
TEST(LogGaussSingle, WithinRoundingOfTheExactScore) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    const Frame<float> f{random.vector<float>(n), random.vector<float>(n), random.vector<float>(n)};
    const Frame<double> g{random.vector<double>(n), random.vector<double>(n), random.vector<double>(n)};
    const auto expectNear = [&](const auto& frame, auto result, double unit) {
      const auto exact = model::exactSum(frame);
      const auto expected = static_cast<double>(3.0L - exact.sum / 2);
      // Three roundings a term, at most n in the sum, and three in the finish.
      const auto bound = static_cast<double>(exact.magnitude / 2 + 6) * unit * (n + 6);
      EXPECT_TRUE(kit::within(&result, &expected, 1, bound)) << n;
    };
    float result = 0;
    double wide = 0;
    ASSERT_EQ(qorsLogGaussSingle_32f(f.x.data(), f.mean.data(), f.variance.data(), n, &result, 3), qorStatusOk);
    expectNear(f, result, 0x1p-24);
    ASSERT_EQ(qorsLogGaussSingle_32f64f(f.x.data(), f.mean.data(), f.variance.data(), n, &wide, 3), qorStatusOk);
    expectNear(f, wide, 0x1p-53);
    ASSERT_EQ(qorsLogGaussSingle_64f(g.x.data(), g.mean.data(), g.variance.data(), n, &wide, 3), qorStatusOk);
    expectNear(g, wide, 0x1p-53);
  }
}

// ---- 16 bits: named cases ----

struct Scores {
  int32_t rounded, low, unitLow;
  float scaled, unitPair;
};
Scores scoresOf(const std::vector<int16_t>& x, const std::vector<int16_t>& mean, const std::vector<int16_t>& v, int32_t sf) {
  const auto n = static_cast<int32_t>(x.size());
  Scores s{};
  EXPECT_EQ(qorsLogGaussSingle_16s32s_Sfs(x.data(), mean.data(), v.data(), n, &s.rounded, 0, sf), qorStatusOk);
  EXPECT_EQ(qorsLogGaussSingle_Low_16s32s_Sfs(x.data(), mean.data(), v.data(), n, &s.low, 0, sf), qorStatusOk);
  EXPECT_EQ(qorsLogGaussSingle_IdVarLow_16s32s_Sfs(x.data(), mean.data(), n, &s.unitLow, 0, sf), qorStatusOk);
  EXPECT_EQ(qorsLogGaussSingle_Scaled_16s32f(x.data(), mean.data(), v.data(), n, &s.scaled, 0, sf), qorStatusOk);
  EXPECT_EQ(qorsLogGaussSingle_IdVarLowScaled_16s32f(x.data(), mean.data(), n, &s.unitPair, 0, sf), qorStatusOk);
  return s;
}

TEST(LogGaussSingle, DifferencesSaturateInGroupsOfEightOnly) {
  std::vector<int16_t> x(8, 0), mean(8, 0), v(8, 1);
  x[0] = 32767, mean[0] = -32768;
  EXPECT_EQ(scoresOf(x, mean, v, 15).scaled, -32767.0F * 32767.0F / 65536);
  EXPECT_EQ(scoresOf(x, mean, v, 15).rounded, -16383);  // 32767^2 / 65536 = 16383.00...
  x.resize(7), mean.resize(7), v.resize(7);
  EXPECT_EQ(scoresOf(x, mean, v, 15).scaled, -65535.0F * 65535.0F / 65536);
  EXPECT_EQ(scoresOf(x, mean, v, 15).rounded, -65534);
  // The integer form saturates in the remainder too, but not the last odd element with identity variance.
  const std::vector<int16_t> one{32767}, other{-32768}, unit{1};
  EXPECT_EQ(scoresOf(one, other, unit, 0).low, -(16383 * 32768));      // 32767^2 = 65536 * 16383 + 1
  EXPECT_EQ(scoresOf(one, other, unit, 0).unitLow, -(65534 * 32768));  // 65535^2 = 65536 * 65534 + 1
  EXPECT_EQ(scoresOf(one, other, unit, -1).unitPair, 131071.0F);       // the square of 65535 wraps to -131071
}

TEST(LogGaussSingle, ShiftsTruncateLaneByLaneAndGroupByGroup) {
  // d = 2 everywhere: the lower half of the square over two is 2, a pair of them 4; shifted right by 3, -4 is -1 in each lane.
  const std::vector<int16_t> two(8, 2), zero(8, 0), one(8, 1);
  EXPECT_EQ(scoresOf(two, zero, one, 3).low, -4);
  const std::vector<int16_t> longer(16, 2), zeros(16, 0), ones(16, 1);
  EXPECT_EQ(scoresOf(longer, zeros, ones, 3).low, -4);  // two groups share the lanes: -8 is shifted once
  const std::vector<int16_t> rest(12, 2), zeros12(12, 0), ones12(12, 1);
  EXPECT_EQ(scoresOf(rest, zeros12, ones12, 3).low, -6);  // the group of four is shifted by itself
}

TEST(LogGaussSingle, APositiveOverflowIsTheMostNegativeValue) {
  const std::vector<int16_t> x(8, 32767), mean(8, 0), v(8, -32768);
  EXPECT_EQ(scoresOf(x, mean, v, 0).rounded, INT32_MIN);
  EXPECT_EQ(scoresOf(x, mean, std::vector<int16_t>(8, 32767), 0).rounded, INT32_MIN);
}

TEST(LogGaussSingle, MinusOneDividesByOne) {
  const std::vector<int16_t> x{3}, mean{1}, v{5};
  EXPECT_EQ(scoresOf(x, mean, v, -1).rounded, -20);
  EXPECT_EQ(scoresOf(x, mean, v, 0).rounded, -10);
}

TEST(LogGaussSingle, RoundsInTheCallersMode) {
  const int16_t x[] = {3}, mean[] = {0}, v[] = {1};  // 9 / 4 = 2.25
  int32_t result = 0;
  for (const auto& [mode, expected] : {std::pair{FE_TONEAREST, -2}, {FE_DOWNWARD, -3}, {FE_UPWARD, -2}, {FE_TOWARDZERO, -2}}) {
    std::fesetround(mode);
    qorsLogGaussSingle_16s32s_Sfs(x, mean, v, 1, &result, 0, 1);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(result, expected);
  }
}

// ---- The 16-bit distance with an integer result ----

TEST(MahDistSingle, TwoRoadsOf16s32s) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (int round = 0; round < 24; ++round) {
      const auto kind = kit::kKinds[round % 3];
      const int odd = round / 3;  // which of the three vectors are not aligned
      const auto place = [&](int bit) { return (odd & bit) != 0 ? kit::Place::kOddStart : kit::Place::kAligned; };
      const kit::Area<int16_t> x(random.vector<int16_t>(n, kind), place(1)), mean(random.vector<int16_t>(n, kind), place(2)),
          v(random.vector<int16_t>(n, kind), place(4));
      const int32_t sf = cases::scaleFactor(random);
      int32_t result = 77, expected;
      ASSERT_EQ(qorsMahDistSingle_16s32s_Sfs(x.data(), mean.data(), v.data(), n, &result, sf), qorStatusOk);
      if (odd == 0) {
        expected = model::limitedAndRounded(model::groupedShortSum({x.values(), mean.values(), v.values()}));
      } else {
        __int128 sum = 0;
        for (int32_t i = 0; i < n; ++i) {
          const int64_t d = x[i] - mean[i];
          sum += d * d * v[i];
        }
        for (int64_t i = 0; i < sf && i < 64; ++i) sum = sum < 0 ? -((-sum + 1) / 2) : sum / 2;
        for (int64_t i = 0; i < -int64_t{sf} && i < 64; ++i) sum = static_cast<int64_t>(static_cast<uint64_t>(sum) * 2);
        expected = static_cast<int32_t>(sum < INT32_MIN ? INT32_MIN : sum > INT32_MAX ? INT32_MAX : sum);
      }
      ASSERT_BITS(result, expected) << "length " << n << " sf " << sf << " odd " << odd;
    }
  }
}

TEST(MahDistSingle, TheScaleFactorCountsOnUnalignedVectorsOnly) {
  alignas(16) const int16_t x[9] = {4, 4, 4, 4, 4, 4, 4, 4, 4}, mean[9] = {}, v[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  int32_t aligned = 0, unaligned = 0;
  ASSERT_EQ(qorsMahDistSingle_16s32s_Sfs(x, mean, v, 8, &aligned, 2), qorStatusOk);
  ASSERT_EQ(qorsMahDistSingle_16s32s_Sfs(x + 1, mean, v, 8, &unaligned, 2), qorStatusOk);
  EXPECT_EQ(aligned, 128);
  EXPECT_EQ(unaligned, 32);
}

}  // namespace
