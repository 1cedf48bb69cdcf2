// Conversions between hertz and mel: bits against the law, there and back, faults.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

TEST(MelConversion, FollowsTheLaw) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (const auto& [mul, div] : std::vector<std::pair<float, float>>{{1127.01048F, 700}, {1e-3F, 5e4F}, {kNaN, 3}, {7, kNaN}}) {
      std::vector<float> x = random.vector<float>(length, kit::kKinds[random.integer(0, 2)]);
      if (length > 1) x[1] = 0;
      std::vector<float> mel, hertz;
      for (const float v : x) {
        const double value = static_cast<double>(v), m = static_cast<double>(mul), d = static_cast<double>(div);
        mel.push_back(static_cast<float>(m * std::log(1.0 + value * (1.0 / d))));
        hertz.push_back(static_cast<float>(d * (std::exp(value * (1.0 / m)) - 1.0)));
      }
      const kit::Area<float> source(x, kit::Place::kAtGuard), result(length, kit::Place::kAtGuard);
      ASSERT_EQ(qorsLinearToMel_32f(source.data(), result.data(), length, mul, div), qorStatusOk);
      ASSERT_BITS(result.values(), mel);
      ASSERT_EQ(qorsMelToLinear_32f(source.data(), result.data(), length, mul, div), qorStatusOk);
      ASSERT_BITS(result.values(), hertz);
      ASSERT_TRUE(source.edgesKept() && result.edgesKept());
    }
  }
}

TEST(MelConversion, ThereAndBack) {
  for (float hertz = 0; hertz < 20000; hertz += 37.5F) {
    float mel = -1, back = -1;
    ASSERT_EQ(qorsLinearToMel_32f(&hertz, &mel, 1, 1127.01048F, 700), qorStatusOk);
    ASSERT_EQ(qorsMelToLinear_32f(&mel, &back, 1, 1127.01048F, 700), qorStatusOk);
    EXPECT_NEAR(static_cast<double>(back), static_cast<double>(hertz), 0x1.0p-22 * (static_cast<double>(hertz) + 700) * 4);
    if (hertz == 0) {
      EXPECT_BITS(mel, 0.0F);
    }
  }
}

TEST(MelConversion, Faults) {
  struct ConversionArgs {
    const float* source;
    float* result;
    int32_t length;
    float mul, div;
  };
  const float source[2] = {1, 2};
  float result[2] = {};
  for (const auto convert : {qorsLinearToMel_32f, qorsMelToLinear_32f}) {
    using A = ConversionArgs;
    kit::FaultTable<A> table({source, result, 2, 1127, 700},
                             [=](const A& a) { return convert(a.source, a.result, a.length, a.mul, a.div); }, {{result, 2}});
    table.fault("null source", qorStatusNullPointer, &A::source, nullptr);
    table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
    table.fault("length zero", qorStatusBadSize, &A::length, 0);
    table.fault("mul zero", qorStatusBadSize, &A::mul, 0);
    table.fault("div zero", qorStatusBadSize, &A::div, 0);
    table.fault("div negative", qorStatusBadSize, &A::div, -1);
    table.check();
  }
}

}  // namespace
