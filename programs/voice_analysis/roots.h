// The roots of a real polynomial.
#pragma once

#include <complex>
#include <vector>

namespace voice {

/** Moves the guesses to the roots of z^n + a[0] z^(n-1) + ... + a[n-1], n the number of guesses, all at once by the third-order
 * iteration of Ehrlich (1967) and Aberth (1973). Guesses must differ. False when that has not settled. */
bool findRoots(const std::vector<float>& a, std::vector<std::complex<double>>& roots);

/** Guesses on a circle, none of them real. */
std::vector<std::complex<double>> guesses(size_t count);

}  // namespace voice
