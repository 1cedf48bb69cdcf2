// Coefficients of a lattice stage: each combined with the one at the same distance from the other end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

// a[i] = combine(a[i], a[count - 1 - i]) of the old numbers; `old` is scratch of as many elements.
template <class Combine>
inline void combineWithReversed(float* a, float* old, int32_t count, const Combine& combine) {
  std::memcpy(old, a, static_cast<std::size_t>(count) * sizeof(float));
  coverColumns<float, kNativeLanes<float>>(count, [&](int32_t i, auto n) {
    using L = Lanes<float, n>;
    combine(L::load(old + i), reversed(L::load(old + count - i - n))).store(a + i);
  });
}

// a[i] -= k a[count - 1 - i].
inline void subtractReflected(float* a, float* old, int32_t count, float k) {
  combineWithReversed(a, old, count, [k](auto straight, auto reversed) { return straight - decltype(straight)(k) * reversed; });
}

}  // namespace qorsr
