// Deltas and accelerations in float: bits of every member against the plain model, in blocks of all sizes, and known signals.
#include "model/delta.h"

#include <gtest/gtest.h>

#include "features/delta_streaming.h"
#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

using model::Table;
using streaming::feedAll;
using Shape = streaming::Shape<float>;

using Uniform1 = QorStatus (*)(const float*, int32_t, float*, int32_t, int32_t, float, int32_t);
using Uniform2 = QorStatus (*)(const float*, int32_t, float*, int32_t, int32_t, float, float, int32_t);
using Tabled = QorStatus (*)(const float*, const float*, int32_t, float*, int32_t, int32_t, int32_t);

constexpr auto kUniform = [](float first, float second) {
  return [=](float value, int k, std::size_t) { return k == 0 ? value : value * (k == 1 ? first : second); };
};
auto tabled(const std::vector<float>& table, std::size_t width) {
  return [&, width](float value, int k, std::size_t i) { return value * table[static_cast<std::size_t>(k) * width + i]; };
}

template <int kReach>
void expectDelta(Uniform1 member) {
  kit::Random random(kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto q = random.small<float>();
    feedAll<float>(
        Shape{kReach, 1},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, width, destination, step, height, q, flags);
        },
        width, width, random, [&](const Table<float>& x) { return model::windowRows<kReach>(x, 1, kUniform(q, 0)); });
  }
}
TEST(Delta, Win1) { expectDelta<1>(qorsDelta_Win1_32f_D2); }
TEST(Delta, Win2) { expectDelta<2>(qorsDelta_Win2_32f_D2); }

template <int kReach>
void expectDeltaDelta(Uniform2 member) {
  kit::Random random(10 + kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto q = random.small<float>(), q2 = random.small<float>();
    feedAll<float>(
        Shape{kReach, 2},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, width, destination, step, height, q, q2, flags);
        },
        width, width, random, [&](const Table<float>& x) { return model::windowRows<kReach>(x, 2, kUniform(q, q2)); });
  }
}
TEST(DeltaDelta, Win1) { expectDeltaDelta<1>(qorsDeltaDelta_Win1_32f_D2); }
TEST(DeltaDelta, Win2) { expectDeltaDelta<2>(qorsDeltaDelta_Win2_32f_D2); }

template <int kReach>
void expectTabled(Tabled member, int32_t derivatives) {
  kit::Random random(20 + kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto table = random.vector<float>(int64_t{derivatives + 1} * width, kit::kKinds[width % 2]);
    const kit::Area<float> entries(table, kit::Place::kAtGuard);
    feedAll<float>(
        Shape{kReach, derivatives},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, entries.data(), width, destination, step, height, flags);
        },
        width, width, random,
        [&](const Table<float>& x) {
          return model::windowRows<kReach>(x, derivatives, tabled(table, static_cast<std::size_t>(width)));
        });
  }
}
TEST(DeltaMul, Win1) { expectTabled<1>(qorsDeltaMul_Win1_32f_D2, 1); }
TEST(DeltaMul, Win2) { expectTabled<2>(qorsDeltaMul_Win2_32f_D2, 1); }
TEST(DeltaDeltaMul, Win1) { expectTabled<1>(qorsDeltaDeltaMul_Win1_32f_D2, 2); }
TEST(DeltaDeltaMul, Win2) { expectTabled<2>(qorsDeltaDeltaMul_Win2_32f_D2, 2); }

TEST(DeltaDelta, Aurora) {
  kit::Random random(30);
  for (int i = 0; i < 6; ++i) {
    feedAll<float>(Shape{4, 2, true}, qorsDeltaDelta_Aurora_32f_D2, 13, 14, random,
                   [](const Table<float>& x) { return model::auroraRows(x, [](float value, int, std::size_t) { return value; }); });
  }
}

TEST(DeltaDeltaMul, Aurora) {
  kit::Random random(31);
  for (int i = 0; i < 6; ++i) {
    const auto table = random.vector<float>(39);
    const kit::Area<float> entries(table, kit::Place::kAtGuard);
    feedAll<float>(
        Shape{4, 2, true},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return qorsDeltaDeltaMul_Aurora_32f_D2(source, entries.data(), destination, step, height, flags);
        },
        13, 14, random, [&](const Table<float>& x) { return model::auroraRows(x, tabled(table, 13)); });
  }
}

// ---- Known signals ----

TEST(Delta, OfAConstantSignalIsZeroToTheEdges) {
  for (const int32_t height : {4, 5, 20}) {
    const std::vector<float> source(static_cast<std::size_t>(height) * 3, 7.25F);
    std::vector<float> rows(static_cast<std::size_t>(height) * 9, 1.0F);
    ASSERT_EQ(qorsDelta_Win2_32f_D2(source.data(), 3, rows.data(), 9, height, 3.0F, 3), qorStatusOk);
    for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], i % 9 < 3 ? 7.25F : i % 9 < 6 ? 0.0F : 1.0F) << i;
    if (height < 6) continue;
    ASSERT_EQ(qorsDeltaDelta_Win2_32f_D2(source.data(), 3, rows.data(), 9, height, 3.0F, -2.0F, 3), qorStatusOk);
    for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], i % 9 < 3 ? 7.25F : 0.0F) << i;
  }
}

TEST(Delta, OfAConstantSignalIsZeroInEveryWindowMember) {
  constexpr int32_t kWidth = 5, kHeight = 7;
  const std::vector<float> source(kWidth * kHeight, -7.3F), table(3 * kWidth, 0.7F);
  const auto expectZero = [&](int32_t derivatives, float feature, const auto& call) {
    const int32_t step = (derivatives + 1) * kWidth;
    std::vector<float> rows(static_cast<std::size_t>(step) * kHeight, 1.0F);
    ASSERT_EQ(call(rows.data(), step), qorStatusOk);
    for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], i % static_cast<std::size_t>(step) < kWidth ? feature : 0.0F);
  };
  for (const Uniform1 member : {qorsDelta_Win1_32f_D2, qorsDelta_Win2_32f_D2}) {
    expectZero(1, -7.3F, [&](float* d, int32_t step) { return member(source.data(), kWidth, d, step, kHeight, 3.1F, 3); });
  }
  for (const Uniform2 member : {qorsDeltaDelta_Win1_32f_D2, qorsDeltaDelta_Win2_32f_D2}) {
    expectZero(2, -7.3F, [&](float* d, int32_t step) { return member(source.data(), kWidth, d, step, kHeight, 3.1F, -2.3F, 3); });
  }
  const auto expectTabledZero = [&](Tabled member, int32_t derivatives) {
    expectZero(derivatives, -7.3F * 0.7F,
               [&](float* d, int32_t step) { return member(source.data(), table.data(), kWidth, d, step, kHeight, 3); });
  };
  expectTabledZero(qorsDeltaMul_Win1_32f_D2, 1);
  expectTabledZero(qorsDeltaMul_Win2_32f_D2, 1);
  expectTabledZero(qorsDeltaDeltaMul_Win1_32f_D2, 2);
  expectTabledZero(qorsDeltaDeltaMul_Win2_32f_D2, 2);
}

TEST(DeltaDelta, AuroraOfAConstantSignalIsZeroUpToRounding) {
  const std::vector<float> source(12 * 14, 100.0F);
  std::vector<float> rows(12 * 39);
  ASSERT_EQ(qorsDeltaDelta_Aurora_32f_D2(source.data(), rows.data(), 39, 12, 3), qorStatusOk);
  // The coefficients of the acceleration sum to 0 but for their six digits; nine terms below 100 round by 2^-18 each.
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_NEAR(rows[i], i % 39 >= 13 ? 0.0F : rows[i], 4e-4F) << i;
  }
}

TEST(DeltaDelta, OfAParabolaIsARampAndAConstant) {
  std::vector<float> source, rows(40 * 3);
  for (int t = 0; t < 40; ++t) source.push_back(static_cast<float>(t * t));
  ASSERT_EQ(qorsDeltaDelta_Win2_32f_D2(source.data(), 1, rows.data(), 3, 40, 0.125F, 0.125F, 3), qorStatusOk);
  for (std::size_t t = 4; t < 36; ++t) {
    EXPECT_EQ(rows[t * 3 + 1], 2.5F * static_cast<float>(t));  // ten times the slope, by an eighth
    EXPECT_EQ(rows[t * 3 + 2], 3.125F);
  }
}

TEST(Delta, HeightOfTheStartUpCountWritesTheFirstDeltaOnly) {
  const float source[2] = {1, 5};
  float rows[4] = {9, 9, 9, 9};
  ASSERT_EQ(qorsDelta_Win1_32f_D2(source, 1, rows, 2, 2, 2.0F, 1), qorStatusOk);
  EXPECT_EQ(std::vector<float>(rows, rows + 4), (std::vector<float>{1, 8, 5, 9}));
  EXPECT_EQ(qorsDelta_Win1_32f_D2(source, 1, rows, 2, 1, 2.0F, 1), qorStatusBadSize);
}

}  // namespace
