// The split into two bands: bits against the plain models over lengths and numbers of taps, sums of many taps, order of checks.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/band_split.h"
#include "qorsr.h"

namespace {

// An odd length is made even; what follows is not read.
int32_t samplesOf(int32_t length, int32_t taps) { return length / 2 == 0 ? 1 : length / 2 * 2 + taps - 2; }

void expectSplit(const std::vector<float>& x, int32_t length, const std::vector<float>& h, kit::Place place) {
  const kit::Area<float> source(x, place), taps(h, place);
  kit::Area<float> low(length / 2, place), high(length / 2, place);
  const model::Bands expected = model::splitBands(x, static_cast<std::size_t>(length), h);
  ASSERT_EQ(
      qorsLowHighFilter_Aurora_32f(source.data(), low.data(), high.data(), length, taps.data(), static_cast<int32_t>(h.size())),
      qorStatusOk);
  ASSERT_BITS(low.values(), expected.low);
  ASSERT_BITS(high.values(), expected.high);
  ASSERT_TRUE(low.edgesKept() && high.edgesKept());
}
void expectSplit(const std::vector<int16_t>& x, int32_t length, const std::vector<int16_t>& h, kit::Place place, int32_t sf) {
  const kit::Area<int16_t> source(x, place), taps(h, place);
  kit::Area<int16_t> low(length / 2, place), high(length / 2, place);
  const model::ShortBands expected = model::splitBands(x, static_cast<std::size_t>(length), h, sf);
  ASSERT_EQ(qorsLowHighFilter_Aurora_16s_Sfs(source.data(), low.data(), high.data(), length, taps.data(),
                                             static_cast<int32_t>(h.size()), sf),
            qorStatusOk);
  ASSERT_BITS(low.values(), expected.low);
  ASSERT_BITS(high.values(), expected.high);
  ASSERT_TRUE(low.edgesKept() && high.edgesKept());
}

constexpr int32_t kTapCounts[] = {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 118, 127, 128, 129, 130, 255, 256, 257, 300};

TEST(LowHighFilter, Float) {
  kit::Random random;
  for (const int32_t count : kTapCounts) {
    for (int32_t length = 1; length < 90; ++length) {
      const kit::Random::Kind kind = kit::kKinds[(length + count) % 3];
      const auto x = random.vector<float>(samplesOf(length, count), kind), h = random.vector<float>(count, kind);
      expectSplit(x, length, h, kit::kPlaces[length % 3]);
      ASSERT_FALSE(HasFailure()) << "length " << length << ", " << count << " taps";
    }
  }
}
TEST(LowHighFilter, LongSignals) {
  kit::Random random;
  for (const int32_t count : {1, 2, 3, 118, 129}) {
    for (const int32_t length : {200, 254, 255, 256, 257, 258, 400, 511, 514, 1027}) {
      const auto x = random.vector<float>(samplesOf(length, count)), h = random.vector<float>(count);
      expectSplit(x, length, h, kit::Place::kAtGuard);
      const auto x16 = random.vector<int16_t>(samplesOf(length, count)), h16 = random.vector<int16_t>(count);
      expectSplit(x16, length, h16, kit::Place::kAtGuard, 18);
      ASSERT_FALSE(HasFailure()) << "length " << length << ", " << count << " taps";
    }
  }
}

constexpr int32_t kScaleFactors[] = {15, 16, 0, 1, 20, 31, 1074, 1080, INT32_MAX, -1, -9, -1023, -1024, INT32_MIN};

TEST(LowHighFilter, Int16) {
  kit::Random random;
  int round = 0;
  for (const int32_t count : kTapCounts) {
    for (int32_t length = 1; length < 90; ++length, ++round) {
      const auto x = random.vector<int16_t>(samplesOf(length, count), kit::kKinds[round % 3]);
      auto h = random.vector<int16_t>(count, kit::kKinds[round / 3 % 3]);
      for (int16_t& tap : h) tap = static_cast<int16_t>(tap / (1 + round % 7 * round % 40));  // few runs of sums, and many
      expectSplit(x, length, h, kit::kPlaces[length % 3], kScaleFactors[round % std::ssize(kScaleFactors)]);
      ASSERT_FALSE(HasFailure()) << "length " << length << ", " << count << " taps";
    }
  }
}

TEST(LowHighFilter, TheGreatestSums) {
  for (const int32_t count : {1, 2, 3, 4, 5, 64, 65}) {
    for (const int16_t sample : {int16_t{-32768}, int16_t{32767}}) {
      for (const int16_t tap : {int16_t{-32768}, int16_t{32767}, int16_t{-16384}, int16_t{16384}}) {
        std::vector<int16_t> x(static_cast<std::size_t>(samplesOf(50, count)), sample), h(static_cast<std::size_t>(count), tap);
        expectSplit(x, 50, h, kit::Place::kAtGuard, 22);
        for (std::size_t i = 1; i < x.size(); i += 2) x[i] = static_cast<int16_t>(-1 - x[i]);
        expectSplit(x, 50, h, kit::Place::kAtGuard, 22);
        ASSERT_FALSE(HasFailure()) << count << " taps of " << tap;
      }
    }
  }
}

TEST(LowHighFilter, BandsOfTones) {
  // A mean of two samples passes what is constant to the low band, what changes its sign to the high one, turned to be constant.
  const float h[] = {0.5F, 0.5F};
  float x[16], low[8], high[8];
  for (float& v : x) v = 1.0F;
  ASSERT_EQ(qorsLowHighFilter_Aurora_32f(x, low, high, 16, h, 2), qorStatusOk);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(low[i], 1.0F);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(high[i], 0.0F);
  for (int i = 0; i < 16; ++i) x[i] = i % 2 == 0 ? 1.0F : -1.0F;
  ASSERT_EQ(qorsLowHighFilter_Aurora_32f(x, low, high, 16, h, 2), qorStatusOk);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(low[i], 0.0F);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(high[i], i % 2 == 0 ? -1.0F : 1.0F);
}

TEST(LowHighFilter, ALengthOfOneGivesNothing) {
  const float x[] = {1}, h[] = {1, 2};
  float low = 5, high = 6;
  EXPECT_EQ(qorsLowHighFilter_Aurora_32f(x, &low, &high, 1, h, 2), qorStatusOk);
  EXPECT_EQ(low, 5.0F);
  EXPECT_EQ(high, 6.0F);
}

TEST(LowHighFilter, RoundingModesAndFlagsAreKept) {
  kit::Random random;
  const auto x = random.vector<int16_t>(196), h = random.vector<int16_t>(118);
  const model::ShortBands expected = model::splitBands(x, 80, h, 18);
  kit::expectEnvironmentKept([&] {
    std::vector<int16_t> low(40), high(40);
    ASSERT_EQ(qorsLowHighFilter_Aurora_16s_Sfs(x.data(), low.data(), high.data(), 80, h.data(), 118, 18), qorStatusOk);
    EXPECT_BITS(low, expected.low);
    EXPECT_BITS(high, expected.high);
  });
}

// ---- Faults ----

template <class T>
struct Args {
  const T* source;
  T *low, *high;
  int32_t length;
  const T* taps;
  int32_t tapCount;
};
template <class T, class Call>
void expectFaults(Call call) {
  std::vector<T> source(24, T(3)), low(8, T(7)), high(8, T(7)), taps(9, T(2));
  using A = Args<T>;
  kit::FaultTable<A> table{{source.data(), low.data(), high.data(), 16, taps.data(), 9}, call, {{low.data(), 8}, {high.data(), 8}}};
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null taps", qorStatusNullPointer, &A::taps, nullptr)
      .fault("no taps", qorStatusBadSize, &A::tapCount, 0)
      .fault("least number of taps", qorStatusBadSize, &A::tapCount, INT32_MIN)
      .fault("null low band", qorStatusNullPointer, &A::low, nullptr)
      .fault("null high band", qorStatusNullPointer, &A::high, nullptr)
      .fault("length 0", qorStatusBadSize, &A::length, 0)
      .fault("least length", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
}
TEST(LowHighFilter, Faults) {
  expectFaults<float>(
      [](const Args<float>& a) { return qorsLowHighFilter_Aurora_32f(a.source, a.low, a.high, a.length, a.taps, a.tapCount); });
  expectFaults<int16_t>([](const Args<int16_t>& a) {
    return qorsLowHighFilter_Aurora_16s_Sfs(a.source, a.low, a.high, a.length, a.taps, a.tapCount, 3);
  });
}

}  // namespace
