// Coding of the high band: bits against the plain models, bins that count, scale factors of both signs, silence, faults.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/band_split.h"
#include "qorsr.h"

namespace {

constexpr int32_t kBinsOfA = 65, kBinsOfB = 129;

// The model takes the logarithm of the C library, so a rounding may go the other way: each of the six terms is off by a last place of a
// logarithm below 128, and what is computed of them too.
constexpr double kBound = 1e-4;

void expectCoded(const std::vector<float>& low, const std::vector<float>& a, const std::vector<float>& b, kit::Place place) {
  const kit::Area<float> lowBand(low, place), spectrumA(a, place), spectrumB(b, place);
  kit::Area<float> result(3, place);
  ASSERT_EQ(qorsHighBandCoding_Aurora_32f(lowBand.data(), spectrumA.data(), spectrumB.data(), result.data()), qorStatusOk);
  std::vector<double> expected;
  for (const float y : model::codedHighBand(low, a, b)) expected.push_back(static_cast<double>(y));
  ASSERT_TRUE(kit::within(result.data(), expected.data(), 3, kBound));
  ASSERT_TRUE(result.edgesKept());
}
TEST(HighBandCoding, Float) {
  kit::Random random;
  for (int trial = 0; trial < 300; ++trial) {
    const auto numbers = [&](int32_t count) {
      std::vector<float> v;
      for (int32_t i = 0; i < count; ++i) v.push_back(static_cast<float>(random.scaled(trial % 4 == 0 ? -0.1 : 0.0, 1.0, -20, 20)));
      return v;
    };
    const auto low = numbers(3), a = numbers(kBinsOfA), b = numbers(kBinsOfB);
    expectCoded(low, a, b, kit::kPlaces[trial % 3]);
    ASSERT_FALSE(HasFailure()) << "trial " << trial;
  }
}
TEST(HighBandCoding, NastyFloats) {
  kit::Random random;
  for (int trial = 0; trial < 300; ++trial) {
    const auto low = random.vector<float>(3, kit::Random::kNasty);
    auto a = random.vector<float>(kBinsOfA, kit::Random::kSmall), b = random.vector<float>(kBinsOfB, kit::Random::kSmall);
    for (float& x : a) x = std::fabs(x);
    for (float& x : b) x = std::fabs(x);
    if (trial % 3 == 0) a[static_cast<std::size_t>(random.integer(0, 64))] = random.nasty<float>();
    if (trial % 3 == 1) b[static_cast<std::size_t>(random.integer(0, 128))] = random.nasty<float>();
    expectCoded(low, a, b, kit::kPlaces[trial % 3]);
    ASSERT_FALSE(HasFailure()) << "trial " << trial;
  }
}

// With all else 1, a bin that is 1000 changes the result where it belongs to a sum, and nowhere else.
TEST(HighBandCoding, EveryBinInItsPlace) {
  for (int32_t bin = 0; bin < kBinsOfA; ++bin) {
    std::vector<float> a(kBinsOfA, 1.0F);
    a[static_cast<std::size_t>(bin)] = 1000.0F;
    expectCoded({1, 2, 3}, a, std::vector<float>(kBinsOfB, 1.0F), kit::Place::kAtGuard);
    std::vector<int32_t> whole(a.begin(), a.end()), result(3);
    const std::vector<int32_t> low = {1, 2, 3}, b(kBinsOfB, 1);
    ASSERT_EQ(qorsHighBandCoding_Aurora_32s_Sfs(low.data(), whole.data(), b.data(), result.data(), -7), qorStatusOk);
    ASSERT_BITS(result, model::codedHighBand(low, whole, b, -7));
  }
  for (int32_t bin = 0; bin < kBinsOfB; ++bin) {
    std::vector<float> b(kBinsOfB, 1.0F);
    b[static_cast<std::size_t>(bin)] = 1000.0F;
    expectCoded({1, 2, 3}, std::vector<float>(kBinsOfA, 1.0F), b, kit::Place::kAtGuard);
    std::vector<int32_t> whole(b.begin(), b.end()), result(3);
    const std::vector<int32_t> low = {1, 2, 3}, a(kBinsOfA, 1);
    ASSERT_EQ(qorsHighBandCoding_Aurora_32s_Sfs(low.data(), a.data(), whole.data(), result.data(), -7), qorStatusOk);
    ASSERT_BITS(result, model::codedHighBand(low, a, whole, -7));
  }
}

TEST(HighBandCoding, SilenceAndItsEdge) {
  expectCoded({0, 0, 0}, std::vector<float>(kBinsOfA, 0.0F), std::vector<float>(kBinsOfB, 0.0F), kit::Place::kAligned);
  float result[3];
  const std::vector<float> a(kBinsOfA, 0.0F), b(kBinsOfB, 0.0F);
  const float least = 4.54e-5F, more = 4.55e-5F, low[3] = {0, least, more};
  ASSERT_EQ(qorsHighBandCoding_Aurora_32f(low, a.data(), b.data(), result), qorStatusOk);
  EXPECT_NEAR(static_cast<double>(result[0]), -10.0, 1e-5);  // T - (A - b): -10 - (-10 + 10)
  EXPECT_NEAR(static_cast<double>(result[1]), std::log(4.54e-5), 1e-5);
  EXPECT_NEAR(static_cast<double>(result[2]), std::log(4.55e-5), 1e-5);
  const int32_t low32[3] = {0, -5, 1};
  const std::vector<int32_t> a32(kBinsOfA, 0), b32(kBinsOfB, 0);
  int32_t coded[3];
  ASSERT_EQ(qorsHighBandCoding_Aurora_32s_Sfs(low32, a32.data(), b32.data(), coded, -7), qorStatusOk);
  EXPECT_EQ(coded[0], ((-1103 * 102) >> 10) + ((-1103 * 205) >> 10) + ((-1103 * 717) >> 10));
  EXPECT_EQ(coded[1], coded[0]);
  EXPECT_GT(coded[2], coded[0]);
}

TEST(HighBandCoding, NothingSpecialOfNaN) {
  const float nan = std::numeric_limits<float>::quiet_NaN();  // is not above the least argument
  expectCoded({nan, 1, 1}, std::vector<float>(kBinsOfA, nan), std::vector<float>(kBinsOfB, 1.0F), kit::Place::kAligned);
}

constexpr int32_t kScaleFactors[] = {0,         -7, -6, -1,  1,   3,   23,  24,  25,  26,  60,
                                     INT32_MAX, -8, -9, -15, -30, -31, -38, -39, -40, -71, INT32_MIN};

TEST(HighBandCoding, Int32) {
  kit::Random random;
  for (int trial = 0; trial < 400; ++trial) {
    const auto numbers = [&](int32_t count) {
      std::vector<int32_t> v;
      for (int32_t i = 0; i < count; ++i) {
        const auto value = random.plain<int32_t>();
        v.push_back((trial % 4 == 0 ? value : value & INT32_MAX) >> (trial % 32));
      }
      return v;
    };
    const auto low = numbers(3), a = numbers(kBinsOfA), b = numbers(kBinsOfB);
    const kit::Place place = kit::kPlaces[trial % 3];
    const kit::Area<int32_t> lowBand(low, place), spectrumA(a, place), spectrumB(b, place);
    kit::Area<int32_t> result(3, place);
    for (const int32_t sf : kScaleFactors) {
      ASSERT_EQ(qorsHighBandCoding_Aurora_32s_Sfs(lowBand.data(), spectrumA.data(), spectrumB.data(), result.data(), sf),
                qorStatusOk);
      ASSERT_BITS(result.values(), model::codedHighBand(low, a, b, sf)) << "trial " << trial << ", scale factor " << sf;
    }
    ASSERT_TRUE(result.edgesKept());
  }
}

TEST(HighBandCoding, RoundingModesAndFlagsAreKept) {
  const std::vector<int32_t> low = {100, 2000, 30000}, a(kBinsOfA, 12345), b(kBinsOfB, 54321);
  const std::vector<int32_t> expected = model::codedHighBand(low, a, b, -7);
  kit::expectEnvironmentKept([&] {
    std::vector<int32_t> result(3);
    ASSERT_EQ(qorsHighBandCoding_Aurora_32s_Sfs(low.data(), a.data(), b.data(), result.data(), -7), qorStatusOk);
    EXPECT_BITS(result, expected);
  });
}

// ---- Faults ----

template <class T>
struct Args {
  const T *low, *a, *b;
  T* result;
};
template <class T, class Call>
void expectFaults(Call call) {
  std::vector<T> low(3, T(3)), a(kBinsOfA, T(2)), b(kBinsOfB, T(1)), result(3, T(7));
  using A = Args<T>;
  kit::FaultTable<A> table{{low.data(), a.data(), b.data(), result.data()},
                           [=](const A& x) { return call(x.low, x.a, x.b, x.result); },
                           {{result.data(), 3}}};
  table.fault("null low band", qorStatusNullPointer, &A::low, nullptr)
      .fault("null spectrum A", qorStatusNullPointer, &A::a, nullptr)
      .fault("null spectrum B", qorStatusNullPointer, &A::b, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.check();
}
TEST(HighBandCoding, Faults) {
  expectFaults<float>(qorsHighBandCoding_Aurora_32f);
  expectFaults<int32_t>([](const int32_t* low, const int32_t* a, const int32_t* b, int32_t* y) {
    return qorsHighBandCoding_Aurora_32s_Sfs(low, a, b, y, 0);
  });
}

}  // namespace
