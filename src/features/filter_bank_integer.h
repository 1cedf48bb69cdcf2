// Evaluation of filter banks in integers.
//
//   16 bits: the exact sum of the products in 64 bits, shifted without rounding by the scale factor and the weights' 14 fraction
//   bits, and saturated. 32 bits: products shifted right by 8 each, summed in 64 bits; then the scale factor, and the remaining 22
//   fraction bits with half rounded up.
#pragma once

#include <cstdint>

#include "features/filter_bank.h"
#include "frame/bits.h"

namespace qorsr {

// Sums of products in 64 bits; they wrap.
struct ExactProduct {
  static int64_t of(int64_t x, int64_t weight) { return x * weight; }
};
// The magnitude spectrum of a 16-bit bank. required: the low 32 bits of each product, as a signed number.
struct LowProduct {
  static int64_t of(int32_t x, int32_t weight) { return wrapMul(x, weight); }
};
// required: each product loses its 8 low bits on its own.
struct ShiftedProduct {
  static int64_t of(int64_t x, int64_t weight) { return (x * weight) >> 8; }
};

template <class Product, class T>
int64_t evaluateFilter(const BankView<const int32_t>& bank, int32_t k, const T* x) {
  uint64_t sum = 0;
  const auto add = [&](Section section, const int32_t* weights) {
    for (int32_t i = 0; i < section.count; ++i) sum += static_cast<uint64_t>(Product::of(x[section.first + i], weights[i]));
  };
  add(bank.risingSection(k), bank.rising(k));
  add(bank.fallingSection(k), bank.falling(k));
  return static_cast<int64_t>(sum);
}

// The sum of a fixed-point bank as a result. Half is rounded up; required: there is no lower limit.
inline int32_t fixedResult(int64_t sum, int32_t scaleFactor) {
  int64_t value = sum;
  if (scaleFactor >= 0) {
    value = shiftRight(value, scaleFactor);
  } else {
    value = value >= int64_t{1} << (63 + scaleFactor) ? INT64_MAX : shiftLeft(value, -scaleFactor);
  }
  const int64_t rounded = shiftRight(value, 22) + (value >> 21 & 1);
  return rounded > INT32_MAX ? INT32_MAX : static_cast<int32_t>(rounded);
}

// The sums of all filters, each through `store` to its result.
template <class Product, class T, class Result, class Store>
void evaluateBank(const BankView<const int32_t>& bank, const T* x, Result* result, Store store) {
  for (int32_t k = 1; k <= bank.filterCount; ++k) result[k - 1] = store(evaluateFilter<Product>(bank, k, x));
}

}  // namespace qorsr
