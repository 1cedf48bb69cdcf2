// The plain loop of the singular value decomposition: Golub and Reinsch's procedure on rows, element by element.
#include "singular_values_plain.h"

#include <algorithm>
#include <cmath>

namespace {

double hypotenuse(double a, double b) {
  const double x = std::fabs(a), y = std::fabs(b), most = std::max(x, y);
  if (most >= 0x1p510) return 0x1p510 * std::sqrt((x * 0x1p-510) * (x * 0x1p-510) + (y * 0x1p-510) * (y * 0x1p-510));
  if (most <= 0x1p-510) return 0x1p-510 * std::sqrt((x * 0x1p510) * (x * 0x1p510) + (y * 0x1p510) * (y * 0x1p510));
  return std::sqrt(x * x + y * y);
}

void turn(double* t, int32_t rows, int32_t width, int32_t first, int32_t second, double c, double s) {
  for (int32_t r = 0; r < rows; ++r) {
    const double a = t[r * width + second], b = t[r * width + first];
    t[r * width + second] = c * a + s * b;
    t[r * width + first] = b * c - a * s;
  }
}

double reduce(double* u, int32_t m, int32_t n, double* w, double* e) {
  double g = 0, scale = 0, norm = 0;
  for (int32_t i = 0; i < n; ++i) {
    const int32_t l = i + 1;
    e[i] = scale * g;
    g = scale = 0;
    if (i < m) {
      for (int32_t k = i; k < m; ++k) scale += std::fabs(u[k * n + i]);
      if (scale != 0) {
        double s = 0;
        for (int32_t k = i; k < m; ++k) {
          u[k * n + i] /= scale;
          s += u[k * n + i] * u[k * n + i];
        }
        const double f = u[i * n + i];
        g = f >= 0 ? -std::sqrt(s) : std::sqrt(s);
        const double h = f * g - s;
        u[i * n + i] = f - g;
        for (int32_t j = l; j < n; ++j) {
          s = 0;
          for (int32_t k = i; k < m; ++k) s += u[k * n + i] * u[k * n + j];
          s /= h;
          for (int32_t k = i; k < m; ++k) u[k * n + j] += s * u[k * n + i];
        }
        for (int32_t k = i; k < m; ++k) u[k * n + i] *= scale;
      }
    }
    w[i] = scale * g;
    g = scale = 0;
    if (i < m && l != n) {
      for (int32_t k = l; k < n; ++k) scale += std::fabs(u[i * n + k]);
      if (scale != 0) {
        double s = 0;
        for (int32_t k = l; k < n; ++k) {
          u[i * n + k] /= scale;
          s += u[i * n + k] * u[i * n + k];
        }
        const double f = u[i * n + l];
        g = f >= 0 ? -std::sqrt(s) : std::sqrt(s);
        const double h = f * g - s;
        u[i * n + l] = f - g;
        for (int32_t k = l; k < n; ++k) e[k] = u[i * n + k] / h;
        for (int32_t j = l; j < m; ++j) {
          s = 0;
          for (int32_t k = l; k < n; ++k) s += u[j * n + k] * u[i * n + k];
          for (int32_t k = l; k < n; ++k) u[j * n + k] += s * e[k];
        }
        for (int32_t k = l; k < n; ++k) u[i * n + k] *= scale;
      }
    }
    norm = std::max(norm, std::fabs(w[i]) + std::fabs(e[i]));
  }
  return norm;
}

void accumulate(double* u, int32_t m, int32_t n, const double* w, double* v, const double* e) {
  double g = 0;
  for (int32_t i = n - 1; i >= 0; --i) {
    const int32_t l = i + 1;
    if (g != 0) {
      for (int32_t j = l; j < n; ++j) v[j * n + i] = (u[i * n + j] / u[i * n + l]) / g;
      for (int32_t j = l; j < n; ++j) {
        double s = 0;
        for (int32_t k = l; k < n; ++k) s += u[i * n + k] * v[k * n + j];
        for (int32_t k = l; k < n; ++k) v[k * n + j] += s * v[k * n + i];
      }
    }
    for (int32_t j = l; j < n; ++j) v[i * n + j] = v[j * n + i] = 0;
    v[i * n + i] = 1;
    g = e[i];
  }
  for (int32_t i = std::min(m, n) - 1; i >= 0; --i) {
    const int32_t l = i + 1;
    for (int32_t j = l; j < n; ++j) u[i * n + j] = 0;
    if (w[i] != 0) {
      g = 1 / w[i];
      for (int32_t j = l; j < n; ++j) {
        double s = 0;
        for (int32_t k = l; k < m; ++k) s += u[k * n + i] * u[k * n + j];
        const double f = s / u[i * n + i] * g;
        for (int32_t k = i; k < m; ++k) u[k * n + j] += f * u[k * n + i];
      }
      for (int32_t k = i; k < m; ++k) u[k * n + i] *= g;
    } else {
      for (int32_t k = i; k < m; ++k) u[k * n + i] = 0;
    }
    u[i * n + i] += 1;
  }
}

void sweep(double* u, int32_t m, double* w, double* v, int32_t n, double* e, int32_t l, int32_t k) {
  double x = w[l], y = w[k - 1], z = w[k], g = e[k - 1], h = e[k], c = 1, s = 1;
  double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
  g = hypotenuse(f, 1);
  f = ((x - z) * (x + z) + h * (y / (f + (f < 0 ? -g : g)) - h)) / x;
  for (int32_t j = l; j < k; ++j) {
    const int32_t i = j + 1;
    g = e[i];
    y = w[i];
    h = s * g;
    g = c * g;
    z = hypotenuse(f, h);
    e[j] = z;
    if (z != 0) c = f / z, s = h / z;
    f = x * c + g * s;
    g = g * c - x * s;
    h = y * s;
    y *= c;
    turn(v, n, n, i, j, c, s);
    z = hypotenuse(f, h);
    w[j] = z;
    if (z != 0) z = 1 / z, c = f * z, s = h * z;
    f = c * g + s * y;
    x = c * y - s * g;
    turn(u, m, n, i, j, c, s);
  }
  e[l] = 0;
  e[k] = f;
  w[k] = x;
}

// Where the block that ends at k begins; a value in front of it that vanishes is turned away.
int32_t split(double* u, int32_t m, double* w, int32_t n, double* e, int32_t k, double norm) {
  for (int32_t l = k; l > 0; --l) {
    if (std::fabs(e[l]) + norm == norm) return l;
    if (std::fabs(w[l - 1]) + norm != norm) continue;
    double c = 0, s = 1;
    for (int32_t i = l; i <= k; ++i) {
      const double f = s * e[i];
      e[i] *= c;
      if (std::fabs(f) + norm == norm) break;
      const double g = w[i], h = hypotenuse(f, g);
      w[i] = h;
      c = g / h;
      s = -f / h;
      turn(u, m, n, i, l - 1, c, s);
    }
    return l;
  }
  return 0;
}

}  // namespace

int32_t plainSvd_64f(double* a, int32_t m, double* w, double* v, int32_t n, int32_t limit, double* e) {
  const double norm = reduce(a, m, n, w, e);
  accumulate(a, m, n, w, v, e);
  for (int32_t k = n - 1; k >= 0; --k) {
    for (int32_t its = 1;; ++its) {
      const int32_t l = split(a, m, w, n, e, k, norm);
      if (l == k) break;
      if (its == limit) return 1;
      sweep(a, m, w, v, n, e, l, k);
    }
    if (w[k] < 0) {
      w[k] = -w[k];
      for (int32_t j = 0; j < n; ++j) v[j * n + k] = -v[j * n + k];
    }
  }
  return 0;
}
