// Sums of columns and rows: bits against the plain model, faults, memory, environment.
#include "model/column_sums.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "model/table.h"
#include "qorsr.h"

namespace {

constexpr int32_t kHeights[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 17, 100};

// Runs `check(matrix, place)` over shapes, fills and places.
template <class T>
void forEachMatrix(const std::function<void(kit::Matrix<T>&, kit::Place)>& check) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      const kit::Place place = kit::kPlaces[(width + height) % 3];
      const int32_t stride = width + static_cast<int32_t>(random.integer(0, 5));
      kit::Matrix<T> matrix(height, width, stride, place);
      matrix.fill(random, kit::kKinds[random.integer(0, 2)]);
      check(matrix, place);
      EXPECT_TRUE(matrix.gapsKept());
      if (testing::Test::HasFailure()) {
        FAIL() << "height " << height << " width " << width << " stride " << stride;
      }
    }
  }
}

// One result for each column (or row), computed by the model and by the strided and the listed export.
template <class Acc, class T, class Strided, class Listed>
void expectColumns(Strided strided, Listed listed) {
  forEachMatrix<T>([&](kit::Matrix<T>& m, kit::Place place) {
    std::vector<Acc> expected;
    const auto table = model::tableOf<T>(m);
    for (int32_t c = 0; c < m.width(); ++c) expected.push_back(model::columnSum<Acc>(table, static_cast<std::size_t>(c)));
    kit::Area<Acc> result(m.width(), place);
    ASSERT_EQ(strided(m.block(), m.stride(), m.height(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    result.fill(Acc(77));
    ASSERT_EQ(listed(m.rows(), m.height(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_TRUE(result.edgesKept());
  });
}

template <class Acc, class T>
std::vector<Acc> modelRowSums(const kit::Matrix<T>& m) {
  const auto table = model::tableOf<T>(m);
  std::vector<Acc> sums;
  for (std::size_t r = 0; r < table.size(); ++r) {
    sums.push_back(model::rowSum<Acc>(table[r], table.size() % 2 == 1 && r + 1 == table.size()));
  }
  return sums;
}

template <class Acc, class T, class Strided, class Listed>
void expectRows(Strided strided, Listed listed) {
  forEachMatrix<T>([&](kit::Matrix<T>& m, kit::Place place) {
    const std::vector<Acc> expected = modelRowSums<Acc>(m);
    kit::Area<Acc> result(m.height(), place);
    ASSERT_EQ(strided(m.block(), m.width(), m.stride(), result.data(), m.height()), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    result.fill(Acc(77));
    ASSERT_EQ(listed(m.rows(), m.width(), result.data(), m.height()), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(SumColumn, FloatOfInt16) { expectColumns<float, int16_t>(qorsSumColumn_16s32f_D2, qorsSumColumn_16s32f_D2L); }
TEST(SumColumn, Float) { expectColumns<float, float>(qorsSumColumn_32f_D2, qorsSumColumn_32f_D2L); }
TEST(SumColumn, Double) { expectColumns<double, double>(qorsSumColumn_64f_D2, qorsSumColumn_64f_D2L); }
TEST(SumRow, FloatOfInt16) { expectRows<float, int16_t>(qorsSumRow_16s32f_D2, qorsSumRow_16s32f_D2L); }
TEST(SumRow, Float) { expectRows<float, float>(qorsSumRow_32f_D2, qorsSumRow_32f_D2L); }
TEST(SumRow, Double) { expectRows<double, double>(qorsSumRow_64f_D2, qorsSumRow_64f_D2L); }

// More than a near cache holds: rows are taken in another order, which shows in no bit.
template <class T, class Strided>
void expectFarRows(int32_t height, int32_t width, Strided strided) {
  kit::Random random;
  kit::Matrix<T> m(height, width, width + 1, kit::Place::kAtGuard);
  m.fill(random, kit::kKinds[0]);
  kit::Area<float> result(height, kit::Place::kAtGuard);
  ASSERT_EQ(strided(m.block(), width, m.stride(), result.data(), height), qorStatusOk);
  ASSERT_BITS(result.values(), modelRowSums<float>(m));
}
TEST(SumRow, LongRowsFromMemory) {
  expectFarRows<float>(2101, 67, qorsSumRow_32f_D2);
  expectFarRows<int16_t>(4202, 67, qorsSumRow_16s32f_D2);
}

constexpr int32_t kScaleFactors[] = {0, 1, 3, 16, 31, 149, 150, 2000, -1, -4, -12, -127, -128, -2000, INT32_MIN, INT32_MAX};

TEST(SumColumn, ScaledIntegerOfInt16) {
  forEachMatrix<int16_t>([](kit::Matrix<int16_t>& m, kit::Place place) {
    const auto table = model::tableOf<int16_t>(m);
    kit::Area<int32_t> result(m.width(), place);
    const int32_t sf = kScaleFactors[(m.width() * 7 + m.height()) % std::ssize(kScaleFactors)];
    std::vector<int32_t> expected;
    for (int32_t c = 0; c < m.width(); ++c) {
      expected.push_back(model::convertScaled<int32_t>(model::columnSum<float>(table, static_cast<std::size_t>(c)), 1, sf));
    }
    ASSERT_EQ(qorsSumColumn_16s32s_D2Sfs(m.block(), m.stride(), m.height(), result.data(), m.width(), sf), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_EQ(qorsSumColumn_16s32s_D2LSfs(m.rows(), m.height(), result.data(), m.width(), sf), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(SumRow, ScaledIntegerOfInt16) {
  forEachMatrix<int16_t>([](kit::Matrix<int16_t>& m, kit::Place place) {
    kit::Area<int32_t> result(m.height(), place);
    const int32_t sf = kScaleFactors[(m.width() * 5 + m.height()) % std::ssize(kScaleFactors)];
    std::vector<int32_t> expected;
    for (const float sum : modelRowSums<float>(m)) expected.push_back(model::convertScaled<int32_t>(sum, 1, sf));
    ASSERT_EQ(qorsSumRow_16s32s_D2Sfs(m.block(), m.width(), m.stride(), result.data(), m.height(), sf), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_EQ(qorsSumRow_16s32s_D2LSfs(m.rows(), m.width(), result.data(), m.height(), sf), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(SumColumn, HeightOneCopiesTheRowBitForBit) {
  const float row[] = {-0.0F, 1e-42F, 3.0F};
  float result[3];
  ASSERT_EQ(qorsSumColumn_32f_D2(row, 3, 1, result, 3), qorStatusOk);
  EXPECT_BITS(result, row, 3);
}

TEST(SumColumn, CarriesThePrecisionOfAFloat) {
  // 600 * 32767 = 19660200 needs 25 bits: the low bits are lost in the float sum, on purpose.
  const std::vector<int16_t> column(601, 32767);
  int32_t result = 0;
  ASSERT_EQ(qorsSumColumn_16s32s_D2Sfs(column.data(), 1, 601, &result, 1, 0), qorStatusOk);
  EXPECT_NE(result, 601 * 32767);
  EXPECT_NEAR(result, 601 * 32767, 16);
}

TEST(SumColumn, PairsOfRowsAreAddedFirst) {
  // (1e8 + 1) + (1 - 1e8): the pairs lose both ones, a running sum would keep one of them.
  const float column[] = {1e8F, 1.0F, 1.0F, -1e8F};
  float result = 7.0F;
  ASSERT_EQ(qorsSumColumn_32f_D2(column, 1, 4, &result, 1), qorStatusOk);
  EXPECT_EQ(result, 0.0F);
}

// ---- One row, one column ----

TEST(SumRowAbs, WithinRoundingOfTheExactSum) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      const kit::Area<double> source(random.vector<double>(n), place);
      long double exact = 0;
      for (const double x : source.values()) exact += std::fabs(static_cast<long double>(x));
      double result = -1;
      ASSERT_EQ(qorsSumRowAbs_64f(source.data(), n, &result), qorStatusOk);
      const double expected = static_cast<double>(exact);
      EXPECT_TRUE(kit::within(&result, &expected, 1, n * 0x1p-53 * expected)) << n;  // n roundings of at most half a unit
    }
  }
}

TEST(SumRowSqr, ScalesInPlaceAndSumsTheSquares) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      const std::vector<double> before = random.vector<double>(n);
      kit::Area<double> source(before, place);
      const double scale = n % 4 == 0 ? 1.0 : random.real(-3, 3);
      std::vector<double> scaled;
      long double exact = 0;
      for (const double x : before) {
        scaled.push_back(x * scale);
        const auto s = static_cast<long double>(scaled.back());
        exact += s * s;
      }
      double result = -1;
      ASSERT_EQ(qorsSumRowSqr_64f(source.data(), n, &result, scale), qorStatusOk);
      EXPECT_BITS(source.values(), scaled);
      const double expected = static_cast<double>(exact);
      EXPECT_TRUE(kit::within(&result, &expected, 1, (n + 1) * 0x1p-53 * expected)) << n;
      EXPECT_TRUE(source.edgesKept());
    }
  }
}

TEST(SumRowSqr, AScaleOfOneWritesTheSourceToo) {
  const uint64_t signalling = 0x7FF0000000000123u, quiet = 0x7FF8000000000123u;  // a product makes a signalling NaN quiet
  for (const int32_t n : {1, 8, 13}) {
    std::vector<uint64_t> bits(static_cast<std::size_t>(n), signalling);
    std::vector<double> source(bits.size());
    std::memcpy(source.data(), bits.data(), bits.size() * sizeof(double));
    double result = 0;
    ASSERT_EQ(qorsSumRowSqr_64f(source.data(), n, &result, 1.0), qorStatusOk);
    std::memcpy(bits.data(), source.data(), bits.size() * sizeof(double));
    EXPECT_EQ(bits, std::vector<uint64_t>(bits.size(), quiet));
    EXPECT_TRUE(std::isnan(result));
  }
}

TEST(SumColumnAbsAndSqr, OneColumnFromARowDown) {
  kit::Random random;
  for (const int32_t height : kit::lengths()) {
    kit::Matrix<double> m(height, 5, 7, kit::Place::kAtGuard);
    m.fill(random, kit::Random::kPlain);
    const auto column = static_cast<int32_t>(random.integer(0, 4)), first = static_cast<int32_t>(random.integer(0, height - 1));
    const double scale = random.real(-2, 2);
    std::vector<double> expectedValues = m.listedValues();
    long double magnitudes = 0, squares = 0;
    for (int32_t r = first; r < height; ++r) {
      magnitudes += std::fabs(static_cast<long double>(m.listedAt(r, column)));
      double& x = expectedValues[static_cast<std::size_t>(r) * 5 + static_cast<std::size_t>(column)];
      x *= scale;
      const auto scaled = static_cast<long double>(x);
      squares += scaled * scaled;
    }
    double result = -1, expected = static_cast<double>(magnitudes);
    ASSERT_EQ(qorsSumColumnAbs_64f_D2L(m.rows(), 5, height, &result, column, first), qorStatusOk);
    EXPECT_TRUE(kit::within(&result, &expected, 1, height * 0x1p-53 * expected));
    expected = static_cast<double>(squares);
    ASSERT_EQ(qorsSumColumnSqr_64f_D2L(m.rows(), 5, height, &result, column, first, scale), qorStatusOk);
    EXPECT_TRUE(kit::within(&result, &expected, 1, (height + 1) * 0x1p-53 * expected));
    EXPECT_BITS(m.listedValues(), expectedValues);
    EXPECT_TRUE(m.gapsKept());
  }
}

// ---- Faults ----

// Every member takes some of these.
template <class T, class Acc>
struct Args {
  const T* source;
  const T* const* rows;
  int32_t stride, height, width;
  Acc* result;
  int32_t scaleFactor = 0;
};

// The order of all sums: null pointers, sizes, stride.
template <class T, class Acc>
void expectFaults(QorStatus (*strided)(const Args<T, Acc>&), QorStatus (*listed)(const Args<T, Acc>&)) {
  using A = Args<T, Acc>;
  kit::Random random;
  kit::Matrix<T> m(4, 4, 4, kit::Place::kAligned);
  m.fill(random, kit::Random::kSmall);
  kit::Area<Acc> result(4, kit::Place::kAligned);
  const A valid{m.block(), m.constRows(), 4, 4, 4, result.data()};
  kit::FaultTable<A>(valid, strided, {{result.data(), 4}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("height negative", qorStatusBadSize, &A::height, INT32_MIN)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("width negative", qorStatusBadSize, &A::width, -3)
      .fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width))
      .fault("stride negative", qorStatusBadStride, &A::stride, -4)
      .check();
  kit::FaultTable<A>(valid, listed, {{result.data(), 4}})
      .fault("null rows", qorStatusNullPointer, &A::rows, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .check();
}

TEST(SumColumnFaults, EveryMember) {
  expectFaults<int16_t, float>([](auto& a) { return qorsSumColumn_16s32f_D2(a.source, a.stride, a.height, a.result, a.width); },
                               [](auto& a) { return qorsSumColumn_16s32f_D2L(a.rows, a.height, a.result, a.width); });
  expectFaults<int16_t, int32_t>(
      [](auto& a) { return qorsSumColumn_16s32s_D2Sfs(a.source, a.stride, a.height, a.result, a.width, 1); },
      [](auto& a) { return qorsSumColumn_16s32s_D2LSfs(a.rows, a.height, a.result, a.width, 1); });
  expectFaults<float, float>([](auto& a) { return qorsSumColumn_32f_D2(a.source, a.stride, a.height, a.result, a.width); },
                             [](auto& a) { return qorsSumColumn_32f_D2L(a.rows, a.height, a.result, a.width); });
  expectFaults<double, double>([](auto& a) { return qorsSumColumn_64f_D2(a.source, a.stride, a.height, a.result, a.width); },
                               [](auto& a) { return qorsSumColumn_64f_D2L(a.rows, a.height, a.result, a.width); });
}

TEST(SumRowFaults, EveryMember) {
  expectFaults<int16_t, float>([](auto& a) { return qorsSumRow_16s32f_D2(a.source, a.width, a.stride, a.result, a.height); },
                               [](auto& a) { return qorsSumRow_16s32f_D2L(a.rows, a.width, a.result, a.height); });
  expectFaults<int16_t, int32_t>(
      [](auto& a) { return qorsSumRow_16s32s_D2Sfs(a.source, a.width, a.stride, a.result, a.height, 1); },
      [](auto& a) { return qorsSumRow_16s32s_D2LSfs(a.rows, a.width, a.result, a.height, 1); });
  expectFaults<float, float>([](auto& a) { return qorsSumRow_32f_D2(a.source, a.width, a.stride, a.result, a.height); },
                             [](auto& a) { return qorsSumRow_32f_D2L(a.rows, a.width, a.result, a.height); });
  expectFaults<double, double>([](auto& a) { return qorsSumRow_64f_D2(a.source, a.width, a.stride, a.result, a.height); },
                               [](auto& a) { return qorsSumRow_64f_D2L(a.rows, a.width, a.result, a.height); });
}

TEST(SumRowAbsAndSqrFaults, NullThenLength) {
  struct A {
    double* source;
    int32_t length;
    double* result;
  };
  double source[4] = {1, 2, 3, 4}, result = 7;
  const auto check = [&](QorStatus (*call)(const A&)) {
    kit::FaultTable<A>({source, 4, &result}, call, {{&result, 1}, {source, 4}})
        .fault("null source", qorStatusNullPointer, &A::source, nullptr)
        .fault("null result", qorStatusNullPointer, &A::result, nullptr)
        .fault("length zero", qorStatusBadSize, &A::length, 0)
        .check();
  };
  check([](const A& a) { return qorsSumRowAbs_64f(a.source, a.length, a.result); });
  check([](const A& a) { return qorsSumRowSqr_64f(a.source, a.length, a.result, 2.0); });
}

TEST(SumColumnAbsAndSqrFaults, NullThenSizes) {
  struct A {
    double* const* rows;
    int32_t width, height;
    double* result;
    int32_t column, first;
  };
  double row[2] = {1, 2}, result = 7;
  double* const rows[2] = {row, row};
  const auto check = [&](QorStatus (*call)(const A&)) {
    kit::FaultTable<A>({rows, 2, 2, &result, 1, 1}, call, {{&result, 1}, {row, 2}})
        .fault("null rows", qorStatusNullPointer, &A::rows, nullptr)
        .fault("null result", qorStatusNullPointer, &A::result, nullptr)
        .fault("width zero", qorStatusBadSize, &A::width, 0)
        .fault("height zero", qorStatusBadSize, &A::height, 0)
        .fault("column negative", qorStatusBadSize, &A::column, -1)
        .fault("column at width", qorStatusBadSize, &A::column, 2, kit::against(&A::width))
        .fault("first negative", qorStatusBadSize, &A::first, -1)
        .fault("first at height", qorStatusBadSize, &A::first, 2, kit::against(&A::height))
        .check();
  };
  check([](const A& a) { return qorsSumColumnAbs_64f_D2L(a.rows, a.width, a.height, a.result, a.column, a.first); });
  check([](const A& a) { return qorsSumColumnSqr_64f_D2L(a.rows, a.width, a.height, a.result, a.column, a.first, 1.0); });
}

// ---- Environment and memory ----

TEST(Sums, KeepTheEnvironmentAndAllocateNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random;
  kit::Matrix<int16_t> m(5, 9, 11, kit::Place::kAligned);
  m.fill(random, kit::Random::kPlain);
  int32_t result[9];
  kit::expectEnvironmentKept([&] { qorsSumColumn_16s32s_D2Sfs(m.block(), m.stride(), 5, result, 9, -200); });
  kit::expectEnvironmentKept([&] { qorsSumRow_16s32s_D2LSfs(m.rows(), 9, result, 5, 3); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
