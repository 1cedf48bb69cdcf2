// Whole numbers in Lanes: shifts, saturation, interleaving and products of pairs, against scalar loops. Compiled once at every
// instruction level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "frame/bits.h"
#include "frame/lanes.h"
#include "kit/compare.h"
#include "kit/random.h"

namespace {

using namespace qorsr;

constexpr int kRounds = 60;

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

template <class T, int N>
void expectShifts() {
  kit::Random random(N);
  for (int count = 0; count < static_cast<int>(8 * sizeof(T)); ++count) {
    const auto a = random.vector<T>(N, kit::Random::kNasty);
    std::vector<T> right, left;
    for (const T x : a) {
      right.push_back(qorsr::shiftRight(x, int64_t{count}));
      left.push_back(qorsr::shiftLeft(x, int64_t{count}));
    }
    ASSERT_BITS(valuesOf(shiftRight(lanesOf<T, N>(a), count)), right) << N << " lanes by " << count;
    ASSERT_BITS(valuesOf(shiftLeft(lanesOf<T, N>(a), count)), left) << N << " lanes by " << count;
  }
}

TEST(LanesInteger, Shifts) {
  expectShifts<int32_t, 1>();
  expectShifts<int32_t, 4>();
  expectShifts<int32_t, 8>();
  expectShifts<int32_t, 16>();
  expectShifts<int16_t, 1>();
  expectShifts<int16_t, 8>();
  expectShifts<int16_t, 16>();
  expectShifts<int16_t, 32>();
}

template <int N>
void expectSaturation() {
  kit::Random random(N);
  for (int round = 0; round < kRounds; ++round) {
    const auto a = random.vector<int16_t>(N, kit::kKinds[round % 3]), b = random.vector<int16_t>(N, kit::kKinds[round % 3]);
    auto wide = random.vector<int32_t>(N, kit::kKinds[round % 3]);
    for (int32_t& x : wide) {
      if (random.integer(0, 2) == 0) x = static_cast<int32_t>(random.integer(-3, 3)) + (random.integer(0, 1) ? 32767 : -32768);
    }
    std::vector<int16_t> difference, narrowed;
    for (std::size_t i = 0; i < N; ++i) {
      difference.push_back(saturate<int16_t>(static_cast<int32_t>(a[i]) - b[i]));
      narrowed.push_back(saturate<int16_t>(wide[i]));
    }
    ASSERT_BITS(valuesOf(subtractSaturated(lanesOf<int16_t, N>(a), lanesOf<int16_t, N>(b))), difference) << N;
    ASSERT_BITS(valuesOf(saturated(lanesOf<int32_t, N>(wide))), narrowed) << N;
  }
}

TEST(LanesInteger, Saturation) {
  expectSaturation<1>();
  expectSaturation<4>();
  expectSaturation<8>();
  expectSaturation<16>();
  expectSaturation<32>();
  expectSaturation<64>();
}

template <class T, int N>
void expectInterleaving() {
  kit::Random random(N);
  const auto a = random.vector<T>(N), b = random.vector<T>(N);
  std::vector<T> lower, upper;
  for (std::size_t i = 0; i < N / 2; ++i) {
    lower.insert(lower.end(), {a[i], b[i]});
    upper.insert(upper.end(), {a[N / 2 + i], b[N / 2 + i]});
  }
  EXPECT_BITS(valuesOf(interleaved(lanesOf<T, N>(a), lanesOf<T, N>(b)).first), lower) << N;
  EXPECT_BITS(valuesOf(interleaved(lanesOf<T, N>(a), lanesOf<T, N>(b)).second), upper) << N;
}

template <int N>
void expectPairDots() {
  kit::Random random(N);
  for (int round = 0; round < kRounds; ++round) {
    const auto a = random.vector<int16_t>(N, kit::kKinds[round % 3]), b = random.vector<int16_t>(N, kit::kKinds[round % 3]);
    std::vector<int32_t> expected;
    for (std::size_t i = 0; i < N; i += 2) {
      expected.push_back(wrapAdd(int32_t{a[i]} * b[i], int32_t{a[i + 1]} * b[i + 1]));
    }
    ASSERT_BITS(valuesOf(pairDots(lanesOf<int16_t, N>(a), lanesOf<int16_t, N>(b))), expected) << N;
  }
  const std::vector<int16_t> lowest(N, INT16_MIN);  // the one pair whose sum wraps
  const auto x = lanesOf<int16_t, N>(lowest);
  EXPECT_BITS(valuesOf(pairDots(x, x)), std::vector<int32_t>(N / 2, INT32_MIN)) << N;
}

TEST(LanesInteger, OneRegister) {
  expectInterleaving<int16_t, 8>();
  expectInterleaving<int32_t, 4>();
  expectPairDots<8>();
  expectInterleaving<int16_t, kNativeLanes<int16_t>>();
  expectInterleaving<int32_t, kNativeLanes<int32_t>>();
  expectPairDots<kNativeLanes<int16_t>>();
}

}  // namespace
