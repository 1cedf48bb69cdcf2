// The two fixed mel banks of a front-end with a split band: 25 filters of the low band, 3 of the high one, over 128 samples at 8 kHz.
//
//   mel(f) = 2595 log10(1 + f / 700).  Entry i lies at mel(low) + i (mel(4000) - mel(low)) / D, in bins of 62.5 Hz rounded to nearest and
//   at most 64: i = 0 to 26, low = 1 Hz and D = 24 for the low band; i = 0 to 4, 80 Hz and D = 4 for the high one.
//   rising weights (j - c[k-1]) / (c[k] - c[k-1]), falling ones 1 - (j - c[k]) / (c[k+1] - c[k]): 0 at both ends
//
// The low band has one filter more in front, a half triangle that falls from entry 0 to entry 1. So its filter k has entry k - 1 as its
// centre, c[0] = 0 is put in front of the entries and the last one is not used. Each of its filters is divided by the sum of its weights.
// A section without width has no weights, and a filter whose weights sum to zero keeps them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "features/filter_bank.h"
#include "features/filter_bank_plan.h"
#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/elementary.h"

namespace qorsr {

struct AuroraBand {
  int32_t filterCount;
  double lowest;     // hertz
  double intervals;  // of the entries, up to the highest frequency
  bool isLow;
};
inline constexpr AuroraBand kLowBand{25, 1.0, 24.0, true}, kHighBand{3, 80.0, 4.0, false};
inline constexpr TransformSize kAuroraTransform{7, 128};
inline constexpr double kAuroraMelMul = 2595.0, kAuroraMelDiv = 700.0, kAuroraHighest = 4000.0, kAuroraRate = 8000.0;

// Bins of the entries.
inline int32_t auroraBin(const AuroraBand& band, int32_t i) {
  const auto mel = [](double hertz) { return kAuroraMelMul * log10(1.0 + hertz / kAuroraMelDiv); };
  const double from = mel(band.lowest), m = i * (mel(kAuroraHighest) - from) / band.intervals + from;
  const double hertz = kAuroraMelDiv * (pow(10.0, m / kAuroraMelMul) - 1.0);
  const auto length = static_cast<double>(kAuroraTransform.length);
  return limitAndRound<int32_t>(std::min(length / kAuroraRate * hertz, length / 2));
}

// ---- Weights ----

// step / span, and 1 minus that.
inline void assignRise(float& weight, int32_t step, int32_t span) { weight = static_cast<float>(step) / static_cast<float>(span); }
inline void assignFall(float& weight, int32_t step, int32_t span) {
  weight = 1.0F - static_cast<float>(step) / static_cast<float>(span);
}
inline void assignRise(int32_t& weight, int32_t step, int32_t span) { weight = (step << kWeightFractionBits) / span; }
inline void assignFall(int32_t& weight, int32_t step, int32_t span) {
  weight = (1 << kWeightFractionBits) - (step << kWeightFractionBits) / span;
}
inline float shareOf(float weight, float sum) { return weight / sum; }
inline int32_t shareOf(int32_t weight, int32_t sum) { return static_cast<int32_t>((int64_t{weight} << kWeightFractionBits) / sum); }

// The triangle of filter k, in rows that are clear.
template <class Weight>
void fillTriangle(const BankView<Weight>& bank, int32_t k) {
  const int32_t from = bank.centers[k - 1], top = bank.centers[k], to = bank.centers[k + 1];
  for (int32_t j = from + 1; j <= top; ++j) assignRise(bank.rising(k)[j - from], j - from, top - from);
  for (int32_t j = top + 1; j < to; ++j) assignFall(bank.falling(k)[j - top - 1], j - top, to - top);
}
template <class Weight>
void fillHalfTriangle(const BankView<Weight>& bank) {
  const int32_t top = bank.centers[1], to = bank.centers[2];
  for (int32_t i = 0; i < to - top; ++i) assignFall(bank.rising(1)[i], i, to - top);
  for (int32_t j = top + 1; j < to; ++j) assignFall(bank.falling(1)[j - top - 1], j - top, to - top);
}
// The sum runs over the bins in their order.
template <class Weight>
void normalizeFilter(const BankView<Weight>& bank, int32_t k) {
  const int32_t rising = bank.risingSection(k).count, falling = bank.fallingSection(k).count;
  Weight sum = 0;
  for (int32_t i = 0; i < rising; ++i) sum += bank.rising(k)[i];
  for (int32_t i = 0; i < falling; ++i) sum += bank.falling(k)[i];
  if (sum == Weight(0)) return;
  for (int32_t i = 0; i < rising; ++i) bank.rising(k)[i] = shareOf(bank.rising(k)[i], sum);
  for (int32_t i = 0; i < falling; ++i) bank.falling(k)[i] = shareOf(bank.falling(k)[i], sum);
}

// ---- Banks ----

template <class Bank>
void fillAuroraBank(Bank* bank, const AuroraBand& band) {
  placeFilterBank(bank, band.filterCount, kAuroraTransform, false);
  bank->flags = qorFBankIndexShaped;
  bank->fftOrder = kAuroraTransform.order;
  bank->melMul = static_cast<float>(kAuroraMelMul);
  bank->melDiv = static_cast<float>(kAuroraMelDiv);
  bank->ready = 1;
  auto* const centers = areaAt<int32_t>(bank, bank->centers);
  const int32_t shift = band.isLow ? 1 : 0;  // centers[0] is 0
  for (int32_t i = shift; i < band.filterCount + 2; ++i) centers[i] = auroraBin(band, i - shift);
  const auto view = viewOf(bank);
  for (int32_t k = 1; k <= band.filterCount; ++k) {
    if (band.isLow && k == 1) {
      fillHalfTriangle(view);
    } else {
      fillTriangle(view, k);
    }
    if (band.isLow) normalizeFilter(view, k);
  }
  planEvaluation(bank);
}

template <class Bank>
QorStatus auroraBankSize(const AuroraBand& band, int32_t* size) {
  if (QorStatus bad = Checks().null(size)) return bad;
  *size = static_cast<int32_t>(filterBankBytes<Bank>(band.filterCount, kAuroraTransform, false));
  return qorStatusOk;
}
template <class Bank>
QorStatus initAuroraBank(const AuroraBand& band, Bank* state) {
  if (QorStatus bad = Checks().null(state)) return bad;
  fillAuroraBank(state, band);
  return qorStatusOk;
}
template <class Bank>
QorStatus allocateAuroraBank(const AuroraBand& band, Bank** state) {
  if (QorStatus bad = Checks().null(state)) return bad;
  Bank* const bank = allocateFilterBank<Bank>(band.filterCount, kAuroraTransform, false);
  if (bank == nullptr) return qorStatusNoMemory;
  fillAuroraBank(bank, band);
  *state = bank;
  return qorStatusOk;
}

}  // namespace qorsr
