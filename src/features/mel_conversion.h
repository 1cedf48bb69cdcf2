// Hertz to mel and back:
//
//   mel = melMul ln(1 + f / melDiv),   f = melDiv (exp(mel / melMul) - 1)
//
// in double, the divisions as products with a reciprocal; the result is rounded to float.
#pragma once

#include <cstdint>

#include "frame/checks.h"
#include "frame/elementary.h"

namespace qorsr {

// result[i] = law(source[i]). A NaN passes the test of the constants.
template <class Law>
QorStatus convertMel(const float* source, float* result, int32_t length, float melMul, float melDiv, Law law) {
  if (QorStatus bad = Checks().null(source, result).size(length).require(!(melMul <= 0.0F) && !(melDiv <= 0.0F), qorStatusBadSize))
    return bad;
  for (int32_t i = 0; i < length; ++i) result[i] = static_cast<float>(law(static_cast<double>(source[i])));
  return qorStatusOk;
}

inline QorStatus hertzToMel(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  const double mul = static_cast<double>(melMul), perHertz = 1.0 / static_cast<double>(melDiv);
  return convertMel(source, result, length, melMul, melDiv, [=](double hertz) { return mul * log(1.0 + hertz * perHertz); });
}
inline QorStatus melToHertz(const float* source, float* result, int32_t length, float melMul, float melDiv) {
  const double div = static_cast<double>(melDiv), perMel = 1.0 / static_cast<double>(melMul);
  return convertMel(source, result, length, melMul, melDiv, [=](double mel) { return div * (exp(mel * perMel) - 1.0); });
}

}  // namespace qorsr
