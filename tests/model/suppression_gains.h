// Plain model of suppression gains: the function by its series, the table and the parabolas in integers, the staircase by its tables.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "qorsr.h"

namespace model {

// I0(x) and I1(x) by their power series.
inline long double besselI(int order, long double x) {
  long double term = order == 0 ? 1.0L : x / 2, sum = term;
  for (int k = 1; term > sum * 1e-22L; ++k) {
    term *= x / 2 * (x / 2) / (static_cast<long double>(k) * static_cast<long double>(k + order));
    sum += term;
  }
  return sum;
}

// sqrt(pi / v) / 2 exp(-v / 2) ((1 + v) I0(v / 2) + v I1(v / 2)).
inline long double amplitudeRatio(long double v) {
  const long double pi = 3.14159265358979323846264338327950288L;
  return std::sqrt(pi / v) / 2 * std::exp(-v / 2) * ((1 + v) * besselI(0, v / 2) + v * besselI(1, v / 2));
}

inline int64_t ratioAt(int64_t q) {
  static const auto table = [] {
    std::array<int64_t, 129> t{};
    t[0] = 2147483647;
    for (std::size_t i = 1; i < t.size(); ++i) {
      t[i] = static_cast<int64_t>(std::floor(amplitudeRatio(static_cast<long double>(i) / 4194304) + 0.5L));
    }
    return t;
  }();
  return table[static_cast<std::size_t>(q)];
}

inline int64_t ratioOfOctave(int64_t q) {
  static constexpr int64_t t1[24] = {669498645, 473414302, 334764744, 236728959, 167413213, 118408092, 83768274, 59291231,
                                     42007360,  29819668,  21249233,  15255427,  11108711,  8299601,   6470760,  5361107,
                                     4756698,   4463049,   4325745,   4259445,   4226742,   4210491,   4202389,  4198345};
  static constexpr int64_t t2[24] = {1576642499, 557423223, 197075987, 69674844, 24632335, 8707825, 3077959, 1087711,
                                     384201,     135577,    47749,     16748,    5823,     1986,    648,     193,
                                     49,         11,        2,         0,        0,        0,       0,       0};
  static constexpr int64_t t3[24] = {72453962, 51231813, 36225125, 25613282, 18108852, 12801395, 9047010, 6390220,
                                     4508716,  3174276,  2225121,  1546422,  1056723,  698929,   435261,  245271,
                                     121987,   56781,    27183,    13368,    6635,     3306,     1650,    824};
  const int b = 63 - std::countl_zero(static_cast<uint64_t>(q));
  const auto i = static_cast<std::size_t>(b - 7);
  const int64_t e = q - (int64_t{1} << b);
  return ((e * (((e * t2[i]) >> 13) - t3[i])) >> (b - 7 + 5)) + t1[i];
}

inline float ephraimMalah(float prior, float posterior) {
  const float snr = !(posterior > 3.1e-5F) ? 3.1e-5F : posterior > 100.0F ? 100.0F : posterior;
  const double v = static_cast<double>(snr * prior) * 4194304.0;
  const int64_t q = std::isnan(v) ? 0 : static_cast<int64_t>(v);
  if (q < 129) return prior * static_cast<float>(ratioAt(q));
  return static_cast<float>(static_cast<double>(prior * static_cast<float>(ratioOfOctave(q))) / 4194304.0);
}
inline int32_t ephraimMalah(int32_t prior, int32_t posterior) {
  const int64_t snr = std::clamp(posterior, 1, 3276800), q = (snr * prior) >> 24;
  const int64_t gain = q < 129 ? prior * ratioAt(q) : (prior * ratioOfOctave(q)) >> 22;
  return static_cast<int32_t>(std::min<int64_t>(gain, 0x7fffffff));
}

// trunc(2^31 x / (1 + x)), x = steps / stepsInOne.
inline int32_t stepOf(int64_t steps, int64_t stepsInOne) { return static_cast<int32_t>((steps << 31) / (steps + stepsInOne)); }
inline int32_t wiener(int32_t v) {
  if (v < 0) return 0;
  if (v < 1 << 17) return stepOf(v >> 11, 16);
  if (v < 1 << 21) return stepOf(4 * (v >> 17), 1);
  if (v < 1 << 24) return stepOf(64 * (v >> 21), 1);
  return v < 1 << 25 ? 2143297520 : 0x7fffffff;
}
inline float wiener(float x) {
  const float limited = x < 0.0F ? 0.0F : x;
  return limited / (1.0F + limited);
}

}  // namespace model
