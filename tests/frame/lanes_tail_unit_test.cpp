// Tails: the first n of N lanes, for every n, at a page that cannot be touched. Compiled once at every instruction level.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "frame/lanes.h"
#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"

namespace {

using namespace qorsr;

template <class T, int N>
void expectTail() {
  kit::Random random(N);
  for (int n = 1; n <= N; ++n) {
    const Tail<T, N> tail(n);
    EXPECT_EQ(tail.size(), n);
    for (const kit::Place place : kit::kPlaces) {
      const auto values = random.vector<T>(n, kit::Random::kNasty);
      const kit::Area<T> area(values, place);
      for (const T fill : {T(0), T(1), T(-0.0), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()}) {
        std::vector<T> expected = values;
        expected.resize(N, fill);
        std::vector<T> loaded(N);
        tail.load(area.data(), fill).store(loaded.data());
        ASSERT_BITS(loaded, expected) << n << " of " << N;
      }
      std::vector<T> expected = values, loaded(N);
      expected.resize(N, T(0));
      tail.load(area.data()).store(loaded.data());
      ASSERT_BITS(loaded, expected) << n << " of " << N << ", without a fill";

      const auto all = random.vector<T>(N, kit::Random::kNasty);
      kit::Area<T> result(n, place);
      tail.store(Lanes<T, N>::load(all.data()), result.data());
      ASSERT_BITS(result.values(), std::vector<T>(all.begin(), all.begin() + n)) << n << " of " << N;
      ASSERT_TRUE(result.edgesKept()) << n << " of " << N;
    }
  }
}

TEST(LanesTail, Floats) {
  expectTail<float, 1>();
  expectTail<float, 2>();
  expectTail<float, 4>();
  expectTail<float, 8>();
  expectTail<float, 16>();
  expectTail<float, 32>();
}
TEST(LanesTail, Doubles) {
  expectTail<double, 1>();
  expectTail<double, 2>();
  expectTail<double, 4>();
  expectTail<double, 8>();
  expectTail<double, 16>();
}
TEST(LanesTail, Integers) {
  expectTail<int32_t, 4>();
  expectTail<int32_t, 8>();
  expectTail<int32_t, 16>();
  expectTail<int16_t, 8>();
  expectTail<int16_t, 16>();
  expectTail<int16_t, 32>();
}

// No element at all: nothing is read, and every lane holds the fill.
TEST(LanesTail, Empty) {
  const kit::Area<float> area(1, kit::Place::kAtGuard);
  std::vector<float> loaded(16);
  Tail<float, 16>(0).load(area.data() + 1, 3.0F).store(loaded.data());
  EXPECT_BITS(loaded, std::vector<float>(16, 3.0F));
  Tail<float, 16>(0).store(Lanes<float, 16>(1.0F), area.data() + 1);
}

}  // namespace
