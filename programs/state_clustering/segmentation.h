// Where the phones of each recording begin: at first spread evenly, then found by the most likely path through one Gaussian a phone,
// again and again.
#pragma once

#include <vector>

#include "words/front_end.h"

namespace states {

/** A recording as a row of phones. */
struct Utterance {
  const words::Matrix* features;
  std::vector<int> phones;  ///< their numbers
  std::vector<int> begins;  ///< the first frame of each, and at the end the number of frames
};

inline constexpr int fewestFramesAPhone = 3;

/** Sets Utterance::begins, with at least fewestFramesAPhone frames a phone, which there must be room for. Returns the log likelihood
 *  a frame after each round. */
std::vector<double> segment(std::vector<Utterance>& utterances, int phoneCount, int rounds);

/** Features of one frame are never known better than this. */
inline constexpr float leastVariance = 0.01F;

}  // namespace states
