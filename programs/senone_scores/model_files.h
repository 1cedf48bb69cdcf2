// The files of an acoustic model of tied Gaussian mixtures, as they lie on disk.
//
//   means, variances   text header up to "endhdr", byte-order mark 0x11223344, codebooks, streams, densities, the
//                      width of each stream, count of floats, the floats [codebook][stream][density][element], a checksum where the header says so
//   sendump            records of length and text up to length 0, densities, senones, one byte a weight [stream][density][senone]:
//                      -log weight in steps of 1024 log 1.0001
//   mdef               names of the base phones; the states (senones) of each phone, and through them the phone of each senone
//   feat.params        "-name value" lines: how the features of the training speech were computed
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace senones {

/** Means or variances. */
struct GaussianFile {
  int codebooks = 0, densities = 0;
  std::vector<int> widths;    ///< of each stream
  std::vector<float> values;  ///< [codebook][stream][density][element]

  int streams() const { return static_cast<int>(widths.size()); }
  /** Elements of the densities of all streams of a codebook. */
  size_t codebookSize() const;
  /** The first density of a codebook and stream. */
  const float* block(int codebook, int stream) const;
};
GaussianFile readGaussians(const std::filesystem::path& file);

/** Mixture weights as they are stored. */
struct WeightFile {
  int streams = 0, densities = 0, senones = 0;
  std::vector<uint8_t> steps;  ///< [stream][density][senone]
};
/** The counts of the means are expected: the file need not say how many streams it has. */
WeightFile readWeights(const std::filesystem::path& file, int streams, int densities);

/** What the model's phones are called, and which phone and state a senone belongs to. */
struct Definition {
  struct Senone {
    int phone = -1, state = -1;
  };
  std::vector<std::string> phones;  ///< base phones; each has a codebook of its own
  int states = 0;                   ///< emitting states of a phone
  std::vector<Senone> senones;
};
Definition readDefinition(const std::filesystem::path& file);

/** The "-name value" pairs of feat.params, without the hyphen. */
using Parameters = std::map<std::string, std::string>;
Parameters readParameters(const std::filesystem::path& file);

}  // namespace senones
