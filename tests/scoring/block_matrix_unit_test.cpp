// The block-diagonal record from inside: order and alignment of its areas, and that they fit at every address.
#include "scoring/block_matrix.h"

#include <gtest/gtest.h>

#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/random.h"

namespace {

std::size_t addressOf(const void* pointer) { return reinterpret_cast<std::size_t>(pointer); }

template <class T>
void expectLayout() {
  kit::Random random;
  for (const std::vector<int32_t>& sizes : {std::vector<int32_t>{1}, {3}, {13, 13, 13}, {1, 2, 3, 4, 5}, {17, 1, 9}}) {
    const auto count = static_cast<int32_t>(sizes.size());
    std::vector<std::vector<T>> rows;
    std::vector<const T*> pointers;
    for (const int32_t size : sizes) {
      for (int32_t i = 0; i < size; ++i) rows.push_back(random.vector<T>(size));
    }
    for (const auto& row : rows) pointers.push_back(row.data());
    const qorsr::BlockMatrixLayout<T> layout(sizes.data(), count);
    for (std::size_t offset = 0; offset < 32; ++offset) {
      std::vector<uint8_t> memory(static_cast<std::size_t>(layout.total) + 64);
      uint8_t* const base = qorsr::alignUp(memory.data()) + offset;
      const auto* record = qorsr::placeBlockMatrix(base, layout, pointers.data(), sizes.data(), count);
      EXPECT_EQ(record->base, base);
      EXPECT_EQ(record->blockCount, count);
      EXPECT_EQ(record->dimension, static_cast<int>(rows.size()));
      EXPECT_LT(addressOf(record) - addressOf(base), 16u);
      EXPECT_LE(addressOf(record + 1), addressOf(record->blockSizes));
      EXPECT_LE(addressOf(record->blockSizes + count), addressOf(record->rows));
      EXPECT_LE(addressOf(record->rows + rows.size()), addressOf(record->rows[0]));
      EXPECT_LE(addressOf(record->rows[rows.size() - 1] + sizes.back()), addressOf(base + layout.total));
      for (const void* area : {static_cast<const void*>(record), static_cast<const void*>(record->blockSizes),
                               static_cast<const void*>(record->rows)}) {
        EXPECT_EQ(addressOf(area) % 16, 0u);
      }
      for (std::size_t r = 0; r < rows.size(); ++r) {
        EXPECT_EQ(addressOf(record->rows[r]) % 16, 0u);
        if (r > 0) {
          EXPECT_LE(addressOf(record->rows[r - 1] + rows[r - 1].size()), addressOf(record->rows[r]));
        }
        EXPECT_BITS(std::vector<T>(record->rows[r], record->rows[r] + rows[r].size()), rows[r]);
      }
      EXPECT_BITS(std::vector<int32_t>(record->blockSizes, record->blockSizes + count), sizes);
    }
  }
}

TEST(BlockMatrix, FitsAtEveryAddress) {
  expectLayout<int16_t>();
  expectLayout<float>();
  expectLayout<double>();
}

TEST(BlockMatrix, CountsBeyond16BitsAreKeptInTheirLowHalf) {
  const std::vector<int32_t> sizes(65537, 1);
  const int16_t one = 1;
  const std::vector<const int16_t*> rows(sizes.size(), &one);
  BlockDMatrix_16s* record = nullptr;
  ASSERT_EQ(qorsBlockDMatrixInitAlloc_16s(&record, rows.data(), sizes.data(), 65537), qorStatusOk);
  EXPECT_EQ(record->blockCount, 1);
  EXPECT_EQ(record->dimension, 1);
  EXPECT_EQ(record->rows[65536][0], 1);
  EXPECT_EQ(qorsBlockDMatrixFree_16s(record), qorStatusOk);
}

}  // namespace
