#include "words/feature_set.h"

#include <algorithm>
#include <utility>

#include "common/fault.h"
#include "common/progress.h"
#include "common/text.h"

namespace words {
namespace {

void nameSkipped(const Corpus& corpus, size_t from) {
  for (size_t i = from; i < corpus.skipped.size(); ++i) program::tellSkipped(corpus.skipped[i]);
  if (corpus.recordings.empty()) throw program::Fault(program::allSkipped(corpus.skipped));
}

}  // namespace

Analysis FrontEnds::analyse(const program::Sound& sound, float tract) {
  const std::pair key(sound.rate, tract);
  auto place = made_.find(key);
  if (place == made_.end()) place = made_.emplace(key, FrontEnd(options_, sound.rate, tract)).first;
  return place->second.analyse(sound);
}

Corpus openCorpus(const std::filesystem::path& folder, bool quiet) {
  Corpus corpus = readCorpus(folder, quiet);
  nameSkipped(corpus, 0);
  return corpus;
}

void settle(FrontEndOptions& options, const Corpus& corpus, float longestTract) {
  if (options.cepstra > options.filters) throw program::Fault("more cepstra than filters");
  const int lowest = corpus.lowestRate();
  if (options.highHz <= 0) options.highHz = commonUpperHz(lowest) / std::max(1.0F, longestTract);
  if (2 * options.highHz * longestTract > static_cast<float>(lowest)) {
    throw program::Fault("the upper end of the mel bank, " + program::fixed(static_cast<double>(options.highHz * longestTract), 0) +
                         " Hz, is above half the lowest rate of the corpus, " + std::to_string(lowest) + " Hz");
  }
  if (options.lowHz >= options.highHz) throw program::Fault("the lower end of the mel bank is not below its upper end");
}

std::vector<Matrix> analyseAll(FrontEnds& frontEnds, Corpus& corpus, bool quiet, program::Stopwatch& watch) {
  std::vector<Matrix> features;
  std::vector<Recording> kept;
  const size_t skipped = corpus.skipped.size();
  {
    program::Progress progress("front-end", corpus.recordings.size(), quiet);
    for (Recording& recording : corpus.recordings) {
      try {
        features.push_back(watch.time([&] { return frontEnds.analyse(recording.sound).features; }));
        kept.push_back(std::move(recording));
      } catch (const program::BadSound& bad) {
        corpus.skipped.push_back({recording.file.filename().string(), bad.what()});
      }
      progress.step();
    }
  }
  corpus.recordings = std::move(kept);
  nameSkipped(corpus, skipped);
  return features;
}

}  // namespace words
