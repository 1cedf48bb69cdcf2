// Mel and mixed banks of floats and 16 bits: centres and weights against the formulas, sizes, faults, memory.
#include "model/mel_bank.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "features/filter_bank_fixture.h"
#include "kit/compare.h"
#include "kit/core.h"
#include "kit/faults.h"

namespace {

using banks::Float;
using banks::Int16;
using model::MelArguments;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

template <class Kind>
class MelBank : public testing::Test {};
using Kinds = testing::Types<Float, Int16>;
TYPED_TEST_SUITE(MelBank, Kinds);

template <class Kind>
QorStatus make(banks::Bank<Kind>& bank, const MelArguments& a) {
  return Kind::melAlloc(&bank.state, &bank.order, a.length, a.sampleFrequency, a.low, a.high, a.filters, a.melMul, a.melDiv,
                        a.flags);
}
template <class Kind>
QorStatus makeMixed(banks::Bank<Kind>& bank, const MelArguments& a, float join, int32_t linear) {
  return Kind::mixedAlloc(&bank.state, &bank.order, a.length, a.sampleFrequency, a.low, a.high, a.filters, join, linear, a.melMul,
                          a.melDiv, a.flags);
}

// Centres and all weights, as the exchange functions show them. One element more must stay as it is.
template <class Kind, class FilterOf>
void expectContents(const typename Kind::State* state, const std::vector<int32_t>& centers, FilterOf filterOf) {
  std::vector<int32_t> stored(centers.size() + 1, 77), expectedCenters = centers;
  expectedCenters.push_back(77);
  if (Kind::getCenters(state, stored.data()) == qorStatusOk) {  // centres that the exchange refuses still have weights
    ASSERT_BITS(stored, expectedCenters);
  }
  for (std::size_t k = 1; k + 1 < centers.size(); ++k) {
    std::vector<float> expected;
    for (const auto w : filterOf(k).all()) expected.push_back(Kind::exchanged(w));
    expected.push_back(77);
    std::vector<float> weights(expected.size(), 77);
    ASSERT_EQ(Kind::getCoeffs(state, static_cast<int32_t>(k), weights.data()), qorStatusOk);
    ASSERT_BITS(weights, expected) << "filter " << k << " " << testing::PrintToString(centers);
  }
}

template <class Kind>
void expectMelBank(const typename Kind::State* state, const MelArguments& a) {
  const model::MelBankModel m{a};
  const auto centers = m.centers();
  expectContents<Kind>(state, centers, [&](std::size_t k) { return m.filter<typename Kind::Weight>(centers, k); });
}

std::string text(const MelArguments& a) {
  return "length " + std::to_string(a.length) + " fs " + std::to_string(a.sampleFrequency) + " low " + std::to_string(a.low) +
         " high " + std::to_string(a.high) + " filters " + std::to_string(a.filters) + " mul " + std::to_string(a.melMul) +
         " div " + std::to_string(a.melDiv) + " flags " + std::to_string(a.flags);
}

const std::vector<MelArguments>& usualArguments() {
  static const std::vector<MelArguments> all = [] {
    std::vector<MelArguments> v;
    for (const int32_t flags : {1, 2, 5, 6}) {
      for (const int32_t length : {1, 2, 4, 16, 64, 256, 500, 1024}) {
        for (const int32_t n : {1, 2, 3, 13, 26, 40}) {
          v.push_back({length, 16000, 20, 8000, n, 1127.01048F, 700, flags});
          v.push_back({length, 8000, 64, 3400.5F, n, 2595 / 2.302585F, 700, flags});
          v.push_back({length, 44100, 1, 22050, n, 1000, 1000, flags});
        }
      }
    }
    return v;
  }();
  return all;
}

// Arguments that pass the tests and make no sensible bank.
const std::vector<MelArguments> kStrangeArguments = {
    {64, 16000, 300, 300, 5, 1127, 700, 1},
    {64, 16000, 300, 300, 5, 1127, 700, 2},
    {64, 16000, 20, 8000, 5, 0, 700, 1},
    {64, 16000, 20, 8000, 5, 1127, 0, 2},
    {64, 16000, 20, 8000, 5, -1127, 700, 1},
    {64, 16000, 20, 8000, 5, 1127, -700, 1},
    {64, 16000, 20, 8000, 5, -1127, 700, 2},
    {64, 16000, 20, 8000, 5, 1127, -9000, 2},
    {64, kNaN, 20, 8000, 5, 1127, 700, 1},
    {64, 16000, kNaN, 8000, 5, 1127, 700, 1},
    {64, 16000, 20, kNaN, 5, 1127, 700, 2},
    {64, kInfinity, 20, 8000, 5, 1127, 700, 1},
    {64, kInfinity, 20, kInfinity, 5, 1127, 700, 2},
    {64, 1e-30F, 1e-38F, 1e-31F, 3, 1e30F, 1e-30F, 1},
    {64, 16000, 20, 8000, 5, 1e-20F, 700, 1},
    {64, 1e30F, 1, 1e29F, 5, 1e-3F, 1e-30F, 2},
};

TYPED_TEST(MelBank, CentersAndWeightsFollowTheFormulas) {
  for (const auto* list : {&usualArguments(), &kStrangeArguments}) {
    for (const MelArguments& a : *list) {
      banks::Bank<TypeParam> bank;
      ASSERT_EQ(make(bank, a), qorStatusOk) << text(a);
      ASSERT_EQ(bank.order, model::orderFor(a.length));
      expectMelBank<TypeParam>(bank.state, a);
      if (testing::Test::HasFailure()) FAIL() << text(a);
    }
  }
}

TYPED_TEST(MelBank, MixedBanksFollowTheFormulas) {
  std::vector<MelArguments> all = usualArguments();
  all.insert(all.end(), kStrangeArguments.begin(), kStrangeArguments.end());
  for (const MelArguments& a : all) {
    for (const int32_t linear : {1, a.filters / 2, a.filters - 1, a.filters}) {
      if (linear < 1) continue;
      for (const float join : {a.low, a.low + (a.high - a.low) * 0.25F, a.high}) {
        banks::Bank<TypeParam> bank;
        const QorStatus status = makeMixed(bank, a, join, linear);
        if (join > a.high) continue;  // rounding
        ASSERT_EQ(status, qorStatusOk) << text(a) << " join " << join;
        const model::MelBankModel m{a};
        const auto centers = m.mixedCenters(join, linear);
        expectContents<TypeParam>(bank.state, centers, [&](std::size_t k) {
          return m.mixedFilter<typename TypeParam::Weight>(centers, k, join, linear);
        });
        if (testing::Test::HasFailure()) FAIL() << text(a) << " join " << join << " linear " << linear;
      }
    }
  }
}

TYPED_TEST(MelBank, IndexShapedWeightsFallInEqualSteps) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(make(bank, {16, 16, 1, 8, 1, 1e6F, 1e6F, 2}), qorStatusOk);  // as good as linear: centres 1, 4 or 5, 8
  int32_t centers[3];
  ASSERT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
  EXPECT_BITS(std::vector<int32_t>(centers, centers + 3), std::vector<int32_t>{1, 4, 8});
  float weights[8];
  ASSERT_EQ(TypeParam::getCoeffs(bank.state, 1, weights), qorStatusOk);
  EXPECT_EQ(weights[0], 0.25F);
  EXPECT_EQ(weights[3], 1.0F);
  EXPECT_NEAR(static_cast<double>(weights[4]), 0.8, 1e-4);
  EXPECT_NEAR(static_cast<double>(weights[7]), 0.2, 1e-4);
}

TYPED_TEST(MelBank, SectionsOfTwoBinsHaveWeightsOfHalvesAndThirds) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(make(bank, {16, 16, 2, 5.5F, 1, 1e6F, 1e6F, 2}), qorStatusOk);  // as good as linear: centres 2, 3.75, 5.5
  int32_t centers[3];
  ASSERT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
  EXPECT_BITS(std::vector<int32_t>(centers, centers + 3), std::vector<int32_t>{2, 4, 6});
  float weights[5];
  ASSERT_EQ(TypeParam::getCoeffs(bank.state, 1, weights), qorStatusOk);
  const bool real = std::is_same_v<TypeParam, Float>;  // thirds of 16384 are truncated
  const std::vector<float> expected = {real ? 1.0F / 3 : 5461.0F / 16384, real ? 2.0F / 3 : 10922.0F / 16384, 1.0F,
                                       real ? 2.0F / 3 : 10922.0F / 16384, real ? 1.0F / 3 : 5461.0F / 16384};
  EXPECT_BITS(std::vector<float>(weights, weights + 5), expected);
}

TYPED_TEST(MelBank, AnAllLinearBankOnlyTestsItsHighFrequency) {
  for (const int32_t flags : {1, 2}) {
    std::vector<float> seen[2];
    for (const bool far : {false, true}) {
      banks::Bank<TypeParam> bank;
      ASSERT_EQ(makeMixed(bank, {64, 16000, 500, far ? 8000.0F : 4000.0F, 6, 1127, 700, flags}, 4000, 6), qorStatusOk);
      int32_t centers[8];
      ASSERT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
      EXPECT_BITS(std::vector<int32_t>(centers, centers + 8), std::vector<int32_t>{2, 4, 6, 8, 10, 12, 14, 16});
      for (int32_t k = 1; k <= 6; ++k) {
        float weights[5];
        ASSERT_EQ(TypeParam::getCoeffs(bank.state, k, weights), qorStatusOk);
        seen[far].insert(seen[far].end(), weights, weights + 5);
      }
    }
    EXPECT_BITS(seen[0], seen[1]);
  }
}

TYPED_TEST(MelBank, AHighFrequencyAtHalfTheSampleFrequencyEndsAtTheLastBin) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(make(bank, {500, 16000, 20, 8000, 26, 1127.01048F, 700, 2}), qorStatusOk);
  int32_t centers[28];
  ASSERT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
  EXPECT_EQ(bank.order, 9);
  EXPECT_EQ(centers[27], 256);
}

// ---- Caller's blocks ----

TYPED_TEST(MelBank, SizesFollowTheRule) {
  const int64_t record = std::is_same_v<TypeParam, Float> ? 52 : 56;
  const auto rows = [](int64_t r, int64_t c) { return (r + ((c + 7) & ~int64_t{7}) * r + 7) * 4; };
  for (const int32_t length : {1, 2, 5, 64, 500, 4096}) {
    for (const int64_t n : {1, 2, 26, 100}) {
      const int64_t half = model::powerOfTwoFor(length) / 2;
      const int64_t expected =
          record + 32 + (4 * n + 44) + (4 * n + 40) + rows(n + 2, half + 3) + 32 + rows(n + 2, half) + 32 + (4 * n + 40);
      for (const int32_t flags : {1, 2, 5, 6}) {
        int32_t size = 0;
        ASSERT_EQ(TypeParam::melSize(length, static_cast<int32_t>(n), flags, &size), qorStatusOk);
        if (flags < 4) {
          EXPECT_EQ(size, expected);
        } else {
          EXPECT_GE(size, expected + 96 + 16 * half + 64);
        }
      }
    }
  }
}

TYPED_TEST(MelBank, FitsItsSizeAtEveryAddress) {
  using State = typename TypeParam::State;
  const int32_t step = std::is_same_v<TypeParam, Float> ? 4 : 2;
  kit::Random random;
  for (MelArguments a : std::vector<MelArguments>{{2, 16, 1, 8, 1, 100, 100, 1},
                                                  {5, 16, 1, 8, 2, 100, 100, 2},
                                                  {100, 16000, 20, 8000, 7, 1127, 700, 1},
                                                  {64, 16000, 20, 8000, 30, 1127, 700, 2}}) {
    for (const int32_t front : {0, 4}) {
      a.flags = (a.flags & 3) | front;
      int32_t size = 0, order = 0;
      ASSERT_EQ(TypeParam::melSize(a.length, a.filters, a.flags, &size), qorStatusOk);
      for (int32_t shift = 0; shift < 64; shift += step) {
        // The block ends `shift` bytes in front of a page that cannot be touched; the bytes between are watched.
        const kit::Area<uint8_t> area(size + shift, kit::Place::kAtGuard);
        auto* const state = reinterpret_cast<State*>(area.data());
        ASSERT_EQ(
            TypeParam::melInit(state, &order, a.length, a.sampleFrequency, a.low, a.high, a.filters, a.melMul, a.melDiv, a.flags),
            qorStatusOk);
        expectMelBank<TypeParam>(state, a);
        if (front != 0) {
          std::vector<int16_t> whole = random.vector<int16_t>(model::powerOfTwoFor(a.length));
          if constexpr (std::is_same_v<TypeParam, Float>) {
            const kit::Area<float> x(std::vector<float>(whole.begin(), whole.end()), kit::Place::kAtGuard),
                y(a.filters, kit::Place::kAtGuard);
            EXPECT_EQ(qorsEvalFBank_32f(x.data(), y.data(), state), qorStatusOk);
          } else {
            const kit::Area<int16_t> x(whole, kit::Place::kAtGuard), y(a.filters, kit::Place::kAtGuard);
            EXPECT_EQ(qorsEvalFBank_16s_Sfs(x.data(), y.data(), state, 0), qorStatusOk);
          }
        }
        for (int32_t i = 0; i < shift; ++i) ASSERT_EQ(area[size + i], 0x5B) << "written behind the block";
        expectMelBank<TypeParam>(state, a);  // the transform's work memory touches no weight
        ASSERT_TRUE(area.edgesKept());
        if (testing::Test::HasFailure()) FAIL() << text(a) << " shift " << shift;
      }
    }
  }
}

// ---- Faults ----

struct Args {
  bool haveState, haveOrder;
  int32_t length, n, flags, linear;
  float fs, low, high, join;
};
constexpr Args kValid{true, true, 64, 5, 1, 2, 16000, 20, 8000, 1000};

// What stands behind a section shows when the centres move apart.
TYPED_TEST(MelBank, WeightsBehindASectionAreZero) {
  constexpr int32_t kRising = 65, kFalling = 64;
  for (const int32_t flags : {1, 2}) {
    banks::Bank<TypeParam> bank;
    ASSERT_EQ(make(bank, {256, 16000, 20, 8000, 1, 1127.01048F, 700, flags}), qorStatusOk);
    int32_t centers[3];
    ASSERT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
    const auto rising = static_cast<std::size_t>(centers[1] - centers[0] + 1);
    std::vector<float> made(256), shown(kRising + kFalling);
    ASSERT_EQ(TypeParam::getCoeffs(bank.state, 1, made.data()), qorStatusOk);
    const int32_t apart[3] = {0, kRising - 1, 128};
    ASSERT_EQ(TypeParam::setCenters(bank.state, apart), qorStatusOk);
    ASSERT_EQ(TypeParam::getCoeffs(bank.state, 1, shown.data()), qorStatusOk);
    for (std::size_t i = 0; i < kRising; ++i) ASSERT_BITS(shown[i], i < rising ? made[i] : 0.0F) << "rising " << i;
    for (std::size_t i = 0; i < kFalling; ++i) ASSERT_BITS(shown[kRising + i], made[rising + i]) << "falling " << i;
  }
}

template <class Kind, class Call>
void expectFaults(Call call, bool inBlock, bool mixed) {
  alignas(64) static uint8_t block[8192];
  typename Kind::State* state = nullptr;
  int32_t order = 77;
  kit::FaultTable<Args> table(kValid,
                              [&](const Args& a) {
                                const QorStatus status = call(a, block, &state, &order);
                                if (status == qorStatusOk && !inBlock) Kind::release(state);
                                return status;
                              },
                              {{&state, 1}, {&order, 1}, {block, 8192}});
  const auto addNulls = [&] {
    table.fault("null haveState", qorStatusNullPointer, &Args::haveState, false);
    table.fault("null haveOrder", qorStatusNullPointer, &Args::haveOrder, false);
  };
  if (!mixed) addNulls();
  table.fault("length zero", qorStatusBadSize, &Args::length, 0);
  table.fault("n zero", qorStatusBadSize, &Args::n, 0);
  table.fault("fs zero with high and join", qorStatusBadSize, &Args::fs, 0, kit::against(&Args::high, &Args::join));
  table.fault("low zero", qorStatusBadSize, &Args::low, 0);
  table.fault("low minus zero", qorStatusBadSize, &Args::low, -0.0F);
  if (mixed) {
    table.fault("linear zero", qorStatusBadSize, &Args::linear, 0);
    table.fault("linear above n", qorStatusBadSize, &Args::linear, 6, kit::against(&Args::n));
    table.fault("join below low", qorStatusBadFBankFrequency, &Args::join, 19, kit::against(&Args::low));
    table.fault("high below join", qorStatusBadFBankFrequency, &Args::high, 999, kit::against(&Args::join));
  } else {
    table.fault("high below low", qorStatusBadFBankFrequency, &Args::high, 19, kit::against(&Args::low));
  }
  table.fault("fs below twice high", qorStatusBadFBankFrequency, &Args::fs, 15999, kit::against(&Args::high));
  for (const int32_t flags : {0, 3, 4, 7, 8, 9, -1, INT32_MIN | 1}) {
    table.fault("flags " + std::to_string(flags), qorStatusBadFBankFlag, &Args::flags, flags);
  }
  if (mixed) addNulls();
  table.check();
}

TYPED_TEST(MelBank, Faults) {
  using State = typename TypeParam::State;
  expectFaults<TypeParam>(
      [](const Args& a, uint8_t*, State** state, int32_t* order) {
        return TypeParam::melAlloc(a.haveState ? state : nullptr, a.haveOrder ? order : nullptr, a.length, a.fs, a.low, a.high, a.n,
                                   1127, 700, a.flags);
      },
      false, false);
  expectFaults<TypeParam>(
      [](const Args& a, uint8_t* block, State**, int32_t* order) {
        return TypeParam::melInit(a.haveState ? reinterpret_cast<State*>(block) : nullptr, a.haveOrder ? order : nullptr, a.length,
                                  a.fs, a.low, a.high, a.n, 1127, 700, a.flags);
      },
      true, false);
  expectFaults<TypeParam>(
      [](const Args& a, uint8_t*, State** state, int32_t* order) {
        return TypeParam::mixedAlloc(a.haveState ? state : nullptr, a.haveOrder ? order : nullptr, a.length, a.fs, a.low, a.high,
                                     a.n, a.join, a.linear, 1127, 700, a.flags);
      },
      false, true);
}

TYPED_TEST(MelBank, SizeFaults) {
  struct SizeArgs {
    int32_t* size;
    int32_t length, n, flags;
  };
  int32_t size = 0;
  kit::FaultTable<SizeArgs> table(
      {&size, 64, 5, 1}, [](const SizeArgs& a) { return TypeParam::melSize(a.length, a.n, a.flags, a.size); }, {{&size, 1}});
  table.fault("null size", qorStatusNullPointer, &SizeArgs::size, nullptr);
  table.fault("length zero", qorStatusBadSize, &SizeArgs::length, 0);
  table.fault("n zero", qorStatusBadSize, &SizeArgs::n, 0);
  for (const int32_t flags : {0, 3, 4, 7}) {
    table.fault("flags " + std::to_string(flags), qorStatusBadFBankFlag, &SizeArgs::flags, flags);
  }
  table.fault("length enormous", qorStatusBadSize, &SizeArgs::length, INT32_MAX);
  table.fault("n enormous", qorStatusBadSize, &SizeArgs::n, INT32_MAX);
  table.fault("more bytes than 64 bits say", qorStatusBadSize, &SizeArgs::length, 1 << 30, &SizeArgs::n, INT32_MAX);
  table.check();
}

TYPED_TEST(MelBank, WhatNoMemoryHoldsIsRefused) {
  banks::Bank<TypeParam> bank;
  uint8_t block[64];
  int32_t order = 77;
  for (const auto& [length, n] : std::vector<std::pair<int32_t, int32_t>>{
           {INT32_MAX, 1}, {1 << 30, 1}, {2, INT32_MAX}, {65536, 65536}, {1 << 30, INT32_MAX}}) {
    EXPECT_EQ(make(bank, {length, 16000, 20, 8000, n, 1127, 700, 1}), qorStatusNoMemory);
    EXPECT_EQ(makeMixed(bank, {length, 16000, 20, 8000, n, 1127, 700, 1}, 1000, 1), qorStatusNoMemory);
    EXPECT_EQ(
        TypeParam::melInit(reinterpret_cast<typename TypeParam::State*>(block), &order, length, 16000, 20, 8000, n, 1127, 700, 1),
        qorStatusBadSize);
    EXPECT_EQ(bank.state, nullptr);
    EXPECT_EQ(order, 77);
  }
}

TYPED_TEST(MelBank, EveryRefusedAllocationIsReported) {
  for (const int32_t flags : {1, 6}) {
    const MelArguments a{64, 16000, 20, 8000, 5, 1127, 700, flags};
    EXPECT_GE(kit::expectEveryRefusalReported([&] {
                banks::Bank<TypeParam> bank;
                const QorStatus status = make(bank, a);
                EXPECT_EQ(bank.state == nullptr, status != qorStatusOk);
                return status;
              }),
              1);
    EXPECT_GE(kit::expectEveryRefusalReported([&] {
                banks::Bank<TypeParam> bank;
                const QorStatus status = makeMixed(bank, a, 1000, 2);
                EXPECT_EQ(bank.state == nullptr, status != qorStatusOk);
                return status;
              }),
              1);
  }
}

}  // namespace
