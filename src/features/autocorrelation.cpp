#include "features/autocorrelation.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "features/real_transform.h"
#include "frame/memory.h"

namespace qorsr {
namespace {

// From here on the transform is taken: the number of samples and that of lags.
constexpr int32_t kTransformedLags = 856;

QorStatus transformedLags(const float* x, int32_t length, float* r, int32_t lags) {
  const auto size = static_cast<int64_t>(std::bit_ceil(2 * static_cast<uint64_t>(length)));
  const int order = std::countr_zero(static_cast<uint64_t>(size));
  if (order > kMaxTransformOrder) return qorStatusNoMemory;
  const Scratch<uint8_t> setup(RealTransform::setupBytes(order)), work(RealTransform::workBytes(order));
  const Scratch<float> area(2 * size + 2);
  if (!setup || !work || !area) return qorStatusNoMemory;
  float *const samples = area.get(), *const spectrum = samples + size;
  std::memcpy(samples, x, static_cast<std::size_t>(length) * sizeof(float));
  std::memset(samples + length, 0, static_cast<std::size_t>(size - length) * sizeof(float));

  const RealTransform* const transform = RealTransform::init(setup.get(), order);
  transform->transform(samples, spectrum, work.get());
  for (int64_t k = 0; k <= size; k += 2) {
    spectrum[k] = spectrum[k] * spectrum[k] + spectrum[k + 1] * spectrum[k + 1];
    spectrum[k + 1] = 0.0F;
  }
  transform->inverse(spectrum, samples, work.get());
  const int32_t within = std::min(lags, length);
  std::memcpy(r, samples, static_cast<std::size_t>(within) * sizeof(float));
  std::memset(r + within, 0, static_cast<std::size_t>(lags - within) * sizeof(float));
  return qorStatusOk;
}

}  // namespace

QorStatus autocorrelation(const float* x, int32_t length, float* r, int32_t lags) {
  if (std::min(length, lags) >= kTransformedLags) return transformedLags(x, length, r, lags);
  directLags(x, length, 0, lags, r);
  return qorStatusOk;
}

}  // namespace qorsr
