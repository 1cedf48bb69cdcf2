// Line spectral pairs: the roots of A(z) +- z^-(p+1) A(1/z), which lie on the unit circle and alternate, given by their cosines.
//
// Each of the two polynomials, freed of its root at 1 or -1, is a polynomial of cosines, evaluated by the recurrence of Chebyshev
// (Kabal and Ramachandran, 1986). The search walks a grid from cosine 1 to -1 with one polynomial and goes over to the other at each
// root. All in float.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "features/lp_conversions.h"

namespace qorsr {

struct CosinePolynomial {
  const float* h;
  int32_t degree;

  float operator()(float x) const {
    if (degree < 2) return degree == 0 ? 0.0F : h[1] + 2.0F * x;
    float before = 1.0F, last = h[1] + 2.0F * x;
    for (int32_t j = 2; j < degree; ++j) {
      const float next = 2.0F * x * last - before + h[j];
      before = last;
      last = next;
    }
    return x * last - before + 0.5F * h[degree];
  }
};

// The two polynomials f and g of a predictor. Required: the signs of odd orders differ from those of even ones.
inline void halfPolynomials(const float* a, int32_t order, float* f, float* g) {
  const int32_t degree = (order + 1) / 2;
  f[0] = g[0] = 1.0F;
  if (order % 2 == 0) {
    for (int32_t i = 1; i <= degree; ++i) {
      f[i] = a[i - 1] + a[order - i] - f[i - 1];
      g[i] = a[i - 1] - a[order - i] + g[i - 1];
    }
    return;
  }
  for (int32_t i = 1; i < degree; ++i) {
    f[i] = 0.0F - a[i - 1] - a[order - i];
    g[i] = i == 1 ? a[order - 1] - a[0] : g[i - 2] + a[order - i] - a[i - 1];
  }
  f[degree] = -2.0F * a[degree - 1];
}

struct Point {
  float x, value;
};

// The root between two points, after cutting the bracket into quarters and one secant step.
inline float rootBetween(const CosinePolynomial& h, Point left, Point right, int32_t refinements) {
  for (int32_t count = refinements; count > 0; count -= 2) {
    const float quarter = (right.x - left.x) * 0.25F;
    const float x[3] = {left.x + quarter, left.x + 2.0F * quarter, left.x + 3.0F * quarter};
    for (const float inner : x) {
      const Point point{inner, h(inner)};
      if (left.value * point.value <= 0.0F) {
        right = point;
        break;
      }
      left = point;
    }
  }
  return right.x - (left.x - right.x) * right.value / (left.value - right.value);
}

// As many roots as are found, at most `order`, falling. Returns their number.
inline int32_t searchRoots(CosinePolynomial current, CosinePolynomial other, const float* grid, int32_t intervals,
                           int32_t refinements, int32_t order, float* roots) {
  int32_t found = 0;
  Point left{grid[0], current(grid[0])};
  for (int32_t i = 1; i <= intervals; ++i) {
    Point right{grid[i], current(grid[i])};
    while (left.value * right.value <= 0.0F) {
      roots[found] = rootBetween(current, left, right, refinements);
      std::swap(current, other);
      left = {roots[found], current(roots[found])};
      right.value = current(right.x);
      if (++found == order) return found;
    }
    left = right;
  }
  return found;
}

inline QorStatus predictorToLineSpectra(const float* a, float* roots, int32_t order, int32_t* count, int32_t intervals,
                                        int32_t refinements) {
  const int64_t ofF = (int64_t{order} + 1) / 2, ofG = order - ofF;
  const auto wholeFours = [](int64_t elements) { return elements & ~int64_t{3}; };
  const Scratch<float, 256> area(wholeFours(ofF + 4) + wholeFours(ofG + 4) + wholeFours(int64_t{intervals} + 7) + 4 * ofF + 4 +
                                 4 * ofG + 4 + 15);
  if (!area) return qorStatusNoMemory;
  float *const grid = area.get(), *const f = grid + intervals + 1, *const g = f + ofF + 2;
  const float step = 2.0F / static_cast<float>(intervals);
  for (int32_t i = 0; i < intervals; ++i) grid[i] = 1.0F - static_cast<float>(i) * step;
  grid[intervals] = -1.0F;
  halfPolynomials(a, order, f, g);
  *count = searchRoots({f, static_cast<int32_t>(ofF)}, {g, static_cast<int32_t>(ofG)}, grid, intervals, refinements, order, roots);
  return *count < order ? qorStatusLspRootsLost : qorStatusOk;
}

// ---- Backwards ----

// The product of (1 - 2 q[i] z^-1 + z^-2) over every second q, symmetric: its first half, product[0] to product[factors].
inline void multiplyPairs(const float* q, int32_t factors, float* product) {
  product[0] = 1.0F;
  product[1] = factors > 0 ? -2.0F * q[0] : 0.0F;
  for (int32_t s = 2; s <= factors; ++s) {
    const float b = -2.0F * q[2 * (s - 1)];
    product[s] = b * product[s - 1] + 2.0F * product[s - 2];
    for (int32_t j = s - 1; j > 1; --j) product[j] += b * product[j - 1] + product[j - 2];
    product[1] += b;
  }
}

// Required: odd orders have the opposite sign.
inline void joinHalfPolynomials(float* f, float* g, int32_t order, float* a) {
  const int32_t s = (order + 1) / 2, t = order / 2;
  if (order % 2 == 0) {
    for (int32_t i = s; i >= 1; --i) {
      f[i] = f[i] + f[i - 1];
      g[i] = g[i] - g[i - 1];
    }
    for (int32_t i = 1; i <= s; ++i) {
      a[i - 1] = (f[i] + g[i]) * 0.5F;
      a[order - i] = (f[i] - g[i]) * 0.5F;
    }
    return;
  }
  a[0] = (f[1] + g[1]) * -0.5F;
  for (int32_t i = 2; i < s; ++i) a[i - 1] = (f[i] + g[i] - g[i - 2]) * -0.5F;
  if (order > 1) a[s - 1] = f[s] * -0.5F;
  for (int32_t i = 1; i <= t; ++i) a[order - i] = (f[i] - g[i] + (i < 2 ? 0.0F : g[i - 2])) * -0.5F;
}

// Falling, strictly inside -1 to 1; equal neighbours and NaN pass.
inline bool areLineSpectra(const float* q, int32_t order) {
  bool bad = q[0] >= 1.0F || q[order - 1] <= -1.0F;
  for (int32_t i = 0; i + 1 < order; ++i) bad |= q[i + 1] > q[i];
  return !bad;
}

inline QorStatus lineSpectraToPredictor(const float* q, float* a, int32_t order) {
  constexpr int kStackOrder = 58;
  if (!areLineSpectra(q, order)) return qorStatusBadLspOrder;
  const int64_t count = int64_t{order} / 2 + 3;
  const Scratch<float, 2 * (kStackOrder / 2 + 3)> halves(2 * count);
  if (!halves) return qorStatusNoMemory;
  float *const f = halves.get(), *const g = f + count;
  multiplyPairs(q, (order + 1) / 2, f);
  multiplyPairs(q + 1, order / 2, g);
  joinHalfPolynomials(f, g, order, a);
  return qorStatusOk;
}

// ---- Members ----

template <class T>
inline Checks checkLineSpectra(const T* source, const T* destination, const int32_t* count, int32_t order, int32_t intervals,
                               int32_t refinements) {
  return Checks()
      .null(source, destination, count)
      .size(intervals, refinements, order)
      .require(order <= intervals, qorStatusBadSize);
}

inline QorStatus toLineSpectra(const float* source, float* destination, int32_t order, int32_t* count, int32_t intervals,
                               int32_t refinements) {
  if (QorStatus bad = checkLineSpectra(source, destination, count, order, intervals, refinements)) return bad;
  return predictorToLineSpectra(source, destination, order, count, intervals, refinements);
}

inline QorStatus toLineSpectra(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order, int32_t* count,
                               int32_t intervals, int32_t refinements, int32_t destinationScale) {
  if (QorStatus bad = checkLineSpectra(source, destination, count, order, intervals, refinements)) return bad;
  const Scratch<float, kStackElements> floats(2 * int64_t{order});
  if (!floats) return qorStatusNoMemory;
  float* const roots = floats.get() + order;
  loadScaled(source, floats.get(), order, twoToMinus<float>(sourceScale));
  const QorStatus status = predictorToLineSpectra(floats.get(), roots, order, count, intervals, refinements);
  if (status != qorStatusNoMemory && *count > 0) storeScaled(roots, destination, *count, destinationScale);
  return status;
}

inline QorStatus fromLineSpectra(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                 int32_t destinationScale) {
  if (QorStatus bad = Checks().null(source, destination).size(order)) return bad;
  const Scratch<float, kStackElements> floats(2 * int64_t{order});
  if (!floats) return qorStatusNoMemory;
  float* const predictor = floats.get() + order;
  loadScaled(source, floats.get(), order, twoToMinus<float>(sourceScale));
  if (QorStatus bad = lineSpectraToPredictor(floats.get(), predictor, order)) return bad;
  storeScaled(predictor, destination, order, destinationScale);
  return qorStatusOk;
}

}  // namespace qorsr
