// Products of a matrix and a vector: bits against the plain model, known roundings, faults, environment.
#include "model/products.h"

#include <gtest/gtest.h>

#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/table.h"
#include "qorsr.h"

namespace {

constexpr int32_t kScaleFactors[] = {0,  1,  2,  7,   15,  16,  31,  32,  33,    47,    48,   63,   64,        65,       100,
                                     -1, -2, -7, -16, -31, -32, -33, -64, -1023, -1024, 1074, 1087, INT32_MIN, INT32_MAX};

// One shape of one member: a matrix, and a vector for each of the two families.
template <class T>
struct Case {
  kit::Matrix<T> matrix;
  kit::Area<T> ofWidth, ofHeight;
  kit::Place place;
  int32_t sf;
};

template <class T>
void expectCase(kit::Random& random, int32_t height, int32_t width, const std::function<void(Case<T>&)>& check) {
  const kit::Place place = kit::kPlaces[(width + height) % 3];
  const auto gap = static_cast<int32_t>(random.integer(0, 5));
  const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)], vectorKind = kit::kKinds[random.integer(0, 2)];
  kit::Matrix<T> m(height, width, width + gap, place);
  m.fill(random, kind);
  kit::Area<T> v(random.vector<T>(width, vectorKind), place), u(random.vector<T>(height, vectorKind), place);
  Case<T> c{std::move(m), std::move(v), std::move(u), place, kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)]};
  check(c);
  EXPECT_TRUE(c.matrix.gapsKept());
  if (testing::Test::HasFailure()) FAIL() << "height " << height << " width " << width << " sf " << c.sf;
}

template <class T>
void forEachCase(const std::function<void(Case<T>&)>& check) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : {1, 2, 3, 4, 5, 6, 7, 8, 13, 39}) {
      expectCase<T>(random, height, width, check);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
  for (const auto& [height, width] : {std::pair{3, 1000}, {5, 4097}, {200, 64}, {1000, 39}, {400, 400}, {513, 5}}) {
    for (int turn = 0; turn < 3; ++turn) expectCase<T>(random, height, width, check);
  }
}

template <class Result>
void expectBoth(const std::vector<Result>& expected, kit::Place place, const std::function<QorStatus(Result*)>& strided,
                const std::function<QorStatus(Result*)>& listed) {
  kit::Area<Result> result(std::ssize(expected), place);
  result.fill(Result(77));
  ASSERT_EQ(strided(result.data()), qorStatusOk);
  ASSERT_BITS(result.values(), expected);
  result.fill(Result(77));
  ASSERT_EQ(listed(result.data()), qorStatusOk);
  ASSERT_BITS(result.values(), expected);
  ASSERT_TRUE(result.edgesKept());
}

// ---- Values ----

TEST(MatVecMul, Float) {
  forEachCase<float>([](Case<float>& c) {
    const auto& m = c.matrix;
    std::vector<float> expected;
    for (const auto& row : model::tableOf<float>(m)) expected.push_back(model::dot(row, c.ofWidth.values()));
    expectBoth<float>(
        expected, c.place,
        [&](float* y) { return qorsMatVecMul_32f_D2(m.block(), m.stride(), c.ofWidth.data(), m.width(), y, m.height()); },
        [&](float* y) { return qorsMatVecMul_32f_D2L(m.constRows(), c.ofWidth.data(), m.width(), y, m.height()); });
  });
}

TEST(VecMatMul, Float) {
  forEachCase<float>([](Case<float>& c) {
    const auto& m = c.matrix;
    const auto table = model::tableOf<float>(m);
    std::vector<float> expected;
    for (std::size_t k = 0; k < table[0].size(); ++k) expected.push_back(model::columnDot<float>(c.ofHeight.values(), table, k));
    expectBoth<float>(
        expected, c.place,
        [&](float* y) { return qorsVecMatMul_32f_D2(c.ofHeight.data(), m.block(), m.stride(), m.height(), y, m.width()); },
        [&](float* y) { return qorsVecMatMul_32f_D2L(c.ofHeight.data(), m.constRows(), m.height(), y, m.width()); });
  });
}

template <class T, class Result, class Strided, class Listed, class Finish>
void expectRows(Strided strided, Listed listed, Finish finish) {
  forEachCase<T>([&](Case<T>& c) {
    const auto& m = c.matrix;
    std::vector<Result> expected;
    for (const auto& row : model::tableOf<T>(m)) expected.push_back(finish(model::dot(row, c.ofWidth.values()), c.sf));
    expectBoth<Result>(
        expected, c.place,
        [&](Result* y) { return strided(m.block(), m.stride(), c.ofWidth.data(), m.width(), y, m.height(), c.sf); },
        [&](Result* y) { return listed(m.constRows(), c.ofWidth.data(), m.width(), y, m.height(), c.sf); });
  });
}

TEST(MatVecMul, Int16) {
  expectRows<int16_t, int16_t>(qorsMatVecMul_16s_D2Sfs, qorsMatVecMul_16s_D2LSfs, model::shiftedSum<int16_t>);
}
TEST(MatVecMul, Int32OfInt16) {
  expectRows<int16_t, int32_t>(qorsMatVecMul_16s32s_D2Sfs, qorsMatVecMul_16s32s_D2LSfs, model::shiftedSum<int32_t>);
}
TEST(MatVecMul, Int32) {
  expectRows<int32_t, int32_t>(qorsMatVecMul_32s_D2Sfs, qorsMatVecMul_32s_D2LSfs, model::roundedSum<int32_t>);
}

template <class T, class Result, class Strided, class Listed>
void expectColumns(Strided strided, Listed listed) {
  forEachCase<T>([&](Case<T>& c) {
    const auto& m = c.matrix;
    const auto table = model::tableOf<T>(m);
    std::vector<Result> expected;
    for (std::size_t k = 0; k < table[0].size(); ++k) {
      expected.push_back(model::roundedSum<Result>(model::columnDot<double>(c.ofHeight.values(), table, k), c.sf));
    }
    expectBoth<Result>(
        expected, c.place,
        [&](Result* y) { return strided(c.ofHeight.data(), m.block(), m.stride(), m.height(), y, m.width(), c.sf); },
        [&](Result* y) { return listed(c.ofHeight.data(), m.constRows(), m.height(), y, m.width(), c.sf); });
  });
}

TEST(VecMatMul, Int16) { expectColumns<int16_t, int16_t>(qorsVecMatMul_16s_D2Sfs, qorsVecMatMul_16s_D2LSfs); }
TEST(VecMatMul, Int32OfInt16) { expectColumns<int16_t, int32_t>(qorsVecMatMul_16s32s_D2Sfs, qorsVecMatMul_16s32s_D2LSfs); }
TEST(VecMatMul, Int32) { expectColumns<int32_t, int32_t>(qorsVecMatMul_32s_D2Sfs, qorsVecMatMul_32s_D2LSfs); }

// Great products that cancel, behind one that does not: what is left shows every rounding of the sums, and so their order.
TEST(MatVecMul, Int32KeepsTheOrderOfItsSums) {
  kit::Random random;
  for (const int32_t width : {3, 5, 8, 9, 24, 39, 40, 41}) {
    for (int trial = 0; trial < 40; ++trial) {
      const auto n = static_cast<std::size_t>(width);
      std::vector<int32_t> x(n), v(n);
      for (std::size_t i = 0; i < n; ++i) {
        x[i] = i < n / 2 ? static_cast<int32_t>(random.integer(-2147483647, 2147483647)) : x[i - n / 2];
        v[i] = i < n / 2 ? static_cast<int32_t>(random.integer(-2147483647, 2147483647)) : -v[i - n / 2];
      }
      if (n % 2 != 0) x[n - 1] = static_cast<int32_t>(random.integer(-1000, 1000)), v[n - 1] = 1;
      int32_t row = 0, column = 0;
      ASSERT_EQ(qorsMatVecMul_32s_D2Sfs(x.data(), width, v.data(), width, &row, 1, 0), qorStatusOk);
      EXPECT_BITS(row, model::roundedSum<int32_t>(model::dot(x, v), 0)) << "width " << width;
      ASSERT_EQ(qorsVecMatMul_32s_D2Sfs(v.data(), x.data(), 1, width, &column, 1, 0), qorStatusOk);
      model::Table<int32_t> table;
      for (const int32_t element : x) table.push_back({element});
      EXPECT_BITS(column, model::roundedSum<int32_t>(model::columnDot<double>(v, table, 0), 0)) << "height " << width;
    }
  }
}

// Sums whose partial sums are as large as they get: every product is 2^30, or close to -2^30.
TEST(MatVecMul, ExtremeInt16StaysExact) {
  for (const int32_t width : {1, 7, 8, 31, 32, 33, 256, 257, 1000, 20000}) {
    const auto n = static_cast<std::size_t>(width);
    for (const int16_t x : {int16_t{-32768}, int16_t{32767}}) {
      for (const int16_t v : {int16_t{-32768}, int16_t{32767}, int16_t{255}, int16_t{-256}, int16_t{-1}}) {
        const std::vector<int16_t> row(n, x), vector(n, v);
        const int64_t sum = int64_t{x} * v * width;
        for (const int32_t sf : {0, 1, 14, 20, 30, 40}) {
          int32_t result = 0, columns[40];
          ASSERT_EQ(qorsMatVecMul_16s32s_D2Sfs(row.data(), width, vector.data(), width, &result, 1, sf), qorStatusOk);
          EXPECT_BITS(result, model::shiftedSum<int32_t>(sum, sf)) << "width " << width << " sf " << sf;
          const std::vector<int16_t> matrix(n * 40, x);
          ASSERT_EQ(qorsVecMatMul_16s32s_D2Sfs(vector.data(), matrix.data(), 40, width, columns, 40, sf), qorStatusOk);
          EXPECT_BITS(columns[39], model::roundedSum<int32_t>(static_cast<double>(sum), sf)) << "height " << width << " sf " << sf;
        }
      }
    }
  }
}

// The longest rows whose sums a double holds, and rows beyond: one product more or less decides the floor.
TEST(MatVecMul, LongInt16RowsAreFlooredExactly) {
  constexpr int32_t kLongest = 1 << 19;
  for (const int32_t width : {kLongest, kLongest + 1}) {
    const auto n = static_cast<std::size_t>(width);
    for (const int16_t x : {int16_t{-32768}, int16_t{32767}}) {
      std::vector<int16_t> row(n, x), vector(n, -32768);
      for (const int16_t last : {int16_t{-1}, int16_t{0}, int16_t{1}}) {
        row.back() = last;
        vector.back() = 1;
        const int64_t sum = int64_t{x} * -32768 * (width - 1) + last;
        for (const int32_t sf : {0, 1, 17, 18, 19, 30, 47, 48, 49, 50, 51, 63, 64, INT32_MAX, -1, -31, -32, INT32_MIN}) {
          int32_t result[5];
          const int16_t* rows[] = {row.data(), row.data(), row.data(), row.data(), row.data()};
          ASSERT_EQ(qorsMatVecMul_16s32s_D2LSfs(rows, vector.data(), width, result, 5, sf), qorStatusOk);
          EXPECT_BITS(result[0], model::shiftedSum<int32_t>(sum, sf)) << "width " << width << " sf " << sf;
          EXPECT_BITS(result[4], model::shiftedSum<int32_t>(sum, sf)) << "width " << width << " sf " << sf;
        }
      }
    }
  }
}

// Behind 2^53 a sum in double does not move by a one: ones that come last are lost, row after row, and a tie stays one.
TEST(VecMatMul, Int16SumsOfManyRowsRunInDouble) {
  constexpr int32_t kLarge = 1 << 23, kOnes = 4, kHeight = kLarge + 1 + kOnes;
  const std::vector<int16_t> lowest(40, -32768), half(40, -16384), ones(40, 1);
  std::vector<const int16_t*> rows(kHeight, lowest.data());
  std::vector<int16_t> vector(kHeight, -32768);
  rows[kLarge] = half.data();
  for (std::size_t r = kLarge + 1; r < rows.size(); ++r) {
    rows[r] = ones.data();
    vector[r] = 1;
  }
  for (const int32_t width : {5, 8, 40}) {
    std::vector<int32_t> result(static_cast<std::size_t>(width));
    ASSERT_EQ(qorsVecMatMul_16s32s_D2LSfs(vector.data(), rows.data(), kHeight, result.data(), width, 30), qorStatusOk);
    EXPECT_BITS(result, std::vector<int32_t>(result.size(), 1 << 23)) << width;  // 2^53 + 2^29, not 4 more
  }
}

// 2^54 - 1, which no double holds.
TEST(MatVecMul, Int16SumBeyondADouble) {
  constexpr int32_t kWidth = (1 << 24) + 1;
  std::vector<int16_t> row(kWidth, -32768), vector(kWidth, -32768);
  row.back() = -1;
  vector.back() = 1;
  int32_t result = 0;
  ASSERT_EQ(qorsMatVecMul_16s32s_D2Sfs(row.data(), kWidth, vector.data(), kWidth, &result, 1, 24), qorStatusOk);
  EXPECT_BITS(result, (1 << 30) - 1);
}

TEST(MatVecMul, Int16IsFlooredAndVecMatMulIsRounded) {
  const int16_t one = 1;
  const auto rows = [&](int16_t x, int32_t sf) {
    int16_t y = 77;
    EXPECT_EQ(qorsMatVecMul_16s_D2Sfs(&x, 1, &one, 1, &y, 1, sf), qorStatusOk);
    return y;
  };
  const auto columns = [&](int16_t x, int32_t sf) {
    int16_t y = 77;
    EXPECT_EQ(qorsVecMatMul_16s_D2Sfs(&one, &x, 1, 1, &y, 1, sf), qorStatusOk);
    return y;
  };
  EXPECT_BITS(rows(-3, 1), int16_t{-2});
  EXPECT_BITS(columns(-3, 1), int16_t{-2});
  EXPECT_BITS(columns(-5, 1), int16_t{-2});
  EXPECT_BITS(rows(-5, 1), int16_t{-3});
  EXPECT_BITS(rows(3, 1), int16_t{1});
  EXPECT_BITS(columns(3, 1), int16_t{2});
  for (const int32_t sf : {64, 65, 1000, INT32_MAX}) {
    EXPECT_BITS(rows(5, sf), int16_t{0});
    EXPECT_BITS(rows(-5, sf), int16_t{-1});
    EXPECT_BITS(columns(-5, sf), int16_t{0});
  }
  EXPECT_BITS(rows(3, -14), int16_t{32767});
  EXPECT_BITS(rows(1, -14), int16_t{16384});
  EXPECT_BITS(rows(-1, -15), int16_t{-32768});
  EXPECT_BITS(rows(0, INT32_MIN), int16_t{0});
  EXPECT_BITS(rows(1, INT32_MIN), int16_t{32767});
  EXPECT_BITS(rows(-1, -64), int16_t{-32768});
  EXPECT_BITS(columns(0, INT32_MIN), int16_t{0});  // zero times infinity
}

TEST(MatVecMul, SmallInt16SumsAreShiftedLeftUpToTheLimits) {
  for (const int32_t width : {1, 16, (1 << 19) + 1}) {
    std::vector<int16_t> row(static_cast<std::size_t>(width)), ones(row.size(), 1);
    const auto shifted = [&](int16_t x, int32_t sf) {
      int32_t y = 77;
      row[0] = x;
      EXPECT_EQ(qorsMatVecMul_16s32s_D2Sfs(row.data(), width, ones.data(), width, &y, 1, sf), qorStatusOk);
      return y;
    };
    EXPECT_BITS(shifted(1, -30), 1 << 30);
    EXPECT_BITS(shifted(-3, -30), INT32_MIN);
    EXPECT_BITS(shifted(-1, -31), INT32_MIN);
    for (const int32_t sf : {-31, -32, -33, -63, -64, -65, -1024, INT32_MIN + 1, INT32_MIN}) {
      EXPECT_BITS(shifted(1, sf), INT32_MAX) << width << ", " << sf;
      EXPECT_BITS(shifted(-1, sf), INT32_MIN) << width << ", " << sf;
      EXPECT_BITS(shifted(0, sf), 0) << width << ", " << sf;
    }
  }
}

TEST(MatVecMul, FloatLanes) {
  // 1e8 and -1e8 meet in lane 0 and leave the ones alone; in order they would swallow them.
  const float row[] = {1e8F, 1, 1, 1, -1e8F, 1, 1, 1}, ones[] = {1, 1, 1, 1, 1, 1, 1, 1};
  float result = 0;
  ASSERT_EQ(qorsMatVecMul_32f_D2(row, 8, ones, 8, &result, 1), qorStatusOk);
  EXPECT_BITS(result, 6.0F);
}

// ---- Faults ----

template <class T, class Result>
struct Args {
  const T* matrix;
  const T* const* rows;
  int32_t stride;
  const T* vector;
  int32_t width;
  Result* result;
  int32_t height;
};

template <class T, class Result>
void expectFaults(QorStatus (*strided)(const Args<T, Result>&), QorStatus (*listed)(const Args<T, Result>&)) {
  using A = Args<T, Result>;
  const T data[8] = {1, 2, 3, 4, 5, 6, 7, 8}, vector[4] = {1, 1, 1, 1};
  const T* rows[2] = {data, data + 4};
  Result result[4] = {9, 9, 9, 9};
  const A valid{data, rows, 4, vector, 4, result, 2};
  kit::FaultTable<A>(valid, strided, {{result, 4}})
      .fault("null matrix", qorStatusNullPointer, &A::matrix, nullptr)
      .fault("null vector", qorStatusNullPointer, &A::vector, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("width negative", qorStatusBadSize, &A::width, INT32_MIN)
      .fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width))
      .fault("stride negative", qorStatusBadStride, &A::stride, -4)
      .check();
  kit::FaultTable<A>(valid, listed, {{result, 4}})
      .fault("null rows", qorStatusNullPointer, &A::rows, nullptr)
      .fault("null vector", qorStatusNullPointer, &A::vector, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("height negative", qorStatusBadSize, &A::height, -1)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .check();
}

TEST(ProductFaults, NullThenSizesThenStride) {
  expectFaults<float, float>(
      [](auto& a) { return qorsMatVecMul_32f_D2(a.matrix, a.stride, a.vector, a.width, a.result, a.height); },
      [](auto& a) { return qorsMatVecMul_32f_D2L(a.rows, a.vector, a.width, a.result, a.height); });
  expectFaults<float, float>(
      [](auto& a) { return qorsVecMatMul_32f_D2(a.vector, a.matrix, a.stride, a.height, a.result, a.width); },
      [](auto& a) { return qorsVecMatMul_32f_D2L(a.vector, a.rows, a.height, a.result, a.width); });
  expectFaults<int16_t, int16_t>(
      [](auto& a) { return qorsMatVecMul_16s_D2Sfs(a.matrix, a.stride, a.vector, a.width, a.result, a.height, 1); },
      [](auto& a) { return qorsMatVecMul_16s_D2LSfs(a.rows, a.vector, a.width, a.result, a.height, 1); });
  expectFaults<int16_t, int16_t>(
      [](auto& a) { return qorsVecMatMul_16s_D2Sfs(a.vector, a.matrix, a.stride, a.height, a.result, a.width, 1); },
      [](auto& a) { return qorsVecMatMul_16s_D2LSfs(a.vector, a.rows, a.height, a.result, a.width, 1); });
  expectFaults<int16_t, int32_t>(
      [](auto& a) { return qorsMatVecMul_16s32s_D2Sfs(a.matrix, a.stride, a.vector, a.width, a.result, a.height, 1); },
      [](auto& a) { return qorsMatVecMul_16s32s_D2LSfs(a.rows, a.vector, a.width, a.result, a.height, 1); });
  expectFaults<int16_t, int32_t>(
      [](auto& a) { return qorsVecMatMul_16s32s_D2Sfs(a.vector, a.matrix, a.stride, a.height, a.result, a.width, 1); },
      [](auto& a) { return qorsVecMatMul_16s32s_D2LSfs(a.vector, a.rows, a.height, a.result, a.width, 1); });
  expectFaults<int32_t, int32_t>(
      [](auto& a) { return qorsMatVecMul_32s_D2Sfs(a.matrix, a.stride, a.vector, a.width, a.result, a.height, 1); },
      [](auto& a) { return qorsMatVecMul_32s_D2LSfs(a.rows, a.vector, a.width, a.result, a.height, 1); });
  expectFaults<int32_t, int32_t>(
      [](auto& a) { return qorsVecMatMul_32s_D2Sfs(a.vector, a.matrix, a.stride, a.height, a.result, a.width, 1); },
      [](auto& a) { return qorsVecMatMul_32s_D2LSfs(a.vector, a.rows, a.height, a.result, a.width, 1); });
}

TEST(Products, KeepTheEnvironmentAndAllocateNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random(7);
  const std::vector<int32_t> x = random.vector<int32_t>(45), v = random.vector<int32_t>(9);
  const std::vector<float> f = random.vector<float>(45, kit::Random::kNasty);
  int32_t result[9];
  float real[9];
  kit::expectEnvironmentKept([&] { qorsMatVecMul_32s_D2Sfs(x.data(), 9, v.data(), 9, result, 5, 20); });
  kit::expectEnvironmentKept([&] { qorsVecMatMul_32s_D2Sfs(v.data(), x.data(), 9, 5, result, 9, 20); });
  kit::expectEnvironmentKept([&] { qorsMatVecMul_32f_D2(f.data(), 9, f.data(), 9, real, 5); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
