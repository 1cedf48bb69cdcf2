// Quantisation: the nearest codeword of each vector of a block; of one vector the K nearest, or all within a ratio of the nearest.
//
// One vector is compared with the whole book: its squared distances fill the table in the record. Both selections are defined by
// repetition: the smallest entry, the lowest index on a tie, is taken and overwritten with the largest float. So entries below that
// come in the order of (distance, index), and what is left comes by the rule of takeSmallest().
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/bits.h"
#include "frame/convert.h"
#include "quantise/codebook_search.h"

namespace qorsr {

inline constexpr float kTaken = std::numeric_limits<float>::max();

// ---- Blocks of vectors ----

struct NoDistances {};
inline bool isNull(const NoDistances&) { return false; }

inline void storeDistance(NoDistances, int64_t, float) {}
inline void storeDistance(float* distances, int64_t r, float square) { distances[r] = __builtin_sqrtf(square); }
// The bits of a float, to be converted in place.
inline void storeDistance(int32_t* distances, int64_t r, float square) {
  const float distance = __builtin_sqrtf(square);
  std::memcpy(distances + r, &distance, sizeof(distance));
}

inline void convertInPlace(NoDistances, int64_t, int32_t) {}
inline void convertInPlace(float*, int64_t, int32_t) {}
inline void convertInPlace(int32_t* distances, int64_t count, int32_t scaleFactor) {
  if (count > 0)
    convertFloats(reinterpret_cast<const float*>(distances), distances, static_cast<int32_t>(count), kNearestEven, scaleFactor);
}

template <class State, class Distances>
QorStatus quantise(const typename State::Element* source, int32_t step, int32_t* indices, Distances distances, int32_t height,
                   const State* state, int32_t scaleFactor = 0) {
  if (QorStatus bad = Checks()
                          .null(state, source, indices, distances)
                          .size(step, height)
                          .require([&] { return step >= state->dimension; }, qorStatusBadSize))
    return bad;
  int64_t searched = 0;
  const QorStatus status = searchRows(*state, source, step, height, [&](int32_t r, const Nearest& nearest) {
    indices[r] = nearest.index;
    storeDistance(distances, r, nearest.square);
    ++searched;
  });
  convertInPlace(distances, searched, scaleFactor);
  return status;
}

// ---- The table of one vector ----

template <class State>
void fillTable(const State& state, const typename State::Element* x) {
  withWeights(state, [&](const auto& weights) {
    squaredDistances(x, bookOf(state), weights, state.count, state.dimension, scratchOf(state));
  });
}

// Indices by (value, index), as a heap or sorted.
struct ByValue {
  const float* values;
  bool operator()(int32_t a, int32_t b) const { return values[a] < values[b] || (values[a] == values[b] && a < b); }
};

// The index of the smallest value, the first of equal ones; a NaN is larger than every number.
inline int32_t smallest(const float* values, int32_t count) {
  int32_t at = 0;
  for (int32_t i = 1; i < count; ++i) {
    if (values[i] < values[at] || (values[at] != values[at] && values[i] == values[i])) at = i;
  }
  return at;
}

// Behind the `taken` ones, of which every entry below kTaken is one: the entry that the next repetitions find, each time.
inline int32_t takeSmallest(float* values, int32_t count, const int32_t* indices, int32_t taken) {
  for (int32_t i = 0; i < taken; ++i) values[indices[i]] = kTaken;
  return smallest(values, count);
}

// The K smallest values in rising order: a heap of the K best, sorted at the end. `squares` (or null) takes their values.
inline void smallestOf(float* values, int32_t count, int32_t k, int32_t* indices, float* squares) {
  const ByValue byValue{values};
  int32_t kept = 0;
  for (int32_t i = 0; i < count; ++i) {
    if (!(values[i] < kTaken)) continue;
    if (kept < k) {
      indices[kept++] = i;
      if (kept == k) std::make_heap(indices, indices + kept, byValue);
    } else if (values[i] < values[indices[0]]) {
      std::pop_heap(indices, indices + k, byValue);
      indices[k - 1] = i;
      std::push_heap(indices, indices + k, byValue);
    }
  }
  std::sort(indices, indices + kept, byValue);
  if (squares != nullptr) {
    for (int32_t i = 0; i < kept; ++i) squares[i] = values[indices[i]];
  }
  if (kept == k) return;
  const int32_t again = takeSmallest(values, count, indices, kept);
  const float first = values[again];
  // The first of them may be infinite or a NaN; overwritten like the others it is the first of equal ones, or not.
  indices[kept] = again;
  if (squares != nullptr) squares[kept] = first;
  values[again] = kTaken;
  const int32_t next = smallest(values, count);
  for (int32_t i = kept + 1; i < k; ++i) {
    indices[i] = next;
    if (squares != nullptr) squares[i] = kTaken;
  }
}

// ---- The K nearest ----

template <class State, class Distances>
QorStatus quantiseSorted(const typename State::Element* x, int32_t* indices, Distances distances, const State* state, int32_t k,
                         int32_t scaleFactor = 0) {
  if (QorStatus bad =
          Checks().null(x, indices, distances, state).size(k).require([&] { return k <= state->count; }, qorStatusBadSize))
    return bad;
  fillTable(*state, x);
  float* squares = nullptr;
  if constexpr (!std::is_same_v<Distances, NoDistances>) squares = reinterpret_cast<float*>(distances);
  smallestOf(scratchOf(*state), state->count, k, indices, squares);
  if (squares != nullptr) {
    for (int32_t i = 0; i < k; ++i) squares[i] = __builtin_sqrtf(squares[i]);
  }
  convertInPlace(distances, k, scaleFactor);
  return qorStatusOk;
}

// ---- All within a ratio of the nearest ----

// What a squared distance may be, and how a distance is given.
struct FloatLimit {
  float square;

  bool admits(float) const { return true; }
  template <class Distances>
  void store(Distances distances, int32_t i, float value) const {
    storeDistance(distances, i, value);
  }
};
struct IntegerLimit {
  float square;
  int32_t distance, scaleFactor;

  int32_t converted(float value) const {
    const float root = __builtin_sqrtf(value);
    int32_t result;
    convertFloats(&root, &result, 1, kNearestEven, scaleFactor);
    return result;
  }
  bool admits(float value) const { return converted(value) <= distance; }
  void store(int32_t* distances, int32_t i, float value) const { distances[i] = converted(value); }
};

// Gives all entries of the table up to the limit, the smallest first.
template <class Limit, class Distances>
int32_t allWithin(const Limit& limit, float* values, int32_t count, int32_t* indices, Distances distances) {
  const double most = static_cast<double>(limit.square) * 1.000001;
  if (most < 0.0) return 0;
  const auto within = [&](int32_t i) { return !(static_cast<double>(values[i]) > most); };
  int32_t found = 0, below = 0, reached = 0;
  for (int32_t i = 0; i < count; ++i) {
    if (!(values[i] < kTaken)) continue;
    ++below;
    if (!within(i)) continue;
    ++reached;
    if (limit.admits(values[i])) indices[found++] = i;
  }
  std::sort(indices, indices + found, ByValue{values});
  for (int32_t i = 0; i < found; ++i) limit.store(distances, i, values[indices[i]]);
  if (reached < below) return found;
  for (int32_t i = 0; i < count; ++i) {
    if (values[i] < kTaken) values[i] = kTaken;
  }
  int32_t at = smallest(values, count);
  for (int32_t i = below; i < count && within(at); ++i) {  // entries that are infinite or NaN, or taken again
    if (limit.admits(values[at])) {
      indices[found] = at;
      limit.store(distances, found++, values[at]);
    }
    if (values[at] != kTaken) {
      values[at] = kTaken;
      at = smallest(values, count);
    }
  }
  return found;
}

// t t d0 d0 in float.
inline float limitOf(float threshold, float distance) { return threshold * threshold * distance * distance; }

template <class State, class Distances, class LimitFrom>
QorStatus quantiseWithin(const typename State::Element* x, int32_t* indices, Distances distances, const State* state,
                         float threshold, int32_t* count, const LimitFrom& limitFrom) {
  if (QorStatus bad = Checks().null(x, indices, distances, state, count).require(!(threshold < 1.0F), qorStatusBadArgument))
    return bad;
  bool searched = false;
  Nearest nearest;
  const QorStatus status = searchRows(*state, x, state->dimension, 1, [&](int32_t, const Nearest& found) {
    nearest = found;
    searched = true;
  });
  if (status != qorStatusOk) return status;
  *count = 0;
  if (!searched) return qorStatusOk;
  fillTable(*state, x);
  *count = allWithin(limitFrom(__builtin_sqrtf(nearest.square)), scratchOf(*state), state->count, indices, distances);
  return qorStatusOk;
}

template <class State, class Distances>
QorStatus quantiseWithin(const typename State::Element* x, int32_t* indices, Distances distances, const State* state,
                         float threshold, int32_t* count) {
  return quantiseWithin(x, indices, distances, state, threshold, count,
                        [threshold](float distance) { return FloatLimit{limitOf(threshold, distance)}; });
}

// required: the nearest distance is converted first, and both limits come from the integer; so the nearest codeword itself may be
// above them.
inline QorStatus quantiseWithinScaled(const int16_t* x, int32_t* indices, int32_t* distances, const CdbkState_16s* state,
                                      float threshold, int32_t* count, int32_t scaleFactor) {
  return quantiseWithin(x, indices, distances, state, threshold, count, [=](float distance) {
    int32_t integer;
    convertFloats(&distance, &integer, 1, kNearestEven, scaleFactor);
    const auto scaled = static_cast<float>(integer);
    const float back = scaled * twoToMinus<float>(scaleFactor == INT32_MIN ? INT32_MAX : -scaleFactor);
    return IntegerLimit{limitOf(threshold, back), truncateOrLowest<int32_t>(scaled * threshold), scaleFactor};
  });
}

}  // namespace qorsr
