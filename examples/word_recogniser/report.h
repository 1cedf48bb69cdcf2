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
  const Corpus& corpus;
  std::vector<Result> results;
  std::vector<Trial> trials;
  size_t untaught = 0;  ///< recordings not recognised, since no template says their word
  Speed frontEnd, matching;
  std::string splitText;
  std::vector<std::pair<std::string, std::string>> settings;
};

/** A picture of an utterance beside its nearest template; file names are relative to the report. */
struct Picture {
  const Result* result;
  std::string image;
};

/** Accuracy overall, by speaker and by word, and speeds, on stdout. */
void printTable(const Run& run, const Score& score);

/** The utterances worth a picture: wrong ones up to a limit, and some right ones. */
std::vector<const Result*> chooseForPictures(const Run& run, size_t mostWrong);

/** Writes index.html, and results.tsv and confusion.tsv, which hold no times and so are the same for the same run. */
void writeReport(const example::ReportFolder& folder, const Run& run, const Score& score, const std::vector<Picture>& pictures,
                 const std::string& pictureProblem);

}  // namespace words
