// Scores recorded speech with an acoustic model of tied Gaussian mixtures.
//
//   senone_scores speech.wav ...    model, report and more: senone_scores --help
#include <algorithm>
#include <cstdio>

#include "common/command_line.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;

struct Options {
  std::vector<fs::path> files;
  fs::path model = "/usr/share/pocketsphinx/model/en-us/en-us";
  fs::path report = "report";
  int densities = 4, best = 5;
  bool writeScores = false, quiet = false;
};

void addOptions(CLI::App& app, Options& options) {
  app.add_option("wav", options.files, "Recordings: WAV files of one channel, 8 to 48 kHz; resampled where the model needs it")
      ->required()
      ->type_name("WAV");
  app.add_option("--model", options.model, "Folder of the model: means, variances, sendump, mdef, feat.params")
      ->capture_default_str()
      ->type_name("FOLDER");
  app.add_option("--report", options.report, "Folder of the report; an earlier report there is replaced")
      ->capture_default_str()
      ->type_name("FOLDER");
  app.add_option("--densities", options.densities, "Best densities of each codebook and stream that count")
      ->check(program::inRange(1, 100000))
      ->capture_default_str();
  app.add_option("--best", options.best, "Best senones of each frame in the tables")
      ->check(program::inRange(1, 1000))
      ->capture_default_str();
  app.add_flag("--write-scores", options.writeScores,
               "Also write NAME_features.f32 and NAME_senones.f32: all features and scores as 32-bit floats, frame by frame");
  app.add_flag("--quiet", options.quiet, "No progress");
}

void scoreAll(const Options& options, senones::Work& work, senones::Run& run) {
  program::UniqueNames names;
  for (const fs::path& file : options.files) {
    try {
      program::checkName(file);
      run.recordings.push_back(senones::scoreRecording(file, names.of(file), work, options.quiet));
      names.take(run.recordings.back().name);
    } catch (const program::BadSound& bad) {
      run.skipped.push_back({file.string(), bad.what()});
      program::tellSkipped(run.skipped.back());
    }
  }
  if (run.recordings.empty()) throw program::Fault(program::allSkipped(run.skipped));
}

void score(const Options& options) {
  const senones::AcousticModel model = senones::loadModel(options.model);
  senones::FrontEnd frontEnd(senones::FrontEndSettings::from(model.parameters));
  senones::Scorer scorer(model, options.densities);
  program::ReportFolder folder(options.report);
  senones::Work work{frontEnd, scorer, options.best, options.writeScores ? folder.path() : fs::path(), {}, {}, {}, 0};
  senones::Run run{model, options.model, frontEnd.settings(), std::min(options.densities, model.densities), {}, {}, 0, 0, 0, 0};
  scoreAll(options, work, run);
  run.frontEndSeconds = work.frontEndTime.seconds();
  run.gaussianSeconds = work.gaussianTime.seconds();
  run.mixtureSeconds = work.mixtureTime.seconds();
  run.framesScored = work.framesScored;
  const std::string problem = senones::drawPictures(folder, run, options.quiet);
  program::stopIfInterrupted();
  senones::print(run);
  senones::writeReport(folder, run, problem);
  program::publish(folder, problem);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Scores recorded speech with an acoustic model: the log likelihood of every senone in every frame.");
  Options options;
  addOptions(app, options);
  return program::runProgram("senone_scores", app, argc, argv, [&] { score(options); });
}
