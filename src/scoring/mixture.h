// One feature vector against a Gaussian mixture: log of the sum over Gaussians of exp(score), val holding the mixture weight.
//
// Gaussians go in chunks of 100. Each chunk is reduced by the log-sum kernel with the result so far in front of it, so the grouping
// of the log additions, in four lanes (double: two), is part of the result.
#pragma once

#include <algorithm>
#include <cstdint>

#include "scoring/combine.h"
#include "scoring/scores.h"

namespace qorsr {

inline constexpr int32_t kMixtureChunk = 100;

// Log-sum of scores that come in chunks: room for a chunk, behind the result so far.
template <class Result>
class RunningLogSum {
 public:
  Result* chunk() { return slots_ + 1; }
  void add(int32_t count) {
    if (count < 1) return;
    const int32_t front = started_ ? 1 : 0;
    slots_[0] = logSum(chunk() - front, count + front);
    started_ = true;
  }
  bool started() const { return started_; }
  Result value() const { return slots_[0]; }

 private:
  Result slots_[kMixtureChunk + 1];
  bool started_ = false;
};

template <class Score, class T, class Means, class Variances, class Result>
QorStatus scoreMixture(Score score, const T* x, Gaussians<Means, Variances> gaussians, int32_t count, int32_t width,
                       const Result* vals, Result* result) {
  if (QorStatus bad =
          Checks().null(x, gaussians.mean, gaussians.variance, result, vals).stride(gaussians.mean, width).size(count, width))
    return bad;
  RunningLogSum<Result> sum;
  for (int32_t first = 0; first < count; first += std::min(kMixtureChunk, count - first)) {
    const int32_t chunk = std::min(kMixtureChunk, count - first);
    const Gaussians part{skipRows(gaussians.mean, first), skipRows(gaussians.variance, first)};
    scoreRows<Write>(score, SharedRow{x}, part, vals + first, sum.chunk(), chunk, width);
    sum.add(chunk);
  }
  *result = sum.value();
  return qorStatusOk;
}

}  // namespace qorsr
