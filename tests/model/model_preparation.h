// Plain models of model preparation. One scalar loop each, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace model {

// The sum of the natural logarithms in long double; elements without a logarithm are the caller's affair.
template <class T>
long double sumOfLogs(const std::vector<T>& x) {
  long double sum = 0;
  for (const T value : x) sum += std::log(static_cast<long double>(value));
  return sum;
}

// weight - floor(gconst / 2) in groups of four (and, aligned, the pair behind them), weight - floor((gconst + 1) / 2) after them.
// All in 64 bits, brought back to 32 at every step that wraps.
inline int32_t wrapTo32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }
inline int64_t halfDown(int64_t value) { return value >= 0 ? value / 2 : -((1 - value) / 2); }
inline std::vector<int32_t> outProbPreCalc(const std::vector<int32_t>& weights, const std::vector<int32_t>& gconsts, bool aligned) {
  std::size_t down = weights.size() / 4 * 4;
  if (aligned && weights.size() - down >= 2) down += 2;
  std::vector<int32_t> result;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const int64_t half = i < down ? halfDown(gconsts[i]) : halfDown(wrapTo32(int64_t{gconsts[i]} + 1));
    result.push_back(wrapTo32(weights[i] - half));
  }
  return result;
}

}  // namespace model
