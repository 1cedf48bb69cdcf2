// Codebooks: rows (codewords) that vectors are quantised to, and what speeds up their search.
//
// One block holds the record, the book (count rows, stride apart), the weights and a scratch table of one float a row. The record
// keeps the places of these areas as offsets from itself: it is laid out alike in the caller's memory and on every target. A grid of
// candidate lists (codebook_grid.h) or a tree (codebook_tree.h) is a block of its own, in allocated codebooks alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "frame/memory.h"
#include "qorsr.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

// What is the same for both element types.
struct [[gnu::packed]] CodebookRecord {
  int32_t last;  // index of the last row; of a tree the greatest depth of a leaf, the root's being 1
  int32_t count;
  int32_t dimension;
  int32_t stride;
  int32_t mode;
  int32_t book;
  uint32_t flags;
  int32_t weights;
  int32_t indexBits;  // that write the largest index
  int32_t scratch;
  void* grid;  // blocks of their own, as they were allocated: see gridOf() and treeOf()
  void* tree;
};

enum CodebookMode : int32_t { kEveryRow = 1, kSplitBySpread = 2, kSplitByMembers = 3 };
enum CodebookFlag : uint32_t { kHasGrid = 1, kWeighted = 2 };

// Of a size that is given: no more codewords.
inline constexpr int32_t kMaxCodewords = 16383;

inline bool isTreeMode(int32_t mode) { return mode == kSplitBySpread || mode == kSplitByMembers; }

}  // namespace qorsr

struct [[gnu::packed]] CdbkState_32f : qorsr::CodebookRecord {
  using Element = float;
};
struct [[gnu::packed]] CdbkState_16s : qorsr::CodebookRecord {
  using Element = int16_t;
};

namespace qorsr {

template <class T>
T* areaAt(const CodebookRecord& record, int32_t offset) {
  return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(&record) + static_cast<uintptr_t>(offset));
}
template <class State>
StridedRows<const typename State::Element> bookOf(const State& state) {
  return {areaAt<const typename State::Element>(state, state.book), state.stride};
}
template <class State>
const typename State::Element* weightsOf(const State& state) {
  return areaAt<const typename State::Element>(state, state.weights);
}
inline float* scratchOf(const CodebookRecord& record) { return areaAt<float>(record, record.scratch); }

// Calls f with the weights as a kernel takes them: one row for all, or nothing to read where every weight is 1.
template <class State, class F>
auto withWeights(const State& state, const F& f) {
  if ((state.flags & kWeighted) != 0) return f(SharedRow{weightsOf(state)});
  return f(UnitRows{});
}

// ---- Layout ----

// The step, rounded up to a multiple of `multiple`; rows of 1, 2, 4 (and `packedToo`) elements have no gaps.
inline int64_t rowStride(int32_t dimension, int32_t step, int32_t multiple, int32_t packedToo = 0) {
  if (dimension == 1 || dimension == 2 || dimension == 4 || dimension == packedToo) return dimension;
  return (int64_t{step} + multiple - 1) / multiple * multiple;
}

template <class State>
inline constexpr int32_t kRecordSlack = 0;
template <>
inline constexpr int32_t kRecordSlack<CdbkState_32f> = 144;
template <>
inline constexpr int32_t kRecordSlack<CdbkState_16s> = 176;

// Bytes of a block of `rows` rows; the record and the gaps in front of its three areas fit the slack at any address that an element
// may have. Beyond 63 bits: more than any memory.
template <class State>
int64_t codebookBytes(int32_t dimension, int64_t stride, int64_t rows) {
  constexpr auto kElement = static_cast<int64_t>(sizeof(typename State::Element));
  static_assert(sizeof(State) + 3 * (kAreaAlignment - kElement) <= kRecordSlack<State>);
  if (stride > INT64_MAX / 16 / rows) return INT64_MAX;
  return (stride * rows + dimension) * kElement + rows * 4 + kRecordSlack<State>;
}

inline int32_t bitsOfIndex(int32_t count) {
  int32_t bits = 0;
  for (int32_t last = count - 1; last > 0; last /= 2) ++bits;
  return bits;
}

// Lays out book, weights and scratch behind the record.
template <class State>
void place(State* state, int32_t dimension, int64_t stride, int64_t rows, int32_t mode) {
  using T = typename State::Element;
  const auto offset = [state](const void* area) {
    return static_cast<int32_t>(reinterpret_cast<uintptr_t>(area) - reinterpret_cast<uintptr_t>(state));
  };
  T* const book = alignUp(reinterpret_cast<T*>(state + 1));
  T* const weights = alignUp(book + stride * rows);
  T* const scratch = alignUp(weights + dimension);
  state->dimension = dimension;
  state->stride = static_cast<int32_t>(stride);
  state->mode = mode;
  state->book = offset(book);
  state->weights = offset(weights);
  state->scratch = offset(scratch);
  state->flags = 0;
  state->grid = nullptr;
  state->tree = nullptr;
}

template <class State>
void copyRowsIntoBook(State* state, const typename State::Element* source, int32_t step, int32_t height) {
  using T = typename State::Element;
  T* const book = areaAt<T>(*state, state->book);
  for (int64_t r = 0; r < height; ++r) {
    std::memcpy(book + r * state->stride, source + r * step, static_cast<std::size_t>(state->dimension) * sizeof(T));
  }
  state->count = height;
  state->last = height - 1;
}

// ---- In the caller's memory: ready rows, to be searched ----

inline bool badCodebookSizes(int32_t dimension, int32_t step, int32_t height, int32_t size) {
  return dimension < 1 || step < 1 || height < 1 || size < 1 || dimension > step || size > kMaxCodewords;
}

template <class State, class... Pointers>
QorStatus checkReadyRows(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode, const Pointers&... pointers) {
  return Checks()
      .require(!isTreeMode(mode), qorStatusBadCodebookMode)
      .null(pointers...)
      .require(!badCodebookSizes(dimension, step, height, size) && height == size, qorStatusBadSize)
      .require([&] { return codebookBytes<State>(dimension, rowStride(dimension, step, 8), size) <= INT32_MAX; }, qorStatusBadSize);
}

template <class State>
QorStatus codebookGetSize(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode, int32_t* bytes) {
  if (QorStatus bad = checkReadyRows<State>(dimension, step, height, size, mode, bytes)) return bad;
  *bytes = static_cast<int32_t>(codebookBytes<State>(dimension, rowStride(dimension, step, 8), size));
  return qorStatusOk;
}

// required: of a float codebook the bits of an index are left as the memory has them.
template <class State>
QorStatus codebookInit(State* state, const typename State::Element* source, int32_t dimension, int32_t step, int32_t height,
                       int32_t size, int32_t mode, bool setsIndexBits) {
  if (QorStatus bad = checkReadyRows<State>(dimension, step, height, size, mode, source, state)) return bad;
  place(state, dimension, rowStride(dimension, step, 8), size, mode);
  copyRowsIntoBook(state, source, step, height);
  auto* const weights = areaAt<typename State::Element>(*state, state->weights);
  for (int32_t j = 0; j < dimension; ++j) weights[j] = 1;
  if (setsIndexBits) state->indexBits = bitsOfIndex(height);
  return qorStatusOk;
}

// ---- Reading and releasing ----

inline QorStatus codebookSize(const CodebookRecord* state, int32_t* count) {
  if (QorStatus bad = Checks().null(state, count)) return bad;
  *count = state->count;
  return qorStatusOk;
}

template <class State>
QorStatus codebookRows(const State* state, typename State::Element* destination, int32_t step) {
  if (QorStatus bad =
          Checks().null(state, destination).size(step).require([&] { return step >= state->dimension; }, qorStatusBadSize))
    return bad;
  const auto book = bookOf(*state);
  for (int64_t r = 0; r < state->count; ++r) {
    std::memcpy(destination + r * step, book[r], static_cast<std::size_t>(state->dimension) * sizeof(typename State::Element));
  }
  return qorStatusOk;
}

inline QorStatus codebookFree(CodebookRecord* state) {
  if (QorStatus bad = Checks()
                          .null(state)
                          .require([&] { return state->book != 0; }, qorStatusNullPointer)
                          .require([&] { return state->mode == kEveryRow || isTreeMode(state->mode); }, qorStatusBadMode))
    return bad;
  if (state->grid != nullptr) release(state->grid);
  if (state->tree != nullptr) release(state->tree);
  release(state);
  return qorStatusOk;
}

}  // namespace qorsr
