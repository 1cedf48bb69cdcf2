// Grows a phonetic decision tree over the states of recorded words and prints it.
//
// Each recording is cut into the phones of its word, each phone into parts; a part between two neighbours is a state with a single
// Gaussian. The tree asks about the sound, its neighbours and the part, and takes the question that raises the likelihood most.
#include <algorithm>
#include <cstdio>
#include <set>

#include "common/command_line.h"
#include "common/text.h"
#include "pronunciation.h"
#include "questions.h"
#include "segmentation.h"
#include "tree.h"
#include "words/feature_set.h"

namespace {

using program::fixed;

struct Options {
  std::filesystem::path corpus, lexicon, classes;
  int rounds = 6, parts = 3;
  bool quiet = false;
  states::TreeOptions tree;
};

// Numbers for the phones of a lexicon, silence last.
std::vector<std::string> phonesOf(const states::Lexicon& lexicon) {
  std::set<std::string> names;
  for (const auto& [word, phones] : lexicon) names.insert(phones.begin(), phones.end());
  std::vector<std::string> list(names.begin(), names.end());
  list.emplace_back(states::silence);
  return list;
}

int numberOf(const std::vector<std::string>& phones, const std::string& name) {
  return static_cast<int>(std::find(phones.begin(), phones.end(), name) - phones.begin());
}

// What is clustered: the recordings whose word is in the lexicon and that are long enough, and the phones that they hold.
struct Speech {
  std::vector<std::string> phones;
  std::vector<states::Utterance> utterances;
};

Speech speechOf(const words::Corpus& corpus, const std::vector<words::Matrix>& features, const states::Lexicon& lexicon) {
  size_t unknown = 0, tooShort = 0;
  states::Lexicon heard;
  std::vector<size_t> kept;
  for (size_t i = 0; i < features.size(); ++i) {
    const auto entry = lexicon.find(corpus.recordings[i].word);
    if (entry == lexicon.end()) {
      ++unknown;
    } else if (features[i].rows < states::fewestFramesAPhone * static_cast<int>(entry->second.size())) {
      ++tooShort;
    } else {
      heard.insert(*entry);
      kept.push_back(i);
    }
  }
  if (unknown > 0) std::fprintf(stderr, "left out: %zu recordings of words that are not in the lexicon\n", unknown);
  if (tooShort > 0) std::fprintf(stderr, "left out: %zu recordings too short for their phones\n", tooShort);
  if (kept.empty()) throw program::Fault("no recording of a word in the lexicon");
  Speech speech{phonesOf(heard), {}};
  for (const size_t i : kept) {
    states::Utterance utterance{&features[i], {}, {}};
    for (const std::string& phone : heard[corpus.recordings[i].word]) utterance.phones.push_back(numberOf(speech.phones, phone));
    speech.utterances.push_back(std::move(utterance));
  }
  return speech;
}

void run(const Options& options) {
  const states::Lexicon lexicon = states::readLexicon(options.lexicon);
  const std::vector<states::PhoneClass> classes = states::readClasses(options.classes);
  words::Corpus corpus = words::openCorpus(options.corpus, options.quiet);
  words::FrontEndOptions frontEnd;
  words::settle(frontEnd, corpus);
  words::FrontEnds frontEnds(frontEnd);
  program::Stopwatch watch;
  const std::vector<words::Matrix> features = words::analyseAll(frontEnds, corpus, options.quiet, watch);
  auto [phones, utterances] = speechOf(corpus, features, lexicon);

  const auto phoneCount = static_cast<int>(phones.size()) - 1;
  const std::vector<double> history = states::segment(utterances, phoneCount, options.rounds);
  const auto contexts = states::gather(utterances, options.parts, phoneCount);
  const auto questions = states::askable(contexts, classes, phones, options.parts);
  const auto tree = states::growTree(contexts, questions, options.tree);

  double leaves = 0, likelihood = 0;
  for (const states::Node& node : tree) {
    if (node.question < 0) ++leaves, likelihood += node.logLikelihood;
  }
  const auto frames = static_cast<double>(tree[0].frames);
  std::printf("%zu recordings, %.0f frames, %d phones, %zu states, %zu questions\n", utterances.size(), frames, phoneCount,
              contexts.size(), questions.size());
  std::printf("segmentation: log likelihood a frame %s after %d rounds, %s at first\n", fixed(history.back(), 3).c_str(),
              options.rounds, fixed(history.front(), 3).c_str());
  std::printf("tree of %.0f leaves: log likelihood a frame %s, of one Gaussian %s\n\n%s", leaves,
              fixed(likelihood / frames, 3).c_str(), fixed(tree[0].logLikelihood / frames, 3).c_str(),
              states::describe(tree, questions, contexts, phones).c_str());
}

void addOptions(CLI::App& app, Options& options) {
  app.add_option("corpus", options.corpus, "Folder of recordings WORD_SPEAKER_INDEX.wav")->required()->type_name("CORPUS");
  app.add_option("--lexicon", options.lexicon, "Lines WORD PHONE PHONE ...; recordings of other words are left out")
      ->required()
      ->type_name("FILE");
  app.add_option("--classes", options.classes, "Lines CLASS PHONE PHONE ...: what may be asked about")
      ->required()
      ->type_name("FILE");
  app.add_option("--leaves", options.tree.leaves, "Leaves at most")->check(program::inRange(1, 100000))->capture_default_str();
  app.add_option("--frames", options.tree.frames, "Frames of a leaf at least")
      ->check(program::inRange(1.0F, 1e9F))
      ->capture_default_str();
  app.add_option("--gain", options.tree.gain, "Gain of a question at least, as a share of what one leaf a state would gain")
      ->check(program::inRange(0.0, 1.0))
      ->capture_default_str();
  app.add_option("--rounds", options.rounds, "Rounds of segmentation")->check(program::inRange(1, 1000))->capture_default_str();
  app.add_option("--parts", options.parts, "States of a phone, one behind the other")
      ->check(program::inRange(1, 9))
      ->capture_default_str();
  app.add_flag("--quiet", options.quiet, "No progress");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Grows a phonetic decision tree over the states of recorded words and prints it with the gain of each question.");
  Options options;
  addOptions(app, options);
  return program::runProgram("state_clustering", app, argc, argv, [&] { run(options); });
}
