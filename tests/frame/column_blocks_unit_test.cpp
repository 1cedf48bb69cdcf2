// Walks over columns in blocks: every column is visited, none outside, and none twice where a body works in place.
#include "frame/column_blocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

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
