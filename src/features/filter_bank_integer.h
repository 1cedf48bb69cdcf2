// Evaluation of filter banks in integers.
//
//   16 bits: the exact sum of the products in 64 bits, shifted without rounding by the scale factor and the weights' 14 fraction
//   bits, and saturated. 32 bits: products shifted right by 8 each, summed in 64 bits; then the scale factor, and the remaining 22
//   fraction bits with half rounded up.
//
// Sums of integers are the same in any order. A bank whose centres rise within the bins has a plan: each filter's weights side by
// side, as blocks of eight with zeros behind them, from a first bin on so that every block lies within the bins.
//
//   16 bits: blocks of 16-bit weights, pairs of products added in 32 bits. PlannedFilter::note says whether a pair's 32 bits hold the
//   sums over all blocks of the filter too, or not, or whether some weight has no 16 bits and the rows are to be used.
//   32 bits: weights are w >= 0, so with u = x + 2^31 >= 0 the term (x w) >> 8 is ((u w) >> 8) - 2^23 w, all unsigned. The note is the
//   sum of w.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "features/filter_bank.h"
#include "frame/bits.h"
#include "frame/lanes.h"
#include "frame/unsigned_products.h"

namespace qorsr {

// ---- Filter by filter, from the rows ----

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

// The sums of all filters, each through `store` to its result.
template <class Product, class T, class Result, class Store>
void evaluateBank(const BankView<const int32_t>& bank, const T* x, Result* result, Store store) {
  for (int32_t k = 1; k <= bank.filterCount; ++k) result[k - 1] = store(evaluateFilter<Product>(bank, k, x));
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

// ---- Plans ----

struct PlannedFilter {
  int32_t start, blocks;
  int64_t note;
};
inline constexpr int64_t kSumsFit = 0, kPairsFit = 1, kWideWeights = 2;  // notes of 16-bit banks

inline int64_t noteOf(const int16_t* weights, int64_t count) {
  int32_t most[4] = {};
  for (int64_t i = 0; i < count; ++i) {
    int32_t& pair = most[i % 8 / 2];
    pair = std::min(pair + std::abs(int32_t{weights[i]}), 0x10000);
  }
  return *std::max_element(most, most + 4) < 0x10000 ? kSumsFit : kPairsFit;
}
inline int64_t noteOf(const int32_t* weights, int64_t count) {
  int64_t sum = 0;
  for (int64_t i = 0; i < count; ++i) sum += weights[i];
  return sum;
}

// Weights of one filter.
template <class T>
void planFilter(const BankView<const int32_t>& bank, int32_t k, PlannedFilter& filter, T* weights) {
  const int32_t* const c = bank.centers + k;
  bool wide = false;
  std::fill_n(weights, 8 * int64_t{filter.blocks}, T(0));
  for (int32_t bin = c[-1]; bin <= c[1]; ++bin) {
    const int32_t w = bin <= c[0] ? bank.rising(k)[bin - c[-1]] : bank.falling(k)[bin - c[0] - 1];
    wide |= sizeof(T) == 2 && (w < -INT16_MAX || w > INT16_MAX);
    weights[bin - filter.start] = static_cast<T>(w);
  }
  filter.note = wide ? kWideWeights : noteOf(weights, 8 * int64_t{filter.blocks});
}

// Makes the plan at `begin`, on a 32-byte boundary; false if it does not fit in front of `end` or the centres do not allow it.
template <class T>
bool planBank(const BankView<const int32_t>& bank, std::byte* begin, const std::byte* end) {
  const int32_t n = bank.filterCount, *const c = bank.centers;
  if (c[0] < 0 || c[n + 1] > bank.half || !std::is_sorted(c, c + n + 2)) return false;
  int64_t blocks = 0;
  for (int32_t k = 1; k <= n; ++k) {
    const int64_t own = (int64_t{c[k + 1]} - c[k - 1] + 8) / 8;
    if (8 * own > int64_t{bank.half} + 1) return false;
    blocks += own;
  }
  const int64_t bytes = static_cast<int64_t>(sizeof(PlannedFilter)) * n + 8 * static_cast<int64_t>(sizeof(T)) * blocks;
  if (bytes > end - begin) return false;
  auto* filter = reinterpret_cast<PlannedFilter*>(begin);
  auto* weights = reinterpret_cast<T*>(filter + n);
  for (int32_t k = 1; k <= n; ++k, weights += 8 * filter++->blocks) {
    filter->blocks = (c[k + 1] - c[k - 1] + 8) / 8;
    filter->start = std::min(c[k - 1], bank.half + 1 - 8 * filter->blocks);
    planFilter(bank, k, *filter, weights);
  }
  return true;
}

// The weights of filter k have changed.
template <class T>
void replanFilter(const BankView<const int32_t>& bank, int32_t k, std::byte* begin) {
  auto* filter = reinterpret_cast<PlannedFilter*>(begin);
  auto* weights = reinterpret_cast<T*>(filter + bank.filterCount);
  for (int32_t i = 1; i < k; ++i) weights += 8 * int64_t{filter++->blocks};
  planFilter(bank, k, *filter, weights);
}

// ---- Lanes taken as unsigned ----

// x + 2^31, for lanes to be taken as unsigned.
template <int N>
inline Lanes<int32_t, N> biased(const Lanes<int32_t, N>& a) {
  using Part = typename Lanes<int32_t, N>::Part;
  return Lanes<int32_t, N>::each(a, [](Part x) { return Part(x ^ std::numeric_limits<int32_t>::min()); });
}

// ---- Evaluation of planned banks ----

inline int64_t sumInLanes(const PlannedFilter& filter, const int16_t* weights, const int16_t* x) {
  using Shorts = Lanes<int16_t, 8>;
  int64_t total = 0;
  Lanes<int32_t, 4> sum(0);
  const auto addSum = [&] {
    int32_t lane[4];
    sum.store(lane);
    total += (int64_t{lane[0]} + lane[1]) + (int64_t{lane[2]} + lane[3]);
  };
  for (int32_t b = 0; b < filter.blocks; ++b) {
    const auto pairs = pairDots(Shorts::load(weights + 8 * b), Shorts::load(x + 8 * b));
    if (filter.note == kSumsFit) {
      sum += pairs;
    } else {
      sum = pairs;
      addSum();
    }
  }
  if (filter.note == kSumsFit) addSum();
  return total;
}

inline int64_t sumInLanes(const PlannedFilter& filter, const int32_t* weights, const int32_t* x) {
  using Words = Lanes<int32_t, 8>;
  Lanes<uint64_t, 4> sum(0);
  for (int32_t b = 0; b < filter.blocks; ++b) {
    const Words w = Words::load(weights + 8 * b), u = biased(Words::load(x + 8 * b));
    sum += (unsignedProducts<false>(u, w) >> 8) + (unsignedProducts<true>(u, w) >> 8);
  }
  uint64_t lane[4];
  sum.store(lane);
  const uint64_t total = (lane[0] + lane[1]) + (lane[2] + lane[3]);
  return static_cast<int64_t>(total - (static_cast<uint64_t>(filter.note) << 23));
}

template <class Product, class Weight, class T, class Result, class Store>
void evaluatePlanned(const BankView<const int32_t>& bank, const std::byte* plan, const T* x, Result* result, Store store) {
  const auto* filter = reinterpret_cast<const PlannedFilter*>(plan);
  const auto* weights = reinterpret_cast<const Weight*>(filter + bank.filterCount);
  for (int32_t k = 1; k <= bank.filterCount; ++k, weights += 8 * int64_t{filter++->blocks}) {
    const bool fromRows = sizeof(Weight) == 2 && filter->note == kWideWeights;
    result[k - 1] = store(fromRows ? evaluateFilter<Product>(bank, k, x) : sumInLanes(*filter, weights, x + filter->start));
  }
}

}  // namespace qorsr
