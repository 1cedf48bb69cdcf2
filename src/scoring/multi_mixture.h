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
  Run<Combine>::over(score, SharedRow{x}, gaussians, vals, result, count, width);
  return qorStatusOk;
}

}  // namespace qorsr
