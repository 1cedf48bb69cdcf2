// Plain models of weighted means and variances of columns, in the order of the definition.
#pragma once

#include <cstdint>
#include <vector>

#include "model/table.h"

namespace model {

// term(0) + term(1) added to the running sum, then term(2) + term(3), ..., a last one alone.
template <class T, class Term>
T sumOfPairs(std::size_t count, Term term) {
  T sum = 0;
  for (std::size_t r = 0; r + 1 < count; r += 2) {
    const T a = term(r), b = term(r + 1);
    sum = sum + (a + b);
  }
  if (count % 2 == 1) sum = sum + term(count - 1);
  return sum;
}

template <class T>
T weightedMean(const Table<T>& x, const std::vector<T>& w, std::size_t c) {
  return sumOfPairs<T>(x.size(), [&](std::size_t r) { return x[r][c] * w[r]; });
}

template <class T>
T weightedVariance(const Table<T>& x, const std::vector<T>& w, std::size_t c, T mean) {
  const T squares = sumOfPairs<T>(x.size(), [&](std::size_t r) {
    const T square = x[r][c] * x[r][c];
    return square * w[r];
  });
  const T squaredMean = mean * mean;
  return squares - squaredMean;
}

template <class T>
T weightedVarianceInOnePass(const Table<T>& x, const std::vector<T>& w, std::size_t c) {
  const T squares = sumOfPairs<T>(x.size(), [&](std::size_t r) {
    const T weighted = x[r][c] * w[r];
    return weighted * x[r][c];
  });
  const T mean = weightedMean(x, w, c), squaredMean = mean * mean;
  return squares - squaredMean;
}

}  // namespace model
