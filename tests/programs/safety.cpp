// What no program may do whatever it is given: run what stands in a file's name, lose an earlier report, go on when it is interrupted.
#include <functional>

#include "programs/acoustic_model_files.h"
#include "programs/word_recogniser.h"

namespace {

using namespace word_recogniser;

// Within a string of gnuplot that a line break ends, the second line would be a command.
constexpr const char* hostileName = "1_a\nsystem(\"touch pwned\"); #_7.wav";
constexpr const char* hostileNameShown = "1_a\\nsystem(\"touch pwned\"); #_7.wav";

bool canDraw() { return std::system("gnuplot --version >/dev/null 2>&1") == 0; }

// The commands of all programs that write a report, on material that lies in the folder.
class Safety : public testing::Test {
 protected:
  Safety() {
    const fs::path corpus = makeCorpus(folder_, 3);
    acoustic::writeModel(folder_ / "acoustic", acoustic::randomModel());
    program::write(folder_ / "a.wav", program::wav(program::spoken(1, 0, 0, 16000), 16000));
    program::write(folder_ / "lexicon", "uno u n o\ndue d u e\ntre t r e\nsei s e i\n");
    program::write(folder_ / "classes", "vowel a e i o u\n");
    const std::string words = quote(corpus), training = " --states 4 --gaussians 1 --iterations 2 --model " + quote(model());
    const std::string train = words + training;
    EXPECT_EQ(recognise("train " + train + " --quiet --pictures 0 --report " + quote(folder_ / "training")).code, 0);
    commands_ = {{WORD_RECOGNISER, "match " + words + " --templates 0"},
                 {WORD_RECOGNISER, "train " + train},
                 {WORD_RECOGNISER, "test " + words + " --model " + quote(model())},
                 {WORD_RECOGNISER, "compare " + words + " --templates 0-1 --tests 2 --states 4 --gaussians 1 --noise-db 20"},
                 {VOICE_ANALYSIS, quote(folder_ / "a.wav")},
                 {SENONE_SCORES, quote(folder_ / "a.wav") + " --model " + quote(folder_ / "acoustic")}};
    reported("an earlier report");
  }

  struct Command {
    std::string program, arguments;
  };

  fs::path model() const { return folder_ / "words.model"; }
  fs::path report() const { return folder_ / "report"; }
  void reported(const std::string& text) {
    fs::remove_all(report());
    fs::create_directory(report());
    fs::copy(folder_ / "training" / "index.html", report());
    program::write(report() / "earlier.txt", text);
  }
  // before: what the shell does in front of the command.
  Outcome run(const Command& command, const std::string& before = "", bool quiet = true) const {
    return program::run(command.program, command.arguments + (quiet ? " --quiet" : "") + " --report " + quote(report()), before);
  }
  // A program of that name that the shell finds first.
  std::string pretended(const std::string& name, const std::string& script) const {
    fs::create_directory(folder_ / "bin");
    program::write(folder_ / "bin" / name, "#!/bin/sh\n" + script);
    fs::permissions(folder_ / "bin" / name, fs::perms::owner_all);
    return "PATH=" + quote(folder_ / "bin") + ":$PATH";
  }
  void expectNothingLost(const std::vector<std::string>& before, const std::string& models) const {
    EXPECT_EQ(names(folder_.path()), before);
    EXPECT_EQ(contents(report() / "earlier.txt"), "an earlier report");
    EXPECT_EQ(contents(model()), models);
  }

  Folder folder_;
  std::vector<Command> commands_;
};

TEST_F(Safety, AHostileNameRunsNoCommand) {
  if (!canDraw()) GTEST_SKIP() << "gnuplot is not installed";
  for (const int index : {0, 1, 2}) {  // as a template and as a test, so that it is pictured
    fs::copy(folder_ / "corpus" / ("uno_anna_" + std::to_string(index) + ".wav"),
             folder_ / "corpus" / (std::string("1_a\nsystem(\"touch pwned\"); #_") + std::to_string(index) + ".wav"));
  }
  fs::copy(folder_ / "a.wav", folder_ / hostileName);
  for (size_t i : {commands_.size() - 2, commands_.size() - 1}) commands_[i].arguments += " " + quote(folder_ / hostileName);
  for (const Command& command : commands_) {
    SCOPED_TRACE(command.arguments);
    const Outcome outcome = run(command, "cd " + quote(folder_.path()) + " &&");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_FALSE(fs::exists(folder_ / "pwned"));
    EXPECT_NE(outcome.err.find("touch pwned"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(": its name holds control characters\n"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("skipped "), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("\nsystem"), std::string::npos) << outcome.err;
    EXPECT_EQ(contents(report() / "index.html").find("\nsystem"), std::string::npos);
  }
  EXPECT_NE(run(commands_.back()).err.find(hostileNameShown), std::string::npos);
}

TEST_F(Safety, AHostileFolderRunsNoCommand) {
  if (!canDraw()) GTEST_SKIP() << "gnuplot is not installed";
  const fs::path hostile = folder_ / "a'b\"\nsystem(\"touch pwned\") #`touch pwned`";
  for (const Command& command : commands_) {
    SCOPED_TRACE(command.arguments);
    const Outcome outcome = program::run(command.program, command.arguments + " --quiet --report " + quote(hostile),
                                         "cd " + quote(folder_.path()) + " &&");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_FALSE(fs::exists(folder_ / "pwned"));
    EXPECT_EQ(outcome.out.find("\nsystem"), std::string::npos) << outcome.out;
    fs::remove_all(hostile);
  }
}

TEST_F(Safety, NamesAreTextInPagesAndPictures) {
  const std::string name = "it's <b>\"&'`x`_anna_";
  for (const int index : {0, 1, 2}) {
    fs::copy(folder_ / "corpus" / ("uno_anna_" + std::to_string(index) + ".wav"),
             folder_ / "corpus" / (name + std::to_string(index) + ".wav"));
  }
  fs::copy(folder_ / "a.wav", folder_ / "50% #1?.wav");
  for (size_t i : {commands_.size() - 2, commands_.size() - 1}) commands_[i].arguments += " " + quote(folder_ / "50% #1?.wav");
  for (const Command& command : commands_) {
    SCOPED_TRACE(command.arguments);
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err.find("gnuplot failed"), std::string::npos) << outcome.err;
    EXPECT_EQ(contents(report() / "index.html").find("<b>\""), std::string::npos);
  }
  const std::string page = contents(report() / "index.html");
  EXPECT_NE(page.find("href=\"50%25%20%231%3F.tsv\""), std::string::npos) << page;
  EXPECT_TRUE(fs::exists(report() / "50% #1?.tsv"));
}

TEST_F(Safety, AnInterruptWhilePicturesAreDrawnLosesNothing) {
  const std::string models = contents(model());
  for (const char* script : {"kill -INT $PPID\nkill -INT $$\n", "kill -TERM $PPID\nexec sleep 100\n"}) {
    const std::string environment = pretended("gnuplot", script);
    const std::vector<std::string> before = names(folder_.path());
    for (const Command& command : commands_) {
      SCOPED_TRACE(command.arguments + ": " + script);
      const Outcome outcome = run(command, environment + " timeout 50");
      EXPECT_EQ(outcome.code, 130) << outcome.err;
      EXPECT_EQ(outcome.out, "");
      EXPECT_NE(outcome.err.find("interrupted; nothing was written\n"), std::string::npos) << outcome.err;
      EXPECT_EQ(lineCount(outcome.err), 1U) << outcome.err;
      expectNothingLost(before, models);
    }
    fs::remove_all(folder_ / "bin");
  }
}

// A file that may not grow beyond a size fails as one on a full disk does.
TEST_F(Safety, AFullDiskLosesNothing) {
  const std::string models = contents(model());
  const std::vector<std::string> before = names(folder_.path());
  for (const Command& command : commands_) {
    SCOPED_TRACE(command.arguments);
    const Outcome outcome = run({command.program, command.arguments + (command.program == WORD_RECOGNISER ? " --pictures 0" : "")},
                                "trap '' XFSZ; ulimit -f 4;");
    EXPECT_EQ(outcome.code, 1) << outcome.err;
    EXPECT_EQ(lineCount(outcome.err), 1U) << outcome.err;
    EXPECT_NE(outcome.err.find(" cannot be written: "), std::string::npos) << outcome.err;
    expectNothingLost(before, models);
  }
  const Outcome noModel = run({WORD_RECOGNISER, commands_[1].arguments + " --pictures 0"}, "trap '' XFSZ; ulimit -f 24;");
  EXPECT_EQ(noModel.code, 1);
  EXPECT_EQ(noModel.err, "word_recogniser: model file " + model().string() + " cannot be written: File too large\n");
  expectNothingLost(before, models);
}

TEST_F(Safety, WhatIsPrintedIsNotLostInSilence) {
  commands_.push_back({STATE_CLUSTERING, quote(folder_ / "corpus") + " --lexicon " + quote(folder_ / "lexicon") + " --classes " +
                                             quote(folder_ / "classes") + " --frames 10"});
  for (const Command& command : commands_) {
    SCOPED_TRACE(command.arguments);
    const std::string more = command.program == STATE_CLUSTERING ? "" : " --report " + quote(report());
    const std::string line = quote(command.program) + " " + command.arguments + more + " --quiet >/dev/full";
    program::write(folder_ / "line", line);
    const Outcome outcome = program::run("/bin/sh", quote(folder_ / "line"));
    EXPECT_EQ(outcome.code, 1) << outcome.err;
    EXPECT_NE(outcome.err.find("what is printed cannot be written\n"), std::string::npos) << outcome.err;
  }
}

TEST_F(Safety, AFolderThatIsNoReportStays) {
  program::write(report() / "index.html", "<!DOCTYPE html>\n<html><body>a page of somebody's own</body></html>\n");
  const std::string models = contents(model());
  for (const Command& command : commands_) {
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.err.find("exists and is not a report"), std::string::npos) << outcome.err;
    EXPECT_EQ(contents(report() / "earlier.txt"), "an earlier report");
    EXPECT_EQ(contents(model()), models);
  }
}

TEST_F(Safety, ALinkToAReportStays) {
  fs::rename(report(), folder_ / "elsewhere");
  fs::create_directory_symlink(folder_ / "elsewhere", report());
  EXPECT_EQ(run(commands_.back()).code, 0);
  EXPECT_TRUE(fs::is_symlink(report()));
  EXPECT_FALSE(fs::exists(folder_ / "elsewhere" / "earlier.txt"));
  EXPECT_TRUE(fs::exists(folder_ / "elsewhere" / "a.tsv"));
}

TEST_F(Safety, NumbersThatAreNoneAreRefused) {
  const Command& match = commands_[0];
  const Command& train = commands_[1];
  const Command clustering{STATE_CLUSTERING, quote(folder_ / "corpus") + " --lexicon " + quote(folder_ / "lexicon") +
                                                 " --classes " + quote(folder_ / "classes")};
  const std::vector<std::pair<Command, std::vector<std::string>>> options = {
      {match,
       {"frame-ms", "hop-ms", "low-hz", "high-hz", "pre-emphasis", "floor-db", "trim-db", "energy-weight", "delta-weight",
        "acceleration-weight", "beam", "vocal-tract", "pictures", "delta"}},
      {train, {"variance-floor", "noise-db", "states"}},
      {commands_[2], {"noise-db"}},
      {commands_[3], {"noise-db"}},
      {commands_[4], {"hop-ms", "lowest-hz", "highest-hz", "voicing", "ceiling-hz", "at", "pictures"}},
      {commands_[5], {"best", "densities"}},
      {clustering, {"frames", "gain", "leaves"}}};
  for (const auto& [command, named] : options) {
    for (const std::string& option : named) {
      for (const char* value : {"nan", "-nan", "inf", "-inf", "1e999"}) {
        SCOPED_TRACE("--" + option + " " + value);
        const Outcome outcome = program::run(command.program, command.arguments + " --" + option + "=" + value, "timeout 20");
        EXPECT_EQ(outcome.code, 2) << outcome.err;
        EXPECT_NE(outcome.err.find(option), std::string::npos) << outcome.err;
      }
    }
  }
}

}  // namespace
