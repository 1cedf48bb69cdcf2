// Exports: counts of sign changes.
#include "features/sign_changes.h"

using namespace qorsr;

QorStatus qorsSignChangeRate_32f(const float* source, int32_t length, float* result) {
  return countSignChanges(source, length, result, NegativeProducts(), [](int64_t n) { return static_cast<float>(n); });
}
QorStatus qorsSignChangeRate_Count0_32f(const float* source, int32_t length, float* result) {
  return countSignChanges(source, length, result, SignSteps(), [](int64_t n) { return static_cast<float>(n) * 0.5F; });
}
QorStatus qorsSignChangeRateXor_32f(const float* source, int32_t length, int32_t* result) {
  return countSignChanges(source, length, result, DifferentSigns(), [](int64_t n) { return static_cast<int32_t>(n); });
}
QorStatus qorsSignChangeRate_16s(const int16_t* source, int32_t length, int32_t* result) {
  return countSignChanges(source, length, result, NegativeProducts(), [](int64_t n) { return static_cast<int32_t>(n); });
}
// required: an odd sum loses its half.
QorStatus qorsSignChangeRate_Count0_16s(const int16_t* source, int32_t length, int32_t* result) {
  return countSignChanges(source, length, result, SignSteps(), [](int64_t n) { return static_cast<int32_t>(n >> 1); });
}
