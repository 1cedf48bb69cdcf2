// Exports: one feature vector against many Gaussians.
#include "scoring/multi_mixture.h"

using namespace qorsr;

QorStatus qorsLogGaussMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                            int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(TruncatedScore(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows, const int16_t* x,
                                             int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(TruncatedScore(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                      float* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(PlainScore<float>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                       int32_t width, float* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(PlainScore<float>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, valsAndResult,
                               valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                                      double* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(PlainScore<double>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                       int32_t width, double* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(PlainScore<double>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, valsAndResult,
                               valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(LowScore<int32_t>(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x,
                               width, valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                 const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                 int32_t scaleFactor) {
  return scoreGaussians<Write>(LowScore<int32_t>(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, float* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(LowScore<float>(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x,
                               width, valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                    int32_t scaleFactor) {
  return scoreGaussians<Write>(LowScore<float>(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                int32_t width, float* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(ScaledScore(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                               valsAndResult, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                 const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                 int32_t scaleFactor) {
  return scoreGaussians<Write>(ScaledScore(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, valsAndResult,
                               valsAndResult, count);
}
QorStatus qorsLogGaussMaxMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                               int32_t width, const int32_t* vals, int32_t* result, int32_t count,
                                               int32_t scaleFactor) {
  return scoreGaussians<RoundedTowardZero<KeepMaxThroughFloat>>(
      LimitedScore(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                int32_t count, int32_t scaleFactor) {
  return scoreGaussians<RoundedTowardZero<KeepMaxThroughFloat>>(
      LimitedScore(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                         const float* vals, float* result, int32_t count) {
  return scoreGaussians<KeepMax>(PlainScore<float>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width, vals,
                                 result, count);
}
QorStatus qorsLogGaussMaxMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                          int32_t width, const float* vals, float* result, int32_t count) {
  return scoreGaussians<KeepMax>(PlainScore<float>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result,
                                 count);
}
QorStatus qorsLogGaussMaxMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                         int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<KeepMax>(PlainScore<double>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                                 vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                          int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<KeepMax>(PlainScore<double>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result,
                                 count);
}
QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const int32_t* vals, int32_t* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<RoundedTowardZero<KeepMax>>(
      LowScore<int32_t>(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<RoundedTowardZero<KeepMax>>(
      LowScore<int32_t>(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                      const int16_t* x, int32_t width, const float* vals, float* result,
                                                      int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowScore<float>(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x,
                                 width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                       const int16_t* x, int32_t width, const float* vals, float* result,
                                                       int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowScore<float>(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals,
                                 result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const float* vals, float* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(ScaledScore(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                                 vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const float* vals, float* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(ScaledScore(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals,
                                 result, count);
}
QorStatus qorsLogGaussAddMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                         const float* vals, float* result, int32_t count) {
  return scoreGaussians<LogAdd>(PlainScore<float>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width, vals,
                                result, count);
}
QorStatus qorsLogGaussAddMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                          int32_t width, const float* vals, float* result, int32_t count) {
  return scoreGaussians<LogAdd>(PlainScore<float>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result,
                                count);
}
QorStatus qorsLogGaussAddMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                         int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<LogAdd>(PlainScore<double>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width, vals,
                                result, count);
}
QorStatus qorsLogGaussAddMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                          int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<LogAdd>(PlainScore<double>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result,
                                count);
}
QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                      const int16_t* x, int32_t width, const float* vals, float* result,
                                                      int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(LowScore<float>(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x,
                                width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                       const int16_t* x, int32_t width, const float* vals, float* result,
                                                       int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(LowScore<float>(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals,
                                result, count);
}
QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const float* vals, float* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(ScaledScore(scaleFactor), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                                vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const float* vals, float* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(ScaledScore(scaleFactor), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, vals, result,
                                count);
}
QorStatus qorsMahDistMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                     float* result, int32_t count) {
  return scoreGaussians<Write>(Distance<RealSums<float>>(), Gaussians{strided(means, stride), strided(variances, stride)}, x, width,
                               NoVals(), result, count);
}
QorStatus qorsMahDistMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x, int32_t width,
                                      float* result, int32_t count) {
  return scoreGaussians<Write>(Distance<RealSums<float>>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, NoVals(),
                               result, count);
}
QorStatus qorsMahDistMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                                     double* result, int32_t count) {
  return scoreGaussians<Write>(Distance<RealSums<double>>(), Gaussians{strided(means, stride), strided(variances, stride)}, x,
                               width, NoVals(), result, count);
}
QorStatus qorsMahDistMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                      int32_t width, double* result, int32_t count) {
  return scoreGaussians<Write>(Distance<RealSums<double>>(), Gaussians{listed(meanRows), listed(varianceRows)}, x, width, NoVals(),
                               result, count);
}
