// Vectors from indices and tables: every member against a plain loop, tests of indices, faults, memory.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

template <class Index, class T>
struct Members {
  using Table = QorStatus (*)(const Index*, const T* const*, const int32_t*, const int32_t*, const int32_t*, int32_t, T*);
  using Short = QorStatus (*)(const Index*, const T* const*, const int32_t*, T*, int32_t);
  Table table;
  Short two, four;
  int32_t beyond;  // of `two`: how far above the last row an index may be
};

// Tables whose last row ends at a page that cannot be touched.
template <class T>
struct Tables {
  std::vector<kit::Area<T>> areas;
  std::vector<const T*> pointers;

  void add(kit::Random& random, int64_t elements) {
    areas.emplace_back(random.vector<T>(elements, kit::Random::kNasty), kit::Place::kAtGuard);
    pointers.push_back(areas.back().data());
  }
};

template <class Index, class T>
void checkTables(const Members<Index, T>& m) {
  kit::Random random;
  for (int32_t count = 1; count < 30; ++count) {
    for (const kit::Place place : kit::kPlaces) {
      Tables<T> tables;
      std::vector<int32_t> sizes, dimensions, strides;
      std::vector<Index> indices;
      std::vector<T> expected;
      for (int32_t j = 0; j < count; ++j) {
        dimensions.push_back(static_cast<int32_t>(random.integer(1, 9)));
        strides.push_back(static_cast<int32_t>(random.integer(1, 12)));  // also below the dimension: rows that overlap
        sizes.push_back(static_cast<int32_t>(random.integer(1, sizeof(Index) == 1 ? 300 : 400)));
        indices.push_back(static_cast<Index>(random.integer(0, std::min(sizes.back() - 1, sizeof(Index) == 1 ? 255 : 32767))));
        const int64_t first = int64_t{indices.back()} * strides.back();
        tables.add(random, first + dimensions.back());
        for (int32_t i = 0; i < dimensions.back(); ++i) expected.push_back(tables.pointers.back()[first + i]);
      }
      const kit::Area<T> result(static_cast<int64_t>(expected.size()), place);
      ASSERT_EQ(
          m.table(indices.data(), tables.pointers.data(), sizes.data(), dimensions.data(), strides.data(), count, result.data()),
          qorStatusOk);
      ASSERT_BITS(result.values(), expected);
      ASSERT_TRUE(result.edgesKept());
      // A bad number of any book: nothing is written.
      const std::vector<T> before(result.values());
      const auto refuses = [&] {
        EXPECT_EQ(
            m.table(indices.data(), tables.pointers.data(), sizes.data(), dimensions.data(), strides.data(), count, result.data()),
            qorStatusBadSize);
        EXPECT_BITS(result.values(), before);
      };
      const auto j = static_cast<std::size_t>(random.integer(0, count - 1));
      const auto with = [&](int32_t& number, int32_t value) {
        const int32_t kept = number;
        number = value;
        refuses();
        number = kept;
      };
      with(dimensions[j], 0);
      with(dimensions[j], INT32_MIN);
      with(strides[j], 0);
      with(strides[j], -1);
      with(sizes[j], indices[j]);
      with(sizes[j], 0);
      with(sizes[j], -5);
      if constexpr (sizeof(Index) == 2) {
        indices[j] = -1;
        refuses();
      }
    }
  }
}

template <int Dimension, class Index, class T, class Call>
void checkShort(const Call& call, int32_t beyond) {
  kit::Random random;
  for (int32_t length = 1; length < 45; ++length) {
    const int32_t count = length / Dimension;
    Tables<T> tables;
    std::vector<int32_t> sizes;
    std::vector<Index> indices;
    std::vector<T> expected;
    for (int32_t j = 0; j < count; ++j) {
      indices.push_back(static_cast<Index>(random.integer(0, sizeof(Index) == 1 ? 255 : 500)));
      sizes.push_back(indices.back() + (j % 3 == 0 ? 1 : 20));
      tables.add(random, (int64_t{indices.back()} + 1) * Dimension);
      for (int32_t i = 0; i < Dimension; ++i) expected.push_back(tables.pointers.back()[int64_t{indices.back()} * Dimension + i]);
    }
    tables.pointers.push_back(nullptr);  // so that there is an array
    sizes.push_back(0);
    indices.push_back(0);
    const kit::Area<T> result(int64_t{count} * Dimension, kit::kPlaces[length % 3]);
    ASSERT_EQ(call(indices.data(), tables.pointers.data(), sizes.data(), result.data(), length), qorStatusOk);
    ASSERT_BITS(result.values(), expected);
    ASSERT_TRUE(result.edgesKept());
    for (std::size_t j = 0; j < static_cast<std::size_t>(count); ++j) {
      const int32_t size = sizes[j];
      sizes[j] = indices[j];  // an index at the size
      EXPECT_EQ(call(indices.data(), tables.pointers.data(), sizes.data(), result.data(), length),
                beyond > 0 ? qorStatusOk : qorStatusBadSize);
      sizes[j] = indices[j] - 1;
      EXPECT_EQ(call(indices.data(), tables.pointers.data(), sizes.data(), result.data(), length), qorStatusBadSize);
      sizes[j] = size;
      if constexpr (sizeof(Index) == 2) {
        const Index index = indices[j];
        indices[j] = -1;
        EXPECT_EQ(call(indices.data(), tables.pointers.data(), sizes.data(), result.data(), length), qorStatusBadSize);
        indices[j] = index;
      }
      EXPECT_BITS(result.values(), expected);
    }
  }
}

template <class Index, class T>
void checkFaults(const Members<Index, T>& m) {
  struct A {
    const Index* indices;
    const T* const* tables;
    const int32_t *sizes, *dimensions, *strides;
    int32_t count;
    T* result;
  };
  const std::vector<Index> indices(8, 0);
  const std::vector<T> row(8, 5);
  const std::vector<const T*> tables(8, row.data());
  const std::vector<int32_t> ones(8, 1);
  std::vector<T> result(8, 77);
  const A valid = {indices.data(), tables.data(), ones.data(), ones.data(), ones.data(), 8, result.data()};
  kit::FaultTable<A>(valid,
                     [&](const A& a) { return m.table(a.indices, a.tables, a.sizes, a.dimensions, a.strides, a.count, a.result); },
                     {{result.data(), 8}})
      .fault("null indices", qorStatusNullPointer, &A::indices, nullptr)
      .fault("null tables", qorStatusNullPointer, &A::tables, nullptr)
      .fault("null sizes", qorStatusNullPointer, &A::sizes, nullptr)
      .fault("null dimensions", qorStatusNullPointer, &A::dimensions, nullptr)
      .fault("null strides", qorStatusNullPointer, &A::strides, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("no books", qorStatusBadSize, &A::count, 0)
      .fault("books below zero", qorStatusBadSize, &A::count, INT32_MIN)
      .check();
  for (const auto member : {m.two, m.four}) {
    kit::FaultTable<A>(valid, [&](const A& a) { return member(a.indices, a.tables, a.sizes, a.result, a.count); },
                       {{result.data(), 8}})
        .fault("null indices", qorStatusNullPointer, &A::indices, nullptr)
        .fault("null tables", qorStatusNullPointer, &A::tables, nullptr)
        .fault("null sizes", qorStatusNullPointer, &A::sizes, nullptr)
        .fault("null result", qorStatusNullPointer, &A::result, nullptr)
        .fault("length zero", qorStatusBadSize, &A::count, 0)
        .check();
  }
}

template <class Index, class T>
void checkAll(const Members<Index, T>& m) {
  const int64_t before = kit::Core::calls();
  checkTables(m);
  checkShort<2, Index, T>(m.two, m.beyond);
  checkShort<4, Index, T>(m.four, 0);
  checkFaults(m);
  EXPECT_EQ(kit::Core::calls(), before);
}

TEST(VectorForming, ShortIndicesShortRows) {
  checkAll<int16_t, int16_t>({qorsFormVector_16s16s, qorsFormVector_2i_16s16s, qorsFormVector_4i_16s16s, 0});
}
TEST(VectorForming, ShortIndicesFloatRows) {
  checkAll<int16_t, float>({qorsFormVector_16s32f, qorsFormVector_2i_16s32f, qorsFormVector_4i_16s32f, 1});
}
TEST(VectorForming, ByteIndicesShortRows) {
  checkAll<uint8_t, int16_t>({qorsFormVector_8u16s, qorsFormVector_2i_8u16s, qorsFormVector_4i_8u16s, 0});
}
TEST(VectorForming, ByteIndicesFloatRows) {
  checkAll<uint8_t, float>({qorsFormVector_8u32f, qorsFormVector_2i_8u32f, qorsFormVector_4i_8u32f, 0});
}

TEST(VectorForming, KeepsTheEnvironment) {
  const std::vector<int16_t> indices(4, 0);
  const std::vector<float> row(4, 5.0F);
  const std::vector<const float*> tables(4, row.data());
  const std::vector<int32_t> ones(4, 1);
  std::vector<float> result(8);
  kit::expectEnvironmentKept([&] { qorsFormVector_2i_16s32f(indices.data(), tables.data(), ones.data(), result.data(), 8); });
}

}  // namespace
