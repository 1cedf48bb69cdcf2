#include "front_end_plain.h"

#include <cmath>

// NOLINTBEGIN(bugprone-suspicious-include): copies of its own, at the level of this module
#include "features/real_transform.cpp"
#include "frame/elementary/angle.cpp"
// NOLINTEND(bugprone-suspicious-include)

void programWindow(const float* samples, const float* window, int32_t frameLength, float* frame, int32_t fftLength) {
  for (int32_t i = 0; i < frameLength; ++i) frame[i] = (samples[i + 1] - 0.97F * samples[i]) * window[i];
  for (int32_t i = frameLength; i < fftLength; ++i) frame[i] = 0.0F;
}

void programLog(float* values, int32_t length, float floor) {
  for (int32_t i = 0; i < length; ++i) values[i] = std::log(values[i] > floor ? values[i] : floor);
}

void plainEvalFBank(const float* spectrum, const float* weights, const int32_t* first, const int32_t* count, int32_t filters,
                    float* result) {
  for (int32_t k = 0; k < filters; ++k) {
    float sum = 0;
    for (int32_t i = 0; i < count[k]; ++i) sum += weights[i] * spectrum[first[k] + i];
    result[k] = sum;
    weights += count[k];
  }
}

void plainEvalFBank16(const int16_t* spectrum, const int32_t* weights, const int32_t* first, const int32_t* count, int32_t filters,
                      int16_t* result, int32_t shift) {
  for (int32_t k = 0; k < filters; ++k) {
    int64_t sum = 0;
    for (int32_t i = 0; i < count[k]; ++i) sum += int64_t{weights[i]} * spectrum[first[k] + i];
    sum >>= shift;
    result[k] = static_cast<int16_t>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
    weights += count[k];
  }
}

void plainEvalFBank32(const int32_t* spectrum, const int32_t* weights, const int32_t* first, const int32_t* count, int32_t filters,
                      int32_t* result) {
  for (int32_t k = 0; k < filters; ++k) {
    int64_t sum = 0;
    for (int32_t i = 0; i < count[k]; ++i) sum += (int64_t{weights[i]} * spectrum[first[k] + i]) >> 8;
    result[k] = static_cast<int32_t>((sum >> 22) + (sum >> 21 & 1));
    weights += count[k];
  }
}

int64_t transformSetupBytes(int32_t order) { return qorsr::RealTransform::setupBytes(order); }
int64_t transformWorkBytes(int32_t order) { return qorsr::RealTransform::workBytes(order); }
void transformInit(void* setup, int32_t order) { qorsr::RealTransform::init(setup, order); }
void transformForward(const void* setup, const float* samples, float* spectrum, void* work) {
  static_cast<const qorsr::RealTransform*>(setup)->transform(samples, spectrum, work);
}
