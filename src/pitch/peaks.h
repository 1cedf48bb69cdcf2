// Peaks of a contour: local maxima with a least rise in front and a least fall behind, over a contour that may be smoothed first.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/checks.h"
#include "frame/column_blocks.h"
#include "frame/memory.h"
#include "qorsr.h"

namespace qorsr {

inline float windowMean(double sum, int32_t size, float) { return static_cast<float>(sum / static_cast<double>(size)); }
inline int32_t windowMean(double sum, int32_t size, int32_t) { return static_cast<int32_t>(static_cast<int64_t>(sum) / size); }

// y[i] = mean of source[i - half] to source[i + half], cut at the ends, 2 half < length or not. Sums run in double, in order; those
// of integers are exact there.
template <class T>
inline void smooth(const T* source, int32_t length, int32_t half, T* y) {
  const auto cut = [=](int32_t i) {
    const int32_t first = std::max(i - half, 0), last = std::min(i + half, length - 1);
    double sum = 0.0;
    for (int32_t k = first; k <= last; ++k) sum += static_cast<double>(source[k]);
    y[i] = windowMean(sum, last - first + 1, T());
  };
  const int32_t whole = length - 2 * half;  // windows that are not cut
  for (int32_t i = 0; i < std::min(half, length); ++i) cut(i);
  coverColumns<double>(whole, [=](int32_t i, auto n) {
    Lanes<double, n> sum(0.0);
    for (int32_t k = 0; k <= 2 * half; ++k) sum += loadAs<double, n>(source + i + k);
    double all[n];
    sum.store(all);
    for (int32_t k = 0; k < n; ++k) y[i + half + k] = windowMean(all[k], 2 * half + 1, T());
  });
  for (int32_t i = std::max(length - half, half); i < length; ++i) cut(i);
}

// Where the contour first does not fall, or its end.
template <class T>
inline int32_t endOfDescent(const T* y, uint8_t* flags, int32_t length) {
  int32_t i = 1;
  for (flags[0] = 0; i < length && y[i] < y[i - 1]; ++i) flags[i] = 0;
  return i;
}

// Near both ends the rise and the fall that are asked for shrink to what is left of the contour.
template <class T>
inline void markPeaks(const T* y, const T* source, uint8_t* flags, int32_t length, int32_t search) {
  const int32_t last = length - 1;
  int32_t i = endOfDescent(y, flags, length);
  if (i == length || i - 1 >= search) flags[0] = 1;
  if (i == length) return;
  if (i == last) {  // required: the source itself decides, also where it is smoothed
    flags[last] = search == 1 && source[last] > source[last - 1];
    return;
  }
  while (i < length) {
    int32_t up = y[i] != y[i - 1];
    for (; i < last; ++i, ++up) {
      flags[i] = 0;
      if (y[i] >= y[i + 1]) break;
    }
    if (i == last) {
      flags[i] = up >= std::min(i, search);
      return;
    }
    if (y[i] == y[i + 1]) {  // a plateau is no peak
      ++i;
      continue;
    }
    const int32_t peak = i++;
    int32_t down = 1;
    for (; i < last; ++i, ++down) {
      flags[i] = 0;
      if (y[i + 1] >= y[i]) break;
    }
    flags[peak] = up >= std::min(peak, search) && down >= std::min(last - peak, search);
    ++i;
  }
  flags[i - 1] = 0;
}

template <class T>
inline QorStatus findPeaks(const T* source, uint8_t* flags, int32_t length, int32_t search, int32_t half) {
  if (QorStatus bad = Checks()
                          .null(source, flags)
                          .require(length >= 1 && length <= 65535, qorStatusBadLength)
                          .require(search >= 1 && search <= 127 && half >= 0 && half <= 127, qorStatusBadSize)) {
    return bad;
  }
  if (length == 1) {
    flags[0] = 1;
  } else if (half >= length - 1) {
    std::memset(flags, 0, static_cast<std::size_t>(length));
  } else if (half == 0) {
    markPeaks(source, source, flags, length, search);
  } else {
    const Scratch<T> y(length);
    if (!y) return qorStatusNoMemory;
    smooth(source, length, half, y.get());
    markPeaks(y.get(), source, flags, length, search);
  }
  return qorStatusOk;
}

}  // namespace qorsr
