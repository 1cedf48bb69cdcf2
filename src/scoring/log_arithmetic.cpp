// Exports: log-domain addition, subtraction and sum.
#include "scoring/log_arithmetic.h"

using namespace qorsr;

QorStatus qorsLogAdd_32f(const float* source, float* result, int32_t length, int32_t hint) {
  return logAddAll(source, result, length, hint);
}
QorStatus qorsLogAdd_64f(const double* source, double* result, int32_t length, int32_t hint) {
  return logAddAll(source, result, length, hint);
}
QorStatus qorsLogAdd_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor, int32_t hint) {
  return logAddScaled(source, result, length, scaleFactor, hint);
}
QorStatus qorsLogAdd_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor, int32_t hint) {
  return logAddScaled(source, result, length, scaleFactor, hint);
}

QorStatus qorsLogSub_32f(const float* source, float* result, int32_t length) {
  return logSubAll(source, result, length, LogSubOfFloats());
}
QorStatus qorsLogSub_64f(const double* source, double* result, int32_t length) {
  return logSubAll(source, result, length, LogSubOfDoubles());
}
QorStatus qorsLogSub_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor) {
  return logSubAll(source, result, length, LogSubOfIntegers<int16_t>{twoToMinus<float>(scaleFactor)});
}
QorStatus qorsLogSub_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor) {
  return logSubAll(source, result, length, LogSubOfIntegers<int32_t>{twoToMinus<float>(scaleFactor)});
}

QorStatus qorsLogSum_32f(const float* source, float* result, int32_t length, int32_t) { return logSumAll(source, result, length); }
QorStatus qorsLogSum_64f(const double* source, double* result, int32_t length, int32_t) {
  return logSumAll(source, result, length);
}
QorStatus qorsLogSum_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor, int32_t) {
  return logSumScaled(source, result, length, scaleFactor);
}
QorStatus qorsLogSum_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor, int32_t) {
  return logSumScaled(source, result, length, scaleFactor);
}
