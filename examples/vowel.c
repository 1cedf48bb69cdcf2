/* vowel: the pitch and the formants of a vowel, which the program makes itself and therefore knows.
 *
 * Shows: correlations refined between two lags, peaks of a contour, a model by linear prediction, its spectrum, a warning. */
#include <math.h>
#include <qorsr.h>
#include <qorsr_status.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

enum {
  kRate = 8000,
  kLength = 400,
  kOrder = 6,
  kShortest = 20,
  kLongest = 160,
  kLags = kLongest - kShortest,
  kBits = 9,
  kBins = 1 << kBits
};
static const double kPi = 3.14159265358979;

static void check(QorStatus status, const char* what) {
  if (status == qorStatusOk) return;
  fprintf(stderr, "%s: %s (%s)\n", what, qorStatusText(status), qorStatusName(status));
  if (status < 0) exit(1);
}

/* Pulses 62.5 samples apart (128 Hz) through three resonances. */
static void make_vowel(int16_t* samples, int count) {
  static const double formants[] = {700, 1220, 2600}, widths[] = {60, 90, 120};
  double memory[3][2] = {{0}}, next = 0;
  for (int n = 0; n < count; ++n) {
    double x = 0;
    if (n >= next)
      x = 1 - (n - next), next += 62.5;
    else if (n + 1 > next)
      x = n + 1 - next; /* a pulse between two samples belongs to both */
    for (int k = 0; k < 3; ++k) {
      const double radius = exp(-kPi * widths[k] / kRate), turn = 2 * kPi * formants[k] / kRate;
      const double y = x + 2 * radius * cos(turn) * memory[k][0] - radius * radius * memory[k][1];
      memory[k][1] = memory[k][0];
      x = memory[k][0] = y;
    }
    samples[n] = (int16_t)lrint(1500 * x);
  }
}

int main(void) {
  static int16_t sound[2000];
  make_vowel(sound, 2000);
  const int16_t* const frame = sound + 1000;

  /* Pitch: the highest peak of the correlation with earlier pieces of the same length, between the lags of 400 and 50 Hz. */
  float correlations[kLags], position, value, best = 0, period = 0;
  uint8_t peaks[kLags];
  for (int lag = kShortest; lag < kLongest; ++lag)
    check(qorsCrossCorrCoeff_16s32f(frame, frame - lag, kLength, &correlations[lag - kShortest]), "correlation");
  check(qorsFindPeaks_32f8u(correlations, peaks, kLags, 2, 0), "peaks");
  for (int lag = kShortest + 1; lag < kLongest; ++lag) {
    if (peaks[lag - kShortest] == 0) continue;
    for (int above = lag; above <= lag + 1; ++above) { /* the period lies between the best whole lag and one of its neighbours */
      check(qorsCrossCorrCoeffInterpolation_16s32f(frame, frame - above, kLength, &position, &value), "interpolation");
      /* Only a position from 0 to 1 comes with a value. Multiples of the period are as good: the shortest one stays. */
      if (position >= 0 && position < 1 && value > best + 0.02F) best = value, period = (float)above - position;
    }
  }
  printf("pitch %.1f Hz, correlation %.2f\n", kRate / (double)period, (double)best);

  /* Formants: the peaks of the spectrum of a model, 1 / |1 + a[1] z^-1 + ...|. Nothing is windowed in the library. */
  float windowed[kLength], model[1 + kOrder] = {1}, spectrum[kBins];
  uint8_t tops[kBins];
  for (int n = 0; n < kLength; ++n)
    windowed[n] = (float)frame[n] * (0.54F - 0.46F * cosf(2 * (float)kPi * ((float)n + 0.5F) / kLength));
  check(qorsLinearPrediction_Auto_32f(windowed, kLength, model + 1, kOrder), "linear prediction");
  check(qorsLPToSpectrum_32f(model, 1 + kOrder, spectrum, kBits, 0), "spectrum of the model");
  check(qorsFindPeaks_32f8u(spectrum, tops, kBins, 1, 0), "peaks of the spectrum");
  for (int bin = 0; bin < kBins; ++bin) {
    if (tops[bin]) printf("formant near %.0f Hz\n", bin * (kRate / 2.0) / kBins);
  }

  /* Silence has no model. That is a status, not a crash, and the program says it. */
  for (int n = 0; n < kLength; ++n) windowed[n] = 0;
  const QorStatus status = qorsLinearPrediction_Auto_32f(windowed, kLength, model + 1, kOrder);
  printf("silence: %s\n", qorStatusName(status));
  return status == qorStatusUnstableFilter ? 0 : 1;
}
