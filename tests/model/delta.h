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

inline Table<float> regressionFloat(const Table<float>& x, int32_t window) {
  return regressionRows<float>(x, window,
                               [](int64_t k, float ahead, float behind) { return static_cast<float>(k) * (ahead - behind); });
}

}  // namespace model
