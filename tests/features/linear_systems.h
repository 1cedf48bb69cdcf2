// The normal equations of linear prediction, formed and solved in double: by elimination with pivoting, or by LAPACK where it is
// installed.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#if defined(QORSR_HAVE_LAPACKE)
#include <lapacke.h>
#endif

namespace systems {

// matrix a = right, with the power of what is predicted.
struct System {
  std::vector<std::vector<double>> matrix;
  std::vector<double> right;
  double power = 0;
};

inline double lagProduct(const std::vector<float>& x, std::size_t first, std::size_t second, std::size_t begin, std::size_t end) {
  double sum = 0;
  for (std::size_t n = begin; n < end; ++n) sum += static_cast<double>(x[n - first]) * static_cast<double>(x[n - second]);
  return sum;
}

// The signal is zero outside its samples.
inline System toeplitz(const std::vector<float>& x, std::size_t order) {
  std::vector<double> r;
  for (std::size_t k = 0; k <= order; ++k) r.push_back(lagProduct(x, 0, k, k, x.size()));
  System system;
  system.power = r[0];
  for (std::size_t i = 0; i < order; ++i) {
    std::vector<double> row;
    for (std::size_t j = 0; j < order; ++j) row.push_back(r[i > j ? i - j : j - i]);
    system.matrix.push_back(row);
    system.right.push_back(r[i + 1]);
  }
  return system;
}

// The sums of the library's covariance method: A(i, j) over n up to N - 2 - i, taken for i >= j, of x(n) x(n + i - j).
inline System covariance(const std::vector<float>& x, std::size_t order) {
  System system;
  system.power = lagProduct(x, 0, 0, 0, x.size());
  const auto sum = [&](std::size_t i, std::size_t d) {
    return i + 1 < x.size() ? lagProduct(x, 0, d, d, x.size() - 1 - i + d) : 0.0;
  };
  for (std::size_t i = 0; i < order; ++i) {
    std::vector<double> row;
    for (std::size_t j = 0; j < order; ++j) row.push_back(sum(std::max(i, j), i > j ? i - j : j - i));
    system.matrix.push_back(row);
    system.right.push_back(sum(i, i + 1));
  }
  return system;
}

// The energy of the error of a predictor: power - 2 a c + a A a.
template <class Predictor>
double energy(const System& system, const Predictor& a) {
  double sum = system.power;
  for (std::size_t i = 0; i < system.right.size(); ++i) {
    double row = 0;
    for (std::size_t j = 0; j < system.right.size(); ++j) row += system.matrix[i][j] * static_cast<double>(a[j]);
    sum += static_cast<double>(a[i]) * (row - 2 * system.right[i]);
  }
  return sum;
}

inline std::vector<double> solve(const System& system) {
  const std::size_t n = system.right.size();
#if defined(QORSR_HAVE_LAPACKE)
  std::vector<double> flat, x = system.right;
  for (const auto& row : system.matrix) flat.insert(flat.end(), row.begin(), row.end());
  std::vector<lapack_int> pivots(n);
  const auto size = static_cast<lapack_int>(n);
  EXPECT_EQ(LAPACKE_dgesv(LAPACK_ROW_MAJOR, size, 1, flat.data(), size, pivots.data(), x.data(), 1), 0);
  return x;
#else
  auto a = system.matrix;
  auto x = system.right;
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t pivot = column;
    for (std::size_t r = column; r < n; ++r) {
      if (std::fabs(a[r][column]) > std::fabs(a[pivot][column])) pivot = r;
    }
    std::swap(a[pivot], a[column]);
    std::swap(x[pivot], x[column]);
    for (std::size_t r = column + 1; r < n; ++r) {
      const double factor = a[r][column] / a[column][column];
      for (std::size_t c = column; c < n; ++c) a[r][c] -= factor * a[column][c];
      x[r] -= factor * x[column];
    }
  }
  for (std::size_t r = n; r-- > 0;) {
    for (std::size_t c = r + 1; c < n; ++c) x[r] -= a[r][c] * x[c];
    x[r] /= a[r][r];
  }
  return x;
#endif
}

}  // namespace systems
