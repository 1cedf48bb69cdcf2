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
#include <cstdint>
#include <cstring>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/unsigned_products.h"
#include "qorsr.h"

namespace qorsr {

// The arrays of a state lie behind its record, each of so many bins: probability of speech, smoothed power, minimum, and minimum since
// the last restart. Smoothing constants are floats, or have 31 fraction bits.
template <class Number>
struct MinimaRecord {
  int32_t bins, window, counter, isFirst;
  Number noiseSmoothing, presenceSmoothing, spectrumSmoothing;
};

template <class Number>
struct MinimaArrays {
  Number *presence, *smoothed, *minimum, *latest;
};

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
static_assert(sizeof(MCRAState_32f) + 16 * (kShortestTransform / 2 + 1) <= minimaBytes(kShortestTransform));

template <class State>
inline auto arraysOf(State* state) {
  using Number = decltype(state->record.noiseSmoothing);
  auto* const first = reinterpret_cast<Number*>(state + 1);
  const int32_t bins = state->record.bins;
  return MinimaArrays<Number>{first, first + bins, first + 2 * bins, first + 3 * bins};
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
  return {rate.length / 2 + 1, static_cast<int32_t>(frames * 125.0F), 0, 1, power(0.7), power(0.2), power(0.8)};
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
  return {rate.length / 2 + 1,        static_cast<int32_t>(frames * 125 >> 15), 0, 1, exponentialSeries(kLn07, t), presence,
          exponentialSeries(kLn08, t)};
}

template <class State>
inline void fillMinima(State* state, const FrameRate& rate) {
  state->record = minimaRecord(rate, decltype(state->record.noiseSmoothing)());
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

template <bool Restarts>
inline void trackBins(const float* x, const MinimaArrays<float>& to, float* noise, const MinimaRecord<float>& r) {
  coverColumnsOnce<float, kOneRegister<float>>(
      r.bins, [&](int32_t k, auto n) __attribute__((always_inline)) {
        using L = Lanes<float, n>;
        const L one(1.0F), as(r.spectrumSmoothing), ap(r.presenceSmoothing), ad(r.noiseSmoothing);
        const L power = L::load(x + k), s = as * L::load(to.smoothed + k) + (one - as) * power, latest = L::load(to.latest + k);
        const L minimum = Restarts ? min(s, latest) : min(L::load(to.minimum + k), s);
        const L kept = ap * L::load(to.presence + k);
        const L presence = selectLess(L(kMinimumRatio) * minimum, s, kept + (one - ap), kept);
        const L a = ad + (one - ad) * presence;
        s.store(to.smoothed + k);
        minimum.store(to.minimum + k);
        (Restarts ? s : min(latest, s)).store(to.latest + k);
        presence.store(to.presence + k);
        (a * L::load(noise + k) + (one - a) * power).store(noise + k);
      });
}

inline void trackNoise(const float* x, const MinimaArrays<float>& to, float* noise, const MinimaRecord<float>& r, bool restarts) {
  restarts ? trackBins<true>(x, to, noise, r) : trackBins<false>(x, to, noise, r);
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

// Integers that one block of doubles holds.
inline constexpr int kMinimaBlock = std::max(kNativeLanes<double>, 4);

// One block of bins, in the constants of a call.
template <bool Restarts>
class IntegerBlock {
 public:
  explicit IntegerBlock(const MinimaRecord<int32_t>& r)
      : as_(r.spectrumSmoothing),
        rest_(static_cast<int32_t>(kMost - static_cast<uint32_t>(r.spectrumSmoothing))),
        keptPresence_(r.presenceSmoothing * 0x1p-31),
        added_(kLargest - r.presenceSmoothing),
        ad_(r.noiseSmoothing),
        ofPresence_((kLargest - r.noiseSmoothing) * 0x1p-31) {}

  // load(p) and store(lanes, p) read and write the block at p, or the part of it that exists.
  template <class Load, class Store>
  [[gnu::always_inline]] void operator()(const int32_t* x, const MinimaArrays<int32_t>& to, int32_t* noise, const Load& load,
                                         const Store& store) const {
    using W = Lanes<int32_t, kMinimaBlock>;
    using L = Lanes<double, kMinimaBlock>;
    const W power = load(x), s = smoothedQ31(load(to.smoothed), W(as_), power, W(rest_)), latest = load(to.latest);
    const W minimum = min(Restarts ? latest : load(to.minimum), s);
    const L kept = as<double>(load(to.presence)) * L(keptPresence_);
    const L presence = selectLess(as<double>(minimum) * L(kRatio), as<double>(s), kept + L(added_), kept);
    const L a = L(ad_) + presence * L(ofPresence_);
    const L updated = a * as<double>(load(noise)) + (L(kLargest) - a) * as<double>(power);
    store(s, to.smoothed);
    store(minimum, to.minimum);
    store(Restarts ? s : min(latest, s), to.latest);
    store(nearest(presence), to.presence);
    store(nearest(updated * L(0x1p-31)), noise);
  }

 private:
  static constexpr uint32_t kMost = 0x7FFFFFFF;
  static constexpr double kLargest = 2147483647.0, kRatio = static_cast<double>(kMinimumRatio);

  int32_t as_, rest_;
  double keptPresence_, added_, ad_, ofPresence_;
};

template <bool Restarts>
inline void trackBins(const int32_t* x, const MinimaArrays<int32_t>& to, int32_t* noise, const MinimaRecord<int32_t>& r) {
  using W = Lanes<int32_t, kMinimaBlock>;
  const IntegerBlock<Restarts> block(r);
  const auto at = [&](int32_t k) { return MinimaArrays<int32_t>{to.presence + k, to.smoothed + k, to.minimum + k, to.latest + k}; };
  int32_t k = 0;
  for (; r.bins - k >= kMinimaBlock; k += kMinimaBlock) {
    block(
        x + k, at(k), noise + k, [](const int32_t* p) { return W::load(p); }, [](const W& v, int32_t* p) { v.store(p); });
  }
  if (k == r.bins) return;
  const Tail<int32_t, kMinimaBlock> tail(r.bins - k);
  block(
      x + k, at(k), noise + k, [&](const int32_t* p) { return tail.load(p); }, [&](const W& v, int32_t* p) { tail.store(v, p); });
}

QORSR_IN_GUARDED_MODE inline void trackIntegers(const int32_t* x, const MinimaArrays<int32_t>& to, int32_t* noise,
                                                const MinimaRecord<int32_t>& r, bool restarts) {
  restarts ? trackBins<true>(x, to, noise, r) : trackBins<false>(x, to, noise, r);
}
inline void trackNoise(const int32_t* x, const MinimaArrays<int32_t>& to, int32_t* noise, const MinimaRecord<int32_t>& r,
                       bool restarts) {
  const EnvironmentGuard guard(Rounding::kNearest);
  trackIntegers(x, to, noise, r, restarts);
}

// ---- The update ----

template <class Number>
inline void beginTracking(const Number* spectrum, const MinimaArrays<Number>& to, Number* noise, int32_t bins) {
  const auto bytes = static_cast<std::size_t>(bins) * sizeof(Number);
  std::memset(to.presence, 0, bytes);
  for (Number* array : {to.smoothed, to.minimum, to.latest, noise}) std::memcpy(array, spectrum, bytes);
}

template <class Number, class State>
inline QorStatus updateNoise(const Number* spectrum, State* state, Number* noise) {
  if (QorStatus bad = Checks().null(spectrum, state, noise)) return bad;
  auto& r = state->record;
  const auto arrays = arraysOf(state);
  if (r.isFirst != 0) {
    beginTracking(spectrum, arrays, noise, r.bins);
  } else {
    const bool restarts = r.counter == r.window;
    if (restarts) r.counter = 0;
    trackNoise(spectrum, arrays, noise, r, restarts);
  }
  ++r.counter;
  r.isFirst = 0;
  return qorStatusOk;
}

}  // namespace qorsr
