// Edits of rows in place, and sums of rows.
//
//   normalise:  x[r][c] = (x[r][c] - mean[c]) * scale[c]; 16-bit: the exact 32-bit product, shifted without rounding, saturated
//   subtract:   x[r][c] = x[r][c] - row[c]; 16-bit: saturated
//   sums:       sum[c] = sum[c] + x[0][c] + x[1][c] + ...; start + x[i0][c] + x[i1][c] + ...: one row after the other
//   add scaled: y[i] = y[i] + x[i] * factor
//
// Elements are independent of each other, so the width of a block never shows in a result.
#pragma once

#include <cstdint>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Blocks of a row that is edited in place ----

// Calls body(LaneCount<N>) with the widest N up to Most that `width` elements fill; below 128 bits, 1.
template <class T, int Most, class Body>
inline void withRowLanes(int32_t width, const Body& body) {
  if constexpr (Most == 1) {
    body(LaneCount<1>());
  } else {
    if (width >= Most) return body(LaneCount<Most>());
    withRowLanes<T, detail::kNarrower<T, Most>>(width, body);
  }
}

// row[c] = f(row + c, c) in blocks of N; width is at least N. The last block, which may overlap the one before it, is computed
// first and stored last: no element is edited twice.
template <int N, class T, class F>
inline void editRow(T* row, int32_t width, const F& f) {
  const int32_t tail = width - N;
  const Lanes<T, N> last = f(row + tail, tail);
  for (int32_t c = 0; c < tail; c += N) {
    const Lanes<T, N> block = f(row + c, c);
    block.store(row + c);
  }
  last.store(row + tail);
}

// Edits every row with f(pointer, column, LaneCount<N>).
template <class T, class Rows, class F>
void editRows(const Rows& rows, int32_t height, int32_t width, const F& f) {
  withRowLanes<T, kNativeLanes<T>>(width, [&](auto n) {
    for (int32_t r = 0; r < height; ++r) {
      editRow<n>(rows[r], width, [&](const T* x, int32_t c) { return f(x, c, n); });
    }
  });
}

// ---- Family bodies ----

template <class Rows>
QorStatus normalizeColumns(Rows rows, int32_t height, const float* means, const float* scales, int32_t width) {
  if (QorStatus bad = Checks().null(rows, means, scales).size(height, width).stride(rows, width)) return bad;
  editRows<float>(rows, height, width, [=](const float* x, int32_t c, auto n) {
    using L = Lanes<float, n>;
    return (L::load(x) - L::load(means + c)) * L::load(scales + c);
  });
  return qorStatusOk;
}

// A difference of 17 bits times 16 bits always fits 32 bits. What a left shift pushes out is lost before the limit.
template <class Rows>
QorStatus normalizeColumnsScaled(Rows rows, int32_t height, const int16_t* means, const int16_t* scales, int32_t width,
                                 int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(rows, means, scales).size(height, width).stride(rows, width)) return bad;
  const auto normalize = [&](auto shift) {
    editRows<int16_t>(rows, height, width, [=](const int16_t* x, int32_t c, auto n) {
      const auto product = (loadAs<int32_t, n>(x) - loadAs<int32_t, n>(means + c)) * loadAs<int32_t, n>(scales + c);
      return saturated(shift(product));
    });
  };
  const auto magnitude = static_cast<uint32_t>(scaleFactor < 0 ? -static_cast<int64_t>(scaleFactor) : scaleFactor);
  const int count = static_cast<int>(magnitude % 32);
  if (scaleFactor < 0) {
    normalize([=](const auto& product) { return shiftLeft(product, count); });
  } else {
    normalize([=](const auto& product) { return product >> count; });
  }
  return qorStatusOk;
}

template <int N>
inline Lanes<float, N> rowDifference(const Lanes<float, N>& x, const Lanes<float, N>& y) {
  return x - y;
}
template <int N>
inline Lanes<int16_t, N> rowDifference(const Lanes<int16_t, N>& x, const Lanes<int16_t, N>& y) {
  return subtractSaturated(x, y);
}

template <class T, class Rows>
QorStatus subtractRow(const T* row, int32_t width, Rows rows, int32_t height) {
  if (QorStatus bad = Checks().null(row, rows).size(height, width).stride(rows, width)) return bad;
  editRows<T>(rows, height, width,
              [=](const T* x, int32_t c, auto n) { return rowDifference(Lanes<T, n>::load(x), Lanes<T, n>::load(row + c)); });
  return qorStatusOk;
}

template <class Rows>
QorStatus addAllRows(Rows rows, int32_t height, float* sum, int32_t width) {
  if (QorStatus bad = Checks().null(rows, sum).size(height, width).stride(rows, width)) return bad;
  withRowLanes<float, kWidestBlock<float>>(width, [&](auto n) {
    editRow<n>(sum, width, [&](const float* start, int32_t c) {
      auto total = Lanes<float, n>::load(start);
      for (int32_t r = 0; r < height; ++r) total += Lanes<float, n>::load(rows[r] + c);
      return total;
    });
  });
  return qorStatusOk;
}

// Rows chosen by the sums of two index lists.
struct IndexedRows {
  StridedRows<const float> rows;
  const int32_t* first;
  const uint16_t* second;
  int32_t count;

  int64_t index(int32_t i) const { return int64_t{first[i]} + second[i]; }
  const float* operator[](int32_t i) const { return rows[index(i)]; }
  bool allBelow(int32_t height) const {
    for (int32_t i = 0; i < count; ++i) {
      if (index(i) < 0 || index(i) >= height) return false;
    }
    return true;
  }
};

inline QorStatus addIndexedRows(IndexedRows chosen, int32_t height, int32_t offset, float* destination, int32_t width,
                                float start) {
  if (QorStatus bad = Checks()
                          .null(chosen.rows, chosen.first, chosen.second, destination)
                          .size(chosen.count, height, width)
                          .atLeast(0, offset)
                          .stride(chosen.rows, int64_t{offset} + width)
                          .require([&] { return chosen.allBelow(height); }, qorStatusBadSize)) {
    return bad;
  }
  coverColumns<float>(width, [&](int32_t c, auto n) {
    Lanes<float, n> total(start);
    for (int32_t i = 0; i < chosen.count; ++i) total += Lanes<float, n>::load(chosen[i] + offset + c);
    total.store(destination + c);
  });
  return qorStatusOk;
}

inline QorStatus addScaledRow(const double* source, double* destination, int32_t length, double factor) {
  if (QorStatus bad = Checks().null(source, destination).size(length)) return bad;
  withRowLanes<double, kNativeLanes<double>>(length, [&](auto n) {
    using L = Lanes<double, n>;
    editRow<n>(destination, length, [&](const double* y, int32_t i) { return L::load(y) + L::load(source + i) * L(factor); });
  });
  return qorStatusOk;
}

}  // namespace qorsr
