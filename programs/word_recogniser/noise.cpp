#include "noise.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace words {
namespace {

// FNV-1a: the seed must be the same on every machine.
uint32_t seedOf(const std::string& name) {
  uint32_t hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash;
}

}  // namespace

program::Sound noisySound(const Recording& recording, double decibels) {
  const program::Sound& sound = recording.sound;
  double power = 0;
  for (const float sample : sound.samples) power += static_cast<double>(sample) * static_cast<double>(sample);
  power /= static_cast<double>(sound.samples.size());
  std::mt19937 generator(seedOf(recording.name));
  std::normal_distribution<double> normal(0.0, std::sqrt(power * std::pow(10.0, -decibels / 10)));
  program::Sound noisy = sound;
  for (float& sample : noisy.samples) sample += static_cast<float>(normal(generator));
  return noisy;
}

void addNoise(Corpus& corpus, double decibels) {
  for (Recording& recording : corpus.recordings) recording.sound = noisySound(recording, decibels);
}

}  // namespace words
