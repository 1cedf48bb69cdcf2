#include "compare.h"

#include <algorithm>
#include <cstdio>

#include "common/fault.h"
#include "common/files.h"
#include "common/html.h"
#include "common/progress.h"
#include "common/text.h"
#include "model_plots.h"
#include "noise.h"
#include "report.h"
#include "train.h"
#include "words/feature_set.h"

namespace words {
namespace {

using program::fixed;
using program::percent;

// Tests under one condition: how often each method was right.
struct Row {
  std::string split, noise;
  Tally templates, models, noisyModels;
};

std::string noiseName(double decibels) { return fixed(decibels, 0) + " dB"; }

class Comparison {
 public:
  Comparison(const CompareOptions& options, const Corpus& corpus, FrontEnds& frontEnds, const std::vector<Matrix>& features)
      : options_(options), corpus_(corpus), frontEnds_(frontEnds), features_(features) {}

  std::vector<Row> run(const SplitOptions& split) const {
    size_t untaught = 0, tests = 0;
    const std::vector<Trial> trials = words::split(corpus_, split, untaught);
    std::vector<Row> rows = {{described(split), "none", {}, {}, {}}};
    for (const double noise : options_.noises) rows.push_back({described(split), noiseName(noise), {}, {}, {}});
    for (const Trial& trial : trials) tests += trial.tests.size();
    program::Progress progress("comparing", tests, options_.common.quiet);
    for (const Trial& trial : trials) {
      if (!trial.tests.empty()) recogniseTrial(trial, rows, progress);
    }
    return rows;
  }

 private:
  void recogniseTrial(const Trial& trial, std::vector<Row>& rows, program::Progress& progress) const {
    Templates templates(options_.warp);
    for (const size_t r : trial.templates) templates.add(corpus_.wordNumber(corpus_.recordings[r].word), r, features_[r]);
    const WordModels models = trained(trial, {}), noisyModels = trained(trial, options_.noises);
    for (const size_t r : trial.tests) {
      const Recording& recording = corpus_.recordings[r];
      const int said = corpus_.wordNumber(recording.word);
      for (size_t i = 0; i < rows.size(); ++i) {
        const Matrix noisy = i == 0 ? Matrix() : frontEnds_.analyse(noisySound(recording, options_.noises[i - 1])).features;
        const Matrix& features = i == 0 ? features_[r] : noisy;
        rows[i].templates.count(templates.recognise(features).word == said);
        rows[i].models.count(models.recognise(features).word == said);
        rows[i].noisyModels.count(noisyModels.recognise(features).word == said);
      }
      progress.step();
    }
  }

  // Models of the recordings that teach, and of their copies in noise.
  WordModels trained(const Trial& trial, const std::vector<double>& noises) const {
    const std::vector<Matrix> copies = noisyCopies(frontEnds_, corpus_, trial.templates, noises);
    return train(lessonsOf(corpus_, features_, trial.templates, copies, true), options_.training,
                 [](const Iteration&) { program::stopIfInterrupted(); });
  }

  const CompareOptions& options_;
  const Corpus& corpus_;
  FrontEnds& frontEnds_;
  const std::vector<Matrix>& features_;
};

const std::vector<std::string> heading = {"split", "noise", "templates", "models", "noisy models", "tests"};

std::vector<std::string> cells(const Row& row) {
  return {row.split,
          row.noise,
          percent(row.templates.right, row.templates.all),
          percent(row.models.right, row.models.all),
          percent(row.noisyModels.right, row.noisyModels.all),
          std::to_string(row.models.all)};
}

void print(const std::vector<Row>& rows) {
  size_t width = 0;
  for (const Row& row : rows) width = std::max(width, row.split.size());
  const auto line = [width](const std::vector<std::string>& c) {
    std::printf("%-*s  %6s  %10s  %10s  %12s  %6s\n", static_cast<int>(width), c[0].c_str(), c[1].c_str(), c[2].c_str(),
                c[3].c_str(), c[4].c_str(), c[5].c_str());
  };
  line(heading);
  for (const Row& row : rows) line(cells(row));
}

double shareOf(const Tally& tally) { return 100.0 * static_cast<double>(tally.right) / static_cast<double>(tally.all); }

std::string draw(const std::filesystem::path& png, const std::vector<Row>& rows, size_t conditions) {
  std::vector<std::string> names;
  std::vector<AccuracyCurve> curves;
  for (size_t i = 0; i < conditions; ++i) names.push_back(rows[i].noise == "none" ? "clean" : rows[i].noise);
  for (size_t first = 0; first < rows.size(); first += conditions) {
    AccuracyCurve templates{"templates: " + rows[first].split, {}}, models{"models: " + rows[first].split, {}},
        noisyModels{"noisy models: " + rows[first].split, {}};
    for (size_t i = first; i < first + conditions; ++i) {
      templates.percent.push_back(shareOf(rows[i].templates));
      models.percent.push_back(shareOf(rows[i].models));
      noisyModels.percent.push_back(shareOf(rows[i].noisyModels));
    }
    curves.push_back(templates);
    curves.push_back(models);
    curves.push_back(noisyModels);
  }
  return drawAccuracies(png, names, curves);
}

void write(const program::ReportFolder& folder, const std::vector<Row>& rows, const CompareOptions& options,
           const std::string& problem) {
  std::vector<std::vector<std::string>> table = {heading};
  Settings settings;
  for (const Row& row : rows) table.push_back(cells(row));
  for (const auto& list : {described(options.frontEnd), described(options.warp), described(options.training)}) {
    settings.insert(settings.end(), list.begin(), list.end());
  }
  std::string body =
      "<h1>Templates and word models side by side</h1>\n<p class=\"dim\">White noise is added to the tests, so many decibels "
      "below their mean power; templates and models know clean recordings only, noisy models also copies of them in the same sorts "
      "of noise.</p>\n" +
      program::htmlTable(table);
  body += problem.empty() ? "<figure><img src=\"accuracy.png\" alt=\"accuracy\"></figure>\n"
                          : "<p>No picture: " + program::escaped(problem) + ".</p>\n";
  body += "<h2>Settings</h2>\n" + settingsHtml(settings);
  program::writeFile(folder.path() / "comparison.tsv", program::tabSeparated(table));
  program::writeFile(folder.path() / "index.html", program::htmlPage("Templates and word models", body));
}

}  // namespace

void compareCommand(CompareOptions options) {
  Corpus corpus = openCorpus(options.common.corpus, options.common.quiet);
  settle(options.frontEnd, corpus);
  program::ReportFolder folder(options.common.report);
  FrontEnds frontEnds(options.frontEnd);
  program::Stopwatch watch;
  const std::vector<Matrix> features = analyseAll(frontEnds, corpus, options.common.quiet, watch);
  const Comparison comparison(options, corpus, frontEnds, features);
  std::vector<Row> rows = comparison.run(options.split);
  const size_t conditions = rows.size();
  if (options.split.leaveOut.empty() && corpus.speakers.size() > 1) {
    SplitOptions leftOut;
    leftOut.leaveOut = "each";
    for (const Row& row : comparison.run(leftOut)) rows.push_back(row);
  }
  const std::string problem =
      options.common.pictures > 0 ? draw(folder.path() / "accuracy.png", rows, conditions) : "none was asked for";
  program::stopIfInterrupted();
  print(rows);
  write(folder, rows, options, problem);
  program::publish(folder, options.common.pictures > 0 ? problem : "");
}

}  // namespace words
