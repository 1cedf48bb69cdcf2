// Grids of candidate lists: what makes a full search of codewords of one or two elements a scan of a few of them.
//
// The range of the codewords is cut into cells, and each has a list of the codewords that may be nearest to a point of it. A frame of
// further lists around the cells serves points outside. A line of cells (one element) is a single row of them.
#pragma once

#include <cstdint>

#include "quantise/codebook.h"

namespace qorsr {

struct CodebookGrid {
  struct List {
    int32_t begin, count;
  };

  int32_t columns, rows;  // rows: 0 of a line
  float width0, width1;   // of a cell, along the first element and the second
  float low0, high1;      // columns run upward from low0, rows downward from high1
  int32_t indices;        // bytes from the record

  int32_t entryColumns() const { return columns + 2; }
  int32_t entries() const { return rows == 0 ? columns + 2 : (columns + 2) * (rows + 2); }
  // Lists of cells, row after row, with one more cell on each side.
  List* lists() const { return reinterpret_cast<List*>(reinterpret_cast<uintptr_t>(this) + sizeof(CodebookGrid)); }
  int32_t* indexAt(int64_t i) const {
    return reinterpret_cast<int32_t*>(reinterpret_cast<uintptr_t>(this) + static_cast<uintptr_t>(indices)) + i;
  }
};

// The cell of a quotient: -1 below the first cell, `cells` behind the last. required: 16-bit elements add a thousandth.
template <class T>
int32_t cellOf(float quotient, int32_t cells) {
  if (quotient < 0.0F) return -1;
  const double place = static_cast<double>(quotient) + (sizeof(T) == 2 ? 0.001 : 0.0);
  return place < cells ? static_cast<int32_t>(place) : cells;
}

// The list for a vector of one element or two.
template <class T>
CodebookGrid::List listFor(const CodebookGrid& grid, const T* x) {
  const int32_t column = cellOf<T>((static_cast<float>(x[0]) - grid.low0) / grid.width0, grid.columns);
  if (grid.rows == 0) return grid.lists()[column + 1];
  const int32_t row = cellOf<T>((grid.high1 - static_cast<float>(x[1])) / grid.width1, grid.rows);
  return grid.lists()[(row + 1) * grid.entryColumns() + column + 1];
}

inline CodebookGrid& gridIn(void* block) { return *static_cast<CodebookGrid*>(alignUp(block)); }
inline const CodebookGrid& gridOf(const CodebookRecord& record) { return gridIn(record.grid); }

// A block for a grid with room for `indexCount` entries of all lists; null when there is no memory.
inline void* allocateGrid(const CodebookGrid& shape, int64_t indexCount) {
  const int64_t lists = int64_t{shape.entries()} * static_cast<int64_t>(sizeof(CodebookGrid::List)),
                indices = static_cast<int64_t>(sizeof(CodebookGrid)) + lists;
  void* const block = allocateBytes(indices + indexCount * 4 + static_cast<int64_t>(kAreaAlignment) - 1);
  if (block == nullptr) return nullptr;
  gridIn(block) = shape;
  gridIn(block).indices = static_cast<int32_t>(indices);
  return block;
}

}  // namespace qorsr
