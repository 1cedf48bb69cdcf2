// What the mixture scorers (null pointers, stride, sizes) and the multi-mixture scorers (stride, null pointers, sizes) refuse, and in
// which order; and that they keep the caller's environment.
#include <gtest/gtest.h>

#include <functional>

#include "kit/environment.h"
#include "kit/faults.h"
#include "scoring/gaussian_model.h"

namespace {

template <class T, class R>
void expectKept(const cases::ModelArgs<T, R>& valid, const std::function<QorStatus(const cases::ModelArgs<T, R>&)>& call,
                bool strided, bool mixture, bool unit, bool vals) {
  using A = cases::ModelArgs<T, R>;
  kit::FaultTable<A> table(valid, call, {{valid.result, valid.count}});
  const auto addStride = [&] {
    table.fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
    table.fault("stride negative", qorStatusBadStride, &A::stride, INT32_MIN);
  };
  if (strided && !mixture) addStride();
  table.fault("null x", qorStatusNullPointer, &A::x, nullptr);
  table.fault("null means", qorStatusNullPointer, &A::means, nullptr, &A::meanRows, nullptr);
  if (!unit) table.fault("null variances", qorStatusNullPointer, &A::variances, nullptr, &A::varianceRows, nullptr);
  table.fault("null result", qorStatusNullPointer, &A::result, nullptr);
  if (vals) table.fault("null vals", qorStatusNullPointer, &A::vals, nullptr);
  if (strided && mixture) addStride();
  table.fault("width zero", qorStatusBadSize, &A::width, 0);
  table.fault("width negative", qorStatusBadSize, &A::width, -1);
  table.fault("count zero", qorStatusBadSize, &A::count, 0);
  table.fault("count negative", qorStatusBadSize, &A::count, -1);
  table.check();
  kit::expectEnvironmentKept([&] { call(valid); });
}

template <class T, class R, class Strided, class Listed>
void expectModel(Strided strided, Listed listed, bool mixture) {
  using Shape = cases::ModelShape<Listed>;
  kit::Random random;
  const cases::Model<T, R> m(random, 4, 3, kit::Random::kNasty, kit::Place::kAligned);
  kit::Area<R> result(3, kit::Place::kAligned);
  result.fill(R(77));
  const cases::ModelArgs<T, R> args = m.args(result.data());
  expectKept<T, R>(
      args, [=](const auto& a) { return cases::call(strided, a); }, true, mixture, Shape::kUnit, !Shape::kInPlace);
  expectKept<T, R>(
      args, [=](const auto& a) { return cases::call(listed, a); }, false, mixture, Shape::kUnit, !Shape::kInPlace);
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

}  // namespace
