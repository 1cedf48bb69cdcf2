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

void printModel(const Run& run);
void printRecording(const AcousticModel& model, const Recording& recording);
void printSpeed(const Run& run);

/** Pictures are drawn on the way; the answer is empty, or why some or all are missing. */
std::string writeReport(const program::ReportFolder& folder, const Run& run);

}  // namespace senones
