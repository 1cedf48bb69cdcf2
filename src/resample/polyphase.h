// Resampling by any ratio from one prototype filter, a Kaiser-windowed sinc with nStep entries a sample, linearly interpolated
// (Smith and Gossett, "A flexible sampling-rate conversion method", ICASSP 1984).
//
//   y(t) = gain * (sum over k of h(u + k) x[i - k] + sum over k of h(u' + k) x[i + 1 + k]),   i = trunc(t), f = t - i
//   h at table index j + q: table[j] (1 - q) + table[j + 1] q
//
// The left side begins at index f nStep and the right one at (1 - f) nStep, and each sample further away is nStep further in the
// table. With a factor below 1 both are stretched: factor * nStep, added up in double.
//
// Sums are double. While four steps of the table remain, four products are added to each other, ((p0 + p1) + p2) + p3, and then to the
// sum (eight on the stretched walk over 16-bit entries); the rest goes one by one; the right side follows the left one.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/memory.h"
#include "qorsr.h"
#include "resample/kaiser_sinc.h"

namespace qorsr {

struct [[gnu::packed]] PolyphaseRecord {
  int32_t nStep;
  int32_t length;  // entries that were designed; one more follows, which repeats the last
  float gain;
  int32_t floats;  // whether the entries are floats
  int32_t table;   // bytes from the record
};

}  // namespace qorsr

struct [[gnu::packed]] ResamplePolyphaseState_16s : qorsr::PolyphaseRecord {};
struct [[gnu::packed]] ResamplePolyphaseState_32f : qorsr::PolyphaseRecord {};

namespace qorsr {

template <class Entry, class Record>
auto* tableOf(Record* record) {
  using Byte = std::conditional_t<std::is_const_v<Record>, const std::byte, std::byte>;
  using Element = std::conditional_t<std::is_const_v<Record>, const Entry, Entry>;
  return reinterpret_cast<Element*>(reinterpret_cast<Byte*>(record) + record->table);
}

// ---- Design ----

// Unit gain at frequency zero: the samples at distances 0, 1, 2, ... add up to 1.
inline void designPolyphase(double* t, int64_t length, int32_t nStep, float rollOff, float alpha) {
  const double width = 1.0 / static_cast<double>(length - 1);
  fillKaiserSinc(t, length - 1, nStep, rollOff, alpha, [=](const auto& k) { return k * Lanes<double, 8>(width); });
  double side = 0.0;
  for (int64_t k = nStep; k < length; k += nStep) side += t[k];
  const double scale = 1.0 / (side + t[0] + side);
  for (int64_t k = 0; k < length; ++k) t[k] *= scale;
}

inline void storeTable(const double* t, PolyphaseRecord* record) {
  const int64_t length = record->length;
  if (record->floats != 0) {
    auto* table = tableOf<float>(record);
    for (int64_t k = 0; k < length; ++k) table[k] = static_cast<float>(t[k]);
    table[length] = table[length - 1];
    return;
  }
  double low = t[0], high = t[0];
  for (int64_t k = 1; k < length; ++k) {
    low = t[k] < low ? t[k] : low;
    high = t[k] > high ? t[k] : high;
  }
  const double largest = std::max(__builtin_fabs(low), __builtin_fabs(high)), scale = 16383.0 / largest;
  auto* table = tableOf<int16_t>(record);
  for (int64_t k = 0; k < length; ++k) table[k] = nearestShort(t[k] * scale);
  table[length] = table[length - 1];
  record->gain = static_cast<float>(largest / 16383.0);
}

// required: without memory for the design of a 16-bit table the status is that of a null pointer.
template <class State>
QorStatus polyphaseInitAlloc(State** state, float window, int32_t nStep, float rollOff, float alpha, bool floats) {
  constexpr float kTooLong = 0x1p28F;  // the next smaller float gives at most 268435454 entries
  const float product = window * 0.5F * static_cast<float>(nStep);
  if (QorStatus bad = Checks()
                          .null(state)
                          .size(nStep)
                          .require(!(2.0F / static_cast<float>(nStep) > window), qorStatusBadArgument)
                          .require(!(rollOff <= 0.0F || rollOff > 1.0F || alpha < 1.0F), qorStatusBadArgument)
                          .require(product < kTooLong, qorStatusBadArgument)) {
    return bad;
  }
  const int64_t length = static_cast<int64_t>(product) + 1;
  const Scratch<double> design(length);
  if (!design) return floats ? qorStatusNoMemory : qorStatusNullPointer;
  const int64_t tableBytes = (length + 1) * static_cast<int64_t>(floats ? sizeof(float) : sizeof(int16_t));
  auto* made = static_cast<State*>(allocateBytes(static_cast<int64_t>(sizeof(State) + kAreaAlignment) + tableBytes));
  if (made == nullptr) return qorStatusNoMemory;
  auto* const end = reinterpret_cast<std::byte*>(made + 1);
  made->nStep = nStep;
  made->length = static_cast<int32_t>(length);
  made->gain = 1.0F;
  made->floats = floats ? 1 : 0;
  made->table = static_cast<int32_t>(alignUp(end) - reinterpret_cast<std::byte*>(made));
  designPolyphase(design.get(), length, nStep, rollOff, alpha);
  storeTable(design.get(), made);
  *state = made;
  return qorStatusOk;
}

template <class State>
QorStatus polyphaseFree(State* state) {
  if (state == nullptr) return qorStatusNullPointer;
  release(state);
  return qorStatusOk;
}

// ---- Walks over one side of the table ----

// Every sample is nStep entries further, all with the fraction of the first. The 1e-5 keeps an index that rounding left just below a
// whole number.
struct EvenWalk {
  int64_t step, length;

  struct Place {
    int64_t index;
    double fraction;
  };
  Place start(double offset) const {
    const double u = offset * static_cast<double>(step);
    const auto index = static_cast<int64_t>(u + 1e-5);
    return {index, u - static_cast<double>(index)};
  }
  bool holds(const Place& p) const { return p.index < length; }
  bool holdsSteps(const Place& p, int steps) const { return length - p.index >= steps * step; }
  void advance(Place& p) const { p.index += step; }
  static Place at(const Place& p) { return p; }
};

// Every sample is factor * nStep entries further.
struct StretchedWalk {
  double factor, nStep, step, end;  // step: factor * nStep; end: the length less 1e-5

  typedef double Place;
  Place start(double offset) const { return offset * factor * nStep; }
  bool holds(Place u) const { return end > u; }
  bool holdsSteps(Place u, int steps) const { return end - steps * step >= u; }
  void advance(Place& u) const { u += step; }
  static EvenWalk::Place at(Place u) {
    const auto index = static_cast<int64_t>(u);
    return {index, u - static_cast<double>(index)};
  }
};

template <class Entry, class Walk>
inline constexpr int kGroup = std::is_same_v<Entry, int16_t>&& std::is_same_v<Walk, StretchedWalk> ? 8 : 4;

template <class Entry>
struct Prototype {
  const Entry* table;
  int64_t length;

  // A negative time has samples in front of the middle of the filter: it is even.
  double entry(int64_t k) const {
    const int64_t distance = k < 0 ? -k : k;
    return distance <= length ? static_cast<double>(table[distance]) : 0.0;
  }
  double operator()(const EvenWalk::Place& p) const {
    return entry(p.index) * (1.0 - p.fraction) + entry(p.index + 1) * p.fraction;
  }
};

// ---- One side of one output ----

template <int Direction, class Entry, class Walk, class Sample>
double addSide(double sum, const Prototype<Entry>& h, const Walk& walk, typename Walk::Place place, const Sample* x) {
  const auto product = [&] {
    const double p = h(Walk::at(place)) * static_cast<double>(*x);
    walk.advance(place);
    x += Direction;
    return p;
  };
  constexpr int kTaps = kGroup<Entry, Walk>;
  while (walk.holdsSteps(place, kTaps)) {
    double group = product();
    for (int k = 1; k < kTaps; ++k) group += product();
    sum += group;
  }
  while (walk.holds(place)) sum += product();
  return sum;
}

// ---- The same side of four outputs, in lanes ----
//
// Groups as long as all four have one, and what is left in fours as long as all have that; the last few go one by one.

struct EntryPairs {
  Lanes<double, 4> here, next;
};

// An entry and the one behind it in one load.
inline EntryPairs entryPairs(const float* a, const float* b, const float* c, const float* d) {
  using native::load;
  const auto eight =
      std::bit_cast<Lanes<float, 8>>(Lanes<double, 4>::of(load<double>(a), load<double>(b), load<double>(c), load<double>(d)));
  return {as<double>(permuted<order::everySecond<0>, 4>(eight)), as<double>(permuted<order::everySecond<1>, 4>(eight))};
}
inline EntryPairs entryPairs(const int16_t* a, const int16_t* b, const int16_t* c, const int16_t* d) {
  using native::load;
  const auto four = Lanes<int32_t, 4>::of(load<int32_t>(a), load<int32_t>(b), load<int32_t>(c), load<int32_t>(d));
  static_assert(std::endian::native == std::endian::little);
  return {as<double>(shiftLeft(four, 16) >> 16), as<double>(four >> 16)};
}

// The places of four outputs: whether all, or none, have so much of the table left; next() gives the filter there, and moves on.
template <class Entry>
class EvenPlaces {
 public:
  EvenPlaces(const Prototype<Entry>& h, const EvenWalk& walk, const EvenWalk::Place (&places)[4]) : step_(walk.step) {
    double fractions[4];
    for (int i = 0; i < 4; ++i) {
      entries_[i] = h.table + places[i].index;
      fractions[i] = places[i].fraction;
      left_ = std::min(left_, walk.length - places[i].index);
      most_ = std::max(most_, walk.length - places[i].index);
    }
    fraction_ = Lanes<double, 4>::load(fractions);
    rest_ = Lanes<double, 4>(1.0) - fraction_;
  }
  bool holdSteps(int steps) const { return left_ >= steps * step_; }
  bool noneHoldsSteps(int steps) const { return most_ < steps * step_; }
  bool holdTaps(int taps) const { return left_ > (taps - 1) * step_; }
  void moved(int steps) {
    left_ -= steps * step_;
    most_ -= steps * step_;
  }
  Lanes<double, 4> next() {
    const EntryPairs pair = entryPairs(entries_[0], entries_[1], entries_[2], entries_[3]);
    for (const Entry*& entry : entries_) entry += step_;
    return pair.here * rest_ + pair.next * fraction_;
  }
  void giveBack(const Prototype<Entry>& h, EvenWalk::Place (&places)[4]) const {
    for (int i = 0; i < 4; ++i) places[i].index = entries_[i] - h.table;
  }

 private:
  int64_t step_, left_ = INT64_MAX, most_ = INT64_MIN;  // entries that are left: the least and the most
  const Entry* entries_[4];
  Lanes<double, 4> fraction_, rest_;
};

template <class Entry>
class StretchedPlaces {
 public:
  StretchedPlaces(const Prototype<Entry>& h, const StretchedWalk& walk, const double (&places)[4])
      : table_(h.table), end_(walk.end), single_(walk.step), step_(walk.step), u_(Lanes<double, 4>::load(places)) {}
  bool holdSteps(int steps) const { return !anyLess(Lanes<double, 4>(end_ - steps * single_), u_); }
  bool noneHoldsSteps(int steps) const { return allLess(Lanes<double, 4>(end_ - steps * single_), u_); }
  bool holdTaps(int taps) const {
    Lanes<double, 4> last = u_;
    for (int i = 1; i < taps; ++i) last += step_;
    return allLess(last, Lanes<double, 4>(end_));
  }
  void moved(int) {}
  Lanes<double, 4> next() {
    const Lanes<int32_t, 4> index = truncated(u_);
    const Lanes<double, 4> fraction = u_ - as<double>(index);
    int32_t at[4];
    index.store(at);
    const EntryPairs pair = entryPairs(table_ + at[0], table_ + at[1], table_ + at[2], table_ + at[3]);
    u_ += step_;
    return pair.here * (Lanes<double, 4>(1.0) - fraction) + pair.next * fraction;
  }
  void giveBack(const Prototype<Entry>&, double (&places)[4]) const { u_.store(places); }

 private:
  const Entry* table_;
  double end_, single_;
  Lanes<double, 4> step_, u_;
};
template <class Entry>
auto placesOf(const Prototype<Entry>& h, const EvenWalk& walk, const EvenWalk::Place (&places)[4]) {
  return EvenPlaces<Entry>(h, walk, places);
}
template <class Entry>
auto placesOf(const Prototype<Entry>& h, const StretchedWalk& walk, const double (&places)[4]) {
  return StretchedPlaces<Entry>(h, walk, places);
}

// Calls add(k, product) for the next four taps of all.
template <int Direction, class Places, class Sample, class Add>
[[gnu::always_inline]] inline void fourTaps(Places& places, const Sample* (&x)[4], const Add& add) {
  const auto samples = [](const Sample* p) { return loadAs<float, 4>(Direction < 0 ? p - 3 : p); };
  const Transposed block = transposed(samples(x[0]), samples(x[1]), samples(x[2]), samples(x[3]));
  for (int k = 0; k < 4; ++k) add(k, places.next() * as<double>(block.lane[Direction < 0 ? 3 - k : k]));
  for (const Sample*& p : x) p += 4 * Direction;
}

// Adds one side to four sums. Every place has a whole index.
template <int Direction, class Entry, class Walk, class Sample>
void addFourSides(double (&sums)[4], const Prototype<Entry>& h, const Walk& walk, typename Walk::Place (&places)[4],
                  const Sample* (&x)[4]) {
  using L = Lanes<double, 4>;
  constexpr int kTaps = kGroup<Entry, Walk>;
  auto four = placesOf(h, walk, places);
  auto sum = L::load(sums);
  while (four.holdSteps(kTaps)) {
    L group(0.0);
    for (int first = 0; first < kTaps; first += 4) {
      fourTaps<Direction>(four, x, [&](int k, const L& product) { group = first + k == 0 ? product : group + product; });
    }
    four.moved(kTaps);
    sum += group;
  }
  if (four.noneHoldsSteps(kTaps)) {
    for (; four.holdTaps(4); four.moved(4)) fourTaps<Direction>(four, x, [&](int, const L& product) { sum += product; });
  }
  sum.store(sums);
  four.giveBack(h, places);
  for (int i = 0; i < 4; ++i) sums[i] = addSide<Direction>(sums[i], h, walk, places[i], x[i]);
}

// ---- All outputs ----

template <class Entry, class Walk, class Sample>
double filtered(const Prototype<Entry>& h, const Walk& walk, const Sample* source, double time) {
  const Position position = positionOf(time);
  const Sample* x = source + position.whole;
  const double left = addSide<-1>(0.0, h, walk, walk.start(position.rest), x);
  return addSide<1>(left, h, walk, walk.start(1.0 - position.rest), x + 1);
}

// Of times that are not negative.
template <class Entry, class Walk, class Sample>
void filterFour(const Prototype<Entry>& h, const Walk& walk, const Sample* source, const double (&times)[4], double (&sums)[4]) {
  typename Walk::Place left[4], right[4];
  const Sample *before[4], *behind[4];
  for (int i = 0; i < 4; ++i) {
    const Position position = positionOf(times[i]);
    left[i] = walk.start(position.rest);
    right[i] = walk.start(1.0 - position.rest);
    before[i] = source + position.whole;
    behind[i] = before[i] + 1;
    sums[i] = 0.0;
  }
  addFourSides<-1>(sums, h, walk, left, before);
  addFourSides<1>(sums, h, walk, right, behind);
}

template <class Entry, class Walk, class Sample>
int32_t resampleWalk(const Prototype<Entry>& h, const Walk& walk, const Sample* source, Sample* destination, double& time,
                     double end, double step, double gain) {
  int32_t count = 0;
  for (bool moves = true; moves;) {
    double times[4], sums[4];
    int n = 0;
    for (; moves && n < 4; ++n) {
      if (!(time < end) || count > INT32_MAX - 4) {
        moves = false;
        break;
      }
      times[n] = time;
      time += step;
      moves = time > times[n];  // not a step of nothing, or none at all
    }
    if (n == 4 && times[0] >= 0.0) {
      filterFour(h, walk, source, times, sums);
    } else {
      for (int i = 0; i < n; ++i) sums[i] = filtered(h, walk, source, times[i]);
    }
    for (int i = 0; i < n; ++i) storeSample(sums[i] * gain, destination + count++);
  }
  return count;
}

template <class Entry, class Record, class Sample>
int32_t resampleTable(const Record* record, const Sample* source, Sample* destination, double factor, double norm, double& time,
                      double end) {
  const Prototype<Entry> h{tableOf<Entry>(record), record->length};
  const double step = 1.0 / factor, gain = static_cast<double>(record->gain);
  if (factor >= 1.0) {
    const EvenWalk walk{record->nStep, record->length};
    return resampleWalk(h, walk, source, destination, time, end, step, norm * gain);
  }
  const double perSample = static_cast<double>(record->nStep);
  const StretchedWalk walk{factor, perSample, factor * perSample, static_cast<double>(record->length) - 1e-5};
  return resampleWalk(h, walk, source, destination, time, end, step, factor * norm * gain);
}

template <class State, class Sample>
QorStatus resamplePolyphase(const State* state, const Sample* source, int32_t length, Sample* destination, double factor,
                            float norm, double* time, int32_t* count) {
  if (QorStatus bad =
          Checks().null(state, time, source, destination, count).require(!(factor <= 0.0), qorStatusBadSize).size(length)) {
    return bad;
  }
  *count = 0;
  if (!isPosition(*time)) return qorStatusOk;
  const double end = static_cast<double>(positionOf(*time).whole + length);
  double t = *time;
  const auto run = [&]<class Entry>(Entry) {
    return resampleTable<Entry>(state, source, destination, factor, static_cast<double>(norm), t, end);
  };
  *count = state->floats != 0 ? run(float{}) : run(int16_t{});
  *time = t;
  return qorStatusOk;
}

}  // namespace qorsr
