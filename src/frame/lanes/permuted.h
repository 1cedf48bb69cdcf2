// Every fixed shuffle: lanes in another order, by an index function; and the orders that kernels share.
//
//   constexpr int swapped(int i, int) { return i ^ 1; }
//   permuted<swapped>(a)         lane i is lane swapped(i, N) of a
//   permuted<order, M>(a, b)     M lanes; from N on, the order numbers the lanes of b
//
// Both compilers make of a constant order what they make of the same shuffle written by hand.
#pragma once

#include <cstddef>
#include <utility>

#include "frame/lanes/values.h"

namespace qorsr {

namespace detail {

// Register P of the result. It may take lanes of two registers: the order decides which.
template <auto Order, class To, std::size_t P, class From>
inline typename To::Part permutedPart(const From& a, const From& b) {
  constexpr int kFrom = From::kPart, kTo = To::kPart, kAll = From::kPart * From::kParts;
  constexpr auto source = [](int i) { return Order(static_cast<int>(P) * kTo + i, kAll); };
  constexpr int kFirst = source(0) / kFrom;
  constexpr int kSecond = [=] {
    int second = kFirst;
    for (int i = 1; i < kTo; ++i) second = source(i) / kFrom != kFirst ? source(i) / kFrom : second;
    return second;
  }();
  const auto x = kFirst < From::kParts ? a.part[kFirst % From::kParts] : b.part[kFirst % From::kParts];
  const auto y = kSecond < From::kParts ? a.part[kSecond % From::kParts] : b.part[kSecond % From::kParts];
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    static_assert(((source(I) / kFrom == kFirst || source(I) / kFrom == kSecond) && ...), "lanes of more than two registers");
    if constexpr (kFrom == 1) {
      if constexpr (kTo == 1) return x;
      if constexpr (kTo > 1) return typename To::Part{(source(I) == kFirst ? x : y)...};
    } else if constexpr (kTo == 1) {
      return x[source(0) % kFrom];
    } else {
      return __builtin_shufflevector(x, y, (source(I) / kFrom == kFirst ? source(I) % kFrom : kFrom + source(I) % kFrom)...);
    }
  }
  (std::make_index_sequence<static_cast<std::size_t>(kTo)>());
}

}  // namespace detail

// Lane i of the result is lane Order(i, N) of a, or where that is N or more, lane Order(i, N) - N of b.
template <auto Order, int M, class T, int N>
inline Lanes<T, M> permuted(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  Lanes<T, M> v;
  [&]<std::size_t... P>(std::index_sequence<P...>) { ((v.part[P] = detail::permutedPart<Order, Lanes<T, M>, P>(a, b)), ...); }
  (std::make_index_sequence<static_cast<std::size_t>(Lanes<T, M>::kParts)>());
  return v;
}
template <auto Order, class T, int N>
inline Lanes<T, N> permuted(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  return permuted<Order, N>(a, b);
}
template <auto Order, int M, class T, int N>
inline Lanes<T, M> permuted(const Lanes<T, N>& a) {
  return permuted<Order, M>(a, a);
}
template <auto Order, class T, int N>
inline Lanes<T, N> permuted(const Lanes<T, N>& a) {
  return permuted<Order, N>(a, a);
}

// ---- Halves ----

namespace order {
template <int From>
constexpr int from(int i, int) {
  return From + i;
}
}  // namespace order

// Lanes 0 to N/2 - 1, and N/2 to N - 1.
template <class T, int N>
inline Lanes<T, N / 2> lowerHalf(const Lanes<T, N>& a) {
  return permuted<order::from<0>, N / 2>(a);
}
template <class T, int N>
inline Lanes<T, N / 2> upperHalf(const Lanes<T, N>& a) {
  return permuted<order::from<N / 2>, N / 2>(a);
}

// a, and b behind it.
template <class T, int N>
inline Lanes<T, 2 * N> concatenated(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  return permuted<order::from<0>, 2 * N>(a, b);
}

// ---- Lanes of two sets in turn ----

namespace order {
// The lower halves of both, and the upper ones.
constexpr int lowerHalves(int i, int n) { return i / (n / 2) * (n / 2) + i; }
constexpr int upperHalves(int i, int n) { return lowerHalves(i, n) + n / 2; }
// Groups of G lanes in turn from both; the sequence is 2 n long and begins at lane From.
template <int G, int From>
constexpr int inTurn(int i, int n) {
  return (From + i) / G % 2 * n + (From + i) / (2 * G) * G + i % G;
}
// The same within every U lanes of both, from their lane From on.
template <int U, int G, int From>
constexpr int inTurnOfEach(int i, int n) {
  return i / U * U + inTurn<G, 0>(i % U, n) + From;
}
template <int First>
constexpr int everySecond(int i, int) {
  return 2 * i + First;
}
constexpr int reversed(int i, int n) { return n - 1 - i; }
}  // namespace order

// 2N lanes, `first` and then `second`.
template <class T, int N>
struct LanesPair {
  Lanes<T, N> first, second;
};

// a and b in turn, G lanes at a time: a0 b0 a1 b1 ... for G = 1.
template <int G = 1, class T, int N>
inline LanesPair<T, N> interleaved(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  static_assert(G < N);
  return {permuted<order::inTurn<G, 0>>(a, b), permuted<order::inTurn<G, N>>(a, b)};
}
// Lane N - 1 first.
template <class T, int N>
inline Lanes<T, N> reversed(const Lanes<T, N>& a) {
  return permuted<order::reversed>(a);
}

}  // namespace qorsr
