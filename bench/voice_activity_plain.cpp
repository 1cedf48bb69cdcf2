// Plain loops of voice activity: what one would write first.
#include "voice_activity_plain.h"

#include <algorithm>
#include <cstdint>

namespace {

template <class Number>
int32_t decide(PlainActivity<Number>* v, bool active) {
  if (v->frames < 11) return 4;
  v->index = (v->index + 1) % 7;
  v->ring[v->index] = active ? 1 : 0;
  int longest = 0, run = 0;
  for (int k = 1; k <= 7; ++k) {
    run = v->ring[(v->index + k) % 7] != 0 ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  if (longest >= 4) {
    v->longCounter = v->hangover;
    if (v->frames < 36) v->hangover = 40;
  }
  if (longest < 3) {
    if (v->longCounter != 0) --v->longCounter;
    if (v->shortCounter != 0) --v->shortCounter;
  } else {
    v->shortCounter = 5;
  }
  return v->longCounter == 0 && v->shortCounter == 0 && longest < 3 ? 2 : 1;
}

bool adapt(float& t, float m, float u, float l, float d, float g) {
  if (m < u * t && m > l * t) t = 0.8F * t + 0.2F * m;
  if (m <= d * t) t = 0.97F * t + 0.03F * m;
  return m > g * t;
}
bool adapt(int32_t& t, int64_t m, int64_t u, int64_t l, int64_t keep, int64_t take, int64_t d, int64_t sink, int shift, int64_t g) {
  const int64_t wide = t;
  if (m < (wide * u) >> 7 && m > (wide * l) >> 7) t = static_cast<int32_t>(((wide * keep) >> 7) + ((m * take) >> 7));
  if (m <= (int64_t{t} * d) >> 7) t = static_cast<int32_t>(((int64_t{t} * sink) >> 7) + (m >> shift));
  return m > (int64_t{t} * g) >> 7;
}

}  // namespace

int32_t plainActivity_32f(const float* bands, const float* frame, int32_t count, PlainActivity<float>* v) {
  ++v->frames;
  float sum = 0, squares = 0, s = 0;
  for (int i = 0; i < 64; ++i) {
    sum += frame[i];
    squares += frame[i] * frame[i];
  }
  const float variance = squares * 0.015625F - sum * sum * 0.00024414063F;
  if (v->frames < 15) v->variance = std::max(v->variance, variance);
  bool active = adapt(v->variance, variance, 1.5F, 0.85F, 0.25F, 1.65F);
  for (int i = 0; i < 25; ++i) s += bands[i];
  const float e = s * s - 3;
  if (v->frames == 1) v->energy = e;
  if (v->frames < 15) {
    v->mean = (static_cast<float>(v->frames - 1) * v->mean + e) * 1.1F / static_cast<float>(v->frames);
    if (e / v->mean > 2.5F) v->onset = 1;
    if (v->onset == 0) v->energy = std::max(v->energy, e);
  }
  active |= adapt(v->energy, e, 1.5F, 0.75F, 0.5F, 1.65F);
  const float c = (bands[1] + bands[2] + bands[3]) / 3, m = 0.75F * c + 0.25F * v->previous;
  v->previous = c;
  if (v->frames < 15) v->spectral = std::max(v->spectral, m);
  active |= adapt(v->spectral, m, 1.5F, 0.75F, 0.5F, 3.25F);
  return decide(v, active || count >= 5);
}

int32_t plainActivity_16s(const int16_t* bands, const int16_t* frame, int32_t count, PlainActivity<int32_t>* v) {
  ++v->frames;
  int32_t sum = 0, s = 0;
  int64_t squares = 0;
  for (int i = 0; i < 64; ++i) {
    sum += frame[i];
    squares += frame[i] * frame[i];
  }
  const int64_t variance = 64 * squares - int64_t{sum} * sum;
  if (v->frames < 15) v->variance = static_cast<int32_t>(std::max<int64_t>(v->variance, variance));
  bool active = adapt(v->variance, variance, 192, 108, 104, 24, 32, 124, 0, 212);
  for (int i = 0; i < 25; ++i) s += bands[i];
  const int64_t e = static_cast<int32_t>(static_cast<uint32_t>(s) * static_cast<uint32_t>(s) - 3);
  if (v->frames == 1) v->energy = static_cast<int32_t>(e);
  if (v->frames < 15) {
    v->mean = static_cast<int32_t>(((v->frames - 1) * int64_t{v->mean} + e) * 141 / v->frames >> 7);
    if (v->mean != 0 && e * 128 / v->mean > 320) v->onset = 1;
    if (v->onset == 0) v->energy = static_cast<int32_t>(std::max<int64_t>(v->energy, e));
  }
  active |= adapt(v->energy, e, 192, 96, 102, 26, 64, 124, 5, 211);
  const int32_t c = bands[1] + bands[2] + bands[3], m = ((c * 8184) >> 5) + ((v->previous * 8) >> 5);
  v->previous = c * 341;
  if (v->frames < 15) v->spectral = std::max(v->spectral, m);
  active |= adapt(v->spectral, m, 192, 96, 102, 26, 64, 124, 5, 416);
  return decide(v, active || count >= 5);
}
