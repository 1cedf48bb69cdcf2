// Singular value decomposition: residual, orthogonality, the plain model, LAPACK where it is installed; bad input, limits, order of
// checks, memory.
#include "model/singular_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"
#if defined(QORSR_HAVE_LAPACKE)
#include <lapacke.h>
#endif

namespace {
long double wide(double x) { return static_cast<long double>(x); }

using Table = model::Table<double>;
constexpr double kUnit = 0x1p-53;

// ---- Matrices ----

Table randomTable(kit::Random& random, int32_t m, int32_t n) {
  Table t(static_cast<std::size_t>(m));
  for (auto& row : t) row = random.vector<double>(n);
  return t;
}

// A product of two thin matrices, so of rank `rank`.
Table rankDeficient(kit::Random& random, int32_t m, int32_t n, int32_t rank) {
  const Table a = randomTable(random, m, rank), b = randomTable(random, rank, n);
  Table t(static_cast<std::size_t>(m), std::vector<double>(static_cast<std::size_t>(n)));
  for (std::size_t r = 0; r < t.size(); ++r) {
    for (std::size_t c = 0; c < t[r].size(); ++c) {
      for (std::size_t k = 0; k < b.size(); ++k) t[r][c] += a[r][k] * b[k][c];
    }
  }
  return t;
}

// Rows or columns that fall from 1e100 to 1e-100.
Table graded(kit::Random& random, int32_t m, int32_t n, bool byColumn) {
  Table t = randomTable(random, m, n);
  for (int32_t r = 0; r < m; ++r) {
    for (int32_t c = 0; c < n; ++c) {
      const double at = byColumn ? (n > 1 ? double(c) / (n - 1) : 0) : (m > 1 ? double(r) / (m - 1) : 0);
      t[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] *= std::pow(10.0, 100 - 200 * at);
    }
  }
  return t;
}

double norm(const Table& t) {
  double most = 0, sum = 0;
  for (const auto& row : t) {
    for (const double x : row) most = std::fmax(most, std::fabs(x));
  }
  if (most == 0) return 0;
  for (const auto& row : t) {
    for (const double x : row) sum += (x / most) * (x / most);
  }
  return most * std::sqrt(sum);
}

// ---- One decomposition ----

struct Decomposition {
  Table u, v;
  std::vector<double> w;
  QorStatus status;
};

Table tableOf(const std::vector<double>& values, int32_t m, int32_t n) {
  Table t;
  for (int32_t r = 0; r < m; ++r) t.emplace_back(values.begin() + int64_t{r} * n, values.begin() + int64_t{r + 1} * n);
  return t;
}

void fillMatrix(kit::Matrix<double>& matrix, const Table& t) {
  for (int32_t r = 0; r < matrix.height(); ++r) {
    for (int32_t c = 0; c < matrix.width(); ++c) matrix.set(r, c, t[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)]);
  }
}

// All four members of SVD (or SVDSort), which must agree in every bit, on guarded matrices with gaps between the rows.
Decomposition decompose(const Table& a, bool sorted, int32_t limit = 30, kit::Place place = kit::Place::kAtGuard) {
  const auto m = static_cast<int32_t>(a.size()), n = static_cast<int32_t>(a[0].size());
  const int32_t stride = n + 3;
  kit::Matrix<double> source(m, n, stride, place), u(m, n, stride, place), v(n, n, stride, place), again(m, n, stride, place);
  kit::Area<double> w(n, place), w2(n, place);
  fillMatrix(source, a);
  fillMatrix(again, a);
  Decomposition d;
  const auto strided = sorted ? qorsSVDSort_64f_D2 : qorsSVD_64f_D2;
  d.status = strided(source.block(), u.block(), m, w.data(), v.block(), n, stride, limit);
  EXPECT_BITS(source.values(), again.values());
  d.u = tableOf(u.values(), m, n);
  d.v = tableOf(v.values(), n, n);
  d.w = w.values();
  const auto listed = sorted ? qorsSVDSort_64f_D2L : qorsSVD_64f_D2L;
  EXPECT_EQ(listed(source.constRows(), u.rows(), m, w2.data(), v.rows(), n, limit), d.status);
  EXPECT_BITS(u.listedValues(), u.values());
  EXPECT_BITS(v.listedValues(), v.values());
  EXPECT_BITS(w2.values(), d.w);
  const auto stridedInPlace = sorted ? qorsSVDSort_64f_D2_I : qorsSVD_64f_D2_I;
  EXPECT_EQ(stridedInPlace(source.block(), m, w2.data(), v.block(), n, stride, limit), d.status);
  EXPECT_BITS(source.values(), u.values());
  EXPECT_BITS(v.values(), v.listedValues());
  EXPECT_BITS(w2.values(), d.w);
  const auto listedInPlace = sorted ? qorsSVDSort_64f_D2L_I : qorsSVD_64f_D2L_I;
  EXPECT_EQ(listedInPlace(again.rows(), m, w2.data(), v.rows(), n, limit), d.status);
  EXPECT_BITS(again.listedValues(), u.values());
  EXPECT_BITS(v.listedValues(), v.values());
  EXPECT_BITS(w2.values(), d.w);
  EXPECT_TRUE(source.gapsKept() && u.gapsKept() && v.gapsKept() && again.gapsKept() && w.edgesKept() && w2.edgesKept());
  return d;
}

// |A - U diag(w) V'|, |U'U - 1| over the columns with a value, |V'V - 1|, each within a modest multiple of what rounding does: some
// 4 (m + n) rotations and reflections act on each element, and each of them moves it by a few units.
void expectDecomposition(const Table& a, const Decomposition& d, double scaleOfA) {
  const std::size_t m = a.size(), n = a[0].size();
  const double bound = 30.0 * static_cast<double>(m + n) * kUnit;
  for (std::size_t r = 0; r < m; ++r) {
    for (std::size_t c = 0; c < n; ++c) {
      long double sum = 0;
      for (std::size_t k = 0; k < n; ++k) sum += wide(d.u[r][k]) * wide(d.w[k]) * wide(d.v[c][k]);
      ASSERT_NEAR(static_cast<double>(sum), a[r][c], bound * scaleOfA) << "residual at " << r << ", " << c;
    }
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      long double uu = 0, vv = 0;
      for (std::size_t r = 0; r < m; ++r) uu += wide(d.u[r][i]) * wide(d.u[r][j]);
      for (std::size_t r = 0; r < n; ++r) vv += wide(d.v[r][i]) * wide(d.v[r][j]);
      const bool has = m >= n || (d.w[i] > bound * scaleOfA && d.w[j] > bound * scaleOfA);
      if (has) {
        ASSERT_NEAR(static_cast<double>(uu), i == j ? 1.0 : 0.0, bound) << "U, columns " << i << ", " << j;
      }
      ASSERT_NEAR(static_cast<double>(vv), i == j ? 1.0 : 0.0, bound) << "V, columns " << i << ", " << j;
    }
  }
}

// The values of LAPACK, downward; n of them, zeros behind min(m, n). Empty without LAPACK.
std::vector<double> lapackValues(const Table& a) {
#if defined(QORSR_HAVE_LAPACKE)
  const auto m = static_cast<lapack_int>(a.size()), n = static_cast<lapack_int>(a[0].size());
  std::vector<double> flat, w(static_cast<std::size_t>(std::min(m, n))), superb(w.size() + 1);
  for (const auto& row : a) flat.insert(flat.end(), row.begin(), row.end());
  EXPECT_EQ(LAPACKE_dgesvd(LAPACK_ROW_MAJOR, 'N', 'N', m, n, flat.data(), n, w.data(), nullptr, m, nullptr, n, superb.data()), 0);
  w.resize(a[0].size(), 0.0);
  return w;
#else
  static_cast<void>(a);
  return {};
#endif
}

void expectAll(const Table& a) {
  const double size = norm(a);
  const double bound = 30.0 * static_cast<double>(a.size() + a[0].size()) * kUnit * size;
  const Decomposition plain = decompose(a, false), sorted = decompose(a, true);
  ASSERT_EQ(plain.status, qorStatusOk);
  ASSERT_EQ(sorted.status, qorStatusOk);
  expectDecomposition(a, plain, size);
  expectDecomposition(a, sorted, size);
  std::vector<double> w = plain.w;
  std::sort(w.rbegin(), w.rend());
  ASSERT_BITS(sorted.w, w);
  for (const double value : w) ASSERT_GE(value, 0.0);
  const auto reference = lapackValues(a);
  if (!reference.empty()) {
    ASSERT_TRUE(kit::within(w.data(), reference.data(), std::ssize(w), bound));
  }
}

// ---- Values ----

constexpr int32_t kSizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 24, 39, 64};

TEST(Svd, EverySize) {
  kit::Random random;
  for (const int32_t m : kSizes) {
    for (const int32_t n : kSizes) {
      expectAll(randomTable(random, m, n));
      if (HasFailure()) FAIL() << m << " x " << n;
    }
  }
}

TEST(Svd, RankDeficient) {
  kit::Random random;
  for (const int32_t m : {2, 5, 13, 39}) {
    for (const int32_t n : {2, 4, 13, 39, 64}) {
      for (const int32_t rank : {1, 2, std::min(m, n) / 2}) {
        if (rank < 1 || rank > std::min(m, n)) continue;
        const Table a = rankDeficient(random, m, n, rank);
        expectAll(a);
        const auto d = decompose(a, true);
        for (std::size_t k = static_cast<std::size_t>(rank); k < d.w.size(); ++k) ASSERT_LE(d.w[k], 1e-13 * norm(a));
        if (HasFailure()) FAIL() << m << " x " << n << " rank " << rank;
      }
    }
  }
}

TEST(Svd, GradedOver200OrdersOfMagnitude) {
  kit::Random random;
  for (const auto& [m, n] : {std::pair{5, 5}, {13, 13}, {39, 39}, {64, 20}, {20, 64}}) {
    for (const bool byColumn : {false, true}) {
      expectAll(graded(random, m, n, byColumn));
      if (HasFailure()) FAIL() << m << " x " << n << " by column " << byColumn;
    }
  }
  for (const double scale : {1e-140, 1e-100, 1e100, 1e140}) {
    Table a = randomTable(random, 9, 7);
    for (auto& row : a) {
      for (double& x : row) x *= scale;
    }
    expectAll(a);
    if (HasFailure()) FAIL() << scale;
  }
}

// Squares of elements here are denormal, or two of them overflow together: rotations stay exact because their lengths are formed from
// scaled numbers.
TEST(Svd, LengthsOfRotationsAreScaled) {
  kit::Random random(1);
  for (const double scale : {1e-154, 1e-156, 1e-158, 1e153, 3e153}) {
    for (int trial = 0; trial < 5; ++trial) {
      Table a = randomTable(random, 3, 3);
      for (auto& row : a) {
        for (double& x : row) x *= scale / 10;
      }
      expectAll(a);
      if (HasFailure()) FAIL() << scale;
    }
  }
}

// The shift squares elements of the bidiagonal form: what underflows or overflows there is a NaN, and does not converge.
TEST(Svd, SquaresOutOfRangeEndInTheStatus) {
  kit::Random random;
  for (const double scale : {1e-300, 1e290}) {
    Table a = randomTable(random, 9, 7);
    for (auto& row : a) {
      for (double& x : row) x *= scale;
    }
    EXPECT_EQ(model::Svd(a, 30).status, qorStatusNoConvergence);
    EXPECT_EQ(decompose(a, false).status, qorStatusNoConvergence);
    EXPECT_EQ(decompose(a, true, INT32_MAX).status, qorStatusNoConvergence);
  }
}

TEST(Svd, TallAndWide) {
  kit::Random random;
  expectAll(randomTable(random, 500, 6));
  expectAll(randomTable(random, 6, 200));
  expectAll(randomTable(random, 1, 100));
  expectAll(randomTable(random, 100, 1));
}

TEST(Svd, Zero) {
  for (const auto& [m, n] : {std::pair{1, 1}, {3, 3}, {5, 3}, {3, 5}, {39, 39}}) {
    const auto d = decompose(Table(static_cast<std::size_t>(m), std::vector<double>(static_cast<std::size_t>(n), 0.0)), true, 1);
    ASSERT_EQ(d.status, qorStatusOk);
    for (std::size_t i = 0; i < d.w.size(); ++i) {
      EXPECT_EQ(d.w[i], 0.0);
      for (std::size_t k = 0; k < d.w.size(); ++k) EXPECT_EQ(d.v[i][k], i == k ? 1.0 : 0.0);
      for (std::size_t r = 0; r < d.u.size(); ++r) EXPECT_EQ(d.u[r][i], r == i ? 1.0 : 0.0);
    }
  }
}

TEST(Svd, OneColumnTakesItsSignFromV) {
  for (const double x : {3.0, -3.0}) {
    const auto d = decompose({{x}}, false, 1);
    ASSERT_EQ(d.status, qorStatusOk);
    EXPECT_EQ(d.w[0], 3.0);
    EXPECT_EQ(d.u[0][0] * d.v[0][0], x / 3.0);
  }
  EXPECT_EQ(decompose({{3.0}}, false, 1).v[0][0], -1.0);  // the reflection turns a positive column round
  EXPECT_EQ(decompose({{-3.0}}, false, 1).v[0][0], 1.0);
}

// The first element of a column is zero: it counts as positive, and the column is reflected to the negative side.
TEST(Svd, APivotOfZeroCountsAsPositive) {
  const auto d = decompose({{0.0, 1.0}, {1.0, 0.0}}, false);
  ASSERT_EQ(d.status, qorStatusOk);
  EXPECT_BITS(d.w, std::vector<double>{1.0, 1.0});
  for (std::size_t r = 0; r < 2; ++r) {
    for (std::size_t c = 0; c < 2; ++c) {
      EXPECT_EQ(d.u[r][c], r == c ? 0.0 : r == 0 ? 1.0 : -1.0) << r << ", " << c;
      EXPECT_EQ(d.v[r][c], r != c ? 0.0 : r == 0 ? -1.0 : 1.0) << r << ", " << c;
    }
  }
}

// The product of two elements of a row this small is no number any more: V divides by one and then by the other.
TEST(Svd, ATinyRowKeepsItsReflection) {
  const Table a = {{1.0, 1e-170, 2e-170}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  const auto d = decompose(a, false);
  ASSERT_EQ(d.status, qorStatusOk);
  expectDecomposition(a, d, 1.0);
}

// The sweep takes a root of a sum of squares that no double holds.
TEST(Svd, RootsOfSquaresOutOfRange) { expectAll({{0x1p513, 0x1p462}, {0.0, 0x1p513}}); }

// U and V, up to the sign of a pair of columns (which hangs on the sign of an element that vanishes), and w in its order are those
// of the procedure. The model sums in another order, so last bits differ; gaps between the values of some hundredths bound their
// growth.
void expectColumns(const Decomposition& d, const model::Svd& expected, double bound) {
  for (std::size_t c = 0; c < d.w.size(); ++c) {
    double dot = 0;
    for (std::size_t r = 0; r < d.v.size(); ++r) dot += d.v[r][c] * expected.v[r][c];
    const double sign = dot < 0 ? -1 : 1;
    for (std::size_t r = 0; r < d.v.size(); ++r) ASSERT_NEAR(d.v[r][c], sign * expected.v[r][c], bound) << "V " << r << ", " << c;
    for (std::size_t r = 0; r < d.u.size(); ++r) ASSERT_NEAR(d.u[r][c], sign * expected.u[r][c], bound) << "U " << r << ", " << c;
  }
}

TEST(Svd, FollowsTheProcedure) {
  kit::Random random;
  for (const auto& [m, n] : {std::pair{2, 2}, {3, 3}, {4, 2}, {6, 4}, {8, 8}, {12, 5}, {3, 5}, {5, 7}}) {
    for (int trial = 0; trial < 10; ++trial) {
      const Table a = randomTable(random, m, n);
      for (const bool sorted : {false, true}) {
        model::Svd expected(a, 30);
        if (sorted) expected.sort();
        const auto d = decompose(a, sorted, 30, kit::Place::kOddStart);
        ASSERT_EQ(d.status, expected.status);
        ASSERT_TRUE(kit::within(d.w.data(), expected.w.data(), n, 1e-12));
        expectColumns(d, expected, 1e-9);
        if (HasFailure()) FAIL() << m << " x " << n;
      }
    }
  }
}

// Small whole numbers with zeros where a sign is chosen: nothing vanishes by rounding, so the signs are those of the procedure.
TEST(Svd, AZeroCountsAsPositiveWhereASignIsChosen) {
  const std::vector<Table> tables = {{{0}, {1}},
                                     {{-0.0}, {-2}},
                                     {{0}, {0}, {3}},
                                     {{0, 1}},
                                     {{0, 0, 1}},
                                     {{3, 0, 4}},
                                     {{1, 0, 2}, {0, 0, 0}},
                                     {{0, 1}, {1, 0}},
                                     {{0, 2, 0}, {1, 0, 0}},
                                     {{2, 0}, {0, 0}, {0, 1}},
                                     {{1, 0, 0}, {0, 0, 2}, {0, 3, 0}},
                                     {{0, 0x1p-33, 0}, {0, 1, 0x1p-33}, {0, 0, -1}}};
  for (const Table& a : tables) {
    for (const int32_t limit : {1, 2, 30}) {
      const model::Svd expected(a, limit);
      const auto d = decompose(a, false, limit);
      ASSERT_EQ(d.status, expected.status);
      const auto near = [&](const std::vector<double>& actual, const std::vector<double>& wanted) {
        return kit::within(actual.data(), wanted.data(), std::ssize(wanted), 1e-14);
      };
      ASSERT_TRUE(near(d.w, expected.w)) << a.size() << " x " << a[0].size();
      for (std::size_t r = 0; r < d.v.size(); ++r) ASSERT_TRUE(near(d.v[r], expected.v[r])) << a.size() << " x " << a[0].size();
      for (std::size_t r = 0; r < d.u.size(); ++r) ASSERT_TRUE(near(d.u[r], expected.u[r])) << a.size() << " x " << a[0].size();
    }
  }
  const auto d = decompose({{0}, {1}}, false, 1);
  EXPECT_EQ(d.v[0][0], -1.0);
  EXPECT_EQ(d.u[1][0], -1.0);
}

// Sums of two terms know no grouping: here every bit is that of the procedure.
TEST(Svd, TwoByTwoHasTheBitsOfTheProcedure) {
  kit::Random random(2);
  for (int trial = 0; trial < 300; ++trial) {
    Table a = randomTable(random, 2, trial % 7 == 0 ? 1 : 2);
    for (auto& row : a) {
      for (double& x : row) {
        if (trial % 3 == 1) x = static_cast<double>(random.integer(-5, 5));
        if (trial % 3 == 2) x = std::ldexp(x, static_cast<int>(random.integer(-60, 60)));
      }
    }
    if (trial == 0) a = {{5, 3}, {0, 4}};  // a shift of exactly zero
    for (const int32_t limit : {1, 2, 3, 30}) {
      model::Svd expected(a, limit);
      const bool sorted = trial % 2 == 1;
      if (sorted && expected.status == qorStatusOk) expected.sort();
      const auto d = decompose(a, sorted, limit);
      ASSERT_EQ(d.status, expected.status);
      ASSERT_BITS(d.w, expected.w) << "trial " << trial << " limit " << limit;
      for (std::size_t r = 0; r < 2; ++r) ASSERT_BITS(d.u[r], expected.u[r]) << "trial " << trial << " limit " << limit;
      for (std::size_t r = 0; r < d.v.size(); ++r) ASSERT_BITS(d.v[r], expected.v[r]) << "trial " << trial << " limit " << limit;
    }
  }
}

TEST(SvdSort, EqualValuesKeepTheirOrder) {
  Table a(6, std::vector<double>(6, 0.0));
  const double diagonal[] = {2, 5, 2, 7, 5, 2};
  for (std::size_t i = 0; i < 6; ++i) a[i][i] = diagonal[i];
  const auto d = decompose(a, true);
  EXPECT_EQ(d.w, (std::vector<double>{7, 5, 5, 2, 2, 2}));
  // Selection with swaps: 7 changes places with the first 2, and then the order is 7 5 2 2 5 2; 5 with the second 2.
  const std::size_t from[] = {3, 1, 4, 0, 2, 5};
  for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(std::fabs(d.v[from[k]][k]), 1.0) << k;
  // With 32 values and more.
  Table large(40, std::vector<double>(40, 0.0));
  for (std::size_t i = 0; i < 40; ++i) large[i][i] = static_cast<double>(1 + i * 7 % 5);
  model::Svd expected(large, 30);
  expected.sort();
  const auto e = decompose(large, true);
  EXPECT_EQ(e.w, expected.w);
  for (std::size_t r = 0; r < 40; ++r) EXPECT_EQ(e.v[r], expected.v[r]);
}

// ---- The limit ----

TEST(Svd, LimitOneSucceedsWhereNoSweepIsNeeded) {
  Table diagonal(5, std::vector<double>(5, 0.0));
  for (std::size_t i = 0; i < 5; ++i) diagonal[i][i] = static_cast<double>(i) - 2.0;
  EXPECT_EQ(decompose(diagonal, false, 1).status, qorStatusOk);
  kit::Random random;
  const Table full = randomTable(random, 5, 5);
  EXPECT_EQ(decompose(full, false, 1).status, qorStatusNoConvergence);
  EXPECT_EQ(decompose(full, false, 30).status, qorStatusOk);
}

TEST(Svd, OnFailureThePartialStateIsWrittenUnsorted) {
  kit::Random random;
  const Table a = randomTable(random, 6, 6);
  for (const int32_t limit : {1, 2, 3}) {
    const auto plain = decompose(a, false, limit), sorted = decompose(a, true, limit);
    ASSERT_EQ(plain.status, qorStatusNoConvergence);
    ASSERT_EQ(sorted.status, qorStatusNoConvergence);
    EXPECT_BITS(sorted.w, plain.w);
    const model::Svd expected(a, limit);
    ASSERT_EQ(expected.status, qorStatusNoConvergence);
    EXPECT_TRUE(kit::within(plain.w.data(), expected.w.data(), 6, 1e-9));
    for (std::size_t r = 0; r < 6; ++r) {
      EXPECT_BITS(sorted.u[r], plain.u[r]);
      EXPECT_TRUE(kit::within(plain.v[r].data(), expected.v[r].data(), 6, 1e-9));
    }
  }
}

TEST(Svd, NanAndInfinityEndWithinTheLimitAndTouchNothingOutside) {
  kit::Random random;
  const double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max()};
  for (const auto& [m, n] : {std::pair{1, 1}, {2, 2}, {5, 5}, {9, 4}, {4, 9}, {39, 39}}) {
    for (const double value : bad) {
      for (int trial = 0; trial < 4; ++trial) {
        Table a = randomTable(random, m, n);
        const auto r = static_cast<std::size_t>(random.integer(0, m - 1)), c = static_cast<std::size_t>(random.integer(0, n - 1));
        a[r][c] = value;
        if (trial == 3) a.assign(a.size(), std::vector<double>(a[0].size(), value));
        for (const int32_t limit : {1, 30, INT32_MAX}) {
          const auto d = decompose(a, trial % 2 == 0, limit);
          ASSERT_TRUE(d.status == qorStatusOk || d.status == qorStatusNoConvergence);
        }
      }
    }
  }
}

// ---- Rotation of two columns ----

TEST(QRTransColumn, TurnsEveryRow) {
  kit::Random random;
  for (const int32_t height : {1, 2, 3, 4, 5, 7, 8, 9, 40}) {
    for (const int32_t width : {1, 2, 5}) {
      kit::Matrix<double> m(height, width, width, kit::kPlaces[height % 3]);
      m.fill(random, kit::kKinds[width % 3]);
      for (int32_t first = 0; first < width; ++first) {
        for (int32_t second = 0; second < width; ++second) {
          Table expected;
          for (int32_t r = 0; r < height; ++r) {
            expected.emplace_back();
            for (int32_t c = 0; c < width; ++c) expected.back().push_back(m.listedAt(r, c));
          }
          const double c = random.real(-1, 1), s = random.real(-1, 1);
          model::turnColumns(expected, static_cast<std::size_t>(first), static_cast<std::size_t>(second), c, s);
          ASSERT_EQ(qorsQRTransColumn_64f_D2L(m.rows(), width, height, first, second, c, s), qorStatusOk);
          std::vector<double> flat;
          for (const auto& row : expected) flat.insert(flat.end(), row.begin(), row.end());
          ASSERT_BITS(m.listedValues(), flat);
        }
      }
      ASSERT_TRUE(m.gapsKept());
    }
  }
}

// ---- Faults, memory, environment ----

struct Args {
  double *source, *u, *w, *v;
  double *const *sourceRows, *const *uRows, *const *vRows;
  int32_t height, width, stride, limit;
};

void addFaults(kit::FaultTable<Args>& table, bool inPlace, bool strided) {
  table.fault("null source", qorStatusNullPointer, &Args::source, nullptr, &Args::sourceRows, nullptr);
  if (!inPlace) table.fault("null u", qorStatusNullPointer, &Args::u, nullptr, &Args::uRows, nullptr);
  table.fault("null v", qorStatusNullPointer, &Args::v, nullptr, &Args::vRows, nullptr);
  table.fault("null w", qorStatusNullPointer, &Args::w, nullptr);
  table.fault("height zero", qorStatusBadSize, &Args::height, 0);
  table.fault("width negative", qorStatusBadSize, &Args::width, INT32_MIN);
  table.fault("limit zero", qorStatusBadSize, &Args::limit, 0);
  if (strided) table.fault("stride below width", qorStatusBadSize, &Args::stride, 3, kit::against(&Args::width));
}

TEST(Svd, Faults) {
  kit::Random random;
  kit::Matrix<double> a(4, 4, 4, kit::Place::kAligned), u(4, 4, 4, kit::Place::kAligned), v(4, 4, 4, kit::Place::kAligned);
  a.fill(random, kit::Random::kPlain);
  kit::Area<double> w(4, kit::Place::kAligned);
  const Args valid{a.block(), u.block(), w.data(), v.block(), a.rows(), u.rows(), v.rows(), 4, 4, 4, 30};
  using Call = QorStatus (*)(const Args&);
  const auto check = [&](Call call, bool inPlace, bool strided) {
    kit::FaultTable<Args> table(valid, call, {{a.block(), 16}, {u.block(), 16}, {v.block(), 16}, {w.data(), 4}});
    addFaults(table, inPlace, strided);
    table.check();
  };
  check([](auto& x) { return qorsSVD_64f_D2(x.source, x.u, x.height, x.w, x.v, x.width, x.stride, x.limit); }, false, true);
  check([](auto& x) { return qorsSVDSort_64f_D2(x.source, x.u, x.height, x.w, x.v, x.width, x.stride, x.limit); }, false, true);
  check([](auto& x) { return qorsSVD_64f_D2_I(x.source, x.height, x.w, x.v, x.width, x.stride, x.limit); }, true, true);
  check([](auto& x) { return qorsSVDSort_64f_D2_I(x.source, x.height, x.w, x.v, x.width, x.stride, x.limit); }, true, true);
  check([](auto& x) { return qorsSVD_64f_D2L(x.sourceRows, x.uRows, x.height, x.w, x.vRows, x.width, x.limit); }, false, false);
  check([](auto& x) { return qorsSVDSort_64f_D2L(x.sourceRows, x.uRows, x.height, x.w, x.vRows, x.width, x.limit); }, false, false);
  check([](auto& x) { return qorsSVD_64f_D2L_I(x.sourceRows, x.height, x.w, x.vRows, x.width, x.limit); }, true, false);
  check([](auto& x) { return qorsSVDSort_64f_D2L_I(x.sourceRows, x.height, x.w, x.vRows, x.width, x.limit); }, true, false);
}

TEST(QRTransColumn, Faults) {
  struct Turn {
    double* const* rows;
    int32_t width, height, first, second;
  };
  kit::Matrix<double> m(3, 3, 3, kit::Place::kAligned);
  kit::FaultTable<Turn> table(
      Turn{m.rows(), 3, 3, 0, 1},
      [](const Turn& t) { return qorsQRTransColumn_64f_D2L(t.rows, t.width, t.height, t.first, t.second, 0.6, 0.8); },
      {{m.block(), 9}});
  table.fault("null rows", qorStatusNullPointer, &Turn::rows, nullptr);
  table.fault("width zero", qorStatusBadSize, &Turn::width, 0);
  table.fault("height negative", qorStatusBadSize, &Turn::height, -1);
  table.fault("first at width", qorStatusBadSize, &Turn::first, 3, kit::against(&Turn::width));
  table.fault("first negative", qorStatusBadSize, &Turn::first, -1);
  table.fault("second at width", qorStatusBadSize, &Turn::second, 3, kit::against(&Turn::width));
  table.fault("second negative", qorStatusBadSize, &Turn::second, INT32_MIN);
  table.check();
}

TEST(Svd, ARefusedAllocationIsReportedAndWritesNothing) {
  kit::Random random;
  const auto a = random.vector<double>(12);
  std::vector<double> u(12, 7.0), v(9, 8.0), w(3, 9.0);
  const auto call = [&] { return qorsSVDSort_64f_D2(a.data(), u.data(), 4, w.data(), v.data(), 3, 3, 30); };
  kit::Core::refuse(0);
  EXPECT_EQ(call(), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(u, std::vector<double>(12, 7.0));
  EXPECT_EQ(v, std::vector<double>(9, 8.0));
  EXPECT_EQ(w, std::vector<double>(3, 9.0));
  EXPECT_GE(kit::expectEveryRefusalReported(call), 1);
  double one = 1;  // sizes that no allocator can serve
  EXPECT_EQ(qorsSVD_64f_D2(&one, &one, INT32_MAX, &one, &one, INT32_MAX, INT32_MAX, 30), qorStatusNoMemory);
}

TEST(Svd, KeepsTheEnvironment) {
  kit::Random random;
  auto a = random.vector<double>(35, kit::Random::kNasty);
  std::vector<double> u(35), v(25), w(5);
  kit::expectEnvironmentKept([&] { qorsSVD_64f_D2(a.data(), u.data(), 7, w.data(), v.data(), 5, 5, 30); });
}

}  // namespace
