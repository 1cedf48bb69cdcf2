// Plain models of the normalisation of log energies.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "model/offset_compensation.h"

namespace model {

template <class T>
T greatestEnergy(const std::vector<T>& energies, T start) {
  for (const T e : energies) start = e > start ? e : start;
  return start;
}

inline float energyFloor(float greatest, float silence) { return greatest - silence * 0.230259F; }

inline float normalisedEnergy(float e, float silence, float greatest, float scale) {
  const float floor = energyFloor(greatest, silence);
  const float raised = e > floor ? e : floor;
  return 1.0F - (greatest - raised) * scale;
}

// `inFloat`: the way that a scale of 1.001 and more takes, and a short track.
inline int16_t normalisedEnergy(int16_t e, int16_t silence, int16_t greatest, int16_t top, float scale, bool inFloat) {
  const float most = greatest, floor = energyFloor(most, silence);
  if (inFloat) {
    const float raised = std::max(static_cast<float>(e), floor);
    const float y = static_cast<float>(top) - (most - raised) * scale;
    return limited(static_cast<double>(y));
  }
  const int64_t wholeFloor = std::llround(static_cast<double>(floor));
  const auto s = static_cast<int64_t>(std::max(std::trunc(1024.0 * static_cast<double>(scale)), -2147483648.0));
  const int64_t product = (greatest - std::max<int64_t>(e, wholeFloor)) * s;
  return static_cast<int16_t>(std::clamp<int64_t>(top - (product >> 10), -32768, 32767));
}

}  // namespace model
