// Exports: construction of mel banks and mixed banks, and conversions between hertz and mel.
#include "features/mel_bank.h"

#include "features/filter_bank_plan.h"
#include "features/mel_bank_fixed.h"
#include "frame/checks.h"

using namespace qorsr;

namespace {

bool validFlags(int32_t flags) {
  const int32_t shape = flags & ~qorFBankTransform;
  return shape == qorFBankMelShaped || shape == qorFBankIndexShaped;
}
bool below(float a, float b) { return a < b; }  // a NaN passes every test
bool notAboveZero(float a) { return a <= 0.0F; }

// A comparison in float, as the arguments come.
bool halfIsBelow(float sampleFrequency, float high) { return sampleFrequency * 0.5F < high; }

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

QorStatus checkConversion(const float* source, const float* result, int32_t length, float melMul, float melDiv) {
  return Checks().null(source, result).size(length).require(!notAboveZero(melMul) && !notAboveZero(melDiv), qorStatusBadSize);
}

bool within(int64_t value, int64_t low, int64_t high) { return value >= low && value <= high; }

}  // namespace

QorStatus qorsMelFBankGetSize_32f(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  return melBankSize<FBankState_32f>(length, filterCount, flags, size);
}
QorStatus qorsMelFBankGetSize_16s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  return melBankSize<FBankState_16s>(length, filterCount, flags, size);
}
QorStatus qorsMelFBankGetSize_32s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
  if (QorStatus bad = Checks()
                          .null(size)
                          .size(filterCount)
                          .require(within(length, 32, 8192), qorStatusBadSize)
                          .require(flags == qorFBankIndexShaped, qorStatusBadFBankFlag)
                          .require([&] { return filterCount <= transformSize(length).length / 2; }, qorStatusBadSize)) {
    return bad;
  }
  *size = static_cast<int32_t>(fixedBankBytes(filterCount, transformSize(length).length / 2));
  return qorStatusOk;
}

QorStatus qorsMelFBankInit_32f(FBankState_32f* state, int32_t* order, int32_t length, float sampleFrequency, float lowFrequency,
                               float highFrequency, int32_t filterCount, float melMul, float melDiv, int32_t flags) {
  return initMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInit_16s(FBankState_16s* state, int32_t* order, int32_t length, float sampleFrequency, float lowFrequency,
                               float highFrequency, int32_t filterCount, float melMul, float melDiv, int32_t flags) {
  return initMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                    float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                    int32_t flags) {
  return allocateMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}
QorStatus qorsMelFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                    float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                    int32_t flags) {
  return allocateMelBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags});
}

QorStatus qorsMelFBankInit_32s(FBankState_32s* state, int32_t* order, int32_t length, int32_t sampleFrequency, int32_t lowFrequency,
                               int32_t highFrequency, int32_t filterCount, int32_t melMul, int32_t melDiv, int32_t flags) {
  // required: one filter more is accepted here than where the size is asked for.
  if (QorStatus bad = Checks()
                          .null(state, order)
                          .size(filterCount, highFrequency)
                          .require(within(length, 32, 8192), qorStatusBadSize)
                          .require(flags == qorFBankIndexShaped, qorStatusBadFBankFlag)
                          .require(within(sampleFrequency, 1, 48000) && lowFrequency >= 0, qorStatusBadSize)
                          .require(highFrequency > lowFrequency && highFrequency <= 24000, qorStatusBadFBankFrequency)
                          .require(within(melDiv, 0x80001, 0xFFFFFFF) && within(melMul, 0x80001, 0x3FFFFFFF), qorStatusBadArgument)
                          .require([&] { return filterCount <= transformSize(length).length / 2 + 1; }, qorStatusBadSize)) {
    return bad;
  }
  const TransformSize size = transformSize(length);
  *order = size.order;
  const auto bank = placeFixedBank(state, filterCount, static_cast<int32_t>(size.length / 2));
  fixedCenters(areaAt<int32_t>(state, state->centers), {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv},
               size.length);
  fillFixedWeights(bank);
  planFixedBank(state);
  return qorStatusOk;
}

QorStatus qorsMelLinFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                       float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                       int32_t linearFilterCount, float melMul, float melDiv, int32_t flags) {
  return allocateMixedBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags},
                           {joinFrequency, linearFilterCount});
}
QorStatus qorsMelLinFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                       float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                       int32_t linearFilterCount, float melMul, float melDiv, int32_t flags) {
  return allocateMixedBank(state, order, length, {sampleFrequency, lowFrequency, highFrequency, filterCount, melMul, melDiv, flags},
                           {joinFrequency, linearFilterCount});
}

QorStatus qorsLinearToMel_32f(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  if (QorStatus bad = checkConversion(source, result, length, melMul, melDiv)) return bad;
  const double mul = static_cast<double>(melMul), perHertz = 1.0 / static_cast<double>(melDiv);
  for (int32_t i = 0; i < length; ++i) {
    result[i] = static_cast<float>(mul * qorsr::log(1.0 + static_cast<double>(source[i]) * perHertz));
  }
  return qorStatusOk;
}
QorStatus qorsMelToLinear_32f(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  if (QorStatus bad = checkConversion(source, result, length, melMul, melDiv)) return bad;
  const double div = static_cast<double>(melDiv), perMel = 1.0 / static_cast<double>(melMul);
  for (int32_t i = 0; i < length; ++i) {
    result[i] = static_cast<float>(div * (qorsr::exp(static_cast<double>(source[i]) * perMel) - 1.0));
  }
  return qorStatusOk;
}
