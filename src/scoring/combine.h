// What becomes of a score where a result stands already, and the run over many rows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/bits.h"
#include "frame/environment.h"
#include "scoring/log_add.h"
#include "scoring/scores.h"

namespace qorsr {

// So many scores in one go: their sums stand on the stack.
inline constexpr int32_t kScoreChunk = 128;

// The score replaces the result.
struct Write {
  template <class Result, class ScoreOf>
  static void apply(Result* result, int32_t count, const ScoreOf& scoreOf) {
    for (int32_t i = 0; i < count; ++i) result[i] = scoreOf(i);
  }
};

// The larger of score and result stays; a NaN score never replaces anything.
struct KeepMax {
  template <class Result, class ScoreOf>
  static void apply(Result* result, int32_t count, const ScoreOf& scoreOf) {
    for (int32_t i = 0; i < count; ++i) {
      const auto score = scoreOf(i);
      if constexpr (std::is_same_v<decltype(score), const Result>) {
        result[i] = score > result[i] ? score : result[i];
      } else {
        // required: integer results are compared as floats and the larger float is truncated, so an old result that wins comes back
        // rounded to 24 bits.
        const auto old = static_cast<float>(result[i]);
        result[i] = truncateOrLowest<int32_t>(score > old ? score : old);
      }
    }
  }
};

// Score and result are log-added.
struct LogAdd {
  template <class Result, class ScoreOf>
  static void apply(Result* result, int32_t count, const ScoreOf& scoreOf) {
    Result scores[kScoreChunk];
    Write::apply(scores, count, scoreOf);
    logAddVector(scores, result, count);
  }
};

// result[r] = score of row r, combined with the result that stands there, for rows 0 to count - 1. For each rounding mode a function
// of its own, since the score names the mode.
template <class Combine, class Score, class X, class Means, class Variances, class Vals, class Result>
QORSR_IN_GUARDED_MODE void scoreRowsInMode(const Score& score, X x, Gaussians<Means, Variances> gaussians, Vals vals,
                                           Result* result, int32_t count, int32_t width) {
  const auto kernel = score.sums();
  typename decltype(score.sums())::Sum sums[kScoreChunk];
  for (int32_t first = 0, n; first < count; first += n) {
    n = std::min(kScoreChunk, count - first);
    quadraticSums(kernel, skipRows(x, first), skipRows(gaussians.mean, first), skipRows(gaussians.variance, first), n, width, sums);
    Combine::apply(result + first, n, [&](int32_t i) { return score(sums[i], vals[first + i]); });
  }
}

// The same in the arithmetic that the scale factor decides for, and in its rounding mode.
template <class Combine, class Score, class... Rest>
void scoreRows(const Score& score, Rest... rest) {
  withArithmetic(score, [&]<class Decided>(const Decided& decided) {
    if constexpr (requires { Decided::kTowardZero; }) {
      const EnvironmentGuard guard(Rounding::kTowardZero);
      scoreRowsInMode<Combine>(decided, rest...);
    } else {
      scoreRowsInMode<Combine>(decided, rest...);
    }
  });
}

}  // namespace qorsr
