// The normalisation term of a diagonal Gaussian: against sums of logarithms in extended precision, marks, faults.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/model_preparation.h"
#include "qorsr.h"

namespace {

constexpr int32_t kLengths[] = {1, 2, 3, 7, 8, 9, 13, 39, 100, 511, 512, 513, 1023, 1025, 2000};

// Positive numbers: around 1, of any magnitude, or denormal.
template <class T>
std::vector<T> variances(kit::Random& random, int32_t length, int round) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    const double mantissa = random.real(1.0, 2.0);
    const auto exponent = static_cast<int>(random.integer(Limits::min_exponent - 1, Limits::max_exponent - 1));
    v.push_back(round == 0   ? static_cast<T>(random.real(0.01, 10.0))
                : round == 1 ? static_cast<T>(std::ldexp(mantissa, exponent))
                             : Limits::denorm_min() * static_cast<T>(random.integer(1, 1 << 20)));
  }
  return v;
}

// The result is T(n L) -+ T(sum): each of the two roundings, and that of the difference, costs half a unit in the last place of its
// value. The sum itself: every product of mantissas is off by at most 2^-53 in a relative sense, so 512 of them by 2^-44 in their
// logarithm, for each run; the sum of exponents times log 2 and the totals by a few units more.
template <class T>
double bound(int32_t length, double sum) {
  const double unit = static_cast<double>(std::numeric_limits<T>::epsilon());
  const int32_t runs = (length + 511) / 512;
  return runs * 0x1p-44 + 4 * runs * std::fabs(sum) * 0x1p-52 +
         unit * (2 * std::fabs(length * 1.8378770664093) + 2 * std::fabs(sum));
}

template <class T>
void expectConstants(QorStatus (*inverse)(const T*, int32_t, T*), QorStatus (*direct)(const T*, int32_t, T*)) {
  kit::Random random;
  for (const int32_t length : kLengths) {
    for (int round = 0; round < 3; ++round) {
      const kit::Area<T> v(variances<T>(random, length, round), kit::kPlaces[(length + round) % 3]);
      const double sum = static_cast<double>(model::sumOfLogs(v.values())), constant = length * 1.8378770664093;
      const double expected[2] = {constant - sum, constant + sum};
      T result[2];
      ASSERT_EQ(inverse(v.data(), length, &result[0]), qorStatusOk);
      ASSERT_EQ(direct(v.data(), length, &result[1]), qorStatusOk);
      ASSERT_TRUE(kit::within(result, expected, 2, bound<T>(length, sum))) << "length " << length << " round " << round;
    }
  }
}

TEST(UpdateGConst, Float) { expectConstants<float>(qorsUpdateGConst_32f, qorsUpdateGConst_DirectVar_32f); }
TEST(UpdateGConst, Double) { expectConstants<double>(qorsUpdateGConst_64f, qorsUpdateGConst_DirectVar_64f); }

TEST(UpdateGConst, UnitVariancesGiveTheConstantAlone) {
  const std::vector<float> ones(39, 1.0F);
  const std::vector<double> wideOnes(39, 1.0);
  float result;
  double wide;
  ASSERT_EQ(qorsUpdateGConst_32f(ones.data(), 39, &result), qorStatusOk);
  EXPECT_BITS(result, static_cast<float>(39 * 1.8378770664093));
  ASSERT_EQ(qorsUpdateGConst_DirectVar_64f(wideOnes.data(), 39, &wide), qorStatusOk);
  EXPECT_BITS(wide, 39 * 1.8378770664093);
}

// Powers of two have exact mantissas, so the sum of their logarithms is k log 2: both terms become floats before they are joined.
TEST(UpdateGConst, FloatTermsAreRoundedBeforeTheyAreJoined) {
  int differ = 0;
  for (const int32_t n : {1, 2, 3, 13, 39, 60, 513}) {
    for (const int exponent : {-20, -3, 1, 5, 31}) {
      const std::vector<float> v(static_cast<std::size_t>(n), std::ldexp(1.0F, exponent));
      const double constant = n * 1.8378770664093, logs = n * exponent * 0.693147180559945309417;
      float inverse, direct;
      ASSERT_EQ(qorsUpdateGConst_32f(v.data(), n, &inverse), qorStatusOk);
      ASSERT_EQ(qorsUpdateGConst_DirectVar_32f(v.data(), n, &direct), qorStatusOk);
      EXPECT_BITS(inverse, static_cast<float>(constant) - static_cast<float>(logs)) << n << " times 2^" << exponent;
      EXPECT_BITS(direct, static_cast<float>(constant) + static_cast<float>(logs)) << n << " times 2^" << exponent;
      differ += (inverse != static_cast<float>(constant - logs)) + (direct != static_cast<float>(constant + logs));
    }
  }
  EXPECT_GT(differ, 0) << "otherwise the cases show nothing";
}

TEST(UpdateGConst, InfinityIsAnOrdinaryElement) {
  const float v[3] = {1.0F, INFINITY, 2.0F};
  float inverse, direct;
  ASSERT_EQ(qorsUpdateGConst_32f(v, 3, &inverse), qorStatusOk);
  ASSERT_EQ(qorsUpdateGConst_DirectVar_32f(v, 3, &direct), qorStatusOk);
  EXPECT_BITS(inverse, -INFINITY);
  EXPECT_BITS(direct, INFINITY);
}

// Marks: the first element without a logarithm decides, wherever it stands.
template <class T>
void expectMarks(QorStatus (*call)(const T*, int32_t, T*), uint64_t pattern) {
  using Limits = std::numeric_limits<T>;
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  const T zero = 0, minus = -2, nan = Limits::quiet_NaN();
  struct Case {
    T first, second;
    QorStatus status;
  };
  const Case cases[] = {{zero, minus, qorStatusLogZero},
                        {-zero, minus, qorStatusLogZero},
                        {zero, nan, qorStatusLogZero},
                        {minus, zero, qorStatusLogNegative},
                        {minus, nan, qorStatusLogNegative},
                        {-Limits::denorm_min(), zero, qorStatusLogNegative},
                        {-Limits::infinity(), zero, qorStatusLogNegative},
                        {nan, zero, qorStatusOk},
                        {nan, minus, qorStatusOk},
                        {-nan, zero, qorStatusOk}};
  for (const Case& c : cases) {
    for (const std::size_t first : {0u, 1u, 7u, 8u, 511u, 512u, 600u}) {
      for (const std::size_t second : {first + 1, first + 8, std::size_t{1200}}) {
        std::vector<T> v(1201, T(1.5));
        v[first] = c.first;
        v[second] = c.second;
        T result = 77;
        ASSERT_EQ(call(v.data(), 1201, &result), c.status);
        if (c.status == qorStatusLogZero) {
          ASSERT_BITS(result, Limits::infinity());
        } else if (c.status == qorStatusLogNegative) {
          ASSERT_EQ(uint64_t{std::bit_cast<Bits>(result)}, pattern);
        } else {
          ASSERT_TRUE(std::isnan(result));
        }
      }
    }
  }
}

TEST(UpdateGConst, MarksOfFloats) {
  expectMarks<float>(qorsUpdateGConst_32f, 0xFFC00000u);
  expectMarks<float>(qorsUpdateGConst_DirectVar_32f, 0xFFC00000u);
}
TEST(UpdateGConst, MarksOfDoubles) {
  expectMarks<double>(qorsUpdateGConst_64f, 0xFFF8000000000000u);
  expectMarks<double>(qorsUpdateGConst_DirectVar_64f, 0xFFF8000000000000u);
}

template <class T>
void expectFaults(QorStatus (*call)(const T*, int32_t, T*)) {
  struct Args {
    const T* variances;
    int32_t length;
    T* result;
  };
  const T v[4] = {1, 2, 3, 4};
  T result = 7;
  kit::FaultTable<Args>({v, 4, &result}, [=](const Args& a) { return call(a.variances, a.length, a.result); }, {{&result, 1}})
      .fault("null variances", qorStatusNullPointer, &Args::variances, nullptr)
      .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .fault("length negative", qorStatusBadSize, &Args::length, INT32_MIN)
      .check();
}

TEST(UpdateGConst, Faults) {
  expectFaults<float>(qorsUpdateGConst_32f);
  expectFaults<float>(qorsUpdateGConst_DirectVar_32f);
  expectFaults<double>(qorsUpdateGConst_64f);
  expectFaults<double>(qorsUpdateGConst_DirectVar_64f);
}

TEST(UpdateGConst, KeepsTheEnvironmentAndAllocatesNothing) {
  const int64_t before = kit::Core::calls();
  const std::vector<float> v(1000, 1e-40F);
  float result;
  kit::expectEnvironmentKept([&] { qorsUpdateGConst_32f(v.data(), 1000, &result); });
  EXPECT_EQ(kit::Core::calls(), before);
}

// A density with the constant of a prepared Gaussian: log N(m; m, v) = -1/2 (n log 2 pi + sum log v).
TEST(UpdateGConst, HalfOfItIsTheLogDensityAtTheMean) {
  const float inverse[2] = {4.0F, 0.25F}, weight = std::log(0.5F);
  float gconst, val;
  ASSERT_EQ(qorsUpdateGConst_32f(inverse, 2, &gconst), qorStatusOk);
  ASSERT_EQ(qorsOutProbPreCalc_32f(&weight, &gconst, &val, 1), qorStatusOk);
  EXPECT_NEAR(static_cast<double>(val), std::log(0.5 / (2 * std::acos(-1.0))), 1e-6);
}

}  // namespace
