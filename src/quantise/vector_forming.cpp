// Exports: vectors from indices and tables of rows.
#include "quantise/vector_forming.h"

using namespace qorsr;

QorStatus qorsFormVector_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                const int32_t* dimensions, const int32_t* strides, int32_t bookCount, int16_t* result) {
  return formVector(indices, tables, sizes, dimensions, strides, bookCount, result);
}
QorStatus qorsFormVector_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes, const int32_t* dimensions,
                                const int32_t* strides, int32_t bookCount, float* result) {
  return formVector(indices, tables, sizes, dimensions, strides, bookCount, result);
}
QorStatus qorsFormVector_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes,
                               const int32_t* dimensions, const int32_t* strides, int32_t bookCount, int16_t* result) {
  return formVector(indices, tables, sizes, dimensions, strides, bookCount, result);
}
QorStatus qorsFormVector_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes, const int32_t* dimensions,
                               const int32_t* strides, int32_t bookCount, float* result) {
  return formVector(indices, tables, sizes, dimensions, strides, bookCount, result);
}

// required: of 16-bit indices of pairs of floats one that equals the size passes.
QorStatus qorsFormVector_2i_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes, int16_t* result,
                                   int32_t length) {
  return formShortRows<2>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_2i_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                   int32_t length) {
  return formShortRows<2, 1>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_2i_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes, int16_t* result,
                                  int32_t length) {
  return formShortRows<2>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_2i_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                  int32_t length) {
  return formShortRows<2>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_4i_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes, int16_t* result,
                                   int32_t length) {
  return formShortRows<4>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_4i_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                   int32_t length) {
  return formShortRows<4>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_4i_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes, int16_t* result,
                                  int32_t length) {
  return formShortRows<4>(indices, tables, sizes, result, length);
}
QorStatus qorsFormVector_4i_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                  int32_t length) {
  return formShortRows<4>(indices, tables, sizes, result, length);
}
