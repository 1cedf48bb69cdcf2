// Plain models of operations on pairs of Gaussians. One scalar loop each, in the order of the definition.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "qorsr.h"

namespace model {

template <class T>
struct Gaussians {
  std::vector<T> mx, vx, my, vy;
};

struct Pooled {
  double mean, variance;
};

template <class T>
Pooled pool(const Gaussians<T>& g, std::size_t i, T wx, T wy) {
  const double x = static_cast<double>(wx), y = static_cast<double>(wy), w = static_cast<double>(static_cast<T>(wx + wy));
  const double mx = static_cast<double>(g.mx[i]), my = static_cast<double>(g.my[i]);
  const double m = (x * mx + y * my) / w;
  const double v = ((mx * mx + static_cast<double>(g.vx[i])) * x + (my * my + static_cast<double>(g.vy[i])) * y) / w - m * m;
  return {m, v};
}

// A sum of logarithms, taken one by one; it ends at an element that has none.
struct LogSum {
  double sum = 0.0, magnitude = 0.0;  // magnitude: what the last bits of the sum depend on
  QorStatus status = qorStatusOk;
  bool nanEnds = false, ended = false;

  void add(double v) {
    if (ended) return;
    if (v == 0.0) status = qorStatusLogZero;
    if (v < 0.0) status = qorStatusLogNegative;
    if (nanEnds && std::isnan(v)) sum = v;
    ended = status != qorStatusOk || (nanEnds && std::isnan(v));
    if (ended) return;
    sum += std::log(v);
    magnitude += std::fabs(std::log(v));
  }
  double marker() const {
    return status == qorStatusLogZero ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
  }
};

inline constexpr double kLog2Pi = 1.8378770664093;

template <class T>
LogSum pooledLogs(const Gaussians<T>& g, T wx, T wy, bool oneByOne) {
  LogSum logs;
  logs.nanEnds = !oneByOne;
  for (std::size_t i = 0; i < g.mx.size(); ++i) logs.add(pool(g, i, wx, wy).variance);
  return logs;
}

template <class T>
double gaussianDist(const Gaussians<T>& g, T wx, T detX, T wy, T detY, const LogSum& logs) {
  if (logs.status != qorStatusOk) return logs.marker();
  const T separate = wx * detX + wy * detY;
  const double n = static_cast<double>(g.mx.size());
  const double result = static_cast<double>(separate) - static_cast<double>(static_cast<T>(wx + wy)) * (n * kLog2Pi - logs.sum);
  return static_cast<double>(static_cast<T>(result));
}

// ---- Bhattacharyya ----

// Groups of four, then single elements; in the first bad group a negative element decides.
inline QorStatus firstBadGroup(const Gaussians<float>& g) {
  const std::size_t n = g.mx.size(), grouped = n / 4 * 4;
  for (std::size_t i = 0; i < n;) {
    const std::size_t end = i < grouped ? i + 4 : i + 1;
    bool negative = false, zero = false;
    for (; i < end; ++i) {
      for (const float x : {g.mx[i], g.vx[i], g.my[i], g.vy[i]}) {
        negative = negative || x < 0;
        zero = zero || x == 0;
      }
    }
    if (negative) return qorStatusLogNegative;
    if (zero) return qorStatusLogZero;
  }
  return qorStatusOk;
}

struct Bhattacharyya {
  double value, magnitude;  // magnitude: of the terms that were added
};

// With d and s in double, and a product of four elements for each logarithm.
inline Bhattacharyya bhatDouble(const Gaussians<float>& g, bool sumOnly, float a, float b) {
  const std::size_t n = g.mx.size();
  std::vector<double> products = {1.0};
  double acc = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    const double vx = static_cast<double>(g.vx[i]), vy = static_cast<double>(g.vy[i]), s = vx + vy;
    const double d = static_cast<double>(g.mx[i]) - static_cast<double>(g.my[i]);
    acc += d * d / s;
    if (i > 0 && i % 4 == 0 && i + 4 <= n) products.push_back(1.0);
    products.back() *= sumOnly ? s : s * s / (vx * vy);
  }
  LogSum logs;
  logs.nanEnds = true;
  for (const double p : products) logs.add(p);
  const double length = static_cast<double>(n);
  const double result = sumOnly ? (logs.sum - length * 0.693147) * 0.5 - static_cast<double>((a + b) * 0.25F) + acc * 0.25
                                : (logs.sum - length * 1.386294) * 0.5 * 0.5 + acc * 0.25;
  return {result, logs.magnitude + length + acc};
}

inline Bhattacharyya bhatFloat(const Gaussians<float>& g, bool sumOnly, float a, float b) {
  const std::size_t n = g.mx.size();
  float acc = 0.0F;
  LogSum logs;
  logs.nanEnds = true;
  for (std::size_t i = 0; i < n; ++i) {
    const float s = g.vx[i] + g.vy[i], d = g.mx[i] - g.my[i], u = 1.0F / g.vx[i] * g.vy[i];
    acc += d * d / s;
    logs.add(static_cast<double>(sumOnly ? s : 2.0F + u + 1.0F / u));
  }
  const float l = static_cast<float>(logs.sum);
  const double length = static_cast<double>(n);
  const double result = sumOnly
                            ? (static_cast<double>(l) - length * 0.693147) * 0.5 - static_cast<double>((a + b) * 0.25F) +
                                  static_cast<double>(acc * 0.25F)
                            : (static_cast<double>(l * 0.5F) - length * 1.386294 * 0.5) * 0.5 + static_cast<double>(acc * 0.25F);
  return {static_cast<double>(static_cast<float>(result)), logs.magnitude + length + static_cast<double>(acc)};
}

}  // namespace model
