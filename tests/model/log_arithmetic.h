// Plain models of the log-domain operations: one scalar evaluation after the other, in the order of the definition.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "model/convert.h"

namespace model {

// log(1 + exp(d)) on three ranges; the coefficients with the highest power first.
struct FloatRanges {
  static constexpr double drop = -15.3195879547406, high = -2.55, low = -6.8, floor = -4500000.0, fill = -4500000.0;
  static constexpr int degree = 10;
  static constexpr double top[] = {-6.780103715801104e-07, -8.27710395983359e-06, -3.1261214564328406e-05, 2.1955075181092877e-05,
                                   0.0004062108907165097,  6.910012478334781e-05, -0.005163737400850404,   1.5878560708463796e-05,
                                   0.125002818406354,      0.5000001923981635,    0.6931471827215062};
  static constexpr double middle[] = {-7.083237702375219e-09,  -1.8491608098957698e-07, -2.094649399521823e-06,
                                      -1.2793327302109763e-05, -3.4842057389070787e-05, 0.00010764583059022215,
                                      0.0016847989052690858,   0.009582361774741538,    0.033592464138937767,
                                      0.07242669818681209,     0.07518323027822499};
  static constexpr double bottom[] = {6.536044962123068e-12, 3.4510675551141127e-10, 8.230386128280675e-09, 1.183290602139997e-07,
                                      1.157908356720776e-06, 8.25762745567427e-06,   4.458031414389642e-05, 0.00018342101716467817,
                                      0.0005549481290265323, 0.0011123966452324845,  0.0011131507706311817};
};
struct DoubleRanges {
  static constexpr double drop = -23.0258509299405, high = -3.5, low = -9.0, floor = -9000000000.0, fill = -10000000000.0;
  static constexpr int degree = 21;
  static constexpr double top[] = {2.4223551556971103e-14, 1.2811707930131747e-12,  2.979508062290527e-11,  4.091290155130968e-10,
                                   3.717428002038248e-09,  2.3532270503994952e-08,  1.055613856863438e-07,  3.320992500314504e-07,
                                   7.091358966640867e-07,  1.0406444519836742e-06,  1.6353412792505214e-06, 3.844457955118119e-06,
                                   1.3867656181255913e-06, -2.5487163524155248e-05, 4.065812849423804e-07,  0.0003473626701744988,
                                   3.4289110129737e-08,    -0.005208327741081266,   5.587714108476228e-10,  0.12500000002958675,
                                   0.5000000000006226,     0.6931471805599475};
  static constexpr double middle[] = {
      1.3708407243051937e-19, 9.601624129865304e-18,  3.191870701452749e-16,   6.702281854356589e-15,  9.973092519816427e-14,
      1.1165229253200852e-12, 9.711578249998531e-12,  6.632489267913665e-11,   3.487750749690926e-10,  1.277933984587361e-09,
      1.6292813548790022e-09, -1.909513758655842e-08, -1.8820558187982419e-07, -9.461042535100208e-07, -2.209235331735495e-06,
      9.625041106025868e-06,  0.00014699683220535022, 0.0009831490265710303,   0.004464163447126563,   0.014226511939950807,
      0.0293122307513593,     0.02975041827262059};
  static constexpr double bottom[] = {
      1.7034225392923792e-27, 3.0781354635598557e-25, 2.6542272637469554e-23, 1.4576061250276504e-21, 5.745038767733748e-20,
      1.73794899924144e-18,   4.217783891653166e-17,  8.4810302862868775e-16, 1.4486369363407485e-14, 2.1432698000428128e-13,
      2.7867099954008822e-12, 3.2140356172044866e-11, 3.300948845025808e-10,  3.0140517373824124e-09, 2.4295529030919333e-08,
      1.7072955802867207e-07, 1.0263887628748916e-06, 5.137002703123242e-06,  2.0558151089723745e-05, 6.168967511733263e-05,
      0.00012339457601536868, 0.00012340218972425103};
};

// Which polynomial, and the distance of d from the upper end of its range. T is the type of the arithmetic.
template <class T>
struct Piece {
  const double* c;
  T t;
};
template <class Ranges, class T>
Piece<T> pieceOf(T d) {
  if (d > static_cast<T>(Ranges::high)) return {Ranges::top, d};
  if (d > static_cast<T>(Ranges::low)) return {Ranges::middle, d + static_cast<T>(-Ranges::high)};
  return {Ranges::bottom, d + static_cast<T>(-Ranges::low)};
}

// Plain Horner, every step and every coefficient in T.
template <class T>
T horner(const double* c, int degree, T t) {
  T value = static_cast<T>(c[0]);
  for (int i = 1; i <= degree; ++i) value = value * t + static_cast<T>(c[i]);
  return value;
}

// base + P(t) by parity: the polynomial without its constant term falls into odd and even powers.
inline double byParity(const double* c, int degree, double t, double base) {
  const double u = t * t;
  double odd = 0, even = 0;
  for (int i = 0; i < degree; ++i) {
    double& half = (degree - i) % 2 == 1 ? odd : even;
    half = i < 2 ? c[i] : half * u + c[i];
  }
  odd = odd * t;
  even = even * u;
  return (base + c[degree]) + (even + odd);
}

// One log addition. `finish(hi, d)` is step 2.
template <class Ranges, class T, class Finish>
T logAdd(T a, T b, Finish finish) {
  if (std::isnan(a) || std::isnan(b)) return a + b;
  const T hi = a > b ? a : b, lo = a > b ? b : a, d = lo - hi;
  if (d < static_cast<T>(Ranges::drop)) return hi < static_cast<T>(Ranges::floor) ? static_cast<T>(Ranges::fill) : hi;
  return finish(hi, d);
}

inline float logAddFast(float a, float b) {
  return logAdd<FloatRanges>(a, b, [](float hi, float d) {
    const Piece<float> piece = pieceOf<FloatRanges>(d);
    return hi + horner(piece.c, FloatRanges::degree, piece.t);
  });
}
inline float logAddAccurate(float a, float b) {
  return logAdd<FloatRanges>(a, b, [](float hi, float d) {
    const Piece<float> piece = pieceOf<FloatRanges>(d);
    return static_cast<float>(byParity(piece.c, FloatRanges::degree, static_cast<double>(piece.t), static_cast<double>(hi)));
  });
}
inline double logAddDouble(double a, double b) {
  return logAdd<DoubleRanges>(a, b, [](double hi, double d) {
    const Piece<double> piece = pieceOf<DoubleRanges>(d);
    return hi + horner(piece.c, DoubleRanges::degree, piece.t);
  });
}
inline double logAddDoubleByParity(double a, double b) {
  return logAdd<DoubleRanges>(a, b, [](double hi, double d) {
    const Piece<double> piece = pieceOf<DoubleRanges>(d);
    return byParity(piece.c, DoubleRanges::degree, piece.t, hi);
  });
}
// The float constants and ranges in double arithmetic.
inline double logAddFloatRangesInDouble(double a, double b) {
  return logAdd<FloatRanges>(a, b, [](double hi, double d) {
    const Piece<double> piece = pieceOf<FloatRanges>(d);
    return hi + horner(piece.c, FloatRanges::degree, piece.t);
  });
}

// ---- Reductions ----

// Four lanes from eight elements on, upper lanes onto lower ones, lane 1 onto lane 0, then what remains from the left.
inline float logSum(const std::vector<float>& x) {
  std::size_t i = 1;
  float sum = x[0];
  if (x.size() >= 8) {
    float lane[4] = {x[0], x[1], x[2], x[3]};
    for (i = 4; i + 4 <= x.size(); i += 4) {
      for (std::size_t j = 0; j < 4; ++j) lane[j] = logAddFast(lane[j], x[i + j]);
    }
    sum = logAddFast(logAddFast(lane[0], lane[2]), logAddFast(lane[1], lane[3]));
  }
  for (; i < x.size(); ++i) sum = logAddFast(sum, x[i]);
  return sum;
}
// Two lanes from five elements on.
inline double logSum(const std::vector<double>& x) {
  std::size_t i = 1;
  double sum = x[0];
  if (x.size() > 4) {
    double lane[2] = {x[0], x[1]};
    for (i = 2; i + 2 <= x.size(); i += 2) {
      for (std::size_t j = 0; j < 2; ++j) lane[j] = logAddDoubleByParity(lane[j], x[i + j]);
    }
    sum = logAddDoubleByParity(lane[0], lane[1]);
  }
  for (; i < x.size(); ++i) sum = logAddDoubleByParity(sum, x[i]);
  return sum;
}

// ---- Fixed point: real value = integer * 2^-sf ----

// Limited to the range of Int, then truncated; a NaN gives 0.
template <class Int>
Int limitAndTruncate(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<Int>(
      std::trunc(std::fmin(std::fmax(value, std::numeric_limits<Int>::min()), std::numeric_limits<Int>::max())));
}

// 2^-n in double, by repeated halving or doubling.
inline double powerOfTwo(int32_t n) { return std::ldexp(1.0, n < -5000 ? 5000 : n > 5000 ? -5000 : -n); }

template <class Int>
Int logAddScaled(Int a, Int b, int32_t sf, int32_t hint) {
  const float f = static_cast<float>(powerOfTwo(sf));
  const float x = static_cast<float>(a) * f, y = static_cast<float>(b) * f;
  const float sum = hint == 1 ? logAddFast(x, y) : hint == 0 || hint == 2 ? logAddAccurate(x, y) : y;
  return convertScaled<Int>(sum, 0, sf == INT32_MIN ? INT32_MAX : -sf);
}

template <class Int>
Int logSumScaled(const std::vector<Int>& x, int32_t sf) {
  if (x.size() == 1) return x[0];
  const double f = powerOfTwo(sf);
  if (x.size() <= 6) {
    double sum = x[0] * f;
    for (std::size_t i = 1; i < x.size(); ++i) {
      sum = static_cast<double>(static_cast<float>(logAddFloatRangesInDouble(sum, x[i] * f)));
    }
    return limitAndTruncate<Int>(sum / f);
  }
  float sum = 0;
  for (std::size_t i = 0; i < x.size(); i += 128) {
    std::vector<float> chunk;
    if (i > 0) chunk.push_back(sum);
    for (std::size_t j = i; j < x.size() && j < i + 128; ++j) chunk.push_back(static_cast<float>(x[j]) * static_cast<float>(f));
    sum = logSum(chunk);
  }
  return limitAndTruncate<Int>(static_cast<double>(sum) / f);
}

// ---- Subtraction ----

// a + log(1 - exp(d)); a alone where d is below the drop threshold.
template <class Ranges>
double logSub(double a, double d, double tiny) {
  if (d < Ranges::drop) return a < Ranges::floor ? Ranges::fill : a;
  const double t = 1.0 - std::exp(d);
  return t <= tiny ? Ranges::fill : a + std::log(t);
}
inline float logSub(float a, float b) {
  return static_cast<float>(logSub<FloatRanges>(static_cast<double>(a), static_cast<double>(b - a), 1.0057e-37));
}
inline double logSub(double a, double b) { return logSub<DoubleRanges>(a, b - a, 2.45e-308); }
// The integer a is added as it stands; a 16-bit result is the low half of the 32-bit one.
template <class Int>
Int logSubScaled(Int a, Int b, int32_t sf) {
  const float d = (static_cast<float>(b) - static_cast<float>(a)) * scaleMultiplier(sf);
  return static_cast<Int>(limitAndTruncate<int32_t>(logSub<FloatRanges>(a, static_cast<double>(d), 1.0057e-37)));
}

}  // namespace model
