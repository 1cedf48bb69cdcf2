// What a recording becomes before it is analysed: its samples with silence around them, and the low-passed 16-bit signals that
// pitch is looked for in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/wav.h"

namespace voice {

/** Samples with silence at both ends, so that a window may reach beyond them. */
template <class T>
class Padded {
 public:
  Padded(size_t count, size_t padding) : padding_(padding), values_(count + 2 * padding) {}

  /** Element i, which may lie up to the padding beyond either end. */
  const T* at(std::ptrdiff_t i) const { return values_.data() + static_cast<std::ptrdiff_t>(padding_) + i; }
  T* at(std::ptrdiff_t i) { return values_.data() + static_cast<std::ptrdiff_t>(padding_) + i; }
  size_t count() const { return values_.size() - 2 * padding_; }

 private:
  size_t padding_;
  std::vector<T> values_;
};

/** The harmonics that carry the pitch, with 16 bits: at the rate of the recording, and thinned out. */
struct Harmonics {
  int step;                 ///< every so many samples one is kept in `coarse`
  double rate, coarseRate;  ///< samples a second
  Padded<int16_t> fine, coarse;
  Padded<int16_t> whole;  ///< the recording itself, all frequencies
};

/** Low-passed at a frequency, with linear phase and no delay; scaled so that the loudest sample has 15 bits. coarseRate: the rate
 * after thinning out is at least this, or that of the recording. padding: silence at both ends, in seconds. */
Harmonics harmonicsOf(const program::Sound& sound, double cornerHz, double coarseRate, double padding);

/** Takes away what lies below the voice: an offset, slow drifts. */
program::Sound withoutOffset(const program::Sound& sound);

/** The samples of a recording with so much silence around them, in seconds. */
Padded<float> paddedSamples(const program::Sound& sound, double padding);

}  // namespace voice
