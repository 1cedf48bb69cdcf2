// Columns copied, gathered, padded and edited: values, faults, what a fault in a list leaves behind.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int32_t kHeights[] = {1, 2, 3, 4, 5, 8};

// ---- Copies ----

template <class T, class Copy>
void expectCopied(Copy copy) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      const kit::Place place = kit::kPlaces[(width + height) % 3];
      const kit::Area<T> source(
          random.vector<T>(int64_t{height} * width, random.integer(0, 1) ? kit::Random::kNasty : kit::Random::kPlain), place);
      kit::Matrix<T> m(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
      ASSERT_EQ(copy(source.data(), width, m.block(), m.stride(), height), qorStatusOk);
      ASSERT_BITS(m.values(), source.values()) << height << " x " << width;
      ASSERT_TRUE(m.gapsKept());
    }
  }
}

TEST(CopyColumn, Int16) { expectCopied<int16_t>(qorsCopyColumn_16s_D2); }
TEST(CopyColumn, Float) { expectCopied<float>(qorsCopyColumn_32f_D2); }

template <class T, class Strided, class Listed>
void expectGathered(Strided strided, Listed listed) {
  kit::Random random(1);
  for (const int32_t width : {1, 2, 5, 39}) {
    for (const int32_t count : kit::lengths()) {
      for (const int32_t height : kHeights) {
        const kit::Place place = kit::kPlaces[(width + count + height) % 3];
        kit::Matrix<T> source(height, width, width + static_cast<int32_t>(random.integer(0, 3)), place);
        source.fill(random, kit::Random::kPlain);
        kit::Matrix<T> result(height, count, count + static_cast<int32_t>(random.integer(0, 3)), place);
        kit::Area<int32_t> columns(count, place);
        for (int32_t k = 0; k < count; ++k) columns[k] = static_cast<int32_t>(random.integer(0, width - 1));
        std::vector<T> expected;
        for (int32_t r = 0; r < height; ++r) {
          for (int32_t k = 0; k < count; ++k) expected.push_back(source.at(r, columns[k]));
        }
        ASSERT_EQ(strided(source.block(), width, source.stride(), result.block(), columns.data(), count, result.stride(), height),
                  qorStatusOk);
        ASSERT_EQ(listed(source.constRows(), width, result.rows(), columns.data(), count, height), qorStatusOk);
        ASSERT_BITS(result.values(), expected);
        ASSERT_BITS(result.listedValues(), expected);
        ASSERT_TRUE(result.gapsKept());
      }
    }
  }
}

TEST(CopyColumnIndirect, Int16) { expectGathered<int16_t>(qorsCopyColumn_Indirect_16s_D2, qorsCopyColumn_Indirect_16s_D2L); }
TEST(CopyColumnIndirect, Float) { expectGathered<float>(qorsCopyColumn_Indirect_32f_D2, qorsCopyColumn_Indirect_32f_D2L); }
TEST(CopyColumnIndirect, Double) { expectGathered<double>(qorsCopyColumn_Indirect_64f_D2, qorsCopyColumn_Indirect_64f_D2L); }

template <class T, class Strided, class Listed>
void expectHalfWrittenRow(Strided strided, Listed listed) {
  for (int32_t bad = 0; bad < 20; ++bad) {
    for (const int32_t entry : {-1, 4, INT32_MIN, INT32_MAX}) {
      T source[8] = {1, 2, 3, 4, 5, 6, 7, 8}, result[40], listedResult[40];
      std::vector<T> expected(40, T(77));
      std::fill_n(result, 40, T(77));
      std::fill_n(listedResult, 40, T(77));
      int32_t columns[20];
      for (int32_t k = 0; k < 20; ++k) columns[k] = (k * 7) % 4;
      columns[bad] = entry;
      columns[19] = 4;
      for (int32_t k = 0; k < bad; ++k) expected[static_cast<std::size_t>(k)] = source[columns[k]];
      const T* const sourceRows[2] = {source, source + 4};
      T* const resultRows[2] = {listedResult, listedResult + 20};
      ASSERT_EQ(strided(source, 4, 4, result, columns, 20, 20, 2), qorStatusBadSize);
      ASSERT_BITS(result, expected.data(), 40) << "bad entry at " << bad;
      ASSERT_EQ(listed(sourceRows, 4, resultRows, columns, 20, 2), qorStatusBadSize);
      ASSERT_BITS(listedResult, expected.data(), 40) << "bad entry at " << bad;
    }
  }
}

TEST(CopyColumnIndirect, ABadEntryLeavesWhatWasCopiedInFrontOfIt) {
  expectHalfWrittenRow<int16_t>(qorsCopyColumn_Indirect_16s_D2, qorsCopyColumn_Indirect_16s_D2L);
  expectHalfWrittenRow<float>(qorsCopyColumn_Indirect_32f_D2, qorsCopyColumn_Indirect_32f_D2L);
  expectHalfWrittenRow<double>(qorsCopyColumn_Indirect_64f_D2, qorsCopyColumn_Indirect_64f_D2L);
}

template <class T, class Copy>
void expectPadded(Copy copy) {
  kit::Random random(2);
  for (const int32_t length : kit::lengths()) {
    for (const int32_t padding : {0, 1, 2, 7, 33}) {
      const kit::Place place = kit::kPlaces[(length + padding) % 3];
      const kit::Area<T> source(random.vector<T>(length, kit::Random::kNasty), place);
      kit::Area<T> result(length + padding, place);
      result.fill(T(77));
      std::vector<T> expected = source.values();
      expected.resize(static_cast<std::size_t>(length + padding));
      ASSERT_EQ(copy(source.data(), length, result.data(), length + padding), qorStatusOk);
      ASSERT_BITS(result.values(), expected);
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(CopyWithPadding, Int16) { expectPadded<int16_t>(qorsCopyWithPadding_16s); }
TEST(CopyWithPadding, Float) { expectPadded<float>(qorsCopyWithPadding_32f); }

// ---- Single columns ----

TEST(SingleColumns, EveryColumnAndFirstRow) {
  kit::Random random(3);
  for (const int32_t height : kit::shortLengths()) {
    for (const int32_t width : {1, 2, 7}) {
      for (int32_t firstRow = 0; firstRow < height; ++firstRow) {
        kit::Matrix<double> m(height, width, width, kit::Place::kAtGuard);
        m.fill(random, kit::kKinds[random.integer(0, 2)]);
        std::vector<double> expected = m.values();
        const auto source = static_cast<int32_t>(random.integer(0, width - 1));
        const auto destination = static_cast<int32_t>(random.integer(0, width - 1));
        const double factor = random.plain<double>();
        for (int32_t r = firstRow; r < height; ++r) {
          double* row = expected.data() + static_cast<std::ptrdiff_t>(r) * width;
          const double scaled = row[source] * factor;
          row[destination] = row[destination] + scaled;
        }
        ASSERT_EQ(qorsAddMulColumn_64f_D2L(m.rows(), width, height, source, destination, firstRow, factor), qorStatusOk);
        ASSERT_BITS(m.listedValues(), expected);
        for (int32_t r = firstRow; r < height; ++r) expected[static_cast<std::size_t>(r * width + destination)] *= factor;
        ASSERT_EQ(qorsMulColumn_64f_D2L(m.rows(), width, height, destination, firstRow, factor), qorStatusOk);
        ASSERT_BITS(m.listedValues(), expected);
        ASSERT_TRUE(m.gapsKept());
      }
    }
  }
}

TEST(SingleColumns, DotProductInFourRunningSums) {
  kit::Random random(4);
  for (const int32_t height : kit::lengths()) {
    for (const int32_t firstRow : {0, 1, 2, 3, height - 1}) {
      if (firstRow >= height) continue;
      kit::Matrix<double> m(height, 3, 3, kit::Place::kAtGuard);
      m.fill(random, kit::kKinds[random.integer(0, 2)]);
      double sum[4] = {0, 0, 0, 0}, result = 0;
      for (int32_t r = firstRow; r < height; ++r) {
        const double product = m.at(r, 0) * m.at(r, 2);
        sum[(r - firstRow) % 4] += product;
      }
      ASSERT_EQ(qorsDotProdColumn_64f_D2L(m.constRows(), 3, height, &result, 0, 2, firstRow), qorStatusOk);
      ASSERT_BITS(result, (sum[0] + sum[2]) + (sum[1] + sum[3]));
      ASSERT_EQ(qorsDotProdColumn_64f_D2L(m.constRows(), 3, height, &result, 2, 0, firstRow), qorStatusOk);
      ASSERT_BITS(result, (sum[0] + sum[2]) + (sum[1] + sum[3]));
    }
  }
}

// ---- Faults ----

template <class T>
struct CopyArgs {
  const T* source;
  int32_t width;
  T* destination;
  int32_t stride, height;
};

template <class T>
void expectCopyFaults(QorStatus (*call)(const CopyArgs<T>&)) {
  using A = CopyArgs<T>;
  const T source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  T destination[8] = {};
  kit::FaultTable<A>({source, 4, destination, 4, 2}, call, {{destination, 8}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("width negative", qorStatusBadSize, &A::width, INT32_MIN)
      .fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width))
      .check();
}

TEST(ColumnEditFaults, CopyColumn) {
  expectCopyFaults<int16_t>([](auto& a) { return qorsCopyColumn_16s_D2(a.source, a.width, a.destination, a.stride, a.height); });
  expectCopyFaults<float>([](auto& a) { return qorsCopyColumn_32f_D2(a.source, a.width, a.destination, a.stride, a.height); });
}

TEST(ColumnEditFaults, CopyWithPadding) {
  using A = CopyArgs<float>;
  const float source[4] = {1, 2, 3, 4};
  float destination[6] = {};
  kit::FaultTable<A>({source, 4, destination, 0, 6},
                     [](auto& a) { return qorsCopyWithPadding_32f(a.source, a.width, a.destination, a.height); },
                     {{destination, 6}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &A::width, 0)
      .fault("padded zero", qorStatusBadSize, &A::height, 0)
      .fault("padded below length", qorStatusBadSize, &A::height, 3, kit::against(&A::width))
      .check();
  const int16_t x[2] = {1, 2};
  int16_t y[1] = {};
  EXPECT_EQ(qorsCopyWithPadding_16s(x, 2, y, 1), qorStatusBadSize);
  EXPECT_EQ(qorsCopyWithPadding_16s(nullptr, 2, y, 1), qorStatusNullPointer);
}

template <class T>
struct GatherArgs {
  const T* source;
  const T* const* sourceRows;
  int32_t width, sourceStride;
  T* destination;
  T* const* destinationRows;
  const int32_t* columns;
  int32_t count, destinationStride, height;
};

// The tests of strides stand between those of sizes.
template <class T>
void expectGatherFaults(QorStatus (*strided)(const GatherArgs<T>&), QorStatus (*listed)(const GatherArgs<T>&)) {
  using A = GatherArgs<T>;
  const T source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  T destination[6] = {};
  const T* sourceRows[2] = {source, source + 4};
  T* destinationRows[2] = {destination, destination + 3};
  const int32_t columns[3] = {3, 0, 1};
  static constexpr int32_t kBad[3] = {4, 0, 1};
  const A valid{source, sourceRows, 4, 4, destination, destinationRows, columns, 3, 3, 2};
  kit::FaultTable<A>(valid, strided, {{destination, 6}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("null columns", qorStatusNullPointer, &A::columns, nullptr)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("pitch below width", qorStatusBadStride, &A::sourceStride, 3, kit::against(&A::width))
      .fault("count zero", qorStatusBadSize, &A::count, 0)
      .fault("stride below count", qorStatusBadStride, &A::destinationStride, 2, kit::against(&A::count))
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("columns with a bad entry, width or count", qorStatusBadSize, &A::columns, kBad, kit::against(&A::width, &A::count))
      .check();
  kit::FaultTable<A>(valid, listed, {{destination, 6}})
      .fault("null source", qorStatusNullPointer, &A::sourceRows, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destinationRows, nullptr)
      .fault("null columns", qorStatusNullPointer, &A::columns, nullptr)
      .fault("width negative", qorStatusBadSize, &A::width, -1)
      .fault("count negative", qorStatusBadSize, &A::count, INT32_MIN)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("columns with a bad entry, width or count", qorStatusBadSize, &A::columns, kBad, kit::against(&A::width, &A::count))
      .check();
}

TEST(ColumnEditFaults, CopyColumnIndirect) {
  expectGatherFaults<int16_t>(
      [](auto& a) {
        return qorsCopyColumn_Indirect_16s_D2(a.source, a.width, a.sourceStride, a.destination, a.columns, a.count,
                                              a.destinationStride, a.height);
      },
      [](auto& a) {
        return qorsCopyColumn_Indirect_16s_D2L(a.sourceRows, a.width, a.destinationRows, a.columns, a.count, a.height);
      });
  expectGatherFaults<float>(
      [](auto& a) {
        return qorsCopyColumn_Indirect_32f_D2(a.source, a.width, a.sourceStride, a.destination, a.columns, a.count,
                                              a.destinationStride, a.height);
      },
      [](auto& a) {
        return qorsCopyColumn_Indirect_32f_D2L(a.sourceRows, a.width, a.destinationRows, a.columns, a.count, a.height);
      });
  expectGatherFaults<double>(
      [](auto& a) {
        return qorsCopyColumn_Indirect_64f_D2(a.source, a.width, a.sourceStride, a.destination, a.columns, a.count,
                                              a.destinationStride, a.height);
      },
      [](auto& a) {
        return qorsCopyColumn_Indirect_64f_D2L(a.sourceRows, a.width, a.destinationRows, a.columns, a.count, a.height);
      });
}

TEST(ColumnEditFaults, SingleColumns) {
  struct A {
    double* const* rows;
    int32_t width, height;
    double* result;
    int32_t first, second, firstRow;
  };
  double row[4] = {1, 2, 3, 4}, result = 7;
  double* rows[2] = {row, row + 2};
  const auto check = [&](QorStatus (*call)(const A&), bool hasResult, bool hasSecond) {
    kit::FaultTable<A> table({rows, 2, 2, &result, 1, 0, 1}, call, {{&result, 1}, {row, 4}});
    table.fault("null rows", qorStatusNullPointer, &A::rows, nullptr);
    if (hasResult) table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
    table.fault("width zero", qorStatusBadSize, &A::width, 0);
    table.fault("height negative", qorStatusBadSize, &A::height, -1);
    table.fault("first negative", qorStatusBadSize, &A::first, -1);
    table.fault("first at width", qorStatusBadSize, &A::first, 2, kit::against(&A::width));
    if (hasSecond) table.fault("second negative", qorStatusBadSize, &A::second, INT32_MIN);
    if (hasSecond) table.fault("second at width", qorStatusBadSize, &A::second, 2, kit::against(&A::width));
    table.fault("firstRow negative", qorStatusBadSize, &A::firstRow, -1);
    table.fault("firstRow at height", qorStatusBadSize, &A::firstRow, 2, kit::against(&A::height));
    table.check();
  };
  check([](const A& a) { return qorsAddMulColumn_64f_D2L(a.rows, a.width, a.height, a.first, a.second, a.firstRow, 2.0); }, false,
        true);
  check([](const A& a) { return qorsMulColumn_64f_D2L(a.rows, a.width, a.height, a.first, a.firstRow, 2.0); }, false, false);
  check([](const A& a) { return qorsDotProdColumn_64f_D2L(a.rows, a.width, a.height, a.result, a.first, a.second, a.firstRow); },
        true, true);
}

TEST(ColumnEdits, KeepTheEnvironmentAndAllocateNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random(5);
  kit::Matrix<double> m(9, 2, 2, kit::Place::kAligned);
  m.fill(random, kit::Random::kNasty);
  double result;
  kit::expectEnvironmentKept([&] { qorsDotProdColumn_64f_D2L(m.constRows(), 2, 9, &result, 0, 1, 0); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
