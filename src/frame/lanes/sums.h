// Sums of products of whole numbers: over all lanes of eight sets at once, and of two rows, lane by lane.
//
// Eight sets take far fewer steps together than eight joins. Registers are folded in halves until a set has four lanes; these are
// turned within 128 bits, where shuffles are cheap. The sums are modulo 2^32 and so the same in any order.
#pragma once

#include <cstdint>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

// Within each 128 bits of two registers of 32-bit lanes: a0 b0 a1 b1 (First 0) or a2 b2 a3 b3 (First 2).
template <int First, class V, std::size_t... I>
inline V interleaveFours(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I);
  return __builtin_shufflevector(a, b, (static_cast<int>(I / 4 * 4 + I % 4 / 2) + First + (I % 2 == 0 ? 0 : kLanes))...);
}
// Within each 128 bits: a0 a1 b0 b1 (First 0) or a2 a3 b2 b3 (First 2).
template <int First, class V, std::size_t... I>
inline V halvesOfFours(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I);
  return __builtin_shufflevector(a, b, (static_cast<int>(I / 4 * 4 + I % 2) + First + (I % 4 < 2 ? 0 : kLanes))...);
}
// The lower halves of a and b (Upper 0), or the upper ones.
template <int Upper, class V, std::size_t... I>
inline V halves(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I), kHalf = kLanes / 2;
  return __builtin_shufflevector(a, b,
                                 (static_cast<int>(I) % kHalf + kHalf * Upper + (static_cast<int>(I) < kHalf ? 0 : kLanes))...);
}
template <int First, class V, std::size_t... I>
inline V interleaveEights(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I);
  return __builtin_shufflevector(a, b, (static_cast<int>(I / 8 * 8 + I % 8 / 2) + First + (I % 2 == 0 ? 0 : kLanes))...);
}

}  // namespace native

// a0 b0 a1 b1 a2 b2 a3 b3 of each eight lanes, and a4 b4 ... a7 b7: no lane leaves its 128 bits.
template <int N>
inline Lanes<int16_t, N> interleaveLowerOfEights(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
  return Lanes<int16_t, N>::each(
      a, b, [](auto x, auto y) { return native::interleaveEights<0>(x, y, std::make_index_sequence<Lanes<int16_t, N>::kPart>()); });
}
template <int N>
inline Lanes<int16_t, N> interleaveUpperOfEights(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
  return Lanes<int16_t, N>::each(
      a, b, [](auto x, auto y) { return native::interleaveEights<4>(x, y, std::make_index_sequence<Lanes<int16_t, N>::kPart>()); });
}

// Sums of eight lane sets of one native register each: of sets 0 to 3, and of sets 4 to 7.
struct EightSums {
  Lanes<uint32_t, 4> first, second;
};

// Within each 128 bits: the sums of four lanes of a, b, c and d.
template <int N>
[[gnu::always_inline]] inline Lanes<uint32_t, N> turnedSums(const Lanes<uint32_t, N>& a, const Lanes<uint32_t, N>& b,
                                                            const Lanes<uint32_t, N>& c, const Lanes<uint32_t, N>& d) {
  constexpr auto kLanes = std::make_index_sequence<static_cast<std::size_t>(N)>();
  const auto ab =
      native::interleaveFours<0>(a.part[0], b.part[0], kLanes) + native::interleaveFours<2>(a.part[0], b.part[0], kLanes);
  const auto cd =
      native::interleaveFours<0>(c.part[0], d.part[0], kLanes) + native::interleaveFours<2>(c.part[0], d.part[0], kLanes);
  Lanes<uint32_t, N> v;
  v.part[0] = native::halvesOfFours<0>(ab, cd, kLanes) + native::halvesOfFours<2>(ab, cd, kLanes);
  return v;
}

template <int N>
[[gnu::always_inline]] inline EightSums sumsOfSets(const Lanes<uint32_t, N> (&sets)[8]) {
  static_assert(Lanes<uint32_t, N>::kParts == 1 && N >= 4);
  if constexpr (N > 8) {
    Lanes<uint32_t, N / 2> folded[8];
    for (int i = 0; i < 8; ++i) folded[i] = lowerHalf(sets[i]) + upperHalf(sets[i]);
    return sumsOfSets(folded);
  } else if constexpr (N == 8) {
    constexpr auto kLanes = std::make_index_sequence<N>();
    Lanes<uint32_t, N> both[4];  // of sets i and 4 + i, half a register each
    for (int i = 0; i < 4; ++i) {
      const auto a = sets[i].part[0], b = sets[4 + i].part[0];
      both[i].part[0] = native::halves<0>(a, b, kLanes) + native::halves<1>(a, b, kLanes);
    }
    const Lanes<uint32_t, N> all = turnedSums(both[0], both[1], both[2], both[3]);
    return {lowerHalf(all), upperHalf(all)};
  } else {
    return {turnedSums(sets[0], sets[1], sets[2], sets[3]), turnedSums(sets[4], sets[5], sets[6], sets[7])};
  }
}

}  // namespace qorsr
