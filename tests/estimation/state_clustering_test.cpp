// Decision-tree state clustering: bits against the plain model on both paths, markers and warnings, faults.
#include "model/state_clustering.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <type_traits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

template <class T>
struct Members;
template <>
struct Members<float> {
  static constexpr auto inverse = qorsDcsClustLAccumulate_32f;
  static constexpr auto direct = qorsDcsClustLAccumulate_DirectVar_32f;
  static constexpr auto compute = qorsDcsClustLCompute_32f64f;
};
template <>
struct Members<double> {
  static constexpr auto inverse = qorsDcsClustLAccumulate_64f;
  static constexpr auto direct = qorsDcsClustLAccumulate_DirectVar_64f;
  static constexpr auto compute = qorsDcsClustLCompute_64f;
};

template <class T>
class StateClustering : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(StateClustering, Reals, );

TYPED_TEST(StateClustering, Accumulate) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int places = 0; places < 16; ++places) {  // which of the four vectors lie off a boundary
      for (const kit::Random::Kind kind : kit::kKinds) {
        const auto mean = random.vector<T>(length, kind), variance = random.vector<T>(length, kind);
        const auto place = [&](int bit) { return places & bit ? kit::Place::kOddStart : kit::Place::kAligned; };
        const kit::Area<T> m(mean, place(1)), v(variance, place(2)), s(length, place(4)), q(length, place(8));
        const T occupancy = static_cast<T>(random.real(-5, 300));
        s.data()[0] = q.data()[0] = T(99);  // nothing is added to what stood there
        const bool fast = length >= 8 && places == 0;
        const auto expected =
            fast ? model::accumulateFast(mean, variance, occupancy) : model::accumulateInverse(mean, variance, occupancy);
        ASSERT_EQ(Members<T>::inverse(m.data(), v.data(), s.data(), q.data(), length, occupancy), qorStatusOk);
        ASSERT_BITS(s.values(), expected.sum) << "length " << length << " places " << places;
        ASSERT_BITS(q.values(), expected.squares) << "length " << length << " places " << places << " kind " << kind;
        const auto direct = model::accumulateDirect(mean, variance, occupancy);
        ASSERT_EQ(Members<T>::direct(m.data(), v.data(), s.data(), q.data(), length, occupancy), qorStatusOk);
        ASSERT_BITS(s.values(), direct.sum);
        ASSERT_BITS(q.values(), direct.squares) << "length " << length << " places " << places << " kind " << kind;
        ASSERT_TRUE(s.edgesKept() && q.edgesKept());
      }
    }
  }
}

TYPED_TEST(StateClustering, EightAlignedElementsTakeAnotherWayThanSeven) {
  using T = TypeParam;
  kit::Random random;
  int64_t different = 0;
  for (int trial = 0; trial < 50; ++trial) {
    const auto mean = random.vector<T>(8), variance = random.vector<T>(8);
    const kit::Area<T> m(mean, kit::Place::kAligned), v(variance, kit::Place::kAligned), s(8, kit::Place::kAligned),
        q(8, kit::Place::kAligned), q7(8, kit::Place::kAligned);
    ASSERT_EQ(Members<T>::inverse(m.data(), v.data(), s.data(), q.data(), 8, T(3)), qorStatusOk);
    ASSERT_EQ(Members<T>::inverse(m.data(), v.data(), s.data(), q7.data(), 7, T(3)), qorStatusOk);
    for (int i = 0; i < 7; ++i) different += q[i] != q7[i];
  }
  EXPECT_GT(different, 0);
}

TYPED_TEST(StateClustering, AZeroVarianceGivesInfinityOnBothPaths) {
  using T = TypeParam;
  for (const int32_t length : {7, 8, 9}) {
    const std::vector<T> mean(static_cast<std::size_t>(length), T(1)), zero(static_cast<std::size_t>(length), T(0));
    const kit::Area<T> m(mean, kit::Place::kAligned), v(zero, kit::Place::kAligned), s(length, kit::Place::kAligned),
        q(length, kit::Place::kAligned);
    ASSERT_EQ(Members<T>::inverse(m.data(), v.data(), s.data(), q.data(), length, T(2)), qorStatusOk);
    if (std::is_same_v<T, float> || length == 7) {  // in double the shared division makes it 0 * infinity
      for (int32_t i = 0; i < length; ++i) EXPECT_EQ(q[i], std::numeric_limits<T>::infinity()) << length << " " << i;
    }
  }
}

TEST(DcsClustLAccumulate, ASharedDivisionShowsItsOverflow) {
  const std::vector<double> mean(8, 0.0), variance(8, 1e200);
  const kit::Area<double> m(mean, kit::Place::kAligned), v(variance, kit::Place::kAligned), s(8, kit::Place::kAligned),
      q(8, kit::Place::kAligned);
  ASSERT_EQ(qorsDcsClustLAccumulate_64f(m.data(), v.data(), s.data(), q.data(), 8, 2.0), qorStatusOk);
  EXPECT_EQ(q[0], 0.0);
  ASSERT_EQ(qorsDcsClustLAccumulate_64f(m.data(), v.data(), s.data(), q.data(), 7, 2.0), qorStatusOk);
  EXPECT_EQ(q[0], 2e-200);
}

// ---- Likelihood ----

TYPED_TEST(StateClustering, Compute) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int trial = 0; trial < 24; ++trial) {
      auto sum = random.vector<T>(length), squares = random.vector<T>(length);
      const T occupancy = trial == 20   ? std::numeric_limits<T>::denorm_min()
                          : trial == 21 ? std::numeric_limits<T>::quiet_NaN()
                          : trial == 22 ? T(0)
                          : trial == 23 ? T(-3)
                                        : static_cast<T>(random.real(0.001, 100));
      for (std::size_t i = 0; i < sum.size(); ++i) squares[i] = std::fabs(squares[i]) + sum[i] * sum[i] / occupancy;
      const auto i = static_cast<std::size_t>(random.integer(0, length - 1)), k = sum.size() - 1 - i;
      if (trial % 4 == 1) squares[i] = sum[i] = T(0);
      if (trial % 4 == 2) squares[i] = T(-1), squares[k] = sum[k] = T(0);
      if (trial % 4 == 3) squares[i] = random.nasty<T>();
      const auto expected = model::clusterLikelihood(sum, squares, static_cast<double>(occupancy));
      const kit::Area<T> s(sum, kit::kPlaces[trial % 3]), q(squares, kit::kPlaces[trial % 3]);
      double result = 55;
      ASSERT_EQ(Members<T>::compute(s.data(), q.data(), length, &result, occupancy), expected.status);
      if (expected.status == qorStatusBadStatistic) {
        ASSERT_EQ(result, 55.0);
      } else {  // each of length logarithms and additions, grouped otherwise, moves the sum by half a unit of its magnitude
        const double bound = std::isfinite(expected.magnitude) ? expected.magnitude * (length + 8) * 0x1p-52 : 0;
        ASSERT_TRUE(kit::within(&result, &expected.value, 1, bound));
      }
    }
  }
}

TYPED_TEST(StateClustering, Markers) {
  using T = TypeParam;
  std::vector<T> sum = {T(1), T(2), T(3)}, squares = {T(9), T(9), T(9)};
  double result = 55;
  const auto compute = [&](T occupancy) { return Members<T>::compute(sum.data(), squares.data(), 3, &result, occupancy); };
  EXPECT_EQ(compute(T(-1)), qorStatusBadStatistic);
  EXPECT_EQ(result, 55);
  EXPECT_EQ(compute(T(0)), qorStatusZeroOccupancy);
  EXPECT_EQ(result, -1.0e10);
  EXPECT_EQ(compute(-T(0)), qorStatusZeroOccupancy);
  squares[1] = T(2);  // 2 * 2 = 2^2: all data equal
  squares[2] = T(1);
  EXPECT_EQ(compute(T(2)), qorStatusLogZero);
  EXPECT_EQ(result, -std::numeric_limits<double>::infinity());
  squares[0] = T(0.25);  // a negative one in front of the zero
  EXPECT_EQ(compute(T(2)), qorStatusLogNegative);
  EXPECT_EQ(std::bit_cast<uint64_t>(result), 0xFFF8000000000000U);
  squares = {std::numeric_limits<T>::quiet_NaN(), T(9), T(9)};
  EXPECT_EQ(compute(T(2)), qorStatusOk);
  EXPECT_TRUE(std::isnan(result));
  squares[1] = T(2);  // a NaN hides nothing that stands behind it
  EXPECT_EQ(compute(T(2)), qorStatusLogZero);
}

// Pooled statistics give the likelihood of all frames under their own Gaussian.
TEST(DcsClustL, IsTheLikelihoodOfThePooledData) {
  const double mean1 = 1.0, var1 = 0.5, n1 = 30, mean2 = -2.0, var2 = 2.0, n2 = 50;
  double s[2], q[2], result;
  ASSERT_EQ(qorsDcsClustLAccumulate_DirectVar_64f(&mean1, &var1, &s[0], &q[0], 1, n1), qorStatusOk);
  const double inverse2 = 1 / var2;
  ASSERT_EQ(qorsDcsClustLAccumulate_64f(&mean2, &inverse2, &s[1], &q[1], 1, n2), qorStatusOk);
  const double sum = s[0] + s[1], squares = q[0] + q[1], n = n1 + n2;
  ASSERT_EQ(qorsDcsClustLCompute_64f(&sum, &squares, 1, &result, n), qorStatusOk);
  const double mean = sum / n, variance = squares / n - mean * mean;
  EXPECT_NEAR(result, -0.5 * n * (1 + std::log(2 * 3.14159265358979323846) + std::log(variance)), 1e-10);
}

// ---- Faults, environment ----

template <class T>
struct Args {
  const T *first, *second;
  T *sum, *squares;
  double* result;
  int32_t length;
  T occupancy;
};

TYPED_TEST(StateClustering, Faults) {
  using T = TypeParam;
  using A = Args<T>;
  const std::vector<T> x(6, T(2));
  std::vector<T> s(6, T(3)), q(6, T(4));
  double result = 5;
  const A valid{x.data(), x.data(), s.data(), q.data(), &result, 6, T(9)};
  const std::vector<kit::Watched> watched = {{s.data(), 6}, {q.data(), 6}, {&result, 1}};
  for (const auto call : {Members<T>::inverse, Members<T>::direct}) {
    kit::FaultTable<A> table(
        valid, [call](const A& a) { return call(a.first, a.second, a.sum, a.squares, a.length, T(-1)); }, watched);
    table.fault("null first", qorStatusNullPointer, &A::first, nullptr);
    table.fault("null second", qorStatusNullPointer, &A::second, nullptr);
    table.fault("null sum", qorStatusNullPointer, &A::sum, nullptr);
    table.fault("null squares", qorStatusNullPointer, &A::squares, nullptr);
    table.fault("length zero", qorStatusBadSize, &A::length, 0);
    table.check();
  }
  kit::FaultTable<A> table(
      valid, [](const A& a) { return Members<T>::compute(a.first, a.second, a.length, a.result, a.occupancy); }, watched);
  table.fault("null first", qorStatusNullPointer, &A::first, nullptr);
  table.fault("null second", qorStatusNullPointer, &A::second, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  table.fault("occupancy negative", qorStatusBadStatistic, &A::occupancy, T(-1));
  table.check();
}

TYPED_TEST(StateClustering, KeepsTheEnvironment) {
  using T = TypeParam;
  kit::Random random;
  const auto a = random.vector<T>(16, kit::Random::kNasty), b = random.vector<T>(16, kit::Random::kNasty);
  std::vector<T> s(16), q(16);
  double result;
  kit::expectEnvironmentKept([&] { Members<T>::inverse(a.data(), b.data(), s.data(), q.data(), 16, T(3)); });
  kit::expectEnvironmentKept([&] { Members<T>::compute(a.data(), b.data(), 16, &result, T(3)); });
}

}  // namespace
