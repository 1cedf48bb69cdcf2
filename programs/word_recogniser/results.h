// What came out of a run: every utterance with its decision, and the counts that tables and pages show.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "words/corpus.h"

namespace words {

/** What was recognised, by whatever means. */
struct Decision {
  int word = -1, secondWord = -1;    ///< best and second best; -1: nothing fits at all
  float score = 0, secondScore = 0;  ///< a distance or a log likelihood, a frame
  std::optional<size_t> nearest;     ///< where templates decide: the recording that is the nearest one of the best word
};

struct Result {
  size_t recording;  ///< of Corpus::recordings
  Decision decision;
};

struct Tally {
  size_t right = 0, all = 0;
  void count(bool isRight) {
    right += isRight ? 1 : 0;
    ++all;
  }
};

/** Counts over all results. confusion[said][heard]; the last column counts what was not recognised at all. */
struct Score {
  Tally all;
  std::vector<Tally> byWord, bySpeaker;
  std::vector<std::vector<size_t>> confusion;
};

bool isRight(const Corpus& corpus, const Result& result);
/** The word of a decision; "(nothing)" when nothing fits. */
std::string heardWord(const Corpus& corpus, int word);
Score score(const Corpus& corpus, const std::vector<Result>& results);

}  // namespace words
