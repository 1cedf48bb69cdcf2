// All measures of one recording.
#pragma once

#include <string>
#include <vector>

#include "formants.h"
#include "pitch.h"

namespace voice {

struct AnalysisOptions {
  PitchOptions pitch;
  double hopMs = 10;
  double ceilingHz = 5500;  ///< formants are looked for below it, or below half the rate
};

struct Frame {
  double seconds = 0;  ///< its middle
  Candidate pitch;
  float periodicity = 0;  ///< share of the energy that repeats with some period
  float decibels = 0;     ///< mean power, below full scale
  float signChanges = 0;  ///< a second
  Formants formants;
};

/** The measures of a recording as a whole; those of pitch and formants of its voiced frames, 0 where there are none. */
struct Summary {
  double voicedShare = 0;
  double medianHz = 0, lowHz = 0, highHz = 0;  ///< of pitch: median, 5th and 95th percentile
  double slope = 0;                            ///< of pitch, least squares, in semitones a second
  double formants[mostFormants] = {};          ///< medians
};

struct Analysis {
  std::vector<Frame> frames;
  int formants = 0;  ///< how many are looked for
  Summary summary;
};

/** Throws program::BadSound for a recording shorter than a frame. */
Analysis analyse(const program::Sound& recording, const AnalysisOptions& options);

/** The frame whose spectrum is shown: the loudest of the voiced ones, or of all. */
size_t loudestFrame(const Analysis& analysis);

/** The middle of the sorted values, interpolated at other shares; 0 of none. */
double quantile(std::vector<double> values, double share);

}  // namespace voice
