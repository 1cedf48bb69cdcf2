// Normalisation of energies: bits against the plain model on both ways, gaps between energies, faults, environment.
#include "model/energy_normalisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLowest = std::numeric_limits<float>::lowest();
constexpr int32_t kSteps[] = {1, 2, 3, 13};

// The energies of a track, and their normalised form by `call` in guarded memory.
template <class T, class Call>
void expectTrack(kit::Random& random, int32_t height, kit::Random::Kind kind,
                 const std::function<std::vector<T>(const std::vector<T>&)>& expected, Call call) {
  const int32_t step = kSteps[random.integer(0, 3)];
  kit::Matrix<T> track(height, 1, step, kit::kPlaces[random.integer(0, 2)]);
  track.fill(random, kind);
  const auto energies = track.values();
  ASSERT_EQ(call(track.block(), step, height), qorStatusOk);
  ASSERT_BITS(track.values(), expected(energies)) << height << " energies, step " << step;
  ASSERT_TRUE(track.gapsKept());
}

std::vector<int32_t> heights() {
  auto all = kit::lengths();
  for (const int32_t more : {255, 256, 512, 513, 1023, 1024, 1025, 2500}) all.push_back(more);
  return all;
}

TEST(NormEnergy, FloatEnergiesAgreeWithThePlainModel) {
  kit::Random random;
  for (const int32_t height : heights()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      const auto silence = static_cast<float>(random.real(-5, 60)), scale = static_cast<float>(random.real(-1, 3));
      const float given = random.value<float>(kind);
      const auto model = [&](const std::vector<float>& energies, float greatest) {
        std::vector<float> y;
        for (const float e : energies) y.push_back(model::normalisedEnergy(e, silence, greatest, scale));
        return y;
      };
      expectTrack<float>(
          random, height, kind, [&](auto& e) { return model(e, model::greatestEnergy(e, kLowest)); },
          [&](float* x, int32_t step, int32_t n) { return qorsNormEnergy_32f(x, step, n, silence, scale); });
      expectTrack<float>(
          random, height, kind, [&](auto& e) { return model(e, given); },
          [&](float* x, int32_t step, int32_t n) { return qorsNormEnergy_RT_32f(x, step, n, silence, given, scale); });
    }
  }
}

TEST(NormEnergy, ShortEnergiesAgreeWithThePlainModelOnBothWays) {
  kit::Random random;
  const float scales[] = {0.5F,     1.0F,      1.0009F,     std::nextafter(1.001F, 0.0F),
                          1.001F,   1.5F,      40.0F,       0.0F,
                          -1.0F,    -31.9F,    -31.999023F, -32.0F,
                          -1000.0F, -3e9F,     -1e30F,      1e30F,
                          kNaN,     kInfinity, -kInfinity};
  const int16_t silences[] = {50, 0, 1, 7, -20, 1000, 32767, -32768};
  for (const int32_t height : heights()) {
    for (int round = 0; round < (height < 60 ? 40 : 8); ++round) {
      const float scale = scales[random.integer(0, std::size(scales) - 1)];
      const int16_t silence = silences[random.integer(0, std::size(silences) - 1)];
      const auto top = random.value<int16_t>(kit::kKinds[round % 3]), given = random.value<int16_t>(kit::kKinds[round % 3]);
      const auto model = [&](const std::vector<int16_t>& energies, int16_t greatest, bool inFloat) {
        std::vector<int16_t> y;
        for (const int16_t e : energies) y.push_back(model::normalisedEnergy(e, silence, greatest, top, scale, inFloat));
        return y;
      };
      const bool large = !(scale < 1.001F);
      SCOPED_TRACE(testing::Message() << "scale " << scale << ", silence " << silence << ", top " << top << ", given " << given);
      expectTrack<int16_t>(
          random, height, kit::kKinds[round % 3],
          [&](auto& e) { return model(e, model::greatestEnergy(e, int16_t{-32768}), large || height < 11); },
          [&](int16_t* x, int32_t step, int32_t n) { return qorsNormEnergy_16s(x, step, n, silence, top, scale); });
      expectTrack<int16_t>(
          random, height, kit::kKinds[round % 3], [&](auto& e) { return model(e, given, large); },
          [&](int16_t* x, int32_t step, int32_t n) { return qorsNormEnergy_RT_16s(x, step, n, silence, given, top, scale); });
      if (HasFatalFailure()) return;
    }
  }
}

TEST(NormEnergy, TheLoudestBecomesOneAndSilenceTheFloor) {
  float energies[] = {3.0F, -200.0F, 17.5F, 12.0F, kNaN, -kInfinity};
  ASSERT_EQ(qorsNormEnergy_32f(energies, 1, 6, 50.0F, 0.1F), qorStatusOk);
  const float floor = 1.0F - (17.5F - (17.5F - 50.0F * 0.230259F)) * 0.1F;
  EXPECT_EQ(energies[2], 1.0F);
  EXPECT_EQ(energies[1], floor);
  EXPECT_EQ(energies[4], floor) << "a NaN is silence";
  EXPECT_EQ(energies[5], floor);
}

TEST(NormEnergy, TheTwoWaysDiffer) {
  int16_t ten[10] = {1000, 997}, eleven[11] = {1000, 997};
  ASSERT_EQ(qorsNormEnergy_16s(ten, 1, 10, 50, 100, 0.5F), qorStatusOk);
  ASSERT_EQ(qorsNormEnergy_16s(eleven, 1, 11, 50, 100, 0.5F), qorStatusOk);
  EXPECT_EQ(ten[1], 98) << "98.5, truncated";
  EXPECT_EQ(eleven[1], 99) << "100 - (3 * 512 >> 10)";
}

TEST(NormEnergy, TracksOfNoNumber) {
  float energies[] = {kNaN, kNaN}, low[] = {-kInfinity, -kInfinity};
  ASSERT_EQ(qorsNormEnergy_32f(energies, 1, 2, 1.0F, 1.0F), qorStatusOk);
  EXPECT_EQ(energies[0], 1.0F) << "the floor is the lowest number, from which the silence is lost";
  ASSERT_EQ(qorsNormEnergy_32f(low, 1, 2, 1.0F, 1.0F), qorStatusOk);
  EXPECT_EQ(low[1], 1.0F);
}

// ---- Faults, memory, environment ----

template <class T, class Call>
void expectFaults(Call call) {
  struct A {
    T* buffer;
    int32_t step, height;
  };
  T buffer[4] = {1, 2, 3, 4};
  kit::FaultTable<A>({buffer, 2, 2}, [=](const A& a) { return call(a.buffer, a.step, a.height); }, {{buffer, 4}})
      .fault("null buffer", qorStatusNullPointer, &A::buffer, nullptr)
      .fault("step zero", qorStatusBadSize, &A::step, 0)
      .fault("step negative", qorStatusBadSize, &A::step, INT32_MIN)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("height negative", qorStatusBadSize, &A::height, -1)
      .check();
}

TEST(NormEnergy, Faults) {
  expectFaults<float>([](float* b, int32_t s, int32_t h) { return qorsNormEnergy_32f(b, s, h, 50, 1); });
  expectFaults<float>([](float* b, int32_t s, int32_t h) { return qorsNormEnergy_RT_32f(b, s, h, 50, 3, 1); });
  expectFaults<int16_t>([](int16_t* b, int32_t s, int32_t h) { return qorsNormEnergy_16s(b, s, h, 50, 9, 1); });
  expectFaults<int16_t>([](int16_t* b, int32_t s, int32_t h) { return qorsNormEnergy_RT_16s(b, s, h, 50, 3, 9, 1); });
}

TEST(NormEnergy, KeepsTheEnvironmentAndAllocatesNothing) {
  kit::Random random;
  auto x = random.vector<float>(3000, kit::Random::kNasty);
  auto shorts = random.vector<int16_t>(3000);
  const auto all = [&] {
    qorsNormEnergy_32f(x.data(), 1, 3000, 50, 0.1F);
    qorsNormEnergy_RT_32f(x.data(), 2, 1500, 50, 3, 0.1F);
    qorsNormEnergy_16s(shorts.data(), 1, 3000, 50, 9, 1e30F);
    qorsNormEnergy_16s(shorts.data(), 2, 1500, 50, 9, -1e30F);
    return qorsNormEnergy_RT_16s(shorts.data(), 2, 1500, 50, 3, 9, 1);
  };
  kit::expectEnvironmentKept(all);
  EXPECT_EQ(kit::expectEveryRefusalReported(all), 0);
}

}  // namespace
