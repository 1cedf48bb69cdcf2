// Dynamic time warping: bits against the plain model over shapes, deltas, beams and nasty data; faults, memory, environment.
#include "model/dtw.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "model/table.h"
#include "qorsr.h"

namespace {

constexpr float kSentinel = FLT_MAX;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Two sequences of one width and stride, in both layouts.
template <class T>
struct Sequences {
  kit::Matrix<T> first, second;

  Sequences(int32_t n1, int32_t n2, int32_t width, int32_t gap, kit::Place place)
      : first(n1, width, width + gap, place), second(n2, width, width + gap, place) {}

  void fill(kit::Random& random, kit::Random::Kind kind) {
    first.fill(random, kind);
    second.fill(random, kind);
  }
};

model::Table<float> floats(const auto& matrix) {
  model::Table<float> table;
  for (int32_t r = 0; r < matrix.height(); ++r) {
    std::vector<float>& row = table.emplace_back();
    for (int32_t c = 0; c < matrix.width(); ++c) row.push_back(static_cast<float>(matrix.at(r, c)));
  }
  return table;
}

// Both layouts give what the model gives, and write nothing else.
void expectModel(const Sequences<float>& q, int32_t delta, float beam) {
  const kit::Matrix<float>&a = q.first, &b = q.second;
  const float expected = model::warp(floats(a), floats(b), delta, beam);
  float result[3] = {-1, -1, -1};
  ASSERT_EQ(qorsDTW_L2_32f_D2(a.block(), a.height(), b.block(), b.height(), a.width(), a.stride(), result + 1, delta, beam),
            qorStatusOk);
  ASSERT_BITS(result[1], expected) << "delta " << delta << " beam " << beam;
  ASSERT_EQ(qorsDTW_L2_32f_D2L(a.constRows(), a.height(), b.constRows(), b.height(), a.width(), result + 1, delta, beam),
            qorStatusOk);
  ASSERT_BITS(result[1], expected) << "delta " << delta << " beam " << beam;
  ASSERT_EQ(result[0], -1.0F);
  ASSERT_EQ(result[2], -1.0F);
  ASSERT_TRUE(a.gapsKept() && b.gapsKept());
}

// Sequences that resemble each other: the second is the first, walked at another pace, with noise. Paths then do not run along the
// edge of the region, and beams prune what they should.
void fillAlike(kit::Random& random, Sequences<float>& q) {
  const int32_t n1 = q.first.height(), n2 = q.second.height();
  q.first.fill(random, kit::Random::kSmall);
  for (int32_t r = 1; r < n1; ++r) {
    for (int32_t c = 0; c < q.first.width(); ++c) q.first.set(r, c, q.first.at(r - 1, c) + 0.3F * q.first.at(r, c));
  }
  for (int32_t r = 0; r < n2; ++r) {
    for (int32_t c = 0; c < q.first.width(); ++c) {
      q.second.set(r, c, q.first.at(r * n1 / n2, c) + static_cast<float>(random.real(-0.1, 0.1)));
    }
  }
}

constexpr float kBeams[] = {kInfinity, 1000.0F, 10.0F, 2.0F, 1.0F, 0.5F, 0.1F, 0.0F, -3.0F};

// ---- Values ----

TEST(Dtw, EveryWidth) {
  kit::Random random;
  for (const int32_t width : kit::lengths()) {
    for (int turn = 0; turn < 6; ++turn) {
      const auto n1 = static_cast<int32_t>(random.integer(2, 30)), n2 = n1 + static_cast<int32_t>(random.integer(-n1 / 2, n1));
      Sequences<float> q(n1, n2, width, turn % 3, kit::kPlaces[turn % 3]);
      if (turn < 3) {
        fillAlike(random, q);
      } else {
        q.fill(random, kit::Random::kPlain);
      }
      const auto delta = static_cast<int32_t>(random.integer(0, 12));
      expectModel(q, delta, kBeams[random.integer(0, std::ssize(kBeams) - 1)]);
      if (HasFatalFailure()) FAIL() << n1 << " x " << n2 << " width " << width;
    }
  }
}

TEST(Dtw, EveryPairOfSmallLengthsAndEveryDelta) {
  kit::Random random(1);
  for (int32_t n1 = 1; n1 <= 14; ++n1) {
    for (int32_t n2 = 1; n2 <= 14; ++n2) {
      Sequences<float> q(n1, n2, 3, 0, kit::Place::kAtGuard);
      fillAlike(random, q);
      for (int32_t delta = -1; delta <= 15; ++delta) {
        expectModel(q, delta, kInfinity);
        expectModel(q, delta, 0.4F);
        if (HasFatalFailure()) FAIL() << n1 << " x " << n2;
      }
      expectModel(q, INT32_MAX, 0.0F);
      expectModel(q, INT32_MIN, 1.0F);
    }
  }
}

// With unrelated data the best paths run along the edges of the region.
TEST(Dtw, EdgesOfTheRegion) {
  kit::Random random(9);
  for (int32_t n1 = 2; n1 <= 16; ++n1) {
    for (int32_t n2 = 2; n2 <= 16; ++n2) {
      for (int turn = 0; turn < 8; ++turn) {
        Sequences<float> q(n1, n2, 1, 0, kit::Place::kAtGuard);
        q.fill(random, kit::Random::kPlain);
        for (int32_t delta = 0; delta <= 3; ++delta) expectModel(q, delta, kInfinity);
        if (HasFatalFailure()) FAIL() << n1 << " x " << n2;
      }
    }
  }
}

TEST(Dtw, BeamsOfEverySize) {
  kit::Random random(2);
  for (int turn = 0; turn < 40; ++turn) {
    const auto n1 = static_cast<int32_t>(random.integer(20, 90)), n2 = static_cast<int32_t>(random.integer(20, 90));
    Sequences<float> q(n1, n2, static_cast<int32_t>(random.integer(1, 16)), 1, kit::kPlaces[turn % 3]);
    fillAlike(random, q);
    const auto delta = static_cast<int32_t>(random.integer(0, 20));
    for (const float beam : kBeams) {
      expectModel(q, delta, beam);
      if (HasFatalFailure()) FAIL() << n1 << " x " << n2 << " width " << q.first.width();
    }
    expectModel(q, delta, FLT_MAX);
    expectModel(q, delta, std::numeric_limits<float>::quiet_NaN());
    expectModel(q, delta, -0.0F);
    expectModel(q, delta, 1e-42F);
  }
}

TEST(Dtw, NastyData) {
  kit::Random random(3);
  for (int turn = 0; turn < 300; ++turn) {
    const auto n1 = static_cast<int32_t>(random.integer(1, 30)), n2 = static_cast<int32_t>(random.integer(1, 30));
    Sequences<float> q(n1, n2, static_cast<int32_t>(random.integer(1, 16)), 0, kit::kPlaces[turn % 3]);
    fillAlike(random, q);
    const auto spoiled = random.integer(0, 20);  // single nasty elements, so that paths lead around them
    for (int64_t k = 0; k < spoiled; ++k) {
      kit::Matrix<float>& m = random.integer(0, 1) != 0 ? q.first : q.second;
      const auto row = static_cast<int32_t>(random.integer(0, m.height() - 1));
      const auto column = static_cast<int32_t>(random.integer(0, m.width() - 1));
      m.set(row, column, random.nasty<float>());
    }
    if (turn % 10 == 0) q.fill(random, kit::Random::kNasty);
    for (const float beam : kBeams) expectModel(q, static_cast<int32_t>(random.integer(0, 30)), beam);
    if (HasFatalFailure()) FAIL() << n1 << " x " << n2 << " width " << q.first.width();
  }
}

TEST(Dtw, LongSequences) {
  kit::Random random(4);
  for (const auto& [n1, n2, width] : {std::tuple{124, 124, 13}, {125, 124, 13}, {400, 300, 13}, {130, 900, 2}, {300, 300, 39}}) {
    Sequences<float> q(n1, n2, width, 3, kit::Place::kAtGuard);
    fillAlike(random, q);
    for (const int32_t delta : {0, 5, 50, 1000}) {
      expectModel(q, delta, kInfinity);
      expectModel(q, delta, 5.0F);
    }
  }
}

TEST(Dtw, IntegersAreConvertedExactlyAndTheResultIsScaled) {
  constexpr int32_t kScaleFactors[] = {0, 1, 3, -1, -4, -20, 16, 100, 149, 150, -128, INT32_MIN, INT32_MAX};
  const auto check = [&]<class T>(T, auto strided, auto listed) {
    kit::Random random(5);
    for (int turn = 0; turn < 300; ++turn) {
      const auto n1 = static_cast<int32_t>(random.integer(1, 20)), n2 = static_cast<int32_t>(random.integer(1, 20));
      Sequences<T> q(n1, n2, static_cast<int32_t>(random.integer(1, 20)), turn % 4, kit::kPlaces[turn % 3]);
      q.fill(random, kit::kKinds[turn / 3 % 3]);
      const auto delta = static_cast<int32_t>(random.integer(-1, 10));
      const int32_t beam = turn % 5 == 0 ? INT32_MAX : static_cast<int32_t>(random.integer(-10, 100000));
      const int32_t sf = kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)];
      const float real = model::warp(floats(q.first), floats(q.second), delta, static_cast<float>(beam));
      const auto expected = model::convertScaled<int32_t>(real, 1, sf);
      int32_t result = 0;
      const auto &a = q.first, &b = q.second;
      // A block is as long as length times stride.
      ASSERT_EQ(strided(a.block(), n1, b.block(), n2, a.width(), a.stride(), &result, delta, beam, sf), qorStatusOk);
      ASSERT_BITS(result, expected) << n1 << " x " << n2 << " width " << a.width() << " sf " << sf;
      ASSERT_EQ(listed(a.constRows(), n1, b.constRows(), n2, a.width(), &result, delta, beam, sf), qorStatusOk);
      ASSERT_BITS(result, expected);
    }
  };
  check(uint8_t(), qorsDTW_L2_8u32s_D2Sfs, qorsDTW_L2_8u32s_D2LSfs);
  check(int16_t(), qorsDTW_L2Low_16s32s_D2Sfs, qorsDTW_L2Low_16s32s_D2LSfs);
}

// ---- Single facts ----

float warpRows(const std::vector<float>& a, const std::vector<float>& b, int32_t delta, float beam) {  // width 1
  float result = -1;
  EXPECT_EQ(qorsDTW_L2_32f_D2(a.data(), static_cast<int32_t>(std::ssize(a)), b.data(), static_cast<int32_t>(std::ssize(b)), 1, 1,
                              &result, delta, beam),
            qorStatusOk);
  return result;
}

TEST(Dtw, OneRowEachIsNeverCompared) {
  EXPECT_BITS(warpRows({5}, {5}, 0, 0), kSentinel);
  EXPECT_BITS(warpRows({5}, {7}, 3, kInfinity), kSentinel);
  EXPECT_BITS(warpRows({NAN}, {kInfinity}, 3, 1), kSentinel);
}

TEST(Dtw, OneRowAgainstTwoOrThree) {
  EXPECT_BITS(warpRows({5}, {7, 8}, 5, kInfinity), 5.0F);  // 2 + 3
  EXPECT_BITS(warpRows({7, 8}, {5}, 5, kInfinity), 5.0F);
  EXPECT_BITS(warpRows({5}, {7, 8, 9}, 5, kInfinity), kSentinel);
}

TEST(Dtw, MoreThanTwiceAsLongMissesTheEnd) {
  std::vector<float> shorter(10), longer(25);
  EXPECT_BITS(warpRows(shorter, longer, 0, kInfinity), kSentinel);
  EXPECT_BITS(warpRows(shorter, longer, 9, kInfinity), 0.0F);
  int32_t result = 0;
  const std::vector<int16_t> a(10), b(25);
  ASSERT_EQ(qorsDTW_L2Low_16s32s_D2Sfs(a.data(), 10, b.data(), 25, 1, 1, &result, 0, 100, 3), qorStatusOk);
  EXPECT_BITS(result, INT32_MAX);
  ASSERT_EQ(qorsDTW_L2Low_16s32s_D2Sfs(a.data(), 10, b.data(), 25, 1, 1, &result, 0, 100, 100), qorStatusOk);
  EXPECT_BITS(result, (1 << 28) - 16);  // the sentinel is scaled like any distance: 2^128 - 2^104
}

TEST(Dtw, IdenticalSequencesAreAtDistanceZero) {
  kit::Random random(6);
  for (const int32_t n : {2, 3, 10, 57}) {
    const std::vector<float> x = random.vector<float>(n);
    EXPECT_BITS(warpRows(x, x, 0, 0), 0.0F);
    EXPECT_BITS(warpRows(x, x, 4, 0), 0.0F);
  }
}

TEST(Dtw, BeamOfZeroKeepsCellsWithinOneEpsilon) {
  // The cheap path leads through row 1 of the second sequence, which lies a little above the least cell.
  EXPECT_BITS(warpRows({0, 0, 5, 5}, {0, 1.0e-7F, 9, 5}, 1, 0), 1.0e-7F);
  EXPECT_BITS(warpRows({0, 0, 5, 5}, {0, 1.1920929e-7F, 9, 5}, 1, 0), 1.1920929e-7F);  // equal to the limit
  EXPECT_BITS(warpRows({0, 0, 5, 5}, {0, 1.3e-7F, 9, 5}, 1, 0), 4.0F);
  EXPECT_BITS(warpRows({0, 0, 5, 5}, {0, 1.3e-7F, 9, 5}, 1, 1), 1.3e-7F);
}

TEST(Dtw, OnlySequencesOfOneLengthHaveRoles) {
  kit::Random random(7);
  bool differs = false;
  for (int turn = 0; turn < 50; ++turn) {
    const auto n = random.integer(5, 20);
    const std::vector<float> x = random.vector<float>(n), y = random.vector<float>(n + random.integer(1, 4)),
                             z = random.vector<float>(n);
    EXPECT_BITS(warpRows(x, y, 2, kInfinity), warpRows(y, x, 2, kInfinity));
    differs = differs || warpRows(x, z, 2, kInfinity) != warpRows(z, x, 2, kInfinity);
  }
  EXPECT_TRUE(differs);
}

TEST(Dtw, StepsAdvanceTheShorterSequenceByTwoAtMost) {
  // The second sequence repeats the first with one, or two, foreign rows in between: one is skipped at no cost, two are not.
  EXPECT_BITS(warpRows({1, 2, 3, 4, 5}, {1, 2, 9, 3, 4}, 1, kInfinity), 1.0F);        // 5 meets 4
  EXPECT_BITS(warpRows({1, 2, 3, 4, 5, 5}, {1, 2, 9, 9, 4, 5}, 1, kInfinity), 6.0F);  // 3 must meet a 9
}

TEST(Dtw, InfiniteColumnsGiveInfinity) {
  EXPECT_BITS(warpRows({1, kInfinity, 1}, {1, 1, 1}, 1, 1), kInfinity);
  EXPECT_BITS(warpRows({1, NAN, 1}, {1, 1, 1}, 1, 1), kInfinity);    // no path leads through a NaN
  EXPECT_BITS(warpRows({1, 2, 3, 4}, {1, 2, NAN, 3}, 1, 10), 1.0F);  // around it: 4 meets 3
}

TEST(Dtw, ThresholdOfWidth13ShowsInTheArithmetic) {
  // 1 + 13 * 2^-26, the small terms in pairs, is lost in a float sum and kept in a double one.
  for (const int32_t width : {13, 14}) {
    std::vector<float> a(static_cast<std::size_t>(2 * width), 0x1p-13F), zero(static_cast<std::size_t>(2 * width));
    a[0] = a[static_cast<std::size_t>(width)] = 1.0F;
    float result = 0;
    ASSERT_EQ(qorsDTW_L2_32f_D2(a.data(), 2, zero.data(), 2, width, width, &result, 1, 1), qorStatusOk);
    EXPECT_TRUE(width == 13 || result > 2.0F);
    EXPECT_BITS(result, width == 13 ? 2.0F : 2.0F * static_cast<float>(std::sqrt(1.0 + 13 * 0x1p-26)));
  }
}

// ---- Faults ----

template <class T, class Distance, class Strided, class Listed>
void expectFaults(Strided strided, Listed listed) {
  struct A {
    const T* first;
    const T* const* rows1;
    int32_t height1;
    const T* second;
    const T* const* rows2;
    int32_t height2, width, stride;
    Distance* distance;
  };
  const T data[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3};
  const T* rows[3] = {data, data + 4, data + 8};
  Distance distance = 42;
  const A valid{data, rows, 3, data, rows, 3, 4, 4, &distance};
  kit::FaultTable<A>(valid, strided, {{&distance, 1}})
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null distance", qorStatusNullPointer, &A::distance, nullptr)
      .fault("height1 zero", qorStatusBadSize, &A::height1, 0)
      .fault("height2 negative", qorStatusBadSize, &A::height2, INT32_MIN)
      .fault("width zero", qorStatusBadSize, &A::width, 0)
      .fault("stride below width", qorStatusBadSize, &A::stride, 3, kit::against(&A::width))
      .fault("stride negative", qorStatusBadSize, &A::stride, -4)
      .check();
  kit::FaultTable<A>(valid, listed, {{&distance, 1}})
      .fault("null rows1", qorStatusNullPointer, &A::rows1, nullptr)
      .fault("null rows2", qorStatusNullPointer, &A::rows2, nullptr)
      .fault("null distance", qorStatusNullPointer, &A::distance, nullptr)
      .fault("height1 negative", qorStatusBadSize, &A::height1, -1)
      .fault("height2 zero", qorStatusBadSize, &A::height2, 0)
      .fault("width negative", qorStatusBadSize, &A::width, -1)
      .check();
}

TEST(DtwFaults, EveryMember) {
  expectFaults<float, float>(
      [](auto& a) { return qorsDTW_L2_32f_D2(a.first, a.height1, a.second, a.height2, a.width, a.stride, a.distance, 1, 1); },
      [](auto& a) { return qorsDTW_L2_32f_D2L(a.rows1, a.height1, a.rows2, a.height2, a.width, a.distance, 1, 1); });
  expectFaults<uint8_t, int32_t>(
      [](auto& a) {
        return qorsDTW_L2_8u32s_D2Sfs(a.first, a.height1, a.second, a.height2, a.width, a.stride, a.distance, 1, 1, 0);
      },
      [](auto& a) { return qorsDTW_L2_8u32s_D2LSfs(a.rows1, a.height1, a.rows2, a.height2, a.width, a.distance, 1, 1, 0); });
  expectFaults<int16_t, int32_t>(
      [](auto& a) {
        return qorsDTW_L2Low_16s32s_D2Sfs(a.first, a.height1, a.second, a.height2, a.width, a.stride, a.distance, 1, 1, 0);
      },
      [](auto& a) { return qorsDTW_L2Low_16s32s_D2LSfs(a.rows1, a.height1, a.rows2, a.height2, a.width, a.distance, 1, 1, 0); });
}

// ---- Memory and environment ----

TEST(Dtw, AllocatesWhereTheColumnsAndBoundsExceed512Elements) {
  const std::vector<float> x(1000);
  float result = 0;
  const auto call = [&](int32_t n1, int32_t n2) { return qorsDTW_L2_32f_D2(x.data(), n1, x.data(), n2, 1, 1, &result, 1000, 1); };
  for (const std::pair<int, int>& n : {std::pair{124, 124}, {10, 240}, {1, 248}, {3, 248}, {4, 244}}) {
    EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(n.first, n.second); }), 0) << n.first << " x " << n.second;
  }
  for (const std::pair<int, int>& n : {std::pair{125, 124}, {125, 125}, {10, 241}, {10, 1000}, {4, 248}, {1000, 1000}}) {
    EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(n.first, n.second); }), 1) << n.first << " x " << n.second;
  }
}

TEST(Dtw, IntegersAlwaysAllocate) {
  const std::vector<int16_t> x(600);
  const std::vector<uint8_t> y(600);
  int32_t result = 42;
  EXPECT_GE(
      kit::expectEveryRefusalReported([&] { return qorsDTW_L2Low_16s32s_D2Sfs(x.data(), 1, x.data(), 1, 1, 1, &result, 1, 1, 0); }),
      1);
  EXPECT_GE(
      kit::expectEveryRefusalReported([&] { return qorsDTW_L2_8u32s_D2Sfs(y.data(), 300, y.data(), 300, 2, 2, &result, 1, 1, 0); }),
      2);
}

TEST(Dtw, ARefusedAllocationWritesNothing) {
  const std::vector<float> x(1000);
  float result = 42;
  kit::Core::refuse(0);
  EXPECT_EQ(qorsDTW_L2_32f_D2(x.data(), 500, x.data(), 500, 2, 2, &result, 5, 1), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(result, 42.0F);
}

TEST(Dtw, SizesThatNoAllocatorCanServeAreRefused) {
  const float x = 0;  // nothing is read or written
  const int16_t y = 0;
  const uint8_t z = 0;
  const float* const rows[1] = {nullptr};
  float result = 42;
  int32_t scaled = 43;
  for (const int32_t n : {1 << 29, INT32_MAX - 8, INT32_MAX}) {
    for (const int32_t width : {1, 13, 14}) {
      EXPECT_EQ(qorsDTW_L2_32f_D2(&x, n, &x, n, width, width, &result, n, 1), qorStatusNoMemory);
      EXPECT_EQ(qorsDTW_L2_32f_D2L(rows, n, rows, n, width, &result, INT32_MAX, 1), qorStatusNoMemory);
    }
    EXPECT_EQ(qorsDTW_L2Low_16s32s_D2Sfs(&y, n, &y, n, INT32_MAX, INT32_MAX, &scaled, 1, 1, 0), qorStatusNoMemory);
    EXPECT_EQ(qorsDTW_L2_8u32s_D2Sfs(&z, n, &z, n, 4, 4, &scaled, 1, 1, 0), qorStatusNoMemory);
  }
  EXPECT_EQ(result, 42.0F);
  EXPECT_EQ(scaled, 43);
}

TEST(Dtw, KeepsTheEnvironment) {
  kit::Random random(8);
  const std::vector<int16_t> x = random.vector<int16_t>(90), y = random.vector<int16_t>(60);
  const std::vector<float> f = random.vector<float>(90), g = random.vector<float>(60, kit::Random::kNasty);
  int32_t scaled;
  float result;
  kit::expectEnvironmentKept([&] { qorsDTW_L2Low_16s32s_D2Sfs(x.data(), 30, y.data(), 20, 3, 3, &scaled, 5, 1000, 2); });
  kit::expectEnvironmentKept([&] { qorsDTW_L2_32f_D2(f.data(), 30, g.data(), 20, 3, 3, &result, 5, 1000); });
}

}  // namespace
