// The two layouts of a matrix. `rows[r]`, a pointer to the first element of row r, is all that a kernel knows of a matrix.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qorsr {

// One block, `stride` elements from row to row.
template <class T>
struct StridedRows {
  T* base;
  int32_t stride;

  T* operator[](std::ptrdiff_t r) const { return base + r * stride; }
};
template <class T>
StridedRows(T*, int32_t) -> StridedRows<T>;

// An array of row pointers, in any order and at any address.
template <class T>
struct ListedRows {
  T* const* list;

  T* operator[](std::ptrdiff_t r) const { return list[r]; }
};
template <class T>
ListedRows(T* const*) -> ListedRows<T>;

template <class T>
constexpr StridedRows<T> strided(T* base, int32_t stride) {
  return {base, stride};
}
template <class T>
constexpr ListedRows<T> listed(T* const* list) {
  return {list};
}

inline bool isAligned16(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer) % 16 == 0; }

// False when one of the first `count` row pointers is not 16-byte aligned; true for a count below 1.
template <class T>
bool rowsAligned(T* const* list, int32_t count) {
  for (int32_t r = 0; r < count; ++r) {
    if (!isAligned16(list[r])) return false;
  }
  return true;
}

}  // namespace qorsr
