// Sum of the natural logarithms of positive numbers, without a logarithm for each of them.
//
//   sum of log x[i]  =  log(product of mantissas)  +  log 2 * (sum of exponents)
//
// where x = mantissa * 2^exponent, 1 <= mantissa < 2.
//
// Runs of at most 512 elements: eight lanes multiply 64 mantissas each, so no product leaves the range of a double; the lanes are
// joined by halves, l0 * l4 and so on. One logarithm a run; the runs are added up in order. An element that is zero, negative or a
// NaN ends the sum: the first of them decides the outcome. Infinity is an ordinary element, whose logarithm is infinite.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

#include "frame/elementary.h"
#include "frame/lanes.h"
#include "qorsr.h"

namespace qorsr {

// log(2 pi), with the digits that are required: not the nearest double.
inline constexpr double kLogTwoPi = 1.8378770664093;

// required: the NaN that the logarithm of a negative number is, a processor's default.
template <class T>
inline constexpr T kLogOfNegative = std::bit_cast<T>(uint32_t{0xFFC00000});
template <>
inline constexpr double kLogOfNegative<double> = std::bit_cast<double>(uint64_t{0xFFF8000000000000});

class SumOfLogs {
 public:
  static constexpr int32_t kRun = 512;

  // Joins the logarithms of `count` elements. Nothing is added any more after an element that has none.
  template <class T>
  void add(const T* values, int64_t count) {
    for (int64_t i = 0; i < count && !ended_; i += kRun) {
      const auto n = static_cast<int32_t>(count - i < kRun ? count - i : kRun);
      if (!addNormalRun(values + i, n)) addAnyRun(values + i, n);
    }
  }

  // The sum; plus infinity after a zero, a quiet NaN after a negative element or a NaN.
  double value() const { return total_; }

  // qorStatusLogZero after a zero, qorStatusLogNegative after a negative element, else qorStatusOk.
  QorStatus status() const { return status_; }

 private:
  static constexpr int kLanes = 8;
  static constexpr int32_t kBias = 1023, kMantissaBits = 52;
  static constexpr int64_t kMantissa = (int64_t{1} << kMantissaBits) - 1, kOne = int64_t{kBias} << kMantissaBits;
  static constexpr double kLog2 = 0.69314718055994530942;

  using L = Lanes<double, kLanes>;
  using Part = typename L::Part;
  using Bits = native::Vector<uint64_t, L::kPart>;

  // False, and nothing added, unless all elements are positive, finite and normal.
  template <class T>
  bool addNormalRun(const T* values, int32_t n) {
    L product(1.0), least(1.0), rest(0.0);
    Bits exponents[L::kParts] = {};
    const auto join = [&](const L& x) {
      least = min(least, x);
      rest += x - x;  // stays 0; NaN once an infinity or a NaN has passed
      for (int p = 0; p < L::kParts; ++p) {
        const Bits bits = std::bit_cast<Bits>(x.part[p]);
        exponents[p] += bits >> kMantissaBits;
        product.part[p] *= std::bit_cast<Part>((bits & static_cast<uint64_t>(kMantissa)) | static_cast<uint64_t>(kOne));
      }
    };
    int32_t i = 0;
    for (; i <= n - kLanes; i += kLanes) join(loadAs<double, kLanes>(values + i));
    if (i < n) {
      double last[kLanes];
      for (int k = 0; k < kLanes; ++k) last[k] = i + k < n ? static_cast<double>(values[i + k]) : 1.0;
      join(L::load(last));
      i += kLanes;
    }
    double lowest[kLanes], rests[kLanes];
    least.store(lowest);
    rest.store(rests);
    uint64_t exponent = 0;
    bool normal = true;
    for (int k = 0; k < kLanes; ++k) {
      normal = normal && lowest[k] >= std::numeric_limits<double>::min() && rests[k] == 0.0;
      uint64_t lane;
      std::memcpy(&lane, reinterpret_cast<const char*>(exponents) + k * sizeof(lane), sizeof(lane));
      exponent += lane;
    }
    if (normal) addRun(joinProduct(product), static_cast<int64_t>(exponent) - int64_t{kBias} * i);
    return normal;
  }

  // Element by element: denormal and infinite elements, and those that have no logarithm.
  template <class T>
  void addAnyRun(const T* values, int32_t n) {
    double product = 1.0;
    int64_t exponent = 0;
    for (int32_t i = 0; i < n; ++i) {
      const auto x = static_cast<double>(values[i]);
      if (!(x > 0.0)) return end(x);
      if (x > std::numeric_limits<double>::max()) {
        total_ += x;
        continue;
      }
      constexpr double kTwo54 = 0x1.0p54;
      const bool denormal = x < std::numeric_limits<double>::min();
      const auto bits = std::bit_cast<int64_t>(denormal ? x * kTwo54 : x);
      exponent += (bits >> kMantissaBits) - kBias - (denormal ? 54 : 0);
      product *= std::bit_cast<double>((bits & kMantissa) | kOne);
    }
    addRun(product, exponent);
  }

  void addRun(double product, int64_t exponent) { total_ += log(product) + static_cast<double>(exponent) * kLog2; }

  void end(double culprit) {
    ended_ = true;
    status_ = culprit == 0.0 ? qorStatusLogZero : culprit < 0.0 ? qorStatusLogNegative : qorStatusOk;
    total_ = culprit == 0.0 ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
  }

  template <int N>
  static double joinProduct(const Lanes<double, N>& a) {
    if constexpr (N == 1) {
      return a.part[0];
    } else {
      return joinProduct(lowerHalf(a) * upperHalf(a));
    }
  }

  double total_ = 0.0;
  QorStatus status_ = qorStatusOk;
  bool ended_ = false;
};

// Adds `count` elements. Returns the status of the first one that is zero or negative, also where a NaN stands in front of it.
inline QorStatus addPastNan(SumOfLogs& logs, const double* values, int32_t count) {
  logs.add(values, count);
  if (logs.value() == logs.value()) return logs.status();
  for (int32_t i = 0; i < count; ++i) {
    if (values[i] == 0.0) return qorStatusLogZero;
    if (values[i] < 0.0) return qorStatusLogNegative;
  }
  return qorStatusOk;
}

}  // namespace qorsr
