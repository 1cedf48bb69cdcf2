// Areas whose edges are watched, and matrices in both layouts made of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "kit/random.h"

namespace kit {

// Where an area of the caller lies.
enum class Place {
  kAligned,   // begins on a 64-byte boundary
  kOddStart,  // begins one element behind such a boundary
  kAtGuard,   // ends at a page that cannot be touched
};
inline constexpr Place kPlaces[] = {Place::kAligned, Place::kOddStart, Place::kAtGuard};

// Pages between two pages that cannot be touched. What is not handed out holds a canary byte.
class GuardedPages {
 public:
  GuardedPages(std::size_t bytes, Place place, std::size_t elementSize);
  ~GuardedPages();
  GuardedPages(GuardedPages&& other) noexcept;
  GuardedPages& operator=(GuardedPages&&) = delete;

  std::byte* begin() const { return area_; }
  // All that lies between the two pages that cannot be touched.
  std::span<std::byte> pages() const { return {map_ + (mapBytes_ - pagesBytes_) / 2, pagesBytes_}; }
  // Whether every byte in front of the area and behind it is as it was.
  bool edgesKept() const;

 private:
  std::byte* map_ = nullptr;
  std::size_t mapBytes_ = 0, pagesBytes_ = 0, areaBytes_ = 0;
  std::byte* area_ = nullptr;
};

// An array in guarded pages.
template <class T>
class Area {
 public:
  Area(int64_t count, Place place) : pages_(static_cast<std::size_t>(count) * sizeof(T), place, sizeof(T)), count_(count) {}
  Area(const std::vector<T>& values, Place place) : Area(static_cast<int64_t>(values.size()), place) {
    if (!values.empty()) std::memcpy(data(), values.data(), values.size() * sizeof(T));
  }

  T* data() const { return reinterpret_cast<T*>(pages_.begin()); }
  int64_t size() const { return count_; }
  T& operator[](int64_t i) const { return data()[i]; }
  std::vector<T> values() const { return std::vector<T>(data(), data() + count_); }
  void fill(T value) {
    for (int64_t i = 0; i < count_; ++i) data()[i] = value;
  }
  bool edgesKept() const { return pages_.edgesKept(); }

 private:
  GuardedPages pages_;
  int64_t count_;
};

// One matrix, in three forms that hold the same values: a block with a stride, row pointers into a second block in which the rows
// stand in another order, and (through at()) plain numbers for a model. Gaps between rows hold a canary value.
template <class T>
class Matrix {
 public:
  // Rows of the pointer form begin `rowPitch` elements apart: choose it to make rows aligned or not.
  Matrix(int32_t height, int32_t width, int32_t stride, Place place, int32_t rowPitch)
      : height_(height),
        width_(width),
        stride_(stride),
        block_((static_cast<int64_t>(height) - 1) * stride + width, place),
        listed_((static_cast<int64_t>(height) - 1) * rowPitch + width, place),
        pointers_(static_cast<std::size_t>(height)) {
    block_.fill(canary());
    listed_.fill(canary());
    // Neighbouring rows are far apart and in falling order: a kernel that computes an address from another row's goes astray.
    for (int32_t r = 0; r < height; ++r)
      pointers_[static_cast<std::size_t>(r)] = listed_.data() + int64_t{height - 1 - r} * rowPitch;
  }
  Matrix(int32_t height, int32_t width, int32_t stride, Place place) : Matrix(height, width, stride, place, stride) {}

  void fill(Random& random, Random::Kind kind) {
    for (int32_t r = 0; r < height_; ++r) {
      for (int32_t c = 0; c < width_; ++c) set(r, c, random.value<T>(kind));
    }
  }
  void set(int32_t r, int32_t c, T value) {
    block_[int64_t{r} * stride_ + c] = value;
    pointers_[static_cast<std::size_t>(r)][c] = value;
  }

  T at(int32_t r, int32_t c) const { return block_[int64_t{r} * stride_ + c]; }
  T listedAt(int32_t r, int32_t c) const { return pointers_[static_cast<std::size_t>(r)][c]; }
  T* block() const { return block_.data(); }
  T* const* rows() const { return pointers_.data(); }
  const T* const* constRows() const { return pointers_.data(); }
  int32_t height() const { return height_; }
  int32_t width() const { return width_; }
  int32_t stride() const { return stride_; }

  // The rows as plain numbers, height x width, of the block or of the row pointers.
  std::vector<T> values() const {
    std::vector<T> v;
    for (int32_t r = 0; r < height_; ++r)
      v.insert(v.end(), block_.data() + int64_t{r} * stride_, block_.data() + int64_t{r} * stride_ + width_);
    return v;
  }
  std::vector<T> listedValues() const {
    std::vector<T> v;
    for (const T* row : pointers_) v.insert(v.end(), row, row + width_);
    return v;
  }
  // Whether nothing was written between the rows or around the areas.
  bool gapsKept() const {
    for (int32_t r = 0; r + 1 < height_; ++r) {
      for (int32_t c = width_; c < stride_; ++c) {
        const T gap = block_[int64_t{r} * stride_ + c], kept = canary();
        if (std::memcmp(&gap, &kept, sizeof(T)) != 0) return false;
      }
    }
    return block_.edgesKept() && listed_.edgesKept();
  }

  static T canary() {
    T value;
    std::memset(&value, 0x5B, sizeof(T));
    return value;
  }

 private:
  int32_t height_, width_, stride_;
  Area<T> block_, listed_;
  std::vector<T*> pointers_;
};

}  // namespace kit
