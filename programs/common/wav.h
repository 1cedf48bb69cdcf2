// Reading recordings: WAV files of 8 to 48 kHz.
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

/** Throws BadSound where a file's name holds control characters. */
void checkName(const std::filesystem::path& file);

inline constexpr int lowestRate = 8000;
inline constexpr int highestRate = 48000;

/** Which channel of a recording is read: one from 1 on, or one of these. */
inline constexpr int onlyChannel = 0, meanOfChannels = -1;

/** Reads a WAV file whole. Throws BadSound for a file that is missing, empty, truncated (its header promises more than there is),
 * not WAV, without that channel (onlyChannel: of several), of a rate outside lowestRate to highestRate, longer than maximumSeconds, or that holds values that
 * are not numbers. */
Sound readWav(const std::filesystem::path& file, double maximumSeconds, int channel = onlyChannel);

}  // namespace program
