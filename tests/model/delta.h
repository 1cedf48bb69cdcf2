// Plain models of deltas and accelerations: whole utterances, one element at a time, frames beyond the ends by the nearest one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "model/table.h"

namespace model {

// d(t)[i] = f(x, i), where x(k) is element i of frame t + k.
template <class To, class T, class F>
Table<To> overFrames(const Table<T>& frames, F f) {
  const auto last = static_cast<int64_t>(frames.size()) - 1;
  Table<To> result(frames.size());
  for (int64_t t = 0; t <= last; ++t) {
    const std::size_t width = frames[static_cast<std::size_t>(t)].size();
    for (std::size_t i = 0; i < width; ++i) {
      const auto x = [&](int64_t k) { return frames[static_cast<std::size_t>(std::clamp<int64_t>(t + k, 0, last))][i]; };
      result[static_cast<std::size_t>(t)].push_back(f(x, i));
    }
  }
  return result;
}

template <class T, class F>
Table<T> eachElement(const Table<T>& frames, F f) {
  return overFrames<T>(frames, [&](auto x, std::size_t i) { return f(x(0), i); });
}

// Rows of a, of b and of c side by side.
template <class T>
Table<T> beside(Table<T> a, const Table<T>& b) {
  for (std::size_t t = 0; t < a.size(); ++t) a[t].insert(a[t].end(), b[t].begin(), b[t].end());
  return a;
}

// ---- Windows of one and two frames ----

template <int kReach, class X>
float slopeFloat(X x) {
  if (kReach == 1) return x(1) - x(-1);
  const float p = x(2) - x(-2);
  return (x(1) - x(-1)) + p + p;
}

// The rows of a streaming member: features and `derivatives` derivatives. `scale(value, k, i)` multiplies element i of derivative
// k.
template <int kReach, class Scale>
Table<float> windowRows(const Table<float>& source, int derivatives, Scale scale) {
  Table<float> stage = eachElement(source, [&](float x, std::size_t i) { return scale(x, 0, i); }), rows = stage;
  for (int k = 1; k <= derivatives; ++k) {
    stage = overFrames<float>(stage, [&](auto x, std::size_t i) { return scale(slopeFloat<kReach>(x), k, i); });
    rows = beside(rows, stage);
  }
  return rows;
}

// ---- Aurora ----

// 14 elements to 13: the last two in one.
inline float auroraEnergy(float order0, float logEnergy) { return (order0 * 0.6F) / 23.0F + logEnergy * 0.4F; }

template <class X>
float auroraDelta(X x) {
  return -x(-4) - 0.75F * x(-3) - 0.5F * x(-2) - 0.25F * x(-1) + 0.25F * x(1) + 0.5F * x(2) + 0.75F * x(3) + x(4);
}
template <class X>
float auroraAcceleration(X x) {
  return x(-4) + 0.25F * x(-3) - 0.285714F * x(-2) - 0.607143F * x(-1) - 0.714286F * x(0) - 0.607143F * x(1) - 0.285714F * x(2) +
         0.25F * x(3) + x(4);
}

template <class Scale>
Table<float> auroraRows(const Table<float>& source, Scale scale) {
  Table<float> features;
  for (const std::vector<float>& s : source) {
    std::vector<float>& row = features.emplace_back();
    for (std::size_t i = 0; i < 13; ++i) row.push_back(scale(i < 12 ? s[i] : auroraEnergy(s[12], s[13]), 0, i));
  }
  const auto d = overFrames<float>(features, [&](auto x, std::size_t i) { return scale(auroraDelta(x), 1, i); });
  const auto a = overFrames<float>(features, [&](auto x, std::size_t i) { return scale(auroraAcceleration(x), 2, i); });
  return beside(beside(features, d), a);
}

// ---- 16 bits ----

// x modulo 2^16 and modulo 2^32, as signed numbers.
inline int16_t wrap16(int64_t x) {
  const int64_t rest = ((x % 65536) + 65536) % 65536;
  return static_cast<int16_t>(rest < 32768 ? rest : rest - 65536);
}
inline int32_t wrap32(int64_t x) {
  constexpr int64_t kModulus = int64_t{1} << 32;
  const int64_t rest = ((x % kModulus) + kModulus) % kModulus;
  return static_cast<int32_t>(rest < kModulus / 2 ? rest : rest - kModulus);
}

// Right without rounding (toward minus infinity), or left modulo 2^32; then limited.
inline int16_t shiftedAndLimited(int32_t value, int64_t sf) {
  int64_t v = value;
  for (int64_t i = 0; i < sf && i < 40; ++i) v = v >= 0 ? v / 2 : (v - 1) / 2;
  for (int64_t i = 0; i < -sf && i < 40; ++i) v = wrap32(v * 2);
  return static_cast<int16_t>(std::clamp<int64_t>(v, -32768, 32767));
}
inline int16_t scaledProduct(int16_t a, int16_t b, int64_t sf) { return shiftedAndLimited(int32_t{a} * b, sf); }

template <int kReach, class X>
int16_t slope16(X x) {
  const int64_t near = wrap16(int64_t{x(1)} - x(-1));
  return kReach == 1 ? wrap16(near) : wrap16(near + 2 * (int64_t{x(2)} - x(-2)));
}

template <int kReach, class Scale>
Table<int16_t> windowRows16(const Table<int16_t>& source, int derivatives, Scale scale) {
  Table<int16_t> stage = eachElement(source, [&](int16_t x, std::size_t i) { return scale(x, 0, i); }), rows = stage;
  for (int k = 1; k <= derivatives; ++k) {
    stage = overFrames<int16_t>(stage, [&](auto x, std::size_t i) { return scale(slope16<kReach>(x), k, i); });
    rows = beside(rows, stage);
  }
  return rows;
}

// `finish(value, fraction, k, i)`: what becomes of element i of derivative k, an integer in units of 2^-fraction.
template <class Finish>
Table<int16_t> auroraRows16(const Table<int16_t>& source, Finish finish) {
  Table<int16_t> features;
  for (const std::vector<int16_t>& s : source) {
    std::vector<int16_t>& row = features.emplace_back();
    const float energy = auroraEnergy(static_cast<float>(s[12]), static_cast<float>(s[13]));
    for (std::size_t i = 0; i < 13; ++i) row.push_back(finish(i < 12 ? s[i] : static_cast<int32_t>(energy), 0, 0, i));
  }
  const auto d = overFrames<int16_t>(features, [&](auto x, std::size_t i) {
    int32_t sum = 0;
    for (int64_t k = -4; k <= 4; ++k) sum += static_cast<int32_t>(k) * x(k);
    return finish(sum, 2, 1, i);
  });
  const auto a = overFrames<int16_t>(features, [&](auto x, std::size_t i) {
    return finish(static_cast<int32_t>(auroraAcceleration([&](int64_t k) { return static_cast<float>(x(k)); })), 0, 2, i);
  });
  return beside(beside(features, d), a);
}

// ---- Whole utterances ----

// The deltas of all rows before their multiplier; Sum: what the products k * difference are added in.
template <class Sum, class T, class Term>
Table<Sum> regressionRows(const Table<T>& x, int32_t window, Term term) {
  const auto height = static_cast<int64_t>(x.size());
  Table<Sum> result(x.size());
  for (int64_t r = 0; r < height; ++r) {
    for (std::size_t i = 0; i < x[0].size(); ++i) {
      Sum sum = 0;
      for (int64_t k = 1; k <= window; ++k) {
        const int64_t ahead = r >= height - window ? height - 1 : r + k, behind = r < window ? 0 : r - k;
        sum = sum + term(k, x[static_cast<std::size_t>(ahead)][i], x[static_cast<std::size_t>(behind)][i]);
      }
      result[static_cast<std::size_t>(r)].push_back(sum);
    }
  }
  return result;
}

// The sum modulo 2^32.
inline Table<int64_t> regression16(const Table<int16_t>& x, int32_t window) {
  return regressionRows<int64_t>(x, window,
                                 [](int64_t k, int16_t ahead, int16_t behind) { return k * wrap16(int64_t{ahead} - behind); });
}

inline Table<float> regressionFloat(const Table<float>& x, int32_t window) {
  return regressionRows<float>(x, window,
                               [](int64_t k, float ahead, float behind) { return static_cast<float>(k) * (ahead - behind); });
}

}  // namespace model
