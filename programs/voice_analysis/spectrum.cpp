#include "spectrum.h"

#include <cmath>
#include <numbers>

#include "common/fault.h"

namespace voice {
namespace {

constexpr int slack = 32;  // of a transform over its window, so that the first lags of its autocorrelation do not wrap
constexpr int shortest = 64;

}  // namespace

Spectrum::Spectrum(int rate, double windowSeconds) : rate_(rate) {
  const int count = std::max(2, static_cast<int>(windowSeconds * rate));
  for (length_ = shortest; length_ < count + slack;) length_ *= 2;
  bank_ = program::makeSpectrum(length_, rate);
  double energy = 0;
  for (int i = 0; i < count; ++i) {
    window_.push_back(static_cast<float>(0.5 - 0.5 * std::cos(2 * std::numbers::pi * (i + 0.5) / count)));
    energy += static_cast<double>(window_.back()) * static_cast<double>(window_.back());
  }
  for (float& value : window_) value /= static_cast<float>(std::sqrt(energy));
  frame_.resize(static_cast<size_t>(length_));
  power_.resize(static_cast<size_t>(length_) / 2 + 1);
}

const std::vector<float>& Spectrum::evaluate(const Padded<float>& samples, double middle) {
  const auto begin = static_cast<std::ptrdiff_t>(std::lround(middle * rate_)) - static_cast<std::ptrdiff_t>(window_.size() / 2);
  const float* const from = samples.at(begin);
  for (size_t i = 0; i < window_.size(); ++i) frame_[i] = from[i] * window_[i];
  program::check(qorsEvalFBank_32f(frame_.data(), power_.data() + 1, bank_.get()), "qorsEvalFBank_32f");
  for (float& value : power_) value *= value;
  return power_;
}

}  // namespace voice
