#include "frame/elementary/angle.h"

#include <bit>
#include <cstddef>
#include <limits>

#include "frame/elementary/parts.h"

namespace qorsr::elementary {

namespace {

// 2/pi = sum of kTwoOverPi[i] 2^(-32 (i + 1)).
constexpr uint32_t kTwoOverPi[] = {0xA2F9836E, 0x4E441529, 0xFC2757D1, 0xF534DDC0, 0xDB629599, 0x3C439041, 0xFE5163AB, 0xDEBBC561,
                                   0xB7246E3A, 0x424DD2E0, 0x06492EEA, 0x09D1921C, 0xFE1DEB1C, 0xB129A73E, 0xE88235F5, 0x2EBB4484,
                                   0xE99C7026, 0xB45F7E41, 0x3991D639, 0x835339F4, 0x9C845F8B, 0xBDF9283B, 0x1FF897FF, 0xDE05980F,
                                   0xEF2F118B, 0x5A0A6D1F, 0x6D367ECF, 0x27CB09B7, 0x4F463F66, 0x9E5FEA2D, 0x7527BAC7, 0xEBE5F17B,
                                   0x3D0739F7, 0x8A5292EA, 0x6BFB5FB1, 0x1F8D5D08, 0x56033046, 0xFC7B6BAB};

// A whole number of 288 bits, the lowest word first.
constexpr int kDigits = 7, kWords = kDigits + 2;
struct Whole {
  uint32_t word[kWords];
};

// m times kDigits words of 2/pi from `first` on.
Whole product(uint64_t m, int first) {
  Whole v{};
  const uint64_t low = m & 0xFFFFFFFF, high = m >> 32;
  uint64_t carry = 0, carryOfHigh = 0;
  for (int i = 0; i < kDigits; ++i) {
    const uint64_t digit = kTwoOverPi[first + kDigits - 1 - i];
    const uint64_t a = digit * low + v.word[i] + carry;
    v.word[i] = static_cast<uint32_t>(a);
    carry = a >> 32;
    const uint64_t b = digit * high + v.word[i + 1] + carryOfHigh;
    v.word[i + 1] = static_cast<uint32_t>(b);
    carryOfHigh = b >> 32;
  }
  const uint64_t last = uint64_t{v.word[kDigits]} + carry;
  v.word[kDigits] = static_cast<uint32_t>(last);
  v.word[kDigits + 1] = static_cast<uint32_t>(carryOfHigh + (last >> 32));
  return v;
}

// Word i of a shifted up by `count` bits, 0 where nothing is left.
uint32_t wordOfShifted(const Whole& a, int i, int count) {
  const int from = i - count / 32, bits = count % 32;
  const auto word = [&](int k) { return k < 0 ? uint64_t{0} : uint64_t{a.word[k]}; };
  return static_cast<uint32_t>((word(from) << 32 | word(from - 1)) << bits >> 32);
}
Whole shiftedUp(const Whole& a, int count) {
  Whole v;
  for (int i = 0; i < kWords; ++i) v.word[i] = wordOfShifted(a, i, count);
  return v;
}

int leadingZeros(const Whole& a) {
  int count = 0;
  for (int i = kWords - 1; i >= 0; --i) {
    if (a.word[i] != 0) return count + std::countl_zero(a.word[i]);
    count += 32;
  }
  return count;
}

}  // namespace

ReducedAngle reduceAngle(double x) {
  if (!(x < std::numeric_limits<double>::infinity())) return {std::numeric_limits<double>::quiet_NaN(), 0.0, 0};
  const auto bits = std::bit_cast<uint64_t>(x);
  const uint64_t m = (bits & 0xFFFFFFFFFFFFF) | 0x10000000000000;
  const int e = static_cast<int>(bits >> 52) - 1075;
  // Digits up to number (e - 2) / 32 - 1 give multiples of four quarters.
  const int first = e < 34 ? 0 : (e - 2) / 32;
  const int fractionBits = 32 * (first + kDigits) - e;
  // Two bits of quarters above the fraction.
  constexpr int kTop = 32 * kWords;
  Whole turns = shiftedUp(product(m, first), kTop - 2 - fractionBits);
  uint64_t quarters = turns.word[kWords - 1] >> 30;
  const bool above = (turns.word[kWords - 1] >> 29 & 1) != 0;  // the fraction is 1/2 or more: the next quarter, less the rest
  Whole fraction = shiftedUp(turns, 2);
  if (above) {
    ++quarters;
    uint64_t carry = 1;
    for (uint32_t& word : fraction.word) {
      carry += static_cast<uint32_t>(~word);
      word = static_cast<uint32_t>(carry);
      carry >>= 32;
    }
  }
  const int zeros = leadingZeros(fraction);
  const Whole f = shiftedUp(fraction, zeros);
  const auto upper = uint64_t{f.word[kWords - 1]} << 32 | f.word[kWords - 2];
  const auto lower = uint64_t{f.word[kWords - 3]} << 32 | f.word[kWords - 4];
  // 53 bits, and 53 more.
  const double scale = std::bit_cast<double>(static_cast<uint64_t>(1023 - zeros) << 52);
  const double high = static_cast<double>(upper >> 11) * 0x1p-53 * scale;
  const double low = static_cast<double>((upper & 0x7FF) << 42 | lower >> 22) * 0x1p-106 * scale;
  // Times pi/2, both in two parts.
  using One = Lanes<double, 1>;
  constexpr double kHalfPi = 0x1.921fb54442d18p0, kHalfPiLow = 0x1.1a62633145c07p-54;
  const TwoPart<double, 1> rest = exactProduct(One(high), One(kHalfPi));
  const TwoPart<double, 1> sum = exactSum(rest.high, One(rest.low.part[0] + (high * kHalfPiLow + low * kHalfPi)));
  const double sign = above ? -1.0 : 1.0;
  return {sign * sum.high.part[0], sign * sum.low.part[0], quarters};
}

}  // namespace qorsr::elementary
