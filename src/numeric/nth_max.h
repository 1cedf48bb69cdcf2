// The n-th largest element, n = 0 the largest.
//
// What is required is what a quickselect finds whose pivot is the first element of its range: the left scan goes up while elements are
// at or above the pivot, the right one down while they are below it; the pivot is swapped into place, and elements equal to it just
// before it are settled too. (Hoare, "Algorithm 65: Find", Communications of the ACM 4, 1961.) Its path shows in a result only where
// elements have no order: NaN, and zeros of both signs. Where the walk takes long, as in a sorted vector, and elements have an order,
// the element is found by digits: elements are counted by the highest bits of their keys (integers in the order of the numbers), those of
// the bucket that holds the n-th are kept, and counted by the next bits. So a result takes time in proportion to length.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "frame/checks.h"
#include "frame/memory.h"

namespace qorsr {

// Gives up, with false, where it would look at more than `most` elements in all.
template <class T>
bool nthMaxByQuickselect(T* values, int32_t length, int32_t n, int64_t most, T& result) {
  const auto swap = [&](int32_t i, int32_t j) {
    const T x = values[i];
    values[i] = values[j];
    values[j] = x;
  };
  int32_t low = 0, high = length - 1;
  for (;;) {
    most -= high - low;
    if (most < 0) return false;
    const T pivot = values[low];
    int32_t i = low + 1, j = high;
    for (;;) {
      while (i <= j && values[i] >= pivot) ++i;
      while (values[j] < pivot) --j;
      if (i >= j) break;
      swap(i++, j--);
    }
    swap(low, j);
    int32_t settled = j;
    while (settled > low && values[settled - 1] == pivot) --settled;
    if (n >= settled && n <= j) {
      result = pivot;
      return true;
    }
    if (n < settled) {
      high = settled - 1;
    } else {
      low = j + 1;
    }
  }
}

// Whole numbers in the falling order of the elements: the largest element has the least key.
template <class T>
struct RankKey {
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  static constexpr int kBits = 8 * sizeof(T);
  static constexpr Bits kSign = Bits{1} << (kBits - 1);

  static Bits of(T value) {
    const auto bits = std::bit_cast<Bits>(value);
    if constexpr (std::is_integral_v<T>) return ~(bits ^ kSign);
    return (bits & kSign) != 0 ? bits : ~(bits | kSign);
  }
};

// Counts elements by digits of their keys.
template <class T>
class NthMaxByDigits {
 public:
  // Below, quickselect takes no longer than clearing the counts, in any order.
  static constexpr int32_t kLeast = 200;

  // `rest` has room for all elements.
  static T find(const T* source, int32_t length, int32_t n, T* rest) {
    const T* candidates = source;
    int32_t count = length;
    for (int shift = Key::kBits - kDigitBits;; shift -= kDigitBits) {
      if (shift < 0) shift = 0;
      const Bits bucket = bucketOf(candidates, count, n, shift);
      int32_t kept = 0;
      for (int32_t i = 0; i < count; ++i) {
        rest[kept] = candidates[i];
        kept += digit(candidates[i], shift) == bucket ? 1 : 0;
      }
      candidates = rest;
      count = kept;
      if (shift == 0 || count < kLeast) break;
    }
    T result{};
    nthMaxByQuickselect(rest, count, n, INT64_MAX, result);
    return result;
  }

 private:
  using Key = RankKey<T>;
  using Bits = typename Key::Bits;
  static constexpr int kDigitBits = 11;
  static constexpr Bits kDigits = Bits{1} << kDigitBits;

  static Bits digit(T value, int shift) { return Key::of(value) >> shift & (kDigits - 1); }

  // The digit of the n-th; n becomes its place among those with that digit.
  static Bits bucketOf(const T* values, int32_t count, int32_t& n, int shift) {
    int32_t counts[kDigits] = {};
    for (int32_t i = 0; i < count; ++i) ++counts[digit(values[i], shift)];
    Bits bucket = 0;
    while (n >= counts[bucket]) n -= counts[bucket++];
    return bucket;
  }
};

// Whether elements have an order but for equal ones that differ: no NaN, and zeros of one sign at most.
template <class T>
bool areOrdered(const T* values, int32_t length) {
  if constexpr (std::is_integral_v<T>) return true;
  using Bits = typename RankKey<T>::Bits;
  constexpr Bits kSign = RankKey<T>::kSign, kInfinity = std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
  Bits nan = 0, zero = 0, minusZero = 0;  // in integers of the elements' width, and so in registers of many
  for (int32_t i = 0; i < length; ++i) {
    const auto bits = std::bit_cast<Bits>(values[i]);
    nan |= (bits & ~kSign) > kInfinity ? Bits{1} : Bits{0};
    zero |= bits == 0 ? Bits{1} : Bits{0};
    minusZero |= bits == kSign ? Bits{1} : Bits{0};
  }
  return nan == 0 && (zero & minusZero) == 0;
}

template <class T>
QorStatus nthMaxElement(const T* source, int32_t length, int32_t n, T* result) {
  if (QorStatus bad = Checks().null(source, result).size(length).require(n >= 0 && n < length, qorStatusBadArgument)) {
    return bad;
  }
  const Scratch<T> scratch(length);
  if (!scratch) return qorStatusNoMemory;
  const auto select = [&](int64_t most) {
    std::memcpy(scratch.get(), source, static_cast<std::size_t>(length) * sizeof(T));
    return nthMaxByQuickselect(scratch.get(), length, n, most, *result);
  };
  constexpr int64_t kPasses = 10;  // three to four are usual; more are a sign of elements that lie in order
  if (length < NthMaxByDigits<T>::kLeast || !select(kPasses * length)) {
    if (length >= NthMaxByDigits<T>::kLeast && areOrdered(source, length)) {
      *result = NthMaxByDigits<T>::find(source, length, n, scratch.get());
    } else {
      select(INT64_MAX);
    }
  }
  return qorStatusOk;
}

}  // namespace qorsr
