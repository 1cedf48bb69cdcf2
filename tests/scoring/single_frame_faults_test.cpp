// What the single-frame scorers refuse, and in which order: null pointers, length; and that they keep the caller's environment.
#include <gtest/gtest.h>

#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

template <class T, class R>
struct SingleArgs {
  const T *x, *mean, *variance;
  int32_t length;
  R* result;
};

template <class T, class R>
void expectSingle(QorStatus (*member)(const SingleArgs<T, R>&), bool unit = false) {
  using A = SingleArgs<T, R>;
  kit::Random random;
  const std::vector<T> x = random.vector<T>(9, kit::Random::kNasty), v = random.vector<T>(9, kit::Random::kNasty);
  R result = R(77);
  const A valid{x.data(), v.data(), v.data(), 9, &result};
  kit::FaultTable<A> table(valid, member, {{&result, 1}});
  table.fault("null x", qorStatusNullPointer, &A::x, nullptr);
  table.fault("null mean", qorStatusNullPointer, &A::mean, nullptr);
  if (!unit) table.fault("null variance", qorStatusNullPointer, &A::variance, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.fault("length zero", qorStatusBadSize, &A::length, 0);
  table.fault("length negative", qorStatusBadSize, &A::length, INT32_MIN);
  table.check();
  kit::expectEnvironmentKept([&] { member(valid); });
}

TEST(SingleFaults, Diagonal) {
  expectSingle<float, float>([](auto& a) { return qorsLogGaussSingle_32f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<double, double>([](auto& a) { return qorsLogGaussSingle_64f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<float, double>([](auto& a) { return qorsLogGaussSingle_32f64f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<float, float>([](auto& a) { return qorsLogGaussSingle_IdVar_32f(a.x, a.mean, a.length, a.result, 1); }, true);
  expectSingle<double, double>([](auto& a) { return qorsLogGaussSingle_IdVar_64f(a.x, a.mean, a.length, a.result, 1); }, true);
  expectSingle<float, double>([](auto& a) { return qorsLogGaussSingle_IdVar_32f64f(a.x, a.mean, a.length, a.result, 1); }, true);
  expectSingle<float, float>(
      [](auto& a) { return qorsLogGaussSingle_DirectVar_32f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<double, double>(
      [](auto& a) { return qorsLogGaussSingle_DirectVar_64f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<float, double>(
      [](auto& a) { return qorsLogGaussSingle_DirectVar_32f64f(a.x, a.mean, a.variance, a.length, a.result, 1); });
  expectSingle<float, float>([](auto& a) { return qorsMahDistSingle_32f(a.x, a.mean, a.variance, a.length, a.result); });
  expectSingle<double, double>([](auto& a) { return qorsMahDistSingle_64f(a.x, a.mean, a.variance, a.length, a.result); });
  expectSingle<float, double>([](auto& a) { return qorsMahDistSingle_32f64f(a.x, a.mean, a.variance, a.length, a.result); });
  expectSingle<int16_t, int32_t>(
      [](auto& a) { return qorsLogGaussSingle_16s32s_Sfs(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, float>(
      [](auto& a) { return qorsLogGaussSingle_Scaled_16s32f(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, int32_t>(
      [](auto& a) { return qorsLogGaussSingle_Low_16s32s_Sfs(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, float>(
      [](auto& a) { return qorsLogGaussSingle_LowScaled_16s32f(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, int32_t>([](auto& a) { return qorsLogGaussSingle_IdVar_16s32s_Sfs(a.x, a.mean, a.length, a.result, 1, 2); },
                                 true);
  expectSingle<int16_t, float>([](auto& a) { return qorsLogGaussSingle_IdVarScaled_16s32f(a.x, a.mean, a.length, a.result, 1, 2); },
                               true);
  expectSingle<int16_t, int32_t>(
      [](auto& a) { return qorsLogGaussSingle_IdVarLow_16s32s_Sfs(a.x, a.mean, a.length, a.result, 1, 2); }, true);
  expectSingle<int16_t, float>(
      [](auto& a) { return qorsLogGaussSingle_IdVarLowScaled_16s32f(a.x, a.mean, a.length, a.result, 1, 2); }, true);
  expectSingle<int16_t, int32_t>(
      [](auto& a) { return qorsLogGaussSingle_DirectVar_16s32s_Sfs(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, float>(
      [](auto& a) { return qorsLogGaussSingle_DirectVarScaled_16s32f(a.x, a.mean, a.variance, a.length, a.result, 1, 2); });
  expectSingle<int16_t, float>([](auto& a) { return qorsMahDistSingle_16s32f(a.x, a.mean, a.variance, a.length, a.result); });
  expectSingle<int16_t, int32_t>(
      [](auto& a) { return qorsMahDistSingle_16s32s_Sfs(a.x, a.mean, a.variance, a.length, a.result, 2); });
}

template <class Record, class T, class R>
void expectBlockDiagonal(QorStatus (*init)(Record**, const T* const*, const int32_t*, int32_t), QorStatus (*release)(Record*),
                         QorStatus (*member)(const T*, const T*, const Record*, int32_t, R*)) {
  struct A {
    const T *x, *mean;
    const Record* covariance;
    int32_t length;
    R* result;
  };
  const T row[2] = {T(1), T(2)}, x[3] = {};
  const T* rows[2] = {row, row};
  const int32_t sizes[1] = {2};
  Record* record = nullptr;
  ASSERT_EQ(init(&record, rows, sizes, 1), qorStatusOk);
  R result = R(77);
  const A valid{x, x, record, 2, &result};
  kit::FaultTable<A>(valid, [=](const A& a) { return member(a.x, a.mean, a.covariance, a.length, a.result); }, {{&result, 1}})
      .fault("null x", qorStatusNullPointer, &A::x, nullptr)
      .fault("null mean", qorStatusNullPointer, &A::mean, nullptr)
      .fault("null covariance", qorStatusNullPointer, &A::covariance, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length of another dimension", qorStatusBadSize, &A::length, 3)
      .check();
  kit::expectEnvironmentKept([&] { member(x, x, record, 2, &result); });
  release(record);
}

TEST(SingleFaults, BlockDiagonal) {
  expectBlockDiagonal<BlockDMatrix_32f, float, float>(
      qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f,
      [](auto* x, auto* m, auto* c, int32_t n, auto* r) { return qorsLogGaussSingle_BlockDVar_32f(x, m, c, n, r, 1); });
  expectBlockDiagonal<BlockDMatrix_32f, float, double>(
      qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f,
      [](auto* x, auto* m, auto* c, int32_t n, auto* r) { return qorsLogGaussSingle_BlockDVar_32f64f(x, m, c, n, r, 1); });
  expectBlockDiagonal<BlockDMatrix_64f, double, double>(
      qorsBlockDMatrixInitAlloc_64f, qorsBlockDMatrixFree_64f,
      [](auto* x, auto* m, auto* c, int32_t n, auto* r) { return qorsLogGaussSingle_BlockDVar_64f(x, m, c, n, r, 1); });
  expectBlockDiagonal<BlockDMatrix_16s, int16_t, int32_t>(
      qorsBlockDMatrixInitAlloc_16s, qorsBlockDMatrixFree_16s,
      [](auto* x, auto* m, auto* c, int32_t n, auto* r) { return qorsLogGaussSingle_BlockDVar_16s32s_Sfs(x, m, c, n, r, 1, 0); });
  expectBlockDiagonal<BlockDMatrix_16s, int16_t, float>(
      qorsBlockDMatrixInitAlloc_16s, qorsBlockDMatrixFree_16s,
      [](auto* x, auto* m, auto* c, int32_t n, auto* r) { return qorsLogGaussSingle_BlockDVarScaled_16s32f(x, m, c, n, r, 1, 0); });
}

}  // namespace
