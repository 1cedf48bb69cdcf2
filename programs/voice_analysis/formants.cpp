#include "formants.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "common/fault.h"
#include "roots.h"

namespace voice {
namespace {

using program::check;

constexpr double windowSeconds = 0.045;
constexpr double emphasisHz = 50;  // pre-emphasis rises from here on
constexpr double polesPerHertz = 2.0 / 1000, spareOrder = 1;
constexpr double lowestHz = 150, widest = 1200;                // of resonances that may be formants
constexpr double leastSpacing = 4, lowestHarmonicSpare = 0.5;  // of harmonics, in widths of the window's lobe's half
constexpr float noise = 1e-5F;                                 // added to the energy, so that the model stays stable

}  // namespace

FormantModel::FormantModel(int rate, double ceilingHz) : spectrum_(rate, windowSeconds) {
  const auto bins = static_cast<size_t>(std::min(ceilingHz, rate / 2.0 - spectrum_.binHz()) / spectrum_.binHz());
  ceilingHz_ = static_cast<double>(bins) * spectrum_.binHz();
  order_ = static_cast<int>(polesPerHertz * ceilingHz_ + spareOrder + 0.5);
  pole_ = static_cast<float>(std::exp(-std::numbers::pi * emphasisHz / ceilingHz_));
  formants_ = ceilingHz_ > 4600 ? mostFormants : mostFormants - 1;
  for (size_t b = 0; b <= bins; ++b) {
    // The ends count half, so that lags are those of the periodic spectrum.
    const double share = (b == 0 || b == bins ? 0.5 : 1.0) / static_cast<double>(bins);
    emphasis_.push_back(static_cast<float>(emphasis(static_cast<double>(b) * spectrum_.binHz())));
    for (int k = 0; k <= order_; ++k) {
      const double angle = std::numbers::pi * k * static_cast<double>(b) / static_cast<double>(bins);
      cosines_.push_back(static_cast<float>(share * std::cos(angle)));
    }
  }
  power_.resize(bins + 1);
  lags_.resize(static_cast<size_t>(order_) + 1);
}

double FormantModel::emphasis(double hertz) const {
  return std::norm(1.0 - std::polar(static_cast<double>(pole_), -std::numbers::pi * hertz / ceilingHz_));
}

// Between harmonics that the window tells apart, and of which there are enough. The power of a harmonic is that of the largest bin
// near its frequency.
void FormantModel::fitHarmonics(AllPole& model, double pitchHz) {
  const double spacing = pitchHz / spectrum_.binHz();
  const auto count = static_cast<size_t>((ceilingHz_ - lowestHarmonicSpare * pitchHz) / pitchHz);
  if (pitchHz < leastSpacing / windowSeconds || count < static_cast<size_t>(order_)) return;
  harmonics_.clear();
  for (size_t m = 1; m <= count; ++m) {
    const double at = static_cast<double>(m) * spacing;
    const auto from = static_cast<size_t>(at - 0.2 * spacing + 0.5), to = static_cast<size_t>(at + 0.2 * spacing + 0.5);
    double most = 1e-20;
    for (size_t b = from; b <= std::min(to, power_.size() - 1); ++b) most = std::max(most, static_cast<double>(power_[b]));
    harmonics_.push_back(most);
  }
  const double gain = 1 / std::sqrt(static_cast<double>(model.energy));
  coefficients_.assign(1, gain);
  for (const float value : model.a) coefficients_.push_back(gain * static_cast<double>(value));
  if (!discrete_.improve(coefficients_, harmonics_, std::numbers::pi * pitchHz / ceilingHz_)) return;
  for (size_t k = 0; k < model.a.size(); ++k) model.a[k] = static_cast<float>(coefficients_[k + 1] / coefficients_[0]);
  model.energy = static_cast<float>(1 / (coefficients_[0] * coefficients_[0]));
}

AllPole FormantModel::fit(const Padded<float>& samples, double middle, double pitchHz) {
  const std::vector<float>& power = spectrum_.evaluate(samples, middle);
  for (size_t b = 0; b < power_.size(); ++b) power_[b] = power[b] * emphasis_[b];
  check(qorsVecMatMul_32f_D2(power_.data(), cosines_.data(), order_ + 1, static_cast<int32_t>(power_.size()), lags_.data(),
                             order_ + 1),
        "qorsVecMatMul_32f_D2");
  lags_[0] += noise * lags_[0];
  // The model of the emphasised spectrum; the factor of the emphasis makes it one of the spectrum itself.
  AllPole model{std::vector<float>(static_cast<size_t>(order_)), 0};
  if (qorsDurbin_32f(lags_.data(), model.a.data(), order_, &model.energy) != qorStatusOk) return {};
  if (pitchHz > 0) fitHarmonics(model, pitchHz);
  model.a.push_back(0);
  for (size_t k = model.a.size() - 1; k > 0; --k) model.a[k] -= pole_ * model.a[k - 1];
  model.a[0] -= pole_;
  return model;
}

std::vector<Resonance> FormantModel::resonances(const AllPole& model) {
  std::vector<Resonance> result;
  if (model.a.empty()) return result;
  // The roots of the frame before are near those of this one.
  if (roots_.size() != model.a.size() || !findRoots(model.a, roots_)) {
    roots_ = guesses(model.a.size());
    if (!findRoots(model.a, roots_)) {
      roots_.clear();
      return result;
    }
  }
  for (const std::complex<double>& root : roots_) {
    const double hertz = std::arg(root) * ceilingHz_ / std::numbers::pi;
    const double bandwidth = -std::log(std::norm(root)) * ceilingHz_ / std::numbers::pi;
    if (hertz < lowestHz || hertz > ceilingHz_ - lowestHz || bandwidth > widest) continue;
    result.push_back({static_cast<float>(hertz), static_cast<float>(bandwidth)});
  }
  std::sort(result.begin(), result.end(), [](const Resonance& a, const Resonance& b) { return a.hertz < b.hertz; });
  return result;
}

std::vector<float> FormantModel::envelope(const AllPole& model, int order) const {
  std::vector<float> result(size_t{1} << order);
  for (size_t i = 0; i < result.size(); ++i) {
    const double angle = std::numbers::pi * static_cast<double>(i) / static_cast<double>(result.size());
    std::complex<double> value = 1;
    for (size_t k = 0; k < model.a.size(); ++k) {
      value += std::polar(static_cast<double>(model.a[k]), -angle * static_cast<double>(k + 1));
    }
    result[i] = static_cast<float>(static_cast<double>(model.energy) / std::norm(value));
  }
  return result;
}

}  // namespace voice
