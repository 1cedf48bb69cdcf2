// Pitch marks, the times of glottal closures, to candidates of the fundamental frequency: f[i] = 1 / (t[i] - t[i - 1]), t[-1] = 0.
#pragma once

#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/convert.h"
#include "frame/environment.h"
#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

// candidates[i] = scale / difference. Returns whether no difference is zero.
template <class T>
QORSR_IN_GUARDED_MODE inline bool markFrequencies(const T* marks, float* candidates, int32_t length, float scale) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  bool finite = true;
  const auto put = [&](int32_t i, float difference) {
    if (difference == 0.0F) {
      candidates[i] = kInfinite;
      finite = false;
    } else {
      candidates[i] = 1.0F / difference * scale;
    }
  };
  put(0, static_cast<float>(marks[0]));
  coverColumns<float>(length - 1, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    const L difference = loadAs<float, n>(marks + i + 1) - loadAs<float, n>(marks + i);
    (L(1.0F) / difference * L(scale)).store(candidates + i + 1);
    if (allLess(L(0.0F), abs(difference))) return;
    float all[n];
    difference.store(all);
    for (int32_t k = 0; k < n; ++k) put(i + 1 + k, all[k]);
  });
  return finite;
}

inline QorStatus pitchMarkFrequencies(const float* marks, float* candidates, int32_t length) {
  if (QorStatus bad = Checks().null(marks, candidates).size(length)) return bad;
  const CallersFlags flags;
  if (markFrequencies(marks, candidates, length, 1.0F)) return qorStatusOk;
  flags.bringBack();  // a difference of zero is told by the status alone
  return qorStatusDivideByZero;
}

inline QorStatus pitchMarkFrequencies(const int16_t* marks, int16_t* candidates, int32_t length, int32_t scaleFactor) {
  if (QorStatus bad = Checks().null(marks, candidates).size(length)) return bad;
  const Scratch<float, 100> floats(length);
  if (!floats) return qorStatusNoMemory;
  const float scale = twoToMinus<float>(scaleFactor);
  const CallersFlags flags;
  const bool finite = markFrequencies(marks, floats.get(), length, scale);
  if (!finite) flags.bringBack();
  convertFloats(floats.get(), candidates, length, kNearestEven, 0);
  return finite ? qorStatusOk : qorStatusDivideByZero;
}

}  // namespace qorsr
