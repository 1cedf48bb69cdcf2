// Shuffles of whole units of 128 bits, which stay cheap in registers of every width.
#pragma once

#include <cstddef>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

// One register from two, unit by unit: `source(u)` numbers the units of a, and behind them those of b.
template <class Source, class V, std::size_t... I>
inline V shuffleUnits(V a, V b, std::index_sequence<I...>) {
  constexpr std::size_t kUnit = 16 / (sizeof(V) / sizeof...(I));  // lanes of a unit
  return __builtin_shufflevector(a, b, (static_cast<int>(Source::of(I / kUnit, sizeof...(I) / kUnit) * kUnit + I % kUnit))...);
}

}  // namespace native

// Units 0, 2, ... (First 0) or 1, 3, ... (First 1) of a, then those of b.
template <std::size_t First>
struct EveryOtherUnit {
  static constexpr std::size_t of(std::size_t u, std::size_t) { return 2 * u + First; }
};
// Units of the lower half (First 0) or the upper half (First 1) of a and of b, in turn.
template <std::size_t First>
struct UnitsInTurn {
  static constexpr std::size_t of(std::size_t u, std::size_t count) { return u / 2 + First * count / 2 + u % 2 * count; }
};

// N lanes in one register, or in registers of one unit each.
template <class Source, class T, int N>
inline Lanes<T, N> shuffleUnits(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  using L = Lanes<T, N>;
  L v;
  if constexpr (L::kParts == 1) {
    v.part[0] = native::shuffleUnits<Source>(a.part[0], b.part[0], std::make_index_sequence<N>());
  } else {
    static_assert(sizeof(v.part[0]) == 16);
    for (std::size_t u = 0; u < L::kParts; ++u) {
      const std::size_t source = Source::of(u, L::kParts);
      v.part[u] = source < L::kParts ? a.part[source] : b.part[source - L::kParts];
    }
  }
  return v;
}

}  // namespace qorsr
