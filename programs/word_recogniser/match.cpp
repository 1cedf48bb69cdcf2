#include "match.h"

#include <algorithm>
#include <cstdio>

#include "common/fault.h"
#include "common/progress.h"
#include "common/stopwatch.h"
#include "common/text.h"
#include "plots.h"
#include "report.h"
#include "words/feature_set.h"

namespace words {
namespace {

float longestOf(const std::vector<float>& tracts) {
  return tracts.empty() ? 1.0F : std::max(1.0F, *std::max_element(tracts.begin(), tracts.end()));
}

// Copies of the templates as speakers of other vocal tracts would say them.
class TemplateCopies {
 public:
  TemplateCopies(const Run& run, FrontEnds& frontEnds, const std::vector<float>& tracts, program::Stopwatch& watch) {
    const std::vector<bool> wanted = templatesOf(run.corpus, run.trials);
    for (const float tract : tracts) {
      std::vector<Matrix>& copies = stretched_.emplace_back(wanted.size());
      for (size_t r = 0; r < wanted.size(); ++r) {
        if (!wanted[r]) continue;
        program::stopIfInterrupted();
        const program::Sound& sound = run.corpus.recordings[r].sound;
        copies[r] = watch.time([&] { return frontEnds.analyse(sound, tract).features; });
        seconds_ += sound.seconds();
      }
    }
  }

  void add(Templates& templates, int word, size_t r) const {
    for (const std::vector<Matrix>& copies : stretched_) templates.add(word, r, copies[r]);
  }
  double seconds() const { return seconds_; }

 private:
  std::vector<std::vector<Matrix>> stretched_;
  double seconds_ = 0;
};

std::vector<Result> recogniseAll(const Run& run, const std::vector<Matrix>& features, const TemplateCopies& copies,
                                 const MatchOptions& options, Speed& speed) {
  const std::vector<Recording>& recordings = run.corpus.recordings;
  size_t tests = 0;
  for (const Trial& trial : run.trials) tests += trial.tests.size();
  std::vector<Result> results;
  program::Stopwatch watch;
  program::Progress progress("matching", tests, options.common.quiet);
  for (const Trial& trial : run.trials) {
    Templates templates(options.warp);
    for (const size_t r : trial.templates) {
      const int word = run.corpus.wordNumber(recordings[r].word);
      templates.add(word, r, features[r]);
      copies.add(templates, word, r);
    }
    for (const size_t r : trial.tests) {
      results.push_back({r, watch.time([&] { return templates.recognise(features[r]); })});
      speed.speech += recordings[r].sound.seconds();
      progress.step();
    }
  }
  speed.work = watch.seconds();
  return results;
}

// Draws the chosen utterances; on the first failure it says why once and gives up.
std::vector<Picture> drawPictures(const program::ReportFolder& folder, const Run& run, FrontEnds& frontEnds,
                                  const MatchOptions& options, std::string& problem) {
  const std::vector<const Result*> chosen = chooseForPictures(run, static_cast<size_t>(options.common.pictures));
  std::vector<Picture> pictures;
  if (chosen.empty()) return pictures;
  program::Progress progress("pictures", chosen.size(), options.common.quiet);
  for (const Result* result : chosen) {
    const Recording& left = run.corpus.recordings[result->recording];
    const Recording& right = run.corpus.recordings[*result->decision.nearest];
    const Analysis leftAnalysis = frontEnds.analyse(left.sound), rightAnalysis = frontEnds.analyse(right.sound);
    const std::string image = "utterance" + std::to_string(pictures.size() + 1) + ".png";
    problem = drawPair(folder.path() / image, {left.name, left.sound, leftAnalysis, {}},
                       {"nearest: " + right.name, right.sound, rightAnalysis, {}}, options.frontEnd);
    if (!problem.empty()) break;
    pictures.push_back({result, image});
    progress.step();
  }
  return pictures;
}

}  // namespace

void match(MatchOptions options) {
  Corpus corpus = openCorpus(options.common.corpus, options.common.quiet);
  settle(options.frontEnd, corpus, longestOf(options.tracts));
  program::ReportFolder folder(options.common.report);

  FrontEnds frontEnds(options.frontEnd);
  program::Stopwatch watch;
  const std::vector<Matrix> features = analyseAll(frontEnds, corpus, options.common.quiet, watch);

  Run run(corpus);
  run.byTemplates = true;
  run.method = "template matching";
  run.scoreName = "distance";
  run.splitText = described(options.split);
  run.pictureText =
      "Left the utterance, right the nearest template of the recognised word, on one time axis: waveform (cut ends shaded), mel "
      "spectrogram, cepstra.";
  run.settings = described(options.frontEnd);
  for (const auto& setting : described(options.warp)) run.settings.push_back(setting);
  for (const float tract : options.tracts) {
    run.settings.emplace_back("vocal tract", program::fixed(static_cast<double>(tract), 2));
  }
  run.trials = split(corpus, options.split, run.untaught);
  run.teachers = countedTemplates(corpus, run.trials);
  const TemplateCopies copies(run, frontEnds, options.tracts, watch);
  run.frontEnd = {corpus.seconds() + copies.seconds(), watch.seconds()};
  run.results = recogniseAll(run, features, copies, options, run.matching);
  const Score counts = score(corpus, run.results);
  std::string problem;
  const std::vector<Picture> pictures = drawPictures(folder, run, frontEnds, options, problem);
  program::stopIfInterrupted();
  printTable(run, counts);
  writeReport(folder, run, counts, pictures, problem);
  program::publish(folder, problem);
}

}  // namespace words
