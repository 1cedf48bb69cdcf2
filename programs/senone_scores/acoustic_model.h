// An acoustic model made ready for the library's scorers.
#pragma once

#include <filesystem>
#include <vector>

#include "model_files.h"

namespace senones {

/** The Gaussians and weights of one stream of features. Gaussian number = codebook * densities + density. */
struct Stream {
  int first = 0, width = 0;      ///< which elements of a feature vector it takes
  std::vector<float> means;      ///< a row of width elements for each Gaussian
  std::vector<float> inverse;    ///< inverse variances, the same shape
  std::vector<float> constants;  ///< of each Gaussian: -1/2 (n log 2 pi + sum log v)
  std::vector<float> weights;    ///< log weights: codebook by codebook, [density][senone of the codebook]
};

struct AcousticModel {
  Parameters parameters;
  std::vector<std::string> phones;
  std::vector<Definition::Senone> senones;
  int codebooks = 0, densities = 0, width = 0;
  std::vector<Stream> streams;
  std::vector<int> ordered;   ///< the senones, those of codebook 0 first
  std::vector<size_t> begin;  ///< where those of each codebook begin in `ordered`; one entry more than codebooks
  size_t floored = 0;         ///< variances that were raised

  size_t gaussians() const { return streams.size() * static_cast<size_t>(codebooks) * static_cast<size_t>(densities); }
};

/** Variances below this one are raised to it; models hold zeros where a density was hardly trained. */
inline constexpr float leastVariance = 1e-4F;

/** Reads the files of a model's folder and prepares them. Throws program::Fault with one line for a file that is missing, damaged,
 * or does not fit the others. */
AcousticModel loadModel(const std::filesystem::path& folder);

}  // namespace senones
