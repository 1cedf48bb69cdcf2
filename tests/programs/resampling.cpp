// Recordings brought to another rate: tones keep their height and place, what the lower rate cannot hold is gone.
#include "common/resampling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using program::Sound;

Sound tone(double hertz, int rate, double seconds) {
  Sound sound{rate, {}};
  const auto count = static_cast<size_t>(seconds * rate);
  for (size_t i = 0; i < count; ++i) {
    sound.samples.push_back(static_cast<float>(std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate)));
  }
  return sound;
}

// The largest difference away from the ends, where the tone begins and stops.
double largestError(const Sound& sound, const Sound& expected) {
  const auto margin = static_cast<size_t>(0.02 * sound.rate);
  double largest = 0;
  for (size_t i = margin; i + margin < std::min(sound.samples.size(), expected.samples.size()); ++i) {
    largest = std::max(largest, std::fabs(static_cast<double>(sound.samples[i] - expected.samples[i])));
  }
  return largest;
}

constexpr double kSeconds = 0.25;

TEST(Resampling, TonesStayWhatTheyAre) {
  for (const int from : {8000, 11025, 16000, 22050, 44100, 48000}) {
    for (const int to : {8000, 16000, 44100, 48000}) {
      for (const double share : {0.05, 0.25, 0.42}) {  // of the lower rate
        const double hertz = share * std::min(from, to);
        const Sound made = program::resampled(tone(hertz, from, kSeconds), to);
        EXPECT_EQ(made.rate, to);
        EXPECT_NEAR(made.seconds(), kSeconds, 1.01 / std::min(from, to)) << from << " to " << to;
        EXPECT_LE(largestError(made, tone(hertz, to, kSeconds)), from == to ? 0.0 : 1e-4)
            << hertz << " Hz, " << from << " to " << to;
      }
    }
  }
}

TEST(Resampling, WhatTheLowerRateCannotHoldIsGone) {
  for (const int from : {22050, 44100, 48000}) {
    for (const int to : {8000, 16000}) {
      const Sound made = program::resampled(tone(0.55 * to, from, kSeconds), to);
      EXPECT_LE(largestError(made, Sound{to, std::vector<float>(made.samples.size())}), 1e-4) << from << " to " << to;
    }
  }
}

TEST(Resampling, NothingAndSingleSamples) {
  EXPECT_TRUE(program::resampled(Sound{8000, {}}, 16000).samples.empty());
  EXPECT_EQ(program::resampled(Sound{8000, {1}}, 16000).samples.size(), 2u);
  EXPECT_EQ(program::resampled(Sound{48000, {1}}, 16000).samples.size(), 1u);
}

}  // namespace
