// Verbs of lanes of 16-bit integers: squares in two halves, conversions to float, 32-bit sums that wrap.
//
// All results are exact or wrap: the same at every level.
#pragma once

#include <bit>
#include <cstdint>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

#if defined(__SSE3__)
inline Vector<int16_t, 8> squareUpper(Vector<int16_t, 8> a) { return Vector<int16_t, 8>(_mm_mulhi_epi16(__m128i(a), __m128i(a))); }
#endif
#if defined(__AVX2__)
inline Vector<int16_t, 16> squareUpper(Vector<int16_t, 16> a) {
  return Vector<int16_t, 16>(_mm256_mulhi_epi16(__m256i(a), __m256i(a)));
}
#endif
#if defined(__AVX512BW__)
inline Vector<int16_t, 32> squareUpper(Vector<int16_t, 32> a) {
  return Vector<int16_t, 32>(_mm512_mulhi_epi16(__m512i(a), __m512i(a)));
}
#endif

// Vectors without an instruction of their own: element by element.
template <class V>
inline V squareUpper(V a) {
  V v{};
  for (std::size_t i = 0; i < sizeof(V) / 2; ++i) v[i] = static_cast<int16_t>(static_cast<int32_t>(a[i]) * a[i] >> 16);
  return v;
}
// Every eight numbers moved down by one, with a zero at the end.
template <class V>
inline V dropFirst(V a) {
#if defined(__AVX512BW__)
  if constexpr (sizeof(V) == 64) return V(_mm512_bsrli_epi128(__m512i(a), 2));
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return V(_mm256_bsrli_epi128(__m256i(a), 2));
#endif
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return V(_mm_srli_si128(__m128i(a), 2));
#endif
  V v{};
  for (std::size_t i = 0; i < sizeof(V) / 2; ++i) v[i] = i % 8 < 7 ? a[i + 1] : int16_t{0};
  return v;
}

}  // namespace native

// The square of a 16-bit number in two halves: its upper 16 bits, and its lower 16 bits shifted right by one.
template <int N>
struct SplitSquare {
  Lanes<int16_t, N> upper, halvedLower;
};
template <int N>
inline SplitSquare<N> splitSquare(const Lanes<int16_t, N>& a) {
  using L = Lanes<int16_t, N>;
  using Part = typename L::Part;
  using Unsigned = native::Vector<uint16_t, L::kPart>;
  return {L::each(a, [](Part x) { return native::squareUpper(x); }), L::each(a, [](Part x) {
            const auto u = std::bit_cast<Unsigned>(x);
            return std::bit_cast<Part>(Unsigned(u * u) >> 1);
          })};
}

// ---- Groups of eight ----

// The groups of `Count` rows, one behind the other.
template <int Count>
inline Lanes<int16_t, 8 * Count> chainGroups(const Lanes<int16_t, 8> (&groups)[Count]) {
  if constexpr (Count == 1) {
    return groups[0];
  } else {
    static_assert(Count == 4);
    Lanes<int32_t, 4> fours[4];
    for (int i = 0; i < 4; ++i) fours[i] = std::bit_cast<Lanes<int32_t, 4>>(groups[i]);
    return std::bit_cast<Lanes<int16_t, 32>>(concatenated(concatenated(fours[0], fours[1]), concatenated(fours[2], fours[3])));
  }
}

// The last n < 8 numbers of rows. A row with eight numbers or more is loaded from its eighth last on, so that no loop over elements
// is needed: the n numbers then end the lanes, and keep() clears the others of what is computed of them. In a shorter row they
// begin the lanes, with zeros behind them.
class RowEnd {
 public:
  explicit RowEnd(int32_t width) : width_(width), count_(width % 8) {}

  int count() const { return count_; }
  bool overlaps() const { return width_ >= 8; }

  // Overlaps: whether the rows have eight numbers.
  template <bool Overlaps>
  Lanes<int16_t, 8> load(const int16_t* row) const {
    if constexpr (Overlaps) {
      return Lanes<int16_t, 8>::load(row + width_ - 8);
    } else {
      return Tail<int16_t, 8>(count_).load(row);
    }
  }
  template <int Rows>
  Lanes<int16_t, 8 * Rows> keep(const Lanes<int16_t, 8 * Rows>& a) const {
    const auto mask = Lanes<int16_t, 8>::load(kKept + (overlaps() ? count_ : 8));
    Lanes<int16_t, 8> masks[Rows];
    for (auto& m : masks) m = mask;
    return Lanes<int16_t, 8 * Rows>::each(a, chainGroups(masks), [](auto x, auto m) { return x & m; });
  }

 private:
  static constexpr int16_t kKept[16] = {0, 0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};

  int32_t width_;
  int count_;
};

// Every group of eight moved down by one number, with a zero at its end.
template <int N>
inline Lanes<int16_t, N> dropFirst(const Lanes<int16_t, N>& a) {
  using Part = typename Lanes<int16_t, N>::Part;
  return Lanes<int16_t, N>::each(a, [](Part x) { return native::dropFirst(x); });
}

// total + p[0] + p[1] + ... + p[7], one after the other, for each of four rows. UpperOnly: from p[4] on.
template <bool UpperOnly>
inline Lanes<float, 4> addInOrder(const Lanes<float, 4>& total, const Lanes<float, 8> (&rows)[4]) {
  using Four = native::Vector<float, 4>;
  Four sum = total.part[0];
#if defined(__AVX512F__)
  const auto pair = [](auto x, auto y) {
    return __builtin_shufflevector(x, y, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  };
  const auto ab = pair(rows[0].part[0], rows[1].part[0]), cd = pair(rows[2].part[0], rows[3].part[0]);
  const auto addFours = [&](auto fours) {  // a0 b0 c0 d0, a1 b1 c1 d1, ...
    sum = sum + __builtin_shufflevector(fours, fours, 0, 1, 2, 3);
    sum = sum + __builtin_shufflevector(fours, fours, 4, 5, 6, 7);
    sum = sum + __builtin_shufflevector(fours, fours, 8, 9, 10, 11);
    sum = sum + __builtin_shufflevector(fours, fours, 12, 13, 14, 15);
  };
  if (!UpperOnly) addFours(__builtin_shufflevector(ab, cd, 0, 8, 16, 24, 1, 9, 17, 25, 2, 10, 18, 26, 3, 11, 19, 27));
  addFours(__builtin_shufflevector(ab, cd, 4, 12, 20, 28, 5, 13, 21, 29, 6, 14, 22, 30, 7, 15, 23, 31));
#elif defined(__AVX2__)
  const auto evens = [](auto x, auto y) { return __builtin_shufflevector(x, y, 0, 1, 8, 9, 4, 5, 12, 13); };
  const auto odds = [](auto x, auto y) { return __builtin_shufflevector(x, y, 2, 3, 10, 11, 6, 7, 14, 15); };
  const auto lows = [](auto x, auto y) { return __builtin_shufflevector(x, y, 0, 8, 1, 9, 4, 12, 5, 13); };
  const auto highs = [](auto x, auto y) { return __builtin_shufflevector(x, y, 2, 10, 3, 11, 6, 14, 7, 15); };
  const auto ab = lows(rows[0].part[0], rows[1].part[0]), cd = lows(rows[2].part[0], rows[3].part[0]);
  const auto abHigh = highs(rows[0].part[0], rows[1].part[0]), cdHigh = highs(rows[2].part[0], rows[3].part[0]);
  const native::Vector<float, 8> fours[4] = {evens(ab, cd), odds(ab, cd), evens(abHigh, cdHigh), odds(abHigh, cdHigh)};
  if (!UpperOnly) {  // a0 b0 c0 d0 a4 b4 c4 d4, ...
    for (const auto& f : fours) sum = sum + __builtin_shufflevector(f, f, 0, 1, 2, 3);
  }
  for (const auto& f : fours) sum = sum + __builtin_shufflevector(f, f, 4, 5, 6, 7);
#else
  const auto addFours = [&](int half) {
    Lanes<float, 4> four[4];
    for (int i = 0; i < 4; ++i) four[i].part[0] = rows[i].part[half];
    const Transposed turned = transposed(four[0], four[1], four[2], four[3]);
    for (const auto& f : turned.lane) sum = sum + f.part[0];
  };
  if (!UpperOnly) addFours(0);
  addFours(1);
#endif
  Lanes<float, 4> v;
  v.part[0] = sum;
  return v;
}

// Totals of four rows. Each group of eight products is joined by halves, ((p0 + p4) + (p2 + p6)) + ((p1 + p5) + (p3 + p7)), and
// joins the total of its row, group by group.
class GroupTotals {
 public:
  // Products of one row that come at once: a group, or two one behind the other.
  static constexpr int kProducts = kNativeBytes == 64 ? 16 : 8;

  GroupTotals() : sums_(0.0F) {}

#if defined(__AVX512F__)
  void add(const Lanes<float, 16> (&p)[4]) {
    const auto halves = [](auto x, auto y) {  // first and second group of x, then of y, four lanes each
      return __builtin_shufflevector(x, y, 0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 24, 25, 26, 27) +
             __builtin_shufflevector(x, y, 4, 5, 6, 7, 12, 13, 14, 15, 20, 21, 22, 23, 28, 29, 30, 31);
    };
    const auto ab = halves(p[0].part[0], p[1].part[0]), cd = halves(p[2].part[0], p[3].part[0]);
    const auto twos = __builtin_shufflevector(ab, cd, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12, 13, 28, 29) +
                      __builtin_shufflevector(ab, cd, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14, 15, 30, 31);
    const auto ones = twos + __builtin_shufflevector(twos, twos, 1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
    // a a c c of the first group, of the second, then b b d d of both
    const auto second = __builtin_shufflevector(ones, ones, 4, 5, 6, 7, 0, 1, 2, 3, 12, 13, 14, 15, 8, 9, 10, 11);
    sums_.part[0] = (sums_.part[0] + ones) + second;
  }
  Lanes<float, 4> totals() const {
    Lanes<float, 4> v;
    v.part[0] = __builtin_shufflevector(sums_.part[0], sums_.part[0], 0, 8, 2, 10);
    return v;
  }

 private:
  Lanes<float, 16> sums_;
#elif defined(__AVX2__)
  void add(const Lanes<float, 8> (&p)[4]) {
    const auto halves = [](auto x, auto y) {
      return __builtin_shufflevector(x, y, 0, 1, 2, 3, 8, 9, 10, 11) + __builtin_shufflevector(x, y, 4, 5, 6, 7, 12, 13, 14, 15);
    };
    const auto ab = halves(p[0].part[0], p[1].part[0]), cd = halves(p[2].part[0], p[3].part[0]);
    const auto twos =
        __builtin_shufflevector(ab, cd, 0, 1, 8, 9, 4, 5, 12, 13) + __builtin_shufflevector(ab, cd, 2, 3, 10, 11, 6, 7, 14, 15);
    sums_.part[0] = sums_.part[0] + (twos + __builtin_shufflevector(twos, twos, 1, 0, 3, 2, 5, 4, 7, 6));  // a a c c b b d d
  }
  Lanes<float, 4> totals() const {
    Lanes<float, 4> v;
    v.part[0] = __builtin_shufflevector(sums_.part[0], sums_.part[0], 0, 4, 2, 6);
    return v;
  }

 private:
  Lanes<float, 8> sums_;
#else
  void add(const Lanes<float, 8> (&p)[4]) { sums_ += joinHalves(p[0], p[1], p[2], p[3]); }
  Lanes<float, 4> totals() const { return sums_; }

 private:
  Lanes<float, 4> sums_;
#endif
};

}  // namespace qorsr
