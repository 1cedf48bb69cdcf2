// word_recogniser on small corpora made on the spot: accuracy, every kind of bad input, and reports that are whole or absent.
#include "programs/word_recogniser.h"

namespace {

using namespace word_recogniser;

TEST(WordRecogniser, RecognisesTheSameSpeakers) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 4);
  const Outcome outcome =
      recognise("match " + quote(corpus) + " --templates 0-1 --tests 2-3 --pictures 0 --report " + quote(folder / "report"));
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(accuracy(outcome), "16 of 16");
  for (const char* words : {"32 recordings of 4 words by 2 speakers", "16 templates, 16 tests, 0 files skipped", "by speaker",
                            "  anna ", "by word", "  tre ", "front-end", "matching", "times real time", "index.html"}) {
    EXPECT_NE(outcome.out.find(words), std::string::npos) << words << "\n" << outcome.out;
  }
  EXPECT_NE(outcome.err.find("matching: 16 of 16"), std::string::npos) << outcome.err;
  EXPECT_EQ(names(folder / "report"), (std::vector<std::string>{"confusion.tsv", "index.html", "results.tsv"}));
}

TEST(WordRecogniser, SplitsByCountAndBySpeaker) {
  const Folder folder;
  const std::string start = "match " + quote(makeCorpus(folder, 3)) + " --quiet --pictures 0 --report " + quote(folder / "report");
  EXPECT_EQ(accuracy(recognise(start + " --templates-per-word 1")), "16 of 16");
  EXPECT_EQ(accuracy(recognise(start + " --templates 1")), "16 of 16");
  EXPECT_EQ(accuracy(recognise(start + " --tests 0,2")), "16 of 16");
  EXPECT_EQ(accuracy(recognise(start + " --leave-out anna")), "12 of 12");
  EXPECT_EQ(accuracy(recognise(start + " --leave-out each")), "24 of 24");
  EXPECT_EQ(accuracy(recognise(start + " --leave-out each --templates 0 --tests 1-2")), "16 of 16");
  EXPECT_EQ(accuracy(recognise(start + " --leave-out each --vocal-tract 0.9,1.1 --nearest 1 --beam 50 --delta 12")), "24 of 24");
}

TEST(WordRecogniser, FeatureOptions) {
  const Folder folder;
  const std::string start =
      "match " + quote(makeCorpus(folder, 2)) + " --templates 0 --quiet --pictures 0 --report " + quote(folder / "report");
  for (const char* options :
       {"--deltas 0", "--deltas 1", "--energy-weight 0", "--normalise none", "--normalise mean", "--trim-db 0", "--pre-emphasis 0",
        "--filters 40 --cepstra 20 --lifter 1", "--frame-ms 20 --hop-ms 5 --low-hz 60 --high-hz 4000"}) {
    EXPECT_EQ(accuracy(recognise(start + " " + options)), "8 of 8") << options;
  }
}

TEST(WordRecogniser, MixesRates) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 3, {8000, 16000, 22050, 44100, 48000});
  const Outcome outcome =
      recognise("match " + quote(corpus) + " --templates 0 --quiet --pictures 0 --report " + quote(folder / "report"));
  EXPECT_EQ(accuracy(outcome), "16 of 16") << outcome.out << outcome.err;
}

TEST(WordRecogniser, SameRunSameData) {
  const Folder folder;
  const std::string start = "match " + quote(makeCorpus(folder, 3)) + " --leave-out each --quiet --pictures 0 --report ";
  ASSERT_EQ(recognise(start + quote(folder / "one")).code, 0);
  ASSERT_EQ(recognise(start + quote(folder / "two")).code, 0);
  for (const char* file : {"results.tsv", "confusion.tsv"}) {
    EXPECT_EQ(contents(folder / "one" / file), contents(folder / "two" / file)) << file;
    EXPECT_GT(lineCount(contents(folder / "one" / file)), 4U) << file;
  }
}

TEST(WordRecogniser, NamesCountsAndSkipsBadFiles) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 2);
  const std::vector<float> sound = program::spoken(0, 0, 0, 8000);
  const std::string good = program::wav(sound, 8000);
  const auto add = [&](const std::string& name, const std::string& bytes) { program::write(corpus / name, bytes); };
  add("uno_anna_50.wav", "");
  add("uno_anna_51.wav", program::wav(sound, 8000, 2));
  add("uno_anna_52.wav", good.substr(0, good.size() / 2));
  add("uno_anna_53.wav", good.substr(0, 10));
  add("uno_anna_54.wav", good.substr(0, 40));
  add("uno_anna_55.wav", "this is no sound at all, but a text");
  add("uno_anna_56.wav", program::wav(sound, 4000));
  add("uno_anna_57.wav", program::wav(sound, 96000));
  add("uno_anna_58.wav", program::wav({}, 8000));
  add("uno_anna_59.wav", program::wav(std::vector<float>(4000), 8000));
  add("uno_anna_60.wav", program::wav(std::vector<float>(sound.begin(), sound.begin() + 300), 8000));
  add("uno_anna_61.wav", program::wav(std::vector<float>(8000 * 61), 8000));
  add("notes.txt", "a note");
  for (const char* name :
       {"uno.wav", "uno_anna.wav", "uno_anna_x.wav", "uno_anna_-1.wav", "_anna_1.wav", "uno__1.wav", "uno_anna_.wav"}) {
    add(name, good);
  }
  fs::create_directory(corpus / "uno_anna_62.wav");
  const Outcome outcome =
      recognise("match " + quote(corpus) + " --templates 0 --tests 1 --quiet --pictures 0 --report " + quote(folder / "report"));
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(accuracy(outcome), "8 of 8");
  EXPECT_NE(outcome.out.find("21 files skipped"), std::string::npos) << outcome.out;
  EXPECT_EQ(lineCount(outcome.err), 21U) << outcome.err;
  for (const char* line : {"skipped uno_anna_50.wav: empty file\n",
                           "skipped uno_anna_51.wav: 2 channels; one is needed\n",
                           "skipped uno_anna_52.wav: truncated: its header promises ",
                           "skipped uno_anna_53.wav: truncated inside its header\n",
                           "skipped uno_anna_54.wav: truncated: no samples behind its header\n",
                           "skipped uno_anna_55.wav: not a WAV file\n",
                           "skipped uno_anna_56.wav: rate of 4000 Hz outside 8000 to 48000\n",
                           "skipped uno_anna_57.wav: rate of 96000 Hz outside 8000 to 48000\n",
                           "skipped uno_anna_58.wav: holds no samples\n",
                           "skipped uno_anna_59.wav: holds nothing but silence\n",
                           "skipped uno_anna_60.wav: too short: ",
                           "skipped uno_anna_61.wav: longer than 60 s\n",
                           "skipped uno_anna_62.wav: not a file\n",
                           "skipped notes.txt: not a WAV file (its name does not end in .wav)\n",
                           "skipped uno.wav: its name is not WORD_SPEAKER_INDEX.wav\n",
                           "skipped uno_anna.wav: its name",
                           "skipped uno_anna_x.wav: its name",
                           "skipped uno_anna_-1.wav: its name",
                           "skipped _anna_1.wav: its name",
                           "skipped uno__1.wav: its name",
                           "skipped uno_anna_.wav: its name"}) {
    EXPECT_NE(outcome.err.find(line), std::string::npos) << line << "\n" << outcome.err;
  }
  EXPECT_NE(contents(folder / "report" / "index.html").find("Skipped files (21)"), std::string::npos);
}

TEST(WordRecogniser, RefusesWhatItCannotWorkOn) {
  const Folder folder;
  expectRefusal(folder, "match " + quote(folder / "nowhere"), "does not exist");
  fs::create_directory(folder / "empty");
  expectRefusal(folder, "match " + quote(folder / "empty"), "is empty");
  program::write(folder / "file", "text");
  expectRefusal(folder, "match " + quote(folder / "file"), "is not a folder");
  fs::create_directory(folder / "bad");
  program::write(folder / "bad" / "uno_anna_1.wav", "text");
  expectRefusal(folder, "match " + quote(folder / "bad"), "no usable recording: all 1 files were skipped");
  const std::string corpus = quote(makeCorpus(folder, 2));
  expectRefusal(folder, "match " + corpus + " --leave-out carla", "there is no speaker 'carla'");
  expectRefusal(folder, "match " + corpus + " --templates 7-9", "no recording is a template");
  expectRefusal(folder, "match " + corpus + " --templates 0-1 --tests 1-2", "index 1 is to teach and to be recognised");
  expectRefusal(folder, "match " + corpus + " --templates 5,0 --tests 0", "index 0 is to teach and to be recognised");
  expectRefusal(folder, "compare " + corpus + " --train 0-1 --tests 0-1", "index 0 is to teach and to be recognised");
  expectRefusal(folder, "match " + corpus + " --templates-per-word 2", "no recording is left to be recognised");
  expectRefusal(folder, "match " + corpus + " --templates 0 --high-hz 4100", "above half the lowest rate");
  expectRefusal(folder, "match " + corpus + " --templates 0 --low-hz 3900", "not below its upper end");
  expectRefusal(folder, "match " + corpus + " --templates 0 --cepstra 30", "more cepstra than filters");
}

TEST(WordRecogniser, RefusesWrongOptions) {
  for (const char* arguments :
       {"", "match", "recite x", "match x --templates 5-3", "match x --tests a", "match x --templates 1,,2", "match x --filters 1",
        "match x --delta -1", "match x --normalise loudly", "match x --beam nothing", "match x --frobnicate"}) {
    const Outcome outcome = recognise(arguments);
    EXPECT_EQ(outcome.code, 2) << arguments;
    EXPECT_FALSE(outcome.err.empty()) << arguments;
  }
  EXPECT_EQ(recognise("--help").code, 0);
  EXPECT_EQ(recognise("match --help").code, 0);
}

TEST(WordRecogniser, ReportsAreWholeOrAbsent) {
  const Folder folder;
  const std::string start = "match " + quote(makeCorpus(folder, 2)) + " --templates 0 --quiet --pictures 0 --report ";
  fs::create_directory(folder / "mine");
  program::write(folder / "mine" / "letter.txt", "not to be lost");
  const Outcome refused = recognise(start + quote(folder / "mine"));
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("is not a report"), std::string::npos) << refused.err;
  EXPECT_EQ(contents(folder / "mine" / "letter.txt"), "not to be lost");
  EXPECT_EQ(recognise(start + "/proc/report").code, 1);

  EXPECT_EQ(recognise(start + quote(folder / "report")).code, 0);
  program::write(folder / "report" / "left_over.txt", "of an earlier report");
  EXPECT_EQ(recognise(start + quote(folder / "report")).code, 0);
  EXPECT_FALSE(fs::exists(folder / "report" / "left_over.txt"));
  EXPECT_EQ(names(folder.path()), (std::vector<std::string>{"corpus", "mine", "report"}));
}

TEST(WordRecogniser, PicturesOrOneLineWhyNot) {
  const Folder folder;
  const std::string start = "match " + quote(makeCorpus(folder, 2)) + " --templates 0 --quiet --report " + quote(folder / "report");
  const Outcome without = recognise(start, "PATH=/nowhere");
  EXPECT_EQ(without.code, 0) << without.err;
  EXPECT_EQ(lineCount(without.err), 1U) << without.err;
  EXPECT_NE(without.err.find("gnuplot"), std::string::npos) << without.err;
  EXPECT_EQ(names(folder / "report"), (std::vector<std::string>{"confusion.tsv", "index.html", "results.tsv"}));
  if (std::system("gnuplot --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "gnuplot is not installed";
  const Outcome with = recognise(start + " --pictures 2");
  EXPECT_EQ(with.code, 0);
  EXPECT_TRUE(with.err.empty()) << with.err;
  const std::string page = contents(folder / "report" / "index.html");
  EXPECT_NE(page.find("src=\"utterance1.png\""), std::string::npos);
  EXPECT_EQ(contents(folder / "report" / "utterance1.png").substr(1, 3), "PNG");
}

}  // namespace
