// Pictures of training and of results.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "model_file.h"
#include "training.h"

namespace words {

// Each draws one PNG. An empty answer is success, otherwise one line says what went wrong.

/** How the log likelihood of the training data rose. */
std::string drawHistory(const std::filesystem::path& png, const std::vector<Iteration>& history);

inline constexpr size_t meansShown = 20;

/** The learned mean cepstra, state by state, of the first so many words. */
std::string drawMeans(const std::filesystem::path& png, const ModelFile& models);

/** One curve of accuracies, a value a condition. */
struct AccuracyCurve {
  std::string title;
  std::vector<double> percent;
};

/** Accuracies under several conditions. */
std::string drawAccuracies(const std::filesystem::path& png, const std::vector<std::string>& conditions,
                           const std::vector<AccuracyCurve>& curves);

}  // namespace words
