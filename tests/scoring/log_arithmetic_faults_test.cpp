// What the log-domain operations refuse: a length below 1 before a null pointer, in every member.
#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/faults.h"
#include "qorsr.h"

namespace {

template <class T>
struct Args {
  const T* source;
  T* result;
  int32_t length;
};

template <class T>
void expectFaults(QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  const T source[4] = {1, 2, 3, 4};
  T result[4] = {-7, -7, -7, -7};
  kit::FaultTable<A>({source, result, 4}, call, {{result, 4}})
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .check();
}

TEST(LogAddFaults, EveryMember) {
  expectFaults<float>([](auto& a) { return qorsLogAdd_32f(a.source, a.result, a.length, 0); });
  expectFaults<double>([](auto& a) { return qorsLogAdd_64f(a.source, a.result, a.length, 0); });
  expectFaults<int16_t>([](auto& a) { return qorsLogAdd_16s_Sfs(a.source, a.result, a.length, 1, 0); });
  expectFaults<int32_t>([](auto& a) { return qorsLogAdd_32s_Sfs(a.source, a.result, a.length, 1, 3); });
}

TEST(LogSubFaults, EveryMember) {
  expectFaults<float>([](auto& a) { return qorsLogSub_32f(a.source, a.result, a.length); });
  expectFaults<double>([](auto& a) { return qorsLogSub_64f(a.source, a.result, a.length); });
  expectFaults<int16_t>([](auto& a) { return qorsLogSub_16s_Sfs(a.source, a.result, a.length, 1); });
  expectFaults<int32_t>([](auto& a) { return qorsLogSub_32s_Sfs(a.source, a.result, a.length, 1); });
}

TEST(LogSubFaults, TheDataComeLast) {
  struct A {
    const float* source;
    float* result;
    int32_t length;
  };
  const float source[2] = {1, 1}, larger[2] = {1, -9};
  float result[2] = {-7, -7};
  kit::FaultTable<A>({source, result, 2}, [](const A& a) { return qorsLogSub_32f(a.source, a.result, a.length); }, {{result, 2}})
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("source too small", qorStatusBadRange, &A::source, larger)
      .check();
}

TEST(LogSumFaults, EveryMember) {
  expectFaults<float>([](auto& a) { return qorsLogSum_32f(a.source, a.result, a.length, 0); });
  expectFaults<double>([](auto& a) { return qorsLogSum_64f(a.source, a.result, a.length, 0); });
  expectFaults<int16_t>([](auto& a) { return qorsLogSum_16s_Sfs(a.source, a.result, a.length, 1, 0); });
  expectFaults<int32_t>([](auto& a) { return qorsLogSum_32s_Sfs(a.source, a.result, a.length, 1, 0); });
}

}  // namespace
