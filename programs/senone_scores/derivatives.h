// Time derivatives over wider gaps than one frame.
#pragma once

#include <vector>

namespace senones {

/** Rows of 3 width elements: x(t), d(t) = x(t + 2) - x(t - 2), a(t) = d(t + 1) - d(t - 1), from rows x of width elements. Beyond
 * the ends stand copies of the first and the last row. */
std::vector<float> withDerivatives(const std::vector<float>& x, int width);

}  // namespace senones
