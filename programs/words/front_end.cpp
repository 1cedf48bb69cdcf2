#include "words/front_end.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "common/fault.h"

namespace words {
namespace {

constexpr double coarsestBinHz = 32;
constexpr float referenceRate = 16000;
constexpr float smallestVariance = 1e-6F;
constexpr int trimMargin = 2;

// Regression over two frames on either side (Furui, 1986): sum of k (x(t+k) - x(t-k)), divided by 2 (1 + 4).
constexpr float regressionScale = 0.1F;
constexpr int wholeUtterance = qorDeltaBegin | qorDeltaEnd;
constexpr int fewestFrames = 6;  // what the second derivative needs

int atLeastOne(float value) { return std::max(1, static_cast<int>(std::lround(value))); }

// First and last frame within trimDb of the loudest, with a margin, never fewer than the derivatives need.
std::pair<int, int> endPoints(const std::vector<float>& energies, float trimDb) {
  const int count = static_cast<int>(energies.size());
  if (trimDb <= 0) return {0, count};
  const float threshold = *std::max_element(energies.begin(), energies.end()) - trimDb;
  int first = 0, last = count;
  while (first < count && energies[static_cast<size_t>(first)] < threshold) ++first;
  while (last > first && energies[static_cast<size_t>(last - 1)] < threshold) --last;
  first = std::max(0, std::min(first - trimMargin, count - fewestFrames));
  last = std::min(count, std::max(last + trimMargin, first + fewestFrames));
  return {first, last};
}

}  // namespace

float commonUpperHz(int lowestRate) { return std::min(8000.0F, 0.475F * static_cast<float>(lowestRate)); }

FrontEnd::FrontEnd(const FrontEndOptions& options, int rate, float tract)
    : options_(options),
      rate_(rate),
      frameLength_(atLeastOne(options.frameMs * static_cast<float>(rate) / 1000)),
      hop_(atLeastOne(options.hopMs * static_cast<float>(rate) / 1000)),
      preEmphasis_(options.preEmphasis > 0 ? std::pow(options.preEmphasis, referenceRate / static_cast<float>(rate)) : 0) {
  makeBank(tract);
  makeWindow();
  DCTLifterState_32f* lifter = nullptr;
  const float scale = 1.0F / static_cast<float>(options_.filters);
  program::check(qorsDCTLifterInitAlloc_C0_32f(&lifter, options_.filters, options_.cepstra, options_.lifter, scale, scale),
                 "qorsDCTLifterInitAlloc_C0_32f");
  lifter_.reset(lifter);
}

// The transform is made long enough for the frame, for bins no coarser than coarsestBinHz, and for every filter to have a bin of
// its own.
void FrontEnd::makeBank(float tract) {
  int length = std::max(frameLength_, static_cast<int>(rate_ / coarsestBinHz));
  std::vector<int32_t> centers(static_cast<size_t>(options_.filters) + 2);
  constexpr int longest = 1 << 16;
  while (true) {
    FBankState_32f* bank = nullptr;
    int32_t order = 0;
    program::check(
        qorsMelFBankInitAlloc_32f(&bank, &order, length, static_cast<float>(rate_), options_.lowHz * tract, options_.highHz * tract,
                                  options_.filters, program::melMul, program::melDiv, qorFBankMelShaped | qorFBankTransform),
        "qorsMelFBankInitAlloc_32f");
    bank_.reset(bank);
    transformLength_ = 1 << order;
    program::check(qorsFBankGetCenters_32f(bank, centers.data()), "qorsFBankGetCenters_32f");
    if (std::adjacent_find(centers.begin(), centers.end()) == centers.end()) return;
    if (transformLength_ >= longest) throw program::Fault("too many filters between the lower and the upper frequency");
    length = 2 * transformLength_;
  }
}

// Hamming's window. Its scale makes filter outputs comparable between rates: by the sum of the window, by the width of a bin, and
// by the gain of pre-emphasis, which falls with the rate.
void FrontEnd::makeWindow() {
  window_.resize(static_cast<size_t>(frameLength_));
  double sum = 0;
  for (int i = 0; i < frameLength_; ++i) {
    const double phase = 2 * std::numbers::pi * (i + 0.5) / frameLength_;
    const double value = 0.54 - 0.46 * std::cos(phase);
    window_[static_cast<size_t>(i)] = static_cast<float>(value);
    sum += value;
  }
  const double binHz = static_cast<double>(rate_) / transformLength_;
  const double emphasis = preEmphasis_ > 0 ? static_cast<double>(rate_) / static_cast<double>(referenceRate) : 1.0;
  const float scale = static_cast<float>(binHz * emphasis / sum);
  for (float& value : window_) value *= scale;
  frame_.assign(static_cast<size_t>(transformLength_), 0.0F);
}

int FrontEnd::frameCount(size_t samples) const {
  const auto length = static_cast<size_t>(frameLength_);
  return samples < length ? 0 : static_cast<int>((samples - length) / static_cast<size_t>(hop_)) + 1;
}

void FrontEnd::evaluateFrames(const program::Sound& sound, Analysis& analysis, std::vector<float>& energies) {
  const std::vector<float>& samples = sound.samples;
  emphasised_.resize(samples.size());
  float previous = samples.front();
  for (size_t i = 0; i < samples.size(); ++i) {
    emphasised_[i] = samples[i] - preEmphasis_ * previous;
    previous = samples[i];
  }
  const auto length = static_cast<size_t>(frameLength_);
  for (int f = 0; f < analysis.logMel.rows; ++f) {
    const size_t begin = static_cast<size_t>(f) * static_cast<size_t>(hop_);
    float energy = std::numeric_limits<float>::min();
    for (size_t i = 0; i < length; ++i) {
      energy += samples[begin + i] * samples[begin + i];
      frame_[i] = emphasised_[begin + i] * window_[i];
    }
    energies[static_cast<size_t>(f)] = 10 * std::log10(energy);
    program::check(qorsEvalFBank_32f(frame_.data(), analysis.logMel.row(f), bank_.get()), "qorsEvalFBank_32f");
  }
  std::vector<float>& mel = analysis.logMel.values;
  const float loudest = *std::max_element(mel.begin(), mel.end());
  const float floor = std::max(loudest * std::pow(10.0F, -options_.floorDb / 20), std::numeric_limits<float>::min());
  for (float& value : mel) value = std::log(std::max(value, floor));
}

Analysis FrontEnd::analyse(const program::Sound& sound) {
  const int frames = frameCount(sound.samples.size());
  if (frames < fewestFrames) {
    throw program::BadSound("too short: " + std::to_string(frames) + " frames of " + std::to_string(fewestFrames) + " needed");
  }
  Analysis analysis{Matrix(frames, options_.filters), Matrix(frames, options_.cepstra + 1), 0, {}};
  std::vector<float> energies(static_cast<size_t>(frames));
  evaluateFrames(sound, analysis, energies);
  for (int f = 0; f < frames; ++f) {
    program::check(qorsDCTLifter_32f(analysis.logMel.row(f), analysis.cepstra.row(f), lifter_.get()), "qorsDCTLifter_32f");
  }
  const auto [first, last] = endPoints(energies, options_.trimDb);
  analysis.firstFrame = first;
  analysis.features = derive(analysis, first, last - first);
  normalise(analysis.features);
  return analysis;
}

Matrix FrontEnd::derive(const Analysis& analysis, int first, int count) const {
  const int width = staticWidth(options_);
  Matrix features(count, featureWidth(options_));
  std::vector<float> packed(static_cast<size_t>(count) * static_cast<size_t>(width));
  for (int f = 0; f < count; ++f) {
    const float* row = analysis.cepstra.row(first + f);
    std::copy(row, row + width, packed.begin() + static_cast<std::ptrdiff_t>(f) * width);
  }
  if (options_.deltas == 0) {
    features.values = packed;
  } else if (options_.deltas == 1) {
    program::check(qorsDelta_Win2_32f_D2(packed.data(), width, features.values.data(), features.columns, count, regressionScale,
                                         wholeUtterance),
                   "qorsDelta_Win2_32f_D2");
  } else {
    program::check(qorsDeltaDelta_Win2_32f_D2(packed.data(), width, features.values.data(), features.columns, count,
                                              regressionScale, regressionScale, wholeUtterance),
                   "qorsDeltaDelta_Win2_32f_D2");
  }
  return features;
}

// Columns to mean 0, and, where asked, to variance 1; then the weights.
void FrontEnd::normalise(Matrix& features) const {
  const auto width = static_cast<size_t>(features.columns);
  std::vector<float> means(width), scales(width, 1.0F);
  if (options_.normalise != Normalise::none) {
    std::vector<float> variances(width);
    program::check(qorsMeanVarColumn_32f_D2(features.values.data(), features.rows, features.columns, means.data(), variances.data(),
                                            features.columns),
                   "qorsMeanVarColumn_32f_D2");
    if (options_.normalise == Normalise::variance) {
      for (size_t c = 0; c < width; ++c) scales[c] = 1 / std::sqrt(std::max(variances[c], smallestVariance));
    }
  }
  const auto group = static_cast<size_t>(staticWidth(options_));
  if (options_.energyWeight > 0) scales[group - 1] *= options_.energyWeight;
  for (size_t c = group; c < width; ++c) scales[c] *= c < 2 * group ? options_.deltaWeight : options_.accelerationWeight;
  program::check(qorsNormalizeColumn_32f_D2(features.values.data(), features.columns, features.rows, means.data(), scales.data(),
                                            features.columns),
                 "qorsNormalizeColumn_32f_D2");
}

}  // namespace words
