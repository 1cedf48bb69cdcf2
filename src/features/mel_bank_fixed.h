// The mel bank in fixed point, without floating point anywhere.
//
// Frequencies, mel values and logarithms are Q22 in 64 bits; melMul and melDiv are Q15. Triangles are index-shaped, weights Q30.
//   Logarithm: the exponent, and 31 bits of the binary logarithm of the rest by repeated squaring (Knuth, "The Art of Computer
//   Programming", volume 1, section 1.2.2, exercise 25 and text before it).
//   Exponential: a power of two, and of the rest r the product of the factors 1 + 2^-k whose logarithms r contains (Muller,
//   "Elementary Functions", chapter on shift-and-add algorithms).
// Sums and products that leave 64 bits wrap.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "features/filter_bank.h"
#include "features/filter_bank_plan.h"
#include "features/mel_bank.h"
#include "frame/bits.h"
#include "frame/checks.h"

namespace qorsr {

inline constexpr int64_t kLn2Q31 = 1488522236;      // ln 2
inline constexpr uint64_t kLog2eQ31 = 0xB8AA3B29U;  // log2 e
inline constexpr int64_t kOneQ22 = 0x400000, kLimit32 = 0x7FFFFFFF;

// ln(1 + 2^-k) in Q31, k = 1 to 31; for k = 32 it is below one half of the last place.
inline constexpr int32_t kLogOfFactorQ31[] = {870729689, 479197128, 252937143, 130190384, 66081634, 33294987, 16712019, 8372267,
                                              4190213,   2096129,   1048320,   524224,    262128,   131068,   65535,    32768,
                                              16384,     8192,      4096,      2048,      1024,     512,      256,      128,
                                              64,        32,        16,        8,         4,        2,        1};

// ln of a positive Q22 value, in Q31.
constexpr int64_t naturalLog(int64_t value) {
  const int exponent = std::bit_width(static_cast<uint64_t>(value)) - 1;
  int64_t x = exponent >= 30 ? value >> (exponent - 29) : value << (29 - exponent);  // Q29, 1 to 2
  int64_t fraction = 0;
  for (int i = 0; i < 31; ++i) {
    x = (x * x) >> 29;
    fraction <<= 1;
    if (x >= 0x40000000) {
      fraction |= 1;
      x >>= 1;
    }
  }
  return kLn2Q31 * (exponent - 22) + ((kLn2Q31 * fraction) >> 31);
}

// exp(y) - 1 in Q22, at most 2^31 - 1 before the subtraction; y is Q22 and not negative.
constexpr int64_t exponentialMinusOne(int64_t y) {
  const uint64_t t = kLog2eQ31 * static_cast<uint64_t>(y);
  const auto whole = static_cast<int64_t>(t >> 53);
  int64_t r = (kLn2Q31 * static_cast<int64_t>((t >> 22) & 0x7FFFFFFF)) >> 31;
  uint64_t u = 0x80000000U;  // Q31
  for (int k = 1; k <= 31; ++k) {
    const int64_t log = kLogOfFactorQ31[k - 1];
    if (r > log) {
      r -= log;
      u = (u * (0x80000000U + (uint64_t{1} << (31 - k)))) >> 31;
    }
  }
  const int64_t shift = 9 - whole;  // u is at least 1 and below 2: shifted right it keeps below the limit, else it reaches it
  return (shift > 0 ? static_cast<int64_t>(u >> shift) : kLimit32) - kOneQ22;
}

// A fixed-point bank as its constructor takes it: whole hertz, Q15.
struct FixedMelSpec {
  int32_t sampleFrequency, low, high, filterCount, melMul, melDiv;
};

constexpr int64_t fixedBankBytes(int64_t n, int64_t half) {
  const int64_t rows = (n + 2) * 4 * half, pointers = 4 * n + 8;
  return 4 * n + 96 + 9 * pointers + 9 * pointers + rows + rows + 64;
}

inline BankView<int32_t> placeFixedBank(FBankState_32s* bank, int32_t n, int32_t half) {
  std::byte* const begin = reinterpret_cast<std::byte*>(bank);
  std::byte* const centers = alignUp(begin + sizeof(FBankState_32s));
  std::byte* const rows = alignUp(centers + 4 * (int64_t{n} + 2));
  std::memset(rows, 0, static_cast<std::size_t>(4 * rowElements(half) * n));
  bank->centers = static_cast<int32_t>(centers - begin);
  bank->falling = static_cast<int32_t>(rows - begin);
  bank->rising = bank->falling + static_cast<int32_t>(4 * risingStart(half));
  bank->flags = qorFBankIndexShaped;
  bank->filterCount = n;
  bank->binCount = half + 1;
  bank->plan = 0;
  return viewOf(bank);
}

// With centres and weights in their places.
inline void planFixedBank(FBankState_32s* bank) {
  std::byte* const begin = reinterpret_cast<std::byte*>(bank);
  std::byte* const plan = planOf(bank);
  if (planBank<int32_t>(viewAs<const int32_t>(bank), plan, begin + fixedBankBytes(bank->filterCount, halfLength(*bank)))) {
    bank->plan = static_cast<int32_t>(plan - begin);
  }
}

// The n + 2 centres.
inline void fixedCenters(int32_t* centers, const FixedMelSpec& spec, int64_t length) {
  const int64_t n = spec.filterCount, melMul = spec.melMul;
  const int64_t div = int64_t{spec.melDiv} << 7, logOfDiv = naturalLog(div);
  const auto mel = [&](int64_t hertz) { return wrapMul(melMul, (naturalLog((hertz << 22) + div) >> 9) - (logOfDiv >> 9)) >> 15; };
  const int64_t low = mel(spec.low), high = mel(spec.high);
  const int64_t binsPerHertz = (length << 22) / spec.sampleFrequency, binsOfDiv = wrapMul(div, binsPerHertz) >> 22;
  for (int64_t i = 0; i <= n + 1; ++i) {
    const int64_t m = wrapAdd(wrapMul(high - low, i), wrapMul(n + 1, low)) / (n + 1);
    const int64_t y = shiftLeft(m, 22) / (melMul << 7);
    const int64_t bin = wrapMul(exponentialMinusOne(y), binsOfDiv) >> 22;  // Q22
    centers[i] = static_cast<int32_t>((bin >> 22) + (bin >> 21 & 1));
  }
}

// Index-shaped weights in Q30, with the view's centres.
inline void fillFixedWeights(const BankView<int32_t>& bank) {
  for (int32_t k = 1; k <= bank.filterCount; ++k) {
    const int64_t low = bank.centers[k - 1], top = bank.centers[k], high = bank.centers[k + 1];
    forEachBin(bank.risingSection(k), bank.rising(k),
               [&](int32_t& w, int64_t j) { w = static_cast<int32_t>(((j - low + 1) << 30) / (top - low + 1)); });
    forEachBin(bank.fallingSection(k), bank.falling(k),
               [&](int32_t& w, int64_t j) { w = static_cast<int32_t>(((high + 1 - j) << 30) / (high - top + 1)); });
  }
}

// ---- Family bodies ----

constexpr bool within(int64_t value, int64_t low, int64_t high) { return value >= low && value <= high; }

inline QorStatus fixedMelBankSize(int32_t length, int32_t filterCount, int32_t flags, int32_t* size) {
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

inline QorStatus initFixedMelBank(FBankState_32s* state, int32_t* order, int32_t length, const FixedMelSpec& spec, int32_t flags) {
  // required: one filter more is accepted here than where the size is asked for.
  if (QorStatus bad =
          Checks()
              .null(state, order)
              .size(spec.filterCount, spec.high)
              .require(within(length, 32, 8192), qorStatusBadSize)
              .require(flags == qorFBankIndexShaped, qorStatusBadFBankFlag)
              .require(within(spec.sampleFrequency, 1, 48000) && spec.low >= 0, qorStatusBadSize)
              .require(spec.high > spec.low && spec.high <= 24000, qorStatusBadFBankFrequency)
              .require(within(spec.melDiv, 0x80001, 0xFFFFFFF) && within(spec.melMul, 0x80001, 0x3FFFFFFF), qorStatusBadArgument)
              .require([&] { return spec.filterCount <= transformSize(length).length / 2 + 1; }, qorStatusBadSize)) {
    return bad;
  }
  const TransformSize size = transformSize(length);
  *order = size.order;
  const auto bank = placeFixedBank(state, spec.filterCount, static_cast<int32_t>(size.length / 2));
  fixedCenters(areaAt<int32_t>(state, state->centers), spec, size.length);
  fillFixedWeights(bank);
  planFixedBank(state);
  return qorStatusOk;
}

}  // namespace qorsr
