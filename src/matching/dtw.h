// Dynamic time warping of two sequences of feature vectors.
//
//   D(i, j) = min(D(i-1, j), D(i-1, j-1), D(i-1, j-2)) + d(i, j)      i: row of the longer sequence, j: row of the shorter one
//
// d is the Euclidean distance of two rows. Cells are independent within a column, so a column is computed several cells at a time.
// Minimum before sum and sum before minimum give the same bits, since rounding is monotonic. A minimum never takes a NaN.
//
//   Widths 1 to 13: d = sqrt of the float sum of squares, in the order of the elements; the shorter sequence is transposed first,
//   so that neighbouring cells are neighbours in memory.
//   Wider rows: squares are rounded to float and summed in four lanes of doubles over blocks of eight elements (element e in lane e
//   mod 4), lanes joined by halves, the rest added one by one; the root is taken in double. Required: the threshold is visible.
//
// Only the active cells of a column hold values. The cells around them, which the next column may read, hold infinity.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "frame/checks.h"
#include "frame/convert.h"
#include "frame/lanes.h"
#include "frame/memory.h"
#include "frame/rows.h"

namespace qorsr {

inline constexpr float kUnreachableEnd = std::numeric_limits<float>::max();  // the distance when no path reaches the end
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr int kWidestNarrowRow = 13;
inline constexpr int kMostCells = 16;  // cells of a column that any kernel computes at a time

// ---- Local distances: cells j, j + 1, ... of one column ----

// W elements a row, W known to the compiler.
template <int W>
class NarrowDistances {
 public:
  static constexpr int kCells = kNativeBytes == 64 ? 16 : 8;
  using Cells = Lanes<float, kCells>;

  static int64_t areaElements(int32_t rowCount) { return W * pitch(rowCount); }

  // Transposes the rows of the shorter sequence into `area`; what is computed beyond the last row is not used.
  template <class Rows>
  NarrowDistances(const Rows& rows, int32_t rowCount, int32_t /*width*/, float* area) : area_(area), pitch_(pitch(rowCount)) {
    for (int32_t j = 0; j < rowCount; ++j) {
      const float* row = rows[j];
      for (int e = 0; e < W; ++e) area[e * pitch_ + j] = row[e];
    }
    for (int e = 0; e < W; ++e) std::fill_n(area + e * pitch_ + rowCount, kMostCells, 0.0F);
  }

  // The distances to one row of the longer sequence.
  class Column {
   public:
    Column(const NarrowDistances& shorter, const float* row) : area_(shorter.area_), pitch_(shorter.pitch_) {
      for (int e = 0; e < W; ++e) row_[e] = Cells(row[e]);
    }

    Cells at(int64_t j) const {
      Cells sum = square(Cells::load(area_ + j) - row_[0]);
      for (int e = 1; e < W; ++e) sum += square(Cells::load(area_ + e * pitch_ + j) - row_[e]);
      return sqrt(sum);
    }

   private:
    static Cells square(const Cells& x) { return x * x; }

    const float* area_;
    int64_t pitch_;
    Cells row_[W];
  };

 private:
  static int64_t pitch(int32_t rowCount) { return int64_t{rowCount} + kMostCells; }

  const float* area_;
  int64_t pitch_;
};

// Rows of any width, summed in double.
template <class Rows>
class WideDistances {
 public:
  static constexpr int kCells = 4;
  using Cells = Lanes<float, kCells>;

  static int64_t areaElements(int32_t) { return 0; }

  WideDistances(const Rows& rows, int32_t rowCount, int32_t width, float*) : rows_(rows), last_(rowCount - 1), width_(width) {}

  class Column {
   public:
    Column(const WideDistances& shorter, const float* row) : shorter_(shorter), row_(row) {}

    Cells at(int64_t j) const {
      const float* rows[kCells];
      for (int k = 0; k < kCells; ++k) rows[k] = shorter_.rows_[std::min<int64_t>(j + k, shorter_.last_)];
      Lanes<double, 4> lanes[kCells];
      for (auto& l : lanes) l = Lanes<double, 4>(0.0);
      int32_t c = 0;
      for (; c <= shorter_.width_ - 8; c += 8) {
        const auto y0 = Lanes<float, 4>::load(row_ + c), y1 = Lanes<float, 4>::load(row_ + c + 4);
        for (int k = 0; k < kCells; ++k) {
          const auto d0 = Lanes<float, 4>::load(rows[k] + c) - y0, d1 = Lanes<float, 4>::load(rows[k] + c + 4) - y1;
          lanes[k] += widen(d0 * d0);
          lanes[k] += widen(d1 * d1);
        }
      }
      double sums[kCells];
      for (int k = 0; k < kCells; ++k) {
        sums[k] = joinHalves(lanes[k]);
        for (int32_t e = c; e < shorter_.width_; ++e) {
          const float d = rows[k][e] - row_[e];
          sums[k] += static_cast<double>(d * d);
        }
      }
      return narrow(sqrt(Lanes<double, kCells>::load(sums)));
    }

   private:
    const WideDistances& shorter_;
    const float* row_;
  };

 private:
  Rows rows_;
  int64_t last_;
  int32_t width_;
};

// ---- Search region ----

// The parallelogram of slopes 2 and 1/2, moved outwards by delta. Column i holds cells lower(i) to upper(i).
struct WarpBand {
  int64_t longer, shorter, delta;

  int64_t upper(int64_t i) const {
    const int64_t bound = 3 * i < 2 * shorter - longer ? delta + 2 * i : shorter + delta + ((i - longer - 1) >> 1);
    return std::min(bound, shorter - 1);
  }
  int64_t lower(int64_t i) const {
    const int64_t bound = 3 * i > 4 * longer - 2 * shorter - 2 ? shorter - 2 * longer - delta + 2 * i + 1 : (i >> 1) - delta;
    return std::max<int64_t>(bound, 0);
  }
};

// The active cells of a column: first to end - 1.
struct ActiveCells {
  int64_t first, end;
};

// ---- Recursion ----

// Loaded from element kMostCells - n on and added to a block of cells: zero to the first n, infinity to those behind them.
inline constexpr struct Beyond {
  float of[2 * kMostCells] = {};
  constexpr Beyond() { std::fill_n(of + kMostCells, kMostCells, kInfinity); }
} kBeyond;

// current[j] = min(previous[j], previous[j-1], previous[j-2]) + d(j) for the active cells; returns the least of them. Cells on
// either side are set to infinity, as many as one step of the next column reads.
template <class Column>
inline float advance(const Column& distances, const float* previous, float* current, ActiveCells active) {
  using Cells = decltype(distances.at(0));
  constexpr int kCells = static_cast<int>(sizeof(Cells) / sizeof(float));
  const Cells unreachable(kInfinity);
  const auto cells = [&](int64_t j) {
    const Cells best = min(Cells::load(previous + j - 2), unreachable);
    return min(Cells::load(previous + j), min(Cells::load(previous + j - 1), best)) + distances.at(j);
  };
  Cells least = unreachable;
  unreachable.store(current + active.first - kCells);
  int64_t j = active.first;
  for (; j <= active.end - kCells; j += kCells) {
    const Cells value = cells(j);
    value.store(current + j);
    least = min(value, least);
  }
  if (j < active.end) {
    const Cells value = cells(j) + Cells::load(kBeyond.of + kMostCells - (active.end - j));
    value.store(current + j);
    least = min(value, least);
  }
  unreachable.store(current + active.end);
  return leastLane(least);
}

// Drops cells above the limit, from the top, then from the bottom; one cell always stays.
inline ActiveCells prune(float* column, ActiveCells active, float limit) {
  while (active.end - 1 > active.first && column[active.end - 1] > limit) column[--active.end] = kInfinity;
  while (active.first < active.end - 1 && column[active.first] > limit) column[active.first++] = kInfinity;
  return active;
}

// `previous` and `current` hold a column each, with kMostCells of room on either side.
template <class Distances, class Rows>
float warp(const Distances& distances, const Rows& longer, const WarpBand& band, float beam, float* previous, float* current) {
  using Column = typename Distances::Column;
  ActiveCells active{0, band.delta + 1};
  // Every cell of the first column is a free start: a column of zeros stands in front of it. It is not pruned.
  std::fill_n(previous - kMostCells, band.shorter + 2 * kMostCells, 0.0F);
  advance(Column(distances, longer[0]), previous, current, active);
  beam = (beam > 0.0F ? beam : 0.0F) + std::numeric_limits<float>::epsilon();
  float least = kUnreachableEnd;  // required: also the distance of two sequences of one row, which are not compared
  for (int64_t i = 1; i < band.longer; ++i) {
    std::swap(previous, current);
    active = {std::max(active.first, band.lower(i)), std::min(active.end + 2, band.upper(i) + 1)};
    if (active.end <= active.first) return kUnreachableEnd;
    least = advance(Column(distances, longer[i]), previous, current, active);
    if (least >= kUnreachableEnd) return least;
    active = prune(current, active, beam + least);
  }
  return least;
}

// ---- Family bodies ----

// The working storage stands on the stack while two columns and two bounds a row are at most 512 elements, each part rounded to
// fours; beyond, it is allocated. Only a shorter sequence of up to 124 rows meets the limit.
inline constexpr int64_t kStackElements = 512;
inline constexpr int kStackRows = 124;
inline constexpr int kStackArea = 2 * (kStackRows + 2 * kMostCells) + kWidestNarrowRow * (kStackRows + kMostCells);

template <class Distances, class Rows>
QorStatus warpWith(Rows longer, Rows shorter, const WarpBand& band, int32_t width, float* distance, float beam) {
  const auto rowCount = static_cast<int32_t>(band.shorter);
  const int64_t column = band.shorter + 2 * kMostCells, area = 2 * column + Distances::areaElements(rowCount);
  const bool onStack = 2 * ((band.shorter + 8) / 4 * 4) + 2 * ((band.longer + 3) / 4 * 4) <= kStackElements;
  const Scratch<float, kStackArea> storage(onStack ? area : std::max<int64_t>(area, kStackArea + 1));
  if (!storage) return qorStatusNoMemory;
  float* const previous = storage.get() + kMostCells;
  const Distances distances(shorter, rowCount, width, storage.get() + 2 * column);
  *distance = warp(distances, longer, band, beam, previous, previous + column);
  return qorStatusOk;
}

// Calls body for the distances of the width: one form for each of 1 to 13, one for all that are wider.
template <class Rows, int W = 1>
QorStatus warpOrdered(Rows longer, Rows shorter, const WarpBand& band, int32_t width, float* distance, float beam) {
  if constexpr (W > kWidestNarrowRow) {
    return warpWith<WideDistances<Rows>>(longer, shorter, band, width, distance, beam);
  } else {
    if (width == W) return warpWith<NarrowDistances<W>>(longer, shorter, band, width, distance, beam);
    return warpOrdered<Rows, W + 1>(longer, shorter, band, width, distance, beam);
  }
}

// Whether the stride holds a row. Required: in this family a stride below the width is a fault of size.
template <class T>
bool holdsRow(const StridedRows<T>& rows, int32_t width) {
  return rows.stride >= width;
}
template <class T>
bool holdsRow(const ListedRows<T>&, int32_t) {
  return true;
}

template <class Rows, class Distance>
QorStatus checkSequences(const Rows& first, int32_t firstLength, const Rows& second, int32_t secondLength, int32_t width,
                         const Distance* distance) {
  return Checks()
      .null(first, second, distance)
      .size(firstLength, secondLength, width)
      .require(holdsRow(first, width) && holdsRow(second, width), qorStatusBadSize);
}

template <class Rows>
QorStatus warpSequences(Rows first, int32_t firstLength, Rows second, int32_t secondLength, int32_t width, float* distance,
                        int32_t delta, float beam) {
  if (QorStatus bad = checkSequences(first, firstLength, second, secondLength, width, distance)) return bad;
  const bool swapped = firstLength < secondLength;
  const int32_t longer = std::max(firstLength, secondLength), shorter = std::min(firstLength, secondLength);
  if (delta < 0) {  // no free start at all
    *distance = kUnreachableEnd;
    return qorStatusOk;
  }
  const WarpBand band{longer, shorter, std::min(delta, shorter - 1)};
  return warpOrdered(swapped ? second : first, swapped ? first : second, band, width, distance, beam);
}

template <class Rows>
void copyAsFloat(const Rows& rows, int32_t rowCount, int32_t width, float* copy) {
  for (int32_t r = 0; r < rowCount; ++r, copy += width) {
    const auto* row = rows[r];
    for (int32_t c = 0; c < width; ++c) copy[c] = static_cast<float>(row[c]);
  }
}

template <class Rows>
QorStatus warpIntegers(Rows first, int32_t firstLength, Rows second, int32_t secondLength, int32_t width, int32_t* distance,
                       int32_t delta, int32_t beam, int32_t scaleFactor) {
  if (QorStatus bad = checkSequences(first, firstLength, second, secondLength, width, distance)) return bad;
  const Scratch<float> firstCopy(int64_t{firstLength} * width), secondCopy(int64_t{secondLength} * width);
  if (!firstCopy || !secondCopy) return qorStatusNoMemory;
  copyAsFloat(first, firstLength, width, firstCopy.get());
  copyAsFloat(second, secondLength, width, secondCopy.get());
  using Copy = StridedRows<const float>;
  float result;
  if (QorStatus bad = warpSequences(Copy{firstCopy.get(), width}, firstLength, Copy{secondCopy.get(), width}, secondLength, width,
                                    &result, delta, static_cast<float>(beam))) {
    return bad;
  }
  return qorConvert_32f32s_Sfs(&result, distance, 1, kNearestEven, scaleFactor);
}

}  // namespace qorsr
