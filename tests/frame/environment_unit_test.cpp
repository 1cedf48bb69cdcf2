// The guard of the floating-point environment: what holds inside, and that everything of the caller's comes back.
#include "frame/environment.h"

#include <fenv.h>
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <functional>

#include "kit/environment.h"

namespace {

using qorsr::CallersFlags;
using qorsr::EnvironmentGuard;
using qorsr::Rounding;

// Conversions that show the rounding mode; volatile, so that they happen where they stand.
struct Shown {
  long positive, negative;
};
[[gnu::noinline]] Shown showMode() {
  volatile double positive = 1.75, negative = -1.75;
  return {std::lrint(positive), std::lrint(negative)};
}

TEST(Environment, RoundingInside) {
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    std::fesetround(mode);
    const Shown caller = showMode();
    Shown nearest, towardZero;
    {
      const EnvironmentGuard guard(Rounding::kNearest);
      nearest = showMode();
    }
    const Shown between = showMode();
    {
      const EnvironmentGuard guard(Rounding::kTowardZero);
      towardZero = showMode();
    }
    const Shown after = showMode();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(nearest.positive, 2);
    EXPECT_EQ(nearest.negative, -2);
    EXPECT_EQ(towardZero.positive, 1);
    EXPECT_EQ(towardZero.negative, -1);
    EXPECT_EQ(between.positive, caller.positive);
    EXPECT_EQ(between.negative, caller.negative);
    EXPECT_EQ(after.positive, caller.positive);
    EXPECT_EQ(after.negative, caller.negative);
  }
}

[[gnu::noinline]] void raiseEverything() {
  volatile double zero = 0.0, one = 1.0, huge = 1e308, tiny = 1e-308, result;
  result = zero / zero;
  result = one / zero;
  result = huge * huge;
  result = tiny * tiny;
  (void)result;
}

TEST(Environment, CallersModeAndFlagsComeBack) {
  for (const Rounding rounding : {Rounding::kNearest, Rounding::kTowardZero}) {
    kit::expectEnvironmentKept([&] {
      const EnvironmentGuard guard(rounding);
      raiseEverything();
    });
  }
}

TEST(Environment, AFlagRaisedInsideIsForgotten) {
  for (const Rounding rounding : {Rounding::kNearest, Rounding::kTowardZero}) {
    for (const int raised : {0, FE_DIVBYZERO, FE_INEXACT | FE_INVALID}) {
      std::feclearexcept(FE_ALL_EXCEPT);
      std::feraiseexcept(raised);
      {
        const EnvironmentGuard guard(rounding);
        raiseEverything();
      }
      const int after = std::fetestexcept(FE_ALL_EXCEPT);
      std::feclearexcept(FE_ALL_EXCEPT);
      EXPECT_EQ(after, raised);
    }
  }
}

TEST(Environment, FlagsAloneAreForgotten) {
  const auto call = [] {
    const CallersFlags flags;
    raiseEverything();
    flags.bringBack();
  };
  kit::expectEnvironmentKept(call);
  kit::expectNoFlagRaised(call);
}

TEST(Environment, GuardsNest) {
  std::fesetround(FE_UPWARD);
  Shown inner, outer;
  {
    const EnvironmentGuard first(Rounding::kTowardZero);
    {
      const EnvironmentGuard second(Rounding::kNearest);
      inner = showMode();
    }
    outer = showMode();
  }
  const Shown after = showMode();
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(inner.negative, -2);
  EXPECT_EQ(outer.negative, -1);
  EXPECT_EQ(outer.positive, 1);
  EXPECT_EQ(after.negative, -1);
  EXPECT_EQ(after.positive, 2);
}

#if defined(__GLIBC__) && (defined(__x86_64__) || defined(__i386__))
// A caller that lets invalid operations trap is not trapped by ours, and gets its trap back.
TEST(Environment, ExceptionsAreMaskedInside) {
  std::feclearexcept(FE_ALL_EXCEPT);
  feenableexcept(FE_INVALID | FE_DIVBYZERO);
  {
    const EnvironmentGuard guard(Rounding::kNearest);
    raiseEverything();
  }
  const int enabled = fegetexcept();
  fedisableexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(enabled, FE_INVALID | FE_DIVBYZERO);
}
#endif

#if defined(__SSE__)
// Denormals are read as they are inside, whatever the caller's setting.
TEST(Environment, DenormalsAreReadInside) {
  constexpr unsigned kDenormalsAreZero = 0x0040;
  const unsigned caller = _mm_getcsr();
  volatile float denormal = 1e-40F, scaled = 0.0F;
  for (const unsigned setting : {0u, kDenormalsAreZero}) {
    _mm_setcsr(caller | setting);
    {
      const EnvironmentGuard guard(Rounding::kNearest);
      scaled = denormal * 1e20F;
    }
    _mm_setcsr(caller);
    EXPECT_GT(scaled, 0.0F) << setting;
  }
}
#endif

}  // namespace
