// Walks over columns in blocks: every column is visited, none outside, and none twice where a body works in place.
#include "frame/column_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "frame/chunks.h"

namespace {

using namespace qorsr;

template <class T>
void expectCover() {
  for (int32_t width = 1; width <= 3 * kWidestBlock<T> + 5; ++width) {
    std::vector<int> visits(static_cast<std::size_t>(width), 0), visitsOnce = visits;
    const auto count = [width](std::vector<int>& into) {
      return [&into, width](int32_t column, auto lanes) {
        ASSERT_GE(column, 0);
        ASSERT_LE(column + lanes, width) << "width " << width;
        for (int i = 0; i < lanes; ++i) ++into[static_cast<std::size_t>(column + i)];
      };
    };
    coverColumns<T>(width, count(visits));
    coverColumnsOnce<T>(width, count(visitsOnce));
    for (int32_t c = 0; c < width; ++c) {
      EXPECT_GE(visits[static_cast<std::size_t>(c)], 1) << "column " << c << " of " << width;
      EXPECT_EQ(visitsOnce[static_cast<std::size_t>(c)], 1) << "column " << c << " of " << width;
    }
  }
}

TEST(ColumnBlocks, CoverEveryColumn) {
  expectCover<int16_t>();
  expectCover<float>();
  expectCover<double>();
}

// In place: every element is edited once, whatever overlaps.
template <class T>
void expectLastFirst() {
  for (int32_t width = 1; width <= 3 * kOneRegister<T> + 5; ++width) {
    std::vector<T> values(static_cast<std::size_t>(width) + 1, T(7)), expected(values.size(), T(8));
    expected.back() = T(7);
    coverLastFirst<T>(
        width, [&](int32_t c, auto n) { return Lanes<T, n>::load(values.data() + c) + Lanes<T, n>(T(1)); },
        [&](int32_t c, const auto& v) { v.store(values.data() + c); });
    EXPECT_EQ(values, expected) << "width " << width;
  }
}

TEST(ColumnBlocks, LastFirstEditsEachElementOnce) {
  expectLastFirst<int16_t>();
  expectLastFirst<float>();
  expectLastFirst<double>();
}

TEST(ColumnBlocks, ChunksMakeUpTheWhole) {
  for (const int32_t most : {1, 2, 128, INT32_MAX}) {
    for (const int32_t count : {INT32_MIN, -1, 0, 1, 127, 128, 129, 1000}) {
      int32_t next = 0;
      for (const Chunk chunk : chunksOf(count, most)) {
        ASSERT_EQ(chunk.first, next);
        ASSERT_TRUE(chunk.count == most || (chunk.count < most && chunk.first + chunk.count == count));
        next += chunk.count;
      }
      EXPECT_EQ(next, std::max(count, 0)) << count << " by " << most;
    }
  }
  int32_t chunks = 0, last = 0;
  for (const Chunk chunk : chunksOf(INT32_MAX, 1 << 30)) ++chunks, last = chunk.first + (chunk.count - 1);
  EXPECT_EQ(chunks, 2);
  EXPECT_EQ(last, INT32_MAX - 1);
}

// Whatever the tiles: each column sees all rows in order, once, and every tile but the last has an even number of rows.
TEST(ColumnBlocks, TilesOfRowsFollowEachOther) {
  for (const int32_t width : {1, 15, 40, 64, 300, 5000}) {
    for (const int32_t height : {1, 2, 3, 7, 64, 501, 4000}) {
      std::vector<int32_t> next(static_cast<std::size_t>(width), 0);
      coverColumnsInTiles<float>(width, height, 4, [&](int32_t column, auto lanes, int32_t first, int32_t end) {
        ASSERT_LT(first, end);
        ASSERT_TRUE(end == height || (end - first) % 2 == 0);
        for (int i = 0; i < lanes; ++i) {
          int32_t& seen = next[static_cast<std::size_t>(column + i)];
          ASSERT_TRUE(seen == first || (first == 0 && seen == height)) << "an overlapping block may only repeat a whole column";
          seen = end;
        }
      });
      for (const int32_t seen : next) ASSERT_EQ(seen, height) << width << " x " << height;
    }
  }
}

}  // namespace
