// Trained models in a file, with the front-end that they were trained behind.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "hidden_markov.h"
#include "words/front_end.h"

namespace words {

struct ModelFile {
  FrontEndOptions frontEnd;
  std::vector<std::string> words;  ///< by the word numbers of models
  WordModels models;
};

/** What stands in the file. */
std::string textOf(const ModelFile& models);

/** Throws program::Fault for a file that is missing, cut short, of another kind, that goes on behind its end, or whose shapes or
 * values do not fit together. */
ModelFile readModels(const std::filesystem::path& file);

}  // namespace words
