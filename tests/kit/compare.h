// Comparison bit by bit, and the digest of everything that was compared.
//
// A NaN is compared as a NaN, whatever its payload and sign; all else must agree in every bit, the sign of a zero too. Each value
// that passes through here is folded into the digest of the running test. With QORSR_DIGEST=FILE a test program writes one line a
// test, and runs at different levels and with different compilers must write the same file.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace kit {

// The bits of a value, every NaN as one.
template <class T>
uint64_t canonicalBits(T value) {
  if constexpr (std::is_same_v<T, float>) {
    return std::isnan(value) ? 0x7FC00000u : std::bit_cast<uint32_t>(value);
  } else if constexpr (std::is_same_v<T, double>) {
    return std::isnan(value) ? 0x7FF8000000000000u : std::bit_cast<uint64_t>(value);
  } else {
    return static_cast<uint64_t>(value);
  }
}

void digestBits(uint64_t bits);  // folds a value into the digest of the running test

// All `count` values agree in their bits. The first that does not is shown, with its index.
template <class T>
testing::AssertionResult sameBits(const T* actual, const T* expected, int64_t count) {
  for (int64_t i = 0; i < count; ++i) digestBits(canonicalBits(actual[i]));
  for (int64_t i = 0; i < count; ++i) {
    if (canonicalBits(actual[i]) != canonicalBits(expected[i])) {
      return testing::AssertionFailure() << "element " << i << " of " << count << ": " << testing::PrintToString(actual[i])
                                         << " (bits " << std::hex << canonicalBits(actual[i]) << "), expected "
                                         << testing::PrintToString(expected[i]) << " (bits " << canonicalBits(expected[i]) << ")";
    }
  }
  return testing::AssertionSuccess();
}
template <class T>
testing::AssertionResult sameBits(const std::vector<T>& actual, const std::vector<T>& expected) {
  if (actual.size() != expected.size())
    return testing::AssertionFailure() << actual.size() << " values, expected " << expected.size();
  return sameBits(actual.data(), expected.data(), static_cast<int64_t>(actual.size()));
}
template <class T>
requires std::is_arithmetic_v<T> testing::AssertionResult sameBits(T actual, T expected) { return sameBits(&actual, &expected, 1); }

// Each value lies within `bound` of the expected one, or both are the same infinity or NaN. For results whose last bits the
// definition leaves open; the bound is argued where it is used. The bits are folded into the digest all the same.
template <class T>
testing::AssertionResult within(const T* actual, const double* expected, int64_t count, double bound) {
  for (int64_t i = 0; i < count; ++i) digestBits(canonicalBits(actual[i]));
  for (int64_t i = 0; i < count; ++i) {
    const auto a = static_cast<double>(actual[i]);
    if (canonicalBits(a) == canonicalBits(expected[i])) continue;
    if (!(std::fabs(a - expected[i]) <= bound)) {
      return testing::AssertionFailure() << "element " << i << " of " << count << ": " << a << ", expected " << expected[i]
                                         << " within " << bound;
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace kit

#define EXPECT_BITS(...) EXPECT_TRUE(kit::sameBits(__VA_ARGS__))
#define ASSERT_BITS(...) ASSERT_TRUE(kit::sameBits(__VA_ARGS__))
