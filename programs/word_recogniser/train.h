// Sub-command "train": word models from recordings, into a model file.
#pragma once

#include <filesystem>
#include <vector>

#include "options.h"
#include "training.h"
#include "words/feature_set.h"

namespace words {

struct TrainOptions {
  CommonOptions common;
  SplitOptions split;
  FrontEndOptions frontEnd;
  TrainingOptions training;
  std::filesystem::path model = "words.model";
};

/** Trains, shows the likelihood of each iteration, writes the model file and a report. Throws program::Fault where it cannot. */
void trainCommand(TrainOptions options);

/** Copies of recordings in noise, so many decibels below them: as many as recordings, for each of the noises in turn. */
std::vector<Matrix> noisyCopies(FrontEnds& frontEnds, const Corpus& corpus, const std::vector<size_t>& recordings,
                                const std::vector<double>& noises);

/** The training data: one lesson a word of the corpus, from the recordings that the trial teaches with and their copies. Words
 * without any are left out where that is asked for. */
std::vector<Lesson> lessonsOf(const Corpus& corpus, const std::vector<Matrix>& features, const std::vector<size_t>& recordings,
                              const std::vector<Matrix>& copies, bool onlyTaught);

}  // namespace words
