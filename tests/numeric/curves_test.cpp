// Curves: values against the models, in place as elsewhere, faults, memory, environment.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/numeric_vectors.h"
#include "qorsr.h"

namespace {

template <class To, class From>
using Curve = QorStatus (*)(const From*, To*, int32_t);
template <class T>
using CurveInPlace = QorStatus (*)(T*, int32_t);

// The distance in last places of `expected`.
template <class T>
double lastPlaces(T actual, double expected) {
  const auto rounded = static_cast<T>(expected);
  if (std::isnan(rounded)) return std::isnan(actual) ? 0 : HUGE_VAL;
  const T size = std::fabs(rounded), next = std::nextafter(size, std::numeric_limits<T>::infinity());
  return std::fabs(static_cast<double>(actual) - expected) / (static_cast<double>(next) - static_cast<double>(size));
}

// Arguments where the curves have their features, at zero, and of any kind.
template <class T>
std::vector<T> arguments(kit::Random& random, int32_t length, int round) {
  const double range[] = {0.5, 8, 30, 1000};
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    v.push_back(round == 4 ? random.nasty<T>() : static_cast<T>(random.real(-range[round], range[round])));
    if (random.integer(0, 15) == 0) v.back() = 0;
  }
  return v;
}

// `bound` last places from the model, and the same bits wherever an element stands.
template <class To, class From, class Model>
void expectCurve(Curve<To, From> call, double bound, Model model) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 5; ++round) {
      const kit::Place place = kit::kPlaces[(round + length) % 3];
      const auto x = arguments<From>(random, length, round);
      const kit::Area<From> source(x, place);
      kit::Area<To> result(length, place);
      ASSERT_EQ(call(source.data(), result.data(), length), qorStatusOk);
      std::vector<To> alone(x.size());
      for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_LE(lastPlaces(result.values()[i], model(x[i])), bound) << x[i];
        ASSERT_EQ(call(&x[i], &alone[i], 1), qorStatusOk);
      }
      ASSERT_BITS(result.values(), alone) << "length " << length << " round " << round;
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

template <class T>
void expectSameInPlace(Curve<T, T> call, CurveInPlace<T> inPlace) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 5; ++round) {
      const auto x = arguments<T>(random, length, round);
      std::vector<T> expected(x.size());
      const kit::Area<T> values(x, kit::kPlaces[(round + length) % 3]);
      ASSERT_EQ(call(x.data(), expected.data(), length), qorStatusOk);
      ASSERT_EQ(inPlace(values.data(), length), qorStatusOk);
      ASSERT_BITS(values.values(), expected) << "length " << length << " round " << round;
      ASSERT_TRUE(values.edgesKept());
    }
  }
}

// Bounds: what elementary.h states of exp and sin (a sine's last place may be two of the quotient's), half a last place each for the
// quotient and for the model in double.
TEST(ExpNegSqr, IsTheExponential) {
  expectCurve<float, float>(qorsExpNegSqr_32f, 0.8, [](float x) { return model::expNegSqr(static_cast<double>(x * x)); });
  expectCurve<double, double>(qorsExpNegSqr_64f, 1.4, [](double x) { return model::expNegSqr(x * x); });
  expectCurve<double, float>(qorsExpNegSqr_32f64f, 1.4, [](float x) { return model::expNegSqr(static_cast<double>(x * x)); });
}
TEST(ExpNegSqr, InPlace) {
  expectSameInPlace<float>(qorsExpNegSqr_32f, qorsExpNegSqr_32f_I);
  expectSameInPlace<double>(qorsExpNegSqr_64f, qorsExpNegSqr_64f_I);
}
TEST(ExpNegSqr, KnownValues) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::vector<double> x = {0, -0.0, inf, -inf, 27.3, 1e200, 1e-200}, expected = {1, 1, 0, 0, 0, 0, 1};
  std::vector<double> result(x.size());
  ASSERT_EQ(qorsExpNegSqr_64f(x.data(), result.data(), 7), qorStatusOk);
  EXPECT_BITS(result, expected);
}

TEST(SinC, IsTheSineOverItsArgument) {
  expectCurve<float, float>(qorsSinC_32f, 1.75, [](float x) { return model::sinC(static_cast<double>(x)); });
  expectCurve<double, double>(qorsSinC_64f, 2.65, [](double x) { return model::sinC(x); });
  expectCurve<double, float>(qorsSinC_32f64f, 2.65, [](float x) { return model::sinC(static_cast<double>(x)); });
}
TEST(SinC, InPlace) {
  expectSameInPlace<float>(qorsSinC_32f, qorsSinC_32f_I);
  expectSameInPlace<double>(qorsSinC_64f, qorsSinC_64f_I);
}
TEST(SinC, IsOneAtZeroAndEven) {
  std::vector<float> x = {0, -0.0F, 1e-45F, -1e-45F, 2.5F, -2.5F}, result(6);
  ASSERT_EQ(qorsSinC_32f(x.data(), result.data(), 6), qorStatusOk);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(result[static_cast<std::size_t>(i)], 1.0F);
  EXPECT_EQ(result[4], result[5]);
  ASSERT_EQ(qorsSinC_32f_I(x.data(), 6), qorStatusOk);
  EXPECT_BITS(x, result);
}
TEST(SinC, OfInfinityIsNone) {
  const double x[] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
  double result[2];
  ASSERT_EQ(qorsSinC_64f(x, result, 2), qorStatusOk);
  EXPECT_TRUE(std::isnan(result[0]));
  EXPECT_TRUE(std::isnan(result[1]));
}

// ---- Unit curve ----

TEST(UnitCurve, Floats) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 3; ++round) {
      std::vector<float> x, expected;
      for (int32_t i = 0; i < length; ++i) x.push_back(round == 2 ? random.nasty<float>() : static_cast<float>(random.real(-1, 3)));
      for (const float value : x) expected.push_back(model::unitCurve(value));
      const kit::Place place = kit::kPlaces[(round + length) % 3];
      const kit::Area<float> source(x, place);
      kit::Area<float> result(length, place);
      ASSERT_EQ(qorsUnitCurve_32f(source.data(), result.data(), length), qorStatusOk);
      ASSERT_BITS(result.values(), expected) << "length " << length << " round " << round;
      ASSERT_EQ(qorsUnitCurve_32f_I(source.data(), length), qorStatusOk);
      ASSERT_BITS(source.values(), expected) << "in place, length " << length << " round " << round;
      ASSERT_TRUE(result.edgesKept() && source.edgesKept());
    }
  }
}
TEST(UnitCurve, KnownValues) {
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  const std::vector<float> x = {-1, -0.0F, 0, 0.5F, 1, 1.5F, 2, std::nextafter(2.0F, 3.0F), 3, inf, -inf, nan};
  const std::vector<float> expected = {0, 0, 0, 0.25F, 1, 1.75F, 2, 2, 2, 2, 0, 2};
  std::vector<float> result(x.size());
  ASSERT_EQ(qorsUnitCurve_32f(x.data(), result.data(), 12), qorStatusOk);
  EXPECT_BITS(result, expected);
}

constexpr int32_t kScaleFactors[] = {-28, -14, -13, -1, 0, 1, 2, 4, 31, 32, 33, -31, -32, -40, -64, -100, INT32_MIN, INT32_MAX};

TEST(UnitCurve, Int16) {
  kit::Random random;
  for (const int32_t q : {0, 1, 7, 13, 14, -1, 15, INT32_MIN, INT32_MAX}) {
    for (const int32_t sf : kScaleFactors) {
      for (const int32_t length : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 100}) {
        std::vector<int16_t> x, expected;
        const int64_t two = q < 0 || q > 14 ? 1000 : int64_t{2} << q;
        for (int32_t i = 0; i < length; ++i) {
          const int64_t near[] = {0, 1, two / 2 - 1, two / 2, two - 1, two, random.integer(0, two), random.integer(-32768, 32767)};
          x.push_back(static_cast<int16_t>(std::min<int64_t>(near[random.integer(0, 7)], 32767)));
        }
        for (const int16_t value : x) expected.push_back(model::unitCurve(value, q, sf));
        const kit::Place place = kit::kPlaces[length % 3];
        const kit::Area<int16_t> source(x, place);
        kit::Area<int16_t> result(length, place);
        ASSERT_EQ(qorsUnitCurve_16s_Sfs(source.data(), q, result.data(), length, sf), qorStatusOk);
        ASSERT_BITS(result.values(), expected) << "length " << length << " Q " << q << " sf " << sf;
        ASSERT_EQ(qorsUnitCurve_16s_ISfs(source.data(), q, length, sf), qorStatusOk);
        ASSERT_BITS(source.values(), expected) << "in place, length " << length << " Q " << q << " sf " << sf;
        ASSERT_TRUE(result.edgesKept() && source.edgesKept());
      }
    }
  }
}

// ---- Faults, environment ----

template <class To, class From>
struct Args {
  const From* source;
  To* result;
  int32_t length;
};
template <class To, class From>
void expectFaults(QorStatus (*call)(const Args<To, From>&)) {
  using A = Args<To, From>;
  const From source[4] = {1, 2, 3, 4};
  To result[4] = {7, 7, 7, 7};
  kit::FaultTable<A>({source, result, 4}, call, {{result, 4}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
}
template <class T>
struct ArgsInPlace {
  T* values;
  int32_t length;
};
template <class T>
void expectFaultsInPlace(QorStatus (*call)(const ArgsInPlace<T>&)) {
  using A = ArgsInPlace<T>;
  T values[4] = {1, 2, 3, 4};
  kit::FaultTable<A>({values, 4}, call, {{values, 4}})
      .fault("null values", qorStatusNullPointer, &A::values, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
}
TEST(CurveFaults, EveryMember) {
  expectFaults<float, float>([](auto& a) { return qorsExpNegSqr_32f(a.source, a.result, a.length); });
  expectFaults<double, double>([](auto& a) { return qorsExpNegSqr_64f(a.source, a.result, a.length); });
  expectFaults<double, float>([](auto& a) { return qorsExpNegSqr_32f64f(a.source, a.result, a.length); });
  expectFaults<float, float>([](auto& a) { return qorsSinC_32f(a.source, a.result, a.length); });
  expectFaults<double, double>([](auto& a) { return qorsSinC_64f(a.source, a.result, a.length); });
  expectFaults<double, float>([](auto& a) { return qorsSinC_32f64f(a.source, a.result, a.length); });
  expectFaults<float, float>([](auto& a) { return qorsUnitCurve_32f(a.source, a.result, a.length); });
  expectFaults<int16_t, int16_t>([](auto& a) { return qorsUnitCurve_16s_Sfs(a.source, 2, a.result, a.length, 0); });
  expectFaults<int16_t, int16_t>([](auto& a) { return qorsUnitCurve_16s_Sfs(a.source, 15, a.result, a.length, 0); });
}
TEST(CurveFaults, EveryMemberInPlace) {
  expectFaultsInPlace<float>([](auto& a) { return qorsExpNegSqr_32f_I(a.values, a.length); });
  expectFaultsInPlace<double>([](auto& a) { return qorsExpNegSqr_64f_I(a.values, a.length); });
  expectFaultsInPlace<float>([](auto& a) { return qorsSinC_32f_I(a.values, a.length); });
  expectFaultsInPlace<double>([](auto& a) { return qorsSinC_64f_I(a.values, a.length); });
  expectFaultsInPlace<float>([](auto& a) { return qorsUnitCurve_32f_I(a.values, a.length); });
  expectFaultsInPlace<int16_t>([](auto& a) { return qorsUnitCurve_16s_ISfs(a.values, 2, a.length, 0); });
}

TEST(CurveEnvironment, IsKept) {
  kit::expectEnvironmentKept([] {
    float x[40], y[40];
    double wide[40];
    int16_t z[40] = {1, 2, 3};
    for (int i = 0; i < 40; ++i) x[i] = static_cast<float>(i * i * i) - 5.5F;
    qorsExpNegSqr_32f(x, y, 40);
    qorsExpNegSqr_32f64f(x, wide, 40);
    qorsSinC_32f(x, y, 40);
    qorsSinC_32f64f(x, wide, 40);
    qorsUnitCurve_32f(x, y, 40);
    qorsUnitCurve_16s_ISfs(z, 1, 40, 0);
  });
}

}  // namespace
