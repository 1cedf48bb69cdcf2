// Where the filters of mel banks lie, and their weights.
//
//   mel(f) = melMul ln(1 + f / melDiv),  f = melDiv (exp(m / melMul) - 1)
//
// The n + 2 centres of a mel bank are equally far apart in mel from the low to the high frequency. Those of a mixed bank are
// equally far apart in hertz up to the join frequency (the first T filters) and in mel beyond.
//   Mel-shaped triangles (flag 1): centre bins truncated; a weight is the distance in mel from the filter's edge, over the width of
//   the section in mel. Index-shaped triangles (flag 2): centre bins rounded to nearest, ties to even; weights fall in equal steps
//   from bin to bin, to zero just outside the filter.
// All in double; what is stored is rounded to float, or truncated to Q14.
#pragma once

#include <cstdint>

#include "features/filter_bank.h"
#include "features/filter_bank_plan.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/elementary.h"

namespace qorsr {

struct MelLaw {
  double mul, div;

  double mel(double hertz) const { return mul * log(1.0 + hertz / div); }
};

// The frequencies and shape of a bank, as its constructor takes them.
struct MelSpec {
  float sampleFrequency, low, high;
  int32_t filterCount;
  float melMul, melDiv;
  int32_t flags;

  MelLaw law() const { return {static_cast<double>(melMul), static_cast<double>(melDiv)}; }
  bool indexShaped() const { return (flags & qorFBankIndexShaped) != 0; }
  bool withTransform() const { return (flags & qorFBankTransform) != 0; }
};

// The linear part of a mixed bank.
struct LinearPart {
  float join;
  int32_t filterCount;
};

// A position in bins as a centre. Beyond 32 bits: the extreme values; a NaN: 0.
inline int32_t toBin(double position, bool nearest) {
  if (nearest) return limitAndRound<int32_t>(position);
  if (!(position > -2147483648.0)) return position <= -2147483648.0 ? INT32_MIN : 0;
  return position < 2147483648.0 ? static_cast<int32_t>(position) : INT32_MAX;
}

// ---- Weights: numerator / denominator in the bank's element ----

inline void assignRatio(float& weight, double numerator, double denominator) {
  weight = static_cast<float>(numerator / denominator);
}
inline void assignRatio(int32_t& weight, double numerator, double denominator) {
  weight = truncateOrLowest<int32_t>(numerator * 16384.0 / denominator);
}
inline void assignSteps(float& weight, int64_t numerator, int64_t denominator) {
  assignRatio(weight, static_cast<double>(numerator), static_cast<double>(denominator));
}
inline void assignSteps(int32_t& weight, int64_t numerator, int64_t denominator) {
  weight = static_cast<int32_t>((numerator << kWeightFractionBits) / denominator);
}

// Calls f(weight, bin) for every element of a section.
template <class Weight, class F>
void forEachBin(Section section, Weight* row, F f) {
  for (int32_t i = 0; i < section.count; ++i) f(row[i], section.first + i);
}

template <class Weight>
void fillRisingSteps(const BankView<Weight>& bank, int32_t k) {
  const int64_t from = bank.centers[k - 1], to = bank.centers[k];
  forEachBin(bank.risingSection(k), bank.rising(k), [&](Weight& w, int64_t j) { assignSteps(w, j - from + 1, to - from + 1); });
}
template <class Weight>
void fillFallingSteps(const BankView<Weight>& bank, int32_t k) {
  const int64_t from = bank.centers[k], to = bank.centers[k + 1];
  forEachBin(bank.fallingSection(k), bank.falling(k), [&](Weight& w, int64_t j) { assignSteps(w, to + 1 - j, to - from + 1); });
}
template <class Weight>
void fillSteps(const BankView<Weight>& bank, int32_t k) {
  fillRisingSteps(bank, k);
  fillFallingSteps(bank, k);
}

// Mel-shaped: `melOf(bin)`, and the mel values of the section's ends.
template <class Weight, class MelOf>
void fillRisingMel(const BankView<Weight>& bank, int32_t k, MelOf melOf, double from, double to) {
  forEachBin(bank.risingSection(k), bank.rising(k), [&](Weight& w, int32_t j) { assignRatio(w, melOf(j) - from, to - from); });
}
template <class Weight, class MelOf>
void fillFallingMel(const BankView<Weight>& bank, int32_t k, MelOf melOf, double from, double to) {
  forEachBin(bank.fallingSection(k), bank.falling(k), [&](Weight& w, int32_t j) { assignRatio(w, to - melOf(j), to - from); });
}

template <class Weight>
void limitAtZero(const BankView<Weight>& bank, int32_t k) {
  const auto limit = [](Weight& w, int32_t) {
    if (w < Weight(0)) w = Weight(0);
  };
  forEachBin(bank.risingSection(k), bank.rising(k), limit);
  forEachBin(bank.fallingSection(k), bank.falling(k), limit);
}

// ---- Banks ----

// The fields that every constructor sets, in a bank that is laid out.
template <class Bank>
void setMelFields(Bank* bank, const MelSpec& spec, TransformSize size) {
  bank->flags = spec.flags;
  bank->fftOrder = size.order;
  bank->melMul = spec.melMul;
  bank->melDiv = spec.melDiv;
  bank->ready = 1;
}

// Mel values of the bins.
struct BinMels {
  MelLaw law;
  double binWidth;  // hertz

  double operator()(int32_t j) const { return law.mul * log(1.0 + j * binWidth / law.div); }
};

template <class Bank>
void fillMelBank(Bank* bank, const MelSpec& spec, TransformSize size) {
  setMelFields(bank, spec, size);
  const MelLaw law = spec.law();
  const auto length = static_cast<double>(size.length), sampleFrequency = static_cast<double>(spec.sampleFrequency);
  const double low = law.mel(static_cast<double>(spec.low)), high = law.mel(static_cast<double>(spec.high));
  const int32_t n = spec.filterCount;
  const auto melAt = [&](int32_t i) { return static_cast<double>(static_cast<float>(i * (high - low) / (int64_t{n} + 1) + low)); };
  auto* const centers = areaAt<int32_t>(bank, bank->centers);
  const double binsOfDiv = length / sampleFrequency * law.div;
  for (int32_t i = 0; i <= n + 1; ++i) {
    const double position = binsOfDiv * (exp(melAt(i) / law.mul) - 1.0);
    centers[i] = toBin(static_cast<double>(static_cast<float>(position)), spec.indexShaped());
  }
  const auto view = viewOf(bank);
  const BinMels melOf{law, sampleFrequency / length};
  for (int32_t k = 1; k <= n; ++k) {
    if (spec.indexShaped()) {
      fillSteps(view, k);
    } else {
      fillRisingMel(view, k, melOf, melAt(k - 1), melAt(k));
      if (view.risingSection(k).count > 0 && centers[k - 1] >= 0) view.rising(k)[0] = 0;
      fillFallingMel(view, k, melOf, melAt(k), melAt(k + 1));
    }
  }
}

template <class Bank>
void fillMixedBank(Bank* bank, const MelSpec& spec, LinearPart linear, TransformSize size) {
  setMelFields(bank, spec, size);
  bank->linearFilterCount = linear.filterCount;
  const MelLaw law = spec.law();
  const auto length = static_cast<double>(size.length), sampleFrequency = static_cast<double>(spec.sampleFrequency);
  const auto low = static_cast<double>(spec.low), join = static_cast<double>(linear.join);
  const int32_t n = spec.filterCount, t = linear.filterCount;
  const bool allLinear = t == n;
  const int64_t steps = allLinear ? int64_t{n} + 1 : t;
  const auto hertzAt = [&](int32_t i) { return i * (join - low) / steps + low; };
  const double binsPerHertz = length / sampleFrequency;
  auto* const centers = areaAt<int32_t>(bank, bank->centers);
  for (int32_t i = 0; i <= (allLinear ? n + 1 : t); ++i) centers[i] = toBin(hertzAt(i) * binsPerHertz, spec.indexShaped());
  if (!allLinear) {
    const double from = law.mel(join), range = law.mel(static_cast<double>(spec.high)) - from;
    for (int32_t i = t; i <= n + 1; ++i) {  // centre t for the second time: this one stands
      const double mel = (i - t) * range / (n - t + 1) + from;
      centers[i] = toBin(binsPerHertz * law.div * (exp(mel / law.mul) - 1.0), spec.indexShaped());
    }
  }
  const auto view = viewOf(bank);
  const BinMels melOf{law, sampleFrequency / length};
  const auto melAt = [&](int32_t i) { return law.mel(hertzAt(i)); };
  for (int32_t k = 1; k <= n; ++k) {
    if (spec.indexShaped() || k > t) {
      fillSteps(view, k);
    } else {
      fillRisingMel(view, k, melOf, melAt(k - 1), melAt(k));
      if (allLinear || k < t) {
        fillFallingMel(view, k, melOf, melAt(k), melAt(k + 1));
      } else {  // required: the join filter's falling side compares mel values with bin numbers
        fillFallingMel(view, k, melOf, centers[k], centers[k + 1]);
      }
      limitAtZero(view, k);
    }
  }
}

// ---- Family bodies ----

inline bool validFlags(int32_t flags) {
  const int32_t shape = flags & ~qorFBankTransform;
  return shape == qorFBankMelShaped || shape == qorFBankIndexShaped;
}
inline bool below(float a, float b) { return a < b; }  // a NaN passes every test
inline bool notAboveZero(float a) { return a <= 0.0F; }

// A comparison in float, as the arguments come.
inline bool halfIsBelow(float sampleFrequency, float high) { return sampleFrequency * 0.5F < high; }

template <class Bank>
QorStatus melBankSize(int32_t length, int32_t n, int32_t flags, int32_t* size) {
  const bool withTransform = (flags & qorFBankTransform) != 0;
  if (QorStatus bad =
          Checks()
              .null(size)
              .size(length, n)
              .require(validFlags(flags), qorStatusBadFBankFlag)
              .require([&] { return filterBankFits<Bank>(n, transformSize(length), withTransform); }, qorStatusBadSize)) {
    return bad;
  }
  *size = static_cast<int32_t>(filterBankBytes<Bank>(n, transformSize(length), withTransform));
  return qorStatusOk;
}

// State is what the caller gives: a block, or a pointer to the state's pointer.
template <class State>
QorStatus checkMelBank(State* state, const int32_t* order, int32_t length, const MelSpec& spec) {
  return Checks()
      .null(state, order)
      .size(length, spec.filterCount)
      .require(!notAboveZero(spec.sampleFrequency) && !notAboveZero(spec.low), qorStatusBadSize)
      .require(!below(spec.high, spec.low), qorStatusBadFBankFrequency)
      .require(!halfIsBelow(spec.sampleFrequency, spec.high), qorStatusBadFBankFrequency)
      .require(validFlags(spec.flags), qorStatusBadFBankFlag);
}

template <class Bank>
QorStatus initMelBank(Bank* state, int32_t* order, int32_t length, const MelSpec& spec) {
  const TransformSize size = transformSize(length);
  if (QorStatus bad = checkMelBank(state, order, length, spec)) return bad;
  if (!filterBankFits<Bank>(spec.filterCount, size, spec.withTransform())) return qorStatusBadSize;
  *order = size.order;
  placeFilterBank(state, spec.filterCount, size, spec.withTransform());
  fillMelBank(state, spec, size);
  planEvaluation(state);
  return qorStatusOk;
}

template <class Bank>
QorStatus allocateMelBank(Bank** state, int32_t* order, int32_t length, const MelSpec& spec) {
  const TransformSize size = transformSize(length);
  if (QorStatus bad = checkMelBank(state, order, length, spec)) return bad;
  *order = size.order;
  Bank* bank = allocateFilterBank<Bank>(spec.filterCount, size, spec.withTransform());
  if (bank == nullptr) return qorStatusNoMemory;
  fillMelBank(bank, spec, size);
  planEvaluation(bank);
  *state = bank;
  return qorStatusOk;
}

template <class Bank>
QorStatus allocateMixedBank(Bank** state, int32_t* order, int32_t length, const MelSpec& spec, LinearPart linear) {
  if (QorStatus bad = Checks()
                          .size(length, spec.filterCount)
                          .require(!notAboveZero(spec.sampleFrequency) && !notAboveZero(spec.low), qorStatusBadSize)
                          .require(linear.filterCount >= 1 && linear.filterCount <= spec.filterCount, qorStatusBadSize)
                          .require(!below(linear.join, spec.low) && !below(spec.high, linear.join), qorStatusBadFBankFrequency)
                          .require(!halfIsBelow(spec.sampleFrequency, spec.high), qorStatusBadFBankFrequency)
                          .require(validFlags(spec.flags), qorStatusBadFBankFlag)
                          .null(state, order)) {
    return bad;
  }
  const TransformSize size = transformSize(length);
  *order = size.order;
  Bank* bank = allocateFilterBank<Bank>(spec.filterCount, size, spec.withTransform());
  if (bank == nullptr) return qorStatusNoMemory;
  fillMixedBank(bank, spec, linear, size);
  planEvaluation(bank);
  *state = bank;
  return qorStatusOk;
}

}  // namespace qorsr
