// Periodicity of a frame: how well it is explained by one period, over a range of periods p.
//
//   Least squares: with s, q and c the sum, the sum of squares and the number of the samples i, i + p, i + 2p, ... of each phase i,
//     A = sum over i of s^2 / c, B = sum over i of q / c, value (A - B) / (E - B), E the energy of the frame.
//   Mean: the largest mean of up to six samples i, i + p, ..., i + 5p, as a share of the sum of all samples.
//
// The phases of a period lie side by side in lanes; what they give is added in their order. The least period wins a tie.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "qorsr.h"

namespace qorsr {

// Required: 1 / sqrt(c) and 1 / c to six digits.
inline constexpr float kInverseRoot[17] = {0.0F,      1.0F,      0.707107F, 0.57735F,  0.5F,      0.447214F,
                                           0.408248F, 0.377965F, 0.353553F, 0.333333F, 0.316228F, 0.301511F,
                                           0.288675F, 0.27735F,  0.267261F, 0.258199F, 0.25F};
inline constexpr float kInverse[17] = {0.0F,      1.0F, 0.5F,      0.333333F, 0.25F,      0.2F,      0.166666F, 0.142857F, 0.125F,
                                       0.111111F, 0.1F, 0.090909F, 0.083333F, 0.0769231F, 0.071429F, 0.066666F, 0.0625F};

// 2^30 / sqrt(c) and 2^30 / c, truncated.
inline constexpr int64_t kInverseRootQ30[17] = {0,         1073741824, 759250124, 619925131, 536870912, 480191941,
                                                438353264, 405836262,  379625062, 357913941, 339546978, 323745341,
                                                309962565, 297802400,  286969573, 277238946, 268435456};
constexpr int64_t inverseQ30(int64_t count) { return count == 0 ? 0 : (int64_t{1} << 30) / count; }

constexpr int16_t limitedQ15(int64_t value) { return static_cast<int16_t>(std::min<int64_t>(value, 32767)); }

// How far a sum, which is not negative, is shifted right to fit 31 bits.
constexpr int shiftTo31Bits(int64_t sum) {
  int shift = 0;
  while (sum > INT32_MAX) {
    sum >>= 1;
    ++shift;
  }
  return shift;
}

// Calls body(first, end, count) for the phases that have `count` samples in a frame: those below length mod p have one more.
template <class Body>
inline void forPhases(int32_t length, int32_t period, const Body& body) {
  const int32_t rest = length % period, count = length / period;
  if (rest > 0) body(0, rest, count + 1);
  body(rest, period, count);
}

// ---- Least squares ----

inline constexpr int32_t kMostPhases = 1024, kLeastPeriodLspe = 6, kMostTerms = 16;

// A and B of one period.
template <class Number>
struct Explained {
  Number all, single;
};

inline Explained<float> explainedBy(int32_t period, const float* x, int32_t length) {
  float squares[kMostPhases], singles[kMostPhases];
  forPhases(length, period, [&](int32_t first, int32_t end, int32_t count) {
    coverColumns<float>(end - first, [&](int32_t i, auto n) {
      using L = Lanes<float, n>;
      L sum = L::load(x + first + i), energy = sum * sum;
      for (int32_t m = 1; m < count; ++m) {
        const L v = L::load(x + first + i + m * period);
        sum += v;
        energy += v * v;
      }
      const L scaled = sum * L(kInverseRoot[count]);
      (scaled * scaled).store(squares + first + i);
      (energy * L(kInverse[count])).store(singles + first + i);
    });
  });
  Explained<float> explained{0.0F, 0.0F};
  for (int32_t i = 0; i < period; ++i) {
    explained.all += squares[i];  // NOLINT(clang-analyzer-core.uninitialized.Assign): blocks of columns cover all phases
    explained.single += singles[i];
  }
  return explained;
}

inline Explained<int64_t> explainedBy(int32_t period, const int16_t* x, int32_t length, int shift) {
  Explained<int64_t> explained{0, 0};
  forPhases(length, period, [&](int32_t first, int32_t end, int32_t count) {
    for (int32_t i = first; i < end; ++i) {
      int64_t sum = 0, energy = 0;
      for (int32_t m = 0; m < count; ++m) {
        const int32_t v = x[i + m * period];
        sum += v;
        energy += (v * v) >> shift;
      }
      // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): count is at most kMostTerms
      const int64_t scaled = sum * kInverseRootQ30[count];
      explained.all += (scaled >> (30 + shift / 2)) * (scaled >> (30 + shift - shift / 2));
      explained.single += (energy * inverseQ30(count)) >> 30;
    }
  });
  return explained;
}

// The best value over the periods, and the first period that has it. explained(p) gives A and B; ratio(num, den) the value.
template <class Number, class Value, class ExplainedBy, class Ratio>
inline void searchPeriods(int32_t minimum, int32_t maximum, Number energy, Value* value, int32_t* period,
                          const ExplainedBy& explained, const Ratio& ratio) {
  Value best = 0;
  int32_t bestPeriod = 0;
  for (int32_t p = minimum; p <= maximum; ++p) {
    const Explained<Number> e = explained(p);
    const Number numerator = e.all - e.single, denominator = energy - e.single;
    if (!(denominator > 0 && numerator > 0)) continue;
    const Value r = ratio(numerator, denominator);
    if (r > best) {
      best = r;
      bestPeriod = p;
    }
  }
  *value = best;
  *period = bestPeriod;
}

template <class T>
inline Checks checkPeriods(const T* source, int32_t length, const void* value, const int32_t* period, int32_t maximum,
                           int32_t minimum, int32_t least, int32_t longest) {
  return Checks()
      .null(source, value, period)
      .require(minimum >= least && maximum > minimum, qorStatusBadRange)
      .require(length > maximum && length <= longest, qorStatusBadLength);
}

inline QorStatus leastSquaresPeriodicity(const float* source, int32_t length, float* value, int32_t* period, int32_t maximum,
                                         int32_t minimum) {
  if (QorStatus bad = checkPeriods(source, length, value, period, maximum, minimum, kLeastPeriodLspe, kMostPhases)
                          .require(length <= kMostTerms * minimum, qorStatusBadLength)) {
    return bad;
  }
  float energy = 0.0F;
  for (int32_t i = 0; i < length; ++i) energy += source[i] * source[i];
  searchPeriods(
      minimum, maximum, energy, value, period, [=](int32_t p) { return explainedBy(p, source, length); },
      [](float numerator, float denominator) { return numerator / denominator; });
  return qorStatusOk;
}

inline QorStatus leastSquaresPeriodicity(const int16_t* source, int32_t length, int16_t* value, int32_t* period, int32_t maximum,
                                         int32_t minimum) {
  if (QorStatus bad = checkPeriods(source, length, value, period, maximum, minimum, kLeastPeriodLspe, kMostPhases)
                          .require(length <= kMostTerms * minimum, qorStatusBadLength)) {
    return bad;
  }
  int64_t energy = 0;
  for (int32_t i = 0; i < length; ++i) energy += int64_t{source[i]} * source[i];
  const int shift = shiftTo31Bits(energy);
  searchPeriods(
      minimum, maximum, energy >> shift, value, period, [=](int32_t p) { return explainedBy(p, source, length, shift); },
      [](int64_t numerator, int64_t denominator) { return limitedQ15(numerator * 32768 / denominator); });
  return qorStatusOk;
}

// ---- Largest mean ----

inline constexpr int32_t kMostMeanTerms = 6, kLongestMean = 4096;

// The sum of the samples of one phase: in float, or exact in double of 32-bit samples.
template <class Sum, int N, class T>
inline Lanes<Sum, N> phaseSums(const T* x, int32_t phase, int32_t period, int32_t count) {
  auto sum = loadAs<Sum, N>(x + phase);
  for (int32_t m = 1; m < count; ++m) sum += loadAs<Sum, N>(x + phase + m * period);
  return sum;
}

// The largest of them over the phases first to end - 1. A NaN is not taken.
template <class Sum, class T>
inline Sum largestSum(const T* x, int32_t first, int32_t end, int32_t period, int32_t count) {
  constexpr int N = 8;
  Sum largest = 0;
  if (end - first < N) {
    for (int32_t i = first; i < end; ++i) largest = std::max(largest, phaseSums<Sum, 1>(x, i, period, count).part[0]);
    return largest;
  }
  Lanes<Sum, N> lanes(Sum(0));
  for (int32_t i = first; i < end; i += N) {
    lanes = max(phaseSums<Sum, N>(x, std::min(i, end - N), period, count), lanes);  // the last ones may overlap
  }
  Sum all[N];
  lanes.store(all);
  return *std::max_element(all, all + N);
}

// The largest mean over the periods, as the sum that it is the mean of, and the first period and phase that has it. meanOf(sum,
// count) rises with the sum, so that a period whose largest sum gives no larger mean is passed over.
template <class Sum, class T, class MeanOf>
inline Sum searchLargestMean(const T* x, int32_t length, int32_t* period, int32_t maximum, int32_t minimum, const MeanOf& meanOf) {
  decltype(meanOf(Sum(), 0)) best = 0;
  Sum bestSum = 0;
  for (int32_t p = minimum; p <= maximum; ++p) {
    forPhases(length, p, [&](int32_t first, int32_t end, int32_t phaseCount) {
      const int32_t count = std::min(phaseCount, kMostMeanTerms);
      const auto largest = meanOf(largestSum<Sum>(x, first, end, p, count), count);
      if (!(largest > best)) return;
      for (int32_t i = first; !(best == largest); ++i) {
        const Sum sum = phaseSums<Sum, 1>(x, i, p, count).part[0];
        const auto mean = meanOf(sum, count);
        if (!(mean > best)) continue;
        best = mean;
        bestSum = sum;
        *period = p;
      }
    });
  }
  return bestSum;
}

template <class T>
inline bool anyNegative(const T* source, int32_t length) {
  bool negative = false;
  for (int32_t i = 0; i < length; ++i) negative |= source[i] < 0;
  return negative;
}

template <class T>
inline Checks checkMeans(const T* source, int32_t length, const void* value, const int32_t* period, int32_t maximum,
                         int32_t minimum) {
  return checkPeriods(source, length, value, period, maximum, minimum, 1, kLongestMean)
      .require([=] { return !anyNegative(source, length); }, qorStatusBadRange);
}

inline QorStatus meanPeriodicity(const float* source, int32_t length, float* value, int32_t* period, int32_t maximum,
                                 int32_t minimum) {
  if (QorStatus bad = checkMeans(source, length, value, period, maximum, minimum)) return bad;
  float even = 0.0F, odd = 0.0F;  // from the end, where the last sample is one of them
  int32_t i = length - 1;
  for (; i > 0; i -= 2) {
    even += source[i];
    odd += source[i - 1];
  }
  float sum = even + odd;
  if (i == 0) sum += source[0];
  *period = 0;
  const auto magnitude = static_cast<double>(sum);
  if (__builtin_fabs((magnitude > 0.0 ? magnitude : 0.0) * 1e-6) >= __builtin_fabs(magnitude)) {
    *value = 0.0F;
    return qorStatusOk;
  }
  *value = searchLargestMean<float>(source, length, period, maximum, minimum,
                                    [](float v, int32_t count) { return v * kInverse[count]; }) /
           sum;
  return qorStatusOk;
}

inline QorStatus meanPeriodicity(const int32_t* source, int32_t length, int16_t* value, int32_t* period, int32_t maximum,
                                 int32_t minimum) {
  if (QorStatus bad = checkMeans(source, length, value, period, maximum, minimum)) return bad;
  int64_t sum = 0;
  for (int32_t i = 0; i < length; ++i) sum += source[i];
  const int shift = shiftTo31Bits(sum);
  *period = 0;
  *value = 0;
  if (sum == 0) return qorStatusOk;
  const auto best =
      static_cast<int64_t>(searchLargestMean<double>(source, length, period, maximum, minimum, [](double v, int32_t count) {
        return static_cast<int32_t>((static_cast<int64_t>(v) * inverseQ30(count)) >> 30);
      }));
  *value = limitedQ15((best >> shift) * 32768 / (sum >> shift));
  return qorStatusOk;
}

}  // namespace qorsr
