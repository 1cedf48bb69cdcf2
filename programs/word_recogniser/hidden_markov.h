// Whole-word hidden Markov models with mixtures of diagonal Gaussians: scores, best paths and occupancies.
//
// A model runs from left to right through its states. From a state an arc stays, goes to the next one, or skips one; a path begins
// in the first state and ends by an arc that leaves the last.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "results.h"
#include "words/front_end.h"

namespace words {

/** The densities of a state. */
struct Mixture {
  Matrix means, variances;     ///< a Gaussian a row
  std::vector<float> weights;  ///< they sum to 1

  int count() const { return means.rows; }
  /** Brings inverse variances and constants up to date; to be called after every change. */
  void prepare();

  Matrix inverseVariances;
  std::vector<float> constants;  ///< log weight minus half the normalisation of the Gaussian
};

struct WordModel {
  static constexpr int arcs = 3;  ///< stay, next, skip

  std::vector<Mixture> states;
  std::vector<std::array<float, arcs>> arcWeights;  ///< probabilities, a state a row

  int size() const { return static_cast<int>(states.size()); }
  /** Whether a path from the first of so many states to the end can have so few frames. */
  static bool canPass(int states, int frames) { return (arcs - 1) * frames >= states; }
};

/** Log likelihoods of the frames: a row a state, a column a frame. */
Matrix stateScores(const WordModel& model, const Matrix& features);
/** The same for the Gaussians of one state: a row a Gaussian, weights included. */
Matrix gaussianScores(const Mixture& mixture, const Matrix& features);

struct Path {
  double logLikelihood = 0;
  std::vector<int> states;  ///< of each frame
};

/** The best path by dynamic programming (Viterbi). The model must be able to pass so many frames. */
Path bestPath(const WordModel& model, const Matrix& scores);

/** Probabilities of states and arcs over all paths, by the forward-backward algorithm. */
struct Occupancies {
  double logLikelihood = 0;
  Matrix states;                                         ///< a row a state, a column a frame
  std::vector<std::array<float, WordModel::arcs>> arcs;  ///< expected counts
};

Occupancies occupancies(const WordModel& model, const Matrix& scores);

/** The vocabulary: word numbers and their models. */
struct WordModels {
  std::vector<int> words;
  std::vector<WordModel> models;

  /** Best word by the best path; scores are log likelihoods a frame. */
  Decision recognise(const Matrix& features) const;
};

}  // namespace words
