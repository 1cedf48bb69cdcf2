// Cosine transform of log filter-bank outputs, and lifter, in one step.
//
//   dst[i - 1] = lifter[i] * sum over j of x[j] cos(pi i (j + 1/2) / N)     i = 1 .. M
//   dst[M]     = lifter[0] * sum over j of x[j]                             with the coefficient of order 0
//
// Sums of orders 1 to M: x[j] of the blocks of eight inputs joins lane j mod 8, what remains joins lane 0; a lane starts with
// its first product; the lanes are joined as
// ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)). Order 0 is one serial sum (its cosines are exactly 1). The weight is applied
// once, to the finished sum.
//
// Four orders are taken together while four remain, then two, then one; the cosines stand in the order in which they are read. A
// group of R orders has, for each block of eight inputs, eight cosines of each order, then, for each remaining input, one of each
// order: the remainder of all four sums is one vector.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numbers>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/memory.h"

// Areas are byte offsets from the record, so that it is laid out alike on every target.
struct [[gnu::packed]] DCTLifterState_32f {
  int32_t lifterLength;  // -1: the weights were given
  int32_t dctLength;
  int32_t cepstrumLength;
  int32_t hasC0;
  int32_t lifter;   // M + 1 weights, by order
  int32_t cosines;  // N x M, in the order in which they are read
};
struct [[gnu::packed]] DCTLifterState_16s {
  int32_t lifterLength;
  int32_t dctLength;
  int32_t cepstrumLength;
  int32_t hasC0;
  int32_t lifter;
  int32_t scratch;  // M + 1 results before their conversion
  int32_t cosines;
};

namespace qorsr {

// ---- Weights: where they come from, and whether the coefficient of order 0 has one ----

// lifter[i] = (1 + L/2 sin(pi i / L)) * scale: Juang, Rabiner and Wilpon, 1987. No limit for i above L.
struct SineLifter {
  static constexpr bool kHasC0 = false;
  int32_t length;
  float scale;

  bool given() const { return true; }
  bool valid() const { return length >= 1; }
  int32_t lifterLength() const { return length; }
  void fill(float* lifter, int32_t order) const {
    const float half = static_cast<float>(length) * 0.5F;
    for (int32_t i = 0; i <= order; ++i) {
      const double sine = sin(std::numbers::pi * i / length);
      lifter[i] = static_cast<float>(1.0 + static_cast<double>(half) * sine) * scale;
    }
  }
};

// The same, with a weight of order 0 that is not scaled.
struct SineLifterC0 : SineLifter {
  static constexpr bool kHasC0 = true;
  float weight0;

  void fill(float* lifter, int32_t order) const {
    SineLifter::fill(lifter, order);
    lifter[0] = weight0;
  }
};

// Orders 1 to M from the caller.
template <class T>
struct GivenLifter {
  static constexpr bool kHasC0 = false;
  const T* weights;

  bool given() const { return weights != nullptr; }
  bool valid() const { return true; }
  int32_t lifterLength() const { return -1; }
  void fill(float* lifter, int32_t order) const {
    lifter[0] = 0.0F;
    for (int32_t i = 1; i <= order; ++i) lifter[i] = static_cast<float>(weights[i - 1]);
  }
};

// The same. required: the last weight serves order M and order 0.
template <class T>
struct GivenLifterC0 : GivenLifter<T> {
  static constexpr bool kHasC0 = true;

  void fill(float* lifter, int32_t order) const {
    GivenLifter<T>::fill(lifter, order);
    lifter[0] = lifter[order];
  }
};
template <class T>
GivenLifterC0(GivenLifter<T>) -> GivenLifterC0<T>;

// ---- Sizes and layout of a block ----

// Bytes of a block; -1 if a 32-bit size cannot say them. Rows of the size rules hold N elements, rounded up to eight.
inline int64_t limitedBytes(int64_t perRow, int64_t rows, int64_t rest) {
  if (perRow > INT32_MAX / rows) return -1;
  const int64_t bytes = perRow * rows + rest;
  return bytes <= INT32_MAX ? bytes : -1;
}
inline int64_t paddedRowBytes(int32_t dctLength) { return (int64_t{dctLength} + 7) / 8 * 8 * 4; }

// 16-bit states with given weights of all orders have a rule of their own.
inline int64_t dctLifterBytesMulC016s(int32_t dctLength, int32_t order) {
  return limitedBytes(int64_t{dctLength} * 4 + 36, int64_t{order} + 1, int64_t{order} * 8 + 132);
}
template <class State>
int64_t dctLifterBytes(int32_t dctLength, int32_t order);
template <>
inline int64_t dctLifterBytes<DCTLifterState_32f>(int32_t dctLength, int32_t order) {
  return limitedBytes(paddedRowBytes(dctLength), int64_t{order} + 1, int64_t{order} * 8 + 124);
}
template <>
inline int64_t dctLifterBytes<DCTLifterState_16s>(int32_t dctLength, int32_t order) {
  return limitedBytes(paddedRowBytes(dctLength), int64_t{order} + 1, int64_t{order} * 12 + 164);
}

template <class T, class State>
T* areaOf(State* state, int32_t offset) {
  return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(state) + static_cast<uintptr_t>(offset));
}

// Takes `count` floats on the next 32-byte boundary behind `offset` bytes of the block, which moves behind them.
inline int32_t takeFloats(const void* block, int64_t& offset, int64_t count) {
  const auto base = reinterpret_cast<uintptr_t>(block);
  const uintptr_t area = (base + static_cast<uintptr_t>(offset) + (kAreaAlignment - 1)) / kAreaAlignment * kAreaAlignment;
  offset = static_cast<int64_t>(area - base) + count * 4;
  return static_cast<int32_t>(area - base);
}

// Lays out record and areas; all fit the reported size at any address, odd ones too.
template <class State>
void place(State* state, int32_t dctLength, int32_t order) {
  int64_t offset = sizeof(State);
  state->lifter = takeFloats(state, offset, int64_t{order} + 1);
  if constexpr (requires { state->scratch; }) state->scratch = takeFloats(state, offset, int64_t{order} + 1);
  state->cosines = takeFloats(state, offset, int64_t{dctLength} * order);
}

// Calls body(first order, LaneCount<count>) for the groups that cover orders 1 to `order`.
template <class Body>
inline void eachGroup(int32_t order, const Body& body) {
  int32_t i = 1;
  for (; i <= order - 3; i += 4) body(i, LaneCount<4>());
  if (i <= order - 1) {
    body(i, LaneCount<2>());
    i += 2;
  }
  if (i <= order) body(i, LaneCount<1>());
}

// cos(pi i (j + 1/2) / N), j + 1/2 formed in float.
inline float cosine(int32_t i, int32_t j, int32_t length) {
  const float middle = static_cast<float>(int64_t{j} + 1) - 0.5F;
  return static_cast<float>(cos(std::numbers::pi * i * static_cast<double>(middle) / length));
}

template <class State, class Weights>
void makeDctLifter(State* state, int32_t dctLength, int32_t order, const Weights& weights) {
  place(state, dctLength, order);
  state->lifterLength = weights.lifterLength();
  state->dctLength = dctLength;
  state->cepstrumLength = order;
  state->hasC0 = Weights::kHasC0 ? 1 : 0;
  weights.fill(areaOf<float>(state, state->lifter), order);
  float* next = areaOf<float>(state, state->cosines);
  eachGroup(order, [&](int32_t first, auto count) {
    const auto put = [&](int32_t j, int32_t r) { *next++ = cosine(first + r, j, dctLength); };
    int32_t j = 0;
    for (; j <= dctLength - 8; j += 8) {
      for (int32_t r = 0; r < count; ++r) {
        for (int32_t k = 0; k < 8; ++k) put(j + k, r);
      }
    }
    for (; j < dctLength; ++j) {
      for (int32_t r = 0; r < count; ++r) put(j, r);
    }
  });
}

// ---- Transform ----

// The eight lanes of each of R orders, in one register or two (wider ones, of two orders, gain nothing).
template <int R>
struct LaneSums {
  static constexpr int kWidth = std::min(8, kNativeLanes<float>), kCount = 8 * R / kWidth;
  Lanes<float, kWidth> sums[kCount];

  void clear() {
    for (auto& s : sums) s = Lanes<float, kWidth>(0.0F);
  }
  // Eight inputs times eight cosines of each order: the first products, or added to what there is.
  template <class From>
  [[gnu::always_inline]] void start(const From* x, const float* cosines) {
    for (int i = 0; i < kCount; ++i) sums[i] = product(i, x, cosines);
  }
  template <class From>
  [[gnu::always_inline]] void add(const From* x, const float* cosines) {
    for (int i = 0; i < kCount; ++i) sums[i] += product(i, x, cosines);
  }

  // Lanes 0 to 3 of an order, or lanes 4 to 7.
  Lanes<float, 4> low(int r) const {
    if constexpr (kWidth == 4) return sums[2 * r];
    if constexpr (kWidth == 8) return lowerHalf(sums[r]);
  }
  Lanes<float, 4> high(int r) const {
    if constexpr (kWidth == 4) return sums[2 * r + 1];
    if constexpr (kWidth == 8) return upperHalf(sums[r]);
  }

 private:
  template <class From>
  [[gnu::always_inline]] static Lanes<float, kWidth> product(int i, const From* x, const float* cosines) {
    if constexpr (R == 4) cosines = static_cast<const float*>(__builtin_assume_aligned(cosines, 16));  // so groups of four begin
    return loadAs<float, kWidth>(x + i * kWidth % 8) * Lanes<float, kWidth>::load(cosines + i * kWidth);
  }
};

// One lane in all four.
template <int K>
[[gnu::always_inline]] inline Lanes<float, 4> copiesOf(const Lanes<float, 4>& a) {
  Lanes<float, 4> v;
  v.part[0] = __builtin_shufflevector(a.part[0], a.part[0], K, K, K, K);
  return v;
}

// Four orders' lanes 0 with the products of up to seven more inputs, one after the other. Written out: as a loop they would take as
// long as all blocks. `enough`: at least four inputs end with the last one, so that one load brings them.
template <class From>
[[gnu::always_inline]] inline Lanes<float, 4> withRest(Lanes<float, 4> first, const From* x, std::ptrdiff_t count,
                                                       const float* cosines, bool enough) {
  const auto add = [&](const Lanes<float, 4>& input) __attribute__((always_inline)) {
    first += input * Lanes<float, 4>::load(static_cast<const float*>(__builtin_assume_aligned(cosines, 16)));
    cosines += 4;
  };
  if (!enough) {
    for (std::ptrdiff_t k = 0; k < count; ++k) add(Lanes<float, 4>(static_cast<float>(x[k])));
    return first;
  }
  if (count >= 4) {
    const auto four = loadAs<float, 4>(x);
    add(copiesOf<0>(four));
    add(copiesOf<1>(four));
    add(copiesOf<2>(four));
    add(copiesOf<3>(four));
    x += 4;
    count -= 4;
  }
  if (count != 0) {
    const auto last = loadAs<float, 4>(x + count - 4);
    if (count == 3) add(copiesOf<1>(last));
    if (count >= 2) add(copiesOf<2>(last));
    add(copiesOf<3>(last));
  }
  return first;
}

// Sums of R orders. `cosines` begins at theirs, and ends behind them.
template <int R, class From>
inline Lanes<float, R> cosineSums(const From* x, std::ptrdiff_t length, const float*& cosines) {
  LaneSums<R> lanes;
  std::ptrdiff_t j = 0;
  if (length < 8) {
    lanes.clear();
  } else {
    lanes.start(x, cosines);
    for (j = 8, cosines += 8 * R; j <= length - 8; j += 8, cosines += 8 * R) lanes.add(x + j, cosines);
  }
  if constexpr (R == 4) {
    const auto pairOf = [&](int r) { return lanes.low(r) + lanes.high(r); };
    const Transposed pair = transposed(pairOf(0), pairOf(1), pairOf(2), pairOf(3));
    Lanes<float, 4> first = pair.lane[0];
    if (j < length) {  // lanes 0 before their pairing, with what remains
      first = transposed(lanes.low(0), lanes.low(1), lanes.low(2), lanes.low(3)).lane[0];
      first = withRest(first, x + j, length - j, cosines, j != 0);
      cosines += 4 * (length - j);
      first += transposed(lanes.high(0), lanes.high(1), lanes.high(2), lanes.high(3)).lane[0];
    }
    return (first + pair.lane[2]) + (pair.lane[1] + pair.lane[3]);
  } else {
    float sums[R];
    for (int r = 0; r < R; ++r) {
      Lanes<float, 4> low = lanes.low(r);
      float first = low.part[0][0];
      for (std::ptrdiff_t k = 0; k < length - j; ++k) first += static_cast<float>(x[j + k]) * cosines[k * R + r];
      low.part[0][0] = first;
      sums[r] = joinHalves(low + lanes.high(r));
    }
    cosines += (length - j) * R;
    return Lanes<float, R>::load(sums);
  }
}

template <class State, class From>
void dctLifter(const From* source, float* result, const State* state) {
  const int32_t length = state->dctLength, order = state->cepstrumLength;
  const float* lifter = areaOf<const float>(state, state->lifter);
  const float* cosines = areaOf<const float>(state, state->cosines);
  // The sum of order 0 is one long chain of additions: some of it beside each group, so that it is waited for nowhere.
  constexpr int32_t kShare = 8;
  const int32_t inputs = state->hasC0 != 0 ? length : 0;
  float sum = 0.0F;
  int32_t added = 0;
  eachGroup(order, [&](int32_t first, auto count) {
    (Lanes<float, count>::load(lifter + first) * cosineSums<count>(source, length, cosines)).store(result + first - 1);
    if (inputs - added < kShare) return;
    for (int32_t k = 0; k < kShare; k += 4) {
      const auto four = loadAs<float, 4>(source + added + k);  // one load
      for (int i = 0; i < 4; ++i) sum += four.part[0][i];
    }
    added += kShare;
  });
  if (inputs != 0) {
    for (; added < inputs; ++added) sum += static_cast<float>(source[added]);
    result[order] = lifter[0] * sum;
  }
}

// ---- Family bodies ----

inline QorStatus dctLifterGetSize(int32_t dctLength, int32_t order, int32_t* size, int64_t (*bytes)(int32_t, int32_t),
                                  int32_t longest = INT32_MAX) {
  if (QorStatus bad = Checks()
                          .null(size)
                          .size(dctLength, order)
                          .require(dctLength >= order && dctLength <= longest, qorStatusBadSize)
                          .require([&] { return bytes(dctLength, order) > 0; }, qorStatusBadSize))
    return bad;
  *size = static_cast<int32_t>(bytes(dctLength, order));
  return qorStatusOk;
}

template <class Pointer, class Weights>
QorStatus checkDctLifter(Pointer* state, int32_t dctLength, int32_t order, const Weights& weights) {
  return Checks()
      .null(state)
      .require(weights.given(), qorStatusNullPointer)
      .size(dctLength, order)
      .require(weights.valid() && dctLength >= order, qorStatusBadSize);
}

template <class State, class Weights>
QorStatus dctLifterInit(State* state, int32_t dctLength, int32_t order, const Weights& weights,
                        int64_t (*bytes)(int32_t, int32_t) = dctLifterBytes<State>) {
  if (QorStatus bad = checkDctLifter(state, dctLength, order, weights)) return bad;
  if (bytes(dctLength, order) < 0) return qorStatusBadSize;
  makeDctLifter(state, dctLength, order, weights);
  return qorStatusOk;
}

template <class State, class Weights>
QorStatus dctLifterInitAlloc(State** state, int32_t dctLength, int32_t order, const Weights& weights) {
  if (QorStatus bad = checkDctLifter(state, dctLength, order, weights)) return bad;
  auto* made = reinterpret_cast<State*>(allocateElements<uint8_t>(dctLifterBytes<State>(dctLength, order)));
  if (made == nullptr) return qorStatusNoMemory;
  makeDctLifter(made, dctLength, order, weights);
  *state = made;
  return qorStatusOk;
}

template <class State>
QorStatus dctLifterFree(State* state) {
  if (state == nullptr) return qorStatusNullPointer;
  release(state);
  return qorStatusOk;
}

template <class From>
QorStatus dctLifterScaled(const From* source, int16_t* destination, DCTLifterState_16s* state, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(state, source, destination)) return bad;
  float* results = areaOf<float>(state, state->scratch);
  dctLifter(source, results, state);
  return convertFloats(results, destination, state->cepstrumLength + state->hasC0, kNearestEven, scaleFactor);
}

}  // namespace qorsr
