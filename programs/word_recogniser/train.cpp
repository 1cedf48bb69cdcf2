#include "train.h"

#include <cstdio>

#include "common/fault.h"
#include "common/files.h"
#include "common/html.h"
#include "common/progress.h"
#include "common/text.h"
#include "model_plots.h"
#include "noise.h"
#include "report.h"

namespace words {
namespace {

using program::fixed;

std::vector<std::string> row(size_t number, const Iteration& iteration) {
  return {std::to_string(number),
          iteration.stage,
          std::to_string(iteration.gaussians),
          fixed(iteration.logLikelihood, 4),
          std::to_string(iteration.floored),
          std::to_string(iteration.starved)};
}

const std::vector<std::string> heading = {"iteration",    "stage",       "Gaussians", "log likelihood a frame",
                                          "at the floor", "without data"};

void print(const std::vector<std::string>& cells) {
  std::printf("%9s  %-10s %9s  %22s  %12s  %12s\n", cells[0].c_str(), cells[1].c_str(), cells[2].c_str(), cells[3].c_str(),
              cells[4].c_str(), cells[5].c_str());
}

std::vector<std::vector<std::string>> table(const std::vector<Iteration>& history) {
  std::vector<std::vector<std::string>> rows = {heading};
  for (size_t i = 0; i < history.size(); ++i) rows.push_back(row(i + 1, history[i]));
  return rows;
}

std::string page(const ModelFile& models, const std::vector<Iteration>& history, const std::string& summary,
                 const Settings& settings, const std::string& problem) {
  std::string body = "<h1>Training of word models</h1>\n<p class=\"dim\">" + program::escaped(summary) + "</p>\n";
  if (problem.empty()) {
    body +=
        "<figure><figcaption>Log likelihood of the training data</figcaption><img src=\"likelihood.png\" "
        "alt=\"likelihood\"></figure>\n"
        "<figure><figcaption>Learned means of the static cepstra, order 0 on top, state by state, from -2 (blue) over 0 "
        "(white) to 2 (red) (" +
        std::to_string(models.words.size()) + " words" +
        (models.words.size() > meansShown ? "; the first " + std::to_string(meansShown) + " are shown" : "") +
        ")</figcaption><img src=\"means.png\" alt=\"means\"></figure>\n";
  } else {
    body += "<p>No pictures: " + program::escaped(problem) + ".</p>\n";
  }
  body += "<div class=\"side\"><div><h2>Iterations</h2>\n" + program::htmlTable(table(history)) + "</div><div><h2>Settings</h2>\n" +
          settingsHtml(settings) + "</div></div>\n";
  return program::htmlPage("Training of word models", body);
}

}  // namespace

std::vector<Matrix> noisyCopies(FrontEnds& frontEnds, const Corpus& corpus, const std::vector<size_t>& recordings,
                                const std::vector<double>& noises) {
  std::vector<Matrix> copies;
  for (const double noise : noises) {
    for (const size_t r : recordings) {
      program::stopIfInterrupted();
      copies.push_back(frontEnds.analyse(noisySound(corpus.recordings[r], noise)).features);
    }
  }
  return copies;
}

std::vector<Lesson> lessonsOf(const Corpus& corpus, const std::vector<Matrix>& features, const std::vector<size_t>& recordings,
                              const std::vector<Matrix>& copies, bool onlyTaught) {
  std::vector<Lesson> lessons;
  for (size_t w = 0; w < corpus.words.size(); ++w) lessons.push_back({corpus.words[w], static_cast<int>(w), {}});
  const auto wordOf = [&](size_t recording) { return static_cast<size_t>(corpus.wordNumber(corpus.recordings[recording].word)); };
  for (const size_t r : recordings) lessons[wordOf(r)].utterances.push_back(&features[r]);
  for (size_t i = 0; i < copies.size(); ++i) lessons[wordOf(recordings[i % recordings.size()])].utterances.push_back(&copies[i]);
  if (onlyTaught) std::erase_if(lessons, [](const Lesson& lesson) { return lesson.utterances.empty(); });
  return lessons;
}

void trainCommand(TrainOptions options) {
  Corpus corpus = openCorpus(options.common.corpus, options.common.quiet);
  settle(options.frontEnd, corpus);
  program::WholeFile modelFile(options.model, "model file");
  program::ReportFolder folder(options.common.report);
  FrontEnds frontEnds(options.frontEnd);
  program::Stopwatch frontEndWatch, trainingWatch;
  const std::vector<Matrix> features = analyseAll(frontEnds, corpus, options.common.quiet, frontEndWatch);
  const std::vector<size_t> recordings = half(corpus, options.split).templates;
  const std::vector<Matrix> copies =
      frontEndWatch.time([&] { return noisyCopies(frontEnds, corpus, recordings, options.training.noises); });
  const std::vector<Lesson> lessons = lessonsOf(corpus, features, recordings, copies, false);

  std::vector<Iteration> history;
  ModelFile models{options.frontEnd, corpus.words, {}};
  {
    program::Progress progress("training", 0, options.common.quiet);
    models.models = trainingWatch.time([&] {
      return train(lessons, options.training, [&](const Iteration& iteration) {
        history.push_back(iteration);
        progress.step(iteration.stage + ", " + std::to_string(iteration.gaussians) + " Gaussians, log likelihood a frame " +
                      fixed(iteration.logLikelihood, 4));
      });
    });
  }
  const std::string summary =
      std::to_string(models.words.size()) + " models of " + std::to_string(options.training.states) + " states with " +
      std::to_string(countGaussians(models.models)) + " Gaussians, from " + std::to_string(recordings.size()) + " recordings" +
      (copies.empty() ? "" : " and " + std::to_string(copies.size()) + " copies in noise") + ", in " +
      fixed(trainingWatch.seconds(), 2) + " s of processor time (front-end " + fixed(frontEndWatch.seconds(), 2) + " s)";
  std::string problem =
      options.common.pictures > 0 ? drawHistory(folder.path() / "likelihood.png", history) : "none were asked for";
  if (problem.empty()) problem = drawMeans(folder.path() / "means.png", models);
  program::stopIfInterrupted();
  for (const auto& cells : table(history)) print(cells);
  std::printf("\n%s\n", summary.c_str());
  Settings settings = described(options.frontEnd);
  for (const auto& setting : described(options.training)) settings.push_back(setting);
  program::writeFile(folder.path() / "iterations.tsv", program::tabSeparated(table(history)));
  program::writeFile(folder.path() / "index.html", page(models, history, summary, settings, problem));
  modelFile.write(textOf(models));
  modelFile.publish();
  std::printf("models     %s\n", program::printable(options.model.string()).c_str());
  program::publish(folder, options.common.pictures > 0 ? problem : "");
}

}  // namespace words
