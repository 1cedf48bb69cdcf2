// Dot products of 16-bit vectors, exact in 64 bits: sum over i of a[i] b[i], of one or several pairs of vectors in one pass.
//
// The sum p of two neighbouring products lies from -2^31 + 2^16 to 2^31, so p - 1 fits 32 bits although p does not. With p - 1 =
// 2^16 high + low, 0 <= low < 2^16, the sums of p modulo 2^32 and of high are enough to know the sum of p, for up to 2^15 of them.
// Squares lie from 0 to 2^31, which fits 32 bits without a sign: there p itself is 2^16 high + low, and a subtraction less (1.06 to
// 1.15 times as fast: CrossCorrCoeff of pitch, 400 samples).
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

namespace detail {

// The sum of up to kMost pairs, in N lanes of 16 bits.
template <int N>
class ShortDot {
 public:
  static constexpr int64_t kMost = int64_t{1} << 16;  // elements

  void add(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
    const auto pairs = std::bit_cast<Lanes<uint32_t, N / 2>>(pairDots(a, b));
    sum_ += pairs;
    high_ += std::bit_cast<Lanes<int32_t, N / 2>>(pairs - Lanes<uint32_t, N / 2>(1U)) >> 16;
  }
  void addSquares(const Lanes<int16_t, N>& a) {
    const auto pairs = std::bit_cast<Lanes<uint32_t, N / 2>>(pairDots(a, a));
    sum_ += pairs;
    high_ += std::bit_cast<Lanes<int32_t, N / 2>>(pairs >> 16);
  }
  // elements: how many were added by add(), those that filled the last lanes among them.
  int64_t total(int64_t elements) const {
    const auto pairs = static_cast<uint32_t>(elements / 2);
    const int32_t high = joinHalves(high_);
    const uint32_t low = joinHalves(sum_) - pairs - (static_cast<uint32_t>(high) << 16);
    return int64_t{high} * 65536 + low + pairs;
  }

 private:
  Lanes<uint32_t, N / 2> sum_{0U};
  Lanes<int32_t, N / 2> high_{0};
};

}  // namespace detail

enum class ShortTerms { kProducts, kSquares };

template <int Count>
struct ShortDots {
  int64_t sum[Count] = {};
};

// Calls body(load, add) for blocks that cover elements 0 to length - 1: load(p) loads a block's elements of the vector p, with
// zeros behind the end, and add(k, a, b) adds products to sum k, or the squares of a, as Terms say of each sum.
template <ShortTerms... Terms, class Body>
inline ShortDots<sizeof...(Terms)> shortDots(int64_t length, const Body& body) {
  constexpr int N = kNativeLanes<int16_t>;
  constexpr int Count = sizeof...(Terms);
  constexpr bool kSquares[] = {Terms == ShortTerms::kSquares...};
  using L = Lanes<int16_t, N>;
  ShortDots<Count> dots;
  for (int64_t first = 0; first < length; first += detail::ShortDot<N>::kMost) {
    const int64_t end = std::min(length, first + detail::ShortDot<N>::kMost);
    detail::ShortDot<N> partial[Count];
    const auto add = [&](int k, const L& a, const L& b) { kSquares[k] ? partial[k].addSquares(a) : partial[k].add(a, b); };
    int64_t i = first;
    for (; i <= end - N; i += N) body([&](const int16_t* p) { return L::load(p + i); }, add);
    if (i < end) {
      const Tail<int16_t, N> tail(static_cast<int>(end - i));
      body([&](const int16_t* p) { return tail.load(p + i); }, add);
      i += N;
    }
    for (int k = 0; k < Count; ++k) dots.sum[k] += partial[k].total(kSquares[k] ? 0 : i - first);
  }
  return dots;
}

}  // namespace qorsr
