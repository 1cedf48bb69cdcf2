// Normalised cross-correlation of 16-bit signals: c / (sqrt(e1) sqrt(e2)), with c the sum of products and e1, e2 the sums of squares.
//
// Sums are exact in 64 bits, then floats; roots and division are double. Only the decimated member sums in float, in the order of
// the samples.
#pragma once

#include <cstdint>

#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/short_dots.h"
#include "qorsr.h"

namespace qorsr {

using enum ShortTerms;

// Of energies whose product is not above the least normal float, 0.
inline float normalised(float product, float energy1, float energy2) {
  if (__builtin_fabsf(energy1 * energy2) <= 1.1754944e-38F) return 0.0F;
  const double roots = __builtin_sqrt(static_cast<double>(energy1)) * __builtin_sqrt(static_cast<double>(energy2));
  return static_cast<float>(static_cast<double>(product) / roots);
}

inline float toFloat(int64_t sum) { return static_cast<float>(static_cast<double>(sum)); }

inline QorStatus crossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float* result) {
  if (QorStatus bad = Checks().null(first, second, result).size(length)) return bad;
  const auto sums = shortDots<kProducts, kSquares, kSquares>(length, [&](auto load, auto add) {
    const auto x = load(first), y = load(second);
    add(0, x, y);
    add(1, x, x);
    add(2, y, y);
  });
  *result = normalised(toFloat(sums.sum[0]), toFloat(sums.sum[1]), toFloat(sums.sum[2]));
  return qorStatusOk;
}

inline QorStatus partialCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float energy, float* result) {
  if (QorStatus bad = Checks().null(first, second, result).size(length).require(energy != 0.0F, qorStatusBadRange)) return bad;
  const auto sums = shortDots<kProducts, kSquares>(length, [&](auto load, auto add) {
    const auto y = load(second);
    add(0, load(first), y);
    add(1, y, y);
  });
  *result = normalised(toFloat(sums.sum[0]), energy, toFloat(sums.sum[1]));
  return qorStatusOk;
}

// ---- Growing lengths, every step-th sample ----

// Sums of products of `Lags` neighbouring lags: sum l over k = 0, step, ... of x[k - l step] y[k], `terms` + l of them. Each is a chain
// of additions; several run at once.
template <int Lags>
inline void growingSums(const int16_t* x, const int16_t* y, int64_t terms, int64_t step, float* sums) {
  for (int l = 0; l < Lags; ++l) sums[l] = 0.0F;
  const auto product = [&](int64_t j, int l) { return static_cast<float>(static_cast<int32_t>(x[(j - l) * step]) * y[j * step]); };
  for (int64_t j = 0; j < terms; ++j) {
    for (int l = 0; l < Lags; ++l) sums[l] += product(j, l);
  }
  for (int l = 1; l < Lags; ++l) {
    for (int64_t j = terms; j < terms + l; ++j) sums[l] += product(j, l);
  }
}

inline QorStatus decimatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t maximumLength,
                                           int32_t minimumLength, float* results, int32_t step) {
  if (QorStatus bad = Checks()
                          .null(first, second, results)
                          .size(minimumLength, step)
                          .require(maximumLength >= minimumLength, qorStatusBadSize)) {
    return bad;
  }
  constexpr int kTogether = 4;
  const int64_t range = int64_t{maximumLength} - minimumLength, lags = range / step + 1;
  const int64_t terms = (int64_t{minimumLength} + step - 1) / step;
  const int16_t* const x = first + range;
  const auto square = [](int16_t v) { return static_cast<float>(static_cast<int32_t>(v) * v); };
  float energy1 = 0.0F, energy2 = 0.0F;
  for (int64_t j = 0; j < terms; ++j) {
    energy1 += square(x[j * step]);
    energy2 += square(second[j * step]);
  }
  for (int64_t q = 0; q < lags; q += kTogether) {
    const int64_t count = lags - q < kTogether ? lags - q : kTogether;
    float sums[kTogether];
    if (count == kTogether) {
      growingSums<kTogether>(x - q * step, second, terms + q, step, sums);
    } else {
      for (int64_t l = 0; l < count; ++l) growingSums<1>(x - (q + l) * step, second, terms + q + l, step, sums + l);
    }
    for (int64_t l = 0; l < count; ++l) {
      if (q + l > 0) {
        energy1 += square(x[-(q + l) * step]);
        energy2 += square(second[(terms + q + l - 1) * step]);
      }
      results[q + l] = normalised(sums[l], energy1, energy2);
    }
  }
  return qorStatusOk;
}

// ---- Between two lags ----

// The peak of the correlation of x with (1 - a) y[i] + a y[i + 1] over a (Medan, Yair and Chazan, 1991).
inline QorStatus interpolatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float* position,
                                              float* coefficient) {
  if (QorStatus bad = Checks().null(first, second, position, coefficient).size(length)) return bad;
  const auto sums = shortDots<kSquares, kProducts, kSquares, kProducts, kProducts>(length, [&](auto load, auto add) {
    const auto x = load(first), y = load(second), next = load(second + 1);
    add(0, y, y);
    add(1, y, next);
    add(2, x, x);
    add(3, x, y);
    add(4, x, next);
  });
  const auto square = [](int16_t v) { return static_cast<int32_t>(v) * v; };
  const auto yy0 = static_cast<double>(sums.sum[0]), y01 = static_cast<double>(sums.sum[1]), xx = static_cast<double>(sums.sum[2]),
             xy0 = static_cast<double>(sums.sum[3]), xy1 = static_cast<double>(sums.sum[4]),
             yy1 = static_cast<double>(sums.sum[0] - square(second[0]) + square(second[length]));
  const double d = (yy1 - y01) * xy0 + (yy0 - y01) * xy1;
  if (d == 0.0) {
    *position = 0.0F;
    *coefficient = static_cast<float>(xy0);
    return qorStatusDivideByZero;
  }
  const double a = (xy1 * yy0 - xy0 * y01) / d, b = 1.0 - a;
  *position = static_cast<float>(a);
  if (!(a >= 0.0 && a < 1.0)) return qorStatusOk;  // required: the coefficient stays as it was
  const double energy = xx * ((yy0 * b + (a + a) * y01) * b + a * a * yy1);
  *coefficient = static_cast<float>(energy == 0.0 ? xy0 : (b * xy0 + xy1 * a) / __builtin_sqrt(energy));
  return qorStatusOk;
}

}  // namespace qorsr
