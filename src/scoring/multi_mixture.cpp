// Exports: one feature vector against many Gaussians.
#include "scoring/multi_mixture.h"

using namespace qorsr;
using namespace qorsr::score;

QorStatus qorsLogGaussMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                            int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(Truncated(scaleFactor), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows, const int16_t* x,
                                             int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(Truncated(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                      float* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(Plain<float>(), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                       int32_t width, float* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(Plain<float>(), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                                      double* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(Plain<double>(), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                       int32_t width, double* valsAndResult, int32_t count) {
  return scoreGaussians<Write>(Plain<double>(), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                int32_t width, int32_t* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(Low(scaleFactor), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                 const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                 int32_t scaleFactor) {
  return scoreGaussians<Write>(Low(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, float* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(LowReal(scaleFactor), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                    int32_t scaleFactor) {
  return scoreGaussians<Write>(LowReal(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                int32_t width, float* valsAndResult, int32_t count, int32_t scaleFactor) {
  return scoreGaussians<Write>(Scaled(scaleFactor), stridedGaussians(means, variances, stride), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                 const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                 int32_t scaleFactor) {
  return scoreGaussians<Write>(Scaled(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, valsAndResult, count);
}
QorStatus qorsLogGaussMaxMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                               int32_t width, const int32_t* vals, int32_t* result, int32_t count,
                                               int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(Limited(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(Limited(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                         const float* vals, float* result, int32_t count) {
  return scoreGaussians<KeepMax>(Plain<float>(), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                          int32_t width, const float* vals, float* result, int32_t count) {
  return scoreGaussians<KeepMax>(Plain<float>(), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                         int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<KeepMax>(Plain<double>(), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                          int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<KeepMax>(Plain<double>(), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const int32_t* vals, int32_t* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowExact(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowExact(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                      const int16_t* x, int32_t width, const float* vals, float* result,
                                                      int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowReal(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                       const int16_t* x, int32_t width, const float* vals, float* result,
                                                       int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(LowReal(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const float* vals, float* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(Scaled(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const float* vals, float* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<KeepMax>(Scaled(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                         const float* vals, float* result, int32_t count) {
  return scoreGaussians<LogAdd>(Plain<float>(), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                          int32_t width, const float* vals, float* result, int32_t count) {
  return scoreGaussians<LogAdd>(Plain<float>(), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                         int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<LogAdd>(Plain<double>(), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                          int32_t width, const double* vals, double* result, int32_t count) {
  return scoreGaussians<LogAdd>(Plain<double>(), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                      const int16_t* x, int32_t width, const float* vals, float* result,
                                                      int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(LowReal(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                       const int16_t* x, int32_t width, const float* vals, float* result,
                                                       int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(LowReal(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride, const int16_t* x,
                                                   int32_t width, const float* vals, float* result, int32_t count,
                                                   int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(Scaled(scaleFactor), stridedGaussians(means, variances, stride), x, width, vals, result, count);
}
QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                    const int16_t* x, int32_t width, const float* vals, float* result,
                                                    int32_t count, int32_t scaleFactor) {
  return scoreGaussians<LogAdd>(Scaled(scaleFactor), listedGaussians(meanRows, varianceRows), x, width, vals, result, count);
}
QorStatus qorsMahDistMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x, int32_t width,
                                     float* result, int32_t count) {
  return gaussianDistances(stridedGaussians(means, variances, stride), x, width, result, count);
}
QorStatus qorsMahDistMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x, int32_t width,
                                      float* result, int32_t count) {
  return gaussianDistances(listedGaussians(meanRows, varianceRows), x, width, result, count);
}
QorStatus qorsMahDistMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x, int32_t width,
                                     double* result, int32_t count) {
  return gaussianDistances(stridedGaussians(means, variances, stride), x, width, result, count);
}
QorStatus qorsMahDistMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                      int32_t width, double* result, int32_t count) {
  return gaussianDistances(listedGaussians(meanRows, varianceRows), x, width, result, count);
}
