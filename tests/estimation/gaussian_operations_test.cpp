// Distance, merging and splitting of Gaussians: values and bits against the plain model, markers, order of checks, partial outputs.
#include "model/gaussian_operations.h"

#include <gtest/gtest.h>

#include <cmath>

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
  static constexpr auto dist = qorsGaussianDist_32f;
  static constexpr auto merge = qorsGaussianMerge_32f;
  static constexpr auto split = qorsGaussianSplit_32f;
  static constexpr std::size_t shorter = 13;  // below: logarithms one by one
};
template <>
struct Members<double> {
  static constexpr auto dist = qorsGaussianDist_64f;
  static constexpr auto merge = qorsGaussianMerge_64f;
  static constexpr auto split = qorsGaussianSplit_64f;
  static constexpr std::size_t shorter = 11;
};

template <class T>
class GaussianPairs : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(GaussianPairs, Reals, );

template <class T>
model::Gaussians<T> plainPair(kit::Random& random, int32_t length) {
  const auto vector = [&](double low, double high) {
    std::vector<T> v;
    for (int32_t i = 0; i < length; ++i) v.push_back(static_cast<T>(random.real(low, high)));
    return v;
  };
  return {vector(-5, 5), vector(0.01, 9), vector(-5, 5), vector(0.01, 9)};
}

// A pair in which something may go wrong: an element of no logarithm, nasty values, huge and tiny variances.
template <class T>
model::Gaussians<T> anyPair(kit::Random& random, int32_t length) {
  model::Gaussians<T> g = plainPair<T>(random, length);
  const auto at = static_cast<std::size_t>(random.integer(0, length - 1)), other = static_cast<std::size_t>(length - 1) - at;
  const auto spoil = [&](std::size_t i, int64_t how) {
    if (how == 0) g.mx[i] = g.my[i] = T(0), g.vx[i] = g.vy[i] = T(0);
    if (how == 1) g.vx[i] = T(-900), g.vy[i] = T(-900);
    if (how == 2) g.vx[i] = std::numeric_limits<T>::quiet_NaN();
    if (how == 3) g.vx[i] = std::numeric_limits<T>::infinity();
    if (how == 4) g.mx[i] = g.my[i] = T(0), g.vx[i] = g.vy[i] = std::numeric_limits<T>::denorm_min() * T(9);
    if (how == 5) g.vx[i] = random.nasty<T>();
  };
  spoil(at, random.integer(0, 7));
  spoil(other, random.integer(0, 7));
  return g;
}

template <class T>
struct Areas {
  kit::Area<T> mx, vx, my, vy;
  Areas(const model::Gaussians<T>& g, kit::Place place) : mx(g.mx, place), vx(g.vx, place), my(g.my, place), vy(g.vy, place) {}
  bool edgesKept() const { return mx.edgesKept() && vx.edgesKept() && my.edgesKept() && vy.edgesKept(); }
};

// A sum of n logarithms in double, grouped otherwise: each of about n roundings moves it by at most half a unit of its magnitude,
// and one more rounding is the result's.
template <class T>
double logBound(double magnitude, double n) {
  return (magnitude + 1.0) * (n + 8.0) * 0x1p-53 + (magnitude + 1.0) * static_cast<double>(std::numeric_limits<T>::epsilon());
}

constexpr int32_t kLengths[] = {1, 2, 3, 4, 5, 7, 8, 10, 11, 12, 13, 14, 16, 39, 64, 511, 512, 513, 1025};

// ---- Distance ----

TYPED_TEST(GaussianPairs, Distance) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : kLengths) {
    for (int trial = 0; trial < 30; ++trial) {
      const auto g = trial < 5 ? plainPair<T>(random, length) : anyPair<T>(random, length);
      const Areas<T> areas(g, kit::kPlaces[trial % 3]);
      const T wx = static_cast<T>(random.real(0.1, 50)), wy = static_cast<T>(random.real(0.1, 50));
      const T detX = static_cast<T>(random.real(-90, 90)), detY = static_cast<T>(random.real(-90, 90));
      const bool oneByOne = g.mx.size() < Members<T>::shorter;
      const model::LogSum logs = model::pooledLogs(g, wx, wy, oneByOne);
      const double expected = model::gaussianDist(g, wx, detX, wy, detY, logs);
      T result = T(5);
      ASSERT_EQ(
          Members<T>::dist(areas.mx.data(), areas.vx.data(), areas.my.data(), areas.vy.data(), length, &result, wx, detX, wy, detY),
          logs.status)
          << "length " << length;
      if (oneByOne) {
        ASSERT_BITS(result, static_cast<T>(expected));
      } else {
        const double terms = logs.magnitude + 2.0 * length;
        ASSERT_TRUE(kit::within(&result, &expected, 1, logBound<T>(static_cast<double>(wx + wy) * terms + 9000.0, length)));
      }
      ASSERT_TRUE(areas.edgesKept());
    }
  }
}

TYPED_TEST(GaussianPairs, DistanceIsTheSameOnBothSidesOfTheThreshold) {
  using T = TypeParam;
  kit::Random random;
  const auto shorter = static_cast<int32_t>(Members<T>::shorter);
  auto g = plainPair<T>(random, shorter);
  g.vx.back() = g.vy.back() = T(1);  // the last element adds log 1 to the logarithms, and log 2 pi to both determinants
  g.mx.back() = g.my.back() = T(0);
  T with = 0, without = 0;
  const double log2Pi = 1.8378770664093;
  ASSERT_EQ(Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), shorter - 1, &without, T(2), T(3), T(4), T(5)),
            qorStatusOk);
  ASSERT_EQ(Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), shorter, &with, T(2), T(3), T(4), T(5)),
            qorStatusOk);
  EXPECT_NEAR(static_cast<double>(with), static_cast<double>(without) - 6.0 * log2Pi, logBound<T>(200, 13));
  for (const T variance : {T(0), T(-1)}) {
    g.vx[4] = g.vy[4] = variance, g.mx[4] = g.my[4] = T(0);
    const QorStatus expected = variance == 0 ? qorStatusLogZero : qorStatusLogNegative;
    for (const int32_t length : {shorter - 1, shorter}) {
      EXPECT_EQ(Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), length, &with, T(2), T(3), T(4), T(5)),
                expected);
      EXPECT_TRUE(variance == 0 ? with == std::numeric_limits<T>::infinity() : std::isnan(with));
    }
  }
}

TEST(GaussianDist, TheMarkerOfANegativeVarianceIsTheDefaultNan) {
  const float m[1] = {0}, v[1] = {-1};
  float result = 0;
  ASSERT_EQ(qorsGaussianDist_32f(m, v, m, v, 1, &result, 1, 1, 1, 1), qorStatusLogNegative);
  EXPECT_EQ(std::bit_cast<uint32_t>(result), 0xFFC00000U);
  float mean, variance, det = 0;
  ASSERT_EQ(qorsGaussianMerge_32f(m, v, m, v, &mean, &variance, 1, &det, 1, 1), qorStatusLogNegative);
  EXPECT_EQ(std::bit_cast<uint32_t>(det), 0xFFC00000U);
  ASSERT_EQ(qorsBhatDist_32f(m, v, m, v, 1, &result), qorStatusLogNegative);
  EXPECT_EQ(std::bit_cast<uint32_t>(result), 0xFFC00000U);
}

TEST(GaussianDist, InDoubleTheMarkerIsTheDefaultNanToo) {
  const double m[1] = {0}, v[1] = {-1};
  const float m32[1] = {0}, v32[1] = {-1};
  double result = 0, mean, variance;
  const auto expectMarker = [&](QorStatus status) {
    EXPECT_EQ(status, qorStatusLogNegative);
    EXPECT_EQ(std::bit_cast<uint64_t>(result), 0xFFF8000000000000U);
    result = 0;
  };
  expectMarker(qorsGaussianDist_64f(m, v, m, v, 1, &result, 1, 1, 1, 1));
  expectMarker(qorsGaussianMerge_64f(m, v, m, v, &mean, &variance, 1, &result, 1, 1));
  expectMarker(qorsBhatDist_32f64f(m32, v32, m32, v32, 1, &result));
  expectMarker(qorsBhatDistSLog_32f64f(m32, v32, m32, v32, 1, &result, 0, 0));
}

TYPED_TEST(GaussianPairs, WeightsThatSumToZeroGiveNan) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : {3, 20}) {
    const auto g = plainPair<T>(random, length);
    T result = 0;
    EXPECT_EQ(Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), length, &result, T(0), T(1), T(0), T(1)),
              qorStatusOk);
    EXPECT_TRUE(std::isnan(result));
  }
}

// ---- Merge ----

TYPED_TEST(GaussianPairs, Merge) {
  using T = TypeParam;
  constexpr bool stops = std::is_same_v<T, float>;
  kit::Random random;
  for (const int32_t length : kLengths) {
    for (int trial = 0; trial < 30; ++trial) {
      const auto g = trial < 5 ? plainPair<T>(random, length) : anyPair<T>(random, length);
      const kit::Place place = kit::kPlaces[trial % 3];
      const Areas<T> areas(g, place);
      kit::Area<T> mean(length, place), variance(length, place);
      mean.fill(T(-77)), variance.fill(T(-78));
      const T wx = static_cast<T>(random.real(0.1, 50)), wy = static_cast<T>(random.real(0.1, 50));
      std::vector<T> means(static_cast<std::size_t>(length), T(-77)), variances(static_cast<std::size_t>(length), T(-78));
      model::LogSum logs;
      logs.nanEnds = !stops;
      for (std::size_t i = 0; i < means.size() && !(stops && logs.ended); ++i) {
        const model::Pooled p = model::pool(g, i, wx, wy);
        means[i] = static_cast<T>(p.mean), variances[i] = static_cast<T>(p.variance);
        logs.add(p.variance);
      }
      const double expected = logs.status == qorStatusOk ? length * model::kLog2Pi - logs.sum : logs.marker();
      T det = T(5);
      ASSERT_EQ(Members<T>::merge(areas.mx.data(), areas.vx.data(), areas.my.data(), areas.vy.data(), mean.data(), variance.data(),
                                  length, &det, wx, wy),
                logs.status);
      ASSERT_BITS(mean.values(), means) << "length " << length;
      ASSERT_BITS(variance.values(), variances) << "length " << length;
      ASSERT_TRUE(kit::within(&det, &expected, 1, logBound<T>(logs.magnitude + 2.0 * length, length)));
      ASSERT_TRUE(areas.edgesKept() && mean.edgesKept() && variance.edgesKept());
    }
  }
}

TYPED_TEST(GaussianPairs, MergeWithAZeroAtElementThree) {
  using T = TypeParam;
  std::vector<T> m(10, T(0)), v(10, T(1)), mean(10, T(-77)), variance(10, T(-78));
  v[3] = T(0), v[5] = T(-1);
  T det = 0;
  ASSERT_EQ(Members<T>::merge(m.data(), v.data(), m.data(), v.data(), mean.data(), variance.data(), 10, &det, T(1), T(1)),
            qorStatusLogZero);
  EXPECT_EQ(det, std::numeric_limits<T>::infinity());
  EXPECT_EQ(variance[3], T(0));
  const bool stops = std::is_same_v<T, float>;
  for (std::size_t i = 4; i < 10; ++i) {
    EXPECT_EQ(mean[i], stops ? T(-77) : T(0)) << i;
    EXPECT_EQ(variance[i], stops ? T(-78) : v[i]) << i;
  }
}

// ---- Split ----

TYPED_TEST(GaussianPairs, Split) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int places = 0; places < 16; ++places) {  // which of the four vectors lie off a boundary
      const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
      const auto mean = random.vector<T>(length, kind), variance = random.vector<T>(length, kind);
      const auto place = [&](int bit) { return places & bit ? kit::Place::kOddStart : kit::Place::kAligned; };
      const kit::Area<T> m(mean, place(1)), v(variance, place(2)), m2(length, place(4)), v2(length, place(8));
      const T factor = random.integer(0, 3) == 0 ? T(0) : static_cast<T>(random.real(-1, 1));
      std::vector<T> up, down;
      for (std::size_t i = 0; i < mean.size(); ++i) {
        const T e = places == 0 || std::is_same_v<T, double>
                        ? std::sqrt(variance[i]) * factor
                        : static_cast<T>(std::sqrt(static_cast<double>(variance[i])) * static_cast<double>(factor));
        up.push_back(mean[i] + e);
        down.push_back(mean[i] - e);
      }
      ASSERT_EQ(Members<T>::split(m.data(), v.data(), m2.data(), v2.data(), length, factor), qorStatusOk);
      ASSERT_BITS(m.values(), up) << "length " << length << " places " << places;
      ASSERT_BITS(m2.values(), down) << "length " << length << " places " << places;
      ASSERT_BITS(v2.values(), variance);
      ASSERT_BITS(v.values(), variance);
      ASSERT_TRUE(m.edgesKept() && m2.edgesKept() && v2.edgesKept());
    }
  }
}

TEST(GaussianSplit, FloatDiffersByAlignmentInItsLastBits) {
  kit::Random random;
  const auto mean = random.vector<float>(257);
  auto variance = random.vector<float>(257);
  for (float& v : variance) v = std::fabs(v);
  std::vector<float> seen[2];
  for (const kit::Place place : {kit::Place::kAligned, kit::Place::kOddStart}) {
    const kit::Area<float> m(mean, place), v(variance, place), m2(257, place), v2(257, place);
    ASSERT_EQ(qorsGaussianSplit_32f(m.data(), v.data(), m2.data(), v2.data(), 257, 0.2F), qorStatusOk);
    seen[place == kit::Place::kAligned] = m.values();
  }
  EXPECT_NE(seen[0], seen[1]);
}

// ---- Faults, memory, environment ----

template <class T>
struct Args {
  const T *mx, *vx, *my, *vy;
  T *mean, *variance, *det;
  int32_t length;
};

enum class Order { kSizeFirst, kNullFirst };

template <class T, class... Pointers>
void expectFaults(Order order, QorStatus (*call)(const Args<T>&), Pointers... pointers) {
  using A = Args<T>;
  std::vector<T> x(6, T(2)), to(6, T(3)), to2(6, T(4)), to3(6, T(5));
  const A valid{x.data(), x.data(), x.data(), x.data(), to.data(), to2.data(), to3.data(), 6};
  kit::FaultTable<A> table(valid, call, {{to.data(), 6}, {to2.data(), 6}, {to3.data(), 6}});
  const auto sizes = [&] {
    table.fault("length zero", qorStatusBadSize, &A::length, 0);
    table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  };
  if (order == Order::kSizeFirst) sizes();
  int position = 0;
  (table.fault("null pointer " + std::to_string(++position), qorStatusNullPointer, pointers, nullptr), ...);
  if (order == Order::kNullFirst) sizes();
  table.check();
}

TYPED_TEST(GaussianPairs, Faults) {
  using T = TypeParam;
  using M = Members<T>;
  using A = Args<T>;
  expectFaults<T>(
      Order::kSizeFirst, [](auto& a) { return M::dist(a.mx, a.vx, a.my, a.vy, a.length, a.det, 1, 1, 1, 1); }, &A::mx, &A::vx,
      &A::my, &A::vy, &A::det);
  expectFaults<T>(
      Order::kSizeFirst, [](auto& a) { return M::merge(a.mx, a.vx, a.my, a.vy, a.mean, a.variance, a.length, a.det, 1, 1); },
      &A::mx, &A::vx, &A::my, &A::vy, &A::mean, &A::variance, &A::det);
  expectFaults<T>(
      std::is_same_v<T, float> ? Order::kSizeFirst : Order::kNullFirst,
      [](auto& a) { return M::split(a.mean, a.vx, a.variance, a.det, a.length, T(0.5)); }, &A::vx, &A::mean, &A::variance, &A::det);
}

TYPED_TEST(GaussianPairs, NothingIsAllocated) {
  using T = TypeParam;
  kit::Random random;
  const auto g = plainPair<T>(random, 2000);
  std::vector<T> mean(2000), variance(2000);
  T result;
  EXPECT_EQ(kit::expectEveryRefusalReported(
                [&] { return Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), 2000, &result, 1, 1, 1, 1); }),
            0);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] {
              return Members<T>::merge(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), mean.data(), variance.data(), 2000,
                                       &result, 1, 1);
            }),
            0);
}

TYPED_TEST(GaussianPairs, KeepTheEnvironment) {
  using T = TypeParam;
  kit::Random random;
  const auto g = anyPair<T>(random, 30);
  std::vector<T> mean(30), variance(30);
  T result;
  kit::expectEnvironmentKept(
      [&] { Members<T>::dist(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), 30, &result, 1, 1, 1, 1); });
  kit::expectEnvironmentKept([&] {
    Members<T>::merge(g.mx.data(), g.vx.data(), g.my.data(), g.vy.data(), mean.data(), variance.data(), 30, &result, 1, 1);
  });
}

}  // namespace
