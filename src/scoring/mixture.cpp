// Exports: one feature vector, or a block of frames, against a Gaussian mixture.
#include "scoring/selected_mixture.h"

using namespace qorsr;

QorStatus qorsLogGaussMixture_32f_D2(const float* x, const float* means, const float* variances, int32_t count, int32_t stride,
                                     int32_t width, const float* vals, float* result) {
  return scoreMixture(PlainScore<float>(), x, Gaussians{strided(means, stride), strided(variances, stride)}, count, width, vals,
                      result);
}
QorStatus qorsLogGaussMixture_32f_D2L(const float* x, const float* const* meanRows, const float* const* varianceRows, int32_t count,
                                      int32_t width, const float* vals, float* result) {
  return scoreMixture(PlainScore<float>(), x, Gaussians{listed(meanRows), listed(varianceRows)}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_64f_D2(const double* x, const double* means, const double* variances, int32_t count, int32_t stride,
                                     int32_t width, const double* vals, double* result) {
  return scoreMixture(PlainScore<double>(), x, Gaussians{strided(means, stride), strided(variances, stride)}, count, width, vals,
                      result);
}
QorStatus qorsLogGaussMixture_64f_D2L(const double* x, const double* const* meanRows, const double* const* varianceRows,
                                      int32_t count, int32_t width, const double* vals, double* result) {
  return scoreMixture(PlainScore<double>(), x, Gaussians{listed(meanRows), listed(varianceRows)}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_32f_D2(const float* x, const float* means, int32_t count, int32_t stride, int32_t width,
                                           const float* vals, float* result) {
  return scoreMixture(PlainScore<float>(), x, Gaussians{strided(means, stride), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_32f_D2L(const float* x, const float* const* meanRows, int32_t count, int32_t width,
                                            const float* vals, float* result) {
  return scoreMixture(PlainScore<float>(), x, Gaussians{listed(meanRows), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_64f_D2(const double* x, const double* means, int32_t count, int32_t stride, int32_t width,
                                           const double* vals, double* result) {
  return scoreMixture(PlainScore<double>(), x, Gaussians{strided(means, stride), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_64f_D2L(const double* x, const double* const* meanRows, int32_t count, int32_t width,
                                            const double* vals, double* result) {
  return scoreMixture(PlainScore<double>(), x, Gaussians{listed(meanRows), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_Scaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances, int32_t count,
                                               int32_t stride, int32_t width, const float* vals, float* result,
                                               int32_t scaleFactor) {
  return scoreMixture(ScaledScore(scaleFactor), x, Gaussians{strided(means, stride), strided(variances, stride)}, count, width,
                      vals, result);
}
QorStatus qorsLogGaussMixture_Scaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                const int16_t* const* varianceRows, int32_t count, int32_t width, const float* vals,
                                                float* result, int32_t scaleFactor) {
  return scoreMixture(ScaledScore(scaleFactor), x, Gaussians{listed(meanRows), listed(varianceRows)}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances, int32_t count,
                                                  int32_t stride, int32_t width, const float* vals, float* result,
                                                  int32_t scaleFactor) {
  return scoreMixture(LowScore<float>(scaleFactor), x, Gaussians{strided(means, stride), strided(variances, stride)}, count, width,
                      vals, result);
}
QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                   const int16_t* const* varianceRows, int32_t count, int32_t width,
                                                   const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(LowScore<float>(scaleFactor), x, Gaussians{listed(meanRows), listed(varianceRows)}, count, width, vals,
                      result);
}
QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count, int32_t stride,
                                                    int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(ScaledScore(scaleFactor), x, Gaussians{strided(means, stride), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count, int32_t width,
                                                     const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(ScaledScore(scaleFactor), x, Gaussians{listed(meanRows), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count, int32_t stride,
                                                       int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(PairScore(scaleFactor), x, Gaussians{strided(means, stride), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count,
                                                        int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(PairScore(scaleFactor), x, Gaussians{listed(meanRows), UnitRows()}, count, width, vals, result);
}
QorStatus qorsLogGaussMixture_Select_32f_D2(const float* frames, const float* means, const float* variances, int32_t stride,
                                            int32_t width, const float* vals, const uint8_t* mask, int32_t count, float* results,
                                            int32_t frameCount, float floor) {
  return scoreSelected(FoldedScore<float>(), strided(frames, stride), Gaussians{strided(means, stride), strided(variances, stride)},
                       width, vals, SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_Select_32f_D2L(const float* const* frameRows, const float* const* meanRows,
                                             const float* const* varianceRows, int32_t width, const float* vals,
                                             const uint8_t* mask, int32_t count, float* results, int32_t frameCount, float floor) {
  return scoreSelected(FoldedScore<float>(), listed(frameRows), Gaussians{listed(meanRows), listed(varianceRows)}, width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t* frames, const int16_t* means, const int16_t* variances,
                                                     int32_t stride, int32_t width, const float* vals, const uint8_t* mask,
                                                     int32_t count, float* results, int32_t frameCount, float floor,
                                                     int32_t scaleFactor) {
  return scoreSelected(ScaledScore(scaleFactor), strided(frames, stride),
                       Gaussians{strided(means, stride), strided(variances, stride)}, width, vals, SelectionMask(mask, count),
                       results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2L(const int16_t* const* frameRows, const int16_t* const* meanRows,
                                                      const int16_t* const* varianceRows, int32_t width, const float* vals,
                                                      const uint8_t* mask, int32_t count, float* results, int32_t frameCount,
                                                      float floor, int32_t scaleFactor) {
  return scoreSelected(ScaledScore(scaleFactor), listed(frameRows), Gaussians{listed(meanRows), listed(varianceRows)}, width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2(const float* frames, const float* means, int32_t stride, int32_t width,
                                                 const float* vals, const uint8_t* mask, int32_t count, float* results,
                                                 int32_t frameCount, float floor) {
  return scoreSelected(FoldedScore<float>(), strided(frames, stride), Gaussians{strided(means, stride), UnitRows()}, width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2L(const float* const* frameRows, const float* const* meanRows, int32_t width,
                                                  const float* vals, const uint8_t* mask, int32_t count, float* results,
                                                  int32_t frameCount, float floor) {
  return scoreSelected(FoldedScore<float>(), listed(frameRows), Gaussians{listed(meanRows), UnitRows()}, width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t* frames, const int16_t* means, int32_t stride,
                                                          int32_t width, const float* vals, const uint8_t* mask, int32_t count,
                                                          float* results, int32_t frameCount, float floor, int32_t scaleFactor) {
  return scoreSelected(ScaledScore(scaleFactor), strided(frames, stride), Gaussians{strided(means, stride), UnitRows()}, width,
                       vals, SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t* const* frameRows, const int16_t* const* meanRows,
                                                           int32_t width, const float* vals, const uint8_t* mask, int32_t count,
                                                           float* results, int32_t frameCount, float floor, int32_t scaleFactor) {
  return scoreSelected(ScaledScore(scaleFactor), listed(frameRows), Gaussians{listed(meanRows), UnitRows()}, width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
