// How far log-domain addition is from log1p(exp(d)): the errors that the documentation states, measured on a dense sweep of d.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "kit/accuracy.h"
#include "model/log_arithmetic.h"
#include "qorsr.h"

namespace {

constexpr int kPoints = 1000000;

// Point i of a sweep from 0 to the difference where the smaller term is dropped.
double pointOf(int i, double drop) { return drop * (i + 0.5) / kPoints; }

template <class T>
long double errorAt(T d, T result) {
  return std::fabs(static_cast<long double>(result) - std::log1p(std::exp(static_cast<long double>(d))));
}

// The larger term is 0, so that the result is log(1 + exp(d)) itself.
template <class T>
kit::LargestError largestError(QorStatus (*call)(const T*, T*, int32_t, int32_t), int32_t hint, double drop) {
  constexpr int kBlock = 1000;
  const std::vector<T> zeros(kBlock, T(0));
  std::vector<T> d(kBlock), result;
  kit::LargestError largest;
  for (int first = 0; first < kPoints; first += kBlock) {
    for (int i = 0; i < kBlock; ++i) d[static_cast<std::size_t>(i)] = static_cast<T>(pointOf(first + i, drop));
    result = d;
    EXPECT_EQ(call(zeros.data(), result.data(), kBlock, hint), qorStatusOk);
    for (std::size_t i = 0; i < d.size(); ++i) largest.add(errorAt(d[i], result[i]));
  }
  return largest;
}

// The same of a polynomial in double, without the rounding of an export.
kit::LargestError largestError(double (*logAdd)(double, double), double drop) {
  kit::LargestError largest;
  for (int i = 0; i < kPoints; ++i) {
    const double d = pointOf(i, drop);
    largest.add(errorAt(d, logAdd(0.0, d)));
  }
  return largest;
}

TEST(LogAddAccuracy, FloatPolynomials) {
  largestError(model::logAddFloatRangesInDouble, model::FloatRanges::drop).expectDocumented(4.6e-9L);
}
TEST(LogAddAccuracy, DoublePolynomialsByParity) {
  largestError(model::logAddDoubleByParity, model::DoubleRanges::drop).expectDocumented(3.8e-14L);
}
TEST(LogAddAccuracy, Accurate) { largestError(qorsLogAdd_32f, 0, model::FloatRanges::drop).expectDocumented(3.2e-8L); }
TEST(LogAddAccuracy, Fast) { largestError(qorsLogAdd_32f, 1, model::FloatRanges::drop).expectDocumented(1.5e-7L); }
TEST(LogAddAccuracy, Double) { largestError(qorsLogAdd_64f, 0, model::DoubleRanges::drop).expectDocumented(5.1e-15L); }

}  // namespace
