/* deltas: features arrive in pieces; their time derivatives are formed as far as the frames allow, and do not depend on the pieces.
 *
 * Shows: the flags of a stream, where the destination of a later piece begins, and the end of a stream. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kWidth = 2, kFrames = 12, kStep = 2 * kWidth, kLookBack = 4 }; /* Win2 looks back over 4 rows */

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

int main(void) {
  const float tenth = 0.1F; /* makes the window's sum the slope of a line through five frames */
  static float features[kFrames][kWidth], pieces[kFrames][kStep], whole[kFrames][kStep];
  for (int t = 0; t < kFrames; ++t) {
    features[t][0] = (float)(3 * t);
    features[t][1] = sinf(0.5F * (float)t);
  }
  check(qorsDelta_Win2_32f_D2(features[0], kWidth, whole[0], kStep, kFrames, tenth, qorDeltaBegin | qorDeltaEnd), "in one piece");

  static const int32_t heights[] = {5, 1, 4, 2}; /* the first piece has at least kLookBack rows */
  int32_t done = 0;
  for (int i = 0; i < 4; ++i) {
    /* A later piece is given its destination from the last rows of the piece before on. */
    float* destination = pieces[done == 0 ? 0 : done - kLookBack];
    check(qorsDelta_Win2_32f_D2(features[done], kWidth, destination, kStep, heights[i], tenth, done == 0 ? qorDeltaBegin : 0),
          "a piece");
    done += heights[i];
    printf("%2d frames have come, %2d have their deltas\n", (int)done, (int)done - 2);
  }
  /* The stream ends: no frames more, but a source that is not null. What waited for later frames is finished. */
  check(qorsDelta_Win2_32f_D2(features[0], kWidth, pieces[done - kLookBack], kStep, 0, tenth, qorDeltaEnd), "the end");

  for (int t = 0; t < kFrames; ++t) {
    printf("%2d: features %5.1f %6.3f   deltas %6.3f %6.3f\n", t, (double)pieces[t][0], (double)pieces[t][1], (double)pieces[t][2],
           (double)pieces[t][3]);
  }
  const int same = memcmp(pieces, whole, sizeof(whole)) == 0;
  printf("%s\n", same ? "in pieces and in one piece: the same bits" : "in pieces and in one piece: NOT the same");
  return same ? 0 : 1;
}
