#include "re_estimation_plain.h"

#include <cmath>
#include <vector>

namespace {

template <class T>
int32_t updateVar(const T* first, const T* second, const T* floors, T* destination, int32_t length, T occupancy1, T occupancy2) {
  int32_t floored = 0;
  for (int32_t i = 0; i < length; ++i) {
    const T m = first[i] / occupancy1, v = second[i] / occupancy2 - m * m;
    if (floors[i] < v) {
      destination[i] = v;
    } else {
      destination[i] = floors[i];
      ++floored;
    }
  }
  return floored;
}

template <class T>
int32_t updateWeight(const T* counts, T* destination, int32_t length, T* sum, T total, T floor) {
  int32_t floored = 0;
  T all = 0;
  for (int32_t i = 0; i < length; ++i) {
    T w = counts[i] / total;
    if (!(floor < w)) {
      w = floor;
      ++floored;
    }
    destination[i] = w;
    all += w;
  }
  *sum = all;
  return floored;
}

template <class T>
void meanVarAcc(const T* source, const T* mean, T* sums, T* squares, int32_t length, T weight) {
  for (int32_t i = 0; i < length; ++i) {
    const T d = source[i] - mean[i], e = d * weight;
    sums[i] += e;
    squares[i] += d * e;
  }
}

template <class T>
void accCovariance(const T* source, int32_t stride, int32_t height, const T* mean, double* result, int32_t width,
                   int32_t resultStride, double factor) {
  std::vector<double> d(static_cast<std::size_t>(width));
  for (int32_t r = 0; r < height; ++r) {
    for (int32_t i = 0; i < width; ++i) {
      d[static_cast<std::size_t>(i)] = static_cast<double>(source[int64_t{r} * stride + i] - mean[i]);
    }
    for (int32_t i = 0; i < width; ++i) {
      for (int32_t j = 0; j <= i; ++j) {
        result[int64_t{i} * resultStride + j] += d[static_cast<std::size_t>(i)] * d[static_cast<std::size_t>(j)];
      }
    }
  }
  for (int32_t i = 0; i < width; ++i) {
    for (int32_t j = i; j < width; ++j) {
      const double v = result[int64_t{j} * resultStride + i] * factor;
      result[int64_t{j} * resultStride + i] = v;
      result[int64_t{i} * resultStride + j] = v;
    }
  }
}

template <class T>
void accumulate(const T* mean, const T* variance, T* sum, T* squares, int32_t length, T occupancy) {
  for (int32_t i = 0; i < length; ++i) {
    sum[i] = mean[i] * occupancy;
    squares[i] = (1 / variance[i] + mean[i] * mean[i]) * occupancy;
  }
}

template <class T>
void accumulateDirect(const T* mean, const T* variance, T* sum, T* squares, int32_t length, T occupancy) {
  for (int32_t i = 0; i < length; ++i) {
    sum[i] = mean[i] * occupancy;
    squares[i] = (mean[i] * mean[i] + variance[i]) * occupancy;
  }
}

template <class T>
double likelihood(const T* sum, const T* squares, int32_t length, double n) {
  double logs = 0;
  for (int32_t i = 0; i < length; ++i) {
    const double x = static_cast<double>(sum[i]);
    logs += std::log(static_cast<double>(squares[i]) * n - x * x);
  }
  return n * 0.5 * (length * (2 * std::log(n) - 2.8378770664093453) - logs);
}

}  // namespace

void plainUpdateMean_32f(const float* source, float* destination, int32_t length, float occupancy) {
  const float r = 1 / occupancy;
  for (int32_t i = 0; i < length; ++i) destination[i] += source[i] * r;
}
void plainUpdateMean_64f(const double* source, double* destination, int32_t length, double occupancy) {
  for (int32_t i = 0; i < length; ++i) destination[i] += source[i] / occupancy;
}
int32_t plainUpdateVar_32f(const float* first, const float* second, const float* floors, float* destination, int32_t length,
                           float occupancy1, float occupancy2) {
  return updateVar(first, second, floors, destination, length, occupancy1, occupancy2);
}
int32_t plainUpdateVar_64f(const double* first, const double* second, const double* floors, double* destination, int32_t length,
                           double occupancy1, double occupancy2) {
  return updateVar(first, second, floors, destination, length, occupancy1, occupancy2);
}
int32_t plainUpdateWeight_32f(const float* counts, float* destination, int32_t length, float* sum, float total, float floor) {
  return updateWeight(counts, destination, length, sum, total, floor);
}
int32_t plainUpdateWeight_64f(const double* counts, double* destination, int32_t length, double* sum, double total, double floor) {
  return updateWeight(counts, destination, length, sum, total, floor);
}
void plainNewVar_32f_I(const float* means, float* squares, int32_t length, float a, float b) {
  for (int32_t i = 0; i < length; ++i) squares[i] = (squares[i] - means[i] * means[i] * a) * b;
}
void plainNewVar_32s(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a, float b,
                     float scale) {
  for (int32_t i = 0; i < length; ++i) {
    const auto mean = static_cast<float>(means[i]);
    const float x = (static_cast<float>(squares[i]) - mean * mean * a) * b * scale;
    destination[i] = static_cast<int32_t>(x < -2147483648.0F ? -2147483648.0F : x > 2147483520.0F ? 2147483520.0F : x);
  }
}
void plainNewVar_32f(const float* means, const float* squares, float* destination, int32_t length, float a, float b) {
  for (int32_t i = 0; i < length; ++i) {
    const float square = means[i] * means[i];
    destination[i] = static_cast<float>((static_cast<double>(squares[i]) - static_cast<double>(square) * static_cast<double>(a)) *
                                        static_cast<double>(b));
  }
}
void plainMeanVarAcc_32f(const float* source, const float* mean, float* sums, float* squares, int32_t length, float weight) {
  meanVarAcc(source, mean, sums, squares, length, weight);
}
void plainMeanVarAcc_64f(const double* source, const double* mean, double* sums, double* squares, int32_t length, double weight) {
  meanVarAcc(source, mean, sums, squares, length, weight);
}
void plainAccCovariance_16s64f(const int16_t* source, int32_t stride, int32_t height, const int16_t* mean, double* result,
                               int32_t width, int32_t resultStride, double factor) {
  accCovariance(source, stride, height, mean, result, width, resultStride, factor);
}
void plainAccCovariance_32f64f(const float* source, int32_t stride, int32_t height, const float* mean, double* result,
                               int32_t width, int32_t resultStride, double factor) {
  accCovariance(source, stride, height, mean, result, width, resultStride, factor);
}
void plainDcsClustLAccumulate_32f(const float* mean, const float* variance, float* sum, float* squares, int32_t length,
                                  float occupancy) {
  accumulate(mean, variance, sum, squares, length, occupancy);
}
void plainDcsClustLAccumulate_64f(const double* mean, const double* variance, double* sum, double* squares, int32_t length,
                                  double occupancy) {
  accumulate(mean, variance, sum, squares, length, occupancy);
}
void plainDcsClustLAccumulate_DirectVar_32f(const float* mean, const float* variance, float* sum, float* squares, int32_t length,
                                            float occupancy) {
  accumulateDirect(mean, variance, sum, squares, length, occupancy);
}
void plainDcsClustLAccumulate_DirectVar_64f(const double* mean, const double* variance, double* sum, double* squares,
                                            int32_t length, double occupancy) {
  accumulateDirect(mean, variance, sum, squares, length, occupancy);
}
double plainDcsClustLCompute_32f64f(const float* sum, const float* squares, int32_t length, float occupancy) {
  return likelihood(sum, squares, length, static_cast<double>(occupancy));
}
double plainDcsClustLCompute_64f(const double* sum, const double* squares, int32_t length, double occupancy) {
  return likelihood(sum, squares, length, occupancy);
}
