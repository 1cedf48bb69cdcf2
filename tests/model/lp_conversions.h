// Plain models of the conversions of linear prediction, one float operation at a time, and of what 16-bit members do at their edges.
#pragma once

#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "model/convert.h"
#include "qorsr.h"

namespace model {

using Floats = std::vector<float>;

// 2^e, e limited to -150 (zero) to 128 (infinity).
inline float powerOfTwo(int64_t e) {
  return static_cast<float>(std::ldexp(1.0, static_cast<int>(e < -150 ? -160 : e > 128 ? 128 : e)));
}
inline Floats loaded(const std::vector<int16_t>& x, int64_t exponent) {
  Floats y;
  for (const int16_t v : x) y.push_back(static_cast<float>(v) * powerOfTwo(exponent));
  return y;
}
inline int16_t stored(float v, int64_t scaleFactor, int mode = 1) {
  return convertScaled<int16_t>(v * powerOfTwo(-scaleFactor), mode, 0);
}

// ---- Cepstrum ----

inline Floats cepstrum(const Floats& a) {
  Floats c(a.size());
  for (std::size_t m = 1; m <= a.size(); ++m) {
    float sum = 0.0F;
    for (std::size_t k = 1; k < m; ++k) sum = sum + static_cast<float>(m - k) * a[k - 1] * c[m - k - 1];
    c[m - 1] = 0.0F - (a[m - 1] + 1.0F / static_cast<float>(m) * sum);
  }
  return c;
}
inline Floats predictorOfCepstrum(const Floats& c) {
  Floats a(c.size());
  for (std::size_t m = 1; m <= c.size(); ++m) {
    float sum = 0.0F;
    for (std::size_t k = 1; k < m; ++k) sum = sum + static_cast<float>(m - k) * c[m - k - 1] * a[k - 1];
    a[m - 1] = 0.0F - (c[m - 1] + 1.0F / static_cast<float>(m) * sum);
  }
  return a;
}

// ---- Reflection ----

// Coefficients that are reached, from the last one downwards; the others are empty.
struct StepDown {
  QorStatus status = qorStatusOk;
  std::vector<std::optional<float>> k;
};
inline StepDown stepDown(Floats a) {
  StepDown result;
  result.k.resize(a.size());
  for (std::size_t m = a.size(); m >= 1; --m) {
    const float k = 0.0F - a[m - 1];
    if (k == 1.0F || k == -1.0F) {
      result.status = qorStatusUnstableReflection;
      break;
    }
    const float d = 1.0F / (1.0F - k * k);
    result.k[m - 1] = k;
    const Floats old = a;
    for (std::size_t i = 1; i < m; ++i) a[i - 1] = (old[i - 1] + old[m - i - 1] * k) * d;
  }
  return result;
}
inline Floats stepUp(const Floats& k) {
  Floats a(k.size());
  for (std::size_t m = 1; m <= k.size(); ++m) {
    const Floats old = a;
    a[m - 1] = 0.0F - k[m - 1];
    for (std::size_t i = 1; i < m; ++i) a[i - 1] = old[i - 1] - k[m - 1] * old[m - i - 1];
  }
  return a;
}

// ---- Line spectral pairs ----

inline float chebyshev(const Floats& h, float x) {
  const std::size_t d = h.size() - 1;
  if (d == 0) return 0.0F;
  if (d == 1) return h[1] + 2.0F * x;
  Floats b = {1.0F, h[1] + 2.0F * x};
  for (std::size_t j = 2; j < d; ++j) b.push_back(2.0F * x * b[j - 1] - b[j - 2] + h[j]);
  return x * b[d - 1] - b[d - 2] + 0.5F * h[d];
}

struct Roots {
  QorStatus status;
  Floats found;
};
inline Roots lineSpectra(const Floats& a, int32_t intervals, int32_t refinements) {
  const auto p = static_cast<int32_t>(a.size());
  const auto at = [&](int32_t i) { return a[static_cast<std::size_t>(i)]; };
  Floats f = {1.0F}, g = {1.0F};
  const int32_t m = (p + 1) / 2;
  if (p % 2 == 0) {
    for (int32_t i = 1; i <= m; ++i) {
      f.push_back(at(i - 1) + at(p - i) - f.back());
      g.push_back(at(i - 1) - at(p - i) + g.back());
    }
  } else {
    for (int32_t i = 1; i < m; ++i) f.push_back(0.0F - at(i - 1) - at(p - i));
    f.push_back(-2.0F * at(m - 1));
    if (m > 1) g.push_back(at(p - 1) - at(0));
    for (int32_t i = 2; i < m; ++i) g.push_back(g[static_cast<std::size_t>(i - 2)] + at(p - i) - at(i - 1));
  }
  const auto grid = [&](int32_t i) {
    return i == intervals ? -1.0F : 1.0F - static_cast<float>(i) * (2.0F / static_cast<float>(intervals));
  };
  Floats roots;
  bool inG = false;
  const auto value = [&](float x) { return chebyshev(inG ? g : f, x); };
  float x1 = grid(0), f1 = value(x1);
  for (int32_t i = 1; i <= intervals && static_cast<int32_t>(roots.size()) < p;) {
    float x2 = grid(i), f2 = value(x2);
    if (!(f1 * f2 <= 0.0F)) {
      x1 = x2;
      f1 = f2;
      ++i;
      continue;
    }
    for (int32_t count = refinements; count > 0; count -= 2) {
      const float q = (x2 - x1) * 0.25F;
      const float x[5] = {x1, x1 + q, x1 + 2.0F * q, x1 + 3.0F * q, x2};
      const float y[5] = {f1, value(x[1]), value(x[2]), value(x[3]), f2};
      int part = 0;
      while (part < 3 && !(y[part] * y[part + 1] <= 0.0F)) ++part;
      x1 = x[part], f1 = y[part], x2 = x[part + 1], f2 = y[part + 1];
    }
    roots.push_back(x2 - (x1 - x2) * f2 / (f1 - f2));
    inG = !inG;
    x1 = roots.back();
    f1 = value(x1);
  }
  return {static_cast<int32_t>(roots.size()) < p ? qorStatusLspRootsLost : qorStatusOk, roots};
}

inline bool areLineSpectra(const Floats& q) {
  if (q.front() >= 1.0F || q.back() <= -1.0F) return false;
  for (std::size_t i = 0; i + 1 < q.size(); ++i) {
    if (q[i + 1] > q[i]) return false;
  }
  return true;
}
// In double, with both products whole; the definition leaves the order of the factors' sums open.
inline std::vector<double> predictorOfLineSpectra(const Floats& q) {
  const std::size_t p = q.size(), s = (p + 1) / 2, t = p / 2;
  const auto product = [&](std::size_t first) {
    std::vector<double> h = {1.0};
    for (std::size_t i = first; i < p; i += 2) {
      std::vector<double> next(h.size() + 2);
      for (std::size_t j = 0; j < h.size(); ++j) {
        next[j] += h[j];
        next[j + 1] -= 2.0 * static_cast<double>(q[i]) * h[j];
        next[j + 2] += h[j];
      }
      h = next;
    }
    h.resize(h.size() + 3);
    return h;
  };
  std::vector<double> f = product(0), g = product(1), a(p);
  if (p == 1) g[1] = 0;
  if (p % 2 == 0) {
    for (std::size_t i = s; i >= 1; --i) {
      f[i] += f[i - 1];
      g[i] -= g[i - 1];
    }
    for (std::size_t i = 1; i <= s; ++i) {
      a[i - 1] = (f[i] + g[i]) * 0.5;
      a[p - i] = (f[i] - g[i]) * 0.5;
    }
    return a;
  }
  a[0] = (f[1] + g[1]) * -0.5;
  for (std::size_t i = 2; i < s; ++i) a[i - 1] = (f[i] + g[i] - g[i - 2]) * -0.5;
  if (p > 1) a[s - 1] = f[s] * -0.5;
  for (std::size_t i = 1; i <= t; ++i) a[p - i] = (f[i] - g[i] + (i < 2 ? 0.0 : g[i - 2])) * -0.5;
  return a;
}

// ---- Spectrum ----

// |S(k)| in double, by the definition.
inline std::vector<double> modelMagnitudes(const std::vector<double>& x, int order, double value) {
  const std::size_t size = std::size_t{2} << order;
  std::vector<double> magnitudes;
  for (std::size_t k = 0; k < size / 2; ++k) {
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < x.size(); ++n) {
      sum += std::polar(x[n], -2 * M_PI * static_cast<double>(k * (n + 1) % size) / static_cast<double>(size));
    }
    magnitudes.push_back(std::abs(k == 0 ? sum - value : sum));
  }
  return magnitudes;
}

// ---- Measures ----

struct Measured {
  QorStatus status = qorStatusOk;
  Floats values;
};
template <class Numerator, class Denominator>
Measured measured(const Floats& k1, const Floats& k2, Numerator numerator, Denominator denominator) {
  Measured result;
  for (std::size_t i = 0; i < k1.size(); ++i) {
    const float n = numerator(k1[i], k2[i]), d = denominator(k1[i], k2[i]), q = n / d;
    if (d == 0.0F || (std::isnan(q) && !std::isnan(k1[i]) && !std::isnan(k2[i]))) result.status = qorStatusDivideByZero;
    result.values.push_back(q);
  }
  return result;
}
inline Measured areaRatios(const Floats& k) {
  return measured(
      k, k, [](float x, float) { return 1.0F - x; }, [](float x, float) { return 1.0F + x; });
}
inline Measured absoluteTilts(const Floats& a, const Floats& b) {
  return measured(
      a, b, [](float x, float y) { return std::fabs(x) - std::fabs(y); },
      [](float x, float y) { return std::fabs(x) + std::fabs(y); });
}
inline Measured tilts(const Floats& a, const Floats& b) {
  return measured(
      a, b, [](float x, float y) { return std::fabs(x) - std::fabs(y); }, [](float x, float y) { return x + y; });
}
inline Measured trueAreaRatios(const Floats& k) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  Measured result;
  float acc = 1.0F;
  bool pole = false, ended = false;
  for (const float x : k) {
    if (ended) {
      acc = std::numeric_limits<float>::quiet_NaN();
    } else if (!pole && x != -1.0F) {
      acc = acc * (1.0F - x) / (x + 1.0F);
    } else {
      pole = true;
      if (x == -1.0F) result.status = qorStatusDivideByZero;
      if (x == 1.0F) {
        ended = true;
        acc = std::numeric_limits<float>::quiet_NaN();
      } else if (x < -1.0F || x > 1.0F) {
        acc = acc < 0.0F ? kInfinite : -kInfinite;
      } else {
        acc = acc > 0.0F ? kInfinite : -kInfinite;
      }
    }
    result.values.push_back(acc);
  }
  return result;
}
// In double; the float's last bits are those of quotient and logarithm.
inline double logAreaRatio(float k, float limit) {
  const auto c = static_cast<double>(std::fmin(std::fmax(k, -limit), limit));
  return std::log((1 - c) / (1 + c));
}

}  // namespace model
