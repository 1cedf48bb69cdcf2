// Plain models of Gaussian selection: one bit at a time, in the order of the definition.
#pragma once

#include <cstdint>
#include <vector>

namespace model {

using Bytes = std::vector<std::vector<uint8_t>>;

inline bool bitOf(const std::vector<uint8_t>& row, int64_t p) {
  return (row[static_cast<std::size_t>(p / 8)] & (128 >> p % 8)) != 0;
}
inline void toggle(std::vector<uint8_t>& row, int64_t p) {
  uint8_t& byte = row[static_cast<std::size_t>(p / 8)];
  byte = static_cast<uint8_t>(byte ^ (128 >> p % 8));
}

// Group g of the list has counts[g] entries. `groupsAreRows`: entry i of group g toggles (g, shift + i), else (i, shift + g).
inline void fillShortlist(Bytes& table, const std::vector<int32_t>& indices, const std::vector<int32_t>& counts, int32_t shift,
                          bool groupsAreRows) {
  std::size_t next = 0;
  for (std::size_t g = 0; g < counts.size(); ++g) {
    for (int32_t j = 0; j < counts[g]; ++j, ++next) {
      const auto i = static_cast<std::size_t>(indices[next]);
      toggle(table[groupsAreRows ? g : i], static_cast<int64_t>(shift) + static_cast<int64_t>(groupsAreRows ? i : g));
    }
  }
}

inline Bytes buildSignTable(const Bytes& source, const std::vector<int32_t>& indices, int32_t count, int32_t shift, int32_t rows,
                            int32_t bits) {
  Bytes result(static_cast<std::size_t>(rows), std::vector<uint8_t>(static_cast<std::size_t>((bits + 7) / 8)));
  for (std::size_t r = 0; r < result.size(); ++r) {
    for (int32_t b = 0; b < bits; ++b) {
      bool any = false;
      for (int32_t j = 0; j < count; ++j) {
        const auto row = static_cast<std::size_t>(indices[r * static_cast<std::size_t>(count) + static_cast<std::size_t>(j)]);
        any = any || bitOf(source[row], int64_t{shift} + b);
      }
      if (any) toggle(result[r], b);
    }
  }
  return result;
}

// Every row counts its entries from the start of the list, and marks its first bit only.
inline Bytes buildSignTableVar(const Bytes& source, const std::vector<int32_t>& indices, const std::vector<int32_t>& counts,
                               int32_t shift, int32_t bits) {
  Bytes result(counts.size(), std::vector<uint8_t>(static_cast<std::size_t>((bits + 7) / 8)));
  for (std::size_t r = 0; r < result.size(); ++r) {
    for (int32_t b = 0; b < bits; ++b) {
      for (int32_t j = 0; j < counts[r]; ++j) {
        if (bitOf(source[static_cast<std::size_t>(indices[static_cast<std::size_t>(j)])], int64_t{shift} + b)) result[r][0] = 128;
      }
    }
  }
  return result;
}

}  // namespace model
