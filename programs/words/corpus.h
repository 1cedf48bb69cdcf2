// The corpus: a folder of recordings named WORD_SPEAKER_INDEX.wav, and how it is split into templates and tests.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/skipped.h"
#include "common/wav.h"

namespace words {

struct Recording {
  std::filesystem::path file;
  std::string name;  ///< the file's name without .wav
  std::string word, speaker;
  int index = 0;
  program::Sound sound;
};

struct Corpus {
  std::vector<Recording> recordings;         ///< by word, speaker, index
  std::vector<std::string> words, speakers;  ///< each once, in order ("2" before "10")
  std::vector<program::Skipped> skipped;

  int wordNumber(const std::string& word) const;
  /** Adds a word to the vocabulary, if it is new. */
  void addWord(const std::string& word);
  int speakerNumber(const std::string& speaker) const;
  int lowestRate() const;
  double seconds() const;
};

/** Reads every file of the folder; what cannot be used is listed in Corpus::skipped. Throws Fault when the folder cannot be read.
 */
Corpus readCorpus(const std::filesystem::path& folder, bool quiet);

/** Index ranges: "0-4", "3", "0-4,10-12". */
class IndexRanges {
 public:
  /** Throws std::invalid_argument with a clear sentence. */
  static IndexRanges parse(const std::string& text);
  bool contains(int index) const;
  /** An index that both hold. */
  std::optional<int> common(const IndexRanges& other) const;
  /** As it was written. */
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  std::vector<std::pair<int, int>> ranges_;
};

struct SplitOptions {
  std::optional<IndexRanges> templates, tests;  ///< by index
  std::optional<int> perWord;                   ///< the first so many recordings of a word and speaker teach, the rest are tests
  std::string leaveOut;                         ///< a speaker, "each", or empty

  bool empty() const { return !templates && !tests && !perWord && leaveOut.empty(); }
};

inline constexpr int usualPerWord = 5;  ///< templates a word and speaker, where nothing is asked for

/** One experiment: which recordings teach and which are recognised, as numbers of Corpus::recordings. */
struct Trial {
  std::string title;  ///< the speaker left out, or empty
  std::vector<size_t> templates, tests;
};

/** The trials that the options ask for: one, or one a speaker. Ranges that overlap are refused, unless the speakers differ. Tests of words without a template are dropped and counted in
 *  untaught. Throws Fault when a trial has no template or nothing remains to be recognised. */
std::vector<Trial> split(const Corpus& corpus, const SplitOptions& options, size_t& untaught);

/** The one trial that the options ask for, to be taught from or tested alone: without options both halves hold every recording.
 * Throws Fault for "each". */
Trial half(const Corpus& corpus, const SplitOptions& options);

/** Which recordings are a template in some trial. */
std::vector<bool> templatesOf(const Corpus& corpus, const std::vector<Trial>& trials);

}  // namespace words
