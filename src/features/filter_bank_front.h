// A frame or a spectrum through a filter bank: checks, the transform in front where the bank has one, evaluation.
#pragma once

#include <cstdint>

#include "features/filter_bank.h"
#include "features/filter_bank_eval.h"
#include "features/filter_bank_integer.h"
#include "features/real_transform.h"
#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/environment.h"

namespace qorsr {

template <class Bank, class T, class Result>
QorStatus checkEvaluation(const T* source, const Result* result, const Bank* state) {
  return Checks()
      .null(source, result, state)
      .require([&] { return state->centers != 0; }, qorStatusNullPointer)
      .require([&] { return state->ready != 0; }, qorStatusFBankNotReady);
}

// The transform of a bank with bit value 4, and its two areas. Evaluation takes the bank as const: these are scratch.
template <class Bank>
struct TransformFront {
  const RealTransform& setup;
  void* work;
  float* spectrum;

  explicit TransformFront(const Bank* state)
      : setup(*areaAt<const RealTransform>(state, state->fftSpec)),
        work(areaAt<void>(const_cast<Bank*>(state), state->fftSpec + static_cast<int32_t>(RealTransform::setupBytes(setup.order)))),
        spectrum(areaAt<float>(const_cast<Bank*>(state), state->workBuffer)) {}
};

inline QorStatus evalFilterBank(const float* source, float* result, const FBankState_32f* state) {
  if (QorStatus bad = checkEvaluation(source, result, state)) return bad;
  if (state->flags & qorFBankTransform) {
    const TransformFront front(state);
    front.setup.magnitudes(source, front.spectrum, front.work);
    source = front.spectrum;
  }
  evaluateBank(state, source, result);
  return qorStatusOk;
}

// Magnitudes of `bins` complex numbers, times 8, rounded; each stands where the first half of the numbers stood.
QORSR_IN_GUARDED_MODE inline void magnitudesInPlace(int32_t* spectrum, int32_t bins) {
  for (int32_t k = 0; k < bins; ++k) {
    const double re = spectrum[2 * k], im = spectrum[2 * k + 1];
    spectrum[k] = limitAndRound<int32_t>(__builtin_sqrt(re * re + im * im) * 8.0);
  }
}

// Integer magnitudes, 64 times as large, of the bins of a frame: their values become integers of three fraction bits first.
inline const int32_t* wholeMagnitudes(const int16_t* frame, const FBankState_16s* state) {
  const TransformFront front(state);
  const int32_t bins = state->fftLength / 2 + 1;
  front.setup.transform(frame, front.spectrum, front.work);
  auto* whole = reinterpret_cast<int32_t*>(front.spectrum);
  convertFloats(front.spectrum, whole, 2 * bins, kNearestEven, -3);
  const EnvironmentGuard guard(Rounding::kNearest);
  magnitudesInPlace(whole, bins);
  return whole;
}

template <class Result>
QorStatus evalFilterBank(const int16_t* source, Result* result, const FBankState_16s* state, int32_t scaleFactor) {
  if (QorStatus bad = checkEvaluation(source, result, state)) return bad;
  const bool front = (state->flags & qorFBankTransform) != 0;
  const int64_t shift = int64_t{scaleFactor} + state->coeffScale + (front ? 6 : 0);
  const auto store = [&](int64_t sum) { return saturate<Result>(shiftByScale(sum, shift)); };
  if (front) {
    evaluateBank<LowProduct>(viewOf(state), wholeMagnitudes(source, state), result, store);
  } else if (state->planned) {
    evaluatePlanned<ExactProduct, int16_t>(viewOf(state), planOf(state), source, result, store);
  } else {
    evaluateBank<ExactProduct>(viewOf(state), source, result, store);
  }
  return qorStatusOk;
}

inline QorStatus evalFilterBank(const int32_t* source, int32_t* result, const FBankState_32s* state, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(source, result, state).require(scaleFactor >= -31 && scaleFactor <= 31, qorStatusBadArgument)) {
    return bad;
  }
  const auto store = [&](int64_t sum) { return fixedResult(sum, scaleFactor); };
  if (state->plan != 0) {
    const auto* plan = areaAt<const std::byte>(state, state->plan);
    evaluatePlanned<ShiftedProduct, int32_t>(viewOf(state), plan, source, result, store);
  } else {
    evaluateBank<ShiftedProduct>(viewOf(state), source, result, store);
  }
  return qorStatusOk;
}

}  // namespace qorsr
