// Exports: deltas of whole utterances, windows of any size.
#include "features/eval_delta.h"

#include "qorsr.h"

using namespace qorsr;

QorStatus qorsEvalDelta_32f_D2(float* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t windowSize,
                               float multiplier) {
  return evalDelta(buffer, height, step, width, offset, windowSize, RealArithmetic(), UniformFactors<float>{multiplier, 0});
}
QorStatus qorsEvalDeltaMul_32f_D2(float* buffer, int32_t height, int32_t step, const float* multipliers, int32_t width,
                                  int32_t offset, int32_t windowSize) {
  return evalDelta(buffer, height, step, width, offset, windowSize, RealArithmetic(), TableFactors<float>{multipliers, width});
}
QorStatus qorsEvalDelta_16s_D2Sfs(int16_t* buffer, int32_t height, int32_t step, int32_t width, int32_t offset, int32_t windowSize,
                                  int16_t multiplier, int32_t scaleFactor) {
  return evalDelta(buffer, height, step, width, offset, windowSize, FixedArithmetic{ScaleShift(scaleFactor)},
                   UniformFactors<int16_t>{multiplier, 0});
}
QorStatus qorsEvalDeltaMul_16s_D2Sfs(int16_t* buffer, int32_t height, int32_t step, const int16_t* multipliers, int32_t width,
                                     int32_t offset, int32_t windowSize, int32_t scaleFactor) {
  return evalDelta(buffer, height, step, width, offset, windowSize, FixedArithmetic{ScaleShift(scaleFactor)},
                   TableFactors<int16_t>{multipliers, width});
}
