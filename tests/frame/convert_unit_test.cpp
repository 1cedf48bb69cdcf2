// Conversion of float results to integers: every rounding mode, scale factors of both signs and at their ends, limits, NaN, in
// place.
#include "frame/convert.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"

namespace {

using namespace qorsr;

QorStatus convert(const float* source, int16_t* destination, int32_t length, int mode, int32_t sf) {
  return convertFloats(source, destination, length, mode, sf);
}
QorStatus convert(const float* source, int32_t* destination, int32_t length, int mode, int32_t sf) {
  return convertFloats(source, destination, length, mode, sf);
}

constexpr int kModes[] = {kTruncate, kNearestEven, kNearestAway, 3, -1, INT_MAX};
constexpr int32_t kScaleFactors[] = {0,   1,    -1,  3,    -3,  15,   -15, 16,   -16, 31,      -31,     100,        -100,
                                     126, -126, 127, -127, 128, -128, 149, -149, 150, -150,    151,     -151,       1000,
                                     -7,  7,    30,  -30,  32,  -32,  64,  -64,  300, INT_MAX, INT_MIN, INT_MIN + 1};

// Values at which rounding or a limit changes, with their neighbours on either side; then any.
std::vector<float> interestingValues() {
  const float infinity = std::numeric_limits<float>::infinity();
  std::vector<float> v = {0.0F, infinity, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::signaling_NaN()};
  for (const float edge :
       {0.25F,       0.5F,          1.0F,          1.5F,          2.5F,          3.5F,     4095.5F,    32766.5F,
        32767.0F,    32767.5F,      32768.0F,      32768.5F,      32769.0F,      65536.0F, 8388607.5F, 8388608.0F,
        16777216.0F, 2147483392.0F, 2147483520.0F, 2147483648.0F, 4294967296.0F, 0x1p63F,  0x1p100F,   1e-30F}) {
    v.insert(v.end(), {edge, std::nextafter(edge, 0.0F), std::nextafter(edge, infinity)});
  }
  v.insert(v.end(),
           {std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::min(), std::numeric_limits<float>::max()});
  const std::size_t positive = v.size();
  for (std::size_t i = 0; i < positive; ++i) v.push_back(std::copysign(v[i], -1.0F));
  kit::Random random;
  for (int i = 0; i < 100; ++i) v.push_back(random.value<float>(kit::kKinds[i % 3]));
  return v;
}

template <class Int>
std::vector<Int> expected(const std::vector<float>& values, int mode, int32_t sf) {
  std::vector<Int> v;
  for (const float value : values) v.push_back(model::convertScaled<Int>(value, mode, sf));
  return v;
}

template <class Int>
void expectConversions() {
  const std::vector<float> values = interestingValues();
  const auto length = static_cast<int32_t>(values.size());
  for (const int mode : kModes) {
    for (const int32_t sf : kScaleFactors) {
      const kit::Area<float> source(values, kit::Place::kAtGuard);
      kit::Area<Int> result(length, kit::Place::kAtGuard);
      ASSERT_EQ(convert(source.data(), result.data(), length, mode, sf), qorStatusOk);
      ASSERT_BITS(result.values(), expected<Int>(values, mode, sf)) << "mode " << mode << ", scale factor " << sf;
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(Convert, To16Bits) { expectConversions<int16_t>(); }
TEST(Convert, To32Bits) { expectConversions<int32_t>(); }

template <class Int>
void expectInPlace() {
  const std::vector<float> values = interestingValues();
  const auto length = static_cast<int32_t>(values.size());
  for (const int mode : {0, 1, 2}) {
    for (const int32_t sf : {0, 3, -3}) {
      std::vector<float> memory = values;
      std::vector<Int> result(values.size());
      ASSERT_EQ(convert(memory.data(), reinterpret_cast<Int*>(memory.data()), length, mode, sf), qorStatusOk);
      std::memcpy(result.data(), memory.data(), result.size() * sizeof(Int));
      ASSERT_BITS(result, expected<Int>(values, mode, sf)) << "mode " << mode << ", scale factor " << sf;
    }
  }
}

TEST(Convert, SourceMayBeTheDestination) {
  expectInPlace<int16_t>();
  expectInPlace<int32_t>();
}

TEST(Convert, EveryLength) {
  const std::vector<float> values = interestingValues();
  for (int32_t length = 1; length <= 40; ++length) {
    const std::vector<float> some(values.begin(), values.begin() + length);
    const kit::Area<float> source(some, kit::Place::kAtGuard);
    kit::Area<int16_t> result(length, kit::Place::kAtGuard);
    ASSERT_EQ(convert(source.data(), result.data(), length, kNearestEven, 1), qorStatusOk);
    ASSERT_BITS(result.values(), expected<int16_t>(some, kNearestEven, 1)) << length;
    ASSERT_TRUE(result.edgesKept());
  }
}

// The few values that the definition names.
TEST(Convert, NamedValues) {
  const float next = std::nextafter(2147483520.0F, 3e9F);
  const float source[] = {2147483520.0F, next, std::numeric_limits<float>::quiet_NaN(), -2147483648.0F, -3e9F, 16777216.0F, 0.5F,
                          1.5F,          -2.5F};
  for (const int mode : {0, 1, 2}) {
    int32_t result[9];
    ASSERT_EQ(convert(source, result, 9, mode, 0), qorStatusOk);
    EXPECT_EQ(result[0], 2147483520);
    EXPECT_EQ(result[1], INT32_MAX);
    EXPECT_EQ(result[2], 0);
    EXPECT_EQ(result[3], INT32_MIN);
    EXPECT_EQ(result[4], INT32_MIN);
    EXPECT_EQ(result[5], 16777216) << "without a scale factor nothing is multiplied";
    EXPECT_EQ(result[6], mode == 2 ? 1 : 0);
    EXPECT_EQ(result[7], mode == 0 ? 1 : 2);
    EXPECT_EQ(result[8], mode == 2 ? -3 : -2);
  }
}

// The multiplier is a float: infinite from -128 down, zero from 150 up, and 0 times infinity is no number, so 0.
TEST(Convert, ExtremeScaleFactors) {
  const float source[] = {0.0F, 1e-38F, -1e-38F, std::numeric_limits<float>::infinity(), 1.0F};
  int16_t result[5];
  for (const int32_t sf : {-128, -129, -1000, INT32_MIN}) {
    ASSERT_EQ(convert(source, result, 5, kNearestEven, sf), qorStatusOk);
    EXPECT_EQ(std::vector<int16_t>(result, result + 5), (std::vector<int16_t>{0, INT16_MAX, INT16_MIN, INT16_MAX, INT16_MAX}))
        << sf;
  }
  for (const int32_t sf : {150, 151, 1000, INT32_MAX}) {
    ASSERT_EQ(convert(source, result, 5, kNearestEven, sf), qorStatusOk);
    EXPECT_EQ(std::vector<int16_t>(result, result + 5), (std::vector<int16_t>{0, 0, 0, 0, 0})) << sf;
  }
}

template <class Int>
void expectFaults() {
  struct Args {
    const float* source;
    Int* destination;
    int32_t length;
  };
  const std::vector<float> source(4, 1.0F);
  std::vector<Int> destination(4, Int(77));
  kit::FaultTable<Args> table({source.data(), destination.data(), 4},
                              [](const Args& a) { return convert(a.source, a.destination, a.length, 1, 0); },
                              {kit::Watched(destination.data(), 4)});
  table.fault("null source", qorStatusNullPointer, &Args::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &Args::destination, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .fault("length negative", qorStatusBadSize, &Args::length, INT_MIN)
      .check();
}

TEST(Convert, Faults) {
  expectFaults<int16_t>();
  expectFaults<int32_t>();
}

template <class Int>
void expectTheSameInEveryMode() {
  const std::vector<float> values = interestingValues();
  const auto length = static_cast<int32_t>(values.size());
  for (const int mode : {0, 1, 2}) {
    const std::vector<Int> wanted = expected<Int>(values, mode, 2);
    std::vector<Int> result(values.size());
    kit::expectEnvironmentKept([&] {
      std::fill(result.begin(), result.end(), Int(99));
      convert(values.data(), result.data(), length, mode, 2);
      if (result != wanted) ADD_FAILURE() << "mode " << mode << ": the caller's rounding mode " << std::fegetround() << " shows";
    });
  }
}

TEST(Convert, CallersEnvironmentIsKeptAndDoesNotShow) {
  expectTheSameInEveryMode<int16_t>();
  expectTheSameInEveryMode<int32_t>();
}

TEST(Convert, LimitAndRoundOfDoubles) {
  std::vector<double> values = {std::numeric_limits<double>::quiet_NaN(),
                                2147483646.5,
                                2147483647.0,
                                2147483647.5,
                                2147483648.0,
                                -2147483647.5,
                                -2147483648.0,
                                -2147483648.5,
                                1e300,
                                -1e300,
                                0.5,
                                1.5,
                                2.5,
                                0.49999999999999994,
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity()};
  kit::Random random;
  for (int i = 0; i < 3000; ++i) {
    values.push_back(random.value<double>(kit::kKinds[i % 3]));
    values.push_back(std::floor(random.real(-1e5, 1e5)) + 0.5);
    values.push_back(random.real(-2.2e9, 2.2e9));
  }
  for (const double value : values) {
    for (const double v : {value, -value, std::nextafter(value, 0.0), std::nextafter(value, 1e308)}) {
      const int32_t wanted = model::limitAndRound32(v);
      ASSERT_BITS(limitAndRound<int32_t>(v), wanted) << v;
      for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
        std::fesetround(mode);
        const int32_t result = limitAndRound<int32_t>(v);
        std::fesetround(FE_TONEAREST);
        ASSERT_EQ(result, wanted) << v << " in rounding mode " << mode;
      }
    }
  }
}

}  // namespace
