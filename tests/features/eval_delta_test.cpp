// Deltas of whole utterances by regression: bits against the plain model, and known signals.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/delta.h"
#include "qorsr.h"

namespace {

using model::Table;

// A buffer of rows with features behind `offset` elements, its deltas and gaps holding canaries.
template <class T>
struct Utterance {
  Table<T> features;
  int32_t height, width, offset, step;
  kit::Area<T> buffer;

  Utterance(kit::Random& random, int32_t h, int32_t w)
      : height(h),
        width(w),
        offset(static_cast<int32_t>(random.integer(0, 9))),
        step(offset + 2 * w + static_cast<int32_t>(random.integer(0, 5))),
        buffer((int64_t{h} - 1) * step + offset + 2 * w, kit::kPlaces[random.integer(0, 2)]) {
    buffer.fill(kit::Matrix<T>::canary());
    const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
    for (int64_t r = 0; r < h; ++r) {
      features.push_back(random.vector<T>(w, kind));
      std::copy(features.back().begin(), features.back().end(), buffer.data() + r * step + offset);
    }
  }
  // The buffer with scale(delta, i) written behind the features.
  template <class Sum, class Scale>
  std::vector<T> with(const Table<Sum>& deltas, Scale scale) const {
    std::vector<T> all = buffer.values();
    for (int64_t r = 0; r < height; ++r) {
      for (int32_t i = 0; i < width; ++i) {
        const Sum delta = deltas[static_cast<std::size_t>(r)][static_cast<std::size_t>(i)];
        all[static_cast<std::size_t>(r * step + offset + width + i)] = scale(delta, static_cast<std::size_t>(i));
      }
    }
    return all;
  }
};

template <class Check>
void forEachShape(Check check) {
  for (const int32_t width : kit::lengths()) {
    for (const int32_t window : {1, 2, 3, 4, 7, 8, 9, 20}) {
      for (const int32_t extra : {0, 1, 2, 15}) {
        if (width > 50 && window > 4) continue;
        check(2 * window + extra, width, window);
        if (testing::Test::HasFailure()) FAIL() << "width " << width << " window " << window << " extra " << extra;
      }
    }
  }
}

TEST(EvalDelta, Float) {
  kit::Random random(40);
  forEachShape([&](int32_t height, int32_t width, int32_t window) {
    Utterance<float> u(random, height, width);
    const auto deltas = model::regressionFloat(u.features, window);
    const auto q = random.small<float>();
    const auto table = random.vector<float>(2 * int64_t{width});
    const kit::Area<float> entries(table, kit::Place::kAtGuard);
    const auto uniform = u.with(deltas, [&](float d, std::size_t) { return d * q; });
    const auto tabled = u.with(deltas, [&](float d, std::size_t i) { return d * table[static_cast<std::size_t>(width) + i]; });
    ASSERT_EQ(qorsEvalDelta_32f_D2(u.buffer.data(), height, u.step, width, u.offset, window, q), qorStatusOk);
    ASSERT_BITS(u.buffer.values(), uniform);
    ASSERT_EQ(qorsEvalDeltaMul_32f_D2(u.buffer.data(), height, u.step, entries.data(), width, u.offset, window), qorStatusOk);
    ASSERT_BITS(u.buffer.values(), tabled);
    ASSERT_TRUE(u.buffer.edgesKept());
  });
}

TEST(EvalDelta, Int16) {
  constexpr int32_t kScaleFactors[] = {0, 1, 10, 12, 20, 31, 32, INT32_MAX, -1, -5, -31, -32, INT32_MIN};
  kit::Random random(41);
  forEachShape([&](int32_t height, int32_t width, int32_t window) {
    Utterance<int16_t> u(random, height, width);
    const int32_t sf = kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)];
    const auto deltas = model::regression16(u.features, window);
    const auto q = random.nasty<int16_t>();
    const auto table = random.vector<int16_t>(2 * int64_t{width}, kit::kKinds[random.integer(0, 2)]);
    const kit::Area<int16_t> entries(table, kit::Place::kAtGuard);
    const auto scaled = [&](int64_t d, int16_t factor) {
      return model::shiftedAndLimited(model::wrap32(int64_t{model::wrap32(d)} * factor), sf);
    };
    const auto uniform = u.with(deltas, [&](int64_t d, std::size_t) { return scaled(d, q); });
    const auto tabled =
        u.with(deltas, [&](int64_t d, std::size_t i) { return scaled(d, table[static_cast<std::size_t>(width) + i]); });
    ASSERT_EQ(qorsEvalDelta_16s_D2Sfs(u.buffer.data(), height, u.step, width, u.offset, window, q, sf), qorStatusOk);
    ASSERT_BITS(u.buffer.values(), uniform);
    ASSERT_EQ(qorsEvalDeltaMul_16s_D2Sfs(u.buffer.data(), height, u.step, entries.data(), width, u.offset, window, sf),
              qorStatusOk);
    ASSERT_BITS(u.buffer.values(), tabled);
    ASSERT_TRUE(u.buffer.edgesKept());
  });
}

TEST(EvalDelta, SumsOfWideWindowsWrapTo32Bits) {
  kit::Random random(42);
  for (const int32_t width : {1, 9}) {
    Utterance<int16_t> u(random, 1000, width);
    for (int64_t r = 0; r < u.height; ++r) {  // a step: half the products are near 32767 * k, and 500 of them pass 2^32
      for (int32_t i = 0; i < width; ++i) {
        const auto x = static_cast<int16_t>(r < 500 ? 0 : 32767);
        u.buffer[r * u.step + u.offset + i] = u.features[static_cast<std::size_t>(r)][static_cast<std::size_t>(i)] = x;
      }
    }
    const auto expected = u.with(model::regression16(u.features, 500), [](int64_t d, std::size_t) {
      return model::shiftedAndLimited(model::wrap32(int64_t{model::wrap32(d)} * 3), 16);
    });
    ASSERT_EQ(qorsEvalDelta_16s_D2Sfs(u.buffer.data(), u.height, u.step, width, u.offset, 500, 3, 16), qorStatusOk);
    ASSERT_BITS(u.buffer.values(), expected);
  }
}

TEST(EvalDelta, EdgeRowsTakeTheEdgeRowInEveryTerm) {
  // One feature, x = r^2 over four rows, window 2: no middle rows.
  float rows[4][2] = {{0, 9}, {1, 9}, {4, 9}, {9, 9}};
  ASSERT_EQ(qorsEvalDelta_32f_D2(&rows[0][0], 4, 2, 1, 0, 2, 1.0F), qorStatusOk);
  EXPECT_EQ(rows[0][1], 1 * (1 - 0) + 2 * (4 - 0));
  EXPECT_EQ(rows[1][1], 1 * (4 - 0) + 2 * (9 - 0));
  EXPECT_EQ(rows[2][1], 1 * (9 - 1) + 2 * (9 - 0));
  EXPECT_EQ(rows[3][1], 1 * (9 - 4) + 2 * (9 - 1));
}

TEST(EvalDelta, OfAConstantSignalIsZero) {
  for (const int32_t window : {1, 3, 8}) {
    std::vector<float> rows(40 * 5, -3.5F);
    ASSERT_EQ(qorsEvalDelta_32f_D2(rows.data(), 40, 5, 2, 1, window, 2.0F), qorStatusOk);
    for (std::size_t i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], i % 5 >= 3 ? 0.0F : -3.5F);
  }
}

}  // namespace
