// Means and variances of columns.
//
//   mean = (column sum, rows added in pairs) * r                     r = 1/n
//   var  = (((mean * mean) * -n) + x0^2 + x1^2 + ...) * q            q = 1/(n - 1), the mean given (VarColumn)
//   var  = (sum of squares + (mean * mean) * -n) * q                 the mean formed in the same pass (MeanVarColumn)
//
// There is no floor: rounding may leave a variance slightly below zero. Columns are independent of each other. 16-bit data take one
// of three roads: float sums that are rounded to nearest (strided rows, aligned row pointers); exact 64-bit sums that are truncated
// (row pointers of which one is not on a 16-byte boundary; required); double sums (32-bit results).
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "frame/row_pairs.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Reciprocals: where they are rounded is part of the result ----

inline float reciprocalInDouble(int32_t n) { return static_cast<float>(1.0 / n); }
inline float reciprocalInFloat(int32_t n) { return 1.0F / static_cast<float>(n); }

// ---- Float road ----

template <class Rows>
void meanColumns(const Rows& rows, int32_t height, float* means, int32_t width, float r) {
  coverColumnsInTiles<float>(width, height, sizeof(*rows[0]), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<float, n>;
    const auto row = [&](int32_t i) { return loadAs<float, n>(rows[i] + c); };
    const L sum = sumInPairs(first, end, row, [&] { return L::load(means + c); });
    (end == height ? sum * L(r) : sum).store(means + c);
  });
}

template <class Rows, class Mean>
void varColumns(const Rows& rows, int32_t height, const Mean* means, float* variances, int32_t width, float q) {
  coverColumnsInTiles<float>(width, height, sizeof(*rows[0]), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<float, n>;
    const L mean = loadAs<float, n>(means + c);
    L sum = first > 0 ? L::load(variances + c) : mean * mean * L(-static_cast<float>(height));
    for (int32_t r = first; r < end; ++r) {
      const L x = loadAs<float, n>(rows[r] + c);
      sum += x * x;
    }
    (end == height ? sum * L(q) : sum).store(variances + c);
  });
}

template <class Rows>
void meanVarColumns(const Rows& rows, int32_t height, float* means, float* variances, int32_t width, float r, float q) {
  coverColumnsInTiles<float>(width, height, sizeof(*rows[0]), [&](int32_t c, auto n, int32_t first, int32_t end) {
    using L = Lanes<float, n>;
    const auto terms = [&](int32_t i) {
      const L x = loadAs<float, n>(rows[i] + c);
      return TwoSums<L>{x, x * x};
    };
    TwoSums<L> sums = sumInPairs(first, end, terms, [&] { return TwoSums<L>::load(means + c, variances + c); });
    if (end == height) {
      const L mean = sums.first * L(r);
      sums = {mean, (sums.second + mean * mean * L(-static_cast<float>(height))) * L(q)};
    }
    sums.store(means + c, variances + c);
  });
}

// ---- Exact road of 16-bit data: 64-bit sums, truncation; required where a row pointer is not aligned ----

template <class Rows>
inline int64_t exactSum(const Rows& rows, int32_t height, int32_t column) {
  int64_t sum = 0;
  for (int32_t r = 0; r < height; ++r) sum += rows[r][column];
  return sum;
}

// A variance: truncated to 64 bits, shifted by the scale factor, limited.
inline int16_t truncatedVariance(float variance, int32_t scaleFactor) {
  return saturate<int16_t>(shiftByScale(truncateOrLowest<int64_t>(variance), scaleFactor));
}

template <class Rows>
void meanColumnsExact(const Rows& rows, int32_t height, int16_t* means, int32_t width) {
  const float r = reciprocalInFloat(height);
  for (int32_t c = 0; c < width; ++c) {
    means[c] = saturate<int16_t>(truncateOrLowest<int32_t>(static_cast<float>(exactSum(rows, height, c)) * r));
  }
}

template <class Rows>
void varColumnsExact(const Rows& rows, int32_t height, const int16_t* means, int16_t* variances, int32_t width,
                     int32_t scaleFactor) {
  const float q = reciprocalInDouble(height - 1);
  for (int32_t c = 0; c < width; ++c) {
    int64_t sum = -static_cast<int64_t>(height) * means[c] * means[c];
    for (int32_t r = 0; r < height; ++r) sum += static_cast<int32_t>(rows[r][c]) * rows[r][c];
    variances[c] = truncatedVariance(static_cast<float>(sum) * q, scaleFactor);
  }
}

template <class Rows>
void meanVarColumnsExact(const Rows& rows, int32_t height, int16_t* means, int16_t* variances, int32_t width, int32_t scaleFactor) {
  const float r = reciprocalInFloat(height), q = reciprocalInDouble(height - 1);
  for (int32_t c = 0; c < width; ++c) {
    float squares = 0.0F;
    for (int32_t i = 0; i < height; ++i) squares += static_cast<float>(static_cast<int32_t>(rows[i][c]) * rows[i][c]);
    const float mean = static_cast<float>(exactSum(rows, height, c)) * r;
    means[c] = static_cast<int16_t>(std::clamp(mean, -32768.0F, 32767.0F));
    variances[c] = truncatedVariance((squares - mean * mean * static_cast<float>(height)) * q, scaleFactor);
  }
}

// ---- Double road of 16-bit data ----

// Sums of x and x^2 of a block of columns, as doubles. Below 2^53 every order gives the same bits, so whole numbers may be used.
template <int N>
struct DoubleMoments {
  double sum[N], squares[N];
};

template <int N, class Rows>
inline DoubleMoments<N> momentsInDouble(const Rows& rows, int32_t height, int32_t column) {
  Lanes<double, N> sum(0.0), squares(0.0);
  for (int32_t r = 0; r < height; ++r) {
    const auto x = loadAs<double, N>(rows[r] + column);
    sum += x;
    squares += x * x;
  }
  DoubleMoments<N> m;
  sum.store(m.sum);
  squares.store(m.squares);
  return m;
}

// The heights whose sums of squares stay below 2^53.
inline constexpr int32_t kExactHeight = 1 << 22;

// Adds lanes taken as unsigned: their lower half to sums[0], their upper half to sums[1].
template <int N>
inline void addUnsigned(const Lanes<int32_t, N>& a, Lanes<int64_t, N / 2>* sums) {
  const auto halves = interleaved(a, Lanes<int32_t, N>(0));
  sums[0] += std::bit_cast<Lanes<int64_t, N / 2>>(halves.first);
  sums[1] += std::bit_cast<Lanes<int64_t, N / 2>>(halves.second);
}

// Two rows at a time: a pair of products and its sum fit 32 unsigned bits, a pair of elements 17 signed ones.
template <int N, class Rows>
inline DoubleMoments<N> momentsInIntegers(const Rows& rows, int32_t height, int32_t column) {
  using Elements = Lanes<int16_t, N>;
  using Sums = Lanes<int32_t, N / 2>;
  using Squares = Lanes<int64_t, N / 4>;
  constexpr int32_t kRowsPerFlush = 1 << 14;  // what 32 bits hold of the sums, with room to spare
  const Elements ones(1), zeros(0);
  Squares squares[4] = {Squares(0), Squares(0), Squares(0), Squares(0)};
  int64_t total[N] = {};
  for (const Chunk chunk : chunksOf(height, kRowsPerFlush)) {
    const int32_t end = chunk.first + chunk.count;
    Sums lower(0), upper(0);
    for (int32_t r = chunk.first; r < end; r += 2) {
      const Elements a = Elements::load(rows[r] + column);
      const Elements b = r + 1 < end ? Elements::load(rows[r + 1] + column) : zeros;
      const auto [low, high] = interleaved(a, b);
      lower += pairDots(low, ones);
      upper += pairDots(high, ones);
      addUnsigned(pairDots(low, low), squares);
      addUnsigned(pairDots(high, high), squares + 2);
    }
    int32_t part[N];
    lower.store(part);
    upper.store(part + N / 2);
    for (int i = 0; i < N; ++i) total[i] += part[i];
  }
  int64_t squareTotals[N];
  for (int i = 0; i < 4; ++i) squares[i].store(squareTotals + i * (N / 4));
  DoubleMoments<N> m;
  for (int i = 0; i < N; ++i) {
    m.sum[i] = static_cast<double>(total[i]);
    m.squares[i] = static_cast<double>(squareTotals[i]);
  }
  return m;
}

// Calls finish(column, moments) for blocks that cover all columns.
template <class Rows, class Finish>
void coverDoubleMoments(const Rows& rows, int32_t height, int32_t width, const Finish& finish) {
  const auto inIntegers = [&]<int N>(LaneCount<N>) {
    for (int64_t c = 0; c < width; c += N) {
      const auto column = static_cast<int32_t>(std::min<int64_t>(c, width - N));  // the last block may overlap the one before it
      finish(column, momentsInIntegers<N>(rows, height, column));
    }
  };
  if (height > kExactHeight || width < 8) {
    coverColumns<double>(width, [&](int32_t c, auto n) { finish(c, momentsInDouble<n>(rows, height, c)); });
  } else if (width < 2 * kNativeLanes<int16_t>) {
    inIntegers(LaneCount<8>());
  } else {
    inIntegers(LaneCount<kNativeLanes<int16_t>>());
  }
}

// `q` holds the reciprocal of n - 1 and the power of two of the scale factor. The limited mean is the one in the variance.
template <class Rows, class Mean>
void meanVarColumnsDouble(const Rows& rows, int32_t height, Mean* means, int32_t* variances, int32_t width, double q) {
  const double n = height, r = 1.0 / n;
  coverDoubleMoments(rows, height, width, [&]<int N>(int32_t column, const DoubleMoments<N>& m) {
    for (int i = 0; i < N; ++i) {
      const double mean = std::clamp(m.sum[i] * r, -2147483648.0, 2147483647.0);
      means[column + i] = static_cast<Mean>(limitAndRound<int32_t>(mean));
      variances[column + i] = limitAndRound<int32_t>((m.squares[i] - mean * mean * n) * q);
    }
  });
}

// ---- Family bodies ----

template <class Rows>
QorStatus meanColumn(Rows rows, int32_t height, float* result, int32_t width, float (*reciprocal)(int32_t)) {
  if (QorStatus bad = Checks().stride(rows, width).null(rows, result).size(height, width)) return bad;
  meanColumns(rows, height, result, width, reciprocal(height));
  return qorStatusOk;
}

template <class Rows>
QorStatus varColumn(Rows rows, int32_t height, const float* means, float* result, int32_t width, float (*reciprocal)(int32_t)) {
  if (QorStatus bad = Checks().stride(rows, width).null(rows, means, result).size(width).atLeast(2, height)) return bad;
  varColumns(rows, height, means, result, width, reciprocal(height - 1));
  return qorStatusOk;
}

template <class Rows>
QorStatus meanVarColumn(Rows rows, int32_t height, float* means, float* variances, int32_t width, float (*reciprocal)(int32_t)) {
  if (QorStatus bad = Checks().null(rows, means, variances).atLeast(2, height).size(width).stride(rows, width)) return bad;
  meanVarColumns(rows, height, means, variances, width, reciprocal(height), reciprocalInDouble(height - 1));
  return qorStatusOk;
}

// Whether 16-bit data take the exact road. Strided rows never do.
template <class T>
bool takesExactRoad(const StridedRows<T>&, int32_t) {
  return false;
}
template <class T>
bool takesExactRoad(const ListedRows<T>& rows, int32_t height) {
  return !rowsAligned(rows.list, height);
}

template <class Rows>
QorStatus meanColumn16(Rows rows, int32_t height, int16_t* result, int32_t width) {
  if (QorStatus bad = Checks().stride(rows, width).null(rows, result).size(height, width)) return bad;
  if (takesExactRoad(rows, height)) {
    meanColumnsExact(rows, height, result, width);
    return qorStatusOk;
  }
  Scratch<float> means(width);
  if (!means) return qorStatusNoMemory;
  meanColumns(rows, height, means.get(), width, reciprocalInFloat(height));
  return convertFloats(means.get(), result, width, kNearestEven, 0);
}

template <class Rows>
QorStatus varColumn16(Rows rows, int32_t height, const int16_t* means, int16_t* result, int32_t width, int32_t scaleFactor) {
  if (QorStatus bad = Checks().stride(rows, width).null(rows, means, result).size(width).atLeast(2, height)) return bad;
  if (takesExactRoad(rows, height)) {
    varColumnsExact(rows, height, means, result, width, scaleFactor);
    return qorStatusOk;
  }
  Scratch<float> variances(width);
  if (!variances) return qorStatusNoMemory;
  varColumns(rows, height, means, variances.get(), width, reciprocalInDouble(height - 1));
  return convertFloats(variances.get(), result, width, kNearestEven, scaleFactor);
}

template <class Rows>
QorStatus meanVarColumn16(Rows rows, int32_t height, int16_t* means, int16_t* variances, int32_t width, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(rows, means, variances).atLeast(2, height).size(width).stride(rows, width)) return bad;
  if (takesExactRoad(rows, height)) {
    meanVarColumnsExact(rows, height, means, variances, width, scaleFactor);
    return qorStatusOk;
  }
  Scratch<float> floats(2 * static_cast<int64_t>(width));
  if (!floats) return qorStatusNoMemory;
  float* const floatVariances = floats.get() + width;
  meanVarColumns(rows, height, floats.get(), floatVariances, width, reciprocalInFloat(height), reciprocalInDouble(height - 1));
  convertFloats(floats.get(), means, width, kNearestEven, 0);
  return convertFloats(floatVariances, variances, width, kNearestEven, scaleFactor);
}

// `reciprocal` is 1/(n - 1) in double, already rounded to float where that is required.
template <class Rows, class Mean>
QorStatus meanVarColumn32(Rows rows, int32_t height, Mean* means, int32_t* variances, int32_t width, int32_t scaleFactor,
                          double (*reciprocal)(int32_t)) {
  if (QorStatus bad = Checks().null(rows, means, variances).atLeast(2, height).size(width).stride(rows, width)) return bad;
  meanVarColumnsDouble(rows, height, means, variances, width, twoToMinus<double>(scaleFactor) * reciprocal(height - 1));
  return qorStatusOk;
}

}  // namespace qorsr
