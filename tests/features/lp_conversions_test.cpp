// Conversions of linear prediction: bits against the plain models, round trips, unstable stages, faults, memory.
#include "model/lp_conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

using model::Floats;
using Shorts = std::vector<int16_t>;
using Member = QorStatus(const float*, float*, int32_t);
using Member16 = QorStatus(const int16_t*, int16_t*, int32_t, int32_t);
constexpr int32_t kScaleFactors[] = {0, -15, -12, 3, -127, -128, 127, 128, 149, 150, INT32_MIN, INT32_MAX};

std::vector<int32_t> orders() {
  std::vector<int32_t> all = kit::lengths();
  all.insert(all.end(), {127, 128, 129, 300});
  return all;
}

// A stable model: reflection coefficients inside -1 to 1.
Floats stableReflections(kit::Random& random, int32_t order) {
  Floats k;
  for (int32_t i = 0; i < order; ++i) k.push_back(static_cast<float>(random.real(-0.9, 0.9)));
  return k;
}

template <class ModelOf>
void expectConversion(Member* member, ModelOf modelOf) {
  kit::Random random;
  for (const int32_t order : orders()) {
    for (int kind = 0; kind < 3; ++kind) {
      const kit::Place place = kit::kPlaces[(order + kind) % 3];
      const Floats x = random.vector<float>(order, kit::kKinds[kind]);
      const kit::Area<float> source(x, place);
      kit::Area<float> destination(order, place);
      destination.fill(77.0F);
      Floats expected(static_cast<std::size_t>(order), 77.0F);
      const QorStatus status = modelOf(x, expected);
      ASSERT_EQ(member(source.data(), destination.data(), order), status);
      ASSERT_BITS(destination.values(), expected) << "order " << order << " kind " << kind;
      ASSERT_BITS(source.values(), x);
      ASSERT_TRUE(destination.edgesKept());
    }
  }
}

template <class ModelOf>
void expectConversion16(Member16* member, ModelOf modelOf) {
  kit::Random random;
  for (const int32_t order : orders()) {
    for (const int32_t sf : kScaleFactors) {
      const kit::Place place = kit::kPlaces[order % 3];
      const Shorts x = random.vector<int16_t>(order, kit::kKinds[random.integer(0, 2)]);
      const kit::Area<int16_t> source(x, place);
      kit::Area<int16_t> destination(order, place);
      destination.fill(77);
      Floats floats(static_cast<std::size_t>(order), 77.0F);
      std::vector<bool> written(floats.size(), true);
      const QorStatus status = modelOf(model::loaded(x, sf), floats, written);
      Shorts expected;
      for (std::size_t i = 0; i < floats.size(); ++i) expected.push_back(written[i] ? model::stored(floats[i], sf) : int16_t{77});
      ASSERT_EQ(member(source.data(), destination.data(), order, sf), status);
      ASSERT_BITS(destination.values(), expected) << "order " << order << " scale factor " << sf;
      ASSERT_TRUE(destination.edgesKept());
    }
  }
}

template <class Convert>
void expectBoth(Member* member, Member16* member16, Convert convert) {
  expectConversion(member, [&](const Floats& x, Floats& expected) {
    expected = convert(x);
    return qorStatusOk;
  });
  expectConversion16(member16, [&](const Floats& x, Floats& expected, std::vector<bool>&) {
    expected = convert(x);
    return qorStatusOk;
  });
}
TEST(LpConversions, PredictorToCepstrum) { expectBoth(qorsLPToCepstrum_32f, qorsLPToCepstrum_16s_Sfs, model::cepstrum); }
TEST(LpConversions, CepstrumToPredictor) { expectBoth(qorsCepstrumToLP_32f, qorsCepstrumToLP_16s_Sfs, model::predictorOfCepstrum); }
TEST(LpConversions, ReflectionToPredictor) { expectBoth(qorsReflectionToLP_32f, qorsReflectionToLP_16s_Sfs, model::stepUp); }

TEST(LpConversions, PredictorToReflection) {
  expectConversion(qorsLPToReflection_32f, [](const Floats& x, Floats& expected) {
    const auto result = model::stepDown(x);
    for (std::size_t i = 0; i < x.size(); ++i) expected[i] = result.k[i].value_or(expected[i]);
    return result.status;
  });
  expectConversion16(qorsLPToReflection_16s_Sfs, [](const Floats& x, Floats& expected, std::vector<bool>& written) {
    const auto result = model::stepDown(x);
    for (std::size_t i = 0; i < x.size(); ++i) {
      written[i] = result.k[i].has_value();
      expected[i] = result.k[i].value_or(0.0F);
    }
    return result.status;
  });
}

TEST(LpConversions, AnUnstableStageLeavesTheStagesBelow) {
  Floats k(3, 77.0F);
  EXPECT_EQ(qorsLPToReflection_32f(Floats{0.3F, -1.0F}.data(), k.data(), 2), qorStatusUnstableReflection);
  EXPECT_BITS(k, Floats(3, 77.0F));
  EXPECT_EQ(qorsLPToReflection_32f(Floats{0.3F, -0.9999F}.data(), k.data(), 2), qorStatusOk);
  const Floats exact = model::stepUp({1.0F, 0.5F, 0.25F});
  k.assign(3, 77.0F);
  const auto expected = model::stepDown(exact);
  ASSERT_EQ(expected.status, qorStatusUnstableReflection);
  EXPECT_EQ(qorsLPToReflection_32f(exact.data(), k.data(), 3), qorStatusUnstableReflection);
  EXPECT_BITS(k, {77.0F, 0.5F, 0.25F});
  const Shorts a16 = {static_cast<int16_t>(exact[0] * 4096), static_cast<int16_t>(exact[1] * 4096),
                      static_cast<int16_t>(exact[2] * 4096)};
  Shorts k16(3, 77);
  EXPECT_EQ(qorsLPToReflection_16s_Sfs(a16.data(), k16.data(), 3, -12), qorStatusUnstableReflection);
  EXPECT_BITS(k16, {77, 2048, 1024});
}

TEST(LpConversions, RoundTripsReturnTheInput) {
  kit::Random random;
  for (const int32_t order : {1, 2, 4, 5, 10, 12, 16, 20}) {
    const auto p = static_cast<std::size_t>(order);
    const Floats k = stableReflections(random, order);
    Floats a(p), back(p), c(p), again(p);
    ASSERT_EQ(qorsReflectionToLP_32f(k.data(), a.data(), order), qorStatusOk);
    ASSERT_EQ(qorsLPToReflection_32f(a.data(), back.data(), order), qorStatusOk);
    ASSERT_EQ(qorsLPToCepstrum_32f(a.data(), c.data(), order), qorStatusOk);
    ASSERT_EQ(qorsCepstrumToLP_32f(c.data(), again.data(), order), qorStatusOk);
    for (std::size_t i = 0; i < p; ++i) {
      EXPECT_NEAR(back[i], k[i], 2e-2F) << order;  // each step divides by 1 - k k, down to 0.2
      EXPECT_NEAR(again[i], a[i], 1e-3F * (1.0F + std::fabs(a[i]))) << order;
    }
  }
}

// ---- Line spectral pairs ----

TEST(LineSpectra, Float) {
  kit::Random random;
  int lost = 0;
  for (int32_t order = 1; order <= 24; ++order) {
    for (const int32_t intervals : {order, order + 1, 20, 60, 128, 200}) {
      if (intervals < order) continue;
      for (const int32_t refinements : {1, 2, 3, 4, 9}) {
        const kit::Place place = kit::kPlaces[(order + refinements) % 3];
        const Floats a =
            refinements == 9 ? random.vector<float>(order, kit::Random::kNasty) : model::stepUp(stableReflections(random, order));
        const kit::Area<float> source(a, place);
        kit::Area<float> destination(order, place);
        kit::Area<int32_t> count(1, place);
        destination.fill(77.0F);
        const auto expected = model::lineSpectra(a, intervals, refinements);
        lost += expected.status != qorStatusOk;
        SCOPED_TRACE(testing::Message() << "order " << order << " intervals " << intervals << " refinements " << refinements);
        ASSERT_EQ(qorsLPToLSP_32f(source.data(), destination.data(), order, count.data(), intervals, refinements), expected.status);
        Floats wanted(static_cast<std::size_t>(order), 77.0F);
        std::copy(expected.found.begin(), expected.found.end(), wanted.begin());
        ASSERT_BITS(destination.values(), wanted);
        ASSERT_EQ(count[0], static_cast<int32_t>(expected.found.size()));
        ASSERT_TRUE(destination.edgesKept());
      }
    }
  }
  EXPECT_GT(lost, 10);  // grids that are too coarse
}

TEST(LineSpectra, Int16) {
  kit::Random random;
  for (int32_t order = 1; order <= 20; ++order) {
    for (const int32_t scale : {12, 11, -2, 150, INT32_MIN, INT32_MAX}) {
      for (const int32_t to : {-15, -14, 0, 3, INT32_MIN, INT32_MAX}) {
        Shorts a;
        for (const float v : model::stepUp(stableReflections(random, order))) {
          a.push_back(static_cast<int16_t>(std::clamp(v * 4096.0F, -32768.0F, 32767.0F)));
        }
        const auto expected = model::lineSpectra(model::loaded(a, -static_cast<int64_t>(scale)), 100, 4);
        Shorts wanted(a.size(), 77), roots(a.size(), 77);
        for (std::size_t i = 0; i < expected.found.size(); ++i) wanted[i] = model::stored(expected.found[i], to);
        int32_t count = 77;
        ASSERT_EQ(qorsLPToLSP_16s_Sfs(a.data(), scale, roots.data(), order, &count, 100, 4, to), expected.status);
        ASSERT_EQ(count, static_cast<int32_t>(expected.found.size()));
        ASSERT_BITS(roots, wanted) << "order " << order << " scales " << scale << " " << to;
      }
    }
  }
}

// The products are sums whose order is free: within roundings of the sum of magnitudes, which is at most 2^order.
TEST(LineSpectra, BackToThePredictor) {
  kit::Random random;
  std::vector<int32_t> all;
  for (int32_t order = 1; order <= 40; ++order) all.push_back(order);
  all.insert(all.end(), {57, 58, 59, 60});
  for (const int32_t order : all) {
    const kit::Place place = kit::kPlaces[order % 3];
    Floats q;
    for (int32_t i = 0; i < order; ++i) q.push_back(static_cast<float>(std::cos(M_PI * (i + random.real(0.2, 0.8)) / order)));
    if (order > 4) q[3] = q[2];  // equal neighbours are accepted
    const kit::Area<float> source(q, place), destination(order, place);
    const auto expected = model::predictorOfLineSpectra(q);
    double largest = 1;
    for (const double v : expected) largest = std::max(largest, std::fabs(v));
    ASSERT_EQ(qorsLSPToLP_32f(source.data(), destination.data(), order), qorStatusOk);
    const double roundings = std::max(1e-6, std::ldexp(1e-8, order));  // of sums that reach 2^order and cancel
    ASSERT_TRUE(kit::within(destination.data(), expected.data(), order, roundings * largest)) << order;
    ASSERT_TRUE(destination.edgesKept());
    Shorts q16, a16(q.size());
    for (const float v : q) q16.push_back(static_cast<int16_t>(v * 32767.0F));
    if (order > 20) continue;
    Floats a(q.size());
    ASSERT_EQ(qorsLSPToLP_32f(model::loaded(q16, -15).data(), a.data(), order), qorStatusOk);
    ASSERT_EQ(qorsLSPToLP_16s_Sfs(q16.data(), 15, a16.data(), order, -12), qorStatusOk);
    for (std::size_t i = 0; i < a.size(); ++i) ASSERT_EQ(a16[i], model::stored(a[i], -12));
  }
}

TEST(LineSpectra, EvenOrdersReturnThePredictor) {
  kit::Random random;
  for (int32_t order = 2; order <= 12; order += 2) {
    Floats k;
    for (int32_t i = 0; i < order; ++i) k.push_back(static_cast<float>(random.real(-0.5, 0.5)));
    const Floats a = model::stepUp(k);
    Floats q(a.size()), back(a.size());
    int32_t count = 0;
    ASSERT_EQ(qorsLPToLSP_32f(a.data(), q.data(), order, &count, 500, 8), qorStatusOk);
    EXPECT_TRUE(std::is_sorted(q.rbegin(), q.rend()));
    ASSERT_EQ(qorsLSPToLP_32f(q.data(), back.data(), order), qorStatusOk);
    for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(back[i], a[i], 2e-3F) << order;
  }
}

TEST(LineSpectra, OnlyFallingCosinesAreAccepted) {
  Floats a(3, 77.0F);
  EXPECT_EQ(qorsLSPToLP_32f(Floats{1.0F, 0.0F, -0.5F}.data(), a.data(), 3), qorStatusBadLspOrder);
  EXPECT_EQ(qorsLSPToLP_32f(Floats{0.5F, 0.6F, -0.5F}.data(), a.data(), 3), qorStatusBadLspOrder);
  EXPECT_EQ(qorsLSPToLP_32f(Floats{0.5F, 0.0F, -1.0F}.data(), a.data(), 3), qorStatusBadLspOrder);
  EXPECT_BITS(a, Floats(3, 77.0F));
  EXPECT_EQ(qorsLSPToLP_32f(Floats{0.5F, 0.5F, -0.5F}.data(), a.data(), 3), qorStatusOk);
  EXPECT_EQ(qorsLSPToLP_32f(Floats{std::nanf(""), 0.5F, -0.5F}.data(), a.data(), 3), qorStatusOk);
}

// ---- Faults ----

template <class T>
struct Args {
  const T *source, *second;
  T* destination;
  int32_t order;
  int32_t* count;
  int32_t intervals, refinements;
};

template <class T>
void expectFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  const std::vector<T> x = {T(0), T(0), T(0)};
  std::vector<T> y(3, T(77));
  kit::FaultTable<A>({x.data(), nullptr, y.data(), 3, nullptr, 0, 0}, call, {{y.data(), 3}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("order zero", qorStatusBadSize, &A::order, 0)
      .fault("order negative", qorStatusBadSize, &A::order, -1)
      .check();
}
TEST(LpConversionFaults, EveryMember) {
  using A = Args<float>;
  using B = Args<int16_t>;
  expectFaults<float>([](const A& a) { return qorsLPToCepstrum_32f(a.source, a.destination, a.order); });
  expectFaults<float>([](const A& a) { return qorsCepstrumToLP_32f(a.source, a.destination, a.order); });
  expectFaults<float>([](const A& a) { return qorsLPToReflection_32f(a.source, a.destination, a.order); });
  expectFaults<float>([](const A& a) { return qorsReflectionToLP_32f(a.source, a.destination, a.order); });
  expectFaults<float>([](const A& a) { return qorsLSPToLP_32f(a.source, a.destination, a.order); });
  expectFaults<int16_t>([](const B& a) { return qorsLPToCepstrum_16s_Sfs(a.source, a.destination, a.order, -12); });
  expectFaults<int16_t>([](const B& a) { return qorsCepstrumToLP_16s_Sfs(a.source, a.destination, a.order, -12); });
  expectFaults<int16_t>([](const B& a) { return qorsLPToReflection_16s_Sfs(a.source, a.destination, a.order, -12); });
  expectFaults<int16_t>([](const B& a) { return qorsReflectionToLP_16s_Sfs(a.source, a.destination, a.order, -12); });
  expectFaults<int16_t>([](const B& a) { return qorsLSPToLP_16s_Sfs(a.source, 15, a.destination, a.order, -12); });
}

template <class T>
void expectSearchFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  const std::vector<T> x = {T(0), T(0), T(0)};
  std::vector<T> y(3, T(77));
  int32_t count = 77;
  kit::FaultTable<A>({x.data(), nullptr, y.data(), 3, &count, 50, 2}, call, {{y.data(), 3}, {&count, 1}})
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null count", qorStatusNullPointer, &A::count, nullptr)
      .fault("intervals zero", qorStatusBadSize, &A::intervals, 0)
      .fault("refinements zero", qorStatusBadSize, &A::refinements, 0)
      .fault("order zero", qorStatusBadSize, &A::order, 0)
      .fault("order above intervals", qorStatusBadSize, &A::order, 51)
      .check();
}
TEST(LpConversionFaults, SearchOfLineSpectra) {
  expectSearchFaults<float>(
      [](const auto& a) { return qorsLPToLSP_32f(a.source, a.destination, a.order, a.count, a.intervals, a.refinements); });
  expectSearchFaults<int16_t>([](const auto& a) {
    return qorsLPToLSP_16s_Sfs(a.source, 12, a.destination, a.order, a.count, a.intervals, a.refinements, -15);
  });
}

// ---- Memory ----

TEST(LpConversions, EveryRefusedAllocationIsReported) {
  kit::Random random;
  const Floats x = model::stepUp(stableReflections(random, 300)), k = stableReflections(random, 300);
  const Shorts x16(300, 10);
  Floats y(300), q(300);
  for (int i = 0; i < 300; ++i) q[static_cast<std::size_t>(i)] = static_cast<float>(std::cos(M_PI * (i + 0.5) / 300));
  Shorts y16(300);
  int32_t count = 0;
  using kit::expectEveryRefusalReported;
  const auto refusals = [&](Member* member, const Floats& source, int32_t order) {
    return expectEveryRefusalReported([&] { return member(source.data(), y.data(), order); });
  };
  EXPECT_EQ(refusals(qorsReflectionToLP_32f, k, 15), 0);
  EXPECT_EQ(refusals(qorsReflectionToLP_32f, k, 16), 1);
  EXPECT_EQ(refusals(qorsLPToReflection_32f, Floats(300, 0.01F), 15), 0);
  EXPECT_EQ(refusals(qorsLPToReflection_32f, Floats(300, 0.01F), 16), 1);
  EXPECT_EQ(refusals(qorsLPToCepstrum_32f, k, 300), 0);
  EXPECT_EQ(refusals(qorsLSPToLP_32f, Floats(q.begin(), q.begin() + 58), 58), 0);
  EXPECT_EQ(refusals(qorsLSPToLP_32f, Floats(q.begin(), q.begin() + 60), 60), 1);
  EXPECT_EQ(expectEveryRefusalReported([&] { return qorsLPToCepstrum_16s_Sfs(x16.data(), y16.data(), 300, -15); }), 1);
  const auto search = [&](int32_t intervals) {
    const Floats a = model::stepUp({0.1F, -0.2F, 0.1F, 0.3F});
    return expectEveryRefusalReported([&] { return qorsLPToLSP_32f(a.data(), y.data(), 4, &count, intervals, 4); });
  };
  EXPECT_EQ(search(180), 0);
  EXPECT_EQ(search(220), 1);
  EXPECT_EQ(qorsLPToLSP_32f(x.data(), y.data(), 1, &count, INT32_MAX, 1), qorStatusNoMemory);
}

TEST(LpConversions, KeepTheEnvironment) {
  const Shorts x(12, 100);
  Shorts y(12);
  int32_t count = 0;
  kit::expectEnvironmentKept([&] { qorsLPToCepstrum_16s_Sfs(x.data(), y.data(), 12, -12); });
  kit::expectEnvironmentKept([&] { qorsLPToLSP_16s_Sfs(x.data(), 12, y.data(), 12, &count, 60, 4, -15); });
}

}  // namespace
