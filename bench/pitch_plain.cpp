// Plain loops of pitch analysis: what one would write first.
#include "pitch_plain.h"

#include <algorithm>
#include <cmath>

float plainCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length) {
  int64_t c = 0, e1 = 0, e2 = 0;
  for (int32_t i = 0; i < length; ++i) {
    c += first[i] * second[i];
    e1 += first[i] * first[i];
    e2 += second[i] * second[i];
  }
  return static_cast<float>(static_cast<double>(c) / std::sqrt(static_cast<double>(e1) * static_cast<double>(e2)));
}

float plainPartialCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float energy) {
  int64_t c = 0, e2 = 0;
  for (int32_t i = 0; i < length; ++i) {
    c += first[i] * second[i];
    e2 += second[i] * second[i];
  }
  return static_cast<float>(static_cast<double>(c) / std::sqrt(static_cast<double>(energy) * static_cast<double>(e2)));
}

void plainDecimatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t most, int32_t least, float* results,
                                    int32_t step) {
  for (int32_t n = least; n <= most; n += step) {
    const int16_t* const x = first + (most - n);
    float c = 0.0F, e1 = 0.0F, e2 = 0.0F;
    for (int32_t i = 0; i < n; i += step) {
      c += static_cast<float>(x[i] * second[i]);
      e1 += static_cast<float>(x[i] * x[i]);
      e2 += static_cast<float>(second[i] * second[i]);
    }
    *results++ = c / std::sqrt(e1 * e2);
  }
}

float plainInterpolatedCrossCorrelation(const int16_t* first, const int16_t* second, int32_t length, float* position) {
  int64_t yy0 = 0, y01 = 0, yy1 = 0, xx = 0, xy0 = 0, xy1 = 0;
  for (int32_t i = 0; i < length; ++i) {
    yy0 += second[i] * second[i];
    y01 += second[i] * second[i + 1];
    yy1 += second[i + 1] * second[i + 1];
    xx += first[i] * first[i];
    xy0 += first[i] * second[i];
    xy1 += first[i] * second[i + 1];
  }
  const auto real = [](int64_t v) { return static_cast<double>(v); };
  const double a = (real(xy1) * real(yy0) - real(xy0) * real(y01)) / (real(yy1 - y01) * real(xy0) + real(yy0 - y01) * real(xy1)),
               b = 1 - a;
  *position = static_cast<float>(a);
  return static_cast<float>((b * real(xy0) + a * real(xy1)) /
                            std::sqrt(real(xx) * (real(yy0) * b * b + 2 * a * b * real(y01) + a * a * real(yy1))));
}

float plainPeriodicityLSPE(const float* x, int32_t length, int32_t longest, int32_t shortest, int32_t* period) {
  float energy = 0.0F, best = 0.0F;
  for (int32_t i = 0; i < length; ++i) energy += x[i] * x[i];
  *period = 0;
  for (int32_t p = shortest; p <= longest; ++p) {
    float all = 0.0F, single = 0.0F;
    for (int32_t phase = 0; phase < p; ++phase) {
      float sum = 0.0F, squares = 0.0F, count = 0.0F;
      for (int32_t i = phase; i < length; i += p) {
        sum += x[i];
        squares += x[i] * x[i];
        count += 1.0F;
      }
      all += sum * sum / count;
      single += squares / count;
    }
    const float value = (all - single) / (energy - single);
    if (value > best) best = value, *period = p;
  }
  return best;
}

float plainPeriodicity(const float* x, int32_t length, int32_t longest, int32_t shortest, int32_t* period) {
  float total = 0.0F, best = 0.0F;
  for (int32_t i = 0; i < length; ++i) total += x[i];
  *period = 0;
  for (int32_t p = shortest; p <= longest; ++p) {
    float greatest = 0.0F;
    for (int32_t first = 0; first < p && first < length; ++first) {
      float sum = 0.0F;
      int32_t count = 0;
      for (int32_t i = first; i < length && count < 6; i += p, ++count) sum += x[i];
      greatest = std::max(greatest, sum / static_cast<float>(count));
    }
    if (greatest / total > best) best = greatest / total, *period = p;
  }
  return best;
}

void plainFrequencies(const float* marks, float* candidates, int32_t length) {
  float before = 0.0F;
  for (int32_t i = 0; i < length; ++i) {
    candidates[i] = 1.0F / (marks[i] - before);
    before = marks[i];
  }
}

void plainPeaks(const float* x, uint8_t* flags, int32_t length, int32_t search) {
  for (int32_t i = 0; i < length; ++i) {
    bool peak = true;
    for (int32_t k = 1; k <= search && i - k >= 0; ++k) peak = peak && x[i - k] < x[i - k + 1];
    for (int32_t k = 1; k <= search && i + k < length; ++k) peak = peak && x[i + k] < x[i + k - 1];
    flags[i] = peak ? 1 : 0;
  }
}
