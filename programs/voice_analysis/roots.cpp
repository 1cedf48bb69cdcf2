#include "roots.h"

#include <cmath>
#include <numbers>

namespace voice {
namespace {

constexpr int mostRounds = 60;
constexpr double settled = 1e-8;  // a step, squared

using Complex = std::complex<double>;

// Without the care of std::complex for infinities, which costs several times as much.
Complex product(Complex a, Complex b) {
  return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}
Complex inverse(Complex a) {
  const double scale = 1 / (a.real() * a.real() + a.imag() * a.imag());
  return {a.real() * scale, -a.imag() * scale};
}
double squared(Complex a) { return a.real() * a.real() + a.imag() * a.imag(); }

}  // namespace

bool findRoots(const std::vector<float>& a, std::vector<Complex>& roots) {
  for (int round = 0; round < mostRounds; ++round) {
    double largest = 0;
    for (size_t i = 0; i < roots.size(); ++i) {
      const Complex z = roots[i];
      Complex value = 1, slope = 0, others = 0;
      for (size_t k = 0; k < roots.size(); ++k) {
        slope = product(slope, z) + value;
        value = product(value, z) + static_cast<double>(a[k]);
        if (k != i) others += inverse(z - roots[k]);
      }
      const Complex newton = product(value, inverse(slope));
      const Complex step = product(newton, inverse(1.0 - product(newton, others)));
      if (!std::isfinite(step.real()) || !std::isfinite(step.imag())) return false;
      roots[i] = z - step;
      largest = std::max(largest, squared(step));
    }
    if (largest < settled * settled) return true;
  }
  return false;
}

std::vector<Complex> guesses(size_t count) {
  std::vector<Complex> roots;
  for (size_t i = 0; i < count; ++i) {
    roots.push_back(std::polar(0.9, 2 * std::numbers::pi * (static_cast<double>(i) + 0.37) / static_cast<double>(count)));
  }
  return roots;
}

}  // namespace voice
