// Vectors from indices: a row of each book's table, one behind the other.
//
//   out = table[0][index[0]], table[1][index[1]], ...      book j: `dimension[j]` elements at index[j] * stride[j]
//
// All indices are tested before anything is written.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/checks.h"
#include "qorsr.h"

namespace qorsr {

template <class Index>
bool isRow(Index index, int64_t rows) {
  return index >= 0 && index < rows;
}

template <class Index, class T>
QorStatus formVector(const Index* indices, const T* const* tables, const int32_t* sizes, const int32_t* dimensions,
                     const int32_t* strides, int32_t count, T* result) {
  if (QorStatus bad = Checks().null(indices, tables, sizes, dimensions, strides, result).size(count)) return bad;
  for (int32_t j = 0; j < count; ++j) {
    if (dimensions[j] < 1 || strides[j] < 1 || !isRow(indices[j], sizes[j])) return qorStatusBadSize;
  }
  for (int32_t j = 0; j < count; ++j) {
    const T* const row = tables[j] + static_cast<int64_t>(indices[j]) * strides[j];
    std::memcpy(result, row, static_cast<std::size_t>(dimensions[j]) * sizeof(T));
    result += dimensions[j];
  }
  return qorStatusOk;
}

// Rows of `Dimension` elements without gaps, as many as fit the length. Beyond: rows behind the last of a table that pass too.
template <int Dimension, int Beyond = 0, class Index, class T>
QorStatus formShortRows(const Index* indices, const T* const* tables, const int32_t* sizes, T* result, int32_t length) {
  if (QorStatus bad = Checks().null(indices, tables, sizes, result).size(length)) return bad;
  const int32_t count = length / Dimension;
  for (int32_t j = 0; j < count; ++j) {
    if (!isRow(indices[j], int64_t{sizes[j]} + Beyond)) return qorStatusBadSize;
  }
  for (int64_t j = 0; j < count; ++j) {
    std::memcpy(result + j * Dimension, tables[j] + static_cast<int64_t>(indices[j]) * Dimension, Dimension * sizeof(T));
  }
  return qorStatusOk;
}

}  // namespace qorsr
