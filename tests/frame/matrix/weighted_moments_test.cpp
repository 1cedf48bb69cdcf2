// Weighted means and variances of columns: bits against the plain model, faults, environment.
#include "model/weighted_moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/table.h"
#include "qorsr.h"

namespace {

constexpr int32_t kHeights[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 17, 100};

// The members of one element type.
template <class T>
struct Members {
  QorStatus (*mean)(const T*, int32_t, const T*, int32_t, T*, int32_t);
  QorStatus (*meanL)(const T* const*, const T*, int32_t, T*, int32_t);
  QorStatus (*var)(const T*, int32_t, const T*, int32_t, const T*, T*, int32_t);
  QorStatus (*varL)(const T* const*, const T*, int32_t, const T*, T*, int32_t);
  QorStatus (*meanVar)(const T*, int32_t, const T*, int32_t, T*, T*, int32_t);
  QorStatus (*meanVarL)(const T* const*, const T*, int32_t, T*, T*, int32_t);
};
constexpr Members<float> kFloat{qorsWeightedMeanColumn_32f_D2, qorsWeightedMeanColumn_32f_D2L,   qorsWeightedVarColumn_32f_D2,
                                qorsWeightedVarColumn_32f_D2L, qorsWeightedMeanVarColumn_32f_D2, qorsWeightedMeanVarColumn_32f_D2L};
constexpr Members<double> kDouble{qorsWeightedMeanColumn_64f_D2,    qorsWeightedMeanColumn_64f_D2L,
                                  qorsWeightedVarColumn_64f_D2,     qorsWeightedVarColumn_64f_D2L,
                                  qorsWeightedMeanVarColumn_64f_D2, qorsWeightedMeanVarColumn_64f_D2L};

template <class T>
void expectShape(const Members<T>& f, kit::Random& random, int32_t height, int32_t width, kit::Place place) {
  kit::Matrix<T> m(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
  m.fill(random, kit::kKinds[random.integer(0, 2)]);
  const kit::Area<T> weights(random.vector<T>(height, kit::kKinds[random.integer(0, 5) % 3]), place),
      given(random.vector<T>(width), place);
  const auto table = model::tableOf<T>(m);
  const std::vector<T> w = weights.values();
  std::vector<T> means, variances, onePass;
  for (std::size_t c = 0; c < static_cast<std::size_t>(width); ++c) {
    means.push_back(model::weightedMean(table, w, c));
    variances.push_back(model::weightedVariance(table, w, c, given[static_cast<int64_t>(c)]));
    onePass.push_back(model::weightedVarianceInOnePass(table, w, c));
  }
  kit::Area<T> mean(width, place), variance(width, place);
  const auto reset = [&] {
    mean.fill(T(77));
    variance.fill(T(77));
  };
  reset();
  ASSERT_EQ(f.mean(m.block(), m.stride(), weights.data(), height, mean.data(), width), qorStatusOk);
  ASSERT_EQ(f.var(m.block(), m.stride(), weights.data(), height, given.data(), variance.data(), width), qorStatusOk);
  ASSERT_BITS(mean.values(), means);
  ASSERT_BITS(variance.values(), variances);
  reset();
  ASSERT_EQ(f.meanL(m.constRows(), weights.data(), height, mean.data(), width), qorStatusOk);
  ASSERT_EQ(f.varL(m.constRows(), weights.data(), height, given.data(), variance.data(), width), qorStatusOk);
  ASSERT_BITS(mean.values(), means);
  ASSERT_BITS(variance.values(), variances);
  reset();
  ASSERT_EQ(f.meanVar(m.block(), m.stride(), weights.data(), height, mean.data(), variance.data(), width), qorStatusOk);
  ASSERT_BITS(mean.values(), means);
  ASSERT_BITS(variance.values(), onePass);
  reset();
  ASSERT_EQ(f.meanVarL(m.constRows(), weights.data(), height, mean.data(), variance.data(), width), qorStatusOk);
  ASSERT_BITS(mean.values(), means);
  ASSERT_BITS(variance.values(), onePass);
  ASSERT_TRUE(mean.edgesKept() && variance.edgesKept() && m.gapsKept());
}

template <class T>
void expectModel(const Members<T>& f) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      expectShape(f, random, height, width, kit::kPlaces[(width + height) % 3]);
      if (testing::Test::HasFailure()) FAIL() << "height " << height << " width " << width;
    }
  }
  for (const int32_t width : {201, 5000}) expectShape(f, random, 1001, width, kit::Place::kAtGuard);  // in tiles of rows
}

TEST(WeightedMoments, Float) { expectModel(kFloat); }
TEST(WeightedMoments, Double) { expectModel(kDouble); }

TEST(WeightedMoments, WeightsOfZeroGiveZero) {
  const float x[] = {1, -2, 3, -4, 5, -6}, weights[] = {0, 0, 0};
  float mean[2];
  ASSERT_EQ(qorsWeightedMeanColumn_32f_D2(x, 2, weights, 3, mean, 2), qorStatusOk);
  const float zeros[] = {0, 0};
  EXPECT_BITS(mean, zeros, 2);
}

TEST(WeightedMoments, WeightsThatSumToOneGiveMeanAndVariance) {
  const double x[] = {1, 2, 3, 6}, weights[] = {0.25, 0.25, 0.25, 0.25};
  double mean, variance, again;
  ASSERT_EQ(qorsWeightedMeanVarColumn_64f_D2(x, 1, weights, 4, &mean, &variance, 1), qorStatusOk);
  EXPECT_BITS(mean, 3.0);
  EXPECT_BITS(variance, 3.5);
  ASSERT_EQ(qorsWeightedVarColumn_64f_D2(x, 1, weights, 4, &mean, &again, 1), qorStatusOk);
  EXPECT_BITS(again, variance);
}

TEST(WeightedMoments, AForeignMeanMayLeaveANegativeVariance) {
  const float x[] = {1, 2}, weights[] = {0.5F, 0.5F}, mean = 4;
  float variance;
  ASSERT_EQ(qorsWeightedVarColumn_32f_D2(x, 1, weights, 2, &mean, &variance, 1), qorStatusOk);
  EXPECT_BITS(variance, 2.5F - 16.0F);
}

TEST(WeightedMoments, RowsAreAddedInPairs) {
  const float x[] = {1e8F, 1.0F, 1.0F, -1e8F}, weights[] = {1, 1, 1, 1};
  float mean;
  ASSERT_EQ(qorsWeightedMeanColumn_32f_D2(x, 1, weights, 4, &mean, 1), qorStatusOk);
  EXPECT_BITS(mean, 0.0F);  // one after the other: 1
}

// ---- Faults ----

template <class T>
struct Args {
  const T* source;
  const T* const* rows;
  int32_t stride;
  const T* weights;
  int32_t height;
  T *means, *variances;
  int32_t width;
};

template <class T>
void expectFaults(QorStatus (*strided)(const Args<T>&), QorStatus (*listed)(const Args<T>&), bool hasVariances) {
  using A = Args<T>;
  const T data[8] = {1, 2, 3, 4, 5, 6, 7, 8}, weights[2] = {1, 1};
  const T* rows[2] = {data, data + 4};
  T means[4] = {9, 9, 9, 9}, variances[4] = {9, 9, 9, 9};
  const A valid{data, rows, 4, weights, 2, means, variances, 4};
  const std::vector<kit::Watched> watched = {{means, 4}, {variances, 4}};
  kit::FaultTable<A> ofBlock(valid, strided, watched), ofRows(valid, listed, watched);
  ofBlock.fault("null source", qorStatusNullPointer, &A::source, nullptr);
  ofRows.fault("null rows", qorStatusNullPointer, &A::rows, nullptr);
  for (auto* table : {&ofBlock, &ofRows}) {
    table->fault("null weights", qorStatusNullPointer, &A::weights, nullptr);
    table->fault("null means", qorStatusNullPointer, &A::means, nullptr);
    if (hasVariances) table->fault("null variances", qorStatusNullPointer, &A::variances, nullptr);
  }
  ofBlock.fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
  ofBlock.fault("stride negative", qorStatusBadStride, &A::stride, INT32_MIN);
  for (auto* table : {&ofBlock, &ofRows}) {
    table->fault("width zero", qorStatusBadSize, &A::width, 0);
    table->fault("height zero", qorStatusBadSize, &A::height, 0);
    table->fault("height negative", qorStatusBadSize, &A::height, -5);
  }
  ofBlock.check();
  ofRows.check();
}

// Captureless calls of each member.
template <class T, const Members<T>& F>
void expectFaultsOfAll() {
  expectFaults<T>([](const Args<T>& a) { return F.mean(a.source, a.stride, a.weights, a.height, a.means, a.width); },
                  [](const Args<T>& a) { return F.meanL(a.rows, a.weights, a.height, a.means, a.width); }, false);
  expectFaults<T>([](const Args<T>& a) { return F.var(a.source, a.stride, a.weights, a.height, a.means, a.variances, a.width); },
                  [](const Args<T>& a) { return F.varL(a.rows, a.weights, a.height, a.means, a.variances, a.width); }, true);
  expectFaults<T>(
      [](const Args<T>& a) { return F.meanVar(a.source, a.stride, a.weights, a.height, a.means, a.variances, a.width); },
      [](const Args<T>& a) { return F.meanVarL(a.rows, a.weights, a.height, a.means, a.variances, a.width); }, true);
}

TEST(WeightedMomentsFaults, NullThenStrideThenSizes) {
  expectFaultsOfAll<float, kFloat>();
  expectFaultsOfAll<double, kDouble>();
}

TEST(WeightedMoments, KeepTheEnvironmentAndAllocateNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random(1);
  const std::vector<float> x = random.vector<float>(45, kit::Random::kNasty), w = random.vector<float>(5);
  float mean[9], variance[9];
  kit::expectEnvironmentKept([&] { qorsWeightedMeanVarColumn_32f_D2(x.data(), 9, w.data(), 5, mean, variance, 9); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
