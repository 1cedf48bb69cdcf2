// Lanes in another order, 16-bit lanes as products and floats, and the registers of a tail. Compiled once at every instruction level.
#include <gtest/gtest.h>

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

// The 2N lanes of a pair, one after the other.
template <class T, int N>
std::vector<T> valuesOf(const LanesPair<T, N>& pair) {
  std::vector<T> v = valuesOf(pair.first);
  const std::vector<T> second = valuesOf(pair.second);
  v.insert(v.end(), second.begin(), second.end());
  return v;
}

// Any order, lane by lane.
template <auto Order, int M, class T, int N>
void expectPermuted(const std::vector<T>& a, const std::vector<T>& b) {
  std::vector<T> both = a, expected;
  both.insert(both.end(), b.begin(), b.end());
  for (int i = 0; i < M; ++i) expected.push_back(both[static_cast<std::size_t>(Order(i, N))]);
  EXPECT_BITS(valuesOf(permuted<Order, M>(lanesOf<T, N>(a), lanesOf<T, N>(b))), expected) << N << " lanes to " << M;
}

constexpr int firstOfBoth(int i, int n) { return i * n; }
constexpr int rotated(int i, int n) { return n - 1 + i; }
constexpr int pairsSwapped(int i, int) { return i ^ 1; }

template <class T, int N, int G>
void expectInterleaved(const std::vector<T>& a, const std::vector<T>& b) {
  std::vector<T> expected;
  for (std::size_t group = 0; group < N / G; ++group) {
    expected.insert(expected.end(), a.begin() + group * G, a.begin() + (group + 1) * G);
    expected.insert(expected.end(), b.begin() + group * G, b.begin() + (group + 1) * G);
  }
  EXPECT_BITS(valuesOf(interleaved<G>(lanesOf<T, N>(a), lanesOf<T, N>(b))), expected) << N << " lanes, " << G << " at a time";
}

template <class T, int N>
void expectOrders() {
  kit::Random random(N);
  const auto a = random.vector<T>(N), b = random.vector<T>(N);
  std::vector<T> both = a;
  both.insert(both.end(), b.begin(), b.end());
  EXPECT_BITS(valuesOf(reversed(lanesOf<T, N>(a))), std::vector<T>(a.rbegin(), a.rend())) << N;
  EXPECT_BITS(valuesOf(concatenated(lanesOf<T, N>(a), lanesOf<T, N>(b))), both) << N;
  expectPermuted<firstOfBoth, 2, T, N>(a, b);
  expectPermuted<firstOfBoth, 1, T, N>(a, b);
  expectPermuted<rotated, N, T, N>(a, b);
  if constexpr (N > 1) {
    expectPermuted<pairsSwapped, N, T, N>(a, b);
    EXPECT_BITS(valuesOf(lowerHalf(lanesOf<T, N>(a))), std::vector<T>(a.begin(), a.begin() + N / 2)) << N;
    EXPECT_BITS(valuesOf(upperHalf(lanesOf<T, N>(a))), std::vector<T>(a.begin() + N / 2, a.end())) << N;
    expectInterleaved<T, N, 1>(a, b);
    if constexpr (N > 2) expectInterleaved<T, N, 2>(a, b);
    if constexpr (N > 4) expectInterleaved<T, N, 4>(a, b);
  }
}

TEST(LanesOrder, PermutedInterleavedAndHalved) {
  expectOrders<float, 1>();
  expectOrders<float, 2>();
  expectOrders<float, 4>();
  expectOrders<float, 8>();
  expectOrders<float, 16>();
  expectOrders<float, 64>();
  expectOrders<double, 2>();
  expectOrders<double, 4>();
  expectOrders<double, 8>();
  expectOrders<double, 32>();
  expectOrders<int32_t, 4>();
  expectOrders<int16_t, 8>();
  expectOrders<int16_t, 32>();
}

template <int N>
void expectShorts() {
  kit::Random random(N);
  for (int round = 0; round < 60; ++round) {
    const auto a = random.vector<int16_t>(N, kit::kKinds[round % 3]);
    const auto x = lanesOf<int16_t, N>(a);
    const auto b = random.vector<int16_t>(N, kit::kKinds[round % 3]);
    std::vector<int16_t> upper;
    std::vector<float> floats;
    for (std::size_t i = 0; i < N; ++i) {
      upper.push_back(static_cast<int16_t>(int32_t{a[i]} * b[i] >> 16));
      floats.push_back(a[i]);
    }
    ASSERT_BITS(valuesOf(upperProducts(x, lanesOf<int16_t, N>(b))), upper) << N;
    ASSERT_BITS(valuesOf(as<float>(x)), floats) << N;

    const auto wide = random.vector<int32_t>(N, kit::kKinds[round % 3]);
    std::vector<float> rounded;
    std::vector<uint32_t> bits;
    for (const int32_t v : wide) {
      rounded.push_back(static_cast<float>(v));
      bits.push_back(static_cast<uint32_t>(v));
    }
    ASSERT_BITS(valuesOf(as<float>(lanesOf<int32_t, N>(wide))), rounded) << N;
    ASSERT_BITS(valuesOf(as<uint32_t>(lanesOf<int32_t, N>(wide))), bits) << N;
    ASSERT_BITS(valuesOf(as<int32_t>(as<uint32_t>(lanesOf<int32_t, N>(wide)))), wide) << N;
  }
}

TEST(LanesOrder, ShortsAsProductsAndFloats) {
  expectShorts<8>();
  expectShorts<16>();
  expectShorts<32>();
}

template <class T, int N>
void expectAnyLess() {
  kit::Random random(N);
  for (int round = 0; round < 200; ++round) {
    std::vector<T> a(N, T(2)), b(N, T(1));  // none is less but the one lane that is made so
    const auto lane = static_cast<std::size_t>(random.integer(0, N - 1));
    const bool any = round % 2 == 0;
    if (any) b[lane] = T(3);
    if (!any) b[lane] = round % 4 == 1 ? std::numeric_limits<T>::quiet_NaN() : T(2);
    ASSERT_EQ(anyLess(lanesOf<T, N>(a), lanesOf<T, N>(b)), any) << N << " lanes, lane " << lane;
  }
}

TEST(LanesOrder, AnyLess) {
  expectAnyLess<float, 1>();
  expectAnyLess<float, 4>();
  expectAnyLess<float, 8>();
  expectAnyLess<float, 16>();
  expectAnyLess<float, 32>();
  expectAnyLess<double, 2>();
  expectAnyLess<double, 4>();
  expectAnyLess<double, 8>();
}

// The registers of a tail, one by one, hold what its load holds; those beyond the end are not visited.
template <class T, class From, int N>
void expectPartsOfTail() {
  kit::Random random(N);
  for (int n = 1; n <= N; ++n) {
    const auto values = random.vector<From>(n);
    const kit::Area<From> area(values, kit::Place::kAtGuard);
    Lanes<T, N> loaded(T(7));
    int visited = 0;
    Tail<T, N>(n).forParts([&](auto part) {
      loaded.part[part.kIndex] = part.load(area.data(), T(5));
      ++visited;
    });
    constexpr int kPart = Lanes<T, N>::kPart;
    ASSERT_EQ(visited, (n + kPart - 1) / kPart) << n << " of " << N;
    std::vector<T> expected;
    for (const From value : values) expected.push_back(static_cast<T>(value));
    expected.resize(static_cast<std::size_t>(visited) * kPart, T(5));
    expected.resize(N, T(7));
    ASSERT_BITS(valuesOf(loaded), expected) << n << " of " << N;
  }
}

TEST(LanesOrder, RegistersOfATail) {
  expectPartsOfTail<float, float, 8>();
  expectPartsOfTail<float, float, 16>();
  expectPartsOfTail<float, float, 64>();
  expectPartsOfTail<double, double, 16>();
  expectPartsOfTail<double, float, 16>();
  expectPartsOfTail<float, int16_t, 16>();
}

}  // namespace
