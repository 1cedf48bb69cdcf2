// Recognises isolated spoken words in WAV files.
//
//   word_recogniser match CORPUS ...      by template matching with dynamic time warping
//   word_recogniser train CORPUS ...      trains hidden Markov models, a word each, and writes them to a file
//   word_recogniser test CORPUS ...       by the models of such a file
//   word_recogniser compare CORPUS ...    templates and models side by side, clean and in noise
#include "common/command_line.h"
#include "compare.h"
#include "match.h"
#include "test.h"
#include "train.h"

namespace {

void addMatch(CLI::App& app, words::MatchOptions& options) {
  CLI::App* match = app.add_subcommand("match", "Recognise words by template matching");
  words::addCommonOptions(*match, options.common);
  words::addSplitOptions(*match, options.split);
  words::addFrontEndOptions(*match, options.frontEnd);
  words::addWarpOptions(*match, options.warp);
  match
      ->add_option(
          "--vocal-tract", options.tracts,
          "Further copies of each template with its frequencies divided by these factors, such as 0.87,1.14: as if others spoke")
      ->delimiter(',')
      ->check(program::inRange(0.5F, 2.0F))
      ->group("Warping");
  match->callback([&options] { words::match(options); });
}

void addTrain(CLI::App& app, words::TrainOptions& options) {
  CLI::App* train = app.add_subcommand("train", "Train a hidden Markov model for each word; without a split, on all recordings");
  words::addCommonOptions(*train, options.common);
  train->add_option("--model", options.model, "Model file to write")->capture_default_str()->type_name("FILE");
  words::addSplitOptions(*train, options.split);
  words::addFrontEndOptions(*train, options.frontEnd);
  words::addTrainingOptions(*train, options.training);
  train
      ->add_option("--noise-db", options.training.noises,
                   "Copies of the recordings with white noise so many decibels below teach too")
      ->delimiter(',')
      ->check(program::inRange(-100.0, 200.0))
      ->group("Models");
  train->callback([&options] { words::trainCommand(options); });
}

void addTest(CLI::App& app, words::TestOptions& options) {
  CLI::App* test = app.add_subcommand("test", "Recognise words by trained models; without a split, all recordings");
  words::addCommonOptions(*test, options.common);
  test->add_option("--model", options.model, "Model file that train wrote")->required()->type_name("FILE");
  test->add_option("--noise-db", options.noise, "White noise so many decibels below each recording is added to it")
      ->check(program::inRange(-100.0, 200.0));
  words::addSplitOptions(*test, options.split);
  test->callback([&options] { words::testCommand(options); });
}

void addCompare(CLI::App& app, words::CompareOptions& options) {
  CLI::App* compare = app.add_subcommand(
      "compare", "Set templates and models side by side, for the split and with each speaker left out, clean and in noise");
  words::addCommonOptions(*compare, options.common);
  compare->add_option("--noise-db", options.noises, "White noise so many decibels below the tests, one condition each")
      ->delimiter(',')
      ->check(program::inRange(-100.0, 200.0))
      ->capture_default_str();
  words::addSplitOptions(*compare, options.split);
  words::addFrontEndOptions(*compare, options.frontEnd);
  words::addWarpOptions(*compare, options.warp);
  words::addTrainingOptions(*compare, options.training);
  compare->callback([&options] { words::compareCommand(options); });
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Recognises isolated spoken words in a folder of recordings WORD_SPEAKER_INDEX.wav.");
  app.require_subcommand(1);
  words::MatchOptions match;
  words::TrainOptions train;
  words::TestOptions test;
  words::CompareOptions compare;
  addMatch(app, match);
  addTrain(app, train);
  addTest(app, test);
  addCompare(app, compare);
  return program::runProgram("word_recogniser", app, argc, argv, [] {});  // the sub-commands act
}
