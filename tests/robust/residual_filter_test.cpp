// The filter of 17 taps: arrangement of its taps, bits of filtered frames against the plain models, sums that wrap, faults.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/noise_reduction.h"
#include "qorsr.h"

namespace {

template <class T, class Call>
void expectArranged(Call call) {
  kit::Random random;
  for (const kit::Place place : kit::kPlaces) {
    const std::vector<T> c = random.vector<T>(10, kit::Random::kNasty);
    const kit::Area<T> coefficients(c, place);
    kit::Area<T> taps(17, place);
    ASSERT_EQ(call(coefficients.data(), taps.data()), qorStatusOk);
    EXPECT_BITS(taps.values(), model::arrangedTaps(c));
    EXPECT_TRUE(taps.edgesKept());
  }
}
TEST(TabsCalculation, Float) { expectArranged<float>(qorsTabsCalculation_Aurora_32f); }
TEST(TabsCalculation, Int16) { expectArranged<int16_t>(qorsTabsCalculation_Aurora_16s); }
TEST(TabsCalculation, TheSidesAreOneCoefficientApart) {
  const int16_t c[] = {100, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  int16_t h[17];
  ASSERT_EQ(qorsTabsCalculation_Aurora_16s(c, h), qorStatusOk);
  EXPECT_EQ(h[8], 100);
  EXPECT_EQ(h[7], 1);
  EXPECT_EQ(h[9], 2);
  EXPECT_EQ(h[0], 8);
  EXPECT_EQ(h[16], 9);
}

TEST(ResidualFilter, Float) {
  kit::Random random;
  for (int trial = 0; trial < 60; ++trial) {
    const kit::Place place = kit::kPlaces[trial % 3];
    const auto x = random.vector<float>(96, kit::kKinds[trial % 4 % 3]), h = random.vector<float>(17, kit::kKinds[trial / 4 % 3]);
    const kit::Area<float> source(x, place), taps(h, place);
    kit::Area<float> result(80, place);
    ASSERT_EQ(qorsResidualFilter_Aurora_32f(source.data(), result.data(), taps.data()), qorStatusOk);
    ASSERT_BITS(result.values(), model::residual(x, h));
    ASSERT_TRUE(result.edgesKept());
  }
}

constexpr int32_t kScaleFactors[] = {0,    1,    14,        15, 16, 17,  31,    40,    1074,
                                     1075, 2000, INT32_MAX, -1, -5, -16, -1023, -1024, INT32_MIN};

void expectFiltered(const std::vector<int16_t>& x, const std::vector<int16_t>& h, kit::Place place) {
  const kit::Area<int16_t> source(x, place), taps(h, place);
  kit::Area<int16_t> result(80, place);
  for (const int32_t sf : kScaleFactors) {
    ASSERT_EQ(qorsResidualFilter_Aurora_16s_Sfs(source.data(), result.data(), taps.data(), sf), qorStatusOk);
    ASSERT_BITS(result.values(), model::residual(x, h, sf)) << "scale factor " << sf;
    ASSERT_TRUE(result.edgesKept());
  }
}
TEST(ResidualFilter, Int16) {
  kit::Random random;
  for (int trial = 0; trial < 200; ++trial) {
    const auto x = random.vector<int16_t>(96, kit::kKinds[trial % 3]);
    auto h = random.vector<int16_t>(17, kit::kKinds[trial / 3 % 3]);
    for (int16_t& tap : h) tap = static_cast<int16_t>(tap / (1 + trial % 9));  // sums of taps below and above what fits 32 bits
    expectFiltered(x, h, kit::kPlaces[trial % 3]);
    ASSERT_FALSE(HasFailure()) << "trial " << trial;
  }
}
TEST(ResidualFilter, SumsAtTheEndsOf32Bits) {
  // All samples at one end, and taps whose magnitudes add up to 65535, 65536 and 65537, at any place.
  for (int at = 0; at < 17; ++at) {
    for (const int sum : {65535, 65536, 65537}) {
      std::vector<int16_t> h(17, 3855);
      h[static_cast<std::size_t>(at)] = static_cast<int16_t>(sum - 16 * 3855);
      for (const int16_t sample : {int16_t{-32768}, int16_t{32767}}) {
        expectFiltered(std::vector<int16_t>(96, sample), h, kit::Place::kAtGuard);
        for (int16_t& tap : h) tap = static_cast<int16_t>(-tap);
        expectFiltered(std::vector<int16_t>(96, sample), h, kit::Place::kAtGuard);
      }
    }
  }
}
TEST(ResidualFilter, APairOfLeastTapsAndSamplesWraps) {
  const std::vector<int16_t> x(96, -32768);
  std::vector<int16_t> h(17, 0);
  int16_t y[80];
  h[0] = h[1] = -32768;
  ASSERT_EQ(qorsResidualFilter_Aurora_16s_Sfs(x.data(), y, h.data(), 20), qorStatusOk);
  EXPECT_EQ(y[0], -2048);
  h[1] = 0, h[2] = -32768;  // not one pair
  ASSERT_EQ(qorsResidualFilter_Aurora_16s_Sfs(x.data(), y, h.data(), 20), qorStatusOk);
  EXPECT_EQ(y[0], 2048);
}

TEST(ResidualFilter, RoundingModesAndFlagsAreKept) {
  kit::Random random;
  const auto x = random.vector<int16_t>(96), h = random.vector<int16_t>(17);
  const std::vector<int16_t> expected = model::residual(x, h, 17);
  kit::expectEnvironmentKept([&] {
    std::vector<int16_t> y(80);
    ASSERT_EQ(qorsResidualFilter_Aurora_16s_Sfs(x.data(), y.data(), h.data(), 17), qorStatusOk);
    EXPECT_BITS(y, expected);
  });
}

// ---- Faults ----

template <class T>
struct Args {
  const T* source;
  T* result;
  const T* taps;
};
template <class T, class Call>
void expectFaults(Call call) {
  std::vector<T> source(96, T(3)), result(80, T(7)), taps(17, T(2));
  using A = Args<T>;
  kit::FaultTable<A> table{{source.data(), result.data(), taps.data()},
                           [=](const A& a) { return call(a.source, a.result, a.taps); },
                           {{result.data(), 80}}};
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("null taps", qorStatusNullPointer, &A::taps, nullptr);
  table.check();
}
TEST(ResidualFilter, Faults) {
  expectFaults<float>(qorsResidualFilter_Aurora_32f);
  expectFaults<int16_t>(
      [](const int16_t* x, int16_t* y, const int16_t* h) { return qorsResidualFilter_Aurora_16s_Sfs(x, y, h, 3); });
}
template <class T, class Call>
void expectTapFaults(Call call) {
  std::vector<T> source(10, T(3)), taps(17, T(2));
  using A = Args<T>;
  kit::FaultTable<A> table{
      {source.data(), taps.data(), nullptr}, [=](const A& a) { return call(a.source, a.result); }, {{taps.data(), 17}}};
  table.fault("null coefficients", qorStatusNullPointer, &A::source, nullptr)
      .fault("null taps", qorStatusNullPointer, &A::result, nullptr);
  table.check();
}
TEST(TabsCalculation, Faults) {
  expectTapFaults<float>(qorsTabsCalculation_Aurora_32f);
  expectTapFaults<int16_t>(qorsTabsCalculation_Aurora_16s);
}

}  // namespace
