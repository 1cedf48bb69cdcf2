// Formants: resonances of an all-pole model of the voice, frame by frame, and their tracks.
//
// The model is fitted to the spectrum up to a ceiling only (selective linear prediction: Makhoul, "Linear prediction: a tutorial
// review", 1975), so that recordings of all rates are treated alike: autocorrelations are the cosine transform of that part of the
// power spectrum, whose pre-emphasis, at twice the ceiling, is a factor for each bin and of the model in the end. Pairs of complex roots of the error filter are resonances; a path through
// the frames chooses which of them are the first formant, the second, ... (Talkin, "Speech formant trajectory estimation using dynamic
// programming with modulated transition costs", 1987).
#pragma once

#include <array>
#include <complex>
#include <vector>

#include "discrete_fit.h"
#include "spectrum.h"

namespace voice {

struct Resonance {
  float hertz = 0, bandwidth = 0;  ///< 0: none
};

inline constexpr int mostFormants = 4;
using Formants = std::array<Resonance, mostFormants>;

/** The all-pole model of a frame: power spectrum = energy / |1 + a[0] e^-jw + ...|^2, w = pi at the ceiling. */
struct AllPole {
  std::vector<float> a;
  float energy = 0;  ///< 0: silence, without a model
};

class FormantModel {
 public:
  /** ceilingHz: at most half the rate. */
  FormantModel(int rate, double ceilingHz);

  /** pitch: of the frame, 0 where it is unvoiced; a voiced one is fitted at its harmonics. */
  AllPole fit(const Padded<float>& samples, double middle, double pitchHz);
  /** Resonances of a model, the lowest first. */
  std::vector<Resonance> resonances(const AllPole& model);

  /** Of the frame that was fitted last: its power spectrum with pre-emphasis, up to the ceiling. */
  const std::vector<float>& spectrum() const { return power_; }
  /** The power spectrum of a model, at 2^order frequencies from 0 to below the ceiling. */
  std::vector<float> envelope(const AllPole& model, int order) const;
  double binHz() const { return spectrum_.binHz(); }
  /** The power that pre-emphasis, from 50 Hz on, gives a frequency. */
  double emphasis(double hertz) const;
  double ceilingHz() const { return ceilingHz_; }
  int formants() const { return formants_; }

 private:
  void fitHarmonics(AllPole& model, double pitchHz);

  double ceilingHz_;
  float pole_ = 0;  ///< of the pre-emphasis
  int order_, formants_;
  Spectrum spectrum_;
  std::vector<float> emphasis_, cosines_, power_, lags_;
  std::vector<std::complex<double>> roots_;
  DiscreteFit discrete_;
  std::vector<double> harmonics_, coefficients_;
};

/** The formants of each frame: the best path through its resonances. */
std::vector<Formants> trackFormants(const std::vector<std::vector<Resonance>>& frames, int formants, double ceilingHz);

}  // namespace voice
