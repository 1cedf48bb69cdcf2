// What front-ends need of the library: owners of its records, the mel scale.
#pragma once

#include <memory>

#include "qorsr.h"

namespace program {

struct FreeRecord {
  void operator()(FBankState_32f* record) const { qorsFBankFree_32f(record); }
  void operator()(DCTLifterState_32f* record) const { qorsDCTLifterFree_32f(record); }
};
using FilterBank = std::unique_ptr<FBankState_32f, FreeRecord>;
using CosineTransform = std::unique_ptr<DCTLifterState_32f, FreeRecord>;

/** A bank that gives the magnitudes of bins 1 to L/2 - 1 of the transform of L samples, a power of two: one filter a bin. */
FilterBank makeSpectrum(int length, int rate);

/** The mel scale of O'Shaughnessy, "Speech Communication" (1987): 1127 ln(1 + f / 700). */
inline constexpr float melMul = 1127.01048F, melDiv = 700.0F;

}  // namespace program
