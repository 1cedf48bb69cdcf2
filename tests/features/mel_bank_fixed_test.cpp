// The fixed-point mel bank: centres and weights read through its evaluation, evaluation in bits, sizes, faults, environment.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/mel_bank.h"
#include "qorsr.h"

namespace {

using model::FixedMelArguments;
using model::FixedMelModel;

constexpr int32_t kOne = 1 << 15;  // of melMul and melDiv

QorStatus init(FBankState_32s* state, int32_t* order, const FixedMelArguments& a) {
  return qorsMelFBankInit_32s(state, order, a.length, a.sampleFrequency, a.low, a.high, a.filters, a.melMul, a.melDiv, 2);
}

std::string text(const FixedMelArguments& a) {
  return "length " + std::to_string(a.length) + " fs " + std::to_string(a.sampleFrequency) + " low " + std::to_string(a.low) +
         " high " + std::to_string(a.high) + " filters " + std::to_string(a.filters) + " mul " + std::to_string(a.melMul) +
         " div " + std::to_string(a.melDiv);
}

// A bank in a block of exactly its size, and its filters.
struct FixedBank {
  FixedMelArguments a;
  int64_t half;
  kit::Area<uint8_t> block;
  FBankState_32s* state;
  std::vector<model::Filter<int32_t>> filters;

  explicit FixedBank(const FixedMelArguments& arguments, int32_t shift = 0)
      : a(arguments),
        half(model::powerOfTwoFor(a.length) / 2),
        block(sizeByRule(a.filters, half) + shift, kit::Place::kAtGuard),
        state(reinterpret_cast<FBankState_32s*>(block.data())) {
    int32_t order = 0;
    EXPECT_EQ(init(state, &order, a), qorStatusOk) << text(a);
    EXPECT_EQ(order, model::orderFor(a.length));
    const FixedMelModel m{a};
    const auto centers = m.centers();
    for (std::size_t k = 1; k + 1 < centers.size(); ++k) filters.push_back(m.filter(centers, k));
  }

  static int64_t sizeByRule(int64_t n, int64_t half) {
    const int64_t p = 4 * n + 8, q = (n + 2) * 4 * half;
    return 4 * n + 96 + 9 * p + 9 * p + q + q + 64;
  }

  std::vector<int32_t> evaluate(const std::vector<int32_t>& x, int32_t sf) const {
    const kit::Area<int32_t> source(x, kit::Place::kAtGuard), result(a.filters, kit::Place::kAtGuard);
    EXPECT_EQ(qorsEvalFBank_32s_Sfs(source.data(), result.data(), state, sf), qorStatusOk);
    EXPECT_TRUE(source.edgesKept() && result.edgesKept());
    return result.values();
  }

  // A sample of 2^8 in one bin, scaled by 2^22, gives the weights of that bin as they are.
  void expectWeightsOfBin(int64_t bin) const {
    std::vector<int32_t> x(static_cast<std::size_t>(half) + 1), expected;
    x[static_cast<std::size_t>(bin)] = 256;
    for (const auto& f : filters) {
      const int64_t rising = bin - f.risingFirst, falling = bin - f.fallingFirst;
      int32_t weight = 0;
      if (rising >= 0 && rising < std::ssize(f.rising)) weight = f.rising[static_cast<std::size_t>(rising)];
      if (falling >= 0 && falling < std::ssize(f.falling)) weight = f.falling[static_cast<std::size_t>(falling)];
      expected.push_back(weight);
    }
    ASSERT_BITS(evaluate(x, -22), expected) << "bin " << bin << " " << text(a);
  }
};

const std::vector<FixedMelArguments> kArguments = {
    {32, 16000, 0, 8000, 1, 1127 * kOne, 700 * kOne},
    {32, 16000, 0, 8000, 17, 1127 * kOne, 700 * kOne},
    {64, 8000, 64, 4000, 12, 1127 * kOne + 343, 700 * kOne},
    {200, 8000, 100, 3400, 20, 2595 * kOne, 700 * kOne},
    {256, 16000, 20, 8000, 26, 1000 * kOne, 1000 * kOne},
    {100, 48000, 0, 24000, 30, 0x80001, 0x80001},
    {64, 48000, 1, 2, 3, 0x3FFFFFFF, 0xFFFFFFF},
    {64, 1, 0, 24000, 5, 1127 * kOne, 700 * kOne},
    {128, 1000, 10, 24000, 40, 0x80001, 0xFFFFFFF},
    {64, 7999, 3999, 4000, 33, 0x3FFFFFFF, 0x80001},
    {32, 44100, 23998, 24000, 2, 12345678, 87654321},
    {8192, 48000, 0, 24000, 64, 1127 * kOne, 700 * kOne},
};

TEST(FixedMelBank, CentersAndWeightsFollowTheArithmetic) {
  for (const FixedMelArguments& a : kArguments) {
    const FixedBank bank(a);
    const int64_t step = bank.half > 512 ? 37 : 1;
    for (int64_t bin = 0; bin <= bank.half; bin += step) bank.expectWeightsOfBin(bin);
    if (HasFailure()) FAIL() << text(a);
  }
}

TEST(FixedMelBank, RandomArguments) {
  kit::Random random;
  for (int trial = 0; trial < 150; ++trial) {
    FixedMelArguments a;
    a.length = static_cast<int32_t>(random.integer(32, 300));
    a.sampleFrequency = static_cast<int32_t>(random.integer(1, 48000));
    a.low = static_cast<int32_t>(random.integer(0, 23999));
    a.high = static_cast<int32_t>(random.integer(a.low + 1, 24000));
    a.filters = static_cast<int32_t>(random.integer(1, model::powerOfTwoFor(a.length) / 2 + 1));
    a.melMul = static_cast<int32_t>(random.integer(0x80001, trial % 2 == 0 ? 0x3FFFFFFF : 0x100000));
    a.melDiv = static_cast<int32_t>(random.integer(0x80001, trial % 3 == 0 ? 0xFFFFFFF : 0x100000));
    const FixedBank bank(a);
    for (int64_t bin = 0; bin <= bank.half; ++bin) bank.expectWeightsOfBin(bin);
    if (HasFailure()) FAIL() << text(a);
  }
}

// The fixed-point centres are those of the law in floating point, up to a bin where the position lies next to a half.
TEST(FixedMelBank, CentersAreThoseOfTheLaw) {
  for (const int32_t filters : {1, 5, 26, 40}) {
    const FixedMelArguments a{512, 16000, 20, 8000, filters, 1127 * kOne, 700 * kOne};
    const auto centers = FixedMelModel{a}.centers();
    const double low = 1127 * std::log1p(20 / 700.0), high = 1127 * std::log1p(8000 / 700.0);
    for (int32_t i = 0; i <= filters + 1; ++i) {
      const double exact = 512 / 16000.0 * 700 * std::expm1((low + i * (high - low) / (filters + 1)) / 1127);
      EXPECT_NEAR(centers[static_cast<std::size_t>(i)], exact, 0.51);
    }
  }
}

TEST(FixedMelBank, EvaluationAgreesInBits) {
  kit::Random random;
  for (const FixedMelArguments& a : kArguments) {
    const FixedBank bank(a);
    for (int trial = 0; trial < 40; ++trial) {
      auto x = random.vector<int32_t>(bank.half + 1, kit::kKinds[trial % 3]);
      if (trial == 0) x.assign(x.size(), INT32_MIN);
      if (trial == 1) x.assign(x.size(), INT32_MAX);
      const auto sf = static_cast<int32_t>(random.integer(-31, 31));
      std::vector<int32_t> expected;
      for (const auto& f : bank.filters) expected.push_back(model::evaluateFixed(f, x, sf));
      ASSERT_BITS(bank.evaluate(x, sf), expected) << "scale factor " << sf << " " << text(a);
    }
  }
}

TEST(FixedMelBank, HalfIsRoundedUpAndOnlyTheTopIsLimited) {
  const FixedBank bank({32, 16000, 4000, 8000, 1, 1127 * kOne, 700 * kOne});
  // One bin of weight 2^30 at the centre: the result is the sample itself, up to the scale factor.
  std::size_t top = 0;
  for (std::size_t i = 0; i < bank.filters[0].rising.size(); ++i) {
    if (bank.filters[0].rising[i] == 0x40000000) top = static_cast<std::size_t>(bank.filters[0].risingFirst) + i;
  }
  ASSERT_GT(top, 0U);
  const auto result = [&](int32_t sample, int32_t sf) {
    std::vector<int32_t> x(17);
    x[top] = sample;
    return bank.evaluate(x, sf)[0];
  };
  EXPECT_EQ(result(77, 0), 77);
  EXPECT_EQ(result(-77, 0), -77);
  EXPECT_EQ(result(3, 1), 2);
  EXPECT_EQ(result(-3, 1), -1);
  EXPECT_EQ(result(INT32_MAX, -1), INT32_MAX);
  EXPECT_EQ(result(INT32_MIN, 0), INT32_MIN);
  EXPECT_EQ(result(-0x50000000, -1), 0x60000000) << "the low 32 bits";
  EXPECT_EQ(result(INT32_MAX, -31), INT32_MAX);
}

TEST(FixedMelBank, SizesFollowTheRuleAndHoldAtEveryAddress) {
  for (const auto& [length, n] : std::vector<std::pair<int32_t, int32_t>>{{32, 1}, {32, 16}, {100, 3}, {64, 32}, {8192, 4096}}) {
    int32_t size = 0;
    ASSERT_EQ(qorsMelFBankGetSize_32s(length, n, 2, &size), qorStatusOk);
    EXPECT_EQ(size, FixedBank::sizeByRule(n, model::powerOfTwoFor(length) / 2));
  }
  // One section over all bins is the longest there is; centres beyond the last bin are cut.
  for (const FixedMelArguments& a : {FixedMelArguments{32, 16000, 0, 16000, 1, 1127 * kOne, 700 * kOne},
                                     FixedMelArguments{32, 100, 0, 24000, 1, 1127 * kOne, 700 * kOne},
                                     FixedMelArguments{64, 16000, 0, 8000, 33, 1127 * kOne, 700 * kOne}}) {
    for (int32_t shift = 0; shift < 64; shift += 4) {
      const FixedBank bank(a, shift);
      for (int64_t bin = 0; bin <= bank.half; ++bin) bank.expectWeightsOfBin(bin);
      const int64_t end = bank.block.size() - shift;
      for (int32_t i = 0; i < shift; ++i) ASSERT_EQ(bank.block[end + i], 0x5B) << "written behind the block";
      ASSERT_TRUE(bank.block.edgesKept());
    }
  }
}

// No floating-point arithmetic: no exception flag is raised, not even the inexact one, and the rounding mode changes nothing.
TEST(FixedMelBank, UsesNoFloatingPoint) {
  const FixedMelArguments a{512, 16000, 20, 8000, 26, 1127 * kOne + 1, 700 * kOne + 1};
  std::vector<uint8_t> first(100000), block(100000);
  int32_t order = 0;
  ASSERT_EQ(init(reinterpret_cast<FBankState_32s*>(first.data()), &order, a), qorStatusOk);
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    std::fenv_t caller;
    std::feholdexcept(&caller);
    std::fesetround(mode);
    const QorStatus status = init(reinterpret_cast<FBankState_32s*>(block.data()), &order, a);
    const int raised = std::fetestexcept(FE_ALL_EXCEPT);
    std::fesetenv(&caller);
    EXPECT_EQ(status, qorStatusOk);
    EXPECT_EQ(raised, 0);
  }
}

// ---- Faults ----

struct Args {
  FBankState_32s* state;
  int32_t *order, length, fs, low, high, n, mul, div, flags;
};

TEST(FixedMelBank, ConstructorFaults) {
  alignas(64) static uint8_t block[65536];
  int32_t order = 77;
  kit::FaultTable<Args> table(
      {reinterpret_cast<FBankState_32s*>(block), &order, 64, 16000, 0, 8000, 33, 1127 * kOne, 700 * kOne, 2},
      [](const Args& a) {
        return qorsMelFBankInit_32s(a.state, a.order, a.length, a.fs, a.low, a.high, a.n, a.mul, a.div, a.flags);
      },
      {{block, 65536}, {&order, 1}});
  table.fault("null state", qorStatusNullPointer, &Args::state, nullptr);
  table.fault("null order", qorStatusNullPointer, &Args::order, nullptr);
  table.fault("n zero", qorStatusBadSize, &Args::n, 0);
  table.fault("high zero", qorStatusBadSize, &Args::high, 0);
  table.fault("length 31", qorStatusBadSize, &Args::length, 31);
  table.fault("length 8193", qorStatusBadSize, &Args::length, 8193);
  for (const int32_t flags : {0, 1, 3, 4, 6}) {
    table.fault("flags " + std::to_string(flags), qorStatusBadFBankFlag, &Args::flags, flags);
  }
  table.fault("fs zero", qorStatusBadSize, &Args::fs, 0);
  table.fault("fs 48001", qorStatusBadSize, &Args::fs, 48001);
  table.fault("low negative", qorStatusBadSize, &Args::low, -1);
  table.fault("high equal to low", qorStatusBadFBankFrequency, &Args::low, 8000);
  table.fault("high 24001", qorStatusBadFBankFrequency, &Args::high, 24001);
  table.fault("div 80000", qorStatusBadArgument, &Args::div, 0x80000);
  table.fault("div 10000000", qorStatusBadArgument, &Args::div, 0x10000000);
  table.fault("mul 80000", qorStatusBadArgument, &Args::mul, 0x80000);
  table.fault("mul 40000000", qorStatusBadArgument, &Args::mul, 0x40000000);
  table.fault("n 34", qorStatusBadSize, &Args::n, 34);
  table.check();
}

TEST(FixedMelBank, SizeFaults) {
  struct SizeArgs {
    int32_t length, n, flags, *size;
  };
  int32_t size = 0;
  kit::FaultTable<SizeArgs> table(
      {64, 32, 2, &size}, [](const SizeArgs& a) { return qorsMelFBankGetSize_32s(a.length, a.n, a.flags, a.size); }, {{&size, 1}});
  table.fault("null size", qorStatusNullPointer, &SizeArgs::size, nullptr);
  table.fault("n zero", qorStatusBadSize, &SizeArgs::n, 0);
  table.fault("length 31", qorStatusBadSize, &SizeArgs::length, 31);
  table.fault("length 8193", qorStatusBadSize, &SizeArgs::length, 8193);
  table.fault("flags 1", qorStatusBadFBankFlag, &SizeArgs::flags, 1);
  table.fault("flags 6", qorStatusBadFBankFlag, &SizeArgs::flags, 6);
  table.fault("n 33", qorStatusBadSize, &SizeArgs::n, 33);
  table.check();
}

TEST(FixedMelBank, EvaluationFaults) {
  const FixedBank bank({32, 16000, 0, 8000, 2, 1127 * kOne, 700 * kOne});
  struct EvalArgs {
    const int32_t* source;
    int32_t* result;
    const FBankState_32s* state;
    int32_t sf;
  };
  using A = EvalArgs;
  const int32_t source[17] = {};
  int32_t result[2] = {};
  kit::FaultTable<A> table({source, result, bank.state, 0},
                           [](const A& a) { return qorsEvalFBank_32s_Sfs(a.source, a.result, a.state, a.sf); }, {{result, 2}});
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.fault("null state", qorStatusNullPointer, &A::state, nullptr);
  for (const int32_t sf : {32, -32, INT32_MAX, INT32_MIN}) {
    table.fault("sf " + std::to_string(sf), qorStatusBadArgument, &A::sf, sf);
  }
  table.check();
}

}  // namespace
