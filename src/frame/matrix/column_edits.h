// Columns copied, gathered, padded, and edited one at a time.
//
//   copy:     y[r][c] = x[r][c], from rows without a gap to rows with a stride; gather: y[r][k] = x[r][list[k]]
//   padding:  y = x[0], ..., x[m-1], 0, ..., 0
//   column:   x[r][d] += x[r][s] * f;  x[r][c] *= f;  sum of x[r][a] * x[r][b], in four running sums
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "frame/lanes.h"
#include "frame/reduce.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Copies ----

// The first and the last 16 K bytes of a piece, which may overlap. All is read before anything is written, as by memmove.
template <int K>
inline void copyEnds(const unsigned char* source, unsigned char* destination, std::size_t bytes) {
  using Chunk = Lanes<uint8_t, 16>;
  Chunk head[K], tail[K];
  const std::size_t behind = bytes - K * sizeof(Chunk);
  for (int i = 0; i < K; ++i) {
    head[i] = Chunk::load(source + i * sizeof(Chunk));
    tail[i] = Chunk::load(source + behind + i * sizeof(Chunk));
  }
  for (int i = 0; i < K; ++i) {
    head[i].store(destination + i * sizeof(Chunk));
    tail[i].store(destination + behind + i * sizeof(Chunk));
  }
}

// Rows of a few dozen elements are not worth a call.
template <class T>
inline void copyElements(const T* source, T* destination, int32_t count) {
  const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(T);
  const auto* from = reinterpret_cast<const unsigned char*>(source);
  auto* to = reinterpret_cast<unsigned char*>(destination);
  if (bytes < 16 || bytes > 128) {
    std::memmove(destination, source, bytes);
  } else if (bytes <= 32) {
    copyEnds<1>(from, to, bytes);
  } else if (bytes <= 64) {
    copyEnds<2>(from, to, bytes);
  } else {
    copyEnds<4>(from, to, bytes);
  }
}

template <class T>
QorStatus copyColumns(const T* source, int32_t width, StridedRows<T> destination, int32_t height) {
  if (QorStatus bad = Checks().null(source, destination).size(height, width).stride(destination, width)) return bad;
  const StridedRows<const T> packed{source, width};
  for (int32_t r = 0; r < height; ++r) copyElements(packed[r], destination[r], width);
  return qorStatusOk;
}

// Entries of the list are tested while the first row is copied. Required: what stands in front of a bad one stays copied.
template <class Source, class Destination>
QorStatus gatherColumns(Source source, int32_t sourceWidth, Destination destination, const int32_t* list, int32_t count,
                        int32_t height) {
  for (int32_t k = 0; k < count; ++k) {
    if (list[k] < 0 || list[k] >= sourceWidth) return qorStatusBadSize;
    destination[0][k] = source[0][list[k]];
  }
  for (int32_t r = 1; r < height; ++r) {
    const auto* x = source[r];
    auto* y = destination[r];
    int32_t k = 0;
    for (; k <= count - 4; k += 4) {
      for (int i = 0; i < 4; ++i) y[k + i] = x[list[k + i]];
    }
    for (; k < count; ++k) y[k] = x[list[k]];
  }
  return qorStatusOk;
}

template <class T>
QorStatus copyColumnsIndirect(StridedRows<const T> source, int32_t sourceWidth, StridedRows<T> destination, const int32_t* list,
                              int32_t count, int32_t height) {
  if (QorStatus bad = Checks()
                          .null(source, destination, list)
                          .size(sourceWidth)
                          .stride(source, sourceWidth)
                          .size(count)
                          .stride(destination, count)
                          .size(height)) {
    return bad;
  }
  return gatherColumns(source, sourceWidth, destination, list, count, height);
}

template <class T>
QorStatus copyColumnsIndirect(ListedRows<const T> source, int32_t sourceWidth, ListedRows<T> destination, const int32_t* list,
                              int32_t count, int32_t height) {
  if (QorStatus bad = Checks().null(source, destination, list).size(sourceWidth, count, height)) return bad;
  return gatherColumns(source, sourceWidth, destination, list, count, height);
}

template <class T>
QorStatus copyWithPadding(const T* source, int32_t length, T* destination, int32_t paddedLength) {
  if (QorStatus bad = Checks().null(source, destination).size(length, paddedLength).atLeast(length, paddedLength)) return bad;
  copyElements(source, destination, length);
  std::memset(destination + length, 0, static_cast<std::size_t>(paddedLength - length) * sizeof(T));
  return qorStatusOk;
}

// ---- Single columns ----

inline QorStatus addScaledColumn(ListedRows<double> rows, int32_t width, int32_t height, int32_t source, int32_t destination,
                                 int32_t firstRow, double factor) {
  if (QorStatus bad =
          Checks().null(rows).size(width, height).index(source, width).index(destination, width).index(firstRow, height)) {
    return bad;
  }
  for (int32_t r = firstRow; r < height; ++r) rows[r][destination] += rows[r][source] * factor;
  return qorStatusOk;
}

inline QorStatus scaleColumn(ListedRows<double> rows, int32_t width, int32_t height, int32_t column, int32_t firstRow,
                             double factor) {
  if (QorStatus bad = Checks().null(rows).size(width, height).index(column, width).index(firstRow, height)) return bad;
  for (int32_t r = firstRow; r < height; ++r) rows[r][column] *= factor;
  return qorStatusOk;
}

inline QorStatus dotColumns(ListedRows<const double> rows, int32_t width, int32_t height, double* result, int32_t first,
                            int32_t second, int32_t firstRow) {
  if (QorStatus bad =
          Checks().null(rows, result).size(width, height).index(first, width).index(second, width).index(firstRow, height)) {
    return bad;
  }
  *result = columnReduce(firstRow, height, [&](int32_t r) { return rows[r][first] * rows[r][second]; });
  return qorStatusOk;
}

}  // namespace qorsr
