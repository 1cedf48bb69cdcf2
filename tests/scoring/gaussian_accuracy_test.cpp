// How far scores are from the log density: the errors that the documentation states, in the quadratic term Q, relative to Q. Terms of
// a block-diagonal covariance have either sign, so there the error is relative to the sum of their magnitudes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "kit/accuracy.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int kRounds = 40;
constexpr int32_t kWidest = 100;

// A frame, a mean and (inverse) variances, as features and models have them: differences of either sign, variances over four decades.
template <class T>
struct Case {
  std::vector<T> x, mean, variance;

  Case(kit::Random& random, int32_t width) {
    for (int32_t c = 0; c < width; ++c) {
      x.push_back(static_cast<T>(random.real(-10, 10)));
      mean.push_back(static_cast<T>(random.real(-10, 10)));
      variance.push_back(static_cast<T>(random.scaled(1, 2, -7, 6)));
    }
  }
};
template <>
Case<int16_t>::Case(kit::Random& random, int32_t width) {
  for (int32_t c = 0; c < width; ++c) {
    x.push_back(static_cast<int16_t>(random.integer(-12000, 12000)));
    mean.push_back(static_cast<int16_t>(random.integer(-12000, 12000)));
    variance.push_back(static_cast<int16_t>(random.integer(1, 32767)));
  }
}

long double squaredDifference(long double x, long double m) { return (x - m) * (x - m); }

template <class T>
long double weighted(const Case<T>& c) {
  long double sum = 0;
  for (std::size_t i = 0; i < c.x.size(); ++i) sum += squaredDifference(c.x[i], c.mean[i]) * c.variance[i];
  return sum;
}
template <class T>
long double identity(const Case<T>& c) {
  long double sum = 0;
  for (std::size_t i = 0; i < c.x.size(); ++i) sum += squaredDifference(c.x[i], c.mean[i]);
  return sum;
}
template <class T>
long double direct(const Case<T>& c) {
  long double sum = 0;
  for (std::size_t i = 0; i < c.x.size(); ++i) sum += squaredDifference(c.x[i], c.mean[i]) / c.variance[i];
  return sum;
}

// The largest relative error of Q over all widths; `distance` calls an export on a case and gives Q.
template <class T, class Distance>
kit::LargestError largestError(const Distance& distance, long double (*exact)(const Case<T>&)) {
  kit::LargestError largest;
  kit::Random random = kit::Random::fixed(1);
  for (int32_t width = 1; width <= kWidest; ++width) {
    for (int round = 0; round < kRounds; ++round) {
      const Case<T> c(random, width);
      largest.addRelative(distance(c, width), exact(c));
    }
  }
  return largest;
}

// A distance, and a score without a constant, which is -Q / 2.
template <class T, class R>
auto distanceBy(QorStatus (*call)(const T*, const T*, const T*, int32_t, R*)) {
  return [call](const Case<T>& c, int32_t width) {
    R q = 0;
    EXPECT_EQ(call(c.x.data(), c.mean.data(), c.variance.data(), width, &q), qorStatusOk);
    return static_cast<long double>(q);
  };
}
template <class T, class R>
auto scoreBy(QorStatus (*call)(const T*, const T*, const T*, int32_t, R*, R)) {
  return [call](const Case<T>& c, int32_t width) {
    R score = 0;
    EXPECT_EQ(call(c.x.data(), c.mean.data(), c.variance.data(), width, &score, R(0)), qorStatusOk);
    return -2 * static_cast<long double>(score);
  };
}
template <class T, class R>
auto scoreBy(QorStatus (*call)(const T*, const T*, int32_t, R*, R)) {
  return [call](const Case<T>& c, int32_t width) {
    R score = 0;
    EXPECT_EQ(call(c.x.data(), c.mean.data(), width, &score, R(0)), qorStatusOk);
    return -2 * static_cast<long double>(score);
  };
}
// 16 bits: the scale factor -1 takes back the half.
auto scaledBy(QorStatus (*call)(const int16_t*, const int16_t*, const int16_t*, int32_t, float*, float, int32_t)) {
  return [call](const Case<int16_t>& c, int32_t width) {
    float score = 0;
    EXPECT_EQ(call(c.x.data(), c.mean.data(), c.variance.data(), width, &score, 0, -1), qorStatusOk);
    return -static_cast<long double>(score);
  };
}

TEST(GaussianAccuracy, Float) {
  largestError<float>(distanceBy(qorsMahDistSingle_32f), weighted).expectDocumented(2.6e-7L);
  largestError<float>(scoreBy(qorsLogGaussSingle_IdVar_32f), identity).expectDocumented(1.7e-7L);
  largestError<float>(scoreBy(qorsLogGaussSingle_DirectVar_32f), direct).expectDocumented(2.1e-7L);
}
TEST(GaussianAccuracy, Double) {
  largestError<double>(distanceBy(qorsMahDistSingle_64f), weighted).expectDocumented(4.8e-16L);
  largestError<double>(scoreBy(qorsLogGaussSingle_IdVar_64f), identity).expectDocumented(3.2e-16L);
  largestError<double>(scoreBy(qorsLogGaussSingle_DirectVar_64f), direct).expectDocumented(5.8e-16L);
  largestError<float>(distanceBy(qorsMahDistSingle_32f64f), weighted).expectDocumented(5.1e-16L);
}
TEST(GaussianAccuracy, SixteenBits) {
  largestError<int16_t>(scaledBy(qorsLogGaussSingle_Scaled_16s32f), weighted).expectDocumented(2.8e-7L);
}

// ---- Block-diagonal covariances ----

template <class T, class Matrix>
struct BlockCalls {
  QorStatus (*make)(Matrix**, const T* const*, const int32_t*, int32_t);
  QorStatus (*score)(const T*, const T*, const Matrix*, int32_t, T*, T);
  QorStatus (*release)(Matrix*);
};

template <class T, class Matrix>
kit::LargestError largestBlockError(const BlockCalls<T, Matrix>& calls) {
  kit::LargestError largest;
  kit::Random random = kit::Random::fixed(2);
  for (int32_t size = 1; size <= 13; ++size) {
    for (int32_t count = 1; count <= 6; ++count) {
      const int32_t width = size * count;
      const Case<T> c(random, width);
      const std::vector<int32_t> sizes(static_cast<std::size_t>(count), size);
      std::vector<std::vector<T>> values;
      std::vector<const T*> rows;
      long double q = 0, magnitudes = 0;
      for (int32_t r = 0; r < width; ++r) {
        values.push_back({});
        for (int32_t k = 0; k < size; ++k) {
          const auto column = static_cast<std::size_t>(r / size * size + k), row = static_cast<std::size_t>(r);
          values.back().push_back(static_cast<T>(random.real(-1, 1)));
          const long double term = (static_cast<long double>(c.x[row]) - c.mean[row]) * values.back().back() *
                                   (static_cast<long double>(c.x[column]) - c.mean[column]);
          q += term;
          magnitudes += std::fabs(term);
        }
      }
      for (const auto& row : values) rows.push_back(row.data());
      Matrix* covariance = nullptr;
      T score = 0;
      EXPECT_EQ(calls.make(&covariance, rows.data(), sizes.data(), count), qorStatusOk);
      EXPECT_EQ(calls.score(c.x.data(), c.mean.data(), covariance, width, &score, T(0)), qorStatusOk);
      EXPECT_EQ(calls.release(covariance), qorStatusOk);
      largest.add((-2 * static_cast<long double>(score) - q) / magnitudes);
    }
  }
  return largest;
}

TEST(GaussianAccuracy, FloatBlocks) {
  largestBlockError(BlockCalls<float, BlockDMatrix_32f>{qorsBlockDMatrixInitAlloc_32f, qorsLogGaussSingle_BlockDVar_32f,
                                                        qorsBlockDMatrixFree_32f})
      .expectDocumented(9e-8L);
}
TEST(GaussianAccuracy, DoubleBlocks) {
  largestBlockError(BlockCalls<double, BlockDMatrix_64f>{qorsBlockDMatrixInitAlloc_64f, qorsLogGaussSingle_BlockDVar_64f,
                                                         qorsBlockDMatrixFree_64f})
      .expectDocumented(1.2e-16L);
}

// ---- Integer sums ----

// With inverse variances up to 32767 / (width / 8) and a result within 32 bits nothing wraps, and a Low score lies above the exact one by half an inverse variance for each odd difference, and below by
// less than 1 for each shift: four lanes and up to three pairs and an element behind them.
TEST(GaussianAccuracy, Low) {
  kit::Random random = kit::Random::fixed(3);
  for (int32_t width = 1; width <= kWidest; ++width) {
    for (int round = 0; round < 40; ++round) {
      const auto sf = static_cast<int32_t>(random.integer(0, 15));
      Case<int16_t> c(random, width);
      for (int16_t& v : c.variance) v = static_cast<int16_t>(v % (32767 / std::max(1, width / 8)) + 1);
      for (int16_t& m : c.mean) m = static_cast<int16_t>(m / 32);
      for (int16_t& x : c.x) x = static_cast<int16_t>(x / 32);
      if (std::ldexp(weighted(c), -sf - 1) > 2147483000.0L) continue;
      long double lost = 0;
      for (std::size_t i = 0; i < c.x.size(); ++i) lost += (c.x[i] - c.mean[i]) % 2 != 0 ? c.variance[i] / 2.0L : 0.0L;
      int32_t score = 0;
      ASSERT_EQ(qorsLogGaussSingle_Low_16s32s_Sfs(c.x.data(), c.mean.data(), c.variance.data(), width, &score, 0, sf), qorStatusOk);
      const long double error = score + std::ldexp(weighted(c), -sf - 1);
      ASSERT_LE(error, std::ldexp(lost, -sf)) << "width " << width << " sf " << sf;
      ASSERT_GT(error, -8) << "width " << width << " sf " << sf;
    }
  }
}

// The rule of scale factors: features with f fraction bits, inverse variances with g, scores with q take sf = 2 f + g - q.
TEST(GaussianAccuracy, RuleOfScaleFactors) {
  kit::Random random = kit::Random::fixed(4);
  constexpr int32_t kWidth = 39, kFeatureBits = 9, kVarianceBits = 7;
  for (const int32_t scoreBits : {6, 8, 10, 12}) {
    const int32_t sf = 2 * kFeatureBits + kVarianceBits - scoreBits;
    Case<int16_t> c(random, kWidth);
    long double q = 0;
    for (std::size_t i = 0; i < kWidth; ++i) {
      const double x = random.real(-10, 10), m = random.real(-10, 10), v = random.real(0.5, 50);
      c.x[i] = static_cast<int16_t>(std::lround(std::ldexp(x, kFeatureBits)));
      c.mean[i] = static_cast<int16_t>(std::lround(std::ldexp(m, kFeatureBits)));
      c.variance[i] = static_cast<int16_t>(std::lround(std::ldexp(v, kVarianceBits)));
      q += squaredDifference(x, m) * static_cast<long double>(v);
    }
    const double val = -12.5;
    int32_t score = 0;
    ASSERT_EQ(qorsLogGaussSingle_16s32s_Sfs(c.x.data(), c.mean.data(), c.variance.data(), kWidth, &score,
                                            static_cast<int32_t>(std::ldexp(val, scoreBits)), sf),
              qorStatusOk);
    EXPECT_NEAR(static_cast<double>(std::ldexp(static_cast<long double>(score), -scoreBits)), static_cast<double>(val - q / 2),
                static_cast<double>(q) * 0.01);
    float real = 0;
    ASSERT_EQ(qorsLogGaussSingle_Scaled_16s32f(c.x.data(), c.mean.data(), c.variance.data(), kWidth, &real, static_cast<float>(val),
                                               2 * kFeatureBits + kVarianceBits),
              qorStatusOk);
    EXPECT_NEAR(static_cast<double>(real), static_cast<double>(val - q / 2), static_cast<double>(q) * 0.01);
  }
}

// ---- Mixtures ----

// 1 to 64 Gaussians with scores of some dozens below zero. In float the error is relative to the result; in double it is absolute,
// since what is dropped is.
TEST(GaussianAccuracy, Mixture) {
  kit::LargestError largest;
  kit::Random random = kit::Random::fixed(5);
  constexpr int32_t kWidth = 39;
  for (int32_t count = 1; count <= 64; ++count) {
    for (int round = 0; round < 20; ++round) {
      std::vector<float> x, means, variances, vals;
      for (int32_t c = 0; c < kWidth; ++c) x.push_back(static_cast<float>(random.real(-1, 1)));
      long double density = 0;
      for (int32_t g = 0; g < count; ++g) {
        long double q = 0;
        for (const float feature : x) {
          means.push_back(static_cast<float>(random.real(-1, 1)));
          variances.push_back(static_cast<float>(random.real(1, 20)));
          q += squaredDifference(feature, means.back()) * variances.back();
        }
        vals.push_back(static_cast<float>(random.real(-20, 20)));
        density += std::exp(vals.back() - q / 2);
      }
      float result = 0;
      ASSERT_EQ(qorsLogGaussMixture_32f_D2(x.data(), means.data(), variances.data(), count, kWidth, kWidth, vals.data(), &result),
                qorStatusOk);
      largest.addRelative(result, std::log(density));

      const std::vector<double> x64(x.begin(), x.end()), means64(means.begin(), means.end());
      const std::vector<double> variances64(variances.begin(), variances.end()), vals64(vals.begin(), vals.end());
      double result64 = 0;
      ASSERT_EQ(qorsLogGaussMixture_64f_D2(x64.data(), means64.data(), variances64.data(), count, kWidth, kWidth, vals64.data(),
                                           &result64),
                qorStatusOk);
      EXPECT_LE(std::fabs(result64 - std::log(density)), 1e-10L * count);
    }
  }
  largest.expectDocumented(2.5e-7L);
}

}  // namespace
