// Power spectra of packed transforms, two neighbouring bins in each result.
//
//   x[0] is the first bin and x[1] the last one, both real; pairs of real and imaginary parts follow, so that x[4k] to x[4k+3] are bins
//   2k and 2k + 1. With n = length / 4:
//   y[0] = (x[0]^2 + (x[2]^2 + x[3]^2)) / 2,   y[k] = ((x[4k]^2 + x[4k+1]^2) + (x[4k+2]^2 + x[4k+3]^2)) / 2,   y[n] = x[1]^2.
// Integers halve each square on its own, rounding down. required: what happens at the limits differs between the first, the middle and the
// last results of a member, and between members; it stands with their kernels.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/unsigned_products.h"
#include "robust/nearest.h"

namespace qorsr {

// ---- Sums of neighbours ----

// Lane i is the sum of lanes 2i and 2i + 1.
template <class T, int N>
inline Lanes<T, N / 2> sumsOfPairs(const Lanes<T, N>& a) {
  return permuted<order::everySecond<0>, N / 2>(a) + permuted<order::everySecond<1>, N / 2>(a);
}
// Lane i is the sum of lanes 4i to 4i + 3, neighbours first.
template <class T, int N>
inline Lanes<T, N / 4> sumsOfFours(const Lanes<T, N>& a) {
  return sumsOfPairs(sumsOfPairs(a));
}

namespace order {
// Within every four lanes every second one, from First on, of both.
template <int First>
constexpr int everySecondOfFours(int i, int n) {
  return i % 4 / 2 * n + i / 4 * 4 + i % 2 * 2 + First;
}
constexpr int foursInTurn(int i, int n) { return i % (n / 4) * 4 + i / (n / 4); }
}  // namespace order

// The same of four registers, in which no lane leaves its four before the last step: such shuffles are the cheap ones (2.0 at AVX2,
// noise_reduction, SmoothedPowerSpectrum_32f, 512 numbers).
template <int N>
inline Lanes<float, N> sumsWithinFours(const Lanes<float, N>& a, const Lanes<float, N>& b) {
  return permuted<order::everySecondOfFours<0>>(a, b) + permuted<order::everySecondOfFours<1>>(a, b);
}
template <int N>
inline Lanes<float, N> sumsOfFours(const Lanes<float, N>& a, const Lanes<float, N>& b, const Lanes<float, N>& c,
                                   const Lanes<float, N>& d) {
  return permuted<order::foursInTurn>(sumsWithinFours(sumsWithinFours(a, b), sumsWithinFours(c, d)));
}

// ---- Floats ----

template <int N>
inline Lanes<float, N> squaresOfFours(const float* x) {
  if constexpr (N == 1) {
    return Lanes<float, 1>((x[0] * x[0] + x[1] * x[1]) + (x[2] * x[2] + x[3] * x[3]));
  } else {
    const auto squares = [=](int r) {
      const auto v = Lanes<float, N>::load(x + r * N);
      return v * v;
    };
    return sumsOfFours(squares(0), squares(1), squares(2), squares(3));
  }
}

inline void powerSpectrum(const float* x, int32_t count, float* result) {
  coverColumns<float, kOneRegister<float>>(
      count, [=](int32_t k, auto n) { (squaresOfFours<n>(x + 4 * k) * Lanes<float, n>(0.5F)).store(result + k); });
  result[0] = (x[0] * x[0] + (x[2] * x[2] + x[3] * x[3])) * 0.5F;
  result[count] = x[1] * x[1];
}

// ---- 16 bits: sums in 32 bits, limited ----

inline uint32_t halvedSquare(int16_t x) { return static_cast<uint32_t>(int32_t{x} * x >> 1); }

// Of each four numbers the sum of their halved squares, in 32 bits that wrap: 2^31 for four times -32768.
template <int N>
inline Lanes<int32_t, N> halvedSquares(const int16_t* p) {
  if constexpr (N == 1) {
    const uint32_t sum = halvedSquare(p[0]) + halvedSquare(p[1]) + halvedSquare(p[2]) + halvedSquare(p[3]);
    return Lanes<int32_t, 1>(static_cast<int32_t>(sum));
  } else {
    const auto x = Lanes<int16_t, 4 * N>::load(p), odd = Lanes<int16_t, 4 * N>::each(x, [](auto v) { return decltype(v)(v & 1); });
    const auto dropped = as<uint32_t>(pairDots(odd, odd));  // what halving drops is 1 for each odd number
    return as<int32_t>(sumsOfPairs((as<uint32_t>(pairDots(x, x)) - dropped) >> 1));
  }
}

inline void powerSpectrum(const int16_t* x, int32_t count, int16_t* result) {
  coverColumns<int32_t, kOneRegister<int32_t>>(
      count, [=](int32_t k, auto n) { saturated(halvedSquares<n>(x + 4 * k)).store(result + k); });
  const auto limited = [](uint32_t value) { return static_cast<int16_t>(std::min(value, 32767U)); };
  result[0] = limited(halvedSquare(x[0]) + halvedSquare(x[2]) + halvedSquare(x[3]));
  result[count] = limited(static_cast<uint32_t>(int32_t{x[1]} * x[1]));
}

// ---- 32 bits ----

inline int64_t halvedSquare(int32_t x) { return int64_t{x} * x >> 1; }
// required: the square of the last bin keeps its low 32 bits alone, as a signed number.
inline int64_t wrappedSquare(int32_t x) { return wrapMul(x, x); }

// Rounded to nearest, ties to even; the most negative integer for what is out of range and for a NaN.
inline Lanes<int32_t, 1> nearestOrLowest(const Lanes<double, 1>& a) {
  return Lanes<int32_t, 1>(a.part[0] < 2147483647.5 ? limitAndRound<int32_t>(a.part[0]) : INT32_MIN);
}
template <int N>
inline Lanes<int32_t, N> nearestOrLowest(const Lanes<double, N>& a) {
  return nearest(a);
}

// required: results between the first and the last one are formed in double, and what is out of range becomes the most negative integer.
QORSR_IN_GUARDED_MODE inline void middleOfPowerSpectrum(const int32_t* x, int32_t count, int32_t* result, double multiplier) {
  constexpr int kBlock = std::max(4, kNativeLanes<double>);
  coverColumns<float, kBlock>(count, [=](int32_t k, auto n) {
    const auto v = loadAs<double, 4 * n>(x + 4 * k);
    nearestOrLowest(sumsOfFours(v * v) * Lanes<double, n>(multiplier)).store(result + k);
  });
}

inline void powerSpectrum(const int32_t* x, int32_t count, int32_t* result, int32_t scaleFactor) {
  const auto multiplier = twoToMinus<double>(scaleFactor == INT32_MAX ? scaleFactor : scaleFactor + 1);
  if (count > 1) roundingToNearest([=] { middleOfPowerSpectrum(x, count, result, multiplier); });
  const auto scaled = [=](int64_t sum) { return saturate<int32_t>(shiftByScale(sum, scaleFactor)); };
  result[0] = scaled(halvedSquare(x[0]) + halvedSquare(x[2]) + halvedSquare(x[3]));
  result[count] = scaled(wrappedSquare(x[1]));
}

// ---- 32 bits to 64 ----

// Shifts of 64-bit lanes by a scale factor, as shiftByScale().
class WideShift {
 public:
  explicit WideShift(int32_t scaleFactor)
      : left_(scaleFactor < 0 ? static_cast<int>(std::min<int64_t>(-int64_t{scaleFactor}, 63)) : 0),
        right_(scaleFactor < 0 ? 0 : std::min(scaleFactor, 63)),
        kept_(scaleFactor < -63 ? 0 : ~uint64_t{0}) {}

  // Right without a sign, which is then spread: there is no such instruction for signed 64-bit lanes below AVX-512.
  template <int N>
  Lanes<int64_t, N> operator()(const Lanes<uint64_t, N>& a) const {
    using Part = typename Lanes<uint64_t, N>::Part;
    const uint64_t sign = (uint64_t{1} << 63) >> right_;
    return as<int64_t>(Lanes<uint64_t, N>::each(a, [=, this](Part x) {
      const Part moved = Part(Part((x & kept_) << static_cast<uint64_t>(left_)) >> static_cast<uint64_t>(right_));
      return Part(Part(moved ^ sign) - sign);
    }));
  }

 private:
  int left_, right_;
  uint64_t kept_;
};

// Of each four numbers the sum of their halved squares, modulo 2^64: 2^63 for four times -2^31.
template <int N>
inline Lanes<uint64_t, N> halvedSquares(const Lanes<int32_t, 4 * N>& x) {
  const auto magnitudes = Lanes<int32_t, 4 * N>::each(x, [](auto v) {
    using Bits = typename Lanes<uint32_t, Lanes<int32_t, 4 * N>::kPart>::Part;
    const auto sign = std::bit_cast<Bits>(decltype(v)(v >> 31));
    return std::bit_cast<decltype(v)>(Bits(Bits(std::bit_cast<Bits>(v) ^ sign) - sign));
  });
  return sumsOfPairs((unsignedProducts<false>(magnitudes, magnitudes) >> 1) +
                     (unsignedProducts<true>(magnitudes, magnitudes) >> 1));
}

inline void powerSpectrum(const int32_t* x, int32_t count, int64_t* result, int32_t scaleFactor) {
  const WideShift shift(scaleFactor);
  coverColumns<int64_t, kOneRegister<int64_t>>(
      count, [=](int32_t k, auto n) { shift(halvedSquares<n>(Lanes<int32_t, 4 * n>::load(x + 4 * k))).store(result + k); });
  result[0] = shiftByScale(halvedSquare(x[0]) + halvedSquare(x[2]) + halvedSquare(x[3]), scaleFactor);
  result[count] = shiftByScale(wrappedSquare(x[1]), scaleFactor);
}

// ---- Family body ----

template <class T, class Result, class... ScaleFactor>
QorStatus smoothedPowerSpectrum(const T* spectrum, Result* power, int32_t length, ScaleFactor... scaleFactor) {
  if (QorStatus bad = Checks().null(spectrum, power).size(length).require(length % 4 == 0, qorStatusBadSize)) return bad;
  powerSpectrum(spectrum, length / 4, power, scaleFactor...);
  return qorStatusOk;
}

}  // namespace qorsr
