// Plain models of state clustering. One scalar loop each, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "qorsr.h"

namespace model {

template <class T>
struct Statistics {
  std::vector<T> sum, squares;
};

template <class T>
Statistics<T> accumulateInverse(const std::vector<T>& mean, const std::vector<T>& v, T occ) {
  Statistics<T> s;
  for (std::size_t i = 0; i < mean.size(); ++i) {
    s.sum.push_back(mean[i] * occ);
    s.squares.push_back((T(1) / v[i] + mean[i] * mean[i]) * occ);
  }
  return s;
}

template <class T>
Statistics<T> accumulateDirect(const std::vector<T>& mean, const std::vector<T>& v, T occ) {
  Statistics<T> s;
  for (std::size_t i = 0; i < mean.size(); ++i) {
    s.sum.push_back(mean[i] * occ);
    s.squares.push_back((mean[i] * mean[i] + v[i]) * occ);
  }
  return s;
}

// Aligned vectors of at least eight elements.
inline Statistics<float> accumulateFast(const std::vector<float>& mean, const std::vector<float>& v, float occ) {
  Statistics<float> s;
  const std::size_t n = mean.size();
  for (std::size_t i = 0; i < n; ++i) {
    float term = occ / v[i];
    if (i < n - n % 2) {
      const float r = 1.0F / v[i];
      const float refined = v[i] == 0.0F ? r : (2.0F - v[i] * r) * r;
      term = refined * occ;
    }
    s.sum.push_back(occ * mean[i]);
    s.squares.push_back((occ * mean[i]) * mean[i] + term);
  }
  return s;
}
inline Statistics<double> accumulateFast(const std::vector<double>& mean, const std::vector<double>& v, double occ) {
  Statistics<double> s;
  const std::size_t n = mean.size();
  for (std::size_t i = 0; i < n; ++i) {
    s.sum.push_back(occ * mean[i]);
    std::size_t partner = i;  // with which it shares a division
    if (i < n / 4 * 4) {
      partner = i ^ 2;
    } else if (i < n / 2 * 2) {
      partner = i ^ 1;
    }
    const double low = v[i < partner ? i : partner], high = v[i < partner ? partner : i];
    const double term = partner == i ? occ / v[i] : v[partner] * (occ / (low * high));
    s.squares.push_back((occ * mean[i]) * mean[i] + term);
  }
  return s;
}

struct Likelihood {
  double value;
  QorStatus status;
  double magnitude = 0;  // of the terms that were added; 0: a marker
};

// The result is not written (NaN here) when the occupancy is negative.
template <class T>
Likelihood clusterLikelihood(const std::vector<T>& sum, const std::vector<T>& squares, double n) {
  if (n < 0) return {std::numeric_limits<double>::quiet_NaN(), qorStatusBadStatistic};
  if (n == 0) return {-1.0e10, qorStatusZeroOccupancy};
  const double l = std::log(n), dimension = static_cast<double>(sum.size());
  const double b = dimension * ((l - 1.0 - 0x1.d67f1c864beb5p+0) + l);
  double s = 0, magnitude = std::fabs(b);
  for (std::size_t i = 0; i < sum.size(); ++i) {
    const double x = static_cast<double>(sum[i]), d = static_cast<double>(squares[i]) * n - x * x;
    if (d == 0) return {-std::numeric_limits<double>::infinity(), qorStatusLogZero};
    if (d < 0) return {std::numeric_limits<double>::quiet_NaN(), qorStatusLogNegative};
    s += std::log(d);
    magnitude += std::fabs(std::log(d));
  }
  return {(n * 0.5) * (b - s), qorStatusOk, n * 0.5 * magnitude};
}

}  // namespace model
