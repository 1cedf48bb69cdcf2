// Plain models of spectral noise reduction: power spectra, noise updates, gains, filter taps, filtering and waveform weights, one number
// after the other.
#pragma once

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "model/convert.h"

namespace model {

// ---- Integers ----

// value * 2^-sf in 64 bits: right with copies of the sign, left losing high bits.
inline int64_t shifted64(int64_t value, int32_t sf) {
  if (sf >= 0) return value >> std::min(sf, 63);
  return sf <= -64 ? 0 : static_cast<int64_t>(static_cast<uint64_t>(value) << -static_cast<int64_t>(sf));
}
template <class Int>
Int limitedTo(int64_t value) {
  return static_cast<Int>(std::clamp<int64_t>(value, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}
inline int32_t wrapped32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }

// 2^-sf as a double, infinite and zero beyond its range.
inline double powerOfTwo64(int64_t minusExponent) {
  return std::ldexp(1.0, static_cast<int>(std::clamp<int64_t>(-minusExponent, -2000, 2000)));
}

// A float limited to the range of Int and truncated; a NaN gives 0, and what reaches 2^31 the most negative number.
template <class Int>
Int limitAndTruncate(float value) {
  if (std::isnan(value)) return 0;
  if (sizeof(Int) == 2) return static_cast<Int>(std::fmax(std::fmin(value, 32767.0F), -32768.0F));
  if (value >= 2147483648.0F || value <= -2147483648.0F) return std::numeric_limits<Int>::min();
  return static_cast<Int>(value);
}

// A double times 2^-sf, limited to 16 bits and rounded to nearest even; a NaN gives 0.
inline int16_t scaledTo16(double value, int32_t sf) {
  const double scaled = value * powerOfTwo64(sf);
  if (std::isnan(scaled)) return 0;
  return static_cast<int16_t>(nearestEven(std::fmax(std::fmin(scaled, 32767.0), -32768.0)));
}

// ---- Power spectra ----

inline std::vector<float> powerSpectrum(const std::vector<float>& x) {
  std::vector<float> y;
  for (std::size_t i = 0; i < x.size(); i += 4) {
    const float first = i == 0 ? x[0] * x[0] : x[i] * x[i] + x[i + 1] * x[i + 1];
    const float second = x[i + 2] * x[i + 2] + x[i + 3] * x[i + 3];
    y.push_back((first + second) * 0.5F);
  }
  y.push_back(x[1] * x[1]);
  return y;
}

inline std::vector<int16_t> powerSpectrum(const std::vector<int16_t>& x) {
  const auto half = [&](std::size_t i) { return int64_t{x[i]} * x[i] / 2; };
  std::vector<int16_t> y;
  y.push_back(static_cast<int16_t>(std::min<int64_t>(half(0) + half(2) + half(3), 32767)));
  for (std::size_t i = 4; i < x.size(); i += 4) {
    y.push_back(limitedTo<int16_t>(wrapped32(half(i) + half(i + 1) + half(i + 2) + half(i + 3))));
  }
  y.push_back(static_cast<int16_t>(std::min(x[1] * x[1], 32767)));
  return y;
}

inline int64_t halfSquare(int32_t x) { return int64_t{x} * x / 2; }
inline int64_t lowSquare(int32_t x) { return wrapped32(int64_t{x} * x); }

inline std::vector<int32_t> powerSpectrum(const std::vector<int32_t>& x, int32_t sf) {
  std::vector<int32_t> y;
  y.push_back(limitedTo<int32_t>(shifted64(halfSquare(x[0]) + halfSquare(x[2]) + halfSquare(x[3]), sf)));
  const auto square = [&](std::size_t i) { return static_cast<double>(x[i]) * static_cast<double>(x[i]); };
  for (std::size_t i = 4; i < x.size(); i += 4) {
    const double sum = ((square(i) + square(i + 1)) + (square(i + 2) + square(i + 3))) * powerOfTwo64(int64_t{sf} + 1);
    const double rounded = sum < 4294967296.0 ? nearestEven(sum) : 4294967296.0;  // a NaN, too
    y.push_back(rounded < 2147483648.0 ? static_cast<int32_t>(rounded) : INT32_MIN);
  }
  y.push_back(limitedTo<int32_t>(shifted64(lowSquare(x[1]), sf)));
  return y;
}

inline std::vector<int64_t> powerSpectrum64(const std::vector<int32_t>& x, int32_t sf) {
  std::vector<int64_t> y;
  for (std::size_t i = 0; i < x.size(); i += 4) {
    uint64_t sum = 0;
    for (std::size_t j = i; j < i + 4; ++j) sum += j == 1 ? 0 : static_cast<uint64_t>(halfSquare(x[j]));
    y.push_back(shifted64(static_cast<int64_t>(sum), sf));
  }
  y.push_back(shifted64(lowSquare(x[1]), sf));
  return y;
}

// ---- Noise updates: every operation rounds toward zero, in the mode that the caller sets ----

inline float noiseUpdate(float x, float n) {
  const float tenth = 0.1F * x, sum = x + n, mixed = n + tenth;
  if (sum == 0 || mixed == 0) return 0;
  return n * ((tenth / sum) * ((n / mixed) + 1.0F) + 0.9F);
}
inline float scaledUpdate(float x, float n, float sum, float mixed, int32_t sf) {
  return (n * ((((x / sum) * 0.1F) * ((n / mixed) + 1.0F)) + 0.9F)) * scaleMultiplier(std::clamp(sf, -128, 150));
}
inline int16_t noiseUpdate(int16_t x, int16_t n, int32_t sf) {
  const float mixed = 0.1F * static_cast<float>(x) + static_cast<float>(n);
  if (x + n == 0 || static_cast<int32_t>(mixed) == 0) return 0;
  return limitAndTruncate<int16_t>(
      scaledUpdate(static_cast<float>(x), static_cast<float>(n), static_cast<float>(x + n), mixed, sf));
}
inline int32_t noiseUpdate(int32_t x, int32_t n, int32_t sf) {
  const auto tenth = static_cast<int64_t>(0.1F * static_cast<float>(x));
  const int64_t sum = int64_t{x} + n, mixed = tenth + n;
  if (sum == 0 || mixed == 0) return 0;
  return limitAndTruncate<int32_t>(
      scaledUpdate(static_cast<float>(x), static_cast<float>(n), static_cast<float>(sum), static_cast<float>(mixed), sf));
}

// ---- Wiener gains ----

inline float wienerGain(float x, float n, float p) {
  const float r = 1.0F / n, rise = x - n > 0.0F ? x - n : 0.0F;
  const float a = (rise * 0.02F + p * 0.98F) * r;
  float b = (a / (a + 1.0F)) * (x * r);
  if (!(b > 0.07943282F)) b = 0.07943282F;
  return b / (b + 1.0F);
}
inline int16_t wienerGain(int16_t present, int16_t noise, int16_t denoised) {
  const int64_t x = present, n = noise, p = denoised;
  if (n == 0) return 1206;
  const int64_t d = x < n ? 0 : x - n, i = 16384 / n;
  const int64_t a = (p * 4014 + 82 * d) * i, divisor = (a >> 14) + 4096;
  int64_t b = 1301;
  if (divisor != 0) b = std::max<int64_t>(((x * ((a & ~int64_t{0x3FFF}) / divisor)) >> 14) * i, 1301);
  return static_cast<int16_t>(b * 128 / ((b >> 7) + 128));
}

// ---- The filter of 17 taps ----

template <class T>
std::vector<T> arrangedTaps(const std::vector<T>& c) {
  return {c[8], c[7], c[6], c[5], c[4], c[3], c[2], c[1], c[0], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9]};
}
inline std::vector<float> residual(const std::vector<float>& x, const std::vector<float>& h) {
  std::vector<float> y;
  for (std::size_t i = 0; i < 80; ++i) {
    float sum = h[0] * x[i];
    for (std::size_t k = 1; k < 17; ++k) sum += h[k] * x[i + k];
    y.push_back(sum);
  }
  return y;
}
inline std::vector<int16_t> residual(const std::vector<int16_t>& x, const std::vector<int16_t>& h, int32_t sf) {
  std::vector<int16_t> y;
  for (std::size_t i = 0; i < 80; ++i) {
    double sum = static_cast<double>(h[16] * x[i + 16]);
    for (std::size_t k = 0; k < 16; k += 2) {
      sum += static_cast<double>(wrapped32(int64_t{h[k]} * x[i + k] + int64_t{h[k + 1]} * x[i + k + 1]));
    }
    y.push_back(scaledTo16(sum, sf));
  }
  return y;
}

// ---- Waveform weights ----

inline float energyBetween(float x, float left, float right) { return std::fabs(x * x - left * right); }
inline float energyAtEnd(float x, float beside) { return std::fabs((x - beside) * x); }
inline int32_t energyBetween(int16_t x, int16_t left, int16_t right) {
  return limitedTo<int32_t>(std::abs(int64_t{x} * x - int64_t{left} * right));
}
inline int32_t energyAtEnd(int16_t x, int16_t beside) { return limitedTo<int32_t>(std::abs((int64_t{x} - beside) * x)); }

inline float movedSum(float sum, float entering, float leaving) { return (sum + entering) - leaving; }
inline int32_t movedSum(int32_t sum, int32_t entering, int32_t leaving) { return wrapped32(int64_t{sum} + entering - leaving); }

template <class Energy, class T>
std::vector<Energy> smoothedEnergy(const std::vector<T>& x) {
  std::vector<Energy> e, s;
  e.push_back(energyAtEnd(x[0], x[1]));
  for (std::size_t n = 1; n < 199; ++n) e.push_back(energyBetween(x[n], x[n - 1], x[n + 1]));
  e.push_back(energyAtEnd(x[199], x[198]));
  const auto at = [&](int n) { return e[static_cast<std::size_t>(std::clamp(n, 0, 199))]; };
  Energy sum = 0;
  for (int m = -4; m <= 4; ++m) sum = movedSum(sum, at(m), Energy(0));
  s.push_back(sum);
  for (int n = 1; n < 200; ++n) s.push_back(sum = movedSum(sum, at(n + 4), at(n - 5)));
  return s;
}

template <class Energy>
int firstMaximum(const std::vector<Energy>& s, int from, int to) {
  int best = from;
  for (int i = from; i <= to; ++i) {
    if (s[static_cast<std::size_t>(i)] > s[static_cast<std::size_t>(best)]) best = i;
  }
  return best;
}

template <class Energy>
std::vector<int> peaksOf(const std::vector<Energy>& s) {
  const int first = firstMaximum(s, 0, 199);
  std::vector<int> peaks = {first};
  for (int p = first; p < 175;) {
    const int count = p < 121 ? 55 : 175 - p;
    p = firstMaximum(s, p + 25, p + 25 + count - 1);
    peaks.push_back(p);
  }
  for (int p = first; p > 25;) {
    p = firstMaximum(s, p - std::min(p, 79), p - 25);
    peaks.insert(peaks.begin(), p);
  }
  return peaks;
}

// low, one and high weight; loud(distance) is the high weight's share.
template <class T, class Loud>
std::vector<T> weightsOf(const std::vector<int>& peaks, T low, T one, T high, Loud loud) {
  std::vector<T> w(200, low);
  const auto set = [&](int from, int to, T value) {
    for (int i = from; i <= to; ++i) w.at(static_cast<std::size_t>(i)) = value;
  };
  for (std::size_t i = 0; i + 1 < peaks.size(); ++i) {
    const int a = peaks[i], b = peaks[i + 1], lo = std::max(a - 4, 0), hi = a + loud(b - a) - 4;
    set(lo, hi - 1, high);
    if (lo > 0) set(lo - 1, lo, one);
    const int j = hi > lo ? hi : lo;
    set(j - 1, j, one);
  }
  const int a = peaks.back(), lo = a - 4, hi = std::min(a + loud(a - peaks[peaks.size() - 2]) - 4, 200), j = hi > lo ? hi : lo;
  set(lo, hi - 1, high);
  if (lo < 198) set(lo - 1, lo, one);
  if (j < 200) set(j - 1, j, one);
  return w;
}

inline std::vector<float> processedWave(const std::vector<float>& x) {
  const std::vector<int> peaks = peaksOf(smoothedEnergy<float>(x));
  const auto w = weightsOf(peaks, 0.8F, 1.0F, 1.2F, [](int d) { return static_cast<int>(static_cast<float>(d) * 0.8F); });
  std::vector<float> y;
  for (std::size_t n = 0; n < 200; ++n) y.push_back(w[n] * x[n]);
  return y;
}
inline std::vector<int16_t> processedWave(const std::vector<int16_t>& x) {
  const std::vector<int> peaks = peaksOf(smoothedEnergy<int32_t>(x));
  const auto w = weightsOf(peaks, 27, 32, 38, [](int d) { return d * 27 >> 5; });
  std::vector<int16_t> y;
  for (std::size_t n = 0; n < 200; ++n) y.push_back(scaledTo16(static_cast<double>(w[n] * x[n]), 5));
  return y;
}

}  // namespace model
