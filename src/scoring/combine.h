// What becomes of a score where a result stands already, and the run over many rows.
#pragma once

#include <algorithm>
#include <cstdint>

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
      const Result score = scoreOf(i);
      result[i] = score > result[i] ? score : result[i];
    }
  }
};

// required: integer results are compared as floats and the larger float is truncated, so an old result that wins comes back
// rounded to 24 bits.
struct KeepMaxThroughFloat {
  template <class ScoreOf>
  static void apply(int32_t* result, int32_t count, const ScoreOf& scoreOf) {
    for (int32_t i = 0; i < count; ++i) {
      const auto score = static_cast<float>(scoreOf(i)), old = static_cast<float>(result[i]);
      result[i] = truncateOrLowest<int32_t>(score > old ? score : old);
    }
  }
};

inline void logAddInto(const float* scores, float* result, int32_t count) { qorLogAddKernel_32f(scores, result, count); }
inline void logAddInto(const double* scores, double* result, int32_t count) { qorLogAddKernel_64f(scores, result, count); }

// Score and result are log-added.
struct LogAdd {
  template <class Result, class ScoreOf>
  static void apply(Result* result, int32_t count, const ScoreOf& scoreOf) {
    Result scores[kScoreChunk];
    Write::apply(scores, count, scoreOf);
    logAddInto(scores, result, count);
  }
};

// Kernels run in a changed rounding mode are functions of their own, so that no compiler shares work with runs in the caller's
// mode.
template <class Kernel>
using InCallersMode = Kernel;
template <class Kernel>
struct TowardZero : Kernel {};

// result[r] = score of row r, combined with the result that stands there, for rows 0 to count - 1.
template <class Combine, template <class> class Mode = InCallersMode, class Score, class X, class Means, class Variances,
          class Vals, class Result>
void scoreRows(const Score& score, const X& x, const Gaussians<Means, Variances>& gaussians, const Vals& vals, Result* result,
               int32_t count, int32_t width) {
  const Mode<std::remove_cvref_t<decltype(score.sums())>> kernel{score.sums()};
  typename std::remove_cvref_t<decltype(score.sums())>::Sum sums[kScoreChunk];
  for (int32_t first = 0; first < count; first += std::min(kScoreChunk, count - first)) {
    const int32_t chunk = std::min(kScoreChunk, count - first);
    quadraticSums(kernel, skipRows(x, first), skipRows(gaussians.mean, first), skipRows(gaussians.variance, first), chunk, width,
                  sums);
    Combine::apply(result + first, chunk, [&](int32_t i) { return score(sums[i], vals[first + i]); });
  }
}

// The run over all rows, in the arithmetic that the score decides for.
template <class Combine>
struct Run {
  template <class Score, class... Rest>
  static void over(const Score& score, const Rest&... rest) {
    withArithmetic(score, [&](const auto& decided) { scoreRows<Combine>(decided, rest...); });
  }
};

// required: where integer results keep the larger score, every step of the run rounds toward zero.
template <class Combine>
struct RoundedTowardZero {};

template <class Combine, class Score, class... Rest>
QORSR_IN_GUARDED_MODE void runInGuardedMode(const Score& score, const Rest&... rest) {
  withArithmetic(score, [&](const auto& decided) { scoreRows<Combine, TowardZero>(decided, rest...); });
}

template <class Combine>
struct Run<RoundedTowardZero<Combine>> {
  template <class Score, class... Rest>
  static void over(const Score& score, const Rest&... rest) {
    const EnvironmentGuard guard(Rounding::kTowardZero);
    runInGuardedMode<Combine>(score, rest...);
  }
};

}  // namespace qorsr
