// Shows what a phonetician looks at first in recordings of voices: pitch, voicing, energy, formants, spectra.
//
//   voice_analysis RECORDING ...    files or folders; more: voice_analysis --help
#include <algorithm>
#include <charconv>
#include <cstdio>

#include "common/command_line.h"
#include "common/stopwatch.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;

struct Options {
  std::vector<fs::path> inputs;
  fs::path report = "report";
  std::string channel = "mean";
  float moment = -1;
  int pictures = 12;
  bool quiet = false;
  voice::AnalysisOptions analysis;
};

// A number from 1 on, or "mean".
std::string isChannel(const std::string& text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool good = text == "mean" || (error == std::errc() && end == text.data() + text.size() && number >= 1 && number <= 1024);
  return good ? "" : text + " is neither a channel from 1 to 1024 nor mean";
}

void addOptions(CLI::App& app, Options& options) {
  app.add_option("recording", options.inputs, "Recordings: WAV files of 8 to 48 kHz, or folders of them")
      ->required()
      ->type_name("RECORDING");
  app.add_option("--channel", options.channel, "Which channel is analysed, from 1 on, or the mean of all")
      ->check(CLI::Validator([](std::string& text) { return isChannel(text); }, ""))
      ->capture_default_str()
      ->type_name("NUMBER|mean");
  app.add_option("--report", options.report, "Folder of the report; an earlier report there is replaced")
      ->capture_default_str()
      ->type_name("FOLDER");
  app.add_option("--pictures", options.pictures, "Recordings pictured at most; 0: no pictures")
      ->check(program::inRange(0, 1000))
      ->capture_default_str();
  app.add_option("--at", options.moment, "Second whose spectrum is shown; by default that of the loudest voiced frame")
      ->check(program::inRange(0.0F, 3600.0F));
  const auto add = [&app](const char* name, auto& value, auto low, auto high, const char* help) {
    app.add_option(name, value, help)->check(program::inRange(low, high))->capture_default_str();
  };
  add("--hop-ms", options.analysis.hopMs, 1.0, 100.0, "From one frame to the next");
  add("--lowest-hz", options.analysis.pitch.lowestHz, 20.0F, 1000.0F, "Lowest pitch");
  add("--highest-hz", options.analysis.pitch.highestHz, 40.0F, 1500.0F, "Highest pitch");
  add("--voicing", options.analysis.pitch.voicing, 0.0F, 1.0F, "Correlation from which a frame is voiced");
  add("--ceiling-hz", options.analysis.ceilingHz, 2000.0, 8000.0, "Formants are looked for below: 5500 for women, 5000 for men");
  app.add_flag("--quiet", options.quiet, "No progress");
}

// The files of folders, in order; hidden ones are left out.
std::vector<fs::path> filesOf(const std::vector<fs::path>& inputs) {
  std::vector<fs::path> files;
  for (const fs::path& input : inputs) {
    std::error_code error;
    if (!fs::is_directory(input, error)) {
      files.push_back(input);
      continue;
    }
    std::vector<fs::path> entries;
    fs::directory_iterator all(input, error);
    if (error) throw program::Fault("folder " + input.string() + " cannot be read: " + error.message());
    for (const fs::directory_entry& entry : all) {
      if (entry.path().filename().string().front() != '.') entries.push_back(entry.path());
    }
    if (entries.empty()) throw program::Fault("folder " + input.string() + " is empty");
    std::sort(entries.begin(), entries.end());
    files.insert(files.end(), entries.begin(), entries.end());
  }
  return files;
}

void analyseAll(const Options& options, voice::Run& run) {
  const std::vector<fs::path> files = filesOf(options.inputs);
  program::UniqueNames names;
  names.take("summary");  // the table of all
  program::Stopwatch watch;
  program::Progress progress("analysing", files.size(), options.quiet);
  for (const fs::path& file : files) {
    try {
      program::checkName(file);
      const program::Sound sound = program::readWav(file, voice::longestSeconds, run.channel);
      voice::Analysis analysis = watch.time([&] { return voice::analyse(sound, run.options); });
      run.recordings.push_back({file, names.of(file), sound.seconds(), sound.rate, std::move(analysis)});
      names.take(run.recordings.back().name);
    } catch (const program::BadSound& bad) {
      run.skipped.push_back({file.string(), bad.what()});
      program::tellSkipped(run.skipped.back());
    }
    progress.step();
  }
  run.workSeconds = watch.seconds();
  if (run.recordings.empty()) throw program::Fault(program::allSkipped(run.skipped));
}

void analyse(const Options& options) {
  if (options.analysis.pitch.lowestHz * 2 > options.analysis.pitch.highestHz) {
    throw program::Fault("the highest pitch must be at least twice the lowest");
  }
  program::ReportFolder folder(options.report);
  voice::Run run;
  run.options = options.analysis;
  run.channel = options.channel == "mean" ? program::meanOfChannels : std::stoi(options.channel);
  if (options.moment >= 0) run.moment = static_cast<double>(options.moment);
  run.mostPictures = static_cast<size_t>(options.pictures);
  analyseAll(options, run);
  const std::string problem = voice::drawPictures(folder, run, options.quiet);
  program::stopIfInterrupted();
  voice::print(run);
  voice::writeReport(folder, run, problem);
  program::publish(folder, problem);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Shows voices: pitch, voicing, energy and formants of recordings, frame by frame and as a whole.");
  Options options;
  addOptions(app, options);
  return program::runProgram("voice_analysis", app, argc, argv, [&] { analyse(options); });
}
