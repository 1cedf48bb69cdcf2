#include "report.h"

#include <algorithm>
#include <cstdio>

#include "common/files.h"
#include "common/html.h"
#include "common/progress.h"
#include "common/text.h"
#include "plots.h"

namespace voice {
namespace {

using program::address;
using program::escaped;
using program::fixed;
using Table = std::vector<std::vector<std::string>>;

// Nothing stands for what is not there.
std::string hertz(double value, int digits) { return value > 0 ? fixed(value, digits) : "-"; }

std::string pictureOf(const Recording& recording) { return recording.name + ".png"; }
std::string tableOf(const Recording& recording) { return recording.name + ".tsv"; }

Table frameTable(const Analysis& analysis) {
  Table rows = {{"seconds", "pitch Hz", "correlation", "periodicity", "level dB", "sign changes a second"}};
  for (int k = 1; k <= analysis.formants; ++k) {
    for (const std::string quantity : {"F", "B"}) rows[0].push_back(quantity + std::to_string(k) + " Hz");
  }
  for (const Frame& frame : analysis.frames) {
    const auto pitch = static_cast<double>(frame.pitch.hertz);
    std::vector<std::string>& row = rows.emplace_back();
    row = {fixed(frame.seconds, 4),
           hertz(pitch, 2),
           pitch > 0 ? fixed(static_cast<double>(frame.pitch.correlation), 3) : "-",
           fixed(static_cast<double>(frame.periodicity), 3),
           fixed(static_cast<double>(frame.decibels), 1),
           fixed(static_cast<double>(frame.signChanges), 0)};
    for (size_t k = 0; k < static_cast<size_t>(analysis.formants); ++k) {
      row.push_back(hertz(static_cast<double>(frame.formants[k].hertz), 0));
      row.push_back(hertz(static_cast<double>(frame.formants[k].bandwidth), 0));
    }
  }
  return rows;
}

Table summaryTable(const Run& run) {
  Table rows = {{"recording", "seconds", "voiced", "pitch Hz", "5 %", "95 %", "slope st/s", "F1", "F2", "F3", "F4"}};
  for (const Recording& recording : run.recordings) {
    const Summary& s = recording.analysis.summary;
    std::vector<std::string>& row = rows.emplace_back();
    row = {recording.name,    fixed(recording.seconds, 2), fixed(100 * s.voicedShare, 1) + " %",    hertz(s.medianHz, 1),
           hertz(s.lowHz, 1), hertz(s.highHz, 1),          s.medianHz > 0 ? fixed(s.slope, 1) : "-"};
    for (const double formant : s.formants) row.push_back(hertz(formant, 0));
  }
  return rows;
}

std::string speedText(const Run& run) { return program::timesRealTime(run.seconds(), run.workSeconds); }

std::string countedRecordings(const Run& run) {
  const size_t count = run.recordings.size();
  return std::to_string(count) + (count == 1 ? " recording, " : " recordings, ") + fixed(run.seconds(), 1) + " s";
}

std::string settingsText(const Run& run) {
  const AnalysisOptions& o = run.options;
  const std::string channel =
      run.channel == program::meanOfChannels ? "the mean of all channels" : "channel " + std::to_string(run.channel);
  return "A frame every " + fixed(o.hopMs, 1) + " ms; pitch from " + fixed(static_cast<double>(o.pitch.lowestHz), 0) + " to " +
         fixed(static_cast<double>(o.pitch.highestHz), 0) + " Hz, voiced from a correlation of " +
         fixed(static_cast<double>(o.pitch.voicing), 2) + " on; formants up to " + fixed(o.ceilingHz, 0) +
         " Hz, or half the rate; " + channel + ".";
}

std::string recordingHtml(const Recording& recording) {
  const std::string name = escaped(recording.name);
  return "<figure><figcaption><b>" + name + "</b> <span class=\"dim\">" + escaped(recording.file.string()) + ", " +
         std::to_string(recording.rate) + " Hz, <a href=\"" + address(tableOf(recording)) +
         "\">all frames</a></span></figcaption>\n<img src=\"" + address(pictureOf(recording)) + "\" alt=\"" + name +
         "\" loading=\"lazy\"></figure>\n";
}

}  // namespace

double Run::seconds() const {
  double sum = 0;
  for (const Recording& recording : recordings) sum += recording.seconds;
  return sum;
}

void print(const Run& run) {
  const Table rows = summaryTable(run);
  size_t width = 0;
  for (const auto& row : rows) width = std::max(width, row[0].size());
  std::printf("%s\n\n", countedRecordings(run).c_str());
  for (const auto& row : rows) {
    std::printf("%-*s", static_cast<int>(width), row[0].c_str());
    for (size_t c = 1; c < row.size(); ++c) std::printf("  %*s", c == 6 ? 10 : c >= 7 ? 5 : 8, row[c].c_str());
    std::printf("\n");
  }
  std::printf("\nanalysis   %s\n", speedText(run).c_str());
  if (!run.skipped.empty()) {
    std::printf("skipped    %zu of %zu files\n", run.skipped.size(), run.skipped.size() + run.recordings.size());
  }
}

std::string drawPictures(const program::ReportFolder& folder, const Run& run, bool quiet) {
  const size_t count = std::min(run.mostPictures, run.recordings.size());
  if (count == 0) return "";
  program::Progress progress("pictures", count, quiet);
  for (size_t i = 0; i < count; ++i) {
    const Recording& recording = run.recordings[i];
    const std::string problem = drawVoice(folder.path() / pictureOf(recording), recording, run);
    if (!problem.empty()) return problem;
    progress.step();
  }
  return "";
}

void writeReport(const program::ReportFolder& folder, const Run& run, const std::string& pictureProblem) {
  for (const Recording& recording : run.recordings) {
    program::writeFile(folder.path() / tableOf(recording), program::tabSeparated(frameTable(recording.analysis)));
  }
  std::string body =
      "<h1>Voices</h1>\n<p class=\"dim\">" + countedRecordings(run) + ". " + escaped(settingsText(run)) + " Analysis " +
      speedText(run) + ", on one processor core.</p>\n<div class=\"wide\">" + program::htmlTable(summaryTable(run)) +
      "</div>\n<p class=\"dim\">Pitch: median, 5th and 95th percentile, and slope of the line through it, in semitones "
      "a second. F1 to F4: median formants in Hz. All of voiced frames. Each frame of a recording is a line of "
      "NAME.tsv.</p>\n";
  if (!pictureProblem.empty()) body += "<p>Some or all pictures are missing: " + escaped(pictureProblem) + ".</p>\n";
  std::string pictures;
  size_t drawn = 0;
  for (const Recording& recording : run.recordings) {
    if (!std::filesystem::exists(folder.path() / pictureOf(recording))) continue;
    pictures += recordingHtml(recording);
    ++drawn;
  }
  if (drawn > 0) {
    body += "<h2>Pictures" + (drawn < run.recordings.size() ? " of the first " + std::to_string(drawn) + " recordings" : "") +
            "</h2>\n<p class=\"dim\">Waveform; spectrogram with the formants (white) and the pitch (blue, scale on the right) of "
            "voiced "
            "frames; the spectrum of one moment, marked above, with the envelope that the all-pole model gives.</p>\n" +
            pictures;
  }
  body += program::skippedHtml(run.skipped);
  program::writeFile(folder.path() / "summary.tsv", program::tabSeparated(summaryTable(run)));
  program::writeFile(folder.path() / "index.html", program::htmlPage("Voices", body));
}

}  // namespace voice
