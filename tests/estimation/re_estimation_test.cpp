// Model re-estimation: bits against the plain model, warnings and floors, faults, overlap.
#include "model/re_estimation.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <functional>
#include <type_traits>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr kit::Place kOdd = kit::Place::kOddStart, kEven = kit::Place::kAligned;

// The members of one element type under common names.
template <class T>
struct Members;
template <>
struct Members<float> {
  static constexpr auto mean = qorsUpdateMean_32f;
  static constexpr auto var = qorsUpdateVar_32f;
  static constexpr auto weight = qorsUpdateWeight_32f;
  static constexpr auto acc = qorsMeanVarAcc_32f;
};
template <>
struct Members<double> {
  static constexpr auto mean = qorsUpdateMean_64f;
  static constexpr auto var = qorsUpdateVar_64f;
  static constexpr auto weight = qorsUpdateWeight_64f;
  static constexpr auto acc = qorsMeanVarAcc_64f;
};

template <class T>
class ReEstimation : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(ReEstimation, Reals, );

// Every length, at every place, with every kind of data.
template <class T>
void forEachLength(const std::function<void(int32_t, kit::Place, kit::Random::Kind, kit::Random&)>& check) {
  kit::Random random(sizeof(T));
  for (const int32_t length : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      for (const kit::Random::Kind kind : kit::kKinds) {
        check(length, place, kind, random);
        if (testing::Test::HasFailure()) FAIL() << "length " << length << " kind " << kind;
      }
    }
  }
}

// ---- Bits ----

TYPED_TEST(ReEstimation, UpdateMeanAdds) {
  using T = TypeParam;
  forEachLength<T>([](int32_t length, kit::Place place, kit::Random::Kind kind, kit::Random& random) {
    const auto source = random.vector<T>(length, kind);
    auto expected = random.vector<T>(length, kit::Random::kPlain);
    const kit::Area<T> from(source, place), to(expected, place);
    const T occupancy = static_cast<T>(random.real(0.01, 300.0));
    ASSERT_EQ(Members<T>::mean(from.data(), to.data(), length, occupancy), qorStatusOk);
    model::updateMean(source, expected, occupancy);
    ASSERT_BITS(to.values(), expected);
    ASSERT_TRUE(from.edgesKept() && to.edgesKept());
  });
}

TYPED_TEST(ReEstimation, UpdateVarKeepsToItsFloors) {
  using T = TypeParam;
  forEachLength<T>([](int32_t length, kit::Place place, kit::Random::Kind kind, kit::Random& random) {
    const auto first = random.vector<T>(length, kind), second = random.vector<T>(length, kind);
    const T scale = static_cast<T>(random.integer(-1, 2));
    auto floors = random.vector<T>(length, kit::Random::kSmall);
    for (T& f : floors) f *= scale;
    const T occ1 = static_cast<T>(random.real(0.5, 30.0)), occ2 = static_cast<T>(random.real(0.5, 30.0));
    const kit::Area<T> a(first, place), b(second, place), f(floors, place), to(length, place);
    const auto expected = model::updateVar(first, second, floors, occ1, occ2);
    ASSERT_EQ(Members<T>::var(a.data(), b.data(), f.data(), to.data(), length, occ1, occ2),
              expected.all() ? qorStatusAllFloored : qorStatusOk);
    ASSERT_BITS(to.values(), expected.values);
    ASSERT_TRUE(to.edgesKept());
  });
}

TYPED_TEST(ReEstimation, UpdateWeightSumsInLanes) {
  using T = TypeParam;
  forEachLength<T>([](int32_t length, kit::Place place, kit::Random::Kind kind, kit::Random& random) {
    const auto counts = random.vector<T>(length, kind);
    const T total = static_cast<T>(random.real(0.5, 300.0)), floor = static_cast<T>(random.real(-0.2, 0.05));
    const kit::Area<T> from(counts, place), to(length, place), sum(1, place);
    const auto expected = model::updateWeight(counts, total, floor);
    ASSERT_EQ(Members<T>::weight(from.data(), to.data(), length, sum.data(), total, floor),
              expected.all() ? qorStatusAllFloored : qorStatusOk);
    ASSERT_BITS(to.values(), expected.values);
    ASSERT_BITS(sum[0], expected.sum);
    ASSERT_TRUE(to.edgesKept() && sum.edgesKept());
  });
}

TYPED_TEST(ReEstimation, MeanVarAccAdds) {
  using T = TypeParam;
  forEachLength<T>([](int32_t length, kit::Place place, kit::Random::Kind kind, kit::Random& random) {
    const auto source = random.vector<T>(length, kind), mean = random.vector<T>(length, kit::Random::kPlain);
    auto sums = random.vector<T>(length, kit::Random::kPlain), squares = random.vector<T>(length, kit::Random::kPlain);
    const kit::Area<T> x(source, place), m(mean, place), s(sums, place), q(squares, place);
    const T weight = random.value<T>(kind);
    ASSERT_EQ(Members<T>::acc(x.data(), m.data(), s.data(), q.data(), length, weight), qorStatusOk);
    model::meanVarAcc(source, mean, sums, squares, weight);
    ASSERT_BITS(s.values(), sums);
    ASSERT_BITS(q.values(), squares);
    ASSERT_TRUE(s.edgesKept() && q.edgesKept());
  });
}

TEST(NewVar, FloatRoundsTheSquareAndTheResultOnly) {
  forEachLength<float>([](int32_t length, kit::Place place, kit::Random::Kind kind, kit::Random& random) {
    const auto means = random.vector<float>(length, kind), squares = random.vector<float>(length, kind);
    const auto a = static_cast<float>(random.real(-2.0, 2.0)), b = static_cast<float>(random.real(-2.0, 2.0));
    const kit::Area<float> m(means, place), q(squares, place), to(length, place);
    std::vector<float> expected, inFloat;
    for (std::size_t i = 0; i < means.size(); ++i) {
      expected.push_back(model::newVar(means[i], squares[i], a, b));
      inFloat.push_back(model::newVarInFloat(means[i], squares[i], a, b));
    }
    ASSERT_EQ(qorsNewVar_32f(m.data(), q.data(), to.data(), length, a, b), qorStatusOk);
    ASSERT_BITS(to.values(), expected);
    ASSERT_EQ(qorsNewVar_32f_I(m.data(), q.data(), length, a, b), qorStatusOk);
    ASSERT_BITS(q.values(), inFloat);
    ASSERT_TRUE(to.edgesKept() && q.edgesKept());
  });
}

TEST(NewVar, FloatMembersDifferInTheirLastBits) {
  kit::Random random;
  const auto means = random.vector<float>(257), squares = random.vector<float>(257);
  std::vector<float> apart(257), inPlace = squares;
  ASSERT_EQ(qorsNewVar_32f(means.data(), squares.data(), apart.data(), 257, 0.3F, 0.7F), qorStatusOk);
  ASSERT_EQ(qorsNewVar_32f_I(means.data(), inPlace.data(), 257, 0.3F, 0.7F), qorStatusOk);
  EXPECT_NE(apart, inPlace);
}

TEST(NewVar, IntegersRoundOnBoundariesAndTruncateElsewhere) {
  kit::Random random(32);
  for (const int32_t length : kit::lengths()) {
    for (const int32_t sf : {0, 1, 5, -1, -7, 31, -31, 126, 150, -128, -200, INT32_MIN, INT32_MAX}) {
      for (const int where : {0, 1, 2, 3}) {  // bit 0: the means are off the boundary, bit 1: the squares are
        const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
        const auto means = random.vector<int32_t>(length, kind), squares = random.vector<int32_t>(length, kind);
        const kit::Area<int32_t> m(means, where & 1 ? kOdd : kEven), q(squares, where & 2 ? kOdd : kEven), to(length, kOdd);
        const float a = static_cast<float>(random.real(-1.0, 1.0)), b = random.integer(0, 1) ? 0.37F : 1e-9F;
        std::vector<int32_t> expected;
        for (std::size_t i = 0; i < means.size(); ++i) {
          expected.push_back(where == 0 ? model::newVarRounded(means[i], squares[i], a, b, sf)
                                        : model::newVarTruncated(means[i], squares[i], a, b, sf));
        }
        ASSERT_EQ(qorsNewVar_32s_Sfs(m.data(), q.data(), to.data(), length, a, b, sf), qorStatusOk);
        ASSERT_BITS(to.values(), expected) << "length " << length << " sf " << sf << " where " << where;
        ASSERT_EQ(qorsNewVar_32s_ISfs(m.data(), q.data(), length, a, b, sf), qorStatusOk);
        ASSERT_BITS(q.values(), expected) << "in place, length " << length << " sf " << sf << " where " << where;
        ASSERT_TRUE(to.edgesKept() && q.edgesKept());
      }
    }
  }
}

TEST(NewVar, IntegersOutOfRangeSaturateOnBoundariesAndWrapElsewhere) {
  alignas(16) const int32_t means[8] = {}, squares[8] = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 3, 3, 5, 5};
  int32_t result[4];
  ASSERT_EQ(qorsNewVar_32s_Sfs(means, squares, result, 4, 1.0F, 4.0F, 0), qorStatusOk);
  EXPECT_EQ(std::vector<int32_t>(result, result + 4), (std::vector<int32_t>{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}));
  ASSERT_EQ(qorsNewVar_32s_Sfs(means + 1, squares, result, 4, 1.0F, 4.0F, 0), qorStatusOk);
  EXPECT_EQ(std::vector<int32_t>(result, result + 4), (std::vector<int32_t>{INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}));
  ASSERT_EQ(qorsNewVar_32s_Sfs(means, squares + 4, result, 4, 1.0F, 1.0F, 1), qorStatusOk);  // 1.5 and 2.5
  EXPECT_EQ(std::vector<int32_t>(result, result + 4), (std::vector<int32_t>{2, 2, 2, 2}));
  ASSERT_EQ(qorsNewVar_32s_Sfs(means + 1, squares + 4, result, 4, 1.0F, 1.0F, 1), qorStatusOk);
  EXPECT_EQ(std::vector<int32_t>(result, result + 4), (std::vector<int32_t>{1, 1, 2, 2}));
  ASSERT_EQ(qorsNewVar_32s_Sfs(means, squares, result, 1, NAN, 1.0F, 0), qorStatusOk);
  EXPECT_EQ(result[0], 0);
  ASSERT_EQ(qorsNewVar_32s_Sfs(means + 1, squares, result, 1, NAN, 1.0F, 0), qorStatusOk);
  EXPECT_EQ(result[0], INT32_MIN);
}

TEST(NewVar, VariancesOfIntegersFollowTheCallersModeAndAreRoundedToNearest) {
  kit::Random random(33);
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    for (const int32_t length : {1, 7, 13, 255, 256, 257, 600}) {
      const auto means = random.vector<int32_t>(length), squares = random.vector<int32_t>(length);
      const kit::Area<int32_t> m(means, kEven), q(squares, kEven), to(length, kOdd);
      std::vector<int32_t> expected;
      for (std::size_t i = 0; i < means.size(); ++i) {
        std::fesetround(mode);
        const volatile float mean = static_cast<float>(means[i]), square = static_cast<float>(squares[i]), a = 0.3F;
        const volatile float product = mean * mean, scaled = product * a, rest = square - scaled, variance = rest * 1e-9F;
        std::fesetround(FE_TONEAREST);
        expected.push_back(model::convertScaled<int32_t>(variance, 1, -4));
      }
      std::fesetround(mode);
      const QorStatus status = qorsNewVar_32s_Sfs(m.data(), q.data(), to.data(), length, 0.3F, 1e-9F, -4);
      const QorStatus statusInPlace = qorsNewVar_32s_ISfs(m.data(), q.data(), length, 0.3F, 1e-9F, -4);
      std::fesetround(FE_TONEAREST);
      ASSERT_EQ(status, qorStatusOk);
      ASSERT_EQ(statusInPlace, qorStatusOk);
      ASSERT_BITS(to.values(), expected) << "mode " << mode << " length " << length;
      ASSERT_BITS(q.values(), expected) << "in place, mode " << mode << " length " << length;
    }
  }
}

TEST(NewVar, MayBeNegative) {
  const float mean = 3.0F, square = 4.0F;
  float result = 0;
  ASSERT_EQ(qorsNewVar_32f(&mean, &square, &result, 1, 1.0F, 1.0F), qorStatusOk);
  EXPECT_EQ(result, -5.0F);
}

// ---- Overlap: one by one, upwards ----

TEST(Overlap, UpdateMeanInDouble) {
  kit::Random random;
  for (const int32_t length : kit::shortLengths()) {
    for (int32_t shift = -length; shift <= length; ++shift) {
      const auto start = random.vector<double>(3 * length);
      std::vector<double> expected = start, actual = start;
      for (int32_t i = length; i < 2 * length; ++i) {
        const auto at = static_cast<std::size_t>(i), to = static_cast<std::size_t>(i + shift);
        expected[to] = expected[to] + expected[at] / 3.0;
      }
      ASSERT_EQ(qorsUpdateMean_64f(actual.data() + length, actual.data() + length + shift, length, 3.0), qorStatusOk);
      ASSERT_BITS(actual, expected) << "length " << length << " shift " << shift;
    }
  }
}

TEST(Overlap, NewVarInFloat) {
  kit::Random random;
  for (const int32_t length : kit::shortLengths()) {
    for (int32_t shift = -length; shift <= length; ++shift) {
      for (const bool onMeans : {true, false}) {
        const auto start = random.vector<float>(3 * length), other = random.vector<float>(length);
        std::vector<float> expected = start, actual = start;
        for (int32_t i = 0; i < length; ++i) {
          const float mine = expected[static_cast<std::size_t>(length + i)], theirs = other[static_cast<std::size_t>(i)];
          expected[static_cast<std::size_t>(length + shift + i)] =
              onMeans ? model::newVar(mine, theirs, 0.5F, 0.25F) : model::newVar(theirs, mine, 0.5F, 0.25F);
        }
        const float* const moving = actual.data() + length;
        ASSERT_EQ(qorsNewVar_32f(onMeans ? moving : other.data(), onMeans ? other.data() : moving, actual.data() + length + shift,
                                 length, 0.5F, 0.25F),
                  qorStatusOk);
        ASSERT_BITS(actual, expected) << "length " << length << " shift " << shift << " means " << onMeans;
      }
    }
  }
}

// ---- Warnings ----

TYPED_TEST(ReEstimation, SmallOccupanciesAreWarnedOfAndNothingIsWritten) {
  using T = TypeParam;
  const T least = std::numeric_limits<T>::min(), next = std::nextafter(least, T(1));
  const std::vector<T> x(5, T(1));
  std::vector<T> to(5, T(77));
  T sum = 78;
  for (const T occupancy : {T(0), -T(0), std::numeric_limits<T>::denorm_min(), least}) {
    EXPECT_EQ(Members<T>::mean(x.data(), to.data(), 5, occupancy), qorStatusZeroOccupancy);
    EXPECT_EQ(Members<T>::var(x.data(), x.data(), x.data(), to.data(), 5, occupancy, T(1)), qorStatusZeroOccupancy);
    EXPECT_EQ(Members<T>::var(x.data(), x.data(), x.data(), to.data(), 5, T(1), occupancy), qorStatusZeroOccupancy);
    EXPECT_EQ(Members<T>::var(x.data(), x.data(), x.data(), to.data(), 5, occupancy, T(-1)), qorStatusBadStatistic);
    EXPECT_EQ(Members<T>::var(x.data(), x.data(), x.data(), to.data(), 5, T(-1), occupancy), qorStatusBadStatistic);
    EXPECT_EQ(Members<T>::weight(x.data(), to.data(), 5, &sum, occupancy, T(0)), qorStatusZeroOccupancy);
  }
  EXPECT_EQ(Members<T>::mean(x.data(), to.data(), 5, -std::numeric_limits<T>::denorm_min()), qorStatusBadStatistic);
  EXPECT_EQ(to, std::vector<T>(5, T(77)));
  EXPECT_EQ(sum, T(78));
  EXPECT_EQ(Members<T>::mean(x.data(), to.data(), 0, T(-1)), qorStatusBadSize);
  EXPECT_EQ(Members<T>::mean(x.data(), to.data(), 5, next), qorStatusOk);
  EXPECT_EQ(Members<T>::mean(x.data(), to.data(), 5, std::numeric_limits<T>::quiet_NaN()), qorStatusOk);
  EXPECT_TRUE(std::isnan(to[4]));
}

TYPED_TEST(ReEstimation, AValueEqualToItsFloorIsFloored) {
  using T = TypeParam;
  for (const int32_t length : kit::shortLengths()) {
    const std::vector<T> first(static_cast<std::size_t>(length), T(2)), second(static_cast<std::size_t>(length), T(5));
    std::vector<T> floors(static_cast<std::size_t>(length), T(1)), to(static_cast<std::size_t>(length)), weights = to;
    T sum = 0;
    EXPECT_EQ(Members<T>::var(first.data(), second.data(), floors.data(), to.data(), length, T(1), T(1)), qorStatusAllFloored);
    EXPECT_EQ(to, floors);
    floors[static_cast<std::size_t>(length - 1)] = std::numeric_limits<T>::quiet_NaN();  // a NaN floor is a floor
    EXPECT_EQ(Members<T>::var(first.data(), second.data(), floors.data(), to.data(), length, T(1), T(1)), qorStatusAllFloored);
    EXPECT_TRUE(std::isnan(to.back()));
    floors[static_cast<std::size_t>(length / 2)] = T(0.5);
    EXPECT_EQ(Members<T>::var(first.data(), second.data(), floors.data(), to.data(), length, T(1), T(1)), qorStatusOk);
    EXPECT_EQ(Members<T>::weight(first.data(), weights.data(), length, &sum, T(4), T(0.5)), qorStatusAllFloored);
    EXPECT_EQ(weights, std::vector<T>(static_cast<std::size_t>(length), T(0.5)));
    EXPECT_EQ(sum, static_cast<T>(length) / 2);
  }
}

// ---- Faults ----

template <class T>
struct Args {
  const T *first, *second, *third;
  T *to, *to2;
  int32_t length;
  T occ1, occ2;
};

template <class T, class... Pointers>
void expectFaults(QorStatus (*call)(const Args<T>&), int occupancies, Pointers... pointers) {
  using A = Args<T>;
  const std::vector<T> x(6, T(2));
  std::vector<T> to(6, T(3)), to2(6, T(4));
  const A valid{x.data(), x.data(), x.data(), to.data(), to2.data(), 6, T(1), T(1)};
  kit::FaultTable<A> table(valid, call, {{to.data(), 6}, {to2.data(), 6}});
  int position = 0;
  (table.fault("null pointer " + std::to_string(++position), qorStatusNullPointer, pointers, nullptr), ...);
  table.fault("length zero", qorStatusBadSize, &A::length, 0);
  table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  if (occupancies > 0) table.fault("occ1 negative", qorStatusBadStatistic, &A::occ1, T(-1));
  if (occupancies > 1) table.fault("occ2 negative", qorStatusBadStatistic, &A::occ2, T(-1));
  if (occupancies > 0) table.fault("occ1 small", qorStatusZeroOccupancy, &A::occ1, T(0));
  if (occupancies > 1) table.fault("occ2 small", qorStatusZeroOccupancy, &A::occ2, T(0));
  table.check();
}

TYPED_TEST(ReEstimation, Faults) {
  using T = TypeParam;
  using M = Members<T>;
  using A = Args<T>;
  expectFaults<T>([](auto& a) { return M::mean(a.first, a.to, a.length, a.occ1); }, 1, &A::first, &A::to);
  expectFaults<T>([](auto& a) { return M::var(a.first, a.second, a.third, a.to, a.length, a.occ1, a.occ2); }, 2, &A::first,
                  &A::second, &A::third, &A::to);
  expectFaults<T>([](auto& a) { return M::weight(a.first, a.to, a.length, a.to2, a.occ1, T(0)); }, 1, &A::first, &A::to, &A::to2);
  expectFaults<T>([](auto& a) { return M::acc(a.first, a.second, a.to, a.to2, a.length, T(1)); }, 0, &A::first, &A::second, &A::to,
                  &A::to2);
}

TEST(NewVar, Faults) {
  expectFaults<float>([](auto& a) { return qorsNewVar_32f(a.first, a.second, a.to, a.length, 1.0F, 1.0F); }, 0, &Args<float>::first,
                      &Args<float>::second, &Args<float>::to);
  expectFaults<float>([](auto& a) { return qorsNewVar_32f_I(a.first, a.to, a.length, 1.0F, 1.0F); }, 0, &Args<float>::first,
                      &Args<float>::to);
  expectFaults<int32_t>([](auto& a) { return qorsNewVar_32s_Sfs(a.first, a.second, a.to, a.length, 1.0F, 1.0F, 0); }, 0,
                        &Args<int32_t>::first, &Args<int32_t>::second, &Args<int32_t>::to);
  expectFaults<int32_t>([](auto& a) { return qorsNewVar_32s_ISfs(a.first, a.to, a.length, 1.0F, 1.0F, 0); }, 0,
                        &Args<int32_t>::first, &Args<int32_t>::to);
}

TEST(NewVar, KeepsTheEnvironment) {
  alignas(16) int32_t means[5] = {1, 2, 3, 4, 5}, squares[5] = {INT32_MAX, 7, INT32_MIN, 9, 10}, to[5];
  kit::expectEnvironmentKept([&] { qorsNewVar_32s_Sfs(means, squares, to, 5, 0.3F, 1e9F, -130); });
  kit::expectEnvironmentKept([&] { qorsNewVar_32s_Sfs(means + 1, squares, to, 4, 0.3F, 1e9F, -130); });
}

}  // namespace
