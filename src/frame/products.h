// Products of a matrix and a vector.
//
//   matrix times vector: y[r] = sum over c of x[r][c] v[c]      one sum a row
//   vector times matrix: y[c] = sum over r of v[r] x[r][c]      one sum a column
//
// Float rows: groups of 16 elements in 16 lanes, which are joined by halves to four; groups of four in these; up to three last
// elements in lane 0; (l0 + l2) + (l1 + l3). Four rows are taken at a time. Float columns: rows in order, from zero.
// 32-bit data: products and sums in double; rows in two lanes, columns in the order of the rows.
// 16-bit data: the sums are exact. v is split into v = 256 h + l with 0 <= l < 256, so that sums of x h and x l stay below 2^31 for
// a while; they are then joined in 64 bits.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Finishes: from a sum to a result ----

struct RealResult {
  using Result = float;
};

// An exact sum, shifted without rounding and saturated: right with floor, left as the exact product with the power of two.
template <class To>
struct ShiftedResult {
  using Result = To;
  int32_t scaleFactor;

  To operator()(int64_t sum) const {
    if (scaleFactor >= 0) return saturate<To>(shiftRight(sum, scaleFactor));
    const int64_t limited = saturate<int32_t>(sum), count = -static_cast<int64_t>(scaleFactor);
    if (count < 32) return saturate<To>(limited * (int64_t{1} << count));
    return limited == 0 ? To{0}
                        : saturate<To>(limited < 0 ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max());
  }
};

// A sum in double, scaled, limited and rounded to nearest, ties to even.
template <class To>
struct RoundedResult {
  using Result = To;
  double power;

  explicit RoundedResult(int32_t scaleFactor) : power(qorPow2Neg_64f(scaleFactor)) {}
  To operator()(double sum) const { return saturate<To>(limitAndRound<int32_t>(sum * power)); }
};

// ---- Rows times a vector, four rows at a time ----

// Up to four rows of a matrix: the last one stands for those that are missing.
template <class T>
struct FourRows {
  const T* row[4];

  template <class Rows>
  FourRows(const Rows& rows, int32_t first, int32_t height) {
    for (int32_t i = 0; i < 4; ++i) row[i] = rows[std::min(first + i, height - 1)];
  }
  const T* operator[](int i) const { return row[i]; }
};

// Calls dots(four rows) -> four sums, for all rows, and finish(sum) for each of the sums.
template <class T, class Rows, class Dots, class Result, class Finish>
inline void forFourRows(const Rows& rows, int32_t height, const Dots& dots, Result* result, const Finish& finish) {
  for (int32_t r = 0; r < height; r += 4) {
    const int32_t first = height >= 4 ? std::min(r, height - 4) : 0;  // the last four may overlap those before them
    const auto sums = dots(FourRows<T>(rows, first, height));
    for (int32_t i = 0; i < std::min(height, 4); ++i) result[first + i] = finish(sums.of[i]);
  }
}

template <class Sum>
struct FourSums {
  Sum of[4];
};

// The four lanes of rows `first` to first + R - 1; returns how many columns are done.
template <int R>
inline int32_t laneDots(const FourRows<float>& rows, int first, const float* vector, int32_t width, Lanes<float, 4>* lanes) {
  using Wide = Lanes<float, 16>;
  using Group = Lanes<float, 4>;
  Wide sums[R];
  for (auto& s : sums) s = Wide(0.0F);
  int32_t c = 0;
  for (; c <= width - 16; c += 16) {
    const Wide v = Wide::load(vector + c);
    for (int i = 0; i < R; ++i) sums[i] += Wide::load(rows[first + i] + c) * v;
  }
  for (int i = 0; i < R; ++i) {
    const auto eight = lowerHalf(sums[i]) + upperHalf(sums[i]);
    lanes[i] = lowerHalf(eight) + upperHalf(eight);
  }
  for (; c <= width - 4; c += 4) {
    const Group v = Group::load(vector + c);
    for (int i = 0; i < R; ++i) lanes[i] += Group::load(rows[first + i] + c) * v;
  }
  return c;
}

inline FourSums<float> dotFourRows(const FourRows<float>& rows, const float* vector, int32_t width) {
  using Group = Lanes<float, 4>;
  constexpr int kAtOnce = kNativeBytes > 16 ? 4 : 2;  // 16 lanes a row: what the registers hold
  Group lanes[4];
  int32_t c = 0;
  for (int i = 0; i < 4; i += kAtOnce) c = laneDots<kAtOnce>(rows, i, vector, width, lanes + i);
  Turned turned = turn4(lanes[0], lanes[1], lanes[2], lanes[3]);
  for (; c < width; ++c) turned.lane[0] += Group::of(rows[0][c], rows[1][c], rows[2][c], rows[3][c]) * Group(vector[c]);
  FourSums<float> sums;
  ((turned.lane[0] + turned.lane[2]) + (turned.lane[1] + turned.lane[3])).store(sums.of);
  return sums;
}

// Two lanes a row; the last element of an odd width goes to lane 0.
inline FourSums<double> dotFourRows(const FourRows<int32_t>& rows, const int32_t* vector, int32_t width) {
  using Pair = Lanes<double, 2>;
  Pair lanes[4] = {Pair(0.0), Pair(0.0), Pair(0.0), Pair(0.0)};
  int32_t c = 0;
  for (; c <= width - 2; c += 2) {
    const Pair v = loadAs<double, 2>(vector + c);
    for (int i = 0; i < 4; ++i) lanes[i] += loadAs<double, 2>(rows[i] + c) * v;
  }
  FourSums<double> sums;
  for (int i = 0; i < 4; ++i) {
    double first = lowerHalf(lanes[i]).part[0];
    if (c < width) first += static_cast<double>(rows[i][c]) * static_cast<double>(vector[c]);
    sums.of[i] = first + upperHalf(lanes[i]).part[0];
  }
  return sums;
}

// 16-bit rows in blocks of N elements; width is at least N. The last block may overlap the one before it: `last` holds the vector
// there, zero where the elements have been counted.
template <int N>
class ExactDots {
 public:
  ExactDots(const int16_t* vector, int32_t width) : vector_(vector), width_(width) {
    const int32_t counted = (width - 1) / N * N;
    for (int32_t k = 0; k < N; ++k) last_[k] = width - N + k < counted ? int16_t{0} : vector[width - N + k];
  }

  FourSums<int64_t> operator()(const FourRows<int16_t>& rows) const {
    FourSums<int64_t> total{};
    const int32_t blocks = (width_ - 1) / N + 1;
    for (int32_t b = 0; b < blocks;) {
      Parts parts;
      for (const int32_t end = std::min(blocks, b + kPiece); b < end; ++b) {
        if (b < blocks - 1) {
          parts.add(rows, b * N, vector_ + b * N);
        } else {
          parts.add(rows, width_ - N, last_);
        }
      }
      parts.addTo(total);
    }
    return total;
  }

 private:
  static constexpr int32_t kPiece = 256 / N;  // blocks of 256 elements: 256 * 2^15 * 255 is below 2^31
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<int32_t, N / 2>;

  // Sums of x l (0 to 3) and of x h (4 to 7) of four rows.
  struct Parts {
    Sums sums[8];

    Parts() {
      for (auto& s : sums) s = Sums(0);
    }
    void add(const FourRows<int16_t>& rows, int32_t column, const int16_t* vector) {
      const Elements v = Elements::load(vector), high = v >> 8, low = v - shiftLeft(high, 8);
      for (int i = 0; i < 4; ++i) {
        const Elements x = Elements::load(rows[i] + column);
        sums[i] += pairDots(x, low);
        sums[4 + i] += pairDots(x, high);
      }
    }
    void addTo(FourSums<int64_t>& total) const {
      int32_t joined[8];
      joinHalvesOfSets<8>(sums).store(joined);
      for (int i = 0; i < 4; ++i) total.of[i] += joined[i] + int64_t{joined[4 + i]} * 256;
    }
  };

  const int16_t* vector_;
  int32_t width_;
  int16_t last_[N];
};

inline FourSums<int64_t> dotFourShortRows(const FourRows<int16_t>& rows, const int16_t* vector, int32_t width) {
  FourSums<int64_t> total{};
  for (int32_t c = 0; c < width; ++c) {
    for (int i = 0; i < 4; ++i) total.of[i] += static_cast<int32_t>(rows[i][c]) * vector[c];
  }
  return total;
}

template <class Rows, class Result>
void multiplyRows(const Rows& rows, const float* vector, int32_t width, Result* result, int32_t height, RealResult) {
  forFourRows<float>(
      rows, height, [=](const auto& four) { return dotFourRows(four, vector, width); }, result, [](float sum) { return sum; });
}

template <class Rows, class Result, class Finish>
void multiplyRows(const Rows& rows, const int32_t* vector, int32_t width, Result* result, int32_t height, const Finish& finish) {
  forFourRows<int32_t>(
      rows, height, [=](const auto& four) { return dotFourRows(four, vector, width); }, result, finish);
}

template <class Rows, class Result, class Finish>
void multiplyRows(const Rows& rows, const int16_t* vector, int32_t width, Result* result, int32_t height, const Finish& finish) {
  constexpr int kWide = kNativeLanes<int16_t>;
  if (width >= kWide) return forFourRows<int16_t>(rows, height, ExactDots<kWide>(vector, width), result, finish);
  if (width >= 8) return forFourRows<int16_t>(rows, height, ExactDots<8>(vector, width), result, finish);
  forFourRows<int16_t>(
      rows, height, [=](const auto& four) { return dotFourShortRows(four, vector, width); }, result, finish);
}

// ---- A vector times columns ----

template <class Rows>
void multiplyColumns(const float* vector, const Rows& rows, int32_t height, float* result, int32_t width, RealResult) {
  coverColumnsInTiles<float>(width, height, sizeof(float), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<float, n>;
    L sum = first > 0 ? L::load(result + c) : L(0.0F);
    for (int32_t r = first; r < end; ++r) sum += L(vector[r]) * L::load(rows[r] + c);
    sum.store(result + c);
  });
}

template <class T, class Rows, class Result, class Finish>
void multiplyColumnsInDouble(const T* vector, const Rows& rows, int32_t height, Result* result, int32_t width,
                             const Finish& finish) {
  coverColumns<double>(width, [&](int32_t c, auto n) {
    using L = Lanes<double, n>;
    L sum(0.0);
    for (int32_t r = 0; r < height; ++r) sum += L(static_cast<double>(vector[r])) * loadAs<double, n>(rows[r] + c);
    double sums[n];
    sum.store(sums);
    for (int i = 0; i < n; ++i) result[c + i] = finish(sums[i]);
  });
}

template <class Rows, class Result, class Finish>
void multiplyColumns(const int32_t* vector, const Rows& rows, int32_t height, Result* result, int32_t width, const Finish& finish) {
  multiplyColumnsInDouble(vector, rows, height, result, width, finish);
}

// N columns of 16-bit data from `column` on; two rows at a time, so that a pair of products is one step.
template <int N, class Rows>
inline void exactColumnDots(const int16_t* vector, const Rows& rows, int32_t height, int32_t column, int64_t* total) {
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<int32_t, N / 2>;
  constexpr int32_t kPiece = 128;  // rows: 64 pairs of x l stay below 2^31
  const auto pair = [](int a, int b) {
    return std::bit_cast<Elements>(
        Lanes<int32_t, N / 2>(static_cast<int32_t>(static_cast<uint32_t>(a & 0xFFFF) | static_cast<uint32_t>(b) << 16)));
  };
  std::fill_n(total, N, int64_t{0});
  for (int32_t first = 0; first < height; first += kPiece) {
    const int32_t end = first + std::min(height - first, kPiece);
    Sums sums[4] = {Sums(0), Sums(0), Sums(0), Sums(0)};  // of x l, of x h: lower and upper columns
    for (int32_t r = first; r < end; r += 2) {
      const bool both = r + 1 < end;
      const Elements a = Elements::load(rows[r] + column), b = both ? Elements::load(rows[r + 1] + column) : Elements(0);
      const Elements lower = interleaveLower(a, b), upper = interleaveUpper(a, b);
      const int v0 = vector[r], v1 = both ? vector[r + 1] : 0;
      const Elements low = pair(v0 & 255, v1 & 255), high = pair(v0 >> 8, v1 >> 8);
      sums[0] += pairDots(lower, low);
      sums[1] += pairDots(upper, low);
      sums[2] += pairDots(lower, high);
      sums[3] += pairDots(upper, high);
    }
    int32_t part[2 * N];
    for (int i = 0; i < 4; ++i) sums[i].store(part + i * (N / 2));
    for (int i = 0; i < N; ++i) total[i] += part[i] + int64_t{part[N + i]} * 256;
  }
}

// Below 2^53 a sum in double is exact, so whole numbers give the same.
inline constexpr int32_t kExactRows = 1 << 23;

template <class Rows, class Result, class Finish>
void multiplyColumns(const int16_t* vector, const Rows& rows, int32_t height, Result* result, int32_t width, const Finish& finish) {
  const auto exactly = [&]<int N>(LaneCount<N>) {
    for (int32_t c = 0; c < width; c += N) {
      const int32_t column = std::min(c, width - N);  // the last block may overlap the one before it
      int64_t total[N];
      exactColumnDots<N>(vector, rows, height, column, total);
      for (int i = 0; i < N; ++i) result[column + i] = finish(static_cast<double>(total[i]));
    }
  };
  if (width < 8 || height > kExactRows) return multiplyColumnsInDouble(vector, rows, height, result, width, finish);
  if (width >= 2 * kNativeLanes<int16_t>) return exactly(LaneCount<kNativeLanes<int16_t>>());
  exactly(LaneCount<8>());
}

// ---- Family bodies ----

template <class Rows, class T, class Finish>
QorStatus matVec(Rows rows, const T* vector, int32_t width, typename Finish::Result* result, int32_t height, const Finish& finish) {
  if (QorStatus bad = Checks().null(rows, vector, result).size(height, width).stride(rows, width)) return bad;
  multiplyRows(rows, vector, width, result, height, finish);
  return qorStatusOk;
}

template <class Rows, class T, class Finish>
QorStatus vecMat(const T* vector, Rows rows, int32_t height, typename Finish::Result* result, int32_t width, const Finish& finish) {
  if (QorStatus bad = Checks().null(vector, rows, result).size(height, width).stride(rows, width)) return bad;
  multiplyColumns(vector, rows, height, result, width, finish);
  return qorStatusOk;
}

}  // namespace qorsr
