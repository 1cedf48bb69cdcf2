// Plain model of the cosine transform with lifter: matrix and weights by their formulas, sums in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "model/convert.h"

namespace model {

constexpr double kPi = 3.14159265358979323846;

// Row i: cos(pi i (j + 1/2) / N), j + 1/2 formed in float.
inline std::vector<float> cosineRow(int32_t i, int32_t n) {
  std::vector<float> row;
  for (int32_t j = 0; j < n; ++j) {
    const float middle = static_cast<float>(j + 1) - 0.5F;
    row.push_back(static_cast<float>(std::cos(kPi * i * static_cast<double>(middle) / n)));
  }
  return row;
}

// Weights of orders 0 to M.
inline std::vector<float> sineLifter(int32_t m, int32_t length, float scale) {
  std::vector<float> lifter;
  for (int32_t i = 0; i <= m; ++i) {
    const double half = static_cast<double>(static_cast<float>(length) * 0.5F);
    const float weight = static_cast<float>(1.0 + half * std::sin(kPi * i / length));
    lifter.push_back(weight * scale);
  }
  return lifter;
}

template <class T>
std::vector<float> givenLifter(const std::vector<T>& weights) {
  std::vector<float> lifter = {0.0F};
  for (const T w : weights) lifter.push_back(static_cast<float>(w));
  return lifter;
}

// Eight lanes for the blocks of eight inputs, each starting with its first product; the rest in lane 0.
inline float laneSum(const std::vector<float>& x, const std::vector<float>& row) {
  float lane[8] = {};
  const std::size_t n = x.size(), blocks = n / 8 * 8;
  for (std::size_t j = 0; j < n; ++j) {
    const std::size_t l = j < blocks ? j % 8 : 0;
    lane[l] = j < 8 && j < blocks ? x[j] * row[j] : lane[l] + x[j] * row[j];
  }
  return ((lane[0] + lane[4]) + (lane[2] + lane[6])) + ((lane[1] + lane[5]) + (lane[3] + lane[7]));
}

// The coefficients of orders 1 to M, and that of order 0 behind them if there is one.
template <class T>
std::vector<float> dctLifter(const std::vector<T>& source, const std::vector<float>& lifter, bool hasC0) {
  std::vector<float> x, result;
  for (const T value : source) x.push_back(static_cast<float>(value));
  const auto n = static_cast<int32_t>(x.size());
  for (std::size_t i = 1; i < lifter.size(); ++i) {
    result.push_back(lifter[i] * laneSum(x, cosineRow(static_cast<int32_t>(i), n)));
  }
  if (hasC0) {
    float sum = 0;
    for (const float value : x) sum = sum + value;
    result.push_back(lifter[0] * sum);
  }
  return result;
}

template <class T>
std::vector<int16_t> dctLifterScaled(const std::vector<T>& source, const std::vector<float>& lifter, bool hasC0, int32_t sf) {
  std::vector<int16_t> result;
  for (const float value : dctLifter(source, lifter, hasC0)) result.push_back(convertScaled<int16_t>(value, 1, sf));
  return result;
}

}  // namespace model
