// How far a singular value decomposition is from the exact one: the errors that the documentation states.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "kit/accuracy.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

using Columns = std::vector<std::vector<long double>>;

long double dot(const std::vector<long double>& a, const std::vector<long double>& b) {
  long double sum = 0;
  for (std::size_t r = 0; r < a.size(); ++r) sum += a[r] * b[r];
  return sum;
}

// The values, downward, by rotations that make the columns orthogonal (Hestenes): in extended precision, and by another method than
// the one that is measured.
std::vector<long double> exactValues(Columns columns) {
  const std::size_t n = columns.size();
  for (bool turned = true; turned;) {
    turned = false;
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = i + 1; j < n; ++j) {
        const long double a = dot(columns[i], columns[i]), b = dot(columns[j], columns[j]), c = dot(columns[i], columns[j]);
        if (std::fabs(c) <= 1e-18L * std::sqrt(a * b)) continue;
        turned = true;
        const long double zeta = (b - a) / (2 * c);
        const long double t = (zeta >= 0 ? 1 : -1) / (std::fabs(zeta) + std::sqrt(1 + zeta * zeta));
        const long double cosine = 1 / std::sqrt(1 + t * t), sine = cosine * t;
        for (std::size_t r = 0; r < columns[i].size(); ++r) {
          const long double x = columns[i][r], y = columns[j][r];
          columns[i][r] = cosine * x - sine * y;
          columns[j][r] = sine * x + cosine * y;
        }
      }
    }
  }
  std::vector<long double> values;
  for (const auto& column : columns) values.push_back(std::sqrt(dot(column, column)));
  std::sort(values.rbegin(), values.rend());
  return values;
}

Columns columnsOf(const std::vector<double>& matrix, int32_t m, int32_t n) {
  Columns columns(static_cast<std::size_t>(n));
  for (int32_t r = 0; r < m; ++r) {
    for (int32_t c = 0; c < n; ++c) columns[static_cast<std::size_t>(c)].push_back(matrix[static_cast<std::size_t>(r * n + c)]);
  }
  return columns;
}

void addDistanceFromOrthogonal(const Columns& columns, kit::LargestError* largest) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) largest->add(dot(columns[i], columns[j]) - (i == j ? 1 : 0));
  }
}

TEST(SvdAccuracy, ValuesProductAndOrthogonality) {
  kit::LargestError values, product, orthogonal;
  kit::Random random = kit::Random::fixed();
  const struct {
    int32_t m, n;
  } shapes[] = {{2, 2}, {3, 3}, {5, 4}, {8, 8}, {13, 13}, {24, 24}, {39, 39}, {64, 64}, {100, 13}, {300, 26}};
  for (const auto [m, n] : shapes) {
    const auto elements = static_cast<std::size_t>(m * n);
    std::vector<double> a(elements), u(elements), w(static_cast<std::size_t>(n)), v(static_cast<std::size_t>(n * n));
    for (double& x : a) x = random.real(-1, 1);
    ASSERT_EQ(qorsSVDSort_64f_D2(a.data(), u.data(), m, w.data(), v.data(), n, n, 30), qorStatusOk);
    const Columns source = columnsOf(a, m, n), left = columnsOf(u, m, n), right = columnsOf(v, n, n);
    const std::vector<long double> exact = exactValues(source);
    for (std::size_t k = 0; k < exact.size(); ++k) values.add((w[k] - exact[k]) / exact[0]);
    for (std::size_t c = 0; c < source.size(); ++c) {
      for (std::size_t r = 0; r < source[c].size(); ++r) {
        long double sum = 0;
        for (std::size_t k = 0; k < w.size(); ++k) sum += left[k][r] * w[k] * right[k][c];
        product.add((sum - source[c][r]) / exact[0]);
      }
    }
    addDistanceFromOrthogonal(left, &orthogonal);
    addDistanceFromOrthogonal(right, &orthogonal);
  }
  values.expectDocumented(3.3e-15L);
  product.expectDocumented(1e-15L);
  orthogonal.expectDocumented(4.3e-15L);
}

}  // namespace
