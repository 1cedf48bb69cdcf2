// Squared distances of vectors and codewords: d(x, c) = sum over j of w[j] (x[j] - c[j])^2.
//
// All arithmetic is float, of 16-bit elements too, whose differences are exact in it. The sum is that of Gaussian scores
// (scoring/gaussian_kernels.h): eight lanes, the last elements first, joined by halves. Two kernels give the same bits: one vector
// against four rows of a book at a time, and a block of vectors, one a lane, against one row.
#pragma once

#include <cstdint>

#include "frame/lanes.h"
#include "scoring/gaussian_kernels.h"

namespace qorsr {

// Rows of a matrix in the order of a list.
template <class T>
struct IndexedRows {
  const T* base;
  int64_t pitch;
  const int32_t* index;

  const T* operator[](std::ptrdiff_t r) const { return base + index[r] * pitch; }
};

template <class T, class Rows, class Weights>
void squaredDistances(const T* x, const Rows& rows, const Weights& weights, int32_t count, int32_t dimension, float* distances) {
  quadraticSums(RealSums<float>(), SharedRow<T>{x}, rows, weights, count, dimension, distances);
}
template <class T, class Weights>
float squaredDistance(const T* x, const T* row, const Weights& weights, int32_t dimension) {
  return quadraticSum(RealSums<float>(), SharedRow<T>{x}, SharedRow<T>{row}, weights, dimension);
}

// ---- Blocks of vectors ----

// Vectors of a block: what the eight sums of each leave room for in the registers (vector_quantisation, full search).
inline constexpr int kBlock = kNativeLanes<float> * (kNativeBytes > 32 ? 2 : 1);

// Weights of one in a block of vectors.
struct UnitBlockWeights {
  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& square, int32_t) const {
    return square;
  }
};
struct BlockWeights {
  const float* weights;
  template <int N>
  Lanes<float, N> operator()(const Lanes<float, N>& square, int32_t j) const {
    return square * Lanes<float, N>(weights[j]);
  }
};

// The sum over dimension elements of term(j), in the lanes of one row's sum, but each of them a set of numbers.
template <class Sum, class Term>
[[gnu::always_inline]] inline Sum sumInEightLanes(int32_t dimension, const Term& term) {
  Sum s[8];
  if (dimension < 8) {
    for (int i = 0; i < 8; ++i) s[i] = i < dimension ? term(i) : Sum(0.0F);
  } else {
    const int32_t rest = dimension % 8;
    for (int i = 0; i < 8; ++i) s[i] = rest == 0 || i >= 8 - rest ? term(dimension - 8 + i) : Sum(0.0F);
    for (int32_t j = 0; j < dimension - 8; j += 8) {
      for (int i = 0; i < 8; ++i) s[i] += term(j + i);
    }
  }
  return ((s[0] + s[4]) + (s[2] + s[6])) + ((s[1] + s[5]) + (s[3] + s[7]));
}

// Distances of kBlock vectors, element j of vector i at columns[j * kBlock + i], to a row.
template <class Weigh>
[[gnu::always_inline]] inline Lanes<float, kBlock> blockDistances(const float* columns, const float* row, const Weigh& weigh,
                                                                  int32_t dimension) {
  using L = Lanes<float, kBlock>;
  return sumInEightLanes<L>(
      dimension, [&](int32_t j) __attribute__((always_inline)) {
        const L d = L::load(columns + std::ptrdiff_t{j} * kBlock) - L(row[j]);
        return weigh(d * d, j);
      });
}

// The block of vectors 0 to count - 1, up to kBlock; the last one stands in for those that are missing.
template <class T>
void storeColumns(const T* source, int64_t step, int32_t count, int32_t dimension, float* columns) {
  for (int i = 0; i < kBlock; ++i) {
    const T* const row = source + (i < count ? i : count - 1) * step;
    for (int32_t j = 0; j < dimension; ++j) columns[std::ptrdiff_t{j} * kBlock + i] = static_cast<float>(row[j]);
  }
}

// ---- The nearest of a block ----

// Of each vector of a block the least distance so far, its index, and the next larger one. A distance that is a NaN is passed over.
struct NearestOfBlock {
  Lanes<float, kBlock> best, second;
  Lanes<int32_t, kBlock> index;

  explicit NearestOfBlock(float start) : best(start), second(start), index(-1) {}

  // A tie leaves the index as it is.
  [[gnu::always_inline]] void add(const Lanes<float, kBlock>& distance, int32_t k) {
    for (int i = 0; i < best.kParts; ++i) {
      const auto d = distance.part[i], b = best.part[i];
      const auto nearer = d < b;
      second.part[i] = native::min(native::max(b, d), second.part[i]);
      best.part[i] = nearer ? d : b;
      index.part[i] = nearer ? Lanes<int32_t, kBlock>(k).part[i] : index.part[i];
    }
  }
};

}  // namespace qorsr
