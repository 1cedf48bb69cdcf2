#include "templates.h"

#include <algorithm>
#include <limits>

#include "common/fault.h"

namespace words {
namespace {

constexpr float unreachable = std::numeric_limits<float>::max();  // as the library reports a path that does not exist

struct Near {
  float distance;
  size_t recording;
};

// The mean of the k nearest; the first becomes the nearest.
float meanOfNearest(std::vector<Near>& all, size_t k) {
  k = std::min(k, all.size());
  std::partial_sort(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(k), all.end(),
                    [](const Near& a, const Near& b) { return a.distance < b.distance; });
  float sum = 0;
  for (size_t i = 0; i < k; ++i) sum += all[i].distance / static_cast<float>(k);
  return sum;
}

}  // namespace

void Templates::add(int word, size_t recording, const Matrix& features) {
  templates_.push_back({word, recording, &features});
  words_ = std::max(words_, word + 1);
  longest_ = std::max(longest_, features.rows);
}

float Templates::distance(const Matrix& a, const Matrix& b, int delta) const {
  float result = 0;
  program::check(qorsDTW_L2_32f_D2(a.values.data(), a.rows, b.values.data(), b.rows, a.columns, a.columns, &result, delta,
                                   options_.beam.value_or(unreachable)),
                 "qorsDTW_L2_32f_D2");
  return result >= unreachable ? unreachable : result / static_cast<float>(std::max(a.rows, b.rows));
}

Decision Templates::recognise(const Matrix& features) const {
  const int widest = std::max(longest_, features.rows);
  Decision decision = recognise(features, options_.delta);
  for (int delta = options_.delta; decision.word < 0 && delta < widest;) {
    delta = std::min(2 * delta + 1, widest);
    decision = recognise(features, delta);
  }
  return decision;
}

Decision Templates::recognise(const Matrix& features, int delta) const {
  std::vector<std::vector<Near>> byWord(static_cast<size_t>(words_));
  for (const Template& candidate : templates_) {
    const float d = distance(features, *candidate.features, delta);
    if (d < unreachable) byWord[static_cast<size_t>(candidate.word)].push_back({d, candidate.recording});
  }
  Decision decision;
  decision.score = decision.secondScore = unreachable;
  for (int word = 0; word < words_; ++word) {
    std::vector<Near>& near = byWord[static_cast<size_t>(word)];
    if (near.empty()) continue;
    const float d = meanOfNearest(near, static_cast<size_t>(options_.nearest));
    if (d < decision.score) {
      decision.secondWord = decision.word;
      decision.secondScore = decision.score;
      decision.word = word;
      decision.score = d;
      decision.nearest = near.front().recording;
    } else if (d < decision.secondScore) {
      decision.secondWord = word;
      decision.secondScore = d;
    }
  }
  return decision;
}

}  // namespace words
