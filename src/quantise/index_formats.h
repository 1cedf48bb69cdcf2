// How the indices of the parts of a vector are laid out, one row a vector:
//
//   16-bit numbers and bytes    one a part, side by side; rows a stride of elements apart
//   bits                        as many a part as its codebook needs, side by side, the most significant first, bit 0 of a row being the
//                               most significant of a byte or one behind it; rows a stride of bits apart, without regard to bytes
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "qorsr.h"

namespace qorsr {

// Part j of a codebook of `bits` index bits begins at bit `firstBit` of a row.
struct Part {
  int32_t index;
  int64_t firstBit;
  int32_t bits;
};

template <class T>
struct ElementIndices {
  T* base;
  int32_t stride;

  static constexpr bool kBits = false;
  // A byte can tell so many codewords apart; a 16-bit number is not asked.
  static bool admits(int32_t codewords) { return sizeof(T) > 1 || codewords <= 256; }
  bool holds(int32_t parts, int64_t) const { return parts <= stride; }
  void clear(int32_t) const {}
  int32_t get(int64_t row, const Part& part) const { return base[row * stride + part.index]; }
  // The lower bits of an index that the format cannot hold.
  void put(int64_t row, const Part& part, int32_t index) const { base[row * stride + part.index] = static_cast<T>(index); }
};

template <class Byte>
struct BitIndices {
  Byte* base;
  int32_t stride;

  static constexpr bool kBits = true;
  static bool admits(int32_t) { return true; }
  bool holds(int32_t, int64_t bits) const { return bits <= stride; }
  void clear(int32_t rows) const { std::memset(base, 0, static_cast<std::size_t>((int64_t{rows} * stride + 7) / 8)); }

  int32_t get(int64_t row, const Part& part) const {
    if (part.bits == 0) return 0;
    const Field field(row * stride + part.firstBit, part.bits);
    uint64_t bits = 0;
    for (int i = 0; i < field.bytes; ++i) bits = bits << 8 | base[field.firstByte + i];
    return static_cast<int32_t>(bits >> field.below & field.mask);
  }
  // Into bits that are clear.
  void put(int64_t row, const Part& part, int32_t index) const {
    if (part.bits == 0) return;
    const Field field(row * stride + part.firstBit, part.bits);
    uint64_t bits = (static_cast<uint32_t>(index) & field.mask) << field.below;
    for (int i = field.bytes; i-- > 0; bits >>= 8) {
      Byte& byte = base[field.firstByte + i];
      byte = static_cast<Byte>(byte | (bits & 0xFF));
    }
  }

 private:
  // The bytes that a field touches, and the bits of the last one below it.
  struct Field {
    int64_t firstByte;
    int bytes, below;
    uint64_t mask;
    Field(int64_t bit, int32_t bits)
        : firstByte(bit / 8),
          bytes(static_cast<int>((bit + bits + 7) / 8 - firstByte)),
          below(static_cast<int>((firstByte + bytes) * 8 - (bit + bits))),
          mask((uint64_t{1} << bits) - 1) {}
  };
};

template <class T>
bool isNull(const ElementIndices<T>& indices) {
  return indices.base == nullptr;
}
template <class Byte>
bool isNull(const BitIndices<Byte>& indices) {
  return indices.base == nullptr;
}

}  // namespace qorsr
