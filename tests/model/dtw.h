// Plain model of dynamic time warping: every cell of the grid, in the order of the definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "model/table.h"

namespace model {

// Euclidean distance of two rows. Up to 13 elements all is float, and squares are added in pairs, ((q0 + q1) + (q2 + q3)) + ..., an
// odd last one alone; above, they are summed in double, in four lanes.
inline float rowDistance(const std::vector<float>& x, const std::vector<float>& y) {
  const std::size_t width = x.size();
  const auto squaredDifference = [&](std::size_t e) {
    const float d = x[e] - y[e];
    return d * d;
  };
  if (width <= 13) {
    const auto pair = [&](std::size_t e) {
      return e + 1 < width ? squaredDifference(e) + squaredDifference(e + 1) : squaredDifference(e);
    };
    float sum = pair(0);
    for (std::size_t e = 2; e < width; e += 2) sum = sum + pair(e);
    return std::sqrt(sum);
  }
  double lane[4] = {0, 0, 0, 0};
  const std::size_t blocks = width / 8 * 8;
  for (std::size_t e = 0; e < blocks; ++e) lane[e % 4] = lane[e % 4] + static_cast<double>(squaredDifference(e));
  double sum = (lane[0] + lane[2]) + (lane[1] + lane[3]);
  for (std::size_t e = blocks; e < width; ++e) sum = sum + static_cast<double>(squaredDifference(e));
  return static_cast<float>(std::sqrt(sum));
}

// The lesser of two numbers; a NaN is never taken.
inline float lesser(float best, float candidate) { return candidate < best ? candidate : best; }

// Floor of half a number of either sign.
inline int64_t floorHalf(int64_t x) { return static_cast<int64_t>(std::floor(static_cast<double>(x) / 2.0)); }

// The grid of one call: column i has a cell for each row of the shorter sequence.
struct WarpGrid {
  int64_t n, m, delta;

  int64_t upper(int64_t i) const {
    int64_t u = 3 * i < 2 * m - n ? delta + 2 * i : m + delta + floorHalf(i - n - 1);
    if (u >= m) u = m - 1;
    return u;
  }
  int64_t lower(int64_t i) const {
    int64_t l = 3 * i > 4 * n - 2 * m - 2 ? m - 2 * n - delta + 2 * i + 1 : floorHalf(i) - delta;
    if (l <= 0) l = 0;
    return l;
  }
};

// The accumulated distance. `delta` is not negative (a negative one is defined to give the sentinel).
inline float warp(const Table<float>& first, const Table<float>& second, int32_t delta, float beam) {
  constexpr float kSentinel = 3.4028235e38F, kUnreachable = std::numeric_limits<float>::infinity();
  if (delta < 0) return kSentinel;
  const bool firstIsShorter = first.size() < second.size();
  const Table<float>& outer = firstIsShorter ? second : first;
  const Table<float>& inner = firstIsShorter ? first : second;
  WarpGrid grid{static_cast<int64_t>(outer.size()), static_cast<int64_t>(inner.size()), delta};
  if (grid.delta >= grid.m) grid.delta = grid.m - 1;
  const auto local = [&](int64_t i, int64_t j) {
    return rowDistance(outer[static_cast<std::size_t>(i)], inner[static_cast<std::size_t>(j)]);
  };

  // Column 0.
  int64_t s = 0, c = grid.delta + 1;
  std::vector<float> old(static_cast<std::size_t>(grid.m + 2), kUnreachable);
  for (int64_t j = 0; j < c; ++j) old[static_cast<std::size_t>(j)] = local(0, j);
  if (grid.n == 1) return kSentinel;
  beam = beam > 0.0F ? beam : 0.0F;
  beam = beam + 1.1920929e-7F;

  float m = kSentinel;
  for (int64_t i = 1; i < grid.n; ++i) {
    const int64_t p = c, oldStart = s;
    c = std::min(grid.upper(i) - s + 1, p + 2);
    const auto predecessor = [&](int64_t j) {
      return j >= oldStart && j < oldStart + p ? old[static_cast<std::size_t>(j)] : kUnreachable;
    };
    std::vector<float> column(old.size(), kUnreachable);
    for (int64_t j = s; j < s + c; ++j) {
      const float d = local(i, j);
      // The least of three sums; since rounding is monotonic it is the least predecessor plus d.
      const float best = lesser(lesser(lesser(kUnreachable, predecessor(j - 2)), predecessor(j - 1)), predecessor(j));
      column[static_cast<std::size_t>(j)] = best + d;
    }
    if (s < grid.lower(i)) {
      c = c - (grid.lower(i) - s);
      s = grid.lower(i);
    }
    m = c > 0 ? kUnreachable : kSentinel;
    for (int64_t j = s; j < s + c; ++j) m = lesser(m, column[static_cast<std::size_t>(j)]);
    if (m >= kSentinel) return m;
    const float t = beam + m;
    while (c > 1 && column[static_cast<std::size_t>(s + c - 1)] > t) --c;
    while (c > 1 && column[static_cast<std::size_t>(s)] > t) {
      ++s;
      --c;
    }
    old = column;
  }
  return m;
}

}  // namespace model
