// Exports: a block of frames against one Gaussian.
#include "scoring/frame_block.h"

using namespace qorsr;

QorStatus qorsLogGauss_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                    int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(TruncatedScore(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                     int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(TruncatedScore(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                              float* result, int32_t height, float val) {
  return scoreFrames<Write>(FoldedScore<float>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                               int32_t height, float val) {
  return scoreFrames<Write>(FoldedScore<float>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                              double* result, int32_t height, double val) {
  return scoreFrames<Write>(PlainScore<double>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width, double* result,
                               int32_t height, double val) {
  return scoreFrames<Write>(PlainScore<double>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                          int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(TruncatedScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                           int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(TruncatedScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                    int32_t height, float val) {
  return scoreFrames<Write>(FoldedScore<float>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                     float val) {
  return scoreFrames<Write>(FoldedScore<float>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                    int32_t height, double val) {
  return scoreFrames<Write>(PlainScore<double>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result, int32_t height,
                                     double val) {
  return scoreFrames<Write>(PlainScore<double>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(IntegerScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                              int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(IntegerScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(PairScore(scaleFactor), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(PairScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(ScaledScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                              int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(ScaledScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGauss_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                        int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowScore<int32_t>(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result,
                            height, SharedVal{val});
}
QorStatus qorsLogGauss_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                         int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowScore<int32_t>(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowScore<float>(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(LowScore<float>(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                        int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(ScaledScore(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGauss_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                         float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<Write>(ScaledScore(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                            SharedVal{val});
}
QorStatus qorsLogGaussMax_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                       int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LimitedScore(scaleFactor), strided(source, stride),
                                                             diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                        int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LimitedScore(scaleFactor), listed(rows), diagonal(mean, variance),
                                                             width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                                 float* result, int32_t height, float val) {
  return scoreFrames<KeepMax>(FoldedScore<float>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                                  int32_t height, float val) {
  return scoreFrames<KeepMax>(FoldedScore<float>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                                 double* result, int32_t height, double val) {
  return scoreFrames<KeepMax>(PlainScore<double>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                  double* result, int32_t height, double val) {
  return scoreFrames<KeepMax>(PlainScore<double>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                             int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LimitedScore(scaleFactor), strided(source, stride), identity(mean),
                                                             width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                              int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LimitedScore(scaleFactor), listed(rows), identity(mean), width, result,
                                                             height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                       int32_t height, float val) {
  return scoreFrames<KeepMax>(FoldedScore<float>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                        float val) {
  return scoreFrames<KeepMax>(FoldedScore<float>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                       int32_t height, double val) {
  return scoreFrames<KeepMax>(PlainScore<double>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                        int32_t height, double val) {
  return scoreFrames<KeepMax>(PlainScore<double>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(IntegerScore(scaleFactor), strided(source, stride), identity(mean),
                                                             width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width, int32_t* result,
                                                 int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(IntegerScore(scaleFactor), listed(rows), identity(mean), width, result,
                                                             height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                   float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(PairScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                    int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(PairScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(ScaledScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(ScaledScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LowScore<int32_t>(scaleFactor), strided(source, stride),
                                                             diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            int32_t* result, int32_t height, int32_t val, int32_t scaleFactor) {
  return scoreFrames<RoundedTowardZero<KeepMaxThroughFloat>>(LowScore<int32_t>(scaleFactor), listed(rows), diagonal(mean, variance),
                                                             width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussMax_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                              int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowScore<float>(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result,
                              height, SharedVal{val});
}
QorStatus qorsLogGaussMax_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                               int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(LowScore<float>(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(ScaledScore(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussMax_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<KeepMax>(ScaledScore(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                              SharedVal{val});
}
QorStatus qorsLogGaussAdd_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                                 float* result, int32_t height, float val) {
  return scoreFrames<LogAdd>(FoldedScore<float>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                                  int32_t height, float val) {
  return scoreFrames<LogAdd>(FoldedScore<float>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                                 double* result, int32_t height, double val) {
  return scoreFrames<LogAdd>(PlainScore<double>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                  double* result, int32_t height, double val) {
  return scoreFrames<LogAdd>(PlainScore<double>(), listed(rows), diagonal(mean, variance), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                       int32_t height, float val) {
  return scoreFrames<LogAdd>(FoldedScore<float>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result, int32_t height,
                                        float val) {
  return scoreFrames<LogAdd>(FoldedScore<float>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width, double* result,
                                       int32_t height, double val) {
  return scoreFrames<LogAdd>(PlainScore<double>(), strided(source, stride), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                        int32_t height, double val) {
  return scoreFrames<LogAdd>(PlainScore<double>(), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                   float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(PairScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                    int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(PairScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(ScaledScore(scaleFactor), strided(source, stride), identity(mean), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width, float* result,
                                                 int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(ScaledScore(scaleFactor), listed(rows), identity(mean), width, result, height, SharedVal{val});
}
QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                              int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(LowScore<float>(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                               int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(LowScore<float>(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                           int32_t width, float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(ScaledScore(scaleFactor), strided(source, stride), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsLogGaussAdd_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance, int32_t width,
                                            float* result, int32_t height, float val, int32_t scaleFactor) {
  return scoreFrames<LogAdd>(ScaledScore(scaleFactor), listed(rows), diagonal(mean, variance), width, result, height,
                             SharedVal{val});
}
QorStatus qorsMahDist_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                             float* result, int32_t height) {
  return scoreFrames<Write>(Distance<RealSums<float>>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                            NoVals());
}
QorStatus qorsMahDist_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width, float* result,
                              int32_t height) {
  return scoreFrames<Write>(Distance<RealSums<float>>(), listed(rows), diagonal(mean, variance), width, result, height, NoVals());
}
QorStatus qorsMahDist_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance, int32_t width,
                             double* result, int32_t height) {
  return scoreFrames<Write>(Distance<RealSums<double>>(), strided(source, stride), diagonal(mean, variance), width, result, height,
                            NoVals());
}
QorStatus qorsMahDist_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width, double* result,
                              int32_t height) {
  return scoreFrames<Write>(Distance<RealSums<double>>(), listed(rows), diagonal(mean, variance), width, result, height, NoVals());
}
