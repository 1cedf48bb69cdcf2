#include "words/corpus.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>
#include <system_error>
#include <tuple>

#include "common/fault.h"
#include "common/progress.h"

namespace fs = std::filesystem;

namespace words {
namespace {

constexpr double maximumSeconds = 60;
constexpr int maximumIndex = 1'000'000'000;

bool naturalLess(const std::string& a, const std::string& b) { return strverscmp(a.c_str(), b.c_str()) < 0; }

std::optional<int> wholeNumber(const std::string& text) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || value < 0 || value > maximumIndex || text.front() == '-') return std::nullopt;
  return value;
}

bool hasWavEnding(const fs::path& file) {
  std::string ending = file.extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char c) { return std::tolower(c); });
  return ending == ".wav";
}

// From the right, so that a word may hold an underscore: WORD_SPEAKER_INDEX.
bool parseName(Recording& recording) {
  const std::string& name = recording.name;
  const size_t second = name.rfind('_');
  const size_t first = second == std::string::npos || second == 0 ? std::string::npos : name.rfind('_', second - 1);
  if (first == std::string::npos || first == 0 || second - first < 2) return false;
  const std::optional<int> index = second + 1 < name.size() ? wholeNumber(name.substr(second + 1)) : std::nullopt;
  if (!index) return false;
  recording.word = name.substr(0, first);
  recording.speaker = name.substr(first + 1, second - first - 1);
  recording.index = *index;
  return true;
}

Recording readRecording(const fs::path& file) {
  program::checkName(file);
  if (!fs::is_regular_file(file)) throw program::BadSound("not a file");
  if (!hasWavEnding(file)) throw program::BadSound("not a WAV file (its name does not end in .wav)");
  Recording recording{file, file.stem().string(), {}, {}, 0, {}};
  if (!parseName(recording)) throw program::BadSound("its name is not WORD_SPEAKER_INDEX.wav");
  recording.sound = program::readWav(file, maximumSeconds);
  const auto [least, most] = std::minmax_element(recording.sound.samples.begin(), recording.sound.samples.end());
  if (*least == *most) throw program::BadSound("holds nothing but silence");
  return recording;
}

std::vector<fs::path> filesOf(const fs::path& folder) {
  std::error_code error;
  if (!fs::exists(folder, error)) throw program::Fault("corpus folder " + folder.string() + " does not exist");
  if (!fs::is_directory(folder, error)) throw program::Fault("corpus " + folder.string() + " is not a folder");
  std::vector<fs::path> files;
  fs::directory_iterator entries(folder, error);
  if (error) throw program::Fault("corpus folder " + folder.string() + " cannot be read: " + error.message());
  for (const fs::directory_entry& entry : entries) {
    if (entry.path().filename().string().front() != '.') files.push_back(entry.path());
  }
  if (files.empty()) throw program::Fault("corpus folder " + folder.string() + " is empty");
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::string> inOrder(const std::set<std::string>& names) {
  std::vector<std::string> list(names.begin(), names.end());
  std::sort(list.begin(), list.end(), naturalLess);
  return list;
}

int placeIn(const std::vector<std::string>& names, const std::string& name) {
  return static_cast<int>(std::find(names.begin(), names.end(), name) - names.begin());
}

// The recordings that may teach and those that may be recognised, before any speaker is left out.
Trial splitByIndex(const Corpus& corpus, const SplitOptions& options) {
  Trial trial;
  std::map<std::pair<std::string, std::string>, int> seen;
  const bool byIndex = options.templates || options.tests;
  for (size_t r = 0; r < corpus.recordings.size(); ++r) {
    const Recording& recording = corpus.recordings[r];
    bool teaches = true, asked = true;
    if (byIndex) {
      const bool inTemplates = options.templates && options.templates->contains(recording.index);
      const bool inTests = options.tests && options.tests->contains(recording.index);
      teaches = options.templates ? inTemplates : !inTests;
      asked = options.tests ? inTests : !inTemplates;
    } else if (options.leaveOut.empty()) {
      teaches = seen[{recording.word, recording.speaker}]++ < options.perWord.value_or(usualPerWord);
      asked = !teaches;
    }
    if (teaches) trial.templates.push_back(r);
    if (asked) trial.tests.push_back(r);
  }
  return trial;
}

Trial withoutSpeaker(const Corpus& corpus, const Trial& all, const std::string& speaker) {
  Trial trial{speaker, {}, {}};
  for (const size_t r : all.templates) {
    if (corpus.recordings[r].speaker != speaker) trial.templates.push_back(r);
  }
  for (const size_t r : all.tests) {
    if (corpus.recordings[r].speaker == speaker) trial.tests.push_back(r);
  }
  return trial;
}

std::vector<Trial> trialsOf(const Corpus& corpus, const SplitOptions& options) {
  if (options.templates && options.tests && options.leaveOut.empty()) {
    if (const std::optional<int> both = options.templates->common(*options.tests)) {
      throw program::Fault("index " + std::to_string(*both) +
                           " is to teach and to be recognised; choose ranges that do not overlap");
    }
  }
  const Trial all = splitByIndex(corpus, options);
  if (options.leaveOut.empty()) return {all};
  std::vector<Trial> trials;
  for (const std::string& speaker : corpus.speakers) {
    if (options.leaveOut == "each" || options.leaveOut == speaker) trials.push_back(withoutSpeaker(corpus, all, speaker));
  }
  if (trials.empty()) throw program::Fault("there is no speaker '" + options.leaveOut + "' to leave out");
  return trials;
}

size_t dropUntaught(const Corpus& corpus, Trial& trial) {
  std::set<std::string> taught;
  for (const size_t r : trial.templates) taught.insert(corpus.recordings[r].word);
  return std::erase_if(trial.tests, [&](size_t r) { return !taught.contains(corpus.recordings[r].word); });
}

}  // namespace

int Corpus::wordNumber(const std::string& word) const { return placeIn(words, word); }
int Corpus::speakerNumber(const std::string& speaker) const { return placeIn(speakers, speaker); }

void Corpus::addWord(const std::string& word) {
  if (wordNumber(word) < static_cast<int>(words.size())) return;
  words.insert(std::upper_bound(words.begin(), words.end(), word, naturalLess), word);
}

int Corpus::lowestRate() const {
  int rate = program::highestRate;
  for (const Recording& recording : recordings) rate = std::min(rate, recording.sound.rate);
  return rate;
}

double Corpus::seconds() const {
  double sum = 0;
  for (const Recording& recording : recordings) sum += recording.sound.seconds();
  return sum;
}

Corpus readCorpus(const fs::path& folder, bool quiet) {
  Corpus corpus;
  const std::vector<fs::path> files = filesOf(folder);
  std::set<std::string> words, speakers;
  {
    program::Progress progress("reading", files.size(), quiet);
    for (const fs::path& file : files) {
      try {
        corpus.recordings.push_back(readRecording(file));
        words.insert(corpus.recordings.back().word);
        speakers.insert(corpus.recordings.back().speaker);
      } catch (const program::BadSound& bad) {
        corpus.skipped.push_back({file.filename().string(), bad.what()});
      }
      progress.step();
    }
  }
  corpus.words = inOrder(words);
  corpus.speakers = inOrder(speakers);
  std::stable_sort(corpus.recordings.begin(), corpus.recordings.end(), [&](const Recording& a, const Recording& b) {
    if (a.word != b.word) return naturalLess(a.word, b.word);
    return std::tie(a.speaker, a.index) < std::tie(b.speaker, b.index);
  });
  return corpus;
}

IndexRanges IndexRanges::parse(const std::string& text) {
  IndexRanges result;
  result.text_ = text;
  size_t begin = 0;
  while (begin <= text.size()) {
    const size_t end = std::min(text.find(',', begin), text.size());
    const std::string part = text.substr(begin, end - begin);
    const size_t dash = part.find('-');
    const std::optional<int> first = part.empty() || dash == 0 ? std::nullopt : wholeNumber(part.substr(0, dash));
    std::optional<int> last = first;
    if (dash != std::string::npos) last = dash + 1 < part.size() ? wholeNumber(part.substr(dash + 1)) : std::nullopt;
    if (!first || !last || *last < *first)
      throw std::invalid_argument("'" + text + "' is not an index range such as 0-4 or 0-4,10-12");
    result.ranges_.emplace_back(*first, *last);
    begin = end + 1;
  }
  return result;
}

bool IndexRanges::contains(int index) const {
  return std::any_of(ranges_.begin(), ranges_.end(),
                     [&](const auto& range) { return index >= range.first && index <= range.second; });
}

std::optional<int> IndexRanges::common(const IndexRanges& other) const {
  for (const auto& range : ranges_) {
    for (const auto& its : other.ranges_) {
      const int first = std::max(range.first, its.first);
      if (first <= std::min(range.second, its.second)) return first;
    }
  }
  return std::nullopt;
}

std::vector<Trial> split(const Corpus& corpus, const SplitOptions& options, size_t& untaught) {
  std::vector<Trial> trials = trialsOf(corpus, options);
  untaught = 0;
  size_t tests = 0;
  for (Trial& trial : trials) {
    const std::string where = trial.title.empty() ? "" : " when " + trial.title + " is left out";
    if (trial.templates.empty()) throw program::Fault("no recording is a template" + where);
    untaught += dropUntaught(corpus, trial);
    tests += trial.tests.size();
  }
  if (tests == 0) {
    throw program::Fault(
        "no recording is left to be recognised; choose another split (--templates-per-word, --templates, --tests, "
        "--leave-out)");
  }
  return trials;
}

Trial half(const Corpus& corpus, const SplitOptions& options) {
  if (options.empty()) {
    Trial all;
    for (size_t r = 0; r < corpus.recordings.size(); ++r) all.templates.push_back(r);
    all.tests = all.templates;
    return all;
  }
  if (options.leaveOut == "each") throw program::Fault("one speaker can be left out here, not each in turn");
  return trialsOf(corpus, options).front();
}

std::vector<bool> templatesOf(const Corpus& corpus, const std::vector<Trial>& trials) {
  std::vector<bool> used(corpus.recordings.size());
  for (const Trial& trial : trials) {
    for (const size_t r : trial.templates) used[r] = true;
  }
  return used;
}

}  // namespace words
