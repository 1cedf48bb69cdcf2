#include "scorer.h"

#include <algorithm>

#include "common/fault.h"

namespace senones {

Scorer::Scorer(const AcousticModel& model, int top)
    : model_(model),
      top_(static_cast<size_t>(std::min(top, model.densities))),
      best_(model.streams.size() * static_cast<size_t>(model.codebooks) * top_),
      mixture_(model.senones.size()),
      term_(model.senones.size()),
      total_(model.senones.size()) {}

// The best densities of a codebook, the best first; of equal ones the first.
void Scorer::selectBest(const float* scores, Density* best) const {
  const auto densities = static_cast<size_t>(model_.densities);
  size_t found = 0;
  for (size_t i = 0; i < densities; ++i) {
    if (found == top_ && !(scores[i] > best[top_ - 1].score)) continue;
    size_t at = found < top_ ? found++ : top_ - 1;
    for (; at > 0 && scores[i] > best[at - 1].score; --at) best[at] = best[at - 1];
    best[at] = {i, scores[i]};
  }
}

// All Gaussians of a stream in one call; then the best of each codebook.
void Scorer::rank(const float* features) {
  Density* best = best_.data();
  for (const Stream& stream : model_.streams) {
    gaussians_ = stream.constants;
    program::check(qorsLogGaussMultiMix_32f_D2(stream.means.data(), stream.inverse.data(), stream.width, features + stream.first,
                                               stream.width, gaussians_.data(), static_cast<int32_t>(gaussians_.size())),
                   "qorsLogGaussMultiMix_32f_D2");
    for (size_t g = 0; g < gaussians_.size(); g += static_cast<size_t>(model_.densities), best += top_) {
      selectBest(gaussians_.data() + g, best);
    }
  }
}

// Rank by rank over all senones at once: weight and density of a rank are one term of every senone's sum.
void Scorer::mix(const Stream& stream, const Density* best) {
  const auto densities = static_cast<size_t>(model_.densities);
  for (size_t r = 0; r < top_; ++r) {
    std::vector<float>& into = r == 0 ? mixture_ : term_;
    for (size_t k = 0; k < static_cast<size_t>(model_.codebooks); ++k) {
      const size_t begin = model_.begin[k], count = model_.begin[k + 1] - begin;
      const Density& density = best[k * top_ + r];
      const float* const weights = stream.weights.data() + begin * densities + density.number * count;
      for (size_t i = 0; i < count; ++i) into[begin + i] = density.score + weights[i];
    }
    if (r > 0) {
      program::check(qorsLogAdd_32f(term_.data(), mixture_.data(), static_cast<int32_t>(mixture_.size()), qorLogAddFast),
                     "qorsLogAdd_32f");
    }
  }
}

void Scorer::combine(float* scores) {
  std::fill(total_.begin(), total_.end(), 0.0F);
  const Density* best = best_.data();
  for (const Stream& stream : model_.streams) {
    mix(stream, best);
    for (size_t i = 0; i < total_.size(); ++i) total_[i] += mixture_[i];
    best += static_cast<size_t>(model_.codebooks) * top_;
  }
  for (size_t i = 0; i < total_.size(); ++i) scores[model_.ordered[i]] = total_[i];
}

}  // namespace senones
