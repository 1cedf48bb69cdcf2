#include "discrete_fit.h"

#include <cmath>

namespace voice {
namespace {

constexpr int rounds = 20;        // at most
constexpr double settled = 1e-4;  // the change of coefficients that ends them, relative
constexpr double noise = 1e-6;    // added to the energy, so that few harmonics leave R regular

// In several sums at once, so that they may run side by side.
double dot(const double* a, const double* b, size_t count) {
  constexpr size_t lanes = 8;
  double sums[lanes] = {}, rest = 0;
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    for (size_t l = 0; l < lanes; ++l) sums[l] += a[i + l] * b[i + l];
  }
  for (; i < count; ++i) rest += a[i] * b[i];
  for (const double sum : sums) rest += sum;
  return rest;
}

}  // namespace

bool DiscreteFit::factorise(const std::vector<double>& harmonics) {
  const size_t n = order_ + 1, count = harmonics.size();
  std::vector<double> lags(n);
  for (size_t i = 0; i < n; ++i) {
    lags[i] = dot(harmonics.data(), &waves_[2 * i * count], count) / static_cast<double>(count);
  }
  lags[0] *= 1 + noise;
  factor_.assign(n * n, 0);
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = 0; j <= i; ++j) {
      double sum = lags[i - j];
      for (size_t k = 0; k < j; ++k) sum -= factor_[i * n + k] * factor_[j * n + k];
      if (i == j && !(sum > 0)) return false;
      factor_[i * n + j] = i == j ? std::sqrt(sum) : sum / factor_[j * n + j];
    }
  }
  return true;
}

void DiscreteFit::solve(std::vector<double>& x) const {
  const size_t n = order_ + 1;
  for (size_t i = 0; i < n; ++i) {
    for (size_t k = 0; k < i; ++k) x[i] -= factor_[i * n + k] * x[k];
    x[i] /= factor_[i * n + i];
  }
  for (size_t i = n; i-- > 0;) {
    for (size_t k = i + 1; k < n; ++k) x[i] -= factor_[k * n + i] * x[k];
    x[i] /= factor_[i * n + i];
  }
}

bool DiscreteFit::improve(std::vector<double>& a, const std::vector<double>& harmonics, double step) {
  order_ = a.size() - 1;
  const size_t n = order_ + 1, count = harmonics.size();
  waves_.resize(n * 2 * count);
  for (size_t m = 0; m < count; ++m) {
    const double c = std::cos(step * static_cast<double>(m + 1)), s = std::sin(step * static_cast<double>(m + 1));
    double re = 1, im = 0;
    for (size_t i = 0; i < n; ++i) {
      waves_[2 * i * count + m] = re;
      waves_[(2 * i + 1) * count + m] = im;
      const double next = re * c - im * s;
      im = re * s + im * c;
      re = next;
    }
  }
  if (!factorise(harmonics)) return false;
  const size_t columns = 2 * count;
  std::vector<double> fitted = a, h(n), z(columns);
  for (int round = 0; round < rounds; ++round) {
    // 1 / A at the harmonics, A = re - j im.
    z.assign(columns, 0);
    for (size_t i = 0; i < n; ++i) {
      for (size_t c = 0; c < columns; ++c) z[c] += fitted[i] * waves_[i * columns + c];
    }
    for (size_t m = 0; m < count; ++m) {
      double &re = z[m], &im = z[count + m];
      const double scale = 1 / ((re * re + im * im) * static_cast<double>(count));
      re *= scale;
      im *= scale;
    }
    // The real part of e^-jwi (re + j im).
    for (size_t i = 0; i < n; ++i) h[i] = dot(&waves_[i * columns], z.data(), columns);
    solve(h);
    double change = 0, size = 0;
    for (size_t i = 0; i < n; ++i) {
      change += std::fabs(h[i] - fitted[i]);
      size += std::fabs(fitted[i]);
      fitted[i] = (fitted[i] + h[i]) / 2;
    }
    if (change < settled * size) break;
  }
  for (const double value : fitted) {
    if (!std::isfinite(value)) return false;
  }
  if (fitted[0] == 0) return false;
  a = fitted;
  return true;
}

}  // namespace voice
