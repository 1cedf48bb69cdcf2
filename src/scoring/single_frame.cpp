// Exports: one feature vector against one Gaussian.
#include "scoring/single_frame.h"

using namespace qorsr;

QorStatus qorsLogGaussSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result,
                                 float val) {
  return scoreOne(FoldedScore<float>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_64f(const double* x, const double* mean, const double* variance, int32_t length, double* result,
                                 double val) {
  return scoreOne(PlainScore<double>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length, double* result,
                                    double val) {
  return scoreOne(PlainScore<double>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_32f(const float* x, const float* mean, int32_t length, float* result, float val) {
  return scoreOne(FoldedScore<float>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_64f(const double* x, const double* mean, int32_t length, double* result, double val) {
  return scoreOne(PlainScore<double>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_32f64f(const float* x, const float* mean, int32_t length, double* result, double val) {
  return scoreOne(PlainScore<double>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_DirectVar_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result,
                                           float val) {
  return scoreByReciprocals(x, mean, variance, length, result, [=](float sum) { return FoldedScore<float>()(sum, val); });
}
QorStatus qorsLogGaussSingle_DirectVar_64f(const double* x, const double* mean, const double* variance, int32_t length,
                                           double* result, double val) {
  return scoreByDivision(x, mean, variance, length, result, val, false);
}
QorStatus qorsLogGaussSingle_DirectVar_32f64f(const float* x, const float* mean, const float* variance, int32_t length,
                                              double* result, double val) {
  return scoreByDivision(x, mean, variance, length, result, val, true);
}
QorStatus qorsLogGaussSingle_BlockDVar_32f(const float* x, const float* mean, const BlockDMatrix_32f* covariance, int32_t length,
                                           float* result, float val) {
  return scoreBlockDiagonal<float>(x, mean, covariance, length, result, [=](float sum) { return halvedInDouble(sum, val); });
}
QorStatus qorsLogGaussSingle_BlockDVar_64f(const double* x, const double* mean, const BlockDMatrix_64f* covariance, int32_t length,
                                           double* result, double val) {
  return scoreBlockDiagonal<double>(x, mean, covariance, length, result,
                                    [=](double sum) { return PlainScore<double>()(sum, val); });
}
QorStatus qorsLogGaussSingle_BlockDVar_32f64f(const float* x, const float* mean, const BlockDMatrix_32f* covariance, int32_t length,
                                              double* result, double val) {
  return scoreBlockDiagonal<double>(x, mean, covariance, length, result,
                                    [=](double sum) { return PlainScore<double>()(sum, val); });
}
QorStatus qorsMahDistSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result) {
  return scoreOne(Distance<RealSums<float>>(), x, diagonal(mean, variance), length, result, NoVals());
}
QorStatus qorsMahDistSingle_64f(const double* x, const double* mean, const double* variance, int32_t length, double* result) {
  return scoreOne(Distance<RealSums<double>>(), x, diagonal(mean, variance), length, result, NoVals());
}
QorStatus qorsMahDistSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length, double* result) {
  return scoreOne(Distance<RealSums<double>>(), x, diagonal(mean, variance), length, result, NoVals());
}
QorStatus qorsLogGaussSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                        int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreOne(RoundedScore(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_Scaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                           float* result, float val, int32_t scaleFactor) {
  return scoreOne(ScaledScore(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_Low_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                            int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreOne(LowScore<int32_t>(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_LowScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                              float* result, float val, int32_t scaleFactor) {
  return scoreOne(LowScore<float>(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result, int32_t val,
                                              int32_t scaleFactor) {
  return scoreOne(RoundedScore(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result, float val,
                                                int32_t scaleFactor) {
  return scoreOne(ScaledScore(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarLow_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result,
                                                 int32_t val, int32_t scaleFactor) {
  return scoreOne(IntegerScore(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarLowScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result, float val,
                                                   int32_t scaleFactor) {
  return scoreOne(PairScore(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_DirectVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                  int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreByReciprocals(x, mean, variance, length, result, [=](float sum) { return subtractConverted(sum, val, scaleFactor); });
}
QorStatus qorsLogGaussSingle_DirectVarScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                    float* result, float val, int32_t scaleFactor) {
  return scoreByReciprocals(x, mean, variance, length, result, [=](float sum) { return ScaledScore(scaleFactor)(sum, val); });
}
QorStatus qorsLogGaussSingle_BlockDVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, const BlockDMatrix_16s* covariance,
                                                  int32_t length, int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreBlockDiagonal<float>(x, mean, covariance, length, result, [=](float sum) {
    return saturatedAbove(halvedAndScaled(sum, static_cast<float>(val), scaleFactor));
  });
}
QorStatus qorsLogGaussSingle_BlockDVarScaled_16s32f(const int16_t* x, const int16_t* mean, const BlockDMatrix_16s* covariance,
                                                    int32_t length, float* result, float val, int32_t scaleFactor) {
  return scoreBlockDiagonal<float>(x, mean, covariance, length, result,
                                   [=](float sum) { return halvedAndScaled(sum, val, scaleFactor); });
}
QorStatus qorsMahDistSingle_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length, float* result) {
  return scoreOne(Distance<ShortSums>(), x, diagonal(mean, variance), length, result, NoVals());
}
QorStatus qorsMahDistSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                       int32_t* result, int32_t scaleFactor) {
  return distanceScaled(x, mean, variance, length, result, scaleFactor);
}
