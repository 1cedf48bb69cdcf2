// States to be clustered: a part of a phone between two others, with the statistics of its frames.
#pragma once

#include <string>
#include <vector>

#include "segmentation.h"

namespace states {

struct ContextState {
  int left, phone, right;  ///< phone numbers
  int part;                ///< 0: the beginning
  float occupancy = 0;     ///< frames
  std::vector<float> sum, squares;
};

/** The states of all utterances, each phone cut into so many equal parts. silenceNumber: what stands at the ends of words. Every
 * state has one Gaussian; sum and squares are what the likelihood of pooled states is computed from. */
std::vector<ContextState> gather(const std::vector<Utterance>& utterances, int parts, int silenceNumber);

}  // namespace states
