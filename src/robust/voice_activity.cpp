// Exports: voice activity.
#include "robust/voice_activity.h"

using namespace qorsr;

QorStatus qorsVADGetBufSize_Aurora_32f(int32_t* size) { return activitySize(size); }
QorStatus qorsVADGetBufSize_Aurora_16s(int32_t* size) { return activitySize(size); }

QorStatus qorsVADInit_Aurora_32f(VADState_Aurora_32f* state) { return initActivity<float>(state); }
QorStatus qorsVADInit_Aurora_16s(VADState_Aurora_16s* state) { return initActivity<int32_t>(state); }

QorStatus qorsVADDecision_Aurora_32f(const float* bands, const float* frame, int32_t activityCount, int32_t* decision,
                                     VADState_Aurora_32f* state) {
  return decideActivity<RealActivity>(bands, frame, activityCount, decision, state);
}
QorStatus qorsVADDecision_Aurora_16s(const int16_t* bands, const int16_t* frame, int32_t activityCount, int32_t* decision,
                                     VADState_Aurora_16s* state) {
  return decideActivity<WholeActivity>(bands, frame, activityCount, decision, state);
}

QorStatus qorsVADFlush_Aurora_32f(int32_t* decision, VADState_Aurora_32f* state) { return flushActivity<float>(decision, state); }
QorStatus qorsVADFlush_Aurora_16s(int32_t* decision, VADState_Aurora_16s* state) { return flushActivity<int32_t>(decision, state); }
