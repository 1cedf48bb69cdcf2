// Updates of a noise spectrum: bits against the plain model in its rounding mode, zero divisors, the top of the range, faults.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/gaussian.h"
#include "model/noise_reduction.h"
#include "qorsr.h"

namespace {

// Spectra of all kinds; every few elements a pair whose divisors are zero or near it.
template <class T>
struct Spectra {
  std::vector<T> present, noise;

  Spectra(kit::Random& random, int32_t length, kit::Random::Kind kind)
      : present(random.vector<T>(length, kind)), noise(random.vector<T>(length, kind)) {
    for (std::size_t i = 0; i < present.size(); ++i) {
      const int64_t how = random.integer(0, 9);
      if (how == 0) noise[i] = negated(present[i]);
      if (how == 1) noise[i] = negated(static_cast<T>(present[i] / 10));
      if (how == 2) present[i] = noise[i] = T(0);
      if (how >= 5 && present[i] < 0) present[i] = negated(present[i]);
      if (how >= 5 && noise[i] < 0) noise[i] = negated(noise[i]);
    }
  }

  static T negated(T x) { return x == std::numeric_limits<T>::lowest() ? std::numeric_limits<T>::max() : static_cast<T>(-x); }
};

template <class T, class Update, class Call>
void expectUpdates(const Spectra<T>& s, kit::Place place, Update update, Call call) {
  const auto length = static_cast<int32_t>(s.present.size());
  std::vector<T> expected(s.present.size());
  model::towardZero([&] {
    for (std::size_t i = 0; i < expected.size(); ++i) expected[i] = update(s.present[i], s.noise[i]);
  });
  const kit::Area<T> present(s.present, place), noise(s.noise, place);
  kit::Area<T> result(length, place);
  ASSERT_EQ(call(present.data(), noise.data(), result.data(), length), qorStatusOk);
  ASSERT_BITS(result.values(), expected);
  ASSERT_TRUE(result.edgesKept());
  ASSERT_EQ(call(present.data(), noise.data(), noise.data(), length), qorStatusOk);  // in place
  ASSERT_BITS(noise.values(), expected);
  const kit::Area<T> again(s.noise, place);
  ASSERT_EQ(call(present.data(), again.data(), present.data(), length), qorStatusOk);
  ASSERT_BITS(present.values(), expected);
}

TEST(NoiseSpectrumUpdate, Float) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      expectUpdates(
          Spectra<float>(random, length, kind), kit::kPlaces[length % 3], [](float x, float n) { return model::noiseUpdate(x, n); },
          qorsNoiseSpectrumUpdate_Aurora_32f);
      ASSERT_FALSE(HasFailure()) << "length " << length;
    }
  }
}

constexpr int32_t kScaleFactors[] = {0,         1,  3,  15,  16,  31,  126,  127,  149,  150,      151,
                                     INT32_MAX, -1, -2, -15, -16, -31, -127, -128, -129, INT32_MIN};

template <class T, class Call>
void expectScaledUpdates(Call call) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      for (const int32_t sf : kScaleFactors) {
        expectUpdates(
            Spectra<T>(random, length, kind), kit::kPlaces[length % 3], [=](T x, T n) { return model::noiseUpdate(x, n, sf); },
            [=](const T* x, const T* n, T* y, int32_t count) { return call(x, n, y, count, sf); });
        ASSERT_FALSE(testing::Test::HasFailure()) << "length " << length << ", scale factor " << sf;
      }
    }
  }
}
TEST(NoiseSpectrumUpdate, Int16) { expectScaledUpdates<int16_t>(qorsNoiseSpectrumUpdate_Aurora_16s_Sfs); }
TEST(NoiseSpectrumUpdate, Int32) { expectScaledUpdates<int32_t>(qorsNoiseSpectrumUpdate_Aurora_32s_Sfs); }

TEST(NoiseSpectrumUpdate, FollowsTheSpectrumDownAndRisesSlowly) {
  const float noise[] = {1, 1, 1}, present[] = {1e-6F, 1, 1e6F};
  float result[3];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32f(present, noise, result, 3), qorStatusOk);
  EXPECT_NEAR(static_cast<double>(result[0]), 0.9, 1e-6);
  EXPECT_NEAR(static_cast<double>(result[1]), 0.05 * (1 / 1.1 + 1) + 0.9, 1e-6);
  EXPECT_NEAR(static_cast<double>(result[2]), 1.0, 1e-4);
}

TEST(NoiseSpectrumUpdate, ZeroDivisorsGiveZero) {
  const float present[] = {0, 0, 3, -10, 5}, noise[] = {0, 7, -3, 1, 0};
  float result[5];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32f(present, noise, result, 5), qorStatusOk);
  EXPECT_EQ(result[0], 0.0F);
  EXPECT_NEAR(static_cast<double>(result[1]), 6.3, 1e-5);
  EXPECT_EQ(result[2], 0.0F);
  EXPECT_EQ(result[4], 0.0F);
  const int16_t present16[] = {0, 9, 3, -15, 10}, noise16[] = {0, 0, -3, 1, 0};  // 0.1 x + n: 0.9, -0.5, 1
  int16_t result16[5];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_16s_Sfs(present16, noise16, result16, 5, -4), qorStatusOk);
  for (const int16_t value : result16) EXPECT_EQ(value, 0);
}

TEST(NoiseSpectrumUpdate, TheTopOfTheRangeWrapsIn32Bits) {
  const int32_t present[] = {INT32_MAX, 1000000000, 100}, noise[] = {INT32_MAX, 2000000000, 100};
  int32_t result[3];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(present, noise, result, 3, -1), qorStatusOk);
  EXPECT_EQ(result[0], INT32_MIN);
  EXPECT_EQ(result[1], INT32_MIN);
  EXPECT_EQ(result[2], 199);
  const int16_t present16[] = {30000}, noise16[] = {30000};
  int16_t result16[1];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_16s_Sfs(present16, noise16, result16, 1, -1), qorStatusOk);
  EXPECT_EQ(result16[0], 32767);
}

TEST(NoiseSpectrumUpdate, SpectraAboveAQuarterOfTheRangeAddUp) {
  const int32_t present[] = {2000000000}, noise[] = {2000000000};  // the sum has 32 bits
  int32_t result[1];
  ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(present, noise, result, 1, 0), qorStatusOk);
  EXPECT_NEAR(result[0], 2e9 * (0.05 * (1 / 1.1 + 1) + 0.9), 2e3);
}

TEST(NoiseSpectrumUpdate, RoundsTowardZeroInEveryModeOfTheCaller) {
  kit::Random random;
  const Spectra<float> s(random, 39, kit::Random::kPlain);
  const Spectra<int32_t> s32(random, 39, kit::Random::kPlain);
  std::vector<float> expected(39);
  std::vector<int32_t> expected32(39);
  model::towardZero([&] {
    for (std::size_t i = 0; i < 39; ++i) expected[i] = model::noiseUpdate(s.present[i], s.noise[i]);
    for (std::size_t i = 0; i < 39; ++i) expected32[i] = model::noiseUpdate(s32.present[i], s32.noise[i], 1);
  });
  kit::expectEnvironmentKept([&] {
    std::vector<float> result(39);
    ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32f(s.present.data(), s.noise.data(), result.data(), 39), qorStatusOk);
    EXPECT_BITS(result, expected);
    std::vector<int32_t> result32(39);
    ASSERT_EQ(qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(s32.present.data(), s32.noise.data(), result32.data(), 39, 1), qorStatusOk);
    EXPECT_BITS(result32, expected32);
  });
}

// ---- Faults ----

template <class T>
struct Args {
  const T *present, *noise;
  T* result;
  int32_t length;
};
template <class T, class Call>
void expectFaults(Call call) {
  std::vector<T> present(9, T(3)), noise(9, T(2)), result(9, T(7));
  using A = Args<T>;
  kit::FaultTable<A> table{{present.data(), noise.data(), result.data(), 9},
                           [=](const A& a) { return call(a.present, a.noise, a.result, a.length); },
                           {{result.data(), 9}}};
  table.fault("null spectrum", qorStatusNullPointer, &A::present, nullptr)
      .fault("null noise", qorStatusNullPointer, &A::noise, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("length 0", qorStatusBadSize, &A::length, 0)
      .fault("least length", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
}
TEST(NoiseSpectrumUpdate, Faults) {
  expectFaults<float>(qorsNoiseSpectrumUpdate_Aurora_32f);
  expectFaults<int16_t>([](const int16_t* x, const int16_t* n, int16_t* y, int32_t count) {
    return qorsNoiseSpectrumUpdate_Aurora_16s_Sfs(x, n, y, count, 0);
  });
  expectFaults<int32_t>([](const int32_t* x, const int32_t* n, int32_t* y, int32_t count) {
    return qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(x, n, y, count, 0);
  });
}

}  // namespace
