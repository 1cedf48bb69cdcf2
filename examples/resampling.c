/* resampling: a stream at 44.1 kHz, in pieces as a sound card gives them, becomes 16 kHz; the pieces do not show.
 *
 * Shows: a filter for a fixed ratio, the history that the caller keeps around the time, and the last samples of a stream. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kIn = 44100, kOut = 16000, kTaps = 216, kHalf = kTaps / 2, kPiece = 441, kPieces = 20 };

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

static float tone(int i, double hertz) { return (float)(0.5 * sin(6.283185307179586 * hertz * i / kIn)); }

/* Resamples a tone; says how loud it is afterwards, without the first and last outputs, which know silence on one side. */
static int resample(const ResamplePolyphaseFixedState_32f* state, double hertz) {
  static float samples[kHalf + 1 + kPiece + kHalf], whole[kPieces * kPiece + 2 * kTaps], output[kPieces * kPiece],
      once[kPieces * kPiece];
  memset(samples, 0, sizeof(samples)); /* silence goes before the first sample */
  memset(whole, 0, sizeof(whole));
  for (int i = 0; i < kPieces * kPiece; ++i) whole[kTaps + i] = tone(i, hertz);

  int32_t held = kHalf + 1, made = 0, count = 0; /* of samples in the buffer; of outputs */
  double time = held;                            /* of the next output, from the first sample of the buffer */
  for (int piece = 0; piece <= kPieces; ++piece) {
    const int last = piece == kPieces; /* the stream ends with half a filter of silence, so that its last samples come out */
    const int32_t come = last ? kHalf : kPiece;
    for (int i = 0; i < come; ++i) samples[held + i] = last ? 0.0F : tone(piece * kPiece + i, hertz);
    held += come;
    const int32_t length = held - kHalf - (int32_t)time; /* kHalf samples are needed behind the span */
    if (length < 1) continue;
    check(qorsResamplePolyphaseFixed_32f(state, samples, length, output + made, 1.0F, &time, &count), "a piece");
    made += count;
    const int32_t done = (int32_t)time - kHalf - 1; /* these are needed no more */
    memmove(samples, samples + done, (size_t)(held - done) * sizeof(float));
    held -= done;
    time -= done;
  }
  time = kTaps;
  check(qorsResamplePolyphaseFixed_32f(state, whole, kPieces * kPiece, once, 1.0F, &time, &count), "in one piece");

  double largest = 0;
  for (int32_t i = kTaps; i < made - kTaps; ++i) largest = fmax(largest, fabs((double)output[i]));
  const int same = made == count && memcmp(output, once, (size_t)made * sizeof(float)) == 0;
  printf("%5.0f Hz: %d samples become %d, as loud as %.3f%s\n", hertz, kPieces * kPiece, (int)made, largest / 0.5,
         same ? "" : "   NOT the same in one piece");
  return same;
}

int main(void) {
  ResamplePolyphaseFixedState_32f* state;
  check(qorsResamplePolyphaseFixedInitAlloc_32f(&state, kIn, kOut, kTaps, 0.9F, 8.0F, 1), "design");
  static const double hertz[] = {300, 1000, 4000, 6000, 9000, 12000}; /* 8000 is half the new rate: what is above must go */
  int same = 1;
  for (int i = 0; i < 6; ++i) same &= resample(state, hertz[i]);
  check(qorsResamplePolyphaseFixedFree_32f(state), "release");
  return same ? 0 : 1;
}
