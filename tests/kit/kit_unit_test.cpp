// The test kit sees what it is there to see: each kind of check is made to fail once, for good.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "qorcore.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(Compare, BitsDecide) {
  EXPECT_TRUE(kit::sameBits(1.0F, 1.0F));
  EXPECT_TRUE(kit::sameBits(kNan, -kNan)) << "payload and sign of a NaN do not count";
  EXPECT_FALSE(kit::sameBits(0.0F, -0.0F));
  EXPECT_FALSE(kit::sameBits(1.0F, std::nextafter(1.0F, 2.0F)));
  EXPECT_FALSE(kit::sameBits(kNan, 1.0F));
  EXPECT_FALSE(kit::sameBits(std::vector<double>{1, 2, 3}, std::vector<double>{1, 2, 4}));
  EXPECT_FALSE(kit::sameBits(std::vector<int>{1, 2, 3}, std::vector<int>{1, 2}));
  EXPECT_FALSE(kit::sameBits(int16_t{-1}, int16_t{1}));
}

TEST(Compare, BoundsDecide) {
  const float actual[] = {1.0F, kNan, std::numeric_limits<float>::infinity()};
  const double close[] = {1.5, std::nan(""), std::numeric_limits<double>::infinity()};
  const double finite[] = {1.0, 2.0, 3.0};
  EXPECT_TRUE(kit::within(actual, close, 3, 0.5));
  EXPECT_FALSE(kit::within(actual, close, 1, 0.49));
  EXPECT_FALSE(kit::within(actual + 1, finite, 1, 1e30)) << "a NaN is not within any bound";
  EXPECT_FALSE(kit::within(actual + 2, finite, 1, 1e30));
}

// A family of one function, right or with one mistake.
enum Mistake { kNone, kWrongOrder, kMissingCheck, kWritesOnFault };
struct Args {
  const float* source;
  float* result;
  int32_t width;
};
QorStatus family(const Args& a, Mistake mistake) {
  if (mistake == kWrongOrder && a.width < 1) return qorStatusBadSize;
  if (mistake == kWritesOnFault && a.result != nullptr) *a.result = 1.0F;
  if (a.source == nullptr) return qorStatusNullPointer;
  if (a.result == nullptr) return mistake == kMissingCheck ? qorStatusOk : qorStatusNullPointer;
  if (a.width < 1) return qorStatusBadSize;
  *a.result = *a.source;
  return qorStatusOk;
}
void checkFamily(Mistake mistake) {
  static float source, result;
  source = 2.0F;
  result = 3.0F;
  kit::FaultTable<Args> table({&source, &result, 1}, [=](const Args& a) { return family(a, mistake); }, {kit::Watched(&result, 1)});
  table.fault("null source", qorStatusNullPointer, &Args::source, nullptr)
      .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
      .fault("width zero", qorStatusBadSize, &Args::width, 0)
      .check();
}

int failuresOf(const std::function<void()>& body) {
  testing::TestPartResultArray results;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS,
                                                             &results);
    body();
  }
  return results.size();
}

TEST(Faults, MistakesAreSeen) {
  EXPECT_EQ(failuresOf([] { checkFamily(kNone); }), 0);
  EXPECT_GT(failuresOf([] { checkFamily(kWrongOrder); }), 0);
  EXPECT_GT(failuresOf([] { checkFamily(kMissingCheck); }), 0);
  EXPECT_GT(failuresOf([] { checkFamily(kWritesOnFault); }), 0);
}

TEST(Faults, MembersDecideWhichPairsRun) {
  struct Sizes {
    int32_t stride, width, height;
  };
  const auto calls = [](auto describe) {
    int count = 0;
    kit::FaultTable<Sizes> table(
        {4, 4, 1},
        [&](const Sizes& a) {
          ++count;
          return a.stride < a.width ? qorStatusBadStride : a.width < 1 || a.height < 1 ? qorStatusBadSize : qorStatusOk;
        },
        {});
    describe(table);
    table.check();
    return count;
  };
  const auto sizes = [](auto& table) -> auto& {
    return table.fault("width zero", qorStatusBadSize, &Sizes::width, 0)
        .fault("width of no row", qorStatusBadSize, &Sizes::width, -1)
        .fault("height of a width", qorStatusBadSize, &Sizes::height, 0);
  };
  EXPECT_EQ(calls([&](auto& table) { sizes(table); }), 4 + 2) << "names are not looked at";
  EXPECT_EQ(calls([&](auto& table) {
              table.fault("stride below width", qorStatusBadStride, &Sizes::stride, 3, kit::against(&Sizes::width));
              sizes(table);
            }),
            5 + 3);
  EXPECT_GT(failuresOf([&] {
              calls([&](auto& table) { sizes(table.fault("stride below the row", qorStatusBadStride, &Sizes::stride, 3)); });
            }),
            0)
      << "a fault that another one undoes";
}

TEST(Environment, ChangesAreSeen) {
  EXPECT_EQ(failuresOf([] { kit::expectEnvironmentKept([] {}); }), 0);
  EXPECT_GT(failuresOf([] { kit::expectEnvironmentKept([] { std::fesetround(FE_TOWARDZERO); }); }), 0);
  EXPECT_GT(failuresOf([] { kit::expectEnvironmentKept([] { std::feclearexcept(FE_INVALID); }); }), 0);
#if defined(__SSE__)
  EXPECT_GT(failuresOf([] { kit::expectEnvironmentKept([] { _mm_setcsr(_mm_getcsr() ^ 0x2000); }); }), 0) << "rounding mode";
  EXPECT_GT(failuresOf([] { kit::expectEnvironmentKept([] { _mm_setcsr(_mm_getcsr() | 0x8000); }); }), 0) << "flush to zero";
  EXPECT_GT(failuresOf([] { kit::expectEnvironmentKept([] { _mm_setcsr(_mm_getcsr() & ~0x0080u); }); }), 0) << "exception mask";
#endif
}

QorStatus allocatesTwice(bool checks, bool releases) {
  void* first = qorMalloc(10);
  if (first == nullptr) return qorStatusNoMemory;
  void* second = qorMalloc(20);
  if (second == nullptr) {
    if (releases) qorFree(first);
    return checks ? qorStatusNoMemory : qorStatusOk;
  }
  qorFree(second);
  qorFree(first);
  return qorStatusOk;
}

TEST(Core, RefusalsAndLeaksAreSeen) {
  EXPECT_EQ(kit::expectEveryRefusalReported([] { return allocatesTwice(true, true); }), 2);
  EXPECT_GT(failuresOf([] { kit::expectEveryRefusalReported([] { return allocatesTwice(false, true); }); }), 0);
  void* lost = nullptr;  // what the careless one leaves behind, so that this test leaves nothing
  EXPECT_GT(failuresOf([&] {
              kit::expectEveryRefusalReported([&] {
                void* first = qorMalloc(10);
                if (first == nullptr) return qorStatusNoMemory;
                void* second = qorMalloc(20);
                if (second == nullptr) {
                  lost = first;
                  return qorStatusNoMemory;
                }
                qorFree(second);
                qorFree(first);
                return qorStatusOk;
              });
            }),
            0);
  qorFree(lost);
}

TEST(Core, BlocksLieAtOddAddresses) {
  bool odd = false;
  for (int i = 0; i < 31; ++i) {
    void* block = qorMalloc(8);
    odd = odd || reinterpret_cast<std::uintptr_t>(block) % 2 == 1;
    qorFree(block);
  }
  EXPECT_TRUE(odd);
}

TEST(CoreDeathTest, WrongUseEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  char other = 0;
  EXPECT_DEATH(qorFree(&other), "did not return");
  EXPECT_DEATH(qorMalloc(0), "size below 1");
  EXPECT_DEATH(
      {
        auto* block = static_cast<volatile char*>(qorMalloc(8));
        block[-1] = 0;
        qorFree(const_cast<char*>(block));
      },
      "in front of a block");
  EXPECT_DEATH(
      {
        auto* block = static_cast<volatile char*>(qorMalloc(8));
        block[8] = 0;
        qorFree(const_cast<char*>(block));
      },
      "behind a block|AddressSanitizer");
}

TEST(Memory, EdgesAreWatched) {
  for (const kit::Place place : kit::kPlaces) {
    kit::Area<float> area(7, place);
    area.fill(1.0F);
    EXPECT_TRUE(area.edgesKept());
    area.data()[place == kit::Place::kAligned ? 7 : -1] = 0.0F;  // the other side is a guard page
    EXPECT_FALSE(area.edgesKept());
  }
  kit::Matrix<int16_t> matrix(3, 5, 8, kit::Place::kOddStart);
  EXPECT_TRUE(matrix.gapsKept());
  matrix.block()[6] = 1;
  EXPECT_FALSE(matrix.gapsKept());
}

TEST(MemoryDeathTest, TheGuardPageCannotBeTouched) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const kit::Area<float> area(7, kit::Place::kAtGuard);
  EXPECT_DEATH({ [[maybe_unused]] volatile float beyond = static_cast<volatile float*>(area.data())[7]; }, "");
}

}  // namespace
