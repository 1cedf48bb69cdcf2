// Exports: normalisation into a range.
#include "features/range_normalisation.h"

using namespace qorsr;

QorStatus qorsNormalizeInRange_32f(const float* source, float* destination, int32_t length, float lower, float upper, float range) {
  return normaliseRange(source, destination, length, RangeRatios<float>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_32f_I(float* buffer, int32_t length, float lower, float upper, float range) {
  return normaliseRange(buffer, buffer, length, RangeRatios<float>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_16s(const int16_t* source, int16_t* destination, int32_t length, float lower, float upper,
                                   int16_t range) {
  return normaliseRange(source, destination, length, RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_16s_I(int16_t* buffer, int32_t length, float lower, float upper, int16_t range) {
  return normaliseRange(buffer, buffer, length, RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_16s8u(const int16_t* source, uint8_t* destination, int32_t length, float lower, float upper,
                                     uint8_t range) {
  return normaliseRange(source, destination, length, RangeRatios<uint8_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_32f16s(const float* source, int16_t* destination, int32_t length, float lower, float upper,
                                      int16_t range) {
  return normaliseRange(source, destination, length, RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRange_32f8u(const float* source, uint8_t* destination, int32_t length, float lower, float upper,
                                     uint8_t range) {
  return normaliseRange(source, destination, length, RangeRatios<uint8_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_32f(const float* source, float* destination, int32_t length, float minimum, float maximum,
                                         float lower, float upper, float range) {
  return normaliseRange(source, destination, length, Extremes<float>{minimum, maximum}, RangeRatios<float>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_32f_I(float* buffer, int32_t length, float minimum, float maximum, float lower, float upper,
                                           float range) {
  return normaliseRange(buffer, buffer, length, Extremes<float>{minimum, maximum}, RangeRatios<float>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t minimum,
                                         int16_t maximum, float lower, float upper, int16_t range) {
  return normaliseRange(source, destination, length, Extremes<int16_t>{minimum, maximum},
                        RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_16s_I(int16_t* buffer, int32_t length, int16_t minimum, int16_t maximum, float lower,
                                           float upper, int16_t range) {
  return normaliseRange(buffer, buffer, length, Extremes<int16_t>{minimum, maximum}, RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_16s8u(const int16_t* source, uint8_t* destination, int32_t length, int16_t minimum,
                                           int16_t maximum, float lower, float upper, uint8_t range) {
  return normaliseRange(source, destination, length, Extremes<int16_t>{minimum, maximum},
                        RangeRatios<uint8_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_32f16s(const float* source, int16_t* destination, int32_t length, float minimum, float maximum,
                                            float lower, float upper, int16_t range) {
  return normaliseRange(source, destination, length, Extremes<float>{minimum, maximum}, RangeRatios<int16_t>{lower, upper, range});
}
QorStatus qorsNormalizeInRangeMinMax_32f8u(const float* source, uint8_t* destination, int32_t length, float minimum, float maximum,
                                           float lower, float upper, uint8_t range) {
  return normaliseRange(source, destination, length, Extremes<float>{minimum, maximum}, RangeRatios<uint8_t>{lower, upper, range});
}
