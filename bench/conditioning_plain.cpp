// Plain loops of signal conditioning: what one would write first.
#include "conditioning_plain.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

int16_t limited(float value) {
  return value >= 32767.0F ? INT16_MAX : value <= -32768.0F ? INT16_MIN : static_cast<int16_t>(value);
}

template <class T>
int sign(T x) {
  return (x > 0) - (x < 0);
}

template <class T>
int32_t steps(const T* x, int32_t length) {
  int32_t sum = 0;
  for (int32_t n = 0; n + 1 < length; ++n) sum += std::abs(sign(x[n + 1]) - sign(x[n]));
  return sum;
}

template <class T>
void sums(const T* x, int32_t step, int32_t height, float* sum, float* squares, int32_t width) {
  std::fill_n(sum, width, 0.0F);
  std::fill_n(squares, width, 0.0F);
  for (int32_t r = 0; r < height; ++r) {
    for (int32_t c = 0; c < width; ++c) {
      const float v = x[static_cast<std::ptrdiff_t>(r) * step + c];
      sum[c] += v;
      squares[c] += v * v;
    }
  }
}

void shortEnergies(int16_t* e, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top, float scale) {
  const int32_t floor = static_cast<int32_t>(std::lround(static_cast<float>(greatest) - static_cast<float>(silence) * 0.230259F));
  const int32_t s = static_cast<int32_t>(1024.0F * scale);
  for (int32_t r = 0; r < height; ++r) {
    int16_t& x = e[static_cast<std::ptrdiff_t>(r) * step];
    const int32_t y = top - ((greatest - std::max<int32_t>(x, floor)) * s >> 10);
    x = static_cast<int16_t>(std::clamp(y, -32768, 32767));
  }
}

template <class From, class To, class Round>
void mapped(const From* x, To* y, int32_t length, From min, From max, float lower, float upper, To range, Round round) {
  const float d = static_cast<float>(max) - static_cast<float>(min);
  const float high = upper * d + static_cast<float>(min), low = d * lower + static_cast<float>(min);
  const float gain = static_cast<float>(range) / (upper * d - d * lower);
  for (int32_t n = 0; n < length; ++n) {
    const float v = static_cast<float>(x[n]);
    y[n] = round(std::max(0.0F, std::min(high, v) - low) * gain);
  }
}

template <class From, class To, class Round>
void foundAndMapped(const From* x, To* y, int32_t length, float lower, float upper, To range, Round round) {
  From min = x[0], max = x[0];
  for (int32_t n = 1; n < length; ++n) {
    min = std::min(min, x[n]);
    max = std::max(max, x[n]);
  }
  mapped(x, y, length, min, max, lower, upper, range, round);
}

}  // namespace

void plainCompensateOffset_32f(const float* x, float* y, int32_t length, float* before, float result, float c) {
  y[0] = c * result + x[0] - *before;
  for (int32_t n = 1; n < length; ++n) y[n] = x[n] - x[n - 1] + c * y[n - 1];
  *before = x[length - 1];
}
void plainCompensateOffset_16s(const int16_t* x, int16_t* y, int32_t length, int16_t* before, int16_t result, float c) {
  y[0] = limited(c * result + x[0] - *before);
  for (int32_t n = 1; n < length; ++n) {
    const float sum = static_cast<float>(x[n] - x[n - 1]) + c * y[n - 1];
    y[n] = limited(sum < 0 ? sum - 0.5F : sum + 0.5F);
  }
  *before = x[length - 1];
}
void plainCompensateOffsetQ15_16s(const int16_t* x, int16_t* y, int32_t length, int16_t* before, int16_t result, int16_t c) {
  int16_t last = *before;
  for (int32_t n = 0; n < length; ++n) {
    const int64_t sum = (int64_t{x[n]} - last) * 32768 + c * result;
    result = static_cast<int16_t>(std::clamp<int64_t>(sum / 32768, -32768, 32767));
    last = x[n];
    y[n] = result;
  }
  *before = last;
}
void plainZeroMean_16s(int16_t* x, int32_t length) {
  int64_t sum = 0;
  for (int32_t n = 0; n < length; ++n) sum += x[n];
  const int32_t twice = static_cast<int32_t>(2 * sum / length);
  for (int32_t n = 0; n < length; ++n) {
    const int32_t t = 2 * x[n] - twice;
    x[n] = static_cast<int16_t>(std::clamp((t > 0 ? t + 1 : t) >> 1, -32767, 32767));
  }
}

void plainSignChangeRate_32f(const float* x, int32_t length, float* result) {
  int32_t count = 0;
  for (int32_t n = 0; n + 1 < length; ++n) count += x[n] * x[n + 1] < 0.0F;
  *result = static_cast<float>(count);
}
void plainSignChangeRate_Count0_32f(const float* x, int32_t length, float* result) {
  *result = static_cast<float>(steps(x, length)) * 0.5F;
}
void plainSignChangeRateXor_32f(const float* x, int32_t length, int32_t* result) {
  int32_t count = 0;
  for (int32_t n = 0; n + 1 < length; ++n) count += std::signbit(x[n]) != std::signbit(x[n + 1]);
  *result = count;
}
void plainSignChangeRate_16s(const int16_t* x, int32_t length, int32_t* result) {
  int32_t count = 0;
  for (int32_t n = 0; n + 1 < length; ++n) count += x[n] * x[n + 1] < 0;
  *result = count;
}
void plainSignChangeRate_Count0_16s(const int16_t* x, int32_t length, int32_t* result) { *result = steps(x, length) >> 1; }

void plainNormEnergy_RT_32f(float* e, int32_t step, int32_t height, float silence, float greatest, float scale) {
  const float floor = greatest - silence * 0.230259F;
  for (int32_t r = 0; r < height; ++r) {
    float& x = e[static_cast<std::ptrdiff_t>(r) * step];
    x = 1.0F - (greatest - std::max(x, floor)) * scale;
  }
}
void plainNormEnergy_32f(float* e, int32_t step, int32_t height, float silence, float scale) {
  float greatest = -FLT_MAX;
  for (int32_t r = 0; r < height; ++r) greatest = std::max(greatest, e[static_cast<std::ptrdiff_t>(r) * step]);
  plainNormEnergy_RT_32f(e, step, height, silence, greatest, scale);
}
void plainNormEnergy_RT_16s(int16_t* e, int32_t step, int32_t height, int16_t silence, int16_t greatest, int16_t top, float scale) {
  shortEnergies(e, step, height, silence, greatest, top, scale);
}
void plainNormEnergy_16s(int16_t* e, int32_t step, int32_t height, int16_t silence, int16_t top, float scale) {
  int16_t greatest = INT16_MIN;
  for (int32_t r = 0; r < height; ++r) greatest = std::max(greatest, e[static_cast<std::ptrdiff_t>(r) * step]);
  shortEnergies(e, step, height, silence, greatest, top, scale);
}

void plainSumMeanVar_32f(const float* x, int32_t step, int32_t height, float* sum, float* squares, int32_t width) {
  sums(x, step, height, sum, squares, width);
}
void plainSumMeanVar_16s32f(const int16_t* x, int32_t step, int32_t height, float* sum, float* squares, int32_t width) {
  sums(x, step, height, sum, squares, width);
}

void plainNormalizeInRange_32f(const float* x, float* y, int32_t length, float lower, float upper, float range) {
  foundAndMapped(x, y, length, lower, upper, range, [](float v) { return v; });
}
void plainNormalizeInRangeMinMax_32f(const float* x, float* y, int32_t length, float min, float max, float lower, float upper,
                                     float range) {
  mapped(x, y, length, min, max, lower, upper, range, [](float v) { return v; });
}
void plainNormalizeInRange_16s(const int16_t* x, int16_t* y, int32_t length, float lower, float upper, int16_t range) {
  foundAndMapped(x, y, length, lower, upper, range,
                 [](float v) { return static_cast<int16_t>(std::min(std::nearbyint(v), 32767.0F)); });
}
void plainNormalizeInRange_32f8u(const float* x, uint8_t* y, int32_t length, float lower, float upper, uint8_t range) {
  foundAndMapped(x, y, length, lower, upper, range,
                 [](float v) { return static_cast<uint8_t>(std::min(std::nearbyint(v), 255.0F)); });
}
