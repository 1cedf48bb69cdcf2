// Dynamic time warping of two sequences of feature vectors.
//
//   D(i, j) = min(D(i-1, j), D(i-1, j-1), D(i-1, j-2)) + d(i, j)      i: row of the longer sequence, j: row of the shorter one
//
// d is the Euclidean distance of two rows. Cells are independent within a column, so a column is computed several cells at a time.
// Minimum before sum and sum before minimum give the same bits, since rounding is monotonic. A minimum never takes a NaN.
//
//   Widths 1 to 13: d = sqrt of the float sum of squares, added in pairs of elements; the shorter sequence is transposed first, so
//   that neighbouring cells are neighbours in memory, and the distances of a column go from registers into its recursion.
//   Wider rows: squares are rounded to float and summed in four lanes of doubles over blocks of eight elements (element e in lane e
//   mod 4), lanes joined by halves, the rest added one by one; the root is taken in double. Required: the threshold is visible.
//
// Only the active cells of a column hold values. The cells around them, which the next column may read, hold infinity.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>
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
inline constexpr int kMostCells = 16;  // cells of the widest register

inline constexpr int kCells = kNativeLanes<float>;
inline constexpr int kBlock = 4;  // registers of a column that are computed at a time
inline constexpr int kBlockCells = kBlock * kCells;
using Cells = Lanes<float, kCells>;

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
// either side become infinite, as many as one step of the next column reads. `local.at<P>(j, d)` gives P registers of d from j on.
template <class Local>
[[gnu::always_inline]] inline float advance(const Local& local, const float* previous, float* current, ActiveCells active) {
  const Cells unreachable(kInfinity);
  Cells least = unreachable;
  const auto cells = [&](int64_t j, const Cells& d) {
    const Cells best = min(Cells::load(previous + j - 1), min(Cells::load(previous + j - 2), unreachable));
    const Cells value = min(Cells::load(previous + j), best) + d;
    value.store(current + j);
    least = min(value, least);
  };
  unreachable.store(current + active.first - kCells);
  int64_t j = active.first;
  for (; j < active.end - kBlockCells; j += kBlockCells) {
    Cells d[kBlock];
    local.template at<kBlock>(j, d);
    for (int p = 0; p < kBlock; ++p) cells(j + p * kCells, d[p]);
  }
  const auto last = [&]<int P>(std::integral_constant<int, P>) {
    Cells d[P];
    local.template at<P>(j, d);
    d[P - 1] += Cells::load(kBeyond.of + kMostCells - (active.end - j - (P - 1) * kCells));
    for (int p = 0; p < P; ++p) cells(j + p * kCells, d[p]);
  };
  const int64_t left = active.end - j;
  if (left <= kCells) {
    last(std::integral_constant<int, 1>());
  } else if (left <= 2 * kCells) {
    last(std::integral_constant<int, 2>());
  } else if (left <= 3 * kCells) {
    last(std::integral_constant<int, 3>());
  } else {
    last(std::integral_constant<int, 4>());
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

// ---- Local distances ----
//
// step: one column, the distances of the rows of the shorter sequence to `row` of the longer one, and the recursion.

// W elements a row, W known to the compiler.
template <int W>
class NarrowDistances {
 public:
  static int64_t areaElements(int32_t rowCount) { return W * pitch(rowCount); }

  // Transposes the rows of the shorter sequence into `area`; what is computed beyond the last row is not used.
  template <class Rows>
  NarrowDistances(const Rows& rows, int32_t rowCount, int32_t /*width*/, float* area) : area_(area), pitch_(pitch(rowCount)) {
    int32_t j = 0;
    for (; j <= rowCount - 4; j += 4) transposeFour(rows[j], rows[j + 1], rows[j + 2], rows[j + 3], area + j);
    for (; j < rowCount; ++j) {
      const float* row = rows[j];
      for (int e = 0; e < W; ++e) area[e * pitch_ + j] = row[e];
    }
    for (int e = 0; e < W; ++e) std::fill_n(area + e * pitch_ + rowCount, kMostCells, 0.0F);
  }

  [[gnu::noinline]] float step(const float* row, const float* previous, float* current, ActiveCells active) const {
    return advance(Column{area_, pitch_, row}, previous, current, active);
  }

 private:
  struct Column {
    const float* area;
    int64_t pitch;
    const float* row;

    // Squares are added in pairs of elements: ((q0 + q1) + (q2 + q3)) + ...
    template <int P>
    [[gnu::always_inline]] void at(int64_t j, Cells* d) const {
      squares<P>(0, j, d);
      if constexpr (W > 1) addSquares<P>(1, j, d);
#pragma GCC unroll 1  // unrolled, the loads are scheduled early and spill
      for (int e = 2; e < W - 1; e += 2) {
        Cells pair[P];
        squares<P>(e, j, pair);
        addSquares<P>(e + 1, j, pair);
        for (int p = 0; p < P; ++p) d[p] += pair[p];
      }
      if constexpr (W > 1 && W % 2 == 1) addSquares<P>(W - 1, j, d);
      for (int p = 0; p < P; ++p) d[p] = sqrt(d[p]);
    }

    template <int P>
    [[gnu::always_inline]] void squares(int e, int64_t j, Cells* q) const {
      const Cells y(row[e]);
      for (int p = 0; p < P; ++p) {
        const Cells difference = Cells::load(area + e * pitch + j + p * kCells) - y;
        q[p] = difference * difference;
      }
    }
    template <int P>
    [[gnu::always_inline]] void addSquares(int e, int64_t j, Cells* sum) const {
      Cells q[P];
      squares<P>(e, j, q);
      for (int p = 0; p < P; ++p) sum[p] += q[p];
    }
  };

  static int64_t pitch(int32_t rowCount) { return int64_t{rowCount} + kMostCells; }

  void transposeFour(const float* a, const float* b, const float* c, const float* d, float* area) const {
    using Four = Lanes<float, 4>;
    int e = 0;
    for (; e <= W - 4; e += 4) {
      const Transposed turned = transposed(Four::load(a + e), Four::load(b + e), Four::load(c + e), Four::load(d + e));
      for (int k = 0; k < 4; ++k) turned.lane[k].store(area + (e + k) * pitch_);
    }
    for (; e < W; ++e) Four::of(a[e], b[e], c[e], d[e]).store(area + e * pitch_);
  }

  const float* area_;
  int64_t pitch_;
};

// Rows of any width, summed in double.
template <class Rows>
class WideDistances {
 public:
  static int64_t areaElements(int32_t rowCount) { return int64_t{rowCount} + kMostCells; }

  WideDistances(const Rows& rows, int32_t rowCount, int32_t width, float* area)
      : rows_(rows), last_(rowCount - 1), width_(width), area_(area) {
    std::fill_n(area, areaElements(rowCount), 0.0F);
  }

  [[gnu::noinline]] float step(const float* row, const float* previous, float* current, ActiveCells active) const {
    for (int64_t j = active.first; j < active.end; j += 4) {
      const float* rows[4];
      for (int k = 0; k < 4; ++k) rows[k] = rows_[std::min<int64_t>(j + k, last_)];
      four(rows, row).store(area_ + j);
    }
    return advance(Column{area_}, previous, current, active);
  }

 private:
  using Four = Lanes<float, 4>;

  struct Column {
    const float* distances;

    template <int P>
    void at(int64_t j, Cells* d) const {
      for (int p = 0; p < P; ++p) d[p] = Cells::load(distances + j + p * kCells);
    }
  };

  // The distances of four rows to one.
  Four four(const float* const* rows, const float* y) const {
    Lanes<double, 4> lanes[4];
    const auto eight = [&](int k, int32_t c, const Lanes<double, 4>& sum) {
      const auto d = Lanes<float, 8>::load(rows[k] + c) - Lanes<float, 8>::load(y + c);
      const Lanes<double, 8> squares = as<double>(d * d);
      return sum + lowerHalf(squares) + upperHalf(squares);
    };
    for (int k = 0; k < 4; ++k) lanes[k] = eight(k, 0, Lanes<double, 4>(0.0));
    int32_t c = 8;
    for (; c <= width_ - 8; c += 8) {
      for (int k = 0; k < 4; ++k) lanes[k] = eight(k, c, lanes[k]);
    }
    Lanes<double, 4> sums = joinHalves(lanes[0], lanes[1], lanes[2], lanes[3]);
    const auto turned = [&](int32_t at) {
      return transposed(Four::load(rows[0] + at), Four::load(rows[1] + at), Four::load(rows[2] + at), Four::load(rows[3] + at));
    };
    const auto add = [&](const Four& x, int32_t at) {
      const Four d = x - Four(y[at]);
      sums += as<double>(d * d);
    };
    if (c <= width_ - 4) {
      const Transposed four = turned(c);
      for (int k = 0; k < 4; ++k) add(four.lane[k], c + k);
      c += 4;
    }
    if (c < width_) {
      const Transposed last = turned(width_ - 4);
      if (c <= width_ - 3) add(last.lane[1], width_ - 3);
      if (c <= width_ - 2) add(last.lane[2], width_ - 2);
      add(last.lane[3], width_ - 1);
    }
    return as<float>(sqrt(sums));
  }

  Rows rows_;
  int64_t last_;
  int32_t width_;
  float* area_;
};

// ---- Alignment ----

// Two columns of accumulated distances, with kMostCells of room on either side.
struct WarpColumns {
  float *previous, *current;

  static int64_t pitch(int64_t cells) { return (cells + 3 * kMostCells - 1) / kMostCells * kMostCells; }
  static int64_t areaElements(int64_t cells) { return 2 * pitch(cells); }

  WarpColumns(float* area, int64_t cells) : previous(area + kMostCells), current(previous + pitch(cells)) {
    std::fill_n(area, areaElements(cells), 0.0F);
  }
};

template <class Distances, class Rows>
float warp(const Distances& distances, const Rows& longer, const WarpBand& band, float beam, WarpColumns columns) {
  ActiveCells active{0, band.delta + 1};
  // Every cell of the first column is a free start: the column of zeros stands in front of it. It is not pruned.
  distances.step(longer[0], columns.previous, columns.current, active);
  beam = (beam > 0.0F ? beam : 0.0F) + std::numeric_limits<float>::epsilon();
  float least = kUnreachableEnd;  // required: also the distance of two sequences of one row, which are not compared
  for (int64_t i = 1; i < band.longer; ++i) {
    active = {std::max(active.first, band.lower(i)), std::min(active.end + 2, band.upper(i) + 1)};
    if (active.end <= active.first) return kUnreachableEnd;
    std::swap(columns.previous, columns.current);
    least = distances.step(longer[i], columns.previous, columns.current, active);
    if (least >= kUnreachableEnd) return least;
    active = prune(columns.current, active, beam + least);
  }
  return least;
}

// ---- Family bodies ----

// The working storage stands on the stack while two columns and two bounds a row are at most 512 elements, each part rounded to
// fours; beyond, it is allocated. Only a shorter sequence of up to 124 rows meets the limit.
inline constexpr int64_t kStackElements = 512;
inline constexpr int kStackRows = 124;
inline constexpr int kStackArea = 2 * (kStackRows + 3 * kMostCells) + kWidestNarrowRow * (kStackRows + kMostCells) + kMostCells;

template <class Distances, class Rows>
QorStatus warpWith(Rows longer, Rows shorter, const WarpBand& band, int32_t width, float* distance, float beam) {
  const auto rowCount = static_cast<int32_t>(band.shorter);
  const int64_t columns = WarpColumns::areaElements(band.shorter), area = columns + Distances::areaElements(rowCount) + kMostCells;
  const bool onStack = 2 * ((band.shorter + 8) / 4 * 4) + 2 * ((band.longer + 3) / 4 * 4) <= kStackElements;
  const Scratch<float, kStackArea> storage(onStack ? area : std::max<int64_t>(area, kStackArea + 1));
  if (!storage) return qorStatusNoMemory;
  float* const base = alignUp(storage.get(), 64);
  const Distances distances(shorter, rowCount, width, base + columns);
  *distance = warp(distances, longer, band, beam, WarpColumns(base, band.shorter));
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
  return convertFloats(&result, distance, 1, kNearestEven, scaleFactor);
}

}  // namespace qorsr
