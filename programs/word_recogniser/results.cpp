#include "results.h"

namespace words {

bool isRight(const Corpus& corpus, const Result& result) {
  return result.decision.word == corpus.wordNumber(corpus.recordings[result.recording].word);
}

std::string heardWord(const Corpus& corpus, int word) { return word < 0 ? "(nothing)" : corpus.words[static_cast<size_t>(word)]; }

Score score(const Corpus& corpus, const std::vector<Result>& results) {
  const size_t words = corpus.words.size();
  Score score{{}, std::vector<Tally>(words), std::vector<Tally>(corpus.speakers.size()), {}};
  score.confusion.assign(words, std::vector<size_t>(words + 1));
  for (const Result& result : results) {
    const Recording& recording = corpus.recordings[result.recording];
    const auto said = static_cast<size_t>(corpus.wordNumber(recording.word));
    const size_t heard = result.decision.word < 0 ? words : static_cast<size_t>(result.decision.word);
    const bool right = said == heard;
    score.all.count(right);
    score.byWord[said].count(right);
    score.bySpeaker[static_cast<size_t>(corpus.speakerNumber(recording.speaker))].count(right);
    ++score.confusion[said][heard];
  }
  return score;
}

}  // namespace words
