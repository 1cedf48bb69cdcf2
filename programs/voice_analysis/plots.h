// The picture of a recording.
#pragma once

#include <filesystem>
#include <string>

#include "report.h"

namespace voice {

/** Waveform, spectrogram with formants and pitch, spectrum of one moment with the model's envelope. The recording is read again.
 * An empty answer is success, otherwise one line says what went wrong. */
std::string drawVoice(const std::filesystem::path& png, const Recording& recording, const Run& run);

}  // namespace voice
