// Evaluation of banks whose weights have been arranged for it: widths of every kind side by side, changes, strange bins, limits.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "features/filter_bank_fixture.h"
#include "kit/compare.h"
#include "model/filter_bank.h"
#include "qorsr.h"

namespace {

using RandomBank = banks::RandomBank<banks::Float>;

// Centres, then weights, and centres again: evaluation sees what exchange shows.
TEST(FilterBankPlan, EvaluationFollowsEveryChange) {
  kit::Random random(5);
  for (int trial = 0; trial < 200; ++trial) {
    const int32_t half = 8 << random.integer(0, 4), n = static_cast<int32_t>(random.integer(1, 20));
    RandomBank bank(random, 2 * half, banks::randomCenters(random, n, half, true), kit::Random::kPlain);
    const auto centers = trial % 4 == 3 ? std::vector<int32_t>(static_cast<std::size_t>(n) + 2, half / 2)
                                        : banks::randomCenters(random, n, half, trial % 2 == 0);
    if (trial % 2 == 0) {
      ASSERT_EQ(qorsFBankSetCenters_32f(bank.state, centers.data()), qorStatusOk);
    } else {  // one and the same function
      ASSERT_EQ(qorsFBankSetCenters_16s(reinterpret_cast<FBankState_16s*>(bank.state), centers.data()), qorStatusOk);
    }
    if (trial % 3 == 0) {
      const auto weights = random.vector<float>(half + 2);
      ASSERT_EQ(qorsFBankSetCoeffs_32f(bank.state, (n + 1) / 2, weights.data()), qorStatusOk);
    }
    auto x = random.vector<float>(half + 1);
    if (trial % 5 == 0) x[static_cast<std::size_t>(random.integer(0, half))] = std::numeric_limits<float>::infinity();
    std::vector<float> expected, result(static_cast<std::size_t>(n));
    for (int32_t k = 1; k <= n; ++k) {
      std::vector<float> weights(2 * static_cast<std::size_t>(half) + 4);
      ASSERT_EQ(qorsFBankGetCoeffs_32f(bank.state, k, weights.data()), qorStatusOk);
      std::size_t next = 0;
      const auto take = [&](int64_t) { return weights[next++]; };
      expected.push_back(
          model::evaluate(model::makeFilter<float>(centers, static_cast<std::size_t>(k), half, take, take), k == 1, x));
    }
    ASSERT_EQ(qorsEvalFBank_32f(x.data(), result.data(), bank.state), qorStatusOk);
    ASSERT_BITS(result, expected) << testing::PrintToString(centers);
  }
}

// One section of every width, at every place among narrow and wide ones, at the end of the bins too.
TEST(FilterBankPlan, SectionsOfEveryWidthAgreeInBits) {
  kit::Random random(7);
  for (int32_t width = 0; width <= 140; ++width) {
    for (int32_t place = 0; place <= 9; place += width < 30 ? 1 : 3) {
      std::vector<int32_t> centers = {static_cast<int32_t>(random.integer(0, 3))};
      const auto others = random.integer(0, 1) == 0 ? 12 : 40;
      for (int32_t i = 0; i <= 9; ++i) {
        centers.push_back(centers.back() + (i == place ? width : static_cast<int32_t>(random.integer(0, others))));
      }
      const int32_t half = 512, toEnd = width % 2 == 0 ? half - centers.back() : 0;
      for (int32_t& c : centers) c += toEnd;
      const RandomBank bank(random, 2 * half, centers, kit::Random::kPlain);
      const auto x = random.vector<float>(half + 1);
      std::vector<float> expected;
      for (const auto& f : bank.filters) expected.push_back(model::evaluate(f, expected.empty(), x));
      const kit::Area<float> source(x, kit::Place::kAtGuard), result(static_cast<int64_t>(expected.size()), kit::Place::kAtGuard);
      ASSERT_EQ(qorsEvalFBank_32f(source.data(), result.data(), bank.state), qorStatusOk);
      ASSERT_BITS(result.values(), expected) << testing::PrintToString(centers);
      ASSERT_TRUE(source.edgesKept() && result.edgesKept());
    }
  }
}

// The last centre may lie below the one before it: the last filter then has no falling side, and its rising side goes on.
TEST(FilterBankPlan, ALastCentreThatFallsBackHidesNoBins) {
  kit::Random random(9);
  for (const auto& centers : std::vector<std::vector<int32_t>>{{1, 20, 12}, {1, 5, 30, 12}, {0, 3, 32, 31}, {2, 9, 11, 30, 3}}) {
    const RandomBank bank(random, 64, centers, kit::Random::kPlain);
    const banks::RandomBank<banks::Int16> whole(random, 64, centers, kit::Random::kSmall);
    const auto x = random.vector<float>(33);
    const auto x16 = random.vector<int16_t>(33);
    std::vector<float> expected, result(centers.size() - 2);
    std::vector<int32_t> expected16, result16(centers.size() - 2);
    for (const auto& f : bank.filters) expected.push_back(model::evaluate(f, expected.empty(), x));
    for (const auto& f : whole.filters) expected16.push_back(model::limited<int32_t>(model::evaluate16(f, x16, 0)));
    ASSERT_EQ(qorsEvalFBank_32f(x.data(), result.data(), bank.state), qorStatusOk);
    ASSERT_BITS(result, expected) << testing::PrintToString(centers);
    ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x16.data(), result16.data(), whole.state, 0), qorStatusOk);
    ASSERT_BITS(result16, expected16) << testing::PrintToString(centers);
  }
}

// Filters that grow wider, as on a mel scale, with a NaN or an infinity in one bin: it reaches the filters over that bin and no
// others.
TEST(FilterBankPlan, AStrangeBinReachesItsFiltersAlone) {
  kit::Random random(6);
  std::vector<int32_t> centers = {0};
  for (int32_t width = 1; centers.back() + width / 2 <= 512; ++width) centers.push_back(centers.back() + width / 2);
  const RandomBank bank(random, 1024, centers, kit::Random::kPlain);
  for (int32_t bin = 0; bin <= 512; bin += bin < 100 ? 1 : 7) {
    for (const float strange :
         {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), 3e38F, -0.0F, 1e-45F}) {
      auto x = random.vector<float>(513);
      x[static_cast<std::size_t>(bin)] = strange;
      std::vector<float> expected, result(bank.filters.size());
      for (const auto& f : bank.filters) expected.push_back(model::evaluate(f, expected.empty(), x));
      ASSERT_EQ(qorsEvalFBank_32f(x.data(), result.data(), bank.state), qorStatusOk);
      ASSERT_BITS(result, expected) << "bin " << bin;
    }
  }
}

// Whole weights of every size and width of filters, with samples at the limits: sums that fill 32 bits, and that do not fit them.
TEST(FilterBankPlan, WholeSumsAreExactAtTheLimits) {
  constexpr int32_t kHalf = 256;
  for (const float largest : {0.1F, 0.5F, 1.0F, 1.9999F, -1.0F, -1.9999F, 2.0F, -2.0F, 3.0F, 131071.0F, -131072.0F}) {
    for (int32_t width = 1; width <= 120; width += width < 20 ? 1 : 9) {
      banks::Bank<banks::Int16> bank;
      ASSERT_EQ(qorsEmptyFBankInitAlloc_16s(&bank.state, &bank.order, 2 * kHalf, 2, 0), qorStatusOk);
      const std::vector<int32_t> centers = {kHalf - 2 * width - 3, kHalf - width - 3, kHalf - 3, kHalf};
      ASSERT_EQ(qorsFBankSetCenters_32f(reinterpret_cast<FBankState_32f*>(bank.state), centers.data()), qorStatusOk);
      std::vector<model::Filter<int32_t>> filters;
      for (std::size_t k = 1; k <= 2; ++k) {
        const auto one = [&](int64_t bin) { return bin % 29 == 28 ? 0.25F * largest : largest; };
        const auto f = model::makeFilter<float>(centers, k, kHalf, one, one);
        const auto drawn = f.all();
        ASSERT_EQ(qorsFBankSetCoeffs_16s(bank.state, static_cast<int32_t>(k), drawn.data()), qorStatusOk);
        model::Filter<int32_t> stored{f.risingFirst, f.fallingFirst, {}, {}};
        for (const float w : f.rising) stored.rising.push_back(banks::Int16::stored(w));
        for (const float w : f.falling) stored.falling.push_back(banks::Int16::stored(w));
        filters.push_back(stored);
      }
      for (const int16_t sample : {INT16_MIN, INT16_MAX, -1}) {
        const kit::Area<int16_t> x(std::vector<int16_t>(kHalf + 1, sample), kit::Place::kAtGuard);
        for (const int32_t sf : {0, -14, 4}) {
          std::vector<int32_t> expected, result(2);
          for (const auto& f : filters) expected.push_back(model::limited<int32_t>(model::evaluate16(f, x.values(), sf)));
          ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x.data(), result.data(), bank.state, sf), qorStatusOk);
          ASSERT_BITS(result, expected) << "weight " << largest << " width " << width << " sample " << sample;
        }
      }
    }
  }
}

}  // namespace
