// Weighting of waveforms: bits against the plain model, peaks at the ends, silence, sums that wrap, faults.
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

QorStatus process(const float* x, float* y) { return qorsWaveProcessing_Aurora_32f(x, y); }
QorStatus process(const int16_t* x, int16_t* y) { return qorsWaveProcessing_Aurora_16s(x, y); }

template <class T>
void expectProcessed(const std::vector<T>& x, kit::Place place) {
  const kit::Area<T> source(x, place);
  kit::Area<T> result(200, place);
  const std::vector<T> expected = model::processedWave(x);
  ASSERT_EQ(process(source.data(), result.data()), qorStatusOk);
  ASSERT_BITS(result.values(), expected);
  ASSERT_TRUE(result.edgesKept());
  ASSERT_EQ(process(source.data(), source.data()), qorStatusOk);
  ASSERT_BITS(source.values(), expected);
}

// Pulses of a period and a phase in noise: peaks at every place.
template <class T>
std::vector<T> pulses(kit::Random& random, double amplitude, int64_t period, int64_t phase) {
  std::vector<T> x;
  for (int64_t n = 0; n < 200; ++n) {
    const double noise = random.real(-0.02, 0.02) * amplitude,
                 decay = std::ldexp(amplitude, -static_cast<int>((n + phase) % period / 4));
    x.push_back(static_cast<T>(noise + (n % 2 == 0 ? decay : -decay) * 0.9));
  }
  return x;
}

template <class T>
class Waves : public testing::Test {};
using Samples = testing::Types<float, int16_t>;
TYPED_TEST_SUITE(Waves, Samples, );

TYPED_TEST(Waves, Bits) {
  kit::Random random;
  for (int trial = 0; trial < 300; ++trial) {
    const kit::Place place = kit::kPlaces[trial % 3];
    expectProcessed(random.vector<TypeParam>(200, kit::kKinds[trial % 3]), place);
    const int64_t period = random.integer(20, 160), phase = random.integer(0, 200);
    expectProcessed(pulses<TypeParam>(random, trial % 2 == 0 ? 32767.0 : 90.0, period, phase), place);
    ASSERT_FALSE(this->HasFailure()) << "trial " << trial;
  }
}

// One burst, and a lesser one, at every place: all windows of peaks.
TYPED_TEST(Waves, OnePeakAtEveryPlace) {
  for (std::size_t at = 0; at < 200; ++at) {
    for (const std::size_t other : {std::size_t{0}, std::size_t{13}, std::size_t{77}, std::size_t{150}, std::size_t{199}}) {
      std::vector<TypeParam> x(200, TypeParam(1));
      x[other] = TypeParam(70);
      x[at] = TypeParam(100);
      expectProcessed(x, kit::Place::kOddStart);
      ASSERT_FALSE(this->HasFailure()) << "peak at " << at << " and " << other;
    }
  }
}

TYPED_TEST(Waves, SilenceTakesTheFirstOfEveryWindow) {
  const std::vector<TypeParam> silence(200, TypeParam(0));
  expectProcessed(silence, kit::Place::kAligned);
  const auto s = model::smoothedEnergy<std::conditional_t<std::is_same_v<TypeParam, float>, float, int32_t>>(silence);
  EXPECT_EQ(model::peaksOf(s), (std::vector<int>{0, 25, 50, 75, 100, 125, 150, 175}));
}

// The same samples over and over: peaks of equal height but for the roundings of the running sum, so the order of its additions shows.
TEST(WaveProcessing, RunningSumsKeepTheirRoundings) {
  kit::Random random;
  for (int trial = 0; trial < 300; ++trial) {
    const auto pattern = random.vector<float>(random.integer(9, 40));
    std::vector<float> x;
    for (std::size_t n = 0; n < 200; ++n) x.push_back(pattern[n % pattern.size()]);
    expectProcessed(x, kit::kPlaces[trial % 3]);
    ASSERT_FALSE(HasFailure()) << "trial " << trial;
  }
}

TEST(WaveProcessing, WeightsOfOnes) {
  // A step behind sample 100 and nothing else: the weights stand in the result.
  std::vector<float> x(200, 1.0F), y(200);
  x[100] = 1.5F;
  ASSERT_EQ(qorsWaveProcessing_Aurora_32f(x.data(), y.data()), qorStatusOk);
  int count[3] = {};
  for (std::size_t n = 0; n < 200; ++n) {
    if (n == 100) continue;
    for (int k = 0; k < 3; ++k) count[k] += y[n] == (k == 0 ? 0.8F : k == 1 ? 1.0F : 1.2F);
  }
  EXPECT_EQ(count[0] + count[1] + count[2], 199);
  EXPECT_GT(count[2], count[0]);
}

TEST(WaveProcessing, LoudSamplesSaturateIn16Bits) {
  std::vector<int16_t> x(200), y(200);
  for (std::size_t n = 0; n < 200; ++n) x[n] = n % 2 == 0 ? 32767 : -32768;
  ASSERT_EQ(qorsWaveProcessing_Aurora_16s(x.data(), y.data()), qorStatusOk);
  EXPECT_EQ(std::count(y.begin(), y.end(), int16_t{32767}) > 50, true);
  EXPECT_EQ(std::count(y.begin(), y.end(), int16_t{-32768}) > 50, true);
  EXPECT_EQ(y, model::processedWave(x));
}

TEST(WaveProcessing, NanAndInfinityAnywhere) {
  kit::Random random;
  for (std::size_t at = 0; at < 200; ++at) {
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 2e19F}) {
      std::vector<float> x = pulses<float>(random, 100.0, 60, static_cast<int64_t>(at));
      x[at] = bad;
      expectProcessed(x, kit::Place::kAtGuard);
      ASSERT_FALSE(HasFailure()) << "at " << at;
    }
  }
}

TEST(WaveProcessing, RoundingModesAndFlagsAreKept) {
  kit::Random random;
  const auto x = random.vector<int16_t>(200);
  const std::vector<int16_t> expected = model::processedWave(x);
  kit::expectEnvironmentKept([&] {
    std::vector<int16_t> y(200);
    ASSERT_EQ(qorsWaveProcessing_Aurora_16s(x.data(), y.data()), qorStatusOk);
    EXPECT_BITS(y, expected);
  });
}

template <class T>
struct Args {
  const T* source;
  T* result;
};
TYPED_TEST(Waves, Faults) {
  using A = Args<TypeParam>;
  std::vector<TypeParam> source(200, TypeParam(3)), result(200, TypeParam(7));
  kit::FaultTable<A> table{
      {source.data(), result.data()}, [](const A& a) { return process(a.source, a.result); }, {{result.data(), 200}}};
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.check();
}

}  // namespace
