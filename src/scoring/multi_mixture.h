// One feature vector against many Gaussians, each with a result of its own: scores are written, kept if larger, or log-added.
#pragma once

#include "scoring/combine.h"
#include "scoring/scores.h"

namespace qorsr {

template <class Combine, class Score, class Rows, class T, class Vals, class Result>
QorStatus scoreGaussians(Score score, Gaussians<Rows, Rows> gaussians, const T* x, int32_t width, Vals vals, Result* result,
                         int32_t count) {
  if (QorStatus bad =
          Checks().stride(gaussians.mean, width).null(gaussians.mean, gaussians.variance, x, vals, result).size(width, count))
    return bad;
  scoreRows<Combine>(score, SharedRow{x}, gaussians, vals, result, count, width);
  return qorStatusOk;
}

// The vals stand where the scores are written.
template <class Combine, class Score, class Rows, class T, class Result>
QorStatus scoreGaussians(Score score, Gaussians<Rows, Rows> gaussians, const T* x, int32_t width, Result* valsAndResult,
                         int32_t count) {
  return scoreGaussians<Combine>(score, gaussians, x, width, valsAndResult, valsAndResult, count);
}
// Distances take no vals.
template <class T, class Rows, class U>
QorStatus gaussianDistances(Gaussians<Rows, Rows> gaussians, const U* x, int32_t width, T* result, int32_t count) {
  return scoreGaussians<Write>(score::RealDistance<T>(), gaussians, x, width, NoVals(), result, count);
}

}  // namespace qorsr
