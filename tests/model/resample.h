// Resampling, written from the definition: both filters designed in extended precision, every sample by plain loops.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <vector>

namespace model {

using Reals = std::vector<double>;

// ---- Filter design ----

inline long double besselI0(long double x) {
  long double term = 1, sum = 1;
  for (int n = 1; term > 1e-26L * sum; ++n) {
    term *= (x / 2 / n) * (x / 2 / n);
    sum += term;
  }
  return sum;
}

// t[0] to t[last], with `base` entries to a sample.
inline Reals kaiserSinc(int64_t last, int64_t base, float rollOff, float alpha) {
  Reals t = {static_cast<double>(rollOff)};
  const long double whole = besselI0(static_cast<long double>(alpha));
  for (int64_t k = 1; k <= last; ++k) {
    // The angles are doubles: near multiples of pi their rounding is what is left of the sine.
    const double step = std::numbers::pi / static_cast<double>(base), x = step * static_cast<double>(k);
    const double angle = static_cast<double>(rollOff) * step * static_cast<double>(k);
    const long double u = static_cast<long double>(k) / static_cast<long double>(last);
    const long double window = besselI0(static_cast<long double>(alpha) * std::sqrt(std::max(0.0L, 1 - u * u))) / whole;
    t.push_back(static_cast<double>(std::sin(static_cast<long double>(angle)) / static_cast<long double>(x) * window));
  }
  return t;
}

inline int16_t nearestShort(double v) { return static_cast<int16_t>(v < 0 ? v - 0.5 : v + 0.5); }

// A table for any ratio: as floats, or as 16-bit numbers and a gain.
struct Table {
  int64_t length, perSample;
  bool floats;
  Reals entries;  // the values of the table, as numbers; one more than `length`
  float gain;
};

inline Table table(float window, int32_t nStep, float rollOff, float alpha, bool floats) {
  const float half = window * 0.5F, product = half * static_cast<float>(nStep);
  Table h{static_cast<int64_t>(product) + 1, nStep, floats, {}, 1.0F};
  Reals t = kaiserSinc(h.length - 1, nStep, rollOff, alpha);
  double side = 0;
  for (int64_t k = nStep; k < h.length; k += nStep) side += t[static_cast<std::size_t>(k)];
  const double all = side + t[0] + side;
  double largest = 0;
  for (double& v : t) {
    v *= 1 / all;
    largest = std::max(largest, std::fabs(v));
  }
  for (const double v : t) {
    h.entries.push_back(floats ? static_cast<double>(static_cast<float>(v)) : nearestShort(v * (16383 / largest)));
  }
  h.entries.push_back(h.entries.back());
  if (!floats) h.gain = static_cast<float>(largest / 16383);
  return h;
}

// ---- Samples ----

inline int16_t sample(double v, int16_t) {
  if (std::isnan(v)) return 0;
  if (v >= 32767) return 32767;
  if (v < -32768) return -32768;
  return static_cast<int16_t>(v >= 0 ? v + 0.5 : v - 0.5);
}
inline float sample(double v, float) { return static_cast<float>(v); }

template <class T>
struct Resampled {
  std::vector<T> samples;
  double time;
  int64_t lowest = INT64_MAX, highest = INT64_MIN;  // samples that were read, from the pointer
};

// ---- Any ratio ----

template <class T>
Resampled<T> resample(const Table& h, const T* source, int32_t length, double factor, float norm, double time) {
  Resampled<T> all{{}, time};
  if (!(std::fabs(time) < 2147483648.0)) return all;
  const auto P = static_cast<double>(h.perSample), L = static_cast<double>(h.length);
  const double end = std::trunc(time) + length;
  const auto entry = [&](int64_t k) {
    const int64_t distance = std::abs(k);
    return distance <= h.length ? h.entries[static_cast<std::size_t>(distance)] : 0.0;
  };
  for (double t = time; t < end;) {
    const auto i = static_cast<int64_t>(t);
    const double f = t - static_cast<double>(i);
    double acc = 0;
    for (int side = 0; side < 2; ++side) {
      int64_t at = side == 0 ? i : i + 1;
      const auto tap = [&](int64_t j, double q) {
        const auto x = static_cast<double>(source[at]);
        all.lowest = std::min(all.lowest, at);
        all.highest = std::max(all.highest, at);
        at += side == 0 ? -1 : 1;
        return (entry(j) * (1 - q) + entry(j + 1) * q) * x;
      };
      const double offset = side == 0 ? f : 1 - f;
      if (factor >= 1) {
        const double u = offset * P;
        auto j = static_cast<int64_t>(u + 1e-5);
        const double q = u - static_cast<double>(j);
        while (h.length - j >= 4 * h.perSample) {
          double p[4];
          for (double& one : p) {
            one = tap(j, q);
            j += h.perSample;
          }
          acc += ((p[0] + p[1]) + p[2]) + p[3];
        }
        for (; j < h.length; j += h.perSample) acc += tap(j, q);
      } else {
        double u = offset * factor * P;
        const double d = factor * P;
        const int together = h.floats ? 4 : 8;
        const auto next = [&] {
          const auto j = static_cast<int64_t>(u);
          const double p = tap(j, u - static_cast<double>(j));
          u += d;
          return p;
        };
        while (L - 1e-5 - together * d >= u) {
          double sum = next();
          for (int k = 1; k < together; ++k) sum += next();
          acc += sum;
        }
        while (L - 1e-5 > u) acc += next();
      }
    }
    const double gain = factor >= 1 ? static_cast<double>(norm) * static_cast<double>(h.gain)
                                    : factor * static_cast<double>(norm) * static_cast<double>(h.gain);
    all.samples.push_back(sample(acc * gain, T{}));
    const double before = t;
    all.time = t += 1 / factor;
    if (!(t > before)) break;
  }
  return all;
}

// ---- A fixed ratio ----

struct FixedFilter {
  int64_t in, out, half, rowLength;
  bool shorts;  // 16-bit taps
  float gain;
  std::vector<Reals> rows;
};

inline FixedFilter emptyFixed(int32_t in, int32_t out, int32_t filterLength, bool shorts) {
  int32_t a = in, b = out;
  for (int32_t d = 2; d <= std::min(a, b);) {
    if (a % d == 0 && b % d == 0) {
      a /= d;
      b /= d;
      d = 2;
    } else {
      ++d;
    }
  }
  FixedFilter f{
      a, b, (int64_t{filterLength} + 3) / 4 * 2, (int64_t{filterLength} + 4) / 4 * 4, shorts, shorts ? 1.0F / 16384 : 1.0F, {}};
  f.rows.assign(static_cast<std::size_t>(f.out), Reals(static_cast<std::size_t>(f.rowLength)));
  return f;
}

inline FixedFilter fixedFilter(int32_t inRate, int32_t outRate, int32_t filterLength, float rollOff, float alpha, bool shorts) {
  FixedFilter f = emptyFixed(inRate, outRate, filterLength, shorts);
  const int64_t n = f.half;
  const double r = static_cast<double>(f.out) / static_cast<double>(f.in), F = static_cast<double>(2 * n);
  const bool up = r >= 1;
  float taps = static_cast<float>(up ? F : F * r);
  taps = static_cast<float>(static_cast<double>(taps) + 1e-5);
  taps = static_cast<float>(static_cast<double>(taps) * 0.5);
  const float product = taps * static_cast<float>(up ? f.out : f.in);
  const auto last = static_cast<int64_t>(product);
  Reals t = kaiserSinc(last, up ? f.out : f.in, rollOff, alpha);
  const auto at = [&](int64_t k) { return k <= last ? t[static_cast<std::size_t>(k)] : 0.0; };
  double S = 0, all = 0;
  if (up) {
    for (int64_t j = 1; j < n; ++j) S += at(j * f.out);
    all = S + t[0] + at(last) + at(last) + S;
  } else {
    for (int64_t k = f.in; k <= last; k += f.in) S += at(k);
    all = S + t[0] + S;
  }
  for (double& v : t) v *= 1 / all;
  const auto stored = [&](double v) { return shorts ? nearestShort(v * 16384) : static_cast<double>(static_cast<float>(v)); };
  const auto put = [&](int64_t row, int64_t index, double v) {
    if (index < f.rowLength) f.rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(index)] = stored(v);
  };
  put(0, n, at(0));
  for (int64_t j = 0; j <= n - 2; ++j) {
    put(0, n + 1 + j, at((j + 1) * f.out));
    put(0, n - 1 - j, at((j + 1) * f.out));
  }
  put(0, 0, at(last));
  put(0, 2 * n, at(last));
  for (int64_t p = 1; p < f.out; ++p) {
    for (int64_t j = 0; j < n; ++j) {
      put(f.out - p, n + j, at(p + j * f.out));
      put(p, n - 1 - j, at(p + j * f.out));
    }
  }
  return f;
}

// Sixteen lanes, then four, then one.
template <class Sum, class T>
double laneDot(const Reals& row, const T* x, int64_t taps) {
  Sum lanes[16] = {}, four[4] = {};
  int64_t k = 0;
  const auto product = [&](int64_t i) { return static_cast<Sum>(row[static_cast<std::size_t>(i)]) * static_cast<Sum>(x[i]); };
  for (; k + 16 <= taps; k += 16) {
    for (int64_t i = 0; i < 16; ++i) lanes[i] += product(k + i);
  }
  for (; k + 4 <= taps; k += 4) {
    for (int64_t i = 0; i < 4; ++i) four[i] += product(k + i);
  }
  for (int half = 8; half >= 1; half /= 2) {
    for (int i = 0; i < half; ++i) lanes[i] = lanes[i] + lanes[i + half];
  }
  Sum sum = lanes[0] + ((four[0] + four[2]) + (four[1] + four[3]));
  if (k < taps) sum += product(k);
  return static_cast<double>(sum);
}

inline double fixedDot(const FixedFilter&, const Reals& row, const float* x, int64_t taps, bool accurate) {
  return accurate ? laneDot<double>(row, x, taps) : laneDot<float>(row, x, taps);
}
inline double fixedDot(const FixedFilter& f, const Reals& row, const int16_t* x, int64_t taps, bool) {
  if (!f.shorts) return static_cast<double>(static_cast<float>(laneDot<double>(row, x, taps)));
  int64_t sum = 0;
  for (int64_t k = 0; k < taps; ++k) sum += static_cast<int64_t>(row[static_cast<std::size_t>(k)]) * x[k];
  return static_cast<double>(sum);
}

template <class T>
Resampled<T> resampleFixed(const FixedFilter& f, const T* source, int32_t length, float norm, double time, bool accurate) {
  Resampled<T> all{{}, time};
  if (!(std::fabs(time) < 2147483648.0)) return all;
  const double c = std::min(static_cast<double>(f.out) / static_cast<double>(f.in), 1.0);
  const double A = c * static_cast<double>(f.gain) * static_cast<double>(norm);
  const auto i = static_cast<int64_t>(time);
  const double rest = time - static_cast<double>(i);
  const auto ph = static_cast<int64_t>(rest * static_cast<double>(f.out) + 0.5);
  int64_t pos = f.out * i + ph;
  const int64_t limit = (i + length) * f.out;
  for (; pos < limit; pos += f.in) {
    const int64_t p = ((pos % f.out) + f.out) % f.out, sampleIndex = (pos - p) / f.out;
    const int64_t taps = p == 0 ? std::min(2 * f.half + 1, f.rowLength) : 2 * f.half, first = sampleIndex + 1 - f.half - (p == 0);
    all.lowest = std::min(all.lowest, first);
    all.highest = std::max(all.highest, first + taps - 1);
    all.samples.push_back(sample(fixedDot(f, f.rows[static_cast<std::size_t>(p)], source + first, taps, accurate) * A, T{}));
  }
  all.time = static_cast<double>(pos - ph) / static_cast<double>(f.out) + rest;
  return all;
}

}  // namespace model
