// Parts of pictures of recordings.
#pragma once

#include <cstddef>
#include <string>

#include "common/wav.h"

namespace program {

/** A data block of rows "seconds amplitude", at most about so many, to be plotted as $name with lines. */
std::string waveformBlock(const std::string& name, const Sound& sound, size_t mostPoints);

/** Marks for an axis of mel filters, numbered from 1: round frequencies in kHz, where filters would be centred on them. */
std::string melTics(float lowHz, float highHz, int filters);

/** The largest magnitude of all samples; silence has a little above 0, so that axes have a height. */
float peak(const Sound& sound);

/** Colours of a spectrogram, from faint to loud. */
inline constexpr const char* spectrogramPalette =
    "set palette defined (0 '#0b0b2b', 0.3 '#4a1a6b', 0.55 '#b5367a', 0.8 '#fb8861', 1 '#fcfdbf')\n";

}  // namespace program
