// Entropy: values, the order of the sum, scale factors, statuses, faults, environment.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/numeric_vectors.h"
#include "qorsr.h"

namespace {

constexpr double kLog2 = 0.693147182464599609375;  // 0.6931472 in float

// Each term has the rounding of its logarithm and its product, each addition one more, of sums that no more than the magnitudes reach.
double bound(std::size_t length, double magnitudes) { return (static_cast<double>(length) + 4) * 0x1p-23 * magnitudes / kLog2; }

TEST(Entropy, Floats) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 4; ++round) {
      std::vector<float> x;
      const double range[] = {1, 1.0 / length, 100, 1e-38};
      for (int32_t i = 0; i < length; ++i) {
        x.push_back(static_cast<float>(random.real(0, range[round])));
        if (random.integer(0, 7) == 0) x.back() = random.integer(0, 1) == 0 ? 0.0F : -0.0F;
      }
      double sum, magnitudes;
      ASSERT_TRUE(model::entropySum(x, 1.0F, sum, magnitudes));
      const kit::Place place = kit::kPlaces[(round + length) % 3];
      const kit::Area<float> source(x, place);
      kit::Area<float> result(1, place);
      ASSERT_EQ(qorsEntropy_32f(source.data(), length, result.data()), qorStatusOk);
      ASSERT_NEAR(static_cast<double>(result[0]), sum / kLog2, bound(x.size(), magnitudes))
          << "length " << length << " round " << round;
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(Entropy, OfAFairCoinIsMinusOne) {
  const float coin[] = {0.5F, 0.5F}, sure[] = {0, 1, 0};
  float result;
  ASSERT_EQ(qorsEntropy_32f(coin, 2, &result), qorStatusOk);
  EXPECT_EQ(result, -1.0F);
  ASSERT_EQ(qorsEntropy_32f(sure, 3, &result), qorStatusOk);
  EXPECT_BITS(result, 0.0F);
}

// Terms far below half a last place of the sum are lost one by one, wherever the large one stands in front of them.
TEST(Entropy, TermsAreAddedInTheirOrder) {
  for (const int32_t at : {0, 1, 5, 16, 40}) {
    std::vector<float> x(500, 0.4F);
    x[static_cast<std::size_t>(at)] = 1e9F;
    float whole, head;
    ASSERT_EQ(qorsEntropy_32f(x.data(), 500, &whole), qorStatusOk);
    ASSERT_EQ(qorsEntropy_32f(x.data(), at + 1, &head), qorStatusOk);
    EXPECT_BITS(whole, head);
  }
}
// A sum goes on where a shorter one ended: each step adds what an element alone gives, up to the quotient's rounding.
TEST(Entropy, ZerosAddNothing) {
  kit::Random random;
  for (const int32_t length : {1, 3, 17, 50}) {
    std::vector<float> dense, sparse;
    for (int32_t i = 0; i < length; ++i) {
      dense.push_back(static_cast<float>(random.real(0, 2)));
      sparse.insert(sparse.end(), static_cast<std::size_t>(random.integer(0, 5)), 0.0F);
      sparse.push_back(dense.back());
    }
    float a, b;
    ASSERT_EQ(qorsEntropy_32f(dense.data(), length, &a), qorStatusOk);
    ASSERT_EQ(qorsEntropy_32f(sparse.data(), static_cast<int32_t>(sparse.size()), &b), qorStatusOk);
    EXPECT_BITS(a, b);
  }
}

TEST(Entropy, ANegativeElementGivesTheDefaultNaN) {
  for (const int32_t length : {1, 5, 16, 33}) {
    for (int32_t at = 0; at < length; ++at) {
      std::vector<float> x(static_cast<std::size_t>(length), 0.25F);
      x[static_cast<std::size_t>(at)] = at % 2 == 0 ? -1e-45F : -std::numeric_limits<float>::infinity();
      float result = 0;
      ASSERT_EQ(qorsEntropy_32f(x.data(), length, &result), qorStatusLogNegative);
      ASSERT_EQ(std::bit_cast<uint32_t>(result), 0xFFC00000U);
    }
  }
}
TEST(Entropy, NaNAndInfinityPass) {
  const float inf = std::numeric_limits<float>::infinity(), x[] = {0.5F, inf},
              y[] = {0.5F, std::numeric_limits<float>::quiet_NaN(), 1};
  float result;
  ASSERT_EQ(qorsEntropy_32f(x, 2, &result), qorStatusOk);
  EXPECT_EQ(result, inf);
  ASSERT_EQ(qorsEntropy_32f(y, 3, &result), qorStatusOk);
  EXPECT_TRUE(std::isnan(result));
}

// ---- 16 bits ----

constexpr int32_t kScaleFactors[] = {0, 1, 7, 15, 31, 32, 33, 47, -1, -10, -31, -32, -40, INT32_MIN, INT32_MAX};

TEST(Entropy, Int16) {
  kit::Random random;
  for (const int32_t length : kit::shortLengths()) {
    for (const int32_t in : kScaleFactors) {
      for (const int32_t out : kScaleFactors) {
        std::vector<int16_t> x;
        for (int32_t i = 0; i < length; ++i)
          x.push_back(static_cast<int16_t>(random.integer(0, 3) == 0 ? 0 : random.integer(0, 32767)));
        double sum, magnitudes;
        ASSERT_TRUE(model::entropySum(x, model::entropyFactor(in), sum, magnitudes));
        const double factor = static_cast<double>(model::entropyFactor(out)), value = factor * sum / kLog2;
        const kit::Place place = kit::kPlaces[length % 3];
        const kit::Area<int16_t> source(x, place);
        kit::Area<int32_t> result(1, place);
        ASSERT_EQ(qorsEntropy_16s32s_Sfs(source.data(), in, length, result.data(), out), qorStatusOk);
        const double limited = std::fmin(std::fmax(value, -2147483648.0), 2147483647.0);
        ASSERT_NEAR(static_cast<double>(result[0]), limited, 1 + factor * bound(x.size(), magnitudes))
            << "length " << length << " scale factors " << in << ", " << out;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}
TEST(Entropy, Int16KnownValues) {
  const int16_t coin[] = {16384, 16384}, four[] = {8192, 8192, 8192, 8192}, bad[] = {5, -1, 7};
  int32_t result = 77;
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(coin, 15, 2, &result, -15), qorStatusOk);
  EXPECT_EQ(result, -32768);
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(four, 15, 4, &result, 0), qorStatusOk);
  EXPECT_EQ(result, -2);
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(coin, 47, 2, &result, -47), qorStatusOk) << "modulo 32";
  EXPECT_EQ(result, -32768);
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(four, 0, 4, &result, -31), qorStatusOk);
  EXPECT_EQ(result, INT32_MAX);
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(coin, 15, 2, &result, -31), qorStatusOk);
  EXPECT_EQ(result, INT32_MIN);
  result = 77;
  ASSERT_EQ(qorsEntropy_16s32s_Sfs(bad, 15, 3, &result, 0), qorStatusLogNegative);
  EXPECT_EQ(result, 77) << "written although an element is negative";
}

TEST(EntropyFaults, EveryMember) {
  struct Args {
    const float* source;
    int32_t length;
    float* result;
  };
  const float source[4] = {1, 2, 3, 4}, negative[4] = {-1, 2, 3, 4};
  float result[1] = {77};
  kit::FaultTable<Args>({source, 4, result}, [](const Args& a) { return qorsEntropy_32f(a.source, a.length, a.result); },
                        {{result, 1}})
      .fault("null source", qorStatusNullPointer, &Args::source, nullptr)
      .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .fault("length negative", qorStatusBadSize, &Args::length, INT32_MIN)
      .check();
  EXPECT_EQ(qorsEntropy_32f(negative, 0, result), qorStatusBadSize);
  struct Short {
    const int16_t* source;
    int32_t length;
    int32_t* result;
  };
  const int16_t shorts[4] = {1, 2, 3, 4}, negatives[4] = {1, 2, -3, 4};
  int32_t whole[1] = {77};
  const auto call = [](const Short& a) { return qorsEntropy_16s32s_Sfs(a.source, 2, a.length, a.result, 0); };
  kit::FaultTable<Short>({shorts, 4, whole}, call, {{whole, 1}})
      .fault("null source", qorStatusNullPointer, &Short::source, nullptr)
      .fault("null result", qorStatusNullPointer, &Short::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Short::length, 0)
      .fault("length negative", qorStatusBadSize, &Short::length, INT32_MIN)
      .fault("negative element", qorStatusLogNegative, &Short::source, negatives)
      .check();
}

TEST(EntropyEnvironment, IsKept) {
  kit::expectEnvironmentKept([] {
    float x[37], result;
    int16_t y[37];
    int32_t whole;
    for (int i = 0; i < 37; ++i) x[i] = static_cast<float>(i), y[i] = static_cast<int16_t>(i);
    qorsEntropy_32f(x, 37, &result);
    qorsEntropy_16s32s_Sfs(y, 3, 37, &whole, -3);
  });
}

}  // namespace
