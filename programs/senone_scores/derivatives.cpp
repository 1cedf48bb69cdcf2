#include "derivatives.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include "common/fault.h"

namespace senones {
namespace {

constexpr int whole = qorDeltaBegin | qorDeltaEnd;
constexpr size_t margin = 4;  // rows added in front; even, so that pairs of rows stay pairs

// Of rows of `width` elements: x(t + 1) - x(t - 1).
std::vector<float> differences(const std::vector<float>& x, size_t width) {
  const size_t rows = x.size() / width;
  std::vector<float> both(2 * x.size()), result(x.size());
  program::check(qorsDelta_Win1_32f_D2(x.data(), static_cast<int32_t>(width), both.data(), static_cast<int32_t>(2 * width),
                                       static_cast<int32_t>(rows), 1.0F, whole),
                 "qorsDelta_Win1_32f_D2");
  for (size_t r = 0; r < rows; ++r) std::copy_n(&both[r * 2 * width + width], width, &result[r * width]);
  return result;
}

}  // namespace

// Two rows seen as one: neighbours of a pair are then two rows apart.
std::vector<float> withDerivatives(const std::vector<float>& x, int columns) {
  const auto width = static_cast<size_t>(columns);
  const size_t rows = x.size() / width;
  std::vector<float> padded;
  for (size_t i = 0; i < margin; ++i) padded.insert(padded.end(), x.begin(), x.begin() + columns);
  padded.insert(padded.end(), x.begin(), x.end());
  for (size_t i = 0; i < margin + rows % 2; ++i) padded.insert(padded.end(), x.end() - columns, x.end());
  const std::vector<float> first = differences(padded, 2 * width), second = differences(first, width);
  std::vector<float> result;
  for (size_t r = 0; r < rows; ++r) {
    for (const auto& part : {std::cref(padded), std::cref(first), std::cref(second)}) {
      const auto row = part.get().begin() + static_cast<std::ptrdiff_t>((margin + r) * width);
      result.insert(result.end(), row, row + columns);
    }
  }
  return result;
}

}  // namespace senones
