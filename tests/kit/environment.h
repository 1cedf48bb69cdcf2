// Proof that a call leaves the floating-point environment of its caller as it found it.
#pragma once

#include <gtest/gtest.h>

#include <cfenv>
#include <functional>

namespace kit {

// Makes the call under each rounding mode, with no exception flag raised and with all of them: afterwards the mode is the same and
// every flag that was raised still is.
inline void expectEnvironmentKept(const std::function<void()>& call) {
  std::fenv_t caller;
  std::fegetenv(&caller);
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    for (const int raised : {0, FE_INVALID, FE_ALL_EXCEPT}) {
      std::fesetround(mode);
      std::feclearexcept(FE_ALL_EXCEPT);
      std::feraiseexcept(raised);
      call();
      const int modeAfter = std::fegetround(), flagsAfter = std::fetestexcept(FE_ALL_EXCEPT);
      std::fesetenv(&caller);
      EXPECT_EQ(modeAfter, mode) << "the rounding mode changed";
      EXPECT_EQ(flagsAfter & raised, raised) << "a raised exception flag was lost";
    }
  }
}

}  // namespace kit
