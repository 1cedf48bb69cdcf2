// Frame-block scorers: every member in bits against the plain model.
#include <gtest/gtest.h>

#include "scoring/frame_block_calls.h"
#include "scoring/gaussian_cases.h"

namespace {

using model::Frame;

template <class Combine, class T, class R, class S, class Strided, class Listed>
void expectBlocks(Strided strided, Listed listed, S (*score)(const Frame<T>&, R, int32_t)) {
  constexpr bool kUnit = cases::Signature<Listed>::kUnit;
  kit::Random random;
  cases::forEachShape([&](int32_t width, int32_t height, kit::Random::Kind kind, kit::Place place) {
    kit::Matrix<T> source(height, width, width + height % 3, place);
    source.fill(random, kind);
    const kit::Area<T> mean(random.vector<T>(width, kind), place), variance(random.vector<T>(width, kind), place);
    std::vector<Frame<T>> frames;
    for (int32_t r = 0; r < height; ++r) {
      frames.push_back({cases::row(source, r), mean.values(), kUnit ? std::vector<T>() : variance.values()});
    }
    const R val = cases::val<R>(random);
    const int32_t sf = cases::scaleFactor(random);
    const std::vector<R> old = cases::oldResults<R>(random, height);
    const auto expected = cases::expected<Combine>(frames, std::vector<R>(frames.size(), val), old, sf, score);
    kit::Area<R> first(old, place), second(old, place);
    cases::BlockArgs<T, R> args{source.block(), source.constRows(), source.stride(), mean.data(), variance.data(),
                                width,          first.data(),       height,          val,         sf};
    ASSERT_EQ(cases::call(strided, args), qorStatusOk);
    ASSERT_BITS(first.values(), expected) << "sf " << sf << " val " << val;
    args.result = second.data();
    ASSERT_EQ(cases::call(listed, args), qorStatusOk);
    ASSERT_BITS(second.values(), expected) << "rows, sf " << sf << " val " << val;
    ASSERT_TRUE(source.gapsKept() && first.edgesKept() && second.edgesKept());
  });
}

TEST(LogGauss, Real) {
  expectBlocks<cases::Write>(qorsLogGauss_32f_D2, qorsLogGauss_32f_D2L, model::foldedScore);
  expectBlocks<cases::Write>(qorsLogGauss_64f_D2, qorsLogGauss_64f_D2L, model::plainScore<double, double>);
  expectBlocks<cases::Write>(qorsLogGauss_IdVar_32f_D2, qorsLogGauss_IdVar_32f_D2L, model::foldedScore);
  expectBlocks<cases::Write>(qorsLogGauss_IdVar_64f_D2, qorsLogGauss_IdVar_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGauss, FloatSumsOfInt16) {
  expectBlocks<cases::Write>(qorsLogGauss_16s32s_D2Sfs, qorsLogGauss_16s32s_D2LSfs, model::truncatedScore);
  expectBlocks<cases::Write>(qorsLogGauss_IdVar_16s32s_D2Sfs, qorsLogGauss_IdVar_16s32s_D2LSfs, model::truncatedScore);
  expectBlocks<cases::Write>(qorsLogGauss_Scaled_16s32f_D2, qorsLogGauss_Scaled_16s32f_D2L, model::scaledScore);
  expectBlocks<cases::Write>(qorsLogGauss_IdVarScaled_16s32f_D2, qorsLogGauss_IdVarScaled_16s32f_D2L, model::scaledScore);
}
TEST(LogGauss, IntegerSumsOfInt16) {
  expectBlocks<cases::Write>(qorsLogGauss_Low_16s32s_D2Sfs, qorsLogGauss_Low_16s32s_D2LSfs, model::lowScore);
  expectBlocks<cases::Write>(qorsLogGauss_IdVarLow_16s32s_D2Sfs, qorsLogGauss_IdVarLow_16s32s_D2LSfs, model::lowScore);
  expectBlocks<cases::Write>(qorsLogGauss_LowScaled_16s32f_D2, qorsLogGauss_LowScaled_16s32f_D2L, model::lowScaledScore);
  expectBlocks<cases::Write>(qorsLogGauss_IdVarLowScaled_16s32f_D2, qorsLogGauss_IdVarLowScaled_16s32f_D2L,
                             model::unitLowScaledScore);
}

TEST(LogGaussMax, Real) {
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_32f_D2, qorsLogGaussMax_32f_D2L, model::foldedScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_64f_D2, qorsLogGaussMax_64f_D2L, model::plainScore<double, double>);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_IdVar_32f_D2, qorsLogGaussMax_IdVar_32f_D2L, model::foldedScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_IdVar_64f_D2, qorsLogGaussMax_IdVar_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGaussMax, FloatSumsOfInt16) {
  expectBlocks<cases::KeepMaxThroughFloat>(qorsLogGaussMax_16s32s_D2Sfs, qorsLogGaussMax_16s32s_D2LSfs, model::limitedScore);
  expectBlocks<cases::KeepMaxThroughFloat>(qorsLogGaussMax_IdVar_16s32s_D2Sfs, qorsLogGaussMax_IdVar_16s32s_D2LSfs,
                                           model::limitedScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_Scaled_16s32f_D2, qorsLogGaussMax_Scaled_16s32f_D2L, model::scaledScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_IdVarScaled_16s32f_D2, qorsLogGaussMax_IdVarScaled_16s32f_D2L, model::scaledScore);
}
TEST(LogGaussMax, IntegerSumsOfInt16) {
  expectBlocks<cases::KeepMaxThroughFloat>(qorsLogGaussMax_Low_16s32s_D2Sfs, qorsLogGaussMax_Low_16s32s_D2LSfs, model::lowScore);
  expectBlocks<cases::KeepMaxThroughFloat>(qorsLogGaussMax_IdVarLow_16s32s_D2Sfs, qorsLogGaussMax_IdVarLow_16s32s_D2LSfs,
                                           model::lowScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_LowScaled_16s32f_D2, qorsLogGaussMax_LowScaled_16s32f_D2L, model::lowScaledScore);
  expectBlocks<cases::KeepMax>(qorsLogGaussMax_IdVarLowScaled_16s32f_D2, qorsLogGaussMax_IdVarLowScaled_16s32f_D2L,
                               model::unitLowScaledScore);
}

TEST(LogGaussAdd, Real) {
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_32f_D2, qorsLogGaussAdd_32f_D2L, model::foldedScore);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_64f_D2, qorsLogGaussAdd_64f_D2L, model::plainScore<double, double>);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_IdVar_32f_D2, qorsLogGaussAdd_IdVar_32f_D2L, model::foldedScore);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_IdVar_64f_D2, qorsLogGaussAdd_IdVar_64f_D2L, model::plainScore<double, double>);
}
TEST(LogGaussAdd, Int16) {
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_Scaled_16s32f_D2, qorsLogGaussAdd_Scaled_16s32f_D2L, model::scaledScore);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_IdVarScaled_16s32f_D2, qorsLogGaussAdd_IdVarScaled_16s32f_D2L, model::scaledScore);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_LowScaled_16s32f_D2, qorsLogGaussAdd_LowScaled_16s32f_D2L, model::lowScaledScore);
  expectBlocks<cases::LogAdd>(qorsLogGaussAdd_IdVarLowScaled_16s32f_D2, qorsLogGaussAdd_IdVarLowScaled_16s32f_D2L,
                              model::unitLowScaledScore);
}

TEST(MahDist, Real) {
  expectBlocks<cases::Write>(qorsMahDist_32f_D2, qorsMahDist_32f_D2L, model::realDistance<float, float>);
  expectBlocks<cases::Write>(qorsMahDist_64f_D2, qorsMahDist_64f_D2L, model::realDistance<double, double>);
}

}  // namespace
