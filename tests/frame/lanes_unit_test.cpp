// The verbs of Lanes, lane by lane against scalar code. Compiled once at every instruction level.
#include "frame/lanes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "frame/bits.h"
#include "kit/compare.h"
#include "kit/random.h"
#include "scoring/three_way.h"

namespace {

using qorsr::Lanes;

template <class T, int N>
std::vector<T> valuesOf(const Lanes<T, N>& lanes) {
  std::vector<T> v(N);
  lanes.store(v.data());
  return v;
}

template <class T, int N>
void expectSelections() {
  kit::Random random(N);
  for (int round = 0; round < 50; ++round) {
    const auto kind = kit::kKinds[round % 3];
    const auto x = random.vector<T>(N, kind), y = random.vector<T>(N, kind);
    const auto lx = Lanes<T, N>::load(x.data()), ly = Lanes<T, N>::load(y.data());
    std::vector<T> less, ways, signedAbs;
    bool all = true;
    for (std::size_t i = 0; i < N; ++i) {
      less.push_back(x[i] < y[i] ? T(1) : T(2));
      all = all && x[i] < y[i];
      ways.push_back(x[i] > T(2) ? T(-7) : x[i] > T(-3) ? T(-0.0) : T(5));
      signedAbs.push_back(std::copysign(x[i], T(-1)));
    }
    ASSERT_BITS(valuesOf(selectLess(lx, ly, Lanes<T, N>(T(1)), Lanes<T, N>(T(2)))), less);
    ASSERT_EQ(allLess(lx, ly), all);
    ASSERT_BITS(valuesOf(qorsr::ThreeWay<T, N>(lx, T(2), T(-3)).pick(T(-7), T(-0.0), T(5))), ways);
    ASSERT_BITS(valuesOf(minusAbs(lx)), signedAbs);
  }
}

// One lane that is not less decides, wherever it is: equal, equal but for the sign of zero, greater, no number.
template <class T, int N>
void expectAllLess() {
  const auto x = kit::Random(N).vector<T>(N, kit::Random::kPlain);
  const auto allBelow = [](const std::vector<T>& a, const std::vector<T>& b) {
    return allLess(Lanes<T, N>::load(a.data()), Lanes<T, N>::load(b.data()));
  };
  std::vector<T> above;
  for (const T value : x) above.push_back(std::nextafter(value, std::numeric_limits<T>::infinity()));
  EXPECT_TRUE(allBelow(x, above)) << N;
  for (std::size_t i = 0; i < N; ++i) {
    for (const T bad : {x[i], std::nextafter(x[i], -std::numeric_limits<T>::infinity()), std::numeric_limits<T>::quiet_NaN()}) {
      std::vector<T> y = above;
      y[i] = bad;
      EXPECT_FALSE(allBelow(x, y)) << N << " lanes, lane " << i << ", " << bad;
    }
  }
  EXPECT_FALSE(allBelow(std::vector<T>(N, -T(0)), std::vector<T>(N, T(0)))) << N;
}

TEST(Lanes, AllLess) {
  expectAllLess<float, 1>();
  expectAllLess<float, 4>();
  expectAllLess<float, 8>();
  expectAllLess<float, 16>();
  expectAllLess<float, 64>();
  expectAllLess<double, 1>();
  expectAllLess<double, 2>();
  expectAllLess<double, 4>();
  expectAllLess<double, 8>();
  expectAllLess<double, 32>();
}

TEST(Lanes, SelectionsOfFloats) {
  expectSelections<float, 1>();
  expectSelections<float, 4>();
  expectSelections<float, 8>();
  expectSelections<float, 16>();
  expectSelections<float, 64>();
}
TEST(Lanes, SelectionsOfDoubles) {
  expectSelections<double, 1>();
  expectSelections<double, 2>();
  expectSelections<double, 4>();
  expectSelections<double, 8>();
  expectSelections<double, 32>();
}

template <class To, class From, int N>
void expectConversion() {
  kit::Random random(N);
  for (int round = 0; round < 20; ++round) {
    const auto a = random.vector<From>(N, kit::kKinds[round % 3]);
    std::vector<To> expected;
    for (const From x : a) expected.push_back(static_cast<To>(x));
    ASSERT_BITS(valuesOf(qorsr::as<To>(Lanes<From, N>::load(a.data()))), expected) << N;
  }
}

template <int N>
void expectConversions() {
  expectConversion<double, float, N>();
  expectConversion<float, double, N>();
  expectConversion<double, int32_t, N>();
  expectConversion<float, int32_t, N>();
  expectConversion<float, int16_t, N>();
  expectConversion<double, int16_t, N>();
  expectConversion<int32_t, int16_t, N>();
  expectConversion<uint32_t, int32_t, N>();
  expectConversion<int32_t, uint32_t, N>();
}

TEST(Lanes, Conversions) {
  expectConversions<1>();
  expectConversions<2>();
  expectConversions<4>();
  expectConversions<8>();
  expectConversions<16>();
  expectConversions<64>();
}

// Lanes of 16 and 32-bit integers.
template <int N>
void expectIntegers() {
  kit::Random random(N);
  for (int round = 0; round < 30; ++round) {
    const auto x = random.vector<int16_t>(N, kit::kKinds[round % 3]);
    const auto y = random.vector<int32_t>(N, kit::kKinds[round % 3]);
    const auto lx = Lanes<int16_t, N>::load(x.data());
    const auto lower = Lanes<int32_t, N / 2>::load(y.data()), upper = Lanes<int32_t, N / 2>::load(y.data() + N / 2);
    std::vector<int16_t> limited;
    for (const int32_t v : y) limited.push_back(qorsr::saturate<int16_t>(v));
    ASSERT_BITS(valuesOf(qorsr::saturated(lower, upper)), limited);
    ASSERT_BITS(valuesOf(qorsr::lowerHalf(as<int32_t>(lx))), std::vector<int32_t>(x.begin(), x.begin() + N / 2));
    ASSERT_BITS(valuesOf(qorsr::upperHalf(as<int32_t>(lx))), std::vector<int32_t>(x.begin() + N / 2, x.end()));
    for (const int64_t sf : {int64_t{0}, int64_t{1}, int64_t{15}, int64_t{31}, int64_t{32}, int64_t{1} << 40, int64_t{-1},
                             int64_t{-31}, int64_t{-32}, -(int64_t{1} << 40)}) {
      std::vector<int32_t> shifted;
      for (int i = 0; i < N / 2; ++i) shifted.push_back(qorsr::shiftByScale(y[static_cast<std::size_t>(i)], sf));
      ASSERT_BITS(valuesOf(qorsr::ScaleShift(sf)(lower)), shifted);
    }
  }
}

TEST(Lanes, Integers) {
  expectIntegers<8>();
  if constexpr (qorsr::kNativeBytes >= 32) expectIntegers<16>();
  if constexpr (qorsr::kNativeBytes >= 64) expectIntegers<32>();
}

template <int N>
void expectTruncation() {
  kit::Random random(N);
  for (int round = 0; round < 20; ++round) {
    const auto x = random.vector<float>(N, kit::kKinds[round % 3]);
    std::vector<int32_t> expected;
    for (const float v : x) expected.push_back(qorsr::truncateOrLowest<int32_t>(v));
    ASSERT_BITS(valuesOf(qorsr::truncated(Lanes<float, N>::load(x.data()))), expected);
  }
}

TEST(Lanes, Truncation) {
  expectTruncation<1>();
  expectTruncation<4>();
  expectTruncation<8>();
  expectTruncation<32>();
}

TEST(Lanes, ABroadcastKeepsTheSignOfZero) {
  EXPECT_BITS(valuesOf(Lanes<float, 8>(-0.0F)), std::vector<float>(8, -0.0F));
  const float one = 1.0F;
  const std::vector<float> expected = {1.0F, -0.0F, -0.0F, -0.0F};
  EXPECT_BITS(valuesOf(qorsr::Tail<float, 4>(1).load(&one, -0.0F)), expected);
}

template <int N>
void expectWholeNumbers() {
  kit::Random random(N);
  for (int round = 0; round < 50; ++round) {
    const auto x = random.vector<int32_t>(N, kit::kKinds[round % 3]);
    const auto a = random.vector<int16_t>(N, kit::kKinds[round % 3]), b = random.vector<int16_t>(N, kit::Random::kNasty);
    const auto lx = Lanes<int32_t, N>::load(x.data());
    const auto la = Lanes<int16_t, N>::load(a.data()), lb = Lanes<int16_t, N>::load(b.data());
    const int count = round % 32;
    std::vector<int32_t> right, left;
    std::vector<int16_t> narrow, difference;
    for (std::size_t i = 0; i < N; ++i) {
      right.push_back(x[i] >> count);
      left.push_back(static_cast<int32_t>(static_cast<uint32_t>(x[i]) << count));
      narrow.push_back(static_cast<int16_t>(std::clamp(x[i], -32768, 32767)));
      difference.push_back(static_cast<int16_t>(std::clamp(a[i] - b[i], -32768, 32767)));
    }
    ASSERT_BITS(valuesOf(lx >> count), right);
    ASSERT_BITS(valuesOf(shiftLeft(lx, count)), left);
    ASSERT_BITS(valuesOf(saturated(lx)), narrow);
    ASSERT_BITS(valuesOf(subtractSaturated(la, lb)), difference);
  }
}

TEST(Lanes, ShiftsAndSaturations) {
  expectWholeNumbers<1>();
  expectWholeNumbers<8>();
  expectWholeNumbers<16>();
  expectWholeNumbers<32>();
  expectWholeNumbers<64>();
}

}  // namespace
