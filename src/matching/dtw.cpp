// Exports: dynamic time warping.
#include "matching/dtw.h"

using namespace qorsr;

QorStatus qorsDTW_L2_32f_D2L(const float* const* rows1, int32_t height1, const float* const* rows2, int32_t height2, int32_t width,
                             float* distance, int32_t delta, float beam) {
  return warpSequences(listed(rows1), height1, listed(rows2), height2, width, distance, delta, beam);
}
QorStatus qorsDTW_L2_32f_D2(const float* source1, int32_t height1, const float* source2, int32_t height2, int32_t width,
                            int32_t stride, float* distance, int32_t delta, float beam) {
  return warpSequences(strided(source1, stride), height1, strided(source2, stride), height2, width, distance, delta, beam);
}

QorStatus qorsDTW_L2_8u32s_D2LSfs(const uint8_t* const* rows1, int32_t height1, const uint8_t* const* rows2, int32_t height2,
                                  int32_t width, int32_t* distance, int32_t delta, int32_t beam, int32_t scaleFactor) {
  return warpIntegers(listed(rows1), height1, listed(rows2), height2, width, distance, delta, beam, scaleFactor);
}
QorStatus qorsDTW_L2_8u32s_D2Sfs(const uint8_t* source1, int32_t height1, const uint8_t* source2, int32_t height2, int32_t width,
                                 int32_t stride, int32_t* distance, int32_t delta, int32_t beam, int32_t scaleFactor) {
  return warpIntegers(strided(source1, stride), height1, strided(source2, stride), height2, width, distance, delta, beam,
                      scaleFactor);
}

QorStatus qorsDTW_L2Low_16s32s_D2LSfs(const int16_t* const* rows1, int32_t height1, const int16_t* const* rows2, int32_t height2,
                                      int32_t width, int32_t* distance, int32_t delta, int32_t beam, int32_t scaleFactor) {
  return warpIntegers(listed(rows1), height1, listed(rows2), height2, width, distance, delta, beam, scaleFactor);
}
QorStatus qorsDTW_L2Low_16s32s_D2Sfs(const int16_t* source1, int32_t height1, const int16_t* source2, int32_t height2,
                                     int32_t width, int32_t stride, int32_t* distance, int32_t delta, int32_t beam,
                                     int32_t scaleFactor) {
  return warpIntegers(strided(source1, stride), height1, strided(source2, stride), height2, width, distance, delta, beam,
                      scaleFactor);
}
