// Bit tables of Gaussian short lists: one bit a Gaussian, the most significant bit of a byte first.
//
//   FillShortlist   toggles the bit at (row, shift + position) for each entry of a list
//   BuildSignTable  result row r = OR of the source rows that group r names, read from bit `shift` on
//
// A list comes in groups: of one size (EqualGroups) or each of its own (ListedGroups). The groups of a list are the rows of the
// table, the entries positions, or the groups are columns and the entries rows; a small policy says which.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/checks.h"
#include "frame/rows.h"

namespace qorsr {

// ---- Bits ----

struct BitAddress {
  int64_t byte;
  uint8_t mask;
};
inline BitAddress bitAt(int64_t position) { return {position / 8, static_cast<uint8_t>(128 >> (position % 8))}; }

// Bytes that hold this many bits.
inline int64_t bytesForBits(int64_t bits) { return (bits + 7) / 8; }

// ---- Groups of entries ----

struct EqualGroups {
  const int32_t* entries;
  int32_t count;  // in each group

  int64_t size(int32_t) const { return count; }
  int64_t total(int32_t groups) const { return int64_t{groups} * count; }
  bool countsAreThere() const { return true; }
  int32_t leastCount(int32_t) const { return count; }
};

struct ListedGroups {
  const int32_t* entries;
  const int32_t* counts;  // of each group

  int64_t size(int32_t group) const { return counts[group]; }
  int64_t total(int32_t groups) const {
    int64_t sum = 0;
    for (int32_t g = 0; g < groups; ++g) sum += counts[g];
    return sum;
  }
  bool countsAreThere() const { return counts != nullptr; }
  int32_t leastCount(int32_t groups) const {
    int32_t least = counts[0];
    for (int32_t g = 1; g < groups; ++g) least = counts[g] < least ? counts[g] : least;
    return least;
  }
};

// Every entry of `groups` groups lies in 0 to limit - 1.
template <class Groups>
bool entriesBelow(const Groups& list, int32_t groups, int32_t limit) {
  const int64_t total = list.total(groups);
  for (int64_t i = 0; i < total; ++i) {
    if (list.entries[i] < 0 || list.entries[i] >= limit) return false;
  }
  return true;
}

// ---- Marking ----

// A table that entries mark: rows of `stride` bytes, of which bits from `shift` on belong to this list.
struct BitTable {
  uint8_t* const* rows;
  int32_t height, stride, shift;
};

// What a group and an entry of it stand for.
struct GroupsAreRows {
  static int32_t row(int32_t group, int32_t) { return group; }
  static int32_t column(int32_t, int32_t entry) { return entry; }
};
struct GroupsAreColumns {
  static int32_t row(int32_t, int32_t entry) { return entry; }
  static int32_t column(int32_t group, int32_t) { return group; }
};

// An entry that stands twice in a group clears its bit again (required).
template <class Meaning, class Groups>
void toggleBits(const Groups& list, int32_t groups, const BitTable& table) {
  const int32_t* entry = list.entries;
  for (int32_t g = 0; g < groups; ++g) {
    for (int64_t left = list.size(g); left > 0; --left, ++entry) {
      const BitAddress bit = bitAt(int64_t{table.shift} + Meaning::column(g, *entry));
      table.rows[Meaning::row(g, *entry)][bit.byte] ^= bit.mask;
    }
  }
}

// `width` columns; a group is a row, or a column.
template <class Meaning, class Groups>
QorStatus fillShortlist(const Groups& list, const BitTable& table, int32_t width) {
  constexpr bool kRows = std::is_same_v<Meaning, GroupsAreRows>;
  const int32_t groups = kRows ? table.height : width, limit = kRows ? width : table.height;
  if (QorStatus bad = Checks()
                          .null(table.rows, list.entries)
                          .require(list.countsAreThere(), qorStatusNullPointer)
                          .size(table.height, width, table.stride)
                          .require(table.shift >= 0, qorStatusBadSize)
                          .require([&] { return list.leastCount(groups) >= 1; }, qorStatusBadSize)
                          .require(table.stride >= bytesForBits(int64_t{width} + table.shift), qorStatusBadStride)
                          .require([&] { return entriesBelow(list, groups, limit); }, qorStatusBadArgument)) {
    return bad;
  }
  toggleBits<Meaning>(list, groups, table);
  return qorStatusOk;
}

// ---- Condensing ----

struct SourceTable {
  const uint8_t* const* rows;
  int32_t height, stride, shift;
};

// result |= `bits` bits of `source` from bit `shift` on. Reads no byte that holds none of them.
inline void orBits(const uint8_t* source, int32_t shift, uint8_t* result, int32_t bits) {
  const int64_t bytes = bytesForBits(bits), sourceBytes = bytesForBits(int64_t{shift} % 8 + bits);
  const uint8_t* const from = source + shift / 8;
  const int up = shift % 8, down = 8 - up;
  const int64_t pairs = sourceBytes - 1 < bytes ? sourceBytes - 1 : bytes;  // bytes of the result that two source bytes make
  for (int64_t i = 0; i < pairs; ++i) result[i] |= static_cast<uint8_t>((from[i] << up) | (from[i + 1] >> down));
  for (int64_t i = pairs; i < bytes; ++i) result[i] |= static_cast<uint8_t>(from[i] << up);
}

// Clears what lies behind the first `bits` bits in the last byte of a row.
inline void clearBehind(uint8_t* row, int32_t bits) {
  if (bits % 8 != 0) row[bits / 8] &= static_cast<uint8_t>(0xFF00 >> (bits % 8));
}

inline QorStatus buildSignTable(const EqualGroups& list, const SourceTable& source, uint8_t* result, int32_t resultRows,
                                int32_t resultBits) {
  if (QorStatus bad = Checks()
                          .null(list.entries, source.rows, result)
                          .size(list.count, source.height, source.stride, resultRows, resultBits)
                          .require(source.shift >= 0, qorStatusBadSize)
                          .require(source.stride >= bytesForBits(int64_t{source.shift} + resultBits), qorStatusBadStride)
                          .require([&] { return entriesBelow(list, resultRows, source.height); }, qorStatusBadArgument)) {
    return bad;
  }
  const int64_t rowBytes = bytesForBits(resultBits);
  std::memset(result, 0, static_cast<std::size_t>(rowBytes * resultRows));
  const int32_t* entry = list.entries;
  for (int32_t r = 0; r < resultRows; ++r, result += rowBytes) {
    for (int32_t j = 0; j < list.count; ++j, ++entry) orBits(source.rows[*entry], source.shift, result, resultBits);
    clearBehind(result, resultBits);
  }
  return qorStatusOk;
}

// Whether any of `bits` bits of the row from bit `shift` on is set.
inline bool anyBit(const uint8_t* row, int32_t shift, int32_t bits) {
  for (int64_t position = shift; position < int64_t{shift} + bits; ++position) {
    const BitAddress bit = bitAt(position);
    if ((row[bit.byte] & bit.mask) != 0) return true;
  }
  return false;
}

// Required: every result row counts its entries from the start of the whole list, and of a result row only the top bit of the first
// byte is ever set. So row r is marked when one of the first counts[r] entries names a source row with a bit in the field.
inline QorStatus buildSignTable(const ListedGroups& list, const SourceTable& source, uint8_t* result, int32_t resultRows,
                                int32_t resultBits) {
  if (QorStatus bad = Checks()
                          .null(list.entries, list.counts, source.rows, result)
                          .size(source.height, source.stride, resultRows, resultBits)
                          .require(source.shift >= 0, qorStatusBadSize)
                          .require(source.stride >= bytesForBits(int64_t{source.shift} + resultBits), qorStatusBadStride)
                          .require([&] { return list.leastCount(resultRows) >= 1; }, qorStatusBadSize)
                          .require([&] { return entriesBelow(list, resultRows, source.height); }, qorStatusBadArgument)) {
    return bad;
  }
  const int64_t rowBytes = bytesForBits(resultBits);
  std::memset(result, 0, static_cast<std::size_t>(rowBytes * resultRows));
  int32_t longest = 0;
  for (int32_t r = 0; r < resultRows; ++r) longest = list.counts[r] > longest ? list.counts[r] : longest;
  int32_t first = 0;  // the first entry whose row has a bit in the field
  while (first < longest && !anyBit(source.rows[list.entries[first]], source.shift, resultBits)) ++first;
  for (int32_t r = 0; r < resultRows; ++r) {
    if (list.counts[r] > first) result[rowBytes * r] = 0x80;
  }
  return qorStatusOk;
}

}  // namespace qorsr
