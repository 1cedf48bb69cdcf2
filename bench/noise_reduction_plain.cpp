// Plain loops of spectral noise reduction: what one would write first.
#include "noise_reduction_plain.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

// ---- Power spectra ----

void plainPowerSpectrum_32f(const float* x, float* y, int32_t length) {
  y[0] = (x[0] * x[0] + x[2] * x[2] + x[3] * x[3]) * 0.5F;
  for (int32_t k = 1; k < length / 4; ++k) {
    const float* v = x + 4 * k;
    y[k] = ((v[0] * v[0] + v[1] * v[1]) + (v[2] * v[2] + v[3] * v[3])) * 0.5F;
  }
  y[length / 4] = x[1] * x[1];
}
void plainPowerSpectrum_16s(const int16_t* x, int16_t* y, int32_t length) {
  const auto half = [=](int32_t i) { return static_cast<uint32_t>(x[i] * x[i] >> 1); };
  y[0] = static_cast<int16_t>(std::min(half(0) + half(2) + half(3), 32767U));
  for (int32_t k = 4; k < length; k += 4) {
    const auto sum = static_cast<int32_t>(half(k) + half(k + 1) + half(k + 2) + half(k + 3));
    y[k / 4] = static_cast<int16_t>(std::min(std::max(sum, -32768), 32767));
  }
  y[length / 4] = static_cast<int16_t>(std::min(x[1] * x[1], 32767));
}
namespace {
int64_t half(int32_t x) { return int64_t{x} * x >> 1; }
int64_t shifted(int64_t x, int32_t sf) {
  return sf >= 0 ? x >> std::min(sf, 63) : static_cast<int64_t>(static_cast<uint64_t>(x) << std::min(-sf, 63));
}
int32_t limited(int64_t x) { return static_cast<int32_t>(std::min<int64_t>(std::max<int64_t>(x, INT32_MIN), INT32_MAX)); }
int64_t lowSquare(int32_t x) { return static_cast<int32_t>(static_cast<uint32_t>(x) * static_cast<uint32_t>(x)); }
}  // namespace
void plainPowerSpectrum_32s(const int32_t* x, int32_t* y, int32_t length, int32_t scaleFactor) {
  const double factor = std::ldexp(1.0, -scaleFactor - 1);
  y[0] = limited(shifted(half(x[0]) + half(x[2]) + half(x[3]), scaleFactor));
  for (int32_t k = 4; k < length; k += 4) {
    const double a = x[k], b = x[k + 1], c = x[k + 2], d = x[k + 3];
    y[k / 4] = static_cast<int32_t>(std::lrint(((a * a + b * b) + (c * c + d * d)) * factor));
  }
  y[length / 4] = limited(shifted(lowSquare(x[1]), scaleFactor));
}
void plainPowerSpectrum_32s64s(const int32_t* x, int64_t* y, int32_t length, int32_t scaleFactor) {
  y[0] = shifted(half(x[0]) + half(x[2]) + half(x[3]), scaleFactor);
  for (int32_t k = 4; k < length; k += 4) {
    y[k / 4] = shifted(half(x[k]) + half(x[k + 1]) + half(x[k + 2]) + half(x[k + 3]), scaleFactor);
  }
  y[length / 4] = shifted(lowSquare(x[1]), scaleFactor);
}

// ---- Noise and gains ----

namespace {
// What a plain loop, too, has to do where every operation rounds toward zero.
struct TowardZero {
  const int mode = std::fegetround();
  TowardZero() { std::fesetround(FE_TOWARDZERO); }
  ~TowardZero() { std::fesetround(mode); }
};
}  // namespace

void plainNoiseUpdate_32f(const float* x, const float* n, float* y, int32_t length) {
  const TowardZero mode;
  for (int32_t i = 0; i < length; ++i) {
    const float tenth = 0.1F * x[i], sum = x[i] + n[i], mixed = n[i] + tenth;
    y[i] = sum == 0 || mixed == 0 ? 0 : n[i] * (tenth / sum * (n[i] / mixed + 1) + 0.9F);
  }
}
void plainNoiseUpdate_16s(const int16_t* x, const int16_t* n, int16_t* y, int32_t length, int32_t scaleFactor) {
  const TowardZero mode;
  const float factor = std::ldexp(1.0F, -scaleFactor);
  for (int32_t i = 0; i < length; ++i) {
    const float a = x[i], b = n[i], mixed = 0.1F * a + b;
    if (x[i] + n[i] == 0 || static_cast<int32_t>(mixed) == 0) {
      y[i] = 0;
    } else {
      const float t = b * (a / (a + b) * 0.1F * (b / mixed + 1) + 0.9F) * factor;
      y[i] = static_cast<int16_t>(std::max(std::min(t, 32767.0F), -32768.0F));
    }
  }
}
void plainNoiseUpdate_32s(const int32_t* x, const int32_t* n, int32_t* y, int32_t length, int32_t scaleFactor) {
  const TowardZero mode;
  const float factor = std::ldexp(1.0F, -scaleFactor);
  for (int32_t i = 0; i < length; ++i) {
    const auto a = static_cast<float>(x[i]), b = static_cast<float>(n[i]);
    const int64_t mixed = static_cast<int32_t>(0.1F * a) + int64_t{n[i]}, sum = int64_t{x[i]} + n[i];
    if (sum == 0 || mixed == 0) {
      y[i] = 0;
    } else {
      const float t = b * (a / static_cast<float>(sum) * 0.1F * (b / static_cast<float>(mixed) + 1) + 0.9F) * factor;
      y[i] = static_cast<int32_t>(std::max(std::min(t, 2147483520.0F), -2147483648.0F));
    }
  }
}
void plainWienerGain_32f(const float* x, const float* n, const float* p, float* y, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    const float r = 1 / n[i], rise = x[i] - n[i];
    const float a = ((rise > 0 ? rise : 0) * 0.02F + p[i] * 0.98F) * r, b = a / (a + 1) * (x[i] * r);
    const float floored = b > 0.07943282F ? b : 0.07943282F;
    y[i] = floored / (floored + 1);
  }
}
void plainWienerGain_16s(const int16_t* x, const int16_t* n, const int16_t* p, int16_t* y, int32_t length) {
  for (int32_t k = 0; k < length; ++k) {
    if (n[k] == 0) {
      y[k] = 1206;
      continue;
    }
    const int32_t d = std::max(x[k] - n[k], 0), i = 16384 / n[k];
    const int64_t a = int64_t{p[k] * 4014 + 82 * d} * i, divisor = (a >> 14) + 4096;
    int64_t b = 1301;
    if (divisor != 0) b = std::max<int64_t>((x[k] * ((a & ~int64_t{0x3FFF}) / divisor) >> 14) * i, b);
    y[k] = static_cast<int16_t>((b << 7) / ((b >> 7) + 128));
  }
}

// ---- Time domain ----

void plainResidual_32f(const float* x, float* y, const float* h) {
  for (int i = 0; i < 80; ++i) {
    float sum = 0;
    for (int k = 0; k < 17; ++k) sum += h[k] * x[i + k];
    y[i] = sum;
  }
}
void plainResidual_16s(const int16_t* x, int16_t* y, const int16_t* h, int32_t scaleFactor) {
  const double factor = std::ldexp(1.0, -scaleFactor);
  for (int i = 0; i < 80; ++i) {
    int64_t sum = 0;
    for (int k = 0; k < 17; ++k) sum += h[k] * x[i + k];
    y[i] = static_cast<int16_t>(std::lrint(std::min(std::max(static_cast<double>(sum) * factor, -32768.0), 32767.0)));
  }
}

namespace {

template <class T, class Energy>
void wave(const T* x, T* y, T low, T one, T high, int32_t numerator, int32_t denominator) {
  Energy e[200], s[200];
  const auto product = [](T a, T b) { return static_cast<Energy>(a) * static_cast<Energy>(b); };
  e[0] = std::abs(product(x[0], x[0]) - product(x[0], x[1]));
  for (int n = 1; n < 199; ++n) e[n] = std::abs(product(x[n], x[n]) - product(x[n - 1], x[n + 1]));
  e[199] = std::abs(product(x[199], x[199]) - product(x[198], x[199]));
  s[0] = 5 * e[0] + e[1] + e[2] + e[3] + e[4];
  for (int n = 1; n < 200; ++n) s[n] = s[n - 1] + e[std::min(n + 4, 199)] - e[std::max(n - 5, 0)];
  const auto most = [&](int from, int to) { return static_cast<int>(std::max_element(s + from, s + to) - s); };
  int peaks[20], count = 0;
  const int first = most(0, 200);
  for (int p = first; p > 25;) peaks[count++] = p = most(p - std::min(p, 79), p - 24);
  std::reverse(peaks, peaks + count);
  peaks[count++] = first;
  for (int p = first; p < 175;) peaks[count++] = p = most(p + 25, std::min(p + 80, 200));
  T w[200];
  std::fill(w, w + 200, low);
  for (int i = 0; i < count; ++i) {
    const int distance = i + 1 < count ? peaks[i + 1] - peaks[i] : peaks[i] - peaks[i - 1];
    const int from = std::max(peaks[i] - 4, 0), to = std::min(peaks[i] + distance * numerator / denominator - 4, 200);
    std::fill(w + from, w + to, high);
    if (from > 0) w[from - 1] = w[from] = one;
    if (to < 200) w[to - 1] = w[to] = one;
  }
  for (int n = 0; n < 200; ++n) {
    if constexpr (sizeof(T) == 2) {
      const int32_t v = w[n] * x[n], rounded = (v + 15 + ((v >> 5) & 1)) >> 5;
      y[n] = static_cast<T>(std::min(std::max(rounded, -32768), 32767));
    } else {
      y[n] = w[n] * x[n];
    }
  }
}

}  // namespace
void plainWave_32f(const float* x, float* y) { wave<float, float>(x, y, 0.8F, 1.0F, 1.2F, 4, 5); }
void plainWave_16s(const int16_t* x, int16_t* y) { wave<int16_t, int32_t>(x, y, 27, 32, 38, 27, 32); }
