// Pictures of utterances.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "common/wav.h"
#include "words/front_end.h"

namespace words {

/** One utterance as it is pictured. */
struct Pictured {
  std::string title;
  const program::Sound& sound;
  const Analysis& analysis;
  std::vector<double> boundaries;  ///< seconds at which lines are drawn, such as the boundaries of states
};

/** Draws waveform, mel spectrogram and cepstra of two utterances, side by side on one time axis. The frames outside the end points
 * are shaded. An empty answer is success, otherwise one line says what went wrong. */
std::string drawPair(const std::filesystem::path& png, const Pictured& left, const Pictured& right, const FrontEndOptions& options);

}  // namespace words
