// Log-domain addition, subtraction and sum: bits against the plain model, edges.
#include "model/log_arithmetic.h"

#include <gtest/gtest.h>

#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int kRounds = 5;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(), kInfinity = std::numeric_limits<double>::infinity();

// Log scores whose differences meet every range, the drop threshold and the floor; in the last round nasty values.
template <class T>
std::vector<T> scores(kit::Random& random, int32_t length, int round) {
  const double spread[] = {3.0, 30.0, 1e7, 2e10};
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    v.push_back(round == 4 ? random.nasty<T>() : static_cast<T>(random.real(-spread[round], 1.0)));
  }
  return v;
}

// Fixed-point scores: all of the range, or close to each other.
template <class Int>
std::vector<Int> fixedScores(kit::Random& random, int32_t length, int round) {
  if (round >= 3) return random.vector<Int>(length, round == 3 ? kit::Random::kPlain : kit::Random::kNasty);
  const int32_t spread[] = {20, 300, 30000};
  std::vector<Int> v;
  for (int32_t i = 0; i < length; ++i) v.push_back(static_cast<Int>(random.integer(-spread[round], spread[round] / 10)));
  return v;
}

constexpr int32_t kScaleFactors[] = {0, 1, 4, 7, 10, 20, -1, -3, 127, 150, 1075, 3000, -127, -128, -1024, INT32_MAX, INT32_MIN};

// ---- LogAdd ----

template <class T>
void expectAdds(QorStatus (*call)(const T*, T*, int32_t, int32_t), T (*model)(T, T), const std::vector<int32_t>& hints) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < kRounds; ++round) {
      const auto a = scores<T>(random, length, round), b = scores<T>(random, length, round);
      std::vector<T> expected;
      for (std::size_t i = 0; i < a.size(); ++i) expected.push_back(model(a[i], b[i]));
      for (const int32_t hint : hints) {
        const kit::Area<T> source(a, kit::kPlaces[(round + length) % 3]), result(b, kit::kPlaces[round % 3]);
        ASSERT_EQ(call(source.data(), result.data(), length, hint), qorStatusOk);
        ASSERT_BITS(result.values(), expected) << "length " << length << " round " << round << " hint " << hint;
        ASSERT_BITS(source.values(), a);
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}

TEST(LogAdd, FloatAccurate) { expectAdds<float>(qorsLogAdd_32f, model::logAddAccurate, {0, 2}); }
TEST(LogAdd, FloatFast) { expectAdds<float>(qorsLogAdd_32f, model::logAddFast, {1}); }
TEST(LogAdd, Double) { expectAdds<double>(qorsLogAdd_64f, model::logAddDouble, {0, 1, 2}); }

TEST(LogAdd, AnUnknownHintDoesNothing) {
  for (const int32_t hint : {-1, 3, INT32_MIN, INT32_MAX}) {
    const float a[5] = {1, 2, 3, 4, 5};
    const double c[5] = {1, 2, 3, 4, 5};
    float b[5] = {-1, -2, NAN, -4, -5};
    double d[5] = {-1, -2, kNaN, -4, -5};
    EXPECT_EQ(qorsLogAdd_32f(a, b, 5, hint), qorStatusOk);
    EXPECT_EQ(qorsLogAdd_64f(c, d, 5, hint), qorStatusOk);
    EXPECT_BITS(std::vector<float>(b, b + 5), std::vector<float>({-1, -2, NAN, -4, -5}));
    EXPECT_BITS(std::vector<double>(d, d + 5), std::vector<double>({-1, -2, kNaN, -4, -5}));
  }
}

template <class Int>
void expectScaledAdds(QorStatus (*call)(const Int*, Int*, int32_t, int32_t, int32_t)) {
  kit::Random random;
  for (const int32_t length : {1, 2, 3, 4, 5, 7, 8, 31, 127, 128, 129, 256, 300}) {
    for (int round = 0; round < kRounds; ++round) {
      for (const int32_t sf : kScaleFactors) {
        for (const int32_t hint : {0, 1, 2, 3, -7}) {
          const auto a = fixedScores<Int>(random, length, round), b = fixedScores<Int>(random, length, round);
          std::vector<Int> expected;
          for (std::size_t i = 0; i < a.size(); ++i) expected.push_back(model::logAddScaled(a[i], b[i], sf, hint));
          const kit::Area<Int> source(a, kit::kPlaces[(round + length) % 3]), result(b, kit::kPlaces[round % 3]);
          ASSERT_EQ(call(source.data(), result.data(), length, sf, hint), qorStatusOk);
          ASSERT_BITS(result.values(), expected) << "length " << length << " round " << round << " sf " << sf << " hint " << hint;
          ASSERT_TRUE(result.edgesKept());
        }
      }
    }
  }
}

TEST(LogAdd, Int16) { expectScaledAdds<int16_t>(qorsLogAdd_16s_Sfs); }
TEST(LogAdd, Int32) { expectScaledAdds<int32_t>(qorsLogAdd_32s_Sfs); }

TEST(LogAdd, TheFloorAppliesOnlyWhereTheSmallerTermIsDropped) {
  const float a[2] = {-5000000.0F, -4500000.0F};
  float b[2] = {-6000000.0F, -4500000.0F};
  ASSERT_EQ(qorsLogAdd_32f(a, b, 2, 0), qorStatusOk);
  EXPECT_BITS(b[0], -4500000.0F);
  EXPECT_BITS(b[1], -4499999.5F);
  const double c[2] = {-9500000000.0, -9100000000.0};
  double d[2] = {-9600000000.0, -9100000000.0};
  ASSERT_EQ(qorsLogAdd_64f(c, d, 2, 0), qorStatusOk);
  EXPECT_BITS(d[0], -10000000000.0);
  EXPECT_NEAR(d[1], -9100000000.0 + std::log(2.0), 2e-6);
}

TEST(LogAdd, ADifferenceAtTheThresholdStillCounts) {
  const auto least = static_cast<float>(model::FloatRanges::drop);
  const double leastDouble = model::DoubleRanges::drop;
  const float zeros[2] = {0.0F, 0.0F};
  const double wideZeros[2] = {0.0, 0.0};
  for (const int32_t hint : {0, 1}) {
    float b[2] = {least, std::nextafter(least, -100.0F)};
    ASSERT_EQ(qorsLogAdd_32f(zeros, b, 2, hint), qorStatusOk);
    EXPECT_GT(b[0], 1e-7F);
    EXPECT_BITS(b[1], 0.0F);
  }
  double b[2] = {leastDouble, std::nextafter(leastDouble, -100.0)};
  ASSERT_EQ(qorsLogAdd_64f(wideZeros, b, 2, 0), qorStatusOk);
  EXPECT_GT(b[0], 9e-11);
  EXPECT_BITS(b[1], 0.0);
}

TEST(LogAdd, EqualTermsGiveLogTwoMore) {
  const float a[1] = {-3.0F};
  for (const int32_t hint : {0, 1}) {
    float b[1] = {-3.0F};
    ASSERT_EQ(qorsLogAdd_32f(a, b, 1, hint), qorStatusOk);
    EXPECT_NEAR(static_cast<double>(b[0]), -3.0 + std::log(2.0), 2.4e-7);
  }
}

TEST(LogAdd, IntegersAreTruncatedTowardZero) {
  const int32_t a[2] = {0, -10};
  int32_t b[2] = {0, -10};  // log 2 = 0.69 and -10 + 0.69 = -9.31
  ASSERT_EQ(qorsLogAdd_32s_Sfs(a, b, 2, 0, 0), qorStatusOk);
  EXPECT_EQ(b[0], 0);
  EXPECT_EQ(b[1], -9);
}

// ---- LogSub ----

// Terms of which b is the smaller; round 1 has terms that are nearly equal.
template <class T>
void smallerTerms(kit::Random& random, std::vector<T>& a, std::vector<T>& b, int round) {
  const double spread[] = {3.0, 1e-6, 40.0, 1e7, 2e10};
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = static_cast<T>(random.real(-spread[round], 1.0));
    b[i] = a[i] - static_cast<T>(random.real(0.0, spread[round] / 2));
    if (!(b[i] < a[i])) b[i] = std::nextafter(a[i], -std::numeric_limits<T>::infinity());
  }
}

// The model takes the system's exp and log. Two exponentials may differ by two last places of 1, so t by three, and its logarithm by as
// much over t; to that come two last places of the logarithm and those of the sum. Rounded to float, nothing of it is left.
testing::AssertionResult sameDifference(float actual, float expected, float, float) { return kit::sameBits(actual, expected); }
testing::AssertionResult sameDifference(double actual, double expected, double a, double b) {
  const double t = -std::expm1(b - a);
  return kit::within(&actual, &expected, 1, 0x1p-52 * (2 / t + std::fabs(std::log(t)) + std::fabs(a)));
}

template <class T>
void expectSubtractions(QorStatus (*call)(const T*, T*, int32_t)) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < kRounds; ++round) {
      std::vector<T> a(static_cast<std::size_t>(length)), b(a.size()), expected;
      smallerTerms(random, a, b, round);
      for (std::size_t i = 0; i < a.size(); ++i) expected.push_back(model::logSub(a[i], b[i]));
      const kit::Area<T> source(a, kit::kPlaces[(round + length) % 3]), result(b, kit::kPlaces[round % 3]);
      ASSERT_EQ(call(source.data(), result.data(), length), qorStatusOk);
      for (std::size_t i = 0; i < a.size(); ++i) {
        ASSERT_TRUE(sameDifference(result.values()[i], expected[i], a[i], b[i])) << "length " << length << " round " << round;
      }
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(LogSub, Float) { expectSubtractions<float>(qorsLogSub_32f); }
TEST(LogSub, Double) { expectSubtractions<double>(qorsLogSub_64f); }

template <class Int>
void expectScaledSubtractions(QorStatus (*call)(const Int*, Int*, int32_t, int32_t)) {
  kit::Random random;
  for (const int32_t length : kit::shortLengths()) {
    for (int round = 0; round < kRounds; ++round) {
      for (const int32_t sf : kScaleFactors) {
        auto a = fixedScores<Int>(random, length, round), b = fixedScores<Int>(random, length, round);
        std::vector<Int> expected;
        for (std::size_t i = 0; i < a.size(); ++i) {
          if (a[i] < b[i]) std::swap(a[i], b[i]);
          if (a[i] == b[i]) a[i] == std::numeric_limits<Int>::max() ? --b[i] : ++a[i];
          if (int64_t{b[i]} - a[i] < INT32_MIN) b[i] = 0, a[i] = 1;  // the wrapped difference has its own test
          expected.push_back(model::logSubScaled(a[i], b[i], sf));
        }
        const kit::Area<Int> source(a, kit::kPlaces[(round + length) % 3]), result(b, kit::kPlaces[round % 3]);
        ASSERT_EQ(call(source.data(), result.data(), length, sf), qorStatusOk);
        ASSERT_BITS(result.values(), expected) << "length " << length << " round " << round << " sf " << sf;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}

TEST(LogSub, Int16) { expectScaledSubtractions<int16_t>(qorsLogSub_16s_Sfs); }
TEST(LogSub, Int32) { expectScaledSubtractions<int32_t>(qorsLogSub_32s_Sfs); }

TEST(LogSub, NearlyEqualTermsGiveTheFloorAndAnEmptyOneNothing) {
  const float a[5] = {1e-20F, -5.0F, INFINITY, -5e6F, -4500000.0F};
  float b[5] = {0.0F, -INFINITY, 0.0F, -INFINITY, -6e6F};  // exp(-1e-20) is 1
  ASSERT_EQ(qorsLogSub_32f(a, b, 5), qorStatusOk);
  EXPECT_BITS(std::vector<float>(b, b + 5), std::vector<float>({-4500000.0F, -5.0F, INFINITY, -4500000.0F, -4500000.0F}));
  const double c[5] = {1e-20, -5.0, kInfinity, -9.5e9, -9e9};
  double d[5] = {0.0, -kInfinity, 0.0, -kInfinity, -2e10};
  ASSERT_EQ(qorsLogSub_64f(c, d, 5), qorStatusOk);
  EXPECT_BITS(std::vector<double>(d, d + 5), std::vector<double>({-1e10, -5.0, kInfinity, -1e10, -9e9}));
}

TEST(LogSub, UndoesAnAddition) {
  const double a[3] = {-1.0, -100.0, 5.0};
  double sum[3] = {-2.0, -100.5, 4.0};
  const std::vector<double> b(sum, sum + 3);
  ASSERT_EQ(qorsLogAdd_64f(a, sum, 3, 0), qorStatusOk);
  double back[3] = {a[0], a[1], a[2]};
  ASSERT_EQ(qorsLogSub_64f(sum, back, 3), qorStatusOk);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(back[i], b[i], 1e-12);
}

TEST(LogSub, TermsThatAreNotSmallerAreRefusedAndNothingIsWritten) {
  const float a[4] = {1, 2, 3, 4};
  for (const float bad : {4.0F, 5.0F, NAN, INFINITY}) {
    float b[4] = {0, 1, 2, bad};
    EXPECT_EQ(qorsLogSub_32f(a, b, 4), qorStatusBadRange);
    EXPECT_BITS(std::vector<float>(b, b + 4), std::vector<float>({0, 1, 2, bad}));
  }
  const double c[2] = {1, -kInfinity};
  double d[2] = {0, -kInfinity};
  EXPECT_EQ(qorsLogSub_64f(c, d, 2), qorStatusBadRange);
  EXPECT_BITS(d[0], 0.0);
  const int16_t e[2] = {5, -32768};
  int16_t f[2] = {4, -32768};
  EXPECT_EQ(qorsLogSub_16s_Sfs(e, f, 2, 3), qorStatusBadRange);
  EXPECT_EQ(f[0], 4);
}

TEST(LogSub, TheDifferenceOfIntegersWraps) {
  const int32_t high[1] = {INT32_MAX}, low[1] = {INT32_MIN};
  int32_t b[1] = {INT32_MIN};  // b - a = 1 in 32 bits: refused
  EXPECT_EQ(qorsLogSub_32s_Sfs(high, b, 1, 0), qorStatusBadRange);
  b[0] = INT32_MAX;  // b - a = -1 in 32 bits: passes, and exp(d) is huge
  EXPECT_EQ(qorsLogSub_32s_Sfs(low, b, 1, 0), qorStatusOk);
  EXPECT_EQ(b[0], -4500000);
}

TEST(LogSub, TheLogarithmIsAddedUnscaled) {
  const int32_t a[1] = {1000};
  int32_t b[1] = {999};  // d = -1/4: log(1 - exp(-1/4)) = -1.509
  ASSERT_EQ(qorsLogSub_32s_Sfs(a, b, 1, 2), qorStatusOk);
  EXPECT_EQ(b[0], 998);
}

TEST(LogSub, A16BitResultIsTheLowHalf) {
  const int16_t a[1] = {-20000};
  int16_t b[1] = {-20001};
  ASSERT_EQ(qorsLogSub_16s_Sfs(a, b, 1, 100), qorStatusOk);  // d = -2^-100: 1 - exp(d) is 0, so the floor -4500000
  EXPECT_EQ(b[0], static_cast<int16_t>(static_cast<uint16_t>(-4500000 & 0xFFFF)));
}

// ---- LogSum ----

template <class T>
void expectSums(QorStatus (*call)(const T*, T*, int32_t, int32_t)) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < kRounds; ++round) {
      const kit::Area<T> source(scores<T>(random, length, round), kit::kPlaces[(round + length) % 3]),
          result(1, kit::Place::kAtGuard);
      const T expected = model::logSum(source.values());
      for (const int32_t hint : {0, 1, 2, 3, -1}) {
        result[0] = T(77);
        ASSERT_EQ(call(source.data(), result.data(), length, hint), qorStatusOk);
        ASSERT_BITS(result[0], expected) << "length " << length << " round " << round;
      }
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(LogSum, Float) { expectSums<float>(qorsLogSum_32f); }
TEST(LogSum, Double) { expectSums<double>(qorsLogSum_64f); }

template <class Int>
void expectScaledSums(QorStatus (*call)(const Int*, Int*, int32_t, int32_t, int32_t)) {
  kit::Random random;
  for (const int32_t length : {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 127, 128, 129, 130, 136, 256, 257, 400}) {
    for (int round = 0; round < kRounds; ++round) {
      for (const int32_t sf : kScaleFactors) {
        const kit::Area<Int> source(fixedScores<Int>(random, length, round), kit::kPlaces[(round + length) % 3]);
        Int result = 77;
        ASSERT_EQ(call(source.data(), &result, length, sf, round - 1), qorStatusOk);
        ASSERT_BITS(result, model::logSumScaled(source.values(), sf)) << "length " << length << " round " << round << " sf " << sf;
      }
    }
  }
}

TEST(LogSum, Int16) { expectScaledSums<int16_t>(qorsLogSum_16s_Sfs); }
TEST(LogSum, Int32) { expectScaledSums<int32_t>(qorsLogSum_32s_Sfs); }

TEST(LogSum, OneElementIsCopied) {
  const float odd[3] = {-0.0F, -8e6F, 1e-42F};
  for (const float x : odd) {
    float result = 7;
    ASSERT_EQ(qorsLogSum_32f(&x, &result, 1, 0), qorStatusOk);
    EXPECT_BITS(result, x);
  }
  const int32_t wide = 123456789;
  int32_t result = 0;
  ASSERT_EQ(qorsLogSum_32s_Sfs(&wide, &result, 1, 5, 0), qorStatusOk);
  EXPECT_EQ(result, wide);
}

TEST(LogSum, IsTheLogOfTheNumberOfEqualTerms) {
  const std::vector<float> x(1000, -70.0F);
  float result = 0;
  ASSERT_EQ(qorsLogSum_32f(x.data(), &result, 1000, 0), qorStatusOk);
  EXPECT_NEAR(static_cast<double>(result), -70.0 + std::log(1000.0), 1e-3);
  const std::vector<int16_t> y(1000, -70 * 64);
  int16_t fixed = 0;
  ASSERT_EQ(qorsLogSum_16s_Sfs(y.data(), &fixed, 1000, 6, 0), qorStatusOk);
  EXPECT_NEAR(fixed / 64.0, -70.0 + std::log(1000.0), 0.02);
}

// ---- Environment and memory ----

TEST(LogArithmetic, KeepsTheEnvironmentAndAllocatesNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random;
  const auto a = fixedScores<int32_t>(random, 300, 1);
  const auto x = scores<float>(random, 300, 1);
  kit::expectEnvironmentKept([&] {
    auto b = a;
    int32_t sum;
    qorsLogAdd_32s_Sfs(a.data(), b.data(), 300, 3, 0);
    qorsLogSum_32s_Sfs(a.data(), &sum, 300, 3, 0);
    b.assign(300, INT32_MIN / 4);
    qorsLogSub_32s_Sfs(a.data(), b.data(), 300, 3);
  });
  kit::expectEnvironmentKept([&] {
    auto y = x;
    float sum;
    qorsLogAdd_32f(x.data(), y.data(), 300, 0);
    qorsLogSum_32f(x.data(), &sum, 300, 0);
    y.assign(300, -1e6F);
    qorsLogSub_32f(x.data(), y.data(), 300);
  });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
