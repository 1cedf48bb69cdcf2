#include "frame/convert.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/environment.h"
#include "frame/lanes/rounding.h"

namespace qorsr {
namespace {

constexpr int kLanes = 8;
using Reals = Lanes<float, kLanes>;
using Integers = Lanes<int32_t, kLanes>;

// The magnitude of a with the sign of b.
Reals copySign(const Reals& a, const Reals& b) {
  using Bits = native::Vector<int32_t, Reals::kPart>;
  return Reals::each(a, b, [](auto x, auto y) {
    return std::bit_cast<decltype(x)>((std::bit_cast<Bits>(x) & INT32_MAX) | (std::bit_cast<Bits>(y) & INT32_MIN));
  });
}

struct NearestEven {  // the guard has set the rounding mode
  static Reals biased(const Reals& value) { return value; }
  static Integers toIntegers(const Reals& value) { return nearest(value); }
};
struct Truncating {
  static Reals biased(const Reals& value) { return value; }
  static Integers toIntegers(const Reals& value) { return truncated(value); }
};
struct NearestAway {
  static Reals biased(const Reals& value) { return value + copySign(Reals(0.5F), value); }
  static Integers toIntegers(const Reals& value) { return truncated(value); }
};

struct To16 {
  using Result = int16_t;
  template <class Mode>
  static Lanes<int16_t, kLanes> convert(const Reals& value) {
    const Reals limited = max(min(value, Reals(32767.0F)), Reals(-32768.0F));
    const Integers whole = Mode::toIntegers(Mode::biased(limited));
    return saturated(lowerHalf(whole), upperHalf(whole));
  }
};

struct To32 {
  using Result = int32_t;
  template <class Mode>
  static Integers convert(const Reals& value) {
    const Reals biased = Mode::biased(value);
    return largestAbove(Mode::toIntegers(biased), biased, 2147483520.0F);
  }
};

// Source and destination may be the same memory: each block is read before it is written, at or in front of where it stood.
template <class To, class Mode>
QORSR_IN_GUARDED_MODE void convertAll(const float* source, typename To::Result* destination, int32_t length, int32_t sf) {
  const Reals multiplier(twoToMinus<float>(sf));
  const auto block = [&](const Reals& x) { return To::template convert<Mode>(zeroWhereNaN(x * multiplier)); };
  int32_t i = 0;
  for (; i <= length - kLanes; i += kLanes) block(Reals::load(source + i)).store(destination + i);
  if (i == length) return;
  const auto rest = static_cast<std::size_t>(length - i);
  float padded[kLanes] = {};
  typename To::Result results[kLanes];
  std::memcpy(padded, source + i, rest * sizeof(float));
  block(Reals::load(padded)).store(results);
  std::memcpy(destination + i, results, rest * sizeof(results[0]));
}

template <class To>
QorStatus convert(const float* source, typename To::Result* destination, int32_t length, int mode, int32_t sf) {
  if (QorStatus bad = Checks().null(source, destination).size(length)) return bad;
  EnvironmentGuard guard(Rounding::kNearest);
  if (mode == kNearestEven) {
    convertAll<To, NearestEven>(source, destination, length, sf);
  } else if (mode == kTruncate) {
    convertAll<To, Truncating>(source, destination, length, sf);
  } else {
    convertAll<To, NearestAway>(source, destination, length, sf);
  }
  return qorStatusOk;
}

}  // namespace

QorStatus convertFloats(const float* source, int16_t* destination, int32_t length, int mode, int32_t scaleFactor) {
  return convert<To16>(source, destination, length, mode, scaleFactor);
}

QorStatus convertFloats(const float* source, int32_t* destination, int32_t length, int mode, int32_t scaleFactor) {
  return convert<To32>(source, destination, length, mode, scaleFactor);
}

}  // namespace qorsr
