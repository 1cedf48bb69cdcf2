#include "gaussian_operations_plain.h"

#include <cmath>

namespace {

constexpr double kLog2Pi = 1.8378770664093453;

struct Pooled {
  double mean, variance;
};

template <class T>
Pooled pool(T mean1, T variance1, T mean2, T variance2, double w1, double w2) {
  const auto m1 = static_cast<double>(mean1), v1 = static_cast<double>(variance1);
  const auto m2 = static_cast<double>(mean2), v2 = static_cast<double>(variance2);
  const double m = (w1 * m1 + w2 * m2) / (w1 + w2);
  return {m, ((m1 * m1 + v1) * w1 + (m2 * m2 + v2) * w2) / (w1 + w2) - m * m};
}

template <class T>
T dist(const T* mean1, const T* variance1, const T* mean2, const T* variance2, int32_t length, T weight1, T det1, T weight2,
       T det2) {
  const auto w1 = static_cast<double>(weight1), w2 = static_cast<double>(weight2);
  double logs = 0;
  for (int32_t i = 0; i < length; ++i) logs += std::log(pool(mean1[i], variance1[i], mean2[i], variance2[i], w1, w2).variance);
  return static_cast<T>(static_cast<double>(weight1 * det1 + weight2 * det2) - (w1 + w2) * (length * kLog2Pi - logs));
}

template <class T>
T merge(const T* mean1, const T* variance1, const T* mean2, const T* variance2, T* mean, T* variance, int32_t length, T weight1,
        T weight2) {
  double logs = 0;
  for (int32_t i = 0; i < length; ++i) {
    const Pooled p =
        pool(mean1[i], variance1[i], mean2[i], variance2[i], static_cast<double>(weight1), static_cast<double>(weight2));
    mean[i] = static_cast<T>(p.mean);
    variance[i] = static_cast<T>(p.variance);
    logs += std::log(p.variance);
  }
  return static_cast<T>(length * kLog2Pi - logs);
}

template <class T>
void split(T* mean, const T* variance, T* mean2, T* variance2, int32_t length, T factor) {
  for (int32_t i = 0; i < length; ++i) {
    const T e = std::sqrt(variance[i]) * factor;
    mean2[i] = mean[i] - e;
    mean[i] += e;
    variance2[i] = variance[i];
  }
}

}  // namespace

float plainGaussianDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2, int32_t length,
                            float weight1, float det1, float weight2, float det2) {
  return dist(mean1, variance1, mean2, variance2, length, weight1, det1, weight2, det2);
}
double plainGaussianDist_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                             int32_t length, double weight1, double det1, double weight2, double det2) {
  return dist(mean1, variance1, mean2, variance2, length, weight1, det1, weight2, det2);
}
float plainGaussianMerge_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2, float* mean,
                             float* variance, int32_t length, float weight1, float weight2) {
  return merge(mean1, variance1, mean2, variance2, mean, variance, length, weight1, weight2);
}
double plainGaussianMerge_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                              double* mean, double* variance, int32_t length, double weight1, double weight2) {
  return merge(mean1, variance1, mean2, variance2, mean, variance, length, weight1, weight2);
}
void plainGaussianSplit_32f(float* mean, const float* variance, float* mean2, float* variance2, int32_t length, float factor) {
  split(mean, variance, mean2, variance2, length, factor);
}
void plainGaussianSplit_64f(double* mean, const double* variance, double* mean2, double* variance2, int32_t length, double factor) {
  split(mean, variance, mean2, variance2, length, factor);
}
double plainBhatDist(const float* mean1, const float* variance1, const float* mean2, const float* variance2, int32_t length) {
  double total = 0;
  for (int32_t i = 0; i < length; ++i) {
    const double d = static_cast<double>(mean1[i] - mean2[i]), v1 = static_cast<double>(variance1[i]),
                 v2 = static_cast<double>(variance2[i]), s = v1 + v2;
    total += 0.25 * d * d / s + 0.5 * std::log(0.5 * s / std::sqrt(v1 * v2));
  }
  return total;
}
double plainBhatDistSLog(const float* mean1, const float* variance1, const float* mean2, const float* variance2, int32_t length,
                         float logs1, float logs2) {
  double total = 0;
  for (int32_t i = 0; i < length; ++i) {
    const double d = static_cast<double>(mean1[i] - mean2[i]), s = static_cast<double>(variance1[i] + variance2[i]);
    total += 0.25 * d * d / s + 0.5 * std::log(0.5 * s);
  }
  return total - 0.25 * static_cast<double>(logs1 + logs2);
}
