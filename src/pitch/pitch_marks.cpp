// Exports: pitch marks to candidates of the fundamental frequency.
#include "pitch/pitch_marks.h"

using namespace qorsr;

QorStatus qorsPitchmarkToF0Cand_32f(const float* marks, float* candidates, int32_t length) {
  return pitchMarkFrequencies(marks, candidates, length);
}
QorStatus qorsPitchmarkToF0Cand_16s_Sfs(const int16_t* marks, int16_t* candidates, int32_t length, int32_t scaleFactor) {
  return pitchMarkFrequencies(marks, candidates, length, scaleFactor);
}
