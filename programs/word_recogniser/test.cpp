#include "test.h"

#include <algorithm>

#include "common/fault.h"
#include "common/progress.h"
#include "common/text.h"
#include "model_file.h"
#include "noise.h"
#include "plots.h"
#include "report.h"
#include "training.h"
#include "words/feature_set.h"

namespace words {
namespace {

// The words of the models join those of the corpus, and the models take the numbers of the joint vocabulary.
void joinVocabularies(Corpus& corpus, ModelFile& models) {
  for (const std::string& word : models.words) corpus.addWord(word);
  for (int& word : models.models.words) word = corpus.wordNumber(models.words[static_cast<size_t>(word)]);
}

size_t dropUnknown(const Corpus& corpus, const ModelFile& models, std::vector<size_t>& tests) {
  return std::erase_if(tests, [&](size_t r) {
    return std::find(models.words.begin(), models.words.end(), corpus.recordings[r].word) == models.words.end();
  });
}

// Seconds at which the best path through a word's model changes its state.
std::vector<double> boundaries(const ModelFile& models, int word, const Analysis& analysis) {
  std::vector<double> result;
  for (size_t m = 0; m < models.models.models.size(); ++m) {
    const WordModel& model = models.models.models[m];
    if (models.models.words[m] != word || !WordModel::canPass(model.size(), analysis.features.rows)) continue;
    const Path path = bestPath(model, stateScores(model, analysis.features));
    for (size_t t = 1; t < path.states.size(); ++t) {
      if (path.states[t] == path.states[t - 1]) continue;
      const double frame = analysis.firstFrame + static_cast<double>(t) - 0.5;
      result.push_back((frame * static_cast<double>(models.frontEnd.hopMs) + static_cast<double>(models.frontEnd.frameMs) / 2) /
                       1000);
    }
  }
  return result;
}

// Each chosen utterance twice: with the states of the recognised word and with those of the next one.
std::vector<Picture> drawPictures(const program::ReportFolder& folder, const Run& run, FrontEnds& frontEnds,
                                  const ModelFile& models, const TestOptions& options, std::string& problem) {
  const std::vector<const Result*> chosen = chooseForPictures(run, static_cast<size_t>(options.common.pictures));
  std::vector<Picture> pictures;
  if (chosen.empty()) return pictures;
  program::Progress progress("pictures", chosen.size(), options.common.quiet);
  for (const Result* result : chosen) {
    const Recording& recording = run.corpus.recordings[result->recording];
    const Decision& d = result->decision;
    const Analysis analysis = frontEnds.analyse(recording.sound);
    const std::string image = "utterance" + std::to_string(pictures.size() + 1) + ".png";
    problem = drawPair(
        folder.path() / image,
        {recording.name + " as " + heardWord(run.corpus, d.word), recording.sound, analysis, boundaries(models, d.word, analysis)},
        {"as " + heardWord(run.corpus, d.secondWord), recording.sound, analysis, boundaries(models, d.secondWord, analysis)},
        models.frontEnd);
    if (!problem.empty()) break;
    pictures.push_back({result, image});
    progress.step();
  }
  return pictures;
}

std::vector<Result> recogniseAll(const Run& run, const std::vector<Matrix>& features, const ModelFile& models, bool quiet,
                                 Speed& speed) {
  std::vector<Result> results;
  program::Stopwatch watch;
  program::Progress progress("matching", run.trials.front().tests.size(), quiet);
  for (const size_t r : run.trials.front().tests) {
    results.push_back({r, watch.time([&] { return models.models.recognise(features[r]); })});
    speed.speech += run.corpus.recordings[r].sound.seconds();
    progress.step();
  }
  speed.work = watch.seconds();
  return results;
}

}  // namespace

void testCommand(const TestOptions& options) {
  ModelFile models = readModels(options.model);
  Corpus corpus = openCorpus(options.common.corpus, options.common.quiet);
  settle(models.frontEnd, corpus);
  program::ReportFolder folder(options.common.report);
  if (options.noise) addNoise(corpus, *options.noise);
  FrontEnds frontEnds(models.frontEnd);
  program::Stopwatch watch;
  const std::vector<Matrix> features = analyseAll(frontEnds, corpus, options.common.quiet, watch);
  joinVocabularies(corpus, models);

  Run run(corpus);
  run.method = "hidden Markov models";
  run.scoreName = "log likelihood";
  run.teachers =
      std::to_string(models.words.size()) + " models with " + std::to_string(countGaussians(models.models)) + " Gaussians";
  run.splitText = describedTests(options.split);
  if (options.noise) run.splitText += ", noise " + program::fixed(*options.noise, 1) + " dB below the words";
  run.pictureText =
      "Left with the states of the recognised word, right with those of the next one (vertical lines): waveform (cut ends shaded), "
      "mel spectrogram, cepstra.";
  run.settings = described(models.frontEnd);
  run.trials = {half(corpus, options.split)};
  run.trials.front().templates.clear();
  run.untaught = dropUnknown(corpus, models, run.trials.front().tests);
  if (run.trials.front().tests.empty())
    throw program::Fault("no recording is left to be recognised: choose others, or other models");
  run.frontEnd = {corpus.seconds(), watch.seconds()};
  run.results = recogniseAll(run, features, models, options.common.quiet, run.matching);
  const Score counts = score(corpus, run.results);
  std::string problem;
  const std::vector<Picture> pictures = drawPictures(folder, run, frontEnds, models, options, problem);
  program::stopIfInterrupted();
  printTable(run, counts);
  writeReport(folder, run, counts, pictures, problem);
  program::publish(folder, problem);
}

}  // namespace words
