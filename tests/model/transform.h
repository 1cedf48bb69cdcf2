// The discrete Fourier transform of a real signal in double precision: by its definition up to 64 samples, by halving beyond.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

namespace model {

using Spectrum = std::vector<std::complex<double>>;

// All N bins of N = 2^order complex samples.
inline Spectrum fourier(const Spectrum& x) {
  const std::size_t n = x.size();
  const auto root = [n](std::size_t k) {
    return std::polar(1.0, -2.0 * M_PI * static_cast<double>(k % n) / static_cast<double>(n));
  };
  Spectrum y(n);
  if (n <= 64) {
    for (std::size_t k = 0; k < n; ++k) {
      for (std::size_t j = 0; j < n; ++j) y[k] += x[j] * root(j * k);
    }
    return y;
  }
  Spectrum even, odd;
  for (std::size_t j = 0; j < n; j += 2) {
    even.push_back(x[j]);
    odd.push_back(x[j + 1]);
  }
  even = fourier(even);
  odd = fourier(odd);
  for (std::size_t k = 0; k < n / 2; ++k) {
    const auto turned = root(k) * odd[k];
    y[k] = even[k] + turned;
    y[k + n / 2] = even[k] - turned;
  }
  return y;
}

// Bins 0 to N/2 of a real signal.
template <class T>
Spectrum realFourier(const std::vector<T>& x) {
  Spectrum y = fourier(Spectrum(x.begin(), x.end()));
  y.resize(x.size() / 2 + 1);
  return y;
}

// The root of the mean square of the bins.
inline double rms(const Spectrum& spectrum) {
  double sum = 0;
  for (const auto& bin : spectrum) sum += std::norm(bin);
  return std::sqrt(sum / static_cast<double>(spectrum.size()));
}

}  // namespace model
