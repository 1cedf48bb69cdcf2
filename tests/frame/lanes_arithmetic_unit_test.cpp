// Loads, stores, arithmetic, joins and rearrangements of Lanes against scalar loops, at every number of lanes in use. Compiled once
// at every instruction level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "frame/lanes.h"
#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"

namespace {

using namespace qorsr;

template <class T, int N>
std::vector<T> valuesOf(const Lanes<T, N>& lanes) {
  std::vector<T> v(N);
  lanes.store(v.data());
  return v;
}

template <class T, int N>
Lanes<T, N> lanesOf(const std::vector<T>& values) {
  return Lanes<T, N>::load(values.data());
}

template <class T, class F>
std::vector<T> each(const std::vector<T>& a, F f) {
  std::vector<T> v;
  for (const T& x : a) v.push_back(f(x));
  return v;
}
template <class T, class F>
std::vector<T> each(const std::vector<T>& a, const std::vector<T>& b, F f) {
  std::vector<T> v;
  for (std::size_t i = 0; i < a.size(); ++i) v.push_back(f(a[i], b[i]));
  return v;
}

// Calls body.operator()<N>() for the numbers of lanes from 1 to 64.
template <class Body>
void forEachWidth(const Body& body) {
  body.template operator()<1>();
  body.template operator()<2>();
  body.template operator()<4>();
  body.template operator()<8>();
  body.template operator()<16>();
  body.template operator()<32>();
  body.template operator()<64>();
}

constexpr int kRounds = 60;

template <class T>
void expectLoadsAndStores() {
  forEachWidth([]<int N>() {
    kit::Random random(N);
    for (const kit::Place place : kit::kPlaces) {
      const auto values = random.vector<T>(N, kit::Random::kNasty);
      const kit::Area<T> from(values, place);
      kit::Area<T> to(N, place);
      Lanes<T, N>::load(from.data()).store(to.data());
      EXPECT_BITS(to.values(), values) << N;
      EXPECT_TRUE(to.edgesKept());
    }
    for (const T value : {T(0), T(-0.0), T(7), T(-3), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()}) {
      EXPECT_BITS(valuesOf(Lanes<T, N>(value)), std::vector<T>(N, value)) << N;
    }
  });
  EXPECT_BITS(valuesOf(Lanes<T, 4>::of(1, T(-0.0), 3, 4)), (std::vector<T>{1, T(-0.0), 3, 4}));
}

TEST(LanesArithmetic, LoadsStoresAndBroadcasts) {
  expectLoadsAndStores<float>();
  expectLoadsAndStores<double>();
  expectLoadsAndStores<int32_t>();
}

template <class T>
void expectArithmetic() {
  forEachWidth([]<int N>() {
    kit::Random random(N);
    for (int round = 0; round < kRounds; ++round) {
      const auto a = random.vector<T>(N, kit::kKinds[round % 3]), b = random.vector<T>(N, kit::kKinds[round % 3]);
      const auto x = lanesOf<T, N>(a), y = lanesOf<T, N>(b);
      const auto sum = each(a, b, [](T p, T q) { return p + q; });
      const auto difference = each(a, b, [](T p, T q) { return p - q; });
      const auto product = each(a, b, [](T p, T q) { return p * q; });
      ASSERT_BITS(valuesOf(x + y), sum) << N;
      ASSERT_BITS(valuesOf(x - y), difference) << N;
      ASSERT_BITS(valuesOf(x * y), product) << N;
      ASSERT_BITS(valuesOf(x / y), each(a, b, [](T p, T q) { return p / q; })) << N;
      auto z = x;
      z += y;
      ASSERT_BITS(valuesOf(z), sum) << N;
      z = x;
      z -= y;
      ASSERT_BITS(valuesOf(z), difference) << N;
      z = x;
      z *= y;
      ASSERT_BITS(valuesOf(z), product) << N;
      ASSERT_BITS(valuesOf(abs(x)), each(a, [](T p) { return std::fabs(p); })) << N;
      ASSERT_BITS(valuesOf(x * y + x), each(a, b,
                                            [](T p, T q) {
                                              volatile T rounded = p * q;  // nothing is contracted
                                              return rounded + p;
                                            }))
          << N;
    }
  });
}

TEST(LanesArithmetic, FourOperationsAndMagnitude) {
  expectArithmetic<float>();
  expectArithmetic<double>();
}

template <class T, int N>
void expectRoots() {
  kit::Random random(N);
  for (int round = 0; round < kRounds; ++round) {
    const auto a = random.vector<T>(N, kit::kKinds[round % 3]);
    ASSERT_BITS(valuesOf(sqrt(lanesOf<T, N>(a))), each(a, [](T p) { return std::sqrt(p); })) << N;
  }
}

TEST(LanesArithmetic, SquareRootsAreRoundedCorrectly) {
  expectRoots<float, 1>();
  expectRoots<float, 4>();
  expectRoots<float, 16>();
  expectRoots<float, 64>();
  expectRoots<double, 1>();
  expectRoots<double, 2>();
  expectRoots<double, 8>();
  expectRoots<double, 32>();
}

// A NaN on either side gives the second; so do two zeros.
template <class T>
void expectMinMax() {
  forEachWidth([]<int N>() {
    kit::Random random(N);
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (int round = 0; round < kRounds; ++round) {
      auto a = random.vector<T>(N, kit::kKinds[round % 3]), b = random.vector<T>(N, kit::kKinds[round % 3]);
      for (std::size_t i = 0; i < N; ++i) {
        const auto dice = random.integer(0, 7);
        if (dice == 0) a[i] = nan;
        if (dice == 1) b[i] = nan;
        if (dice == 2) a[i] = T(0), b[i] = T(-0.0);
        if (dice == 3) a[i] = T(-0.0), b[i] = T(0);
      }
      ASSERT_BITS(valuesOf(min(lanesOf<T, N>(a), lanesOf<T, N>(b))), each(a, b, [](T p, T q) { return p < q ? p : q; })) << N;
      ASSERT_BITS(valuesOf(max(lanesOf<T, N>(a), lanesOf<T, N>(b))), each(a, b, [](T p, T q) { return p > q ? p : q; })) << N;
    }
  });
}

TEST(LanesArithmetic, MinAndMaxDecideAsTheComparisonDoes) {
  expectMinMax<float>();
  expectMinMax<double>();
}

template <class T>
void expectJoins() {
  forEachWidth([]<int N>() {
    kit::Random random(N);
    for (int round = 0; round < kRounds; ++round) {
      const auto a = random.vector<T>(N, kit::kKinds[round % 3]);
      std::vector<T> sums = a;
      for (std::size_t half = N / 2; half > 0; half /= 2) {
        for (std::size_t i = 0; i < half; ++i) sums[i] = sums[i] + sums[i + half];
      }
      const auto x = lanesOf<T, N>(a);
      ASSERT_BITS(joinHalves(x), sums[0]) << N;
      if constexpr (N > 1) {
        ASSERT_BITS(valuesOf(lowerHalf(x)), std::vector<T>(a.begin(), a.begin() + N / 2)) << N;
        ASSERT_BITS(valuesOf(upperHalf(x)), std::vector<T>(a.begin() + N / 2, a.end())) << N;
      }
      if constexpr (N == 8) {
        ASSERT_BITS(joinHalves(x), ((a[0] + a[4]) + (a[2] + a[6])) + ((a[1] + a[5]) + (a[3] + a[7])));
      }
    }
  });
}

TEST(LanesArithmetic, JoinsAddInTheirOrder) {
  expectJoins<float>();
  expectJoins<double>();
}

template <class T, int N>
void expectJoinsOfFour() {
  kit::Random random(N);
  for (int round = 0; round < kRounds; ++round) {
    std::vector<T> set[4], joins;
    Lanes<T, N> x[4];
    for (int i = 0; i < 4; ++i) {
      set[i] = random.vector<T>(N, std::is_integral_v<T> ? kit::Random::kSmall : kit::kKinds[round % 3]);
      x[i] = lanesOf<T, N>(set[i]);
      joins.push_back(joinHalves(x[i]));
    }
    ASSERT_BITS(valuesOf(joinHalves(x[0], x[1], x[2], x[3])), joins) << N;
    if constexpr (N == 4 && std::is_same_v<T, float>) {
      const Transposed turned = transposed(x[0], x[1], x[2], x[3]);
      for (std::size_t j = 0; j < 4; ++j) {
        ASSERT_BITS(valuesOf(turned.lane[j]), (std::vector<float>{set[0][j], set[1][j], set[2][j], set[3][j]})) << j;
      }
    }
  }
}

TEST(LanesArithmetic, JoinsOfFourSetsEqualJoinsOfEach) {
  expectJoinsOfFour<float, 4>();
  expectJoinsOfFour<float, 8>();
  expectJoinsOfFour<float, 16>();
  expectJoinsOfFour<float, 32>();
  expectJoinsOfFour<double, 4>();
  expectJoinsOfFour<double, 8>();
  expectJoinsOfFour<double, 16>();
  expectJoinsOfFour<int32_t, 8>();
}

template <class To, class From>
void expectWideningLoads() {
  forEachWidth([]<int N>() {
    kit::Random random(N);
    for (int round = 0; round < 12; ++round) {
      const auto values = random.vector<From>(N, kit::kKinds[round % 3]);
      const kit::Area<From> area(values, kit::kPlaces[round % 3]);  // nothing behind the N elements is touched
      std::vector<To> expected;
      for (const From value : values) expected.push_back(static_cast<To>(value));
      ASSERT_BITS(valuesOf(loadAs<To, N>(area.data())), expected) << N;
    }
  });
}

TEST(LanesArithmetic, WideningLoadsAreExact) {
  expectWideningLoads<float, float>();
  expectWideningLoads<float, int16_t>();
  expectWideningLoads<double, int16_t>();
  expectWideningLoads<int32_t, int16_t>();
  expectWideningLoads<double, float>();
  expectWideningLoads<double, int32_t>();
}

TEST(LanesArithmetic, LoadsOfIntegersAsFloatsRoundToNearest) { expectWideningLoads<float, int32_t>(); }

}  // namespace
