// Sub-command "test": recognition by trained word models.
#pragma once

#include <filesystem>
#include <optional>

#include "options.h"

namespace words {

struct TestOptions {
  CommonOptions common;
  SplitOptions split;
  std::optional<double> noise;  ///< decibels below the recordings; none: nothing is added
  std::filesystem::path model;
};

/** Recognises the test half of a corpus and writes a report; throws program::Fault where it cannot. */
void testCommand(const TestOptions& options);

}  // namespace words
