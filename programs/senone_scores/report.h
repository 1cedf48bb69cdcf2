// What a run found: lines on stdout, a page with a picture of each recording, and a table of the best senones of every frame.
#pragma once

#include <string>
#include <vector>

#include "common/report_folder.h"
#include "common/skipped.h"
#include "recording.h"

namespace senones {

struct Run {
  const AcousticModel& model;
  std::filesystem::path modelFolder;
  FrontEndSettings settings;
  int densities = 0;  ///< best densities of a codebook that count
  std::vector<Recording> recordings;
  std::vector<program::Skipped> skipped;
  double frontEndSeconds = 0, gaussianSeconds = 0, mixtureSeconds = 0;  ///< of processor time
  size_t framesScored = 0;

  double speechSeconds() const;
  double gaussiansASecond() const;
};

/** Model, recordings and speed, on stdout. */
void print(const Run& run);

/** A picture of each recording. The answer is empty, or why some or all are missing. */
std::string drawPictures(const program::ReportFolder& folder, const Run& run, bool quiet);

/** Tables, and the page with the pictures that are there. */
void writeReport(const program::ReportFolder& folder, const Run& run, const std::string& pictureProblem);

}  // namespace senones
