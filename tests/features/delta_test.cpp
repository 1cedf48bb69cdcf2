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

// ---- Whole utterances ----

// A buffer of rows with features behind `offset` elements, its deltas and gaps holding canaries.
struct Utterance {
  Table<float> features;
  int32_t height, width, offset, step;
  kit::Area<float> buffer;

  Utterance(kit::Random& random, int32_t h, int32_t w, kit::Place place)
      : height(h),
        width(w),
        offset(static_cast<int32_t>(random.integer(0, 9))),
        step(offset + 2 * w + static_cast<int32_t>(random.integer(0, 5))),
        buffer((int64_t{h} - 1) * step + offset + 2 * w, place) {
    buffer.fill(kit::Matrix<float>::canary());
    const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
    for (int64_t r = 0; r < h; ++r) {
      features.push_back(random.vector<float>(w, kind));
      std::copy(features.back().begin(), features.back().end(), buffer.data() + r * step + offset);
    }
  }
  // The buffer with deltas times factor(i) written behind the features.
  template <class Factor>
  std::vector<float> withDeltas(const Table<float>& deltas, Factor factor) const {
    std::vector<float> all = buffer.values();
    for (int64_t r = 0; r < height; ++r) {
      for (int32_t i = 0; i < width; ++i) {
        all[static_cast<std::size_t>(r * step + offset + width + i)] =
            deltas[static_cast<std::size_t>(r)][static_cast<std::size_t>(i)] * factor(static_cast<std::size_t>(i));
      }
    }
    return all;
  }
};

TEST(EvalDelta, Float) {
  kit::Random random(40);
  for (const int32_t width : kit::lengths()) {
    for (const int32_t window : {1, 2, 3, 4, 7, 8, 9, 20}) {
      for (const int32_t extra : {0, 1, 2, 15}) {
        Utterance u(random, 2 * window + extra, width, kit::kPlaces[random.integer(0, 2)]);
        const auto deltas = model::regressionFloat(u.features, window);
        const auto q = random.small<float>();
        const auto table = random.vector<float>(2 * int64_t{width});
        const kit::Area<float> entries(table, kit::Place::kAtGuard);
        const auto uniform = u.withDeltas(deltas, [&](std::size_t) { return q; });
        const auto tabled = u.withDeltas(deltas, [&](std::size_t i) { return table[static_cast<std::size_t>(width) + i]; });
        ASSERT_EQ(qorsEvalDelta_32f_D2(u.buffer.data(), u.height, u.step, width, u.offset, window, q), qorStatusOk);
        ASSERT_BITS(u.buffer.values(), uniform) << "width " << width << " window " << window << " height " << u.height;
        ASSERT_EQ(qorsEvalDeltaMul_32f_D2(u.buffer.data(), u.height, u.step, entries.data(), width, u.offset, window), qorStatusOk);
        ASSERT_BITS(u.buffer.values(), tabled) << "width " << width << " window " << window << " height " << u.height;
        ASSERT_TRUE(u.buffer.edgesKept());
      }
    }
  }
}

}  // namespace
