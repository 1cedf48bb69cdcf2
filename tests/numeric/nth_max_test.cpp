// The n-th largest element: the same as by the walk of the model and as by sorting; faults, memory, environment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/numeric_vectors.h"
#include "qorsr.h"

namespace {

template <class T>
using Select = QorStatus (*)(const T*, int32_t, int32_t, T*);

// Lengths on both sides of where digits are counted.
std::vector<int32_t> lengths() {
  auto v = kit::lengths();
  for (const int32_t more : {199, 200, 201, 500, 1000, 3000}) v.push_back(more);
  return v;
}

enum class Data { kPlain, kFewValues, kRising, kFalling, kEqual, kNasty, kMagnitudes };
template <class T>
std::vector<T> elements(kit::Random& random, int32_t length, Data data) {
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    const T any = data == Data::kNasty ? random.nasty<T>() : random.plain<T>();
    const auto few = static_cast<T>(random.integer(-2, 2));
    const auto ramp = static_cast<T>(data == Data::kRising ? i : length - i);
    const auto small = static_cast<T>(random.scaled(-1, 1, -60, 30));
    v.push_back(data == Data::kFewValues                          ? few
                : data == Data::kRising || data == Data::kFalling ? ramp
                : data == Data::kEqual                            ? T(7)
                : data == Data::kMagnitudes                       ? small
                                                                  : any);
  }
  return v;
}

template <class T>
void expectRanks(Select<T> call) {
  kit::Random random;
  for (const int32_t length : lengths()) {
    for (const Data data :
         {Data::kPlain, Data::kFewValues, Data::kRising, Data::kFalling, Data::kEqual, Data::kNasty, Data::kMagnitudes}) {
      const kit::Place place = kit::kPlaces[length % 3];
      const auto x = elements<T>(random, length, data);
      const kit::Area<T> source(x, place);
      kit::Area<T> result(1, place);
      std::vector<int32_t> ranks = {0, length / 2, length - 1};
      for (int i = 0; i < 5; ++i) ranks.push_back(static_cast<int32_t>(random.integer(0, length - 1)));
      for (const int32_t n : ranks) {
        ASSERT_EQ(call(source.data(), length, n, result.data()), qorStatusOk);
        ASSERT_BITS(result[0], model::nthMax(x, n)) << "length " << length << " n " << n << " data " << static_cast<int>(data);
      }
      ASSERT_BITS(source.values(), x) << "the source was changed";
      ASSERT_TRUE(result.edgesKept());
    }
  }
}
TEST(NthMaxElement, FollowsTheWalk) {
  expectRanks<float>(qorsNthMaxElement_32f);
  expectRanks<int32_t>(qorsNthMaxElement_32s);
  expectRanks<double>(qorsNthMaxElement_64f);
}

template <class T>
void expectSorted(Select<T> call) {
  kit::Random random;
  for (const int32_t length : {5, 40, 300, 2000}) {
    auto x = random.vector<T>(length, kit::Random::kPlain);
    std::vector<T> inOrder(x.size()), expected = x;
    for (int32_t n = 0; n < length; ++n) ASSERT_EQ(call(x.data(), length, n, &inOrder[static_cast<std::size_t>(n)]), qorStatusOk);
    std::sort(expected.begin(), expected.end(), std::greater<>());
    ASSERT_BITS(inOrder, expected);
  }
}
TEST(NthMaxElement, AllRanksAreTheSortedVector) {
  expectSorted<float>(qorsNthMaxElement_32f);
  expectSorted<int32_t>(qorsNthMaxElement_32s);
  expectSorted<double>(qorsNthMaxElement_64f);
}

// Where the walk shows: elements without an order, also in vectors whose digits would be counted.
TEST(NthMaxElement, NaNAndZerosOfBothSignsFollowTheWalk) {
  kit::Random random;
  for (const int32_t length : {3, 50, 400}) {
    for (int round = 0; round < 20; ++round) {
      std::vector<float> x;
      for (int32_t i = 0; i < length; ++i) {
        const float choices[] = {0.0F, -0.0F, 1.0F, -1.0F, round % 2 == 0 ? std::numeric_limits<float>::quiet_NaN() : 0.5F};
        x.push_back(choices[random.integer(0, 4)]);
      }
      for (const int32_t n : {0, length / 3, length / 2, length - 1}) {
        float result;
        ASSERT_EQ(qorsNthMaxElement_32f(x.data(), length, n, &result), qorStatusOk);
        ASSERT_BITS(result, model::nthMax(x, n)) << "length " << length << " n " << n << " round " << round;
      }
    }
  }
}

template <class T>
void expectFaults(Select<T> call) {
  struct Args {
    const T* source;
    int32_t length, n;
    T* result;
  };
  const T source[4] = {1, 2, 3, 4};
  T result[1] = {77};
  kit::FaultTable<Args>({source, 4, 1, result}, [=](const Args& a) { return call(a.source, a.length, a.n, a.result); },
                        {{result, 1}})
      .fault("null source", qorStatusNullPointer, &Args::source, nullptr)
      .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .fault("length negative", qorStatusBadSize, &Args::length, INT32_MIN)
      .fault("n negative", qorStatusBadArgument, &Args::n, -1)
      .fault("n too large", qorStatusBadArgument, &Args::n, 4, kit::against(&Args::length))
      .fault("n far too large", qorStatusBadArgument, &Args::n, INT32_MAX, kit::against(&Args::length))
      .check();
}
TEST(NthMaxElementFaults, EveryMember) {
  expectFaults<float>(qorsNthMaxElement_32f);
  expectFaults<int32_t>(qorsNthMaxElement_32s);
  expectFaults<double>(qorsNthMaxElement_64f);
}

TEST(NthMaxElementMemory, ARefusedAllocationIsReportedAndNothingIsLeft) {
  const std::vector<float> x(300, 1.5F);
  float result = 7;
  for (const int32_t length : {1, 300}) {
    EXPECT_EQ(kit::expectEveryRefusalReported([&] { return qorsNthMaxElement_32f(x.data(), length, 0, &result); }), 1);
  }
  kit::Core::refuse(0);
  result = 7;
  EXPECT_EQ(qorsNthMaxElement_32f(x.data(), 300, 0, &result), qorStatusNoMemory);
  EXPECT_EQ(result, 7);
  kit::Core::refuseNone();
}

TEST(NthMaxElementEnvironment, IsKept) {
  kit::expectEnvironmentKept([] {
    float x[300], result;
    for (int i = 0; i < 300; ++i) x[i] = static_cast<float>(i * 7919 % 300);
    x[3] = std::numeric_limits<float>::quiet_NaN();
    qorsNthMaxElement_32f(x, 3, 1, &result);
    qorsNthMaxElement_32f(x, 300, 100, &result);
  });
}

}  // namespace
