// A signal split into two bands of half its rate by one filter and its mirror image.
//
//   E[i] = h[0] x[2i] + h[2] x[2i+2] + ...,  O[i] = h[1] x[2i+1] + h[3] x[2i+3] + ...
//   low[i] = E[i] + O[i],  high[i] = -(E[i] - O[i]) for even i, E[i] - O[i] for odd i
// Both bands are made of the same two sums, of every second tap each. Floats are added in the order of the taps, from 0 on; 16-bit
// products exactly, then times 2^-sf, limited and rounded.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "robust/nearest.h"
#include "robust/tap_sums.h"

namespace qorsr {

// Outputs whose sums are kept at once.
inline constexpr int32_t kSplitChunk = 128;

// E and O of a chunk.
template <class T>
struct SplitSums {
  alignas(64) T even[kSplitChunk];
  alignas(64) T odd[kSplitChunk];
};

// -1, 1, -1, ... from output i on.
template <class T, int N>
inline Lanes<T, N> signsFrom(int32_t i) {
  static constexpr T kSigns[] = {-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1};
  static_assert(N <= 16);
  return Lanes<T, N>::load(kSigns + i % 2);
}

// ---- Floats ----

// Pairs of taps whose samples are put in order at once.
inline constexpr int32_t kSplitPairs = 64;

// The samples at even and at odd places of `count` pairs, of which the last has no odd one if `lastIsHalf`.
inline void separate(const float* x, int32_t count, bool lastIsHalf, float* even, float* odd) {
  constexpr int kBlock = kNativeLanes<float>;
  using L = Lanes<float, kBlock>;
  const int32_t whole = lastIsHalf ? count - 1 : count;
  int32_t i = 0;
  for (; i <= whole - kBlock; i += kBlock) {
    const L a = L::load(x + 2 * int64_t{i}), b = L::load(x + 2 * int64_t{i} + kBlock);
    permuted<order::everySecond<0>>(a, b).store(even + i);
    permuted<order::everySecond<1>>(a, b).store(odd + i);
  }
  for (; i < whole; ++i) {
    even[i] = x[2 * int64_t{i}];
    odd[i] = x[2 * int64_t{i} + 1];
  }
  if (lastIsHalf) even[i] = x[2 * int64_t{i}];
}

// Adds taps h[0] to h[tapCount - 1] to the sums of `count` outputs; x is the sample of output 0 and tap 0.
inline void addTaps(const float* x, const float* h, int32_t tapCount, int32_t count, SplitSums<float>& sums) {
  alignas(64) float even[kSplitChunk + kSplitPairs], odd[kSplitChunk + kSplitPairs];
  const int32_t evenTaps = (tapCount + 1) / 2, oddTaps = tapCount / 2;
  separate(x, count - 1 + evenTaps, evenTaps != oddTaps, even, odd);
  coverColumnsOnce<float>(count, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    L e = L::load(sums.even + i), o = L::load(sums.odd + i);
    for (int32_t j = 0; j < oddTaps; ++j) {
      e += L(h[2 * j]) * L::load(even + i + j);
      o += L(h[2 * j + 1]) * L::load(odd + i + j);
    }
    if (evenTaps != oddTaps) e += L(h[tapCount - 1]) * L::load(even + i + oddTaps);
    e.store(sums.even + i);
    o.store(sums.odd + i);
  });
}

inline void splitFloats(const float* x, float* low, float* high, int32_t outputs, const float* taps, int32_t tapCount) {
  SplitSums<float> sums;
  for (const Chunk chunk : chunksOf(outputs, kSplitChunk)) {
    std::fill_n(sums.even, chunk.count, 0.0F);
    std::fill_n(sums.odd, chunk.count, 0.0F);
    for (const Chunk tap : chunksOf(tapCount, 2 * kSplitPairs)) {
      addTaps(x + 2 * int64_t{chunk.first} + tap.first, taps + tap.first, tap.count, chunk.count, sums);
    }
    coverColumns<float, kOneRegister<float>>(chunk.count, [&](int32_t i, auto n) {
      using L = Lanes<float, n>;
      const L e = L::load(sums.even + i), o = L::load(sums.odd + i);
      (e + o).store(low + chunk.first + i);
      ((e - o) * signsFrom<float, n>(i)).store(high + chunk.first + i);
    });
  }
}

// ---- 16 bits ----

// Of N pairs of samples the first one of each, or the second one, times a tap.
template <int N>
inline Lanes<int32_t, N> evenProducts(const int16_t* x, int16_t tap) {
  if constexpr (N == 1) return Lanes<int32_t, 1>(int32_t{x[0]} * tap);
  if constexpr (N > 1) return pairDots(Lanes<int16_t, 2 * N>::load(x), tapPair<N>(tap, 0));
}
template <int N>
inline Lanes<int32_t, N> oddProducts(const int16_t* x, int16_t tap) {
  if constexpr (N == 1) return Lanes<int32_t, 1>(int32_t{x[1]} * tap);
  if constexpr (N > 1) return pairDots(Lanes<int16_t, 2 * N>::load(x), tapPair<N>(0, tap));
}

// The sums of pairs of taps from `first` to `end` - 1; x is the sample of output 0 and tap 0. The last one of an odd number of taps makes a
// pair with the sample in front of its own, which weighs nothing: there may be none behind it.
inline void addRunOfPairs(const int16_t* x, const int16_t* taps, int32_t tapCount, int32_t first, int32_t end, int32_t count,
                          SplitSums<double>& sums) {
  const int32_t whole = std::min(end, tapCount / 2);
  coverColumnsOnce<int32_t>(count, [&](int32_t i, auto n) {
    Lanes<int32_t, n> even(0), odd(0);
    const int16_t* const from = x + 2 * int64_t{i};
    for (int32_t j = first; j < whole; ++j) {
      even += evenProducts<n>(from + 2 * j, taps[2 * j]);
      odd += oddProducts<n>(from + 2 * j, taps[2 * j + 1]);
    }
    if (whole < end) even += oddProducts<n>(from + tapCount - 2, taps[tapCount - 1]);
    addRun(even, first == 0, sums.even + i);
    addRun(odd, first == 0, sums.odd + i);
  });
}

inline void sumsOfOneTap(const int16_t* x, int16_t tap, int32_t count, SplitSums<double>& sums) {
  for (int32_t i = 0; i < count; ++i) {
    sums.even[i] = static_cast<double>(int32_t{tap} * x[2 * i]);
    sums.odd[i] = 0.0;
  }
}

// A chunk's results from its sums, in whole blocks.
inline void roundChunk(SplitSums<double>& sums, int32_t count, double multiplier, int16_t* low, int16_t* high) {
  using L = Lanes<double, kRoundedTogether>;
  int16_t lows[kSplitChunk], highs[kSplitChunk];
  const int32_t blocks = (count + kRoundedTogether - 1) / kRoundedTogether, end = blocks * kRoundedTogether;
  std::fill(sums.even + count, sums.even + end, 0.0);
  std::fill(sums.odd + count, sums.odd + end, 0.0);
  for (int32_t i = 0; i < end; i += kRoundedTogether) {
    const L e = L::load(sums.even + i), o = L::load(sums.odd + i);
    roundedShort(e + o, multiplier).store(lows + i);
    roundedShort((e - o) * signsFrom<double, kRoundedTogether>(i), multiplier).store(highs + i);
  }
  std::copy_n(lows, count, low);
  std::copy_n(highs, count, high);
}

QORSR_IN_GUARDED_MODE inline void splitShorts(const int16_t* x, int16_t* low, int16_t* high, int32_t outputs, const int16_t* taps,
                                              int32_t tapCount, double multiplier) {
  SplitSums<double> sums;
  const auto magnitude = [=](int32_t j) {
    return std::max(magnitudeOf(taps[2 * j]), 2 * j + 1 < tapCount ? magnitudeOf(taps[2 * j + 1]) : 0);
  };
  const int32_t pairs = tapCount / 2 + tapCount % 2;
  for (const Chunk chunk : chunksOf(outputs, kSplitChunk)) {
    const int16_t* const from = x + 2 * int64_t{chunk.first};
    if (tapCount == 1) sumsOfOneTap(from, taps[0], chunk.count, sums);
    for (int32_t first = 0, end; tapCount > 1 && first < pairs; first = end) {
      end = endOfRun(first, pairs, magnitude);
      addRunOfPairs(from, taps, tapCount, first, end, chunk.count, sums);
    }
    roundChunk(sums, chunk.count, multiplier, low + chunk.first, high + chunk.first);
  }
}

// ---- Family bodies ----

// required: sources and taps are tested before the number of taps, results behind it; an odd length loses its last sample.
template <class T>
QorStatus checkSplit(const T* source, const T* low, const T* high, int32_t length, const T* taps, int32_t tapCount) {
  return Checks().null(source, taps).size(tapCount).null(low, high).size(length);
}

inline QorStatus splitBands(const float* source, float* low, float* high, int32_t length, const float* taps, int32_t tapCount) {
  if (QorStatus bad = checkSplit(source, low, high, length, taps, tapCount)) return bad;
  splitFloats(source, low, high, length / 2, taps, tapCount);
  return qorStatusOk;
}
inline QorStatus splitBands(const int16_t* source, int16_t* low, int16_t* high, int32_t length, const int16_t* taps,
                            int32_t tapCount, int32_t scaleFactor) {
  if (QorStatus bad = checkSplit(source, low, high, length, taps, tapCount)) return bad;
  roundingToNearest([=] { splitShorts(source, low, high, length / 2, taps, tapCount, finiteMultiplier(scaleFactor)); });
  return qorStatusOk;
}

}  // namespace qorsr
