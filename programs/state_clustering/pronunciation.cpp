#include "pronunciation.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "common/fault.h"
#include "common/files.h"

namespace states {
namespace {

using Line = std::pair<std::string, std::vector<std::string>>;

std::vector<Line> readLines(const std::filesystem::path& file) {
  std::ifstream in = program::openFile(file);
  std::vector<Line> lines;
  std::set<std::string> seen;
  int number = 0;
  for (std::string text; std::getline(in, text);) {
    ++number;
    std::istringstream words(text.substr(0, text.find('#')));
    Line line;
    if (!(words >> line.first)) continue;
    for (std::string word; words >> word;) line.second.push_back(word);
    const std::string place = file.string() + ": line " + std::to_string(number) + ": ";
    if (line.second.empty()) throw program::Fault(place + "no phone behind " + line.first);
    if (!seen.insert(line.first).second) throw program::Fault(place + line.first + " stands here a second time");
    lines.push_back(std::move(line));
  }
  if (lines.empty()) throw program::Fault(file.string() + ": holds nothing");
  return lines;
}

}  // namespace

Lexicon readLexicon(const std::filesystem::path& file) {
  const std::vector<Line> lines = readLines(file);
  for (const auto& [word, phones] : lines) {
    if (std::find(phones.begin(), phones.end(), silence) != phones.end()) {
      throw program::Fault(file.string() + ": " + word + " holds " + silence + ", which stands for silence around words");
    }
  }
  return {lines.begin(), lines.end()};
}

std::vector<PhoneClass> readClasses(const std::filesystem::path& file) {
  std::vector<PhoneClass> classes;
  for (const auto& [name, phones] : readLines(file)) classes.push_back({name, {phones.begin(), phones.end()}});
  return classes;
}

}  // namespace states
