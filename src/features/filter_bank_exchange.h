// A filter bank's life, and the exchange of its centres and weights with the caller.
#pragma once

#include <algorithm>
#include <cstdint>

#include "features/filter_bank.h"
#include "features/filter_bank_plan.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/memory.h"

namespace qorsr {

// ---- Life cycle ----

template <class Bank>
QorStatus initEmptyBank(Bank** state, int32_t* order, int32_t length, int32_t n, int32_t flags) {
  if (QorStatus bad = Checks().size(length, n).null(state, order)) return bad;
  const TransformSize size = transformSize(length);
  *order = size.order;
  // required: the flags word makes the transform's areas but is not kept, so the bank evaluates spectra.
  Bank* bank = allocateFilterBank<Bank>(n, size, (flags & qorFBankTransform) != 0);
  if (bank == nullptr) return qorStatusNoMemory;
  *state = bank;
  return qorStatusOk;
}

template <class Bank>
QorStatus releaseBank(Bank* state) {
  if (QorStatus bad = Checks().null(state)) return bad;
  release(state);
  return qorStatusOk;
}

// ---- Centres and weights ----

// required: the last two entries are not compared with each other, and only the bound limits the last one.
inline bool validCenters(const int32_t* centers, int32_t n, int32_t half) {
  if (centers[0] < 0) return false;
  for (int32_t i = 1; i < n; ++i) {
    if (centers[i] < centers[i - 1] || centers[i] > centers[i + 1]) return false;
  }
  return centers[n + 1] <= half;
}

inline QorStatus getCenters(const FilterBankRecord* state, int32_t* centers) {
  const auto stored = [&] { return areaAt<const int32_t>(state, state->centers); };
  if (QorStatus bad = Checks()
                          .null(centers, state)
                          .require([&] { return state->ready && validCenters(stored(), state->filterCount, state->fftLength / 2); },
                                   qorStatusFBankNotReady)) {
    return bad;
  }
  std::copy_n(stored(), int64_t{state->filterCount} + 2, centers);
  return qorStatusOk;
}

inline QorStatus setCenters(FilterBankRecord* state, const int32_t* centers) {
  if (QorStatus bad =
          Checks()
              .null(centers, state)
              .require([&] { return validCenters(centers, state->filterCount, state->fftLength / 2); }, qorStatusFBankNotReady)) {
    return bad;
  }
  state->ready = 1;
  std::copy_n(centers, int64_t{state->filterCount} + 2, areaAt<int32_t>(state, state->centers));
  planEvaluation(state);
  return qorStatusOk;
}

inline float weightAsFloat(float weight) { return weight; }
inline float weightAsFloat(int32_t weight) { return static_cast<float>(weight) * 0x1.0p-14F; }
inline void assignWeight(float& weight, float value) { weight = value; }
// required: what reaches 2^31 wraps to -2^31.
inline void assignWeight(int32_t& weight, float value) {
  weight = truncateOrLowest<int32_t>(std::max(value * 16384.0F, -2147483648.0F));
}

// One filter's rising section and then its falling one. required: filter n + 1 may be read; it has no falling section.
template <class Bank>
QorStatus getCoeffs(const Bank* state, int32_t k, float* weights) {
  if (QorStatus bad = Checks()
                          .null(weights, state)
                          .require([&] { return state->ready != 0; }, qorStatusFBankNotReady)
                          .require([&] { return k >= 1 && k <= int64_t{state->filterCount} + 1; }, qorStatusBadSize)) {
    return bad;
  }
  const auto bank = viewOf(state);
  const int32_t rising = bank.risingSection(k).count;
  if (k > bank.filterCount) {
    std::fill_n(weights, rising, 0.0F);
    return qorStatusOk;
  }
  const int32_t falling = bank.fallingSection(k).count;
  for (int32_t i = 0; i < rising; ++i) *weights++ = weightAsFloat(bank.rising(k)[i]);
  for (int32_t i = 0; i < falling; ++i) *weights++ = weightAsFloat(bank.falling(k)[i]);
  return qorStatusOk;
}

template <class Bank>
QorStatus setCoeffs(Bank* state, int32_t k, const float* weights) {
  if (QorStatus bad = Checks()
                          .null(weights, state)
                          .require([&] { return state->ready != 0; }, qorStatusFBankNotReady)
                          .require([&] { return k >= 1 && k <= state->filterCount; }, qorStatusBadSize)) {
    return bad;
  }
  const auto bank = viewOf(state);
  const int32_t rising = bank.risingSection(k).count, falling = bank.fallingSection(k).count;
  for (int32_t i = 0; i < rising; ++i) assignWeight(bank.rising(k)[i], *weights++);
  for (int32_t i = 0; i < falling; ++i) assignWeight(bank.falling(k)[i], *weights++);
  replanEvaluation(state, k);
  return qorStatusOk;
}

}  // namespace qorsr
