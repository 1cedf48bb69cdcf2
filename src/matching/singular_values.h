// Singular value decomposition A = U diag(w) V' of a matrix of height m and width n, in double.
//
// Householder reduction to bidiagonal form, then implicit-shift QR sweeps. The work is done on copies of A and V whose columns lie
// one after the other (scratch of about n (m + n) doubles); rows in either layout are read once and written once, so the layout,
// the stride and in-place use never show in a result. Sorting permutes the columns as they are written.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "frame/checks.h"
#include "frame/memory.h"
#include "frame/rows.h"
#include "matching/bidiagonal.h"
#include "matching/qr_sweeps.h"

namespace qorsr {

// The scratch of a decomposition, laid out in one block.
struct SvdScratch {
  Columns u, v;
  double *e, *row;
  Rotation* turns;

  static int64_t padded(int32_t height) { return (int64_t{height} + 7) / 8 * 8; }

  // In doubles; beyond 32 bits it is more than can be allocated.
  static int64_t count(int32_t height, int32_t width) {
    const int64_t column = padded(height) + padded(width) + 8;  // of U, V; e, the row, the rotations
    return column > INT32_MAX || width > INT32_MAX / column ? int64_t{INT32_MAX} + 1 : column * width;
  }

  SvdScratch(double* block, int32_t height, int32_t width)
      : u{block, height, width, padded(height)}, v{block + width * u.pitch, width, width, padded(width)} {
    e = v[width];
    row = e + width;
    turns = reinterpret_cast<Rotation*>(row + width);
  }
};

template <class Rows>
void copyIn(const Rows& source, const Columns& columns) {
  for (int32_t r = 0; r < columns.height; ++r) {
    for (int32_t c = 0; c < columns.width; ++c) columns[c][r] = source[r][c];
  }
  for (int32_t c = 0; c < columns.width; ++c) std::fill(columns[c] + columns.height, columns[c] + columns.pitch, 0.0);
}

// Column order[c] becomes column c.
template <class Rows>
void copyOut(const Columns& columns, const int32_t* order, const Rows& destination) {
  for (int32_t r = 0; r < columns.height; ++r) {
    for (int32_t c = 0; c < columns.width; ++c) destination[r][c] = columns[order[c]][r];
  }
}

// Orders w downward by selection and swapping; of equal values the first found is taken. `order` follows.
inline void sortDownward(double* w, int32_t* order, int32_t n) {
  for (int32_t k = 0; k < n; ++k) {
    int32_t best = k;
    for (int32_t i = k + 1; i < n; ++i) {
      if (w[i] > w[best]) best = i;
    }
    std::swap(w[k], w[best]);
    std::swap(order[k], order[best]);
  }
}

enum class Sorting { kNone, kDownward };

template <class Source, class Rows>
QorStatus decompose(const Source& source, const Rows& u, int32_t height, double* w, const Rows& v, int32_t width, int32_t limit,
                    Sorting sorting) {
  Scratch<double> block(SvdScratch::count(height, width));
  if (!block) return qorStatusNoMemory;
  const SvdScratch s(block.get(), height, width);
  copyIn(source, s.u);
  for (int32_t c = 0; c < width; ++c) std::fill(s.v[c], s.v[c] + s.v.pitch, 0.0);

  const double norm = bidiagonalise(s.u, w, s.e, s.row);
  accumulateRight(s.u, s.v, s.e, s.row);
  accumulateLeft(s.u, w);
  const QorStatus status = QrSweeps(s.u, s.v, w, s.e, norm, s.turns).run(limit);

  int32_t* const order = reinterpret_cast<int32_t*>(s.row);
  for (int32_t c = 0; c < width; ++c) order[c] = c;
  if (status == qorStatusOk && sorting == Sorting::kDownward) sortDownward(w, order, width);
  copyOut(s.u, order, u);
  copyOut(s.v, order, v);
  return status;
}

// ---- Family bodies ----

// required: a stride below the width is a bad size here.
inline QorStatus singularValues(const double* source, double* u, int32_t height, double* w, double* v, int32_t width,
                                int32_t stride, int32_t limit, Sorting sorting) {
  if (QorStatus bad = Checks().null(source, u, v, w).size(height, width, limit).atLeast(width, stride)) return bad;
  return decompose(strided(source, stride), strided(u, stride), height, w, strided(v, stride), width, limit, sorting);
}

inline QorStatus singularValues(const double* const* source, double* const* u, int32_t height, double* w, double* const* v,
                                int32_t width, int32_t limit, Sorting sorting) {
  if (QorStatus bad = Checks().null(source, u, v, w).size(height, width, limit)) return bad;
  return decompose(listed(source), listed(u), height, w, listed(v), width, limit, sorting);
}

inline QorStatus rotateColumns(double* const* rows, int32_t width, int32_t height, int32_t first, int32_t second, double c,
                               double s) {
  if (QorStatus bad = Checks().null(rows).size(width, height).index(first, width).index(second, width)) return bad;
  for (int32_t r = 0; r < height; ++r) {
    const double a = rows[r][second], b = rows[r][first];
    rows[r][second] = c * a + s * b;
    rows[r][first] = b * c - a * s;
  }
  return qorStatusOk;
}

}  // namespace qorsr
