// The features of a whole corpus, whatever the rates of its recordings.
#pragma once

#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "common/stopwatch.h"
#include "words/corpus.h"
#include "words/front_end.h"

namespace words {

/** One front-end a sample rate and stretch of the vocal tract, made when it is first needed. */
class FrontEnds {
 public:
  explicit FrontEnds(const FrontEndOptions& options) : options_(options) {}
  Analysis analyse(const program::Sound& sound, float tract = 1);

 private:
  FrontEndOptions options_;
  std::map<std::pair<int, float>, FrontEnd> made_;
};

/** Reads a corpus; names on stderr what was skipped. Throws Fault when nothing remains. */
Corpus openCorpus(const std::filesystem::path& folder, bool quiet);

/** Checks the options against each other and the corpus, and sets the upper frequency where it was left open. longestTract: the
 * greatest stretch that will be used. Throws Fault. */
void settle(FrontEndOptions& options, const Corpus& corpus, float longestTract = 1);

/** The features of every recording, in the order of Corpus::recordings. Recordings that are too short leave the corpus, join
 *  Corpus::skipped and are named on stderr. watch: processor time. Throws Fault when nothing remains. */
std::vector<Matrix> analyseAll(FrontEnds& frontEnds, Corpus& corpus, bool quiet, program::Stopwatch& watch);

}  // namespace words
