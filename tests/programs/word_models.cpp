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
