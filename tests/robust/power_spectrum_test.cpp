// Power spectra of packed transforms: bits against the plain model, limits, faults, memory, environment.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/noise_reduction.h"
#include "qorsr.h"

namespace {

// Runs `check(values, place)` over lengths, fills and places.
template <class T, class Check>
void forEachSpectrum(Check check) {
  kit::Random random;
  for (int32_t fours = 1; fours <= 70; ++fours) {
    for (const kit::Random::Kind kind : kit::kKinds) {
      check(random.vector<T>(4 * fours, kind), kit::kPlaces[fours % 3]);
      if (testing::Test::HasFailure()) FAIL() << fours << " fours";
    }
  }
  check(random.vector<T>(4096), kit::Place::kAtGuard);
}

template <class Result, class T, class Call>
void expectSpectrum(const std::vector<T>& x, kit::Place place, const std::vector<Result>& expected, Call call) {
  const kit::Area<T> source(x, place);
  kit::Area<Result> result(static_cast<int64_t>(expected.size()), place);
  ASSERT_EQ(call(source.data(), result.data(), static_cast<int32_t>(x.size())), qorStatusOk);
  ASSERT_BITS(result.values(), expected);
  ASSERT_TRUE(result.edgesKept());
}

TEST(SmoothedPowerSpectrum, Float) {
  forEachSpectrum<float>([](const std::vector<float>& x, kit::Place place) {
    expectSpectrum(x, place, model::powerSpectrum(x), qorsSmoothedPowerSpectrumAurora_32f);
  });
}
TEST(SmoothedPowerSpectrum, Int16) {
  forEachSpectrum<int16_t>([](const std::vector<int16_t>& x, kit::Place place) {
    expectSpectrum(x, place, model::powerSpectrum(x), qorsSmoothedPowerSpectrumAurora_16s);
  });
}

constexpr int32_t kScaleFactors[] = {0,   1,   2,   5,   15,   16,   30,   31,   32,    33,        40,       62,
                                     63,  64,  65,  100, 1073, 1074, 1100, -1,   -2,    -15,       -31,      -32,
                                     -33, -62, -63, -64, -65,  -900, -961, -962, -1023, INT32_MIN, INT32_MAX};

TEST(SmoothedPowerSpectrum, Int32) {
  forEachSpectrum<int32_t>([](const std::vector<int32_t>& x, kit::Place place) {
    for (const int32_t sf : kScaleFactors) {
      expectSpectrum(x, place, model::powerSpectrum(x, sf), [=](const int32_t* source, int32_t* result, int32_t length) {
        return qorsSmoothedPowerSpectrumAurora_32s_Sfs(source, result, length, sf);
      });
    }
  });
}
TEST(SmoothedPowerSpectrum, Int32To64) {
  forEachSpectrum<int32_t>([](const std::vector<int32_t>& x, kit::Place place) {
    for (const int32_t sf : kScaleFactors) {
      expectSpectrum(x, place, model::powerSpectrum64(x, sf), [=](const int32_t* source, int64_t* result, int32_t length) {
        return qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(source, result, length, sf);
      });
    }
  });
}

TEST(SmoothedPowerSpectrum, SmallNumbersRoundToNearestEven) {
  kit::Random random;
  for (const int32_t sf : {0, 1, 2, 3}) {  // ties are frequent
    std::vector<int32_t> x;
    for (int i = 0; i < 400; ++i) x.push_back(static_cast<int32_t>(random.integer(-9, 9)));
    expectSpectrum(x, kit::Place::kOddStart, model::powerSpectrum(x, sf),
                   [=](const int32_t* source, int32_t* result, int32_t length) {
                     return qorsSmoothedPowerSpectrumAurora_32s_Sfs(source, result, length, sf);
                   });
  }
}

TEST(SmoothedPowerSpectrum, FourNumbersGiveTheFirstAndTheLastBin) {
  const float x[] = {1, 10, 2, 3};
  float y[2];
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32f(x, y, 4), qorStatusOk);
  EXPECT_EQ(y[0], 7.0F);
  EXPECT_EQ(y[1], 100.0F);
}

TEST(SmoothedPowerSpectrum, TheLimitsDifferFromMemberToMember) {
  const std::vector<int16_t> low16(8, -32768);
  int16_t y16[3];
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_16s(low16.data(), y16, 8), qorStatusOk);
  EXPECT_EQ(y16[0], 32767);
  EXPECT_EQ(y16[1], -32768);  // four halves are 2^31, which wraps
  EXPECT_EQ(y16[2], 32767);

  const std::vector<int32_t> low32(8, INT32_MIN);
  int32_t y32[3];
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s_Sfs(low32.data(), y32, 8, 0), qorStatusOk);
  EXPECT_EQ(y32[0], INT32_MAX);
  EXPECT_EQ(y32[1], INT32_MIN);
  EXPECT_EQ(y32[2], 0);  // the low 32 bits of 2^62
  int64_t y64[3];
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(low32.data(), y64, 8, 1), qorStatusOk);
  EXPECT_EQ(y64[0], int64_t{3} << 60);
  EXPECT_EQ(y64[1], INT64_MIN / 2);
  EXPECT_EQ(y64[2], 0);

  const std::vector<int32_t> last = {0, 65535, 0, 0};  // 4294836225, as a signed number -131071
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s_Sfs(last.data(), y32, 4, 1), qorStatusOk);
  EXPECT_EQ(y32[1], -65536);
}

TEST(SmoothedPowerSpectrum, TheMiddleRoundsWhereItEndsTheRange) {
  // With a scale factor of 1 the sum is divided by four: 2147483647.25 rounds down into the range, 2147483647.5 to even out of it.
  const std::vector<int32_t> x = {0, 0, 0, 0, 92680, 586, 93, 12, 92681, 408, 19, 2};
  int32_t y[4];
  ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s_Sfs(x.data(), y, 12, 1), qorStatusOk);
  EXPECT_EQ(y[1], INT32_MAX);
  EXPECT_EQ(y[2], INT32_MIN);
}

TEST(SmoothedPowerSpectrum, RoundingModesAndFlagsAreKept) {
  kit::Random random;
  const std::vector<int32_t> x = random.vector<int32_t>(52, kit::Random::kSmall);
  const std::vector<int32_t> expected = model::powerSpectrum(x, 2);
  kit::expectEnvironmentKept([&] {
    std::vector<int32_t> y(expected.size());
    ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s_Sfs(x.data(), y.data(), 52, 2), qorStatusOk);
    EXPECT_BITS(y, expected);
    std::vector<int64_t> wide(expected.size());
    ASSERT_EQ(qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(x.data(), wide.data(), 52, 2), qorStatusOk);
  });
}

// ---- Faults ----

template <class T, class Result>
struct Args {
  const T* spectrum;
  Result* power;
  int32_t length;
};
template <class T, class Result, class Call>
void expectFaults(Call call) {
  std::vector<T> spectrum(16, T(3));
  std::vector<Result> power(5, Result(7));
  using A = Args<T, Result>;
  kit::FaultTable<A> table{
      {spectrum.data(), power.data(), 16}, [=](const A& a) { return call(a.spectrum, a.power, a.length); }, {{power.data(), 5}}};
  table.fault("null spectrum", qorStatusNullPointer, &A::spectrum, nullptr)
      .fault("null power", qorStatusNullPointer, &A::power, nullptr)
      .fault("length 0", qorStatusBadSize, &A::length, 0)
      .fault("negative length", qorStatusBadSize, &A::length, -4)
      .fault("least length", qorStatusBadSize, &A::length, INT32_MIN)
      .fault("length 1", qorStatusBadSize, &A::length, 1)
      .fault("length 15", qorStatusBadSize, &A::length, 15)
      .fault("length 14", qorStatusBadSize, &A::length, 14);
  table.check();
}
TEST(SmoothedPowerSpectrum, Faults) {
  expectFaults<float, float>(qorsSmoothedPowerSpectrumAurora_32f);
  expectFaults<int16_t, int16_t>(qorsSmoothedPowerSpectrumAurora_16s);
  expectFaults<int32_t, int32_t>(
      [](const int32_t* x, int32_t* y, int32_t n) { return qorsSmoothedPowerSpectrumAurora_32s_Sfs(x, y, n, 1); });
  expectFaults<int32_t, int64_t>(
      [](const int32_t* x, int64_t* y, int32_t n) { return qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(x, y, n, 1); });
}

}  // namespace
