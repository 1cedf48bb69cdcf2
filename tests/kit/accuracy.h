// Errors that the documentation states: measured against extended precision, and held to what is written there.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace kit {

// The largest error of a sweep.
class LargestError {
 public:
  void add(long double error) { largest_ = std::isnan(error) ? error : std::max(largest_, std::fabs(error)); }
  void addRelative(long double result, long double exact) { add((result - exact) / exact); }

  // Within the documented value, and not so far within that the documentation says too little.
  void expectDocumented(long double documented) const {
    EXPECT_LE(largest_, documented);
    EXPECT_GE(largest_, documented * 0.9L);
  }

 private:
  long double largest_ = 0;
};

}  // namespace kit
