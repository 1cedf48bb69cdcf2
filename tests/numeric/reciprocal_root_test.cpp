// Reciprocal roots with a floor: bits against the model, both roads of the integers, statuses, faults, environment.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "model/numeric_vectors.h"
#include "qorsr.h"

namespace {

TEST(RecSqrt, Floats) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 4; ++round) {
      const float floor = round == 3 ? 1e-40F : static_cast<float>(random.real(0.5, 4));
      std::vector<float> x, expected;
      bool any = false;
      for (int32_t i = 0; i < length; ++i) {
        x.push_back(round == 2 ? random.nasty<float>() : static_cast<float>(random.real(0, 8)));
        if (random.integer(0, 7) == 0) x.back() = floor;
        any = any || floor < x.back();
        expected.push_back(model::reciprocalRoot(x.back(), floor));
      }
      const kit::Area<float> values(x, kit::kPlaces[(round + length) % 3]);
      ASSERT_EQ(qorsRecSqrt_32f(values.data(), length, floor), any ? qorStatusOk : qorStatusDegenerateInput);
      ASSERT_BITS(values.values(), expected) << "length " << length << " round " << round;
      ASSERT_TRUE(values.edgesKept());
    }
  }
}

TEST(RecSqrt, OneNewtonStepIsCloseToTheRoot) {
  std::vector<float> x;
  for (int i = 1; i < 1000; ++i) x.push_back(static_cast<float>(i) * 0.37F);
  const std::vector<float> source = x;
  ASSERT_EQ(qorsRecSqrt_32f(x.data(), 999, 1e-3F), qorStatusOk);
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double exact = 1 / std::sqrt(static_cast<double>(source[i]));
    EXPECT_NEAR(static_cast<double>(x[i]), exact, exact * 0x1p-22);
  }
}

TEST(RecSqrt, AValueAtTheFloorIsTheFloorInFloatAndARootInIntegers) {
  float x[] = {4, 4};
  EXPECT_EQ(qorsRecSqrt_32f(x, 2, 4), qorStatusDegenerateInput);
  EXPECT_EQ(x[0], 4);
  int32_t y[] = {4, 3};
  int16_t result[2];
  EXPECT_EQ(qorsRecSqrt_32s16s_Sfs(y, result, 2, 4, -10), qorStatusOk);
  EXPECT_EQ(result[0], 512);
  EXPECT_EQ(result[1], 4096);
  EXPECT_EQ(qorsRecSqrt_32s16s_Sfs(y, result, 2, 5, 0), qorStatusDegenerateInput);
}

constexpr int32_t kScaleFactors[] = {-200, -128, -127, -40, -31, -20, -16, -15,       -8,       -1,
                                     0,    1,    3,    31,  149, 150, 200, INT32_MIN, INT32_MAX};

std::vector<int32_t> integers(kit::Random& random, int32_t length, int32_t floor) {
  std::vector<int32_t> v;
  for (int32_t i = 0; i < length; ++i) {
    const int64_t choices[] = {
        floor, floor - 1, floor + 1, INT32_MAX, INT32_MIN, 0, random.integer(1, 1000), random.integer(1, INT32_MAX)};
    v.push_back(static_cast<int32_t>(choices[random.integer(0, 7)]));
  }
  return v;
}
bool anyReaches(const std::vector<int32_t>& x, int32_t floor) {
  for (const int32_t value : x) {
    if (!(static_cast<float>(value) < static_cast<float>(floor))) return true;
  }
  return false;
}

TEST(RecSqrt, IntegersTo16Bits) {
  kit::Random random;
  for (const int32_t length : kit::shortLengths()) {
    for (const int32_t sf : kScaleFactors) {
      for (const int32_t floor : {1, 50, 1000000}) {
        const auto x = integers(random, length, floor);
        std::vector<int16_t> expected;
        for (const int32_t value : x) expected.push_back(model::truncatedRoot16(model::reciprocalRoot(value, floor), sf));
        const kit::Area<int32_t> source(x, kit::kPlaces[length % 3]);
        kit::Area<int16_t> result(length, kit::kPlaces[length % 3]);
        ASSERT_EQ(qorsRecSqrt_32s16s_Sfs(source.data(), result.data(), length, floor, sf),
                  anyReaches(x, floor) ? qorStatusOk : qorStatusDegenerateInput);
        ASSERT_BITS(result.values(), expected) << "length " << length << " sf " << sf << " floor " << floor;
        ASSERT_TRUE(result.edgesKept());
      }
    }
  }
}

// On a multiple of 16 the conversion rounds and saturates, elsewhere it truncates and 2^31 becomes the most negative integer.
TEST(RecSqrt, IntegersInPlace) {
  kit::Random random;
  auto lengths = kit::shortLengths();
  for (const int32_t more : {255, 256, 257, 600}) lengths.push_back(more);
  for (const int32_t length : lengths) {
    for (const int32_t sf : kScaleFactors) {
      for (const kit::Place place : {kit::Place::kAligned, kit::Place::kOddStart}) {
        const int32_t floor = 7;
        const auto x = integers(random, length, floor);
        std::vector<int32_t> expected;
        for (const int32_t value : x) {
          const float y = model::reciprocalRoot(value, floor);
          expected.push_back(place == kit::Place::kAligned ? model::convertScaled<int32_t>(y, 1, sf)
                                                           : model::truncatedRoot32(y, sf));
        }
        const kit::Area<int32_t> values(x, place);
        ASSERT_EQ(qorsRecSqrt_32s_Sfs(values.data(), length, floor, sf),
                  anyReaches(x, floor) ? qorStatusOk : qorStatusDegenerateInput);
        ASSERT_BITS(values.values(), expected) << "length " << length << " sf " << sf;
        ASSERT_TRUE(values.edgesKept());
      }
    }
  }
}

TEST(RecSqrtFaults, EveryMember) {
  struct Real {
    float* values;
    int32_t length;
    float floor;
  };
  float values[4] = {1, 2, 3, 4};
  kit::FaultTable<Real>({values, 4, 2.0F}, [](const Real& a) { return qorsRecSqrt_32f(a.values, a.length, a.floor); },
                        {{values, 4}})
      .fault("null values", qorStatusNullPointer, &Real::values, nullptr)
      .fault("length zero", qorStatusBadSize, &Real::length, 0)
      .fault("length negative", qorStatusBadSize, &Real::length, INT32_MIN)
      .fault("floor zero", qorStatusBadArgument, &Real::floor, 0.0F)
      .fault("floor minus zero", qorStatusBadArgument, &Real::floor, -0.0F)
      .fault("floor negative", qorStatusBadArgument, &Real::floor, -1e-40F)
      .check();
  struct Integer {
    int32_t* values;
    int16_t* result;
    int32_t length, floor;
  };
  int32_t integers[4] = {1, 2, 3, 4};
  int16_t result[4] = {7, 7, 7, 7};
  const auto to16 = [](const Integer& a) { return qorsRecSqrt_32s16s_Sfs(a.values, a.result, a.length, a.floor, 0); };
  kit::FaultTable<Integer>({integers, result, 4, 2}, to16, {{result, 4}, {integers, 4}})
      .fault("null source", qorStatusNullPointer, &Integer::values, nullptr)
      .fault("null result", qorStatusNullPointer, &Integer::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Integer::length, 0)
      .fault("floor zero", qorStatusBadArgument, &Integer::floor, 0)
      .fault("floor negative", qorStatusBadArgument, &Integer::floor, INT32_MIN)
      .check();
  const auto inPlace = [](const Integer& a) { return qorsRecSqrt_32s_Sfs(a.values, a.length, a.floor, 0); };
  kit::FaultTable<Integer>({integers, result, 4, 2}, inPlace, {{integers, 4}})
      .fault("null values", qorStatusNullPointer, &Integer::values, nullptr)
      .fault("length zero", qorStatusBadSize, &Integer::length, 0)
      .fault("floor zero", qorStatusBadArgument, &Integer::floor, 0)
      .fault("floor negative", qorStatusBadArgument, &Integer::floor, INT32_MIN)
      .check();
}

TEST(RecSqrt, ANaNFloorLeavesNothingAboveIt) {
  float x[] = {4, 5};
  EXPECT_EQ(qorsRecSqrt_32f(x, 2, std::numeric_limits<float>::quiet_NaN()), qorStatusDegenerateInput);
  EXPECT_TRUE(std::isnan(x[0]) && std::isnan(x[1]));
}

TEST(RecSqrtEnvironment, IsKept) {
  kit::expectEnvironmentKept([] {
    alignas(16) int32_t x[21];
    float y[21];
    int16_t z[21];
    for (int i = 0; i < 21; ++i) x[i] = i * 1000, y[i] = static_cast<float>(i);
    qorsRecSqrt_32f(y, 21, 2);
    qorsRecSqrt_32s16s_Sfs(x, z, 21, 5, -10);
    qorsRecSqrt_32s_Sfs(x, 21, 5, -20);
    qorsRecSqrt_32s_Sfs(x + 1, 20, 5, -20);
  });
}

}  // namespace
