// Proof that a call leaves the floating-point environment of its caller as it found it.
#pragma once

#include <gtest/gtest.h>

#include <cfenv>
#include <functional>

#if defined(__SSE__)
#include <immintrin.h>
#endif

namespace kit {

// The rounding mode, the exception masks, flush-to-zero and denormals-are-zero of the unit that computes. (On x86 fegetround asks
// another unit.)
inline unsigned floatControls() {
#if defined(__SSE__)
  return _mm_getcsr() & 0xFFC0;
#else
  return static_cast<unsigned>(std::fegetround());
#endif
}

// Makes the call under each rounding mode, with no exception flag raised and with all of them: afterwards mode and masks are the
// same and every flag that was raised still is.
inline void expectEnvironmentKept(const std::function<void()>& call) {
  std::fenv_t caller;
  std::fegetenv(&caller);
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    for (const int raised : {0, FE_INVALID, FE_ALL_EXCEPT}) {
      std::fesetround(mode);
      std::feclearexcept(FE_ALL_EXCEPT);
      std::feraiseexcept(raised);
      const unsigned controls = floatControls();
      call();
      const unsigned controlsAfter = floatControls();
      const int modeAfter = std::fegetround(), flagsAfter = std::fetestexcept(FE_ALL_EXCEPT);
      std::fesetenv(&caller);
      EXPECT_EQ(controlsAfter, controls) << "the rounding mode or a mask changed";
      EXPECT_EQ(modeAfter, mode) << "the rounding mode changed";
      EXPECT_EQ(flagsAfter & raised, raised) << "a raised exception flag was lost";
    }
  }
}

// Makes the call with no exception flag raised: none is raised afterwards.
inline void expectNoFlagRaised(const std::function<void()>& call) {
  std::fenv_t caller;
  std::feholdexcept(&caller);
  call();
  const int raised = std::fetestexcept(FE_ALL_EXCEPT);
  std::fesetenv(&caller);
  EXPECT_EQ(raised, 0) << "an exception flag was left behind";
}

}  // namespace kit
