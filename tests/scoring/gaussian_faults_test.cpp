// What the Gaussian scorers refuse, and in which order; and that they keep the caller's environment.
#include <gtest/gtest.h>

#include "kit/environment.h"
#include "kit/faults.h"
#include "scoring/frame_block_calls.h"
#include "scoring/gaussian_model.h"

namespace {

// ---- Frame blocks: stride, null pointers, sizes ----

template <class T, class R, class Member>
void expectBlockFaults(const cases::BlockArgs<T, R>& valid, Member member, bool strided, bool unit) {
  using A = cases::BlockArgs<T, R>;
  kit::FaultTable<A> table(valid, [=](const A& a) { return cases::call(member, a); }, {{valid.result, valid.height}});
  if (strided) {
    table.fault("stride below width", qorStatusBadStride, [](A& a) { a.stride = 3; });
    table.fault("stride negative", qorStatusBadStride, [](A& a) { a.stride = INT32_MIN; });
  }
  table.fault("null source", qorStatusNullPointer, [](A& a) { a.source = nullptr, a.rows = nullptr; });
  table.fault("null mean", qorStatusNullPointer, [](A& a) { a.mean = nullptr; });
  if (!unit) table.fault("null variance", qorStatusNullPointer, [](A& a) { a.variance = nullptr; });
  table.fault("null result", qorStatusNullPointer, [](A& a) { a.result = nullptr; });
  table.fault("width zero", qorStatusBadSize, [](A& a) { a.width = 0; });
  table.fault("width negative", qorStatusBadSize, [](A& a) { a.width = -1; });
  table.fault("height zero", qorStatusBadSize, [](A& a) { a.height = 0; });
  table.fault("height negative", qorStatusBadSize, [](A& a) { a.height = -1; });
  table.check();
}

template <class T, class R, class Strided, class Listed>
void expectBlock(Strided strided, Listed listed) {
  constexpr bool kUnit = cases::Signature<Listed>::kUnit;
  kit::Random random;
  kit::Matrix<T> source(3, 4, 4, kit::Place::kAligned);
  source.fill(random, kit::Random::kNasty);
  const std::vector<T> mean = random.vector<T>(4, kit::Random::kNasty), variance = random.vector<T>(4, kit::Random::kNasty);
  kit::Area<R> result(3, kit::Place::kAligned);
  result.fill(R(77));
  const cases::BlockArgs<T, R> args{
      source.block(), source.constRows(), 4, mean.data(), variance.data(), 4, result.data(), 3, R(5), 2};
  expectBlockFaults(args, strided, true, kUnit);
  expectBlockFaults(args, listed, false, kUnit);
  kit::expectEnvironmentKept([&] { cases::call(strided, args); });
  kit::expectEnvironmentKept([&] { cases::call(listed, args); });
}

TEST(BlockFaults, LogGauss) {
  expectBlock<int16_t, int32_t>(qorsLogGauss_16s32s_D2Sfs, qorsLogGauss_16s32s_D2LSfs);
  expectBlock<float, float>(qorsLogGauss_32f_D2, qorsLogGauss_32f_D2L);
  expectBlock<double, double>(qorsLogGauss_64f_D2, qorsLogGauss_64f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGauss_IdVar_16s32s_D2Sfs, qorsLogGauss_IdVar_16s32s_D2LSfs);
  expectBlock<float, float>(qorsLogGauss_IdVar_32f_D2, qorsLogGauss_IdVar_32f_D2L);
  expectBlock<double, double>(qorsLogGauss_IdVar_64f_D2, qorsLogGauss_IdVar_64f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGauss_IdVarLow_16s32s_D2Sfs, qorsLogGauss_IdVarLow_16s32s_D2LSfs);
  expectBlock<int16_t, float>(qorsLogGauss_IdVarLowScaled_16s32f_D2, qorsLogGauss_IdVarLowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGauss_IdVarScaled_16s32f_D2, qorsLogGauss_IdVarScaled_16s32f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGauss_Low_16s32s_D2Sfs, qorsLogGauss_Low_16s32s_D2LSfs);
  expectBlock<int16_t, float>(qorsLogGauss_LowScaled_16s32f_D2, qorsLogGauss_LowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGauss_Scaled_16s32f_D2, qorsLogGauss_Scaled_16s32f_D2L);
}
TEST(BlockFaults, LogGaussMax) {
  expectBlock<int16_t, int32_t>(qorsLogGaussMax_16s32s_D2Sfs, qorsLogGaussMax_16s32s_D2LSfs);
  expectBlock<float, float>(qorsLogGaussMax_32f_D2, qorsLogGaussMax_32f_D2L);
  expectBlock<double, double>(qorsLogGaussMax_64f_D2, qorsLogGaussMax_64f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGaussMax_IdVar_16s32s_D2Sfs, qorsLogGaussMax_IdVar_16s32s_D2LSfs);
  expectBlock<float, float>(qorsLogGaussMax_IdVar_32f_D2, qorsLogGaussMax_IdVar_32f_D2L);
  expectBlock<double, double>(qorsLogGaussMax_IdVar_64f_D2, qorsLogGaussMax_IdVar_64f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGaussMax_IdVarLow_16s32s_D2Sfs, qorsLogGaussMax_IdVarLow_16s32s_D2LSfs);
  expectBlock<int16_t, float>(qorsLogGaussMax_IdVarLowScaled_16s32f_D2, qorsLogGaussMax_IdVarLowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussMax_IdVarScaled_16s32f_D2, qorsLogGaussMax_IdVarScaled_16s32f_D2L);
  expectBlock<int16_t, int32_t>(qorsLogGaussMax_Low_16s32s_D2Sfs, qorsLogGaussMax_Low_16s32s_D2LSfs);
  expectBlock<int16_t, float>(qorsLogGaussMax_LowScaled_16s32f_D2, qorsLogGaussMax_LowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussMax_Scaled_16s32f_D2, qorsLogGaussMax_Scaled_16s32f_D2L);
}
TEST(BlockFaults, LogGaussAdd) {
  expectBlock<float, float>(qorsLogGaussAdd_32f_D2, qorsLogGaussAdd_32f_D2L);
  expectBlock<double, double>(qorsLogGaussAdd_64f_D2, qorsLogGaussAdd_64f_D2L);
  expectBlock<float, float>(qorsLogGaussAdd_IdVar_32f_D2, qorsLogGaussAdd_IdVar_32f_D2L);
  expectBlock<double, double>(qorsLogGaussAdd_IdVar_64f_D2, qorsLogGaussAdd_IdVar_64f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussAdd_IdVarLowScaled_16s32f_D2, qorsLogGaussAdd_IdVarLowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussAdd_IdVarScaled_16s32f_D2, qorsLogGaussAdd_IdVarScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussAdd_LowScaled_16s32f_D2, qorsLogGaussAdd_LowScaled_16s32f_D2L);
  expectBlock<int16_t, float>(qorsLogGaussAdd_Scaled_16s32f_D2, qorsLogGaussAdd_Scaled_16s32f_D2L);
}
TEST(BlockFaults, MahDist) {
  expectBlock<float, float>(qorsMahDist_32f_D2, qorsMahDist_32f_D2L);
  expectBlock<double, double>(qorsMahDist_64f_D2, qorsMahDist_64f_D2L);
}

// ---- Mixtures (null pointers, stride, sizes) and multi-mixtures (stride, null pointers, sizes) ----

template <class T, class R, class Member>
void expectModelFaults(const cases::ModelArgs<T, R>& valid, Member member, bool strided, bool mixture, bool unit, bool vals) {
  using A = cases::ModelArgs<T, R>;
  kit::FaultTable<A> table(valid, [=](const A& a) { return cases::call(member, a); }, {{valid.result, valid.count}});
  const auto addStride = [&] {
    table.fault("stride below width", qorStatusBadStride, [](A& a) { a.stride = 3; });
    table.fault("stride negative", qorStatusBadStride, [](A& a) { a.stride = INT32_MIN; });
  };
  if (strided && !mixture) addStride();
  table.fault("null x", qorStatusNullPointer, [](A& a) { a.x = nullptr; });
  table.fault("null means", qorStatusNullPointer, [](A& a) { a.means = nullptr, a.meanRows = nullptr; });
  if (!unit) table.fault("null variances", qorStatusNullPointer, [](A& a) { a.variances = nullptr, a.varianceRows = nullptr; });
  table.fault("null result", qorStatusNullPointer, [](A& a) { a.result = nullptr; });
  if (vals) table.fault("null vals", qorStatusNullPointer, [](A& a) { a.vals = nullptr; });
  if (strided && mixture) addStride();
  table.fault("width zero", qorStatusBadSize, [](A& a) { a.width = 0; });
  table.fault("width negative", qorStatusBadSize, [](A& a) { a.width = -1; });
  table.fault("count zero", qorStatusBadSize, [](A& a) { a.count = 0; });
  table.fault("count negative", qorStatusBadSize, [](A& a) { a.count = -1; });
  table.check();
}

template <class T, class R, class Strided, class Listed>
void expectModel(Strided strided, Listed listed, bool mixture) {
  using Shape = cases::ModelShape<Listed>;
  kit::Random random;
  const cases::Model<T, R> m(random, 4, 3, kit::Random::kNasty, kit::Place::kAligned);
  kit::Area<R> result(3, kit::Place::kAligned);
  result.fill(R(77));
  const cases::ModelArgs<T, R> args = m.args(result.data());
  expectModelFaults(args, strided, true, mixture, Shape::kUnit, !Shape::kInPlace);
  expectModelFaults(args, listed, false, mixture, Shape::kUnit, !Shape::kInPlace);
  kit::expectEnvironmentKept([&] { cases::call(strided, args); });
  kit::expectEnvironmentKept([&] { cases::call(listed, args); });
}

TEST(ModelFaults, LogGaussMixture) {
  expectModel<float, float>(qorsLogGaussMixture_32f_D2, qorsLogGaussMixture_32f_D2L, true);
  expectModel<double, double>(qorsLogGaussMixture_64f_D2, qorsLogGaussMixture_64f_D2L, true);
  expectModel<float, float>(qorsLogGaussMixture_IdVar_32f_D2, qorsLogGaussMixture_IdVar_32f_D2L, true);
  expectModel<double, double>(qorsLogGaussMixture_IdVar_64f_D2, qorsLogGaussMixture_IdVar_64f_D2L, true);
  expectModel<int16_t, float>(qorsLogGaussMixture_Scaled_16s32f_D2, qorsLogGaussMixture_Scaled_16s32f_D2L, true);
  expectModel<int16_t, float>(qorsLogGaussMixture_LowScaled_16s32f_D2, qorsLogGaussMixture_LowScaled_16s32f_D2L, true);
  expectModel<int16_t, float>(qorsLogGaussMixture_IdVarScaled_16s32f_D2, qorsLogGaussMixture_IdVarScaled_16s32f_D2L, true);
  expectModel<int16_t, float>(qorsLogGaussMixture_IdVarLowScaled_16s32f_D2, qorsLogGaussMixture_IdVarLowScaled_16s32f_D2L, true);
}
TEST(ModelFaults, LogGaussMultiMix) {
  expectModel<int16_t, int32_t>(qorsLogGaussMultiMix_16s32s_D2Sfs, qorsLogGaussMultiMix_16s32s_D2LSfs, false);
  expectModel<float, float>(qorsLogGaussMultiMix_32f_D2, qorsLogGaussMultiMix_32f_D2L, false);
  expectModel<double, double>(qorsLogGaussMultiMix_64f_D2, qorsLogGaussMultiMix_64f_D2L, false);
  expectModel<int16_t, int32_t>(qorsLogGaussMultiMix_Low_16s32s_D2Sfs, qorsLogGaussMultiMix_Low_16s32s_D2LSfs, false);
  expectModel<int16_t, float>(qorsLogGaussMultiMix_LowScaled_16s32f_D2, qorsLogGaussMultiMix_LowScaled_16s32f_D2L, false);
  expectModel<int16_t, float>(qorsLogGaussMultiMix_Scaled_16s32f_D2, qorsLogGaussMultiMix_Scaled_16s32f_D2L, false);
}
TEST(ModelFaults, LogGaussMaxMultiMix) {
  expectModel<int16_t, int32_t>(qorsLogGaussMaxMultiMix_16s32s_D2Sfs, qorsLogGaussMaxMultiMix_16s32s_D2LSfs, false);
  expectModel<float, float>(qorsLogGaussMaxMultiMix_32f_D2, qorsLogGaussMaxMultiMix_32f_D2L, false);
  expectModel<double, double>(qorsLogGaussMaxMultiMix_64f_D2, qorsLogGaussMaxMultiMix_64f_D2L, false);
  expectModel<int16_t, int32_t>(qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs, qorsLogGaussMaxMultiMix_Low_16s32s_D2LSfs, false);
  expectModel<int16_t, float>(qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2, qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2L, false);
  expectModel<int16_t, float>(qorsLogGaussMaxMultiMix_Scaled_16s32f_D2, qorsLogGaussMaxMultiMix_Scaled_16s32f_D2L, false);
}
TEST(ModelFaults, LogGaussAddMultiMix) {
  expectModel<float, float>(qorsLogGaussAddMultiMix_32f_D2, qorsLogGaussAddMultiMix_32f_D2L, false);
  expectModel<double, double>(qorsLogGaussAddMultiMix_64f_D2, qorsLogGaussAddMultiMix_64f_D2L, false);
  expectModel<int16_t, float>(qorsLogGaussAddMultiMix_LowScaled_16s32f_D2, qorsLogGaussAddMultiMix_LowScaled_16s32f_D2L, false);
  expectModel<int16_t, float>(qorsLogGaussAddMultiMix_Scaled_16s32f_D2, qorsLogGaussAddMultiMix_Scaled_16s32f_D2L, false);
}
TEST(ModelFaults, MahDistMultiMix) {
  expectModel<float, float>(qorsMahDistMultiMix_32f_D2, qorsMahDistMultiMix_32f_D2L, false);
  expectModel<double, double>(qorsMahDistMultiMix_64f_D2, qorsMahDistMultiMix_64f_D2L, false);
}

// ---- One frame: null pointers, length ----

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
  table.fault("null x", qorStatusNullPointer, [](A& a) { a.x = nullptr; });
  table.fault("null mean", qorStatusNullPointer, [](A& a) { a.mean = nullptr; });
  if (!unit) table.fault("null variance", qorStatusNullPointer, [](A& a) { a.variance = nullptr; });
  table.fault("null result", qorStatusNullPointer, [](A& a) { a.result = nullptr; });
  table.fault("length zero", qorStatusBadSize, [](A& a) { a.length = 0; });
  table.fault("length negative", qorStatusBadSize, [](A& a) { a.length = INT32_MIN; });
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
      .fault("null x", qorStatusNullPointer, [](A& a) { a.x = nullptr; })
      .fault("null mean", qorStatusNullPointer, [](A& a) { a.mean = nullptr; })
      .fault("null covariance", qorStatusNullPointer, [](A& a) { a.covariance = nullptr; })
      .fault("null result", qorStatusNullPointer, [](A& a) { a.result = nullptr; })
      .fault("length zero", qorStatusBadSize, [](A& a) { a.length = 0; })
      .fault("length of another dimension", qorStatusBadSize, [](A& a) { a.length = 3; })
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
