// Plain model of the activity decision: a ring of seven bytes with an index, and each step as its definition reads.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "qorsr.h"

namespace model {

// The ring, the counters and the decision, of which both members have the same.
struct ActivityRing {
  int32_t index = 0, flushMark = -1, hangover = 23, longCounter = 0, shortCounter = 0, frames = 0;
  std::array<uint8_t, 7> ring{};

  int longestRun() const {  // from the oldest entry to the newest
    int longest = 0, run = 0;
    for (int k = 1; k <= 7; ++k) {
      run = ring[static_cast<std::size_t>((index + k) % 7)] != 0 ? run + 1 : 0;
      if (run > longest) longest = run;
    }
    return longest;
  }
  int32_t decide(bool active) {
    index = (index + 1) % 7;
    ring[static_cast<std::size_t>(index)] = active ? 1 : 0;
    const int r = longestRun();
    if (r >= 4) {
      longCounter = hangover;
      if (frames < 36) hangover = 40;
    }
    if (r < 3) {
      if (longCounter != 0) longCounter -= 1;
      if (shortCounter != 0) shortCounter -= 1;
    } else {
      shortCounter = 5;
    }
    return longCounter == 0 && shortCounter == 0 && r < 3 ? 2 : 1;
  }
  int32_t flush() {
    frames += 1;
    if (flushMark == -1) flushMark = index;
    index = (index + 1) % 7;
    if (index == flushMark) return 4;
    if (frames < 11) return 4;
    const int r = longestRun();
    int32_t start = longCounter;
    if (r >= 4) {
      start = hangover;
      if (frames < 36) hangover = 40;
    }
    longCounter = start - 1;
    if (r >= 3) shortCounter = 5;
    shortCounter -= 1;
    return longCounter < 1 && shortCounter < 1 && r < 3 ? 2 : 1;
  }
};

// Lanes by halves: of 16, 8, 4 and 2 sums.
inline float joinedLanes(std::vector<float> lanes) {
  while (lanes.size() > 1) {
    const std::size_t half = lanes.size() / 2;
    for (std::size_t i = 0; i < half; ++i) lanes[i] = lanes[i] + lanes[i + half];
    lanes.resize(half);
  }
  return lanes[0];
}

struct ActivityOfFloats : ActivityRing {
  float mean = 0, spectral = 0, energy = 0, variance = 0, previous = 0;
  bool onset = false;

  static float larger(float t, float m) { return m > t ? m : t; }
  static bool adapted(float& t, float m, float u, float l, float d, float g, bool strict) {
    if (m < u * t && m > l * t) t = 0.8F * t + 0.2F * m;
    if (strict ? m < d * t : m <= d * t) t = 0.97F * t + 0.03F * m;
    return m > g * t;
  }

  int32_t decision(const std::vector<float>& bands, const std::vector<float>& values, int32_t count) {
    frames += 1;
    std::vector<float> sums(16), squares(16), wide(8);
    for (std::size_t i = 0; i < 64; ++i) {
      const float square = values[i] * values[i];
      sums[i % 16] = i < 16 ? values[i] : sums[i % 16] + values[i];
      squares[i % 16] = i < 16 ? square : squares[i % 16] + square;
    }
    const float sum = joinedLanes(sums);
    const float v = joinedLanes(squares) * 0.015625F - sum * sum * 0.00024414063F;
    if (frames < 15) variance = larger(variance, v);
    const bool varianceFlag = adapted(variance, v, 1.5F, 0.85F, 0.25F, 1.65F, true);

    for (std::size_t i = 0; i < 24; ++i) wide[i % 8] = i < 8 ? bands[i] : wide[i % 8] + bands[i];
    const float s = joinedLanes(wide) + bands[24], e = s * s - 3.0F;
    if (frames == 1) energy = e;
    if (frames < 15) {
      mean = (static_cast<float>(frames - 1) * mean + e) * 1.1F / static_cast<float>(frames);
      if (e / mean > 2.5F) onset = true;
      if (!onset) energy = larger(energy, e);
    }
    const bool energyFlag = adapted(energy, e, 1.5F, 0.75F, 0.5F, 1.65F, false);

    const float c = (bands[1] + bands[2] + bands[3]) / 3.0F;
    const float m = 0.75F * c + 0.25F * previous;
    previous = c;
    if (frames < 15) spectral = larger(spectral, m);
    const bool spectralFlag = adapted(spectral, m, 1.5F, 0.75F, 0.5F, 3.25F, false);
    if (frames < 11) return 4;
    return decide(varianceFlag || energyFlag || spectralFlag || count >= 5);
  }
};

struct ActivityOfIntegers : ActivityRing {
  int32_t mean = 0, spectral = 0, energy = 0, variance = 0, previous = 0;
  bool onset = false;

  static int64_t wide(int32_t t) { return t; }
  static int32_t stored(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }

  bool varianceFlag(int64_t m) {
    int32_t& t = variance;
    if (frames < 15 && m > t) t = stored(m);
    if (m < (wide(t) * 48) >> 5 && m > (wide(t) * 27) >> 5) t = stored(((wide(t) * 26) >> 5) + ((6 * m) >> 5));
    if (m < (wide(t) * 8) >> 5) t = stored(((wide(t) * 31) >> 5) + m);
    return m > (wide(t) * 53) >> 5;
  }
  bool energyFlag(int32_t e) {
    int32_t& t = energy;
    if (frames == 1) t = e;
    if (frames < 15) {
      mean = stored((((frames - 1) * wide(mean) + e) * 141 / frames) >> 7);
      if (mean != 0 && wide(e) * 128 / mean > 320) onset = true;
      if (!onset && e > t) t = e;
    }
    if (e < (wide(t) * 192) >> 7 && e > (wide(t) * 96) >> 7) t = stored(((wide(t) * 102) >> 7) + ((26 * wide(e)) >> 7));
    if (e <= (wide(t) * 64) >> 7) t = stored(((wide(t) * 124) >> 7) + (e >> 5));
    return e > (wide(t) * 211) >> 7;
  }
  bool spectralOf(int64_t m) {
    int32_t& t = spectral;
    if (frames < 15 && m > t) t = stored(m);
    if (m < (wide(t) * 48) >> 5 && m > (wide(t) * 24) >> 5) t = stored(((wide(t) * 102) >> 7) + ((m * 26) >> 7));
    if (m <= (wide(t) * 16) >> 5) t = stored(((wide(t) * 124) >> 7) + (m >> 5));
    return m > (wide(t) * 416) >> 7;
  }
  bool spectralFlag(int32_t sum) {
    const int64_t m = ((wide(sum) * 8184) >> 5) + ((wide(previous) * 8) >> 5);
    previous = sum * 341;
    return spectralOf(m);
  }

  int32_t decision(const std::vector<int16_t>& bands, const std::vector<int16_t>& values, int32_t count) {
    frames += 1;
    int64_t sum = 0, squares = 0, s = 0;
    for (const int16_t x : values) sum += x, squares += int64_t{x} * x;
    for (std::size_t i = 0; i < 25; ++i) s += bands[i];
    const bool v = varianceFlag(64 * squares - sum * sum);
    const bool e = energyFlag(stored(s * s - 3));
    const bool c = spectralFlag(bands[1] + bands[2] + bands[3]);
    if (frames < 11) return 4;
    return decide(v || e || c || count >= 5);
  }
};

}  // namespace model
