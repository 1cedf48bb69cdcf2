#include "pitch.h"

#include <algorithm>
#include <cmath>

#include "common/fault.h"
#include "common/progress.h"

namespace voice {
namespace {

using program::check;

constexpr double windowSeconds = 0.036;    // of the stretches that are compared
constexpr double repeatedSeconds = 0.007;  // short periods must repeat for about so long
constexpr double cornerHz = 1000;          // of the harmonics that are kept, at least
constexpr double leastCoarseRate = 4000;
constexpr size_t mostCandidates = 8;
constexpr double quietDecibels = 20;  // below the loudest frame; farther below a frame must correlate more to be voiced,
constexpr double quietCost = 0.05;    // by so much a decibel
constexpr float wholeShare = 0.35F;   // of the whole signal in the correlation that speaks for a candidate
constexpr double octaveCost = 0.03;   // in correlation: of a lag twice as long
constexpr double jumpCost = 0.35, onsetCost = 0.14;  // of an octave, of a change of voicing, at frames of 10 ms

std::ptrdiff_t placeOf(double seconds, double rate) { return static_cast<std::ptrdiff_t>(std::lround(seconds * rate)); }

// The first samples of two stretches of a length that lie a lag apart, evenly about the middle.
struct Pair {
  const int16_t *first, *second;
  int length;

  Pair(const Padded<int16_t>& signal, double rate, double middle, int lag) : length(static_cast<int>(windowSeconds * rate)) {
    first = signal.at(placeOf(middle, rate) - (length + lag) / 2);
    second = first + lag;
  }
  float correlation() const {
    float value = 0;
    check(qorsCrossCorrCoeff_16s32f(first, second, length, &value), "qorsCrossCorrCoeff_16s32f");
    return value;
  }
};

float rootMeanSquare(const int16_t* samples, int count) {
  double sum = 0;
  for (int i = 0; i < count; ++i) sum += static_cast<double>(samples[i]) * samples[i];
  return static_cast<float>(std::sqrt(sum / count));
}

}  // namespace

// The best whole lag near one of the thinned-out signal, and its place between the samples.
Candidate PitchTracker::refined(const Harmonics& harmonics, double middle, int coarseLag) const {
  int best = 0;
  float correlation = -1;
  for (int lag = (coarseLag - 1) * harmonics.step; lag <= (coarseLag + 1) * harmonics.step; ++lag) {
    const float value = Pair(harmonics.fine, harmonics.rate, middle, lag).correlation();
    if (value > correlation) best = lag, correlation = value;
  }
  double exact = best;
  for (const int lag : {best - 1, best}) {
    const Pair pair(harmonics.fine, harmonics.rate, middle, lag);
    float position = -1, value = -1;
    check(qorsCrossCorrCoeffInterpolation_16s32f(pair.first, pair.second, pair.length, &position, &value),
          "qorsCrossCorrCoeffInterpolation_16s32f");
    if (position >= 0 && position < 1 && value > correlation) exact = lag + static_cast<double>(position), correlation = value;
  }
  // Noise that was low-passed may correlate at short lags, but not at a multiple of them, nor all of it.
  const double period = exact / harmonics.rate;
  const int multiple = static_cast<int>(std::lround(std::max(1.0, repeatedSeconds / period)));
  if (multiple > 1) {
    const int lag = static_cast<int>(std::lround(multiple * exact));
    correlation = std::min(correlation, Pair(harmonics.fine, harmonics.rate, middle, lag).correlation());
  }
  const float whole = Pair(harmonics.whole, harmonics.rate, middle, static_cast<int>(std::lround(exact))).correlation();
  return {static_cast<float>(harmonics.rate / exact), wholeShare * whole + (1 - wholeShare) * std::min(correlation, 1.0F)};
}

PitchTracker::Frame PitchTracker::analyse(const Harmonics& harmonics, double middle, float loudest) {
  const double rate = harmonics.coarseRate;
  const int first = std::max(2, static_cast<int>(rate / static_cast<double>(options_.highestHz)));
  const int last = static_cast<int>(std::ceil(rate / static_cast<double>(options_.lowestHz))) + 1;
  correlations_.clear();
  for (int lag = first - 1; lag <= last; ++lag) correlations_.push_back(Pair(harmonics.coarse, rate, middle, lag).correlation());
  peaks_.resize(correlations_.size());
  check(qorsFindPeaks_32f8u(correlations_.data(), peaks_.data(), static_cast<int32_t>(correlations_.size()), 1, 0),
        "qorsFindPeaks_32f8u");
  std::vector<std::pair<float, int>> found;
  for (size_t i = 1; i + 1 < peaks_.size(); ++i) {
    const int lag = first - 1 + static_cast<int>(i);
    if (peaks_[i] != 0) found.emplace_back(correlations_[i] - static_cast<float>(octaveCost * std::log2(lag)), lag);
  }
  const size_t kept = std::min(mostCandidates, found.size());
  std::partial_sort(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(kept), found.end(), std::greater<>());
  Frame frame;
  frame.candidates.push_back({});
  for (size_t i = 0; i < kept; ++i) {
    const Candidate candidate = refined(harmonics, middle, found[i].second);
    if (candidate.hertz >= options_.lowestHz && candidate.hertz <= options_.highestHz) frame.candidates.push_back(candidate);
  }
  const int length = static_cast<int>(windowSeconds * rate);
  const float loudness = rootMeanSquare(harmonics.coarse.at(placeOf(middle, rate) - length / 2), length);
  const double below = 20 * std::log10(static_cast<double>(loudest) / (static_cast<double>(loudness) + 1e-3)) - quietDecibels;
  frame.unvoiced = options_.voicing + static_cast<float>(quietCost * std::max(0.0, below));
  return frame;
}

// The share of the energy that repeats. The library takes at most 16 periods of the shortest and at least one of the longest.
float PitchTracker::periodicity(const Harmonics& harmonics, double middle) {
  const double rate = harmonics.coarseRate;
  const int shortest = std::max(6, static_cast<int>(rate / static_cast<double>(options_.highestHz)));
  const int length = std::min(16 * shortest, 1024);
  const int longest = std::min(static_cast<int>(rate / static_cast<double>(options_.lowestHz)), length - 1);
  if (longest <= shortest) return 0;
  segment_.resize(static_cast<size_t>(length));
  const int16_t* const from = harmonics.coarse.at(placeOf(middle, rate) - length / 2);
  std::copy(from, from + length, segment_.begin());
  float best = 0;
  int32_t period = 0;
  check(qorsPeriodicityLSPE_32f(segment_.data(), length, &best, &period, longest, shortest), "qorsPeriodicityLSPE_32f");
  return best;
}

// What speaks for a candidate. High ones are preferred a little, since a multiple of the period correlates as well.
float PitchTracker::gain(const Candidate& candidate, const Frame& frame) const {
  if (candidate.hertz <= 0) return frame.unvoiced;
  return candidate.correlation - static_cast<float>(octaveCost) * std::log2(options_.highestHz / candidate.hertz);
}

std::vector<Candidate> PitchTracker::track(const program::Sound& sound, const std::vector<double>& middles, double hop) {
  const double padding = windowSeconds + 2.5 / static_cast<double>(options_.lowestHz);
  const double corner = std::max(cornerHz, 1.8 * static_cast<double>(options_.highestHz));
  const Harmonics harmonics = harmonicsOf(sound, corner, leastCoarseRate * corner / cornerHz, padding);
  const int length = static_cast<int>(windowSeconds * harmonics.coarseRate);
  float loudest = 1;
  for (const double middle : middles) {
    loudest = std::max(loudest, rootMeanSquare(harmonics.coarse.at(placeOf(middle, harmonics.coarseRate) - length / 2), length));
  }
  std::vector<Frame> frames;
  periodicities_.clear();
  for (const double middle : middles) {
    program::stopIfInterrupted();
    frames.push_back(analyse(harmonics, middle, loudest));
    periodicities_.push_back(periodicity(harmonics, middle));
  }
  // The path of the greatest gain.
  const auto perFrame = static_cast<float>(hop / 0.01);
  std::vector<std::vector<int>> from(frames.size());
  std::vector<float> best, next;
  for (size_t f = 0; f < frames.size(); ++f) {
    next.clear();
    for (const Candidate& candidate : frames[f].candidates) {
      float highest = f == 0 ? 0 : -1e30F;
      int origin = 0;
      for (size_t b = 0; f > 0 && b < best.size(); ++b) {
        const Candidate& before = frames[f - 1].candidates[b];
        const bool voiced = candidate.hertz > 0, wasVoiced = before.hertz > 0;
        float cost = voiced != wasVoiced ? static_cast<float>(onsetCost) : 0;
        if (voiced && wasVoiced) cost = static_cast<float>(jumpCost) * std::fabs(std::log2(candidate.hertz / before.hertz));
        if (best[b] - cost / perFrame > highest) highest = best[b] - cost / perFrame, origin = static_cast<int>(b);
      }
      next.push_back(highest + gain(candidate, frames[f]));
      from[f].push_back(origin);
    }
    best.swap(next);
  }
  std::vector<Candidate> path(frames.size());
  auto at = frames.empty() ? 0 : static_cast<int>(std::max_element(best.begin(), best.end()) - best.begin());
  for (size_t f = frames.size(); f-- > 0;) {
    path[f] = frames[f].candidates[static_cast<size_t>(at)];
    at = from[f][static_cast<size_t>(at)];
  }
  return path;
}

}  // namespace voice
