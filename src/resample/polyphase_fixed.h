// Resampling by a ratio that is known in advance, reduced to out / in: one filter row for each of `out` phases, one dot product an output.
//
//   y = min(out / in, 1) * gain * norm * (row p) . (source from the sample i + 1 - n on),   position = i + p / out
//
// A row has 2n taps around the position. Phase 0, whose position is a sample, has one more and begins one sample earlier, so that it is
// symmetric. Rows p and out - p mirror each other.
//
// Sums of floats and of doubles have 16 lanes; what remains has four, and the last tap of phase 0 comes last: (lanes joined by halves +
// four lanes joined) + last. 16-bit sums are exact.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "frame/short_dots.h"
#include "qorsr.h"
#include "resample/kaiser_sinc.h"
#include "resample/polyphase.h"

namespace qorsr {

// Areas are byte offsets from the record. Their sizes leave room for a table of the rows' addresses, which a uniform pitch makes needless.
struct [[gnu::packed]] FixedPolyphaseRecord {
  int32_t inRate, outRate;  // reduced
  float gain;
  int32_t halfLength;  // n
  int32_t accurate;    // 1: float rows and double sums
  int32_t rowLength;   // elements from one row to the next
  int32_t rows;        // bytes from the record
};

}  // namespace qorsr

struct [[gnu::packed]] ResamplePolyphaseFixedState_16s : qorsr::FixedPolyphaseRecord {
  int32_t small;  // whether the taps are so small that sums of products fit 32 bits
};
struct [[gnu::packed]] ResamplePolyphaseFixedState_32f : qorsr::FixedPolyphaseRecord {};

namespace qorsr {

// ---- Sizes and layout ----

struct Ratio {
  int32_t in, out;
};
inline Ratio reduced(int32_t in, int32_t out) {
  const int32_t common = std::gcd(in, out);
  return {in / common, out / common};
}

inline int64_t evenTaps(int32_t filterLength) { return (int64_t{filterLength} + 3) / 4 * 4; }
inline int64_t rowLengthOf(int32_t filterLength) { return (int64_t{filterLength} + 4) / 4 * 4; }

// Bytes of a block with elements of `elementBytes`; INT64_MAX where 64 bits cannot say them.
template <class State>
int64_t fixedBytes(int32_t out, int32_t filterLength, int64_t elementBytes) {
  const int64_t phases = out, row = rowLengthOf(filterLength);
  if (row > INT64_MAX / 4 / (phases * elementBytes)) return INT64_MAX;
  return (phases + 7) / 8 * 16 + static_cast<int64_t>(sizeof(State)) + (phases + 4) / 4 * 16 + row * phases * elementBytes;
}

template <class State>
struct FixedLimits;
template <>
struct FixedLimits<ResamplePolyphaseFixedState_16s> {
  static constexpr int64_t kMostBytes = 2147483646, kElementBytes = 2;
  static bool allows(int32_t hint) { return hint == 1; }
};
template <>
struct FixedLimits<ResamplePolyphaseFixedState_32f> {  // required: one byte less
  static constexpr int64_t kMostBytes = 2147483645, kElementBytes = 4;
  static bool allows(int32_t) { return true; }
};

template <class State>
QorStatus checkFixedSize(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t hint) {
  using Limits = FixedLimits<State>;
  return Checks()
      .size(inRate, outRate, filterLength)
      .require(Limits::allows(hint), qorStatusBadArgument)
      .require(
          [&] {
            return fixedBytes<State>(reduced(inRate, outRate).out, filterLength, Limits::kElementBytes) <= Limits::kMostBytes;
          },
          qorStatusBadSize);
}

template <class State>
QorStatus fixedGetSize(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t* size, int32_t* rowLength, int32_t* rows,
                       int32_t hint) {
  if (QorStatus bad = Checks().null(size, rowLength, rows)) return bad;
  if (QorStatus bad = checkFixedSize<State>(inRate, outRate, filterLength, hint)) return bad;
  const int32_t out = reduced(inRate, outRate).out;
  *size = static_cast<int32_t>(fixedBytes<State>(out, filterLength, FixedLimits<State>::kElementBytes));
  *rowLength = static_cast<int32_t>(rowLengthOf(filterLength));
  *rows = out;
  return qorStatusOk;
}

template <class Element, class Record>
auto* rowOf(Record* record, int64_t row) {
  using Byte = std::conditional_t<std::is_const_v<Record>, const std::byte, std::byte>;
  using Target = std::conditional_t<std::is_const_v<Record>, const Element, Element>;
  return reinterpret_cast<Target*>(reinterpret_cast<Byte*>(record) + record->rows) + row * record->rowLength;
}

// Lays out the record, with rows of zeros.
template <class State>
void placeFixed(State* state, Ratio ratio, int32_t filterLength, bool accurate, int64_t elementBytes, float gain) {
  state->inRate = ratio.in;
  state->outRate = ratio.out;
  state->gain = gain;
  state->halfLength = static_cast<int32_t>(evenTaps(filterLength) / 2);
  state->accurate = accurate ? 1 : 0;
  state->rowLength = static_cast<int32_t>(rowLengthOf(filterLength));
  auto* const block = reinterpret_cast<std::byte*>(state);
  state->rows = static_cast<int32_t>(alignUp(block + sizeof(State), 16) - block);
  std::memset(block + state->rows, 0, static_cast<std::size_t>(rowLengthOf(filterLength) * ratio.out * elementBytes));
}

// Every fourth sum of pairs of products, which four lanes or more keep apart, stays below 2^31 where the magnitudes of its taps add up to
// less than 2^16.
inline void findSmallTaps(ResamplePolyphaseFixedState_16s* state) {
  bool small = state->accurate == 0;
  for (int64_t r = 0; small && r < state->outRate; ++r) {
    const int16_t* const row = rowOf<int16_t>(state, r);
    int64_t magnitudes[4] = {};
    for (int64_t k = 0; k < state->rowLength; ++k) magnitudes[k / 2 % 4] += row[k] < 0 ? -int64_t{row[k]} : int64_t{row[k]};
    for (const int64_t magnitude : magnitudes) small = small && magnitude < 65536;
  }
  state->small = small ? 1 : 0;
}
inline void findSmallTaps(ResamplePolyphaseFixedState_32f*) {}

inline constexpr float kShortGain = 0x1p-14F;  // of rows of 16-bit numbers

template <class State>
QorStatus fixedInit(State* state, int32_t inRate, int32_t outRate, int32_t filterLength, int32_t hint) {
  if (QorStatus bad = Checks().null(state)) return bad;
  if (QorStatus bad = checkFixedSize<State>(inRate, outRate, filterLength, hint)) return bad;
  constexpr bool kShort = std::is_same_v<State, ResamplePolyphaseFixedState_16s>;
  placeFixed(state, reduced(inRate, outRate), filterLength, !kShort && hint == kAccurate, FixedLimits<State>::kElementBytes,
             kShort ? kShortGain : 1.0F);
  findSmallTaps(state);
  return qorStatusOk;
}

// ---- Design ----

// The last entry of the prototype, in steps of 1 / max(in, out) of a sample of the lower rate. required: the roundings to float.
inline int64_t lastEntry(Ratio ratio, int32_t filterLength) {
  const auto half = [](double taps) {
    return static_cast<float>(static_cast<double>(static_cast<float>(static_cast<double>(static_cast<float>(taps)) + 1e-5)) * 0.5);
  };
  const auto taps = static_cast<double>(evenTaps(filterLength));
  const float last = ratio.out >= ratio.in
                         ? half(taps) * static_cast<float>(ratio.out)
                         : half(taps * (static_cast<double>(ratio.out) / ratio.in)) * static_cast<float>(ratio.in);
  return static_cast<int64_t>(last);
}

// Unit gain at frequency zero: the taps of phase 0 add up to 1.
inline double unitGain(const double* t, Ratio ratio, int64_t last, int64_t halfLength) {
  double side = 0.0;
  if (ratio.out >= ratio.in) {
    for (int64_t j = 1; j < halfLength && j * ratio.out <= last; ++j) side += t[j * ratio.out];
    return 1.0 / (side + t[0] + t[last] + t[last] + side);
  }
  for (int64_t k = ratio.in; k <= last; k += ratio.in) side += t[k];
  return 1.0 / (side + t[0] + side);
}

inline void storeTap(double value, float* tap) { *tap = static_cast<float>(value); }
inline void storeTap(double value, int16_t* tap) { *tap = nearestShort(value * 16384.0); }

// Tap j to either side of row p lies j + p / out samples from the position; behind the end of the prototype there is nothing.
template <class Element, class State>
void storeRows(State* state, const double* t, int64_t last, double gain) {
  const int64_t n = state->halfLength, out = state->outRate;
  const auto entry = [&](int64_t k) { return k <= last ? t[k] * gain : 0.0; };
  auto* const middle = rowOf<Element>(state, 0) + n;
  storeTap(entry(0), middle);
  for (int64_t j = 1; j < n; ++j) {
    storeTap(entry(j * out), middle - j);
    storeTap(entry(j * out), middle + j);
  }
  storeTap(entry(last), middle - n);
  if (2 * n < state->rowLength) storeTap(entry(last), middle + n);
  for (int64_t p = 1; p < out; ++p) {
    for (int64_t j = 0; j < n; ++j) {
      storeTap(entry(p + j * out), rowOf<Element>(state, out - p) + n + j);
      storeTap(entry(p + j * out), rowOf<Element>(state, p) + n - 1 - j);
    }
  }
}

template <class Element, class State>
QorStatus makeFixed(State** state, Ratio ratio, int32_t filterLength, float rollOff, float alpha, bool accurate) {
  const int64_t last = lastEntry(ratio, filterLength), bytes = fixedBytes<State>(ratio.out, filterLength, sizeof(Element));
  const Scratch<double> t(last + 1);
  if (!t) return qorStatusNoMemory;
  auto* made = static_cast<State*>(allocateBytes(bytes));
  if (made == nullptr) return qorStatusNoMemory;
  placeFixed(made, ratio, filterLength, accurate, sizeof(Element), std::is_same_v<Element, int16_t> ? kShortGain : 1.0F);
  const auto end = static_cast<double>(last);
  fillKaiserSinc(t.get(), last, std::max(ratio.in, ratio.out), rollOff, alpha,
                 [=](const auto& k) { return k / Lanes<double, 8>(end); });
  storeRows<Element>(made, t.get(), last, unitGain(t.get(), ratio, last, made->halfLength));
  findSmallTaps(made);
  *state = made;
  return qorStatusOk;
}

// The rows of an accurate 16-bit state are floats.
template <class State>
QorStatus fixedInitAlloc(State** state, int32_t inRate, int32_t outRate, int32_t filterLength, float rollOff, float alpha,
                         int32_t hint) {
  constexpr bool kShortState = std::is_same_v<State, ResamplePolyphaseFixedState_16s>;
  const bool accurate = hint == kAccurate, shortRows = kShortState && !accurate;
  if (QorStatus bad =
          Checks()
              .null(state)
              .size(inRate, outRate, filterLength)
              .require(!(rollOff <= 0.0F || rollOff > 1.0F || alpha < 1.0F), qorStatusBadArgument)
              .require(
                  [&] { return fixedBytes<State>(reduced(inRate, outRate).out, filterLength, shortRows ? 2 : 4) <= 2147483646; },
                  qorStatusBadArgument)) {
    return bad;
  }
  const Ratio ratio = reduced(inRate, outRate);
  return shortRows ? makeFixed<int16_t>(state, ratio, filterLength, rollOff, alpha, accurate)
                   : makeFixed<float>(state, ratio, filterLength, rollOff, alpha, accurate);
}

// ---- Filters of the caller ----

// Calls body(row of the state, row of the buffer, elements) for the rows that both have.
template <class Element, class State, class Buffer, class Body>
QorStatus eachFilterRow(State* state, Buffer* filter, int32_t rowLength, int32_t rows, const Body& body) {
  if (QorStatus bad = Checks().null(state, filter).size(rowLength, rows)) return bad;
  const auto elements = static_cast<std::size_t>(std::min(state->rowLength, rowLength));
  for (int64_t r = 0; r < std::min(rows, state->outRate); ++r) {
    body(rowOf<Element>(state, r), filter + r * rowLength, elements * sizeof(Element));
  }
  return qorStatusOk;
}
template <class State, class Element>
QorStatus getFixedFilter(const State* state, Element* filter, int32_t rowLength, int32_t rows) {
  return eachFilterRow<Element>(state, filter, rowLength, rows,
                                [](const Element* row, Element* buffer, std::size_t bytes) { std::memcpy(buffer, row, bytes); });
}
template <class State, class Element>
QorStatus setFixedFilter(State* state, const Element* filter, int32_t rowLength, int32_t rows) {
  const QorStatus status =
      eachFilterRow<Element>(state, filter, rowLength, rows,
                             [](Element* row, const Element* buffer, std::size_t bytes) { std::memcpy(row, buffer, bytes); });
  if (status == qorStatusOk) findSmallTaps(state);
  return status;
}

// ---- Dot products ----

// Sum over taps of row[k] x[k], both as type Sum. There are 4m taps, or 4m + 1.
template <class Sum, class Sample>
double realDot(const float* row, const Sample* x, int64_t taps) {
  constexpr int kWidth = 16;
  Lanes<Sum, kWidth> sums(Sum(0));
  Lanes<Sum, 4> rest(Sum(0));
  int64_t k = 0;
  for (; k <= taps - kWidth; k += kWidth) sums += loadAs<Sum, kWidth>(row + k) * loadAs<Sum, kWidth>(x + k);
  for (; k <= taps - 4; k += 4) rest += loadAs<Sum, 4>(row + k) * loadAs<Sum, 4>(x + k);
  const Sum sum = joinHalves(sums) + joinHalves(rest);
  return static_cast<double>(k < taps ? sum + static_cast<Sum>(row[k]) * static_cast<Sum>(x[k]) : sum);
}

struct FloatSums {
  typedef float Tap;
  static double dot(const float* row, const float* x, int64_t taps) { return realDot<float>(row, x, taps); }
};
struct DoubleSums {
  typedef float Tap;
  static double dot(const float* row, const float* x, int64_t taps) { return realDot<double>(row, x, taps); }
  static double dot(const float* row, const int16_t* x, int64_t taps) {
    return static_cast<double>(static_cast<float>(realDot<double>(row, x, taps)));
  }
};
struct ShortSums {
  typedef int16_t Tap;
  static double dot(const int16_t* row, const int16_t* x, int64_t taps) {
    const auto dots = shortDots<ShortTerms::kProducts>(taps, [&](auto load, auto add) { add(0, load(row), load(x)); });
    return static_cast<double>(dots.sum[0]);
  }
};

// Of small taps: the same sum, in 32 bits until four lanes are left. (resample: 1.2 to 1.7 times as fast as ShortSums, 48 to 16 kHz.)
struct SmallShortSums {
  typedef int16_t Tap;
  static double dot(const int16_t* row, const int16_t* x, int64_t taps) {
    constexpr int N = kNativeLanes<int16_t>;
    using L = Lanes<int16_t, N>;
    Lanes<int32_t, N / 2> sums(0);
    int64_t k = 0;
    for (; k <= taps - N; k += N) sums += pairDots(L::load(row + k), L::load(x + k));
    if (k < taps) {
      const Tail<int16_t, N> tail(static_cast<int>(taps - k));
      sums += pairDots(tail.load(row + k), tail.load(x + k));
    }
    return joinHalves(as<double>(joinedTo<4>(sums)));
  }
};

// ---- Resampling ----

// Of a position in phases, `position / out` rounded down, and the rest, never negative.
struct Phase {
  int64_t sample, phase;
};
inline Phase phaseOf(int64_t position, int64_t out) {
  const int64_t rest = position % out, phase = rest < 0 ? rest + out : rest;
  return {(position - phase) / out, phase};
}

// Positions from `first` up to `end`; the number of outputs.
template <class Sums, class State, class Sample>
int32_t resamplePhases(const State* state, const Sample* source, Sample* destination, int64_t first, int64_t end, double gain) {
  using Tap = typename Sums::Tap;
  const int64_t in = state->inRate, out = state->outRate, n = state->halfLength, whole = in / out, part = in % out;
  const int64_t tapsOfZero = std::min<int64_t>(2 * n + 1, state->rowLength);
  const Tap* const rows = rowOf<Tap>(state, 0);
  Phase at = phaseOf(first, out);
  int32_t count = 0;
  for (int64_t position = first; position < end && count < INT32_MAX; position += in) {
    const int64_t extra = at.phase == 0 ? 1 : 0;
    const double dot =
        Sums::dot(rows + at.phase * state->rowLength, source + (at.sample + 1 - n - extra), extra != 0 ? tapsOfZero : 2 * n);
    storeSample(dot * gain, destination + count++);
    at.sample += whole;
    at.phase += part;
    if (at.phase >= out) {
      at.phase -= out;
      ++at.sample;
    }
  }
  return count;
}

template <class State, class Sample>
QorStatus resampleFixed(const State* state, const Sample* source, int32_t length, Sample* destination, float norm, double* time,
                        int32_t* count) {
  if (QorStatus bad = Checks().null(state, source, destination, count, time).size(length)) return bad;
  *count = 0;
  if (!isPosition(*time)) return qorStatusOk;
  const Position position = positionOf(*time);
  const int64_t in = state->inRate, out = state->outRate;
  const auto phase = static_cast<int64_t>(position.rest * static_cast<double>(out) + 0.5);  // required: also of a negative rest
  const int64_t first = out * position.whole + phase, end = (position.whole + length) * out;
  const double ratio = static_cast<double>(out) / static_cast<double>(in), cut = ratio < 1.0 ? ratio : 1.0;
  const double gain = cut * static_cast<double>(state->gain) * static_cast<double>(norm);
  if constexpr (std::is_same_v<Sample, float>) {
    *count = state->accurate != 0 ? resamplePhases<DoubleSums>(state, source, destination, first, end, gain)
                                  : resamplePhases<FloatSums>(state, source, destination, first, end, gain);
  } else {
    *count = state->accurate != 0 ? resamplePhases<DoubleSums>(state, source, destination, first, end, gain)
             : state->small != 0  ? resamplePhases<SmallShortSums>(state, source, destination, first, end, gain)
                                  : resamplePhases<ShortSums>(state, source, destination, first, end, gain);
  }
  *time = static_cast<double>(first + *count * in - phase) / static_cast<double>(out) + position.rest;
  return qorStatusOk;
}

}  // namespace qorsr
