// A model made ready for scoring.
//
//   gconst of n inverse variances v:  n log(2 pi) - sum log v;    of n variances:  n log(2 pi) + sum log v
//   constant of a Gaussian:           weight - gconst / 2
//   language model score:             max(x, floor) * scale + offset
//
// Element by element but for the sum of logarithms, whose grouping stands in its own header. The integer half of a gconst is
// rounded by position: down in groups of four, half up in the tail (required).
#pragma once

#include <cstdint>
#include <limits>

#include "frame/bits.h"
#include "frame/checks.h"
#include "frame/memory.h"
#include "frame/rows.h"
#include "frame/sum_of_logs.h"
#include "scoring/block_matrix.h"

namespace qorsr {

// ---- Normalisation ----

// What the variances are: log |Sigma| is the sum of their logarithms, or minus that of their inverses.
enum class VarianceForm { kInverse, kDirect };

// Both terms are rounded to T, then joined.
template <VarianceForm Form, class T>
QorStatus updateGConst(const T* variances, int32_t length, T* result) {
  if (QorStatus bad = Checks().null(variances, result).size(length)) return bad;
  SumOfLogs logs;
  logs.add(variances, length);
  if (logs.status() == qorStatusLogZero) {
    *result = std::numeric_limits<T>::infinity();
  } else if (logs.status() == qorStatusLogNegative) {
    *result = kLogOfNegative<T>;
  } else {
    const T constant = static_cast<T>(length * kLogTwoPi), sum = static_cast<T>(logs.value());
    *result = Form == VarianceForm::kInverse ? constant - sum : constant + sum;
  }
  return logs.status();
}

// ---- Constants of Gaussians ----

// T(0.5) is exact, and so is the product but for a denormal gconst.
template <class T>
QorStatus outProbPreCalc(const T* weights, const T* gconsts, T* result, int32_t length) {
  if (QorStatus bad = Checks().null(weights, gconsts, result).size(length)) return bad;
  for (int32_t i = 0; i < length; ++i) result[i] = weights[i] - gconsts[i] * T(0.5);
  return qorStatusOk;
}

// Whole groups of four, and with aligned pointers a pair behind them, halve with an arithmetic shift; what is left rounds half up.
inline QorStatus outProbPreCalc(const int32_t* weights, const int32_t* gconsts, int32_t* result, int32_t length) {
  if (QorStatus bad = Checks().null(weights, gconsts, result).size(length)) return bad;
  const bool aligned = isAligned16(weights) && isAligned16(gconsts) && isAligned16(result);
  const int32_t down = length - length % (aligned ? 2 : 4);
  for (int32_t i = 0; i < down; ++i) result[i] = wrapSub(weights[i], gconsts[i] >> 1);
  for (int32_t i = down; i < length; ++i) result[i] = wrapSub(weights[i], wrapAdd(gconsts[i], 1) >> 1);
  return qorStatusOk;
}

// ---- Block-diagonal records ----

template <class Record, class T>
QorStatus blockMatrixInitAlloc(Record** record, const T* const* rows, const int32_t* blockSizes, int32_t blockCount) {
  const auto everyBlockHasRows = [&] {
    bool all = true;
    for (int32_t b = 0; b < blockCount; ++b) all &= blockSizes[b] >= 1;
    return all;
  };
  if (QorStatus bad = Checks().null(record, rows, blockSizes).size(blockCount).require(everyBlockHasRows, qorStatusBadSize)) {
    return bad;
  }
  const BlockMatrixLayout<T> layout(blockSizes, blockCount);
  uint8_t* const base = allocateElements<uint8_t>(layout.total);
  if (base == nullptr) return qorStatusNoMemory;
  *record = static_cast<Record*>(placeBlockMatrix(base, layout, rows, blockSizes, blockCount));
  return qorStatusOk;
}

template <class T>
QorStatus blockMatrixFree(BlockMatrix<T>* record) {
  if (QorStatus bad = Checks().null(record)) return bad;
  release(record->base);
  return qorStatusOk;
}

// ---- Scores of a language model ----

// A score that is not above the floor gives the floor, and so does a NaN.
inline QorStatus scaleLM(const float* source, float* result, int32_t length, float floor, float scale, float offset) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  for (int32_t i = 0; i < length; ++i) result[i] = (source[i] > floor ? source[i] : floor) * scale + offset;
  return qorStatusOk;
}

// The product of two 16-bit numbers is exact; the offset is added with wrap.
inline QorStatus scaleLM(const int16_t* source, int32_t* result, int32_t length, int16_t floor, int16_t scale, int32_t offset) {
  if (QorStatus bad = Checks().null(source, result).size(length)) return bad;
  for (int32_t i = 0; i < length; ++i) {
    const int32_t kept = source[i] > floor ? source[i] : floor;
    result[i] = wrapAdd(kept * scale, offset);
  }
  return qorStatusOk;
}

}  // namespace qorsr
