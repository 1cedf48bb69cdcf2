// Plain models of the means and variances of columns. One scalar loop each, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "model/column_sums.h"
#include "model/convert.h"
#include "model/table.h"

namespace model {

// 1/n rounded to float, by way of double or at once.
inline float reciprocalByDouble(int32_t n) { return static_cast<float>(1.0 / static_cast<double>(n)); }
inline float reciprocalByFloat(int32_t n) { return 1.0F / static_cast<float>(n); }

template <class T>
int32_t heightOf(const Table<T>& rows) {
  return static_cast<int32_t>(rows.size());
}

template <class T>
float columnMean(const Table<T>& rows, std::size_t c, float r) {
  return columnSum<float>(rows, c) * r;
}

// Starts at mean * mean * -n; the squares join row by row.
template <class T>
float columnVariance(const Table<T>& rows, std::size_t c, float mean, float q) {
  float sum = mean * mean * -static_cast<float>(heightOf(rows));
  for (const std::vector<T>& row : rows) {
    const float x = static_cast<float>(row[c]);
    sum = sum + x * x;
  }
  return sum * q;
}

struct MeanVar {
  float mean, variance;
};

// Sum and sum of squares in the same pass (the squares in pairs of rows, like the sum), then mean, then variance.
template <class T>
MeanVar columnMeanVar(const Table<T>& rows, std::size_t c, float r, float q) {
  Table<float> squares;
  for (const std::vector<T>& row : rows) squares.push_back({static_cast<float>(row[c]) * static_cast<float>(row[c])});
  const float mean = columnMean(rows, c, r);
  return {mean, (columnSum<float>(squares, 0) + mean * mean * -static_cast<float>(heightOf(rows))) * q};
}

// ---- 16-bit rows of which one is not aligned: 64-bit sums, truncation ----

inline int64_t exactColumnSum(const Table<int16_t>& rows, std::size_t c) {
  int64_t sum = 0;
  for (const auto& row : rows) sum += row[c];
  return sum;
}

inline int16_t exactColumnMean(const Table<int16_t>& rows, std::size_t c) {
  return static_cast<int16_t>(static_cast<float>(exactColumnSum(rows, c)) * reciprocalByFloat(heightOf(rows)));
}

// Truncated to 64 bits, shifted (right arithmetically, left losing bits), limited to 16 bits.
inline int16_t shiftedVariance(float variance, int32_t sf) {
  auto whole = static_cast<int64_t>(variance);
  for (int32_t i = 0; i < sf && i < 64; ++i) whole = whole < 0 ? -((-whole + 1) / 2) : whole / 2;
  for (int64_t i = 0; i < -static_cast<int64_t>(sf) && i < 64; ++i) whole = static_cast<int64_t>(static_cast<uint64_t>(whole) * 2);
  return static_cast<int16_t>(std::fmin(std::fmax(static_cast<double>(whole), -32768.0), 32767.0));
}

inline int16_t exactColumnVariance(const Table<int16_t>& rows, std::size_t c, int16_t mean, int32_t sf) {
  const int64_t n = heightOf(rows);
  int64_t sum = -n * mean * mean;
  for (const auto& row : rows) sum += int64_t{row[c]} * row[c];
  return shiftedVariance(static_cast<float>(sum) * reciprocalByDouble(heightOf(rows) - 1), sf);
}

struct MeanVar16 {
  int16_t mean, variance;
};

inline MeanVar16 exactColumnMeanVar(const Table<int16_t>& rows, std::size_t c, int32_t sf) {
  const int32_t n = heightOf(rows);
  float squares = 0;
  for (const auto& row : rows) squares = squares + static_cast<float>(row[c]) * static_cast<float>(row[c]);
  const float mean = static_cast<float>(exactColumnSum(rows, c)) * reciprocalByFloat(n);
  const float limited = mean < -32768.0F ? -32768.0F : mean > 32767.0F ? 32767.0F : mean;
  const float variance = (squares - mean * mean * static_cast<float>(n)) * reciprocalByDouble(n - 1);
  return {static_cast<int16_t>(limited), shiftedVariance(variance, sf)};
}

// ---- 16-bit rows with 32-bit results: double sums ----

struct MeanVar32 {
  int32_t mean, variance;
};

inline MeanVar32 doubleColumnMeanVar(const Table<int16_t>& rows, std::size_t c, double v) {
  const double n = heightOf(rows);
  double sum = 0, squares = 0;
  for (const auto& row : rows) {
    sum += row[c];
    squares += static_cast<double>(row[c]) * row[c];
  }
  const double mean = std::fmin(std::fmax(sum * (1.0 / n), -2147483648.0), 2147483647.0);
  return {limitAndRound32(mean), limitAndRound32((squares - mean * mean * n) * v)};
}

}  // namespace model
