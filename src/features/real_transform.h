// Transform of a real signal of N = 2^order samples, unnormalised, and its inverse:
//   X[k] = sum over n of x[n] exp(-2 pi i n k / N),  k = 0 to N/2.
//
// The samples are taken as M = N/2 complex numbers z[n] = x[2n] + i x[2n+1], transformed by radix-4 passes that sort themselves
// (Stockham; see Van Loan, "Computational Frameworks for the Fast Fourier Transform", 1992, section 1.7), with a radix-2 pass at
// the end where M is an odd power of two, and then split:
//   X[k] = E + W^k O,  conj X[M-k] = E - W^k O,  E = (Z[k] + conj Z[M-k]) / 2,  O = (Z[k] - conj Z[M-k]) / 2i,  W = exp(-2 pi i /
//   N).
// Real and imaginary parts lie in arrays of their own, and lanes are independent butterflies: the arithmetic of a bin does not
// depend on the number of lanes, so the bits are the same at every level.
//
// The inverse goes the same way back: Z[k] = E + i O is formed of X[k] and conj X[M-k] by the same tables, and the passes transform it
// with real and imaginary parts exchanged, which turns their direction.
#pragma once

#include <cstdint>

namespace qorsr {

inline constexpr int kMaxTransformOrder = 30;

// Set-up of one order: this record, and behind it the tables of twiddle factors, in one block at any address. Read-only in use, so
// one set-up may serve several threads, each with work memory of its own.
struct [[gnu::packed]] RealTransform {
  int32_t order;
  int32_t tables;  // bytes from the record to the tables

  // Bytes of a block for the set-up, and of the work memory, for orders 1 to kMaxTransformOrder.
  static int64_t setupBytes(int order);
  static int64_t workBytes(int order);

  // Makes the set-up in the block.
  static RealTransform* init(void* block, int order);

  // spectrum: N/2 + 1 complex values, real part, imaginary part; those of bins 0 and N/2 have imaginary part zero.
  // `work` begins anywhere; x, the result and the work memory do not overlap.
  void transform(const float* x, float* spectrum, void* work) const;
  void transform(const int16_t* x, float* spectrum, void* work) const;

  // x[n] such that transform(x) gives the spectrum, up to rounding: the inverse with the factor 1 / N. The imaginary parts of bins 0
  // and N/2 are taken as zero.
  void inverse(const float* spectrum, float* x, void* work) const;

  // magnitudes[k] = sqrt(re * re + im * im), k = 0 to N/2.
  void magnitudes(const float* x, float* magnitudes, void* work) const;
};

}  // namespace qorsr
