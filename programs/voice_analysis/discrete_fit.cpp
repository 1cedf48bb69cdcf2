#include "discrete_fit.h"

#include <cmath>

namespace voice {
namespace {

constexpr int rounds = 20;
constexpr double noise = 1e-6;  // added to the energy, so that few harmonics leave R regular

}  // namespace

bool DiscreteFit::factorise(const std::vector<double>& harmonics) {
  const size_t n = order_ + 1, count = harmonics.size();
  std::vector<double> lags(n);
  for (size_t i = 0; i < n; ++i) {
    for (size_t m = 0; m < count; ++m) lags[i] += harmonics[m] * cosines_[i * count + m];
    lags[i] /= static_cast<double>(count);
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
  cosines_.resize(n * count);
  sines_.resize(n * count);
  for (size_t m = 0; m < count; ++m) {
    const double c = std::cos(step * static_cast<double>(m + 1)), s = std::sin(step * static_cast<double>(m + 1));
    double re = 1, im = 0;
    for (size_t i = 0; i < n; ++i) {
      cosines_[i * count + m] = re;
      sines_[i * count + m] = im;
      const double next = re * c - im * s;
      im = re * s + im * c;
      re = next;
    }
  }
  if (!factorise(harmonics)) return false;
  std::vector<double> fitted = a, h(n), re(count), im(count);
  for (int round = 0; round < rounds; ++round) {
    // 1 / A at the harmonics, A = re - j im.
    re.assign(count, 0);
    im.assign(count, 0);
    for (size_t i = 0; i < n; ++i) {
      for (size_t m = 0; m < count; ++m) {
        re[m] += fitted[i] * cosines_[i * count + m];
        im[m] += fitted[i] * sines_[i * count + m];
      }
    }
    for (size_t m = 0; m < count; ++m) {
      const double scale = 1 / ((re[m] * re[m] + im[m] * im[m]) * static_cast<double>(count));
      re[m] *= scale;
      im[m] *= scale;
    }
    // The real part of e^-jwi (re + j im).
    for (size_t i = 0; i < n; ++i) {
      double sum = 0;
      for (size_t m = 0; m < count; ++m) sum += cosines_[i * count + m] * re[m] + sines_[i * count + m] * im[m];
      h[i] = sum;
    }
    solve(h);
    for (size_t i = 0; i < n; ++i) fitted[i] = (fitted[i] + h[i]) / 2;
  }
  for (const double value : fitted) {
    if (!std::isfinite(value)) return false;
  }
  if (fitted[0] == 0) return false;
  a = fitted;
  return true;
}

}  // namespace voice
