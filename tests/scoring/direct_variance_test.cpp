// Single-frame scorers with variances, and with block-diagonal inverse covariances.
#include <gtest/gtest.h>

#include <functional>

#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "model/convert.h"
#include "scoring/gaussian_cases.h"

namespace {

using model::Frame;

// ---- Variances, not their inverses ----

template <class T>
struct Case {
  kit::Area<T> x, mean, variance;
  int32_t sf;
  bool zero;

  Frame<T> frame() const { return {x.values(), mean.values(), variance.values()}; }
};

template <class T>
void forEachCase(const std::function<void(const Case<T>&, int32_t, kit::Random&)>& check) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (int round = 0; round < 9; ++round) {
      const auto kind = kit::kKinds[round % 3];
      const auto place = kit::kPlaces[round / 3];
      Case<T> c{{random.vector<T>(n, kind), place},
                {random.vector<T>(n, kind), place},
                {random.vector<T>(n, kind), place},
                cases::scaleFactor(random),
                false};
      if (round % 2 == 0) {
        c.variance[random.integer(0, n - 1)] = round % 4 == 0 ? T(0) : -T(0);
      }
      for (const T v : c.variance.values()) c.zero = c.zero || v == T(0);
      check(c, n, random);
      if (testing::Test::HasFailure()) {
        FAIL() << "length " << n << " round " << round << " sf " << c.sf;
      }
    }
  }
}

// The reciprocal is formed first, in float.
template <class T>
float reciprocalSum(const Frame<T>& f) {
  return model::realSum<float>(f, [&](float square, std::size_t c) { return square * (1.0F / static_cast<float>(f.variance[c])); });
}
template <class T>
double quotientSum(const Frame<T>& f) {
  return model::realSum<double>(f, [&](double square, std::size_t c) { return square / static_cast<double>(f.variance[c]); });
}
QorStatus warning(bool zero) { return zero ? qorStatusDivideByZero : qorStatusOk; }

TEST(DirectVar, Float) {
  forEachCase<float>([](const Case<float>& c, int32_t n, kit::Random& random) {
    const float val = cases::val<float>(random);
    float result = 77;
    ASSERT_EQ(qorsLogGaussSingle_DirectVar_32f(c.x.data(), c.mean.data(), c.variance.data(), n, &result, val), warning(c.zero));
    ASSERT_BITS(result, (val + val - reciprocalSum(c.frame())) * 0.5F);
  });
}

TEST(DirectVar, DoubleGivesTheIeeeResult) {
  forEachCase<double>([](const Case<double>& c, int32_t n, kit::Random& random) {
    const double val = cases::val<double>(random);
    double result = 77;
    ASSERT_EQ(qorsLogGaussSingle_DirectVar_64f(c.x.data(), c.mean.data(), c.variance.data(), n, &result, val), qorStatusOk);
    ASSERT_BITS(result, val - quotientSum(c.frame()) * 0.5);
  });
}

TEST(DirectVar, FloatDataInDoubleWriteNothingOnAZero) {
  forEachCase<float>([](const Case<float>& c, int32_t n, kit::Random& random) {
    const double val = cases::val<double>(random);
    double result = 77;
    ASSERT_EQ(qorsLogGaussSingle_DirectVar_32f64f(c.x.data(), c.mean.data(), c.variance.data(), n, &result, val), warning(c.zero));
    ASSERT_BITS(result, c.zero ? 77.0 : val - quotientSum(c.frame()) * 0.5);
  });
}

TEST(DirectVar, Int16) {
  forEachCase<int16_t>([](const Case<int16_t>& c, int32_t n, kit::Random& random) {
    const int32_t val = cases::val<int32_t>(random);
    const float sum = reciprocalSum(c.frame()), realVal = cases::val<float>(random);
    const int32_t e = c.sf == INT32_MAX ? c.sf : c.sf + 1;
    const int64_t exact = int64_t{val} - model::convertScaled<int32_t>(sum, 1, e);
    const auto expected = static_cast<int32_t>(exact < INT32_MIN ? INT32_MIN : exact > INT32_MAX ? INT32_MAX : exact);
    int32_t result = 77;
    ASSERT_EQ(qorsLogGaussSingle_DirectVar_16s32s_Sfs(c.x.data(), c.mean.data(), c.variance.data(), n, &result, val, c.sf),
              warning(c.zero));
    ASSERT_BITS(result, expected);
    float real = 77;
    ASSERT_EQ(qorsLogGaussSingle_DirectVarScaled_16s32f(c.x.data(), c.mean.data(), c.variance.data(), n, &real, realVal, c.sf),
              warning(c.zero));
    ASSERT_BITS(real, realVal - sum * model::floatPower(int64_t{c.sf} + 1));
  });
}

TEST(DirectVar, ADenormalVarianceIsNotZero) {
  const float x[] = {0}, mean[] = {0}, v[] = {1e-42F};
  float result = 0;
  EXPECT_EQ(qorsLogGaussSingle_DirectVar_32f(x, mean, v, 1, &result, 1), qorStatusOk);
}

TEST(DirectVar, EveryRefusedAllocationIsReported) {
  const float x[3] = {1, 2, 3}, v[3] = {1, 1, 1};
  const int16_t x16[3] = {1, 2, 3};
  float result = 0;
  int32_t integer = 0;
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsLogGaussSingle_DirectVar_32f(x, x, v, 3, &result, 0); }), 1);
  EXPECT_EQ(
      kit::expectEveryRefusalReported([&] { return qorsLogGaussSingle_DirectVarScaled_16s32f(x16, x16, x16, 3, &result, 0, 0); }),
      1);
  EXPECT_EQ(
      kit::expectEveryRefusalReported([&] { return qorsLogGaussSingle_DirectVar_16s32s_Sfs(x16, x16, x16, 3, &integer, 0, 0); }),
      1);
}

// ---- Block-diagonal inverse covariances ----

template <class T, class Record>
class Covariance {
 public:
  using Init = QorStatus (*)(Record**, const T* const*, const int32_t*, int32_t);
  using Free = QorStatus (*)(Record*);

  Covariance(kit::Random& random, const std::vector<int32_t>& sizes, kit::Random::Kind kind, Init init, Free release)
      : sizes_(sizes), release_(release) {
    std::vector<const T*> pointers;
    for (const int32_t size : sizes) {
      for (int32_t r = 0; r < size; ++r) rows_.push_back(random.vector<T>(size, kind));
    }
    for (const auto& row : rows_) pointers.push_back(row.data());
    EXPECT_EQ(init(&record_, pointers.data(), sizes.data(), static_cast<int32_t>(sizes.size())), qorStatusOk);
  }
  ~Covariance() { release_(record_); }
  Covariance(const Covariance&) = delete;
  Covariance& operator=(const Covariance&) = delete;

  const Record* record() const { return record_; }
  int32_t dimension() const { return static_cast<int32_t>(rows_.size()); }

  // Lanes of y, weighted with d[r] and summed in lanes: eight in float, four in double.
  template <class Sum, class D>
  Sum sum(const std::vector<D>& d) const {
    const std::size_t lanes = 32 / sizeof(Sum);
    std::vector<Sum> total(lanes, Sum(0));
    std::size_t row = 0;
    for (const int32_t size : sizes_) {
      const std::size_t offset = row;
      for (int32_t r = 0; r < size; ++r, ++row) {
        std::vector<Sum> y(lanes, Sum(0));
        for (std::size_t j = 0; j < static_cast<std::size_t>(size); ++j) {
          y[j % lanes] = y[j % lanes] + static_cast<Sum>(d[offset + j]) * static_cast<Sum>(rows_[row][j]);
        }
        for (std::size_t l = 0; l < lanes; ++l) total[l] = total[l] + y[l] * static_cast<Sum>(d[row]);
      }
    }
    return model::joinLanes(total);
  }

 private:
  std::vector<int32_t> sizes_;
  std::vector<std::vector<T>> rows_;
  Record* record_ = nullptr;
  Free release_;
};
using Covariance32 = Covariance<float, BlockDMatrix_32f>;
using Covariance64 = Covariance<double, BlockDMatrix_64f>;
using Covariance16 = Covariance<int16_t, BlockDMatrix_16s>;

const std::vector<std::vector<int32_t>> kBlockSizes = {{1},          {2},           {3},          {1, 1},       {4, 3}, {8},
                                                       {13, 13, 13}, {5, 9, 1, 16}, {40, 40, 31}, {40, 40, 32}, {120}};

template <class T, class C>
void forEachCovariance(typename C::Init init, typename C::Free release,
                       const std::function<void(const C&, const std::vector<T>&, const std::vector<T>&, kit::Random&)>& check) {
  kit::Random random;
  for (const auto& sizes : kBlockSizes) {
    for (const auto kind : kit::kKinds) {
      const C covariance(random, sizes, kind, init, release);
      const std::vector<T> x = random.vector<T>(covariance.dimension(), kind);  // in an order of their own: compilers differ
      const std::vector<T> mean = random.vector<T>(covariance.dimension(), kind);
      check(covariance, x, mean, random);
    }
  }
}

template <class To, class T>
std::vector<To> differences(const std::vector<T>& x, const std::vector<T>& mean) {
  std::vector<To> d;
  for (std::size_t i = 0; i < x.size(); ++i) {
    if constexpr (std::is_same_v<T, int16_t>) {
      d.push_back(static_cast<To>(model::saturated(x[i] - mean[i])));
    } else {
      d.push_back(static_cast<To>(x[i]) - static_cast<To>(mean[i]));
    }
  }
  return d;
}

TEST(BlockDVar, Float) {
  forEachCovariance<float, Covariance32>(
      qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f,
      [](const auto& c, const auto& x, const auto& m, kit::Random& random) {
        const float val = cases::val<float>(random);
        const double wideVal = cases::val<double>(random);
        float result = 77;
        double wide = 77;
        ASSERT_EQ(qorsLogGaussSingle_BlockDVar_32f(x.data(), m.data(), c.record(), c.dimension(), &result, val), qorStatusOk);
        const double sum = static_cast<double>(c.template sum<float>(differences<float>(x, m)));
        ASSERT_BITS(result, static_cast<float>(static_cast<double>(val) - sum * 0.5));
        ASSERT_EQ(qorsLogGaussSingle_BlockDVar_32f64f(x.data(), m.data(), c.record(), c.dimension(), &wide, wideVal), qorStatusOk);
        ASSERT_BITS(wide, wideVal - c.template sum<double>(differences<double>(x, m)) * 0.5);
      });
}

TEST(BlockDVar, Double) {
  forEachCovariance<double, Covariance64>(
      qorsBlockDMatrixInitAlloc_64f, qorsBlockDMatrixFree_64f,
      [](const auto& c, const auto& x, const auto& m, kit::Random& random) {
        const double val = cases::val<double>(random);
        double result = 77;
        ASSERT_EQ(qorsLogGaussSingle_BlockDVar_64f(x.data(), m.data(), c.record(), c.dimension(), &result, val), qorStatusOk);
        ASSERT_BITS(result, val - c.template sum<double>(differences<double>(x, m)) * 0.5);
      });
}

TEST(BlockDVar, Int16) {
  forEachCovariance<int16_t, Covariance16>(
      qorsBlockDMatrixInitAlloc_16s, qorsBlockDMatrixFree_16s,
      [](const auto& c, const auto& x, const auto& m, kit::Random& random) {
        const float sum = c.template sum<float>(differences<int16_t>(x, m));
        for (const int32_t sf : cases::kScaleFactors) {
          const int32_t val = cases::val<int32_t>(random);
          const float realVal = cases::val<float>(random);
          const float half = sum * model::floatPower(sf) * 0.5F, r = static_cast<float>(val) - half;
          int32_t result = 77;
          float real = 77;
          ASSERT_EQ(qorsLogGaussSingle_BlockDVar_16s32s_Sfs(x.data(), m.data(), c.record(), c.dimension(), &result, val, sf),
                    qorStatusOk);
          ASSERT_BITS(result, r > 2147483648.0F ? INT32_MAX : model::truncated(r)) << "sf " << sf;
          ASSERT_EQ(qorsLogGaussSingle_BlockDVarScaled_16s32f(x.data(), m.data(), c.record(), c.dimension(), &real, realVal, sf),
                    qorStatusOk);
          ASSERT_BITS(real, realVal - half) << "sf " << sf;
        }
      });
}

TEST(BlockDVar, ADiagonalMatrixIsADiagonalGaussian) {
  const float diagonal[] = {2, 3, 0.5F}, x[] = {1, 5, -3}, mean[] = {0, 2, 1};
  const float* rows[] = {diagonal, diagonal + 1, diagonal + 2};
  const int32_t sizes[] = {1, 1, 1};
  BlockDMatrix_32f* record = nullptr;
  ASSERT_EQ(qorsBlockDMatrixInitAlloc_32f(&record, rows, sizes, 3), qorStatusOk);
  float block = 0, single = 0;
  ASSERT_EQ(qorsLogGaussSingle_BlockDVar_32f(x, mean, record, 3, &block, 10), qorStatusOk);
  ASSERT_EQ(qorsLogGaussSingle_32f(x, mean, diagonal, 3, &single, 10), qorStatusOk);
  EXPECT_EQ(block, single);
  qorsBlockDMatrixFree_32f(record);
}

TEST(BlockDVar, ScratchComesFromTheHeapFrom112ElementsOn) {
  kit::Random random;
  for (const int32_t n : {111, 112}) {
    const Covariance32 c(random, {n}, kit::Random::kSmall, qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f);
    const std::vector<float> x = random.vector<float>(n);
    float result = 0;
    const int64_t held = kit::Core::outstanding(), before = kit::Core::calls();
    EXPECT_EQ(qorsLogGaussSingle_BlockDVar_32f(x.data(), x.data(), c.record(), n, &result, 0), qorStatusOk);
    EXPECT_EQ(kit::Core::calls() - before, n < 112 ? 0 : 1);
    if (n >= 112) {
      kit::Core::refuse(0);
      result = 77;
      EXPECT_EQ(qorsLogGaussSingle_BlockDVar_32f(x.data(), x.data(), c.record(), n, &result, 0), qorStatusNoMemory);
      EXPECT_EQ(result, 77);
      kit::Core::refuseNone();
    }
    EXPECT_EQ(kit::Core::outstanding(), held);
  }
}

// The record keeps its dimension in 16 bits. Where that is less than the blocks hold, the blocks within the length are scored.
TEST(BlockDVar, BlocksBehindTheLengthAreNotScored) {
  std::vector<int32_t> sizes(16385, 4);
  sizes[0] = 2;  // 65538 rows, of which 16 bits keep 2
  const float ones[4] = {1, 1, 1, 1}, x[2] = {1, 2}, mean[2] = {0, 0};
  const std::vector<const float*> rows(65538, ones);
  BlockDMatrix_32f* record = nullptr;
  ASSERT_EQ(qorsBlockDMatrixInitAlloc_32f(&record, rows.data(), sizes.data(), 16385), qorStatusOk);
  float result = 77;
  double wide = 77;
  EXPECT_EQ(qorsLogGaussSingle_BlockDVar_32f(x, mean, record, 2, &result, 10), qorStatusOk);
  EXPECT_EQ(qorsLogGaussSingle_BlockDVar_32f64f(x, mean, record, 2, &wide, 10), qorStatusOk);
  EXPECT_BITS(result, 10 - 4.5F);
  EXPECT_BITS(wide, 10 - 4.5);
  qorsBlockDMatrixFree_32f(record);
}

TEST(BlockDVar, AnotherDimensionIsRefusedBeforeAnythingIsAllocated) {
  kit::Random random;
  const Covariance32 c(random, {60, 60}, kit::Random::kSmall, qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f);
  const std::vector<float> x(121);
  float result = 77;
  const int64_t before = kit::Core::calls();
  for (const int32_t n : {119, 121}) {
    EXPECT_EQ(qorsLogGaussSingle_BlockDVar_32f(x.data(), x.data(), c.record(), n, &result, 0), qorStatusBadSize);
  }
  EXPECT_EQ(kit::Core::calls(), before);
  EXPECT_EQ(result, 77);
}

}  // namespace
