// Peaks of a contour: the walk of the model in every flag, all short contours of few values, ends, plateaus, smoothing, faults.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/pitch.h"
#include "qorsr.h"

namespace {

QorStatus find(const float* y, uint8_t* flags, int32_t n, int32_t search, int32_t half) {
  return qorsFindPeaks_32f8u(y, flags, n, search, half);
}
QorStatus find(const int32_t* y, uint8_t* flags, int32_t n, int32_t search, int32_t half) {
  return qorsFindPeaks_32s8u(y, flags, n, search, half);
}

template <class T>
void expectFlags(const std::vector<T>& y, int32_t search, int32_t half, kit::Place place) {
  const auto n = static_cast<int32_t>(y.size());
  const kit::Area<T> source(y, place);
  kit::Area<uint8_t> flags(n, place);
  flags.fill(2);
  ASSERT_EQ(find(source.data(), flags.data(), n, search, half), qorStatusOk);
  ASSERT_BITS(flags.values(), model::peaks(y, search, half)) << n << " values, search " << search << ", half width " << half;
  ASSERT_TRUE(flags.edgesKept());
}

// Every contour of up to 7 values out of 3: rises, falls, plateaus and ends of all kinds.
template <class T>
void expectAllShortContours() {
  int64_t contours = 1;
  for (int n = 1; n <= 7; ++n) {
    contours *= 3;
    for (int64_t code = 0; code < contours; ++code) {
      std::vector<T> y;
      for (int64_t rest = code, i = 0; i < n; ++i, rest /= 3) y.push_back(static_cast<T>(rest % 3));
      for (const int32_t search : {1, 2, 3, 9}) {
        for (const int32_t half : {0, 1}) {
          std::vector<uint8_t> flags(static_cast<std::size_t>(n), 2);
          ASSERT_EQ(find(y.data(), flags.data(), n, search, half), qorStatusOk);
          ASSERT_BITS(flags, model::peaks(y, search, half))
              << "contour " << code << " of " << n << ", search " << search << ", " << half;
        }
      }
    }
  }
}
TEST(Peaks, AllShortContoursOfFloats) { expectAllShortContours<float>(); }
TEST(Peaks, AllShortContoursOfIntegers) { expectAllShortContours<int32_t>(); }

template <class T>
void expectRandomContours() {
  kit::Random random;
  std::vector<int32_t> lengths = kit::lengths();
  lengths.insert(lengths.end(), {500, 2000});
  for (const int32_t n : lengths) {
    for (const int32_t half : {0, 1, 2, 3, 7, 20, 127}) {
      for (const int32_t search : {1, 2, 3, 5, 127}) {
        std::vector<T> y = random.vector<T>(n, kit::kKinds[random.integer(0, 2)]);
        if (random.integer(0, 1) == 0) {
          for (T& v : y) v = static_cast<T>(random.integer(-4, 4));  // many plateaus
        }
        expectFlags(y, search, half, kit::kPlaces[(n + half) % 3]);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}
TEST(Peaks, Floats) { expectRandomContours<float>(); }
TEST(Peaks, Integers) { expectRandomContours<int32_t>(); }

TEST(Peaks, TheEndsOfMonotonousContours) {
  const std::vector<float> falling = {5, 4, 3, 2, 1}, rising = {1, 2, 3, 4, 5};
  std::vector<uint8_t> flags(5);
  ASSERT_EQ(find(falling.data(), flags.data(), 5, 3, 0), qorStatusOk);
  EXPECT_BITS(flags, {1, 0, 0, 0, 0});
  ASSERT_EQ(find(rising.data(), flags.data(), 5, 3, 0), qorStatusOk);
  EXPECT_BITS(flags, {0, 0, 0, 0, 1});
  ASSERT_EQ(find(rising.data(), flags.data(), 2, 1, 1), qorStatusOk);  // a window as long as the contour
  EXPECT_EQ(flags[0] + flags[1], 0);
  ASSERT_EQ(find(rising.data(), flags.data(), 1, 1, 0), qorStatusOk);
  EXPECT_EQ(flags[0], 1);
}

TEST(Peaks, ALongContour) {
  std::vector<int32_t> y(65535);
  for (std::size_t i = 0; i < y.size(); ++i) y[i] = static_cast<int32_t>(i * i % 997);
  expectFlags(y, 4, 3, kit::Place::kAtGuard);
}

TEST(PeakFaults, EveryMember) {
  struct A {
    const float* source;
    uint8_t* flags;
    int32_t length, search, half;
  };
  const std::vector<float> y = {1, 2, 1, 2, 1};
  const std::vector<int32_t> whole = {1, 2, 1, 2, 1};
  std::vector<uint8_t> flags(5, 7);
  kit::FaultTable<A>({y.data(), flags.data(), 5, 2, 1},
                     [](const A& a) { return find(a.source, a.flags, a.length, a.search, a.half); }, {{flags.data(), 5}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null flags", qorStatusNullPointer, &A::flags, nullptr)
      .fault("length zero", qorStatusBadLength, &A::length, 0)
      .fault("length above 65535", qorStatusBadLength, &A::length, 65536)
      .fault("search zero", qorStatusBadSize, &A::search, 0)
      .fault("search above 127", qorStatusBadSize, &A::search, 128)
      .fault("half negative", qorStatusBadSize, &A::half, -1)
      .fault("half above 127", qorStatusBadSize, &A::half, 128)
      .check();
  EXPECT_EQ(find(whole.data(), nullptr, 5, 0, 0), qorStatusNullPointer);
  EXPECT_EQ(find(whole.data(), flags.data(), 0, 0, 0), qorStatusBadLength);
  EXPECT_EQ(find(whole.data(), flags.data(), 5, 0, 0), qorStatusBadSize);
}

TEST(Peaks, MemoryAndEnvironment) {
  const std::vector<float> y = {1, 2, 1, 2, 1};
  std::vector<uint8_t> flags(5);
  kit::expectEnvironmentKept([&] { find(y.data(), flags.data(), 5, 1, 1); });
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return find(y.data(), flags.data(), 5, 1, 0); }), 0);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return find(y.data(), flags.data(), 5, 1, 1); }), 1);
}

}  // namespace
