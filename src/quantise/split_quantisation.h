// Vectors quantised in parts, each part by a codebook of its own, and put together again from the indices.
//
// A codebook is run over all vectors before the next one is: each vector's parts are searched alone, so the order does not show.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "frame/memory.h"
#include "qorsr.h"
#include "quantise/codebook_search.h"
#include "quantise/index_formats.h"

namespace qorsr {

// Bits of an index in a stream. A codebook of ready rows of floats has what its memory held before: limited to what an index can have.
inline int32_t indexBitsOf(const CodebookRecord& record) { return std::clamp(int32_t{record.indexBits}, 0, 31); }

// What the codebooks take together.
struct PartsTogether {
  int64_t dimensions = 0, bits = 0;
  int32_t largest = 0;
};

template <class State>
bool anyNull(const State* const* states, int32_t count) {
  return std::any_of(states, states + count, [](const State* state) { return state == nullptr; });
}
template <class State>
PartsTogether together(const State* const* states, int32_t count) {
  PartsTogether all;
  for (int32_t j = 0; j < count; ++j) {
    all.dimensions += states[j]->dimension;
    all.bits += indexBitsOf(*states[j]);
    all.largest = std::max(all.largest, int32_t{states[j]->dimension});
  }
  return all;
}

// Tests of the codebooks, once their array and all sizes are known to be good.
template <class State, class Indices>
QorStatus checkParts(const State* const* states, int32_t count, const Indices& indices, int64_t rowStride) {
  if (anyNull(states, count)) return qorStatusNullPointer;
  const PartsTogether all = together(states, count);
  const bool admitted =
      std::all_of(states, states + count, [](const State* state) { return Indices::admits(int32_t{state->count}); });
  return Checks().require(admitted && all.dimensions <= rowStride && indices.holds(count, all.bits), qorStatusBadSize);
}

// Calls body(state, part, first element of the part).
template <class State, class Body>
QorStatus eachPart(const State* const* states, int32_t count, const Body& body) {
  int64_t element = 0, bit = 0;
  for (int32_t j = 0; j < count; ++j) {
    const State& state = *states[j];
    if (QorStatus bad = body(state, Part{j, bit, indexBitsOf(state)}, element)) return bad;
    element += state.dimension;
    bit += indexBitsOf(state);
  }
  return qorStatusOk;
}

// ---- Encoding ----

// Where indices go. One type for all formats: a search is much code, and stands once for each type of codebook.
struct IndexSink {
  const void* context;
  void (*store)(const void* context, int64_t row, const Part& part, int32_t index);

  template <class F>
  explicit IndexSink(const F& f)
      : context(&f),
        store([](const void* c, int64_t row, const Part& part, int32_t index) { (*static_cast<const F*>(c))(row, part, index); }) {}
  void operator()(int64_t row, const Part& part, int32_t index) const { store(context, row, part, index); }
};

// The indices of all parts of all vectors; -1 where nothing was found, and of a mode without a search.
template <class State>
QorStatus searchParts(const typename State::Element* source, int32_t sourceStride, int32_t height, const State* const* states,
                      int32_t count, IndexSink put) {
  return eachPart(states, count, [&](const State& state, const Part& part, int64_t element) -> QorStatus {
    bool searched = false;
    const QorStatus status = searchRows(state, source + element, sourceStride, height, [&](int32_t r, const Nearest& nearest) {
      put(r, part, nearest.index);
      searched = true;
    });
    if (status != qorStatusOk) return status;
    for (int32_t r = 0; !searched && r < height; ++r) put(r, part, -1);
    return qorStatusOk;
  });
}

template <class State, class Indices>
QorStatus splitQuantise(const typename State::Element* source, int32_t sourceStride, Indices indices, int32_t height,
                        const State* const* states, int32_t count) {
  if (QorStatus bad = Checks()
                          .null(states, source, indices)
                          .size(sourceStride, indices.stride, height, count)
                          .require([&] { return !anyNull(states, count); }, qorStatusNullPointer)) {
    return bad;
  }
  if (QorStatus bad = checkParts(states, count, indices, sourceStride)) return bad;
  const auto put = [&indices](int64_t r, const Part& part, int32_t index) { indices.put(r, part, index); };
  if (together(states, count).largest <= kStackDimension) {  // no search needs memory, so none fails
    indices.clear(height);
    return searchParts(source, sourceStride, height, states, count, IndexSink(put));
  }
  const Scratch<int32_t> found(int64_t{height} * count);
  if (!found) return qorStatusNoMemory;
  const auto keep = [&](int64_t r, const Part& part, int32_t index) { found[r * count + part.index] = index; };
  if (QorStatus bad = searchParts(source, sourceStride, height, states, count, IndexSink(keep))) return bad;
  indices.clear(height);
  return eachPart(states, count, [&](const State&, const Part& part, int64_t) -> QorStatus {
    for (int64_t r = 0; r < height; ++r) put(r, part, found[r * count + part.index]);
    return qorStatusOk;
  });
}

// ---- Decoding ----

// Rows of the book to a column of parts. Dimension 0: known only at run time.
template <int Dimension, class State, class Indices>
void gatherPart(const State& state, const Indices& indices, const Part& part, typename State::Element* result, int32_t stride,
                int32_t height) {
  const auto book = bookOf(state);
  const auto last = static_cast<uint32_t>(state.count) - 1;
  const auto bytes = static_cast<std::size_t>(Dimension > 0 ? Dimension : int32_t{state.dimension}) * sizeof(*result);
  for (int64_t r = 0; r < height; ++r) {
    const uint32_t index =
        std::min(static_cast<uint32_t>(indices.get(r, part)), last);  // the book's last row for one that it has not
    std::memcpy(result + r * stride, book[static_cast<int32_t>(index)], bytes);
  }
}

template <class State, class Indices>
QorStatus formVectors(Indices indices, typename State::Element* result, int32_t stride, int32_t height, const State* const* states,
                      int32_t count) {
  if (QorStatus bad = Checks().null(states, indices, result).size(count, indices.stride, stride, height)) return bad;
  if (!Indices::kBits && count > indices.stride) return qorStatusBadSize;
  if (QorStatus bad = checkParts(states, count, indices, stride)) return bad;
  return eachPart(states, count, [&](const State& state, const Part& part, int64_t element) -> QorStatus {
    const auto gather = [&]<int Dimension>(std::integral_constant<int, Dimension>) {
      gatherPart<Dimension>(state, indices, part, result + element, stride, height);
    };
    switch (state.dimension) {
      case 1:
        gather(std::integral_constant<int, 1>());
        break;
      case 2:
        gather(std::integral_constant<int, 2>());
        break;
      case 4:
        gather(std::integral_constant<int, 4>());
        break;
      case 8:
        gather(std::integral_constant<int, 8>());
        break;
      default:
        gather(std::integral_constant<int, 0>());
    }
    return qorStatusOk;
  });
}

}  // namespace qorsr
