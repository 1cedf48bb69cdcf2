// Pooling, likelihood loss of a merge, and splitting of diagonal Gaussians (variances given directly).
//
//   pooled  m = (wx mx + wy my) / W,   v = ((mx^2 + vx) wx + (my^2 + vy) wy) / W - m^2   in double; W = wx + wy in the element type
//   Dist    wx det1 + wy det2 - W (n log 2pi - sum of log v)
//   Merge   m, v and n log 2pi - sum of log v
//   Split   e = sqrt(v) factor;  (m, v) becomes (m + e, v) and (m - e, v)
//
// The logarithms of the distance of short vectors are taken one by one, in ascending order, others by SumOfLogs. A pooled variance
// of zero or below ends the sum with a marker: plus infinity, or a NaN.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

#include "frame/checks.h"
#include "frame/chunks.h"
#include "frame/column_blocks.h"
#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/rows.h"
#include "frame/sum_of_logs.h"

namespace qorsr {

// What a sum of logarithms comes to when it met an element without one: status and marker.
template <class T>
struct LogMarker {
  QorStatus status;
  T value() const { return status == qorStatusLogZero ? std::numeric_limits<T>::infinity() : kLogOfNegative<T>; }
};

template <class T>
struct GaussianPair {
  const T *mean1, *variance1, *mean2, *variance2;
};

// The two Gaussians as one, a block of elements at a time.
template <class T>
class Pooling {
 public:
  Pooling(const GaussianPair<T>& pair, T weight1, T weight2)
      : pair_(pair),
        weight1_(static_cast<double>(weight1)),
        weight2_(static_cast<double>(weight2)),
        total_(static_cast<double>(weight1 + weight2)) {}  // added in the element type

  double total() const { return total_; }

  template <int N>
  void at(int64_t i, Lanes<double, N>& mean, Lanes<double, N>& variance) const {
    using L = Lanes<double, N>;
    const L wx(weight1_), wy(weight2_), w(total_);
    const L mx = loadAs<double, N>(pair_.mean1 + i), my = loadAs<double, N>(pair_.mean2 + i);
    mean = (wx * mx + wy * my) / w;
    variance =
        ((mx * mx + loadAs<double, N>(pair_.variance1 + i)) * wx + (my * my + loadAs<double, N>(pair_.variance2 + i)) * wy) / w -
        mean * mean;
  }

  // Calls use(first, count, means, variances) for chunks in ascending order, until it returns false.
  template <class Use>
  void forEachChunk(int32_t length, Use use) const {
    double means[kChunk], variances[kChunk];
    for (const Chunk chunk : chunksOf(length, kChunk)) {
      coverColumns<double>(chunk.count, [&](int32_t i, auto n) {
        Lanes<double, n> mean, variance;
        at<n>(int64_t{chunk.first} + i, mean, variance);
        mean.store(means + i);
        variance.store(variances + i);
      });
      if (!use(chunk.first, chunk.count, means, variances)) return;
    }
  }

 private:
  static constexpr int32_t kChunk = SumOfLogs::kRun;

  GaussianPair<T> pair_;
  double weight1_, weight2_, total_;
};

// The status of one variance; for one above zero, or a NaN, its logarithm leaves `sum`.
inline QorStatus subtractLog(double variance, double& sum) {
  if (variance == 0.0) return qorStatusLogZero;
  if (variance < 0.0) return qorStatusLogNegative;
  sum -= log(variance);
  return qorStatusOk;
}

// Minus the sum of the logarithms of the pooled variances, and the status of the first variance that has none.
template <class T>
QorStatus minusLogs(const Pooling<T>& pooling, int32_t length, bool oneByOne, double& result) {
  SumOfLogs logs;
  double sum = 0.0;
  QorStatus status = qorStatusOk;
  pooling.forEachChunk(length, [&](int32_t, int32_t count, const double*, const double* variances) {
    if (!oneByOne) {
      logs.add(variances, count);
      return (status = logs.status()) == qorStatusOk;
    }
    for (int32_t i = 0; i < count && status == qorStatusOk; ++i) status = subtractLog(variances[i], sum);
    return status == qorStatusOk;
  });
  result = oneByOne ? sum : -logs.value();
  return status;
}

template <class T>
QorStatus gaussianDist(const GaussianPair<T>& pair, int32_t length, T* result, T weight1, T det1, T weight2, T det2) {
  if (QorStatus bad = Checks().size(length).null(pair.mean1, pair.variance1, pair.mean2, pair.variance2, result)) return bad;
  constexpr int32_t kShort = sizeof(T) == 4 ? 13 : 11;  // below: logarithms one by one
  const Pooling<T> pooling(pair, weight1, weight2);
  double logs;
  if (QorStatus warning = minusLogs(pooling, length, length < kShort, logs)) {
    *result = LogMarker<T>{warning}.value();
    return warning;
  }
  const auto separate = static_cast<double>(weight1 * det1 + weight2 * det2);  // in the element type, then widened
  *result = static_cast<T>(separate - pooling.total() * (length * kLogTwoPi + logs));
  return qorStatusOk;
}

// required: float stops at the first variance that has no logarithm, and what stands behind it is not written.
inline QorStatus mergeElements(const Pooling<float>& pooling, int32_t length, float* mean, float* variance, double& logs) {
  QorStatus status = qorStatusOk;
  SumOfLogs sum;
  pooling.forEachChunk(length, [&](int32_t first, int32_t count, const double* means, const double* variances) {
    status = addPastNan(sum, variances, count);
    int32_t end = status == qorStatusOk ? count : 0;
    while (end < count && !(variances[end++] <= 0.0)) {
    }
    coverColumns<float>(end, [=](int32_t i, auto n) {
      as<float>(Lanes<double, n>::load(means + i)).store(mean + first + i);
      as<float>(Lanes<double, n>::load(variances + i)).store(variance + first + i);
    });
    return status == qorStatusOk;
  });
  logs = -sum.value();
  return status;
}

// Double writes every element, whatever the logarithms come to.
inline QorStatus mergeElements(const Pooling<double>& pooling, int32_t length, double* mean, double* variance, double& logs) {
  SumOfLogs sum;
  pooling.forEachChunk(length, [&](int32_t first, int32_t count, const double* means, const double* variances) {
    std::memcpy(mean + first, means, static_cast<std::size_t>(count) * sizeof(double));
    std::memcpy(variance + first, variances, static_cast<std::size_t>(count) * sizeof(double));
    sum.add(variances, count);
    return true;
  });
  logs = -sum.value();
  return sum.status();
}

template <class T>
QorStatus gaussianMerge(const GaussianPair<T>& pair, T* mean, T* variance, int32_t length, T* det, T weight1, T weight2) {
  if (QorStatus bad = Checks().size(length).null(pair.mean1, pair.variance1, pair.mean2, pair.variance2, mean, variance, det))
    return bad;
  double logs;
  if (QorStatus warning = mergeElements(Pooling<T>(pair, weight1, weight2), length, mean, variance, logs)) {
    *det = LogMarker<T>{warning}.value();
    return warning;
  }
  *det = static_cast<T>(length * kLogTwoPi + logs);
  return qorStatusOk;
}

// ---- Splitting ----

// The perturbations of a block of elements.
template <int N>
inline Lanes<float, N> perturbationInDouble(const Lanes<float, N>& variance, float factor) {
  return as<float>(sqrt(as<double>(variance)) * Lanes<double, N>(static_cast<double>(factor)));
}
template <class T, int N>
inline Lanes<T, N> perturbation(const Lanes<T, N>& variance, T factor) {
  return sqrt(variance) * Lanes<T, N>(factor);
}

template <class T, class Perturbation>
void splitElements(T* mean, const T* variance, T* mean2, T* variance2, int32_t length, Perturbation of) {
  coverColumnsOnce<T, kOneRegister<T>>(length, [=](int32_t i, auto n) {
    using L = Lanes<T, n>;
    const L v = L::load(variance + i), m = L::load(mean + i), e = of(v);
    (m - e).store(mean2 + i);
    (m + e).store(mean + i);
    v.store(variance2 + i);
  });
}

// required: root and product in float where all four vectors are on 16-byte boundaries, in double elsewhere.
inline QorStatus gaussianSplit(float* mean, const float* variance, float* mean2, float* variance2, int32_t length, float factor) {
  if (QorStatus bad = Checks().size(length).null(mean, variance, mean2, variance2)) return bad;
  const bool aligned = isAligned16(mean) && isAligned16(variance) && isAligned16(mean2) && isAligned16(variance2);
  if (aligned) {
    splitElements(mean, variance, mean2, variance2, length, [factor](const auto& v) { return perturbation(v, factor); });
  } else {
    splitElements(mean, variance, mean2, variance2, length, [factor](const auto& v) { return perturbationInDouble(v, factor); });
  }
  return qorStatusOk;
}
inline QorStatus gaussianSplit(double* mean, const double* variance, double* mean2, double* variance2, int32_t length,
                               double factor) {
  if (QorStatus bad = Checks().null(mean, variance, mean2, variance2).size(length)) return bad;
  splitElements(mean, variance, mean2, variance2, length, [factor](const auto& v) { return perturbation(v, factor); });
  return qorStatusOk;
}

}  // namespace qorsr
