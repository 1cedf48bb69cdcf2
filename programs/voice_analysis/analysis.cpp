#include "analysis.h"

#include <algorithm>
#include <cmath>

#include "common/fault.h"

namespace voice {
namespace {

constexpr double frameSeconds = 0.025;  // of energy and sign changes
constexpr double padding = 0.1;
constexpr size_t lanes = 16;

// In several sums at once, so that they may run side by side.
double meanPower(const float* samples, size_t count) {
  float sums[lanes] = {};
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    for (size_t l = 0; l < lanes; ++l) sums[l] += samples[i + l] * samples[i + l];
  }
  double sum = 0;
  for (; i < count; ++i) sum += static_cast<double>(samples[i] * samples[i]);
  for (const float lane : sums) sum += static_cast<double>(lane);
  return sum / static_cast<double>(count);
}

void measure(const Padded<float>& samples, int rate, Frame& frame) {
  const auto count = static_cast<size_t>(std::max(2.0, frameSeconds * rate));
  const float* const from =
      samples.at(static_cast<std::ptrdiff_t>(std::lround(frame.seconds * rate)) - static_cast<std::ptrdiff_t>(count / 2));
  frame.decibels = static_cast<float>(10 * std::log10(meanPower(from, count) + 1e-12));
  int32_t changes = 0;
  program::check(qorsSignChangeRateXor_32f(from, static_cast<int32_t>(count), &changes), "qorsSignChangeRateXor_32f");
  frame.signChanges = static_cast<float>(changes) * static_cast<float>(rate) / static_cast<float>(count - 1);
}

// The slope of the line through the pitch of the voiced frames, in semitones.
double slopeOf(const std::vector<Frame>& frames) {
  double n = 0, t = 0, y = 0, tt = 0, ty = 0;
  for (const Frame& frame : frames) {
    if (frame.pitch.hertz <= 0) continue;
    const double pitch = 12 * std::log2(static_cast<double>(frame.pitch.hertz)), at = frame.seconds - frames[0].seconds;
    n += 1, t += at, y += pitch, tt += at * at, ty += at * pitch;
  }
  const double spread = n * tt - t * t;
  return n > 2 && spread > 0 ? (n * ty - t * y) / spread : 0;
}

Summary summaryOf(const std::vector<Frame>& frames) {
  Summary summary;
  std::vector<double> pitch, formants[mostFormants];
  for (const Frame& frame : frames) {
    if (frame.pitch.hertz <= 0) continue;
    pitch.push_back(static_cast<double>(frame.pitch.hertz));
    for (size_t k = 0; k < mostFormants; ++k) {
      if (frame.formants[k].hertz > 0) formants[k].push_back(static_cast<double>(frame.formants[k].hertz));
    }
  }
  summary.voicedShare = static_cast<double>(pitch.size()) / static_cast<double>(frames.size());
  summary.medianHz = quantile(pitch, 0.5);
  summary.lowHz = quantile(pitch, 0.05);
  summary.highHz = quantile(pitch, 0.95);
  summary.slope = slopeOf(frames);
  for (size_t k = 0; k < mostFormants; ++k) summary.formants[k] = quantile(formants[k], 0.5);
  return summary;
}

}  // namespace

double quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const double place = share * static_cast<double>(values.size() - 1);
  const auto below = static_cast<size_t>(place), above = std::min(below + 1, values.size() - 1);
  return values[below] + (place - static_cast<double>(below)) * (values[above] - values[below]);
}

Analysis analyse(const program::Sound& recording, const AnalysisOptions& options) {
  const double hop = options.hopMs / 1000;
  const auto count = static_cast<size_t>(recording.seconds() / hop);
  if (count < 1 || recording.samples.size() < 2) throw program::BadSound("shorter than one frame");
  const program::Sound sound = withoutOffset(recording);
  Analysis analysis;
  std::vector<double> middles;
  for (size_t f = 0; f < count; ++f) middles.push_back((static_cast<double>(f) + 0.5) * hop);
  PitchTracker tracker(options.pitch);
  const std::vector<Candidate> pitch = tracker.track(sound, middles, hop);
  const Padded<float> samples = paddedSamples(sound, padding);
  FormantModel model(sound.rate, options.ceilingHz);
  std::vector<std::vector<Resonance>> resonances;
  for (size_t f = 0; f < count; ++f) {
    Frame& frame = analysis.frames.emplace_back();
    frame.seconds = middles[f];
    frame.pitch = pitch[f];
    frame.periodicity = tracker.periodicities()[f];
    measure(samples, sound.rate, frame);
    resonances.push_back(model.resonances(model.fit(samples, middles[f], static_cast<double>(pitch[f].hertz))));
  }
  analysis.formants = model.formants();
  const std::vector<Formants> formants = trackFormants(resonances, model.formants(), model.ceilingHz());
  for (size_t f = 0; f < count; ++f) analysis.frames[f].formants = formants[f];
  analysis.summary = summaryOf(analysis.frames);
  return analysis;
}

size_t loudestFrame(const Analysis& analysis) {
  size_t best = 0;
  const auto rank = [](const Frame& frame) { return frame.decibels + (frame.pitch.hertz > 0 ? 1000.0F : 0.0F); };
  for (size_t f = 1; f < analysis.frames.size(); ++f) {
    if (rank(analysis.frames[f]) > rank(analysis.frames[best])) best = f;
  }
  return best;
}

}  // namespace voice
