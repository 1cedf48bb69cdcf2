// pow(x, y) = exp(y log x), with the logarithm to 68 bits and its product with y in two parts: a result near the ends of the range is the
// exponential of some 700, so that 10 bits more than the result's are lost.
//
//   log(1 + f) = 2 artanh(s) = 2 s + 2/3 s^3 + s^5 T(s^2),  s = f / (2 + f): s, s^2 and the first two terms in two parts each
//   (T is a minimax polynomial, by fpminimax of Sollya, to 2^-73 of the logarithm).
// In float: exp(y log x) in double.
#pragma once

#include "frame/elementary/exponential.h"
#include "frame/elementary/logarithm.h"

namespace qorsr {

namespace elementary {

template <class T, int N>
inline TwoPart<T, N> product(const TwoPart<T, N>& a, const TwoPart<T, N>& b) {
  const TwoPart<T, N> p = exactProduct(a.high, b.high);
  return exactSum(p.high, p.low + (a.high * b.low + a.low * b.high));
}
// |a| >= |b|, or a is 0.
template <class T, int N>
inline TwoPart<T, N> sum(const TwoPart<T, N>& a, const TwoPart<T, N>& b) {
  const TwoPart<T, N> s = exactSum(a.high, b.high);
  return exactSum(s.high, s.low + (a.low + b.low));
}

// The logarithm of 2^k (1 + f).
template <int N>
inline TwoPart<double, N> preciseLog(const Mantissa<double, N>& x) {
  using L = Lanes<double, N>;
  using Pair = TwoPart<double, N>;
  constexpr double kT[] = {0x1.9999999999996p-2, 0x1.2492492492f4cp-2, 0x1.c71c71c597671p-3, 0x1.745d1828e378ep-3,
                           0x1.3b1364e8b3e8ep-3, 0x1.11206a85c5fd8p-3, 0x1.de3e277121e7fp-4, 0x1.eac00dc8b6adfp-4};
  const Pair below = exactSum(L(2.0), x.f);
  const L s = x.f / below.high;
  const Pair back = exactProduct(s, below.high);
  const Pair ratio = exactSum(s, (((x.f - back.high) - back.low) - s * below.low) / below.high);
  const Pair z = product(ratio, ratio);
  const Pair cube = product(product(ratio, z), Pair{L(0x1.5555555555555p-1), L(0x1.5555555555555p-55)});
  const L rest = s * (z.high * z.high) * polynomial(kT, z.high);
  const L two(2.0);
  const Pair mantissa = sum(Pair{two * ratio.high, two * ratio.low}, Pair{cube.high, cube.low + rest});
  return sum(Pair{x.k * L(LogConstants<double>::kLog2High), x.k * L(LogConstants<double>::kLog2Low)}, mantissa);
}

// Positive normal x, finite y.
template <int N>
inline Lanes<double, N> powOfNormal(const Mantissa<double, N>& x, const Lanes<double, N>& y) {
  using L = Lanes<double, N>;
  using Pair = TwoPart<double, N>;
  const L most(0x1p65);  // beyond, all powers but those of 1 overflow or vanish
  const L limited = max(L(0.0) - most, min(most, y));
  const Pair log = preciseLog(x), p = exactProduct(limited, log.high);
  const Pair e = exactSum(p.high, p.low + limited * log.low);
  return exponential(e.high, selectLess(abs(e.high), L(1024.0), e.low, L(0.0)));
}

template <int N>
inline Lanes<double, N> powOfOrdinary(const Lanes<double, N>& x, const Lanes<double, N>& y) {
  return powOfNormal(mantissaOf(x), y);
}
template <int N>
inline Lanes<float, N> powOfOrdinary(const Lanes<float, N>& x, const Lanes<float, N>& y) {
  return as<float>(exp(as<double>(y) * log(as<double>(x))));
}

// Any numbers: the special cases of C, and the powers of denormal and negative ones.
double powOfAny(double x, double y);

// x positive and normal, y finite.
template <class T, int N>
inline bool areOrdinary(const Lanes<T, N>& x, const Lanes<T, N>& y) {
  using L = Lanes<T, N>;
  constexpr T kBelowNormal = std::bit_cast<T>(std::bit_cast<BitsOf<T>>(Format<T>::kLeastNormal) - 1);
  const L infinity(Format<T>::kInfinity);
  return allLess(L(kBelowNormal), x) && allLess(x, infinity) && allLess(abs(y), infinity);
}

template <class T, int N>
[[gnu::noinline]] Lanes<T, N> powOneByOne(const Lanes<T, N>& x, const Lanes<T, N>& y) {
  using One = Lanes<T, 1>;
  T bases[N], exponents[N];
  x.store(bases);
  y.store(exponents);
  for (int i = 0; i < N; ++i) {
    const One base(bases[i]), exponent(exponents[i]);
    bases[i] = areOrdinary(base, exponent)
                   ? powOfOrdinary(base, exponent).part[0]
                   : static_cast<T>(powOfAny(static_cast<double>(bases[i]), static_cast<double>(exponents[i])));
  }
  return Lanes<T, N>::load(bases);
}

}  // namespace elementary

template <class T, int N>
inline Lanes<T, N> pow(const Lanes<T, N>& x, const Lanes<T, N>& y) {
  if (__builtin_expect(!elementary::areOrdinary(x, y), false)) return elementary::powOneByOne(x, y);
  return elementary::powOfOrdinary(x, y);
}

inline double pow(double x, double y) { return pow(Lanes<double, 1>(x), Lanes<double, 1>(y)).part[0]; }
inline float pow(float x, float y) { return pow(Lanes<float, 1>(x), Lanes<float, 1>(y)).part[0]; }

}  // namespace qorsr
