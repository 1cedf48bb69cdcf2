// Trackers and thresholds of voice activity, at the bounds of their ranges and beside them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "kit/compare.h"
#include "kit/random.h"
#include "model/voice_activity.h"
#include "robust/voice_activity.h"

namespace {

using qorsr::RealActivity;
using qorsr::WholeActivity;

// A tracker of floats: shares 1.5, L, D and G of it, and what lies beside.
void expectReal(const qorsr::Threshold<qorsr::RealShare>& threshold, float l, float d, float g, bool strict) {
  kit::Random random;
  for (int trial = 0; trial < 2000; ++trial) {
    const float tracker = trial < 4 ? static_cast<float>(trial * 16) : static_cast<float>(random.real(-10, 1000));
    for (const float share : {1.5F, l, d, g, 1.0F}) {
      for (const int side : {-1, 0, 1}) {
        const float bound = share * tracker;
        const float m = side == 0 ? bound : std::nextafterf(bound, side < 0 ? -INFINITY : INFINITY);
        float actual = tracker, expected = tracker;
        const bool active = threshold.update(actual, m);
        EXPECT_EQ(active, model::ActivityOfFloats::adapted(expected, m, 1.5F, l, d, g, strict)) << tracker << " " << m;
        ASSERT_BITS(actual, expected) << tracker << " " << m;
      }
    }
  }
}
TEST(VoiceActivityThresholds, OfFloats) {
  expectReal(RealActivity::kVariance, 0.85F, 0.25F, 1.65F, true);
  expectReal(RealActivity::kEnergy, 0.75F, 0.5F, 1.65F, false);
  expectReal(RealActivity::kSpectrum, 0.75F, 0.5F, 3.25F, false);
}

// A tracker of integers: every measure around its bounds. expected(model, m) decides and changes the model's tracker.
template <class Measure, class Expected>
void expectWhole(const qorsr::Threshold<qorsr::WholeShare>& threshold, int32_t model::ActivityOfIntegers::*tracker,
                 const Expected& expected) {
  kit::Random random;
  for (int trial = 0; trial < 4000; ++trial) {
    const auto start = static_cast<int32_t>(trial < 300 ? trial - 100 : random.integer(INT32_MIN / 4, INT32_MAX / 4));
    for (const double share : {1.5, 27.0 / 32, 0.75, 0.25, 0.5, 53.0 / 32, 211.0 / 128, 3.25, 1.0}) {
      for (int side = -2; side <= 2; ++side) {
        const auto m = static_cast<Measure>(static_cast<int64_t>(std::floor(share * start)) + side);
        model::ActivityOfIntegers model;
        model.frames = 20;
        model.*tracker = start;
        int32_t actual = start;
        const bool active = threshold.update(actual, static_cast<int64_t>(m));
        EXPECT_EQ(active, expected(model, m)) << start << " " << m;
        ASSERT_BITS(actual, model.*tracker) << start << " " << m;
      }
    }
  }
}
TEST(VoiceActivityThresholds, OfIntegers) {
  using Model = model::ActivityOfIntegers;
  expectWhole<int64_t>(WholeActivity::kVariance, &Model::variance, [](Model& model, int64_t m) { return model.varianceFlag(m); });
  expectWhole<int32_t>(WholeActivity::kEnergy, &Model::energy, [](Model& model, int32_t m) { return model.energyFlag(m); });
  expectWhole<int64_t>(WholeActivity::kSpectrum, &Model::spectral, [](Model& model, int64_t m) { return model.spectralOf(m); });
}

// Every tracker and counter, frame by frame.
template <class Record, class Model>
void expectRecord(const Record& actual, const Model& expected) {
  ASSERT_BITS(actual.energyMean, expected.mean);
  ASSERT_BITS(actual.energy, expected.energy);
  ASSERT_BITS(actual.spectrum, expected.spectral);
  ASSERT_BITS(actual.variance, expected.variance);
  ASSERT_BITS(actual.previousCentre, expected.previous);
  ASSERT_EQ(actual.jumped != 0, expected.onset);
  ASSERT_EQ(actual.longCounter, expected.longCounter);
  ASSERT_EQ(actual.shortCounter, expected.shortCounter);
  ASSERT_EQ(actual.hangover, expected.hangover);
  ASSERT_EQ(actual.place, expected.index);
  ASSERT_EQ(actual.frames, expected.frames);
}

template <class T, class Model, class State, class Init, class Decide>
void expectRecords(Init init, Decide decide) {
  kit::Random random;
  int jumps = 0;
  for (int stream = 0; stream < 150; ++stream) {
    State state;
    Model model;
    init(&state);
    for (int n = 0; n < 60; ++n) {
      const double exponent = stream % 3 == 0 ? random.real(0.3, 0.7) : random.real(-0.5, 3.5), loudness = std::pow(10.0, exponent);
      std::vector<T> bands, values;
      for (int i = 0; i < 25; ++i) bands.push_back(static_cast<T>(random.real(0.5, 1.0) * loudness));
      for (int i = 0; i < 64; ++i) values.push_back(static_cast<T>(random.real(-1.0, 1.0) * loudness));
      int32_t decision = 0;
      ASSERT_EQ(decide(bands.data(), values.data(), 0, &decision, &state), qorStatusOk);
      ASSERT_EQ(decision, model.decision(bands, values, 0));
      expectRecord(state, model);
      if (testing::Test::HasFailure()) FAIL() << "stream " << stream << " frame " << n;
    }
    jumps += model.onset ? 1 : 0;
  }
  EXPECT_GT(jumps, 10);
  EXPECT_LT(jumps, 140);
}
TEST(VoiceActivityRecords, OfFloats) {
  expectRecords<float, model::ActivityOfFloats, VADState_Aurora_32f>(qorsVADInit_Aurora_32f, qorsVADDecision_Aurora_32f);
}
TEST(VoiceActivityRecords, OfIntegers) {
  expectRecords<int16_t, model::ActivityOfIntegers, VADState_Aurora_16s>(qorsVADInit_Aurora_16s, qorsVADDecision_Aurora_16s);
}

TEST(VoiceActivityThresholds, OfTheJump) {
  for (const float mean : {0.5F, 3.0F, 1000.0F, -4.0F}) {
    EXPECT_FALSE(RealActivity::jumps(2.5F * mean, mean));
    EXPECT_TRUE(RealActivity::jumps(2.501F * mean, mean));
  }
  for (const int64_t mean : {1, 3, 1000, -4}) {
    EXPECT_FALSE(WholeActivity::jumps(mean * 5 / 2, mean));
    EXPECT_TRUE(WholeActivity::jumps(mean * 5 / 2 + (mean < 0 ? -1 : 1) * (1 + mean / 40), mean));
  }
  EXPECT_FALSE(WholeActivity::jumps(INT32_MAX, 0));
}

// A count of frames stays at its end, and a record there goes on as one in mid-stream.
TEST(VoiceActivityFrames, StayAtTheEndOfTheirRange) {
  EXPECT_EQ(qorsr::nextFrame(INT32_MAX - 1), INT32_MAX);
  EXPECT_EQ(qorsr::nextFrame(INT32_MAX), INT32_MAX);
  VADState_Aurora_16s state;
  qorsVADInit_Aurora_16s(&state);
  state.frames = INT32_MAX;
  const std::vector<int16_t> bands(25, 100), frame(64, 5);
  int32_t decision = 0;
  EXPECT_EQ(qorsVADDecision_Aurora_16s(bands.data(), frame.data(), 0, &decision, &state), qorStatusOk);
  EXPECT_EQ(decision, qorVADNoSpeech);
  EXPECT_EQ(int32_t{state.frames}, INT32_MAX);
  EXPECT_EQ(qorsVADFlush_Aurora_16s(&decision, &state), qorStatusOk);
  EXPECT_EQ(int32_t{state.frames}, INT32_MAX);
}

}  // namespace
