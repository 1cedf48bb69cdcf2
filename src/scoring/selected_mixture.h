// A block of frames against a mixture, each frame only against the Gaussians that a bit mask selects for it.
//
// Two roads. Plain: Gaussian by Gaussian over all frames, the scores log-added in the accurate form, with a counter a frame.
// Gathered (strided rows with variances, at least 9 Gaussians and 2 frames): frame by frame, the list of selected Gaussians reduced
// by the log-sum kernel, in chunks like a whole mixture. They agree within rounding.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/memory.h"
#include "scoring/mixture.h"

namespace qorsr {

// One row of bits a frame; the most significant bit of a byte is the lowest Gaussian.
class SelectionMask {
 public:
  SelectionMask(const uint8_t* bits, int32_t count) : bits_(bits), count_(count) {}

  friend bool isNull(const SelectionMask& mask) { return mask.bits_ == nullptr; }
  int32_t count() const { return count_; }
  bool selects(int32_t frame, int32_t g) const { return (row(frame)[g / 8] & (128 >> (g % 8))) != 0; }

  // Calls f(g) for each Gaussian selected for the frame, in ascending order. Bits beyond the count are ignored.
  template <class F>
  void forSelected(int32_t frame, const F& f) const {
    const uint8_t* bytes = row(frame);
    for (int32_t g = 0; g < count_; ++g) {
      if (g % 8 == 0 && bytes[g / 8] == 0) {
        g += std::min(7, count_ - 1 - g);
      } else if ((bytes[g / 8] & (128 >> (g % 8))) != 0) {
        f(g);
      }
    }
  }

 private:
  const uint8_t* row(int32_t frame) const { return bits_ + static_cast<std::ptrdiff_t>(frame) * ((int64_t{count_} + 7) / 8); }

  const uint8_t* bits_;
  int32_t count_;
};

template <class T>
bool rowsPresent(const StridedRows<T>&, int32_t) {
  return true;
}
inline bool rowsPresent(const UnitRows&, int32_t) { return true; }
template <class T>
bool rowsPresent(const ListedRows<T>& rows, int32_t count) {
  for (int32_t r = 0; r < count; ++r) {
    if (rows[r] == nullptr) return false;
  }
  return true;
}

template <class Rows>
auto sharedRow(const Rows& rows, int32_t r) {
  return SharedRow{rows[r]};
}
inline UnitRows sharedRow(const UnitRows& rows, int32_t) { return rows; }

inline constexpr float kUnscored = -4500000.0F;

// ---- Plain ----

// The frames that one Gaussian is scored against, gathered in chunks.
template <class T>
struct FrameList {
  const T* rows[kScoreChunk];
  int32_t frames[kScoreChunk];
  int32_t count = 0;
};

// Scores the listed frames and log-adds; the first score of a frame stands as it is.
template <class Score, class T, class Means, class Variances>
void addListed(const Score& score, FrameList<T>& list, const Gaussians<Means, Variances>& gaussian, int32_t width, float val,
               float* results, uint16_t* counters) {
  if (list.count < 1) return;
  float scores[kScoreChunk], sums[kScoreChunk];
  scoreRows<Write>(score, ListedRows{list.rows}, gaussian, SharedVal{val}, scores, list.count, width);
  for (int32_t i = 0; i < list.count; ++i) sums[i] = results[list.frames[i]];
  logAddVector(scores, sums, list.count);
  for (int32_t i = 0; i < list.count; ++i) {
    uint16_t& counter = counters[list.frames[i]];
    results[list.frames[i]] = counter == 0 ? scores[i] : sums[i];
    ++counter;  // required: 16 bits that wrap
  }
  list.count = 0;
}

template <class Score, class Frames, class Means, class Variances>
QorStatus scoreSelectedPlain(const Score& score, const Frames& frames, const Gaussians<Means, Variances>& gaussians, int32_t width,
                             const float* vals, const SelectionMask& mask, float* results, int32_t frameCount, float floor) {
  const Scratch<uint16_t> counters(frameCount);
  if (!counters) return qorStatusNoMemory;
  std::fill_n(counters.get(), frameCount, uint16_t{0});
  std::fill_n(results, frameCount, kUnscored);
  FrameList<std::remove_cvref_t<decltype(*frames[0])>> list;
  for (int32_t g = 0; g < mask.count(); ++g) {
    const Gaussians gaussian{sharedRow(gaussians.mean, g), sharedRow(gaussians.variance, g)};
    const auto addAll = [&] { addListed(score, list, gaussian, width, vals[g], results, counters.get()); };
    for (int32_t f = 0; f < frameCount; ++f) {
      if (!mask.selects(f, g)) continue;
      list.rows[list.count] = frames[f];
      list.frames[list.count] = f;
      if (++list.count == kScoreChunk) addAll();
    }
    addAll();
  }
  for (int32_t f = 0; f < frameCount; ++f) {
    if (counters[f] == 0) results[f] = floor;
  }
  return qorStatusOk;
}

// ---- Gathered ----

template <class Score, class Frames, class Means, class Variances>
void scoreSelectedGathered(const Score& score, const Frames& frames, const Gaussians<Means, Variances>& gaussians, int32_t width,
                           const float* vals, const SelectionMask& mask, float* results, int32_t frameCount, float floor) {
  using T = std::remove_cvref_t<decltype(*frames[0])>;
  const T *means[kMixtureChunk], *variances[kMixtureChunk];
  float chosenVals[kMixtureChunk];
  for (int32_t f = 0; f < frameCount; ++f) {
    RunningLogSum<float> sum;
    int32_t count = 0;
    const auto addAll = [&] {
      const Gaussians chosen{listed(means), listed(variances)};
      scoreRows<Write>(score, SharedRow{frames[f]}, chosen, chosenVals, sum.chunk(), count, width);
      sum.add(count);
      count = 0;
    };
    mask.forSelected(f, [&](int32_t g) {
      means[count] = gaussians.mean[g];
      variances[count] = gaussians.variance[g];
      chosenVals[count] = vals[g];
      if (++count == kMixtureChunk) addAll();
    });
    addAll();
    results[f] = sum.started() ? sum.value() : floor;
  }
}

// ---- Family body ----

template <class Score, class Frames, class Means, class Variances>
QorStatus scoreSelected(Score score, Frames frames, Gaussians<Means, Variances> gaussians, int32_t width, const float* vals,
                        SelectionMask mask, float* results, int32_t frameCount, float floor) {
  const int32_t count = mask.count();
  if (QorStatus bad = Checks()
                          .null(frames, gaussians.mean, mask, gaussians.variance, vals)
                          .size(width, count, frameCount)
                          .stride(frames, width)
                          .require([&] { return rowsPresent(frames, frameCount); }, qorStatusNullPointer)
                          .require([&] { return rowsPresent(gaussians.mean, count); }, qorStatusNullPointer)
                          .require([&] { return rowsPresent(gaussians.variance, count); }, qorStatusNullPointer)
                          .null(results))  // required: last
    return bad;
  if constexpr (requires { frames.stride; } && !std::is_same_v<Variances, UnitRows>) {
    if (count >= 9 && frameCount >= 2) {
      scoreSelectedGathered(score, frames, gaussians, width, vals, mask, results, frameCount, floor);
      return qorStatusOk;
    }
  }
  return scoreSelectedPlain(score, frames, gaussians, width, vals, mask, results, frameCount, floor);
}

}  // namespace qorsr
