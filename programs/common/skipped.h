// Files that a program leaves out: named on stderr, counted, listed in the report.
#pragma once

#include <string>
#include <vector>

namespace program {

struct Skipped {
  std::string file, reason;
};

/** A line on stderr. */
void tellSkipped(const Skipped& skipped);

/** What is said when no file is left: "no usable recording: all 3 files were skipped". */
std::string allSkipped(const std::vector<Skipped>& skipped);

/** A heading and a table; empty where nothing was skipped. */
std::string skippedHtml(const std::vector<Skipped>& skipped);

}  // namespace program
