// Recognises isolated spoken words in WAV files.
//
//   word_recogniser match CORPUS ...    by template matching with dynamic time warping
#include <cstdio>
#include <exception>

#include "common/fault.h"
#include "common/progress.h"
#include "match.h"

namespace {

void addMatch(CLI::App& app, words::MatchOptions& options) {
  CLI::App* match = app.add_subcommand("match", "Recognise words by template matching and write a report");
  words::addCommonOptions(*match, options.common);
  words::addSplitOptions(*match, options.split);
  words::addFrontEndOptions(*match, options.frontEnd);
  words::addWarpOptions(*match, options.warp);
  match
      ->add_option(
          "--vocal-tract", options.tracts,
          "Further copies of each template with its frequencies divided by these factors, such as 0.87,1.14: as if others spoke")
      ->delimiter(',')
      ->check(CLI::Range(0.5F, 2.0F))
      ->group("Warping");
  match->callback([&options] { words::match(options); });
}

int run(int argc, char** argv) {
  CLI::App app(
      "Recognises isolated spoken words: a folder of recordings WORD_SPEAKER_INDEX.wav is split into templates and tests.");
  app.require_subcommand(1);
  words::MatchOptions matchOptions;
  addMatch(app, matchOptions);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : example::exitUsage;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  example::catchInterrupts();
  try {
    return run(argc, argv);
  } catch (const example::Interrupted& interrupted) {
    std::fprintf(stderr, "word_recogniser: %s; nothing was written\n", interrupted.what());
    return example::exitInterrupted;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "word_recogniser: %s\n", error.what());
    return example::exitRefused;
  }
}
