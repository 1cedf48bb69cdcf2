// Exports: sums and sums of squares of columns.
#include "features/power_sums.h"

using namespace qorsr;

QorStatus qorsSumMeanVar_32f(const float* source, int32_t step, int32_t height, float* sums, float* squares, int32_t width) {
  return sumPowers<false>(source, step, height, sums, squares, width);
}
QorStatus qorsSumMeanVar_32f_I(const float* source, int32_t step, int32_t height, float* sums, float* squares, int32_t width) {
  return sumPowers<true>(source, step, height, sums, squares, width);
}
QorStatus qorsSumMeanVar_16s32f(const int16_t* source, int32_t step, int32_t height, float* sums, float* squares, int32_t width) {
  return sumPowers<false>(source, step, height, sums, squares, width);
}
QorStatus qorsSumMeanVar_16s32f_I(const int16_t* source, int32_t step, int32_t height, float* sums, float* squares, int32_t width) {
  return sumPowers<true>(source, step, height, sums, squares, width);
}
QorStatus qorsSumMeanVar_16s32s_Sfs(const int16_t* source, int32_t step, int32_t height, int32_t* sums, int32_t* squares,
                                    int32_t width, int32_t scaleFactor) {
  return sumPowers<false>(source, step, height, sums, squares, width, scaleFactor);
}
QorStatus qorsSumMeanVar_16s32s_ISfs(const int16_t* source, int32_t step, int32_t height, int32_t* sums, int32_t* squares,
                                     int32_t width, int32_t scaleFactor) {
  return sumPowers<true>(source, step, height, sums, squares, width, scaleFactor);
}
