#include "frame/convert.h"

#include <cstdint>
#include <cstring>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/environment.h"

namespace qorsr {
namespace {

// The value with one half of its sign added when the mode asks for it; the rest is a truncation or a rounding to even.
inline float biased(float value, int mode) {
  return mode == kTruncate || mode == kNearestEven ? value : value + __builtin_copysignf(0.5F, value);
}

// To an integer that fits; the guard has set the rounding mode to nearest even.
inline int32_t toInteger(float value, int mode) {
  return mode == kNearestEven ? static_cast<int32_t>(__builtin_lrintf(value)) : static_cast<int32_t>(value);
}

struct To16 {
  using Result = int16_t;
  static int16_t convert(float value, int mode) {
    const float v = biased(value < 32767.0F ? value : 32767.0F, mode);
    return v < -32768.0F ? INT16_MIN : saturate<int16_t>(toInteger(v, mode));
  }
};

struct To32 {
  using Result = int32_t;
  static int32_t convert(float value, int mode) {
    const float v = biased(value, mode);
    if (v > 2147483520.0F) return INT32_MAX;
    return v < -2147483648.0F ? INT32_MIN : toInteger(v, mode);
  }
};

template <class To>
QORSR_IN_GUARDED_MODE void convertAll(const float* source, typename To::Result* destination, int32_t length, int mode, int32_t sf) {
  const float multiplier = qorPow2Neg_32f(sf);
  for (int32_t i = 0; i < length; ++i) {
    float value;  // memcpy: source and destination may be the same memory, seen as two types
    std::memcpy(&value, source + i, sizeof(value));
    if (sf != 0) value *= multiplier;
    const typename To::Result result = value != value ? typename To::Result{0} : To::convert(value, mode);
    std::memcpy(destination + i, &result, sizeof(result));
  }
}

template <class To>
QorStatus convert(const float* source, typename To::Result* destination, int32_t length, int mode, int32_t sf) {
  if (QorStatus bad = Checks().null(source, destination).size(length)) return bad;
  EnvironmentGuard guard(Rounding::kNearest);
  convertAll<To>(source, destination, length, mode, sf);
  return qorStatusOk;
}

}  // namespace

QorStatus qorConvert_32f16s_Sfs(const float* source, int16_t* destination, int32_t length, int mode, int32_t scaleFactor) {
  return convert<To16>(source, destination, length, mode, scaleFactor);
}

QorStatus qorConvert_32f32s_Sfs(const float* source, int32_t* destination, int32_t length, int mode, int32_t scaleFactor) {
  return convert<To32>(source, destination, length, mode, scaleFactor);
}

}  // namespace qorsr
