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

#include "frame/lanes.h"
#include "frame/lanes/rounding.h"
#include "frame/lanes/shorts.h"
#include "frame/lanes/sums.h"
#include "frame/product_results.h"

namespace qorsr {

// ---- Rows times a vector ----

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
    last_ = partsOf(loadTwice<N>(vector + width - kBlock) * loadTwice<N>(kZerosAndOnes<kBlock>.data() + (kBlock - counted)));
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
      for (int i = 0; i < R; ++i) sums[i] += std::bit_cast<Sums>(pairDots(loadTwice<N>(rows[i] + column), parts));
    }
    [[gnu::always_inline]] Lanes<double, R> joined() const {
      const SumsOfHalves<R> all = sumsOfHalves(sums);
      return widen(std::bit_cast<Lanes<int32_t, R>>(all.lower)) +
             widen(std::bit_cast<Lanes<int32_t, R>>(all.upper)) * Lanes<double, R>(256.0);
    }
  };

  // Low parts of the lower half of v, from 0 to 255, and high parts of the upper half: v = 256 high + low.
  static Elements partsOf(const Elements& v) {
    const Elements high = v >> 8, low = v - shiftLeft(high, 8);
    return low + (high - low) * Elements::load(kZerosAndOnes<kBlock>.data());
  }
  Elements partsAt(int32_t column) const { return partsOf(loadTwice<N>(vector_ + column)); }

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
    for (int32_t i = 0; i < count; ++i) {
      low[i] = static_cast<int16_t>(v[i] & 255);
      high[i] = static_cast<int16_t>(v[i] >> 8);
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
};

// Adds to the totals of B blocks of N columns, from `column` on, what rows first to first + count - 1 give. Two rows at a time, so
// that a pair of products is one step.
template <int N, int B, class Rows>
inline void addColumnDots(const SplitPairs& v, const Rows& rows, int32_t first, int32_t count, int32_t column, double* total) {
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<int32_t, N / 2>;
  using Four = Lanes<double, 4>;
  Sums sums[B][4];  // of x low, of x high: lower and upper halves of each eight columns
  for (auto& block : sums) {
    for (auto& s : block) s = Sums(0);
  }
  for (int32_t r = 0; r < count; r += 2) {
    const auto *one = rows[first + r] + column, *two = rows[first + std::min(r + 1, count - 1)] + column;
    const Elements low = SplitPairs::pair<N>(v.low + r), high = SplitPairs::pair<N>(v.high + r);
    for (int b = 0; b < B; ++b) {
      const Elements x = Elements::load(one + b * N), y = Elements::load(two + b * N);
      const Elements lower = interleaveLowerOfEights(x, y), upper = interleaveUpperOfEights(x, y);
      sums[b][0] += pairDots(lower, low);
      sums[b][1] += pairDots(upper, low);
      sums[b][2] += pairDots(lower, high);
      sums[b][3] += pairDots(upper, high);
    }
  }
  for (int b = 0; b < B; ++b) {
    int32_t part[4][N / 2];
    for (int i = 0; i < 4; ++i) sums[b][i].store(part[i]);
    for (int c = 0; c < N; c += 4) {
      const int half = c / 4 % 2, at = c / 8 * 4;
      const Four sum = loadAs<double, 4>(part[half] + at) + loadAs<double, 4>(part[2 + half] + at) * Four(256.0);
      (Four::load(total + b * N + c) + sum).store(total + b * N + c);
    }
  }
}

// Up to eight blocks of N columns from `column` on, with `width` columns in all; the last block may overlap the one before it.
template <int N, class Rows, class Result, class Finish>
inline void exactColumns(const int16_t* vector, const Rows& rows, int32_t height, Result* result, int32_t column, int32_t width,
                         const Finish& finish) {
  constexpr int kBlocks = 8;
  const int32_t blocks = std::min((width - column - 1) / N + 1, kBlocks);
  const auto columnOf = [=](int32_t b) { return std::min(column + b * N, width - N); };
  double totals[kBlocks * N];
  std::fill_n(totals, blocks * N, 0.0);
  for (int32_t first = 0; first < height; first += SplitPairs::kMost) {
    const int32_t count = std::min(height - first, SplitPairs::kMost);
    const SplitPairs v(vector + first, count);
    for (int32_t b = 0; b < blocks;) {
      const bool two = b + 1 < blocks && columnOf(b + 1) == columnOf(b) + N;
      if (two) addColumnDots<N, 2>(v, rows, first, count, columnOf(b), totals + b * N);
      if (!two) addColumnDots<N, 1>(v, rows, first, count, columnOf(b), totals + b * N);
      b += two ? 2 : 1;
    }
  }
  for (int32_t b = 0; b < blocks; ++b) {
    for (int c = 0; c < N; c += 4) finish(Lanes<double, 4>::load(totals + b * N + c), result + columnOf(b) + c);
  }
}

}  // namespace qorsr
