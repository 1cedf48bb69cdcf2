/* mixture: a mixture of two Gaussians is trained on points of two clusters, then scores new points.
 *
 * Shows: means and variances of columns, a split, scores of all Gaussians, the log sum that turns scores into shares, accumulation and
 * re-estimation, and the score of a whole mixture. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdio.h>
#include <stdlib.h>

enum { kPoints = 600, kWidth = 2, kGaussians = 2, kRounds = 8 };

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

static float noise(void) { /* about normal: a sum of twelve uniform numbers */
  static uint32_t state = 1;
  float sum = -6;
  for (int i = 0; i < 12; ++i) sum += (float)((state = state * 1664525u + 1013904223u) >> 8) / 16777216.0F;
  return sum;
}

static float mean[kGaussians][kWidth], variance[kGaussians][kWidth], inverse[kGaussians][kWidth];
static float weight[kGaussians] = {0.5F, 0.5F}, vals[kGaussians];

/* What the scorers take: inverse variances, and the constants log weight - (n log(2 pi) + log of the determinant) / 2. */
static void prepare(void) {
  float logWeight[kGaussians], gconst[kGaussians];
  for (int g = 0; g < kGaussians; ++g) {
    for (int c = 0; c < kWidth; ++c) inverse[g][c] = 1 / variance[g][c];
    logWeight[g] = logf(weight[g]);
    check(qorsUpdateGConst_32f(inverse[g], kWidth, &gconst[g]), "constant");
  }
  check(qorsOutProbPreCalc_32f(logWeight, gconst, vals, kGaussians), "constants");
}

int main(void) {
  static float points[kPoints][kWidth];
  const float floors[kWidth] = {0.01F, 0.01F};
  for (int t = 0; t < kPoints; ++t) { /* one point in three belongs to the cluster at (4, 3) */
    points[t][0] = (t % 3 == 0 ? 4 : 0) + noise();
    points[t][1] = (t % 3 == 0 ? 3 : 1) + 0.5F * noise();
  }
  check(qorsMeanVarColumn_32f_D2(points[0], kPoints, kWidth, mean[0], variance[0], kWidth), "mean and variance");
  check(qorsGaussianSplit_32f(mean[0], variance[0], mean[1], variance[1], kWidth, 0.2F), "split");

  for (int round = 0; round < kRounds; ++round) {
    float first[kGaussians][kWidth] = {{0}}, second[kGaussians][kWidth] = {{0}}, count[kGaussians] = {0}, total = 0, sum;
    prepare();
    for (int t = 0; t < kPoints; ++t) {
      float score[kGaussians] = {vals[0], vals[1]}, all; /* the scorer writes over the constants */
      check(qorsLogGaussMultiMix_32f_D2(mean[0], inverse[0], kWidth, points[t], kWidth, score, kGaussians), "scores");
      check(qorsLogSum_32f(score, &all, kGaussians, qorLogAddAccurate), "log sum");
      total += all;
      for (int g = 0; g < kGaussians; ++g) {
        const float share = expf(score[g] - all);
        count[g] += share;
        check(qorsMeanVarAcc_32f(points[t], mean[g], first[g], second[g], kWidth, share), "accumulation");
      }
    }
    printf("round %d: log likelihood %.3f a point\n", round, (double)(total / kPoints));
    for (int g = 0; g < kGaussians; ++g) {
      check(qorsUpdateVar_32f(first[g], second[g], floors, variance[g], kWidth, count[g], count[g]), "variances");
      check(qorsUpdateMean_32f(first[g], mean[g], kWidth, count[g]), "means");
    }
    check(qorsUpdateWeight_32f(count, weight, kGaussians, &sum, kPoints, 0.001F), "weights");
  }
  prepare();
  for (int g = 0; g < kGaussians; ++g) {
    printf("Gaussian %d: weight %.2f, mean (%.2f, %.2f), variance (%.2f, %.2f)\n", g, (double)weight[g], (double)mean[g][0],
           (double)mean[g][1], (double)variance[g][0], (double)variance[g][1]);
  }
  const float probes[3][kWidth] = {{0, 1}, {4, 3}, {9, 9}};
  for (int i = 0; i < 3; ++i) {
    float score;
    check(qorsLogGaussMixture_32f_D2(probes[i], mean[0], inverse[0], kGaussians, kWidth, kWidth, vals, &score), "mixture");
    printf("score of (%g, %g): %.2f\n", (double)probes[i][0], (double)probes[i][1], (double)score);
  }
  return 0;
}
