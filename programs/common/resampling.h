// Recordings of one rate brought to another.
#pragma once

#include "common/wav.h"

namespace program {

/** The sound at another rate, as long as before: what lies below 0.46 of the lower rate is kept, aliases are 90 dB down. */
Sound resampled(const Sound& sound, int rate);

}  // namespace program
