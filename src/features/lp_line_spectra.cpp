// Exports: line spectral pairs.
#include "features/lp_line_spectra.h"

using namespace qorsr;

QorStatus qorsLPToLSP_32f(const float* source, float* destination, int32_t order, int32_t* count, int32_t intervals,
                          int32_t refinements) {
  return toLineSpectra(source, destination, order, count, intervals, refinements);
}
QorStatus qorsLPToLSP_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order, int32_t* count,
                              int32_t intervals, int32_t refinements, int32_t destinationScale) {
  return toLineSpectra(source, sourceScale, destination, order, count, intervals, refinements, destinationScale);
}
QorStatus qorsLSPToLP_32f(const float* source, float* destination, int32_t order) {
  return convertModel(lineSpectraToPredictor, source, destination, order);
}
QorStatus qorsLSPToLP_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                              int32_t destinationScale) {
  return fromLineSpectra(source, sourceScale, destination, order, destinationScale);
}
