// Plain loops of resampling: what one would write first.
#include "resample_plain.h"

#include <algorithm>
#include <cmath>

namespace {

void put(double v, float* y) { *y = static_cast<float>(v); }
void put(double v, int16_t* y) { *y = static_cast<int16_t>(std::clamp(std::round(v), -32768.0, 32767.0)); }

template <class Sum, class Tap, class Sample>
int32_t fixedRatio(const Tap* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const Sample* source, int32_t length,
                   Sample* destination, double gain) {
  const int64_t end = int64_t{length} * out;
  int32_t count = 0;
  for (int64_t position = 0; position < end; position += in) {
    const int64_t phase = position % out, extra = phase == 0 ? 1 : 0;
    const Tap* row = rows + phase * pitch;
    const Sample* x = source + position / out + 1 - half - extra;
    Sum sum = 0;
    for (int64_t k = 0; k < 2 * half + extra; ++k) sum += static_cast<Sum>(row[k]) * static_cast<Sum>(x[k]);
    put(static_cast<double>(sum) * gain, destination + count++);
  }
  return count;
}

template <class Tap, class Sample>
int32_t anyRatio(const Tap* table, int32_t entries, int32_t nStep, const Sample* source, int32_t length, Sample* destination,
                 double factor, double time, double gain) {
  const double end = time + length, scale = std::min(factor, 1.0), step = scale * nStep;
  int32_t count = 0;
  for (double t = time; t < end; t += 1 / factor) {
    const auto i = static_cast<int64_t>(t);
    const double f = t - static_cast<double>(i);
    double sum = 0;
    const auto side = [&](double u, const Sample* x, int direction) {
      for (; u < entries; u += step, x += direction) {
        const auto j = static_cast<int64_t>(u);
        const double q = u - static_cast<double>(j);
        sum += (static_cast<double>(table[j]) * (1 - q) + static_cast<double>(table[j + 1]) * q) * static_cast<double>(*x);
      }
    };
    side(f * step, source + i, -1);
    side((1 - f) * step, source + i + 1, 1);
    put(sum * scale * gain, destination + count++);
  }
  return count;
}

}  // namespace

int32_t plainFixed_32f(const float* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const float* source, int32_t length,
                       float* destination) {
  return fixedRatio<float>(rows, pitch, half, in, out, source, length, destination, 1.0);
}
int32_t plainFixedDouble_32f(const float* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const float* source,
                             int32_t length, float* destination) {
  return fixedRatio<double>(rows, pitch, half, in, out, source, length, destination, 1.0);
}
int32_t plainFixed_16s(const int16_t* rows, int32_t pitch, int32_t half, int32_t in, int32_t out, const int16_t* source,
                       int32_t length, int16_t* destination) {
  return fixedRatio<int64_t>(rows, pitch, half, in, out, source, length, destination, 1.0 / 16384);
}
int32_t plainPolyphase_32f(const float* table, int32_t entries, int32_t nStep, const float* source, int32_t length,
                           float* destination, double factor, double time) {
  return anyRatio(table, entries, nStep, source, length, destination, factor, time, 1.0);
}
int32_t plainPolyphase_16s(const int16_t* table, int32_t entries, int32_t nStep, double gain, const int16_t* source, int32_t length,
                           int16_t* destination, double factor, double time) {
  return anyRatio(table, entries, nStep, source, length, destination, factor, time, gain);
}
