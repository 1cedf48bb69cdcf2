// Measures of reflection coefficients and the spectrum of a model: bits against the plain models, poles, markers, faults, memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/lp_conversions.h"
#include "qorsr.h"

namespace {

using model::Floats;
using Shorts = std::vector<int16_t>;
constexpr float kInfinite = std::numeric_limits<float>::infinity();
constexpr int32_t kScales[] = {0, -15, 12, -128, 128, 150, INT32_MIN, INT32_MAX};

std::vector<int32_t> lengths() {
  std::vector<int32_t> all = kit::lengths();
  all.insert(all.end(), {101, 600});
  return all;
}

// Inside -1 to 1, with poles, or rubbish.
Floats reflections(kit::Random& random, int32_t count, int kind) {
  Floats k;
  for (int32_t i = 0; i < count; ++i) {
    float value = static_cast<float>(random.real(-1.5, 1.5));
    if (kind == 1 && random.integer(0, 5) == 0) value = static_cast<float>(random.integer(-1, 1));
    if (kind == 2) value = random.nasty<float>();
    k.push_back(value);
  }
  return k;
}
Shorts shorts(kit::Random& random, int32_t count) { return random.vector<int16_t>(count, kit::kKinds[random.integer(0, 2)]); }

template <class Call, class ModelOf>
void expectMeasure(Call call, ModelOf modelOf) {
  kit::Random random;
  for (const int32_t length : lengths()) {
    for (int kind = 0; kind < 3; ++kind) {
      const kit::Place place = kit::kPlaces[(length + kind) % 3];
      const Floats k1 = reflections(random, length, kind), k2 = reflections(random, length, kind);
      const kit::Area<float> first(k1, place), second(k2, place), destination(length, place);
      const auto expected = modelOf(k1, k2);
      ASSERT_EQ(call(first.data(), second.data(), destination.data(), length), expected.status) << length << " kind " << kind;
      ASSERT_BITS(destination.values(), expected.values) << length << " kind " << kind;
      ASSERT_TRUE(destination.edgesKept());
    }
  }
}

template <class Call, class ModelOf>
void expectMeasure16(Call call, ModelOf modelOf, int sense) {
  kit::Random random;
  for (const int32_t length : lengths()) {
    for (const int32_t from : kScales) {
      for (const int32_t to : {0, -10, 5, -128, 150, INT32_MIN, INT32_MAX}) {
        const kit::Place place = kit::kPlaces[length % 3];
        const Shorts k1 = shorts(random, length), k2 = shorts(random, length);
        const kit::Area<int16_t> first(k1, place), second(k2, place), destination(length, place);
        const int64_t exponent = int64_t{from} * sense;
        const auto result = modelOf(model::loaded(k1, exponent), model::loaded(k2, exponent));
        Shorts expected;
        for (const float v : result.values) expected.push_back(model::stored(v, to));
        ASSERT_EQ(call(first.data(), second.data(), destination.data(), length, from, to), result.status);
        ASSERT_BITS(destination.values(), expected) << length << " scales " << from << " " << to;
        ASSERT_TRUE(destination.edgesKept());
      }
    }
  }
}

TEST(ReflectionMeasures, AreaRatio) {
  expectMeasure([](auto* k, auto*, auto* y, int32_t n) { return qorsReflectionToAR_32f(k, y, n); },
                [](const Floats& k, const Floats&) { return model::areaRatios(k); });
  expectMeasure16(
      [](auto* k, auto*, auto* y, int32_t n, int32_t from, int32_t to) { return qorsReflectionToAR_16s_Sfs(k, from, y, n, to); },
      [](const Floats& k, const Floats&) { return model::areaRatios(k); }, 1);
}
TEST(ReflectionMeasures, TrueAreaRatio) {
  expectMeasure([](auto* k, auto*, auto* y, int32_t n) { return qorsReflectionToTrueAR_32f(k, y, n); },
                [](const Floats& k, const Floats&) { return model::trueAreaRatios(k); });
  expectMeasure16([](auto* k, auto*, auto* y, int32_t n, int32_t from,
                     int32_t to) { return qorsReflectionToTrueAR_16s_Sfs(k, from, y, n, to); },
                  [](const Floats& k, const Floats&) { return model::trueAreaRatios(k); }, 1);
}
TEST(ReflectionMeasures, Tilts) {
  expectMeasure(qorsReflectionToAbsTilt_32f, model::absoluteTilts);
  expectMeasure(qorsReflectionToTilt_32f, model::tilts);
  expectMeasure16(
      [](auto* a, auto* b, auto* y, int32_t n, int32_t, int32_t to) { return qorsReflectionToAbsTilt_16s_Sfs(a, b, y, n, to); },
      model::absoluteTilts, 0);
  expectMeasure16(
      [](auto* a, auto* b, auto* y, int32_t n, int32_t, int32_t to) { return qorsReflectionToTilt_16s_Sfs(a, b, y, n, to); },
      model::tilts, 0);
}

// Quotient and logarithm: the quotient's rounding moves the logarithm by half a last place of 1, the logarithm itself by another.
TEST(ReflectionMeasures, LogAreaRatio) {
  kit::Random random;
  for (const int32_t length : lengths()) {
    for (const float limit : {0.5F, 0.999F, 1e-3F}) {
      const kit::Place place = kit::kPlaces[length % 3];
      const Floats k = reflections(random, length, 1);
      const kit::Area<float> source(k, place), destination(length, place);
      std::vector<double> expected;
      for (const float v : k) expected.push_back(model::logAreaRatio(v, limit));
      ASSERT_EQ(qorsReflectionToLAR_32f(source.data(), destination.data(), length, limit), qorStatusOk);
      ASSERT_TRUE(kit::within(destination.data(), expected.data(), length, 1.5e-6)) << length << " limit " << limit;
      const Shorts k16 = shorts(random, length);
      for (const int32_t from : {15, 12}) {
        for (const int32_t to : {-12, -14, 0, INT32_MAX}) {
          const kit::Area<int16_t> source16(k16, place), destination16(length, place);
          Floats floats(k16.size());
          ASSERT_EQ(qorsReflectionToLAR_32f(model::loaded(k16, -from).data(), floats.data(), length, limit), qorStatusOk);
          Shorts wanted;
          for (const float v : floats) wanted.push_back(model::stored(v, to, 0));
          ASSERT_EQ(qorsReflectionToLAR_16s_Sfs(source16.data(), from, destination16.data(), length, limit, to), qorStatusOk);
          ASSERT_BITS(destination16.values(), wanted);
        }
      }
    }
  }
  const Floats ends = {1.0F, -1.0F, kInfinite, std::nanf("")};
  Floats y(4);
  ASSERT_EQ(qorsReflectionToLAR_32f(ends.data(), y.data(), 4, 0.5F), qorStatusOk);
  EXPECT_NEAR(y[0], -1.0986123F, 1e-6F);
  EXPECT_NEAR(y[1], 1.0986123F, 1e-6F);
  EXPECT_EQ(y[2], y[0]);
  EXPECT_TRUE(std::isnan(y[3]));
}

TEST(ReflectionMeasures, Poles) {
  const Floats k = {0.5F, -1.0F, 0.5F, 1.0F, 0.5F};
  Floats y(5);
  ASSERT_EQ(qorsReflectionToTrueAR_32f(k.data(), y.data(), 5), qorStatusDivideByZero);
  EXPECT_BITS(y[0], 0.5F / 1.5F);
  EXPECT_EQ(y[1], kInfinite);
  EXPECT_EQ(y[2], kInfinite);
  for (const std::size_t i : {std::size_t{3}, std::size_t{4}}) EXPECT_EQ(std::bit_cast<uint32_t>(y[i]), 0xFFC00000U);
  EXPECT_EQ(qorsReflectionToAR_32f(k.data(), y.data(), 5), qorStatusDivideByZero);
  EXPECT_FALSE(std::isfinite(y[1]));
  kit::expectEnvironmentKept([&] { EXPECT_EQ(qorsReflectionToAR_32f(k.data() + 2, y.data(), 2), qorStatusOk); });
}

// ---- Spectrum ----

// Zero over zero, a number over zero, infinity over infinity: each is told by the status, and leaves no exception flag behind.
TEST(ReflectionMeasures, LeaveNoFlagBehind) {
  const Floats k = {-1.0F, kInfinite, 0.0F, 0.5F, 0.0F}, other = {1.0F, kInfinite, 0.0F, 0.25F, 0.0F};
  const Shorts k16 = {-1, 3, 0, 2, 0}, other16 = {1, 5, 0, -2, 0};
  Floats y(5);
  Shorts y16(5);
  const auto expectWarning = [](const auto& call) {
    QorStatus status = qorStatusOk;
    kit::expectNoFlagRaised([&] { status = call(); });
    EXPECT_EQ(status, qorStatusDivideByZero);
    kit::expectEnvironmentKept([&] { call(); });
  };
  expectWarning([&] { return qorsReflectionToAR_32f(k.data(), y.data(), 5); });
  expectWarning([&] { return qorsReflectionToAbsTilt_32f(k.data(), other.data(), y.data(), 5); });
  expectWarning([&] { return qorsReflectionToTilt_32f(k.data(), other.data(), y.data(), 5); });
  expectWarning([&] { return qorsReflectionToAR_16s_Sfs(k16.data(), 0, y16.data(), 5, 0); });
  expectWarning([&] { return qorsReflectionToAbsTilt_16s_Sfs(k16.data(), other16.data(), y16.data(), 5, 0); });
  expectWarning([&] { return qorsReflectionToTilt_16s_Sfs(k16.data(), other16.data(), y16.data(), 5, 0); });
}

TEST(ModelSpectrum, IsThatOfTheDefinition) {
  kit::Random random;
  for (int order = 0; order <= 9; ++order) {
    for (const int32_t length : {1, 2, 3, 10, 12, 100, (2 << order) - 1}) {
      if (length >= (2 << order)) continue;
      const kit::Place place = kit::kPlaces[(order + length) % 3];
      const auto a = random.vector<float>(length, kit::Random::kSmall);
      const kit::Area<float> source(a, place), destination(1 << order, place);
      const auto value = static_cast<float>(random.real(-2, 2));
      ASSERT_EQ(qorsLPToSpectrum_32f(source.data(), length, destination.data(), order, value), qorStatusOk);
      const auto exact = model::modelMagnitudes(std::vector<double>(a.begin(), a.end()), order, static_cast<double>(value));
      for (int k = 0; k < 1 << order; ++k) {
        const double magnitude = exact[static_cast<std::size_t>(k)];
        EXPECT_NEAR(1.0 / static_cast<double>(destination[k]), magnitude, 1e-5 * (magnitude + std::sqrt(length)))
            << order << " " << k;
      }
      ASSERT_TRUE(destination.edgesKept());
    }
  }
}

TEST(ModelSpectrum, Int16) {
  kit::Random random;
  for (int order = 0; order <= 8; ++order) {
    for (const int32_t sf : {0, -14, 3, INT32_MIN, INT32_MAX}) {
      const int32_t length = std::min(12, (2 << order) - 1);
      const Shorts a = shorts(random, length);
      Floats floats(std::size_t{1} << order);
      const QorStatus status = qorsLPToSpectrum_32f(Floats(a.begin(), a.end()).data(), length, floats.data(), order, -4096.0F);
      Shorts expected, y(floats.size());
      for (const float v : floats) expected.push_back(model::stored(v, sf));
      ASSERT_EQ(qorsLPToSpectrum_16s_Sfs(a.data(), length, y.data(), order, -4096, sf), status);
      ASSERT_BITS(y, expected) << order << " " << sf;
    }
  }
}

TEST(ModelSpectrum, AMagnitudeOfZeroHasAMarker) {
  const Floats a = {0.25F, 0.5F};
  Floats y(4);
  ASSERT_EQ(qorsLPToSpectrum_32f(a.data(), 2, y.data(), 2, 0.75F), qorStatusDivideByZero);
  EXPECT_BITS(y[0], std::bit_cast<float>(0x4EFF0000U));
  EXPECT_GT(y[1], 0.0F);
  EXPECT_LT(y[1], 10.0F);
}

// ---- Faults ----

template <class T>
struct Args {
  const T *first, *second;
  T* destination;
  int32_t length;
  float limit;
  int32_t order;
};
template <class T>
kit::FaultTable<Args<T>> table(QorStatus (*call)(const Args<T>&), std::vector<T>& y) {
  static const std::vector<T> x = {T(0), T(0), T(0)};
  return kit::FaultTable<Args<T>>({x.data(), x.data(), y.data(), 3, 0.5F, 3}, call, {{y.data(), static_cast<int64_t>(y.size())}});
}

template <class T>
void expectMeasureFaults(QorStatus (*call)(const Args<T>&), bool two) {
  using A = Args<T>;
  std::vector<T> y(8, T(77));
  auto faults = table<T>(call, y);
  faults.fault("null source", qorStatusNullPointer, &A::first, nullptr);
  if (two) faults.fault("null second", qorStatusNullPointer, &A::second, nullptr);
  faults.fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
}
TEST(ReflectionFaults, Measures) {
  expectMeasureFaults<float>([](const auto& a) { return qorsReflectionToAR_32f(a.first, a.destination, a.length); }, false);
  expectMeasureFaults<float>([](const auto& a) { return qorsReflectionToTrueAR_32f(a.first, a.destination, a.length); }, false);
  expectMeasureFaults<float>([](const auto& a) { return qorsReflectionToTilt_32f(a.first, a.second, a.destination, a.length); },
                             true);
  expectMeasureFaults<float>([](const auto& a) { return qorsReflectionToAbsTilt_32f(a.first, a.second, a.destination, a.length); },
                             true);
  expectMeasureFaults<int16_t>([](const auto& a) { return qorsReflectionToAR_16s_Sfs(a.first, -15, a.destination, a.length, -8); },
                               false);
  expectMeasureFaults<int16_t>(
      [](const auto& a) { return qorsReflectionToTrueAR_16s_Sfs(a.first, -15, a.destination, a.length, -8); }, false);
  expectMeasureFaults<int16_t>(
      [](const auto& a) { return qorsReflectionToTilt_16s_Sfs(a.first, a.second, a.destination, a.length, -8); }, true);
  expectMeasureFaults<int16_t>(
      [](const auto& a) { return qorsReflectionToAbsTilt_16s_Sfs(a.first, a.second, a.destination, a.length, -8); }, true);
}

template <class T>
void expectLimitFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  std::vector<T> y(8, T(77));
  table<T>(call, y)
      .fault("null source", qorStatusNullPointer, &A::first, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("limit zero", qorStatusBadRange, &A::limit, 0.0F)
      .fault("limit one", qorStatusBadRange, &A::limit, 1.0F)
      .check();
}
TEST(ReflectionFaults, LogAreaRatios) {
  expectLimitFaults<float>([](const auto& a) { return qorsReflectionToLAR_32f(a.first, a.destination, a.length, a.limit); });
  expectLimitFaults<int16_t>(
      [](const auto& a) { return qorsReflectionToLAR_16s_Sfs(a.first, 15, a.destination, a.length, a.limit, -12); });
}

template <class T>
void expectSpectrumFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  std::vector<T> y(8, T(77));
  table<T>(call, y)
      .fault("null source", qorStatusNullPointer, &A::first, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length at size", qorStatusBadSize, &A::length, 16)
      .fault("order negative", qorStatusBadSize, &A::order, -1)
      .fault("order least", qorStatusBadSize, &A::order, INT32_MIN)
      .check();
}
TEST(ReflectionFaults, Spectrum) {
  expectSpectrumFaults<float>([](const auto& a) { return qorsLPToSpectrum_32f(a.first, a.length, a.destination, a.order, 1.0F); });
  expectSpectrumFaults<int16_t>(
      [](const auto& a) { return qorsLPToSpectrum_16s_Sfs(a.first, a.length, a.destination, a.order, 1, 0); });
  const float x = 1.0F;
  float y = 0.0F;
  for (const int32_t order : {30, 31, INT32_MAX}) EXPECT_EQ(qorsLPToSpectrum_32f(&x, 1, &y, order, 0.0F), qorStatusNoMemory);
  const int16_t x16 = 1;
  int16_t y16 = 0;
  for (const int32_t order : {30, 31, INT32_MAX})
    EXPECT_EQ(qorsLPToSpectrum_16s_Sfs(&x16, 1, &y16, order, 0, 0), qorStatusNoMemory);
}

TEST(ReflectionMeasures, EveryRefusedAllocationIsReported) {
  const Shorts x(200, 100);
  Shorts y(600);
  Floats floats(600);
  using kit::expectEveryRefusalReported;
  const auto refusals = [&](int32_t length) {
    return expectEveryRefusalReported([&] { return qorsReflectionToAR_16s_Sfs(x.data(), -15, y.data(), length, 0); });
  };
  EXPECT_EQ(refusals(100), 0);
  EXPECT_EQ(refusals(101), 1);
  EXPECT_EQ(expectEveryRefusalReported([&] { return qorsReflectionToLAR_16s_Sfs(x.data(), 15, y.data(), 101, 0.5F, -8); }), 1);
  EXPECT_EQ(expectEveryRefusalReported([&] { return qorsReflectionToTrueAR_16s_Sfs(x.data(), -15, y.data(), 101, -8); }), 1);
  const Floats a(10, 0.01F);
  const auto spectrum = [&](int32_t order) {
    return expectEveryRefusalReported([&] { return qorsLPToSpectrum_32f(a.data(), 10, floats.data(), order, 1.0F); });
  };
  EXPECT_EQ(spectrum(6), 0);
  EXPECT_EQ(spectrum(7), 1);
  EXPECT_EQ(expectEveryRefusalReported([&] { return qorsLPToSpectrum_16s_Sfs(x.data(), 10, y.data(), 8, 1, 0); }), 2);
}

}  // namespace
