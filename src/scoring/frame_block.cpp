// Exports: a block of frames against one Gaussian.
#include "scoring/frame_block.h"

using namespace qorsr;
using namespace qorsr::score;

QorStatus qorsLogGauss_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                    int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Truncated(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                     int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Truncated(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                              float* result, int32_t height, float val) {
  return scoreFrames<Write>(Folded<float>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                               int32_t height, float val) {
  return scoreFrames<Write>(Folded<float>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                              double* result, int32_t height, double val) {
  return scoreFrames<Write>(Plain<double>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width, double* result,
                               int32_t height, double val) {
  return scoreFrames<Write>(Plain<double>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                          int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Truncated(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                           int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Truncated(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                    int32_t height, float val) {
  return scoreFrames<Write>(Folded<float>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                     float val) {
  return scoreFrames<Write>(Folded<float>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                    int32_t height, double val) {
  return scoreFrames<Write>(Plain<double>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result, int32_t height,
                                     double val) {
  return scoreFrames<Write>(Plain<double>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Integer(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                              int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Integer(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Pairs(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Pairs(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Scaled(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                              int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Scaled(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGauss_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                        int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Low(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                         int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(Low(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowReal(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowReal(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                        int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Scaled(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGauss_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                         float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(Scaled(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                       int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Limited(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                        int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Limited(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                                 float* result, int32_t height, float val) {
  return scoreFrames<KeepMax>(Folded<float>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                                  int32_t height, float val) {
  return scoreFrames<KeepMax>(Folded<float>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                                 double* result, int32_t height, double val) {
  return scoreFrames<KeepMax>(Plain<double>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                  double* result, int32_t height, double val) {
  return scoreFrames<KeepMax>(Plain<double>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Limited(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                              int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Limited(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                       int32_t height, float val) {
  return scoreFrames<KeepMax>(Folded<float>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                        float val) {
  return scoreFrames<KeepMax>(Folded<float>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                       int32_t height, double val) {
  return scoreFrames<KeepMax>(Plain<double>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                        int32_t height, double val) {
  return scoreFrames<KeepMax>(Plain<double>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(IntegerMax(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                                 int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(IntegerMax(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                   float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Pairs(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                    int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Pairs(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Scaled(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Scaled(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussMax_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowMax(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowMax(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                              int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowReal(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                               int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowReal(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Scaled(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussMax_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(Scaled(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                                 float* result, int32_t height, float val) {
  return scoreFrames<LogAdd>(Folded<float>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                                  int32_t height, float val) {
  return scoreFrames<LogAdd>(Folded<float>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                                 double* result, int32_t height, double val) {
  return scoreFrames<LogAdd>(Plain<double>(), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                  double* result, int32_t height, double val) {
  return scoreFrames<LogAdd>(Plain<double>(), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                       int32_t height, float val) {
  return scoreFrames<LogAdd>(Folded<float>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                        float val) {
  return scoreFrames<LogAdd>(Folded<float>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                       int32_t height, double val) {
  return scoreFrames<LogAdd>(Plain<double>(), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                        int32_t height, double val) {
  return scoreFrames<LogAdd>(Plain<double>(), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                   float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Pairs(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                    int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Pairs(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Scaled(scaleFactor), strided(source, stride), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Scaled(scaleFactor), listed(rows), identity(mean), width, result, height, val);
}
QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                              int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(LowReal(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                               int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(LowReal(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Scaled(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsLogGaussAdd_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(Scaled(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height, val);
}
QorStatus qorsMahDist_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                             float* result, int32_t height) {
  return scoreFrames<Write>(RealDistance<float>(), strided(source, stride), diagonal(mean, variance), width, result, height);
}
QorStatus qorsMahDist_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                              int32_t height) {
  return scoreFrames<Write>(RealDistance<float>(), listed(rows), diagonal(mean, variance), width, result, height);
}
QorStatus qorsMahDist_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                             double* result, int32_t height) {
  return scoreFrames<Write>(RealDistance<double>(), strided(source, stride), diagonal(mean, variance), width, result, height);
}
QorStatus qorsMahDist_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width, double* result,
                              int32_t height) {
  return scoreFrames<Write>(RealDistance<double>(), listed(rows), diagonal(mean, variance), width, result, height);
}
