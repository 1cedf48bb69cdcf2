// Exports: life cycle of filter banks, exchange of centres and weights, evaluation.
#include "features/filter_bank.h"

#include <algorithm>

#include "features/filter_bank_eval.h"
#include "features/filter_bank_integer.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/environment.h"

using namespace qorsr;

namespace {

// ---- Life cycle ----

template <class Bank>
QorStatus initEmpty(Bank** state, int32_t* order, int32_t length, int32_t n, int32_t flags) {
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
bool validCenters(const int32_t* centers, int32_t n, int32_t half) {
  if (centers[0] < 0) return false;
  for (int32_t i = 1; i < n; ++i) {
    if (centers[i] < centers[i - 1] || centers[i] > centers[i + 1]) return false;
  }
  return centers[n + 1] <= half;
}

QorStatus getCenters(const FilterBankRecord* state, int32_t* centers) {
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

QorStatus setCenters(FilterBankRecord* state, const int32_t* centers) {
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

float asFloat(float weight) { return weight; }
float asFloat(int32_t weight) { return static_cast<float>(weight) * 0x1.0p-14F; }
void assign(float& weight, float value) { weight = value; }
// required: what reaches 2^31 wraps to -2^31.
void assign(int32_t& weight, float value) { weight = truncateOrLowest<int32_t>(std::max(value * 16384.0F, -2147483648.0F)); }

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
  for (int32_t i = 0; i < rising; ++i) *weights++ = asFloat(bank.rising(k)[i]);
  for (int32_t i = 0; i < falling; ++i) *weights++ = asFloat(bank.falling(k)[i]);
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
  for (int32_t i = 0; i < rising; ++i) assign(bank.rising(k)[i], *weights++);
  for (int32_t i = 0; i < falling; ++i) assign(bank.falling(k)[i], *weights++);
  replanEvaluation(state, k);
  return qorStatusOk;
}

// ---- Evaluation ----

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

QorStatus evaluate(const float* source, float* result, const FBankState_32f* state) {
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
QORSR_IN_GUARDED_MODE void magnitudesInPlace(int32_t* spectrum, int32_t bins) {
  for (int32_t k = 0; k < bins; ++k) {
    const double re = spectrum[2 * k], im = spectrum[2 * k + 1];
    spectrum[k] = limitAndRound<int32_t>(__builtin_sqrt(re * re + im * im) * 8.0);
  }
}

// Integer magnitudes, 64 times as large, of the bins of a frame: their values become integers of three fraction bits first.
const int32_t* wholeMagnitudes(const int16_t* frame, const FBankState_16s* state) {
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
QorStatus evaluate(const int16_t* source, Result* result, const FBankState_16s* state, int32_t scaleFactor) {
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

}  // namespace

QorStatus qorsEmptyFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, int32_t filterCount, int32_t flags) {
  return initEmpty(state, order, length, filterCount, flags);
}
QorStatus qorsEmptyFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, int32_t filterCount, int32_t flags) {
  return initEmpty(state, order, length, filterCount, flags);
}
QorStatus qorsFBankFree_32f(FBankState_32f* state) { return releaseBank(state); }
QorStatus qorsFBankFree_16s(FBankState_16s* state) { return releaseBank(state); }

QorStatus qorsFBankGetCenters_32f(const FBankState_32f* state, int32_t* centers) { return getCenters(state, centers); }
QorStatus qorsFBankGetCenters_16s(const FBankState_16s* state, int32_t* centers) { return getCenters(state, centers); }
QorStatus qorsFBankSetCenters_32f(FBankState_32f* state, const int32_t* centers) { return setCenters(state, centers); }
QorStatus qorsFBankSetCenters_16s(FBankState_16s* state, const int32_t* centers) { return setCenters(state, centers); }

QorStatus qorsFBankGetCoeffs_32f(const FBankState_32f* state, int32_t filter, float* weights) {
  return getCoeffs(state, filter, weights);
}
QorStatus qorsFBankGetCoeffs_16s(const FBankState_16s* state, int32_t filter, float* weights) {
  return getCoeffs(state, filter, weights);
}
QorStatus qorsFBankSetCoeffs_32f(FBankState_32f* state, int32_t filter, const float* weights) {
  return setCoeffs(state, filter, weights);
}
QorStatus qorsFBankSetCoeffs_16s(FBankState_16s* state, int32_t filter, const float* weights) {
  return setCoeffs(state, filter, weights);
}

QorStatus qorsEvalFBank_32f(const float* source, float* result, const FBankState_32f* state) {
  return evaluate(source, result, state);
}
QorStatus qorsEvalFBank_16s_Sfs(const int16_t* source, int16_t* result, const FBankState_16s* state, int32_t scaleFactor) {
  return evaluate(source, result, state, scaleFactor);
}
QorStatus qorsEvalFBank_16s32s_Sfs(const int16_t* source, int32_t* result, const FBankState_16s* state, int32_t scaleFactor) {
  return evaluate(source, result, state, scaleFactor);
}
QorStatus qorsEvalFBank_32s_Sfs(const int32_t* source, int32_t* result, const FBankState_32s* state, int32_t scaleFactor) {
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
