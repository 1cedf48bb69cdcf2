// Exports: vectors quantised in parts, and formed again.
#include "quantise/split_quantisation.h"

using namespace qorsr;

QorStatus qorsSplitVQ_32f16s(const float* source, int32_t sourceStride, int16_t* indices, int32_t indexStride, int32_t height,
                             const CdbkState_32f* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, ElementIndices<int16_t>{indices, indexStride}, height, states, bookCount);
}
QorStatus qorsSplitVQ_32f8u(const float* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride, int32_t height,
                            const CdbkState_32f* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, ElementIndices<uint8_t>{indices, indexStride}, height, states, bookCount);
}
QorStatus qorsSplitVQ_32f1u(const float* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride, int32_t height,
                            const CdbkState_32f* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, BitIndices<uint8_t>{indices, indexStride}, height, states, bookCount);
}
QorStatus qorsSplitVQ_16s16s(const int16_t* source, int32_t sourceStride, int16_t* indices, int32_t indexStride, int32_t height,
                             const CdbkState_16s* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, ElementIndices<int16_t>{indices, indexStride}, height, states, bookCount);
}
QorStatus qorsSplitVQ_16s8u(const int16_t* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride, int32_t height,
                            const CdbkState_16s* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, ElementIndices<uint8_t>{indices, indexStride}, height, states, bookCount);
}
QorStatus qorsSplitVQ_16s1u(const int16_t* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride, int32_t height,
                            const CdbkState_16s* const* states, int32_t bookCount) {
  return splitQuantise(source, sourceStride, BitIndices<uint8_t>{indices, indexStride}, height, states, bookCount);
}

QorStatus qorsFormVectorVQ_16s16s(const int16_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride,
                                  int32_t height, const CdbkState_16s* const* states, int32_t bookCount) {
  return formVectors(ElementIndices<const int16_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
QorStatus qorsFormVectorVQ_16s32f(const int16_t* indices, int32_t indexStride, float* result, int32_t resultStride, int32_t height,
                                  const CdbkState_32f* const* states, int32_t bookCount) {
  return formVectors(ElementIndices<const int16_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
QorStatus qorsFormVectorVQ_8u16s(const uint8_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride, int32_t height,
                                 const CdbkState_16s* const* states, int32_t bookCount) {
  return formVectors(ElementIndices<const uint8_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
QorStatus qorsFormVectorVQ_8u32f(const uint8_t* indices, int32_t indexStride, float* result, int32_t resultStride, int32_t height,
                                 const CdbkState_32f* const* states, int32_t bookCount) {
  return formVectors(ElementIndices<const uint8_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
QorStatus qorsFormVectorVQ_1u16s(const uint8_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride, int32_t height,
                                 const CdbkState_16s* const* states, int32_t bookCount) {
  return formVectors(BitIndices<const uint8_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
QorStatus qorsFormVectorVQ_1u32f(const uint8_t* indices, int32_t indexStride, float* result, int32_t resultStride, int32_t height,
                                 const CdbkState_32f* const* states, int32_t bookCount) {
  return formVectors(BitIndices<const uint8_t>{indices, indexStride}, result, resultStride, height, states, bookCount);
}
