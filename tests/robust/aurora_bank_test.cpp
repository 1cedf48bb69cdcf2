// The two fixed mel banks: sizes, centres and weights against their formulas, evaluation, faults, memory.
#include <gtest/gtest.h>

#include <numeric>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/band_split.h"
#include "qorsr.h"

namespace {

struct Floats {
  using State = FBankState_32f;
  using Weight = float;
  static constexpr int32_t kRecord = 84;
  static QorStatus size(bool low, int32_t* bytes) {
    return low ? qorsMelFBankGetSizeLow_Aurora_32f(bytes) : qorsMelFBankGetSizeHigh_Aurora_32f(bytes);
  }
  static QorStatus init(bool low, State* state) {
    return low ? qorsMelFBankInitLow_Aurora_32f(state) : qorsMelFBankInitHigh_Aurora_32f(state);
  }
  static QorStatus make(bool low, State** state) {
    return low ? qorsMelFBankInitAllocLow_Aurora_32f(state) : qorsMelFBankInitAllocHigh_Aurora_32f(state);
  }
  static constexpr auto centers = qorsFBankGetCenters_32f;
  static constexpr auto coeffs = qorsFBankGetCoeffs_32f;
  static constexpr auto release = qorsFBankFree_32f;
};
struct Shorts {
  using State = FBankState_16s;
  using Weight = int32_t;
  static constexpr int32_t kRecord = 88;
  static QorStatus size(bool low, int32_t* bytes) {
    return low ? qorsMelFBankGetSizeLow_Aurora_16s(bytes) : qorsMelFBankGetSizeHigh_Aurora_16s(bytes);
  }
  static QorStatus init(bool low, State* state) {
    return low ? qorsMelFBankInitLow_Aurora_16s(state) : qorsMelFBankInitHigh_Aurora_16s(state);
  }
  static QorStatus make(bool low, State** state) {
    return low ? qorsMelFBankInitAllocLow_Aurora_16s(state) : qorsMelFBankInitAllocHigh_Aurora_16s(state);
  }
  static constexpr auto centers = qorsFBankGetCenters_16s;
  static constexpr auto coeffs = qorsFBankGetCoeffs_16s;
  static constexpr auto release = qorsFBankFree_16s;
};

template <class Members>
class AuroraBank : public testing::Test {};
using Both = testing::Types<Floats, Shorts>;
TYPED_TEST_SUITE(AuroraBank, Both, );

float asFloat(float weight) { return weight; }
float asFloat(int32_t weight) { return static_cast<float>(weight) / 16384.0F; }

void expectEvaluated(const FBankState_32f* state, bool low, kit::Random& random) {
  const auto x = random.vector<float>(65);
  const std::size_t filters = low ? 25 : 3;
  std::vector<float> y(filters), expected;
  for (std::size_t k = 1; k <= filters; ++k) expected.push_back(model::evaluate(model::auroraFilter<float>(low, k), k == 1, x));
  ASSERT_EQ(qorsEvalFBank_32f(x.data(), y.data(), state), qorStatusOk);
  EXPECT_BITS(y, expected);
}
void expectEvaluated(const FBankState_16s* state, bool low, kit::Random& random) {
  const auto x = random.vector<int16_t>(65);
  const std::size_t filters = low ? 25 : 3;
  std::vector<int32_t> y(filters), expected;
  for (std::size_t k = 1; k <= filters; ++k) {
    expected.push_back(model::limitedTo<int32_t>(model::evaluate16(model::auroraFilter<int32_t>(low, k), x, -3)));
  }
  ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x.data(), y.data(), state, -3), qorStatusOk);
  EXPECT_BITS(y, expected);
}

template <class M>
void expectBank(const typename M::State* state, bool low) {
  const std::vector<int32_t> expected = model::auroraCenters(low);
  std::vector<int32_t> centers(expected.size());
  ASSERT_EQ(M::centers(state, centers.data()), qorStatusOk);
  ASSERT_BITS(centers, expected);
  for (std::size_t k = 1; k + 1 < expected.size(); ++k) {
    std::vector<float> weights;
    for (const auto w : model::auroraFilter<typename M::Weight>(low, k).all()) weights.push_back(asFloat(w));
    std::vector<float> stored(weights.size());
    ASSERT_EQ(M::coeffs(state, static_cast<int32_t>(k), stored.data()), qorStatusOk);
    ASSERT_BITS(stored, weights) << "filter " << k;
  }
  kit::Random random;
  for (int trial = 0; trial < 20; ++trial) expectEvaluated(state, low, random);
}

TYPED_TEST(AuroraBank, InTheCallersBlockAtEveryAddress) {
  for (const bool low : {false, true}) {
    int32_t size = 0;
    ASSERT_EQ(TypeParam::size(low, &size), qorStatusOk);
    for (int32_t offset = 0; offset < 64; offset += 4) {
      kit::Area<int32_t> block((size + offset) / 4, kit::Place::kAtGuard);  // ends at the guard
      auto* const state = reinterpret_cast<typename TypeParam::State*>(block.data() + offset / 4);
      ASSERT_EQ(TypeParam::init(low, state), qorStatusOk);
      expectBank<TypeParam>(state, low);
      EXPECT_TRUE(block.edgesKept());
    }
  }
}

TYPED_TEST(AuroraBank, InMemoryOfItsOwn) {
  for (const bool low : {false, true}) {
    typename TypeParam::State* state = nullptr;
    ASSERT_EQ(TypeParam::make(low, &state), qorStatusOk);
    expectBank<TypeParam>(state, low);
    EXPECT_EQ(TypeParam::release(state), qorStatusOk);
    EXPECT_EQ(kit::Core::outstanding(), 0);
    EXPECT_GT(kit::expectEveryRefusalReported([&] {
                typename TypeParam::State* made = nullptr;
                const QorStatus status = TypeParam::make(low, &made);
                EXPECT_EQ(status == qorStatusOk, made != nullptr);
                if (made != nullptr) TypeParam::release(made);
                return status;
              }),
              0);
  }
}

TYPED_TEST(AuroraBank, Sizes) {
  const auto rows = [](int32_t a, int32_t b) { return (a + (b + 7) / 8 * 8 * a + 7) * 4; };
  const int32_t base = TypeParam::kRecord;
  int32_t size = 0;
  ASSERT_EQ(TypeParam::size(true, &size), qorStatusOk);
  EXPECT_EQ(size, base + 144 + 140 + rows(27, 67) + 32 + rows(27, 64) + 32 + 140);
  ASSERT_EQ(TypeParam::size(false, &size), qorStatusOk);
  EXPECT_EQ(size, base + 56 + 52 + rows(5, 67) + 32 + rows(5, 64) + 32 + 52);
}

TYPED_TEST(AuroraBank, NullPointers) {
  for (const bool low : {false, true}) {
    EXPECT_EQ(TypeParam::size(low, nullptr), qorStatusNullPointer);
    EXPECT_EQ(TypeParam::init(low, nullptr), qorStatusNullPointer);
    EXPECT_EQ(TypeParam::make(low, nullptr), qorStatusNullPointer);
  }
}

TYPED_TEST(AuroraBank, TheLowBankBeginsWithHalfATriangle) {
  typename TypeParam::State* state = nullptr;
  ASSERT_EQ(TypeParam::make(true, &state), qorStatusOk);
  int32_t centers[27];
  ASSERT_EQ(TypeParam::centers(state, centers), qorStatusOk);
  EXPECT_EQ(
      std::vector<int32_t>(centers, centers + 27),
      (std::vector<int32_t>{0, 0, 1, 2, 3, 4, 5, 7, 8, 10, 12, 14, 16, 18, 20, 23, 26, 29, 32, 36, 39, 44, 48, 53, 58, 64, 64}));
  float weights[65] = {};
  ASSERT_EQ(TypeParam::coeffs(state, 1, weights), qorStatusOk);
  EXPECT_EQ(weights[0], 1.0F);
  EXPECT_EQ(weights[1], 0.0F);
  for (int32_t k = 1; k <= 25; ++k) {  // of every filter the weights sum to 1
    std::fill_n(weights, 65, 0.0F);
    ASSERT_EQ(TypeParam::coeffs(state, k, weights), qorStatusOk);
    EXPECT_NEAR(static_cast<double>(std::accumulate(weights, weights + 65, 0.0F)), 1.0, 1e-3) << k;
  }
  EXPECT_EQ(TypeParam::coeffs(state, 26, weights), qorStatusOk);
  EXPECT_EQ(weights[0], 0.0F);
  EXPECT_EQ(TypeParam::coeffs(state, 27, weights), qorStatusBadSize);
  EXPECT_EQ(TypeParam::release(state), qorStatusOk);
}

TYPED_TEST(AuroraBank, RoundingModesAndFlagsAreKept) {
  kit::expectEnvironmentKept([] {
    for (const bool low : {false, true}) {
      typename TypeParam::State* state = nullptr;
      ASSERT_EQ(TypeParam::make(low, &state), qorStatusOk);
      TypeParam::release(state);
    }
  });
}

}  // namespace
