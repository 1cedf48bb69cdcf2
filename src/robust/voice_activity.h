// Speech or not, frame by frame: three measures, each beside a threshold that follows its own slow tracker, then the longest run of
// active frames among the last seven, and two hangovers.
//
//   variance  mean of squares - square of the mean, of 64 values       energy  (sum of 25 bands)^2 - 3
//   spectrum  3/4 c + 1/4 of the c before, c the mean of bands 1 to 3
//
// Float and integer members are one algorithm over two sets of fractions. Sums of floats: 64 values in sixteen lanes; 25 bands in eight,
// the last band behind them; all joined by halves. Integer sums are exact.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/lanes.h"
#include "qorsr.h"

namespace qorsr {

inline constexpr int32_t kActivityBytes = 64;  // of the caller's block

// What a stream keeps. Number: float, or int32_t. Packed, since a caller's block may begin at any address; worked on in place, for in a
// copy the wide loads of the next call wait for the narrow stores of this one (1.1 to 1.8 times slower; voice_activity).
template <class Number>
struct [[gnu::packed]] ActivityRecord {
  Number energyMean, energy, spectrum, variance;  // trackers
  Number previousCentre;                          // c of the frame before
  int32_t jumped;                                 // the energy once jumped in the first frames
  int32_t ring;                                   // the last seven frames, one bit each, the newest in bit 0
  int32_t place;                                  // of the newest entry, 0 to 6: tells the end of a flush
  int32_t flushMark;                              // the place where the flush began; -1 before
  int32_t hangover;                               // what the long counter begins with
  int32_t longCounter, shortCounter;              // frames of hangover left
  int32_t frames;
};

}  // namespace qorsr

struct [[gnu::packed]] VADState_Aurora_32f : qorsr::ActivityRecord<float> {};
struct [[gnu::packed]] VADState_Aurora_16s : qorsr::ActivityRecord<int32_t> {};
static_assert(sizeof(VADState_Aurora_32f) <= qorsr::kActivityBytes && sizeof(VADState_Aurora_16s) == sizeof(VADState_Aurora_32f));

namespace qorsr {

inline constexpr int32_t kFrameValues = 64, kBandsSummed = 25;
inline constexpr int32_t kFirstDecided = 11, kTrackersRise = 15, kFirstBurstEnds = 36;  // frame numbers, from 1
inline constexpr int32_t kRing = 7, kHangover = 23, kLaterHangover = 40, kShortHangover = 5, kActiveCount = 5;

// ---- Trackers ----

// Part of a number: f x in float; of integers rounded down.
struct RealShare {
  float factor;
  float operator()(float x) const { return factor * x; }
};
struct WholeShare {
  int64_t numerator;
  int shift;
  int64_t operator()(int64_t x) const { return (numerator * x) >> shift; }
};

// How a tracker t and the threshold follow a measure m.
template <class Share>
struct Threshold {
  Share below, above;  // m within these shares of t: t becomes kept(t) + taken(m)
  Share kept, taken;
  Share sinks;  // m at or below this share of t: t becomes keptInSinking(t) + takenInSinking(m)
  Share keptInSinking, takenInSinking;
  Share active;  // a frame is active above this share of t
  bool sinksAtEquality;

  template <class Number, class Measure>
  bool update(Number& tracker, Measure m) const {
    if (m < below(tracker) && m > above(tracker)) tracker = static_cast<Number>(kept(tracker) + taken(m));
    if (m < sinks(tracker) || (sinksAtEquality && m == sinks(tracker))) {
      tracker = static_cast<Number>(keptInSinking(tracker) + takenInSinking(m));
    }
    return m > active(tracker);
  }
};

template <class Number, class Measure>
inline Number larger(Number tracker, Measure m) {
  return m > static_cast<Measure>(tracker) ? static_cast<Number>(m) : tracker;
}

// ---- Measures ----

struct RealActivity {
  using Number = float;
  using Element = float;

  static constexpr Threshold<RealShare> kVariance = {{1.5F}, {0.85F}, {0.8F}, {0.2F}, {0.25F}, {0.97F}, {0.03F}, {1.65F}, false};
  static constexpr Threshold<RealShare> kEnergy = {{1.5F}, {0.75F}, {0.8F}, {0.2F}, {0.5F}, {0.97F}, {0.03F}, {1.65F}, true};
  static constexpr Threshold<RealShare> kSpectrum = {{1.5F}, {0.75F}, {0.8F}, {0.2F}, {0.5F}, {0.97F}, {0.03F}, {3.25F}, true};

  static float variance(const float* frame) {
    using L = Lanes<float, 16>;
    L sum = L::load(frame), squares = sum * sum;
    for (int i = 16; i < kFrameValues; i += 16) {
      const L x = L::load(frame + i);
      sum += x;
      squares += x * x;
    }
    const float s = joinHalves(sum);
    return joinHalves(squares) * 0.015625F - s * s * 0.00024414063F;
  }
  static float energy(const float* bands) {
    using L = Lanes<float, 8>;
    const float s = joinHalves(L::load(bands) + L::load(bands + 8) + L::load(bands + 16)) + bands[24];
    return s * s - 3.0F;
  }
  static float centre(const float* bands) { return (bands[1] + bands[2] + bands[3]) / 3.0F; }
  static float spectrum(float centre, float previous) { return 0.75F * centre + 0.25F * previous; }
  static float mean(float mean, float energy, int32_t frames) {
    return (static_cast<float>(frames - 1) * mean + energy) * 1.1F / static_cast<float>(frames);
  }
  static bool jumps(float energy, float mean) { return energy / mean > 2.5F; }
};

// required: fractions of integers, which differ a little from those of floats; the variance is not divided, and it sinks by the whole
// measure. What is stored wraps to 32 bits.
struct WholeActivity {
  using Number = int32_t;
  using Element = int16_t;

  static constexpr Threshold<WholeShare> kVariance = {{48, 5}, {27, 5}, {26, 5}, {6, 5}, {8, 5}, {31, 5}, {1, 0}, {53, 5}, false};
  static constexpr Threshold<WholeShare> kEnergy = {{192, 7}, {96, 7}, {102, 7}, {26, 7}, {64, 7},
                                                    {124, 7}, {1, 5},  {211, 7}, true};
  static constexpr Threshold<WholeShare> kSpectrum = {{48, 5},  {24, 5}, {102, 7}, {26, 7}, {16, 5},
                                                      {124, 7}, {1, 5},  {416, 7}, true};

  static int64_t variance(const int16_t* frame) {
    constexpr int kOne = kNativeLanes<int16_t>;
    using L = Lanes<int16_t, kOne>;
    using Sums = Lanes<uint32_t, kOne / 2>;
    // Two squares fit 32 unsigned bits. Their sum modulo 2^32, and that of their upper halves: what the lower halves add is small.
    Lanes<int32_t, kOne / 2> sum(0);
    Sums squares(0), upper(0);
    for (int i = 0; i < kFrameValues; i += kOne) {
      const L x = L::load(frame + i);
      const auto two = as<uint32_t>(pairDots(x, x));
      sum += pairDots(x, L(1));
      squares += two;
      upper += two >> 16;
    }
    const int64_t s = joinHalves(sum), upperHalves = int64_t{joinHalves(upper)} << 16;
    const auto lowerHalves = static_cast<uint32_t>(joinHalves(squares) - static_cast<uint32_t>(upperHalves));
    return (upperHalves + lowerHalves) * kFrameValues - s * s;
  }
  static int64_t energy(const int16_t* bands) {
    int32_t s = 0;
    for (int i = 0; i < kBandsSummed; ++i) s += bands[i];
    return wrapSub(wrapMul(s, s), 3);
  }
  static int32_t centre(const int16_t* bands) { return (bands[1] + bands[2] + bands[3]) * 341; }
  static int64_t spectrum(int32_t centre, int32_t previous) {
    return ((int64_t{centre} * 24) >> 5) + ((int64_t{previous} * 8) >> 5);
  }
  static int64_t mean(int64_t mean, int64_t energy, int32_t frames) { return ((frames - 1) * mean + energy) * 141 / frames >> 7; }
  static bool jumps(int64_t energy, int64_t mean) { return mean != 0 && energy * 128 / mean > 320; }
};

// ---- Decisions ----

constexpr bool hasRunOf3(int32_t ring) { return (ring & ring >> 1 & ring >> 2) != 0; }
constexpr bool hasRunOf4(int32_t ring) { return (ring & ring >> 1 & ring >> 2 & ring >> 3) != 0; }

// A count of frames stays at its end, where no rule asks for it any more.
constexpr int32_t nextFrame(int32_t frames) { return frames == INT32_MAX ? frames : frames + 1; }

template <class Number>
inline void advance(ActivityRecord<Number>& v, int32_t entering) {
  v.ring = (v.ring << 1 & ((1 << kRing) - 1)) | entering;
  v.place = v.place + 1 == kRing ? 0 : v.place + 1;
}

// Whether one of the three measures of the frame lies above its threshold.
template <class Activity, class Number, class Element>
inline bool measures(ActivityRecord<Number>& v, const Element* bands, const Element* frame) {
  const bool rising = v.frames < kTrackersRise;
  const auto variance = Activity::variance(frame);
  Number tracker = rising ? larger(Number(v.variance), variance) : v.variance;
  bool active = Activity::kVariance.update(tracker, variance);
  v.variance = tracker;

  const auto energy = Activity::energy(bands);
  tracker = v.frames == 1 ? static_cast<Number>(energy) : v.energy;
  if (rising) {
    v.energyMean = static_cast<Number>(Activity::mean(v.energyMean, energy, v.frames));
    if (Activity::jumps(energy, v.energyMean)) v.jumped = 1;
    if (v.jumped == 0) tracker = larger(tracker, energy);
  }
  active |= Activity::kEnergy.update(tracker, energy);
  v.energy = tracker;

  const Number centre = Activity::centre(bands);
  const auto spectrum = Activity::spectrum(centre, v.previousCentre);
  v.previousCentre = centre;
  tracker = rising ? larger(Number(v.spectrum), spectrum) : v.spectrum;
  active |= Activity::kSpectrum.update(tracker, spectrum);
  v.spectrum = tracker;
  return active;
}

// The decision of a frame, from the ring and the hangovers.
template <class Number>
inline int32_t decided(ActivityRecord<Number>& v) {
  if (hasRunOf4(v.ring)) {
    v.longCounter = v.hangover;
    if (v.frames < kFirstBurstEnds) v.hangover = kLaterHangover;
  }
  if (hasRunOf3(v.ring)) {
    v.shortCounter = kShortHangover;
    return qorVADSpeech;
  }
  if (v.longCounter != 0) v.longCounter = wrapSub(v.longCounter, 1);
  if (v.shortCounter != 0) v.shortCounter = wrapSub(v.shortCounter, 1);
  return v.longCounter == 0 && v.shortCounter == 0 ? qorVADNoSpeech : qorVADSpeech;
}

// The same at the end of a stream. required: the counters fall in every frame, and below 0.
template <class Number>
inline int32_t decidedInFlush(ActivityRecord<Number>& v) {
  int32_t left = v.longCounter;
  if (hasRunOf4(v.ring)) {
    left = v.hangover;
    if (v.frames < kFirstBurstEnds) v.hangover = kLaterHangover;
  }
  const bool run = hasRunOf3(v.ring);
  v.longCounter = wrapSub(left, 1);
  v.shortCounter = wrapSub(run ? kShortHangover : v.shortCounter, 1);
  return v.longCounter < 1 && v.shortCounter < 1 && !run ? qorVADNoSpeech : qorVADSpeech;
}

// ---- Members ----

inline QorStatus activitySize(int32_t* size) {
  if (QorStatus bad = Checks().null(size)) return bad;
  *size = kActivityBytes;
  return qorStatusOk;
}

template <class Number>
inline QorStatus initActivity(ActivityRecord<Number>* v) {
  if (QorStatus bad = Checks().null(v)) return bad;
  *v = {};
  v->flushMark = -1;
  v->hangover = kHangover;
  return qorStatusOk;
}

template <class Activity>
inline QorStatus decideActivity(const typename Activity::Element* bands, const typename Activity::Element* frame,
                                int32_t activityCount, int32_t* decision, ActivityRecord<typename Activity::Number>* v) {
  if (QorStatus bad = Checks().null(bands, frame, decision, v)) return bad;
  v->frames = nextFrame(v->frames);
  const bool active = measures<Activity>(*v, bands, frame) || activityCount >= kActiveCount;
  if (v->frames < kFirstDecided) {
    *decision = qorVADUndecided;
    return qorStatusOk;
  }
  advance(*v, active ? 1 : 0);
  *decision = decided(*v);
  return qorStatusOk;
}

template <class Number>
inline QorStatus flushActivity(int32_t* decision, ActivityRecord<Number>* v) {
  if (QorStatus bad = Checks().null(decision, v)) return bad;
  v->frames = nextFrame(v->frames);
  if (v->flushMark == -1) v->flushMark = v->place;
  advance(*v, v->ring >> (kRing - 1));  // nothing is written: the oldest entry stands as the newest
  *decision = v->place == v->flushMark || v->frames < kFirstDecided ? qorVADUndecided : decidedInFlush(*v);
  return qorStatusOk;
}

}  // namespace qorsr
