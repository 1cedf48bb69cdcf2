// How a quadratic sum Q becomes a score: score(sum, val), with sums() the kernel that forms the sum.
//
//   folded     (2 val - Q) / 2           float, one frame or a block of frames; val + val may overflow (required)
//   plain      val - Q / 2               double, mixtures and multi-mixtures
//   distance   Q
// 16 bits, with e = sf + 1; val is never scaled:
//   rounded    val - Q / 2^e             limited to -2^31 ... 2^31, in the caller's rounding mode
//   truncated  the same                  toward zero, not limited
//   limited    val - Q * 2^-e            limited, still a float; the combination truncates it
//   scaled     val - Q * 2^-e            float
//   integer    val + lanes of shifts     32-bit integers that wrap, or the lanes converted to float
//   low        integer, or for a negative scale factor truncated (scaled, with results in float)
// A float above the range of 32-bit integers, 2^31 too, becomes the most negative integer (required).
//
// required: where integer results keep the larger score, every step of the run rounds toward zero, and most of them are compared
// as floats. Such scores say so (kTowardZero, ThroughFloat).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/bits.h"
#include "scoring/gaussian_kernels.h"
#include "scoring/gaussian_kernels_16s.h"

namespace qorsr {

// The same val for every score.
template <class T>
struct SharedVal {
  T val;

  T operator[](std::ptrdiff_t) const { return val; }
};
template <class T>
SharedVal(T) -> SharedVal<T>;

// A score that takes no val.
struct NoVals {
  NoVals operator[](std::ptrdiff_t) const { return {}; }
};
inline bool isNull(const NoVals&) { return false; }

namespace score {

// ---- Float and double ----

template <class T>
struct Folded {
  static RealSums<T> sums() { return {}; }
  T operator()(T sum, T val) const { return ((val + val) - sum) * T(0.5); }
};

template <class T>
struct Plain {
  static RealSums<T> sums() { return {}; }
  T operator()(T sum, T val) const { return val - sum * T(0.5); }
};

template <class Kernel>
struct Distance {
  static Kernel sums() { return {}; }
  typename Kernel::Sum operator()(typename Kernel::Sum sum, NoVals) const { return sum; }
};
template <class T>
using RealDistance = Distance<RealSums<T>>;

// ---- 16 bits ----

// The float 2^-(sf + 1): infinite, or zero, at the ends.
inline float halvedPower(int32_t scaleFactor) {
  return twoToMinus<float>(scaleFactor == INT32_MAX ? scaleFactor : scaleFactor + 1);
}

// Multiplies by 2^-(sf + 1), exactly where the product is a float: in two steps, since one float does not hold every such power.
class ExactPower {
 public:
  explicit ExactPower(int32_t scaleFactor) {
    const auto e = static_cast<int32_t>(std::clamp<int64_t>(int64_t{scaleFactor} + 1, -252, 252));
    first_ = twoToMinus<float>(e / 2);
    second_ = twoToMinus<float>(e - e / 2);
  }
  float operator()(float sum) const { return sum * first_ * second_; }

 private:
  float first_, second_;
};

// A float limited to -2^31 ... 2^31; a NaN passes.
inline float limitTo32(float value) {
  return value < -2147483648.0F ? -2147483648.0F : value > 2147483648.0F ? 2147483648.0F : value;
}

// Limited, and rounded in the caller's mode.
inline int32_t limitAndRoundAsCaller(float value) {
  const float limited = limitTo32(value);
  return limited < 2147483648.0F ? static_cast<int32_t>(__builtin_lrintf(limited)) : INT32_MIN;
}

struct Rounded {
  ExactPower power;

  explicit Rounded(int32_t scaleFactor) : power(scaleFactor) {}
  static GroupedShortSums sums() { return {}; }
  int32_t operator()(float sum, int32_t val) const { return limitAndRoundAsCaller(static_cast<float>(val) - power(sum)); }
};

template <class Kernel>
struct TruncatedSum {
  ExactPower power;

  explicit TruncatedSum(int32_t scaleFactor) : power(scaleFactor) {}
  static Kernel sums() { return {}; }
  int32_t operator()(float sum, int32_t val) const { return truncateOrLowest<int32_t>(static_cast<float>(val) - power(sum)); }
};
using Truncated = TruncatedSum<ShortSums>;

struct Limited {
  static constexpr bool kTowardZero = true;
  float power;

  explicit Limited(int32_t scaleFactor) : power(halvedPower(scaleFactor)) {}
  static ShortSums sums() { return {}; }
  float operator()(float sum, int32_t val) const { return limitTo32(static_cast<float>(val) - sum * power); }
};

template <class Kernel>
struct ScaledSum {
  float power;

  explicit ScaledSum(int32_t scaleFactor) : power(halvedPower(scaleFactor)) {}
  static Kernel sums() { return {}; }
  float operator()(float sum, float val) const { return val - sum * power; }
};
using Scaled = ScaledSum<ShortSums>;
using GroupScaled = ScaledSum<GroupedShortSums>;

template <class Kernel>
struct ExactlyScaled {
  ExactPower power;

  explicit ExactlyScaled(int32_t scaleFactor) : power(scaleFactor) {}
  static Kernel sums() { return {}; }
  float operator()(float sum, float val) const { return val - power(sum); }
};
using Pairs = ExactlyScaled<ShortPairSums>;

// The shifted lanes carry the negative sign already.
struct Integer {
  ShortIntegerSums kernel;

  explicit Integer(int32_t scaleFactor) : kernel(scaleFactor) {}
  ShortIntegerSums sums() const { return kernel; }
  int32_t operator()(int32_t sum, int32_t val) const { return wrapAdd(val, sum); }
  float operator()(int32_t sum, float val) const { return val + static_cast<float>(sum); }
};

// An integer score, to be compared as a float.
template <class Score>
struct ThroughFloat : Score {
  static constexpr bool kTowardZero = true;
  using Score::Score;
  template <class Sum>
  float operator()(Sum sum, int32_t val) const {
    return static_cast<float>(Score::operator()(sum, val));
  }
};
// The same, compared as it is.
template <class Score>
struct TowardZero : Score {
  static constexpr bool kTowardZero = true;
  using Score::Score;
};
using IntegerMax = ThroughFloat<Integer>;

// `Low` members with weights: the scale factor decides between two arithmetics.
template <class IfNegative, class Else>
struct EitherScore {
  int32_t scaleFactor;

  explicit EitherScore(int32_t sf) : scaleFactor(sf) {}
};
using GroupTruncated = TruncatedSum<GroupedShortSums>;
using Low = EitherScore<GroupTruncated, Integer>;
using LowReal = EitherScore<ExactlyScaled<GroupedShortSums>, Integer>;
using LowMax = EitherScore<ThroughFloat<GroupTruncated>, ThroughFloat<Integer>>;
using LowExact = EitherScore<TowardZero<GroupTruncated>, TowardZero<Integer>>;

}  // namespace score

// Calls run(score) with the arithmetic that the scale factor decides for.
template <class Score, class F>
void withArithmetic(const Score& score, const F& run) {
  run(score);
}
template <class IfNegative, class Else, class F>
void withArithmetic(const score::EitherScore<IfNegative, Else>& score, const F& run) {
  if (score.scaleFactor < 0) return run(IfNegative(score.scaleFactor));
  run(Else(score.scaleFactor));
}

}  // namespace qorsr
