// The sum of logarithms against one logarithm an element, in long double.
#include "frame/sum_of_logs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"

namespace {

template <class T>
class SumOfLogs : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(SumOfLogs, Reals, );

template <class T>
qorsr::SumOfLogs sumOf(const std::vector<T>& values) {
  const kit::Area<T> area(values, kit::Place::kAtGuard);
  qorsr::SumOfLogs sum;
  sum.add(area.data(), area.size());
  return sum;
}

// Positive numbers of every magnitude; `denormals` among them.
template <class T>
std::vector<T> positive(kit::Random& random, int32_t count, bool denormals) {
  const int low = std::numeric_limits<T>::min_exponent - (denormals ? 15 : 0), high = std::numeric_limits<T>::max_exponent - 1;
  std::vector<T> v;
  for (int32_t i = 0; i < count; ++i) {
    v.push_back(static_cast<T>(random.scaled(1, 2, low, high)));
  }
  return v;
}

TYPED_TEST(SumOfLogs, Values) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t count : {1, 2, 7, 8, 9, 39, 511, 512, 513, 1024, 1500}) {
    for (const bool denormals : {false, true}) {
      const auto values = positive<T>(random, count, denormals);
      long double exact = 0, magnitude = 0;
      for (const T v : values) {
        exact += std::log(static_cast<long double>(v));
        magnitude += std::fabs(std::log(static_cast<long double>(v)));
      }
      const qorsr::SumOfLogs sum = sumOf(values);
      EXPECT_EQ(sum.status(), qorStatusOk);
      // A run multiplies up to 512 mantissas, each product rounded: 512 half units, beside a few roundings of the sum itself.
      EXPECT_NEAR(sum.value(), static_cast<double>(exact), 520 * 0x1p-53 + static_cast<double>(magnitude) * 4 * 0x1p-52) << count;
    }
  }
}

TYPED_TEST(SumOfLogs, TheFirstElementWithoutALogarithmDecides) {
  using T = TypeParam;
  kit::Random random;
  struct Bad {
    T value;
    QorStatus status;
  };
  const Bad bad[] = {{T(0), qorStatusLogZero},
                     {-T(0), qorStatusLogZero},
                     {T(-1), qorStatusLogNegative},
                     {-std::numeric_limits<T>::infinity(), qorStatusLogNegative},
                     {-std::numeric_limits<T>::denorm_min(), qorStatusLogNegative},
                     {std::numeric_limits<T>::quiet_NaN(), qorStatusOk},
                     {-std::numeric_limits<T>::quiet_NaN(), qorStatusOk}};
  for (const std::size_t at : {0, 3, 8, 511, 512, 700, 998}) {
    for (const Bad& first : bad) {
      auto values = positive<T>(random, 1000, false);
      values[at] = first.value;
      values[at + 1] = bad[at % 7].value;
      const qorsr::SumOfLogs sum = sumOf(values);
      EXPECT_EQ(sum.status(), first.status) << at;
      EXPECT_BITS(sum.value(), first.status == qorStatusLogZero ? std::numeric_limits<double>::infinity()
                                                                : std::numeric_limits<double>::quiet_NaN());
    }
  }
}

TYPED_TEST(SumOfLogs, OfInfinityIsInfinite) {
  using T = TypeParam;
  const T infinity = std::numeric_limits<T>::infinity();
  const qorsr::SumOfLogs sum = sumOf<T>({T(1), infinity, T(2), infinity});
  EXPECT_EQ(sum.status(), qorStatusOk);
  EXPECT_EQ(sum.value(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(sumOf<T>({T(1), infinity, T(0)}).status(), qorStatusLogZero);
}

TEST(SumOfLogsPieces, JoinCalls) {
  const double values[3] = {2, 4, 8};
  qorsr::SumOfLogs sum;
  for (const double v : values) sum.add(&v, 1);
  EXPECT_NEAR(sum.value(), 6 * std::log(2.0), 1e-15);
  const double zero = 0;
  sum.add(&zero, 1);
  sum.add(values, 3);
  EXPECT_EQ(sum.status(), qorStatusLogZero);
}

}  // namespace
