// Counts of sign changes: against the plain model, examples, long signals, faults, environment.
#include "model/sign_changes.h"

#include <gtest/gtest.h>

#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

// Signals with zeros of both signs, denormals and numbers that are none among them.
template <class T>
std::vector<T> signal(kit::Random& random, int32_t length, kit::Random::Kind kind) {
  auto x = random.vector<T>(length, kind);
  for (T& v : x) {
    const int64_t chance = random.integer(0, 9);
    if (chance == 0) v = T(0);
    if (chance == 1 && kind == kit::Random::kNasty) v = -T(0);
    if constexpr (std::is_same_v<T, float>) {
      if (chance == 2 && kind == kit::Random::kNasty) v *= 1e-30F;
    }
  }
  return x;
}

void expectCounts(const kit::Area<float>& x) {
  const auto n = static_cast<int32_t>(x.size());
  float count = -1;
  int32_t whole = -1;
  const auto values = x.values();
  ASSERT_EQ(qorsSignChangeRate_32f(x.data(), n, &count), qorStatusOk);
  ASSERT_BITS(count, static_cast<float>(model::negativeProducts(values))) << n;
  ASSERT_EQ(qorsSignChangeRate_Count0_32f(x.data(), n, &count), qorStatusOk);
  ASSERT_BITS(count, static_cast<float>(model::signSteps(values)) * 0.5F) << n;
  ASSERT_EQ(qorsSignChangeRateXor_32f(x.data(), n, &whole), qorStatusOk);
  ASSERT_BITS(whole, static_cast<int32_t>(model::differentSignBits(values))) << n;
}
void expectCounts(const kit::Area<int16_t>& x) {
  const auto n = static_cast<int32_t>(x.size());
  int32_t count = -1;
  const auto values = x.values();
  ASSERT_EQ(qorsSignChangeRate_16s(x.data(), n, &count), qorStatusOk);
  ASSERT_BITS(count, static_cast<int32_t>(model::negativeProducts(values))) << n;
  ASSERT_EQ(qorsSignChangeRate_Count0_16s(x.data(), n, &count), qorStatusOk);
  ASSERT_BITS(count, static_cast<int32_t>(model::signSteps(values) / 2)) << n;
}

template <class T>
class SignChanges : public testing::Test {};
using Types = testing::Types<float, int16_t>;
TYPED_TEST_SUITE(SignChanges, Types, );

TYPED_TEST(SignChanges, AgreeWithThePlainModel) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      for (const kit::Place place : kit::kPlaces)
        expectCounts(kit::Area<TypeParam>(signal<TypeParam>(random, length, kind), place));
    }
  }
}

TYPED_TEST(SignChanges, OfLongSignals) {
  for (const int32_t length : {70001, 600001}) {
    std::vector<TypeParam> x(static_cast<std::size_t>(length), TypeParam(1));
    for (std::size_t i = 0; i < x.size(); i += 2) x[i] = TypeParam(-1);
    x[5] = 0;
    expectCounts(kit::Area<TypeParam>(x, kit::Place::kAligned));
  }
}

TEST(SignChangeRate, Examples) {
  float count = -1;
  int32_t whole = -1;
  const float through[] = {1, 0, -1};
  ASSERT_EQ(qorsSignChangeRate_32f(through, 3, &count), qorStatusOk);
  EXPECT_EQ(count, 0);
  ASSERT_EQ(qorsSignChangeRate_Count0_32f(through, 3, &count), qorStatusOk);
  EXPECT_EQ(count, 1);
  ASSERT_EQ(qorsSignChangeRate_Count0_32f(through, 2, &count), qorStatusOk);
  EXPECT_EQ(count, 0.5F);
  const int16_t down[] = {1, 0};
  ASSERT_EQ(qorsSignChangeRate_Count0_16s(down, 2, &whole), qorStatusOk);
  EXPECT_EQ(whole, 0);
  const float zeros[] = {0.0F, -0.0F};
  ASSERT_EQ(qorsSignChangeRateXor_32f(zeros, 2, &whole), qorStatusOk);
  EXPECT_EQ(whole, 1);
  const float tiny[] = {1e-30F, -1e-30F, 1.0F};
  ASSERT_EQ(qorsSignChangeRate_32f(tiny, 3, &count), qorStatusOk);
  EXPECT_EQ(count, 1) << "the first product underflows";
  const int16_t extreme[] = {-32768, 32767, -32768, -32768};
  ASSERT_EQ(qorsSignChangeRate_16s(extreme, 4, &whole), qorStatusOk);
  EXPECT_EQ(whole, 2);
}

// ---- Faults, environment ----

template <class T, class Result>
void expectFaults(QorStatus (*call)(const T*, int32_t, Result*)) {
  struct A {
    const T* source;
    int32_t length;
    Result* result;
  };
  const T x[] = {1, 2};
  Result result = 77;
  kit::FaultTable<A>({x, 2, &result}, [=](const A& a) { return call(a.source, a.length, a.result); }, {{&result, 1}})
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
}

TEST(SignChangeRate, Faults) {
  expectFaults(qorsSignChangeRate_32f);
  expectFaults(qorsSignChangeRate_Count0_32f);
  expectFaults(qorsSignChangeRateXor_32f);
  expectFaults(qorsSignChangeRate_16s);
  expectFaults(qorsSignChangeRate_Count0_16s);
}

TEST(SignChangeRate, KeepsTheEnvironmentAndAllocatesNothing) {
  kit::Random random;
  const auto x = random.vector<float>(50, kit::Random::kNasty);
  const auto shorts = random.vector<int16_t>(50);
  float count;
  int32_t whole;
  const auto all = [&] {
    qorsSignChangeRate_32f(x.data(), 50, &count);
    qorsSignChangeRate_Count0_32f(x.data(), 50, &count);
    qorsSignChangeRateXor_32f(x.data(), 50, &whole);
    qorsSignChangeRate_Count0_16s(shorts.data(), 50, &whole);
    return qorsSignChangeRate_16s(shorts.data(), 50, &whole);
  };
  kit::expectEnvironmentKept(all);
  EXPECT_EQ(kit::expectEveryRefusalReported(all), 0);
}

}  // namespace
