// Training of whole-word models: segmental k-means of single Gaussians, then expectation maximisation with Gaussians split one by
// one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hidden_markov.h"

namespace words {

struct TrainingOptions {
  int states = 8;              ///< of a word
  int mixtures = 4;            ///< Gaussians of a state at most
  int iterations = 10;         ///< of each stage at most
  int framesPerGaussian = 8;   ///< a Gaussian with fewer than twice as many is not split
  float varianceFloor = 0.7F;  ///< of the variance of all training data
  float shareFloor = 1e-4F;    ///< of mixture weights and arcs
  float splitFactor = 0.2F;    ///< how far the halves of a Gaussian go apart, in standard deviations
  std::vector<double> noises;  ///< copies in noise, so many decibels below the recordings, teach too
  double leastGain = 2e-3;     ///< a stage ends when an iteration gains less, in log likelihood a frame
};

/** One line of the history: the log likelihood of the training data, a frame, under the models as they are. */
struct Iteration {
  std::string stage;  ///< "best path" or "all paths"
  int gaussians = 0;  ///< of all models
  double logLikelihood = 0;
  int floored = 0;  ///< Gaussians all of whose variances stand at the floor
  int starved = 0;  ///< Gaussians that no frame belongs to, left as they were
};

/** The training data of one word. */
struct Lesson {
  std::string word;
  int number = 0;
  std::vector<const Matrix*> utterances;
};

int countGaussians(const WordModels& models);

/** Trains a model for each word. told: called after each iteration. Throws program::Fault for a word with fewer than two
 * recordings, one that is too short for the states, and features that never change. */
WordModels train(const std::vector<Lesson>& lessons, const TrainingOptions& options,
                 const std::function<void(const Iteration&)>& told);

}  // namespace words
