// How far cepstral coefficients are from their formula: the error that the documentation states, relative to |lifter| times the sum of
// the magnitudes of the inputs, which bounds the coefficient.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "kit/accuracy.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr long double kPi = 3.14159265358979323846264338327950288L;

// Inputs as logarithms of filter outputs have them, all of one sign, or of either sign.
TEST(DctLifterAccuracy, Float) {
  kit::LargestError cosines, order0;
  kit::Random random = kit::Random::fixed();
  for (int32_t n = 1; n <= 64; ++n) {
    const std::vector<float> weights(static_cast<std::size_t>(n), 1.0F);
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(qorsDCTLifterInitAlloc_MulC0_32f(&state, n, weights.data(), n), qorStatusOk);
    for (int round = 0; round < 20; ++round) {
      const double low = round % 2 == 0 ? -20 : 5;
      std::vector<float> x, y(static_cast<std::size_t>(n) + 1);
      long double magnitudes = 0, sum = 0;
      for (int32_t j = 0; j < n; ++j) {
        x.push_back(static_cast<float>(random.real(low, 20)));
        magnitudes += std::fabs(static_cast<long double>(x.back()));
        sum += x.back();
      }
      ASSERT_EQ(qorsDCTLifter_32f(x.data(), y.data(), state), qorStatusOk);
      for (int32_t i = 1; i <= n; ++i) {
        long double exact = 0;
        for (int32_t j = 0; j < n; ++j) exact += x[static_cast<std::size_t>(j)] * std::cos(kPi * i * (j + 0.5L) / n);
        cosines.add((y[static_cast<std::size_t>(i) - 1] - exact) / magnitudes);
      }
      order0.add((y.back() - sum) / magnitudes);
    }
    EXPECT_EQ(qorsDCTLifterFree_32f(state), qorStatusOk);
  }
  cosines.expectDocumented(8e-8L);
  order0.expectDocumented(3.3e-7L);
}

// The raised sine, relative to the largest weight.
TEST(DctLifterAccuracy, Lifter) {
  kit::LargestError largest;
  for (int32_t length = 1; length <= 40; ++length) {
    constexpr int32_t kOrders = 40;
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(qorsDCTLifterInitAlloc_32f(&state, kOrders, kOrders, length, 1.0F), qorStatusOk);
    for (int32_t i = 1; i <= kOrders; ++i) {
      // The input that the cosine of order i at j = 0 weights alone.
      std::vector<float> x(kOrders, 0.0F), y(kOrders);
      x[0] = 1;
      ASSERT_EQ(qorsDCTLifter_32f(x.data(), y.data(), state), qorStatusOk);
      const long double weight = 1 + length / 2.0L * std::sin(kPi * i / length);
      const long double exact = weight * std::cos(kPi * i * 0.5L / kOrders);
      largest.add((y[static_cast<std::size_t>(i) - 1] - exact) / (1 + length / 2.0L));
    }
    EXPECT_EQ(qorsDCTLifterFree_32f(state), qorStatusOk);
  }
  largest.expectDocumented(9e-8L);
}

}  // namespace
