// More things than scratch holds, in chunks:
//
//   for (const Chunk chunk : chunksOf(length, 128)) convert(source + chunk.first, scratch, chunk.count);
#pragma once

#include <algorithm>
#include <cstdint>

namespace qorsr {

struct Chunk {
  int32_t first, count;
};

class Chunks {
 public:
  constexpr Chunks(int32_t count, int32_t most) : count_(count), most_(most) {}

  struct End {};
  class Iterator {
   public:
    constexpr Iterator(int32_t left, int32_t most) : left_(left), most_(most) {}
    constexpr Chunk operator*() const { return {first_, std::min(left_, most_)}; }
    constexpr Iterator& operator++() {
      const int32_t passed = std::min(left_, most_);
      first_ += passed;
      left_ -= passed;
      return *this;
    }
    constexpr bool operator!=(End) const { return left_ > 0; }

   private:
    int32_t first_ = 0, left_, most_;
  };
  constexpr Iterator begin() const { return {count_, most_}; }
  constexpr End end() const { return {}; }

 private:
  int32_t count_, most_;
};

// Chunks of `most` things, the last one of what is left, that make up `count` things; none of a count below 1.
constexpr Chunks chunksOf(int32_t count, int32_t most) { return {count, most}; }

}  // namespace qorsr
