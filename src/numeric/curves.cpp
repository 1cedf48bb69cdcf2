// Exports: curves, element by element.
#include "numeric/curves.h"

using namespace qorsr;

QorStatus qorsExpNegSqr_32f(const float* source, float* result, int32_t length) { return curve<ExpNegSqr>(source, result, length); }
QorStatus qorsExpNegSqr_64f(const double* source, double* result, int32_t length) {
  return curve<ExpNegSqr>(source, result, length);
}
QorStatus qorsExpNegSqr_32f64f(const float* source, double* result, int32_t length) {
  return curve<ExpNegSqr>(source, result, length);
}
QorStatus qorsExpNegSqr_32f_I(float* values, int32_t length) { return curve<ExpNegSqr>(values, values, length); }
QorStatus qorsExpNegSqr_64f_I(double* values, int32_t length) { return curve<ExpNegSqr>(values, values, length); }

QorStatus qorsSinC_32f(const float* source, float* result, int32_t length) { return curve<SinC>(source, result, length); }
QorStatus qorsSinC_64f(const double* source, double* result, int32_t length) { return curve<SinC>(source, result, length); }
QorStatus qorsSinC_32f64f(const float* source, double* result, int32_t length) { return curve<SinC>(source, result, length); }
QorStatus qorsSinC_32f_I(float* values, int32_t length) { return curve<SinC>(values, values, length); }
QorStatus qorsSinC_64f_I(double* values, int32_t length) { return curve<SinC>(values, values, length); }

QorStatus qorsUnitCurve_32f(const float* source, float* result, int32_t length) { return unitCurve(source, result, length); }
QorStatus qorsUnitCurve_32f_I(float* values, int32_t length) { return unitCurve(values, values, length); }
QorStatus qorsUnitCurve_16s_Sfs(const int16_t* source, int32_t fractionBits, int16_t* result, int32_t length, int32_t scaleFactor) {
  return unitCurve(source, fractionBits, result, length, scaleFactor);
}
QorStatus qorsUnitCurve_16s_ISfs(int16_t* values, int32_t fractionBits, int32_t length, int32_t scaleFactor) {
  return unitCurve(values, fractionBits, values, length, scaleFactor);
}
