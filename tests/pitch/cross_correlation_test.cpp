// Normalised cross-correlation: bits against the plain model, signals of known period, faults, memory.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/pitch.h"
#include "qorsr.h"

namespace {

using Shorts = std::vector<int16_t>;

// Plain, small and nasty numbers, and runs of the most negative one, whose products are the largest.
Shorts shorts(kit::Random& random, int64_t count) {
  const int64_t kind = random.integer(0, 3);
  return kind == 3 ? Shorts(static_cast<std::size_t>(count), INT16_MIN) : random.vector<int16_t>(count, kit::kKinds[kind]);
}

std::vector<int32_t> manyLengths() {
  std::vector<int32_t> all = kit::lengths();
  all.insert(all.end(), {400, 1000, 65535, 65536, 65537, 200001});
  return all;
}

TEST(CrossCorrelation, WholeAndPartial) {
  kit::Random random;
  for (const int32_t length : manyLengths()) {
    for (int trial = 0; trial < (length < 1000 ? 6 : 2); ++trial) {
      const kit::Place place = kit::kPlaces[(length + trial) % 3];
      const kit::Area<int16_t> first(shorts(random, length), place), second(shorts(random, length), place);
      kit::Area<float> result(1, place);
      const int16_t *x = first.data(), *y = second.data();
      const float c = model::exactDot(x, y, length), e1 = model::exactDot(x, x, length), e2 = model::exactDot(y, y, length);
      SCOPED_TRACE(testing::Message() << "length " << length);
      ASSERT_EQ(qorsCrossCorrCoeff_16s32f(x, y, length, result.data()), qorStatusOk);
      ASSERT_BITS(result[0], model::normalised(c, e1, e2));
      for (const float energy :
           {e1 + 1.0F, -3.0F, 1e-38F, 1e-45F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        ASSERT_EQ(qorsCrossCorrCoeffPartial_16s32f(x, y, length, energy, result.data()), qorStatusOk);
        ASSERT_BITS(result[0], model::normalised(c, energy, e2));
      }
      ASSERT_TRUE(result.edgesKept());
    }
  }
}

TEST(CrossCorrelation, SilenceIsZero) {
  const Shorts silence(20), sound(20, 100);
  float result = 77.0F;
  EXPECT_EQ(qorsCrossCorrCoeff_16s32f(silence.data(), sound.data(), 20, &result), qorStatusOk);
  EXPECT_BITS(result, 0.0F);
  result = 77.0F;
  EXPECT_EQ(qorsCrossCorrCoeff_16s32f(sound.data(), silence.data(), 20, &result), qorStatusOk);
  EXPECT_BITS(result, 0.0F);
}

TEST(CrossCorrelation, TheLagOfTheHighestCoefficientIsThePeriod) {
  Shorts x;
  for (int n = 0; n < 900; ++n)
    x.push_back(static_cast<int16_t>(8000 * std::sin(0.0698131700797732 * n) + 3000 * std::sin(0.1396263401595464 * n)));
  int32_t best = 0;
  float highest = -2.0F;
  for (int32_t lag = 40; lag < 140; ++lag) {
    float c = 0.0F;
    ASSERT_EQ(qorsCrossCorrCoeff_16s32f(x.data(), x.data() + lag, 400, &c), qorStatusOk);
    if (c > highest) {
      highest = c;
      best = lag;
    }
  }
  EXPECT_EQ(best, 90);
  EXPECT_GT(highest, 0.999F);
}

TEST(CrossCorrelation, GrowingLengthsEveryStepthSample) {
  kit::Random random;
  for (const int32_t minimum : {1, 2, 3, 5, 8, 13, 40, 100}) {
    for (const int32_t range : {0, 1, 2, 3, 4, 7, 15, 30, 63}) {
      for (const int32_t step : {1, 2, 3, 4, 5, 16, 64, INT32_MAX}) {
        const kit::Place place = kit::kPlaces[(minimum + range) % 3];
        const int32_t maximum = minimum + range;
        const Shorts x = shorts(random, maximum), y = shorts(random, maximum);
        const kit::Area<int16_t> first(x, place), second(y, place);
        const kit::Area<float> results(range / step + 1, place);
        SCOPED_TRACE(testing::Message() << "minimum " << minimum << " range " << range << " step " << step);
        ASSERT_EQ(qorsCrossCorrCoeffDecim_16s32f(first.data(), second.data(), maximum, minimum, results.data(), step), qorStatusOk);
        if (step == INT32_MAX) {
          ASSERT_BITS(results.values(), model::decimatedCrossCorrelation(x, y, maximum, minimum, maximum));
        } else {
          ASSERT_BITS(results.values(), model::decimatedCrossCorrelation(x, y, maximum, minimum, step));
        }
        ASSERT_TRUE(results.edgesKept());
      }
    }
  }
}

TEST(CrossCorrelation, BetweenTwoLags) {
  kit::Random random;
  int outside = 0, inside = 0;
  for (const int32_t length : manyLengths()) {
    if (length > 100000) continue;
    for (int trial = 0; trial < 8; ++trial) {
      const kit::Place place = kit::kPlaces[(length + trial) % 3];
      Shorts y = shorts(random, length + 1), x(y.begin(), y.end() - 1);
      if (trial % 2 == 0) {  // x lies between y and its neighbour
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<int16_t>((2 * y[i] + y[i + 1]) / 3);
      }
      if (trial % 4 == 1) x = shorts(random, length);
      const kit::Area<int16_t> first(x, place), second(y, place);
      kit::Area<float> position(1, place), coefficient(1, place);
      coefficient[0] = 77.0F;
      const auto expected = model::interpolatedCrossCorrelation(x, y);
      ASSERT_EQ(qorsCrossCorrCoeffInterpolation_16s32f(first.data(), second.data(), length, position.data(), coefficient.data()),
                expected.status);
      ASSERT_BITS(position[0], expected.position) << length;
      ASSERT_BITS(coefficient[0], expected.coefficient.value_or(77.0F)) << length;
      ++(expected.coefficient ? inside : outside);
    }
  }
  EXPECT_GT(inside, 20);
  EXPECT_GT(outside, 5);
}

TEST(CrossCorrelation, APeakBetweenSamplesIsFound) {
  Shorts x, y;
  for (int n = 0; n < 300; ++n) {
    x.push_back(static_cast<int16_t>(std::lround(9000 * std::sin(0.05 * (n + 0.3)))));
    y.push_back(static_cast<int16_t>(std::lround(9000 * std::sin(0.05 * n))));
  }
  y.push_back(static_cast<int16_t>(std::lround(9000 * std::sin(0.05 * 300))));
  float position = 0.0F, coefficient = 0.0F;
  ASSERT_EQ(qorsCrossCorrCoeffInterpolation_16s32f(x.data(), y.data(), 300, &position, &coefficient), qorStatusOk);
  EXPECT_NEAR(position, 0.3F, 1e-2F);
  EXPECT_NEAR(coefficient, 1.0F, 1e-4F);
}

TEST(CrossCorrelation, WithoutAPeakTheProductIsGiven) {
  const Shorts constant(11, 5);
  float position = 77.0F, coefficient = 77.0F;
  EXPECT_EQ(qorsCrossCorrCoeffInterpolation_16s32f(constant.data(), constant.data(), 10, &position, &coefficient),
            qorStatusDivideByZero);
  EXPECT_BITS(position, 0.0F);
  EXPECT_BITS(coefficient, 250.0F);
}

// ---- Faults ----

TEST(CrossCorrelationFaults, EveryMember) {
  struct A {
    const int16_t *first, *second;
    int32_t length;
    float energy, *result, *other;
    int32_t minimum, step;
  };
  const Shorts x = {1, 2, 3, 4, 5, 6};
  std::vector<float> result(6, 77.0F);
  float other = 77.0F;
  const A valid = {x.data(), x.data(), 5, 2.0F, result.data(), &other, 2, 1};
  const std::vector<kit::Watched> watched = {{result.data(), 6}, {&other, 1}};
  kit::FaultTable<A>(
      valid, [](const A& a) { return qorsCrossCorrCoeff_16s32f(a.first, a.second, a.length, a.result); }, watched)
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
  kit::FaultTable<A>(
      valid, [](const A& a) { return qorsCrossCorrCoeffPartial_16s32f(a.first, a.second, a.length, a.energy, a.result); }, watched)
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("energy zero", qorStatusBadRange, &A::energy, 0.0F)
      .fault("energy minus zero", qorStatusBadRange, &A::energy, -0.0F)
      .check();
  kit::FaultTable<A>(
      valid, [](const A& a) { return qorsCrossCorrCoeffDecim_16s32f(a.first, a.second, a.length, a.minimum, a.result, a.step); },
      watched)
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("minimum zero", qorStatusBadSize, &A::minimum, 0)
      .fault("step zero", qorStatusBadSize, &A::step, 0)
      .fault("maximum below minimum", qorStatusBadSize, &A::length, 1)
      .check();
  kit::FaultTable<A>(
      valid, [](const A& a) { return qorsCrossCorrCoeffInterpolation_16s32f(a.first, a.second, a.length, a.result, a.other); },
      watched)
      .fault("null first", qorStatusNullPointer, &A::first, nullptr)
      .fault("null second", qorStatusNullPointer, &A::second, nullptr)
      .fault("null position", qorStatusNullPointer, &A::result, nullptr)
      .fault("null coefficient", qorStatusNullPointer, &A::other, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
}

TEST(CrossCorrelation, KeepsTheEnvironmentAndAllocatesNothing) {
  const int64_t before = kit::Core::calls();
  kit::Random random;
  const Shorts x = random.vector<int16_t>(101);
  float result[8], other = 0.0F;
  kit::expectEnvironmentKept([&] { qorsCrossCorrCoeff_16s32f(x.data(), x.data() + 1, 100, result); });
  kit::expectEnvironmentKept([&] { qorsCrossCorrCoeffInterpolation_16s32f(x.data() + 1, x.data(), 100, result, &other); });
  kit::expectEnvironmentKept([&] { qorsCrossCorrCoeffDecim_16s32f(x.data(), x.data(), 50, 45, result, 1); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
