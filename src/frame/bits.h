// Integer arithmetic with a defined result at every input, and powers of two.
//
// C++ leaves shifts by the width or more, left shifts that lose bits, signed overflow and casts of floats out of range undefined.
// Everything of that kind in the library goes through these few helpers.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace qorsr {

// a + b, a - b and a * b modulo two to the width.
template <class Int>
constexpr Int wrapAdd(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) + static_cast<U>(b));
}
template <class Int>
constexpr Int wrapSub(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) - static_cast<U>(b));
}
template <class Int>
constexpr Int wrapMul(Int a, Int b) {
  using U = std::conditional_t<(sizeof(Int) < 4), uint32_t, std::make_unsigned_t<Int>>;  // no promotion to signed int
  return static_cast<Int>(static_cast<U>(a) * static_cast<U>(b));
}

// Arithmetic right shift; by the width or more: all sign bits, or 0 of an unsigned value. `count` is not negative.
template <class Int>
constexpr Int shiftRight(Int value, int64_t count) {
  constexpr int64_t kWidth = std::numeric_limits<std::make_unsigned_t<Int>>::digits;
  if constexpr (std::is_unsigned_v<Int>) {
    if (count >= kWidth) return 0;
  }
  return static_cast<Int>(value >> (count < kWidth ? count : kWidth - 1));
}

// Left shift that loses high bits; by the width or more: 0. `count` is not negative.
template <class Int>
constexpr Int shiftLeft(Int value, int64_t count) {
  using U = std::make_unsigned_t<Int>;
  constexpr int64_t kWidth = std::numeric_limits<U>::digits;
  return count < kWidth ? static_cast<Int>(static_cast<U>(static_cast<U>(value) << count)) : Int{0};
}

// By a scale factor: right if it is positive, left if it is negative.
template <class Int>
constexpr Int shiftByScale(Int value, int64_t scaleFactor) {
  return scaleFactor >= 0 ? shiftRight(value, scaleFactor) : shiftLeft(value, -scaleFactor);
}

// value limited to the range of `To`.
template <class To, class From>
constexpr To saturate(From value) {
  static_assert(std::is_integral_v<From> && sizeof(From) >= sizeof(To));
  constexpr From kLow = std::numeric_limits<To>::min(), kHigh = std::numeric_limits<To>::max();
  return static_cast<To>(value < kLow ? kLow : value > kHigh ? kHigh : value);
}

// Truncation toward zero; a NaN or a value out of range gives the most negative integer.
template <class Int, class Real>
constexpr Int truncateOrLowest(Real value) {
  constexpr Real kLow = static_cast<Real>(std::numeric_limits<Int>::min());  // a power of two, exact in every type
  return value >= kLow && value < -kLow ? static_cast<Int>(value) : std::numeric_limits<Int>::min();
}

// Writes a number where the memory may belong to an array of another type.
template <class T>
inline void storeBits(T value, void* at) {
  std::memcpy(at, &value, sizeof(T));
}

// 2^-n. As a float, n is limited to -128 (infinity) to 150 (zero); denormal from 127 on. As a double, to -1024 (infinity) to 1087
// (zero, like all from 1075 on); denormal from 1023 on.
template <class Real>
constexpr Real twoToMinus(int32_t n);
template <>
constexpr float twoToMinus<float>(int32_t n) {
  const int32_t e = n < -128 ? -128 : n > 150 ? 150 : n;
  if (e == 150) return 0.0F;
  return std::bit_cast<float>(e < 127 ? static_cast<uint32_t>(127 - e) << 23 : 1U << (149 - e));
}
template <>
constexpr double twoToMinus<double>(int32_t n) {
  const int32_t e = n < -1024 ? -1024 : n > 1087 ? 1087 : n;
  if (e >= 1075) return 0.0;
  return std::bit_cast<double>(e < 1023 ? static_cast<uint64_t>(1023 - e) << 52 : uint64_t{1} << (1074 - e));
}

}  // namespace qorsr
