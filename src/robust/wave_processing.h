// A waveform weighted by its energy's contour: louder from each peak on, softer towards the next one.
//
//   e[n] = |x[n]^2 - x[n-1] x[n+1]|, at the ends |(x[0] - x[1]) x[0]| and |(x[199] - x[198]) x[199]|     (Teager's energy)
//   s[n] = sum of e[n-4] to e[n+4], ends repeated: a running sum, s[n] = (s[n-1] + e[n+4]) - e[n-5], from s[0] on
// The largest s is the first peak p; from it, forwards, the largest of s[p+25] to s[p+79], while there is room, and backwards the largest of
// s[p-79] to s[p-25]; the first of equal ones. From 4 samples before each peak the high weight holds for a share f of the way to the next
// peak (for the last one: of the way from the one before), the low weight elsewhere, and 1 at both samples of each step. y[n] = w[n] x[n].
// (Macho and others, "Evaluation of a noise-robust DSR front-end on Aurora databases", ICSLP 2002.)
//
// In 16 bits weights are 32nds, energies and their sums have 32 bits, sums wrap; products are rounded to nearest, ties to even.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

inline constexpr int32_t kWave = 200, kReach = 4, kNearestPeak = 25, kFarthestPeak = 79;

// How floats and 16-bit numbers differ.
struct FloatWave {
  using Sample = float;
  using Energy = float;
  static constexpr float kLow = 0.8F, kOne = 1.0F, kHigh = 1.2F;

  static int32_t loudPart(int32_t distance) { return distance * 4 / 5; }  // the same as in float, truncated, for all distances

  template <int N>
  static Lanes<float, N> products(const float* a, const float* b) {
    return Lanes<float, N>::load(a) * Lanes<float, N>::load(b);
  }
  template <int N>
  static Lanes<float, N> magnitudes(const Lanes<float, N>& a) {
    return abs(a);
  }
  template <int N>
  static Lanes<float, N> weighted(const float* weight, const float* x) {
    return products<N>(weight, x);
  }
};

struct ShortWave {
  using Sample = int16_t;
  using Energy = int32_t;
  static constexpr int16_t kLow = 27, kOne = 32, kHigh = 38;

  static int32_t loudPart(int32_t distance) { return distance * 27 >> 5; }

  // Products of lanes: the upper halves are 0.
  template <int N>
  static Lanes<int16_t, 2 * N> widened(const int16_t* p) {
    const auto lower = Lanes<int32_t, N>::each(loadAs<int32_t, N>(p), [](auto v) { return decltype(v)(v & 0xFFFF); });
    return std::bit_cast<Lanes<int16_t, 2 * N>>(lower);
  }
  template <int N>
  static Lanes<int32_t, N> products(const int16_t* a, const int16_t* b) {
    if constexpr (N == 1) return Lanes<int32_t, 1>(int32_t{*a} * *b);
    if constexpr (N > 1) return pairDots(widened<N>(a), widened<N>(b));
  }
  template <int N>
  static Lanes<int32_t, N> magnitudes(const Lanes<int32_t, N>& a) {  // at most 2^31 - 2^15
    return max(a, Lanes<int32_t, N>(0) - a);
  }
  template <int N>
  static Lanes<int16_t, N> weighted(const int16_t* weight, const int16_t* x) {
    using L = Lanes<int32_t, N>;
    const L product = products<N>(weight, x);
    const L odd = L::each(product >> 5, [](auto v) { return decltype(v)(v & 1); });
    return saturated((product + L(15) + odd) >> 5);
  }
};

// ---- Energy ----

// The ends stand four times more in front of the energies and behind them.
template <class Wave, class T = typename Wave::Sample, class Energy = typename Wave::Energy>
void teagerEnergy(const T* x, Energy* padded) {
  Energy* const e = padded + kReach;
  coverColumns<Energy, kOneRegister<Energy>>(kWave - 2, [=](int32_t i, auto n) {
    const auto square = Wave::template products<n>(x + i + 1, x + i + 1), neighbours = Wave::template products<n>(x + i, x + i + 2);
    Wave::template magnitudes<n>(square - neighbours).store(e + i + 1);
  });
  const auto end = [](T at, T beside) {
    using L = Lanes<Energy, 1>;
    return Wave::template magnitudes<1>(L((static_cast<Energy>(at) - static_cast<Energy>(beside)) * static_cast<Energy>(at)))
        .part[0];
  };
  e[0] = end(x[0], x[1]);
  e[kWave - 1] = end(x[kWave - 1], x[kWave - 2]);
  std::fill_n(padded, kReach, e[0]);
  std::fill_n(e + kWave, kReach, e[kWave - 1]);
}

// Sums of nine. required: in float, each from the one before it. Integers wrap, so that all ways give the same.
inline void smoothEnergy(const float* padded, float* smoothed) {
  float sum = padded[0];
  for (int k = 1; k <= 2 * kReach; ++k) sum += padded[k];
  smoothed[0] = sum;
  for (int32_t n = 1; n < kWave; ++n) smoothed[n] = sum = sum + padded[n + 2 * kReach] - padded[n - 1];
}
inline void smoothEnergy(const int32_t* padded, int32_t* smoothed) {
  coverColumns<int32_t>(kWave, [=](int32_t i, auto n) {
    const auto at = [=](int k) { return as<uint32_t>(Lanes<int32_t, n>::load(padded + i + k)); };
    auto sum = at(0);
    for (int k = 1; k <= 2 * kReach; ++k) sum += at(k);
    as<int32_t>(sum).store(smoothed + i);
  });
}

// ---- Peaks ----

template <class T, int N>
inline bool anyEqual(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  auto any = a.part[0] == b.part[0];
  for (int i = 1; i < Lanes<T, N>::kParts; ++i) any |= a.part[i] == b.part[i];
  return native::anyHolds(any);
}

// Index of the first maximum of s[first] to s[first + count - 1]. A NaN is followed by NaNs alone, and is the maximum only in front.
template <class Energy>
int32_t firstMaximum(const Energy* s, int32_t first, int32_t count) {
  constexpr int kBlock = kNativeLanes<Energy>;
  using L = Lanes<Energy, kBlock>;
  L lanes(s[first]);
  const int32_t end = first + count;
  int32_t i = first;
  for (; i <= end - kBlock; i += kBlock) lanes = max(L::load(s + i), lanes);
  Energy all[kBlock];
  lanes.store(all);
  Energy most = all[0];
  for (const Energy lane : all) most = lane > most ? lane : most;
  for (; i < end; ++i) most = s[i] > most ? s[i] : most;
  if (most != most) return first;
  for (i = first; i <= end - kBlock && !anyEqual(L::load(s + i), L(most)); i += kBlock) {
  }
  while (s[i] < most) ++i;
  return i;
}

// Peaks in rising order; at least two, since there is room for another one on one side of any.
class Peaks {
 public:
  template <class Energy>
  explicit Peaks(const Energy* s) {
    const int32_t highest = firstMaximum(s, 0, kWave);
    at_[first_] = highest;
    for (int32_t p = highest; p < kWave - kNearestPeak;) {
      const int32_t start = p + kNearestPeak;
      p = firstMaximum(s, start, std::min(kFarthestPeak - kNearestPeak + 1, kWave - start));
      at_[++last_] = p;
    }
    for (int32_t p = highest; p > kNearestPeak;) {
      const int32_t back = std::min(p, kFarthestPeak);
      p = firstMaximum(s, p - back, back - kNearestPeak + 1);
      at_[--first_] = p;
    }
  }

  const int32_t* begin() const { return at_ + first_; }
  int count() const { return last_ - first_ + 1; }

 private:
  static constexpr int kMost = kWave / kNearestPeak;  // on either side of the first one
  int32_t at_[2 * kMost + 1];
  int first_ = kMost, last_ = kMost;
};

// ---- Weights ----

template <class Wave, class T = typename Wave::Sample>
void weighFromPeaks(const Peaks& peaks, T* w) {
  std::fill_n(w, kWave, Wave::kLow);
  const int32_t* const peak = peaks.begin();
  for (int i = 0; i < peaks.count(); ++i) {
    const bool last = i + 1 == peaks.count();
    const int32_t distance = last ? peak[i] - peak[i - 1] : peak[i + 1] - peak[i];
    const int32_t low = std::max(peak[i] - kReach, 0), high = std::min(peak[i] + Wave::loudPart(distance) - kReach, kWave);
    std::fill(w + low, w + high, Wave::kHigh);
    if (low > 0) w[low - 1] = w[low] = Wave::kOne;
    if (high < kWave) w[high - 1] = w[high] = Wave::kOne;
  }
}

template <class Wave, class T = typename Wave::Sample>
QorStatus processWave(const T* source, T* result) {
  if (QorStatus bad = Checks().null(source, result)) return bad;
  using Energy = typename Wave::Energy;
  alignas(64) Energy energy[kWave + 2 * kReach], smoothed[kWave];
  alignas(64) T weight[kWave];
  teagerEnergy<Wave>(source, energy);
  smoothEnergy(energy, smoothed);
  weighFromPeaks<Wave>(Peaks(smoothed), weight);
  coverLastFirst<Energy>(
      kWave, [&](int32_t i, auto n) { return Wave::template weighted<n>(weight + i, source + i); },
      [=](int32_t i, const auto& value) { value.store(result + i); });
  return qorStatusOk;
}

}  // namespace qorsr
