// Sub-command "match": recognition by template matching.
#pragma once

#include <vector>

#include "options.h"

namespace words {

struct MatchOptions {
  CommonOptions common;
  SplitOptions split;
  FrontEndOptions frontEnd;
  WarpOptions warp;
  std::vector<float> tracts;  ///< further copies of each template, with the frequencies stretched so
};

/** Runs the whole experiment; throws program::Fault where it cannot. */
void match(MatchOptions options);

}  // namespace words
