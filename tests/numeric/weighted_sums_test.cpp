// Weighted sums of two vectors: bits against the model, markers, the roundings of 16 bits, faults, environment.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/numeric_vectors.h"
#include "qorsr.h"

namespace {

template <class T, class Real>
using Blend = QorStatus (*)(const T*, const T*, T*, int32_t, Real, Real);

template <class Real>
struct Weights {
  Real first, second;
};
template <class Real>
std::vector<Weights<Real>> allWeights(kit::Random& random) {
  const Real inf = std::numeric_limits<Real>::infinity(), nan = std::numeric_limits<Real>::quiet_NaN(),
             tiny = std::numeric_limits<Real>::min();
  return {{1, 1},
          {Real(0.3), Real(0.7)},
          {2, 2},
          {-1, 3},
          {1, -1},
          {0, 0},
          {-0.0, 0.0},
          {5, -5},
          {1, 0},
          {0, 1},
          {tiny, 1},
          {inf, 1},
          {nan, 1},
          {inf, -inf},
          {tiny, -tiny / 2},
          {static_cast<Real>(random.real(-3, 3)), static_cast<Real>(random.real(-3, 3))}};
}

template <class T>
void expectBlends(Blend<T, T> call, bool half) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const auto& w : allWeights<T>(random)) {
      for (const auto kind : {kit::Random::kPlain, kit::Random::kNasty}) {
        const auto a = random.vector<T>(length, kind), b = random.vector<T>(length, kind);
        const bool zero = w.first + w.second == 0;
        std::vector<T> expected;
        for (std::size_t i = 0; i < a.size(); ++i) {
          expected.push_back(zero ? model::blendMarker(a[i], b[i], w.first, w.second)
                                  : model::blend(a[i], b[i], w.first, w.second, half));
        }
        const kit::Place place = kit::kPlaces[length % 3];
        const kit::Area<T> first(a, place), second(b, kit::kPlaces[(length + 1) % 3]);
        kit::Area<T> result(length, place);
        ASSERT_EQ(call(first.data(), second.data(), result.data(), length, w.first, w.second),
                  zero ? qorStatusDivideByZero : qorStatusOk);
        ASSERT_BITS(result.values(), expected) << "length " << length << " weights " << w.first << ", " << w.second;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}
TEST(WeightedSum, Reals) {
  expectBlends<float>(qorsWeightedSum_32f, false);
  expectBlends<double>(qorsWeightedSum_64f, false);
}
TEST(WeightedSumHalf, Reals) {
  expectBlends<float>(qorsWeightedSumHalf_32f, true);
  expectBlends<double>(qorsWeightedSumHalf_64f, true);
}

void expectShortBlends(Blend<int16_t, float> call, bool half) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const auto& w : allWeights<float>(random)) {
      for (int unaligned = 0; unaligned < 4; ++unaligned) {  // none, or one of the three
        const auto place = [&](int which) { return unaligned == which ? kit::Place::kOddStart : kit::Place::kAligned; };
        const auto a = random.vector<int16_t>(length, kit::Random::kNasty), b = random.vector<int16_t>(length, kit::Random::kNasty);
        const bool zero = w.first + w.second == 0, rounded = length >= 8 && unaligned == 0;
        std::vector<int16_t> expected;
        for (std::size_t i = 0; i < a.size(); ++i) {
          const auto x = static_cast<float>(a[i]), y = static_cast<float>(b[i]);
          const float sum = zero ? model::blendMarker(x, y, w.first, w.second) : model::blend(x, y, w.first, w.second, half);
          expected.push_back(model::shortBlend(sum, rounded));
        }
        const kit::Area<int16_t> first(a, place(1)), second(b, place(2));
        kit::Area<int16_t> result(length, place(3));
        ASSERT_EQ(call(first.data(), second.data(), result.data(), length, w.first, w.second),
                  zero ? qorStatusDivideByZero : qorStatusOk);
        ASSERT_BITS(result.values(), expected)
            << "length " << length << " weights " << w.first << ", " << w.second << " unaligned " << unaligned;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}
TEST(WeightedSum, Int16) { expectShortBlends(qorsWeightedSum_16s, false); }
TEST(WeightedSumHalf, Int16) { expectShortBlends(qorsWeightedSumHalf_16s, true); }

TEST(WeightedSum, KnownValues) {
  const float first[] = {4, 8}, second[] = {2, -6};
  float result[2];
  ASSERT_EQ(qorsWeightedSumHalf_32f(first, second, result, 2, 2, 2), qorStatusOk);
  EXPECT_EQ(result[0], 2.0F);  // first / 4 + second / 2
  EXPECT_EQ(result[1], -1.0F);
  ASSERT_EQ(qorsWeightedSum_32f(first, second, result, 2, 1, 1), qorStatusOk);
  EXPECT_EQ(result[0], 3.0F);
  EXPECT_EQ(result[1], 1.0F);
}
TEST(WeightedSum, ShortsAreRoundedOrTruncated) {
  alignas(16) int16_t first[8], second[8], result[8];
  for (int i = 0; i < 8; ++i) first[i] = static_cast<int16_t>(2 * i - 7), second[i] = 0;
  ASSERT_EQ(qorsWeightedSum_16s(first, second, result, 8, 1, 1), qorStatusOk);
  EXPECT_EQ(result[0], -4);  // -3.5
  EXPECT_EQ(result[1], -2);  // -2.5
  EXPECT_EQ(result[7], 4);   // 3.5
  ASSERT_EQ(qorsWeightedSum_16s(first, second, result, 7, 1, 1), qorStatusOk);
  EXPECT_EQ(result[0], -3);
  EXPECT_EQ(result[1], -2);
  EXPECT_EQ(result[6], 2);
}

template <class T, class Real>
void expectFaults(Blend<T, Real> call) {
  struct Args {
    const T *first, *second;
    T* result;
    int32_t length;
    Real weight;
  };
  const T first[4] = {1, 2, 3, 4}, second[4] = {5, 6, 7, 8};
  T result[4] = {77, 77, 77, 77};
  const auto run = [=](const Args& a) { return call(a.first, a.second, a.result, a.length, a.weight, Real(2)); };
  for (const Real weight : {Real(1), Real(-2)}) {  // the sum is 3, or 0
    kit::FaultTable<Args>({first, second, result, 4, weight}, run, {{result, 4}})
        .fault("null first", qorStatusNullPointer, &Args::first, nullptr)
        .fault("null second", qorStatusNullPointer, &Args::second, nullptr)
        .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
        .fault("length zero", qorStatusBadSize, &Args::length, 0)
        .fault("length negative", qorStatusBadSize, &Args::length, INT32_MIN)
        .check();
    for (T& value : result) value = 77;
  }
}
TEST(WeightedSumFaults, EveryMember) {
  expectFaults<int16_t, float>(qorsWeightedSum_16s);
  expectFaults<float, float>(qorsWeightedSum_32f);
  expectFaults<double, double>(qorsWeightedSum_64f);
  expectFaults<int16_t, float>(qorsWeightedSumHalf_16s);
  expectFaults<float, float>(qorsWeightedSumHalf_32f);
  expectFaults<double, double>(qorsWeightedSumHalf_64f);
}

TEST(WeightedSumEnvironment, IsKept) {
  kit::expectEnvironmentKept([] {
    alignas(16) int16_t a[20] = {1, 2, 3}, b[20] = {7, 8, 9}, c[20];
    const float x[5] = {1, 2, 3, 4, 5};
    float y[5];
    qorsWeightedSum_16s(a, b, c, 20, 0.3F, 0.9F);
    qorsWeightedSum_16s(a, b, c, 7, 0.3F, 0.9F);
    qorsWeightedSum_32f(x, x, y, 5, 1, -1);
    qorsWeightedSumHalf_32f(x, x, y, 5, 1, 3);
  });
}

// Rounding to nearest does not follow the caller's mode.
TEST(WeightedSumEnvironment, ShortsAreRoundedToNearestInEveryMode) {
  alignas(16) int16_t first[8] = {-7, -5, -3, -1, 1, 3, 5, 7}, second[8] = {}, expected[8], result[8];
  ASSERT_EQ(qorsWeightedSum_16s(first, second, expected, 8, 1, 1), qorStatusOk);
  for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    std::fesetround(mode);
    qorsWeightedSum_16s(first, second, result, 8, 1, 1);
    std::fesetround(FE_TONEAREST);
    EXPECT_BITS(result, expected, 8);
  }
}

}  // namespace
