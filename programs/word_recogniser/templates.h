// Recognition by template matching: the word of the templates that lie nearest by dynamic time warping.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "results.h"
#include "words/front_end.h"

namespace words {

struct WarpOptions {
  int delta = 6;              ///< widening of the band of the warping path, in frames
  std::optional<float> beam;  ///< cells so far above the best of a column are pruned; none: nothing is pruned
  int nearest = 2;            ///< a word's distance is the mean of so many of its nearest templates
};

/** Distances are a frame of the longer sequence. */
class Templates {
 public:
  explicit Templates(const WarpOptions& options) : options_(options) {}

  /** features must live as long as this object. */
  void add(int word, size_t recording, const Matrix& features);
  /** Where the lengths are so unlike that no template can be reached, the band is widened until one can, or it covers all. */
  Decision recognise(const Matrix& features) const;

 private:
  struct Template {
    int word;
    size_t recording;
    const Matrix* features;
  };

  float distance(const Matrix& a, const Matrix& b, int delta) const;
  Decision recognise(const Matrix& features, int delta) const;

  WarpOptions options_;
  std::vector<Template> templates_;
  int words_ = 0, longest_ = 0;
};

}  // namespace words
