// The table on the terminal and the report folder.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/report_folder.h"
#include "options.h"
#include "results.h"

namespace words {

/** Seconds of speech worked on, and of processor time for that. */
struct Speed {
  double speech = 0, work = 0;
};

/** All that a report tells of one run. */
struct Run {
  explicit Run(const Corpus& itsCorpus) : corpus(itsCorpus) {}

  const Corpus& corpus;
  bool byTemplates = false;
  std::string method;     ///< "template matching"
  std::string scoreName;  ///< of Decision::score: "distance"
  std::string teachers;   ///< what decides: "150 templates"
  std::vector<Result> results;
  std::vector<Trial> trials;
  size_t untaught = 0;  ///< recordings not recognised, since nothing teaches their word
  Speed frontEnd, matching;
  std::string splitText;
  std::string pictureText;  ///< what pictures show
  Settings settings;
};

/** A picture of an utterance beside what it is compared with; file names are relative to the report. */
struct Picture {
  const Result* result;
  std::string image;
};

/** Accuracy overall, by speaker and by word, and speeds, on stdout. */
void printTable(const Run& run, const Score& score);

/** The utterances worth a picture: wrong ones up to a limit, and some right ones. */
std::vector<const Result*> chooseForPictures(const Run& run, size_t mostWrong);

/** A table of settings. */
std::string settingsHtml(const Settings& settings);

/** Writes index.html, and results.tsv and confusion.tsv, which hold no times and so are the same for the same run. */
void writeReport(const program::ReportFolder& folder, const Run& run, const Score& score, const std::vector<Picture>& pictures,
                 const std::string& pictureProblem);

/** "150 templates": the recordings that are a template in some trial. */
std::string countedTemplates(const Corpus& corpus, const std::vector<Trial>& trials);

}  // namespace words
