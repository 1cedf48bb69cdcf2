// The noise's power spectrum, tracked by minima-controlled recursive averaging. Of every bin, with x the power of the frame:
//
//   s = as s + (1 - as) x                      smoothed power
//   m = min(m, s), t = min(t, s)               its minimum, and that since the last restart; in a restart m = min(s, t), t = s
//   p = ap p + (1 - ap if s > delta m)         probability of speech
//   a = ad + (1 - ad) p,  n = a n + (1 - a) x  noise
//
// Bins are independent of each other: blocks of any width give the same bits.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/memory.h"
#include "frame/unsigned_products.h"
#include "qorsr.h"

namespace qorsr {

// Smoothing constants are floats, or have 31 fraction bits.
//
// Behind the record stand, for every sixteen bins, four arrays of sixteen: probability of speech, smoothed power, minimum, and minimum
// since the last restart; for the bins that remain, four arrays of as many. One stream of memory, on a boundary of 64 bytes where the
// block has room for that, of 32 otherwise: 1.8 times faster than four arrays at x86-64-v3 (noise_tracking, 32f, 257 bins).
template <class Number>
struct MinimaRecord {
  int32_t bins, window, counter, isFirst;
  Number noiseSmoothing, presenceSmoothing, spectrumSmoothing;
  int32_t arrays;  // where they begin, in bytes from the record
};

inline constexpr int32_t kBinsTogether = 16;

}  // namespace qorsr

struct MCRAState_32f {
  qorsr::MinimaRecord<float> record;
};
struct MCRAState_32s {
  qorsr::MinimaRecord<int32_t> record;
};

namespace qorsr {

inline constexpr int32_t kShortestTransform = 8, kLongestTransform = 8192;
inline constexpr float kMinimumRatio = 5.0F;  // delta

constexpr int32_t minimaBytes(int32_t length) { return length / 2 * 16 + 84; }

inline constexpr int32_t kMinimaRoom = 68;  // for the record and the way to the next boundary

// Where the arrays begin.
inline int32_t placeArrays(const void* state, int32_t recordBytes) {
  const auto* const from = static_cast<const std::byte*>(state);
  const auto offset = [=](std::size_t alignment) { return alignUp(from + recordBytes, alignment) - from; };
  return static_cast<int32_t>(offset(64) <= kMinimaRoom ? offset(64) : offset(kAreaAlignment));
}
static_assert(sizeof(MCRAState_32f) + kAreaAlignment - alignof(float) <= kMinimaRoom);
static_assert(kMinimaRoom + 16 * (kLongestTransform / 2 + 1) == minimaBytes(kLongestTransform));

// Calls body(arrays, first, count) for every sixteen bins, with count a constant, and for those that remain. Array i of theirs begins
// at arrays + i count.
template <class State, class Body>
[[gnu::always_inline]] inline void forBlocksOfBins(State* state, const Body& body) {
  using Number = decltype(state->record.noiseSmoothing);
  auto* arrays = reinterpret_cast<Number*>(reinterpret_cast<std::byte*>(state) + state->record.arrays);
  const int32_t bins = state->record.bins;
  int32_t first = 0;
  for (; bins - first >= kBinsTogether; first += kBinsTogether, arrays += 4 * kBinsTogether) {
    body(arrays, first, LaneCount<kBinsTogether>());
  }
  if (first < bins) body(arrays, first, bins - first);
}

// ---- Constants of the frame rate ----

struct FrameRate {
  int32_t sampleRate, length, hop;
  bool roundsHopDown;  // the window counts hops of the power of two at or below `hop`
};

constexpr int halvingsToZero(int32_t n) { return std::bit_width(static_cast<uint32_t>(n)); }

inline MinimaRecord<float> minimaRecord(const FrameRate& rate, float) {
  const auto hop = static_cast<float>(rate.hop);
  const double eightMs = rate.sampleRate * 0.008;
  const float frames = rate.roundsHopDown ? static_cast<float>(eightMs / std::bit_floor(static_cast<uint32_t>(rate.hop)))
                                          : static_cast<float>(eightMs) / hop;
  const auto t = static_cast<double>(hop * 125.0F / static_cast<float>(rate.sampleRate));
  const auto power = [=](double base) { return static_cast<float>(pow(base, t)); };
  return {rate.length / 2 + 1, static_cast<int32_t>(frames * 125.0F), 0, 1, power(0.7), power(0.2), power(0.8), 0};
}

// exp(c t) in Q31, c in Q31 and t in Q15: the series to the third power around 0. Far from it, beyond |c t| of some 1, it is far off,
// and wraps.
constexpr int32_t exponentialSeries(int64_t c, int64_t t) {
  const int64_t a = (c * t) >> 31, b = ((a * a) >> 15) >> 1, d = (b * a) >> 15;
  return static_cast<int32_t>(shiftLeft(b + a - 32768 + ((715827883 * d) >> 31), 16));
}
constexpr int32_t squaredQ31(int32_t p) { return static_cast<int32_t>(shiftLeft(int64_t{p} * p, 1) >> 32); }

inline MinimaRecord<int32_t> minimaRecord(const FrameRate& rate, int32_t) {
  constexpr int64_t kLn07 = -0x2DA7864A, kLn08 = -0x1C8FF7C8, kLn02Eighth = -0x19C041F8;  // ln 0.7, ln 0.8, ln(0.2) / 8 in Q31
  const int64_t eightMs = int64_t{17179869} * rate.sampleRate;                            // Q31
  const int64_t frames = (rate.roundsHopDown ? eightMs >> 16 >> (halvingsToZero(rate.hop) - 1) : eightMs / rate.hop >> 16) + 1;
  const int64_t t = (int64_t{125} * rate.hop << 15) / rate.sampleRate;
  const int32_t presence = squaredQ31(squaredQ31(squaredQ31(exponentialSeries(kLn02Eighth, t))));
  return {rate.length / 2 + 1,
          static_cast<int32_t>(frames * 125 >> 15),
          0,
          1,
          exponentialSeries(kLn07, t),
          presence,
          exponentialSeries(kLn08, t),
          0};
}

template <class State>
inline void fillMinima(State* state, const FrameRate& rate) {
  state->record = minimaRecord(rate, decltype(state->record.noiseSmoothing)());
  state->record.arrays = placeArrays(state, sizeof(State));
}

constexpr bool isLength(int32_t length) { return length >= kShortestTransform && length <= kLongestTransform; }
constexpr bool isSampleRate(int32_t rate) { return rate >= 8000 && rate <= 48000; }

inline QorStatus minimaSize(int32_t length, int32_t* size) {
  if (QorStatus bad = Checks().null(size).require(isLength(length), qorStatusBadSize)) return bad;
  *size = minimaBytes(length);
  return qorStatusOk;
}

template <class State>
inline QorStatus initMinima(int32_t sampleRate, int32_t length, State* state) {
  if (QorStatus bad =
          Checks().null(state).require(isSampleRate(sampleRate), qorStatusBadRange).require(isLength(length), qorStatusBadSize)) {
    return bad;
  }
  fillMinima(state, {sampleRate, length, length / 2, true});
  return qorStatusOk;
}

template <class State>
inline QorStatus initMinima(int32_t sampleRate, int32_t length, int32_t hop, State* state) {
  if (QorStatus bad = Checks()
                          .null(state)
                          .require(isSampleRate(sampleRate) && hop >= 1 && hop <= length / 2, qorStatusBadRange)
                          .require(isLength(length), qorStatusBadSize)) {
    return bad;
  }
  fillMinima(state, {sampleRate, length, hop, false});
  return qorStatusOk;
}

// ---- Floats ----

// Eight lanes at most: the stores are the limit, and registers of 512 bits were 1.6 times slower (noise_tracking, 257 bins).
template <bool Restarts>
inline void trackBins(const float* x, MCRAState_32f* state, float* noise) {
  const float as = state->record.spectrumSmoothing, ap = state->record.presenceSmoothing, ad = state->record.noiseSmoothing;
  forBlocksOfBins(
      state, [=](float* arrays, int32_t first, auto count) __attribute__((always_inline)) {
        coverColumnsOnce<float, std::min(kOneRegister<float>, 8)>(
            count, [=](int32_t k, auto n) __attribute__((always_inline)) {
              using L = Lanes<float, n>;
              float *const p = arrays + k, *const smoothed = p + count, *const m = p + 2 * count, *const t = p + 3 * count;
              const L one(1.0F), power = L::load(x + first + k), latest = L::load(t);
              const L s = L(as) * L::load(smoothed) + (one - L(as)) * power;
              const L minimum = Restarts ? min(s, latest) : min(L::load(m), s), kept = L(ap) * L::load(p);
              const L presence = selectLess(L(kMinimumRatio) * minimum, s, kept + (one - L(ap)), kept);
              const L a = L(ad) + (one - L(ad)) * presence;
              s.store(smoothed);
              minimum.store(m);
              (Restarts ? s : min(latest, s)).store(t);
              presence.store(p);
              (a * L::load(noise + first + k) + (one - a) * power).store(noise + first + k);
            });
      });
}

inline void trackNoise(const float* x, MCRAState_32f* state, float* noise, bool restarts) {
  restarts ? trackBins<true>(x, state, noise) : trackBins<false>(x, state, noise);
}

// ---- Integers ----

// (s w1 + x w2) >> 31 modulo 2^32, with s, x and w1 signed, w2 = 2^31 - 1 - w1 unsigned. Products of unsigned halves, of which what
// the signs take away is a multiple of 2^32.
template <int N>
inline Lanes<int32_t, N> smoothedQ31(const Lanes<int32_t, N>& s, const Lanes<int32_t, N>& w1, const Lanes<int32_t, N>& x,
                                     const Lanes<int32_t, N>& w2) {
  using L = Lanes<int32_t, N>;
  using Wide = Lanes<uint64_t, N / 2>;
  using Part = typename L::Part;
  using WidePart = typename Wide::Part;
  const Wide even = unsignedProducts<false>(s, w1) + unsignedProducts<false>(x, w2);
  const Wide odd = unsignedProducts<true>(s, w1) + unsignedProducts<true>(x, w2);
  L v;
  for (int i = 0; i < L::kParts; ++i) {
    constexpr uint64_t kLower = 0xFFFFFFFFU;
    v.part[i] = std::bit_cast<Part>(WidePart(((even.part[i] >> 31) & kLower) | ((odd.part[i] << 1) & ~kLower)));
  }
  using Bits = Lanes<uint32_t, N>;
  const auto ifNegative = [](const L& sign, const L& value) {
    return as<uint32_t>(L::each(sign, value, [](Part c, Part d) { return Part((c >> 31) & d); }));
  };
  const Bits signs = ifNegative(s, w1) + ifNegative(x, w2) + ifNegative(w1, s);
  return as<int32_t>(as<uint32_t>(v) - (signs + signs));
}

// N lanes from memory; or one number, in all lanes, of which the first is stored.
template <int N>
struct WholeBlock {
  static Lanes<int32_t, N> load(const int32_t* p) { return Lanes<int32_t, N>::load(p); }
  static void store(const Lanes<int32_t, N>& v, int32_t* p) { v.store(p); }
};
struct OneOfFour {
  static Lanes<int32_t, 4> load(const int32_t* p) { return Lanes<int32_t, 4>(*p); }
  static void store(const Lanes<int32_t, 4>& v, int32_t* p) { *p = v.part[0][0]; }
};

// The constants of a call, and what a frame does to a block of bins.
template <bool Restarts>
class IntegerBins {
 public:
  explicit IntegerBins(const MinimaRecord<int32_t>& r)
      : as_(r.spectrumSmoothing),
        rest_(static_cast<int32_t>(0x7FFFFFFFU - static_cast<uint32_t>(r.spectrumSmoothing))),
        kept_(r.presenceSmoothing * 0x1p-31),
        added_(kOne - r.presenceSmoothing),
        ad_(r.noiseSmoothing),
        ofPresence_((kOne - r.noiseSmoothing) * 0x1p-31) {}

  // Array i of the block begins at p + i pitch.
  template <int N, class Block>
  [[gnu::always_inline]] void track(const int32_t* x, int32_t* p, int32_t pitch, int32_t* noise, Block block) const {
    using W = Lanes<int32_t, N>;
    using L = Lanes<double, N>;
    int32_t *const smoothed = p + pitch, *const m = p + 2 * pitch, *const t = p + 3 * pitch;
    const W power = block.load(x), latest = block.load(t);
    const W s = smoothedQ31(block.load(smoothed), W(as_), power, W(rest_));
    const W minimum = min(Restarts ? latest : block.load(m), s);
    const L kept = as<double>(block.load(p)) * L(kept_);
    const L presence =
        selectLess(as<double>(minimum) * L(static_cast<double>(kMinimumRatio)), as<double>(s), kept + L(added_), kept);
    const L a = L(ad_) + presence * L(ofPresence_);
    const L updated = a * as<double>(block.load(noise)) + (L(kOne) - a) * as<double>(power);
    block.store(s, smoothed);
    block.store(minimum, m);
    block.store(Restarts ? s : min(latest, s), t);
    block.store(nearest(presence), p);
    block.store(nearest(updated * L(0x1p-31)), noise);
  }

 private:
  static constexpr double kOne = 2147483647.0;
  int32_t as_, rest_;
  double kept_, added_, ad_, ofPresence_;
};

template <bool Restarts>
inline void trackBins(const int32_t* x, MCRAState_32s* state, int32_t* noise) {
  constexpr int kWide = std::max(kNativeLanes<double>, 4);
  const IntegerBins<Restarts> bins(state->record);
  forBlocksOfBins(
      state, [=](int32_t * arrays, int32_t first, auto count) __attribute__((always_inline)) {
        int32_t k = 0;
        for (; count - k >= kWide; k += kWide) {
          bins.template track<kWide>(x + first + k, arrays + k, count, noise + first + k, WholeBlock<kWide>());
        }
        for (; count - k >= 4; k += 4) {
          bins.template track<4>(x + first + k, arrays + k, count, noise + first + k, WholeBlock<4>());
        }
        for (; k < count; ++k) bins.template track<4>(x + first + k, arrays + k, count, noise + first + k, OneOfFour());
      });
}

QORSR_IN_GUARDED_MODE inline void trackIntegers(const int32_t* x, MCRAState_32s* state, int32_t* noise, bool restarts) {
  restarts ? trackBins<true>(x, state, noise) : trackBins<false>(x, state, noise);
}
inline void trackNoise(const int32_t* x, MCRAState_32s* state, int32_t* noise, bool restarts) {
  const EnvironmentGuard guard(Rounding::kNearest);
  trackIntegers(x, state, noise, restarts);
}

// ---- The update ----

template <class Number, class State>
inline void beginTracking(const Number* spectrum, State* state, Number* noise) {
  std::memcpy(noise, spectrum, static_cast<std::size_t>(state->record.bins) * sizeof(Number));
  forBlocksOfBins(state, [=](Number* arrays, int32_t first, auto count) {
    for (int32_t k = 0; k < count; ++k) {
      arrays[k] = Number(0);
      for (int i = 1; i < 4; ++i) arrays[i * count + k] = spectrum[first + k];
    }
  });
}

template <class Number, class State>
inline QorStatus updateNoise(const Number* spectrum, State* state, Number* noise) {
  if (QorStatus bad = Checks().null(spectrum, state, noise)) return bad;
  auto& r = state->record;
  if (r.isFirst != 0) {
    beginTracking(spectrum, state, noise);
  } else {
    const bool restarts = r.counter == r.window;
    if (restarts) r.counter = 0;
    trackNoise(spectrum, state, noise, restarts);
  }
  ++r.counter;
  r.isFirst = 0;
  return qorStatusOk;
}

}  // namespace qorsr
