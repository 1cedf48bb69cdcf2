// Bhattacharyya distance: values against the plain model and the exact formula, the first pass and its groups, faults.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/gaussian_operations.h"
#include "qorsr.h"

namespace {

constexpr int32_t kLengths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 16, 17, 39, 64, 511, 512, 513, 520, 2047, 2048, 2049, 2055};

model::Gaussians<float> positivePair(kit::Random& random, int32_t length) {
  const auto vector = [&] {
    std::vector<float> v;
    for (int32_t i = 0; i < length; ++i) v.push_back(static_cast<float>(random.real(0.01, 9)));
    return v;
  };
  return {vector(), vector(), vector(), vector()};
}

struct Areas {
  kit::Area<float> mx, vx, my, vy;
  Areas(const model::Gaussians<float>& g, kit::Place place) : mx(g.mx, place), vx(g.vx, place), my(g.my, place), vy(g.vy, place) {}
};

// All four members on one pair.
struct Results {
  double dist64 = 5, slog64 = 5;
  float dist32 = 5, slog32 = 5;
  QorStatus status[4];
};
Results callAll(const Areas& a, int32_t length, float logsX, float logsY) {
  Results r;
  r.status[0] = qorsBhatDist_32f64f(a.mx.data(), a.vx.data(), a.my.data(), a.vy.data(), length, &r.dist64);
  r.status[1] = qorsBhatDistSLog_32f64f(a.mx.data(), a.vx.data(), a.my.data(), a.vy.data(), length, &r.slog64, logsX, logsY);
  r.status[2] = qorsBhatDist_32f(a.mx.data(), a.vx.data(), a.my.data(), a.vy.data(), length, &r.dist32);
  r.status[3] = qorsBhatDistSLog_32f(a.mx.data(), a.vx.data(), a.my.data(), a.vy.data(), length, &r.slog32, logsX, logsY);
  return r;
}

// Sums grouped otherwise: n roundings of half a unit of the magnitude of all that is added.
testing::AssertionResult close(float actual, const model::Bhattacharyya& expected, double n) {
  return kit::within(&actual, &expected.value, 1, expected.magnitude * (n + 4) * 0x1p-24);
}
testing::AssertionResult close(double actual, const model::Bhattacharyya& expected, double n) {
  return kit::within(&actual, &expected.value, 1, expected.magnitude * (n + 4) * 0x1p-53);
}

TEST(BhatDist, Values) {
  kit::Random random;
  for (const int32_t length : kLengths) {
    for (int trial = 0; trial < 12; ++trial) {
      auto g = positivePair(random, length);
      const auto i = static_cast<std::size_t>(random.integer(0, length - 1));
      if (trial == 9) g.vx[i] = std::numeric_limits<float>::quiet_NaN();
      if (trial == 10) g.vx[i] = std::numeric_limits<float>::infinity();
      if (trial == 11) g.vx[i] = 1e-41F;
      const float logsX = static_cast<float>(random.real(-50, 50)), logsY = static_cast<float>(random.real(-50, 50));
      const Areas areas(g, kit::kPlaces[trial % 3]);
      const Results r = callAll(areas, length, logsX, logsY);
      for (const QorStatus status : r.status) ASSERT_EQ(status, qorStatusOk);
      ASSERT_TRUE(close(r.dist64, model::bhatDouble(g, false, 0, 0), length)) << "length " << length << " trial " << trial;
      ASSERT_TRUE(close(r.slog64, model::bhatDouble(g, true, logsX, logsY), length + 50)) << "length " << length;
      ASSERT_TRUE(close(r.dist32, model::bhatFloat(g, false, 0, 0), length)) << "length " << length << " trial " << trial;
      ASSERT_TRUE(close(r.slog32, model::bhatFloat(g, true, logsX, logsY), length + 50)) << "length " << length;
      ASSERT_TRUE(areas.mx.edgesKept() && areas.vy.edgesKept());
    }
  }
}

// The formula itself, in long double, with the short constants; and the two forms agree when the logarithms given are the true
// ones.
TEST(BhatDist, IsTheDistance) {
  kit::Random random;
  for (const int32_t length : kLengths) {
    const auto g = positivePair(random, length);
    long double exact = 0, logsX = 0, logsY = 0;
    for (std::size_t i = 0; i < g.mx.size(); ++i) {
      const long double vx = static_cast<long double>(g.vx[i]), vy = static_cast<long double>(g.vy[i]), s = vx + vy;
      const long double d = static_cast<long double>(g.mx[i]) - static_cast<long double>(g.my[i]);
      exact += 0.25L * (d * d / s + std::log(s * s / (vx * vy)) - 1.386294L);
      logsX += std::log(vx), logsY += std::log(vy);
    }
    const Results r = callAll(Areas(g, kit::Place::kAligned), length, static_cast<float>(logsX), static_cast<float>(logsY));
    const double value = static_cast<double>(exact), n = length;
    EXPECT_NEAR(r.dist64, value, 1e-13 * n);
    EXPECT_NEAR(static_cast<double>(r.dist32), value, 4e-6 * n);
    EXPECT_NEAR(r.slog64, value, 4e-6 * n);
    EXPECT_NEAR(static_cast<double>(r.slog32), value, 8e-6 * n);
  }
}

TEST(BhatDist, OfAPairOfEquals) {
  const model::Gaussians<float> g{{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}};
  const Results r = callAll(Areas(g, kit::Place::kAligned), 3, 0, 0);
  EXPECT_NEAR(r.dist64, 3 * (std::log(4.0) - 1.386294) * 0.25, 1e-15);  // log 4 has six digits
}

// ---- The first pass ----

TEST(BhatDist, TheFirstGroupWithABadElementDecides) {
  kit::Random random;
  const float bad[] = {0.0F, -0.0F, -1.0F, -std::numeric_limits<float>::denorm_min(), -INFINITY, NAN};
  for (const int32_t length : {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 40}) {
    for (int trial = 0; trial < 120; ++trial) {
      auto g = positivePair(random, length);
      for (int64_t spoiled = random.integer(1, 3); spoiled > 0; --spoiled) {
        std::vector<float>* const vectors[] = {&g.mx, &g.vx, &g.my, &g.vy};
        auto& vector = *vectors[random.integer(0, 3)];
        vector[static_cast<std::size_t>(random.integer(0, length - 1))] = bad[random.integer(0, 5)];
      }
      const QorStatus expected = model::firstBadGroup(g);
      const Results r = callAll(Areas(g, kit::kPlaces[trial % 3]), length, 1, 2);
      for (const QorStatus status : r.status) ASSERT_EQ(status, expected) << "length " << length << " trial " << trial;
      if (expected == qorStatusLogZero) {
        ASSERT_EQ(r.dist64 + r.slog64, INFINITY);
        ASSERT_EQ(r.dist32 + r.slog32, INFINITY);
      } else if (expected == qorStatusLogNegative) {
        ASSERT_TRUE(std::isnan(r.dist64) && std::isnan(r.slog64) && std::isnan(r.dist32) && std::isnan(r.slog32));
      }
    }
  }
}

TEST(BhatDist, AMeanOfZeroCounts) {
  for (const bool first : {true, false}) {
    model::Gaussians<float> g{{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}};
    (first ? g.mx : g.my)[1] = 0;
    const Results r = callAll(Areas(g, kit::Place::kAligned), 3, 0, 0);
    for (const QorStatus status : r.status) EXPECT_EQ(status, qorStatusLogZero);
    EXPECT_EQ(r.dist64, INFINITY);
  }
}

TEST(BhatDist, WithinAGroupTheNegativeTestComesFirstAcrossGroupsTheFirstGroup) {
  model::Gaussians<float> g;
  g.mx = g.vx = g.my = g.vy = std::vector<float>(9, 1.0F);
  g.vx[4] = 0, g.my[7] = -1;  // one group: the negative element decides
  EXPECT_EQ(callAll(Areas(g, kit::Place::kAligned), 9, 0, 0).status[0], qorStatusLogNegative);
  g.mx[3] = 0;  // an earlier group
  EXPECT_EQ(callAll(Areas(g, kit::Place::kAligned), 9, 0, 0).status[0], qorStatusLogZero);
  EXPECT_EQ(callAll(Areas(g, kit::Place::kAligned), 6, 0, 0).status[2], qorStatusLogZero);
}

// ---- Faults, memory, environment ----

template <class T>
struct Args {
  const float *mx, *vx, *my, *vy;
  T* result;
  int32_t length;
};

template <class T>
void expectFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  const std::vector<float> x(6, 2.0F);
  T result = 3;
  kit::FaultTable<A> table(A{x.data(), x.data(), x.data(), x.data(), &result, 6}, call, {{&result, 1}});
  table.fault("null mx", qorStatusNullPointer, &A::mx, nullptr);
  table.fault("null vx", qorStatusNullPointer, &A::vx, nullptr);
  table.fault("null my", qorStatusNullPointer, &A::my, nullptr);
  table.fault("null vy", qorStatusNullPointer, &A::vy, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.fault("length zero", qorStatusBadSize, &A::length, 0);
  table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
}

TEST(BhatDist, Faults) {
  expectFaults<float>([](auto& a) { return qorsBhatDist_32f(a.mx, a.vx, a.my, a.vy, a.length, a.result); });
  expectFaults<float>([](auto& a) { return qorsBhatDistSLog_32f(a.mx, a.vx, a.my, a.vy, a.length, a.result, 1, 1); });
  expectFaults<double>([](auto& a) { return qorsBhatDist_32f64f(a.mx, a.vx, a.my, a.vy, a.length, a.result); });
  expectFaults<double>([](auto& a) { return qorsBhatDistSLog_32f64f(a.mx, a.vx, a.my, a.vy, a.length, a.result, 1, 1); });
}

TEST(BhatDist, AllocatesNothingAndKeepsTheEnvironment) {
  kit::Random random;
  const auto g = positivePair(random, 3000);
  const Areas areas(g, kit::Place::kOddStart);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] {
              const Results r = callAll(areas, 3000, 1, 2);
              return r.status[0] | r.status[1] | r.status[2] | r.status[3];
            }),
            0);
  kit::expectEnvironmentKept([&] { callAll(areas, 3000, 1, 2); });
}

}  // namespace
