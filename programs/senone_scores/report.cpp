#include "report.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

#include "common/files.h"
#include "common/html.h"
#include "common/progress.h"
#include "common/text.h"
#include "plots.h"

namespace senones {
namespace {

using program::escaped;
using program::fixed;

constexpr size_t tabulatedBest = 12;  // senones a recording

std::string modelText(const AcousticModel& model) {
  std::string widths;
  for (const Stream& stream : model.streams) widths += (widths.empty() ? "" : ", ") + std::to_string(stream.width);
  return std::to_string(model.codebooks) + " codebooks x " + std::to_string(model.streams.size()) + " streams x " +
         std::to_string(model.densities) + " densities of " + widths + " elements; " + std::to_string(model.senones.size()) +
         " senones of " + std::to_string(model.phones.size()) + " phones; " + std::to_string(model.floored) +
         " variances raised to the floor";
}

std::string speedText(const Run& run) {
  const double speech = run.speechSeconds();
  return fixed(run.gaussiansASecond() / 1e6, 0) + " million Gaussians a second, " +
         program::timesRealTime(speech, run.gaussianSeconds) + "; with mixture weights " +
         program::timesRealTime(speech, run.gaussianSeconds + run.mixtureSeconds) + "; front-end " +
         program::timesRealTime(speech, run.frontEndSeconds);
}

// What feat.params leaves open, and the programs that wrote it may have done.
std::string leftOut(const Parameters& parameters) {
  std::string unnamed;
  for (const auto& [name, meaning] :
       {std::pair("dither", "dither"), std::pair("remove_noise", "suppression of stationary noise")}) {
    if (parameters.count(name) == 0) unnamed += (unnamed.empty() ? "" : " and ") + std::string(meaning);
  }
  return "Left out of the features: " + (unnamed.empty() ? "" : unnamed + ", which feat.params does not name; ") +
         "-cmninit, which batch normalisation does not use.";
}

std::string pictureOf(const Recording& recording) { return recording.name + ".png"; }
std::string tableOf(const Recording& recording) { return recording.name + ".tsv"; }

std::string phoneText(const AcousticModel& model, const Recording& recording) {
  std::string text;
  for (const Stretch& s : stretches(model, recording, leastStretch)) {
    text += (text.empty() ? "" : " ") + model.phones[static_cast<size_t>(s.phone)];
  }
  return text;
}

std::string stateName(const AcousticModel& model, int senone) {
  const Definition::Senone& s = model.senones[static_cast<size_t>(senone)];
  return model.phones[static_cast<size_t>(s.phone)] + "." + std::to_string(s.state);
}

// The best senones of every frame, tab-separated.
std::string bestTable(const Run& run, const Recording& recording) {
  std::vector<std::vector<std::string>> rows = {{"seconds"}};
  for (int i = 0; i < recording.bestCount; ++i) rows[0].insert(rows[0].end(), {"senone", "state", "score"});
  auto best = recording.best.begin();
  for (int f = 0; f < recording.features.frames; ++f) {
    std::vector<std::string>& row = rows.emplace_back();
    row.push_back(fixed((f * run.settings.hop + 0.5 * run.settings.frame) / run.settings.rate, 4));
    for (int i = 0; i < recording.bestCount; ++i, ++best) {
      row.insert(row.end(),
                 {std::to_string(best->senone), stateName(run.model, best->senone), fixed(static_cast<double>(best->score), 3)});
    }
  }
  return program::tabSeparated(rows);
}

// The senones that were the best of most frames.
std::string frequentHtml(const Run& run, const Recording& recording) {
  std::map<int, std::pair<int, double>> found;  // senone: frames, sum of scores
  for (size_t i = 0; i < recording.best.size(); i += static_cast<size_t>(recording.bestCount)) {
    auto& [frames, sum] = found[recording.best[i].senone];
    ++frames;
    sum += static_cast<double>(recording.best[i].score);
  }
  std::vector<std::pair<int, std::pair<int, double>>> sorted(found.begin(), found.end());
  std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.second.first > b.second.first; });
  std::vector<std::vector<std::string>> rows = {{"senone", "phone and state", "frames as the best", "mean log likelihood"}};
  for (const auto& [senone, tally] : sorted) {
    if (rows.size() > tabulatedBest) break;
    rows.push_back(
        {std::to_string(senone), stateName(run.model, senone), std::to_string(tally.first), fixed(tally.second / tally.first, 2)});
  }
  return program::htmlTable(rows);
}

std::string recordingHtml(const Run& run, const Recording& recording, bool pictured) {
  const std::string name = escaped(recording.name);
  std::string body = "<h2>" + name + "</h2>\n<p class=\"dim\">" + escaped(recording.file.string()) + ", " +
                     fixed(recording.sound.seconds(), 2) + " s, " + std::to_string(recording.features.frames) +
                     " frames</p>\n<p>Phones that hold the best senone for at least " + std::to_string(leastStretch) +
                     " frames: <b>" + escaped(phoneText(run.model, recording)) + "</b></p>\n";
  if (pictured)
    body += "<figure><img src=\"" + program::address(pictureOf(recording)) + "\" alt=\"scores of " + name +
            "\" loading=\"lazy\"></figure>\n";
  return body + frequentHtml(run, recording) + "<p><a href=\"" + program::address(tableOf(recording)) + "\">Best " +
         std::to_string(recording.bestCount) + " senones of every frame</a></p>\n";
}

}  // namespace

double Run::speechSeconds() const {
  double seconds = 0;
  for (const Recording& recording : recordings) seconds += recording.sound.seconds();
  return seconds;
}

double Run::gaussiansASecond() const {
  return gaussianSeconds > 0 ? static_cast<double>(framesScored) * static_cast<double>(model.gaussians()) / gaussianSeconds : 0.0;
}

void print(const Run& run) {
  std::printf("model  %s\n       %s\n\n", program::printable(run.modelFolder.string()).c_str(), modelText(run.model).c_str());
  for (const Recording& recording : run.recordings) {
    std::printf("%s  %.2f s, %d frames\n  %s\n", recording.name.c_str(), recording.sound.seconds(), recording.features.frames,
                phoneText(run.model, recording).c_str());
  }
  std::printf("\nscoring    %s\n%s\n", speedText(run).c_str(), leftOut(run.model.parameters).c_str());
  if (!run.skipped.empty()) {
    std::printf("skipped    %zu of %zu files\n", run.skipped.size(), run.skipped.size() + run.recordings.size());
  }
}

std::string drawPictures(const program::ReportFolder& folder, const Run& run, bool quiet) {
  std::string problem;
  program::Progress progress("pictures", run.recordings.size(), quiet);
  for (const Recording& recording : run.recordings) {
    const std::string failed = drawScores(folder.path() / pictureOf(recording), run.model, recording, run.settings);
    if (!failed.empty()) problem = failed;
    progress.step();
  }
  return problem;
}

void writeReport(const program::ReportFolder& folder, const Run& run, const std::string& pictureProblem) {
  std::string recordings;
  for (const Recording& recording : run.recordings) {
    program::writeFile(folder.path() / tableOf(recording), bestTable(run, recording));
    recordings += recordingHtml(run, recording, std::filesystem::exists(folder.path() / pictureOf(recording)));
  }
  std::string body = "<h1>Senone scores</h1>\n<p class=\"dim\">" + escaped(run.modelFolder.string()) + ": " +
                     escaped(modelText(run.model)) + "</p>\n<p>The " + std::to_string(run.densities) +
                     " best densities of each codebook and stream count. Scoring " + escaped(speedText(run)) +
                     ", on one processor core.</p>\n<p class=\"dim\">" + escaped(leftOut(run.model.parameters)) +
                     " In the pictures: the score of each phone's best senone, below the best of the frame; above them the phones "
                     "that stay the best for a while.</p>\n";
  if (!pictureProblem.empty()) body += "<p>Some or all pictures are missing: " + escaped(pictureProblem) + ".</p>\n";
  body += recordings + program::skippedHtml(run.skipped);
  program::writeFile(folder.path() / "index.html", program::htmlPage("Senone scores", body));
}

}  // namespace senones
