// Filter banks: life cycle, exchange of centres and weights, evaluation of spectra in bits, faults, memory.
#include "model/filter_bank.h"

#include <gtest/gtest.h>

#include <limits>

#include "features/filter_bank_fixture.h"
#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"

namespace {

using banks::Float;
using banks::Int16;

constexpr int32_t kScaleFactors[] = {0, 1, 3, 7, 40, 63, 200, -1, -14, -15, -20, -33, -100, INT32_MIN, INT32_MAX};

template <class Kind>
class FilterBank : public testing::Test {};
using Kinds = testing::Types<Float, Int16>;
TYPED_TEST_SUITE(FilterBank, Kinds);

// ---- Life cycle ----

TYPED_TEST(FilterBank, TheLengthIsTakenUpToAPowerOfTwo) {
  for (const auto& [length, order] :
       std::vector<std::pair<int32_t, int32_t>>{{1, 1}, {2, 1}, {3, 2}, {257, 9}, {512, 9}, {513, 10}}) {
    banks::Bank<TypeParam> bank;
    ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, length, 1, 0), qorStatusOk);
    EXPECT_EQ(bank.order, order) << length;
    const int32_t half = 1 << (order - 1);
    const int32_t fits[] = {0, 0, half}, tooFar[] = {0, 0, half + 1};
    EXPECT_EQ(TypeParam::setCenters(bank.state, tooFar), qorStatusFBankNotReady);
    EXPECT_EQ(TypeParam::setCenters(bank.state, fits), qorStatusOk);
  }
}

TYPED_TEST(FilterBank, AnEmptyBankOnlyTakesCenters) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, 16, 2, 4), qorStatusOk);
  int32_t centers[4] = {77, 77, 77, 77};
  float weights[9] = {};
  EXPECT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusFBankNotReady);
  EXPECT_EQ(TypeParam::getCoeffs(bank.state, 1, weights), qorStatusFBankNotReady);
  EXPECT_EQ(TypeParam::setCoeffs(bank.state, 1, weights), qorStatusFBankNotReady);
  EXPECT_EQ(centers[0], 77);
  const int32_t wrong[4] = {-1, 2, 3, 4}, right[4] = {0, 2, 3, 8};
  EXPECT_EQ(TypeParam::setCenters(bank.state, wrong), qorStatusFBankNotReady);
  EXPECT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusFBankNotReady) << "still not ready";
  EXPECT_EQ(TypeParam::setCenters(bank.state, right), qorStatusOk);
  EXPECT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
  EXPECT_BITS(centers, right, 4);
  for (float& w : weights) w = 5;
  EXPECT_EQ(TypeParam::getCoeffs(bank.state, 2, weights), qorStatusOk);
  EXPECT_BITS(std::vector<float>(weights, weights + 9), std::vector<float>{0, 0, 0, 0, 0, 0, 0, 5, 5}) << "zero until set";
}

TYPED_TEST(FilterBank, EveryRefusedAllocationIsReported) {
  for (const int32_t flags : {0, 4}) {
    EXPECT_GE(kit::expectEveryRefusalReported([&] {
                banks::Bank<TypeParam> bank;
                auto* const before = bank.state;
                const QorStatus status = TypeParam::empty(&bank.state, &bank.order, 64, 5, flags);
                EXPECT_TRUE(status == qorStatusOk || bank.state == before);
                EXPECT_EQ(bank.order, 6);
                return status;
              }),
              1);
  }
}

TYPED_TEST(FilterBank, SizesThatNoMemoryHoldsAreRefused) {
  banks::Bank<TypeParam> bank;
  EXPECT_EQ(TypeParam::empty(&bank.state, &bank.order, INT32_MAX, 1, 0), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::empty(&bank.state, &bank.order, 1 << 30, 1, 4), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::empty(&bank.state, &bank.order, 2, INT32_MAX, 0), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::empty(&bank.state, &bank.order, 65536, 65536, 0), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::empty(&bank.state, &bank.order, 1 << 30, INT32_MAX, 0), qorStatusNoMemory);
  EXPECT_EQ(bank.state, nullptr);
}

// ---- Centres ----

TYPED_TEST(FilterBank, CentersAreTestedAsFarAsDefined) {
  struct Case {
    std::vector<int32_t> centers;
    bool valid;
  };
  const std::vector<Case> cases = {
      {{0, 1, 2}, true},        {{-1, 1, 2}, false},     {{0, 1, 8}, true},        {{0, 1, 9}, false},
      {{5, 2, 1}, true},        {{7, -3, -9}, true},     {{99, 1000, 3}, true},    {{0, INT32_MIN, 8}, true},
      {{0, 0, 0, 0}, true},     {{1, 2, 3, 2}, true},    {{2, 1, 3, 4}, false},    {{1, 4, 3, 8}, false},
      {{1, 2, 99, 8}, true},    {{0, 1, 2, 3, 4}, true}, {{0, 1, 3, 2, 4}, false}, {{0, 1, 3, 7, -5}, true},
      {{0, 3, 2, 7, 8}, false}, {{0, 2, 2, 7, 8}, true}, {{1, 0, 2, 3, 8}, false},
  };
  for (const Case& c : cases) {
    banks::Bank<TypeParam> bank;
    ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, 16, static_cast<int32_t>(c.centers.size()) - 2, 0), qorStatusOk);
    const kit::Area<int32_t> source(c.centers, kit::Place::kAtGuard), result(source.size(), kit::Place::kAtGuard);
    ASSERT_EQ(TypeParam::setCenters(bank.state, source.data()), c.valid ? qorStatusOk : qorStatusFBankNotReady)
        << testing::PrintToString(c.centers);
    if (!c.valid) continue;
    ASSERT_EQ(TypeParam::getCenters(bank.state, result.data()), qorStatusOk);
    EXPECT_BITS(result.values(), c.centers);
  }
}

TYPED_TEST(FilterBank, RefusedCentersLeaveTheBankAsItWas) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, 16, 2, 0), qorStatusOk);
  const int32_t right[4] = {1, 2, 4, 8}, wrong[4] = {1, 2, 4, 9};
  ASSERT_EQ(TypeParam::setCenters(bank.state, right), qorStatusOk);
  EXPECT_EQ(TypeParam::setCenters(bank.state, wrong), qorStatusFBankNotReady);
  int32_t centers[4];
  EXPECT_EQ(TypeParam::getCenters(bank.state, centers), qorStatusOk);
  EXPECT_BITS(centers, right, 4);
}

TEST(FilterBank, TheCenterFunctionsOfBothFormsAreOne) {
  banks::Bank<Float> bank;
  ASSERT_EQ(Float::empty(&bank.state, &bank.order, 16, 1, 0), qorStatusOk);
  auto* const other = reinterpret_cast<FBankState_16s*>(bank.state);
  const int32_t right[3] = {1, 2, 4};
  int32_t centers[3];
  EXPECT_EQ(qorsFBankSetCenters_16s(other, right), qorStatusOk);
  EXPECT_EQ(qorsFBankGetCenters_16s(other, centers), qorStatusOk);
  EXPECT_BITS(centers, right, 3);
}

// ---- Weights ----

TYPED_TEST(FilterBank, WeightsComeBack) {
  kit::Random random;
  for (const int32_t length : {1, 2, 3, 8, 16, 33, 256}) {
    const auto half = static_cast<int32_t>(model::powerOfTwoFor(length) / 2);
    for (const int32_t n : {1, 2, 3, 5, 12}) {
      const banks::RandomBank<TypeParam> bank(random, length, banks::randomCenters(random, n, half, true), kit::Random::kSmall);
      for (int32_t k = 1; k <= n; ++k) {
        std::vector<float> expected;
        for (const auto w : bank.filters[static_cast<std::size_t>(k) - 1].all()) expected.push_back(TypeParam::exchanged(w));
        const kit::Area<float> result(static_cast<int64_t>(expected.size()), kit::Place::kAtGuard);
        ASSERT_EQ(TypeParam::getCoeffs(bank.state, k, result.data()), qorStatusOk);
        ASSERT_BITS(result.values(), expected) << "length " << length << " filter " << k << " of " << n;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}

TYPED_TEST(FilterBank, WeightsStandByTheirPlaceInTheSection) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, 32, 1, 0), qorStatusOk);
  const int32_t first[3] = {2, 4, 6}, second[3] = {8, 11, 16};
  const float weights[5] = {1, 2, 3, 4, 5};
  float result[9];
  ASSERT_EQ(TypeParam::setCenters(bank.state, first), qorStatusOk);
  ASSERT_EQ(TypeParam::setCoeffs(bank.state, 1, weights), qorStatusOk);
  ASSERT_EQ(TypeParam::setCenters(bank.state, second), qorStatusOk);
  ASSERT_EQ(TypeParam::getCoeffs(bank.state, 1, result), qorStatusOk);
  EXPECT_BITS(std::vector<float>(result, result + 9), std::vector<float>{1, 2, 3, 0, 4, 5, 0, 0, 0});
}

TYPED_TEST(FilterBank, TheRowBehindTheLastFilterCanBeRead) {
  banks::Bank<TypeParam> bank;
  ASSERT_EQ(TypeParam::empty(&bank.state, &bank.order, 32, 2, 0), qorStatusOk);
  const int32_t centers[4] = {0, 3, 10, 16};
  ASSERT_EQ(TypeParam::setCenters(bank.state, centers), qorStatusOk);
  const std::vector<float> ones(14, 1.0F);
  ASSERT_EQ(TypeParam::setCoeffs(bank.state, 2, ones.data()), qorStatusOk);
  const kit::Area<float> result(7, kit::Place::kAtGuard);
  ASSERT_EQ(TypeParam::getCoeffs(bank.state, 3, result.data()), qorStatusOk);
  EXPECT_BITS(result.values(), std::vector<float>(7));
  EXPECT_TRUE(result.edgesKept());
  EXPECT_EQ(TypeParam::setCoeffs(bank.state, 3, ones.data()), qorStatusBadSize);
}

TYPED_TEST(FilterBank, SectionsAreCutToTheBinsThatExist) {
  kit::Random random;
  const std::vector<std::vector<int32_t>> strange = {
      {0, INT32_MIN, 8}, {0, -1, 8},   {3, -4, 5},    {7, INT32_MAX, 8},    {0, 99, 8},   {200, 300, 4}, {5, 2, 1},
      {8, 8, 8},         {3, 9, -100}, {1, 2, 99, 8}, {0, 1, INT32_MAX, 2}, {0, 0, 0, 0}, {4, 4, 8, 8},  {0, 8, 8, 8}};
  for (const auto& centers : strange) {
    const banks::RandomBank<TypeParam> bank(random, 16, centers, kit::Random::kSmall);
    for (std::size_t k = 1; k + 1 < centers.size(); ++k) {
      std::vector<float> expected;
      for (const auto w : bank.filters[k - 1].all()) expected.push_back(TypeParam::exchanged(w));
      const kit::Area<float> result(static_cast<int64_t>(expected.size()), kit::Place::kAtGuard);
      ASSERT_EQ(TypeParam::getCoeffs(bank.state, static_cast<int32_t>(k), result.data()), qorStatusOk);
      ASSERT_BITS(result.values(), expected) << testing::PrintToString(centers);
    }
    std::vector<float> last(9);
    EXPECT_EQ(TypeParam::getCoeffs(bank.state, static_cast<int32_t>(centers.size()) - 1, last.data()), qorStatusOk);
  }
}

TEST(FilterBank, WholeWeightsWrapAtTheTop) {
  banks::Bank<Int16> bank;
  ASSERT_EQ(Int16::empty(&bank.state, &bank.order, 16, 1, 0), qorStatusOk);
  const int32_t centers[3] = {0, 7, 8};
  ASSERT_EQ(Int16::setCenters(bank.state, centers), qorStatusOk);
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const float weights[9] = {0.5F,      131072.0F,  131071.0F, -131072.0F, -1e9F, std::numeric_limits<float>::quiet_NaN(),
                            kInfinity, -kInfinity, -0.99999F};
  float result[9];
  ASSERT_EQ(Int16::setCoeffs(bank.state, 1, weights), qorStatusOk);
  ASSERT_EQ(Int16::getCoeffs(bank.state, 1, result), qorStatusOk);
  EXPECT_BITS(std::vector<float>(result, result + 9), std::vector<float>{0.5F, -131072.0F, 131071.0F, -131072.0F, -131072.0F,
                                                                         -131072.0F, -131072.0F, -131072.0F, -16383.0F / 16384.0F});
}

// ---- Evaluation of spectra ----

// Calls check(bank, half) for banks of many shapes.
template <class Kind>
void forEachBank(kit::Random::Kind weights, const std::function<void(const banks::RandomBank<Kind>&, int32_t)>& check) {
  kit::Random random;
  for (const int32_t length : {2, 4, 8, 16, 32, 64, 128, 256, 512, 1024}) {
    for (const int32_t n : {1, 2, 3, 4, 5, 7, 13, 26, 40}) {
      for (const bool equal : {false, true}) {
        check(banks::RandomBank<Kind>(random, length, banks::randomCenters(random, n, length / 2, equal), weights), length / 2);
        if (testing::Test::HasFailure()) FAIL() << "length " << length << " filters " << n;
      }
    }
  }
  for (const auto& centers : std::vector<std::vector<int32_t>>{
           {0, INT32_MIN, 8}, {0, -1, 8}, {3, -4, 5}, {0, 99, 8}, {200, 300, 4}, {5, 2, 1}, {1, 2, 99, 8}, {0, 8, 8}, {0, 0, 8}}) {
    check(banks::RandomBank<Kind>(random, 16, centers, weights), 8);
    if (testing::Test::HasFailure()) FAIL() << testing::PrintToString(centers);
  }
}

TEST(FilterBank, FloatEvaluationAgreesInBits) {
  kit::Random random(1);
  for (const auto kind : kit::kKinds) {
    forEachBank<Float>(kind, [&](const banks::RandomBank<Float>& bank, int32_t half) {
      const auto x = random.vector<float>(half + 1, kit::kKinds[random.integer(0, 2)]);
      std::vector<float> expected;
      for (const auto& f : bank.filters) expected.push_back(model::evaluate(f, expected.empty(), x));
      for (const kit::Place place : kit::kPlaces) {
        const kit::Area<float> source(x, place), result(static_cast<int64_t>(expected.size()), place);
        ASSERT_EQ(qorsEvalFBank_32f(source.data(), result.data(), bank.state), qorStatusOk);
        ASSERT_BITS(result.values(), expected);
        ASSERT_TRUE(source.edgesKept() && result.edgesKept());
      }
    });
  }
}

TEST(FilterBank, Int16EvaluationAgreesInBits) {
  kit::Random random(2);
  for (const auto kind : kit::kKinds) {
    forEachBank<Int16>(kind, [&](const banks::RandomBank<Int16>& bank, int32_t half) {
      const auto x = random.vector<int16_t>(half + 1, kit::kKinds[random.integer(0, 2)]);
      for (const int32_t sf : {kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)], 0}) {
        std::vector<int16_t> narrow;
        std::vector<int32_t> wide;
        for (const auto& f : bank.filters) {
          narrow.push_back(model::limited<int16_t>(model::evaluate16(f, x, sf)));
          wide.push_back(model::limited<int32_t>(model::evaluate16(f, x, sf)));
        }
        const kit::Place place = kit::kPlaces[random.integer(0, 2)];
        const auto n = static_cast<int64_t>(narrow.size());
        const kit::Area<int16_t> source(x, place), result(n, place);
        const kit::Area<int32_t> wideResult(n, place);
        ASSERT_EQ(qorsEvalFBank_16s_Sfs(source.data(), result.data(), bank.state, sf), qorStatusOk);
        ASSERT_BITS(result.values(), narrow) << "scale factor " << sf;
        ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(source.data(), wideResult.data(), bank.state, sf), qorStatusOk);
        ASSERT_BITS(wideResult.values(), wide) << "scale factor " << sf;
        ASSERT_TRUE(source.edgesKept() && result.edgesKept() && wideResult.edgesKept());
      }
    });
  }
}

TEST(FilterBank, Int16ShiftsDoNotRound) {
  banks::Bank<Int16> bank;
  ASSERT_EQ(Int16::empty(&bank.state, &bank.order, 2, 1, 0), qorStatusOk);
  const int32_t centers[3] = {0, 1, 1};
  const float weights[2] = {1.0F / 16384.0F, 0.0F};  // stored as 1
  ASSERT_EQ(Int16::setCenters(bank.state, centers), qorStatusOk);
  ASSERT_EQ(Int16::setCoeffs(bank.state, 1, weights), qorStatusOk);
  const auto result = [&](int16_t sample, int32_t sf) {
    const int16_t x[2] = {sample, 0};
    int32_t y = 0;
    EXPECT_EQ(qorsEvalFBank_16s32s_Sfs(x, &y, bank.state, sf), qorStatusOk);
    return y;
  };
  EXPECT_EQ(result(-1, 0), -1);
  EXPECT_EQ(result(-1, 1000), -1);
  EXPECT_EQ(result(16383, 0), 0);
  EXPECT_EQ(result(100, -14), 100);
  EXPECT_EQ(result(100, -20), 6400);
  EXPECT_EQ(result(1, -14 - 63), INT32_MIN);
  EXPECT_EQ(result(1, -14 - 64), 0);
}

// ---- Transform front of an empty bank: none ----

TYPED_TEST(FilterBank, AnEmptyBankWithFlagFourEvaluatesSpectra) {
  banks::Bank<Float> bank;
  ASSERT_EQ(Float::empty(&bank.state, &bank.order, 8, 1, 4), qorStatusOk);
  const int32_t centers[3] = {0, 1, 1};
  const float weights[2] = {1, 10}, x[5] = {3, 4, 0, 0, 0};
  float y = 0;
  ASSERT_EQ(Float::setCenters(bank.state, centers), qorStatusOk);
  ASSERT_EQ(Float::setCoeffs(bank.state, 1, weights), qorStatusOk);
  ASSERT_EQ(qorsEvalFBank_32f(x, &y, bank.state), qorStatusOk);
  EXPECT_BITS(y, 43.0F);
}

// ---- Faults ----

TYPED_TEST(FilterBank, ConstructorFaults) {
  using State = typename TypeParam::State;
  struct Args {
    State** state;
    int32_t *order, length, n;
  };
  State* state = nullptr;
  int32_t order = 77;
  kit::FaultTable<Args> table({&state, &order, 16, 2},
                              [](const Args& a) {
                                const QorStatus status = TypeParam::empty(a.state, a.order, a.length, a.n, 0);
                                if (status == qorStatusOk) TypeParam::release(*a.state);
                                return status;
                              },
                              {{&state, 1}, {&order, 1}});
  table.fault("length zero", qorStatusBadSize, &Args::length, 0);
  table.fault("n zero", qorStatusBadSize, &Args::n, 0);
  table.fault("null state", qorStatusNullPointer, &Args::state, nullptr);
  table.fault("null order", qorStatusNullPointer, &Args::order, nullptr);
  table.check();
  EXPECT_EQ(TypeParam::release(nullptr), qorStatusNullPointer);
}

TYPED_TEST(FilterBank, ExchangeFaults) {
  using State = typename TypeParam::State;
  struct Args {
    State* state;
    int32_t* centers;
    float* weights;
    int32_t filter;
  };
  kit::Random random;
  banks::RandomBank<TypeParam> bank(random, 16, {0, 2, 5, 8}, kit::Random::kSmall);
  banks::Bank<TypeParam> empty;
  ASSERT_EQ(TypeParam::empty(&empty.state, &empty.order, 16, 2, 0), qorStatusOk);
  int32_t centers[4] = {0, 1, 2, 3};
  float weights[9] = {};
  const Args valid{bank.state, centers, weights, 1};
  const auto check = [&](auto call, int32_t highest, bool needsReady) {
    kit::FaultTable<Args> table(valid, call, {{centers, 4}, {weights, 9}});
    table.fault("null area", qorStatusNullPointer, &Args::centers, nullptr, &Args::weights, nullptr);
    table.fault("null state", qorStatusNullPointer, &Args::state, nullptr);
    if (needsReady) table.fault("state empty", qorStatusFBankNotReady, &Args::state, empty.state);
    if (highest > 0) {
      table.fault("filter zero", qorStatusBadSize, &Args::filter, 0);
      table.fault("filter beyond", qorStatusBadSize, &Args::filter, highest + 1);
      table.fault("filter largest", qorStatusBadSize, &Args::filter, INT32_MAX);
    }
    table.check();
  };
  check([](const Args& a) { return TypeParam::getCenters(a.state, a.centers); }, 0, true);
  check([](const Args& a) { return TypeParam::getCoeffs(a.state, a.filter, a.weights); }, 3, true);
  check([](const Args& a) { return TypeParam::setCoeffs(a.state, a.filter, a.weights); }, 2, true);
  check([](const Args& a) { return TypeParam::setCenters(a.state, a.centers); }, 0, false);
}

template <class State, class T, class Result>
void expectEvaluationFaults(const State* ready, const State* empty, QorStatus (*evaluate)(const T*, Result*, const State*)) {
  struct Args {
    const T* source;
    Result* result;
    const State* state;
  };
  const T source[9] = {};
  Result result[2] = {};
  kit::FaultTable<Args> table({source, result, ready}, [=](const Args& a) { return evaluate(a.source, a.result, a.state); },
                              {{result, 2}});
  table.fault("null source", qorStatusNullPointer, &Args::source, nullptr);
  table.fault("null result", qorStatusNullPointer, &Args::result, nullptr);
  table.fault("null state", qorStatusNullPointer, &Args::state, nullptr);
  table.fault("state empty", qorStatusFBankNotReady, &Args::state, empty);
  table.check();
}

TEST(FilterBank, EvaluationFaults) {
  kit::Random random;
  const banks::RandomBank<Float> real(random, 16, {0, 2, 5, 8}, kit::Random::kSmall);
  const banks::RandomBank<Int16> whole(random, 16, {0, 2, 5, 8}, kit::Random::kSmall);
  banks::Bank<Float> emptyReal;
  banks::Bank<Int16> emptyWhole;
  ASSERT_EQ(Float::empty(&emptyReal.state, &emptyReal.order, 16, 2, 0), qorStatusOk);
  ASSERT_EQ(Int16::empty(&emptyWhole.state, &emptyWhole.order, 16, 2, 0), qorStatusOk);
  expectEvaluationFaults<FBankState_32f, float, float>(real.state, emptyReal.state, qorsEvalFBank_32f);
  expectEvaluationFaults<FBankState_16s, int16_t, int16_t>(
      whole.state, emptyWhole.state,
      [](const int16_t* x, int16_t* y, const FBankState_16s* s) { return qorsEvalFBank_16s_Sfs(x, y, s, 0); });
  expectEvaluationFaults<FBankState_16s, int16_t, int32_t>(
      whole.state, emptyWhole.state,
      [](const int16_t* x, int32_t* y, const FBankState_16s* s) { return qorsEvalFBank_16s32s_Sfs(x, y, s, INT32_MAX); });
}

}  // namespace
