// Plain loops of linear prediction: what one would write first.
#include "linear_prediction_plain.h"

#include <cmath>
#include <vector>

void plainAutocorrelation(const float* x, int32_t length, float* r, int32_t lags) {
  for (int32_t k = 0; k < lags; ++k) {
    float sum = 0.0F;
    for (int32_t n = 0; n < length - k; ++n) sum += x[n] * x[n + k];
    r[k] = sum;
  }
}

int plainDurbin(const float* r, float* a, int32_t order, float* residual) {
  float old[128], e = r[0];
  for (int32_t m = 1; m <= order; ++m) {
    if (e <= 0.0F) return -1;
    float sum = r[m];
    for (int32_t i = 1; i < m; ++i) sum += a[i - 1] * r[m - i];
    const float k = sum / e;
    for (int32_t i = 0; i < m - 1; ++i) old[i] = a[i];
    for (int32_t i = 0; i < m - 1; ++i) a[i] = old[i] - k * old[m - 2 - i];
    a[m - 1] = -k;
    e *= 1.0F - k * k;
  }
  *residual = e;
  return 0;
}

int plainLinearPrediction_32f(const float* x, int32_t length, float* a, int32_t order) {
  float r[129], residual;
  plainAutocorrelation(x, length, r, order + 1);
  return plainDurbin(r, a, order, &residual);
}

int plainLinearPrediction_16s(const int16_t* x, int32_t length, int16_t* a, int32_t order, float scale) {
  std::vector<float> signal(x, x + length);
  float coefficients[128];
  const int bad = plainLinearPrediction_32f(signal.data(), length, coefficients, order);
  for (int32_t i = 0; i < order; ++i) {
    a[i] = static_cast<int16_t>(std::fmin(std::fmax(std::nearbyint(coefficients[i] * scale), -32768.0F), 32767.0F));
  }
  return bad;
}

void plainCovariancePrediction(const float* x, int32_t length, float* a, int32_t order) {
  float l[64][64], d[64], y[64];
  for (int32_t i = 0; i < order; ++i) {
    for (int32_t j = 0; j <= i; ++j) {
      double sum = 0.0;
      for (int32_t n = 0; n < length - 1 - i; ++n) sum += static_cast<double>(x[n] * x[n + i - j]);
      l[i][j] = static_cast<float>(sum);
    }
    y[i] = 0.0F;
    for (int32_t n = 0; n < length - 1 - i; ++n) y[i] += x[n] * x[n + i + 1];
  }
  for (int32_t i = 0; i < order; ++i) {
    for (int32_t j = 0; j < i; ++j) {
      for (int32_t k = 0; k < j; ++k) l[i][j] -= l[i][k] * d[k] * l[j][k];
      l[i][j] /= d[j];
    }
    d[i] = l[i][i];
    for (int32_t j = 0; j < i; ++j) {
      d[i] -= l[i][j] * l[i][j] * d[j];
      y[i] -= l[i][j] * y[j];
    }
  }
  for (int32_t i = order - 1; i >= 0; --i) {
    a[i] = y[i] / d[i];
    for (int32_t j = i + 1; j < order; ++j) a[i] -= l[j][i] * a[j];
  }
}

void plainSchur(const float* r, float* k, int32_t order, float* residual) {
  float g[129], h[129];
  for (int32_t i = 1; i <= order; ++i) {
    g[i] = r[i];
    h[i] = r[i - 1];
  }
  for (int32_t m = 1; m <= order; ++m) {
    k[m - 1] = -g[m] / h[m];
    for (int32_t i = order; i > m; --i) {
      g[i] += k[m - 1] * h[i];
      h[i] = k[m - 1] * g[i - 1] + h[i - 1];
    }
  }
  *residual = g[order] * k[order - 1] + h[order];
}
