// Codebooks made from training rows: every row a codeword, or the leaves of a tree that is grown by splits.
#pragma once

#include <cstdint>
#include <cstring>

#include "quantise/codebook.h"
#include "quantise/codebook_grid_building.h"
#include "quantise/codebook_lloyd.h"
#include "quantise/codebook_tree.h"
#include "quantise/vector_quantisation.h"

namespace qorsr {

// ---- The tree of a trained codebook ----

// The centroid of a node with children: the mean of theirs, weighted by their members. required: by repeated addition in float and
// one division; of 16-bit elements in double and truncated.
template <class T>
void storeMean(const T* left, int32_t leftMembers, const T* right, int32_t rightMembers, int32_t dimension, T* mean) {
  if constexpr (sizeof(T) == 4) {
    const auto count = static_cast<float>(int64_t{leftMembers} + rightMembers);
    coverColumns<float, kNativeLanes<float>>(
        dimension, [&](int32_t j, auto n) __attribute__((always_inline)) {
          using L = Lanes<float, n>;
          const L l = L::load(left + j), r = L::load(right + j);
          L sum(0.0F);
          for (int32_t i = 0; i < leftMembers; ++i) sum += l;
          for (int32_t i = 0; i < rightMembers; ++i) sum += r;
          (sum / L(count)).store(mean + j);
        });
  } else {
    const double count = static_cast<double>(leftMembers) + static_cast<double>(rightMembers);
    for (int32_t j = 0; j < dimension; ++j) {
      const double sum = static_cast<double>(left[j]) * leftMembers + static_cast<double>(right[j]) * rightMembers;
      mean[j] = truncateOrLowest<int16_t>(sum / count);
    }
  }
}

// Nodes with children in their order among the nodes; the centroids of all nodes; the rows that a descent compares.
template <class State>
void fillTree(const State& state, const LloydTraining<typename State::Element>& training, CodebookTree& tree, int32_t* numbers,
              typename State::Element* centroids) {
  using T = typename State::Element;
  const GrowingNode* const nodes = training.nodes();
  const int32_t dimension = state.dimension, count = training.nodeCount();
  const auto book = bookOf(state);
  const auto centroidOf = [&](int32_t node) {
    return nodes[node].left < 0 ? book[nodes[node].leaf] : centroids + int64_t{numbers[node]} * dimension;
  };
  int32_t inner = 0;
  for (int32_t i = 0; i < count; ++i) numbers[i] = nodes[i].left < 0 ? ~nodes[i].leaf : inner++;
  for (int32_t i = count - 1; i >= 0; --i) {
    const GrowingNode& node = nodes[i];
    if (node.left < 0) continue;
    storeMean<T>(centroidOf(node.left), nodes[node.left].members, centroidOf(node.right), nodes[node.right].members, dimension,
                 centroids + int64_t{numbers[i]} * dimension);
    const int32_t at = numbers[i];
    T* rows = tree.rowsOf<T>(at, dimension);
    for (const int32_t child : {node.left, node.right}) {
      const bool leaf = nodes[child].left < 0;
      for (const int32_t grandchild : {leaf ? child : nodes[child].left, leaf ? child : nodes[child].right}) {
        std::memcpy(rows, centroidOf(grandchild), static_cast<std::size_t>(dimension) * sizeof(T));
        rows += dimension;
      }
    }
    tree.children()[2 * at] = numbers[node.left];
    tree.children()[2 * at + 1] = numbers[node.right];
  }
}

// The nearest other leaves of each, by the rule of the K smallest. required: where there are fewer, what that rule repeats.
template <class State>
void fillNeighbours(const State& state, CodebookTree& tree, float* table) {
  const auto book = bookOf(state);
  const int32_t leaves = tree.leaves, wanted = tree.neighbourCount, found = wanted < leaves ? wanted : leaves;
  if (wanted == 0) return;
  withWeights(state, [&](const auto& weights) {
    for (int32_t i = 0; i < leaves; ++i) {
      squaredDistances(book[i], book, weights, leaves, state.dimension, table);
      table[i] = kTaken;
      int32_t* const list = tree.neighboursOf(i);
      smallestOf(table, leaves, found, list, nullptr);
      for (int32_t k = found; k < wanted; ++k) list[k] = list[k - 1];
    }
  });
}

template <class State>
QorStatus trainTree(State* state, const typename State::Element* source, int32_t step, int32_t height, int32_t size) {
  using T = typename State::Element;
  const int32_t dimension = state->dimension;
  const bool weighted = (state->flags & kWeighted) != 0;
  LloydTraining<T> training(source, step, weighted ? weightsOf(*state) : nullptr, dimension, height, size);
  if (!training) return qorStatusNoMemory;
  const QorStatus status = training.grow(size, state->mode);
  if (status < 0) return status;

  const int32_t leaves = training.leaves();
  T* const book = areaAt<T>(*state, state->book);
  state->count = leaves;
  state->last = 1;
  for (int32_t i = 0; i < leaves; ++i) {
    const float* const centroid = training.centroidOf(i);
    for (int32_t j = 0; j < dimension; ++j) book[int64_t{i} * state->stride + j] = static_cast<T>(centroid[j]);
  }
  for (int32_t i = 0; i < training.nodeCount(); ++i) state->last = std::max(state->last, training.nodes()[i].depth);

  const Scratch<int32_t> numbers(training.nodeCount());
  const Scratch<T> centroids(int64_t{leaves} * dimension);
  if (!numbers || !centroids) return qorStatusNoMemory;
  state->tree = allocateTree<T>(leaves, neighbourCountOf(leaves), dimension);
  if (state->tree == nullptr) return qorStatusNoMemory;
  CodebookTree& tree = treeIn(state->tree);
  fillTree(*state, training, tree, numbers.get(), centroids.get());
  fillNeighbours(*state, tree, training.table());
  return status;
}

// ---- Every row ----

template <class State>
QorStatus takeEveryRow(State* state, const typename State::Element* source, int32_t step, int32_t height, int32_t size) {
  using T = typename State::Element;
  copyRowsIntoBook(state, source, step, height);
  QorStatus status = qorStatusOk;
  void* grid = nullptr;
  if (state->dimension == 2 && height > 10) {
    status = PlaneGridBuilder<T>(bookOf(*state), weightsOf(*state), height).build(&grid);
  } else if (state->dimension == 1 && height > 10) {
    status = LineGridBuilder<T>(bookOf(*state), height).build(&grid);
  }
  if (status != qorStatusOk) return status;
  if (grid != nullptr) {
    state->grid = grid;
    state->flags ^= kHasGrid;
  }
  return size == height ? qorStatusOk : qorStatusCdbkSizeChanged;
}

// ---- Family body ----

inline int64_t trainedStride(CdbkState_32f*, int32_t dimension, int32_t step, bool everyRow) {
  return everyRow ? rowStride(dimension, step, 4, 8) : (int64_t{step} + 3) / 4 * 4;
}
inline int64_t trainedStride(CdbkState_16s*, int32_t dimension, int32_t step, bool everyRow) {
  return everyRow ? rowStride(dimension, step, 8) : (int64_t{step} + 7) / 8 * 8;
}

// Weights, or null: every one is 1.
template <class State>
QorStatus trainCodebook(State** result, const typename State::Element* source, const typename State::Element* weights,
                        int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode) {
  using T = typename State::Element;
  const auto negative = [](T w) { return w < T(0); };
  if (QorStatus bad = Checks()
                          .require(!badCodebookSizes(dimension, step, height, size) && size <= height, qorStatusBadSize)
                          .require([&] { return weights == nullptr || std::none_of(weights, weights + dimension, negative); },
                                   qorStatusBadArgument))
    return bad;
  const bool everyRow = mode == kEveryRow;
  const int64_t stride = trainedStride(static_cast<State*>(nullptr), dimension, step, everyRow), rows = everyRow ? height : size;
  auto* const state = static_cast<State*>(allocateBytes(codebookBytes<State>(dimension, stride, rows)));
  if (state == nullptr) return qorStatusNoMemory;
  place(state, dimension, stride, rows, mode);
  T* const own = areaAt<T>(*state, state->weights);
  for (int32_t j = 0; j < dimension; ++j) {
    own[j] = weights == nullptr ? T(1) : static_cast<T>(weights[j] + T(0));  // no negative zero
    if (own[j] != T(1)) state->flags = kWeighted;
  }
  QorStatus status = !everyRow && !isTreeMode(mode) ? qorStatusBadCodebookMode
                     : result == nullptr            ? qorStatusNullPointer
                                                    : qorStatusOk;
  if (status == qorStatusOk) {
    status = everyRow ? takeEveryRow(state, source, step, height, size) : trainTree(state, source, step, height, size);
  }
  if (status < 0) {
    release(state);
    return status;
  }
  state->indexBits = bitsOfIndex(state->count);
  *result = state;
  return status;
}

template <class State>
QorStatus trainUnweighted(State** result, const typename State::Element* source, int32_t dimension, int32_t step, int32_t height,
                          int32_t size, int32_t mode) {
  if (QorStatus bad = Checks().size(dimension).null(source)) return bad;
  return trainCodebook<State>(result, source, nullptr, dimension, step, height, size, mode);
}
template <class State>
QorStatus trainWeighted(State** result, const typename State::Element* source, const typename State::Element* weights,
                        int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode) {
  if (QorStatus bad = Checks().null(source, weights)) return bad;
  return trainCodebook<State>(result, source, weights, dimension, step, height, size, mode);
}

}  // namespace qorsr
