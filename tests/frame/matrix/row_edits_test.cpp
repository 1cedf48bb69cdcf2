// Edits of rows and sums of rows: bits against the plain model, faults, memory, environment.
#include "model/row_edits.h"

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

constexpr int32_t kHeights[] = {1, 2, 3, 5, 8};

// Runs `edit(matrix, strided, place)` on two copies of a matrix, once for each layout, over shapes, fills and places; then both
// must hold f(before, row, column), and nothing around them may have changed.
template <class T, class Edit, class F>
void expectEdited(Edit edit, F f) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : kHeights) {
      const kit::Place place = kit::kPlaces[(width + height) % 3];
      kit::Matrix<T> matrix(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
      matrix.fill(random, kit::kKinds[random.integer(0, 2)]);
      const auto before = model::tableOf<T>(matrix);
      auto expectation = edit(matrix, place);
      std::vector<T> expected;
      for (std::size_t r = 0; r < before.size(); ++r) {
        for (std::size_t c = 0; c < before[r].size(); ++c) expected.push_back(f(before[r][c], c, expectation));
      }
      ASSERT_BITS(matrix.values(), expected) << "height " << height << " width " << width;
      ASSERT_BITS(matrix.listedValues(), expected) << "height " << height << " width " << width;
      ASSERT_TRUE(matrix.gapsKept());
    }
  }
}

// The vectors of a normalisation, in areas of their own.
template <class T>
struct Scaling {
  kit::Area<T> means, scales;
  int32_t sf;

  Scaling(kit::Random& random, int32_t width, kit::Place place, int32_t scaleFactor)
      : means(random.vector<T>(width, kit::kKinds[width % 3]), place),
        scales(random.vector<T>(width, kit::kKinds[random.integer(0, 2)]), place),
        sf(scaleFactor) {}
};

// ---- Values ----

TEST(NormalizeColumn, Float) {
  kit::Random random(1);
  expectEdited<float>(
      [&](kit::Matrix<float>& m, kit::Place place) {
        Scaling<float> s(random, m.width(), place, 0);
        const float *means = s.means.data(), *scales = s.scales.data();
        EXPECT_EQ(qorsNormalizeColumn_32f_D2(m.block(), m.stride(), m.height(), means, scales, m.width()), qorStatusOk);
        EXPECT_EQ(qorsNormalizeColumn_32f_D2L(m.rows(), m.height(), means, scales, m.width()), qorStatusOk);
        return s;
      },
      [](float x, std::size_t c, const Scaling<float>& s) {
        const auto i = static_cast<int64_t>(c);
        return model::normalized(x, s.means[i], s.scales[i]);
      });
}

constexpr int32_t kScaleFactors[] = {0, 1, 2, 15, 16, 31, 32, 33, 64, 200, -1, -3, -16, -31, -32, -33, -64, INT32_MIN, INT32_MAX};

TEST(NormalizeColumn, ScaledInt16) {
  kit::Random random(2);
  expectEdited<int16_t>(
      [&](kit::Matrix<int16_t>& m, kit::Place place) {
        Scaling<int16_t> s(random, m.width(), place, kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)]);
        const int16_t *means = s.means.data(), *scales = s.scales.data();
        EXPECT_EQ(qorsNormalizeColumn_16s_D2Sfs(m.block(), m.stride(), m.height(), means, scales, m.width(), s.sf), qorStatusOk);
        EXPECT_EQ(qorsNormalizeColumn_16s_D2LSfs(m.rows(), m.height(), means, scales, m.width(), s.sf), qorStatusOk);
        return s;
      },
      [](int16_t x, std::size_t c, const Scaling<int16_t>& s) {
        const auto i = static_cast<int64_t>(c);
        return model::normalizedScaled(x, s.means[i], s.scales[i], s.sf);
      });
}

TEST(NormalizeColumn, EveryScaleFactorOnExtremeProducts) {
  const std::vector<int16_t> x = {-32768, 32767, -32768, 32767, 3, -3, 1, 16384, 100},
                             means = {32767, -32768, 32767, -32768, 0, 0, 0, 0, 0},
                             scales = {-32768, -32768, 32767, 32767, 1, 1, -1, 2, 300};
  for (int32_t sf = -70; sf <= 70; ++sf) {
    std::vector<int16_t> result = x, expected;
    ASSERT_EQ(qorsNormalizeColumn_16s_D2Sfs(result.data(), 9, 1, means.data(), scales.data(), 9, sf), qorStatusOk);
    for (std::size_t i = 0; i < x.size(); ++i) expected.push_back(model::normalizedScaled(x[i], means[i], scales[i], sf));
    EXPECT_BITS(result, expected) << "sf " << sf;
  }
}

TEST(NormalizeColumn, LeftShiftLosesHighBitsBeforeTheLimit) {
  const int16_t zero = 0;
  const auto scaled = [&](int16_t x, int16_t scale, int32_t sf) {
    EXPECT_EQ(qorsNormalizeColumn_16s_D2Sfs(&x, 1, 1, &zero, &scale, 1, sf), qorStatusOk);
    return x;
  };
  EXPECT_BITS(scaled(3, 5, -4), int16_t{240});
  EXPECT_BITS(scaled(3000, 5, -4), int16_t{32767});
  EXPECT_BITS(scaled(1, 1, -31), int16_t{-32768});  // the bit arrives at the sign
  EXPECT_BITS(scaled(16384, 8, -15), int16_t{0});   // all bits are shifted out
  EXPECT_BITS(scaled(-3, 1, 1), int16_t{-2});       // floor
  EXPECT_BITS(scaled(-3, 1, 33), int16_t{-2});      // modulo 32
}

template <class T>
struct Subtrahend {
  kit::Area<T> row;
};

template <class T, class Strided, class Listed>
void expectSubtracted(Strided strided, Listed listed) {
  kit::Random random(3);
  expectEdited<T>(
      [&](kit::Matrix<T>& m, kit::Place place) {
        Subtrahend<T> s{kit::Area<T>(random.vector<T>(m.width(), kit::kKinds[m.height() % 3]), place)};
        EXPECT_EQ(strided(s.row.data(), m.width(), m.block(), m.stride(), m.height()), qorStatusOk);
        EXPECT_EQ(listed(s.row.data(), m.width(), m.rows(), m.height()), qorStatusOk);
        return s;
      },
      [](T x, std::size_t c, const Subtrahend<T>& s) { return model::subtracted(x, s.row[static_cast<int64_t>(c)]); });
}

TEST(SubRow, Float) { expectSubtracted<float>(qorsSubRow_32f_D2, qorsSubRow_32f_D2L); }
TEST(SubRow, Int16) { expectSubtracted<int16_t>(qorsSubRow_16s_D2, qorsSubRow_16s_D2L); }

TEST(AddAllRowSum, AddsRowAfterRowToTheSum) {
  kit::Random random(4);
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : {1, 2, 3, 4, 7, 50}) {
      const kit::Place place = kit::kPlaces[(width + height) % 3];
      kit::Matrix<float> m(height, width, width + static_cast<int32_t>(random.integer(0, 5)), place);
      m.fill(random, kit::kKinds[random.integer(0, 2)]);
      const std::vector<float> start = random.vector<float>(width);
      std::vector<float> expected = start;
      for (int32_t r = 0; r < height; ++r) {
        for (int32_t c = 0; c < width; ++c) expected[static_cast<std::size_t>(c)] += m.at(r, c);
      }
      kit::Area<float> sum(start, place), listedSum(start, place);
      ASSERT_EQ(qorsAddAllRowSum_32f_D2(m.block(), m.stride(), height, sum.data(), width), qorStatusOk);
      ASSERT_EQ(qorsAddAllRowSum_32f_D2L(m.constRows(), height, listedSum.data(), width), qorStatusOk);
      ASSERT_BITS(sum.values(), expected) << height << " x " << width;
      ASSERT_BITS(listedSum.values(), expected) << height << " x " << width;
      ASSERT_TRUE(sum.edgesKept() && listedSum.edgesKept());
    }
  }
}

TEST(AddNRows, AddsTheChosenRowsInTheirOrder) {
  kit::Random random(5);
  for (const int32_t width : kit::lengths()) {
    for (const int32_t count : {1, 2, 3, 20}) {
      const kit::Place place = kit::kPlaces[(width + count) % 3];
      const auto offset = static_cast<int32_t>(random.integer(0, 6)), gap = static_cast<int32_t>(random.integer(0, 3));
      kit::Matrix<float> m(30, offset + width, offset + width + gap, place);
      m.fill(random, kit::kKinds[random.integer(0, 2)]);
      kit::Area<int32_t> first(count, place);
      kit::Area<uint16_t> second(count, place);
      const float start = random.plain<float>();
      std::vector<float> expected(static_cast<std::size_t>(width), start);
      for (int32_t i = 0; i < count; ++i) {
        const auto row = static_cast<int32_t>(random.integer(0, 29));
        second[i] = static_cast<uint16_t>(random.integer(0, 65535));
        first[i] = row - second[i];  // also negative
        for (int32_t c = 0; c < width; ++c) expected[static_cast<std::size_t>(c)] += m.at(row, offset + c);
      }
      kit::Area<float> result(width, place);
      ASSERT_EQ(
          qorsAddNRows_32f_D2(m.block(), 30, offset, m.stride(), first.data(), second.data(), count, result.data(), width, start),
          qorStatusOk);
      ASSERT_BITS(result.values(), expected) << "width " << width << " count " << count;
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(AddMulRow, EveryLength) {
  kit::Random random(6);
  for (const int32_t length : kit::lengths()) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      const kit::Place place = kit::kPlaces[(length + kind) % 3];
      const kit::Area<double> source(random.vector<double>(length, kind), place);
      kit::Area<double> destination(random.vector<double>(length, kind), place);
      const double factor = random.value<double>(kind);
      std::vector<double> expected = destination.values();
      for (int32_t i = 0; i < length; ++i) {
        const double scaled = source[i] * factor;
        expected[static_cast<std::size_t>(i)] += scaled;
      }
      ASSERT_EQ(qorsAddMulRow_64f(source.data(), destination.data(), length, factor), qorStatusOk);
      ASSERT_BITS(destination.values(), expected) << "length " << length;
      ASSERT_TRUE(destination.edgesKept());
    }
  }
}

// ---- Faults ----

// One call of an edit in place with two vectors (or one, given twice).
template <class T>
struct EditArgs {
  T* matrix;
  T* const* rows;
  int32_t stride, height;
  T *means, *scales;
  int32_t width;
};

template <class T>
void expectEditFaults(QorStatus (*strided)(const EditArgs<T>&), QorStatus (*listed)(const EditArgs<T>&), bool oneVector) {
  using A = EditArgs<T>;
  T data[8] = {1, 2, 3, 4, 5, 6, 7, 8}, means[4] = {1, 1, 1, 1}, scales[4] = {1, 1, 1, 1};
  T* rows[2] = {data, data + 4};
  const A valid{data, rows, 4, 2, means, scales, 4};
  const std::vector<kit::Watched> watched = {{data, 8}, {means, 4}, {scales, 4}};
  kit::FaultTable<A> ofBlock(valid, strided, watched), ofRows(valid, listed, watched);
  ofBlock.fault("null matrix", qorStatusNullPointer, &A::matrix, nullptr);
  ofRows.fault("null rows", qorStatusNullPointer, &A::rows, nullptr);
  for (auto* table : {&ofBlock, &ofRows}) {
    table->fault("null means", qorStatusNullPointer, &A::means, nullptr);
    if (!oneVector) table->fault("null scales", qorStatusNullPointer, &A::scales, nullptr);
    table->fault("height zero", qorStatusBadSize, &A::height, 0);
    table->fault("height negative", qorStatusBadSize, &A::height, INT32_MIN);
    table->fault("width zero", qorStatusBadSize, &A::width, 0);
    table->fault("width negative", qorStatusBadSize, &A::width, -1);
  }
  ofBlock.fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
  ofBlock.fault("stride negative", qorStatusBadStride, &A::stride, -4);
  ofBlock.check();
  ofRows.check();
}

TEST(RowEditFaults, NullThenSizesThenStride) {
  expectEditFaults<float>(
      [](auto& a) { return qorsNormalizeColumn_32f_D2(a.matrix, a.stride, a.height, a.means, a.scales, a.width); },
      [](auto& a) { return qorsNormalizeColumn_32f_D2L(a.rows, a.height, a.means, a.scales, a.width); }, false);
  expectEditFaults<int16_t>(
      [](auto& a) { return qorsNormalizeColumn_16s_D2Sfs(a.matrix, a.stride, a.height, a.means, a.scales, a.width, 1); },
      [](auto& a) { return qorsNormalizeColumn_16s_D2LSfs(a.rows, a.height, a.means, a.scales, a.width, 1); }, false);
  expectEditFaults<float>([](auto& a) { return qorsSubRow_32f_D2(a.means, a.width, a.matrix, a.stride, a.height); },
                          [](auto& a) { return qorsSubRow_32f_D2L(a.means, a.width, a.rows, a.height); }, true);
  expectEditFaults<int16_t>([](auto& a) { return qorsSubRow_16s_D2(a.means, a.width, a.matrix, a.stride, a.height); },
                            [](auto& a) { return qorsSubRow_16s_D2L(a.means, a.width, a.rows, a.height); }, true);
  expectEditFaults<float>([](auto& a) { return qorsAddAllRowSum_32f_D2(a.matrix, a.stride, a.height, a.means, a.width); },
                          [](auto& a) { return qorsAddAllRowSum_32f_D2L(a.rows, a.height, a.means, a.width); }, true);
}

TEST(RowEditFaults, AddNRows) {
  struct A {
    const float* source;
    int32_t height, offset, stride;
    const int32_t* first;
    const uint16_t* second;
    int32_t count;
    float* destination;
    int32_t width;
  };
  const float data[12] = {};
  const int32_t first[4] = {0, 1, 0, -1};
  static constexpr int32_t kBelow[4] = {0, 1, 0, -2}, kAtHeight[4] = {0, 1, 2, 0}, kHuge[4] = {INT32_MAX, 0, 0, 0};
  const uint16_t second[4] = {0, 0, 1, 1};
  float destination[2] = {7, 7};
  kit::FaultTable<A>({data, 3, 2, 4, first, second, 4, destination, 2},
                     [](const A& a) {
                       return qorsAddNRows_32f_D2(a.source, a.height, a.offset, a.stride, a.first, a.second, a.count, a.destination,
                                                  a.width, 1.0F);
                     },
                     {{destination, 2}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("count zero", qorStatusBadSize, &A::count, 0)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("offset negative", qorStatusBadSize, &A::offset, -1)
      .fault("stride below offset and width", qorStatusBadStride, &A::stride, 3, kit::against(&A::offset, &A::width))
      .fault("offset huge, beyond the stride", qorStatusBadStride, &A::offset, INT32_MAX, kit::against(&A::stride))
      .fault("first negative in the sum", qorStatusBadSize, &A::first, kBelow)
      .fault("first at height", qorStatusBadSize, &A::first, kAtHeight, kit::against(&A::height))
      .fault("first huge", qorStatusBadSize, &A::first, kHuge)
      .check();
}

TEST(RowEditFaults, AddMulRow) {
  struct A {
    const double* source;
    double* destination;
    int32_t length;
  };
  const double source[3] = {1, 2, 3};
  double destination[3] = {4, 5, 6};
  kit::FaultTable<A>({source, destination, 3}, [](const A& a) { return qorsAddMulRow_64f(a.source, a.destination, a.length, 2.0); },
                     {{destination, 3}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
}

// ---- Environment ----

TEST(RowEdits, KeepTheEnvironmentAndAllocateNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random(7);
  kit::Matrix<float> m(5, 9, 11, kit::Place::kAligned);
  m.fill(random, kit::Random::kNasty);
  std::vector<float> v = random.vector<float>(9, kit::Random::kNasty);
  kit::expectEnvironmentKept([&] { qorsNormalizeColumn_32f_D2(m.block(), 11, 5, v.data(), v.data(), 9); });
  kit::expectEnvironmentKept([&] { qorsAddAllRowSum_32f_D2L(m.constRows(), 5, v.data(), 9); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
