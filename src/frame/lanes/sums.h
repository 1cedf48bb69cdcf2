// Sums of products of whole numbers: over the halves of four registers at once, and of two rows, lane by lane.
//
// Eight halves take far fewer steps together than eight joins: they are turned within 128 bits, where shuffles are cheap, before
// they are folded. The sums are modulo 2^32 and so the same in any order.
#pragma once

#include <bit>
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
  constexpr int kPairs = sizeof...(I) / 2;
  using Pairs = Vector<int64_t, kPairs>;
  const auto pick = [&]<std::size_t... J>(std::index_sequence<J...>) {
    return __builtin_shufflevector(std::bit_cast<Pairs>(a), std::bit_cast<Pairs>(b),
                                   (static_cast<int>(J / 2 * 2) + First / 2 + (J % 2 == 0 ? 0 : kPairs))...);
  };
  return std::bit_cast<V>(pick(std::make_index_sequence<kPairs>()));
}
// The 128 bits First and First + 2 of two registers of 512 bits: a b a b.
template <int First, class V, std::size_t... I>
inline V alternateFours(V a, V b, std::index_sequence<I...>) {
  return __builtin_shufflevector(a, b, (static_cast<int>(I % 4 + I / 8 * 8) + 4 * First + (I / 4 % 2 == 0 ? 0 : 16))...);
}
// Part Index of the lanes of a and b, four by four in turn.
template <int Index, class To, class V, std::size_t... I>
inline To joinedEights(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof(V) / sizeof(a[0]), kFrom = Index * static_cast<int>(sizeof...(I));
  return __builtin_shufflevector(a, b,
                                 ((kFrom + static_cast<int>(I)) / 8 * 4 + static_cast<int>(I % 4) +
                                  ((kFrom + static_cast<int>(I)) / 4 % 2 == 0 ? 0 : kLanes))...);
}
template <int First, class V, std::size_t... I>
inline V interleaveEights(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I);
  return __builtin_shufflevector(a, b, (static_cast<int>(I / 8 * 8 + I % 8 / 2) + First + (I % 2 == 0 ? 0 : kLanes))...);
}

}  // namespace native

// The same lanes; numbers that are used twice are loaded once.
template <int N>
[[gnu::always_inline]] inline Lanes<int16_t, N> inRegister(Lanes<int16_t, N> a) {
#if defined(__SSE3__)
  for (auto& part : a.part) asm("" : "+v"(part));
#endif
  return a;
}

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

// The inverse of the order above: the first four of every eight lanes from `lower`, the last four from `upper`.
template <int N>
inline Lanes<int32_t, 2 * N> joinedEights(const Lanes<int32_t, N>& lower, const Lanes<int32_t, N>& upper) {
  using L = Lanes<int32_t, 2 * N>;
  L v;
  if constexpr (L::kParts == 2) {
    v.part[0] = native::joinedEights<0, typename L::Part>(lower.part[0], upper.part[0], std::make_index_sequence<N>());
    v.part[1] = native::joinedEights<1, typename L::Part>(lower.part[0], upper.part[0], std::make_index_sequence<N>());
  } else {
    v.part[0] = native::joinedEights<0, typename L::Part>(lower.part[0], upper.part[0], std::make_index_sequence<2 * N>());
  }
  return v;
}

// Sums over the halves of R sets.
template <int R>
struct SumsOfHalves {
  Lanes<uint32_t, R> lower, upper;
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

// The sums of lanes First and First + 1 of four sets.
template <int First>
[[gnu::always_inline]] inline Lanes<uint32_t, 4> sumsOfPairs(const Lanes<uint32_t, 4> (&sets)[4]) {
  constexpr auto kLanes = std::make_index_sequence<4>();
  const auto ab = native::interleaveFours<First>(sets[0].part[0], sets[1].part[0], kLanes);
  const auto cd = native::interleaveFours<First>(sets[2].part[0], sets[3].part[0], kLanes);
  Lanes<uint32_t, 4> v;
  v.part[0] = native::halvesOfFours<0>(ab, cd, kLanes) + native::halvesOfFours<2>(ab, cd, kLanes);
  return v;
}

template <int N>
[[gnu::always_inline]] inline SumsOfHalves<4> sumsOfHalves(const Lanes<uint32_t, N> (&sets)[4]) {
  static_assert(Lanes<uint32_t, N>::kParts == 1 && N >= 4 && N <= 16);
  if constexpr (N == 4) {
    return {sumsOfPairs<0>(sets), sumsOfPairs<2>(sets)};
  } else {
    const Lanes<uint32_t, N> all = turnedSums(sets[0], sets[1], sets[2], sets[3]);
    return {joinedTo<4>(lowerHalf(all)), joinedTo<4>(upperHalf(all))};
  }
}

// Eight sets, where eight lanes are in one register.
template <int N>
[[gnu::always_inline]] inline SumsOfHalves<8> sumsOfHalves(const Lanes<uint32_t, N> (&sets)[8]) {
  if constexpr (N == 16) {
    constexpr auto kLanes = std::make_index_sequence<16>();
    const auto a = turnedSums(sets[0], sets[1], sets[2], sets[3]).part[0];
    const auto b = turnedSums(sets[4], sets[5], sets[6], sets[7]).part[0];
    Lanes<uint32_t, 16> all;
    all.part[0] = native::alternateFours<0>(a, b, kLanes) + native::alternateFours<1>(a, b, kLanes);
    return {lowerHalf(all), upperHalf(all)};
  } else {
    constexpr auto kLanes = std::make_index_sequence<8>();
    using Eight = Lanes<uint32_t, 8>;
    const auto a = sumsOfHalves({sets[0], sets[1], sets[2], sets[3]}), b = sumsOfHalves({sets[4], sets[5], sets[6], sets[7]});
    SumsOfHalves<8> all;
    all.lower.part[0] = native::concatenate<Eight::Part>(a.lower.part[0], b.lower.part[0], kLanes);
    all.upper.part[0] = native::concatenate<Eight::Part>(a.upper.part[0], b.upper.part[0], kLanes);
    return all;
  }
}

}  // namespace qorsr
