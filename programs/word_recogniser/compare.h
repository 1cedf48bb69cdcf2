// Sub-command "compare": template matching and word models side by side, clean and in noise.
#pragma once

#include <vector>

#include "options.h"
#include "training.h"

namespace words {

struct CompareOptions {
  CommonOptions common;
  SplitOptions split;
  FrontEndOptions frontEnd;
  WarpOptions warp;
  TrainingOptions training;
  std::vector<double> noises = {20, 10, 0};  ///< decibels below the tests; the clean tests come first
};

/** Runs both methods on the same splits: the one asked for, and each speaker left out in turn. Throws program::Fault where it
 * cannot. */
void compareCommand(CompareOptions options);

}  // namespace words
