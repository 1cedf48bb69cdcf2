// The plain loop of the singular value decomposition: what one would write first.
#pragma once

#include <cstdint>

// As qorsSVD_64f_D2, stride n: a (m x n) becomes U; e holds n doubles. Returns 0, or 1 without convergence.
extern "C" int32_t plainSvd_64f(double* a, int32_t m, double* w, double* v, int32_t n, int32_t limit, double* e);
