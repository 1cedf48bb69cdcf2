// The record of a block-diagonal inverse covariance: b square blocks along the diagonal, held row by row.
//
// One allocation, from its first 16-byte boundary on: the record, the block sizes, one pointer a row, the rows in order of the
// blocks. Each area begins on a 16-byte boundary, and so does each row. Read-only once made.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

inline constexpr std::size_t kBlockRowAlignment = 16;

template <class T>
struct BlockMatrix {
  T** rows;             // `dimension` of them; a row has the width of its block
  int32_t* blockSizes;  // `blockCount` of them
  void* base;           // what the allocator returned
  int16_t blockCount;   // kept in 16 bits, so a caller's larger count wraps (required)
  int16_t dimension;    // sum of the block sizes, in 16 bits too
};

// Bytes up to the next 16-byte boundary.
constexpr int64_t roundUp16(int64_t bytes) { return (bytes + 15) / 16 * 16; }

// Where the areas of a record begin, in bytes behind its first 16-byte boundary, and what to allocate.
template <class T>
struct BlockMatrixLayout {
  int64_t sizes, pointers, rows, total;
  int64_t dimension = 0;

  BlockMatrixLayout(const int32_t* blockSizes, int32_t blockCount) {
    constexpr int64_t kTooLarge = int64_t{1} << 31;  // one such block refuses the allocation, and the sum cannot overflow
    int64_t rowBytes = 0;
    for (int32_t b = 0; b < blockCount; ++b) {
      const int64_t size = blockSizes[b];
      dimension += size;
      rowBytes += size > INT16_MAX ? kTooLarge : size * pitch(size);
    }
    sizes = roundUp16(sizeof(BlockMatrix<T>));
    pointers = sizes + roundUp16(int64_t{blockCount} * static_cast<int64_t>(sizeof(int32_t)));
    rows = pointers + roundUp16(dimension < kTooLarge ? dimension * static_cast<int64_t>(sizeof(T*)) : kTooLarge);
    total = rows + rowBytes + static_cast<int64_t>(kBlockRowAlignment) - 1;
  }

  // Bytes from row to row in a block of this size.
  static constexpr int64_t pitch(int64_t size) { return roundUp16(size * static_cast<int64_t>(sizeof(T))); }
};

// Lays out the record in `base`, which has the layout's total bytes, and copies sizes and rows into it.
template <class T>
BlockMatrix<T>* placeBlockMatrix(uint8_t* base, const BlockMatrixLayout<T>& layout, const T* const* source,
                                 const int32_t* blockSizes, int32_t blockCount) {
  uint8_t* const start = alignUp(base, kBlockRowAlignment);
  auto* const record = reinterpret_cast<BlockMatrix<T>*>(start);
  record->rows = reinterpret_cast<T**>(start + layout.pointers);
  record->blockSizes = reinterpret_cast<int32_t*>(start + layout.sizes);
  record->base = base;
  record->blockCount = static_cast<int16_t>(blockCount);
  record->dimension = static_cast<int16_t>(layout.dimension);
  uint8_t* next = start + layout.rows;
  int64_t r = 0;
  for (int32_t b = 0; b < blockCount; ++b) {
    const int32_t size = record->blockSizes[b] = blockSizes[b];
    for (int32_t i = 0; i < size; ++i, ++r, next += layout.pitch(size)) {
      T* const row = record->rows[r] = reinterpret_cast<T*>(next);
      for (int32_t c = 0; c < size; ++c) row[c] = source[r][c];
    }
  }
  return record;
}

}  // namespace qorsr

struct BlockDMatrix_16s : qorsr::BlockMatrix<int16_t> {};
struct BlockDMatrix_32f : qorsr::BlockMatrix<float> {};
struct BlockDMatrix_64f : qorsr::BlockMatrix<double> {};
