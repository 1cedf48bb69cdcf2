// Blind equalisation: bits against the plain models, energies at the ends of the step, vectors that overlap, a long stream, faults.
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

QorStatus equalize(const float* reference, float* cepstrum, float* bias, int32_t length, float energy) {
  return qorsBlindEqualization_Aurora_32f(reference, cepstrum, bias, length, energy);
}
QorStatus equalize(const int16_t* reference, int16_t* cepstrum, int16_t* bias, int32_t length, int32_t energy) {
  return qorsBlindEqualization_Aurora_16s(reference, cepstrum, bias, length, energy);
}

const std::vector<float> kEnergies = {0,         -5,
                                      3.296875F, 3.2968752F,
                                      3.5F,      4.0F,
                                      4.296875F, 4.2968755F,
                                      20,        std::numeric_limits<float>::infinity(),
                                      -1e30F,    std::numeric_limits<float>::quiet_NaN()};
const std::vector<int32_t> kShortEnergies = {0, 210, 211, 212, 243, 274, 275, 276, 5000, INT32_MAX, -1, INT32_MIN};

template <class T, class Energy>
void expectEqualized(const std::vector<Energy>& energies) {
  kit::Random random;
  int round = 0;
  for (const int32_t length : kit::lengths()) {
    for (const Energy energy : energies) {
      const kit::Random::Kind kind = kit::kKinds[++round % 3];
      const kit::Place place = kit::kPlaces[round % 3];
      std::vector<T> r = random.vector<T>(length, kind), c = random.vector<T>(length, kind), b = random.vector<T>(length, kind);
      const kit::Area<T> reference(r, place), cepstrum(c, place), bias(b, place);
      model::equalize(r.data(), c.data(), b.data(), length, energy);
      ASSERT_EQ(equalize(reference.data(), cepstrum.data(), bias.data(), length, energy), qorStatusOk);
      ASSERT_BITS(cepstrum.values(), c) << "length " << length;
      ASSERT_BITS(bias.values(), b) << "length " << length;
      ASSERT_BITS(reference.values(), r);
      ASSERT_TRUE(cepstrum.edgesKept() && bias.edgesKept());
    }
  }
}
TEST(BlindEqualization, Float) { expectEqualized<float>(kEnergies); }
TEST(BlindEqualization, Int16) { expectEqualized<int16_t>(kShortEnergies); }

// One memory, three vectors that begin anywhere in it.
template <class T, class Energy>
void expectOverlapped(Energy energy) {
  kit::Random random;
  constexpr int32_t kLength = 40, kAll = 3 * kLength;
  for (int trial = 0; trial < 3000; ++trial) {
    const int64_t spread = trial % 2 == 0 ? 5 : kAll - kLength;
    const int64_t r = random.integer(0, spread), c = random.integer(0, spread), b = random.integer(0, spread);
    const auto length = static_cast<int32_t>(random.integer(1, kLength));
    std::vector<T> expected = random.vector<T>(kAll, kit::Random::kSmall), actual = expected;
    model::equalize(expected.data() + r, expected.data() + c, expected.data() + b, length, energy);
    ASSERT_EQ(equalize(actual.data() + r, actual.data() + c, actual.data() + b, length, energy), qorStatusOk);
    ASSERT_BITS(actual, expected) << "reference at " << r << ", cepstrum at " << c << ", bias at " << b << ", length " << length;
  }
}
TEST(BlindEqualization, VectorsThatOverlap) {
  expectOverlapped<float>(4.0F);
  expectOverlapped<int16_t>(260);
}

TEST(BlindEqualization, ASilentFrameIsCorrectedAndTeachesNothing) {
  const float reference[] = {1, 2};
  float cepstrum[] = {5, 6}, bias[] = {0.5F, -0.25F};
  ASSERT_EQ(qorsBlindEqualization_Aurora_32f(reference, cepstrum, bias, 2, 3.296875F), qorStatusOk);
  EXPECT_EQ(cepstrum[0], 4.5F);
  EXPECT_EQ(cepstrum[1], 6.25F);
  EXPECT_EQ(bias[0], 0.5F);
  EXPECT_EQ(bias[1], -0.25F);
}
TEST(BlindEqualization, TheLargestStep) {
  const float reference[] = {0};
  float cepstrum[] = {1024}, bias[] = {0};
  ASSERT_EQ(qorsBlindEqualization_Aurora_32f(reference, cepstrum, bias, 1, 4.296875F), qorStatusOk);
  EXPECT_EQ(bias[0], 9.0F);
  const int16_t reference16[] = {0};
  int16_t cepstrum16[] = {1024}, bias16[] = {0};
  ASSERT_EQ(qorsBlindEqualization_Aurora_16s(reference16, cepstrum16, bias16, 1, 275), qorStatusOk);
  EXPECT_EQ(bias16[0], 9);
}
TEST(BlindEqualization, TheErrorIsTakenBeforeSaturation) {
  const int16_t reference[] = {0};
  int16_t cepstrum[] = {32767}, bias[] = {-32768};
  ASSERT_EQ(qorsBlindEqualization_Aurora_16s(reference, cepstrum, bias, 1, 1000), qorStatusOk);
  EXPECT_EQ(cepstrum[0], 32767);
  EXPECT_EQ(bias[0], -32768 + (576 * 65535 >> 16));
}

// A constant offset of a channel goes over into the bias.
TEST(BlindEqualization, AStreamLosesItsOffset) {
  kit::Random random = kit::Random::fixed(9);
  std::vector<float> reference(12), bias(12), cepstrum(12);
  for (float& r : reference) r = static_cast<float>(random.real(-2, 2));
  double error = 0;
  for (int frame = 0; frame < 3000; ++frame) {
    for (std::size_t i = 0; i < 12; ++i) cepstrum[i] = reference[i] + 3.0F + static_cast<float>(random.real(-1, 1));
    ASSERT_EQ(qorsBlindEqualization_Aurora_32f(reference.data(), cepstrum.data(), bias.data(), 12, 9.0F), qorStatusOk);
    if (frame == 0) {
      EXPECT_GT(cepstrum[0] - reference[0], 1.9F);
    }
    if (frame >= 2000) {
      for (std::size_t i = 0; i < 12; ++i) error += static_cast<double>(cepstrum[i] - reference[i]) / 12000.0;
    }
  }
  EXPECT_NEAR(error, 0.0, 0.05);
  for (const float b : bias) EXPECT_NEAR(static_cast<double>(b), 3.0, 0.3);
}

TEST(BlindEqualization, RoundingModesAndFlagsAreKept) {
  kit::expectEnvironmentKept([] {
    std::vector<int16_t> reference(13, 5), cepstrum(13, 900), bias(13, 7);
    ASSERT_EQ(qorsBlindEqualization_Aurora_16s(reference.data(), cepstrum.data(), bias.data(), 13, 300), qorStatusOk);
    EXPECT_EQ(bias[12], 7 + (576 * 888 >> 16));
  });
}

// ---- Faults ----

template <class T, class Energy>
struct Args {
  const T* reference;
  T *cepstrum, *bias;
  int32_t length;
  Energy energy;
};
template <class T, class Energy>
void expectFaults() {
  std::vector<T> reference(9, T(3)), cepstrum(9, T(2)), bias(9, T(1));
  using A = Args<T, Energy>;
  kit::FaultTable<A> table{{reference.data(), cepstrum.data(), bias.data(), 9, Energy(300)},
                           [](const A& a) { return equalize(a.reference, a.cepstrum, a.bias, a.length, a.energy); },
                           {{cepstrum.data(), 9}, {bias.data(), 9}}};
  table.fault("null reference", qorStatusNullPointer, &A::reference, nullptr)
      .fault("null cepstrum", qorStatusNullPointer, &A::cepstrum, nullptr)
      .fault("null bias", qorStatusNullPointer, &A::bias, nullptr)
      .fault("length 0", qorStatusBadSize, &A::length, 0)
      .fault("least length", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
}
TEST(BlindEqualization, Faults) {
  expectFaults<float, float>();
  expectFaults<int16_t, int32_t>();
}

}  // namespace
