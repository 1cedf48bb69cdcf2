// Exports: one feature vector, or a block of frames, against a Gaussian mixture.
#include "scoring/selected_mixture.h"

using namespace qorsr;
using namespace qorsr::score;

QorStatus qorsLogGaussMixture_32f_D2(const float* x, const float* means, const float* variances, int32_t count, int32_t stride,
                                     int32_t width, const float* vals, float* result) {
  return scoreMixture(Plain<float>(), x, stridedGaussians(means, variances, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_32f_D2L(const float* x, const float* const* meanRows, const float* const* varianceRows, int32_t count,
                                      int32_t width, const float* vals, float* result) {
  return scoreMixture(Plain<float>(), x, listedGaussians(meanRows, varianceRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_64f_D2(const double* x, const double* means, const double* variances, int32_t count, int32_t stride,
                                     int32_t width, const double* vals, double* result) {
  return scoreMixture(Plain<double>(), x, stridedGaussians(means, variances, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_64f_D2L(const double* x, const double* const* meanRows, const double* const* varianceRows,
                                      int32_t count, int32_t width, const double* vals, double* result) {
  return scoreMixture(Plain<double>(), x, listedGaussians(meanRows, varianceRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_32f_D2(const float* x, const float* means, int32_t count, int32_t stride, int32_t width,
                                           const float* vals, float* result) {
  return scoreMixture(Plain<float>(), x, stridedGaussians(means, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_32f_D2L(const float* x, const float* const* meanRows, int32_t count, int32_t width,
                                            const float* vals, float* result) {
  return scoreMixture(Plain<float>(), x, listedGaussians(meanRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_64f_D2(const double* x, const double* means, int32_t count, int32_t stride, int32_t width,
                                           const double* vals, double* result) {
  return scoreMixture(Plain<double>(), x, stridedGaussians(means, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVar_64f_D2L(const double* x, const double* const* meanRows, int32_t count, int32_t width,
                                            const double* vals, double* result) {
  return scoreMixture(Plain<double>(), x, listedGaussians(meanRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_Scaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances, int32_t count,
                                               int32_t stride, int32_t width, const float* vals, float* result,
                                               int32_t scaleFactor) {
  return scoreMixture(GroupScaled(scaleFactor), x, stridedGaussians(means, variances, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_Scaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                const int16_t* const* varianceRows, int32_t count, int32_t width, const float* vals,
                                                float* result, int32_t scaleFactor) {
  return scoreMixture(GroupScaled(scaleFactor), x, listedGaussians(meanRows, varianceRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances, int32_t count,
                                                  int32_t stride, int32_t width, const float* vals, float* result,
                                                  int32_t scaleFactor) {
  return scoreMixture(LowReal(scaleFactor), x, stridedGaussians(means, variances, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                   const int16_t* const* varianceRows, int32_t count, int32_t width,
                                                   const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(LowReal(scaleFactor), x, listedGaussians(meanRows, varianceRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count, int32_t stride,
                                                    int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(GroupScaled(scaleFactor), x, stridedGaussians(means, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count, int32_t width,
                                                     const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(GroupScaled(scaleFactor), x, listedGaussians(meanRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count, int32_t stride,
                                                       int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(Pairs(scaleFactor), x, stridedGaussians(means, stride), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count,
                                                        int32_t width, const float* vals, float* result, int32_t scaleFactor) {
  return scoreMixture(Pairs(scaleFactor), x, listedGaussians(meanRows), count, width, vals, result);
}
QorStatus qorsLogGaussMixture_Select_32f_D2(const float* frames, const float* means, const float* variances, int32_t stride,
                                            int32_t width, const float* vals, const uint8_t* mask, int32_t count, float* results,
                                            int32_t frameCount, float floor) {
  return scoreSelected(Folded<float>(), strided(frames, stride), stridedGaussians(means, variances, stride), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_Select_32f_D2L(const float* const* frameRows, const float* const* meanRows,
                                             const float* const* varianceRows, int32_t width, const float* vals,
                                             const uint8_t* mask, int32_t count, float* results, int32_t frameCount, float floor) {
  return scoreSelected(Folded<float>(), listed(frameRows), listedGaussians(meanRows, varianceRows), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t* frames, const int16_t* means, const int16_t* variances,
                                                     int32_t stride, int32_t width, const float* vals, const uint8_t* mask,
                                                     int32_t count, float* results, int32_t frameCount, float floor,
                                                     int32_t scaleFactor) {
  return scoreSelected(GroupScaled(scaleFactor), strided(frames, stride), stridedGaussians(means, variances, stride), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2L(const int16_t* const* frameRows, const int16_t* const* meanRows,
                                                      const int16_t* const* varianceRows, int32_t width, const float* vals,
                                                      const uint8_t* mask, int32_t count, float* results, int32_t frameCount,
                                                      float floor, int32_t scaleFactor) {
  return scoreSelected(GroupScaled(scaleFactor), listed(frameRows), listedGaussians(meanRows, varianceRows), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2(const float* frames, const float* means, int32_t stride, int32_t width,
                                                 const float* vals, const uint8_t* mask, int32_t count, float* results,
                                                 int32_t frameCount, float floor) {
  return scoreSelected(Folded<float>(), strided(frames, stride), stridedGaussians(means, stride), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2L(const float* const* frameRows, const float* const* meanRows, int32_t width,
                                                  const float* vals, const uint8_t* mask, int32_t count, float* results,
                                                  int32_t frameCount, float floor) {
  return scoreSelected(Folded<float>(), listed(frameRows), listedGaussians(meanRows), width, vals, SelectionMask(mask, count),
                       results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t* frames, const int16_t* means, int32_t stride,
                                                          int32_t width, const float* vals, const uint8_t* mask, int32_t count,
                                                          float* results, int32_t frameCount, float floor, int32_t scaleFactor) {
  return scoreSelected(GroupScaled(scaleFactor), strided(frames, stride), stridedGaussians(means, stride), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t* const* frameRows, const int16_t* const* meanRows,
                                                           int32_t width, const float* vals, const uint8_t* mask, int32_t count,
                                                           float* results, int32_t frameCount, float floor, int32_t scaleFactor) {
  return scoreSelected(GroupScaled(scaleFactor), listed(frameRows), listedGaussians(meanRows), width, vals,
                       SelectionMask(mask, count), results, frameCount, floor);
}
