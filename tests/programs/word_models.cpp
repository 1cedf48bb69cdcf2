// word_recogniser with trained models: training, model files good and bad, and the comparison with templates.
#include <cstdlib>

#include "programs/word_recogniser.h"

namespace {

using namespace word_recogniser;

// Trains on the first two indices.
std::string trainOn(const fs::path& corpus, const Folder& folder, const std::string& training = "--gaussians 2") {
  return "train " + quote(corpus) + " --train 0-1 --states 5 --frames-per-gaussian 4 --quiet --pictures 0 --model " +
         quote(folder / "words.model") + " --report " + quote(folder / "report") + " " + training;
}

std::string testOn(const fs::path& corpus, const Folder& folder, const std::string& more = "") {
  return "test " + quote(corpus) + " --quiet --pictures 0 --model " + quote(folder / "words.model") + " --report " +
         quote(folder / "report") + " " + more;
}

// The fourth column of iterations.tsv.
std::vector<double> likelihoods(const fs::path& table) {
  std::istringstream lines(contents(table));
  std::vector<double> result;
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream cells(line);
    std::string cell;
    for (int i = 0; i < 4; ++i) std::getline(cells, cell, '\t');
    result.push_back(std::atof(cell.c_str()));
  }
  return result;
}

TEST(WordModels, TrainedModelsRecognise) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 4);
  const Outcome trained = recognise(trainOn(corpus, folder));
  ASSERT_EQ(trained.code, 0) << trained.err;
  EXPECT_NE(trained.out.find("4 models of 5 states"), std::string::npos) << trained.out;
  EXPECT_NE(trained.out.find("from 16 recordings"), std::string::npos) << trained.out;
  const Outcome tested = recognise(testOn(corpus, folder, "--tests 2-3"));
  ASSERT_EQ(tested.code, 0) << tested.err;
  EXPECT_EQ(accuracy(tested), "16 of 16") << tested.out;
  EXPECT_EQ(accuracy(recognise(testOn(corpus, folder))), "32 of 32");
  EXPECT_EQ(accuracy(recognise(testOn(corpus, folder, "--tests 2-3 --leave-out anna"))), "8 of 8");
  EXPECT_NE(recognise(testOn(corpus, folder, "--noise-db 20")).out.find("noise 20.0 dB below"), std::string::npos);
}

TEST(WordModels, LikelihoodNeverFalls) {
  const Folder folder;
  ASSERT_EQ(recognise(trainOn(makeCorpus(folder, 4), folder, "--gaussians 4 --iterations 30 --variance-floor 0.05")).code, 0);
  const std::vector<double> rising = likelihoods(folder / "report" / "iterations.tsv");
  ASSERT_GT(rising.size(), 6U);
  for (size_t i = 1; i < rising.size(); ++i) EXPECT_GE(rising[i], rising[i - 1] - 2e-4) << "iteration " << i + 1;
  EXPECT_GT(rising.back(), rising.front());
}

TEST(WordModels, CopiesInNoiseTeachToo) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 3);
  const Outcome trained = recognise(trainOn(corpus, folder, "--noise-db 10,0"));
  ASSERT_EQ(trained.code, 0) << trained.err;
  EXPECT_NE(trained.out.find("from 16 recordings and 32 copies in noise"), std::string::npos) << trained.out;
  EXPECT_NE(contents(folder / "report" / "index.html").find("10 dB, 0 dB"), std::string::npos);
  EXPECT_EQ(accuracy(recognise(testOn(corpus, folder, "--tests 2 --noise-db 0"))), "8 of 8");
}

TEST(WordModels, SameTrainingSameFiles) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 3);
  ASSERT_EQ(recognise(trainOn(corpus, folder)).code, 0);
  const std::string models = contents(folder / "words.model"), history = contents(folder / "report" / "iterations.tsv");
  ASSERT_EQ(recognise(trainOn(corpus, folder)).code, 0);
  EXPECT_EQ(contents(folder / "words.model"), models);
  EXPECT_EQ(contents(folder / "report" / "iterations.tsv"), history);
}

TEST(WordModels, RefusesBadModelFiles) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 3);
  ASSERT_EQ(recognise(trainOn(corpus, folder)).code, 0);
  fs::remove_all(folder / "report");
  const fs::path file = folder / "words.model";
  const std::string good = contents(file);
  const auto expectBad = [&](const std::string& bytes, const std::string& words) {
    program::write(file, bytes);
    expectRefusal(folder, "test " + quote(corpus) + " --model " + quote(file), words);
  };
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string text = good;
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  };
  expectRefusal(folder, "test " + quote(corpus) + " --model " + quote(folder / "none"), "cannot be opened");
  expectBad("", "is not a file of word models");
  expectBad("RIFF and so on", "is not a file of word models");
  for (const size_t part : {2, 3, 7, 20, 100}) expectBad(good.substr(0, good.size() - good.size() / part), "cut short");
  expectBad(good.substr(0, good.size() - 6), "cut short");
  expectBad(changed("cepstra 12", "cepstra 11"), "is not that of its front-end");
  expectBad(changed("width 39", "width 40"), "is not that of its front-end");
  expectBad(changed("words 4", "words 5"), "damaged");
  expectBad(changed("words 4", "words 0"), "impossible number of words");
  expectBad(changed("states 5", "states 4"), "damaged");
  expectBad(changed("gaussians ", "gaussians 9"), "damaged");
  expectBad(changed("variance ", "variance -"), "a variance is not positive");
  expectBad(changed("mean ", "mean nan "), "damaged");
  expectBad(changed("high-hz 3800", "high-hz 4500"), "above half the lowest rate");
  expectBad(changed("hop-ms 10", "hop-ms 0"), "hop-ms is out of its range");
  expectBad(changed("filters 24", "filters 2000000000"), "filters is out of its range");
  expectBad(changed("\"tre\"", "\"sei\""), "a word stands twice");
  expectBad(changed("\"tre\"", "\"t\nre\""), "a word holds a control character");
  for (const char* more : {"x", "end\n", "word_recogniser-models-1"}) expectBad(good + more, "something follows its end");
  program::write(file, good + " \n\n");
  EXPECT_EQ(recognise(testOn(corpus, folder)).code, 0);
}

TEST(WordModels, AreWrittenToARegularFileOnly) {
  const Folder folder;
  const std::string start = "train " + quote(makeCorpus(folder, 2)) + " --states 4 --gaussians 1 --pictures 0 --model ";
  program::write(folder / "mine", "not to be lost");
  fs::create_symlink(folder / "mine", folder / "link");
  fs::create_symlink(folder / "nowhere", folder / "loose");
  fs::create_directory(folder / "folder");
  ASSERT_EQ(std::system(("mkfifo " + quote(folder / "pipe")).c_str()), 0);
  for (const auto& [name, why] : {std::pair("link", "it is a link; name the file itself"),
                                  {"loose", "it is a link; name the file itself"},
                                  {"folder", "it is a folder"},
                                  {"pipe", "it is not a regular file"},
                                  {"mine/words", "Not a directory"},
                                  {"none/words", "No such file or directory"}}) {
    SCOPED_TRACE(name);
    expectRefusal(folder, start + quote(folder / name), std::string(name) + " cannot be written: " + why);
  }
  expectRefusal(folder, start + "/dev/null", "/dev/null cannot be written: it is not a regular file");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
  EXPECT_TRUE(fs::is_symlink(folder / "link") && fs::is_symlink(folder / "loose"));
  EXPECT_EQ(contents(folder / "mine"), "not to be lost");
  EXPECT_EQ(recognise(start + quote(folder / "mine") + " --quiet --report " + quote(folder / "report")).code, 0);
  EXPECT_NE(contents(folder / "mine").find("word_recogniser-models"), std::string::npos);
}

TEST(WordModels, TestsSpeakOfModels) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 4);
  ASSERT_EQ(recognise(trainOn(corpus, folder)).code, 0);
  for (const auto& [split, words] : {std::pair("", "all recordings tested"),
                                     {"--tests 2-3", "; tests 2-3\n"},
                                     {"--train 0-1", "; tests all but 0-1\n"},
                                     {"--templates-per-word 1", "; tests all but the first of each word and speaker\n"},
                                     {"--templates-per-word 2", "; tests all but the first 2 of each word and speaker\n"},
                                     {"--leave-out anna", "; all recordings tested; speaker anna alone\n"}}) {
    const Outcome outcome = recognise(testOn(corpus, folder, split));
    EXPECT_NE(outcome.out.find(words), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("template"), std::string::npos) << outcome.out;
    EXPECT_EQ(contents(folder / "report" / "index.html").find("template"), std::string::npos);
    EXPECT_EQ(contents(folder / "report" / "results.tsv").find("nearest"), std::string::npos);
  }
}

TEST(WordModels, SaysHowManyAreShownOnlyWhereNotAllAre) {
  if (std::system("gnuplot --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "gnuplot is not installed";
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 2);
  const std::string command = "train " + quote(corpus) + " --states 2 --gaussians 1 --iterations 1 --quiet --model " +
                              quote(folder / "words.model") + " --report " + quote(folder / "report");
  const auto page = [&] {
    EXPECT_EQ(recognise(command).code, 0);
    return contents(folder / "report" / "index.html");
  };
  EXPECT_NE(page().find("(4 words)"), std::string::npos);
  for (const auto& entry : std::vector<fs::directory_entry>{fs::directory_iterator(corpus), {}}) {
    const std::string name = entry.path().filename().string();
    for (int copy = 0; copy < 5; ++copy) fs::copy(entry.path(), corpus / (std::to_string(copy) + name));
  }
  EXPECT_NE(page().find("(24 words; the first 20 are shown)"), std::string::npos);
}

TEST(WordModels, RefusesWhatCannotBeTrained) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 2);
  const std::string model = " --model " + quote(folder / "words.model");
  expectRefusal(folder, "train " + quote(folder / "nowhere") + model, "does not exist");
  expectRefusal(folder, "train " + quote(corpus) + model + " --train 7", "has no recording to be trained on");
  expectRefusal(folder, "train " + quote(corpus) + model + " --train 0 --leave-out anna", "has one recording to be trained on");
  expectRefusal(folder, "train " + quote(corpus) + model + " --leave-out each", "one speaker can be left out here");
  expectRefusal(folder, "train " + quote(corpus) + model + " --states 100", "too few for 100 states");
  expectRefusal(folder, "train " + quote(corpus) + " --model " + quote(folder / "nowhere" / "words.model"), "cannot be written");
  const fs::path constant = folder / "constant";
  fs::create_directory(constant);
  std::vector<float> buzz;
  for (int i = 0; i < 8000; ++i) buzz.push_back(i % 80 == 0 ? 0.5F : 0.0F);
  for (const char* name : {"a_x_0.wav", "a_x_1.wav", "b_x_0.wav", "b_x_1.wav"}) {
    program::write(constant / name, program::wav(buzz, 8000));
  }
  expectRefusal(folder, "train " + quote(constant) + model + " --normalise mean", "is the same in all recordings");
}

TEST(WordModels, UnknownWordsAreCounted) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder, 3);
  ASSERT_EQ(recognise(trainOn(corpus, folder)).code, 0);
  const std::vector<float> sound = program::spoken(2, 0, 0, 8000);
  program::write(corpus / "nove_anna_0.wav", program::wav(sound, 8000));
  const Outcome outcome = recognise(testOn(corpus, folder));
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find("1 recordings not tested"), std::string::npos) << outcome.out;
  EXPECT_EQ(accuracy(outcome), "24 of 24");
}

TEST(WordModels, ComparedWithTemplates) {
  const Folder folder;
  const Outcome outcome =
      recognise("compare " + quote(makeCorpus(folder, 3)) +
                " --train 0-1 --states 5 --gaussians 2 --noise-db 30 --quiet --pictures 0 --report " + quote(folder / "report"));
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  const std::string table = contents(folder / "report" / "comparison.tsv");
  EXPECT_EQ(lineCount(table), 5U) << table;
  EXPECT_NE(table.find("none\t100.00 %\t100.00 %\t100.00 %\t8\n"), std::string::npos) << table;
  EXPECT_NE(table.find("each speaker left out in turn\t30 dB"), std::string::npos) << table;
}

}  // namespace
