// One program that does what must not happen. It is run once a mistake, and each run must end in the report of that mistake.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>

#include "qorcore.h"

namespace {

TEST(MustFail, BlockOfTheLibraryIsLost) { EXPECT_NE(qorMalloc(16), nullptr); }

TEST(MustFail, HeapBlockIsLost) {
  void* volatile block = std::malloc(100);
  EXPECT_NE(block, nullptr);
  block = nullptr;
}

TEST(MustFail, ReadBehindABlockOfTheLibrary) {
  auto* const block = static_cast<volatile char*>(qorMalloc(12));
  const char beyond = block[12];
  qorFree(const_cast<char*>(block));
  EXPECT_NE(beyond, 1);
}

TEST(MustFail, SumOverflows) {
  volatile int big = INT_MAX;
  const int sum = big + 1;
  EXPECT_NE(sum, 0);
}

TEST(MustFail, FloatIsOutOfRange) {
  volatile float big = 3e9F;
  EXPECT_NE(static_cast<int32_t>(big), 0);
}

TEST(MustFail, ShiftIsTooWide) {
  volatile int count = 33;
  EXPECT_NE(1 << count, 77);
}

}  // namespace
