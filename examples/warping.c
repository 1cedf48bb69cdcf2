/* warping: a word spoken at two speeds, and another word; dynamic time warping tells which two are the same.
 *
 * Shows: sequences of unequal length, the search region and the beam, and what comes back where no path reaches the end. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>

enum { kWidth = 3, kMaxFrames = 100 };

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

typedef struct {
  const char* name;
  int32_t frames;
  float features[kMaxFrames][kWidth];
} Word;

/* Features that move from sound to sound, as formants do; `sounds` holds four targets of kWidth numbers. */
static void speak(Word* word, const char* name, const float sounds[4][kWidth], int32_t frames) {
  word->name = name;
  word->frames = frames;
  for (int32_t t = 0; t < frames; ++t) {
    const float place = 3.0F * (float)t / (float)(frames - 1);
    const int from = place < 3 ? (int)place : 2;
    const float part = place - (float)from;
    for (int c = 0; c < kWidth; ++c) {
      word->features[t][c] = sounds[from][c] + (sounds[from + 1][c] - sounds[from][c]) * part + 0.05F * sinf((float)(t * 7 + c));
    }
  }
}

/* The distance a frame of the longer word: the library adds along the path and does not divide. */
static float distance(const Word* a, const Word* b) {
  const int32_t delta = 5;  /* frames by which start, end and region may be off */
  const float beam = 1e30F; /* keep all paths */
  float sum;
  check(qorsDTW_L2_32f_D2(a->features[0], a->frames, b->features[0], b->frames, kWidth, kWidth, &sum, delta, beam), "warping");
  if (sum >= 3.4e38F) {
    printf("%-10s %-10s one is more than twice as long: no path\n", a->name, b->name);
    return sum;
  }
  sum /= (float)(a->frames > b->frames ? a->frames : b->frames);
  printf("%-10s %-10s %.3f\n", a->name, b->name, (double)sum);
  return sum;
}

int main(void) {
  static const float yes[4][kWidth] = {{3, 22, 30}, {5, 18, 25}, {5, 19, 26}, {2, 30, 60}};
  static const float no[4][kWidth] = {{3, 15, 22}, {6, 10, 24}, {4, 8, 23}, {3, 7, 22}};
  static Word slow, fast, other, hasty;
  speak(&slow, "yes", yes, 60);
  speak(&fast, "yes (fast)", yes, 40);
  speak(&other, "no", no, 45);
  speak(&hasty, "yes (25)", yes, 20);
  const float same = distance(&slow, &fast), different = distance(&slow, &other);
  distance(&slow, &hasty);
  printf("%s is nearer to %s than to %s\n", slow.name, same < different ? fast.name : other.name,
         same < different ? other.name : fast.name);
  return 0;
}
