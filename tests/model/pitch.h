// Plain models of pitch analysis: each measure as its definition reads, one number at a time.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "model/convert.h"
#include "qorsr.h"

namespace model {

// ---- Cross-correlation ----

inline float exactDot(const int16_t* a, const int16_t* b, int64_t length) {
  int64_t sum = 0;
  for (int64_t i = 0; i < length; ++i) sum += int64_t{a[i]} * b[i];
  return static_cast<float>(static_cast<double>(sum));
}

inline float normalised(float c, float e1, float e2) {
  const float product = e1 * e2;
  if (std::fabs(product) <= 1.1754944e-38F) return 0.0F;
  return static_cast<float>(static_cast<double>(c) / (std::sqrt(static_cast<double>(e1)) * std::sqrt(static_cast<double>(e2))));
}

inline std::vector<float> decimatedCrossCorrelation(const std::vector<int16_t>& first, const std::vector<int16_t>& second,
                                                    int32_t maximum, int32_t minimum, int32_t step) {
  const auto product = [](int16_t a, int16_t b) { return static_cast<float>(static_cast<int32_t>(a) * b); };
  const auto x = [&](int32_t i) { return first[static_cast<std::size_t>(i)]; };
  const auto y = [&](int32_t i) { return second[static_cast<std::size_t>(i)]; };
  const int32_t range = maximum - minimum;
  std::vector<float> results;
  float e1 = 0.0F, e2 = 0.0F, c = 0.0F;
  int32_t n = 0;
  for (; n < minimum; n += step) {
    e1 = e1 + product(x(range + n), x(range + n));
    e2 = e2 + product(y(n), y(n));
    c = c + product(x(range + n), y(n));
  }
  results.push_back(normalised(c, e1, e2));
  for (int32_t q = 1; q <= range / step; ++q) {
    const int32_t d = q * step;
    e1 = e1 + product(x(range - d), x(range - d));
    e2 = e2 + product(y(n), y(n));
    n += step;
    c = 0.0F;
    for (int32_t k = 0; k <= minimum + d - 1; k += step) c = c + product(x(range - d + k), y(k));
    results.push_back(normalised(c, e1, e2));
  }
  return results;
}

struct Interpolation {
  QorStatus status;
  float position;
  std::optional<float> coefficient;  // none: the caller's stays
};
inline Interpolation interpolatedCrossCorrelation(const std::vector<int16_t>& x, const std::vector<int16_t>& y) {
  double yy0 = 0, yy1 = 0, y01 = 0, xx = 0, xy0 = 0, xy1 = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double xi = x[i], a = y[i], b = y[i + 1];
    yy0 += a * a, yy1 += b * b, y01 += a * b, xx += xi * xi, xy0 += xi * a, xy1 += xi * b;
  }
  const double d = (yy1 - y01) * xy0 + (yy0 - y01) * xy1;
  if (d == 0) return {qorStatusDivideByZero, 0.0F, static_cast<float>(xy0)};
  const double a = (xy1 * yy0 - xy0 * y01) / d;
  if (!(a >= 0 && a < 1)) return {qorStatusOk, static_cast<float>(a), {}};
  const double b = 1 - a, energy = (yy0 * b + (a + a) * y01) * b + a * a * yy1, v = xx * energy;
  return {qorStatusOk, static_cast<float>(a), static_cast<float>(v == 0 ? xy0 : (b * xy0 + xy1 * a) / std::sqrt(v))};
}

// ---- Periodicity ----

inline constexpr float kRoots[17] = {0.0F,      1.0F,      0.707107F, 0.57735F,  0.5F,      0.447214F,
                                     0.408248F, 0.377965F, 0.353553F, 0.333333F, 0.316228F, 0.301511F,
                                     0.288675F, 0.27735F,  0.267261F, 0.258199F, 0.25F};
inline constexpr float kInverses[17] = {0.0F,      1.0F, 0.5F,      0.333333F, 0.25F,      0.2F,      0.166666F, 0.142857F, 0.125F,
                                        0.111111F, 0.1F, 0.090909F, 0.083333F, 0.0769231F, 0.071429F, 0.066666F, 0.0625F};
// floor(2^30 / sqrt(c)), by trial.
inline int64_t rootQ30(int64_t c) {
  auto r = static_cast<int64_t>(std::ldexp(1.0, 30) / std::sqrt(static_cast<double>(c)));
  while (r * r * c > (int64_t{1} << 60)) --r;
  while ((r + 1) * (r + 1) * c <= (int64_t{1} << 60)) ++r;
  return r;
}

template <class Value>
struct Period {
  Value value;
  int32_t period;
};

inline Period<float> leastSquares(const std::vector<float>& x, int32_t maximum, int32_t minimum) {
  float energy = 0.0F;
  for (const float v : x) energy = energy + v * v;
  Period<float> best{0.0F, 0};
  for (int32_t p = minimum; p <= maximum; ++p) {
    float all = 0.0F, single = 0.0F;
    for (int32_t i = 0; i < p; ++i) {
      float s = x[static_cast<std::size_t>(i)], q = s * s;
      int c = 1;
      for (std::size_t k = static_cast<std::size_t>(i + p); k < x.size(); k += static_cast<std::size_t>(p), ++c) {
        s = s + x[k];
        q = q + x[k] * x[k];
      }
      const float t = s * kRoots[c];
      all = all + t * t;
      single = single + q * kInverses[c];
    }
    const float num = all - single, den = energy - single;
    if (num > 0 && den > 0 && num / den > best.value) best = {num / den, p};
  }
  return best;
}

inline int shiftTo31(int64_t v) {
  int shift = 0;
  while ((v >> shift) > 0x7FFFFFFF) ++shift;
  return shift;
}

inline Period<int16_t> leastSquares(const std::vector<int16_t>& x, int32_t maximum, int32_t minimum) {
  int64_t energy = 0;
  for (const int64_t v : x) energy += v * v;
  const int sh = shiftTo31(energy);
  energy >>= sh;
  Period<int16_t> best{0, 0};
  for (int32_t p = minimum; p <= maximum; ++p) {
    int64_t all = 0, single = 0;
    for (int32_t i = 0; i < p; ++i) {
      int64_t s = 0, q = 0, c = 0;
      for (std::size_t k = static_cast<std::size_t>(i); k < x.size(); k += static_cast<std::size_t>(p), ++c) {
        s += x[k];
        q += (int64_t{x[k]} * x[k]) >> sh;
      }
      const int64_t t = s * rootQ30(c);
      all += (t >> (30 + sh / 2)) * (t >> (30 + sh - sh / 2));
      single += (q * ((int64_t{1} << 30) / c)) >> 30;
    }
    const int64_t num = all - single, den = energy - single;
    if (num <= 0 || den <= 0) continue;
    const int64_t r = std::min<int64_t>(num * 32768 / den, 32767);
    if (r > best.value) best = {static_cast<int16_t>(r), p};
  }
  return best;
}

inline Period<float> largestMean(const std::vector<float>& x, int32_t maximum, int32_t minimum) {
  float lastParity = 0.0F, otherParity = 0.0F;
  std::size_t n = x.size();
  for (; n >= 2; n -= 2) {
    lastParity = lastParity + x[n - 1];
    otherParity = otherParity + x[n - 2];
  }
  float s = lastParity + otherParity;
  if (n == 1) s = s + x[0];
  if (std::fabs(std::fmax(0.0, static_cast<double>(s)) * 1e-6) >= std::fabs(static_cast<double>(s))) return {0.0F, 0};
  float best = 0.0F, sum = 0.0F;
  int32_t period = 0;
  for (int32_t p = minimum; p <= maximum; ++p) {
    for (int32_t i = 0; i < p; ++i) {
      float v = x[static_cast<std::size_t>(i)];
      int c = 1;
      for (int m = 1; m <= 5 && static_cast<std::size_t>(i + m * p) < x.size(); ++m, ++c)
        v = v + x[static_cast<std::size_t>(i + m * p)];
      const float w = v * kInverses[c];
      if (w > best) {
        best = w;
        sum = v;
        period = p;
      }
    }
  }
  return {sum / s, period};
}

inline Period<int16_t> largestMean(const std::vector<int32_t>& x, int32_t maximum, int32_t minimum) {
  int64_t s = 0;
  for (const int32_t v : x) s += v;
  if (s == 0) return {0, 0};
  const int sh = shiftTo31(s);
  int32_t best = 0, period = 0;
  int64_t sum = 0;
  for (int32_t p = minimum; p <= maximum; ++p) {
    for (int32_t i = 0; i < p; ++i) {
      int64_t v = x[static_cast<std::size_t>(i)];
      int64_t c = 1;
      for (int m = 1; m <= 5 && static_cast<std::size_t>(i + m * p) < x.size(); ++m, ++c)
        v += x[static_cast<std::size_t>(i + m * p)];
      const auto w = static_cast<int32_t>((v * ((int64_t{1} << 30) / c)) >> 30);
      if (w > best) {
        best = w;
        sum = v;
        period = p;
      }
    }
  }
  return {static_cast<int16_t>(std::min<int64_t>((sum >> sh) * 32768 / (s >> sh), 32767)), period};
}

// ---- Peaks ----

inline float contourMean(const std::vector<float>& x, std::size_t first, std::size_t last) {
  double sum = 0;
  for (std::size_t k = first; k <= last; ++k) sum = sum + static_cast<double>(x[k]);
  return static_cast<float>(sum / static_cast<double>(static_cast<float>(last - first + 1)));
}
inline int32_t contourMean(const std::vector<int32_t>& x, std::size_t first, std::size_t last) {
  int64_t sum = 0;
  for (std::size_t k = first; k <= last; ++k) sum += x[k];
  return static_cast<int32_t>(sum / static_cast<int64_t>(last - first + 1));
}

// The walk, step by step. flags: 2 where nothing was written.
template <class T>
std::vector<uint8_t> peaks(const std::vector<T>& source, int32_t search, int32_t half) {
  const auto n = static_cast<int32_t>(source.size());
  std::vector<uint8_t> flags(source.size(), 2);
  const auto flag = [&](int32_t i) -> uint8_t& { return flags[static_cast<std::size_t>(i)]; };
  if (n == 1) return {1};
  if (half >= n - 1) return std::vector<uint8_t>(source.size(), 0);
  std::vector<T> smoothed = source;
  if (half > 0) {
    for (int32_t i = 0; i < n; ++i) {
      smoothed[static_cast<std::size_t>(i)] =
          contourMean(source, static_cast<std::size_t>(std::max(i - half, 0)), static_cast<std::size_t>(std::min(i + half, n - 1)));
    }
  }
  const auto y = [&](int32_t i) { return smoothed[static_cast<std::size_t>(i)]; };
  int32_t i = 1, down = 0;
  for (;;) {
    flag(i - 1) = 0;
    if (i == n || !(y(i) < y(i - 1))) break;
    ++i;
    ++down;
  }
  if (i == n) {
    flag(n - 1) = 0;
    flag(0) = 1;
    return flags;
  }
  if (down >= search) flag(0) = 1;
  if (i == n - 1) {
    flag(n - 1) = search == 1 && source[static_cast<std::size_t>(n - 1)] > source[static_cast<std::size_t>(n - 2)] ? 1 : 0;
    return flags;
  }
  while (i < n) {
    int32_t up = y(i) != y(i - 1) ? 1 : 0;
    while (i < n - 1) {
      flag(i) = 0;
      if (y(i) >= y(i + 1)) break;
      ++i;
      ++up;
    }
    if (i == n - 1) {
      flag(i) = (i >= search ? up >= search : up >= i) ? 1 : 0;
      return flags;
    }
    if (y(i) == y(i + 1)) {
      ++i;
      continue;
    }
    ++i;
    down = 1;
    while (i < n - 1) {
      flag(i) = 0;
      if (y(i + 1) >= y(i)) break;
      ++i;
      ++down;
    }
    const int32_t p = i - down;
    bool is = true;
    if (up < std::min(p, search)) is = false;
    if (p < n - search && down < search) is = false;
    if (p >= n - search && down < n - 1 - p) is = false;
    if (is) flag(p) = 1;
    ++i;
  }
  flag(i - 1) = 0;
  return flags;
}

}  // namespace model
