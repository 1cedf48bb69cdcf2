// Banks of overlapping triangular filters over the bins of a spectrum: the record and where its areas lie.
//
//   y[k-1] = sum over j from c[k-1] to c[k] of rising[k][j - c[k-1]] x[j] + sum over j from c[k]+1 to c[k+1] of
//            falling[k][j - c[k] - 1] x[j],  k = 1 to n, c the n + 2 centres.
//
// Bins run from 0 to H = fftLength / 2. Others do not exist: every section is cut there, its elements are counted from its first
// existing bin, and an empty section adds nothing. Nothing a caller can set makes a section longer than the H + 1 elements of a
// row.
//
// Behind the rows of the n filters, the room of two more rows holds the plan of a bank's evaluation (filter_bank_plan.h, and
// filter_bank_integer.h for integers).
//
// Weights are floats in the float bank and Q14 integers in the 16-bit one. A filter's two rows lie side by side, falling then
// rising; falling element 0 begins on a 32-byte boundary, rising element 1 on one of 16 bytes.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "features/real_transform.h"
#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

// Offsets are bytes from the record; 0 where there is no such area.
struct [[gnu::packed]] FilterBankRecord {
  int32_t centers, rising, falling;
  int32_t flags;
  int32_t fftLength, fftOrder;
  int32_t filterCount, linearFilterCount;
  float melMul, melDiv;
  uint8_t ready;
  uint8_t planned;       // whether there is a plan of the evaluation
  uint8_t wholeWeights;  // the weights are integers: a 16-bit bank
  uint8_t unused;
  int32_t fftSpec, workBuffer;  // the transform's set-up, its own work memory behind it; one spectrum
};

}  // namespace qorsr

struct [[gnu::packed]] FBankState_32f : qorsr::FilterBankRecord {};
struct [[gnu::packed]] FBankState_16s : qorsr::FilterBankRecord {
  int32_t coeffScale;  // fraction bits of the weights
};
// The fixed-point bank: weights are Q30 integers, and all areas lie in the caller's block.
struct [[gnu::packed]] FBankState_32s {
  int32_t centers, rising, falling;  // byte offsets, as above
  int32_t flags;
  int32_t filterCount, binCount;
  int32_t plan;  // where it is; 0 if there is none
};
static_assert(sizeof(FBankState_32f) == 52 && sizeof(FBankState_16s) == 56, "part of the size rule");

namespace qorsr {

inline constexpr int32_t kWeightFractionBits = 14;

template <class Bank>
using WeightOf = std::conditional_t<std::is_same_v<Bank, FBankState_32f>, float, int32_t>;

// ---- Sizes ----

// The power of two, at least 2, that holds `requested` samples.
struct TransformSize {
  int32_t order;
  int64_t length;
};
constexpr TransformSize transformSize(int32_t requested) {
  TransformSize size{1, 2};
  while (size.length < requested) size = {size.order + 1, size.length * 2};
  return size;
}

constexpr int64_t wholeEights(int64_t count) { return (count + 7) & ~int64_t{7}; }

// Elements of a filter's two rows. The falling row takes the first ones; both have room for H + 1.
constexpr int64_t rowElements(int64_t half) { return wholeEights(half + 3) + wholeEights(half); }
constexpr int64_t risingStart(int64_t half) { return half + 3; }

// Set-up and work memory of the transform, each with what it needs to begin at any address.
inline int64_t transformBytes(int32_t order) { return RealTransform::setupBytes(order) + RealTransform::workBytes(order); }

// The size rule of banks: n filters, a transform of `length`.
template <class Bank>
int64_t filterBankBytes(int64_t n, TransformSize size, bool withTransform) {
  const int64_t half = size.length / 2;
  const auto rows = [](int64_t r, int64_t c) { return (r + wholeEights(c) * r + 7) * 4; };
  int64_t bytes = static_cast<int64_t>(sizeof(Bank)) + 32 + (4 * n + 44) + (4 * n + 40) + rows(n + 2, half + 3) + 32 +
                  rows(n + 2, half) + 32 + (4 * n + 40);
  if (withTransform)
    bytes += transformBytes(size.order) + 96 + 8 * size.length + 64;  // the size rule's spectrum has twice the room
  return bytes;
}

// Whether lengths and byte counts can be had at all. Beyond kMostFilters the centres alone are too many bytes, and the sum may not
// fit 64 bits.
template <class Bank>
bool filterBankFits(int64_t n, TransformSize size, bool withTransform) {
  constexpr int64_t kMostFilters = INT32_MAX / 4;
  return size.order <= kMaxTransformOrder && n <= kMostFilters && filterBankBytes<Bank>(n, size, withTransform) <= INT32_MAX;
}

// ---- Areas ----

template <class T, class Bank>
T* areaAt(Bank* bank, int32_t offset) {
  using Byte = std::conditional_t<std::is_const_v<Bank>, const std::byte, std::byte>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(bank) + offset);
}

// Lays a bank out in its block and clears its weights: record, transform set-up and work memory, centres (one entry more than is
// used, zero), weights. The fields of an empty bank are set, with `size` and `n`.
template <class Bank>
void placeFilterBank(Bank* bank, int32_t n, TransformSize size, bool withTransform) {
  std::byte* const begin = reinterpret_cast<std::byte*>(bank);
  std::byte* end = begin + sizeof(Bank);
  const auto area = [&](int64_t bytes) {
    std::byte* const start = alignUp(end);
    end = start + bytes;
    return static_cast<int32_t>(start - begin);
  };
  const auto length = static_cast<int32_t>(size.length), half = length / 2;
  std::memset(bank, 0, sizeof(Bank));
  bank->flags = qorFBankMelShaped;
  bank->fftLength = length;
  bank->filterCount = bank->linearFilterCount = n;
  bank->melDiv = 1.0F;
  if constexpr (std::is_same_v<Bank, FBankState_16s>) {
    bank->wholeWeights = 1;
    bank->coeffScale = kWeightFractionBits;
  }
  if (withTransform) {
    bank->fftSpec = area(transformBytes(size.order));
    bank->workBuffer = area(4 * (size.length + 2));
    RealTransform::init(areaAt<void>(bank, bank->fftSpec), size.order);
  }
  const int64_t centerBytes = 4 * (int64_t{n} + 3), weightBytes = 4 * (int64_t{n} + 2) * rowElements(half);
  bank->centers = area(centerBytes);
  bank->falling = area(weightBytes);
  bank->rising = bank->falling + static_cast<int32_t>(4 * risingStart(half));
  std::memset(areaAt<void>(bank, bank->centers), 0, static_cast<std::size_t>(centerBytes));
  std::memset(areaAt<void>(bank, bank->falling), 0, static_cast<std::size_t>(weightBytes));
}

// A new bank in one allocation; null where there is none.
template <class Bank>
Bank* allocateFilterBank(int32_t n, TransformSize size, bool withTransform) {
  if (!filterBankFits<Bank>(n, size, withTransform)) return nullptr;
  auto* bank = reinterpret_cast<Bank*>(allocateElements<uint8_t>(filterBankBytes<Bank>(n, size, withTransform)));
  if (bank != nullptr) placeFilterBank(bank, n, size, withTransform);
  return bank;
}

// ---- Sections ----

// Bins `first` to `first` + `count` - 1.
struct Section {
  int32_t first, count;
};
constexpr Section cutSection(int64_t from, int64_t to, int32_t half) {
  const int64_t first = from < 0 ? 0 : from, last = to > half ? half : to;
  return first > last ? Section{0, 0} : Section{static_cast<int32_t>(first), static_cast<int32_t>(last - first + 1)};
}

// The areas of a bank as typed pointers. Weight may be const.
template <class Weight>
struct BankView {
  const int32_t* centers;
  Weight *risingRows, *fallingRows;
  int64_t pitch;
  int32_t filterCount, half;

  Section risingSection(int32_t k) const { return cutSection(centers[k - 1], centers[k], half); }
  Section fallingSection(int32_t k) const { return cutSection(int64_t{centers[k]} + 1, centers[k + 1], half); }
  Weight* rising(int32_t k) const { return risingRows + (k - 1) * pitch; }
  Weight* falling(int32_t k) const { return fallingRows + (k - 1) * pitch; }
};

inline int32_t halfLength(const FilterBankRecord& bank) { return bank.fftLength / 2; }
inline int32_t halfLength(const FBankState_32s& bank) { return bank.binCount - 1; }

template <class Weight, class Bank>
BankView<Weight> viewAs(Bank* bank) {
  const int32_t half = halfLength(*bank);
  return {areaAt<const int32_t>(bank, bank->centers),
          areaAt<Weight>(bank, bank->rising),
          areaAt<Weight>(bank, bank->falling),
          rowElements(half),
          bank->filterCount,
          half};
}
template <class Bank>
auto viewOf(Bank* bank) {
  using Plain = WeightOf<std::remove_const_t<Bank>>;
  return viewAs<std::conditional_t<std::is_const_v<Bank>, const Plain, Plain>>(bank);
}

}  // namespace qorsr
