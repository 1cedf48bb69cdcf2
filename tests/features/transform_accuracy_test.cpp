// How far the magnitudes of a transform front are from those of the discrete Fourier transform: the errors that the documentation
// states, relative to the largest magnitude of the frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <vector>

#include "kit/accuracy.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr long double kPi = 3.14159265358979323846264338327950288L;
using Complex = std::complex<long double>;

// The transform by halves, in extended precision; roots[k] = exp(-2 pi i k / size of the whole).
std::vector<Complex> transformed(const std::vector<Complex>& x, const std::vector<Complex>& roots) {
  const std::size_t n = x.size(), half = n / 2;
  if (n == 1) return x;
  std::vector<Complex> even, odd;
  for (std::size_t i = 0; i < n; ++i) (i % 2 == 0 ? even : odd).push_back(x[i]);
  even = transformed(even, roots);
  odd = transformed(odd, roots);
  std::vector<Complex> result(n);
  for (std::size_t k = 0; k < half; ++k) {
    const Complex turned = odd[k] * roots[k * (roots.size() / n)];
    result[k] = even[k] + turned;
    result[half + k] = even[k] - turned;
  }
  return result;
}

std::vector<long double> magnitudes(const std::vector<float>& frame) {
  std::vector<Complex> roots;
  for (std::size_t k = 0; k < frame.size(); ++k) {
    const long double angle = -2 * kPi * static_cast<long double>(k) / static_cast<long double>(frame.size());
    roots.emplace_back(std::cos(angle), std::sin(angle));
  }
  std::vector<long double> result;
  for (const Complex& bin : transformed({frame.begin(), frame.end()}, roots)) result.push_back(std::abs(bin));
  return result;
}

// A bank whose filters pass one bin each: all bins of short frames, 255 of long ones.
class Bins {
 public:
  explicit Bins(int32_t length) : count_(std::min(length / 2 - 1, 255)), step_(length / 2 / (count_ + 1)) {
    int32_t order = 0;
    EXPECT_EQ(qorsMelFBankInitAlloc_32f(&bank_, &order, length, 16000, 20, 8000, count_, 1127.01048F, 700,
                                        qorFBankIndexShaped | qorFBankTransform),
              qorStatusOk);
    std::vector<int32_t> centers;
    for (int32_t k = 0; k <= count_ + 1; ++k) centers.push_back(k * step_);
    EXPECT_EQ(qorsFBankSetCenters_32f(bank_, centers.data()), qorStatusOk);
    std::vector<float> weights(2 * static_cast<std::size_t>(step_) + 1, 0.0F);
    weights[static_cast<std::size_t>(step_)] = 1;
    for (int32_t k = 1; k <= count_; ++k) EXPECT_EQ(qorsFBankSetCoeffs_32f(bank_, k, weights.data()), qorStatusOk);
  }
  ~Bins() { EXPECT_EQ(qorsFBankFree_32f(bank_), qorStatusOk); }
  Bins(const Bins&) = delete;
  Bins& operator=(const Bins&) = delete;

  // Adds the errors of a frame's magnitudes, relative to the largest of them.
  void addErrors(const std::vector<float>& frame, kit::LargestError* largest) const {
    std::vector<float> result(static_cast<std::size_t>(count_));
    EXPECT_EQ(qorsEvalFBank_32f(frame.data(), result.data(), bank_), qorStatusOk);
    const std::vector<long double> exact = magnitudes(frame);
    const long double peak = *std::max_element(exact.begin(), exact.end());
    for (int32_t k = 1; k <= count_; ++k) {
      largest->add((result[static_cast<std::size_t>(k) - 1] - exact[static_cast<std::size_t>(k * step_)]) / peak);
    }
  }

 private:
  int32_t count_, step_;
  FBankState_32f* bank_ = nullptr;
};

// White noise, tones on and between bins, noise under a strong tone, and an impulse.
std::vector<std::vector<float>> frames(int32_t length) {
  kit::Random random = kit::Random::fixed(static_cast<uint64_t>(length));
  std::vector<std::vector<float>> all;
  for (int kind = 0; kind < (length <= 1024 ? 24 : 6); ++kind) {
    const double noise = kind % 3 == 1 ? 0 : 1, tone = kind % 3 == 0 ? 0 : 100, frequency = random.real(0, length / 2.0);
    std::vector<float> frame;
    for (int32_t i = 0; i < length; ++i) {
      const double angle = std::fmod((kind % 2 == 0 ? std::floor(frequency) : frequency) * i / length, 1.0) * 6.283185307179586;
      frame.push_back(static_cast<float>(noise * random.real(-1, 1) + tone * std::cos(angle)));
    }
    all.push_back(frame);
  }
  all.emplace_back(static_cast<std::size_t>(length), 0.0F);
  all.back()[static_cast<std::size_t>(length) / 3] = 0.7F;
  return all;
}

kit::LargestError largestError(int32_t least, int32_t most) {
  kit::LargestError largest;
  for (int32_t length = least; length <= most; length *= 2) {
    const Bins bins(length);
    for (const std::vector<float>& frame : frames(length)) bins.addErrors(frame, &largest);
  }
  return largest;
}

TEST(TransformAccuracy, UpTo16384) { largestError(4, 16384).expectDocumented(2.7e-7L); }

}  // namespace
