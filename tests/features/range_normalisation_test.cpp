// Normalisation into a range: bits against the plain model, ends of the interval, warnings, faults, environment.
#include "model/range_normalisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

// The members of one pair of types.
template <class From, class To>
struct Members {
  QorStatus (*found)(const From*, To*, int32_t, float, float, To);
  QorStatus (*given)(const From*, To*, int32_t, From, From, float, float, To);
  QorStatus (*foundInPlace)(To*, int32_t, float, float, To) = nullptr;
  QorStatus (*givenInPlace)(To*, int32_t, To, To, float, float, To) = nullptr;
};
const Members<float, float> k32f{qorsNormalizeInRange_32f, qorsNormalizeInRangeMinMax_32f, qorsNormalizeInRange_32f_I,
                                 qorsNormalizeInRangeMinMax_32f_I};
const Members<int16_t, int16_t> k16s{qorsNormalizeInRange_16s, qorsNormalizeInRangeMinMax_16s, qorsNormalizeInRange_16s_I,
                                     qorsNormalizeInRangeMinMax_16s_I};
const Members<int16_t, uint8_t> k16s8u{qorsNormalizeInRange_16s8u, qorsNormalizeInRangeMinMax_16s8u};
const Members<float, int16_t> k32f16s{qorsNormalizeInRange_32f16s, qorsNormalizeInRangeMinMax_32f16s};
const Members<float, uint8_t> k32f8u{qorsNormalizeInRange_32f8u, qorsNormalizeInRangeMinMax_32f8u};

struct Ratios {
  float lower, upper;
};
constexpr Ratios kRatios[] = {{0, 1}, {0.05F, 0.95F}, {0.5F, 0.500001F}, {0.25F, 1}, {0, 1e-30F}};

template <class From, class To, class InPlace, class Member>
void expectMapped(const std::vector<From>& x, From min, From max, Ratios r, To range, kit::Place place, Member member,
                  InPlace inPlace) {
  const bool flat = min == max;
  std::vector<To> expected;
  for (const From v : x) expected.push_back(flat ? To(0) : model::inRange<To>(v, min, max, r.lower, r.upper, range));
  const auto length = static_cast<int32_t>(x.size());
  const QorStatus status = flat ? qorStatusDegenerateInput : qorStatusOk;
  const kit::Area<From> source(x, place);
  kit::Area<To> result(length, place);
  ASSERT_EQ(member(source.data(), result.data(), length), status);
  ASSERT_BITS(result.values(), expected) << length << ", " << min << " to " << max << ", range " << +range;
  ASSERT_BITS(source.values(), x);
  ASSERT_TRUE(result.edgesKept());
  if constexpr (std::is_same_v<From, To>) {
    ASSERT_EQ(inPlace(source.data(), length), status);
    ASSERT_BITS(source.values(), expected) << length << ", " << min << " to " << max;
    ASSERT_TRUE(source.edgesKept());
  }
}

template <class From, class To>
void expectMembers(const Members<From, To>& m) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 9; ++round) {
      const Ratios r = kRatios[random.integer(0, std::size(kRatios) - 1)];
      const kit::Random::Kind kind = kit::kKinds[round % 3];
      const kit::Place place = kit::kPlaces[random.integer(0, 2)];
      To range = random.value<To>(kind);
      if (!(range >= To(0))) range = std::numeric_limits<To>::max();
      const auto x = random.vector<From>(length, kind);
      const auto ends = length < 2 ? std::vector<From>{0, 0} : model::endsOf(x);
      expectMapped<From, To>(
          x, ends[0], ends[1], r, range, place,
          [&](const From* s, To* d, int32_t n) { return m.found(s, d, n, r.lower, r.upper, range); },
          [&](To* b, int32_t n) { return m.foundInPlace(b, n, r.lower, r.upper, range); });
      From min = random.value<From>(kind), max = random.value<From>(kind);
      if (min > max) std::swap(min, max);
      expectMapped<From, To>(
          x, min, max, r, range, place,
          [&](const From* s, To* d, int32_t n) { return m.given(s, d, n, min, max, r.lower, r.upper, range); },
          [&](To* b, int32_t n) {
            return m.givenInPlace(b, n, static_cast<To>(min), static_cast<To>(max), r.lower, r.upper, range);
          });
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(NormalizeInRange, AgreesWithThePlainModel) {
  expectMembers(k32f);
  expectMembers(k16s);
  expectMembers(k16s8u);
  expectMembers(k32f16s);
  expectMembers(k32f8u);
}

// Values in the middle of two results: every half of the range.
TEST(NormalizeInRange, TiesGoToEven) {
  std::vector<int16_t> x(511), y(511);
  std::vector<uint8_t> bytes(511);
  for (int16_t i = 0; i < 511; ++i) x[static_cast<std::size_t>(i)] = i;
  ASSERT_EQ(qorsNormalizeInRange_16s(x.data(), y.data(), 511, 0, 1, 255), qorStatusOk);
  ASSERT_EQ(qorsNormalizeInRange_16s8u(x.data(), bytes.data(), 511, 0, 1, 255), qorStatusOk);
  for (std::size_t i = 0; i < 511; ++i) {
    const auto expected = static_cast<int16_t>(model::nearestEven(static_cast<double>(i) / 2));
    ASSERT_EQ(y[i], expected) << i;
    ASSERT_EQ(bytes[i], expected) << i;
  }
}

// The place of the least and of the greatest number does not matter, nor does that of a NaN.
TEST(NormalizeInRange, FindsTheEndsAnywhere) {
  for (const int32_t length : kit::shortLengths()) {
    for (int32_t at = 0; at < length; ++at) {
      const int32_t other = (at + length / 2) % length, third = (at + 1) % length;
      if (at == other || third == other || length < 3) continue;
      std::vector<float> x(static_cast<std::size_t>(length), 5.0F), y(x.size());
      x[static_cast<std::size_t>(at)] = 3.0F, x[static_cast<std::size_t>(other)] = 7.0F;
      x[static_cast<std::size_t>(third)] = third == at ? 3.0F : kNaN;
      ASSERT_EQ(qorsNormalizeInRange_32f(x.data(), y.data(), length, 0, 1, 1), qorStatusOk);
      ASSERT_EQ(y[static_cast<std::size_t>(at)], 0.0F);
      ASSERT_EQ(y[static_cast<std::size_t>(other)], 1.0F);
      ASSERT_TRUE(std::isnan(y[static_cast<std::size_t>(third)]));
      std::vector<int16_t> shorts(x.size(), 5), result(x.size());
      shorts[static_cast<std::size_t>(at)] = -32768, shorts[static_cast<std::size_t>(other)] = 32767;
      ASSERT_EQ(qorsNormalizeInRange_16s(shorts.data(), result.data(), length, 0, 1, 32767), qorStatusOk);
      ASSERT_EQ(result[static_cast<std::size_t>(at)], 0);
      ASSERT_EQ(result[static_cast<std::size_t>(other)], 32767);
    }
  }
}

TEST(NormalizeInRange, FlatInputIsWarnedOf) {
  const std::vector<float> flats[] = {std::vector<float>(9, 2.5F), {0.0F, -0.0F, 0.0F}, {kInfinity, kInfinity}, {kNaN}, {4.0F}};
  for (const auto& x : flats) {
    std::vector<float> y(x.size(), 77.0F);
    std::vector<uint8_t> bytes(x.size(), 77);
    const auto length = static_cast<int32_t>(x.size());
    EXPECT_EQ(qorsNormalizeInRange_32f(x.data(), y.data(), length, 0, 1, 1), qorStatusDegenerateInput);
    EXPECT_BITS(y, std::vector<float>(x.size(), 0.0F));
    EXPECT_EQ(qorsNormalizeInRange_32f8u(x.data(), bytes.data(), length, 0, 1, 255), qorStatusDegenerateInput);
    EXPECT_BITS(bytes, std::vector<uint8_t>(x.size(), 0));
  }
  const float one = 3.0F;
  float y = 77;
  EXPECT_EQ(qorsNormalizeInRangeMinMax_32f(&one, &y, 1, 0, 4, 0, 1, 1), qorStatusOk) << "ends that are given serve one number too";
  EXPECT_EQ(y, 0.75F);
}

// ---- Faults, environment ----

template <class From, class To>
struct Args {
  const From* source;
  To* destination;
  int32_t length;
  From min, max;
  float lower, upper;
  To range;
};

template <class From, class To, class Call>
void expectFaults(Call call, bool hasSource, bool hasEnds) {
  using A = Args<From, To>;
  const From source[3] = {1, 2, 3};
  To destination[3] = {1, 2, 3};
  kit::FaultTable<A> table({source, destination, 3, From(1), From(3), 0.25F, 0.75F, To(10)}, call, {{destination, 3}});
  if (hasSource) table.fault("null source", qorStatusNullPointer, &A::source, nullptr);
  table.fault("null destination", qorStatusNullPointer, &A::destination, nullptr);
  table.fault("length zero", qorStatusBadSize, &A::length, 0);
  table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  table.fault("lower negative", qorStatusBadArgument, &A::lower, -0x1p-149F);
  table.fault("lower equal to upper", qorStatusBadArgument, &A::lower, 0.75F, kit::against(&A::upper));
  table.fault("lower above upper", qorStatusBadArgument, &A::lower, 0.8F, kit::against(&A::upper));
  table.fault("lower no number", qorStatusBadArgument, &A::lower, kNaN);
  table.fault("upper no number", qorStatusBadArgument, &A::upper, kNaN);
  table.fault("upper above 1", qorStatusBadArgument, &A::upper, std::nextafter(1.0F, 2.0F));
  if constexpr (std::is_signed_v<To>) table.fault("range negative", qorStatusBadArgument, &A::range, -1);
  if (hasEnds) table.fault("minimum above maximum", qorStatusBadArgument, &A::min, From(4), kit::against(&A::max));
  table.fault("one number and a bad ratio", qorStatusBadArgument, &A::length, 1, &A::lower, 0.75F, kit::against(&A::upper));
  table.check();
}

template <class From, class To>
void expectFaults(const Members<From, To>& m) {
  using A = Args<From, To>;
  expectFaults<From, To>([=](const A& a) { return m.found(a.source, a.destination, a.length, a.lower, a.upper, a.range); }, true,
                         false);
  expectFaults<From, To>(
      [=](const A& a) { return m.given(a.source, a.destination, a.length, a.min, a.max, a.lower, a.upper, a.range); }, true, true);
  if (m.foundInPlace == nullptr) return;
  expectFaults<From, To>([=](const A& a) { return m.foundInPlace(a.destination, a.length, a.lower, a.upper, a.range); }, false,
                         false);
  expectFaults<From, To>(
      [=](const A& a) {
        return m.givenInPlace(a.destination, a.length, static_cast<To>(a.min), static_cast<To>(a.max), a.lower, a.upper, a.range);
      },
      false, true);
}

TEST(NormalizeInRange, Faults) {
  expectFaults(k32f);
  expectFaults(k16s);
  expectFaults(k16s8u);
  expectFaults(k32f16s);
  expectFaults(k32f8u);
}

TEST(NormalizeInRange, KeepsTheEnvironmentAndAllocatesNothing) {
  kit::Random random;
  const auto x = random.vector<float>(100, kit::Random::kNasty);
  const auto shorts = random.vector<int16_t>(100);
  std::vector<float> y(100);
  std::vector<int16_t> whole(100);
  std::vector<uint8_t> bytes(100);
  const auto all = [&] {
    qorsNormalizeInRange_32f(x.data(), y.data(), 100, 0, 1, 1);
    qorsNormalizeInRange_32f16s(x.data(), whole.data(), 100, 0, 1, 1000);
    qorsNormalizeInRange_32f8u(x.data(), bytes.data(), 100, 0, 1, 255);
    return qorsNormalizeInRange_16s(shorts.data(), whole.data(), 100, 0.1F, 0.9F, 1000);
  };
  kit::expectEnvironmentKept(all);
  EXPECT_EQ(kit::expectEveryRefusalReported(all), 0);
}

// Rounding to nearest is the family's, not the caller's.
TEST(NormalizeInRange, RoundsToNearestInEveryMode) {
  const int16_t x[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  int16_t expected[12], actual[12];
  ASSERT_EQ(qorsNormalizeInRangeMinMax_16s(x, expected, 12, 0, 16, 0, 1, 8), qorStatusOk);
  for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    std::fesetround(mode);
    const QorStatus status = qorsNormalizeInRangeMinMax_16s(x, actual, 12, 0, 16, 0, 1, 8);
    std::fesetround(FE_TONEAREST);
    ASSERT_EQ(status, qorStatusOk);
    EXPECT_BITS(actual, expected, 12);
  }
}

}  // namespace
