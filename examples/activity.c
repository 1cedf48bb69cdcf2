/* activity FILE.wav: where a recording holds speech (one channel, 16 bits, 8 to 48 kHz), a stretch a line.
 *
 * Shows: noise tracked in a block of the program, gains from ratios of signal to noise, the activity decision of a stream, its flush. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kBands = 25, kLongest = 1024, kMaxBins = kLongest / 2 + 1, kWaited = 6 }; /* the decision comes some frames late */

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

/* The power spectrum under a window, over n points, by a plain sum: a program has a fast transform. */
static void power_spectrum(const float* x, int32_t count, int32_t n, float* power) {
  static float wave[kLongest];
  if (wave[0] == 0)
    for (int32_t i = 0; i < n; ++i) wave[i] = cosf(6.2831853F * (float)i / (float)n);
  for (int32_t k = 0; k <= n / 2; ++k) {
    float re = 0, im = 1; /* no power is 0 */
    for (int32_t i = 0; i < count; ++i) {
      const float value = x[i] * (0.5F - 0.5F * cosf(6.2831853F * (float)i / (float)count));
      re += value * wave[i * k % n];
      im += value * wave[(i * k + n / 4) % n];
    }
    power[k] = re * re + im * im;
  }
}

int main(int argc, char** argv) {
  static float sound[kLongest], power[kMaxBins], noise[kMaxBins], ratio[kMaxBins], gain[kMaxBins], bands[kBands], sums[kBands];
  unsigned char head[44], sample[2];
  FILE* file = argc == 2 ? fopen(argv[1], "rb") : NULL;
  if (file == NULL || fread(head, 1, 44, file) != 44 || memcmp(head + 36, "data", 4) != 0 || head[22] != 1 || head[34] != 16)
    return fprintf(stderr, "usage: activity FILE.wav (one channel, 16 bits, a head of 44 bytes)\n"), 2;

  const int32_t rate = head[24] | head[25] << 8 | head[26] << 16, hop = rate / 125; /* frames of 16 ms, one every 8 ms */
  int32_t length = 128, noiseBytes, activityBytes, order, have = 0, frames = 0, start = -1, decision = qorVADUndecided;
  while (length < 2 * hop && length < kLongest) length *= 2;
  check(qorsGetSizeMCRA_32f(length, &noiseBytes), "noise");
  check(qorsVADGetBufSize_Aurora_32f(&activityBytes), "activity");
  MCRAState_32f* tracker = malloc((size_t)noiseBytes);
  VADState_Aurora_32f* activity = malloc((size_t)activityBytes);
  FBankState_32f* bank;
  if (tracker == NULL || activity == NULL) return fprintf(stderr, "no memory\n"), 1;
  check(qorsAltInitMCRA_32f(rate, length, hop, tracker), "noise");
  check(qorsVADInit_Aurora_32f(activity), "activity");
  check(qorsMelFBankInitAlloc_32f(&bank, &order, length, (float)rate, 60, (float)rate / 2, kBands, 1127.01048F, 700,
                                  qorFBankIndexShaped),
        "bands");
  for (int32_t k = 0; k <= length / 2; ++k) gain[k] = 1;
  check(qorsEvalFBank_32f(gain, sums, bank), "bands");

  for (int ended = 0; !ended || decision != qorVADUndecided;) {
    if (!ended && fread(sample, 1, 2, file) == 2) {
      sound[have++] = (float)(int16_t)(sample[0] | sample[1] << 8);
      if (have < 2 * hop) continue;
      power_spectrum(sound, have, length, power);
      memmove(sound, sound + hop, (size_t)hop * sizeof(float));
      have = hop;
      check(qorsUpdateNoisePSDMCRA_32f_I(power, tracker, noise), "noise");
      /* Not 0: the first frame is all noise, and trackers that begin at nothing find everything loud. */
      for (int32_t k = 0; k <= length / 2; ++k) ratio[k] = fmaxf(power[k] / noise[k] - 1, 0.15F);
      check(qorsFilterUpdateWiener_32f(ratio, gain, length / 2 + 1), "gains");
      check(qorsEvalFBank_32f(gain, bands, bank), "bands");
      for (int b = 0; b < kBands; ++b) bands[b] /= sums[b];
      check(qorsVADDecision_Aurora_32f(bands, gain, 0, &decision, activity), "activity");
    } else {
      ended = 1;
      check(qorsVADFlush_Aurora_32f(&decision, activity), "activity");
    }
    const int32_t frame = ++frames - kWaited; /* the frame that is decided */
    if (decision == qorVADSpeech && start < 0) start = frame;
    if (decision != qorVADSpeech && start >= 0) printf("speech from %.2f to %.2f s\n", 0.008 * start, 0.008 * frame), start = -1;
  }
  printf("%.2f s in all\n", 0.008 * (frames - kWaited));
  fclose(file);
  free(tracker);
  free(activity);
  check(qorsFBankFree_32f(bank), "bands");
  return 0;
}
