// All-pole models of spectra that are known at harmonics only.
//
// Linear prediction fits the whole spectrum of a voiced sound, so that its resonances are drawn to the harmonics, the more the higher
// the voice. Matching the model to the spectrum at the harmonics alone takes that away (El-Jaroudi and Makhoul, "Discrete all-pole
// modeling", 1991): with R(i) the mean over the harmonics of P(w) cos(w i), and h(-i) that of e^-jwi / A(w), the coefficients are
// where R a = h; they are reached by a <- (a + R^-1 h) / 2.
#pragma once

#include <cstddef>
#include <vector>

namespace voice {

class DiscreteFit {
 public:
  /** Changes a[0] ... a[order], the coefficients of A(w) = sum of a[k] e^-jwk with the gain within, |A|^-2 being the model's power
   * spectrum. harmonics: powers at step, 2 step, ... (radians). False, and a as it was, where that finds no model. */
  bool improve(std::vector<double>& a, const std::vector<double>& harmonics, double step);

 private:
  bool factorise(const std::vector<double>& harmonics);
  void solve(std::vector<double>& x) const;

  size_t order_ = 0;
  std::vector<double> waves_;   ///< [lag][cosines, then sines, of the harmonics]
  std::vector<double> factor_;  ///< lower triangle of R, Cholesky's
};

}  // namespace voice
