// Scores of all senones of a model for a feature vector.
#pragma once

#include <cstddef>
#include <vector>

#include "acoustic_model.h"

namespace senones {

/** It holds work space, so one thread uses it at a time. The model must outlive it. */
class Scorer {
 public:
  /** top: so many best densities of each codebook count. */
  Scorer(const AcousticModel& model, int top);

  /** Scores all Gaussians for a feature vector and keeps the best of each codebook and stream. */
  void rank(const float* features);

  /** scores[senone] = sum over the streams of log(sum over the densities kept of weight * N(x; mean, variance)). */
  void combine(float* scores);

  const AcousticModel& model() const { return model_; }

 private:
  struct Density {
    size_t number;
    float score;
  };

  void selectBest(const float* scores, Density* best) const;
  void mix(const Stream& stream, const Density* best);

  const AcousticModel& model_;
  size_t top_;
  std::vector<float> gaussians_;               ///< scores of one stream
  std::vector<Density> best_;                  ///< [stream][codebook][rank]
  std::vector<float> mixture_, term_, total_;  ///< of the senones in the model's order
};

}  // namespace senones
