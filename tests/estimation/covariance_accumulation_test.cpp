// Accumulation of covariance matrices: bits against the plain model, what stood before, faults, scratch.
#include <gtest/gtest.h>

#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/re_estimation.h"
#include "qorsr.h"

namespace {

template <class T>
struct Members;
template <>
struct Members<int16_t> {
  static constexpr auto strided = qorsAccCovarianceMatrix_16s64f_D2;
  static constexpr auto listed = qorsAccCovarianceMatrix_16s64f_D2L;
};
template <>
struct Members<float> {
  static constexpr auto strided = qorsAccCovarianceMatrix_32f64f_D2;
  static constexpr auto listed = qorsAccCovarianceMatrix_32f64f_D2L;
};

template <class T>
class AccCovariance : public testing::Test {};
using Sources = testing::Types<int16_t, float>;
TYPED_TEST_SUITE(AccCovariance, Sources, );

// Both layouts against the model, over a matrix that holds something already.
template <class T>
void expectModel(int32_t height, int32_t width, kit::Random& random, kit::Random::Kind kind) {
  const kit::Place place = kit::kPlaces[random.integer(0, 2)];
  kit::Matrix<T> rows(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
  rows.fill(random, kind);
  kit::Matrix<double> s(width, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
  s.fill(random, kit::Random::kPlain);
  const auto mean = random.vector<T>(width, kind);
  const kit::Area<T> meanArea(mean, place);
  const double factor = random.real(-2.0, 2.0);
  auto expected = model::tableOf<double>(s);
  model::accCovariance(model::tableOf<T>(rows), mean, expected, factor);
  std::vector<double> flat;
  for (const auto& row : expected) flat.insert(flat.end(), row.begin(), row.end());
  ASSERT_EQ(Members<T>::strided(rows.block(), rows.stride(), height, meanArea.data(), s.block(), width, s.stride(), factor),
            qorStatusOk);
  ASSERT_BITS(s.values(), flat);
  ASSERT_EQ(Members<T>::listed(rows.constRows(), height, meanArea.data(), s.rows(), width, factor), qorStatusOk);
  ASSERT_BITS(s.listedValues(), flat);
  ASSERT_TRUE(s.gapsKept());
}

TYPED_TEST(AccCovariance, Bits) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : {1, 2, 3, 7, 60}) {
      if (width > 100 && height > 7) continue;
      expectModel<TypeParam>(height, width, random, kit::kKinds[random.integer(0, 2)]);
      if (testing::Test::HasFailure()) FAIL() << "height " << height << " width " << width;
    }
  }
}

TYPED_TEST(AccCovariance, ManyRowsAndWideRows) {
  kit::Random random;
  expectModel<TypeParam>(700, 13, random, kit::Random::kPlain);  // several runs of rows
  expectModel<TypeParam>(9, 512, random, kit::Random::kPlain);
  expectModel<TypeParam>(9, 513, random, kit::Random::kPlain);  // scratch from the heap
}

TEST(AccCovarianceMatrix, FloatDifferencesAreRoundedToFloat) {
  const float row[1] = {16777216.0F}, mean[1] = {-1.0F};  // 2^24 + 1 is no float
  double s = 0.0;
  ASSERT_EQ(qorsAccCovarianceMatrix_32f64f_D2(row, 1, 1, mean, &s, 1, 1, 1.0), qorStatusOk);
  EXPECT_BITS(s, 16777216.0 * 16777216.0);
  const int16_t row16[1] = {32767}, mean16[1] = {-32768};
  s = 0.0;
  ASSERT_EQ(qorsAccCovarianceMatrix_16s64f_D2(row16, 1, 1, mean16, &s, 1, 1, 1.0), qorStatusOk);
  EXPECT_BITS(s, 65535.0 * 65535.0);
}

TEST(AccCovarianceMatrix, WhatStoodBelowIsScaledTooAndWhatStoodAboveIsLost) {
  const float row[2] = {2.0F, 3.0F}, mean[2] = {};
  double s[4] = {100.0, std::numeric_limits<double>::quiet_NaN(), 200.0, 300.0};
  for (int call = 0; call < 2; ++call) {
    ASSERT_EQ(qorsAccCovarianceMatrix_32f64f_D2(row, 2, 1, mean, s, 2, 2, 0.5), qorStatusOk);
  }
  EXPECT_EQ(s[0], ((100.0 + 4.0) * 0.5 + 4.0) * 0.5);
  EXPECT_EQ(s[1], ((200.0 + 6.0) * 0.5 + 6.0) * 0.5);
  EXPECT_EQ(s[2], s[1]);
  EXPECT_EQ(s[3], ((300.0 + 9.0) * 0.5 + 9.0) * 0.5);
}

// ---- Faults and memory ----

template <class T>
struct Args {
  const T* source;
  const T* const* rows;
  int32_t sourceStride, height;
  const T* mean;
  double* result;
  double* const* resultRows;
  int32_t width, resultStride;
};

template <class A>
void addShared(kit::FaultTable<A>& table) {
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr, &A::rows, nullptr);
  table.fault("null mean", qorStatusNullPointer, &A::mean, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr, &A::resultRows, nullptr);
  table.fault("height zero", qorStatusBadSize, &A::height, 0);
  table.fault("width negative", qorStatusBadSize, &A::width, -1);
}

TYPED_TEST(AccCovariance, Faults) {
  using T = TypeParam;
  using A = Args<T>;
  kit::Matrix<T> rows(4, 4, 4, kit::Place::kAligned);
  kit::Matrix<double> s(4, 4, 4, kit::Place::kAligned);
  const std::vector<T> mean(4, T(1));
  const A valid{rows.block(), rows.constRows(), 4, 4, mean.data(), s.block(), s.rows(), 4, 4};
  const std::vector<kit::Watched> watched = {{s.block(), 16}};
  kit::FaultTable<A> strided(
      valid,
      [](const A& a) {
        return Members<T>::strided(a.source, a.sourceStride, a.height, a.mean, a.result, a.width, a.resultStride, 1.0);
      },
      watched);
  addShared(strided);
  strided.fault("sourceStride below width", qorStatusBadStride, &A::sourceStride, 3, kit::against(&A::width));
  strided.fault("resultStride below width", qorStatusBadStride, &A::resultStride, 3, kit::against(&A::width));
  strided.check();
  kit::FaultTable<A> listed(
      valid, [](const A& a) { return Members<T>::listed(a.rows, a.height, a.mean, a.resultRows, a.width, 1.0); }, watched);
  addShared(listed);
  listed.check();
}

TEST(AccCovarianceMatrix, ScratchFrom513ColumnsOn) {
  const std::vector<float> row(513, 1.0F), mean(513, 0.0F);
  std::vector<double> s(513 * 513, 7.0);
  const auto call = [&](int32_t width) {
    return qorsAccCovarianceMatrix_32f64f_D2(row.data(), 513, 1, mean.data(), s.data(), width, 513, 1.0);
  };
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(512); }), 0);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(513); }), 1);
  const std::vector<double> before = s;
  kit::Core::refuse(0);
  EXPECT_EQ(call(513), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(s, before);
}

TEST(AccCovarianceMatrix, KeepsTheEnvironment) {
  kit::Random random;
  const auto row = random.vector<float>(9, kit::Random::kNasty);
  std::vector<double> s(81, 1.0);
  kit::expectEnvironmentKept([&] { qorsAccCovarianceMatrix_32f64f_D2(row.data(), 9, 1, row.data(), s.data(), 9, 9, 1.0); });
}

}  // namespace
