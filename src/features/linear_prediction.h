// Linear prediction: the recursions of Levinson and Durbin and of Schur on autocorrelations, and the covariance method.
//
//   Error filter: e(n) = x(n) + a[1] x(n - 1) + ... + a[p] x(n - p); the predictor has the opposite signs.
//   Durbin, step m: k = (r(m) + sum of a[i] r(m - i)) / e,  a[i] -= k a[m - i],  a[m] = -k,  e *= 1 - k k.
//   Covariance: A a = c with A(i, j) = sum over n from 0 to N - 2 - i of x(n) x(n + i - j), by A = L D L'.
//
// All in float, but for the sums of A. Sums of products without a required grouping run in order.
#pragma once

#include <cstdint>
#include <cstring>

#include "features/autocorrelation.h"
#include "features/reflected.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

// The longest signal and the highest orders whose scratch stands on the stack.
inline constexpr int kStackSignal = 63, kStackOrder = 63, kStackReflections = 1023;

// ---- Levinson-Durbin ----

// r(m) + a[1] r(m - 1) + ... + a[m - 1] r(1), where a[0] holds a[1]. Required: odd and even terms run apart and are joined before
// an odd last one.
inline float predictionError(const float* r, const float* a, int32_t m) {
  float odd = r[m], even = 0.0F;
  int32_t i = 1;
  for (; i + 1 < m; i += 2) {
    odd += a[i - 1] * r[m - i];
    even += a[i] * r[m - i - 1];
  }
  const float sum = odd + even;
  return i < m ? sum + a[i - 1] * r[m - i] : sum;
}

// A residual energy that is a NaN is not refused.
inline QorStatus levinsonDurbin(const float* r, float* a, int32_t order, float* residual) {
  const Scratch<float, kStackOrder + 1> old(int64_t{order} + 1);
  if (!old) return qorStatusNoMemory;
  if (0.0F >= r[0]) return qorStatusUnstableFilter;
  float k = r[1] / r[0], energy = r[0] * (1.0F - k * k);
  if (0.0F >= energy) return qorStatusUnstableFilter;
  a[0] = -k;
  for (int32_t m = 2; m <= order; ++m) {
    k = predictionError(r, a, m) / energy;
    energy = energy * (1.0F - k * k);
    a[m - 1] = -k;
    if (0.0F >= energy) return qorStatusUnstableFilter;
    subtractReflected(a, old.get(), m - 1, k);
  }
  *residual = energy;
  return qorStatusOk;
}

// ---- Schur ----

// g holds the lags and h, which may hold anything, has as many elements. G(i) stands in g[i]; H(i) stands in h[i - m] in front of
// step m, since H moves up by one at each step.
inline void schurRecursion(float* g, float* h, float* reflections, int32_t order, float* residual) {
  std::memcpy(h, g, (static_cast<std::size_t>(order) + 1) * sizeof(float));
  float k = 0.0F;
  for (int32_t m = 1; m <= order; ++m) {
    k = (0.0F - g[m]) / h[0];
    reflections[m - 1] = k;
    float before = g[m];
    for (int32_t i = m + 1; i <= order; ++i) {
      const float old = g[i];
      g[i] = old + k * h[i - m];
      h[i - m - 1] = k * before + h[i - m - 1];
      before = old;
    }
  }
  *residual = g[order] * k + h[0];
}

// ---- Covariance ----

// Row i of A, to column i, in matrix[i * order]. A(i, i - d) is the sum over n up to N - 2 - i of x(n) x(n + d), so the sums of all
// rows are running sums over n, and each is formed once. sums: `order` elements of scratch.
inline void covarianceRows(const float* x, int64_t length, int32_t order, double* sums, float* matrix) {
  const auto add = [=](int32_t d, auto n, int64_t first, int64_t end) {
    auto sum = Lanes<double, n>::load(sums + d);
    for (int64_t t = first; t < end; ++t) sum += as<double>(Lanes<float, n>(x[t]) * Lanes<float, n>::load(x + t + d));
    return sum;
  };
  std::memset(sums, 0, static_cast<std::size_t>(order) * sizeof(double));
  int64_t done = 0;
  for (int32_t i = order - 1; i >= 0; --i) {
    const int64_t end = length - 1 - i;
    coverColumnsOnce<double>(i + 1, [&](int32_t d, auto n) { add(d, n, done, end).store(sums + d); });
    done = end;
    for (int32_t d = 0; d <= i; ++d) matrix[int64_t{i} * order + i - d] = static_cast<float>(sums[d]);
  }
}

inline float dotInOrder(const float* a, const float* b, int32_t count) {
  float sum = 0.0F;
  for (int32_t i = 0; i < count; ++i) sum += a[i] * b[i];
  return sum;
}

// Factors A = L D L' in place, row by row without pivoting: L below the diagonal, D in an array of its own. `products` is scratch of
// one row, L(i, j) D(j).
inline void factorRows(float* matrix, float* diagonal, float* products, int32_t order) {
  for (int32_t i = 0; i < order; ++i) {
    float* const row = matrix + int64_t{i} * order;
    for (int32_t j = 0; j < i; ++j) {
      row[j] = (row[j] - dotInOrder(products, matrix + int64_t{j} * order, j)) / diagonal[j];
      products[j] = row[j] * diagonal[j];
    }
    diagonal[i] = row[i] - dotInOrder(row, products, i);
  }
}

// a = A^-1 c, in place of c: forward through L, divided by D, back through L'. `sums` is scratch.
inline void solveFactored(const float* matrix, const float* diagonal, float* c, float* a, float* sums, int32_t order) {
  for (int32_t i = 0; i < order; ++i) c[i] -= dotInOrder(matrix + int64_t{i} * order, c, i);
  std::memset(sums, 0, static_cast<std::size_t>(order) * sizeof(float));
  for (int32_t i = order - 1; i >= 0; --i) {
    a[i] = c[i] / diagonal[i] - sums[i];
    const float* const row = matrix + int64_t{i} * order;
    for (int32_t j = 0; j < i; ++j) sums[j] += row[j] * a[i];
  }
}

inline QorStatus covariancePrediction(const float* x, int32_t length, float* a, int32_t order) {
  const int64_t n = order;
  const Scratch<double> sums(n);
  const Scratch<float> rows(n * n), vectors(3 * n);
  if (!sums || !rows || !vectors) return qorStatusNoMemory;
  float *const c = vectors.get(), *const diagonal = c + n, *const products = diagonal + n;
  directLags(x, length, 1, order, c);
  covarianceRows(x, length, order, sums.get(), rows.get());
  factorRows(rows.get(), diagonal, products, order);
  solveFactored(rows.get(), diagonal, c, a, products, order);
  return qorStatusOk;
}

// ---- Members ----

inline QorStatus autocorrelationPrediction(const float* x, int32_t length, float* a, int32_t order) {
  const Scratch<float, kStackOrder> lags(int64_t{order} + 1);
  if (!lags) return qorStatusNoMemory;
  if (QorStatus bad = autocorrelation(x, length, lags.get(), order + 1)) return bad;
  float residual = 0.0F;
  return levinsonDurbin(lags.get(), a, order, &residual);
}

// Required: also what a failed recursion left is negated, in float.
inline QorStatus negatedPrediction(const float* x, int32_t length, float* a, int32_t order) {
  const QorStatus status = autocorrelationPrediction(x, length, a, order);
  if (status != qorStatusNoMemory) {
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): scratch, which a failure leaves unread
    for (int32_t i = 0; i < order; ++i) a[i] = 0.0F - a[i];
  }
  return status;
}

inline Checks checkSignal(const void* source, const void* destination, int32_t length, int32_t order) {
  return Checks().null(destination, source).size(length, order).require(order <= length, qorStatusBadSize);
}
using Prediction = QorStatus(const float* x, int32_t length, float* a, int32_t order);

inline QorStatus predict(Prediction* method, const float* source, int32_t length, float* destination, int32_t order) {
  if (QorStatus bad = checkSignal(source, destination, length, order)) return bad;
  return method(source, length, destination, order);
}

// 16 bits at the edges: nothing is written when the method fails.
template <int kStackElements>
QorStatus predict(Prediction* method, const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                  int32_t scaleFactor) {
  if (QorStatus bad = checkSignal(source, destination, length, order)) return bad;
  const Scratch<float, kStackElements> signal(length), coefficients(order);
  if (!signal || !coefficients) return qorStatusNoMemory;
  for (int32_t i = 0; i < length; ++i) signal[i] = source[i];
  if (QorStatus bad = method(signal.get(), length, coefficients.get(), order)) return bad;
  return convertFloats(coefficients.get(), destination, order, kNearestEven, scaleFactor);
}

inline QorStatus durbin(const float* lags, float* destination, int32_t order, float* residual) {
  if (QorStatus bad = Checks().null(lags, destination).size(order).null(residual)) return bad;
  return levinsonDurbin(lags, destination, order, residual);
}

inline QorStatus durbin(const int16_t* lags, int16_t* destination, int32_t order, float* residual, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(lags, destination).size(order).null(residual)) return bad;
  const Scratch<float, kStackOrder + 1> r(int64_t{order} + 1), coefficients(int64_t{order} + 1);
  if (!r || !coefficients) return qorStatusNoMemory;
  for (int32_t i = 0; i <= order; ++i) r[i] = lags[i];
  if (QorStatus bad = levinsonDurbin(r.get(), coefficients.get(), order, residual)) return bad;
  return convertFloats(coefficients.get(), destination, order, kNearestEven, scaleFactor);
}

inline QorStatus schur(const float* lags, float* destination, int32_t order, float* residual) {
  if (QorStatus bad = Checks().null(lags, destination).size(order).null(residual)) return bad;
  const int64_t count = int64_t{order} + 1;
  const Scratch<float, 2 * (kStackReflections + 1)> arrays(2 * count);
  if (!arrays) return qorStatusNoMemory;
  std::memcpy(arrays.get(), lags, static_cast<std::size_t>(count) * sizeof(float));
  schurRecursion(arrays.get(), arrays.get() + count, destination, order, residual);
  return qorStatusOk;
}

inline QorStatus schur(const int16_t* lags, int16_t* destination, int32_t order, float* residual, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(lags, destination).size(order).null(residual)) return bad;
  const int64_t count = int64_t{order} + 1;
  const Scratch<float, 3 * (kStackReflections + 1)> arrays(3 * count);
  if (!arrays) return qorStatusNoMemory;
  for (int64_t i = 0; i < count; ++i) arrays[i] = lags[i];
  schurRecursion(arrays.get(), arrays.get() + count, arrays.get() + 2 * count, order, residual);
  return convertFloats(arrays.get() + 2 * count, destination, order, kNearestEven, scaleFactor);
}

}  // namespace qorsr
