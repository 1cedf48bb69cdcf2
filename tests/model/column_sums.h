// Plain models of the sums of columns and rows. One scalar loop each, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "model/table.h"

namespace model {

// Rows in pairs from the top down: ((r0 + r1) + (r2 + r3)) + (r4 + r5), an odd last row last.
template <class Acc, class T>
Acc columnSum(const Table<T>& rows, std::size_t c) {
  const std::size_t height = rows.size();
  if (height == 1) return static_cast<Acc>(rows[0][c]);
  Acc total = static_cast<Acc>(rows[0][c]) + static_cast<Acc>(rows[1][c]);
  for (std::size_t r = 2; r + 1 < height; r += 2) total = total + (static_cast<Acc>(rows[r][c]) + static_cast<Acc>(rows[r + 1][c]));
  if (height % 2 == 1) total = total + static_cast<Acc>(rows[height - 1][c]);
  return total;
}

// Four lanes; the remainder goes to lanes 0 to 2, or, in the last row of an odd height, to lane 0.
template <class Acc, class T>
Acc rowSum(const std::vector<T>& row, bool lastOfOddHeight) {
  Acc lane[4] = {0, 0, 0, 0};
  const std::size_t width = row.size();
  std::size_t c = 0;
  while (width - c >= 8) {
    for (std::size_t j = 0; j < 4; ++j) lane[j] = lane[j] + (static_cast<Acc>(row[c + j]) + static_cast<Acc>(row[c + 4 + j]));
    c += 8;
  }
  if (width - c >= 4) {
    for (std::size_t j = 0; j < 4; ++j) lane[j] = lane[j] + static_cast<Acc>(row[c + j]);
    c += 4;
  }
  for (std::size_t j = 0; c < width; ++c, ++j) {
    const std::size_t target = lastOfOddHeight ? 0 : j;
    lane[target] = lane[target] + static_cast<Acc>(row[c]);
  }
  return (lane[0] + lane[1]) + (lane[2] + lane[3]);
}

}  // namespace model
