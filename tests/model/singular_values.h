// Plain model of the singular value decomposition: Golub and Reinsch's procedure, element by element, sums from the top down.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "model/table.h"
#include "qorsr.h"

namespace model {

inline double scaledHypot(double a, double b) {
  const double x = std::fabs(a), y = std::fabs(b), most = std::max(x, y), big = std::ldexp(1.0, 510), small = 1 / big;
  if (most >= big) return big * std::sqrt((x * small) * (x * small) + (y * small) * (y * small));
  if (most <= small) return small * std::sqrt((x * big) * (x * big) + (y * big) * (y * big));
  return std::sqrt(x * x + y * y);
}

// Columns `second` and `first` turned, in every row.
inline void turnColumns(Table<double>& t, std::size_t first, std::size_t second, double c, double s) {
  for (auto& row : t) {
    const double a = row[second], b = row[first];
    row[second] = c * a + s * b;
    row[first] = b * c - a * s;
  }
}

struct Svd {
  Table<double> u, v;
  std::vector<double> w, e;
  double norm = 0;
  std::size_t m, n;
  QorStatus status = qorStatusOk;

  explicit Svd(Table<double> a, int32_t limit) : u(std::move(a)), m(u.size()), n(u[0].size()) {
    w.assign(n, 0.0);
    e.assign(n, 0.0);
    v.assign(n, std::vector<double>(n, 0.0));
    reduce();
    right();
    left();
    status = diagonalise(limit);
  }

  void reduce() {
    double g = 0, scale = 0;
    for (std::size_t i = 0; i < n; ++i) {
      e[i] = scale * g;
      g = scale = 0;
      if (i < m) {
        for (std::size_t k = i; k < m; ++k) scale += std::fabs(u[k][i]);
        if (scale != 0) {
          double s = 0;
          for (std::size_t k = i; k < m; ++k) {
            u[k][i] *= 1 / scale;
            s += u[k][i] * u[k][i];
          }
          const double f = u[i][i];
          g = f >= 0 ? -std::sqrt(s) : std::sqrt(s);
          const double h = f * g - s;
          u[i][i] = f - g;
          for (std::size_t j = i + 1; j < n; ++j) {
            double dot = 0;
            for (std::size_t k = i; k < m; ++k) dot += u[k][i] * u[k][j];
            for (std::size_t k = i; k < m; ++k) u[k][j] += u[k][i] * (dot / h);
          }
          for (std::size_t k = i; k < m; ++k) u[k][i] *= scale;
        }
      }
      w[i] = scale * g;
      g = scale = 0;
      if (i < m && i + 1 != n) {
        for (std::size_t k = i + 1; k < n; ++k) scale += std::fabs(u[i][k]);
        if (scale != 0) {
          double s = 0;
          for (std::size_t k = i + 1; k < n; ++k) {
            u[i][k] *= 1 / scale;
            s += u[i][k] * u[i][k];
          }
          const double f = u[i][i + 1];
          g = f >= 0 ? -std::sqrt(s) : std::sqrt(s);
          const double h = f * g - s;
          u[i][i + 1] = f - g;
          for (std::size_t k = i + 1; k < n; ++k) e[k] = u[i][k] * (1 / h);
          for (std::size_t j = i + 1; j < m; ++j) {
            double dot = 0;
            for (std::size_t k = i + 1; k < n; ++k) dot += u[j][k] * u[i][k];
            for (std::size_t k = i + 1; k < n; ++k) u[j][k] += dot * e[k];
          }
          for (std::size_t k = i + 1; k < n; ++k) u[i][k] *= scale;
        }
      }
      norm = std::max(norm, std::fabs(w[i]) + std::fabs(e[i]));
    }
  }

  void right() {
    double g = 0;
    for (std::size_t i = n; i-- > 0;) {
      if (i + 1 < n) {
        if (g != 0) {
          for (std::size_t j = i + 1; j < n; ++j) v[j][i] = (u[i][j] / u[i][i + 1]) / g;
          for (std::size_t j = i + 1; j < n; ++j) {
            double s = 0;
            for (std::size_t k = i + 1; k < n; ++k) s += u[i][k] * v[k][j];
            for (std::size_t k = i + 1; k < n; ++k) v[k][j] += s * v[k][i];
          }
        }
        for (std::size_t j = i + 1; j < n; ++j) v[i][j] = v[j][i] = 0;
      }
      v[i][i] = 1;
      g = e[i];
    }
  }

  void left() {
    for (std::size_t i = std::min(m, n); i-- > 0;) {
      double g = w[i];
      for (std::size_t j = i + 1; j < n; ++j) u[i][j] = 0;
      if (g != 0) {
        g = 1 / g;
        for (std::size_t j = i + 1; j < n; ++j) {
          double s = 0;
          for (std::size_t k = i + 1; k < m; ++k) s += u[k][i] * u[k][j];
          for (std::size_t k = i; k < m; ++k) u[k][j] += ((s / u[i][i]) * g) * u[k][i];
        }
        for (std::size_t k = i; k < m; ++k) u[k][i] *= g;
      } else {
        for (std::size_t k = i; k < m; ++k) u[k][i] = 0;
      }
      u[i][i] += 1;
    }
  }

  bool vanishes(double x) const { return std::fabs(x) + norm == norm; }

  void cancel(std::size_t l, std::size_t k) {
    double c = 0, s = 1;
    for (std::size_t i = l; i <= k; ++i) {
      const double f = s * e[i];
      e[i] = c * e[i];
      if (vanishes(f)) return;
      const double g = w[i], h = scaledHypot(f, g);
      w[i] = h;
      c = g / h;
      s = -f / h;
      turnColumns(u, i, l - 1, c, s);
    }
  }

  QorStatus diagonalise(int32_t limit) {
    for (std::size_t k = n; k-- > 0;) {
      for (int32_t its = 1;; ++its) {
        std::size_t l = k;
        for (; l > 0; --l) {
          if (vanishes(e[l])) break;
          if (vanishes(w[l - 1])) {
            cancel(l, k);
            break;
          }
        }
        if (l == k) break;
        if (its == limit) return qorStatusNoConvergence;
        sweep(l, k);
      }
      if (w[k] < 0) {
        w[k] = -w[k];
        for (auto& row : v) row[k] *= -1;
      }
    }
    return qorStatusOk;
  }

  void sweep(std::size_t l, std::size_t k) {
    double x = w[l], y = w[k - 1], z = w[k], g = e[k - 1], h = e[k];
    double f = ((y - z) * (y + z) + (g - h) * (g + h)) / ((h + h) * y);
    g = scaledHypot(f, 1);
    const double sign = f < 0 ? -g : g;
    f = ((x - z) * (x + z) + h * (y / (f + sign) - h)) / x;
    double c = 1, s = 1;
    for (std::size_t j = l; j < k; ++j) {
      const std::size_t i = j + 1;
      g = e[i];
      y = w[i];
      h = s * g;
      g = c * g;
      z = scaledHypot(f, h);
      e[j] = z;
      if (z != 0) c = f / z, s = h / z;
      f = x * c + g * s;
      g = g * c - x * s;
      h = y * s;
      y = y * c;
      turnColumns(v, i, j, c, s);
      z = scaledHypot(f, h);
      w[j] = z;
      if (z != 0) c = f * (1 / z), s = h * (1 / z);
      f = c * g + s * y;
      x = c * y - s * g;
      turnColumns(u, i, j, c, s);
    }
    e[l] = 0;
    e[k] = f;
    w[k] = x;
  }

  // Selection with swaps; the first of equal values.
  void sort() {
    std::vector<std::size_t> index(n);
    for (std::size_t i = 0; i < n; ++i) index[i] = i;
    for (std::size_t k = 0; k < n; ++k) {
      std::size_t best = k;
      for (std::size_t i = k; i < n; ++i) {
        if (w[i] > w[best]) best = i;
      }
      std::swap(w[k], w[best]);
      std::swap(index[k], index[best]);
    }
    for (Table<double>* t : {&u, &v}) {
      for (auto& row : *t) {
        const auto old = row;
        for (std::size_t c = 0; c < n; ++c) row[c] = old[index[c]];
      }
    }
  }
};

}  // namespace model
