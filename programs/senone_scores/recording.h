// One recording scored with a model.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "common/progress.h"
#include "common/stopwatch.h"
#include "common/wav.h"
#include "front_end.h"
#include "scorer.h"

namespace senones {

struct Best {
  int senone = 0;
  float score = 0;
};

struct Recording {
  std::filesystem::path file;
  std::string name;  ///< of its files in the report
  program::Sound sound;
  Features features;
  std::vector<float> phones;  ///< frames x phones: the score of each phone's best senone
  std::vector<Best> best;     ///< frames x bestCount: the best senones of a frame, the best first
  int bestCount = 0;
};

/** The same phone for several frames. */
struct Stretch {
  int phone = 0, first = 0, frames = 0;

  int end() const { return first + frames; }
};

inline constexpr int leastStretch = 3;  ///< frames, of the stretches that are shown

/** Where one phone holds the best senone for at least so many frames on end. Stretches of one phone that less than twice as many
 * frames divide are one. */
std::vector<Stretch> stretches(const AcousticModel& model, const Recording& recording, int least);

struct Work {
  FrontEnd& frontEnd;
  Scorer& scorer;
  int bestCount;                      ///< best senones kept of each frame
  std::filesystem::path scoreFolder;  ///< where features and all scores are written, as floats; empty: nowhere
  program::Stopwatch frontEndTime, gaussianTime, mixtureTime;
  size_t framesScored = 0;
};

/** Reads, analyses and scores a recording. Throws program::BadSound. */
Recording scoreRecording(const std::filesystem::path& file, const std::string& name, Work& work, bool quiet);

}  // namespace senones
