// Builds the grid of a codebook of one element or two, if it pays: see codebook_grid.h for what it is.
//
// The number of cells grows while that saves more than a twentieth of the cost, the number of codewords that a search compares. A
// line of n cells costs 2 height / n, unless a cell is empty. A plane costs the mean number of candidates of a cell: codewords whose
// least distance to the edge of the cell is not above the smallest greatest distance of all codewords. Edges of the range are widened
// by a tenth of their magnitude, but the width of a cell comes from the range itself (required).
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

#include "quantise/codebook_grid.h"
#include "quantise/margins.h"

namespace qorsr {

inline constexpr float kNoGrid = std::numeric_limits<float>::max();

// The range of one element of all rows.
struct GridRange {
  float least, most;

  float low() const { return least > 0.0F ? least * 0.9F : least * 1.1F; }
  float high() const { return most > 0.0F ? most * 1.1F : most * 0.9F; }
  float span() const { return most > least ? most - least : least - most; }
  float cellWidth(int32_t cells) const { return span() * 1.1F / static_cast<float>(cells); }
};
template <class T>
GridRange rangeOf(StridedRows<const T> book, int32_t height, int32_t element) {
  T least = book[0][element], most = least;
  for (int32_t r = 1; r < height; ++r) {
    const T x = book[r][element];
    if (x < least) least = x;
    if (x > most) most = x;
  }
  return {static_cast<float>(least), static_cast<float>(most)};
}

inline bool paysOff(float cost, float most) {
  return isBelow(static_cast<double>(cost), static_cast<double>(most)) ||
         isClose(static_cast<double>(cost), static_cast<double>(most));
}

// ---- Lines ----

template <class T>
class LineGridBuilder {
 public:
  LineGridBuilder(StridedRows<const T> book, int32_t height) : book_(book), height_(height), range_(rangeOf(book, height, 0)) {}

  // The grid, or null; without memory for it the status says so.
  QorStatus build(void** result) const {
    int32_t cells = 4;
    float cost = costOf(cells);
    for (float next = costOf(cells + 1); cost - next > 0.05F * cost; next = costOf(cells + 1)) {
      cost = next;
      ++cells;
    }
    if (!paysOff(cost, static_cast<float>(height_) / 5.0F)) return qorStatusOk;
    *result = allocateGrid(shapeOf(cells), int64_t{height_} + 2 * int64_t{cells});
    if (*result == nullptr) return qorStatusNoMemory;
    fill(gridIn(*result));
    return qorStatusOk;
  }

 private:
  static constexpr int32_t kMostCells = 64;

  CodebookGrid shapeOf(int32_t cells) const { return {cells, 0, range_.cellWidth(cells), 0.0F, range_.low(), 0.0F, 0}; }
  float value(int32_t r) const { return static_cast<float>(book_[r][0]); }

  // A row behind the last cell belongs to the last one.
  int32_t cellOfRow(const CodebookGrid& grid, int32_t r) const {
    const int32_t cell = cellOf<T>((value(r) - grid.low0) / grid.width0, grid.columns);
    return cell < 0 ? 0 : cell < grid.columns ? cell : grid.columns - 1;
  }

  float costOf(int32_t cells) const {
    if (cells > kMostCells || range_.span() < 1e-5F) return kNoGrid;
    const CodebookGrid shape = shapeOf(cells);
    bool used[kMostCells] = {};
    int32_t count = 0;
    for (int32_t r = 0; r < height_ && count < cells; ++r) {
      bool& seen = used[cellOfRow(shape, r)];
      if (!seen) ++count;
      seen = true;
    }
    return count < cells ? kNoGrid : 2.0F * static_cast<float>(height_) / static_cast<float>(cells);
  }

  // Of the rows in cells below c (or above) the one nearest to the edge that it is looked for from; -1 where there is none.
  int32_t nearestOutside(const CodebookGrid& grid, int32_t c, bool below) const {
    float best = std::numeric_limits<float>::max();
    int32_t row = -1;
    const float edge = grid.width0 * static_cast<float>(below ? c : c + 1);
    for (int32_t r = 0; r < height_; ++r) {
      const int32_t cell = cellOfRow(grid, r);
      if (below ? cell >= c : cell <= c) continue;
      const float distance = __builtin_fabsf(value(r) - grid.low0 - edge);
      if (distance < best) {
        best = distance;
        row = r;
      }
    }
    return row;
  }

  void fill(CodebookGrid& grid) const {
    int32_t* const index = grid.indexAt(0);
    int32_t filled = 0;
    for (int32_t c = 0; c < grid.columns; ++c) {
      const int32_t begin = filled;
      for (int32_t r = 0; r < height_; ++r) {
        if (cellOfRow(grid, r) == c) index[filled++] = r;
      }
      const int32_t below = c > 0 ? nearestOutside(grid, c, true) : -1;
      if (below >= 0) index[filled++] = below;
      const int32_t above = c < grid.columns - 1 ? nearestOutside(grid, c, false) : -1;
      if (above >= 0) index[filled++] = above;
      grid.lists()[c + 1] = {begin, filled - begin};
    }
    grid.lists()[0] = grid.lists()[1];
    grid.lists()[grid.columns + 1] = grid.lists()[grid.columns];
  }

  StridedRows<const T> book_;
  int32_t height_;
  GridRange range_;
};

// ---- Planes ----

template <class T>
class PlaneGridBuilder {
 public:
  PlaneGridBuilder(StridedRows<const T> book, const T* weights, int32_t height)
      : book_(book),
        weight0_(static_cast<float>(weights[0])),
        weight1_(static_cast<float>(weights[1])),
        height_(height),
        range0_(rangeOf(book, height, 0)),
        range1_(rangeOf(book, height, 1)) {}

  QorStatus build(void** result) {
    const Scratch<float> lower(height_);
    if (!lower) return qorStatusNoMemory;
    lower_ = lower.get();
    int32_t rows = 4, columns = 4;
    float best = costOf(rows, columns);
    for (;;) {
      const float a = costOf(rows + 1, columns), b = costOf(rows, columns + 1);
      const bool row = isBelow(static_cast<double>(a), static_cast<double>(b));
      const float next = row ? a : b;
      if (!(best - next > 0.05F * best)) break;
      ++(row ? rows : columns);
      best = next;
    }
    if (!paysOff(best, static_cast<float>(height_) / 10.0F)) return qorStatusOk;
    return fill(shapeOf(rows, columns), result);
  }

 private:
  // A codeword with a NaN has no bounds, and is no candidate.
  struct Bounds {
    float least, most;

    explicit Bounds(float distance) : least(distance), most(distance) {}
    void add(float distance) {
      if (isBelow(static_cast<double>(distance), static_cast<double>(least))) least = distance;
      if (isBelow(static_cast<double>(most), static_cast<double>(distance))) most = distance;
    }
  };

  CodebookGrid shapeOf(int32_t rows, int32_t columns) const {
    return {columns, rows, range0_.cellWidth(columns), range1_.cellWidth(rows), range0_.low(), range1_.high(), 0};
  }

  static bool tooNarrow(const GridRange& range) {
    const double larger = static_cast<double>(range.most > range.least ? range.most : range.least);
    return (larger < 0 ? -larger : larger) * static_cast<double>(0.0001F) >= static_cast<double>(range.span());
  }

  // To the corners of a cell, and to the feet of the perpendiculars on its edges.
  Bounds boundsOf(int32_t k, float left, float right, float top, float bottom) const {
    const float x = static_cast<float>(book_[k][0]), y = static_cast<float>(book_[k][1]);
    const auto along0 = [&](float p) { return (x - p) * (x - p) * weight0_; };
    const auto along1 = [&](float p) { return (y - p) * (y - p) * weight1_; };
    Bounds bounds(along0(left) + along1(top));
    bounds.add(along0(right) + along1(top));
    bounds.add(along0(left) + along1(bottom));
    bounds.add(along0(right) + along1(bottom));
    if (left <= x && x <= right) {
      bounds.add(along0(x) + along1(top));
      bounds.add(along0(x) + along1(bottom));
    }
    if (bottom <= y && y <= top) {
      bounds.add(along0(left) + along1(y));
      bounds.add(along0(right) + along1(y));
    }
    return bounds;
  }

  // Calls each(k) for the candidates of a cell.
  template <class Each>
  void forCandidates(const CodebookGrid& grid, int32_t row, int32_t column, const Each& each) const {
    const float left = grid.low0 + static_cast<float>(column) * grid.width0,
                right = grid.low0 + static_cast<float>(column + 1) * grid.width0,
                bottom = grid.high1 - static_cast<float>(row + 1) * grid.width1,
                top = grid.high1 - static_cast<float>(row) * grid.width1;
    float value = std::numeric_limits<float>::max();
    for (int32_t k = 0; k < height_; ++k) {
      const Bounds bounds = boundsOf(k, left, right, top, bottom);
      lower_[k] = bounds.least;
      if (isBelow(static_cast<double>(bounds.most), static_cast<double>(value))) value = bounds.most;
    }
    for (int32_t k = 0; k < height_; ++k) {
      if (paysOff(lower_[k], value)) each(k);
    }
  }

  float costOf(int32_t rows, int32_t columns) const {
    if (tooNarrow(range0_) || tooNarrow(range1_)) return kNoGrid;
    const CodebookGrid shape = shapeOf(rows, columns);
    int64_t total = 0;
    for (int32_t r = 0; r < rows; ++r) {
      for (int32_t c = 0; c < columns; ++c) forCandidates(shape, r, c, [&total](int32_t) { ++total; });
    }
    return static_cast<float>(total) / static_cast<float>(rows * columns);
  }

  // Rows that are in a list of the first or last row or column of cells, or of both: appended in order.
  void appendUnion(CodebookGrid& grid, uint8_t* marks, int32_t gridRow, int32_t gridColumn, int64_t* filled,
                   CodebookGrid::List* list) const {
    std::memset(marks, 0, static_cast<std::size_t>(height_));
    const auto mark = [&](int32_t row, int32_t column) {
      const auto cell = grid.lists()[(row + 1) * grid.entryColumns() + column + 1];
      for (int32_t i = 0; i < cell.count; ++i) marks[*grid.indexAt(cell.begin + i)] = 1;
    };
    for (int32_t c = 0; gridRow >= 0 && c < grid.columns; ++c) mark(gridRow, c);
    for (int32_t r = 0; gridColumn >= 0 && r < grid.rows; ++r) mark(r, gridColumn);
    const int64_t begin = *filled;
    for (int32_t k = 0; k < height_; ++k) {
      if (marks[k] != 0) *grid.indexAt((*filled)++) = k;
    }
    *list = {static_cast<int32_t>(begin), static_cast<int32_t>(*filled - begin)};
  }

  QorStatus fill(const CodebookGrid& shape, void** result) const {
    const Scratch<uint8_t> marks(height_);
    if (!marks) return qorStatusNoMemory;
    int64_t total = 0;
    for (int32_t r = 0; r < shape.rows; ++r) {
      for (int32_t c = 0; c < shape.columns; ++c) forCandidates(shape, r, c, [&total](int32_t) { ++total; });
    }
    *result = allocateGrid(shape, total + 8 * int64_t{height_});
    if (*result == nullptr) return qorStatusNoMemory;
    CodebookGrid& grid = gridIn(*result);
    const int32_t rows = grid.rows, columns = grid.columns, pitch = grid.entryColumns();
    int64_t filled = 0;
    for (int32_t r = 0; r < rows; ++r) {
      for (int32_t c = 0; c < columns; ++c) {
        const int64_t begin = filled;
        forCandidates(grid, r, c, [&](int32_t k) { *grid.indexAt(filled++) = k; });
        grid.lists()[(r + 1) * pitch + c + 1] = {static_cast<int32_t>(begin), static_cast<int32_t>(filled - begin)};
      }
    }
    CodebookGrid::List top, bottom, left, right;
    CodebookGrid::List* const lists = grid.lists();
    appendUnion(grid, marks.get(), 0, 0, &filled, &lists[0]);
    appendUnion(grid, marks.get(), 0, columns - 1, &filled, &lists[columns + 1]);
    appendUnion(grid, marks.get(), rows - 1, 0, &filled, &lists[(rows + 1) * pitch]);
    appendUnion(grid, marks.get(), rows - 1, columns - 1, &filled, &lists[(rows + 1) * pitch + columns + 1]);
    appendUnion(grid, marks.get(), 0, -1, &filled, &top);
    appendUnion(grid, marks.get(), rows - 1, -1, &filled, &bottom);
    appendUnion(grid, marks.get(), -1, 0, &filled, &left);
    appendUnion(grid, marks.get(), -1, columns - 1, &filled, &right);
    for (int32_t c = 1; c <= columns; ++c) {
      lists[c] = top;
      lists[(rows + 1) * pitch + c] = bottom;
    }
    for (int32_t r = 1; r <= rows; ++r) {
      lists[r * pitch] = left;
      lists[r * pitch + columns + 1] = right;
    }
    return qorStatusOk;
  }

  StridedRows<const T> book_;
  float weight0_, weight1_;
  int32_t height_;
  GridRange range0_, range1_;
  float* lower_ = nullptr;
};

}  // namespace qorsr
