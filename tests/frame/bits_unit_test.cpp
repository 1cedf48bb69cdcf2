// Integer arithmetic with a defined result at every input, and powers of two, at their ends.
#include "frame/bits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/random.h"

namespace {

using namespace qorsr;

// The limits of Int, their neighbours, small numbers, and random ones.
template <class Int>
std::vector<Int> interesting() {
  using Limits = std::numeric_limits<Int>;
  std::vector<Int> v = {Limits::min(), Limits::min() + 1, Limits::max(), Limits::max() - 1, 0, 1, 2, 3, Limits::max() / 2};
  if (std::is_signed_v<Int>) v.insert(v.end(), {Int(-1), Int(-2), Int(-3), Int(Limits::min() / 2)});
  kit::Random random;
  for (int i = 0; i < 40; ++i) v.push_back(random.plain<Int>());
  return v;
}

// Arithmetic modulo 2^width, bit by bit: a full adder, and a product as a sum of shifted terms.
template <class Int>
Int addBitwise(Int a, Int b) {
  Int sum = 0;
  bool carry = false;
  for (unsigned i = 0; i < 8 * sizeof(Int); ++i) {
    const bool x = (static_cast<uint64_t>(a) >> i) & 1, y = (static_cast<uint64_t>(b) >> i) & 1;
    if (x ^ y ^ carry) sum = static_cast<Int>(static_cast<uint64_t>(sum) | uint64_t{1} << i);
    carry = (x && y) || (x && carry) || (y && carry);
  }
  return sum;
}
template <class Int>
Int negateBitwise(Int a) {
  return addBitwise<Int>(static_cast<Int>(~static_cast<uint64_t>(a)), 1);
}
template <class Int>
Int doubled(Int a) {
  return addBitwise(a, a);
}
template <class Int>
Int multiplyBitwise(Int a, Int b) {
  Int product = 0;
  for (unsigned i = 0; i < 8 * sizeof(Int); ++i) {
    if ((static_cast<uint64_t>(b) >> i) & 1) product = addBitwise(product, a);
    a = doubled(a);
  }
  return product;
}

template <class Int>
void expectWraps() {
  for (const Int a : interesting<Int>()) {
    for (const Int b : interesting<Int>()) {
      ASSERT_EQ(wrapAdd(a, b), addBitwise(a, b)) << +a << " + " << +b;
      ASSERT_EQ(wrapSub(a, b), addBitwise(a, negateBitwise(b))) << +a << " - " << +b;
      ASSERT_EQ(wrapMul(a, b), multiplyBitwise(a, b)) << +a << " * " << +b;
    }
  }
}

TEST(Bits, SumsDifferencesAndProductsWrap) {
  expectWraps<int16_t>();
  expectWraps<int32_t>();
  expectWraps<int64_t>();
  expectWraps<uint32_t>();
  EXPECT_EQ(wrapAdd<int32_t>(INT32_MAX, 1), INT32_MIN);
  EXPECT_EQ(wrapSub<int32_t>(INT32_MIN, 1), INT32_MAX);
  EXPECT_EQ(wrapMul<int16_t>(INT16_MIN, INT16_MIN), 0);
  EXPECT_EQ(wrapMul<int64_t>(INT64_MIN, -1), INT64_MIN);
}

const std::vector<int64_t>& counts() {
  static const std::vector<int64_t> all = [] {
    std::vector<int64_t> v;
    for (int64_t n = 0; n <= 70; ++n) v.push_back(n);
    v.insert(v.end(), {127, 128, 255, 256, 65536, INT32_MAX, int64_t{INT32_MAX} + 1, int64_t{1} << 40, INT64_MAX});
    return v;
  }();
  return all;
}

// One place at a time: the quotient rounded down, and the doubled value modulo 2^width.
template <class Int>
Int halvedTimes(Int value, int64_t count) {
  for (int64_t i = 0; i < count && i < 80; ++i) value = static_cast<Int>(value / 2 - (value < 0 && value % 2 != 0 ? 1 : 0));
  return value;
}
template <class Int>
Int doubledTimes(Int value, int64_t count) {
  for (int64_t i = 0; i < count && i < 80; ++i) value = doubled(value);
  return value;
}

template <class Int>
void expectShifts() {
  for (const Int value : interesting<Int>()) {
    for (const int64_t count : counts()) {
      ASSERT_EQ(shiftRight(value, count), halvedTimes(value, count)) << +value << " >> " << count;
      ASSERT_EQ(shiftLeft(value, count), doubledTimes(value, count)) << +value << " << " << count;
      ASSERT_EQ(shiftByScale(value, count), halvedTimes(value, count)) << +value << " by scale factor " << count;
      ASSERT_EQ(shiftByScale(value, -count), doubledTimes(value, count)) << +value << " by scale factor " << -count;
    }
    ASSERT_EQ(shiftByScale(value, INT32_MIN), 0);
    ASSERT_EQ(shiftByScale(value, INT32_MAX), value < 0 ? Int(-1) : Int(0));
  }
}

TEST(Bits, ShiftsByAnyCount) {
  expectShifts<int16_t>();
  expectShifts<int32_t>();
  expectShifts<int64_t>();
  expectShifts<uint32_t>();
}

template <class To, class From>
void expectSaturation() {
  const From low = std::numeric_limits<To>::min(), high = std::numeric_limits<To>::max();
  std::vector<From> values = interesting<From>();
  for (int i = -2; i <= 2; ++i) {
    values.push_back(wrapAdd<From>(low, static_cast<From>(i)));
    values.push_back(wrapAdd<From>(high, static_cast<From>(i)));
  }
  for (const From value : values) {
    const To expected = value < low    ? std::numeric_limits<To>::min()
                        : value > high ? std::numeric_limits<To>::max()
                                       : static_cast<To>(value);
    ASSERT_EQ(saturate<To>(value), expected) << value;
  }
}

TEST(Bits, Saturation) {
  expectSaturation<int16_t, int32_t>();
  expectSaturation<int16_t, int64_t>();
  expectSaturation<int32_t, int64_t>();
  expectSaturation<int16_t, int16_t>();
  expectSaturation<uint8_t, int32_t>();
  EXPECT_EQ(saturate<int16_t>(32768), 32767);
  EXPECT_EQ(saturate<int16_t>(-32769), -32768);
  EXPECT_EQ(saturate<int32_t>(int64_t{1} << 31), INT32_MAX);
}

template <class Int, class Real>
void expectTruncation() {
  const Real edge = std::ldexp(Real(1), static_cast<int>(8 * sizeof(Int)) - 1);  // 2^(width - 1)
  const Real infinity = std::numeric_limits<Real>::infinity();
  const Int lowest = std::numeric_limits<Int>::min();
  EXPECT_EQ((truncateOrLowest<Int>(edge)), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(infinity)), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(-infinity)), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(std::numeric_limits<Real>::quiet_NaN())), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(std::numeric_limits<Real>::max())), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(-edge)), lowest);
  EXPECT_EQ((truncateOrLowest<Int>(std::nextafter(-edge, -infinity))), lowest);
  const Real below = std::nextafter(edge, Real(0));
  EXPECT_EQ((truncateOrLowest<Int>(below)), static_cast<Int>(std::trunc(below)));
  EXPECT_EQ((truncateOrLowest<Int>(-below)), static_cast<Int>(std::trunc(-below)));
  const Real values[] = {Real(0), -Real(0), Real(0.5), Real(-0.999), Real(1.999), Real(-1.999), Real(12345.75), Real(-12345.75)};
  for (const Real value : values) EXPECT_EQ((truncateOrLowest<Int>(value)), static_cast<Int>(std::trunc(value))) << value;
}

TEST(Bits, TruncationOutOfRangeGivesTheMostNegativeInteger) {
  expectTruncation<int16_t, float>();
  expectTruncation<int16_t, double>();
  expectTruncation<int32_t, float>();
  expectTruncation<int32_t, double>();
  expectTruncation<int64_t, float>();
  expectTruncation<int64_t, double>();
  EXPECT_EQ((truncateOrLowest<int32_t>(-2147483648.5)), INT32_MIN);
  EXPECT_EQ((truncateOrLowest<int16_t>(32767.9F)), 32767);
  EXPECT_EQ((truncateOrLowest<int16_t>(-32768.9F)), INT16_MIN);
}

// By repeated halving or doubling, every step exact (or the last one infinite, or zero).
template <class Real>
Real powerBySteps(int32_t n) {
  Real power = 1;
  for (int32_t i = 0; i < std::abs(n); ++i) power *= n < 0 ? Real(2) : Real(0.5);
  return power;
}

TEST(Bits, PowersOfTwoInFloat) {
  for (int32_t n = -300; n <= 300; ++n) EXPECT_BITS(twoToMinus<float>(n), powerBySteps<float>(n)) << "n = " << n;
  EXPECT_EQ(twoToMinus<float>(-128), std::numeric_limits<float>::infinity());
  EXPECT_EQ(twoToMinus<float>(-127), 0x1p127F);
  EXPECT_EQ(twoToMinus<float>(126), std::numeric_limits<float>::min());
  EXPECT_EQ(twoToMinus<float>(149), std::numeric_limits<float>::denorm_min());
  EXPECT_BITS(twoToMinus<float>(150), 0.0F);
  EXPECT_BITS(twoToMinus<float>(INT32_MAX), 0.0F);
  EXPECT_EQ(twoToMinus<float>(INT32_MIN), std::numeric_limits<float>::infinity());
}

TEST(Bits, PowersOfTwoInDouble) {
  for (int32_t n = -1200; n <= 1200; ++n) EXPECT_BITS(twoToMinus<double>(n), powerBySteps<double>(n)) << "n = " << n;
  EXPECT_EQ(twoToMinus<double>(-1024), std::numeric_limits<double>::infinity());
  EXPECT_EQ(twoToMinus<double>(-1023), 0x1p1023);
  EXPECT_EQ(twoToMinus<double>(1022), std::numeric_limits<double>::min());
  EXPECT_EQ(twoToMinus<double>(1074), std::numeric_limits<double>::denorm_min());
  EXPECT_BITS(twoToMinus<double>(1075), 0.0);
  EXPECT_BITS(twoToMinus<double>(INT32_MAX), 0.0);
  EXPECT_EQ(twoToMinus<double>(INT32_MIN), std::numeric_limits<double>::infinity());
}

}  // namespace
