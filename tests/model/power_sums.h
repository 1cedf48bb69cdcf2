// Plain models of the sums and sums of squares of columns, in float, the rows in pairs.
#pragma once

#include <cstdint>
#include <vector>

#include "model/column_sums.h"

namespace model {

// The squares of all numbers, in float.
template <class T>
Table<float> squaresOf(const Table<T>& rows) {
  Table<float> squares;
  for (const auto& row : rows) {
    squares.emplace_back();
    for (const T x : row) squares.back().push_back(static_cast<float>(x) * static_cast<float>(x));
  }
  return squares;
}

// The sum of column c, added in pairs of rows to what stood there.
template <class T>
float columnSumFrom(const Table<T>& rows, std::size_t c, float total) {
  std::size_t r = 0;
  for (; r + 1 < rows.size(); r += 2) total += static_cast<float>(rows[r][c]) + static_cast<float>(rows[r + 1][c]);
  if (r < rows.size()) total += static_cast<float>(rows[r][c]);
  return total;
}

}  // namespace model
