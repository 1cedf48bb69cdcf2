// Numbers drawn from what a description allows.
#pragma once

#include <cmath>
#include <limits>

#include "interface/instance.h"

namespace interface_calls {

// The next value of T, upwards or downwards.
template <class T>
T neighbour(T value, bool up) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::nextafter(value, up ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest());
  } else {
    return static_cast<T>(up ? value + 1 : value - 1);
  }
}

// The least and the greatest value of T that a domain allows.
template <class T>
std::pair<T, T> range(const Domain& domain, const Numbers& numbers) {
  using Limits = std::numeric_limits<T>;
  T low = Limits::lowest(), high = Limits::max();
  if constexpr (std::is_floating_point_v<T>) {
    if (domain.low.real != nullptr) low = static_cast<T>(domain.low.real(numbers));
    if (domain.high.real != nullptr) high = static_cast<T>(domain.high.real(numbers));
    if (domain.lowOpen) low = neighbour(low, true);
    if (domain.highOpen) high = neighbour(high, false);
  } else {
    if (domain.low.whole != nullptr) low = static_cast<T>(domain.low.whole(numbers) + (domain.lowOpen ? 1 : 0));
    if (domain.high.whole != nullptr) high = static_cast<T>(domain.high.whole(numbers) - (domain.highOpen ? 1 : 0));
  }
  return {low, high};
}

template <class T>
T choice(const Bound& bound, const Numbers& numbers) {
  return std::is_floating_point_v<T> ? static_cast<T>(bound.real(numbers)) : static_cast<T>(bound.whole(numbers));
}

// A value that may be anything: a usual one, or one where arithmetic goes wrong.
template <class T>
T drawAny(const Draw& draw, kit::Random& random) {
  if (random.integer(0, 2) != 0) return random.small<T>();
  if constexpr (!std::is_floating_point_v<T>) {
    static constexpr T kCounts[] = {0, 1, 2, 3, 4, 7, 8, 15, 16, 31, 32, 63, 64};
    if (random.integer(0, 1) == 0) return kCounts[random.integer(0, 12)];
  }
  return draw.contents == kit::Random::kNasty ? random.nasty<T>() : random.plain<T>();
}

// Whole numbers stay within `span` of a bound, and meet both bounds; others are drawn from the whole range.
template <class T>
T drawWithin(const Domain& domain, const Numbers& numbers, int64_t span, kit::Random& random) {
  auto [low, high] = range<T>(domain, numbers);
  const bool bounded = domain.usualLow.real != nullptr;
  if (bounded) {
    low = std::max(low, choice<T>(domain.usualLow, numbers));
    high = std::min(high, choice<T>(domain.usualHigh, numbers));
  }
  if constexpr (std::is_floating_point_v<T>) {
    switch (random.integer(0, 7)) {
      case 0:
        return domain.low.real != nullptr || bounded ? low : high;
      case 1:
        return domain.high.real != nullptr || bounded ? high : low;
      default: {
        const double from =
            domain.low.real != nullptr || bounded ? static_cast<double>(low) : std::min(static_cast<double>(high) - 100, 0.0);
        const double to = domain.high.real != nullptr || bounded ? static_cast<double>(high) : std::max(from + 100, 0.0);
        return std::clamp(static_cast<T>(random.real(from, to)), low, high);
      }
    }
  } else {
    if (domain.low.whole == nullptr && !bounded)
      return static_cast<T>(random.integer(std::max<int64_t>(low, int64_t{high} - span), high));
    const int64_t value = random.integer(low, std::min<int64_t>(high, int64_t{low} + span));
    return static_cast<T>(domain.step != nullptr ? std::max<int64_t>(value - value % domain.step(numbers), low) : value);
  }
}

template <class T>
T drawElement(const Domain& domain, const Numbers& numbers, const Draw& draw, kit::Random& random) {
  if (!domain.choices.empty()) {
    const auto i = static_cast<std::size_t>(random.integer(0, static_cast<int64_t>(domain.choices.size()) - 1));
    return choice<T>(domain.choices[i], numbers);
  }
  if (domain.any()) return random.value<T>(draw.contents);
  constexpr int64_t kSpan = 12;  // counts without an upper bound stay small; indices have one, and any may come
  return drawWithin<T>(domain, numbers, domain.high.whole != nullptr ? int64_t{1} << 31 : kSpan, random);
}

}  // namespace interface_calls
