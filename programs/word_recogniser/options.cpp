#include "options.h"

#include <map>
#include <stdexcept>

#include "common/command_line.h"
#include "common/text.h"

namespace words {
namespace {

using program::fixed;

const std::map<std::string, Normalise> normaliseNames = {
    {"none", Normalise::none}, {"mean", Normalise::mean}, {"variance", Normalise::variance}};

std::string text(float value, int digits = 2) { return fixed(static_cast<double>(value), digits); }

// An option that holds index ranges; what is wrong with the text becomes the parser's message.
void addRanges(CLI::App& app, const std::string& name, std::optional<IndexRanges>& ranges, const std::string& help) {
  app.add_option_function<std::string>(
         name,
         [&ranges, name](const std::string& value) {
           try {
             ranges = IndexRanges::parse(value);
           } catch (const std::invalid_argument& bad) {
             throw CLI::ValidationError(name, bad.what());
           }
         },
         help)
      ->type_name("RANGES")
      ->group("Split");
}

struct FrontEndAdder {
  CLI::App& app;

  template <class T>
  void operator()(const std::string& name, T& value, T low, T high, const char* help) const {
    CLI::Option* option = app.add_option("--" + name, value, help)->check(program::inRange(low, high))->group("Front-end");
    if (value >= low) option->capture_default_str();  // below it: what the corpus asks for
  }
  void operator()(const std::string& name, Normalise& value) const {
    app.add_option("--" + name, value, "Columns of a recording: none, mean (to 0), variance (mean to 0, variance to 1)")
        ->transform(CLI::CheckedTransformer(normaliseNames).description(""))
        ->type_name("HOW")
        ->group("Front-end")
        ->default_str("variance");
  }
};

}  // namespace

void addCommonOptions(CLI::App& app, CommonOptions& options) {
  app.add_option("corpus", options.corpus, "Folder of recordings WORD_SPEAKER_INDEX.wav")->required()->type_name("CORPUS");
  app.add_option("--report", options.report, "Folder of the report; an earlier report there is replaced")
      ->capture_default_str()
      ->type_name("FOLDER");
  app.add_option("--pictures", options.pictures, "Wrong utterances pictured at most; 0: no pictures")
      ->check(program::inRange(0, 1000))
      ->capture_default_str();
  app.add_flag("--quiet", options.quiet, "No progress");
}

void addSplitOptions(CLI::App& app, SplitOptions& options) {
  addRanges(app, "--templates,--train", options.templates, "Indices of the recordings that teach, such as 0-4");
  addRanges(app, "--tests", options.tests, "Indices of the recordings to be recognised, such as 5-19,30");
  app.add_option("--templates-per-word", options.perWord,
                 "Without ranges: so many of each word and speaker teach, the rest are tests")
      ->check(program::inRange(1, 1000000))
      ->group("Split");
  app.add_option("--leave-out", options.leaveOut,
                 "A speaker whose words are recognised by what the others taught; each: every speaker in turn")
      ->type_name("SPEAKER")
      ->group("Split");
}

void addFrontEndOptions(CLI::App& app, FrontEndOptions& options) { eachSetting(options, FrontEndAdder{app}); }

void addWarpOptions(CLI::App& app, WarpOptions& options) {
  app.add_option("--delta", options.delta, "Widening of the band of the warping path, and freedom of its ends, in frames")
      ->check(program::inRange(0, 100000))
      ->capture_default_str()
      ->group("Warping");
  app.add_option_function<float>(
         "--beam", [&options](float beam) { options.beam = beam; },
         "Prune what is so far above the best of a column; by default nothing")
      ->check(program::inRange(0.0F, 1e30F))
      ->group("Warping");
  app.add_option("--nearest", options.nearest, "A word's distance is the mean of so many of its nearest templates")
      ->check(program::inRange(1, 1000))
      ->capture_default_str()
      ->group("Warping");
}

void addTrainingOptions(CLI::App& app, TrainingOptions& options) {
  const auto add = [&app](const char* name, auto& value, auto low, auto high, const char* help) {
    app.add_option(name, value, help)->check(program::inRange(low, high))->capture_default_str()->group("Models");
  };
  add("--states", options.states, 1, 100, "States of a word");
  add("--gaussians", options.mixtures, 1, 100, "Gaussians of a state at most");
  add("--iterations", options.iterations, 1, 1000, "Iterations of each stage of training at most");
  add("--frames-per-gaussian", options.framesPerGaussian, 1, 1000000, "A Gaussian with fewer than twice as many is not split");
  add("--variance-floor", options.varianceFloor, 1e-6F, 1.0F,
      "Variances stay above this part of the variance of all training data");
}

Settings described(const TrainingOptions& options) {
  std::string noises;
  for (const double noise : options.noises) noises += (noises.empty() ? "" : ", ") + fixed(noise, 0) + " dB";
  return {{"states", std::to_string(options.states)},
          {"Gaussians a state",
           "up to " + std::to_string(options.mixtures) + ", for " + std::to_string(options.framesPerGaussian) + " frames each"},
          {"variance floor", text(options.varianceFloor, 3) + " of all data"},
          {"copies in noise", noises.empty() ? "none" : noises}};
}

Settings described(const FrontEndOptions& options) {
  std::string normalise;
  for (const auto& [name, value] : normaliseNames) {
    if (value == options.normalise) normalise = name;
  }
  return {
      {"frames", text(options.frameMs, 1) + " ms every " + text(options.hopMs, 1) + " ms"},
      {"mel filters", std::to_string(options.filters) + ", " + text(options.lowHz, 0) + " to " + text(options.highHz, 0) + " Hz"},
      {"cepstra", std::to_string(options.cepstra) +
                      (options.energyWeight > 0 ? " and order 0 (weight " + text(options.energyWeight, 1) + ")" : "") +
                      ", lifter " + std::to_string(options.lifter)},
      {"time derivatives",
       std::to_string(options.deltas) + ", weights " + text(options.deltaWeight) + " and " + text(options.accelerationWeight)},
      {"pre-emphasis", text(options.preEmphasis, 3) + " at 16 kHz"},
      {"floor, trimming", text(options.floorDb, 0) + " dB, " + text(options.trimDb, 0) + " dB below the loudest"},
      {"normalisation", normalise}};
}

Settings described(const WarpOptions& options) {
  return {{"warping delta", std::to_string(options.delta) + " frames"},
          {"beam", options.beam ? text(*options.beam) : "none"},
          {"nearest templates", std::to_string(options.nearest)}};
}

std::string described(const SplitOptions& options) {
  std::string result;
  if (options.templates || options.tests) {
    result = "templates " + (options.templates ? options.templates->text() : "the rest") + ", tests " +
             (options.tests ? options.tests->text() : "the rest");
  } else if (options.leaveOut.empty()) {
    const int count = options.perWord.value_or(usualPerWord);
    result = std::to_string(count) + (count == 1 ? " template" : " templates") + " a word and speaker";
  }
  if (!options.leaveOut.empty()) {
    result += result.empty() ? "" : "; ";
    result += options.leaveOut == "each" ? "each speaker left out in turn" : "speaker " + options.leaveOut + " left out";
  }
  return result;
}

std::string describedTests(const SplitOptions& options) {
  std::string result;
  if (options.tests) {
    result = "tests " + options.tests->text();
  } else if (options.templates) {
    result = "tests all but " + options.templates->text();
  } else if (options.perWord) {
    result = "tests all but the first " + (*options.perWord == 1 ? "" : std::to_string(*options.perWord) + " ") +
             "of each word and speaker";
  } else {
    result = "all recordings tested";
  }
  return result + (options.leaveOut.empty() ? "" : "; speaker " + options.leaveOut + " alone");
}

}  // namespace words
