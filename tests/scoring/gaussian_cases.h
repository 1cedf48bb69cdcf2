// Test data of the Gaussian scorers, and what every family does with a score.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/gaussian.h"
#include "model/log_arithmetic.h"
#include "qorsr.h"

namespace cases {

inline constexpr int32_t kScaleFactors[] = {0,   1,  3,  7,  14,  15,  16,   18,        31,       47,
                                            200, -1, -2, -5, -15, -40, -129, INT32_MIN, INT32_MAX};

inline int32_t scaleFactor(kit::Random& random) {
  return kScaleFactors[random.integer(0, static_cast<int64_t>(std::size(kScaleFactors)) - 1)];
}

// A constant term: of any size for integers, around the scores for reals.
template <class R>
R val(kit::Random& random) {
  if constexpr (std::is_integral_v<R>) {
    return random.integer(0, 3) == 0 ? random.nasty<R>() : static_cast<R>(random.integer(-100000, 100000));
  } else {
    return random.integer(0, 15) == 0 ? random.nasty<R>() : static_cast<R>(random.real(-100, 100));
  }
}

// ---- What becomes of a score ----

struct Write {
  static constexpr bool kTowardZero = false;
  template <class R, class S>
  static R apply(R, S score) {
    return score;
  }
};
struct KeepMax {
  static constexpr bool kTowardZero = false;
  template <class R>
  static R apply(R old, R score) {
    return score > old ? score : old;
  }
};
// Integers that keep the larger, compared as integers, and as floats.
struct KeepMaxTowardZero : KeepMax {
  static constexpr bool kTowardZero = true;
};
struct KeepMaxThroughFloat {
  static constexpr bool kTowardZero = true;
  template <class S>
  static int32_t apply(int32_t old, S score) {
    const auto a = static_cast<float>(score), b = static_cast<float>(old);
    return model::truncated(a > b ? a : b);
  }
};
struct LogAdd {
  static constexpr bool kTowardZero = false;
  static float apply(float old, float score) { return model::logAddAccurate(score, old); }
  static double apply(double old, double score) { return model::logAddDouble(score, old); }
};

// The expected results of frames with their vals, over old results.
template <class Combine, class T, class R, class Val, class S>
std::vector<R> expected(const std::vector<model::Frame<T>>& frames, const std::vector<Val>& vals, std::vector<R> results,
                        int32_t sf, S (*score)(const model::Frame<T>&, Val, int32_t)) {
  const auto compute = [&] {
    for (std::size_t i = 0; i < frames.size(); ++i) results[i] = Combine::apply(results[i], score(frames[i], vals[i], sf));
  };
  if (Combine::kTowardZero) {
    model::towardZero(compute);
  } else {
    compute();
  }
  return results;
}

// Old results: around the scores, above and below them, and nasty ones.
template <class R>
std::vector<R> oldResults(kit::Random& random, int64_t count) {
  std::vector<R> old;
  for (int64_t i = 0; i < count; ++i) old.push_back(val<R>(random));
  return old;
}

template <class T>
std::vector<T> row(const kit::Matrix<T>& m, int32_t r) {
  std::vector<T> v;
  for (int32_t c = 0; c < m.width(); ++c) v.push_back(m.at(r, c));
  return v;
}

// Shapes: every width with one count each, and a few large counts. Calls check(width, count, kind, place).
template <class Check>
void forEachShape(const Check& check) {
  static constexpr int32_t kCounts[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 31};
  int round = 0;
  const auto run = [&](int32_t width, int32_t count) {
    check(width, count, kit::kKinds[round % 3], kit::kPlaces[round / 3 % 3]);
    ++round;
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << "width " << width << " count " << count << " round " << round - 1;
      return false;
    }
    return true;
  };
  for (const int32_t width : kit::lengths()) {
    for (int i = 0; i < 3; ++i) {
      if (!run(width, kCounts[(width * 3 + i * 4) % 10])) return;
    }
  }
  for (const int32_t count : {99, 100, 101, 127, 128, 129, 257}) {
    if (!run(3, count) || !run(13, count)) return;
  }
}

}  // namespace cases
