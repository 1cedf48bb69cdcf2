// Deltas and accelerations in 16 bits: bits of every member against the plain model, in blocks of all sizes, and known signals.
#include <gtest/gtest.h>

#include "features/delta_streaming.h"
#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/delta.h"
#include "qorsr.h"

namespace {

using model::Table;
using streaming::feedAll;
using Shape = streaming::Shape<int16_t>;

using Uniform1 = QorStatus (*)(const int16_t*, int32_t, int16_t*, int32_t, int32_t, int16_t, int32_t, int32_t);
using Uniform2 = QorStatus (*)(const int16_t*, int32_t, int16_t*, int32_t, int32_t, int16_t, int16_t, int32_t, int32_t);
using Tabled = QorStatus (*)(const int16_t*, const int16_t*, int32_t, int16_t*, int32_t, int32_t, int32_t, int32_t);

constexpr int32_t kScaleFactors[] = {0, 1, 7, 15, 16, 30, 31, 32, 100, INT32_MAX, -1, -2, -3, -15, -16, -31, -32, -100, INT32_MIN};

// A scale factor: often one that keeps products of plain values in range.
int32_t scaleFactor(kit::Random& random) {
  return random.integer(0, 1) == 0 ? 12 : kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)];
}

auto uniform(int16_t first, int16_t second, int32_t sf) {
  return
      [=](int16_t value, int k, std::size_t) { return k == 0 ? value : model::scaledProduct(value, k == 1 ? first : second, sf); };
}
auto tabled(const std::vector<int16_t>& table, std::size_t width, int32_t sf) {
  return [&, width, sf](int16_t value, int k, std::size_t i) {
    return model::scaledProduct(value, table[static_cast<std::size_t>(k) * width + i], sf);
  };
}

// A table of which half the entries are nasty.
std::vector<int16_t> tableOf(kit::Random& random, int64_t count) {
  return random.vector<int16_t>(count, kit::kKinds[random.integer(0, 2)]);
}

template <int kReach>
void expectDelta(Uniform1 member) {
  kit::Random random(kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto q = random.nasty<int16_t>();
    const int32_t sf = scaleFactor(random);
    feedAll<int16_t>(
        Shape{kReach, 1},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, width, destination, step, height, q, flags, sf);
        },
        width, width, random, [&](const auto& x) { return model::windowRows16<kReach>(x, 1, uniform(q, 0, sf)); });
  }
}
TEST(Delta16s, Win1) { expectDelta<1>(qorsDelta_Win1_16s_D2Sfs); }
TEST(Delta16s, Win2) { expectDelta<2>(qorsDelta_Win2_16s_D2Sfs); }

template <int kReach>
void expectDeltaDelta(Uniform2 member) {
  kit::Random random(10 + kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto q = random.nasty<int16_t>(), q2 = random.nasty<int16_t>();
    const int32_t sf = scaleFactor(random);
    feedAll<int16_t>(
        Shape{kReach, 2},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, width, destination, step, height, q, q2, flags, sf);
        },
        width, width, random, [&](const auto& x) { return model::windowRows16<kReach>(x, 2, uniform(q, q2, sf)); });
  }
}
TEST(DeltaDelta16s, Win1) { expectDeltaDelta<1>(qorsDeltaDelta_Win1_16s_D2Sfs); }
TEST(DeltaDelta16s, Win2) { expectDeltaDelta<2>(qorsDeltaDelta_Win2_16s_D2Sfs); }

template <int kReach>
void expectTabled(Tabled member, int32_t derivatives) {
  kit::Random random(20 + kReach);
  for (const int32_t width : kit::shortLengths()) {
    const auto table = tableOf(random, int64_t{derivatives + 1} * width);
    const kit::Area<int16_t> entries(table, kit::Place::kAtGuard);
    const int32_t sf = scaleFactor(random);
    feedAll<int16_t>(
        Shape{kReach, derivatives},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return member(source, entries.data(), width, destination, step, height, flags, sf);
        },
        width, width, random,
        [&](const auto& x) {
          return model::windowRows16<kReach>(x, derivatives, tabled(table, static_cast<std::size_t>(width), sf));
        });
  }
}
TEST(DeltaMul16s, Win1) { expectTabled<1>(qorsDeltaMul_Win1_16s_D2Sfs, 1); }
TEST(DeltaMul16s, Win2) { expectTabled<2>(qorsDeltaMul_Win2_16s_D2Sfs, 1); }
TEST(DeltaDeltaMul16s, Win1) { expectTabled<1>(qorsDeltaDeltaMul_Win1_16s_D2Sfs, 2); }
TEST(DeltaDeltaMul16s, Win2) { expectTabled<2>(qorsDeltaDeltaMul_Win2_16s_D2Sfs, 2); }

TEST(DeltaDelta16s, Aurora) {
  kit::Random random(30);
  for (const int32_t sf : {0, 1, 2, 5, 14, 15, 16, 17, 40, INT32_MAX, -1, -2, -3, -16, -33, INT32_MIN}) {
    feedAll<int16_t>(
        Shape{4, 2, true},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return qorsDeltaDelta_Aurora_16s_D2Sfs(source, destination, step, height, flags, sf);
        },
        13, 14, random,
        [&](const auto& x) {
          return model::auroraRows16(x, [&](int32_t value, int fraction, int, std::size_t) {
            return model::shiftedAndLimited(value, int64_t{sf} + fraction);
          });
        });
  }
}

TEST(DeltaDeltaMul16s, Aurora) {
  kit::Random random(31);
  for (int i = 0; i < 16; ++i) {
    const int32_t sf = scaleFactor(random);
    const auto table = tableOf(random, 39);
    const kit::Area<int16_t> entries(table, kit::Place::kAtGuard);
    feedAll<int16_t>(
        Shape{4, 2, true},
        [&](auto* source, auto* destination, int32_t step, int32_t height, int32_t flags) {
          return qorsDeltaDeltaMul_Aurora_16s_D2Sfs(source, entries.data(), destination, step, height, flags, sf);
        },
        13, 14, random,
        [&](const auto& x) {
          const auto factor = tabled(table, 13, sf);
          return model::auroraRows16(x, [&](int32_t value, int fraction, int k, std::size_t element) {
            return factor(model::shiftedAndLimited(value, fraction), k, element);
          });
        });
  }
}

// ---- Known signals ----

TEST(Delta16s, DifferencesWrapBeforeTheyAreMultiplied) {
  const int16_t source[2] = {-32768, 32767};
  int16_t rows[4];
  ASSERT_EQ(qorsDelta_Win1_16s_D2Sfs(source, 1, rows, 2, 2, 5, 3, 0), qorStatusOk);
  EXPECT_EQ(std::vector<int16_t>(rows, rows + 4), (std::vector<int16_t>{-32768, -5, 32767, -5}));
}

TEST(Delta16s, ProductsAreShiftedWithoutRoundingThenLimited) {
  const int16_t source[2] = {0, 5};
  const auto first = [&](int16_t q, int32_t sf) {
    int16_t rows[4] = {};
    EXPECT_EQ(qorsDelta_Win1_16s_D2Sfs(source, 1, rows, 2, 2, q, 1, sf), qorStatusOk);
    return rows[1];
  };
  EXPECT_EQ(first(3, 1), 7);
  EXPECT_EQ(first(-3, 1), -8);
  EXPECT_EQ(first(3, -2), 60);
  EXPECT_EQ(first(32767, 0), 32767);
  EXPECT_EQ(first(-32768, 0), -32768);
  EXPECT_EQ(first(1, -29), -32768);  // 5 << 29 loses its high bits: -1610612736
  EXPECT_EQ(first(1, -32), 0);
  EXPECT_EQ(first(-3, 31), -1);
  EXPECT_EQ(first(-3, INT32_MAX), -1);
}

// Every value that a derivative is made of cancels, so no scale factor brings anything back.
TEST(Delta16s, OfAConstantSignalIsZeroInEveryMember) {
  constexpr int32_t kHeight = 20;
  for (const int16_t x : {int16_t{-1234}, int16_t{32767}, int16_t{-32768}}) {
    const std::vector<int16_t> source(kHeight * 14, x), table(3 * 14, 3);
    const auto expectZero = [&](int32_t width, int32_t derivatives, const auto& call) {
      const int32_t step = (derivatives + 1) * width;
      for (const int32_t sf : {0, 5, -3, -15}) {
        std::vector<int16_t> rows(static_cast<std::size_t>(step) * kHeight, 1);
        ASSERT_EQ(call(source.data(), width, rows.data(), step, sf), qorStatusOk);
        for (std::size_t i = 0; i < rows.size(); ++i) {
          if (i % static_cast<std::size_t>(step) < static_cast<std::size_t>(width)) continue;
          ASSERT_EQ(rows[i], 0) << "of " << x << " element " << i << " scale factor " << sf;
        }
      }
    };
    for (const Uniform1 member : {qorsDelta_Win1_16s_D2Sfs, qorsDelta_Win2_16s_D2Sfs}) {
      expectZero(14, 1,
                 [=](auto* s, int32_t w, auto* d, int32_t step, int32_t sf) { return member(s, w, d, step, kHeight, 77, 3, sf); });
    }
    for (const Uniform2 member : {qorsDeltaDelta_Win1_16s_D2Sfs, qorsDeltaDelta_Win2_16s_D2Sfs}) {
      expectZero(14, 2, [=](auto* s, int32_t w, auto* d, int32_t step, int32_t sf) {
        return member(s, w, d, step, kHeight, 77, -99, 3, sf);
      });
    }
    const auto expectTabledZero = [&](Tabled member, int32_t derivatives) {
      expectZero(14, derivatives, [&](auto* s, int32_t w, auto* d, int32_t step, int32_t sf) {
        return member(s, table.data(), w, d, step, kHeight, 3, sf);
      });
    };
    expectTabledZero(qorsDeltaMul_Win1_16s_D2Sfs, 1);
    expectTabledZero(qorsDeltaMul_Win2_16s_D2Sfs, 1);
    expectTabledZero(qorsDeltaDeltaMul_Win1_16s_D2Sfs, 2);
    expectTabledZero(qorsDeltaDeltaMul_Win2_16s_D2Sfs, 2);
    expectZero(13, 2, [=](auto* s, int32_t, auto* d, int32_t step, int32_t sf) {
      return qorsDeltaDelta_Aurora_16s_D2Sfs(s, d, step, kHeight, 3, sf);
    });
    expectZero(13, 2, [&](auto* s, int32_t, auto* d, int32_t step, int32_t sf) {
      return qorsDeltaDeltaMul_Aurora_16s_D2Sfs(s, table.data(), d, step, kHeight, 3, sf);
    });
  }
}

TEST(Delta16s, AuroraFeaturesOfAConstantSignal) {
  const std::vector<int16_t> source(20 * 14, -1234);
  std::vector<int16_t> rows(20 * 39, 1);
  ASSERT_EQ(qorsDeltaDelta_Aurora_16s_D2Sfs(source.data(), rows.data(), 39, 20, 3, 0), qorStatusOk);
  for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], i % 39 < 12 ? -1234 : i % 39 == 12 ? -525 : 0) << i;
}

}  // namespace
