// A block of frames against one Gaussian: the scores of the frames are written, kept if larger, or log-added.
#pragma once

#include "scoring/combine.h"
#include "scoring/scores.h"

namespace qorsr {

template <class Combine, class Score, class Rows, class Means, class Variances, class Result, class Val = NoVals>
QorStatus scoreFrames(Score score, Rows frames, Gaussians<Means, Variances> gaussian, int32_t width, Result* result, int32_t height,
                      Val val = {}) {
  if (QorStatus bad = Checks().stride(frames, width).null(frames, gaussian.mean, gaussian.variance, result).size(width, height))
    return bad;
  scoreRows<Combine>(score, frames, gaussian, SharedVal{val}, result, height, width);
  return qorStatusOk;
}

}  // namespace qorsr
