// Exact products of 16-bit matrices and vectors.
//
// v is split into v = 256 high + low with 0 <= low < 256, so that sums of up to 256 products x high and x low stay below 2^31. What
// they give together is then added in double, where all of it is exact.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "frame/chunks.h"
#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/matrix/product_results.h"
#include "frame/tuning.h"

namespace qorsr {

// N / 2 numbers from p on in both halves of one register: one load, where a concatenation takes two (1.09 to 1.35 times faster at
// x86-64-v3, MatVecMul 16s of products, 13 to 64 columns).
template <class T, int N>
inline Lanes<T, N> loadTwice(const T* p) {
  using L = Lanes<T, N>;
  static_assert(L::kParts == 1);
  constexpr std::size_t kBytes [[maybe_unused]] = sizeof(L);
  L v;
#if defined(__AVX512F__)
  if constexpr (kBytes == 64) return v.part[0] = typename L::Part(_mm512_broadcast_i64x4(native::load<__m256i>(p))), v;
#endif
#if defined(__AVX2__)
  if constexpr (kBytes == 32) return v.part[0] = typename L::Part(_mm256_broadcastsi128_si256(native::load<__m128i>(p))), v;
#endif
#if defined(__SSE3__)
  if constexpr (kBytes == 16) return v.part[0] = typename L::Part(__m128i(_mm_set1_pd(native::load<double>(p)))), v;
#endif
  const auto half = Lanes<T, N / 2>::load(p);
  return concatenated(half, half);
}

// ---- Rows times a vector ----

// Sums over the halves of R sets. Eight halves take far fewer steps together than eight joins: they are transposed within 128 bits,
// where shuffles are cheap, before they are folded (1.14 to 1.29 times faster at x86-64-v3, MatVecMul 16s of products, 13 to 64
// columns). The sums are modulo 2^32 and so the same in any order.
template <int R>
struct SumsOfHalves {
  Lanes<uint32_t, R> lower, upper;
};

// Within each 128 bits: the sums of four lanes of a, b, c and d.
template <int N>
inline Lanes<uint32_t, N> sumsOfFours(const Lanes<uint32_t, N>& a, const Lanes<uint32_t, N>& b, const Lanes<uint32_t, N>& c,
                                      const Lanes<uint32_t, N>& d) {
  const auto ab = permuted<order::inTurnOfEach<4, 1, 0>>(a, b) + permuted<order::inTurnOfEach<4, 1, 2>>(a, b);
  const auto cd = permuted<order::inTurnOfEach<4, 1, 0>>(c, d) + permuted<order::inTurnOfEach<4, 1, 2>>(c, d);
  return permuted<order::inTurnOfEach<4, 2, 0>>(ab, cd) + permuted<order::inTurnOfEach<4, 2, 2>>(ab, cd);
}

// The sums of lanes First and First + 1 of four sets.
template <int First>
inline Lanes<uint32_t, 4> sumsOfPairs(const Lanes<uint32_t, 4> (&sets)[4]) {
  const auto ab = permuted<order::inTurnOfEach<4, 1, First>>(sets[0], sets[1]);
  const auto cd = permuted<order::inTurnOfEach<4, 1, First>>(sets[2], sets[3]);
  return permuted<order::inTurnOfEach<4, 2, 0>>(ab, cd) + permuted<order::inTurnOfEach<4, 2, 2>>(ab, cd);
}

template <int N>
inline SumsOfHalves<4> sumsOfHalves(const Lanes<uint32_t, N> (&sets)[4]) {
  if constexpr (N == 4) {
    return {sumsOfPairs<0>(sets), sumsOfPairs<2>(sets)};
  } else {
    const auto all = sumsOfFours(sets[0], sets[1], sets[2], sets[3]);
    return {joinedTo<4>(lowerHalf(all)), joinedTo<4>(upperHalf(all))};
  }
}

// Eight sets, where eight lanes are in one register.
template <int N>
inline SumsOfHalves<8> sumsOfHalves(const Lanes<uint32_t, N> (&sets)[8]) {
  if constexpr (N == 16) {
    const auto a = sumsOfFours(sets[0], sets[1], sets[2], sets[3]), b = sumsOfFours(sets[4], sets[5], sets[6], sets[7]);
    const auto all = permuted<order::inTurnOfEach<8, 4, 0>>(a, b) + permuted<order::inTurnOfEach<8, 4, 4>>(a, b);
    return {lowerHalf(all), upperHalf(all)};
  } else {
    const auto a = sumsOfHalves({sets[0], sets[1], sets[2], sets[3]}), b = sumsOfHalves({sets[4], sets[5], sets[6], sets[7]});
    return {concatenated(a.lower, b.lower), concatenated(a.upper, b.upper)};
  }
}

// What works on the rows is inlined by force: 1.1 to 1.16 at SSE3, 1.2 at x86-64-v4 (products, MatVecMul 16s, 13 to 40 columns).

// N zeros, then N ones.
template <int N>
inline constexpr auto kZerosAndOnes = [] {
  std::array<int16_t, 2 * N> v{};
  for (int k = N; k < 2 * N; ++k) v[k] = 1;
  return v;
}();

// 16-bit rows in blocks of N / 2 elements, which stand in both halves of N lanes: the lower half is multiplied by the low parts of
// the vector, the upper half by the high ones. The width is at least N / 2. The last block may overlap the one before it: the
// vector there is zero where the elements have been counted.
template <int N>
class ExactDots {
 public:
  ExactDots(const int16_t* vector, int32_t width) : vector_(vector), width_(width), blocks_((width - 1) / kBlock + 1) {
    if (blocks_ <= kPiece) {
      for (int32_t b = 0; b < blocks_ - 1; ++b) parts_[b] = partsAt(b * kBlock);
    }
    const int32_t counted = blocks_ * kBlock - width;  // elements of the last block
    last_ = partsOf(loadTwice<int16_t, N>(vector + width - kBlock) *
                    loadTwice<int16_t, N>(kZerosAndOnes<kBlock>.data() + (kBlock - counted)));
  }

  template <int R>
  [[gnu::always_inline]] Lanes<double, R> operator()(const RowGroup<int16_t, R>& rows) const {
    if (blocks_ <= kPiece) {
      RowSums<R> sums;
      for (int32_t b = 0; b < blocks_ - 1; ++b) sums.add(rows, b * kBlock, parts_[b]);
      sums.add(rows, width_ - kBlock, last_);
      return sums.joined();
    }
    Lanes<double, R> total(0.0);
    for (int32_t b = 0; b < blocks_;) {
      RowSums<R> sums;
      for (const int32_t end = std::min(blocks_, b + kPiece); b < end; ++b) {
        if (b < blocks_ - 1) {
          sums.add(rows, b * kBlock, partsAt(b * kBlock));
        } else {
          sums.add(rows, width_ - kBlock, last_);
        }
      }
      total += sums.joined();
    }
    return total;
  }

 private:
  static constexpr int kBlock = N / 2;
  static constexpr int32_t kPiece = 256 / kBlock;  // blocks of 256 elements: 256 * 2^15 * 255 is below 2^31
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<uint32_t, N / 2>;

  // Sums of x low (lower halves) and of x high (upper halves) of R rows.
  template <int R>
  struct RowSums {
    Sums sums[R];

    RowSums() {
      for (auto& s : sums) s = Sums(0);
    }
    [[gnu::always_inline]] void add(const RowGroup<int16_t, R>& rows, int32_t column, const Elements& parts) {
      for (int i = 0; i < R; ++i) sums[i] += std::bit_cast<Sums>(pairDots(loadTwice<int16_t, N>(rows[i] + column), parts));
    }
    [[gnu::always_inline]] Lanes<double, R> joined() const {
      const SumsOfHalves<R> all = sumsOfHalves(sums);
      return as<double>(std::bit_cast<Lanes<int32_t, R>>(all.lower)) +
             as<double>(std::bit_cast<Lanes<int32_t, R>>(all.upper)) * Lanes<double, R>(256.0);
    }
  };

  // Low parts of the lower half of v, from 0 to 255, and high parts of the upper half: v = 256 high + low.
  static Elements partsOf(const Elements& v) {
    const Elements high = v >> 8, low = v - shiftLeft(high, 8);
    return low + (high - low) * Elements::load(kZerosAndOnes<kBlock>.data());
  }
  Elements partsAt(int32_t column) const { return partsOf(loadTwice<int16_t, N>(vector_ + column)); }

  const int16_t* vector_;
  int32_t width_, blocks_;
  Elements last_, parts_[kPiece];
};

inline int64_t dotShortRow(const int16_t* row, const int16_t* vector, int32_t width) {
  int64_t total = 0;
  for (int32_t c = 0; c < width; ++c) total += static_cast<int32_t>(row[c]) * vector[c];
  return total;
}

inline Lanes<double, 4> dotFourShortRows(const FourRows<int16_t>& rows, const int16_t* vector, int32_t width) {
  const auto sum = [&](int i) { return static_cast<double>(dotShortRow(rows[i], vector, width)); };
  return Lanes<double, 4>::of(sum(0), sum(1), sum(2), sum(3));
}

// ---- A vector times columns ----

// Elements of a 16-bit vector in two parts, v = 256 high + low, as pairs; an odd one has a zero behind it.
struct SplitPairs {
  static constexpr int32_t kMost = 128;  // 128 * 2^15 * 255 is below 2^31
  int16_t low[kMost], high[kMost];

  SplitPairs(const int16_t* v, int32_t count) {
    if (count >= 8) {
      for (int32_t i = 0; i < count; i += 8) splitEight(v, std::min(i, count - 8));
    } else {
      for (int32_t i = 0; i < count; ++i) {
        low[i] = static_cast<int16_t>(v[i] & 255);
        high[i] = static_cast<int16_t>(v[i] >> 8);
      }
    }
    if (count % 2 == 1) low[count] = high[count] = 0;
  }
  // A pair in every pair of lanes.
  template <int N>
  static Lanes<int16_t, N> pair(const int16_t* p) {
    int32_t both;
    std::memcpy(&both, p, sizeof(both));
    return std::bit_cast<Lanes<int16_t, N>>(Lanes<int32_t, N / 2>(both));
  }

 private:
  void splitEight(const int16_t* v, int32_t at) {
    const auto all = Lanes<int16_t, 8>::load(v + at), upper = all >> 8;
    (all - shiftLeft(upper, 8)).store(low + at);
    upper.store(high + at);
  }
};

// Calls take(index of the first, kSumsTogether sums) for all sums from the given index on.
template <int N, class Take>
[[gnu::always_inline]] inline void forSums(const Lanes<double, N>& sums, int32_t index, const Take& take) {
  if constexpr (N > kSumsTogether) {
    forSums(lowerHalf(sums), index, take);
    forSums(upperHalf(sums), index + N / 2, take);
  } else {
    take(index, sums);
  }
}

// The same lanes; numbers that are used twice are loaded once.
template <int N>
[[gnu::always_inline]] inline Lanes<int16_t, N> inRegister(Lanes<int16_t, N> a) {
#if defined(__SSE3__)
  for (auto& part : a.part) asm("" : "+v"(part));
#endif
  return a;
}

// Four lanes of each in turn.
template <int N>
inline Lanes<int32_t, 2 * N> inTurnByFours(const Lanes<int32_t, N>& a, const Lanes<int32_t, N>& b) {
  return permuted<order::inTurn<4, 0>, 2 * N>(a, b);
}

// What rows first to first + count - 1 give in B blocks of N columns: take(index, sums), index from 0 to B N. Two rows at a time, so
// that a pair of products is one step.
template <int N, int B, class Rows, class Take>
inline void columnDots(const SplitPairs& v, const Rows& rows, int32_t first, int32_t count, const std::array<int32_t, B>& columns,
                       const Take& take) {
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<int32_t, N / 2>;
  Sums sums[B][4];  // of x low, of x high: lower and upper halves of each eight columns
  for (auto& block : sums) {
    for (auto& s : block) s = Sums(0);
  }
  // Inlined by force: VecMatMul 16s gains 1.2 to 2.1 (products, 13 to 64 columns, all levels).
  const auto addPair = [&](int32_t r, const int16_t* one, const int16_t* two) __attribute__((always_inline)) {
    const Elements low = SplitPairs::pair<N>(v.low + r), high = SplitPairs::pair<N>(v.high + r);
    for (int b = 0; b < B; ++b) {
      const Elements x = inRegister(Elements::load(one + columns[b])), y = inRegister(Elements::load(two + columns[b]));
      const Elements lower = permuted<order::inTurnOfEach<8, 1, 0>>(x, y), upper = permuted<order::inTurnOfEach<8, 1, 4>>(x, y);
      sums[b][0] += pairDots(lower, low);
      sums[b][1] += pairDots(upper, low);
      sums[b][2] += pairDots(lower, high);
      sums[b][3] += pairDots(upper, high);
    }
  };
  int32_t r = 0;
  for (; r < count - 1; r += 2) addPair(r, rows[first + r], rows[first + r + 1]);
  if (r < count) addPair(r, rows[first + r], rows[first + r]);
  for (int b = 0; b < B; ++b) {
    const auto low = as<double>(inTurnByFours(sums[b][0], sums[b][1])), high = as<double>(inTurnByFours(sums[b][2], sums[b][3]));
    forSums(low + high * Lanes<double, N>(256.0), b * N, take);
  }
}

// All columns of a matrix of up to SplitPairs::kMost rows from `column` on, in blocks of at most N; the width is at least 8. The
// last block may overlap the one before it.
template <int N, class Rows, class Result, class Finish>
inline void shortColumns(const SplitPairs& v, const Rows& rows, int32_t height, Result* result, int32_t column, int32_t width,
                         const Finish& finish) {
  const auto two = [&](int32_t c0, int32_t c1) {
    columnDots<N, 2>(v, rows, 0, height, {c0, c1},
                     [&](int32_t i, const auto& sums) { finish(sums, result + (i < N ? c0 + i : c1 + (i - N))); });
  };
  const auto one = [&](int32_t c) {
    columnDots<N, 1>(v, rows, 0, height, {c}, [&](int32_t i, const auto& sums) { finish(sums, result + c + i); });
  };
  while (width - column > N && (width - column > N + N / 2 || N == 8)) {
    two(column, std::min(column + N, width - N));
    column += std::min(2 * N, width - column);
  }
  if (width - column >= N) {
    one(column);
    column += N;
  }
  if (column == width) return;
  if constexpr (N > 8) {
    if (width - column <= N / 2 || width < N) return shortColumns<N / 2>(v, rows, height, result, column, width, finish);
  }
  one(width - N);
}

// Up to eight blocks of N columns from `column` on, with `width` columns in all; the last block may overlap the one before it.
template <int N, class Rows, class Result, class Finish>
inline void exactColumns(const int16_t* vector, const Rows& rows, int32_t height, Result* result, int32_t column, int32_t width,
                         const Finish& finish) {
  constexpr int kBlocks = 8;
  using Some = Lanes<double, kSumsTogether>;
  const int32_t blocks = std::min((width - column - 1) / N + 1, kBlocks);
  const auto columnOf = [=](int32_t b) { return std::min(column + b * N, width - N); };
  double totals[kBlocks * N];
  std::fill_n(totals, blocks * N, 0.0);
  for (const auto [first, count] : chunksOf(height, SplitPairs::kMost)) {
    const SplitPairs v(vector + first, count);
    for (int32_t b = 0; b < blocks;) {
      double* total = totals + b * N;
      const auto add = [=](int32_t i, const Some& sums) { (Some::load(total + i) + sums).store(total + i); };
      const bool two = b + 1 < blocks;
      if (two) columnDots<N, 2>(v, rows, first, count, {columnOf(b), columnOf(b + 1)}, add);
      if (!two) columnDots<N, 1>(v, rows, first, count, {columnOf(b)}, add);
      b += two ? 2 : 1;
    }
  }
  for (int32_t b = 0; b < blocks; ++b) {
    for (int c = 0; c < N; c += kSumsTogether) finish(Some::load(totals + b * N + c), result + columnOf(b) + c);
  }
}

}  // namespace qorsr
