// The nearest codeword of each of many vectors, by what the codebook has: a full search, a grid of lists, a tree.
//
// What is defined is the order of comparisons. Full search, every weight 1: strictly nearer, in the order of the rows, from row 0 on.
// With weights, and in lists: nearer by a margin (margins.h), in order, from the largest float on. Trees: a descent that looks two
// levels ahead, then a climb from leaf to nearer leaf. A block of vectors takes each row of the book together (full search); where a
// vector's nearest row is nearer than all others by more than the margin, the order cannot show, else that vector is searched alone.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "quantise/codebook.h"
#include "quantise/codebook_grid.h"
#include "quantise/codebook_sums.h"
#include "quantise/codebook_tree.h"
#include "quantise/margins.h"
#include "scoring/frame_block.h"
#include "scoring/single_frame.h"

namespace qorsr {

// A codeword and its squared distance; index -1 where none was found.
struct Nearest {
  int32_t index = -1;
  float square = std::numeric_limits<float>::max();
};

// Vectors of a dimension up to this need no memory.
inline constexpr int32_t kStackDimension = 128;

// ---- Scans ----

inline constexpr int32_t kScanChunk = 64;

// Strictly nearer, from the first row on.
struct StrictScan {
  static void take(Nearest& nearest, float square, int32_t index) {
    if (nearest.index < 0 || square < nearest.square) nearest = {index, square};
  }
};
// Nearer by the margin, from the largest float on.
struct MarginScan {
  static void take(Nearest& nearest, float square, int32_t index) {
    if (isBelow(static_cast<double>(square), static_cast<double>(nearest.square))) nearest = {index, square};
  }
};

template <class Scan, class T, class Weights>
Nearest scanBook(const T* x, StridedRows<const T> book, const Weights& weights, int32_t count, int32_t dimension) {
  Nearest nearest;
  float squares[kScanChunk];
  for (int32_t first = 0; first < count; first += kScanChunk) {
    const int32_t n = count - first < kScanChunk ? count - first : kScanChunk;
    squaredDistances(x, StridedRows<const T>{book[first], book.stride}, weights, n, dimension, squares);
    for (int32_t i = 0; i < n; ++i) Scan::take(nearest, squares[i], first + i);
  }
  return nearest;
}

inline float weightAt(UnitRows, int32_t) { return 1.0F; }
template <class T>
float weightAt(const SharedRow<T>& weights, int32_t j) {
  return static_cast<float>(weights.row[j]);
}

// Rows of one element or two, which alone have lists: each distance by itself, in the bits of squaredDistances().
template <class T, class Weights>
Nearest scanList(const T* x, StridedRows<const T> book, const Weights& weights, const int32_t* list, int32_t count,
                 int32_t dimension) {
  Nearest nearest;
  const bool plane = dimension == 2;
  const float x0 = static_cast<float>(x[0]), x1 = plane ? static_cast<float>(x[1]) : 0.0F;
  const float w0 = weightAt(weights, 0), w1 = plane ? weightAt(weights, 1) : 0.0F;
  for (int32_t i = 0; i < count; ++i) {
    const T* const row = book[list[i]];
    const float d0 = x0 - static_cast<float>(row[0]);
    float square = d0 * d0 * w0;
    if (plane) {
      const float d1 = x1 - static_cast<float>(row[1]);
      square += d1 * d1 * w1;
    }
    if (square < nearest.square) MarginScan::take(nearest, square, list[i]);
  }
  return nearest;
}

// ---- Trees ----

// So many vectors descend together, and climb together: their chains of loads and sums overlap (vector_quantisation, tree: 2.4 at
// SSE3, 2.7 at v3, 2.8 at v4).
inline constexpr int32_t kTreeBlock = 8;

// By distances: every weight 1.
template <class T>
struct DistanceSteps {
  const CodebookTree& tree;
  StridedRows<const T> book;
  UnitRows weights;
  int32_t dimension;
  using Value = float;

  // The next node for a vector.
  int32_t next(int32_t at, const T* x) const {
    float d[4];
    squaredDistances(x, StridedRows<const T>{tree.rowsOf<T>(at, dimension), dimension}, weights, 4, dimension, d);
    const float left = d[1] < d[0] ? d[1] : d[0], right = d[3] < d[2] ? d[3] : d[2];
    return tree.children()[2 * at + (right < left ? 1 : 0)];
  }
  Value valueOf(int32_t leaf, const T* x) const { return squaredDistance(x, book[leaf], weights, dimension); }
  // To the first of the near leaves that is nearer; whether there is one. Four at a time: it is found early, as a rule.
  bool climb(int32_t& leaf, Value& own, const T* x) const {
    const int32_t* const list = tree.neighboursOf(leaf);
    const int32_t count = tree.neighbourCount;
    for (int32_t first = 0; first < count; first += 4) {
      const int32_t from = first + 4 <= count ? first : count - 4;  // at least four, or none; some are looked at twice
      float d[4];
      squaredDistances(x, IndexedRows<T>{book.base, book.stride, list + from}, weights, 4, dimension, d);
      for (int32_t i = 0; i < 4; ++i) {
        if (d[i] < own) {
          leaf = list[from + i];
          own = d[i];
          return true;
        }
      }
    }
    return false;
  }
  float squareOf(int32_t, Value own, const T*) const { return own; }
};

// By scores of Gaussian likelihood: the vector is the mean, the weights are inverse variances; larger is nearer.
// required: of 16-bit data a leaf's own score is rounded, those of rows are truncated.
template <class T>
struct TreeScores;
template <>
struct TreeScores<float> {
  using Value = float;
  explicit TreeScores(int32_t) {}
  static score::Folded<float> ofRows() { return {}; }
  static score::Folded<float> ofLeaf() { return {}; }
};
template <>
struct TreeScores<int16_t> {
  using Value = int32_t;
  int32_t scaleFactor;  // floor(log2(dimension)) + 1

  explicit TreeScores(int32_t dimension) : scaleFactor(std::bit_width(static_cast<uint32_t>(dimension))) {}
  score::Truncated ofRows() const { return score::Truncated(scaleFactor); }
  score::Rounded ofLeaf() const { return score::Rounded(scaleFactor); }
};

// Whether a score is larger than another times 1.000001. required: scores are negative as a rule, so that equal ones count as larger.
inline bool isAbove(double a, double b) { return a > b * 1.000001; }

template <class T>
struct ScoreSteps {
  const CodebookTree& tree;
  StridedRows<const T> book;
  SharedRow<T> weights;
  int32_t dimension;
  TreeScores<T> scores{dimension};
  using Value = typename TreeScores<T>::Value;

  int32_t next(int32_t at, const T* x) const {
    Value all[4];
    scoreRows(x, StridedRows<const T>{tree.rowsOf<T>(at, dimension), dimension}, 4, all);
    const auto beatsRight = [&all](Value left) {
      return isAbove(static_cast<double>(left), static_cast<double>(all[2])) &&
             isAbove(static_cast<double>(left), static_cast<double>(all[3]));
    };
    return tree.children()[2 * at + (beatsRight(all[0]) || beatsRight(all[1]) ? 0 : 1)];
  }
  Value valueOf(int32_t leaf, const T* x) const {
    Value own = 0;
    scoreOne(scores.ofLeaf(), book[leaf], diagonal(x, weights.row), dimension, &own, Value(0));
    return own;
  }
  bool climb(int32_t& leaf, Value& own, const T* x) const {
    const int32_t* const list = tree.neighboursOf(leaf);
    if (tree.neighbourCount == 0) return false;
    const T* rows[kMostNeighbours];
    for (int32_t i = 0; i < tree.neighbourCount; ++i) rows[i] = book[list[i]];
    Value all[kMostNeighbours];
    scoreRows(x, ListedRows<const T>{rows}, tree.neighbourCount, all);
    for (int32_t i = 0; i < tree.neighbourCount; ++i) {
      const auto other = static_cast<double>(all[i]), present = static_cast<double>(own);
      if (!isAbove(other, present) || isClose(other, present)) continue;
      leaf = list[i];
      own = all[i];
      return true;
    }
    return false;
  }
  float squareOf(int32_t leaf, Value, const T* x) const { return squaredDistance(x, book[leaf], weights, dimension); }

 private:
  template <class Rows>
  void scoreRows(const T* x, Rows rows, int32_t count, Value* all) const {
    scoreFrames<Write>(scores.ofRows(), rows, diagonal(x, weights.row), dimension, all, count, Value(0));
  }
};

// Vectors 0 to count - 1, up to kTreeBlock, one behind the other.
template <class Steps, class T>
void searchTree(const Steps& steps, const T* vectors, int32_t count, Nearest* found) {
  int32_t at[kTreeBlock];
  typename Steps::Value own[kTreeBlock];
  const auto vector = [&](int32_t i) { return vectors + std::ptrdiff_t{i} * steps.dimension; };
  for (int32_t i = 0; i < count; ++i) at[i] = steps.tree.isLeaf() ? ~0 : 0;
  for (bool descends = !steps.tree.isLeaf(); descends;) {
    descends = false;
    for (int32_t i = 0; i < count; ++i) {
      if (at[i] < 0) continue;
      at[i] = steps.next(at[i], vector(i));
      descends = descends || at[i] >= 0;
    }
  }
  bool climbing[kTreeBlock];
  for (int32_t i = 0; i < count; ++i) {
    at[i] = ~at[i];
    own[i] = steps.valueOf(at[i], vector(i));
    climbing[i] = true;
  }
  for (bool climbs = true; climbs;) {
    climbs = false;
    for (int32_t i = 0; i < count; ++i) {
      if (climbing[i]) climbing[i] = steps.climb(at[i], own[i], vector(i));
      climbs = climbs || climbing[i];
    }
  }
  for (int32_t i = 0; i < count; ++i) found[i] = {at[i], steps.squareOf(at[i], own[i], vector(i))};
}

template <class T>
DistanceSteps<T> stepsOf(const CodebookTree& tree, StridedRows<const T> book, UnitRows weights, int32_t dimension) {
  return {tree, book, weights, dimension};
}
template <class T>
ScoreSteps<T> stepsOf(const CodebookTree& tree, StridedRows<const T> book, SharedRow<T> weights, int32_t dimension) {
  return {tree, book, weights, dimension};
}

// ---- Full search of blocks ----

// Row k of the book in float, in `buffer` if that takes a conversion.
inline const float* rowInFloat(const float* row, int32_t, float*) { return row; }
inline const float* rowInFloat(const int16_t* row, int32_t dimension, float* buffer) {
  coverColumns<float, kNativeLanes<float>>(
      dimension, [&](int32_t j, auto n) __attribute__((always_inline)) { loadAs<float, n>(row + j).store(buffer + j); });
  return buffer;
}

// `columns` holds kBlock vectors; `buffer` one row.
template <class T, class Weigh>
[[gnu::noinline, gnu::flatten]] void strictBlock(StridedRows<const T> book, Weigh weigh, int32_t count, int32_t dimension,
                                                 const float* columns, float* buffer, Lanes<float, kBlock>* squares,
                                                 Lanes<int32_t, kBlock>* indices) {
  auto best = blockDistances(columns, rowInFloat(book[0], dimension, buffer), weigh, dimension);
  Lanes<int32_t, kBlock> index(0);
  for (int32_t k = 1; k < count; ++k) {
    const auto d = blockDistances(columns, rowInFloat(book[k], dimension, buffer), weigh, dimension);
    for (int i = 0; i < d.kParts; ++i) {
      const auto nearer = d.part[i] < best.part[i];
      best.part[i] = nearer ? d.part[i] : best.part[i];
      index.part[i] = nearer ? Lanes<int32_t, kBlock>(k).part[i] : index.part[i];
    }
  }
  *squares = best;
  *indices = index;
}
template <class T, class Weigh>
[[gnu::noinline, gnu::flatten]] NearestOfBlock marginBlock(StridedRows<const T> book, Weigh weigh, int32_t count, int32_t dimension,
                                                           const float* columns, float* buffer) {
  NearestOfBlock nearest(std::numeric_limits<float>::max());
  for (int32_t k = 0; k < count; ++k) {
    nearest.add(blockDistances(columns, rowInFloat(book[k], dimension, buffer), weigh, dimension), k);
  }
  return nearest;
}

// Scratch of a call: vectors side by side, a row of the book and the weights in float.
using BlockScratch = Scratch<float, kStackDimension*(kBlock + 2)>;

// Calls put(r, nearest) for the first vectors, as many as blocks hold, and returns their number.
template <class State, class Put>
int32_t searchFullBlocks(const State& state, const typename State::Element* source, int64_t step, int32_t height,
                         const BlockScratch& scratch, const Put& put) {
  using T = typename State::Element;
  const auto book = bookOf(state);
  const int32_t dimension = state.dimension, count = state.count;
  float* const columns = scratch.get();
  float* const buffer = columns + int64_t{dimension} * kBlock;
  const bool weighted = (state.flags & kWeighted) != 0;
  const float* const weights = weighted ? rowInFloat(weightsOf(state), dimension, buffer + dimension) : nullptr;
  int32_t r = 0;
  while (height - r > kBlock / 4) {  // fewer are searched one by one
    const int32_t n = height - r < kBlock ? height - r : kBlock;
    storeColumns(source + r * step, step, n, dimension, columns);
    float squares[kBlock], seconds[kBlock];
    int32_t indices[kBlock];
    if (!weighted) {
      Lanes<float, kBlock> square;
      Lanes<int32_t, kBlock> index;
      strictBlock(book, UnitBlockWeights(), count, dimension, columns, buffer, &square, &index);
      square.store(squares);
      index.store(indices);
    } else {
      const NearestOfBlock nearest = marginBlock(book, BlockWeights{weights}, count, dimension, columns, buffer);
      nearest.best.store(squares);
      nearest.second.store(seconds);
      nearest.index.store(indices);
    }
    for (int32_t i = 0; i < n; ++i) {
      if (weighted && !(seconds[i] > squares[i] * kClearMargin)) {
        put(r + i, scanBook<MarginScan>(source + (r + i) * step, book, SharedRow<T>{weightsOf(state)}, count, dimension));
      } else {
        put(r + i, Nearest{indices[i], squares[i]});
      }
    }
    r += n;
  }
  return r;
}

// ---- Rows of a source ----

// Calls put(r, nearest) for each of `height` vectors, `step` apart, in order; of a mode that has no search never. Status: no memory.
template <class State, class Put>
QorStatus searchRows(const State& state, const typename State::Element* source, int64_t step, int32_t height, const Put& put) {
  using T = typename State::Element;
  const int32_t dimension = state.dimension;
  const auto book = bookOf(state);
  const bool tree = isTreeMode(state.mode), full = !tree && (state.flags & kHasGrid) == 0;
  if (full) {
    const BlockScratch scratch(int64_t{dimension} * (kBlock + 2));
    if (!scratch) return qorStatusNoMemory;
    if (state.mode != kEveryRow) return qorStatusOk;
    int32_t r = searchFullBlocks(state, source, step, height, scratch, put);
    for (; r < height; ++r) {
      const T* const x = source + r * step;
      put(r, (state.flags & kWeighted) != 0 ? scanBook<MarginScan>(x, book, SharedRow<T>{weightsOf(state)}, state.count, dimension)
                                            : scanBook<StrictScan>(x, book, UnitRows{}, state.count, dimension));
    }
    return qorStatusOk;
  }
  const int32_t together = tree ? kTreeBlock : 1;
  const Scratch<T, kStackDimension * kTreeBlock> vectors(dimension > kStackDimension ? int64_t{dimension} * together : 1);
  if (!vectors) return qorStatusNoMemory;
  withWeights(state, [&](const auto& weights) {
    for (int32_t r = 0; r < height;) {
      const int32_t n = height - r < together ? height - r : together;
      Nearest found[kTreeBlock];
      for (int32_t i = 0; i < n; ++i) {
        std::memcpy(vectors.get() + int64_t{i} * dimension, source + (r + i) * step,
                    static_cast<std::size_t>(dimension) * sizeof(T));
      }
      if (tree) {
        searchTree(stepsOf(treeOf(state), book, weights, dimension), vectors.get(), n, found);
      } else {
        const CodebookGrid& grid = gridOf(state);
        const auto list = listFor(grid, vectors.get());
        found[0] = scanList(vectors.get(), book, weights, grid.indexAt(list.begin), list.count, dimension);
      }
      for (int32_t i = 0; i < n; ++i) put(r + i, found[i]);
      r += n;
    }
  });
  return qorStatusOk;
}

}  // namespace qorsr
