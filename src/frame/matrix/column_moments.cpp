// Exports: means and variances of columns.
#include "frame/matrix/column_moments.h"

using namespace qorsr;

namespace {
double inDouble(int32_t n) { return 1.0 / n; }
double inFloat(int32_t n) { return static_cast<double>(reciprocalInFloat(n)); }
}  // namespace

QorStatus qorsMeanColumn_16s_D2(const int16_t* source, int32_t height, int32_t stride, int16_t* result, int32_t width) {
  return meanColumn16(strided(source, stride), height, result, width);
}
QorStatus qorsMeanColumn_16s_D2L(const int16_t* const* rows, int32_t height, int16_t* result, int32_t width) {
  return meanColumn16(listed(rows), height, result, width);
}
QorStatus qorsMeanColumn_32f_D2(const float* source, int32_t height, int32_t stride, float* result, int32_t width) {
  return meanColumn(strided(source, stride), height, result, width, reciprocalInDouble);
}
QorStatus qorsMeanColumn_32f_D2L(const float* const* rows, int32_t height, float* result, int32_t width) {
  return meanColumn(listed(rows), height, result, width, reciprocalInFloat);
}

QorStatus qorsVarColumn_16s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, const int16_t* means, int16_t* result,
                                  int32_t width, int32_t scaleFactor) {
  return varColumn16(strided(source, stride), height, means, result, width, scaleFactor);
}
QorStatus qorsVarColumn_16s_D2LSfs(const int16_t* const* rows, int32_t height, const int16_t* means, int16_t* result, int32_t width,
                                   int32_t scaleFactor) {
  return varColumn16(listed(rows), height, means, result, width, scaleFactor);
}
QorStatus qorsVarColumn_32f_D2(const float* source, int32_t height, int32_t stride, const float* means, float* result,
                               int32_t width) {
  return varColumn(strided(source, stride), height, means, result, width, reciprocalInDouble);
}
QorStatus qorsVarColumn_32f_D2L(const float* const* rows, int32_t height, const float* means, float* result, int32_t width) {
  return varColumn(listed(rows), height, means, result, width, reciprocalInFloat);
}

QorStatus qorsMeanVarColumn_16s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, int16_t* means, int16_t* variances,
                                      int32_t width, int32_t scaleFactor) {
  return meanVarColumn16(strided(source, stride), height, means, variances, width, scaleFactor);
}
QorStatus qorsMeanVarColumn_16s_D2LSfs(const int16_t* const* rows, int32_t height, int16_t* means, int16_t* variances,
                                       int32_t width, int32_t scaleFactor) {
  return meanVarColumn16(listed(rows), height, means, variances, width, scaleFactor);
}
QorStatus qorsMeanVarColumn_16s32s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, int32_t* means, int32_t* variances,
                                         int32_t width, int32_t scaleFactor) {
  return meanVarColumn32(strided(source, stride), height, means, variances, width, scaleFactor, inDouble);
}
QorStatus qorsMeanVarColumn_16s32s_D2LSfs(const int16_t* const* rows, int32_t height, int32_t* means, int32_t* variances,
                                          int32_t width, int32_t scaleFactor) {
  return meanVarColumn32(listed(rows), height, means, variances, width, scaleFactor, inFloat);
}
QorStatus qorsMeanVarColumn_16s16s32s_D2(const int16_t* source, int32_t height, int32_t stride, int16_t* means, int32_t* variances,
                                         int32_t width) {
  return meanVarColumn32(strided(source, stride), height, means, variances, width, 0, inDouble);
}
QorStatus qorsMeanVarColumn_16s16s32s_D2L(const int16_t* const* rows, int32_t height, int16_t* means, int32_t* variances,
                                          int32_t width) {
  return meanVarColumn32(listed(rows), height, means, variances, width, 0, inDouble);
}
QorStatus qorsMeanVarColumn_32f_D2(const float* source, int32_t height, int32_t stride, float* means, float* variances,
                                   int32_t width) {
  return meanVarColumn(strided(source, stride), height, means, variances, width, reciprocalInDouble);
}
QorStatus qorsMeanVarColumn_32f_D2L(const float* const* rows, int32_t height, float* means, float* variances, int32_t width) {
  return meanVarColumn(listed(rows), height, means, variances, width, reciprocalInFloat);
}
