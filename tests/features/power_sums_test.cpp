// Sums and sums of squares of columns: bits against the plain model, what stood before, tiles, faults, environment.
#include "model/power_sums.h"

#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "qorsr.h"

namespace {

template <class T>
struct Members;
template <>
struct Members<float> {
  static constexpr auto sum = qorsSumMeanVar_32f, add = qorsSumMeanVar_32f_I;
};
template <>
struct Members<int16_t> {
  static constexpr auto sum = qorsSumMeanVar_16s32f, add = qorsSumMeanVar_16s32f_I;
};

// The sums of all columns by f(table, column).
template <class Result, class T, class F>
std::vector<Result> columns(const model::Table<T>& table, F f) {
  std::vector<Result> v;
  for (std::size_t c = 0; c < table[0].size(); ++c) v.push_back(f(table, c));
  return v;
}

template <class T>
void expectSums(kit::Random& random, int32_t height, int32_t width, int32_t step, kit::Random::Kind kind) {
  const kit::Place place = kit::kPlaces[random.integer(0, 2)];
  kit::Matrix<T> m(height, width, step, place);
  m.fill(random, kind);
  const auto table = model::tableOf<T>(m);
  const auto squareTable = model::squaresOf(table);
  kit::Area<float> sums(width, place), squares(width, place);
  ASSERT_EQ(Members<T>::sum(m.block(), step, height, sums.data(), squares.data(), width), qorStatusOk);
  const auto plain = [](const auto& rows, std::size_t c) { return model::columnSum<float>(rows, c); };
  ASSERT_BITS(sums.values(), columns<float>(table, plain)) << height << " x " << width;
  ASSERT_BITS(squares.values(), columns<float>(squareTable, plain)) << height << " x " << width;

  const auto stood = random.vector<float>(width, kind), stoodSquares = random.vector<float>(width, kind);
  const kit::Area<float> total(stood, place), totalSquares(stoodSquares, place);
  ASSERT_EQ(Members<T>::add(m.block(), step, height, total.data(), totalSquares.data(), width), qorStatusOk);
  ASSERT_BITS(total.values(),
              columns<float>(table, [&](auto& rows, std::size_t c) { return model::columnSumFrom(rows, c, stood[c]); }))
      << height << " x " << width;
  ASSERT_BITS(
      totalSquares.values(),
      columns<float>(squareTable, [&](auto& rows, std::size_t c) { return model::columnSumFrom(rows, c, stoodSquares[c]); }))
      << height << " x " << width;
  ASSERT_TRUE(sums.edgesKept() && squares.edgesKept() && total.edgesKept() && totalSquares.edgesKept() && m.gapsKept());
}

template <class T>
class PowerSums : public testing::Test {};
using Types = testing::Types<float, int16_t>;
TYPED_TEST_SUITE(PowerSums, Types, );

TYPED_TEST(PowerSums, AgreeWithThePlainModel) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (const int32_t height : {1, 2, 3, 4, 5, 8, 17}) {
      const int32_t step = width + static_cast<int32_t>(random.integer(0, 5));
      expectSums<TypeParam>(random, height, width, step, kit::kKinds[random.integer(0, 2)]);
      if (this->HasFatalFailure()) return;
    }
  }
}

TYPED_TEST(PowerSums, OfWideTallMatrices) {
  kit::Random random;
  expectSums<TypeParam>(random, 801, 131, 140, kit::Random::kPlain);
  expectSums<TypeParam>(random, 47, 5000, 5000, kit::Random::kPlain);
}

TEST(PowerSums, WholeResultsAreTheFloatSumsConverted) {
  kit::Random random;
  for (const int32_t width : {1, 3, 8, 33, 511, 512, 513, 1100}) {
    for (const int32_t height : {1, 2, 7, 100}) {
      for (const int32_t sf : {0, 1, 9, 31, -1, -40, -200, 200, INT32_MAX, INT32_MIN}) {
        kit::Matrix<int16_t> m(height, width, width + 3, kit::Place::kAtGuard);
        m.fill(random, kit::kKinds[random.integer(0, 2)]);
        const auto table = model::tableOf<int16_t>(m);
        const auto squareTable = model::squaresOf(table);
        kit::Area<int32_t> sums(width, kit::Place::kAtGuard), squares(width, kit::Place::kAtGuard);
        const auto plain = [=](const auto& rows, std::size_t c) {
          return model::convertScaled<int32_t>(model::columnSum<float>(rows, c), 1, sf);
        };
        ASSERT_EQ(qorsSumMeanVar_16s32s_Sfs(m.block(), width + 3, height, sums.data(), squares.data(), width, sf), qorStatusOk);
        ASSERT_BITS(sums.values(), columns<int32_t>(table, plain));
        ASSERT_BITS(squares.values(), columns<int32_t>(squareTable, plain));

        const auto stood = random.vector<int32_t>(width, kit::kKinds[random.integer(0, 2)]);
        const auto added = [&](const auto& rows, std::size_t c) {
          return model::convertScaled<int32_t>(model::columnSumFrom(rows, c, static_cast<float>(stood[c])), 1, sf);
        };
        const kit::Area<int32_t> total(stood, kit::Place::kAligned), totalSquares(stood, kit::Place::kOddStart);
        ASSERT_EQ(qorsSumMeanVar_16s32s_ISfs(m.block(), width + 3, height, total.data(), totalSquares.data(), width, sf),
                  qorStatusOk);
        ASSERT_BITS(total.values(), columns<int32_t>(table, added)) << height << " x " << width << ", " << sf;
        ASSERT_BITS(totalSquares.values(), columns<int32_t>(squareTable, added)) << height << " x " << width << ", " << sf;
        ASSERT_TRUE(sums.edgesKept() && squares.edgesKept() && total.edgesKept() && totalSquares.edgesKept());
      }
    }
  }
}

// ---- Faults, memory, environment ----

template <class T, class Result, class Call>
void expectFaults(Call call) {
  struct A {
    const T* source;
    int32_t step, height;
    Result *sums, *squares;
    int32_t width;
  };
  const T source[8] = {};
  Result sums[3] = {1, 2, 3}, squares[3] = {4, 5, 6};
  kit::FaultTable<A>({source, 4, 2, sums, squares, 3},
                     [=](const A& a) { return call(a.source, a.step, a.height, a.sums, a.squares, a.width); },
                     {{sums, 3}, {squares, 3}})
      .fault("step below width", qorStatusBadStride, &A::step, 2, kit::against(&A::width))
      .fault("step negative", qorStatusBadStride, &A::step, INT32_MIN, kit::against(&A::width))
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null sums", qorStatusNullPointer, &A::sums, nullptr)
      .fault("null squares", qorStatusNullPointer, &A::squares, nullptr)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("height negative", qorStatusBadSize, &A::height, INT32_MIN)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("width negative", qorStatusBadSize, &A::width, -1)
      .check();
}

TEST(PowerSums, Faults) {
  expectFaults<float, float>(qorsSumMeanVar_32f);
  expectFaults<float, float>(qorsSumMeanVar_32f_I);
  expectFaults<int16_t, float>(qorsSumMeanVar_16s32f);
  expectFaults<int16_t, float>(qorsSumMeanVar_16s32f_I);
  const auto scaled = [](auto member) { return [=](auto... a) { return member(a..., 1); }; };
  expectFaults<int16_t, int32_t>(scaled(qorsSumMeanVar_16s32s_Sfs));
  expectFaults<int16_t, int32_t>(scaled(qorsSumMeanVar_16s32s_ISfs));
}

TEST(PowerSums, KeepTheEnvironmentAndAllocateNothing) {
  kit::Random random;
  const auto x = random.vector<float>(3000);
  const auto shorts = random.vector<int16_t>(3000);
  std::vector<float> sums(1000), squares(1000);
  std::vector<int32_t> wholeSums(1000), wholeSquares(1000);
  const auto all = [&] {
    qorsSumMeanVar_32f(x.data(), 1000, 3, sums.data(), squares.data(), 1000);
    qorsSumMeanVar_16s32f_I(shorts.data(), 1000, 3, sums.data(), squares.data(), 1000);
    return qorsSumMeanVar_16s32s_ISfs(shorts.data(), 1000, 3, wholeSums.data(), wholeSquares.data(), 1000, -9);
  };
  kit::expectEnvironmentKept(all);
  EXPECT_EQ(kit::expectEveryRefusalReported(all), 0);
}

}  // namespace
