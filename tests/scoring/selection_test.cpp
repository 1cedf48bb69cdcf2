// Short lists and sign tables: bits against the plain model, faults, edges.
#include "model/selection.h"

#include <gtest/gtest.h>

#include <numeric>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

// A bit table in guarded rows: each ends where its last needed bit does.
class Table {
 public:
  Table(int32_t height, int32_t stride, kit::Random& random) {
    for (int32_t r = 0; r < height; ++r) {
      rows_.emplace_back(random.vector<uint8_t>(stride), kit::Place::kAtGuard);
      pointers_.push_back(rows_.back().data());
    }
  }
  uint8_t* const* rows() const { return pointers_.data(); }
  const uint8_t* const* constRows() const { return pointers_.data(); }
  model::Bytes values() const {
    model::Bytes all;
    for (const auto& row : rows_) all.push_back(row.values());
    return all;
  }
  bool edgesKept() const {
    for (const auto& row : rows_) {
      if (!row.edgesKept()) return false;
    }
    return true;
  }

 private:
  std::vector<kit::Area<uint8_t>> rows_;
  std::vector<uint8_t*> pointers_;
};

void expectTables(const model::Bytes& actual, const model::Bytes& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t r = 0; r < actual.size(); ++r) ASSERT_BITS(actual[r], expected[r]) << "row " << r;
}

std::vector<int32_t> someIndices(kit::Random& random, int64_t count, int32_t limit) {
  std::vector<int32_t> v;
  for (int64_t i = 0; i < count; ++i) v.push_back(static_cast<int32_t>(random.integer(0, limit - 1)));
  return v;
}

struct Shape {
  int32_t height, width, shift, count;
};
std::vector<Shape> shapes(kit::Random& random) {
  std::vector<Shape> all;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t shift : {0, 1, 7, 8, 29}) {
      all.push_back({static_cast<int32_t>(random.integer(1, 12)), width, shift, static_cast<int32_t>(random.integer(1, 9))});
    }
  }
  return all;
}

int32_t bytes(const Shape& s) { return (s.width + s.shift + 7) / 8; }

TEST(FillShortlist, Row) {
  kit::Random random;
  for (const Shape& s : shapes(random)) {
    Table table(s.height, bytes(s), random);
    model::Bytes expected = table.values();
    const auto indices = someIndices(random, int64_t{s.height} * s.count, s.width);
    model::fillShortlist(expected, indices, std::vector<int32_t>(static_cast<std::size_t>(s.height), s.count), s.shift, true);
    ASSERT_EQ(qorsFillShortlist_Row_1u(indices.data(), s.width, s.count, table.rows(), s.height, bytes(s), s.shift), qorStatusOk);
    expectTables(table.values(), expected);
    ASSERT_TRUE(table.edgesKept());
  }
}

TEST(FillShortlist, Column) {
  kit::Random random;
  for (const Shape& s : shapes(random)) {
    Table table(s.height, bytes(s), random);
    model::Bytes expected = table.values();
    const auto indices = someIndices(random, int64_t{s.width} * s.count, s.height);
    model::fillShortlist(expected, indices, std::vector<int32_t>(static_cast<std::size_t>(s.width), s.count), s.shift, false);
    ASSERT_EQ(qorsFillShortlist_Column_1u(indices.data(), s.count, table.rows(), s.height, bytes(s), s.shift, s.width),
              qorStatusOk);
    expectTables(table.values(), expected);
    ASSERT_TRUE(table.edgesKept());
  }
}

TEST(FillShortlist, GroupsOfTheirOwnSizes) {
  kit::Random random;
  for (const Shape& s : shapes(random)) {
    for (const bool groupsAreRows : {true, false}) {
      Table table(s.height, bytes(s), random);
      model::Bytes expected = table.values();
      std::vector<int32_t> counts;
      for (int32_t g = 0; g < (groupsAreRows ? s.height : s.width); ++g)
        counts.push_back(static_cast<int32_t>(random.integer(1, 9)));
      const auto indices =
          someIndices(random, std::accumulate(counts.begin(), counts.end(), 0), groupsAreRows ? s.width : s.height);
      model::fillShortlist(expected, indices, counts, s.shift, groupsAreRows);
      const QorStatus status =
          groupsAreRows
              ? qorsFillShortlist_RowVar_1u(indices.data(), counts.data(), s.width, table.rows(), s.height, bytes(s), s.shift)
              : qorsFillShortlist_ColumnVar_1u(indices.data(), counts.data(), table.rows(), s.height, bytes(s), s.shift, s.width);
      ASSERT_EQ(status, qorStatusOk);
      expectTables(table.values(), expected);
      ASSERT_TRUE(table.edgesKept());
    }
  }
}

TEST(FillShortlist, ADuplicateClearsItsBit) {
  uint8_t row[2] = {0, 0};
  uint8_t* const rows[1] = {row};
  const int32_t indices[3] = {3, 9, 3};
  ASSERT_EQ(qorsFillShortlist_Row_1u(indices, 10, 3, rows, 1, 2, 0), qorStatusOk);
  EXPECT_EQ(row[0], 0x00);
  EXPECT_EQ(row[1], 0x40);
}

TEST(FillShortlist, TheShiftCrossesIntoTheNextByte) {
  uint8_t row[2] = {0, 0};
  uint8_t* const rows[1] = {row};
  const int32_t indices[2] = {0, 1};
  EXPECT_EQ(qorsFillShortlist_Row_1u(indices, 2, 2, rows, 1, 1, 7), qorStatusBadStride);
  ASSERT_EQ(qorsFillShortlist_Row_1u(indices, 2, 2, rows, 1, 2, 7), qorStatusOk);
  EXPECT_EQ(row[0], 0x01);
  EXPECT_EQ(row[1], 0x80);
}

// ---- Sign tables ----

// Sparse rows, so that an OR of several is not all ones.
void sparse(Table& table, int32_t stride, kit::Random& random) {
  for (std::size_t r = 0; r < table.values().size(); ++r) {
    for (int32_t i = 0; i < stride; ++i) table.rows()[r][i] &= static_cast<uint8_t>(random.bits() & random.bits() & random.bits());
  }
}

model::Bytes rowsOf(const kit::Area<uint8_t>& table, int32_t rows) {
  const std::vector<uint8_t> all = table.values();
  const auto width = static_cast<std::ptrdiff_t>(all.size()) / rows;
  model::Bytes split;
  for (std::ptrdiff_t r = 0; r < rows; ++r) split.emplace_back(all.begin() + r * width, all.begin() + (r + 1) * width);
  return split;
}

TEST(BuildSignTable, OrsTheRowsOfEachGroup) {
  kit::Random random;
  for (const Shape& s : shapes(random)) {
    const auto rows = static_cast<int32_t>(random.integer(1, 6));
    Table source(s.height, bytes(s), random);
    sparse(source, bytes(s), random);
    const auto indices = someIndices(random, int64_t{rows} * s.count, s.height);
    const kit::Area<uint8_t> result(int64_t{rows} * ((s.width + 7) / 8), kit::Place::kAtGuard);
    ASSERT_EQ(qorsBuildSignTable_8u1u(indices.data(), s.count, source.constRows(), s.height, bytes(s), s.shift, result.data(), rows,
                                      s.width),
              qorStatusOk);
    expectTables(rowsOf(result, rows), model::buildSignTable(source.values(), indices, s.count, s.shift, rows, s.width));
    ASSERT_TRUE(result.edgesKept());
  }
}

TEST(BuildSignTable, GroupsOfTheirOwnSizesMarkOneBitARow) {
  kit::Random random;
  for (const Shape& s : shapes(random)) {
    const auto rows = static_cast<std::size_t>(random.integer(1, 6));
    Table source(s.height, bytes(s), random);
    for (int i = 0; i < 3; ++i) sparse(source, bytes(s), random);  // rows without any bit occur
    std::vector<int32_t> counts;
    for (std::size_t r = 0; r < rows; ++r) counts.push_back(static_cast<int32_t>(random.integer(1, 9)));
    const kit::Area<int32_t> indices(someIndices(random, std::accumulate(counts.begin(), counts.end(), 0), s.height),
                                     kit::Place::kAtGuard);
    const kit::Area<uint8_t> result(static_cast<int64_t>(rows) * ((s.width + 7) / 8), kit::Place::kAtGuard);
    ASSERT_EQ(qorsBuildSignTable_Var_8u1u(indices.data(), counts.data(), source.constRows(), s.height, bytes(s), s.shift,
                                          result.data(), static_cast<int32_t>(rows), s.width),
              qorStatusOk);
    expectTables(rowsOf(result, static_cast<int32_t>(rows)),
                 model::buildSignTableVar(source.values(), indices.values(), counts, s.shift, s.width));
    ASSERT_TRUE(result.edgesKept());
  }
}

TEST(BuildSignTable, OneIndexARowCopiesAField) {
  const uint8_t source[4] = {0x12, 0x34, 0x56, 0x78};
  const uint8_t* const rows[1] = {source};
  const int32_t index[1] = {0};
  uint8_t result[3];
  ASSERT_EQ(qorsBuildSignTable_8u1u(index, 1, rows, 1, 4, 4, result, 1, 20), qorStatusOk);
  EXPECT_EQ(result[0], 0x23);
  EXPECT_EQ(result[1], 0x45);
  EXPECT_EQ(result[2], 0x60);
}

// ---- Faults ----

struct FillArgs {
  const int32_t *indices, *counts;
  int32_t width, count;
  uint8_t* const* table;
  int32_t height, stride, shift;
};

void expectFillFaults(QorStatus (*call)(const FillArgs&), bool listedCounts) {
  static const int32_t indices[4] = {0, 1, 1, 0}, negative[4] = {0, -1, 1, 0}, beyond[4] = {0, 1, 1, 2}, counts[2] = {2, 2},
                       zeroCount[2] = {2, 0};
  uint8_t row[2][2] = {};
  uint8_t* const rows[2] = {row[0], row[1]};
  kit::FaultTable<FillArgs> table({indices, counts, 2, 2, rows, 2, 2, 7}, call, {{row[0], 4}});
  table.fault("null table", qorStatusNullPointer, &FillArgs::table, nullptr)
      .fault("null indices", qorStatusNullPointer, &FillArgs::indices, nullptr);
  if (listedCounts) table.fault("null counts", qorStatusNullPointer, &FillArgs::counts, nullptr);
  table.fault("height zero", qorStatusBadSize, &FillArgs::height, 0)
      .fault("width zero", qorStatusBadSize, &FillArgs::width, 0)
      .fault("stride zero", qorStatusBadSize, &FillArgs::stride, 0)
      .fault("stride negative", qorStatusBadSize, &FillArgs::stride, -2)
      .fault("shift negative", qorStatusBadSize, &FillArgs::shift, -1);
  if (listedCounts) {
    table.fault("counts with a zero", qorStatusBadSize, &FillArgs::counts, zeroCount);
  } else {
    table.fault("count zero", qorStatusBadSize, &FillArgs::count, 0);
  }
  table.fault("stride too small", qorStatusBadStride, &FillArgs::stride, 1)
      .fault("shift beyond the stride", qorStatusBadStride, &FillArgs::shift, INT32_MAX, kit::against(&FillArgs::stride))
      .fault("indices with a negative one", qorStatusBadArgument, &FillArgs::indices, negative)
      .fault("indices with one at the limit", qorStatusBadArgument, &FillArgs::indices, beyond);
  table.check();
}

TEST(FillShortlist, Faults) {
  expectFillFaults(
      [](const FillArgs& a) { return qorsFillShortlist_Row_1u(a.indices, a.width, a.count, a.table, a.height, a.stride, a.shift); },
      false);
  expectFillFaults(
      [](const FillArgs& a) {
        return qorsFillShortlist_RowVar_1u(a.indices, a.counts, a.width, a.table, a.height, a.stride, a.shift);
      },
      true);
  expectFillFaults(
      [](const FillArgs& a) {
        return qorsFillShortlist_Column_1u(a.indices, a.count, a.table, a.height, a.stride, a.shift, a.width);
      },
      false);
  expectFillFaults(
      [](const FillArgs& a) {
        return qorsFillShortlist_ColumnVar_1u(a.indices, a.counts, a.table, a.height, a.stride, a.shift, a.width);
      },
      true);
}

struct SignArgs {
  const int32_t *indices, *counts;
  int32_t count;
  const uint8_t* const* source;
  int32_t height, stride, shift;
  uint8_t* result;
  int32_t rows, bits;
};

void expectSignFaults(QorStatus (*call)(const SignArgs&), bool listedCounts) {
  static const int32_t indices[4] = {0, 1, 1, 0}, negative[4] = {0, -1, 1, 0}, beyond[4] = {0, 1, 1, 2}, counts[2] = {2, 2},
                       zeroCount[2] = {2, 0};
  static const uint8_t row[2] = {0xFF, 0xFF};
  static const uint8_t* const rows[2] = {row, row};
  uint8_t result[4] = {0x11, 0x22, 0x33, 0x44};
  kit::FaultTable<SignArgs> table({indices, counts, 2, rows, 2, 2, 5, result, 2, 9}, call, {{result, 4}});
  table.fault("null indices", qorStatusNullPointer, &SignArgs::indices, nullptr)
      .fault("null source", qorStatusNullPointer, &SignArgs::source, nullptr)
      .fault("null result", qorStatusNullPointer, &SignArgs::result, nullptr);
  if (listedCounts) table.fault("null counts", qorStatusNullPointer, &SignArgs::counts, nullptr);
  if (!listedCounts) table.fault("count zero", qorStatusBadSize, &SignArgs::count, 0);
  table.fault("height zero", qorStatusBadSize, &SignArgs::height, 0)
      .fault("stride zero", qorStatusBadSize, &SignArgs::stride, 0)
      .fault("rows zero", qorStatusBadSize, &SignArgs::rows, 0)
      .fault("bits zero", qorStatusBadSize, &SignArgs::bits, 0)
      .fault("shift negative", qorStatusBadSize, &SignArgs::shift, -1)
      .fault("stride too small", qorStatusBadStride, &SignArgs::stride, 1)
      .fault("shift beyond the stride", qorStatusBadStride, &SignArgs::shift, 8, kit::against(&SignArgs::stride));
  if (listedCounts) table.fault("counts with a zero", qorStatusBadSize, &SignArgs::counts, zeroCount);
  table.fault("indices with a negative one", qorStatusBadArgument, &SignArgs::indices, negative)
      .fault("indices with one at the limit", qorStatusBadArgument, &SignArgs::indices, beyond);
  table.check();
}

TEST(BuildSignTable, Faults) {
  expectSignFaults(
      [](const SignArgs& a) {
        return qorsBuildSignTable_8u1u(a.indices, a.count, a.source, a.height, a.stride, a.shift, a.result, a.rows, a.bits);
      },
      false);
  expectSignFaults(
      [](const SignArgs& a) {
        return qorsBuildSignTable_Var_8u1u(a.indices, a.counts, a.source, a.height, a.stride, a.shift, a.result, a.rows, a.bits);
      },
      true);
}

TEST(GaussianSelection, AllocatesNothing) {
  const int64_t before = kit::Core::calls();
  uint8_t row[1] = {0};
  uint8_t* const rows[1] = {row};
  const int32_t index[1] = {5};
  ASSERT_EQ(qorsFillShortlist_Row_1u(index, 8, 1, rows, 1, 1, 0), qorStatusOk);
  uint8_t result;
  const int32_t first[1] = {0};
  ASSERT_EQ(qorsBuildSignTable_8u1u(first, 1, rows, 1, 1, 0, &result, 1, 8), qorStatusOk);
  EXPECT_EQ(result, 0x04);
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
