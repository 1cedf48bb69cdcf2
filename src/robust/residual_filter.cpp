// Exports: taps of the residual filter, and the filter.
#include "robust/residual_filter.h"

using namespace qorsr;

QorStatus qorsTabsCalculation_Aurora_32f(const float* coefficients, float* taps) { return arrangeTaps(coefficients, taps); }
QorStatus qorsTabsCalculation_Aurora_16s(const int16_t* coefficients, int16_t* taps) { return arrangeTaps(coefficients, taps); }
QorStatus qorsResidualFilter_Aurora_32f(const float* source, float* result, const float* taps) {
  return filterResidual(source, result, taps);
}
QorStatus qorsResidualFilter_Aurora_16s_Sfs(const int16_t* source, int16_t* result, const int16_t* taps, int32_t scaleFactor) {
  return filterResidual(source, result, taps, scaleFactor);
}
