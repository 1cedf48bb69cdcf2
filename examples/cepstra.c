/* cepstra FILE.wav: mel-frequency cepstra of a recording (one channel, 16 bits), 12 in a line, one line every 10 ms.
 *
 * Shows: a state record made and released, a filter bank with a transform in front, a cosine transform with lifter, a mean. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kFilters = 26, kCepstra = 12, kMaxFrames = 6000 };

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

static unsigned number(const unsigned char* bytes, int count) { /* little end first */
  unsigned value = 0;
  while (count-- > 0) value = value << 8 | bytes[count];
  return value;
}

/* Reads up to the samples; the sampling rate, or 0 if the file is of another kind. */
static unsigned open_wav(FILE* file) {
  unsigned char head[12], chunk[8], format[16];
  unsigned rate = 0;
  if (fread(head, 1, 12, file) != 12 || memcmp(head, "RIFF", 4) != 0 || memcmp(head + 8, "WAVE", 4) != 0) return 0;
  while (fread(chunk, 1, 8, file) == 8) {
    unsigned size = number(chunk + 4, 4);
    if (memcmp(chunk, "data", 4) == 0) return rate;
    if (memcmp(chunk, "fmt ", 4) == 0) {
      if (size < 16 || fread(format, 1, 16, file) != 16) return 0;
      if (number(format, 2) == 1 && number(format + 2, 2) == 1 && number(format + 14, 2) == 16) rate = number(format + 4, 4);
      size -= 16;
    }
    if (fseek(file, (long)(size + size % 2), SEEK_CUR) != 0) return 0;
  }
  return 0;
}

int main(int argc, char** argv) {
  static float cepstra[kMaxFrames][kCepstra];
  float mel[kFilters], mean[kCepstra];
  FBankState_32f* bank;
  DCTLifterState_32f* dct;
  int32_t order, frames = 0;
  FILE* file = argc == 2 ? fopen(argv[1], "rb") : NULL;
  const unsigned rate = file != NULL ? open_wav(file) : 0;
  if (rate < 4000 || rate > 200000) return fprintf(stderr, "usage: cepstra FILE.wav (one channel, 16 bits)\n"), 2;

  const int32_t length = (int32_t)rate / 40, hop = (int32_t)rate / 100; /* 25 ms every 10 ms */
  check(qorsMelFBankInitAlloc_32f(&bank, &order, length, (float)rate, 60, (float)rate / 2, kFilters, 1127.01048F, 700,
                                  qorFBankMelShaped | qorFBankTransform),
        "filter bank");
  check(qorsDCTLifterInitAlloc_32f(&dct, kFilters, kCepstra, 22, 1.0F / kFilters), "cosine transform");
  const int32_t padded = 1 << order; /* the transform's length: zeros stand behind the frame */
  float *sound = calloc((size_t)length, sizeof(float)), *frame = calloc((size_t)padded, sizeof(float));
  if (sound == NULL || frame == NULL) return fprintf(stderr, "no memory\n"), 1;

  unsigned char sample[2];
  for (int32_t have = 0; frames < kMaxFrames && fread(sample, 1, 2, file) == 2;) {
    sound[have++] = (float)(int16_t)number(sample, 2);
    if (have < length) continue;
    for (int32_t i = 0; i < length; ++i)
      frame[i] = sound[i] * (0.54F - 0.46F * cosf(6.2831853F * ((float)i + 0.5F) / (float)length));
    check(qorsEvalFBank_32f(frame, mel, bank), "filter bank");
    for (int k = 0; k < kFilters; ++k) mel[k] = logf(mel[k] + 1.0F);
    check(qorsDCTLifter_32f(mel, cepstra[frames++], dct), "cosine transform");
    have -= hop;
    memmove(sound, sound + hop, (size_t)have * sizeof(float));
  }
  fclose(file);
  free(sound);
  free(frame);
  check(qorsFBankFree_32f(bank), "filter bank");
  check(qorsDCTLifterFree_32f(dct), "cosine transform");

  check(qorsMeanColumn_32f_D2(cepstra[0], frames, kCepstra, mean, kCepstra), "mean of the frames");
  for (int32_t t = 0; t < frames; ++t) {
    for (int c = 0; c < kCepstra; ++c) printf("%s%.2f", c > 0 ? " " : "", (double)(cepstra[t][c] - mean[c]));
    printf("\n");
  }
  return 0;
}
