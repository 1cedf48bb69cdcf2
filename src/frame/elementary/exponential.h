// exp(x) = 2^n exp(r),  n = x / log 2 rounded to a whole number,  r = x - n log 2,  |r| <= log(2) / 2.
//
// log 2 stands in two parts, the first of so few bits that its products with n are exact. (Cody and Waite, "Software Manual for the
// Elementary Functions", 1980.) With the rounding error c of r, which is kept in double and where x has a part below its last place,
//   exp(r + c) = 1 + r + (c + r^2 Q(r)),  1 + r summed exactly, so little is rounded but the last sum.
// Q is the minimax polynomial for coefficients of the type (fpminimax of Sollya): exp(r) is off by 2^-57.9 at most in double, 2^-27.3
// in float.
#pragma once

#include "frame/elementary/parts.h"
#include "frame/elementary/scaled.h"

namespace qorsr {

namespace elementary {

template <class T>
struct ExpConstants;
template <>
struct ExpConstants<double> {
  static constexpr double kLog2e = 0x1.71547652b82fep0, kLog2High = 0x1.62e42feep-1, kLog2Low = 0x1.a39ef35793c76p-33;
  static constexpr double kQ[] = {0x1.000000000000bp-1,  0x1.5555555555561p-3,  0x1.5555555550229p-5,  0x1.111111110d644p-7,
                                  0x1.6c16c18550082p-10, 0x1.a01a01bade4fep-13, 0x1.a0199759789dep-16, 0x1.71dddfd542417p-19,
                                  0x1.28afab179311ep-22, 0x1.af857847f974dp-26};
  static constexpr double kInfinite = 710.0, kVanishes = -746.0;  // beyond: infinity, zero
  static constexpr double kZero = -1418.1;  // where 2^n is a product of zeros, which takes no time to underflow
  static constexpr bool kCompensated = true;
};
template <>
struct ExpConstants<float> {
  static constexpr float kLog2e = 0x1.715476p0F, kLog2High = 0x1.62e4p-1F, kLog2Low = 0x1.7f7d1cp-20F;
  static constexpr float kQ[] = {0x1.fffff2p-2F, 0x1.55548ep-3F, 0x1.555f6p-5F, 0x1.123bdep-7F, 0x1.6602d2p-10F};
  static constexpr float kInfinite = 89.0F, kVanishes = -105.0F, kZero = -176.06F;
  static constexpr bool kCompensated = false;
};

// The polynomial of -r.
template <class T, int Size>
struct AlternatingSigns {
  T c[Size];
};
template <class T, int Size>
constexpr AlternatingSigns<T, Size> alternating(const T (&c)[Size]) {
  AlternatingSigns<T, Size> v{};
  for (int i = 0; i < Size; ++i) v.c[i] = i % 2 == 0 ? c[i] : -c[i];
  return v;
}

template <class T, int N>
inline Lanes<T, N> expPolynomial(const Lanes<T, N>& r) {
  return r * r * polynomial(ExpConstants<T>::kQ, r);
}
template <class T, int N>
inline Lanes<T, N> expPolynomialOfMinus(const Lanes<T, N>& r) {
  static constexpr auto kQ = alternating(ExpConstants<T>::kQ);
  return r * r * polynomial(kQ.c, r);
}

// exp(x), or exp(x + low), low up to some last places of x.
template <class T, int N, class... Low>
inline Lanes<T, N> exponential(const Lanes<T, N>& x, const Low&... low) {
  using L = Lanes<T, N>;
  using C = ExpConstants<T>;
  const L limited = selectLess(x, L(C::kVanishes), L(C::kZero), min(L(C::kInfinite), x));  // a NaN stays
  const L rounder(Format<T>::kRounder + T(2 * Format<T>::kBias));
  const L shifted = limited * L(C::kLog2e) + rounder, n = shifted - rounder;
  const L first = limited - n * L(C::kLog2High), second = ((n * L(C::kLog2Low)) - ... - low), r = first - second;
  const TwoPart<T, N> sum = exactSum(L(T(1)), r);
  L below = sum.low;
  if constexpr (sizeof...(Low) > 0) {
    below += ((first - r) - second) * sum.high;
  } else if constexpr (C::kCompensated) {
    below += (first - r) - second;
  }
  return scaled(sum.high + (below + expPolynomial(r)), n, bitsOf(shifted));
}

// exp(-x) in the same bits, for x that is not negative: two operations less.
template <class T, int N>
inline Lanes<T, N> exponentialOfMinus(const Lanes<T, N>& x) {
  using L = Lanes<T, N>;
  using C = ExpConstants<T>;
  const L rounder(Format<T>::kRounder + T(2 * Format<T>::kBias)), one(T(1));
  const L shifted = rounder - x * L(C::kLog2e), n = shifted - rounder;
  const L first = x + n * L(C::kLog2High), second = n * L(C::kLog2Low), r = first + second;  // -r of exp(x)
  const L sum = one - r;
  L below = (one - sum) - r;
  if constexpr (C::kCompensated) below -= (first - r) + second;
  // Factors of zero where the result vanishes: an underflow would take its time.
  const L vanishes(-C::kVanishes), biased = selectLess(vanishes, x, L(Format<T>::kRounder), shifted);
  return selectLess(vanishes, x, L(T(0)), scaled(sum + (below + expPolynomialOfMinus(r)), n, bitsOf(biased)));
}

}  // namespace elementary

template <class T, int N>
inline Lanes<T, N> exp(const Lanes<T, N>& x) {
  return elementary::byParts(x, [](const auto& part) { return elementary::exponential(part); });
}

// exp(-x), x not negative.
template <class T, int N>
inline Lanes<T, N> expOfMinus(const Lanes<T, N>& x) {
  return elementary::byParts(x, [](const auto& part) { return elementary::exponentialOfMinus(part); });
}

inline double exp(double x) { return exp(Lanes<double, 1>(x)).part[0]; }
inline float exp(float x) { return exp(Lanes<float, 1>(x)).part[0]; }

}  // namespace qorsr
