// What the frame-block scorers refuse, and in which order: stride, null pointers, sizes; and that they keep the caller's environment.
#include <gtest/gtest.h>

#include <functional>

#include "kit/environment.h"
#include "kit/faults.h"
#include "scoring/frame_block_calls.h"
#include "scoring/gaussian_cases.h"

namespace {

template <class T, class R>
void expectKept(const cases::BlockArgs<T, R>& valid, const std::function<QorStatus(const cases::BlockArgs<T, R>&)>& call,
                bool strided, bool unit) {
  using A = cases::BlockArgs<T, R>;
  kit::FaultTable<A> table(valid, call, {{valid.result, valid.height}});
  if (strided) {
    table.fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
    table.fault("stride negative", qorStatusBadStride, &A::stride, INT32_MIN);
  }
  table.fault("null source", qorStatusNullPointer, &A::source, nullptr, &A::rows, nullptr);
  table.fault("null mean", qorStatusNullPointer, &A::mean, nullptr);
  if (!unit) table.fault("null variance", qorStatusNullPointer, &A::variance, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  table.fault("width zero", qorStatusBadSize, &A::width, 0);
  table.fault("width negative", qorStatusBadSize, &A::width, -1);
  table.fault("height zero", qorStatusBadSize, &A::height, 0);
  table.fault("height negative", qorStatusBadSize, &A::height, -1);
  table.check();
  kit::expectEnvironmentKept([&] { call(valid); });
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
  expectKept<T, R>(
      args, [=](const auto& a) { return cases::call(strided, a); }, true, kUnit);
  expectKept<T, R>(
      args, [=](const auto& a) { return cases::call(listed, a); }, false, kUnit);
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

}  // namespace
