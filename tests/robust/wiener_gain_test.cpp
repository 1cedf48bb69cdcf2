// Wiener gains: bits against the plain models, the floor, divisors of zero, faults.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/noise_reduction.h"
#include "qorsr.h"

namespace {

template <class T, class Call>
void expectGains(const std::vector<T>& x, const std::vector<T>& n, const std::vector<T>& p, kit::Place place, Call call) {
  std::vector<T> expected;
  for (std::size_t i = 0; i < x.size(); ++i) expected.push_back(model::wienerGain(x[i], n[i], p[i]));
  const auto length = static_cast<int32_t>(x.size());
  const kit::Area<T> present(x, place), noise(n, place), denoised(p, place);
  kit::Area<T> gain(length, place);
  ASSERT_EQ(call(present.data(), noise.data(), denoised.data(), gain.data(), length), qorStatusOk);
  ASSERT_BITS(gain.values(), expected);
  ASSERT_TRUE(gain.edgesKept());
  ASSERT_EQ(call(present.data(), noise.data(), denoised.data(), denoised.data(), length), qorStatusOk);  // in place
  ASSERT_BITS(denoised.values(), expected);
}

TEST(WienerFilterDesign, Float) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      const auto x = random.vector<float>(length, kind), n = random.vector<float>(length, kind),
                 p = random.vector<float>(length, kind);
      expectGains(x, n, p, kit::kPlaces[length % 3], qorsWienerFilterDesign_Aurora_32f);
      ASSERT_FALSE(HasFailure()) << "length " << length;
    }
  }
}

// Spectra of any magnitude, signs among them, and noise that is often small.
std::vector<int16_t> numbers(kit::Random& random, int32_t length) {
  std::vector<int16_t> v;
  for (int32_t i = 0; i < length; ++i) {
    const auto value = random.plain<int16_t>();
    v.push_back(static_cast<int16_t>(value / (1 << random.integer(0, 15))));
  }
  return v;
}
TEST(WienerFilterDesign, Int16) {
  kit::Random random;
  for (int trial = 0; trial < 20; ++trial) {
    for (const int32_t length : kit::lengths()) {
      const bool nasty = trial % 4 == 0;
      const auto make = [&] { return nasty ? random.vector<int16_t>(length, kit::Random::kNasty) : numbers(random, length); };
      const auto x = make(), n = make(), p = make();
      expectGains(x, n, p, kit::kPlaces[length % 3], qorsWienerFilterDesign_Aurora_16s);
      ASSERT_FALSE(HasFailure()) << "length " << length;
    }
  }
}

// Every noise with every sign of spectrum, and denoised spectra about the divisor of zero.
TEST(WienerFilterDesign, AllNoisesIn16Bits) {
  std::vector<int16_t> x, n, p;
  kit::Random random;
  for (int32_t noise = -32768; noise <= 32767; ++noise) {
    for (const int32_t present : {-32768, -1, 0, 1, 700, 32767}) {
      x.push_back(static_cast<int16_t>(present));
      n.push_back(static_cast<int16_t>(noise));
      // A = 4014 p i >> 14 is -4096 for p near -1.02 n
      const auto near = static_cast<int32_t>(-1.0204 * noise) + static_cast<int32_t>(random.integer(-2, 2));
      p.push_back(static_cast<int16_t>(std::min(std::max(near, -32768), 32767)));
    }
  }
  expectGains(x, n, p, kit::Place::kAtGuard, qorsWienerFilterDesign_Aurora_16s);
}

TEST(WienerFilterDesign, NoNoiseGivesTheFloor) {
  const float x[] = {0, 5, 1}, n[] = {0, 0, 1e9F}, p[] = {0, 3, 0};
  float gain[3];
  ASSERT_EQ(qorsWienerFilterDesign_Aurora_32f(x, n, p, gain, 3), qorStatusOk);
  const float least = 0.07943282F / (0.07943282F + 1.0F);
  for (const float g : gain) EXPECT_EQ(g, least);
  const int16_t x16[] = {0, 500, 1}, n16[] = {0, 0, 30000}, p16[] = {0, 300, 0};
  int16_t gain16[3];
  ASSERT_EQ(qorsWienerFilterDesign_Aurora_16s(x16, n16, p16, gain16, 3), qorStatusOk);
  for (const int16_t g : gain16) EXPECT_EQ(g, 1206);
}

TEST(WienerFilterDesign, ADivisorOfZeroGivesTheFloor) {
  const int16_t x[] = {-32768, 5, 0}, n[] = {4096, 4096, 4096}, p[] = {-4179, -4179, -4179};
  ASSERT_EQ(int64_t{4014} * -4179 * 4 >> 14, -4096);
  int16_t gain[3];
  ASSERT_EQ(qorsWienerFilterDesign_Aurora_16s(x, n, p, gain, 3), qorStatusOk);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(gain[i], 1206);
}

TEST(WienerFilterDesign, StrongSignalsPass) {
  const float x[] = {1000}, n[] = {1}, p[] = {1000};
  float gain[1];
  ASSERT_EQ(qorsWienerFilterDesign_Aurora_32f(x, n, p, gain, 1), qorStatusOk);
  EXPECT_NEAR(static_cast<double>(gain[0]), 0.999, 1e-3);
  const int16_t x16[] = {20000}, n16[] = {2}, p16[] = {20000};
  int16_t gain16[1];
  ASSERT_EQ(qorsWienerFilterDesign_Aurora_16s(x16, n16, p16, gain16, 1), qorStatusOk);
  EXPECT_NEAR(gain16[0], 16382, 1);
}

TEST(WienerFilterDesign, RoundingModesAndFlagsAreKept) {
  kit::Random random;
  const auto x = numbers(random, 39), n = numbers(random, 39), p = numbers(random, 39);
  std::vector<int16_t> expected;
  for (std::size_t i = 0; i < 39; ++i) expected.push_back(model::wienerGain(x[i], n[i], p[i]));
  kit::expectEnvironmentKept([&] {
    std::vector<int16_t> gain(39);
    ASSERT_EQ(qorsWienerFilterDesign_Aurora_16s(x.data(), n.data(), p.data(), gain.data(), 39), qorStatusOk);
    EXPECT_BITS(gain, expected);
  });
}

// ---- Faults ----

template <class T>
struct Args {
  const T *present, *noise, *denoised;
  T* gain;
  int32_t length;
};
template <class T, class Call>
void expectFaults(Call call) {
  std::vector<T> present(9, T(3)), noise(9, T(2)), denoised(9, T(1)), gain(9, T(7));
  using A = Args<T>;
  kit::FaultTable<A> table{{present.data(), noise.data(), denoised.data(), gain.data(), 9},
                           [=](const A& a) { return call(a.present, a.noise, a.denoised, a.gain, a.length); },
                           {{gain.data(), 9}}};
  table.fault("null spectrum", qorStatusNullPointer, &A::present, nullptr)
      .fault("null noise", qorStatusNullPointer, &A::noise, nullptr)
      .fault("null denoised", qorStatusNullPointer, &A::denoised, nullptr)
      .fault("null gain", qorStatusNullPointer, &A::gain, nullptr)
      .fault("length 0", qorStatusBadSize, &A::length, 0)
      .fault("least length", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
}
TEST(WienerFilterDesign, Faults) {
  expectFaults<float>(qorsWienerFilterDesign_Aurora_32f);
  expectFaults<int16_t>(qorsWienerFilterDesign_Aurora_16s);
}

}  // namespace
