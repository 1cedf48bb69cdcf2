// Exports: one feature vector against one Gaussian.
#include "scoring/single_frame.h"

using namespace qorsr;
using namespace qorsr::score;

QorStatus qorsLogGaussSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result,
                                 float val) {
  return scoreOne(Folded<float>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_64f(const double* x, const double* mean, const double* variance, int32_t length, double* result,
                                 double val) {
  return scoreOne(Plain<double>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length, double* result,
                                    double val) {
  return scoreOne(Plain<double>(), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_32f(const float* x, const float* mean, int32_t length, float* result, float val) {
  return scoreOne(Folded<float>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_64f(const double* x, const double* mean, int32_t length, double* result, double val) {
  return scoreOne(Plain<double>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_32f64f(const float* x, const float* mean, int32_t length, double* result, double val) {
  return scoreOne(Plain<double>(), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_DirectVar_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result,
                                           float val) {
  return scoreByReciprocals(Folded<float>(), x, mean, variance, length, result, val);
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
  return scoreBlockDiagonal<float>(HalvedInDouble(), x, mean, covariance, length, result, val);
}
QorStatus qorsLogGaussSingle_BlockDVar_64f(const double* x, const double* mean, const BlockDMatrix_64f* covariance, int32_t length,
                                           double* result, double val) {
  return scoreBlockDiagonal<double>(Plain<double>(), x, mean, covariance, length, result, val);
}
QorStatus qorsLogGaussSingle_BlockDVar_32f64f(const float* x, const float* mean, const BlockDMatrix_32f* covariance, int32_t length,
                                              double* result, double val) {
  return scoreBlockDiagonal<double>(Plain<double>(), x, mean, covariance, length, result, val);
}
QorStatus qorsMahDistSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result) {
  return scoreOne(RealDistance<float>(), x, diagonal(mean, variance), length, result);
}
QorStatus qorsMahDistSingle_64f(const double* x, const double* mean, const double* variance, int32_t length, double* result) {
  return scoreOne(RealDistance<double>(), x, diagonal(mean, variance), length, result);
}
QorStatus qorsMahDistSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length, double* result) {
  return scoreOne(RealDistance<double>(), x, diagonal(mean, variance), length, result);
}
QorStatus qorsLogGaussSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                        int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreOne(Rounded(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_Scaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                           float* result, float val, int32_t scaleFactor) {
  return scoreOne(GroupScaled(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_Low_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                            int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreOne(Low(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_LowScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                              float* result, float val, int32_t scaleFactor) {
  return scoreOne(LowReal(scaleFactor), x, diagonal(mean, variance), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result, int32_t val,
                                              int32_t scaleFactor) {
  return scoreOne(Rounded(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result, float val,
                                                int32_t scaleFactor) {
  return scoreOne(GroupScaled(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarLow_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result,
                                                 int32_t val, int32_t scaleFactor) {
  return scoreOne(Integer(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_IdVarLowScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result, float val,
                                                   int32_t scaleFactor) {
  return scoreOne(Pairs(scaleFactor), x, identity(mean), length, result, val);
}
QorStatus qorsLogGaussSingle_DirectVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                  int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreByReciprocals(Converted{scaleFactor}, x, mean, variance, length, result, val);
}
QorStatus qorsLogGaussSingle_DirectVarScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                    float* result, float val, int32_t scaleFactor) {
  return scoreByReciprocals(Scaled(scaleFactor), x, mean, variance, length, result, val);
}
QorStatus qorsLogGaussSingle_BlockDVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, const BlockDMatrix_16s* covariance,
                                                  int32_t length, int32_t* result, int32_t val, int32_t scaleFactor) {
  return scoreBlockDiagonal<float>(HalvedAndScaled{scaleFactor}, x, mean, covariance, length, result, val);
}
QorStatus qorsLogGaussSingle_BlockDVarScaled_16s32f(const int16_t* x, const int16_t* mean, const BlockDMatrix_16s* covariance,
                                                    int32_t length, float* result, float val, int32_t scaleFactor) {
  return scoreBlockDiagonal<float>(HalvedAndScaled{scaleFactor}, x, mean, covariance, length, result, val);
}
QorStatus qorsMahDistSingle_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length, float* result) {
  return scoreOne(Distance<GroupedShortSums>(), x, diagonal(mean, variance), length, result);
}
QorStatus qorsMahDistSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                       int32_t* result, int32_t scaleFactor) {
  return distanceScaled(x, mean, variance, length, result, scaleFactor);
}
