// New parameters of hidden Markov models from data: from frames that were assigned to states, from expected counts, and by
// splitting.
#pragma once

#include <array>
#include <vector>

#include "hidden_markov.h"

namespace words {

/** What keeps estimates from degenerating. */
struct Floors {
  std::vector<float> variances;  ///< a floor a feature
  float weight = 0;              ///< of mixture weights and of the probabilities of arcs
};

/** How many Gaussians took the floor in all variances, and how many had no data and were left as they were. */
struct Warnings {
  int floored = 0, starved = 0;
};

/** What one mixture is estimated from: for each Gaussian the expected number of its frames, and their first and second moments
 * about the mean that it has. */
struct MixtureSums {
  explicit MixtureSums(const Mixture& mixture);

  Matrix first, second;
  std::vector<float> counts;
};

/** What one word's model is estimated from. */
struct WordSums {
  explicit WordSums(const WordModel& model);

  double logLikelihood = 0;  ///< of the recordings, over all paths
  std::vector<MixtureSums> states;
  std::vector<std::array<float, WordModel::arcs>> arcCounts;
};

/** Expectation: adds a recording to the sums. */
void expect(const WordModel& model, const Matrix& features, WordSums& sums);

/** Maximisation: the parameters that make the sums most likely. */
void maximise(WordModel& model, const WordSums& sums, const Floors& floors, Warnings& warnings);

/** One Gaussian a state, from the frames that a best path gives it. */
void estimateFromPaths(WordModel& model, const std::vector<const Matrix*>& utterances, const std::vector<Path>& paths,
                       const Floors& floors, Warnings& warnings);

/** The Gaussian of the greatest count becomes two, where it has enough frames for both. Whether it was split. */
bool split(Mixture& mixture, const std::vector<float>& counts, float factor, int framesPerGaussian);

/** Rows of the same width as one matrix. */
Matrix stacked(const std::vector<const float*>& rows, int width);

}  // namespace words
