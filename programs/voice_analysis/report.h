// What a run found: a table on stdout, a page with pictures, a table of the frames of each recording.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "analysis.h"
#include "common/report_folder.h"
#include "common/skipped.h"

namespace voice {

inline constexpr double longestSeconds = 3600;

struct Recording {
  std::filesystem::path file;
  std::string name;  ///< of its files in the report
  double seconds = 0;
  int rate = 0;
  Analysis analysis;
};

struct Run {
  AnalysisOptions options;
  int channel = program::meanOfChannels;
  std::optional<double> moment;  ///< seconds of the spectrum that is shown; none: that of the loudest voiced frame
  size_t mostPictures = 12;
  double workSeconds = 0;  ///< of processor time
  std::vector<Recording> recordings;
  std::vector<program::Skipped> skipped;

  double seconds() const;
};

/** A line a recording and the speed, on stdout. */
void print(const Run& run);

/** Pictures of the first recordings. The answer is empty, or why some or all are missing. */
std::string drawPictures(const program::ReportFolder& folder, const Run& run, bool quiet);

void writeReport(const program::ReportFolder& folder, const Run& run, const std::string& pictureProblem);

}  // namespace voice
