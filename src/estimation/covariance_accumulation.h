// Accumulation of a full covariance matrix about a given mean.
//
//   d = row - mean;   S[i][j] += d[i] * d[j] for j <= i, row after row;   at the end S[i][j] *= factor, and S[j][i] = S[i][j]
//
// 16-bit differences are exact; float ones are rounded to float and then widened. Every element of S is a chain of additions of its
// own, in the order of the rows. So rows are taken in runs: the differences of a run stand in scratch, and a tile of S stays in
// registers over all of them. A tile on the diagonal covers elements above it too. What it computes there is overwritten at the
// end.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "frame/rows.h"

namespace qorsr {

inline constexpr int32_t kWidestOnStack = 512;  // the widest row whose scratch stands on the stack (required)
inline constexpr int32_t kLeastRun = 4, kRunElements = kLeastRun * kWidestOnStack;

inline void differences(const int16_t* row, const int16_t* mean, double* d, int32_t width) {
  coverColumns<double>(width, [&](int32_t c, auto n) {
    (loadAs<double, n>(row + c) - loadAs<double, n>(mean + c)).store(d + c);  // exact, as it would be in integers
  });
}
inline void differences(const float* row, const float* mean, double* d, int32_t width) {
  coverColumns<float>(width, [&](int32_t c, auto n) {
    using L = Lanes<float, n>;
    as<double>(L::load(row + c) - L::load(mean + c)).store(d + c);
  });
}

// S[i + k][j .. j + N) for k below I, over a run of `count` rows of differences.
template <int I, int N, class Matrix>
inline void addTile(const double* d, int32_t count, int32_t width, const Matrix& s, int32_t i, int32_t j) {
  using L = Lanes<double, N>;
  L sum[I];
  for (int k = 0; k < I; ++k) sum[k] = L::load(s[i + k] + j);
  for (int32_t r = 0; r < count; ++r, d += width) {
    const L right = L::load(d + j);
    for (int k = 0; k < I; ++k) sum[k] += L(d[i + k]) * right;
  }
  for (int k = 0; k < I; ++k) sum[k].store(s[i + k] + j);
}

// I rows of S, up to their diagonals.
template <int I, class Matrix>
inline void addTileRow(const double* d, int32_t count, int32_t width, const Matrix& s, int32_t i) {
  coverColumnsOnce<double, 2 * kNativeLanes<double>>(i + I, [&](int32_t j, auto n) { addTile<I, n>(d, count, width, s, i, j); });
}

template <class Matrix>
void addRun(const double* d, int32_t count, int32_t width, const Matrix& s) {
  int32_t i = 0;
  for (; i <= width - 4; i += 4) addTileRow<4>(d, count, width, s, i);
  switch (width - i) {
    case 3:
      return addTileRow<3>(d, count, width, s, i);
    case 2:
      return addTileRow<2>(d, count, width, s, i);
    case 1:
      return addTileRow<1>(d, count, width, s, i);
    default:
      return;
  }
}

template <class Matrix>
void scaleAndMirror(const Matrix& s, int32_t width, double factor) {
  for (int32_t i = 0; i < width; ++i) {
    double* const row = s[i];
    coverColumnsOnce<double>(i + 1, [&](int32_t j, auto n) {
      using L = Lanes<double, n>;
      (L::load(row + j) * L(factor)).store(row + j);
    });
  }
  for (int32_t i = 0; i < width; ++i) {
    for (int32_t j = i + 1; j < width; ++j) s[i][j] = s[j][i];
  }
}

template <class Rows, class T, class Matrix>
QorStatus accCovarianceMatrix(Rows rows, int32_t height, const T* mean, Matrix result, int32_t width, double factor) {
  if (QorStatus bad = Checks().null(rows, mean, result).size(height, width).stride(rows, width).stride(result, width)) return bad;
  const int32_t run = std::max(kLeastRun, kRunElements / width);
  Scratch<double, kRunElements> d(int64_t{run} * width);
  if (!d) return qorStatusNoMemory;
  for (const Chunk chunk : chunksOf(height, run)) {
    for (int32_t r = 0; r < chunk.count; ++r) differences(rows[chunk.first + r], mean, d.get() + int64_t{r} * width, width);
    addRun(d.get(), chunk.count, width, result);
  }
  scaleAndMirror(result, width, factor);
  return qorStatusOk;
}

}  // namespace qorsr
