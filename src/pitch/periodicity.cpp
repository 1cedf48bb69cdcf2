// Exports: measures of periodicity.
#include "pitch/periodicity.h"

using namespace qorsr;

QorStatus qorsPeriodicityLSPE_32f(const float* source, int32_t length, float* value, int32_t* period, int32_t maximumPeriod,
                                  int32_t minimumPeriod) {
  return leastSquaresPeriodicity(source, length, value, period, maximumPeriod, minimumPeriod);
}
QorStatus qorsPeriodicityLSPE_16s(const int16_t* source, int32_t length, int16_t* value, int32_t* period, int32_t maximumPeriod,
                                  int32_t minimumPeriod) {
  return leastSquaresPeriodicity(source, length, value, period, maximumPeriod, minimumPeriod);
}
QorStatus qorsPeriodicity_32f(const float* source, int32_t length, float* value, int32_t* period, int32_t maximumPeriod,
                              int32_t minimumPeriod) {
  return meanPeriodicity(source, length, value, period, maximumPeriod, minimumPeriod);
}
QorStatus qorsPeriodicity_32s16s(const int32_t* source, int32_t length, int16_t* value, int32_t* period, int32_t maximumPeriod,
                                 int32_t minimumPeriod) {
  return meanPeriodicity(source, length, value, period, maximumPeriod, minimumPeriod);
}
