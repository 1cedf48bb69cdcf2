// Linear prediction: bits against the plain model, an independent solution in double, failures that leave a part written, faults, memory.
#include "model/linear_prediction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "features/linear_systems.h"
#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "qorsr.h"

namespace {

using Floats = std::vector<float>;
constexpr float kUnset = 77.0F;
constexpr int32_t kScaleFactors[] = {0, -15, -12, 3, -127, -128, 149, 150, INT32_MIN, INT32_MAX};

// Signals that predictors meet: noise, a resonance, a decay, a constant, an impulse, rubbish.
Floats signal(kit::Random& random, int kind, int32_t length) {
  Floats x = random.vector<float>(length, kind == 5 ? kit::Random::kNasty : kit::Random::kPlain);
  for (int32_t n = 0; n < length; ++n) {
    float& value = x[static_cast<std::size_t>(n)];
    const auto before = [&](int32_t d) { return n < d ? 0.0F : x[static_cast<std::size_t>(n - d)]; };
    if (kind == 1) value = value + 1.6F * before(1) - 0.81F * before(2);
    if (kind == 2) value = n == 0 ? 1.0F : 0.9F * before(1);
    if (kind == 3) value = 3.0F;
    if (kind == 4) value = n == length / 2 ? -5.0F : 0.0F;
  }
  return x;
}
constexpr int kSignalKinds = 6;

// Lengths and orders: all small ones, and those on either side of the bounds of scratch and of the transform.
struct Size {
  int32_t length, order;
};
std::vector<Size> sizes() {
  std::vector<Size> all;
  for (int32_t length = 1; length <= 40; ++length) {
    for (const int32_t order : {1, 2, 3, 4, 5, 8, 9, 12, 13, 16, 17, 33, length - 1, length}) {
      if (order >= 1 && order <= length) all.push_back({length, order});
    }
  }
  for (const int32_t length : {62, 63, 64, 65, 240, 400}) {
    for (const int32_t order : {10, 12, 24, 62, 63, 64, 65, 130}) {
      if (order <= length) all.push_back({length, order});
    }
  }
  return all;
}

template <class T>
std::vector<float> asFloats(const std::vector<T>& x) {
  return std::vector<float>(x.begin(), x.end());
}

// ---- Autocorrelation method ----

model::Recursion modelOfAuto(const Floats& x, int32_t order, bool negated) {
  const auto p = static_cast<std::size_t>(order);
  return [&] {
    model::Recursion result = model::durbin(model::autocorrelations(x, p), p);
    if (!negated) return result;
    for (std::size_t i = 0; i < p; ++i) result.a[i] = 0.0F - (i < result.written ? result.a[i] : kUnset);
    result.written = p;
    return result;
  }();
}

using Member32f = QorStatus(const float*, int32_t, float*, int32_t);
using Member16s = QorStatus(const int16_t*, int32_t, int16_t*, int32_t, int32_t);

void expectAuto(Member32f* member, bool negated) {
  kit::Random random;
  for (const Size size : sizes()) {
    const kit::Place place = kit::kPlaces[(size.length + size.order) % 3];
    const Floats x = signal(random, static_cast<int>(random.integer(0, kSignalKinds - 1)), size.length);
    const kit::Area<float> source(x, place);
    kit::Area<float> destination(size.order, place);
    destination.fill(kUnset);
    const auto expected = modelOfAuto(x, size.order, negated);
    SCOPED_TRACE(testing::Message() << "length " << size.length << " order " << size.order);
    ASSERT_EQ(member(source.data(), size.length, destination.data(), size.order), expected.status);
    Floats wanted(static_cast<std::size_t>(size.order), kUnset);
    std::copy_n(expected.a.begin(), expected.written, wanted.begin());
    ASSERT_BITS(destination.values(), wanted);
    ASSERT_BITS(source.values(), x);
    ASSERT_TRUE(destination.edgesKept());
  }
}
TEST(LinearPrediction, AutocorrelationMethod) { expectAuto(qorsLinearPrediction_Auto_32f, false); }
TEST(LinearPrediction, NegatedAlsoWhereTheRecursionFailed) { expectAuto(qorsLinearPredictionNeg_Auto_32f, true); }

void expectAuto16(Member16s* member, bool negated) {
  kit::Random random;
  for (const Size size : sizes()) {
    const kit::Place place = kit::kPlaces[(size.length + size.order) % 3];
    const auto x = random.vector<int16_t>(size.length, kit::kKinds[random.integer(0, 2)]);
    const kit::Area<int16_t> source(x, place);
    kit::Area<int16_t> destination(size.order, place);
    destination.fill(77);
    const int32_t sf = kScaleFactors[(size.length + 3 * size.order) % std::ssize(kScaleFactors)];
    const auto expected = modelOfAuto(asFloats(x), size.order, negated);
    SCOPED_TRACE(testing::Message() << "length " << size.length << " order " << size.order << " scale factor " << sf);
    ASSERT_EQ(member(source.data(), size.length, destination.data(), size.order, sf), expected.status);
    std::vector<int16_t> wanted(static_cast<std::size_t>(size.order), 77);
    if (expected.status == qorStatusOk) {
      for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i] = model::convertScaled<int16_t>(expected.a[i], 1, sf);
    }
    ASSERT_BITS(destination.values(), wanted);
    ASSERT_TRUE(destination.edgesKept());
  }
}
TEST(LinearPrediction, AutocorrelationMethodOfInt16) { expectAuto16(qorsLinearPrediction_Auto_16s_Sfs, false); }
TEST(LinearPrediction, NegatedOfInt16) { expectAuto16(qorsLinearPredictionNeg_Auto_16s_Sfs, true); }

TEST(LinearPrediction, SilenceIsUnstable) {
  const Floats silence(100);
  Floats a(12, kUnset);
  EXPECT_EQ(qorsLinearPrediction_Auto_32f(silence.data(), 100, a.data(), 12), qorStatusUnstableFilter);
  EXPECT_BITS(a, Floats(12, kUnset));
  EXPECT_EQ(qorsLinearPredictionNeg_Auto_32f(silence.data(), 100, a.data(), 12), qorStatusUnstableFilter);
  EXPECT_BITS(a, Floats(12, -kUnset));
}

TEST(LinearPrediction, ASignalMayHaveTheLengthOfTheOrderAndNoLess) {
  const Floats x = {1.0F, -2.0F, 0.5F, 0.25F};
  Floats a(5, kUnset);
  EXPECT_EQ(qorsLinearPrediction_Auto_32f(x.data(), 4, a.data(), 4), qorStatusOk);
  EXPECT_EQ(qorsLinearPrediction_Auto_32f(x.data(), 4, a.data(), 5), qorStatusBadSize);
}

TEST(LinearPrediction, SignsOfTheTwoMethodsAreOpposite) {
  Floats x(50);
  for (std::size_t n = 0; n < x.size(); ++n) x[n] = static_cast<float>(std::pow(0.9, static_cast<double>(n)));
  float autocorrelation = 0.0F, negated = 0.0F, covariance = 0.0F;
  ASSERT_EQ(qorsLinearPrediction_Auto_32f(x.data(), 50, &autocorrelation, 1), qorStatusOk);
  ASSERT_EQ(qorsLinearPredictionNeg_Auto_32f(x.data(), 50, &negated, 1), qorStatusOk);
  ASSERT_EQ(qorsLinearPrediction_Cov_32f(x.data(), 50, &covariance, 1), qorStatusOk);
  EXPECT_NEAR(autocorrelation, -0.9F, 1e-3F);
  EXPECT_NEAR(negated, 0.9F, 1e-3F);
  EXPECT_NEAR(covariance, 0.9F, 1e-6F);
}

// ---- Many lags: the transform ----

// The filter that minimises the energy has it to a few roundings of the exact minimum, whatever the lags' last bits are.
TEST(LinearPrediction, LongSignalsOfHighOrderGoThroughTheTransform) {
  kit::Random random;
  for (const Size size : {Size{855, 855}, Size{856, 854}, Size{856, 855}, Size{856, 856}, Size{1025, 900}, Size{5000, 860}}) {
    const Floats x = signal(random, 0, size.length);
    Floats a(static_cast<std::size_t>(size.order));
    ASSERT_EQ(qorsLinearPrediction_Auto_32f(x.data(), size.length, a.data(), size.order), qorStatusOk);
    const auto direct = model::durbin(model::autocorrelations(x, a.size()), a.size());
    const bool transformed = std::min(size.length, size.order + 1) >= 856;
    if (transformed) {
      double largest = 0;
      for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::fabs(static_cast<double>(a[i] - direct.a[i])));
      EXPECT_LE(largest, 2e-4) << size.length << " " << size.order;
    } else {
      EXPECT_BITS(a, direct.a) << size.length << " " << size.order;
    }
  }
}

// ---- Independent solutions in double ----

TEST(LinearPrediction, MinimisesTheErrorLikeASolutionInDouble) {
  kit::Random random;
  for (int kind = 0; kind < 2; ++kind) {
    for (int32_t order = 1; order <= 64; ++order) {
      const Floats x = signal(random, kind, 300);
      const auto p = static_cast<std::size_t>(order);
      Floats ours(p), ofCovariance(p);
      ASSERT_EQ(qorsLinearPrediction_Auto_32f(x.data(), 300, ours.data(), order), qorStatusOk);
      ASSERT_EQ(qorsLinearPrediction_Cov_32f(x.data(), 300, ofCovariance.data(), order), qorStatusOk);
      const auto toeplitz = systems::toeplitz(x, p), covariance = systems::covariance(x, p);
      for (Floats* a : {&ours, &ofCovariance}) {
        const systems::System& system = a == &ours ? toeplitz : covariance;
        Floats predictor = *a;
        if (a == &ours) {
          for (float& c : predictor) c = -c;
        }
        const auto best = systems::solve(system);
        const double least = systems::energy(system, best), reached = systems::energy(system, predictor);
        EXPECT_LE(reached, least * (1 + 1e-4)) << "order " << order << " kind " << kind << (a == &ours ? " auto" : " covariance");
        EXPECT_GE(reached, least * (1 - 1e-9));
      }
    }
  }
}

// A sinusoid with a trace of noise is predicted almost wholly, so its lags form a nearly singular matrix.
TEST(LinearPrediction, NearlySingularSignalsStayBounded) {
  kit::Random random;
  Floats x;
  for (int n = 0; n < 400; ++n) x.push_back(static_cast<float>(std::sin(0.3 * n) + 1e-3 * random.real(-1, 1)));
  for (const int32_t order : {2, 4, 12, 24}) {
    Floats a(static_cast<std::size_t>(order));
    ASSERT_EQ(qorsLinearPrediction_Cov_32f(x.data(), 400, a.data(), order), qorStatusOk);
    const auto system = systems::covariance(x, a.size());
    EXPECT_LE(systems::energy(system, a), 1e-3 * system.power) << order;
  }
}

// ---- Covariance method ----

TEST(Covariance, Float) {
  kit::Random random;
  for (const Size size : sizes()) {
    const kit::Place place = kit::kPlaces[(size.length + size.order) % 3];
    const Floats x = signal(random, static_cast<int>(random.integer(0, kSignalKinds - 1)), size.length);
    const kit::Area<float> source(x, place), destination(size.order, place);
    ASSERT_EQ(qorsLinearPrediction_Cov_32f(source.data(), size.length, destination.data(), size.order), qorStatusOk);
    ASSERT_BITS(destination.values(), model::covariancePrediction(x, static_cast<std::size_t>(size.order)))
        << "length " << size.length << " order " << size.order;
    ASSERT_TRUE(destination.edgesKept());
  }
}

TEST(Covariance, Int16) {
  kit::Random random;
  for (const Size size : sizes()) {
    const kit::Place place = kit::kPlaces[(size.length + size.order) % 3];
    const auto x = random.vector<int16_t>(size.length, kit::kKinds[random.integer(0, 2)]);
    const kit::Area<int16_t> source(x, place), destination(size.order, place);
    const int32_t sf = kScaleFactors[(size.length + 3 * size.order) % std::ssize(kScaleFactors)];
    std::vector<int16_t> expected;
    for (const float a : model::covariancePrediction(asFloats(x), static_cast<std::size_t>(size.order))) {
      expected.push_back(model::convertScaled<int16_t>(a, 1, sf));
    }
    ASSERT_EQ(qorsLinearPrediction_Cov_16s_Sfs(source.data(), size.length, destination.data(), size.order, sf), qorStatusOk);
    ASSERT_BITS(destination.values(), expected) << "length " << size.length << " order " << size.order << " scale factor " << sf;
  }
}

TEST(Covariance, AZeroOnTheDiagonalIsNotRefused) {
  const Floats silence(10);
  Floats a(3);
  ASSERT_EQ(qorsLinearPrediction_Cov_32f(silence.data(), 10, a.data(), 3), qorStatusOk);
  for (const float value : a) EXPECT_TRUE(std::isnan(value));
}

// ---- The recursions alone ----

Floats lagsOf(kit::Random& random, int kind, int32_t order) {
  const auto p = static_cast<std::size_t>(order);
  if (kind == 0) return model::autocorrelations(signal(random, 1, 2 * order + 20), p);
  return random.vector<float>(order + 1, kind == 1 ? kit::Random::kNasty : kit::Random::kSmall);
}

template <class Model>
void expectRecursion(QorStatus (*member)(const float*, float*, int32_t, float*), Model modelOf) {
  kit::Random random;
  std::vector<int32_t> orders = kit::lengths();
  orders.insert(orders.end(), {62, 1022, 1023, 1024});
  for (const int32_t order : orders) {
    for (int kind = 0; kind < 3; ++kind) {
      const kit::Place place = kit::kPlaces[(order + kind) % 3];
      Floats lags = lagsOf(random, kind, order);
      if (kind == 2) lags[0] = static_cast<float>(order);  // stable, mostly
      const kit::Area<float> source(lags, place);
      kit::Area<float> destination(order, place), residual(1, place);
      destination.fill(kUnset);
      residual.fill(kUnset);
      const auto expected = modelOf(lags, static_cast<std::size_t>(order));
      SCOPED_TRACE(testing::Message() << "order " << order << " kind " << kind);
      ASSERT_EQ(member(source.data(), destination.data(), order, residual.data()), expected.status);
      Floats wanted(static_cast<std::size_t>(order), kUnset);
      std::copy_n(expected.a.begin(), expected.written, wanted.begin());
      ASSERT_BITS(destination.values(), wanted);
      ASSERT_BITS(residual[0], expected.hasResidual ? expected.residual : kUnset);
      ASSERT_TRUE(destination.edgesKept() && residual.edgesKept());
    }
  }
}
TEST(Durbin, Float) { expectRecursion(qorsDurbin_32f, model::durbin); }
TEST(Schur, Float) { expectRecursion(qorsSchur_32f, model::schur); }

template <class Model>
void expectRecursion16(QorStatus (*member)(const int16_t*, int16_t*, int32_t, float*, int32_t), Model modelOf) {
  kit::Random random;
  std::vector<int32_t> orders = kit::lengths();
  orders.insert(orders.end(), {62, 1022, 1023, 1024});
  for (const int32_t order : orders) {
    for (const int32_t sf : kScaleFactors) {
      const kit::Place place = kit::kPlaces[order % 3];
      auto lags = random.vector<int16_t>(order + 1, sf % 2 == 0 ? kit::Random::kSmall : kit::Random::kPlain);
      lags[0] = sf == 0 ? int16_t{0} : INT16_MAX;
      const kit::Area<int16_t> source(lags, place);
      kit::Area<int16_t> destination(order, place);
      destination.fill(77);
      kit::Area<float> residual(1, place);
      residual.fill(kUnset);
      const auto expected = modelOf(asFloats(lags), static_cast<std::size_t>(order));
      SCOPED_TRACE(testing::Message() << "order " << order << " scale factor " << sf);
      ASSERT_EQ(member(source.data(), destination.data(), order, residual.data(), sf), expected.status);
      std::vector<int16_t> wanted(static_cast<std::size_t>(order), 77);
      if (expected.status == qorStatusOk) {
        for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i] = model::convertScaled<int16_t>(expected.a[i], 1, sf);
      }
      ASSERT_BITS(destination.values(), wanted);
      ASSERT_BITS(residual[0], expected.hasResidual ? expected.residual : kUnset);
      ASSERT_TRUE(destination.edgesKept() && residual.edgesKept());
    }
  }
}
TEST(Durbin, Int16) { expectRecursion16(qorsDurbin_16s_Sfs, model::durbin); }
TEST(Schur, Int16) { expectRecursion16(qorsSchur_16s_Sfs, model::schur); }

// What a failure at each step leaves: the coefficients up to and with that of the failing step, and no residual energy.
TEST(Durbin, AFailureLeavesWhatStandsThere) {
  const struct {
    Floats lags, left;
  } cases[] = {
      {{0.0F, 1.0F, 1.0F}, {kUnset, kUnset}}, {{-1.0F, 0.5F, 0.5F}, {kUnset, kUnset}},
      {{1.0F, 1.0F, 1.0F}, {kUnset, kUnset}},  // |k| = 1 in the first step
      {{1.0F, 0.0F, 1.0F}, {-0.0F, -1.0F}},    // |k| = 1 in the second
      {{1.0F, 0.0F, -3.0F}, {-0.0F, 3.0F}},    // and beyond 1
  };
  for (const auto& c : cases) {
    Floats a(2, kUnset);
    float residual = kUnset;
    EXPECT_EQ(qorsDurbin_32f(c.lags.data(), a.data(), 2, &residual), qorStatusUnstableFilter);
    EXPECT_BITS(a, c.left);
    EXPECT_EQ(residual, kUnset);
  }
}

TEST(Durbin, ANaNPasses) {
  const Floats lags = {std::numeric_limits<float>::quiet_NaN(), 1.0F, 1.0F};
  Floats a(2, kUnset);
  float residual = kUnset;
  EXPECT_EQ(qorsDurbin_32f(lags.data(), a.data(), 2, &residual), qorStatusOk);
  EXPECT_TRUE(std::isnan(a[0]) && std::isnan(a[1]) && std::isnan(residual));
}

TEST(Schur, DoesNotTestStability) {
  const Floats lags = {0.0F, 1.0F, 0.5F};
  Floats k(2);
  float residual = 0.0F;
  EXPECT_EQ(qorsSchur_32f(lags.data(), k.data(), 2, &residual), qorStatusOk);
  EXPECT_TRUE(std::isinf(k[0]));
}

TEST(Durbin, OneInQ15Saturates) {
  const int16_t lags[] = {1000, -999};
  int16_t a = 0;
  float residual = 0.0F;
  ASSERT_EQ(qorsDurbin_16s_Sfs(lags, &a, 1, &residual, -15), qorStatusOk);
  EXPECT_EQ(a, 32735);  // 0.999 * 32768, rounded
  ASSERT_EQ(qorsDurbin_16s_Sfs(lags, &a, 1, &residual, -16), qorStatusOk);
  EXPECT_EQ(a, 32767);
  ASSERT_EQ(qorsDurbin_16s_Sfs(lags, &a, 1, &residual, 0), qorStatusOk);
  EXPECT_EQ(a, 1);
}

// ---- Faults ----

template <class T>
struct SignalArgs {
  const T* source;
  int32_t length;
  T* destination;
  int32_t order;
};
template <class T>
void expectSignalFaults(QorStatus (*call)(const SignalArgs<T>&)) {
  using A = SignalArgs<T>;
  const std::vector<T> source = {T(3), T(1), T(-2), T(5), T(1), T(0)};
  std::vector<T> destination(3);
  kit::FaultTable<A>({source.data(), 6, destination.data(), 3}, call, {{destination.data(), 3}})
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("order zero", qorStatusBadSize, &A::order, 0)
      .fault("order above length", qorStatusBadSize, &A::order, 7, kit::against(&A::length))
      .fault("order huge", qorStatusBadSize, &A::order, INT32_MAX)
      .check();
}
TEST(LinearPredictionFaults, EveryMember) {
  using A = SignalArgs<float>;
  using A16 = SignalArgs<int16_t>;
  expectSignalFaults<float>([](const A& a) { return qorsLinearPrediction_Auto_32f(a.source, a.length, a.destination, a.order); });
  expectSignalFaults<float>(
      [](const A& a) { return qorsLinearPredictionNeg_Auto_32f(a.source, a.length, a.destination, a.order); });
  expectSignalFaults<float>([](const A& a) { return qorsLinearPrediction_Cov_32f(a.source, a.length, a.destination, a.order); });
  expectSignalFaults<int16_t>(
      [](const A16& a) { return qorsLinearPrediction_Auto_16s_Sfs(a.source, a.length, a.destination, a.order, -12); });
  expectSignalFaults<int16_t>(
      [](const A16& a) { return qorsLinearPredictionNeg_Auto_16s_Sfs(a.source, a.length, a.destination, a.order, -12); });
  expectSignalFaults<int16_t>(
      [](const A16& a) { return qorsLinearPrediction_Cov_16s_Sfs(a.source, a.length, a.destination, a.order, -12); });
}

template <class T>
struct LagArgs {
  const T* lags;
  T* destination;
  int32_t order;
  float* residual;
};
template <class T>
void expectLagFaults(QorStatus (*call)(const LagArgs<T>&)) {
  using A = LagArgs<T>;
  const std::vector<T> lags = {T(30), T(10), T(-2), T(5)};
  std::vector<T> destination(3);
  float residual = kUnset;
  kit::FaultTable<A>({lags.data(), destination.data(), 3, &residual}, call, {{destination.data(), 3}, {&residual, 1}})
      .fault("null lags", qorStatusNullPointer, &A::lags, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("order zero", qorStatusBadSize, &A::order, 0)
      .fault("null residual", qorStatusNullPointer, &A::residual, nullptr)
      .check();
}
TEST(RecursionFaults, TheResidualIsLookedAtLast) {
  expectLagFaults<float>([](const auto& a) { return qorsDurbin_32f(a.lags, a.destination, a.order, a.residual); });
  expectLagFaults<float>([](const auto& a) { return qorsSchur_32f(a.lags, a.destination, a.order, a.residual); });
  expectLagFaults<int16_t>([](const auto& a) { return qorsDurbin_16s_Sfs(a.lags, a.destination, a.order, a.residual, -12); });
  expectLagFaults<int16_t>([](const auto& a) { return qorsSchur_16s_Sfs(a.lags, a.destination, a.order, a.residual, -12); });
}

// ---- Memory and environment ----

TEST(LinearPrediction, EveryRefusedAllocationIsReported) {
  kit::Random random;
  const Floats x = signal(random, 0, 2000), lags = lagsOf(random, 0, 1100);
  const auto x16 = random.vector<int16_t>(300), lags16 = random.vector<int16_t>(1101, kit::Random::kSmall);
  Floats a(1100);
  std::vector<int16_t> a16(1100);
  float residual = 0.0F;
  using kit::expectEveryRefusalReported;
  const auto autoCalls = [&](int32_t order) {
    return expectEveryRefusalReported([&] { return qorsLinearPrediction_Auto_32f(x.data(), 2000, a.data(), order); });
  };
  EXPECT_EQ(autoCalls(62), 0);
  EXPECT_EQ(autoCalls(63), 1);  // the lags
  EXPECT_EQ(autoCalls(64), 2);
  EXPECT_EQ(autoCalls(900), 5);  // and the transform's set-up, work memory and samples
  EXPECT_GT(expectEveryRefusalReported([&] { return qorsLinearPredictionNeg_Auto_32f(x.data(), 300, a.data(), 64); }), 0);
  EXPECT_GT(expectEveryRefusalReported([&] { return qorsLinearPrediction_Cov_32f(x.data(), 300, a.data(), 4); }), 0);
  const auto auto16 = [&](Member16s* member, int32_t length) {
    return expectEveryRefusalReported([&] { return member(x16.data(), length, a16.data(), 10, -12); });
  };
  EXPECT_EQ(auto16(qorsLinearPrediction_Auto_16s_Sfs, 63), 0);
  EXPECT_EQ(auto16(qorsLinearPrediction_Auto_16s_Sfs, 64), 1);
  EXPECT_EQ(auto16(qorsLinearPredictionNeg_Auto_16s_Sfs, 63), 0);
  EXPECT_GT(auto16(qorsLinearPrediction_Cov_16s_Sfs, 12), 0);
  const auto durbinCalls = [&](int32_t order) {
    return expectEveryRefusalReported([&] { return qorsDurbin_32f(lags.data(), a.data(), order, &residual); });
  };
  EXPECT_EQ(durbinCalls(63), 0);
  EXPECT_EQ(durbinCalls(64), 1);
  const auto schurCalls = [&](int32_t order) {
    return expectEveryRefusalReported([&] { return qorsSchur_32f(lags.data(), a.data(), order, &residual); });
  };
  EXPECT_EQ(schurCalls(1023), 0);
  EXPECT_EQ(schurCalls(1024), 1);
  EXPECT_EQ(expectEveryRefusalReported([&] { return qorsSchur_16s_Sfs(lags16.data(), a16.data(), 1024, &residual, 0); }), 1);
}

TEST(LinearPrediction, HugeSizesEndInNoMemory) {
  const float x = 1.0F;
  float a = 0.0F;
  EXPECT_EQ(qorsLinearPrediction_Cov_32f(&x, INT32_MAX, &a, INT32_MAX), qorStatusNoMemory);
  EXPECT_EQ(qorsLinearPrediction_Auto_32f(&x, INT32_MAX, &a, INT32_MAX), qorStatusNoMemory);
}

TEST(LinearPrediction, KeepsTheEnvironment) {
  kit::Random random;
  const auto x = random.vector<int16_t>(100);
  int16_t a[12];
  kit::expectEnvironmentKept([&] { qorsLinearPrediction_Auto_16s_Sfs(x.data(), 100, a, 12, -200); });
  kit::expectEnvironmentKept([&] { qorsLinearPrediction_Cov_16s_Sfs(x.data(), 100, a, 12, 3); });
}

}  // namespace
