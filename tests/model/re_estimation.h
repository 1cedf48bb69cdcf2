// Plain models of model re-estimation. One scalar loop each, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "model/convert.h"
#include "model/table.h"

namespace model {

inline void updateMean(const std::vector<float>& source, std::vector<float>& destination, float occupancy) {
  const float r = 1.0F / occupancy;
  for (std::size_t i = 0; i < source.size(); ++i) destination[i] = destination[i] + source[i] * r;
}
inline void updateMean(const std::vector<double>& source, std::vector<double>& destination, double occupancy) {
  for (std::size_t i = 0; i < source.size(); ++i) destination[i] = destination[i] + source[i] / occupancy;
}

inline float variance(float first, float second, float occupancy1, float occupancy2) {
  const float r2 = 1.0F / occupancy2, r1 = 1.0F / occupancy1;
  const float m = first * r1;
  return second * r2 - m * m;
}
inline double variance(double first, double second, double occupancy1, double occupancy2) {
  const double m = first / occupancy1;
  return second / occupancy2 - m * m;
}

// What an update leaves: the elements, and how many of them are at the floor.
template <class T>
struct Floored {
  std::vector<T> values;
  std::size_t floored = 0;
  T sum = 0;  // of UpdateWeight

  void add(T value, T floor) {
    if (!(floor < value)) ++floored;
    values.push_back(floor < value ? value : floor);
  }
  bool all() const { return floored == values.size(); }
};

template <class T>
Floored<T> updateVar(const std::vector<T>& first, const std::vector<T>& second, const std::vector<T>& floors, T occupancy1,
                     T occupancy2) {
  Floored<T> result;
  for (std::size_t i = 0; i < first.size(); ++i) result.add(variance(first[i], second[i], occupancy1, occupancy2), floors[i]);
  return result;
}

inline float laneSum(const std::vector<float>& w) {
  float lane[4] = {0, 0, 0, 0};
  std::size_t i = 0;
  for (; i + 4 <= w.size(); i += 4) {
    for (std::size_t j = 0; j < 4; ++j) lane[j] += w[i + j];
  }
  for (; i < w.size(); ++i) lane[0] += w[i];
  return (lane[0] + lane[2]) + (lane[1] + lane[3]);
}
inline double laneSum(const std::vector<double>& w) {
  double even = 0, odd = 0;
  std::size_t i = 0;
  for (; i + 2 <= w.size(); i += 2) {
    even += w[i];
    odd += w[i + 1];
  }
  if (i < w.size()) even += w[i];
  return even + odd;
}

template <class T>
Floored<T> updateWeight(const std::vector<T>& counts, T total, T floor) {
  Floored<T> result;
  const T r = T(1) / total;
  for (const T count : counts) result.add(count * r, floor);
  result.sum = laneSum(result.values);
  return result;
}

inline float newVar(float mean, float square, float a, float b) {
  const float rounded = mean * mean;
  return static_cast<float>((static_cast<double>(square) - static_cast<double>(rounded) * static_cast<double>(a)) *
                            static_cast<double>(b));
}
inline float newVarInFloat(float mean, float square, float a, float b) { return (square - mean * mean * a) * b; }

inline int32_t newVarRounded(int32_t mean, int32_t square, float a, float b, int32_t sf) {
  return convertScaled<int32_t>(newVarInFloat(static_cast<float>(mean), static_cast<float>(square), a, b), 1, sf);
}
inline int32_t newVarTruncated(int32_t mean, int32_t square, float a, float b, int32_t sf) {
  const float x = newVarInFloat(static_cast<float>(mean), static_cast<float>(square), a, b) * scaleMultiplier(sf);
  const bool fits = x > -2147483648.0F && x < 2147483648.0F;
  return fits ? static_cast<int32_t>(std::trunc(x)) : INT32_MIN;
}

template <class T>
void meanVarAcc(const std::vector<T>& source, const std::vector<T>& mean, std::vector<T>& accumulatedMean,
                std::vector<T>& accumulatedVariance, T weight) {
  for (std::size_t i = 0; i < source.size(); ++i) {
    const T d = source[i] - mean[i], e = d * weight;
    accumulatedMean[i] += e;
    accumulatedVariance[i] += d * e;
  }
}

inline double difference(int16_t x, int16_t mean) { return static_cast<double>(int32_t{x} - int32_t{mean}); }
inline double difference(float x, float mean) {
  const float d = x - mean;
  return static_cast<double>(d);
}

// Row after row, then the factor and the mirrored half.
template <class T>
void accCovariance(const Table<T>& rows, const std::vector<T>& mean, Table<double>& s, double factor) {
  const std::size_t width = mean.size();
  for (const auto& row : rows) {
    std::vector<double> d;
    for (std::size_t i = 0; i < width; ++i) d.push_back(difference(row[i], mean[i]));
    for (std::size_t i = 0; i < width; ++i) {
      for (std::size_t j = 0; j <= i; ++j) s[i][j] += d[i] * d[j];
    }
  }
  for (std::size_t i = 0; i < width; ++i) {
    for (std::size_t j = i; j < width; ++j) s[i][j] = s[j][i] = s[j][i] * factor;
  }
}

}  // namespace model
