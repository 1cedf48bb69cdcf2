// log(x) = k log 2 + log(1 + f),  x = 2^k (1 + f),  sqrt(1/2) <= 1 + f < sqrt(2).
//
//   log(1 + f) = 2 artanh(s) = 2 s + s R(s^2),  s = f / (2 + f),  and since 2 s = f - s f:  = f - f^2/2 + s (f^2/2 + R)
// (Tang, "Table-driven implementation of the logarithm function", ACM Transactions on Mathematical Software 16, 1990, shows such
// forms). R is the minimax polynomial for coefficients of the type (fpminimax of Sollya), to 2^-59 of the logarithm in double, 2^-35
// in float. What is large is exact: k log 2 in two parts, the first of few bits; f^2/2 in two parts, the first the square of f's upper
// bits; sums with their errors. The rest is small and added to the errors, and then to the sum.
//
// log10(x) = log(x) / log(10), both in two parts: powers of ten have exact logarithms.
#pragma once

#include <limits>

#include "frame/elementary/parts.h"

namespace qorsr {

namespace elementary {

template <class T>
struct LogConstants;
template <>
struct LogConstants<double> {
  static constexpr uint64_t kRootOfHalf = 0x3FE6A09E667F3BCD;  // sqrt(1/2), its bits
  static constexpr double kLog2High = 0x1.62e42feep-1, kLog2Low = 0x1.a39ef35793c76p-33;
  static constexpr double kR[] = {0x1.5555555555592p-1, 0x1.999999997ff41p-2, 0x1.24924941de7bap-2, 0x1.c71c5216a7eb1p-3,
                                  0x1.74663c7d6e177p-3, 0x1.39a1f25e12183p-3, 0x1.2f036e0206a42p-3};
  static constexpr double kPer10High = 0x1.bcb7b1p-2, kPer10Low = 0x1.49b9438ca9aaep-28;  // 1 / log(10)
  static constexpr double kIntoNormal = 0x1p54, kIntoNormalLog = 54.0;
};
template <>
struct LogConstants<float> {
  static constexpr uint32_t kRootOfHalf = 0x3F3504F3;
  static constexpr float kLog2High = 0x1.62e4p-1F, kLog2Low = 0x1.7f7d1cp-20F;
  static constexpr float kR[] = {0x1.555554p-1F, 0x1.999bd4p-2F, 0x1.23f1ap-2F, 0x1.ec1e4p-3F};
  static constexpr float kPer10High = 0x1.bcap-2F, kPer10Low = 0x1.7b1526p-14F;
  static constexpr float kIntoNormal = 0x1p25F, kIntoNormalLog = 25.0F;
};

// x = 2^k (1 + f), x positive and normal.
template <class T, int N>
struct Mantissa {
  Lanes<T, N> f, k;
};
template <class T, int N>
inline Mantissa<T, N> mantissaOf(const Lanes<T, N>& x) {
  using L = Lanes<T, N>;
  using B = BitLanes<T, N>;
  using F = Format<T>;
  using U = BitsOf<T>;
  constexpr U kOne = U{F::kBias} << F::kMantissaBits, kMask = (U{1} << F::kMantissaBits) - 1;
  constexpr U kWhole = U{F::kBias + F::kMantissaBits} << F::kMantissaBits;  // 2^kMantissaBits, whose last place is 1
  constexpr T kOffset = T(U{1} << F::kMantissaBits) + T(F::kBias);
  const B bits = bitsOf(x) + B(kOne - LogConstants<T>::kRootOfHalf);
  const L k = numberOf<T, N>(bitsDown<F::kMantissaBits>(bits) + B(kWhole)) - L(kOffset);
  return {numberOf<T, N>(bitAnd(bits, B(kMask)) + B(LogConstants<T>::kRootOfHalf)) - L(T(1)), k};
}

// The logarithm of a positive normal number, the second part below the last place of the first or little above it.
template <class T, int N>
inline TwoPart<T, N> logInParts(const Mantissa<T, N>& x) {
  using L = Lanes<T, N>;
  using C = LogConstants<T>;
  const L half(T(0.5)), f = x.f;
  const L s = f / (L(T(2)) + f), z = s * s;
  const L upper = upperBits(f), square = half * (upper * upper), squareLow = half * ((f - upper) * (f + upper));
  const TwoPart<T, N> a = exactSum(x.k * L(C::kLog2High), f), b = exactSum(a.high, L(T(0)) - square);
  const L rest = s * ((square + squareLow) + z * polynomial(C::kR, z));
  return {b.high, rest + (x.k * L(C::kLog2Low) + ((a.low + b.low) - squareLow))};
}

struct NaturalLog {
  template <class T, int N>
  static Lanes<T, N> of(const Mantissa<T, N>& x) {
    const TwoPart<T, N> log = logInParts(x);
    return log.high + log.low;
  }
};
struct DecimalLog {
  template <class T, int N>
  static Lanes<T, N> of(const Mantissa<T, N>& x) {
    using L = Lanes<T, N>;
    using C = LogConstants<T>;
    const TwoPart<T, N> log = logInParts(x), sum = exactSum(log.high, log.low);
    const L upper = upperBits(sum.high), lower = (sum.high - upper) + sum.low;
    return upper * L(C::kPer10High) + (lower * L(C::kPer10High) + sum.high * L(C::kPer10Low));
  }
};

// x may be anything.
template <class Log, class T, int N>
[[gnu::noinline]] Lanes<T, N> logOfAny(const Lanes<T, N>& x) {
  using L = Lanes<T, N>;
  using C = LogConstants<T>;
  const L least(Format<T>::kLeastNormal), infinity(Format<T>::kInfinity), zero(T(0));
  Mantissa<T, N> m = mantissaOf(selectLess(x, least, x * L(C::kIntoNormal), x));
  m.k = selectLess(x, least, m.k - L(C::kIntoNormalLog), m.k);
  const L positive = selectLess(x, infinity, Log::of(m), x);  // infinity and NaN stay
  const L notPositive = selectLess(x, zero, L(std::numeric_limits<T>::quiet_NaN()), zero - infinity);
  return selectLess(zero, x, positive, selectLess(x, least, notPositive, x));
}

template <class Log, class T, int N>
inline Lanes<T, N> logarithm(const Lanes<T, N>& x) {
  if constexpr (Lanes<T, N>::kParts > 1) {
    return byParts(x, [](const auto& part) { return logarithm<Log>(part); });
  }
  using L = Lanes<T, N>;
  constexpr T kBelowNormal = std::bit_cast<T>(std::bit_cast<BitsOf<T>>(Format<T>::kLeastNormal) - 1);
  const bool normal = allLess(L(kBelowNormal), x) && allLess(x, L(Format<T>::kInfinity));
  if (__builtin_expect(!normal, false)) return logOfAny<Log>(x);
  return Log::of(mantissaOf(x));
}

}  // namespace elementary

template <class T, int N>
inline Lanes<T, N> log(const Lanes<T, N>& x) {
  return elementary::logarithm<elementary::NaturalLog>(x);
}
template <class T, int N>
inline Lanes<T, N> log10(const Lanes<T, N>& x) {
  return elementary::logarithm<elementary::DecimalLog>(x);
}

inline double log(double x) { return log(Lanes<double, 1>(x)).part[0]; }
inline float log(float x) { return log(Lanes<float, 1>(x)).part[0]; }
inline double log10(double x) { return log10(Lanes<double, 1>(x)).part[0]; }
inline float log10(float x) { return log10(Lanes<float, 1>(x)).part[0]; }

}  // namespace qorsr
