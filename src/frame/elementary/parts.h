// What the elementary functions share: a number's bits, polynomials, and sums and products with their rounding errors.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr::elementary {

// The fields of an IEEE number.
template <class T>
struct Format;
template <>
struct Format<double> {
  using Bits = uint64_t;
  static constexpr int kMantissaBits = 52, kBias = 1023;
  static constexpr Bits kSign = Bits{1} << 63;
  static constexpr Bits kUpperHalf = ~((Bits{1} << 27) - 1);  // keeps 26 significant bits, whose squares are exact
  static constexpr double kRounder = 0x1.8p52;                // x + this - this: x rounded to a whole number, |x| < 2^51
  static constexpr double kLeastNormal = 0x1p-1022, kInfinity = __builtin_inf();
};
template <>
struct Format<float> {
  using Bits = uint32_t;
  static constexpr int kMantissaBits = 23, kBias = 127;
  static constexpr Bits kSign = Bits{1} << 31;
  static constexpr Bits kUpperHalf = ~((Bits{1} << 12) - 1);
  static constexpr float kRounder = 0x1.8p23F;
  static constexpr float kLeastNormal = 0x1p-126F, kInfinity = __builtin_inff();
};

template <class T>
using BitsOf = typename Format<T>::Bits;
template <class T, int N>
using BitLanes = Lanes<BitsOf<T>, N>;

template <class T, int N>
inline BitLanes<T, N> bitsOf(const Lanes<T, N>& a) {
  return std::bit_cast<BitLanes<T, N>>(a);
}
template <class T, int N>
inline Lanes<T, N> numberOf(const BitLanes<T, N>& a) {
  return std::bit_cast<Lanes<T, N>>(a);
}

template <class U, int N>
inline Lanes<U, N> bitAnd(const Lanes<U, N>& a, const Lanes<U, N>& b) {
  return Lanes<U, N>::each(a, b, [](auto x, auto y) { return decltype(x)(x & y); });
}
// Lane by lane: a where `bits` is odd, else b.
template <class T, int N>
inline Lanes<T, N> selectOdd(const BitLanes<T, N>& bits, const Lanes<T, N>& a, const Lanes<T, N>& b) {
  using U = BitsOf<T>;
  Lanes<T, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = (bits.part[i] & U{1}) != U{0} ? a.part[i] : b.part[i];
  return v;
}
template <class U, int N>
inline Lanes<U, N> bitXor(const Lanes<U, N>& a, const Lanes<U, N>& b) {
  return Lanes<U, N>::each(a, b, [](auto x, auto y) { return decltype(x)(x ^ y); });
}
template <int Count, class U, int N>
inline Lanes<U, N> bitsUp(const Lanes<U, N>& a) {
  return Lanes<U, N>::each(a, [](auto x) { return decltype(x)(x << static_cast<U>(Count)); });
}
template <int Count, class U, int N>
inline Lanes<U, N> bitsDown(const Lanes<U, N>& a) {
  return Lanes<U, N>::each(a, [](auto x) { return decltype(x)(x >> static_cast<U>(Count)); });
}

// The upper half of a's significant bits, as a number.
template <class T, int N>
inline Lanes<T, N> upperBits(const Lanes<T, N>& a) {
  return numberOf<T, N>(bitAnd(bitsOf(a), BitLanes<T, N>(Format<T>::kUpperHalf)));
}

// f of each native register alone: GCC keeps an array of registers in memory where a function is long.
template <class T, int N, class F>
inline Lanes<T, N> byParts(const Lanes<T, N>& x, const F& f) {
  using L = Lanes<T, N>;
  L v;
  for (int i = 0; i < L::kParts; ++i) {
    Lanes<T, L::kPart> part;
    part.part[0] = x.part[i];
    v.part[i] = f(part).part[0];
  }
  return v;
}

// ---- Polynomials: coefficients of the lowest power first, joined in pairs, the pairs in pairs ----

// x, x^2, x^4, x^8.
template <class T, int N>
struct Powers {
  Lanes<T, N> power[4];
};

template <int First, int Count, class Coefficients, class T, int N>
inline Lanes<T, N> polynomialFrom(const Coefficients& c, const Powers<T, N>& x) {
  if constexpr (Count == 1) {
    return Lanes<T, N>(c[First]);
  } else {
    constexpr int kLevel = Count > 8 ? 3 : Count > 4 ? 2 : Count > 2 ? 1 : 0, kLower = 1 << kLevel;
    return polynomialFrom<First, kLower>(c, x) + polynomialFrom<First + kLower, Count - kLower>(c, x) * x.power[kLevel];
  }
}

// c[0] + c[1] x + c[2] x^2 + ..., of numbers or lanes.
template <class C, class T, int N, int Size>
inline Lanes<T, N> polynomial(const C (&c)[Size], const Lanes<T, N>& x) {
  Powers<T, N> powers;
  powers.power[0] = x;
  if constexpr (Size > 2) powers.power[1] = x * x;
  if constexpr (Size > 4) powers.power[2] = powers.power[1] * powers.power[1];
  if constexpr (Size > 8) powers.power[3] = powers.power[2] * powers.power[2];
  return polynomialFrom<0, Size>(c, powers);
}

// ---- Exact sums and products ----

// A number in two parts, the second below the last place of the first.
template <class T, int N>
struct TwoPart {
  Lanes<T, N> high, low;
};

// a + b exactly, where a is 0 or |a| >= |b|. (Dekker, "A floating-point technique for extending the available precision",
// Numerische Mathematik 18, 1971.)
template <class T, int N>
inline TwoPart<T, N> exactSum(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  const Lanes<T, N> sum = a + b;
  return {sum, b - (sum - a)};
}

// a * b, where neither overflows nor vanishes: in float exactly, in double to 2^-106, since the product of the lower parts may round
// (the same paper, with parts cut off instead of rounded).
template <class T, int N>
inline TwoPart<T, N> exactProduct(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  const Lanes<T, N> product = a * b, a1 = upperBits(a), b1 = upperBits(b), a2 = a - a1, b2 = b - b1;
  return {product, ((a1 * b1 - product) + a1 * b2 + a2 * b1) + a2 * b2};
}

}  // namespace qorsr::elementary
