// Sums of products of 16-bit samples and taps, two taps at a time, as exact doubles.
//
// One multiplication of lanes gives the products of a pair of taps, added in 32 bits. Such pairs are added up in 32 bits for as many of
// them as cannot leave that range, whatever the samples (a run); runs are added up in double.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "frame/bits.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"

namespace qorsr {

// The first pair behind the run that begins with pair `first`, of `pairs`; magnitudeOf(pair) is the sum of |taps| that one sum of products
// gets from it. At least one pair makes a run.
template <class MagnitudeOf>
inline int32_t endOfRun(int32_t first, int32_t pairs, const MagnitudeOf& magnitudeOf) {
  constexpr int32_t kMost = 65535;  // times 32768: below 2^31
  int32_t end = first + 1, magnitude = magnitudeOf(first);
  while (end < pairs && (magnitude += magnitudeOf(end)) <= kMost) ++end;
  return end;
}
inline int32_t magnitudeOf(int16_t tap) { return tap < 0 ? -int32_t{tap} : tap; }

// A pair of taps in all lanes.
template <int N>
inline Lanes<int16_t, 2 * N> tapPair(int16_t first, int16_t second) {
  const auto low = static_cast<uint32_t>(static_cast<uint16_t>(first)), high = static_cast<uint32_t>(static_cast<uint16_t>(second));
  return std::bit_cast<Lanes<int16_t, 2 * N>>(Lanes<uint32_t, N>(low | high << 16));
}

// The sum of a run joins what stands at `sums`, unless it is the first one.
template <int N>
inline void addRun(const Lanes<int32_t, N>& run, bool isFirst, double* sums) {
  auto all = as<double>(run);
  if (!isFirst) all += Lanes<double, N>::load(sums);
  all.store(sums);
}

// 2^-scaleFactor for sums that are whole numbers: at most 2^1023, by which 0 stays 0 and all else is far beyond 16 bits.
inline double finiteMultiplier(int32_t scaleFactor) { return twoToMinus<double>(std::max(scaleFactor, -1023)); }

// sum * multiplier, limited to 16 bits and rounded to nearest, ties to even. Only in a mode that is known to be nearest.
template <int N>
inline Lanes<int16_t, N> roundedShort(const Lanes<double, N>& sum, double multiplier) {
  using L = Lanes<double, N>;
  return saturated(nearest(max(min(sum * L(multiplier), L(32767.0)), L(-32768.0))));
}
inline constexpr int kRoundedTogether = std::max(4, kNativeLanes<double>);

}  // namespace qorsr
