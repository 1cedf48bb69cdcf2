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

// Every row edited in place: row[c] = edited(row + c, c, LaneCount<N>).
template <class T, class Rows, class F>
void editRows(const Rows& rows, int32_t height, int32_t width, const F& edited) {
  withWidestBlock<T, kOneRegister<T>>(width, [=](auto lanes) {
    for (int32_t r = 0; r < height; ++r) {
      T* const row = rows[r];
      lastFirst<lanes>(
          width, [=](int32_t c, auto n) { return edited(row + c, c, n); }, [=](int32_t c, const auto& v) { v.store(row + c); });
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
    // Inlined by force: 1.15 to 1.2 times faster at x86-64-v4 (row_edits, NormalizeColumn 16s, 39 and 40 columns).
    editRows<int16_t>(
        rows, height, width, [=](const int16_t* x, int32_t c, auto n) __attribute__((always_inline)) {
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
  const auto total = [&](int32_t c, auto n) {
    auto sums = Lanes<float, n>::load(sum + c);
    for (int32_t r = 0; r < height; ++r) sums += Lanes<float, n>::load(rows[r] + c);
    return sums;
  };
  coverLastFirst<float, kWidestBlock<float>>(width, total, [=](int32_t c, const auto& sums) { sums.store(sum + c); });
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
  const auto added = [=](int32_t i, auto n) {
    using L = Lanes<double, n>;
    return L::load(destination + i) + L::load(source + i) * L(factor);
  };
  coverLastFirst<double>(length, added, [=](int32_t i, const auto& y) { y.store(destination + i); });
  return qorStatusOk;
}

}  // namespace qorsr
