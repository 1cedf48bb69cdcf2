// Householder reduction to bidiagonal form, and the accumulation of its reflections: A = U B V'.
//
// A is held as columns that lie one after the other, so every reflection runs along memory: one from the left is, for each column
// c, a dot product and c += t * v; one from the right is, for a block of rows, y = sum over columns of a[k] c[k], then c[k] += e[k]
// y.
//
// Grouping of sums: magnitudes and squares of a column or row in eight lanes (rowReduce); dot products of columns in four lanes
// joined by halves, the tail in a partial load; products from the right one by one, from the left column to the last.
//
// G. Golub, W. Kahan, "Calculating the Singular Values and Pseudo-Inverse of a Matrix", SIAM J. Numer. Anal. 2 (1965); G. Golub,
// C. Reinsch, "Singular Value Decomposition and Least Squares Solutions", Numer. Math. 14 (1970).
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/reduce.h"

namespace qorsr {

// `width` columns of `height` elements, each beginning `pitch` elements behind the one before.
struct Columns {
  double* base;
  int32_t height, width;
  int64_t pitch;

  double* operator[](int64_t k) const { return base + k * pitch; }
};

// ---- Kernels ----

// sums[q] = sum over i below n of x[i] * (column q)[i], for Q columns that follow each other.
template <int Q>
inline void columnDots(const double* x, const double* first, int64_t pitch, int32_t n, double* sums) {
  using L = Lanes<double, 4>;
  L lanes[Q];
  for (L& l : lanes) l = L(0.0);
  int32_t i = 0;
  for (; i <= n - 4; i += 4) {
    const L v = L::load(x + i);
    for (int q = 0; q < Q; ++q) lanes[q] += v * L::load(first + q * pitch + i);
  }
  if (i < n) {
    const Tail<double, 4> tail(n - i);
    const L v = tail.load(x + i);
    for (int q = 0; q < Q; ++q) lanes[q] += v * tail.load(first + q * pitch + i);
  }
  for (int q = 0; q < Q; ++q) sums[q] = joinHalves(lanes[q]);
}

inline void scale(double* x, int32_t n, double factor) {
  coverColumnsOnce<double>(n, [&](int32_t i, auto lanes) {
    using L = Lanes<double, lanes>;
    (L::load(x + i) * L(factor)).store(x + i);
  });
}

// Sum of magnitudes; and x *= factor with the sum of the squares that result.
inline double sumOfMagnitudes(const double* x, int32_t n) {
  return rowReduce(n, [&](int32_t i, auto lanes) { return abs(Lanes<double, lanes>::load(x + i)); });
}
inline double scaleAndSumSquares(double* x, int32_t n, double factor) {
  return rowReduce(n, [&](int32_t i, auto lanes) {
    using L = Lanes<double, lanes>;
    const L scaled = L::load(x + i) * L(factor);
    scaled.store(x + i);
    return scaled * scaled;
  });
}

// For each column c from `first` to the last: t = factorOf(dot product of `left` and c over rows dotFrom to the last), then
// c += t * add over rows addFrom to the last, but for rows where the dot product begins later. Four columns at a time.
struct Reflection {
  const double *left, *add;
  int32_t dotFrom, addFrom;
};
template <int Q, class FactorOf>
inline void reflectColumns(const Columns& c, int32_t first, const Reflection& r, FactorOf factorOf) {
  double dots[Q];
  columnDots<Q>(r.left + r.dotFrom, c[first] + r.dotFrom, c.pitch, c.height - r.dotFrom, dots);
  for (double& t : dots) t = factorOf(t);
  coverColumnsOnce<double>(c.height - r.addFrom, [&](int32_t i, auto lanes) {
    using L = Lanes<double, lanes>;
    const L v = L::load(r.add + r.addFrom + i);
    for (int q = 0; q < Q; ++q) {
      double* const x = c[first + q] + r.addFrom + i;
      (L::load(x) + L(dots[q]) * v).store(x);
    }
  });
}
template <class FactorOf>
void reflect(const Columns& c, int32_t first, const Reflection& r, FactorOf factorOf) {
  for (; first <= c.width - 4; first += 4) reflectColumns<4>(c, first, r, factorOf);
  for (; first < c.width; ++first) reflectColumns<1>(c, first, r, factorOf);
}

// Rows `firstRow` to the last, columns l to the last: y = sum over k of a[k] * column k, column k += e[k] * y.
inline void reflectRows(const Columns& c, int32_t l, int32_t firstRow, const double* a, const double* e) {
  coverColumnsOnce<double>(c.height - firstRow, [&](int32_t i, auto lanes) {
    using L = Lanes<double, lanes>;
    L y(0.0);
    for (int32_t k = l; k < c.width; ++k) y += L(a[k]) * L::load(c[k] + firstRow + i);
    for (int32_t k = l; k < c.width; ++k) {
      double* const x = c[k] + firstRow + i;
      (L::load(x) + L(e[k]) * y).store(x);
    }
  });
}

// ---- Stages ----

// The element on the (super)diagonal that a Householder vector beginning with f, of squared length s, leaves.
inline double reflected(double f, double s) { return f >= 0.0 ? -__builtin_sqrt(s) : __builtin_sqrt(s); }

// One reflection from the left. Returns what stands on the diagonal.
inline double reduceColumn(const Columns& a, int32_t i) {
  double* const x = a[i] + i;
  const int32_t n = a.height - i;
  const double size = sumOfMagnitudes(x, n);
  if (size == 0.0) return 0.0;
  const double s = scaleAndSumSquares(x, n, 1.0 / size), f = x[0], g = reflected(f, s), h = f * g - s;
  x[0] = f - g;
  reflect(a, i + 1, {a[i], a[i], i, i}, [h](double dot) { return dot / h; });
  scale(x, n, size);
  return size * g;
}

// One reflection from the right, of row i from column i + 1 on; `row` and `e` are scratch. Returns what stands on the
// superdiagonal.
inline double reduceRow(const Columns& a, int32_t i, double* row, double* e) {
  const int32_t l = i + 1, n = a.width - l;
  for (int32_t k = l; k < a.width; ++k) row[k] = a[k][i];
  const double size = sumOfMagnitudes(row + l, n);
  if (size == 0.0) return 0.0;
  const double s = scaleAndSumSquares(row + l, n, 1.0 / size), f = row[l], g = reflected(f, s), reciprocal = 1.0 / (f * g - s);
  row[l] = f - g;
  for (int32_t k = l; k < a.width; ++k) e[k] = row[k] * reciprocal;
  reflectRows(a, l, l, row, e);
  for (int32_t k = l; k < a.width; ++k) a[k][i] = row[k] * size;
  return size * g;
}

// A becomes its reflections, w the diagonal, e the superdiagonal (e[0] = 0). Returns the norm that the sweeps compare with.
inline double bidiagonalise(const Columns& a, double* w, double* e, double* row) {
  double norm = 0.0, super = 0.0;
  for (int32_t i = 0; i < a.width; ++i) {
    e[i] = super;
    w[i] = i < a.height ? reduceColumn(a, i) : 0.0;
    super = i < a.height && i != a.width - 1 ? reduceRow(a, i, row, e) : 0.0;
    const double size = __builtin_fabs(w[i]) + __builtin_fabs(e[i]);
    norm = size > norm ? size : norm;
  }
  return norm;
}

// V from the reflections of the rows.
inline void accumulateRight(const Columns& a, const Columns& v, const double* e, double* row) {
  const int32_t n = a.width;
  double g = 0.0;
  for (int32_t i = n - 1; i >= 0; --i) {
    const int32_t l = i + 1;
    if (g != 0.0) {  // row i exists: without one the superdiagonal is zero
      for (int32_t k = l; k < n; ++k) row[k] = a[k][i];
      for (int32_t k = l; k < n; ++k) v[i][k] = row[k] / row[l] / g;  // two divisions, against underflow
      reflect(v, l, {row, v[i], l, l}, [](double dot) { return dot; });
    }
    for (int32_t k = l; k < n; ++k) v[i][k] = v[k][i] = 0.0;
    v[i][i] = 1.0;
    g = e[i];
  }
}

// U from the reflections of the columns, in their place.
inline void accumulateLeft(const Columns& a, const double* w) {
  for (int32_t i = std::min(a.height, a.width) - 1; i >= 0; --i) {
    const int32_t l = i + 1, n = a.height - i;
    for (int32_t k = l; k < a.width; ++k) a[k][i] = 0.0;
    double* const x = a[i] + i;
    if (w[i] != 0.0) {
      const double g = 1.0 / w[i], first = x[0];
      reflect(a, l, {a[i], a[i], l, i}, [g, first](double dot) { return dot / first * g; });
      scale(x, n, g);
    } else {
      std::fill(x, x + n, 0.0);
    }
    x[0] += 1.0;
  }
}

}  // namespace qorsr
