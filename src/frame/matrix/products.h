// Products of a matrix and a vector.
//
//   matrix times vector: y[r] = sum over c of x[r][c] v[c]      one sum a row
//   vector times matrix: y[c] = sum over r of v[r] x[r][c]      one sum a column
//
// Float rows: groups of 16 elements in 16 lanes, which are joined by halves to four; groups of four in these; up to three last
// elements in lane 0; (l0 + l2) + (l1 + l3). Four rows are taken at a time. Float columns: rows in order, from zero.
// 32-bit data: products and sums in double; rows in two lanes, columns in the order of the rows.
// 16-bit data: the sums are exact.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/environment.h"
#include "frame/lanes.h"
#include "frame/matrix/product_results.h"
#include "frame/matrix/short_products.h"
#include "frame/rows.h"
#include "frame/tuning.h"

namespace qorsr {

// ---- Rows times a vector, four rows at a time ----

// What the columns in groups of 16 add to rows `first` to first + R - 1, joined to four lanes a row.
template <int R>
inline void laneDots(const FourRows<float>& rows, int first, const float* vector, int32_t columns, Lanes<float, 4>* lanes) {
  using Wide = Lanes<float, 16>;
  Wide sums[R];
  for (auto& s : sums) s = Wide(0.0F);
  for (int32_t c = 0; c < columns; c += 16) {
    const Wide v = Wide::load(vector + c);
    for (int i = 0; i < R; ++i) sums[i] += Wide::load(rows[first + i] + c) * v;
  }
  for (int i = 0; i < R; ++i) lanes[i] = joinedTo<4>(sums[i]);
}

inline Lanes<float, 4> dotFourRows(const FourRows<float>& rows, const float* vector, int32_t width) {
  using Group = Lanes<float, 4>;
  Group lanes[4] = {Group(0.0F), Group(0.0F), Group(0.0F), Group(0.0F)};
  int32_t c = width / 16 * 16;
  if (c > 0) {
    for (int i = 0; i < 4; i += kFloatRowsTogether) laneDots<kFloatRowsTogether>(rows, i, vector, c, lanes + i);
  }
  for (; c <= width - 4; c += 4) {
    const Group v = Group::load(vector + c);
    for (int i = 0; i < 4; ++i) lanes[i] += Group::load(rows[i] + c) * v;
  }
  Transposed turned = transposed(lanes[0], lanes[1], lanes[2], lanes[3]);
  for (; c < width; ++c) turned.lane[0] += Group::of(rows[0][c], rows[1][c], rows[2][c], rows[3][c]) * Group(vector[c]);
  return (turned.lane[0] + turned.lane[2]) + (turned.lane[1] + turned.lane[3]);
}

// Two lanes a row; the last element of an odd width goes to lane 0.
inline Lanes<double, 4> dotFourRows(const FourRows<int32_t>& rows, const int32_t* vector, int32_t width) {
  using Pair = Lanes<double, 2>;
  Pair lanes[4] = {Pair(0.0), Pair(0.0), Pair(0.0), Pair(0.0)};
  int32_t c = 0;
  for (; c <= width - 2; c += 2) {
    const Pair v = loadAs<double, 2>(vector + c);
    for (int i = 0; i < 4; ++i) lanes[i] += loadAs<double, 2>(rows[i] + c) * v;
  }
  const auto sum = [&](int i) {
    const double tail = c < width ? static_cast<double>(rows[i][c]) * static_cast<double>(vector[c]) : 0.0;
    return (lowerHalf(lanes[i]).part[0] + tail) + upperHalf(lanes[i]).part[0];  // + 0 changes nothing: a sum from +0 is never -0
  };
  return Lanes<double, 4>::of(sum(0), sum(1), sum(2), sum(3));
}

template <class Rows, class Result>
void multiplyRows(const Rows& rows, const float* vector, int32_t width, Result* result, int32_t height, RealResult) {
  forRowGroups<float, 4>(
      rows, height, [=](const auto& four) { return dotFourRows(four, vector, width); }, result, RealResult());
}

template <class Rows, class Result, class Finish>
QORSR_IN_GUARDED_MODE void multiplyRows(const Rows& rows, const int32_t* vector, int32_t width, Result* result, int32_t height,
                                        const Finish& finish) {
  forRowGroups<int32_t, 4>(
      rows, height, [=](const auto& four) { return dotFourRows(four, vector, width); }, result, finish);
}

template <class Rows, class Result, class Finish>
void multiplyRows(const Rows& rows, const int16_t* vector, int32_t width, Result* result, int32_t height, const Finish& finish) {
  constexpr int kWide = kNativeLanes<int16_t>;
  if (width > kExactColumns) {
    for (int32_t r = 0; r < height; ++r) result[r] = finish.exactly(dotShortRow(rows[r], vector, width));
    return;
  }
  const auto blocksOf = [=, &rows, &finish]<int N>(LaneCount<N>) {
    forRowGroups<int16_t, kSumsTogether>(rows, height, ExactDots<N>(vector, width), result, finish);
  };
  if (width >= kWide / 2) return blocksOf(LaneCount<kWide>());
  if (kWide > 16 && width >= 8) return blocksOf(LaneCount < kWide < 16 ? kWide : 16 > ());
  if (kWide > 8 && width >= 4) return blocksOf(LaneCount<8>());
  forRowGroups<int16_t, 4>(
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

// finish() of any number of sums.
template <int N, class Result, class Finish>
[[gnu::always_inline]] inline void finishAll(const Lanes<double, N>& sums, Result* result, const Finish& finish) {
  if constexpr (N > 4) {
    finishAll(lowerHalf(sums), result, finish);
    finishAll(upperHalf(sums), result + N / 2, finish);
  } else if constexpr (N == 4) {
    finish(sums, result);
  } else {
    double all[4] = {};
    Result results[4];
    sums.store(all);
    finish(Lanes<double, 4>::load(all), results);
    std::copy_n(results, N, result);
  }
}

template <class T, class Rows, class Result, class Finish>
void multiplyColumnsInDouble(const T* vector, const Rows& rows, int32_t height, Result* result, int32_t width,
                             const Finish& finish) {
  coverColumns<double>(width, [&](int32_t c, auto n) {
    using L = Lanes<double, n>;
    L sum(0.0);
    for (int32_t r = 0; r < height; ++r) sum += L(static_cast<double>(vector[r])) * loadAs<double, n>(rows[r] + c);
    finishAll(sum, result + c, finish);
  });
}

template <class Rows, class Result, class Finish>
QORSR_IN_GUARDED_MODE void multiplyColumns(const int32_t* vector, const Rows& rows, int32_t height, Result* result, int32_t width,
                                           const Finish& finish) {
  multiplyColumnsInDouble(vector, rows, height, result, width, finish);
}

// Below 2^53 a sum in double is exact, so whole numbers give the same.
inline constexpr int32_t kExactRows = 1 << 23;

template <class Rows, class Result, class Finish>
QORSR_IN_GUARDED_MODE void multiplyColumns(const int16_t* vector, const Rows& rows, int32_t height, Result* result, int32_t width,
                                           const Finish& finish) {
  if (width >= 8 && height <= SplitPairs::kMost) {
    const SplitPairs v(vector, height);
    return shortColumns<kNativeLanes<int16_t>>(v, rows, height, result, 0, width, finish);
  }
  const auto exactly = [&]<int N>(LaneCount<N>) {
    for (int64_t c = 0; c < width; c += 8 * N) {
      exactColumns<N>(vector, rows, height, result, static_cast<int32_t>(c), width, finish);
    }
  };
  if (width < 8 || height > kExactRows) return multiplyColumnsInDouble(vector, rows, height, result, width, finish);
  if (width >= kNativeLanes<int16_t>) return exactly(LaneCount<kNativeLanes<int16_t>>());
  exactly(LaneCount<8>());
}

// ---- Family bodies ----

template <class Finish, class Work>
void withFinish(const Finish&, const Work& work) {
  if constexpr (Finish::kNeedsNearest) {
    const EnvironmentGuard guard(Rounding::kNearest);
    work();
  } else {
    work();
  }
}

template <class Rows, class T, class Finish>
QorStatus matVec(Rows rows, const T* vector, int32_t width, typename Finish::Result* result, int32_t height, const Finish& finish) {
  if (QorStatus bad = Checks().null(rows, vector, result).size(height, width).stride(rows, width)) return bad;
  withFinish(finish, [&] { multiplyRows(rows, vector, width, result, height, finish); });
  return qorStatusOk;
}

template <class Rows, class T, class Finish>
QorStatus vecMat(const T* vector, Rows rows, int32_t height, typename Finish::Result* result, int32_t width, const Finish& finish) {
  if (QorStatus bad = Checks().null(vector, rows, result).size(height, width).stride(rows, width)) return bad;
  withFinish(finish, [&] { multiplyColumns(vector, rows, height, result, width, finish); });
  return qorStatusOk;
}

}  // namespace qorsr
