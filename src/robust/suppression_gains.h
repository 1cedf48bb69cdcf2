// Gains that suppress noise, from ratios of signal to noise.
//
//   Ephraim and Malah   g = prior F(v),  v = posterior prior,
//                       F(v) = sqrt(pi / v) / 2 exp(-v / 2) ((1 + v) I0(v / 2) + v I1(v / 2))
//   Wiener              g = x / (1 + x); of integers with x rounded down to the next step of a staircase
//
// F is defined by tables over q = 2^22 v, a whole number: below 129 one entry each, then a parabola an octave,
//   (e ((e T2[i] >> 13) - T3[i]) >> (i + 5)) + T1[i],  q = 2^(i + 7) + e.
// All of that is computed in doubles, where every product is exact, with f = 4 e / 2^(i + 7) from the bits of q.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "qorsr.h"

namespace qorsr {

// ---- Tables ----

// F(q / 2^22), rounded; of 0 the largest integer.
inline constexpr int32_t kRatioAt[129] = {
    2147483647, 1815, 1283, 1048, 907, 812, 741, 686, 642, 605, 574, 547, 524, 503, 485, 469, 454, 440, 428, 416, 406, 396,
    387,        378,  370,  363,  356, 349, 343, 337, 331, 326, 321, 316, 311, 307, 303, 298, 294, 291, 287, 283, 280, 277,
    274,        271,  268,  265,  262, 259, 257, 254, 252, 249, 247, 245, 243, 240, 238, 236, 234, 232, 231, 229, 227, 225,
    223,        222,  220,  219,  217, 215, 214, 212, 211, 210, 208, 207, 206, 204, 203, 202, 200, 199, 198, 197, 196, 195,
    193,        192,  191,  190,  189, 188, 187, 186, 185, 184, 183, 182, 182, 181, 180, 179, 178, 177, 176, 175, 175, 174,
    173,        172,  172,  171,  170, 169, 169, 168, 167, 166, 166, 165, 164, 164, 163, 162, 162, 161, 160,
};

// Of octave i: the value at its begin (22 fraction bits), and the parabola's coefficients. q ends in octave 21.
inline constexpr int kOctaves = 22;
inline constexpr int64_t kOctaveBegin[kOctaves] = {
    669498645, 473414302, 334764744, 236728959, 167413213, 118408092, 83768274, 59291231, 42007360, 29819668, 21249233,
    15255427,  11108711,  8299601,   6470760,   5361107,   4756698,   4463049,  4325745,  4259445,  4226742,  4210491,
};
inline constexpr int64_t kOctaveCurve[kOctaves] = {
    1576642499, 557423223, 197075987, 69674844, 24632335, 8707825, 3077959, 1087711, 384201, 135577, 47749,
    16748,      5823,      1986,      648,      193,      49,      11,      2,       0,      0,      0,
};
inline constexpr int64_t kOctaveFall[kOctaves] = {
    72453962, 51231813, 36225125, 25613282, 18108852, 12801395, 9047010, 6390220, 4508716, 3174276, 2225121,
    1546422,  1056723,  698929,   435261,   245271,   121987,   56781,   27183,   13368,   6635,    3306,
};
inline constexpr int32_t kFirstOfOctaves = 129;  // q; required: 128 is the last entry of the table

// The same for f in place of e, an octave a row; rows behind the last are never used.
struct OctaveRow {
  double begin, fall, curve, unused;
};
struct OctaveRows {
  OctaveRow row[24];
};
constexpr OctaveRows octaveRows() {
  OctaveRows rows{};
  double scale = 0x1p-8;  // 2^(i + 7) / 4 / 2^13
  for (int i = 0; i < kOctaves; ++i, scale *= 2) {
    rows.row[i] = {static_cast<double>(kOctaveBegin[i]), static_cast<double>(kOctaveFall[i]),
                   static_cast<double>(kOctaveCurve[i]) * scale, 0.0};
  }
  return rows;
}
alignas(32) inline constexpr OctaveRows kOctaveRows = octaveRows();

// ---- Tables in registers ----

#if defined(__AVX512F__)
// Where the level looks up tables in registers, gains are found 1.4 (FilterUpdateEMNS) to 1.9 times (FilterUpdateWiener_32s) faster than
// through memory (noise_tracking, 257 bins).
#define QORSR_TABLES_IN_REGISTERS
namespace native {

// Entries of a table of 24.
inline Vector<double, 8> entries(const double* table, Vector<uint64_t, 8> index) {
  const auto i = __m512i(index);
  const __m512d lower = _mm512_permutex2var_pd(load<__m512d>(table), i, load<__m512d>(table + 8));
  return _mm512_mask_permutexvar_pd(lower, _mm512_test_epi64_mask(i, _mm512_set1_epi64(16)), i, load<__m512d>(table + 16));
}
// Of a table of 96.
inline Vector<int32_t, 16> entries(const int32_t* table, Vector<int32_t, 16> index) {
  const auto i = __m512i(index);
  const auto pair = [=](int k) {
    return _mm512_permutex2var_epi32(load<__m512i>(table + 32 * k), i, load<__m512i>(table + 32 * k + 16));
  };
  const __m512i lower = _mm512_mask_blend_epi32(_mm512_test_epi32_mask(i, _mm512_set1_epi32(32)), pair(0), pair(1));
  return Vector<int32_t, 16>(_mm512_mask_blend_epi32(_mm512_test_epi32_mask(i, _mm512_set1_epi32(64)), lower, pair(2)));
}

}  // namespace native

struct OctaveColumns {
  double begin[24], fall[24], curve[24];
};
constexpr OctaveColumns octaveColumns() {
  OctaveColumns columns{};
  for (int i = 0; i < kOctaves; ++i) {
    columns.begin[i] = kOctaveRows.row[i].begin;
    columns.fall[i] = kOctaveRows.row[i].fall;
    columns.curve[i] = kOctaveRows.row[i].curve;
  }
  return columns;
}
alignas(64) inline constexpr OctaveColumns kOctaveColumns = octaveColumns();
#endif

// ---- Blocks ----

// Lanes of one number of a vector.
template <class T>
inline Lanes<T, 4> firstOfFour(const T* p, int n) {
  const auto at = [=](int i) { return p[i < n ? i : 0]; };
  return Lanes<T, 4>::of(p[0], at(1), at(2), at(3));
}

// Calls block(LaneCount<N>, result, source ...) for blocks that cover the vectors: N doubles fill a register, or are four. The last
// block overlaps the one before it; of a vector of less than four, the first element stands in for those that are not there.
template <class Block, class T, class... Source>
inline void coverByBlocks(const Block& block, int32_t length, T* result, const Source*... source) {
  constexpr int kWide = std::max(kNativeLanes<double>, 4);
  const auto all = [&](auto n) {
    int32_t i = 0;
    for (; length - i >= n; i += n) block(n, result + i, (source + i)...);
    if (i < length) block(n, result + (length - n), (source + (length - n))...);
  };
  if (length >= kWide) return all(LaneCount<kWide>());
  if (length >= 4) return all(LaneCount<4>());
  const auto four = [=](const auto* p, auto* copy) {
    firstOfFour(p, length).store(copy);
    return copy;
  };
  T results[4];
  block(LaneCount<4>(), results, static_cast<const Source*>(four(source, std::array<Source, 4>().data()))...);
  for (int32_t i = 0; i < length; ++i) result[i] = results[i];
}

constexpr bool isGainLength(int32_t length) { return length >= 1 && length <= 65535; }

// ---- Ephraim and Malah ----

// begin, fall and curve of N octaves.
template <int N>
struct OctaveEntries {
  Lanes<double, N> begin, fall, curve;
};

// Of four octaves: their rows, transposed. Of eight: from registers.
template <int N>
inline OctaveEntries<N> entriesOf(const Lanes<uint64_t, N>& octave) {
#if defined(QORSR_TABLES_IN_REGISTERS)
  if constexpr (N == 8) {
    OctaveEntries<N> e;
    e.begin.part[0] = native::entries(kOctaveColumns.begin, octave.part[0]);
    e.fall.part[0] = native::entries(kOctaveColumns.fall, octave.part[0]);
    e.curve.part[0] = native::entries(kOctaveColumns.curve, octave.part[0]);
    return e;
  }
#endif
  if constexpr (N == 4) {
    using L = Lanes<double, N>;
    uint64_t index[N];
    octave.store(index);
    const auto row = [&](int j) { return L::load(&kOctaveRows.row[index[j]].begin); };
    const L a = row(0), b = row(1), c = row(2), d = row(3);
    const auto evens = [](const L& x, const L& y) { return permuted<order::inTurnOfEach<2, 1, 0>>(x, y); };
    const auto odds = [](const L& x, const L& y) { return permuted<order::inTurnOfEach<2, 1, 1>>(x, y); };
    const L ab = evens(a, b), cd = evens(c, d);
    return {permuted<order::lowerHalves>(ab, cd), permuted<order::lowerHalves>(odds(a, b), odds(c, d)),
            permuted<order::upperHalves>(ab, cd)};
  }
}

// The value of q's octave, 22 fraction bits. Of q below 128 that of 128.
template <int N>
inline Lanes<int32_t, N> ratioOfOctave(const Lanes<int32_t, N>& q) {
  using L = Lanes<double, N>;
  using Bits = Lanes<uint64_t, N>;  // shifts of signed 64-bit lanes are slow below x86-64-v4
  using Part = typename Bits::Part;
  constexpr uint64_t kFraction = (uint64_t{1} << 52) - 1, kFour = std::bit_cast<uint64_t>(4.0);
  const auto bits = std::bit_cast<Bits>(as<double>(max(q, Lanes<int32_t, N>(128))));
  const auto octave = Bits::each(bits, [](Part x) { return Part((x >> 52) - (1023 + 7)); });
  const L f = std::bit_cast<L>(Bits::each(bits, [](Part x) { return Part((x & kFraction) | kFour); })) - L(4.0);
  const auto entries = entriesOf<N>(octave);
  const L slope = as<double>(truncated(f * entries.curve)) - entries.fall;
  return truncated(entries.begin + f * slope);
}

// Calls set(j, F) for the elements of a block whose q the table of single entries holds. A NaN's q is the most negative integer.
template <int N, class Set>
inline void setSmallRatios(const Lanes<int32_t, N>& q, const Set& set) {
  if (!anyLess(q, Lanes<int32_t, N>(kFirstOfOctaves))) return;
  int32_t all[N];
  q.store(all);
  for (int j = 0; j < N; ++j) {
    if (all[j] < kFirstOfOctaves) set(j, kRatioAt[std::max(all[j], 0)]);
  }
}

template <int N>
inline void ephraimMalahBlock(LaneCount<N>, float* gain, const float* prior, const float* posterior) {
  using L = Lanes<float, N>;
  const L p = L::load(prior), snr = min(max(L::load(posterior), L(3.1e-5F)), L(100.0F));
  const auto q = truncated(snr * p * L(4194304.0F));
  (p * as<float>(ratioOfOctave(q)) * L(0x1p-22F)).store(gain);
  setSmallRatios(q, [=](int j, int32_t ratio) { gain[j] = prior[j] * static_cast<float>(ratio); });
}

template <int N>
inline void ephraimMalahBlock(LaneCount<N>, int32_t* gain, const int32_t* prior, const int32_t* posterior) {
  using W = Lanes<int32_t, N>;
  using L = Lanes<double, N>;
  constexpr int32_t kHundred = 100 << 15;
  constexpr double kMost = 2147483647.0;
  const L p = as<double>(W::load(prior)), snr = as<double>(min(max(W::load(posterior), W(1)), W(kHundred)));
  const W q = truncated(p * snr * L(0x1p-24));
  // A product that is not exact is beyond the limit.
  truncated(min(p * as<double>(ratioOfOctave(q)) * L(0x1p-22), L(kMost))).store(gain);
  setSmallRatios(
      q, [=](int j, int32_t ratio) { gain[j] = static_cast<int32_t>(std::min<int64_t>(int64_t{prior[j]} * ratio, INT32_MAX)); });
}

inline bool isPrior(const float* prior, int32_t length) {
  bool outside = false;
  coverColumns<float>(length, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L p = L::load(prior + i);
    outside |= anyLess(p, L(0.0F)) || anyLess(L(1.0F), p);
  });
  return !outside;
}
inline bool isPrior(const int32_t* prior, int32_t length) {
  int32_t all = 0;
  for (int32_t i = 0; i < length; ++i) all |= prior[i];
  return all >= 0;
}

template <class T>
inline QorStatus ephraimMalahGains(const T* prior, const T* posterior, T* gain, int32_t length) {
  if (QorStatus bad = Checks()
                          .null(prior, posterior, gain)
                          .require(isGainLength(length), qorStatusBadLength)
                          .require([=] { return isPrior(prior, length); }, qorStatusBadRange)) {
    return bad;
  }
  coverByBlocks([](auto n, T* g, const T* p, const T* snr) { ephraimMalahBlock(n, g, p, snr); }, length, gain, prior, posterior);
  return qorStatusOk;
}

// ---- Wiener ----

inline QorStatus wienerGains(const float* snr, float* gain, int32_t length) {
  if (QorStatus bad = Checks().null(snr, gain).require(isGainLength(length), qorStatusBadLength)) return bad;
  bool negative = false;
  coverColumns<float>(length, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L zero(0.0F), x = L::load(snr + i), limited = selectLess(x, zero, zero, x);
    negative |= anyLess(x, zero);
    (limited / (L(1.0F) + limited)).store(gain + i);
  });
  return negative ? qorStatusBadArgument : qorStatusOk;
}

// Steps of 1/16 below 4, of 4 below 64, of 64 below 512; one step up to 1024, and 1 beyond (required). All in one table: an element's
// step is the sum of v >> 11, v >> 17, v >> 21, v >> 24 and v >> 25, each limited to the last step of its own.
inline constexpr int kSteps = 96;  // 64 + 15 + 7 + 1 + 1, and some that are never used

constexpr std::array<int32_t, kSteps> wienerSteps() {
  std::array<int32_t, kSteps> steps{};
  int at = 0;
  const auto add = [&](int64_t numerator, int64_t denominator) {
    steps[static_cast<std::size_t>(at++)] = static_cast<int32_t>((numerator << 31) / denominator);
  };
  for (int64_t k = 0; k <= 63; ++k) add(k, 16 + k);
  for (int64_t k = 1; k <= 15; ++k) add(4 * k, 1 + 4 * k);
  for (int64_t k = 1; k <= 7; ++k) add(64 * k, 1 + 64 * k);
  add(512, 513);
  while (at < kSteps) steps[static_cast<std::size_t>(at++)] = INT32_MAX;
  return steps;
}
alignas(64) inline constexpr std::array<int32_t, kSteps> kWienerSteps = wienerSteps();

inline int32_t wienerStep(int32_t v) {
  if (v < 1 << 17) return v < 0 ? 0 : v >> 11;
  if (v < 1 << 21) return 63 + (v >> 17);
  if (v < 1 << 24) return 78 + (v >> 21);
  return v < 1 << 25 ? 86 : 87;
}

// One block. True if one of its ratios is negative.
#if defined(QORSR_TABLES_IN_REGISTERS)
inline constexpr int kWienerBlock = 16;
inline bool wienerBlock(const int32_t* snr, int32_t* gain) {
  using W = Lanes<int32_t, kWienerBlock>;
  const W v = W::load(snr);
  const auto part = [&](int shift, int32_t last) { return min(v >> shift, W(last)); };
  const W step = max(part(11, 63) + part(17, 15) + part(21, 7) + part(24, 1) + part(25, 1), W(0));
  W gains;
  gains.part[0] = native::entries(kWienerSteps.data(), step.part[0]);
  gains.store(gain);
  return anyLess(v, W(0));
}
#else
inline constexpr int kWienerBlock = kNativeLanes<int16_t>;
inline bool wienerBlock(const int32_t* snr, int32_t* gain) {  // in 16 bits, of which every level has the lesser
  using Shorts = Lanes<int16_t, kWienerBlock>;
  const auto v = Lanes<int32_t, kWienerBlock>::load(snr);
  const Shorts fine = saturated(v >> 11), coarse = saturated(v >> 17), zero(0);
  const auto part = [&](int shift, int16_t last) { return min(coarse >> shift, Shorts(last)); };
  int16_t step[kWienerBlock];
  (max(min(fine, Shorts(63)), zero) + max(part(0, 15) + part(4, 7) + part(7, 1) + part(8, 1), zero)).store(step);
  for (int j = 0; j < kWienerBlock; ++j) gain[j] = kWienerSteps[static_cast<std::size_t>(step[j])];
  return anyLess(coarse, zero);
}
#endif

inline QorStatus wienerGains(const int32_t* snr, int32_t* gain, int32_t length) {
  if (QorStatus bad = Checks().null(snr, gain).require(isGainLength(length), qorStatusBadLength)) return bad;
  bool negative = false;
  int32_t i = 0;
  for (; length - i >= kWienerBlock; i += kWienerBlock) negative |= wienerBlock(snr + i, gain + i);
  if (i == length) return negative ? qorStatusBadArgument : qorStatusOk;
  if (length >= kWienerBlock) {
    negative |= wienerBlock(snr + (length - kWienerBlock), gain + (length - kWienerBlock));
  } else {
    for (; i < length; ++i) {
      negative |= snr[i] < 0;
      gain[i] = kWienerSteps[static_cast<std::size_t>(wienerStep(snr[i]))];
    }
  }
  return negative ? qorStatusBadArgument : qorStatusOk;
}

}  // namespace qorsr
