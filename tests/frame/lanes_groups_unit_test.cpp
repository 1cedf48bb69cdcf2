// Groups of eight numbers of four rows: ends of rows, totals, and sums in order. Compiled once at every instruction level.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "frame/lanes.h"
#include "frame/lanes/shorts.h"
#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"

namespace {

using namespace qorsr;

template <class T, int N>
std::vector<T> valuesOf(const Lanes<T, N>& lanes) {
  std::vector<T> v(N);
  lanes.store(v.data());
  return v;
}

// Four rows of N random floats, of magnitudes so different that every other order of additions shows.
template <int N>
struct FourRows {
  std::vector<float> values[4];
  Lanes<float, N> lanes[4];

  explicit FourRows(kit::Random& random) {
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < N; ++j) values[i].push_back(static_cast<float>(random.real(-1, 1) * std::exp(random.real(-10, 10))));
      lanes[i] = Lanes<float, N>::load(values[i].data());
    }
  }
};

TEST(LanesGroups, FourSetsAreFoldedToFourLanesEach) {
  kit::Random random;
  for (int round = 0; round < 20; ++round) {
    const FourRows<16> rows(random);
    std::vector<float> expected;
    for (const auto& lanes : rows.lanes) {
      for (const float v : valuesOf(joinedTo<4>(lanes))) expected.push_back(v);
    }
    EXPECT_BITS(valuesOf(foldToFours(rows.lanes[0], rows.lanes[1], rows.lanes[2], rows.lanes[3])), expected);
  }
}

TEST(LanesGroups, TotalsJoinEachGroupByHalves) {
  constexpr int kProducts = GroupTotals::kProducts;
  kit::Random random;
  for (int calls = 0; calls < 20; ++calls) {
    GroupTotals totals;
    std::vector<float> expected(4, 0.0F);
    for (int call = 0; call < calls; ++call) {
      const FourRows<kProducts> rows(random);
      totals.add(rows.lanes);
      for (std::size_t i = 0; i < 4; ++i) {
        for (int g = 0; g < kProducts; g += 8) {
          const float* p = rows.values[i].data() + g;
          expected[i] += ((p[0] + p[4]) + (p[2] + p[6])) + ((p[1] + p[5]) + (p[3] + p[7]));
        }
      }
    }
    EXPECT_BITS(valuesOf(totals.totals()), expected) << calls;
  }
}

TEST(LanesGroups, SumsInOrder) {
  kit::Random random;
  for (int round = 0; round < 20; ++round) {
    const FourRows<8> rows(random);
    const std::vector<float> start = random.vector<float>(4);
    std::vector<float> all = start, upper = start;
    for (std::size_t i = 0; i < 4; ++i) {
      for (std::size_t j = 0; j < 8; ++j) {
        all[i] += rows.values[i][j];
        if (j >= 4) upper[i] += rows.values[i][j];
      }
    }
    const auto first = Lanes<float, 4>::load(start.data());
    EXPECT_BITS(valuesOf(addInOrder<false>(first, rows.lanes)), all);
    EXPECT_BITS(valuesOf(addInOrder<true>(first, rows.lanes)), upper);
  }
}

TEST(LanesGroups, EndsOfRows) {
  kit::Random random;
  for (int32_t width = 1; width <= 24; ++width) {
    const RowEnd end(width);
    const int32_t n = width % 8;
    ASSERT_EQ(end.count(), n);
    ASSERT_EQ(end.overlaps(), width >= 8);
    const kit::Area<int16_t> row(random.vector<int16_t>(width), kit::Place::kAtGuard);
    const auto loaded = width >= 8 ? end.load<true>(row.data()) : end.load<false>(row.data());
    std::vector<int16_t> expected(8, 0);
    for (int32_t j = 0; j < n; ++j) expected[static_cast<std::size_t>(width >= 8 ? 8 - n + j : j)] = row[width - n + j];
    EXPECT_BITS(valuesOf(end.keep<1>(loaded)), expected) << width;
    const Lanes<int16_t, 8> four[4] = {loaded, loaded, loaded, loaded};
    std::vector<int16_t> fourfold, dropped;
    for (int i = 0; i < 4; ++i) fourfold.insert(fourfold.end(), expected.begin(), expected.end());
    for (std::size_t j = 0; j < 32; ++j) dropped.push_back(j % 8 == 7 ? int16_t{0} : fourfold[j + 1]);
    const auto kept = end.keep<4>(chainGroups(four));
    EXPECT_BITS(valuesOf(kept), fourfold) << width;
    EXPECT_BITS(valuesOf(dropFirst(kept)), dropped) << width;
  }
}

}  // namespace
