// Plain model of noise tracking by minima: one bin after the other, each step of its own.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace model {

// A state, as the functions make it. roundsHopDown: the window is that of the power of two at or below the hop.
template <class Number>
struct Minima {
  int32_t window = 0, counter = 0;
  bool first = true;
  Number noiseSmoothing{}, presenceSmoothing{}, spectrumSmoothing{};
  std::vector<Number> presence, smoothed, minimum, temporary;
};

inline int halvings(int32_t n) {
  int count = 0;
  for (; n > 0; n /= 2) ++count;
  return count;
}

template <class Number>
Minima<Number> emptyMinima(int32_t length) {
  const auto bins = static_cast<std::size_t>(length / 2 + 1);
  Minima<Number> s;
  s.presence = s.smoothed = s.minimum = s.temporary = std::vector<Number>(bins);
  return s;
}

inline void setConstants(Minima<float>& s, int32_t rate, int32_t length, int32_t hop, bool alternative) {
  if (alternative) {
    s.window = static_cast<int32_t>(static_cast<float>(rate * 0.008) / static_cast<float>(hop) * 125.0F);
  } else {
    const auto quotient = static_cast<float>(rate * 0.008 / std::pow(2.0, halvings(length / 2) - 1));
    s.window = static_cast<int32_t>(quotient * 125.0F);
  }
  const float t = static_cast<float>(hop) * 125.0F / static_cast<float>(rate);
  s.noiseSmoothing = static_cast<float>(std::pow(0.7, static_cast<double>(t)));
  s.spectrumSmoothing = static_cast<float>(std::pow(0.8, static_cast<double>(t)));
  s.presenceSmoothing = static_cast<float>(std::pow(0.2, static_cast<double>(t)));
}

inline int32_t lowWord(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }
inline int32_t seriesPower(uint32_t logarithm, int64_t t) {
  const int64_t c = -((int64_t{1} << 32) - logarithm);
  const int64_t a = (c * t) >> 31, b = ((a * a) >> 15) >> 1, d = (b * a) >> 15;
  return lowWord((b + a - 32768 + ((715827883 * d) >> 31)) * 65536);
}
inline int32_t highOfSquare(int32_t p) {
  const auto square = static_cast<uint64_t>(int64_t{p} * p);
  return static_cast<int32_t>(static_cast<uint32_t>((square << 1) >> 32));
}
inline void setConstants(Minima<int32_t>& s, int32_t rate, int32_t length, int32_t hop, bool alternative) {
  const int64_t c = int64_t{17179869} * rate;
  const int64_t frames = alternative ? ((c / hop) >> 16) + 1 : ((c >> 16) >> (halvings(length / 2) - 1)) + 1;
  s.window = static_cast<int32_t>((frames * 125) >> 15);
  const int64_t t = ((int64_t{125} * hop) << 15) / rate;
  s.noiseSmoothing = seriesPower(0xd25879b6, t);
  s.spectrumSmoothing = seriesPower(0xe3700838, t);
  s.presenceSmoothing = highOfSquare(highOfSquare(highOfSquare(seriesPower(0xe63fbe08, t))));
}

template <class Number>
Minima<Number> minima(int32_t rate, int32_t length) {
  Minima<Number> s = emptyMinima<Number>(length);
  setConstants(s, rate, length, length / 2, false);
  return s;
}
template <class Number>
Minima<Number> minima(int32_t rate, int32_t length, int32_t hop) {
  Minima<Number> s = emptyMinima<Number>(length);
  setConstants(s, rate, length, hop, true);
  return s;
}

// a where it is less, else b: also where one of them is a NaN.
template <class Number>
Number lesser(Number a, Number b) {
  return a < b ? a : b;
}

inline float smoothedPower(float s, float x, float alpha) { return alpha * s + (1.0F - alpha) * x; }
inline int32_t smoothedPower(int32_t s, int32_t x, int32_t alpha) {
  const auto product = [](int64_t a, int64_t b) { return static_cast<uint64_t>(a) * static_cast<uint64_t>(b); };  // wraps
  return lowWord(static_cast<int64_t>(product(s, alpha) + product(int64_t{0x7fffffff} - alpha, x)) >> 31);
}

inline void updateBin(const Minima<float>& s, float power, float minimum, float x, float& presence, float& noise) {
  presence = s.presenceSmoothing * presence;
  if (power > 5.0F * minimum) presence += 1.0F - s.presenceSmoothing;
  const float a = s.noiseSmoothing + (1.0F - s.noiseSmoothing) * presence;
  noise = a * noise + (1.0F - a) * x;
}
inline int32_t nearestOrLowest(double value) {
  const double whole = std::nearbyint(value);
  return whole >= -2147483648.0 && whole <= 2147483647.0 ? static_cast<int32_t>(whole) : INT32_MIN;
}
inline void updateBin(const Minima<int32_t>& s, int32_t power, int32_t minimum, int32_t x, int32_t& presence, int32_t& noise) {
  const double scale = std::ldexp(1.0, -31), ap = s.presenceSmoothing, ad = s.noiseSmoothing;
  const double limit = std::min(static_cast<double>(minimum) * 0x28000 * std::ldexp(1.0, -15), 2147483647.0);
  const double p = static_cast<double>(presence) * ap * scale + (limit < power ? 2147483647.0 - ap : 0.0);
  const double a = ad + p * (2147483647.0 - ad) * scale;
  noise = nearestOrLowest(a * static_cast<double>(noise) * scale + (2147483647.0 - a) * static_cast<double>(x) * scale);
  presence = nearestOrLowest(p);
}

template <class Number>
void update(Minima<Number>& s, const std::vector<Number>& x, std::vector<Number>& noise) {
  if (s.first) {
    s.smoothed = s.minimum = s.temporary = noise = x;
    std::fill(s.presence.begin(), s.presence.end(), Number(0));
  } else {
    const bool restart = s.counter == s.window;
    for (std::size_t k = 0; k < x.size(); ++k) {
      s.smoothed[k] = smoothedPower(s.smoothed[k], x[k], s.spectrumSmoothing);
      if (restart) {
        s.minimum[k] = lesser(s.smoothed[k], s.temporary[k]);
        s.temporary[k] = s.smoothed[k];
      } else {
        s.minimum[k] = lesser(s.minimum[k], s.smoothed[k]);
        s.temporary[k] = lesser(s.temporary[k], s.smoothed[k]);
      }
      updateBin(s, s.smoothed[k], s.minimum[k], x[k], s.presence[k], noise[k]);
    }
    if (restart) s.counter = 0;
  }
  s.counter += 1;
  s.first = false;
}

}  // namespace model
