// Means and variances of columns: bits against the plain model on all three roads of 16-bit data, faults, memory, environment.
#include "model/column_moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int32_t kHeights[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 17, 100};
constexpr int32_t kScaleFactors[] = {0, 1, 5, 12, 33, 70, 200, -1, -3, -20, -70, -1100, INT32_MIN, INT32_MAX};

// Which row pointers a 16-bit matrix has: all aligned, none, or one that is not.
enum class Listing { kAligned, kUnaligned, kLastUnaligned };

// One matrix of 16-bit data with its model table, and how its row pointers stand.
struct Case16 {
  kit::Matrix<int16_t> matrix;
  model::Table<int16_t> table;
  std::vector<const int16_t*> rows;
  kit::Area<int16_t> stray;
  bool exactRoad;
  kit::Place place;
  int32_t sf;
};

template <class T>
void forEachMatrix(int32_t lowest, const std::function<void(kit::Matrix<T>&, kit::Place)>& check) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      if (height < lowest) continue;
      const kit::Place place = kit::kPlaces[(width + height) % 3];
      kit::Matrix<T> matrix(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
      matrix.fill(random, kit::kKinds[random.integer(0, 2)]);
      check(matrix, place);
      EXPECT_TRUE(matrix.gapsKept());
      if (testing::Test::HasFailure()) FAIL() << "height " << height << " width " << width;
    }
  }
}

void forEach16(int32_t lowest, const std::function<void(Case16&)>& check) {
  kit::Random random(16);
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      if (height < lowest) continue;
      for (const Listing listing : {Listing::kAligned, Listing::kUnaligned, Listing::kLastUnaligned}) {
        const bool aligned = listing != Listing::kUnaligned;
        const int32_t pitch = aligned ? (width + 7) / 8 * 8 : width + (width + 1) % 2;  // odd: rows off the boundary
        const kit::Place place = aligned ? kit::Place::kAligned : kit::Place::kOddStart;
        kit::Matrix<int16_t> m(height, width, width + 3, place, pitch);
        m.fill(random, kit::kKinds[random.integer(0, 2)]);
        Case16 c{std::move(m),
                 {},
                 {},
                 kit::Area<int16_t>(width, kit::Place::kOddStart),
                 listing != Listing::kAligned,
                 place,
                 kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)]};
        c.table = model::tableOf<int16_t>(c.matrix);
        c.rows.assign(c.matrix.constRows(), c.matrix.constRows() + height);
        if (listing == Listing::kLastUnaligned) {  // one stray row of any index switches the whole call
          std::copy(c.rows.back(), c.rows.back() + width, c.stray.data());
          c.rows.back() = c.stray.data();
        }
        check(c);
        EXPECT_TRUE(c.matrix.gapsKept());
        if (testing::Test::HasFailure()) {
          FAIL() << "height " << height << " width " << width << " sf " << c.sf << " listing " << static_cast<int>(listing);
        }
      }
    }
  }
}

// f(column) for every column.
template <class T, class F>
std::vector<T> columns(int32_t width, F f) {
  std::vector<T> v;
  for (int32_t c = 0; c < width; ++c) v.push_back(static_cast<T>(f(static_cast<std::size_t>(c))));
  return v;
}

// ---- Float ----

TEST(MeanColumn, Float) {
  forEachMatrix<float>(1, [](kit::Matrix<float>& m, kit::Place place) {
    const auto table = model::tableOf<float>(m);
    kit::Area<float> result(m.width(), place);
    ASSERT_EQ(qorsMeanColumn_32f_D2(m.block(), m.height(), m.stride(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), columns<float>(m.width(), [&](std::size_t c) {
                  return model::columnMean(table, c, model::reciprocalByDouble(m.height()));
                }));
    ASSERT_EQ(qorsMeanColumn_32f_D2L(m.rows(), m.height(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), columns<float>(m.width(), [&](std::size_t c) {
                  return model::columnMean(table, c, model::reciprocalByFloat(m.height()));
                }));
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(VarColumn, Float) {
  kit::Random random;
  forEachMatrix<float>(2, [&](kit::Matrix<float>& m, kit::Place place) {
    const auto table = model::tableOf<float>(m);
    const kit::Area<float> means(random.vector<float>(m.width(), kit::kKinds[m.width() % 3]), place);
    kit::Area<float> result(m.width(), place);
    ASSERT_EQ(qorsVarColumn_32f_D2(m.block(), m.height(), m.stride(), means.data(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), columns<float>(m.width(), [&](std::size_t c) {
                  return model::columnVariance(table, c, means[static_cast<int64_t>(c)], model::reciprocalByDouble(m.height() - 1));
                }));
    ASSERT_EQ(qorsVarColumn_32f_D2L(m.rows(), m.height(), means.data(), result.data(), m.width()), qorStatusOk);
    ASSERT_BITS(result.values(), columns<float>(m.width(), [&](std::size_t c) {
                  return model::columnVariance(table, c, means[static_cast<int64_t>(c)], model::reciprocalByFloat(m.height() - 1));
                }));
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(MeanVarColumn, Float) {
  forEachMatrix<float>(2, [](kit::Matrix<float>& m, kit::Place place) {
    const auto table = model::tableOf<float>(m);
    const float q = model::reciprocalByDouble(m.height() - 1);
    kit::Area<float> means(m.width(), place), variances(m.width(), place);
    const auto expectBoth = [&](float r) {
      ASSERT_BITS(means.values(),
                  columns<float>(m.width(), [&](std::size_t c) { return model::columnMeanVar(table, c, r, q).mean; }));
      ASSERT_BITS(variances.values(),
                  columns<float>(m.width(), [&](std::size_t c) { return model::columnMeanVar(table, c, r, q).variance; }));
    };
    ASSERT_EQ(qorsMeanVarColumn_32f_D2(m.block(), m.height(), m.stride(), means.data(), variances.data(), m.width()), qorStatusOk);
    expectBoth(model::reciprocalByDouble(m.height()));
    ASSERT_EQ(qorsMeanVarColumn_32f_D2L(m.rows(), m.height(), means.data(), variances.data(), m.width()), qorStatusOk);
    expectBoth(model::reciprocalByFloat(m.height()));
    ASSERT_TRUE(means.edgesKept() && variances.edgesKept());
  });
}

TEST(VarColumn, OfAConstantColumnMayFallBelowZero) {
  const std::vector<float> column(7, 0.1F);
  float mean = 0, variance = 1;
  ASSERT_EQ(qorsMeanVarColumn_32f_D2(column.data(), 7, 1, &mean, &variance, 1), qorStatusOk);
  EXPECT_NEAR(variance, 0.0F, 1e-8F);
  const float given = 0.2F;  // a mean that is not the mean: no floor
  ASSERT_EQ(qorsVarColumn_32f_D2(column.data(), 7, 1, &given, &variance, 1), qorStatusOk);
  EXPECT_LT(variance, 0.0F);
}

// ---- 16 bits: float sums, or exact sums where a row pointer is not aligned ----

TEST(MeanColumn, Int16) {
  forEach16(1, [](Case16& t) {
    const int32_t height = t.matrix.height(), width = t.matrix.width();
    kit::Area<int16_t> result(width, t.place);
    const auto rounded = columns<int16_t>(width, [&](std::size_t c) {
      return model::convertScaled<int16_t>(model::columnMean(t.table, c, model::reciprocalByFloat(height)), 1, 0);
    });
    ASSERT_EQ(qorsMeanColumn_16s_D2(t.matrix.block(), height, t.matrix.stride(), result.data(), width), qorStatusOk);
    ASSERT_BITS(result.values(), rounded);
    ASSERT_EQ(qorsMeanColumn_16s_D2L(t.rows.data(), height, result.data(), width), qorStatusOk);
    const auto truncated = columns<int16_t>(width, [&](std::size_t c) { return model::exactColumnMean(t.table, c); });
    ASSERT_BITS(result.values(), t.exactRoad ? truncated : rounded);
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(VarColumn, Int16) {
  kit::Random random;
  forEach16(2, [&](Case16& t) {
    const int32_t height = t.matrix.height(), width = t.matrix.width();
    const kit::Area<int16_t> means(random.vector<int16_t>(width, kit::kKinds[random.integer(0, 2)]), t.place);
    const float q = model::reciprocalByDouble(height - 1);
    kit::Area<int16_t> result(width, t.place);
    const auto rounded = columns<int16_t>(width, [&](std::size_t c) {
      const auto mean = static_cast<float>(means[static_cast<int64_t>(c)]);
      return model::convertScaled<int16_t>(model::columnVariance(t.table, c, mean, q), 1, t.sf);
    });
    ASSERT_EQ(qorsVarColumn_16s_D2Sfs(t.matrix.block(), height, t.matrix.stride(), means.data(), result.data(), width, t.sf),
              qorStatusOk);
    ASSERT_BITS(result.values(), rounded);
    ASSERT_EQ(qorsVarColumn_16s_D2LSfs(t.rows.data(), height, means.data(), result.data(), width, t.sf), qorStatusOk);
    const auto truncated = columns<int16_t>(
        width, [&](std::size_t c) { return model::exactColumnVariance(t.table, c, means[static_cast<int64_t>(c)], t.sf); });
    ASSERT_BITS(result.values(), t.exactRoad ? truncated : rounded);
    ASSERT_TRUE(result.edgesKept());
  });
}

TEST(MeanVarColumn, Int16) {
  forEach16(2, [](Case16& t) {
    const int32_t height = t.matrix.height(), width = t.matrix.width();
    const float r = model::reciprocalByFloat(height), q = model::reciprocalByDouble(height - 1);
    kit::Area<int16_t> means(width, t.place), variances(width, t.place);
    std::vector<int16_t> roundedMeans, roundedVariances, exactMeans, exactVariances;
    for (std::size_t c = 0; c < static_cast<std::size_t>(width); ++c) {
      const model::MeanVar both = model::columnMeanVar(t.table, c, r, q);  // the variance from the mean before its rounding
      roundedMeans.push_back(model::convertScaled<int16_t>(both.mean, 1, 0));
      roundedVariances.push_back(model::convertScaled<int16_t>(both.variance, 1, t.sf));
      const model::MeanVar16 exact = model::exactColumnMeanVar(t.table, c, t.sf);
      exactMeans.push_back(exact.mean);
      exactVariances.push_back(exact.variance);
    }
    ASSERT_EQ(qorsMeanVarColumn_16s_D2Sfs(t.matrix.block(), height, t.matrix.stride(), means.data(), variances.data(), width, t.sf),
              qorStatusOk);
    ASSERT_BITS(means.values(), roundedMeans);
    ASSERT_BITS(variances.values(), roundedVariances);
    ASSERT_EQ(qorsMeanVarColumn_16s_D2LSfs(t.rows.data(), height, means.data(), variances.data(), width, t.sf), qorStatusOk);
    ASSERT_BITS(means.values(), t.exactRoad ? exactMeans : roundedMeans);
    ASSERT_BITS(variances.values(), t.exactRoad ? exactVariances : roundedVariances);
    ASSERT_TRUE(means.edgesKept() && variances.edgesKept());
  });
}

TEST(MeanColumn, Int16TiesGoToEvenOnTheFloatRoadAndDownOnTheExactOne) {
  alignas(16) int16_t block[2][8] = {{2, 3, -2, 5}, {3, 4, -3, 6}};
  int16_t result[4];
  ASSERT_EQ(qorsMeanColumn_16s_D2(&block[0][0], 2, 8, result, 4), qorStatusOk);
  EXPECT_EQ(std::vector<int16_t>(result, result + 4), (std::vector<int16_t>{2, 4, -2, 6}));
  const int16_t* rows[2] = {block[0] + 1, block[1] + 1};
  ASSERT_EQ(qorsMeanColumn_16s_D2L(rows, 2, result, 3), qorStatusOk);
  EXPECT_EQ(std::vector<int16_t>(result, result + 3), (std::vector<int16_t>{3, -2, 5}));
}

// ---- 16 bits with 32-bit results: double sums ----

TEST(MeanVarColumn, Int16WithInt32Results) {
  forEach16(2, [](Case16& t) {
    const int32_t height = t.matrix.height(), width = t.matrix.width();
    kit::Area<int32_t> means(width, t.place), variances(width, t.place);
    const auto expectBoth = [&](double q) {
      const double power = std::ldexp(1.0, t.sf < -1023 ? 1024 : t.sf > 1100 ? -1100 : -t.sf);  // infinite, or zero, at the ends
      ASSERT_BITS(means.values(),
                  columns<int32_t>(width, [&](std::size_t c) { return model::doubleColumnMeanVar(t.table, c, power * q).mean; }));
      ASSERT_BITS(variances.values(), columns<int32_t>(width, [&](std::size_t c) {
                    return model::doubleColumnMeanVar(t.table, c, power * q).variance;
                  }));
    };
    ASSERT_EQ(
        qorsMeanVarColumn_16s32s_D2Sfs(t.matrix.block(), height, t.matrix.stride(), means.data(), variances.data(), width, t.sf),
        qorStatusOk);
    expectBoth(1.0 / (height - 1));
    ASSERT_EQ(qorsMeanVarColumn_16s32s_D2LSfs(t.rows.data(), height, means.data(), variances.data(), width, t.sf), qorStatusOk);
    expectBoth(static_cast<double>(model::reciprocalByFloat(height - 1)));
    ASSERT_TRUE(means.edgesKept() && variances.edgesKept());
  });
}

TEST(MeanVarColumn, Int16WithInt16MeansAndInt32Variances) {
  forEach16(2, [](Case16& t) {
    const int32_t height = t.matrix.height(), width = t.matrix.width();
    kit::Area<int16_t> means(width, t.place);
    kit::Area<int32_t> variances(width, t.place);
    const double q = 1.0 / (height - 1);
    const auto expectBoth = [&] {
      ASSERT_BITS(means.values(),
                  columns<int16_t>(width, [&](std::size_t c) { return model::doubleColumnMeanVar(t.table, c, q).mean; }));
      ASSERT_BITS(variances.values(),
                  columns<int32_t>(width, [&](std::size_t c) { return model::doubleColumnMeanVar(t.table, c, q).variance; }));
    };
    ASSERT_EQ(qorsMeanVarColumn_16s16s32s_D2(t.matrix.block(), height, t.matrix.stride(), means.data(), variances.data(), width),
              qorStatusOk);
    expectBoth();
    ASSERT_EQ(qorsMeanVarColumn_16s16s32s_D2L(t.rows.data(), height, means.data(), variances.data(), width), qorStatusOk);
    expectBoth();
    ASSERT_TRUE(means.edgesKept() && variances.edgesKept());
  });
}

// ---- Faults ----

template <class T, class Mean, class Var>
struct Args {
  const T* source;
  const T* const* rows;
  int32_t height, stride, width;
  Mean* means;  // of MeanColumn: the result
  Var* variances;
};

enum class Order { kMean, kVar, kMeanVar };

// `kMean`, `kVar`: the stride first. `kMeanVar`: the stride last.
template <class T, class Mean, class Var>
void expectFaults(Order order, QorStatus (*strided)(const Args<T, Mean, Var>&), QorStatus (*listed)(const Args<T, Mean, Var>&)) {
  using A = Args<T, Mean, Var>;
  kit::Random random;
  kit::Matrix<T> m(4, 4, 8, kit::Place::kAligned);
  m.fill(random, kit::Random::kSmall);
  kit::Area<Mean> means(4, kit::Place::kAligned);
  kit::Area<Var> variances(4, kit::Place::kAligned);
  const A valid{m.block(), m.constRows(), 4, 4, 4, means.data(), variances.data()};
  const std::vector<kit::Watched> watched = {{means.data(), 4}, {variances.data(), 4}};
  const auto addStride = [](auto& table) {
    table.fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
    table.fault("stride negative", qorStatusBadStride, &A::stride, INT32_MIN);
  };
  const auto addRest = [&](auto& table) {
    table.fault("null source", qorStatusNullPointer, &A::source, nullptr, &A::rows, nullptr);
    table.fault("null means", qorStatusNullPointer, &A::means, nullptr);
    if (order != Order::kMean) table.fault("null variances", qorStatusNullPointer, &A::variances, nullptr);
    table.fault("width zero", qorStatusBadSize, &A::width, 0);
    table.fault("height zero", qorStatusBadSize, &A::height, 0);
    if (order != Order::kMean) table.fault("height one", qorStatusBadSize, &A::height, 1);
  };
  kit::FaultTable<A> first(valid, strided, watched), second(valid, listed, watched);
  if (order != Order::kMeanVar) addStride(first);
  addRest(first);
  if (order == Order::kMeanVar) addStride(first);
  first.check();
  addRest(second);
  second.check();
}

TEST(MeanColumnFaults, EveryMember) {
  expectFaults<float, float, float>(
      Order::kMean, [](auto& a) { return qorsMeanColumn_32f_D2(a.source, a.height, a.stride, a.means, a.width); },
      [](auto& a) { return qorsMeanColumn_32f_D2L(a.rows, a.height, a.means, a.width); });
  expectFaults<int16_t, int16_t, int16_t>(
      Order::kMean, [](auto& a) { return qorsMeanColumn_16s_D2(a.source, a.height, a.stride, a.means, a.width); },
      [](auto& a) { return qorsMeanColumn_16s_D2L(a.rows, a.height, a.means, a.width); });
}

TEST(VarColumnFaults, EveryMember) {
  expectFaults<float, float, float>(
      Order::kVar, [](auto& a) { return qorsVarColumn_32f_D2(a.source, a.height, a.stride, a.means, a.variances, a.width); },
      [](auto& a) { return qorsVarColumn_32f_D2L(a.rows, a.height, a.means, a.variances, a.width); });
  expectFaults<int16_t, int16_t, int16_t>(
      Order::kVar, [](auto& a) { return qorsVarColumn_16s_D2Sfs(a.source, a.height, a.stride, a.means, a.variances, a.width, 0); },
      [](auto& a) { return qorsVarColumn_16s_D2LSfs(a.rows, a.height, a.means, a.variances, a.width, 0); });
}

TEST(MeanVarColumnFaults, EveryMember) {
  expectFaults<float, float, float>(
      Order::kMeanVar,
      [](auto& a) { return qorsMeanVarColumn_32f_D2(a.source, a.height, a.stride, a.means, a.variances, a.width); },
      [](auto& a) { return qorsMeanVarColumn_32f_D2L(a.rows, a.height, a.means, a.variances, a.width); });
  expectFaults<int16_t, int16_t, int16_t>(
      Order::kMeanVar,
      [](auto& a) { return qorsMeanVarColumn_16s_D2Sfs(a.source, a.height, a.stride, a.means, a.variances, a.width, 0); },
      [](auto& a) { return qorsMeanVarColumn_16s_D2LSfs(a.rows, a.height, a.means, a.variances, a.width, 0); });
  expectFaults<int16_t, int32_t, int32_t>(
      Order::kMeanVar,
      [](auto& a) { return qorsMeanVarColumn_16s32s_D2Sfs(a.source, a.height, a.stride, a.means, a.variances, a.width, 0); },
      [](auto& a) { return qorsMeanVarColumn_16s32s_D2LSfs(a.rows, a.height, a.means, a.variances, a.width, 0); });
  expectFaults<int16_t, int16_t, int32_t>(
      Order::kMeanVar,
      [](auto& a) { return qorsMeanVarColumn_16s16s32s_D2(a.source, a.height, a.stride, a.means, a.variances, a.width); },
      [](auto& a) { return qorsMeanVarColumn_16s16s32s_D2L(a.rows, a.height, a.means, a.variances, a.width); });
}

// ---- Memory and environment ----

TEST(Moments, EveryRefusedAllocationIsReported) {
  kit::Random random;
  kit::Matrix<int16_t> m(5, 16, 16, kit::Place::kAligned);
  m.fill(random, kit::Random::kPlain);
  int16_t means[16] = {}, variances[16];
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsMeanColumn_16s_D2(m.block(), 5, 16, means, 16); }), 1);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsVarColumn_16s_D2Sfs(m.block(), 5, 16, means, variances, 16, 2); }), 1);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsMeanVarColumn_16s_D2LSfs(m.rows(), 5, means, variances, 16, 2); }), 1);
  const int16_t* const rows[2] = {m.block() + 1, m.block() + 3};  // the exact road needs no scratch, and cannot fail
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsMeanVarColumn_16s_D2LSfs(rows, 2, means, variances, 8, 0); }), 0);
}

TEST(Moments, ARefusedAllocationWritesNothing) {
  const int16_t row[4] = {1, 2, 3, 4};
  int16_t means[2] = {77, 77}, variances[2] = {78, 78};
  kit::Core::refuse(0);
  EXPECT_EQ(qorsMeanVarColumn_16s_D2Sfs(row, 2, 2, means, variances, 2, 0), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(means[0] + means[1], 2 * 77);
  EXPECT_EQ(variances[0] + variances[1], 2 * 78);
}

TEST(Moments, SizesThatNoAllocatorCanServeAreRefused) {
  int16_t x = 0, y = 77, z = 78;  // nothing is read or written
  const int16_t* const rows[2] = {nullptr, nullptr};
  for (const int32_t width : {1 << 29, INT32_MAX - 8, INT32_MAX}) {
    EXPECT_EQ(qorsMeanColumn_16s_D2(&x, 2, width, &y, width), qorStatusNoMemory);
    EXPECT_EQ(qorsMeanColumn_16s_D2L(rows, 2, &y, width), qorStatusNoMemory);
    EXPECT_EQ(qorsVarColumn_16s_D2Sfs(&x, 2, width, &x, &y, width, 0), qorStatusNoMemory);
    EXPECT_EQ(qorsVarColumn_16s_D2LSfs(rows, 2, &x, &y, width, 0), qorStatusNoMemory);
    EXPECT_EQ(qorsMeanVarColumn_16s_D2Sfs(&x, 2, width, &y, &z, width, 0), qorStatusNoMemory);
    EXPECT_EQ(qorsMeanVarColumn_16s_D2LSfs(rows, 2, &y, &z, width / 2 + 1, 0), qorStatusNoMemory);
  }
  EXPECT_EQ(y, 77);
  EXPECT_EQ(z, 78);
}

TEST(Moments, KeepTheEnvironment) {
  kit::Random random;
  kit::Matrix<int16_t> m(5, 9, 11, kit::Place::kAligned);
  m.fill(random, kit::Random::kNasty);
  int16_t means[9], variances[9];
  int32_t wide[9], wideVariances[9];
  kit::expectEnvironmentKept([&] { qorsMeanVarColumn_16s_D2Sfs(m.block(), 5, 11, means, variances, 9, -130); });
  kit::expectEnvironmentKept([&] { qorsMeanVarColumn_16s_D2LSfs(m.rows(), 5, means, variances, 9, 3); });
  kit::expectEnvironmentKept([&] { qorsMeanVarColumn_16s32s_D2Sfs(m.block(), 5, 11, wide, wideVariances, 9, -1024); });
}

}  // namespace
