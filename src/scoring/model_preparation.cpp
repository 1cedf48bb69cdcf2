// Exports: constants of Gaussians, block-diagonal records, scaling of language model scores.
#include "scoring/model_preparation.h"

using namespace qorsr;

QorStatus qorsUpdateGConst_32f(const float* inverseVariances, int32_t length, float* result) {
  return updateGConst<VarianceForm::kInverse>(inverseVariances, length, result);
}
QorStatus qorsUpdateGConst_64f(const double* inverseVariances, int32_t length, double* result) {
  return updateGConst<VarianceForm::kInverse>(inverseVariances, length, result);
}
QorStatus qorsUpdateGConst_DirectVar_32f(const float* variances, int32_t length, float* result) {
  return updateGConst<VarianceForm::kDirect>(variances, length, result);
}
QorStatus qorsUpdateGConst_DirectVar_64f(const double* variances, int32_t length, double* result) {
  return updateGConst<VarianceForm::kDirect>(variances, length, result);
}

QorStatus qorsOutProbPreCalc_32f(const float* weights, const float* gconsts, float* result, int32_t length) {
  return outProbPreCalc(weights, gconsts, result, length);
}
QorStatus qorsOutProbPreCalc_32s(const int32_t* weights, const int32_t* gconsts, int32_t* result, int32_t length) {
  return outProbPreCalc(weights, gconsts, result, length);
}
QorStatus qorsOutProbPreCalc_64f(const double* weights, const double* gconsts, double* result, int32_t length) {
  return outProbPreCalc(weights, gconsts, result, length);
}
QorStatus qorsOutProbPreCalc_32f_I(const float* weights, float* gconsts, int32_t length) {
  return outProbPreCalc(weights, gconsts, gconsts, length);
}
QorStatus qorsOutProbPreCalc_32s_I(const int32_t* weights, int32_t* gconsts, int32_t length) {
  return outProbPreCalc(weights, gconsts, gconsts, length);
}
QorStatus qorsOutProbPreCalc_64f_I(const double* weights, double* gconsts, int32_t length) {
  return outProbPreCalc(weights, gconsts, gconsts, length);
}

QorStatus qorsBlockDMatrixInitAlloc_16s(BlockDMatrix_16s** record, const int16_t* const* rows, const int32_t* blockSizes,
                                        int32_t blockCount) {
  return blockMatrixInitAlloc(record, rows, blockSizes, blockCount);
}
QorStatus qorsBlockDMatrixInitAlloc_32f(BlockDMatrix_32f** record, const float* const* rows, const int32_t* blockSizes,
                                        int32_t blockCount) {
  return blockMatrixInitAlloc(record, rows, blockSizes, blockCount);
}
QorStatus qorsBlockDMatrixInitAlloc_64f(BlockDMatrix_64f** record, const double* const* rows, const int32_t* blockSizes,
                                        int32_t blockCount) {
  return blockMatrixInitAlloc(record, rows, blockSizes, blockCount);
}
QorStatus qorsBlockDMatrixFree_16s(BlockDMatrix_16s* record) { return blockMatrixFree(record); }
QorStatus qorsBlockDMatrixFree_32f(BlockDMatrix_32f* record) { return blockMatrixFree(record); }
QorStatus qorsBlockDMatrixFree_64f(BlockDMatrix_64f* record) { return blockMatrixFree(record); }

QorStatus qorsScaleLM_32f(const float* source, float* result, int32_t length, float floor, float scale, float offset) {
  return scaleLM(source, result, length, floor, scale, offset);
}
QorStatus qorsScaleLM_16s32s(const int16_t* source, int32_t* result, int32_t length, int16_t floor, int16_t scale, int32_t offset) {
  return scaleLM(source, result, length, floor, scale, offset);
}
