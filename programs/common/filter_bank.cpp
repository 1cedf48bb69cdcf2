#include "common/filter_bank.h"

#include <vector>

#include "common/fault.h"

namespace program {

FilterBank makeSpectrum(int length, int rate) {
  FBankState_32f* state = nullptr;
  int32_t order = 0;
  const auto hertz = static_cast<float>(rate);
  const int32_t bins = length / 2 - 1;
  check(qorsMelFBankInitAlloc_32f(&state, &order, length, hertz, 1, hertz / 2, bins, melMul, melDiv,
                                  qorFBankMelShaped | qorFBankTransform),
        "qorsMelFBankInitAlloc_32f");
  FilterBank bank(state);
  std::vector<int32_t> centres;
  for (int32_t c = 0; c <= bins + 1; ++c) centres.push_back(c);
  check(qorsFBankSetCenters_32f(state, centres.data()), "qorsFBankSetCenters_32f");
  const float weights[3] = {0, 1, 0};
  for (int32_t k = 1; k <= bins; ++k) check(qorsFBankSetCoeffs_32f(state, k, weights), "qorsFBankSetCoeffs_32f");
  return bank;
}

}  // namespace program
