// Power spectra of windowed stretches of a recording.
#pragma once

#include <vector>

#include "common/filter_bank.h"
#include "signal.h"

namespace voice {

class Spectrum {
 public:
  /** A window of so many seconds, Hann's. */
  Spectrum(int rate, double windowSeconds);

  /** |X(k)|^2 of bins 0 to half the transform's length, around the middle, in seconds. The first and the last one, which lie at
   * frequencies without interest to speech, are 0. */
  const std::vector<float>& evaluate(const Padded<float>& samples, double middle);

  double binHz() const { return rate_ / length_; }
  double windowSeconds() const { return static_cast<double>(window_.size()) / rate_; }

 private:
  double rate_;
  int length_ = 1;  ///< of the transform
  program::FilterBank bank_;
  std::vector<float> window_, frame_, power_;
};

}  // namespace voice
