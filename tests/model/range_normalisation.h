// Plain model of the normalisation into a range.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "model/convert.h"

namespace model {

template <class To, class From>
To inRange(From number, From min, From max, float lower, float upper, To range) {
  const float least = static_cast<float>(min), d = static_cast<float>(max) - least;
  const float high = upper * d + least, low = d * lower + least;
  const float gain = static_cast<float>(range) / (upper * d - d * lower);
  const auto x = static_cast<float>(number);
  const float clipped = high < x ? high : x;
  const float above = clipped - low;
  const float y = (0.0F > above ? 0.0F : above) * gain;
  if constexpr (std::is_same_v<To, float>) {
    return y;
  } else {
    if (std::isnan(y)) return 0;
    return static_cast<To>(std::fmin(nearestEven(static_cast<double>(y)), static_cast<double>(std::numeric_limits<To>::max())));
  }
}

// Least and greatest number; a NaN never decides.
template <class T>
std::vector<T> endsOf(const std::vector<T>& x) {
  using Limits = std::numeric_limits<T>;
  T least = Limits::has_infinity ? Limits::infinity() : Limits::max(),
    greatest = Limits::has_infinity ? -Limits::infinity() : Limits::min();
  for (const T v : x) {
    if (v < least) least = v;
    if (v > greatest) greatest = v;
  }
  return {least, greatest};
}

}  // namespace model
