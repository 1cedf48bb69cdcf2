// Log energies of frames, set off against the loudest one: silence is raised to a floor, and the loudest frame becomes 1 (or a given
// number).
//
//   floor = greatest - silence * ln(10) / 10
//   y     = top - (greatest - max(e, floor)) * scale
//
// Energies are natural logarithms, silence is in decibels. One energy lies every `step` elements: of float energies each is taken where
// it lies, 16-bit ones are gathered in chunks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "features/extremes.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

inline constexpr float kNaturalOfDecibel = 0.230259F;

// ---- One energy ----

struct FloatEnergy {
  float greatest, floor, scale;

  FloatEnergy(float loudest, float silence, float factor)
      : greatest(loudest), floor(loudest - silence * kNaturalOfDecibel), scale(factor) {}

  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& e) const {
    using L = Lanes<float, N>;
    return L(1.0F) - (L(greatest) - max(e, L(floor))) * L(scale);
  }
};

// In float, truncated.
struct ShortEnergyInFloat {
  float greatest, floor, top, scale;

  template <int N>
  Lanes<int16_t, N> operator()(const Lanes<int16_t, N>& e) const {
    using L = Lanes<float, N>;
    const L y = zeroWhereNaN(L(top) - (L(greatest) - max(as<float>(e), L(floor))) * L(scale));
    return saturated(truncated(max(min(y, L(32767.0F)), L(-32768.0F))));
  }
};

// In whole numbers, the scale in Q10. The difference has 17 bits, so 32 bits hold the product of a scale of 15 bits.
struct ShortEnergyInIntegers {
  int32_t greatest, floor, top, scale;

  template <int N>
  Lanes<int16_t, N> operator()(const Lanes<int16_t, N>& e) const {
    using L = Lanes<int32_t, N>;
    return saturated(L(top) - ((L(greatest) - max(as<int32_t>(e), L(floor))) * L(scale) >> 10));
  }
  bool fits() const { return scale >= -32767; }  // from above it is limited by the choice of this way
  int16_t inFull(int16_t e) const {
    const int64_t difference = greatest - std::max(int32_t{e}, floor);
    return saturate<int16_t>(top - shiftRight(difference * scale, 10));
  }
};

// ---- Tracks: energy r lies at buffer[r * step] ----

// A shorter track is taken where it lies: gathering costs as much (conditioning, NormEnergy every 13).
inline constexpr int32_t kGathered = 256, kShortTrack = 32;

template <class T>
inline void gather(const T* buffer, int32_t step, int32_t count, T* gathered) {
  for (int32_t r = 0; r < count; ++r) gathered[r] = buffer[int64_t{r} * step];
}

// A NaN is never the greatest.
template <class T>
inline T greatestEnergy(const T* buffer, int32_t step, int32_t height) {
  Extremes<T> found{0, std::numeric_limits<T>::lowest()};
  if (step == 1) return extremes(buffer, height, found).greatest;
  if (height < kShortTrack) {
    for (int32_t r = 0; r < height; ++r) found.greatest = std::max(found.greatest, buffer[int64_t{r} * step]);
    return found.greatest;
  }
  T some[kGathered];
  for (const Chunk chunk : chunksOf(height, kGathered)) {
    gather(buffer + int64_t{chunk.first} * step, step, chunk.count, some);
    found = extremes(some, chunk.count, found);
  }
  return found.greatest;
}

// Every energy once, in place.
template <class T, class Energy>
inline void replaceNeighbours(T* energies, int32_t count, Energy energy) {
  coverLastFirst<T, kNativeLanes<T>>(
      count, [&](int32_t r, auto n) { return energy(Lanes<T, n>::load(energies + r)); },
      [&](int32_t r, const auto& y) { y.store(energies + r); });
}

template <class T, class Energy>
inline void replaceOneByOne(T* buffer, int32_t step, int32_t height, Energy energy) {
  for (int32_t r = 0; r < height; ++r) {
    T* e = buffer + int64_t{r} * step;
    energy(Lanes<T, 1>::load(e)).store(e);
  }
}

inline void replaceEnergies(float* buffer, int32_t step, int32_t height, FloatEnergy energy) {
  if (step == 1) return replaceNeighbours(buffer, height, energy);
  replaceOneByOne(buffer, step, height, energy);
}

template <class Energy>
inline void replaceEnergies(int16_t* buffer, int32_t step, int32_t height, Energy energy) {
  if (step == 1) return replaceNeighbours(buffer, height, energy);
  if (height < kShortTrack) return replaceOneByOne(buffer, step, height, energy);
  int16_t some[kGathered];
  for (const Chunk chunk : chunksOf(height, kGathered)) {
    int16_t* from = buffer + int64_t{chunk.first} * step;
    gather(from, step, chunk.count, some);
    replaceNeighbours(some, chunk.count, energy);
    for (int32_t i = 0; i < chunk.count; ++i) from[int64_t{i} * step] = some[i];
  }
}

// ---- Family bodies ----

inline Checks trackChecks(const void* buffer, int32_t step, int32_t height) { return Checks().null(buffer).size(step, height); }

inline QorStatus normaliseEnergy(float* buffer, int32_t step, int32_t height, float silence, float greatest, float scale) {
  if (QorStatus bad = trackChecks(buffer, step, height)) return bad;
  replaceEnergies(buffer, step, height, FloatEnergy(greatest, silence, scale));
  return qorStatusOk;
}
inline QorStatus normaliseEnergy(float* buffer, int32_t step, int32_t height, float silence, float scale) {
  if (QorStatus bad = trackChecks(buffer, step, height)) return bad;
  replaceEnergies(buffer, step, height, FloatEnergy(greatestEnergy(buffer, step, height), silence, scale));
  return qorStatusOk;
}

// required: a scale below 1.001 goes in whole numbers, unless the track is shorter than that takes.
inline void replaceShortEnergies(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top,
                                 float scale, int32_t leastHeight) {
  const float floor = static_cast<float>(greatest) - static_cast<float>(silence) * kNaturalOfDecibel;
  if (!(scale < 1.001F) || height < leastHeight) {
    const ShortEnergyInFloat energy{static_cast<float>(greatest), floor, static_cast<float>(top), scale};
    return replaceEnergies(buffer, step, height, energy);
  }
  const auto wholeFloor = static_cast<int32_t>(floor + __builtin_copysignf(0.5F, floor));
  const ShortEnergyInIntegers energy{greatest, wholeFloor, top, truncateOrLowest<int32_t>(1024.0F * scale)};
  if (energy.fits()) return replaceEnergies(buffer, step, height, energy);
  for (int32_t r = 0; r < height; ++r) buffer[int64_t{r} * step] = energy.inFull(buffer[int64_t{r} * step]);
}

inline QorStatus normaliseEnergy(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top,
                                 float scale) {
  if (QorStatus bad = trackChecks(buffer, step, height)) return bad;
  replaceShortEnergies(buffer, step, height, silence, greatest, top, scale, 1);
  return qorStatusOk;
}
inline QorStatus normaliseEnergy(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t top, float scale) {
  if (QorStatus bad = trackChecks(buffer, step, height)) return bad;
  replaceShortEnergies(buffer, step, height, silence, greatestEnergy(buffer, step, height), top, scale, 11);
  return qorStatusOk;
}

}  // namespace qorsr
