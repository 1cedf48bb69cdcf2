// How words are pronounced, and what phones have in common.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace states {

inline constexpr const char* silence = "-";  ///< stands in front of the first and behind the last phone of a word

/** Lines "WORD PHONE PHONE ..."; what follows a # is a comment. */
using Lexicon = std::map<std::string, std::vector<std::string>>;

/** Lines "CLASS PHONE PHONE ...", such as "nasal m n". */
struct PhoneClass {
  std::string name;
  std::set<std::string> phones;
};

/** Both throw program::Fault for a file that cannot be read, is empty, or has a line of one word or the same first word twice. */
Lexicon readLexicon(const std::filesystem::path& file);
std::vector<PhoneClass> readClasses(const std::filesystem::path& file);

}  // namespace states
