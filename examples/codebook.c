/* codebook: vectors are replaced by the number of their nearest codeword, which a trained codebook finds.
 *
 * Shows: training with a tree, what a warning means, search of a block, the nearest few of one vector, the distortion over bits. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>

enum { kWidth = 2, kTraining = 600, kQueries = 200, kLargest = 64 };

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

/* Points near a spiral, the same ones in every run. */
static void points(float rows[][kWidth], int count, uint32_t seed) {
  for (int r = 0; r < count; ++r) {
    seed = seed * 1664525u + 1013904223u;
    const float t = (float)(seed >> 8) / 16777216.0F;
    seed = seed * 1664525u + 1013904223u;
    const float off = (float)(seed >> 8) / 16777216.0F - 0.5F;
    rows[r][0] = (10.0F * t + off) * cosf(9.0F * t);
    rows[r][1] = (10.0F * t + off) * sinf(9.0F * t);
  }
}

int main(void) {
  static float training[kTraining][kWidth], queries[kQueries][kWidth], words[kLargest][kWidth], distances[kQueries];
  static int32_t indices[kQueries];
  points(training, kTraining, 1);
  points(queries, kQueries, 2);

  for (int32_t size = 2; size <= kLargest; size *= 2) {
    CdbkState_32f* book;
    int32_t count;
    /* A warning says that fewer codewords came out: the training rows hold fewer different ones. */
    check(qorsCdbkInitAlloc_L2_32f(&book, training[0], kWidth, kWidth, kTraining, size, qorCdbkSplitBySpread), "training");
    check(qorsGetCdbkSize_32f(book, &count), "size");
    check(qorsVQDist_32f(queries[0], kWidth, indices, distances, kQueries, book), "search");
    double power = 0;
    for (int q = 0; q < kQueries; ++q) power += (double)distances[q] * (double)distances[q] / kQueries;
    printf("%2d codewords: a root mean square distance of %.2f\n", (int)count, sqrt(power));

    if (size == 8) { /* the codewords, and the nearest three of one vector */
      int32_t nearest[3];
      check(qorsGetCodebook_32f(book, words[0], kWidth), "codewords");
      for (int k = 0; k < count; ++k) printf("   %d: %6.2f %6.2f\n", k, (double)words[k][0], (double)words[k][1]);
      check(qorsVQSingle_Sort_32f(queries[0], nearest, book, 3), "nearest");
      printf("   nearest to %.2f %.2f: %d, then %d and %d\n", (double)queries[0][0], (double)queries[0][1], (int)nearest[0],
             (int)nearest[1], (int)nearest[2]);
    }
    check(qorsCdbkFree_32f(book), "release");
  }
  return 0;
}
