// Reading recordings: WAV files of one channel, 8 to 48 kHz.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace program {

/** Samples of one channel, full scale from -1 to 1. */
struct Sound {
  int rate = 0;  ///< samples a second
  std::vector<float> samples;

  double seconds() const { return rate > 0 ? static_cast<double>(samples.size()) / rate : 0.0; }
};

/** Why a file cannot be used, in a few words that follow its name: "truncated: ...". */
struct BadSound : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline constexpr int lowestRate = 8000;
inline constexpr int highestRate = 48000;

/** Reads a WAV file whole. Throws BadSound for a file that is missing, empty, truncated (its header promises more than there is),
 * not WAV, of several channels, of a rate outside lowestRate to highestRate, longer than maximumSeconds, or that holds values that
 * are not numbers. */
Sound readWav(const std::filesystem::path& file, double maximumSeconds);

}  // namespace program
