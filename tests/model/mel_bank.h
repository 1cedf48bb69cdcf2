// Plain models of mel banks: centres and weights by their formulas, one at a time, in double, or in 64-bit integers.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "model/convert.h"
#include "model/filter_bank.h"

namespace model {

struct MelArguments {
  int32_t length;
  float sampleFrequency, low, high;
  int32_t filters;
  float melMul, melDiv;
  int32_t flags;
};

struct MelBankModel {
  MelArguments a;
  double fs = static_cast<double>(a.sampleFrequency), mul = static_cast<double>(a.melMul), div = static_cast<double>(a.melDiv);
  double size = static_cast<double>(powerOfTwoFor(a.length));
  int64_t half = powerOfTwoFor(a.length) / 2;
  bool steps = (a.flags & 2) != 0;

  double mel(double f) const { return mul * std::log(1.0 + f / div); }
  double melOfBin(int64_t j) const { return mul * std::log(1.0 + static_cast<double>(j) * (fs / size) / div); }
  int32_t bin(double position) const {
    if (std::isnan(position)) return 0;
    if (steps) return limitAndRound32(position);
    return static_cast<int32_t>(std::trunc(std::fmin(std::fmax(position, -2147483648.0), 2147483647.0)));
  }
  double positionOfMel(double m) const { return size / fs * div * (std::exp(m / mul) - 1.0); }

  // Weights in the bank's element: floats, or Q14 integers.
  template <class Weight>
  static Weight ratio(double numerator, double denominator) {
    if constexpr (std::is_same_v<Weight, float>) {
      return static_cast<float>(numerator / denominator);
    } else {
      const double w = numerator * 16384.0 / denominator;
      return w > -2147483649.0 && w < 2147483648.0 ? static_cast<int32_t>(w) : INT32_MIN;
    }
  }
  template <class Weight>
  static Weight stepRatio(int64_t numerator, int64_t denominator) {
    if constexpr (std::is_same_v<Weight, float>) {
      return static_cast<float>(static_cast<double>(numerator) / static_cast<double>(denominator));
    } else {
      return static_cast<int32_t>(numerator * 16384 / denominator);
    }
  }
  template <class Weight>
  Filter<Weight> stepFilter(const std::vector<int32_t>& c, std::size_t k) const {
    const int64_t from = c[k - 1], top = c[k], to = c[k + 1];
    return makeFilter<Weight>(
        c, k, half, [=](int64_t j) { return stepRatio<Weight>(j - from + 1, top - from + 1); },
        [=](int64_t j) { return stepRatio<Weight>(to + 1 - j, to - top + 1); });
  }

  // ---- Mel banks ----

  double melAt(int64_t i) const {
    const double low = mel(static_cast<double>(a.low)), high = mel(static_cast<double>(a.high));
    return static_cast<double>(
        static_cast<float>(static_cast<double>(i) * (high - low) / static_cast<double>(a.filters + 1) + low));
  }
  std::vector<int32_t> centers() const {
    std::vector<int32_t> c;
    for (int64_t i = 0; i <= a.filters + 1; ++i) {
      c.push_back(bin(static_cast<double>(static_cast<float>(positionOfMel(melAt(i))))));
    }
    return c;
  }
  template <class Weight>
  Filter<Weight> filter(const std::vector<int32_t>& c, std::size_t k) const {
    if (steps) return stepFilter<Weight>(c, k);
    const auto i = static_cast<int64_t>(k);
    const double from = melAt(i - 1), top = melAt(i), to = melAt(i + 1);
    return makeFilter<Weight>(
        c, k, half, [&](int64_t j) { return j == c[k - 1] ? Weight(0) : ratio<Weight>(melOfBin(j) - from, top - from); },
        [&](int64_t j) { return ratio<Weight>(to - melOfBin(j), to - top); });
  }

  // ---- Mixed banks: T linear filters up to the join ----

  double hertzAt(int64_t i, float join, int64_t t) const {
    const double low = static_cast<double>(a.low), count = static_cast<double>(t == a.filters ? a.filters + 1 : t);
    return static_cast<double>(i) * (static_cast<double>(join) - low) / count + low;
  }
  std::vector<int32_t> mixedCenters(float join, int64_t t) const {
    std::vector<int32_t> c;
    const double from = mel(static_cast<double>(join)), range = mel(static_cast<double>(a.high)) - from;
    for (int64_t i = 0; i <= a.filters + 1; ++i) {
      if (t == a.filters || i < t) {
        c.push_back(bin(hertzAt(i, join, t) * (size / fs)));
      } else {
        c.push_back(bin(positionOfMel(static_cast<double>(i - t) * range / static_cast<double>(a.filters - t + 1) + from)));
      }
    }
    return c;
  }
  template <class Weight>
  Filter<Weight> mixedFilter(const std::vector<int32_t>& c, std::size_t k, float join, int64_t t) const {
    const auto i = static_cast<int64_t>(k);
    if (steps || i > t) return stepFilter<Weight>(c, k);
    const double from = mel(hertzAt(i - 1, join, t)), top = mel(hertzAt(i, join, t));
    const bool joins = t < a.filters && i == t;  // the side that compares bins and mels
    const double fallFrom = joins ? c[k] : top, fallTo = joins ? c[k + 1] : mel(hertzAt(i + 1, join, t));
    const auto notNegative = [](Weight w) { return w < Weight(0) ? Weight(0) : w; };
    return makeFilter<Weight>(
        c, k, half, [&](int64_t j) { return notNegative(ratio<Weight>(melOfBin(j) - from, top - from)); },
        [&](int64_t j) { return notNegative(ratio<Weight>(fallTo - melOfBin(j), fallTo - fallFrom)); });
  }
};

// ---- Fixed point ----

struct FixedMelArguments {
  int32_t length, sampleFrequency, low, high, filters, melMul, melDiv;
};

struct FixedMelModel {
  FixedMelArguments a;
  int64_t size = powerOfTwoFor(a.length), half = size / 2;

  static constexpr int64_t kLn2 = 1488522236;

  // Products of 64 bits, as they come out of the multiplier.
  static int64_t product(int64_t x, int64_t y) { return static_cast<int64_t>(static_cast<uint64_t>(x) * static_cast<uint64_t>(y)); }

  static int64_t log(int64_t x) {
    int64_t e = 0;
    for (int64_t rest = x; rest >= 2; rest /= 2) ++e;
    x = e >= 30 ? x >> (e - 29) : x << (29 - e);
    int64_t fraction = 0;
    for (int i = 0; i < 31; ++i) {
      x = (x * x) >> 29;
      fraction *= 2;
      if (x >= 0x40000000) {
        fraction += 1;
        x >>= 1;
      }
    }
    return kLn2 * (e - 22) + ((kLn2 * fraction) >> 31);
  }

  // exp(y) - 1, Q22, with factors 1 + 2^-k and 1 - 2^-k whose logarithms come from the C library.
  static int64_t expMinusOne(int64_t y) {
    const uint64_t t = 0xB8AA3B29ULL * static_cast<uint64_t>(y);
    const auto whole = static_cast<int64_t>(t >> 53);
    int64_t r = (kLn2 * static_cast<int64_t>((t >> 22) % 0x80000000)) >> 31;
    uint64_t u = 0x80000000;
    for (int k = 1; k <= 32; ++k) {
      const auto plus = static_cast<int64_t>(std::nearbyint(std::log1p(std::ldexp(1.0, -k)) * 2147483648.0));
      const auto minus = static_cast<int64_t>(std::nearbyint(std::log1p(-std::ldexp(1.0, -k)) * 2147483648.0));
      const uint64_t step = k <= 31 ? uint64_t{1} << (31 - k) : 0;
      if (r > plus) {
        r -= plus;
        u = (u * (0x80000000 + step)) >> 31;
      } else if (r < minus && k < 32) {
        r -= minus;
        u = (u * (0x80000000 - step)) >> 31;
      }
    }
    const int64_t s = 9 - whole;
    uint64_t value = s >= 0 ? u >> s : 0x7FFFFFFF;
    if (s < 0 && s > -31 && u < uint64_t{1} << (31 + s)) value = u << -s;
    return static_cast<int64_t>(value < 0x7FFFFFFF ? value : 0x7FFFFFFF) - 0x400000;
  }

  int64_t mel(int64_t hertz) const {
    const int64_t d = int64_t{a.melDiv} * 128;
    return product(a.melMul, (log(hertz * 0x400000 + d) >> 9) - (log(d) >> 9)) >> 15;
  }

  std::vector<int32_t> centers() const {
    const int64_t n = a.filters, low = mel(a.low), high = mel(a.high), d = int64_t{a.melDiv} * 128;
    const int64_t s = size * 0x400000 / a.sampleFrequency, p = product(d, s) >> 22;
    std::vector<int32_t> c;
    for (int64_t i = 0; i <= n + 1; ++i) {
      const int64_t m = (product(high - low, i) + product(n + 1, low)) / (n + 1);
      const int64_t y = product(m, 0x400000) / (int64_t{a.melMul} * 128);
      const int64_t position = product(expMinusOne(y), p) >> 22;  // Q22
      c.push_back(static_cast<int32_t>((position >> 22) + ((position >> 21) & 1)));
    }
    return c;
  }

  Filter<int32_t> filter(const std::vector<int32_t>& c, std::size_t k) const {
    const int64_t from = c[k - 1], top = c[k], to = c[k + 1], one = 0x40000000;
    return makeFilter<int32_t>(
        c, k, half, [=](int64_t j) { return static_cast<int32_t>((j - from + 1) * one / (top - from + 1)); },
        [=](int64_t j) { return static_cast<int32_t>((to + 1 - j) * one / (to - top + 1)); });
  }
};

}  // namespace model
