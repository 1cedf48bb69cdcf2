// Exports: the n-th largest element.
#include "numeric/nth_max.h"

using namespace qorsr;

QorStatus qorsNthMaxElement_32f(const float* source, int32_t length, int32_t n, float* result) {
  return nthMaxElement(source, length, n, result);
}
QorStatus qorsNthMaxElement_32s(const int32_t* source, int32_t length, int32_t n, int32_t* result) {
  return nthMaxElement(source, length, n, result);
}
QorStatus qorsNthMaxElement_64f(const double* source, int32_t length, int32_t n, double* result) {
  return nthMaxElement(source, length, n, result);
}
