// Addition in the log domain: log(exp(a) + exp(b)) = hi + log(1 + exp(d)), hi = max(a, b), d = -|a - b|.
//
//   d below the drop threshold: hi, but the floor where hi lies below the floor (the only place where it applies);
//   else hi + P(t), P a polynomial on one of three ranges of d, t the distance of d from the upper end of its range.
//
// Four forms. Each is element by element, so the number of lanes never shows in a result:
//   fast      float, Horner in float with the coefficients rounded to float
//   accurate  float, t formed in float, then in double by parity: (hi + c10) + (even + odd), rounded once
//   double    double, Horner;   double, by parity: (hi + c21) + (even + odd)
// Reductions: four lanes (float, fast) or two (double, by parity), lane i with lane i + N/2, then the remainder one by one.
// A NaN on either side gives a NaN; the difference of two equal infinities is a NaN too.
#pragma once

#include <cstdint>

#include "frame/lanes.h"
#include "scoring/three_way.h"

namespace qorsr {

// log(1 + exp(d)) on three ranges: top (d > high), middle (d > low) and bottom. Coefficients of the highest power first.
struct LogAddFloat {
  static constexpr double kDrop = -15.3195879547406, kFloor = -4500000.0, kFill = -4500000.0;
  static constexpr double kHigh = -2.55, kLow = -6.8;
  static constexpr int kDegree = 10;
  static constexpr double kTop[] = {-6.780103715801104e-07, -8.27710395983359e-06, -3.1261214564328406e-05, 2.1955075181092877e-05,
                                    0.0004062108907165097,  6.910012478334781e-05, -0.005163737400850404,   1.5878560708463796e-05,
                                    0.125002818406354,      0.5000001923981635,    0.6931471827215062};
  static constexpr double kMiddle[] = {-7.083237702375219e-09,  -1.8491608098957698e-07, -2.094649399521823e-06,
                                       -1.2793327302109763e-05, -3.4842057389070787e-05, 0.00010764583059022215,
                                       0.0016847989052690858,   0.009582361774741538,    0.033592464138937767,
                                       0.07242669818681209,     0.07518323027822499};
  static constexpr double kBottom[] = {6.536044962123068e-12, 3.4510675551141127e-10, 8.230386128280675e-09, 1.183290602139997e-07,
                                       1.157908356720776e-06, 8.25762745567427e-06,   4.458031414389642e-05, 0.00018342101716467817,
                                       0.0005549481290265323, 0.0011123966452324845,  0.0011131507706311817};
};

struct LogAddDouble {
  static constexpr double kDrop = -23.0258509299405, kFloor = -9000000000.0, kFill = -10000000000.0;
  static constexpr double kHigh = -3.5, kLow = -9.0;
  static constexpr int kDegree = 21;
  static constexpr double kTop[] = {2.4223551556971103e-14, 1.2811707930131747e-12,  2.979508062290527e-11,  4.091290155130968e-10,
                                    3.717428002038248e-09,  2.3532270503994952e-08,  1.055613856863438e-07,  3.320992500314504e-07,
                                    7.091358966640867e-07,  1.0406444519836742e-06,  1.6353412792505214e-06, 3.844457955118119e-06,
                                    1.3867656181255913e-06, -2.5487163524155248e-05, 4.065812849423804e-07,  0.0003473626701744988,
                                    3.4289110129737e-08,    -0.005208327741081266,   5.587714108476228e-10,  0.12500000002958675,
                                    0.5000000000006226,     0.6931471805599475};
  static constexpr double kMiddle[] = {
      1.3708407243051937e-19, 9.601624129865304e-18,  3.191870701452749e-16,   6.702281854356589e-15,  9.973092519816427e-14,
      1.1165229253200852e-12, 9.711578249998531e-12,  6.632489267913665e-11,   3.487750749690926e-10,  1.277933984587361e-09,
      1.6292813548790022e-09, -1.909513758655842e-08, -1.8820558187982419e-07, -9.461042535100208e-07, -2.209235331735495e-06,
      9.625041106025868e-06,  0.00014699683220535022, 0.0009831490265710303,   0.004464163447126563,   0.014226511939950807,
      0.0293122307513593,     0.02975041827262059};
  static constexpr double kBottom[] = {
      1.7034225392923792e-27, 3.0781354635598557e-25, 2.6542272637469554e-23, 1.4576061250276504e-21, 5.745038767733748e-20,
      1.73794899924144e-18,   4.217783891653166e-17,  8.4810302862868775e-16, 1.4486369363407485e-14, 2.1432698000428128e-13,
      2.7867099954008822e-12, 3.2140356172044866e-11, 3.300948845025808e-10,  3.0140517373824124e-09, 2.4295529030919333e-08,
      1.7072955802867207e-07, 1.0263887628748916e-06, 5.137002703123242e-06,  2.0558151089723745e-05, 6.168967511733263e-05,
      0.00012339457601536868, 0.00012340218972425103};
};

// ---- The polynomial of each lane's range ----

// Coefficient c_i of each lane's range, in the type of the lanes.
template <class Form, int I, class T, int N>
inline Lanes<T, N> coefficient(const ThreeWay<T, N>& range) {
  return range.pick(static_cast<T>(Form::kTop[I]), static_cast<T>(Form::kMiddle[I]), static_cast<T>(Form::kBottom[I]));
}

// The distance of d from the upper end of its range.
template <class Form, class T, int N>
inline Lanes<T, N> distanceInRange(const ThreeWay<T, N>& range, const Lanes<T, N>& d) {
  return d + range.pick(T(0), static_cast<T>(-Form::kHigh), static_cast<T>(-Form::kLow));
}

// value * x + c_I, then the same with c_{I + Step}, up to c_Last.
template <class Form, int I, int Step, int Last, class T, int N>
inline Lanes<T, N> hornerFrom(const ThreeWay<T, N>& range, const Lanes<T, N>& value, const Lanes<T, N>& x) {
  const Lanes<T, N> next = value * x + coefficient<Form, I>(range);
  if constexpr (I == Last) {
    return next;
  } else {
    return hornerFrom<Form, I + Step, Step, Last>(range, next, x);
  }
}

// hi + (((c0 t + c1) t + ...) t + c_degree).
template <class Form, class T, int N>
inline Lanes<T, N> addByHorner(const ThreeWay<T, N>& range, const Lanes<T, N>& hi, const Lanes<T, N>& t) {
  return hi + hornerFrom<Form, 1, 1, Form::kDegree>(range, coefficient<Form, 0>(range), t);
}

// (hi + c_degree) + (even + odd), each half by Horner over u = t^2: one ends with c_{degree - 1} t, the other with c_{degree - 2}
// u.
template <class Form, int N>
inline Lanes<double, N> addByParity(const ThreeWay<double, N>& range, const Lanes<double, N>& hi, const Lanes<double, N>& t) {
  constexpr int kN = Form::kDegree;
  constexpr int kOdd = (kN - 1) % 2, kEven = kN % 2;  // where the two halves begin
  const Lanes<double, N> u = t * t;
  const Lanes<double, N> odd = hornerFrom<Form, kOdd + 2, 2, kN - 1>(range, coefficient<Form, kOdd>(range), u) * t;
  const Lanes<double, N> even = hornerFrom<Form, kEven + 2, 2, kN - 2>(range, coefficient<Form, kEven>(range), u) * u;
  return (hi + coefficient<Form, kN>(range)) + (even + odd);
}

// ---- One log addition, lane by lane ----

// `add(d, hi)` forms hi + P where the smaller term counts.
template <class Form, class T, int N, class Add>
inline Lanes<T, N> logAdd(const Lanes<T, N>& a, const Lanes<T, N>& b, Add add) {
  using L = Lanes<T, N>;
  const L hi = max(a, b), d = minusAbs(a - b), drop(static_cast<T>(Form::kDrop));
  const L floored = selectLess(hi, L(static_cast<T>(Form::kFloor)), L(static_cast<T>(Form::kFill)), hi);
  if (allLess(d, drop)) return floored;
  return selectLess(d, drop, floored, add(d, hi));
}

// Every step in T, the coefficients rounded to T.
template <class Form, class T>
struct HornerLogAdd {
  using Element = T;
  template <int N>
  static Lanes<T, N> add(const Lanes<T, N>& a, const Lanes<T, N>& b) {
    return logAdd<Form>(a, b, [](const Lanes<T, N>& d, const Lanes<T, N>& hi) {
      const ThreeWay<T, N> range(d, static_cast<T>(Form::kHigh), static_cast<T>(Form::kLow));
      return addByHorner<Form>(range, hi, distanceInRange<Form>(range, d));
    });
  }
};
using FastLogAdd = HornerLogAdd<LogAddFloat, float>;
using DoubleLogAdd = HornerLogAdd<LogAddDouble, double>;

struct AccurateLogAdd {
  using Element = float;
  template <int N>
  static Lanes<float, N> add(const Lanes<float, N>& a, const Lanes<float, N>& b) {
    return logAdd<LogAddFloat>(a, b, [](const Lanes<float, N>& d, const Lanes<float, N>& hi) {
      constexpr auto kHigh = static_cast<float>(LogAddFloat::kHigh), kLow = static_cast<float>(LogAddFloat::kLow);
      const ThreeWay<float, N> range(d, kHigh, kLow);
      const ThreeWay<double, N> wideRange(as<double>(d), static_cast<double>(kHigh), static_cast<double>(kLow));
      return as<float>(addByParity<LogAddFloat>(wideRange, as<double>(hi), as<double>(distanceInRange<LogAddFloat>(range, d))));
    });
  }
};

struct DoubleLogAddByParity {
  using Element = double;
  template <int N>
  static Lanes<double, N> add(const Lanes<double, N>& a, const Lanes<double, N>& b) {
    return logAdd<LogAddDouble>(a, b, [](const Lanes<double, N>& d, const Lanes<double, N>& hi) {
      const ThreeWay<double, N> range(d, LogAddDouble::kHigh, LogAddDouble::kLow);
      return addByParity<LogAddDouble>(range, hi, distanceInRange<LogAddDouble>(range, d));
    });
  }
};

// ---- Vectors: result[i] = logAdd(source[i], result[i]) ----

// Blocks of N elements. A remainder takes the narrowest lanes that hold it at once, so that no chain of operations waits for another.
template <class Form, int N, class T = typename Form::Element>
inline void logAddVectors(const T* source, T* result, int32_t length) {
  int32_t i = 0;
  for (; length - i >= N; i += N) Form::add(Lanes<T, N>::load(source + i), Lanes<T, N>::load(result + i)).store(result + i);
  if (i == length) return;
  if constexpr (N * sizeof(T) > 16) {
    if (length - i <= N / 2) return logAddVectors<Form, N / 2>(source + i, result + i, length - i);
  }
  const Tail<T, N> tail(length - i);
  tail.store(Form::add(tail.load(source + i), tail.load(result + i)), result + i);
}

// Floats in the accurate form, doubles by Horner; and the fast form.
[[gnu::noinline]] inline void logAddVector(const float* source, float* result, int32_t length) {
  logAddVectors<AccurateLogAdd, kNativeBytes / 2>(source, result, length);
}
[[gnu::noinline]] inline void logAddVectorFast(const float* source, float* result, int32_t length) {
  logAddVectors<FastLogAdd, kNativeBytes>(source, result, length);
}
[[gnu::noinline]] inline void logAddVector(const double* source, double* result, int32_t length) {
  logAddVectors<DoubleLogAdd, kNativeBytes / 2>(source, result, length);
}

// ---- Reductions ----

// The N lanes log-added: lane i with lane i + N/2, until one is left, in lane 0 of what is returned.
template <class Form, class T>
inline Lanes<T, 4> foldLanes(const Lanes<T, 4>& lanes) {
  T l[4];
  lanes.store(l);
  const T upper[4] = {l[2], l[3], l[2], l[3]};
  Form::add(lanes, Lanes<T, 4>::load(upper)).store(l);
  return Form::add(Lanes<T, 4>(l[0]), Lanes<T, 4>(l[1]));
}
template <class Form, class T>
inline Lanes<T, 2> foldLanes(const Lanes<T, 2>& lanes) {
  T l[2];
  lanes.store(l);
  return Form::add(Lanes<T, 2>(l[0]), Lanes<T, 2>(l[1]));
}

// log of the sum of exp(source[i]): from `least` elements on, N lanes and a fold, then (or else at once) one by one from the left.
template <class Form, int N, class T = typename Form::Element>
inline T logSumOf(const T* source, int32_t length, int32_t least) {
  using L = Lanes<T, N>;
  L sum(source[0]);
  int32_t i = 1;
  if (length >= least) {
    sum = L::load(source);
    for (i = N; length - i >= N; i += N) sum = Form::add(sum, L::load(source + i));
    sum = foldLanes<Form>(sum);
  }
  for (; i < length; ++i) sum = Form::add(sum, L(source[i]));
  T all[N];
  sum.store(all);
  return all[0];
}

// Length at least 1.
[[gnu::noinline]] inline float logSum(const float* source, int32_t length) { return logSumOf<FastLogAdd, 4>(source, length, 8); }
[[gnu::noinline]] inline double logSum(const double* source, int32_t length) {
  return logSumOf<DoubleLogAddByParity, 2>(source, length, 5);
}

}  // namespace qorsr
