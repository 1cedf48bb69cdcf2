// The last elements of rows, behind their whole groups of N.
//
// A row with N elements or more is loaded from its Nth last element on, so that no loop over elements is needed: the rest then ends
// the lanes, and kept() clears what stands in front of it. In a shorter row the rest begins the lanes, with zeros behind it.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "frame/lanes.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

// Lanes of a row from p on; of a row that holds no variances nothing is loaded.
template <int N, class T>
inline Lanes<T, N> loadLanes(const T* p) {
  return Lanes<T, N>::load(p);
}
template <int N>
inline UnitRow loadLanes(UnitRow) {
  return {};
}
template <class T, int N>
struct Divisors {
  Lanes<T, N> value;
};
template <int N, class T>
inline Divisors<T, N> loadLanes(DivisorRow<T> p) {
  return {Lanes<T, N>::load(p.row)};
}

template <int N>
class RowEnd {
 public:
  explicit RowEnd(int32_t width) : last_(width - N), count_(width % N) {}

  // Of the rest: 0 to N - 1. Of a row that has none, loaded and kept is its last group.
  int count() const { return count_; }
  bool overlaps() const { return last_ >= 0; }

  // Overlaps: whether the row has N elements.
  template <bool Overlaps, class T>
  Lanes<T, N> load(const T* row) const {
    if constexpr (Overlaps) {
      return Lanes<T, N>::load(row + last_);
    } else {
      return Tail<T, N>(count_).load(row);
    }
  }
  template <bool Overlaps>
  UnitRow load(UnitRow) const {
    return {};
  }
  // Behind the end of a row a divisor is 1.
  template <bool Overlaps, class T>
  Divisors<T, N> load(DivisorRow<T> p) const {
    if constexpr (Overlaps) {
      return {load<true>(p.row)};
    } else {
      return {Tail<T, N>(count_).load(p.row, T(1))};
    }
  }

  // Of one row, or of two one behind the other: zeros where an element is not of the rest.
  template <class T, int M>
  Lanes<T, M> kept(const Lanes<T, M>& a) const {
    using Bits = std::conditional_t<sizeof(T) == 2, int16_t, std::conditional_t<sizeof(T) == 4, int32_t, int64_t>>;
    const auto mask = Lanes<Bits, N>::load(kMask<Bits>.data() + (overlaps() && count_ > 0 ? count_ : N));
    const auto cleared = [&a](const Lanes<Bits, M>& all) {
      Lanes<T, M> v;
      for (int i = 0; i < v.kParts; ++i) {
        v.part[i] =
            std::bit_cast<typename Lanes<T, M>::Part>(std::bit_cast<typename Lanes<Bits, M>::Part>(a.part[i]) & all.part[i]);
      }
      return v;
    };
    if constexpr (M == N) {
      return cleared(mask);
    } else {
      return cleared(concatenated(mask, mask));
    }
  }

 private:
  template <class Bits>
  static constexpr std::array<Bits, 2 * N> kMask = [] {
    std::array<Bits, 2 * N> mask{};
    for (int i = N; i < 2 * N; ++i) mask[static_cast<std::size_t>(i)] = -1;
    return mask;
  }();

  int32_t last_;  // where the last N elements begin
  int count_;
};

}  // namespace qorsr
