// A matrix as plain vectors, one a row: what the models work on.
#pragma once

#include <cstdint>
#include <vector>

namespace model {

template <class T>
using Table = std::vector<std::vector<T>>;

// The rows of anything with height(), width() and at(row, column).
template <class T, class Matrix>
Table<T> tableOf(const Matrix& matrix) {
  Table<T> table;
  for (int32_t r = 0; r < matrix.height(); ++r) {
    std::vector<T>& row = table.emplace_back();
    for (int32_t c = 0; c < matrix.width(); ++c) row.push_back(matrix.at(r, c));
  }
  return table;
}

}  // namespace model
