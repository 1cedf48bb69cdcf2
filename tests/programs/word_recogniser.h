// Runs of word_recogniser on small corpora made on the spot.
#pragma once

#include <algorithm>
#include <sstream>

#include "programs/program.h"

namespace word_recogniser {

using program::contents;
using program::Folder;
using program::lineCount;
using program::Outcome;
using program::quote;
namespace fs = std::filesystem;

inline constexpr const char* wordNames[] = {"uno", "due", "tre", "sei"};
constexpr const char* speakerNames[] = {"anna", "bruno"};

inline fs::path makeCorpus(const Folder& folder, int indices, const std::vector<int>& rates = {8000}) {
  fs::path corpus = folder / "corpus";
  fs::create_directory(corpus);
  for (int word = 0; word < 4; ++word) {
    for (int speaker = 0; speaker < 2; ++speaker) {
      for (int index = 0; index < indices; ++index) {
        const int rate = rates[static_cast<size_t>(word + speaker + index) % rates.size()];
        const std::string name = std::string(wordNames[word]) + "_" + speakerNames[speaker] + "_" + std::to_string(index) + ".wav";
        program::write(corpus / name, program::wav(program::spoken(word, speaker, index, rate), rate));
      }
    }
  }
  return corpus;
}

inline Outcome recognise(const std::string& arguments, const std::string& environment = "") {
  return program::run(WORD_RECOGNISER, arguments, environment);
}

// The accuracy line's two numbers, "32 of 32".
inline std::string accuracy(const Outcome& outcome) {
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("accuracy", 0) == 0) return line.substr(line.rfind("   ") + 3);
  }
  return "no accuracy line";
}

inline std::vector<std::string> names(const fs::path& folder) {
  std::vector<std::string> result;
  for (const auto& entry : fs::directory_iterator(folder)) result.push_back(entry.path().filename().string());
  std::sort(result.begin(), result.end());
  return result;
}

// A run that is refused: the exit code, one line on stderr that holds the words, and nothing left in the folder but what was there.
inline void expectRefusal(const Folder& folder, const std::string& arguments, const std::string& words) {
  const std::vector<std::string> before = names(folder.path());
  const Outcome outcome = recognise(arguments + " --quiet --report " + quote(folder / "report"));
  EXPECT_EQ(outcome.code, 1) << outcome.err;
  EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
  EXPECT_EQ(names(folder.path()), before);
}

}  // namespace word_recogniser
