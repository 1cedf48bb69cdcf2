// Exports: deltas and accelerations.
#include "features/delta_aurora.h"
#include "features/delta_windows.h"
#include "qorsr.h"

using namespace qorsr;

// ---- Windows of one and two frames, float ----

QorStatus qorsDelta_Win1_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                float multiplier, int32_t flags) {
  return windowDelta<Win1, 1>(source, width, destination, step, height, flags, RealArithmetic(),
                              UniformFactors<float>{multiplier, 0});
}
QorStatus qorsDelta_Win2_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                float multiplier, int32_t flags) {
  return windowDelta<Win2, 1>(source, width, destination, step, height, flags, RealArithmetic(),
                              UniformFactors<float>{multiplier, 0});
}
QorStatus qorsDeltaMul_Win1_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination, int32_t step,
                                   int32_t height, int32_t flags) {
  return windowDelta<Win1, 1>(source, width, destination, step, height, flags, RealArithmetic(),
                              TableFactors<float>{multipliers, width});
}
QorStatus qorsDeltaMul_Win2_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination, int32_t step,
                                   int32_t height, int32_t flags) {
  return windowDelta<Win2, 1>(source, width, destination, step, height, flags, RealArithmetic(),
                              TableFactors<float>{multipliers, width});
}
QorStatus qorsDeltaDelta_Win1_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                     float deltaMultiplier, float accelerationMultiplier, int32_t flags) {
  return windowDelta<Win1, 2>(source, width, destination, step, height, flags, RealArithmetic(),
                              UniformFactors<float>{deltaMultiplier, accelerationMultiplier});
}
QorStatus qorsDeltaDelta_Win2_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                     float deltaMultiplier, float accelerationMultiplier, int32_t flags) {
  return windowDelta<Win2, 2>(source, width, destination, step, height, flags, RealArithmetic(),
                              UniformFactors<float>{deltaMultiplier, accelerationMultiplier});
}
QorStatus qorsDeltaDeltaMul_Win1_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                        int32_t step, int32_t height, int32_t flags) {
  return windowDelta<Win1, 2>(source, width, destination, step, height, flags, RealArithmetic(),
                              TableFactors<float>{multipliers, width});
}
QorStatus qorsDeltaDeltaMul_Win2_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                        int32_t step, int32_t height, int32_t flags) {
  return windowDelta<Win2, 2>(source, width, destination, step, height, flags, RealArithmetic(),
                              TableFactors<float>{multipliers, width});
}

// ---- Windows of one and two frames, 16 bits ----

QorStatus qorsDelta_Win1_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                   int16_t multiplier, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win1, 1>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              UniformFactors<int16_t>{multiplier, 0});
}
QorStatus qorsDelta_Win2_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                   int16_t multiplier, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win2, 1>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              UniformFactors<int16_t>{multiplier, 0});
}
QorStatus qorsDeltaMul_Win1_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width, int16_t* destination,
                                      int32_t step, int32_t height, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win1, 1>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              TableFactors<int16_t>{multipliers, width});
}
QorStatus qorsDeltaMul_Win2_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width, int16_t* destination,
                                      int32_t step, int32_t height, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win2, 1>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              TableFactors<int16_t>{multipliers, width});
}
QorStatus qorsDeltaDelta_Win1_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                        int16_t deltaMultiplier, int16_t accelerationMultiplier, int32_t flags,
                                        int32_t scaleFactor) {
  return windowDelta<Win1, 2>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              UniformFactors<int16_t>{deltaMultiplier, accelerationMultiplier});
}
QorStatus qorsDeltaDelta_Win2_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step, int32_t height,
                                        int16_t deltaMultiplier, int16_t accelerationMultiplier, int32_t flags,
                                        int32_t scaleFactor) {
  return windowDelta<Win2, 2>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              UniformFactors<int16_t>{deltaMultiplier, accelerationMultiplier});
}
QorStatus qorsDeltaDeltaMul_Win1_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width, int16_t* destination,
                                           int32_t step, int32_t height, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win1, 2>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              TableFactors<int16_t>{multipliers, width});
}
QorStatus qorsDeltaDeltaMul_Win2_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width, int16_t* destination,
                                           int32_t step, int32_t height, int32_t flags, int32_t scaleFactor) {
  return windowDelta<Win2, 2>(source, width, destination, step, height, flags, FixedArithmetic{ScaleShift(scaleFactor)},
                              TableFactors<int16_t>{multipliers, width});
}

// ---- Aurora windows ----

QorStatus qorsDeltaDelta_Aurora_32f_D2(const float* source, float* destination, int32_t step, int32_t height, int32_t flags) {
  return auroraDeltaDelta(source, destination, step, height, flags, AuroraReal<NoFactors<float>>());
}
QorStatus qorsDeltaDeltaMul_Aurora_32f_D2(const float* source, const float* multipliers, float* destination, int32_t step,
                                          int32_t height, int32_t flags) {
  return auroraDeltaDelta(source, destination, step, height, flags, AuroraReal<TableFactors<float>>{{multipliers, kAuroraWidth}});
}
QorStatus qorsDeltaDelta_Aurora_16s_D2Sfs(const int16_t* source, int16_t* destination, int32_t step, int32_t height, int32_t flags,
                                          int32_t scaleFactor) {
  return auroraDeltaDelta(source, destination, step, height, flags, AuroraFixed<NoFactors<int16_t>>({}, scaleFactor));
}
QorStatus qorsDeltaDeltaMul_Aurora_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int16_t* destination, int32_t step,
                                             int32_t height, int32_t flags, int32_t scaleFactor) {
  return auroraDeltaDelta(source, destination, step, height, flags,
                          AuroraFixed<TableFactors<int16_t>>({multipliers, kAuroraWidth}, scaleFactor));
}
