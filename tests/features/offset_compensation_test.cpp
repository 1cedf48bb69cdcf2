// Removal of an offset: bits against the plain model, pieces, examples, faults, environment.
#include "model/offset_compensation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

// A member, its form in place, and its model.
template <class T, class Coefficient, class Member, class InPlace, class Model>
void expectFilter(const std::vector<Coefficient>& coefficients, Member member, InPlace inPlace, Model model) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const Coefficient c : coefficients) {
      const kit::Place place = kit::kPlaces[random.integer(0, 2)];
      const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
      const auto values = random.vector<T>(length, kind);
      const T before = random.value<T>(kind), y = random.value<T>(kind);
      const std::vector<T> expected = model(values, before, y, c);
      const kit::Area<T> source(values, place), buffer(values, place);
      kit::Area<T> result(length, place);
      T carried = before;
      ASSERT_EQ(member(source.data(), result.data(), length, &carried, y, c), qorStatusOk);
      ASSERT_BITS(result.values(), expected) << length << ", " << c;
      ASSERT_BITS(carried, values.back());
      ASSERT_BITS(source.values(), values);
      carried = before;
      ASSERT_EQ(inPlace(buffer.data(), length, &carried, y, c), qorStatusOk);
      ASSERT_BITS(buffer.values(), expected) << length << ", " << c;
      ASSERT_BITS(carried, values.back());
      ASSERT_TRUE(result.edgesKept() && buffer.edgesKept());
    }
  }
}

template <class T>
using FloatModel = std::vector<T> (*)(const std::vector<T>&, T, T, float);

TEST(CompensateOffset, AgreesWithThePlainModel) {
  expectFilter<float, float>({0.999F, 0.0F, 1.0F, -0.75F, 1.5F, kNaN}, qorsCompensateOffset_32f, qorsCompensateOffset_32f_I,
                             FloatModel<float>(model::offsetFilter));
  expectFilter<int16_t, float>({0.999F, 0.0F, 1.0F, -0.75F, 1.5F, 1e30F, kNaN, kInfinity, -kInfinity}, qorsCompensateOffset_16s,
                               qorsCompensateOffset_16s_I, FloatModel<int16_t>(model::offsetFilter));
  expectFilter<int16_t, int16_t>({32735, 0, 1, 32767, 16384}, qorsCompensateOffsetQ15_16s, qorsCompensateOffsetQ15_16s_I,
                                 model::offsetFilterQ15);
}

// Small numbers, so that halves are met and nothing saturates.
TEST(CompensateOffset, HalvesAreRoundedAwayFromZeroButInTheFirstNumber) {
  const int16_t x[] = {1, 2, 1, 3, 0, 1, -4};
  int16_t y[7], before = 0;
  ASSERT_EQ(qorsCompensateOffset_16s(x, y, 7, &before, 3, -0.5F), qorStatusOk);
  const int16_t expected[] = {0, 1, -2, 3, -5, 4, -7};  // -0.5; 1; -1.5; 3; -4.5; 3.5; -7
  EXPECT_BITS(y, expected, 7);
  EXPECT_EQ(before, -4);
}

TEST(CompensateOffset, PiecesEqualTheWhole) {
  kit::Random random;
  const auto floats = random.vector<float>(300);
  const auto shorts = random.vector<int16_t>(300, kit::Random::kSmall);
  float y32[300], pieces32[300], before32 = 3;
  int16_t y16[300], pieces16[300], before16 = 3;
  ASSERT_EQ(qorsCompensateOffset_32f(floats.data(), y32, 300, &before32, 0.5F, 0.97F), qorStatusOk);
  ASSERT_EQ(qorsCompensateOffsetQ15_16s(shorts.data(), y16, 300, &before16, 5, 32000), qorStatusOk);
  before32 = 3, before16 = 3;
  float last32 = 0.5F;
  int16_t last16 = 5;
  for (int32_t at = 0, count = 1; at < 300; at += count, ++count) {
    const int32_t n = std::min(count, 300 - at);
    ASSERT_EQ(qorsCompensateOffset_32f(floats.data() + at, pieces32 + at, n, &before32, last32, 0.97F), qorStatusOk);
    ASSERT_EQ(qorsCompensateOffsetQ15_16s(shorts.data() + at, pieces16 + at, n, &before16, last16, 32000), qorStatusOk);
    last32 = pieces32[at + n - 1], last16 = pieces16[at + n - 1];
  }
  // The first number of a piece is (c y + x) - s and not (x - s) + c y: equal up to rounding, which c < 1 lets die away.
  for (int i = 0; i < 300; ++i) EXPECT_NEAR(pieces32[i], y32[i], 1e-4) << i;
  EXPECT_BITS(pieces16, y16, 300);
}

TEST(CompensateOffset, InTheFloatFormOf16BitsASeamShows) {
  const int16_t x[] = {0, 0};
  int16_t whole[2], first[1], second[1], before = 0;
  ASSERT_EQ(qorsCompensateOffset_16s(x, whole, 2, &before, 3, 0.5F), qorStatusOk);
  ASSERT_EQ(qorsCompensateOffset_16s(x, first, 1, &before, 3, 0.5F), qorStatusOk);
  ASSERT_EQ(qorsCompensateOffset_16s(x + 1, second, 1, &before, first[0], 0.5F), qorStatusOk);
  EXPECT_EQ(whole[0], 1);
  EXPECT_EQ(whole[1], 1);
  EXPECT_EQ(second[0], 0);
}

TEST(CompensateOffset, SaturatesAtTheLimitsOf16Bits) {
  const int16_t x[] = {32767, -32768, 32767};
  int16_t y[3], before = -32768;
  ASSERT_EQ(qorsCompensateOffset_16s(x, y, 3, &before, 0, 0.0F), qorStatusOk);
  const int16_t expected[] = {32767, -32768, 32767};
  EXPECT_BITS(y, expected, 3);
  before = -32768;
  ASSERT_EQ(qorsCompensateOffsetQ15_16s(x, y, 3, &before, 32767, 32767), qorStatusOk);
  EXPECT_BITS(y, expected, 3);
}

TEST(CompensateOffset, TheFixedSumGoesTowardZero) {
  const int16_t x[] = {0, 0};
  int16_t y[2], before = 0;
  ASSERT_EQ(qorsCompensateOffsetQ15_16s(x, y, 2, &before, -1, 16384), qorStatusOk);
  EXPECT_EQ(y[0], 0) << "-1/2";
  ASSERT_EQ(qorsCompensateOffsetQ15_16s(x, y, 2, &before, -3, 16384), qorStatusOk);
  EXPECT_EQ(y[0], -1) << "-3/2";
}

TEST(ZeroMean, AgreesWithThePlainModel) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 12; ++round) {
      const auto values = random.vector<int16_t>(length, kit::kKinds[round % 3]);
      const kit::Area<int16_t> buffer(values, kit::kPlaces[random.integer(0, 2)]);
      ASSERT_EQ(qorsZeroMean_16s(buffer.data(), length), qorStatusOk);
      ASSERT_BITS(buffer.values(), model::withoutMean(values)) << length;
      ASSERT_TRUE(buffer.edgesKept());
    }
  }
}

TEST(ZeroMean, OfLongExtremeSignals) {
  for (const int32_t length : {65536, 65537, 1100003}) {
    for (const int16_t value : {int16_t{-32768}, int16_t{32767}}) {
      std::vector<int16_t> x(static_cast<std::size_t>(length), value);
      ASSERT_EQ(qorsZeroMean_16s(x.data(), length), qorStatusOk);
      EXPECT_EQ(x, std::vector<int16_t>(x.size(), 0)) << length << ", " << value;
    }
  }
}

TEST(ZeroMean, Examples) {
  int16_t pair[] = {1, 2};
  ASSERT_EQ(qorsZeroMean_16s(pair, 2), qorStatusOk);
  EXPECT_EQ(pair[0], -1);
  EXPECT_EQ(pair[1], 1);
  int16_t lowest[] = {-32768, 32767, 1};
  ASSERT_EQ(qorsZeroMean_16s(lowest, 3), qorStatusOk);
  EXPECT_EQ(lowest[0], -32767);
}

// ---- Faults, memory, environment ----

template <class T, class C>
struct Args {
  const T* source;
  T* destination;
  T* before;
  int32_t length;
  C coefficient;
};

template <class T, class C, class Member, class InPlace>
void expectFaults(Member member, InPlace inPlace, C c) {
  using A = Args<T, C>;
  T source[3] = {1, 2, 3}, destination[3] = {7, 8, 9}, before = 5;
  const A valid{source, destination, &before, 3, c};
  kit::FaultTable<A> of(valid, [=](const A& a) { return member(a.source, a.destination, a.length, a.before, T(0), a.coefficient); },
                        {{destination, 3}, {&before, 1}});
  kit::FaultTable<A> at(valid, [=](const A& a) { return inPlace(a.destination, a.length, a.before, T(0), a.coefficient); },
                        {{destination, 3}, {&before, 1}});
  of.fault("null source", qorStatusNullPointer, &A::source, nullptr);
  for (auto* table : {&of, &at}) {
    table->fault("null destination", qorStatusNullPointer, &A::destination, nullptr);
    table->fault("null before", qorStatusNullPointer, &A::before, nullptr);
    table->fault("length zero", qorStatusBadSize, &A::length, 0);
    table->fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
    if constexpr (std::is_same_v<C, int16_t>) {
      table->fault("length 65536", qorStatusBadSize, &A::length, 65536);
      table->fault("coefficient negative", qorStatusBadArgument, &A::coefficient, -1);
    }
    table->check();
  }
}

TEST(CompensateOffset, Faults) {
  expectFaults<float>(qorsCompensateOffset_32f, qorsCompensateOffset_32f_I, 0.5F);
  expectFaults<int16_t>(qorsCompensateOffset_16s, qorsCompensateOffset_16s_I, 0.5F);
  expectFaults<int16_t>(qorsCompensateOffsetQ15_16s, qorsCompensateOffsetQ15_16s_I, int16_t{16384});
}

TEST(CompensateOffset, TheLongestFixedSignal) {
  std::vector<int16_t> x(65536, 1), y(65536, 77);
  int16_t before = 1;
  EXPECT_EQ(qorsCompensateOffsetQ15_16s(x.data(), y.data(), 65535, &before, 0, 0), qorStatusOk);
  EXPECT_EQ(y[65534], 0);
  EXPECT_EQ(y[65535], 77);
}

TEST(ZeroMean, Faults) {
  struct A {
    int16_t* buffer;
    int32_t length;
  };
  int16_t buffer[2] = {3, 9};
  kit::FaultTable<A>({buffer, 2}, [](const A& a) { return qorsZeroMean_16s(a.buffer, a.length); }, {{buffer, 2}})
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .fault("null buffer", qorStatusNullPointer, &A::buffer, nullptr)
      .check();
}

TEST(CompensateOffset, KeepsTheEnvironmentAndAllocatesNothing) {
  kit::Random random;
  auto x = random.vector<int16_t>(50);
  auto f = random.vector<float>(50);
  int16_t before = 1;
  float floatBefore = 1;
  const auto all = [&] {
    qorsCompensateOffset_32f_I(f.data(), 50, &floatBefore, 1, 0.9F);
    qorsCompensateOffset_16s_I(x.data(), 50, &before, 1, 1e9F);
    qorsCompensateOffsetQ15_16s_I(x.data(), 50, &before, 1, 30000);
    return qorsZeroMean_16s(x.data(), 50);
  };
  kit::expectEnvironmentKept(all);
  EXPECT_EQ(kit::expectEveryRefusalReported(all), 0);
}

}  // namespace
