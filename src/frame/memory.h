// Allocation, alignment by hand, and scratch memory.
//
// Every allocation and release of the library passes through the wrappers below, and they through qorMalloc and qorFree. Nothing
// relies on the alignment of what qorMalloc returns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qorcore.h"

namespace qorsr {

inline constexpr std::size_t kAreaAlignment = 32;

// `bytes` bytes, or null for a count below 1 and for one beyond what the allocator's 32-bit size can say.
inline void* allocateBytes(int64_t bytes) {
  return bytes < 1 || bytes > INT32_MAX ? nullptr : qorMalloc(static_cast<int32_t>(bytes));
}
template <class T>
T* allocateElements(int64_t count) {
  return count < 1 || count > INT32_MAX ? nullptr : static_cast<T*>(allocateBytes(count * static_cast<int64_t>(sizeof(T))));
}
inline void release(void* block) { qorFree(block); }

// The address, raised to the next multiple of `alignment`.
template <class T>
T* alignUp(T* pointer, std::size_t alignment = kAreaAlignment) {
  const auto address = reinterpret_cast<std::uintptr_t>(pointer);
  return reinterpret_cast<T*>(address + (0 - address) % alignment);
}

// Scratch for one call: `count` elements on a 32-byte boundary, on the stack up to StackCount of them, from the heap beyond.
// Released when it leaves scope. `get()` is null when the heap had none, and the caller then returns qorStatusNoMemory.
template <class T, int StackCount = 0>
class Scratch {
 public:
  explicit Scratch(int64_t count) {
    if (StackCount > 0 && count <= StackCount) {
      area_ = reinterpret_cast<T*>(stack_);
      return;
    }
    if (count < 1 || count > INT32_MAX) return;
    block_ = allocateBytes(count * static_cast<int64_t>(sizeof(T)) + static_cast<int64_t>(kAreaAlignment) - 1);
    area_ = static_cast<T*>(alignUp(block_));
  }
  ~Scratch() {
    if (block_ != nullptr) release(block_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  T* get() const { return area_; }
  explicit operator bool() const { return area_ != nullptr; }
  T& operator[](std::ptrdiff_t i) const { return area_[i]; }

 private:
  void* block_ = nullptr;
  T* area_ = nullptr;
  alignas(kAreaAlignment) std::byte stack_[StackCount > 0 ? StackCount * sizeof(T) : 1];
};

}  // namespace qorsr
