// The picture of a recording's scores over time.
#pragma once

#include <filesystem>
#include <string>

#include "recording.h"

namespace senones {

/** Draws waveform, mel spectrogram and the scores of all phones. An empty answer is success, otherwise one line says what went
 * wrong.
 */
std::string drawScores(const std::filesystem::path& png, const AcousticModel& model, const Recording& recording,
                       const FrontEndSettings& settings);

}  // namespace senones
