// Dynamic time warping of two sequences of feature vectors.
//
//   D(i, j) = min(D(i-1, j), D(i-1, j-1), D(i-1, j-2)) + d(i, j)      i: row of the longer sequence, j: row of the shorter one
//
// d is the Euclidean distance of two rows. Cells are independent within a column: the shorter sequence is transposed first, so that
// neighbouring cells are neighbours in memory, and the lanes of a register are cells. Their distances go from registers into the
// recursion. Minimum before sum and sum before minimum give the same bits, since rounding is monotonic. A minimum never takes a NaN.
//
//   Widths 1 to 13: d = sqrt of the float sum of squares, added in pairs of elements.
//   Wider rows: squares are rounded to float and summed in four doubles over blocks of eight elements (element e in sum e mod 4),
//   (s0 + s2) + (s1 + s3), the rest added one by one; the root is taken in double. Required: the threshold is visible.
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
#include "frame/tuning.h"

namespace qorsr {

inline constexpr float kUnreachableEnd = std::numeric_limits<float>::max();  // the distance when no path reaches the end
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr int kWidestFloatRow = 13;
inline constexpr int kMostCells = 16;  // cells of the widest register

inline constexpr int kWarpCells = kNativeLanes<float>;
using WarpCells = Lanes<float, kWarpCells>;

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

// The least of all lanes. Lanes that hold a NaN do not decide unless the last one does.
template <int N>
inline float leastLane(const Lanes<float, N>& a) {
  if constexpr (N == 1) {
    return a.part[0];
  } else {
    return leastLane(min(lowerHalf(a), upperHalf(a)));
  }
}

// current[j] = min(previous[j], previous[j-1], previous[j-2]) + d(j) for the active cells; returns the least of them. Cells on
// either side become infinite, as many as one step of the next column reads. `local.at<P>(j, d)` gives P registers of d from j on,
// P at most Local::kRegisters.
template <class Local>
[[gnu::always_inline]] inline float advance(const Local& local, const float* previous, float* current, ActiveCells active) {
  constexpr int kMost = Local::kRegisters;
  const WarpCells unreachable(kInfinity);
  WarpCells least = unreachable;
  const auto cells = [&](int64_t j, const WarpCells& d) {
    const WarpCells best = min(WarpCells::load(previous + j - 1), min(WarpCells::load(previous + j - 2), unreachable));
    const WarpCells value = min(WarpCells::load(previous + j), best) + d;
    value.store(current + j);
    least = min(value, least);
  };
  unreachable.store(current + active.first - kWarpCells);
  int64_t j = active.first;
  for (; j < active.end - kMost * kWarpCells; j += kMost * kWarpCells) {
    WarpCells d[kMost];
    local.template at<kMost>(j, d);
    for (int p = 0; p < kMost; ++p) cells(j + p * kWarpCells, d[p]);
  }
  const auto last = [&]<int P>(std::integral_constant<int, P>) {
    WarpCells d[P];
    local.template at<P>(j, d);
    d[P - 1] += WarpCells::load(kBeyond.of + kMostCells - (active.end - j - (P - 1) * kWarpCells));
    for (int p = 0; p < P; ++p) cells(j + p * kWarpCells, d[p]);
  };
  if (kMost == 1 || active.end - j <= kWarpCells) {
    last(std::integral_constant<int, 1>());
  } else {
    last(std::integral_constant<int, kMost>());
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

// The shorter sequence transposed: element e of the rows j, j + 1, ... stands at area + e * pitch + j. Behind the last row there are
// zeros, and what is computed of them is not used.
struct TransposedRows {
  const float* area;
  int64_t pitch;

  static int64_t pitchOf(int32_t rowCount) { return int64_t{rowCount} + kMostCells; }

  template <class Rows>
  TransposedRows(const Rows& rows, int32_t rowCount, int32_t width, float* to) : area(to), pitch(pitchOf(rowCount)) {
    using Four = Lanes<float, 4>;
    int32_t j = 0;
    for (; j <= rowCount - 4; j += 4) {
      const float *const a = rows[j], *const b = rows[j + 1], *const c = rows[j + 2], *const d = rows[j + 3];
      int32_t e = 0;
      for (; e <= width - 4; e += 4) {
        const Transposed four = transposed(Four::load(a + e), Four::load(b + e), Four::load(c + e), Four::load(d + e));
        for (int k = 0; k < 4; ++k) four.lane[k].store(to + (e + k) * pitch + j);
      }
      for (; e < width; ++e) Four::of(a[e], b[e], c[e], d[e]).store(to + e * pitch + j);
    }
    for (; j < rowCount; ++j) {
      const float* const row = rows[j];
      for (int32_t e = 0; e < width; ++e) to[e * pitch + j] = row[e];
    }
    for (int32_t e = 0; e < width; ++e) std::fill_n(to + e * pitch + rowCount, kMostCells, 0.0F);
  }
};

// W elements a row, W known to the compiler.
template <int W>
class FloatDistances {
 public:
  static int64_t areaElements(int32_t rowCount, int32_t) { return W * TransposedRows::pitchOf(rowCount); }

  template <class Rows>
  FloatDistances(const Rows& rows, int32_t rowCount, int32_t, float* area) : rows_(rows, rowCount, W, area) {}

  [[gnu::noinline]] float step(const float* row, const float* previous, float* current, ActiveCells active) const {
    return advance(Column{rows_.area, rows_.pitch, row}, previous, current, active);
  }

 private:
  struct Column {
    static constexpr int kRegisters = 2;
    const float* area;
    int64_t pitch;
    const float* row;

    // Squares are added in pairs of elements: ((q0 + q1) + (q2 + q3)) + ...
    template <int P>
    [[gnu::always_inline]] void at(int64_t j, WarpCells* d) const {
      squares<P>(0, j, d);
      if constexpr (W > 1) addSquares<P>(1, j, d);
#pragma GCC unroll 1  // unrolled, the loads are scheduled early and spill: 1.24 at v3 (dtw, 400 and 350 rows of 13)
      for (int e = 2; e < W - 1; e += 2) {
        WarpCells pair[P];
        squares<P>(e, j, pair);
        addSquares<P>(e + 1, j, pair);
        for (int p = 0; p < P; ++p) d[p] += pair[p];
      }
      if constexpr (W > 1 && W % 2 == 1) addSquares<P>(W - 1, j, d);
      for (int p = 0; p < P; ++p) d[p] = sqrt(d[p]);
    }

    template <int P>
    [[gnu::always_inline]] void squares(int e, int64_t j, WarpCells* q) const {
      const WarpCells y(row[e]);
      for (int p = 0; p < P; ++p) {
        const WarpCells difference = WarpCells::load(area + e * pitch + j + p * kWarpCells) - y;
        q[p] = difference * difference;
      }
    }
    template <int P>
    [[gnu::always_inline]] void addSquares(int e, int64_t j, WarpCells* sum) const {
      WarpCells q[P];
      squares<P>(e, j, q);
      for (int p = 0; p < P; ++p) sum[p] += q[p];
    }
  };

  TransposedRows rows_;
};

// Rows of any width, summed in double. Two of the four sums at a time: all would not leave registers to two registers of cells.
class DoubleDistances {
 public:
  static int64_t areaElements(int32_t rowCount, int32_t width) { return width * TransposedRows::pitchOf(rowCount); }

  template <class Rows>
  DoubleDistances(const Rows& rows, int32_t rowCount, int32_t width, float* area)
      : rows_(rows, rowCount, width, area), width_(width) {}

  [[gnu::noinline]] float step(const float* row, const float* previous, float* current, ActiveCells active) const {
    return advance(Column{rows_.area, rows_.pitch, row, width_}, previous, current, active);
  }

 private:
  using Sum = Lanes<double, kWarpCells>;

  struct Column {
    static constexpr int kRegisters = kDoubleWarpRegisters;
    const float* area;
    int64_t pitch;
    const float* row;
    int32_t width;

    template <int P>
    [[gnu::always_inline]] void at(int64_t j, WarpCells* d) const {
      const int32_t whole = width / 8 * 8;
      Sum s0[P], s1[P], s2[P], s3[P];
      for (int p = 0; p < P; ++p) s0[p] = s1[p] = s2[p] = s3[p] = Sum(0.0);
      for (int32_t e = 0; e < whole; e += 4) {
        addSquare<P>(e, j, s0);
        addSquare<P>(e + 2, j, s2);
      }
      for (int p = 0; p < P; ++p) s0[p] += s2[p];
      for (int32_t e = 1; e < whole; e += 4) {
        addSquare<P>(e, j, s1);
        addSquare<P>(e + 2, j, s3);
      }
      for (int p = 0; p < P; ++p) s0[p] += s1[p] + s3[p];
      for (int32_t e = whole; e < width; ++e) addSquare<P>(e, j, s0);
      for (int p = 0; p < P; ++p) d[p] = as<float>(sqrt(s0[p]));
    }

    template <int P>
    [[gnu::always_inline]] void addSquare(int32_t e, int64_t j, Sum* sums) const {
      const WarpCells y(row[e]);
      for (int p = 0; p < P; ++p) {
        const WarpCells difference = WarpCells::load(area + e * pitch + j + p * kWarpCells) - y;
        sums[p] += as<double>(difference * difference);
      }
    }
  };

  TransposedRows rows_;
  int32_t width_;
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
inline constexpr int kStackArea = 2 * (kStackRows + 3 * kMostCells) + kWidestFloatRow * (kStackRows + kMostCells) + kMostCells;

template <class Distances, class Rows>
QorStatus warpWith(Rows longer, Rows shorter, const WarpBand& band, int32_t width, float* distance, float beam) {
  const auto rowCount = static_cast<int32_t>(band.shorter);
  const int64_t columns = WarpColumns::areaElements(band.shorter);
  const int64_t area = columns + Distances::areaElements(rowCount, width) + kMostCells;
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
  if constexpr (W > kWidestFloatRow) {
    return warpWith<DoubleDistances>(longer, shorter, band, width, distance, beam);
  } else {
    if (width == W) return warpWith<FloatDistances<W>>(longer, shorter, band, width, distance, beam);
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
