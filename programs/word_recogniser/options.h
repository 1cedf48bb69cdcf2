// The options of the command line, in groups that several sub-commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>

#include "templates.h"
#include "training.h"
#include "words/corpus.h"
#include "words/front_end.h"

namespace words {

/** What every sub-command has. */
struct CommonOptions {
  std::filesystem::path corpus;
  std::filesystem::path report = "report";
  int pictures = 12;  ///< at most so many wrong utterances are pictured
  bool quiet = false;
};

void addCommonOptions(CLI::App& app, CommonOptions& options);
void addSplitOptions(CLI::App& app, SplitOptions& options);
void addFrontEndOptions(CLI::App& app, FrontEndOptions& options);
void addWarpOptions(CLI::App& app, WarpOptions& options);
void addTrainingOptions(CLI::App& app, TrainingOptions& options);

/** Settings in words, name and value, for the report. */
using Settings = std::vector<std::pair<std::string, std::string>>;
Settings described(const FrontEndOptions& options);
Settings described(const WarpOptions& options);
Settings described(const TrainingOptions& options);
std::string described(const SplitOptions& options);
/** The same where models decide, and recordings are only tested. */
std::string describedTests(const SplitOptions& options);

}  // namespace words
