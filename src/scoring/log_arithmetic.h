// Sums and differences of probabilities that are held as logarithms.
//
//   LogAdd: result = log(exp(a) + exp(b)), element by element, by the kernels of scoring/log_add.h
//   LogSub: result = log(exp(a) - exp(b)) = a + log(1 - exp(d)), d = b - a < 0, with exp and log in double
//   LogSum: result = log(sum of exp(x[i])), by the reductions of scoring/log_add.h
//
// Fixed point (`Sfs`): the real value is integer * 2^-sf. Adding and summing go through float in chunks of 128; a sum of at most
// six elements goes through double. Subtracting adds a unscaled (required).
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/elementary.h"
#include "frame/memory.h"
#include "scoring/log_add.h"

namespace qorsr {

inline constexpr int32_t kLogChunk = 128;

// Integers as floats, times the factor.
template <class Int>
inline void toScaledFloats(const Int* source, float* result, int32_t length, float factor) {
  for (int32_t i = 0; i < length; ++i) result[i] = static_cast<float>(source[i]) * factor;
}

// Limited to the range of Int, then truncated toward zero. A NaN gives 0.
template <class Int>
inline Int limitAndTruncate(double value) {
  constexpr double kLeast = std::numeric_limits<Int>::min(), kMost = std::numeric_limits<Int>::max();
  if (!(value > kLeast)) return value <= kLeast ? std::numeric_limits<Int>::min() : Int{0};
  return value >= kMost ? std::numeric_limits<Int>::max() : static_cast<Int>(value);
}

// ---- LogAdd ----

// Hint 1 is the fast form, 0 and 2 the accurate one. Any other hint does nothing (required).
inline void logAddByHint(const float* source, float* result, int32_t length, int32_t hint) {
  if (hint == qorLogAddFast) {
    logAddVectorFast(source, result, length);
  } else if (hint == qorLogAddAccurate || hint == 2) {
    logAddVector(source, result, length);
  }
}
inline void logAddByHint(const double* source, double* result, int32_t length, int32_t hint) {
  if (hint >= 0 && hint <= 2) logAddVector(source, result, length);
}

template <class T>
QorStatus logAddAll(const T* source, T* result, int32_t length, int32_t hint) {
  if (QorStatus bad = Checks().size(length).null(source, result)) return bad;
  logAddByHint(source, result, length, hint);
  return qorStatusOk;
}

inline QorStatus fromFloats(const float* source, int16_t* result, int32_t length, int32_t scaleFactor) {
  return convertFloats(source, result, length, kTruncate, scaleFactor);
}
inline QorStatus fromFloats(const float* source, int32_t* result, int32_t length, int32_t scaleFactor) {
  return convertFloats(source, result, length, kTruncate, scaleFactor);
}

// With an unknown hint the result still goes to float and back, and may lose its low bits (required).
template <class Int>
QorStatus logAddScaled(const Int* source, Int* result, int32_t length, int32_t scaleFactor, int32_t hint) {
  if (QorStatus bad = Checks().size(length).null(source, result)) return bad;
  const auto factor = static_cast<float>(twoToMinus<double>(scaleFactor));
  const int32_t back = scaleFactor == INT32_MIN ? INT32_MAX : -scaleFactor;
  Scratch<float, kLogChunk> a(kLogChunk), b(kLogChunk);
  for (int32_t left = length; left > 0;) {
    const int32_t n = std::min(left, kLogChunk);
    toScaledFloats(source, a.get(), n, factor);
    toScaledFloats(result, b.get(), n, factor);
    logAddByHint(a.get(), b.get(), n, hint);
    fromFloats(b.get(), result, n, back);
    left -= n;
    source += n;
    result += n;
  }
  return qorStatusOk;
}

// ---- LogSub ----

// The constants of one member: where the smaller term no longer counts, where 1 - exp(d) is taken as 0, and the floor.
struct LogSubLimits {
  double drop, tiny, floor, fill;
};
inline constexpr LogSubLimits kLogSubFloat = {-15.3195879547406, 1.0057e-37, -4500000.0, -4500000.0};
inline constexpr LogSubLimits kLogSubDouble = {-23.0258509299405, 2.45e-308, -9000000000.0, -10000000000.0};

inline double logSubOne(double a, double d, const LogSubLimits& limits) {
  if (d < limits.drop) return a < limits.floor ? limits.fill : a;
  const double t = 1.0 - exp(d);
  return t <= limits.tiny ? limits.fill : a + log(t);
}

// The elements of a member: b - a as it is tested, d as it is computed with, and how a result is stored.
struct LogSubOfFloats {
  static float difference(float a, float b) { return b - a; }
  double d(float a, float b) const { return static_cast<double>(b - a); }
  static float store(double result) { return static_cast<float>(result); }
  LogSubLimits limits = kLogSubFloat;
};
struct LogSubOfDoubles {
  static double difference(double a, double b) { return b - a; }
  double d(double a, double b) const { return b - a; }
  static double store(double result) { return result; }
  LogSubLimits limits = kLogSubDouble;
};
template <class Int>
struct LogSubOfIntegers {
  static int32_t difference(int32_t a, int32_t b) { return wrapSub(b, a); }
  double d(Int a, Int b) const { return static_cast<double>((static_cast<float>(b) - static_cast<float>(a)) * factor); }
  // Limited to 32 bits; a 16-bit result is their low half (required).
  static Int store(double result) { return static_cast<Int>(limitAndTruncate<int32_t>(result)); }
  float factor;
  LogSubLimits limits = kLogSubFloat;
};

template <class T, class Elements>
QorStatus logSubAll(const T* source, T* result, int32_t length, const Elements& elements) {
  const auto everyTermIsSmaller = [&] {
    for (int32_t i = 0; i < length; ++i) {
      if (!(elements.difference(source[i], result[i]) < 0)) return false;
    }
    return true;
  };
  if (QorStatus bad = Checks().size(length).null(source, result).require(everyTermIsSmaller, qorStatusBadRange)) return bad;
  for (int32_t i = 0; i < length; ++i) {
    const double d = elements.d(source[i], result[i]);
    result[i] = elements.store(logSubOne(static_cast<double>(source[i]), d, elements.limits));
  }
  return qorStatusOk;
}

// ---- LogSum ----

template <class T>
QorStatus logSumAll(const T* source, T* result, int32_t length) {
  if (QorStatus bad = Checks().size(length).null(source, result)) return bad;
  *result = logSum(source, length);
  return qorStatusOk;
}

// At most this many elements are summed in double, with the float ranges, the running value rounded to float after each step.
inline constexpr int32_t kShortLogSum = 6;

template <class Int>
inline double shortLogSum(const Int* source, int32_t length, double factor) {
  using L = Lanes<double, 2>;
  double sum[2] = {static_cast<double>(source[0]) * factor};
  for (int32_t i = 1; i < length; ++i) {
    HornerLogAdd<LogAddFloat, double>::add(L(sum[0]), L(static_cast<double>(source[i]) * factor)).store(sum);
    sum[0] = static_cast<double>(static_cast<float>(sum[0]));
  }
  return sum[0];
}

// Chunks of 128; from the second on, what was summed so far stands in front.
template <class Int>
inline double longLogSum(const Int* source, int32_t length, float factor) {
  Scratch<float, kLogChunk + 1> chunk(kLogChunk + 1);
  float sum = 0.0F;
  for (int32_t i = 0, n; i < length; i += n) {
    n = std::min(length - i, kLogChunk);
    const int32_t front = i > 0 ? 1 : 0;
    chunk[0] = sum;
    toScaledFloats(source + i, chunk.get() + front, n, factor);
    sum = logSum(chunk.get(), n + front);
  }
  return static_cast<double>(sum);
}

template <class Int>
QorStatus logSumScaled(const Int* source, Int* result, int32_t length, int32_t scaleFactor) {
  if (QorStatus bad = Checks().size(length).null(source, result)) return bad;
  const double factor = twoToMinus<double>(scaleFactor);
  if (length == 1) {
    *result = *source;
  } else {
    const double sum =
        length <= kShortLogSum ? shortLogSum(source, length, factor) : longLogSum(source, length, static_cast<float>(factor));
    *result = limitAndTruncate<Int>(sum / factor);
  }
  return qorStatusOk;
}

}  // namespace qorsr
