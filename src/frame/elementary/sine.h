// sin(x) and cos(x).
//
// Double:  |x| = n pi/2 + r + c,  n whole,  |r| <= pi/4,  c the rounding error of r.
//   sin(r + c) = r + (r^3 P(r^2) + c (1 - r^2/2)),   cos(r + c) = (1 - r^2/2) + (e + (r^4 Q(r^2) - r c))
// where e is the rounding error of 1 - r^2/2. pi/2 stands in two parts, the first of so few bits that n times it is exact, and so is
// what it leaves of x (Cody and Waite, "Software Manual for the Elementary Functions", 1980). r + c then has an error of n 2^-83. Where
// that is too much, because r is very small or x very large, the angle is reduced in whole numbers (angle.h).
//
// Float, in double:  x = h pi + r,  h whole (sine) or whole and a half (cosine),  |r| <= pi/2;  sin(r) = r (1 + r^2 S(r^2)).
// Nothing need be compensated. Angles that are too large for h are taken by the sine of doubles.
//
// P, Q and S are minimax polynomials for coefficients of double (fpminimax of Sollya), to 2^-57.9 of the sine, to 2^-64, to 2^-27.3.
#pragma once

#include <cstdint>

#include "frame/elementary/angle.h"
#include "frame/elementary/parts.h"

namespace qorsr {

namespace elementary {

inline constexpr int kSineTerms = 6;
inline constexpr double kSineP[] = {-0x1.5555555555548p-3, 0x1.111111110f75ep-7,   -0x1.a01a019bf2523p-13,
                                    0x1.71de355f3628cp-19, -0x1.ae5e549c421c6p-26, 0x1.5d8e4234a02e8p-33};
inline constexpr double kCosineQ[] = {0x1.555555555554cp-5,   -0x1.6c16c16c15221p-10, 0x1.a01a019cbfa52p-16,
                                      -0x1.27e4f812e7a89p-22, 0x1.1ee9f1714b281p-29,  -0x1.8fb13e95259f1p-37};
inline constexpr double kFloatSineS[] = {-0x1.55554bc634763p-3, 0x1.110ed326a821p-7, -0x1.9f6fed5a5b4a1p-13, 0x1.5dbce9ebe09b5p-19};

// ---- Double ----

// Angles as quarter turns and the rest, which is `high` + `low`. The low two bits of `quarters` count.
template <int N>
struct ReducedAngles {
  Lanes<double, N> high, low;
  Lanes<uint64_t, N> quarters;
};

// The sine of each angle, its sign turned where `sign` has its highest bit set.
template <int N>
inline Lanes<double, N> sineOfReduced(const ReducedAngles<N>& angle, const Lanes<uint64_t, N>& sign) {
  using L = Lanes<double, N>;
  const L r = angle.high, c = angle.low, z = r * r;
  const TwoPart<double, N> base = exactSum(L(1.0), L(-0.5) * z);
  const auto either = [&](const L& cosine, const L& sine) { return selectOdd(angle.quarters, cosine, sine); };
  L coefficients[kSineTerms];
  for (int i = 0; i < kSineTerms; ++i) coefficients[i] = either(L(kCosineQ[i]), L(kSineP[i]));
  const L rest = z * either(z, r) * polynomial(coefficients, z) + either(base.low - r * c, c * base.high);
  const Lanes<uint64_t, N> halfTurn = bitsUp<62>(bitAnd(angle.quarters, Lanes<uint64_t, N>(2)));
  return numberOf<double, N>(bitXor(bitsOf(either(base.high, r) + rest), bitXor(halfTurn, sign)));
}

// |x| as quarters and rest; whether that is exact enough in all lanes (infinity and NaN give NaN). |x| of 2^24 and more never is.
template <int N>
inline bool reduceAngles(const Lanes<double, N>& magnitude, ReducedAngles<N>& angle) {
  using L = Lanes<double, N>;
  constexpr double kPerQuarter = 0x1.45f306dc9c883p-1, kQuarter = 0x1.921fb54p0, kQuarterLow = 0x1.10b4611a62633p-30;
  constexpr double kLeastPerQuarter = 0x1p-24;
  const L rounder(Format<double>::kRounder), shifted = magnitude * L(kPerQuarter) + rounder, n = shifted - rounder;
  const L first = magnitude - n * L(kQuarter), second = n * L(kQuarterLow);
  angle.high = first - second;
  angle.low = (first - angle.high) - second;
  angle.quarters = bitsOf(shifted);
  return !anyLess(abs(angle.high), n * L(kLeastPerQuarter));
}

// What is wanted of the sine and the cosine of |x|.
enum class Wanted { kSine, kCosine, kSineOfMagnitude };
template <Wanted W, int N>
inline Lanes<double, N> sineOfMagnitude(ReducedAngles<N> angle, const Lanes<double, N>& x) {
  using B = Lanes<uint64_t, N>;
  if constexpr (W == Wanted::kCosine) angle.quarters = angle.quarters + B(1);
  return sineOfReduced(angle, W == Wanted::kSine ? bitAnd(bitsOf(x), B(Format<double>::kSign)) : B(0));
}

// Any numbers: one by one, reduced in whole numbers where it is needed.
template <Wanted W, int N>
[[gnu::noinline]] Lanes<double, N> sineOfAny(const Lanes<double, N>& x) {
  using One = Lanes<double, 1>;
  double all[N];
  x.store(all);
  for (double& element : all) {
    const One magnitude = abs(One(element));
    ReducedAngles<1> angle;
    if (!reduceAngles(magnitude, angle)) {
      const ReducedAngle exact = reduceAngle(magnitude.part[0]);
      angle = {One(exact.high), One(exact.low), Lanes<uint64_t, 1>(exact.quarters)};
    }
    element = sineOfMagnitude<W>(angle, One(element)).part[0];
  }
  return Lanes<double, N>::load(all);
}

template <Wanted W, int N>
inline Lanes<double, N> sineOf(const Lanes<double, N>& x) {
  if constexpr (Lanes<double, N>::kParts > 1) {
    return byParts(x, [](const auto& part) { return sineOf<W>(part); });
  }
  ReducedAngles<N> angle;
  if (__builtin_expect(!reduceAngles(abs(x), angle), false)) return sineOfAny<W>(x);
  return sineOfMagnitude<W>(angle, x);
}

// ---- Float ----

// The sine, or cosine, of floats that stand in doubles, good to float. |x| <= kLargestFloatAngle.
inline constexpr float kLargestFloatAngle = 0x1p22F;
template <Wanted W, int N>
inline Lanes<double, N> sineToFloat(const Lanes<double, N>& x) {
  if constexpr (Lanes<double, N>::kParts > 1) {
    return byParts(x, [](const auto& part) { return sineToFloat<W>(part); });
  }
  using L = Lanes<double, N>;
  constexpr double kPerHalfTurn = 0x1.45f306dc9c883p-2, kHalfTurn = 0x1.921fb54p1, kHalfTurnLow = 0x1.10b4611a62633p-29;
  const L rounder(Format<double>::kRounder);
  L shifted = x * L(kPerHalfTurn) + rounder, h = shifted - rounder;
  if constexpr (W == Wanted::kCosine) {
    shifted = (x * L(kPerHalfTurn) + L(0.5)) + rounder;  // cos(x) = sin(x + pi/2)
    h = (shifted - rounder) - L(0.5);
  }
  const L r = (x - h * L(kHalfTurn)) - h * L(kHalfTurnLow), z = r * r;
  const L sine = r * (L(1.0) + z * polynomial(kFloatSineS, z));
  return numberOf<double, N>(bitXor(bitsOf(sine), bitsUp<63>(bitsOf(shifted))));
}

template <Wanted W, int N>
[[gnu::noinline]] Lanes<float, N> sineOfAny(const Lanes<float, N>& x) {
  const Lanes<double, N> wide = as<double>(x);
  return selectLess(Lanes<float, N>(kLargestFloatAngle), abs(x), as<float>(sineOf<W>(wide)), as<float>(sineToFloat<W>(wide)));
}

template <Wanted W, int N>
inline Lanes<float, N> sineOf(const Lanes<float, N>& x) {
  if constexpr (W == Wanted::kSineOfMagnitude) return sineOf<Wanted::kSine>(abs(x));
  if (__builtin_expect(anyLess(Lanes<float, N>(kLargestFloatAngle), abs(x)), false)) return sineOfAny<W>(x);
  return as<float>(sineToFloat<W>(as<double>(x)));
}

}  // namespace elementary

template <class T, int N>
inline Lanes<T, N> sin(const Lanes<T, N>& x) {
  return elementary::sineOf<elementary::Wanted::kSine>(x);
}
template <class T, int N>
inline Lanes<T, N> cos(const Lanes<T, N>& x) {
  return elementary::sineOf<elementary::Wanted::kCosine>(x);
}

// sin(|x|), which saves what the sign costs.
template <class T, int N>
inline Lanes<T, N> sinOfMagnitude(const Lanes<T, N>& x) {
  return elementary::sineOf<elementary::Wanted::kSineOfMagnitude>(x);
}

inline double sin(double x) { return sin(Lanes<double, 1>(x)).part[0]; }
inline float sin(float x) { return sin(Lanes<float, 1>(x)).part[0]; }
inline double cos(double x) { return cos(Lanes<double, 1>(x)).part[0]; }
inline float cos(float x) { return cos(Lanes<float, 1>(x)).part[0]; }

}  // namespace qorsr
