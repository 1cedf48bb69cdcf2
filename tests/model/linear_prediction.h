// Plain model of linear prediction: the recursions and the factorisation as their formulas stand, one float operation at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qorsr.h"

namespace model {

// r(lag): the sum of x(n) x(n + lag) in the order of n.
inline float autocorrelation(const std::vector<float>& x, std::size_t lag) {
  float sum = 0.0F;
  for (std::size_t n = 0; n + lag < x.size(); ++n) sum = sum + x[n] * x[n + lag];
  return sum;
}
inline std::vector<float> autocorrelations(const std::vector<float>& x, std::size_t order) {
  std::vector<float> r;
  for (std::size_t k = 0; k <= order; ++k) r.push_back(autocorrelation(x, k));
  return r;
}

struct Recursion {
  QorStatus status = qorStatusOk;
  std::size_t written = 0;  // elements of `a` that the destination receives
  bool hasResidual = false;
  std::vector<float> a;  // a[1] to a[p], counted from 0
  float residual = 0.0F;
};

// Levinson and Durbin. `lags` holds order + 1 numbers.
inline Recursion durbin(const std::vector<float>& lags, std::size_t order) {
  Recursion result;
  result.status = qorStatusUnstableFilter;
  std::vector<float> a(order + 1);  // a[1] to a[order]
  const auto leave = [&](std::size_t written) {
    result.written = written;
    result.a.assign(a.begin() + 1, a.end());
    return result;
  };
  if (0.0F >= lags[0]) return leave(0);
  float k = lags[1] / lags[0];
  float e = lags[0] * (1.0F - k * k);
  if (0.0F >= e) return leave(0);
  a[1] = -k;
  for (std::size_t m = 2; m <= order; ++m) {
    float odd = lags[m], even = 0.0F;
    const std::size_t pairs = (m - 1) / 2;
    for (std::size_t pair = 0; pair < pairs; ++pair) {
      odd = odd + a[2 * pair + 1] * lags[m - 2 * pair - 1];
      even = even + a[2 * pair + 2] * lags[m - 2 * pair - 2];
    }
    float acc = odd + even;
    if ((m - 1) % 2 == 1) acc = acc + a[m - 1] * lags[1];
    k = acc / e;
    e = e * (1.0F - k * k);
    a[m] = -k;
    if (0.0F >= e) return leave(m);
    const std::vector<float> old = a;
    for (std::size_t i = 1; i < m; ++i) a[i] = old[i] - k * old[m - i];
  }
  result.status = qorStatusOk;
  result.hasResidual = true;
  result.residual = e;
  return leave(order);
}

inline Recursion schur(const std::vector<float>& lags, std::size_t order) {
  std::vector<float> g(order + 2), h(order + 2), k(order + 1);
  for (std::size_t i = 1; i <= order; ++i) g[i] = lags[i];
  h[1] = lags[0];
  for (std::size_t i = 1; i < order; ++i) h[i + 1] = lags[i];
  for (std::size_t m = 1; m <= order; ++m) {
    k[m] = (0.0F - g[m]) / h[m];
    for (std::size_t i = order; i > m; --i) {
      g[i] = g[i] + k[m] * h[i];
      h[i] = k[m] * g[i - 1] + h[i - 1];
    }
  }
  Recursion result;
  result.written = order;
  result.hasResidual = true;
  result.a.assign(k.begin() + 1, k.end());
  result.residual = g[order] * k[order] + h[order];
  return result;
}

// The covariance method: A a = c by L D L'. Sums of products run in order.
inline std::vector<float> covariancePrediction(const std::vector<float>& x, std::size_t order) {
  const auto n = static_cast<int64_t>(x.size()), p = static_cast<int64_t>(order);
  const auto at = [&](int64_t i) { return x[static_cast<std::size_t>(i)]; };
  std::vector<float> c(order), d(order), y(order), a(order);
  std::vector<std::vector<float>> l(order, std::vector<float>(order));
  for (int64_t i = 0; i < p; ++i) {
    float right = 0.0F;
    for (int64_t t = 0; t <= n - 2 - i; ++t) right = right + at(t) * at(t + i + 1);
    c[static_cast<std::size_t>(i)] = right;
  }
  for (std::size_t i = 0; i < order; ++i) {
    const auto element = [&](std::size_t j) {
      double sum = 0.0;
      for (int64_t t = 0; t <= n - 2 - static_cast<int64_t>(i); ++t) {
        const float product = at(t) * at(t + static_cast<int64_t>(i - j));
        sum = sum + static_cast<double>(product);
      }
      return static_cast<float>(sum);
    };
    for (std::size_t j = 0; j < i; ++j) {
      float products = 0.0F;
      for (std::size_t k = 0; k < j; ++k) products = products + (l[i][k] * d[k]) * l[j][k];
      l[i][j] = (element(j) - products) / d[j];
    }
    float squares = 0.0F;
    for (std::size_t j = 0; j < i; ++j) squares = squares + l[i][j] * (l[i][j] * d[j]);
    d[i] = element(i) - squares;
  }
  for (std::size_t i = 0; i < order; ++i) {
    float sum = 0.0F;
    for (std::size_t j = 0; j < i; ++j) sum = sum + l[i][j] * y[j];
    y[i] = c[i] - sum;
  }
  for (std::size_t i = order; i-- > 0;) {
    float sum = 0.0F;
    for (std::size_t j = order; --j > i;) sum = sum + l[j][i] * a[j];
    a[i] = y[i] / d[i] - sum;
  }
  return a;
}

}  // namespace model
