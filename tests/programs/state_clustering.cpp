// state_clustering on a small corpus made on the spot: the tree that it grows, and the inputs that it refuses.
#include "programs/program.h"

namespace {

using program::Folder;
using program::Outcome;
namespace fs = std::filesystem;

constexpr int rate = 8000;

// Two sorts of sound: "a", "e" are harmonics with a resonance, "s", "f" are noise, sharp or dull.
std::vector<float> sound(char phone, int count, program::Noise& noise) {
  std::vector<float> samples;
  float last = 0;
  for (int i = 0; i < count; ++i) {
    const double t = static_cast<double>(i) / rate, f = phone == 'a' ? 700 : 400;
    const float fresh = noise.next();
    double value = 0;
    if (phone == 'a' || phone == 'e') {
      for (int h = 1; h <= 20; ++h) {
        const double distance = (h * 120 - f) / 150;
        value += 0.2 / (1 + distance * distance) * std::sin(2 * std::numbers::pi * h * 120 * t);
      }
    } else {
      value = static_cast<double>(phone == 's' ? 0.2F * (fresh - last) : 0.2F * (fresh + last));
    }
    last = fresh;
    samples.push_back(static_cast<float>(value) + 0.01F * noise.next());
  }
  return samples;
}

// Words are rows of these phones; each is said by two "speakers" several times, at other tempos.
fs::path makeCorpus(const Folder& folder) {
  fs::path corpus = folder / "corpus";
  fs::create_directory(corpus);
  uint32_t seed = 1;
  for (const std::string word : {"sa", "se", "fa", "fe", "as", "ef", "safe"}) {
    for (int index = 0; index < 6; ++index) {
      program::Noise noise(seed++);
      std::vector<float> samples;
      for (const char phone : word) {
        const auto part = sound(phone, rate / 8 + 100 * index, noise);
        samples.insert(samples.end(), part.begin(), part.end());
      }
      const std::string name = word + (index % 2 == 0 ? "_anna_" : "_bruno_") + std::to_string(index) + ".wav";
      program::write(corpus / name, program::wav(samples, rate));
    }
  }
  program::write(folder / "lexicon", "# words\nsa s a\nse s e\nfa f a\nfe f e  # noise first\nas a s\nef e f\nsafe s a f e\n");
  program::write(folder / "classes", "vowel a e\nfricative s f\n");
  return corpus;
}

Outcome cluster(const Folder& folder, const std::string& more = "--frames 10") {
  const auto quoted = [&](const std::string& name) { return " " + program::quote(folder / name); };
  return program::run(STATE_CLUSTERING,
                      quoted("corpus") + " --quiet --lexicon" + quoted("lexicon") + " --classes" + quoted("classes") + " " + more);
}

void expectRefusal(const Outcome& outcome, const std::string& words) {
  EXPECT_EQ(outcome.code, 1) << outcome.err;
  EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.out, "");
}

TEST(StateClustering, AsksFirstWhatSeparatesMost) {
  const Folder folder;
  makeCorpus(folder);
  const Outcome outcome = cluster(folder, "--frames 10 --leaves 4");
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_NE(outcome.out.find("42 recordings"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("4 phones"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("tree of 4 leaves"), std::string::npos) << outcome.out;
  const size_t first = outcome.out.find("\n\n") + 2;  // the root
  EXPECT_EQ(outcome.out.substr(first, 14), "sound: vowel? ") << outcome.out;
  EXPECT_NE(outcome.out.find("gain"), std::string::npos);
  EXPECT_EQ(cluster(folder, "--frames 10 --leaves 4").out, outcome.out);  // the same every time
}

// A leaf of every other tree has at least the likelihood of the one above it: gains are not negative, and more leaves fit better.
double treeLikelihood(const Outcome& outcome) {
  const std::string words = "log likelihood a frame ";
  const size_t at = outcome.out.find(words, outcome.out.find("tree of"));
  return std::atof(outcome.out.c_str() + at + words.size());
}

TEST(StateClustering, MoreLeavesFitBetter) {
  const Folder folder;
  makeCorpus(folder);
  double last = treeLikelihood(cluster(folder, "--frames 10 --leaves 1"));
  for (const char* leaves : {"2", "3", "6"}) {
    const double next = treeLikelihood(cluster(folder, std::string("--frames 10 --gain 0 --leaves ") + leaves));
    EXPECT_GT(next, last) << leaves;
    last = next;
  }
}

TEST(StateClustering, LeavesOutWhatIsNotInTheLexicon) {
  const Folder folder;
  makeCorpus(folder);
  program::write(folder / "lexicon", "sa s a\nfe f e\nzz s s s s s s s s s s s s s s s s s s s s s\n");
  const Outcome outcome = cluster(folder);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.err.find("left out: 30 recordings"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.out.find("12 recordings"), std::string::npos) << outcome.out;
  program::write(folder / "lexicon", "sa s a s a s a s a s a s a s a s a s a s a s a s a s a s a\nfe f e\n");
  EXPECT_NE(cluster(folder).err.find("too short for their phones"), std::string::npos);
}

TEST(StateClustering, RefusesWhatItCannotUse) {
  const Folder folder;
  makeCorpus(folder);
  expectRefusal(cluster(folder, "--frames 100000"), "too few frames");
  program::write(folder / "lexicon", "other s a\n");
  expectRefusal(cluster(folder), "no recording of a word in the lexicon");
  program::write(folder / "lexicon", "sa\n");
  expectRefusal(cluster(folder), "line 1: no phone behind sa");
  program::write(folder / "lexicon", "sa s a\n\nsa s e\n");
  expectRefusal(cluster(folder), "line 3: sa stands here a second time");
  program::write(folder / "lexicon", "# nothing\n");
  expectRefusal(cluster(folder), "holds nothing");
  program::write(folder / "lexicon", "sa s - a\n");
  expectRefusal(cluster(folder), "silence");
  fs::remove(folder / "lexicon");
  expectRefusal(cluster(folder), "cannot be opened");
}

TEST(StateClustering, RefusesBadCorporaAndCommandLines) {
  const Folder folder;
  const fs::path corpus = makeCorpus(folder);
  EXPECT_EQ(cluster(folder, "--leaves 0").code, 2);
  EXPECT_EQ(program::run(STATE_CLUSTERING, "").code, 2);
  fs::remove_all(corpus);
  expectRefusal(cluster(folder), "does not exist");
  fs::create_directory(corpus);
  expectRefusal(cluster(folder), "is empty");
  program::write(corpus / "sa_anna_0.wav", "RIFF");
  EXPECT_EQ(cluster(folder).code, 1);
}

}  // namespace
