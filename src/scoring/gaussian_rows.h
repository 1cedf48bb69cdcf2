// What a Gaussian scorer reads: feature vectors, means and variances, each a matrix or one row that serves every score.
//
// A scorer forms one quadratic sum for each r: over x[r], m[r] and v[r]. Block scorers have rows of x and one Gaussian, mixture
// scorers one x and rows of Gaussians, single-frame scorers one of each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/checks.h"
#include "frame/rows.h"

namespace qorsr {

// One row for every r.
template <class T>
struct SharedRow {
  const T* row;

  const T* operator[](std::ptrdiff_t) const { return row; }
};
template <class T>
SharedRow(const T*) -> SharedRow<T>;

template <class Rows>
inline constexpr bool kIsShared = false;
template <class T>
inline constexpr bool kIsShared<SharedRow<T>> = true;

// The variance of an identity covariance: nothing to read.
struct UnitRow {
  friend UnitRow operator+(UnitRow, std::ptrdiff_t) { return {}; }
};
struct UnitRows {
  UnitRow operator[](std::ptrdiff_t) const { return {}; }
};

// A row of variances that are divided by, not multiplied with.
template <class T>
struct DivisorRow {
  const T* row;

  friend DivisorRow operator+(DivisorRow a, std::ptrdiff_t offset) { return {a.row + offset}; }
};
template <class T>
struct DivisorRows {
  const T* row;

  DivisorRow<T> operator[](std::ptrdiff_t) const { return {row}; }
};
template <class T>
DivisorRows(const T*) -> DivisorRows<T>;

template <class T>
bool isNull(const SharedRow<T>& rows) {
  return rows.row == nullptr;
}
inline bool isNull(const UnitRows&) { return false; }
template <class T>
bool isNull(const DivisorRows<T>& rows) {
  return rows.row == nullptr;
}

// Means and variances, or inverse variances, of one Gaussian or many.
template <class Means, class Variances>
struct Gaussians {
  Means mean;
  Variances variance;
};
template <class Means, class Variances>
Gaussians(Means, Variances) -> Gaussians<Means, Variances>;

// One Gaussian for every r.
template <class T, class V>
auto diagonal(const T* mean, const V* variance) {
  return Gaussians{SharedRow{mean}, SharedRow{variance}};
}
template <class T>
auto identity(const T* mean) {
  return Gaussians{SharedRow{mean}, UnitRows{}};
}

// Rows of Gaussians, with inverse variances or without.
template <class T>
auto stridedGaussians(const T* means, const T* variances, int32_t stride) {
  return Gaussians{strided(means, stride), strided(variances, stride)};
}
template <class T>
auto stridedGaussians(const T* means, int32_t stride) {
  return Gaussians{strided(means, stride), UnitRows{}};
}
template <class T>
auto listedGaussians(const T* const* means, const T* const* variances) {
  return Gaussians{listed(means), listed(variances)};
}
template <class T>
auto listedGaussians(const T* const* means) {
  return Gaussians{listed(means), UnitRows{}};
}

// Row pointers r to r + R - 1 of a matrix, or of a row that serves them all. Strided rows are stepped through: one multiplication a
// tile, and nothing for a compiler to gather into vectors.
template <class Row, int R>
struct RowPointers {
  Row row[R];

  Row operator[](int i) const { return row[i]; }
};
template <int R, class Rows>
inline auto takeRows(const Rows& rows, std::ptrdiff_t r) {
  RowPointers<std::remove_cvref_t<decltype(rows[0])>, R> p;
  p.row[0] = rows[r];
  for (int i = 1; i < R; ++i) {
    if constexpr (requires { rows.stride; }) {
      p.row[i] = p.row[i - 1] + rows.stride;
    } else {
      p.row[i] = rows[r + i];
    }
  }
  return p;
}

// The rows behind the first `count`.
template <class T>
StridedRows<T> skipRows(const StridedRows<T>& rows, std::ptrdiff_t count) {
  return {rows[count], rows.stride};
}
template <class T>
ListedRows<T> skipRows(const ListedRows<T>& rows, std::ptrdiff_t count) {
  return {rows.list + count};
}
template <class T>
SharedRow<T> skipRows(const SharedRow<T>& rows, std::ptrdiff_t) {
  return rows;
}
inline UnitRows skipRows(const UnitRows& rows, std::ptrdiff_t) { return rows; }

}  // namespace qorsr
