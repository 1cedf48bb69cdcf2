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

// The same for f in place of e.
struct OctavePieces {
  double begin[kOctaves], curve[kOctaves], fall[kOctaves];
};
constexpr OctavePieces octavePieces() {
  OctavePieces p{};
  double scale = 0x1p-8;  // 2^(i + 7) / 4 / 2^13
  for (int i = 0; i < kOctaves; ++i, scale *= 2) {
    p.begin[i] = static_cast<double>(kOctaveBegin[i]);
    p.curve[i] = static_cast<double>(kOctaveCurve[i]) * scale;
    p.fall[i] = static_cast<double>(kOctaveFall[i]);
  }
  return p;
}
inline constexpr OctavePieces kOctavePieces = octavePieces();

// ---- Blocks ----

// Elements that one block of doubles holds.
inline constexpr int kGainBlock = std::max(kNativeLanes<double>, 4);
using GainDoubles = Lanes<double, kGainBlock>;
using GainIntegers = Lanes<int32_t, kGainBlock>;

// Calls block(result, source ...) for blocks that cover the vectors; the last one overlaps the one before it, and a vector that is
// shorter than a block is copied into one.
template <class Block, class T, class... Source>
inline void coverByBlocks(const Block& block, int32_t length, T* result, const Source*... source) {
  int32_t i = 0;
  for (; length - i >= kGainBlock; i += kGainBlock) block(result + i, (source + i)...);
  if (i == length) return;
  if (length >= kGainBlock) return block(result + (length - kGainBlock), (source + (length - kGainBlock))...);
  const auto bytes = static_cast<std::size_t>(length) * sizeof(T);
  const auto padded = [=](const auto* p) {
    std::array<std::decay_t<decltype(*p)>, kGainBlock> all{};
    std::memcpy(all.data(), p, bytes);
    return all;
  };
  T results[kGainBlock];
  block(results, padded(source).data()...);
  std::memcpy(result, results, bytes);
}

constexpr bool isGainLength(int32_t length) { return length >= 1 && length <= 65535; }

// ---- Ephraim and Malah ----

template <int N>
inline Lanes<double, N> entriesOf(const double* table, const int64_t* index) {
  if constexpr (N == 4) {
    return Lanes<double, 4>::of(table[index[0]], table[index[1]], table[index[2]], table[index[3]]);
  } else {
    return concatenated(entriesOf<N / 2>(table, index), entriesOf<N / 2>(table, index + N / 2));
  }
}

// The value of q's octave, 22 fraction bits. Of q below 128 that of 128.
inline GainIntegers ratioOfOctave(const GainIntegers& q) {
  using L = GainDoubles;
  using Bits = Lanes<int64_t, kGainBlock>;
  using Part = typename Bits::Part;
  constexpr int64_t kFraction = (int64_t{1} << 52) - 1, kFour = std::bit_cast<int64_t>(4.0);
  constexpr int64_t kFirstExponent = (1023 + 7);
  const auto bits = std::bit_cast<Bits>(as<double>(max(q, GainIntegers(128))));
  int64_t octave[kGainBlock];
  Bits::each(bits, [](Part x) { return Part((x >> 52) - kFirstExponent); }).store(octave);
  const L f = std::bit_cast<L>(Bits::each(bits, [](Part x) { return Part((x & kFraction) | kFour); })) - L(4.0);
  const auto entries = [&](const double* table) { return entriesOf<kGainBlock>(table, octave); };
  const L slope = as<double>(truncated(f * entries(kOctavePieces.curve))) - entries(kOctavePieces.fall);
  return truncated(entries(kOctavePieces.begin) + f * slope);
}

// Calls set(j, F) for the elements of a block whose q the table of single entries holds. A NaN's q is the most negative integer.
template <class Set>
inline void setSmallRatios(const GainIntegers& q, const Set& set) {
  if (!anyLess(q, GainIntegers(kFirstOfOctaves))) return;
  int32_t all[kGainBlock];
  q.store(all);
  for (int j = 0; j < kGainBlock; ++j) {
    if (all[j] < kFirstOfOctaves) set(j, kRatioAt[std::max(all[j], 0)]);
  }
}

inline void ephraimMalahBlock(float* gain, const float* prior, const float* posterior) {
  using L = Lanes<float, kGainBlock>;
  const L p = L::load(prior), snr = min(max(L::load(posterior), L(3.1e-5F)), L(100.0F));
  const GainIntegers q = truncated(snr * p * L(4194304.0F));
  (p * as<float>(ratioOfOctave(q)) * L(0x1p-22F)).store(gain);
  setSmallRatios(q, [=](int j, int32_t ratio) { gain[j] = prior[j] * static_cast<float>(ratio); });
}

inline void ephraimMalahBlock(int32_t* gain, const int32_t* prior, const int32_t* posterior) {
  constexpr int32_t kHundred = 100 << 15;
  constexpr double kMost = 2147483647.0;
  const GainIntegers snr = min(max(GainIntegers::load(posterior), GainIntegers(1)), GainIntegers(kHundred));
  const GainDoubles p = as<double>(GainIntegers::load(prior));
  const GainIntegers q = truncated(p * as<double>(snr) * GainDoubles(0x1p-24));
  // A product that is not exact is beyond the limit.
  truncated(min(p * as<double>(ratioOfOctave(q)) * GainDoubles(0x1p-22), GainDoubles(kMost))).store(gain);
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
  coverByBlocks([](T* g, const T* p, const T* snr) { ephraimMalahBlock(g, p, snr); }, length, gain, prior, posterior);
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

// Steps of 1/16 below 4, of 4 below 64, of 64 below 512; one step up to 1024, and 1 beyond (required).
inline void wienerBlock(int32_t* gain, const int32_t* snr) {
  using W = GainIntegers;
  using L = GainDoubles;
  using Part = typename W::Part;
  const auto upTo = [](int bits) { return W(static_cast<int32_t>(~0U << bits)); };
  const W v = W::load(snr);
  const W step =
      selectLess(v, W(1 << 17), upTo(11), selectLess(v, W(1 << 21), upTo(17), selectLess(v, W(1 << 24), upTo(21), upTo(24))));
  const L x = as<double>(max(W::each(v, step, [](Part a, Part b) { return Part(a & b); }), W(0)));
  const W ratio = truncated(x * L(0x1p31) / (x + L(32768.0)));
  selectLess(v, W(1 << 25), ratio, W(INT32_MAX)).store(gain);
}

inline QorStatus wienerGains(const int32_t* snr, int32_t* gain, int32_t length) {
  if (QorStatus bad = Checks().null(snr, gain).require(isGainLength(length), qorStatusBadLength)) return bad;
  bool negative = false;
  coverByBlocks(
      [&](int32_t* g, const int32_t* x) {
        negative |= anyLess(GainIntegers::load(x), GainIntegers(0));
        wienerBlock(g, x);
      },
      length, gain, snr);
  return negative ? qorStatusBadArgument : qorStatusOk;
}

}  // namespace qorsr
