// The pitch of a voice, frame by frame.
//
// Candidates are the peaks of the normalised cross-correlation between a stretch of the low-passed signal and the one a lag later,
// both lying evenly about the frame's middle: first in the thinned-out signal at every lag, then at the full rate, where the best lag
// is refined between two samples. A path through the candidates of all frames by dynamic programming weighs their correlations against
// jumps (Talkin, "A robust algorithm for pitch tracking", 1995; Boersma, "Accurate short-term analysis of the fundamental frequency",
// 1993).
#pragma once

#include <vector>

#include "signal.h"

namespace voice {

struct PitchOptions {
  float lowestHz = 50, highestHz = 600;
  float voicing = 0.4F;  ///< correlation from which a frame is voiced
};

struct Candidate {
  float hertz = 0;        ///< 0: the frame is unvoiced
  float correlation = 0;  ///< at this lag, mean of the low-passed signal's and of the whole one's
};

class PitchTracker {
 public:
  explicit PitchTracker(const PitchOptions& options) : options_(options) {}

  /** The candidate of each frame that the best path takes. middles: of the frames, in seconds; hop: between them. */
  std::vector<Candidate> track(const program::Sound& sound, const std::vector<double>& middles, double hop);

  /** Least-squares periodicity of the frames of the last track, from 0 to 1: how much of the energy repeats with some period. */
  const std::vector<float>& periodicities() const { return periodicities_; }

 private:
  struct Frame {
    std::vector<Candidate> candidates;  ///< the first one is unvoiced
    float unvoiced = 0;                 ///< what speaks for an unvoiced frame
  };

  Frame analyse(const Harmonics& harmonics, double middle, float loudest);
  Candidate refined(const Harmonics& harmonics, double middle, int lag) const;
  float periodicity(const Harmonics& harmonics, double middle);
  float gain(const Candidate& candidate, const Frame& frame) const;

  PitchOptions options_;
  std::vector<float> periodicities_;
  std::vector<float> correlations_, segment_;
  std::vector<unsigned char> peaks_;
};

}  // namespace voice
