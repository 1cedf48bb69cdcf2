// Lanes of floats and doubles to integers.
//
// A NaN or a value out of range gives the most negative integer. `nearest` rounds in the mode in force: in a guarded mode only,
// where the result must not follow the caller's.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

#if defined(__SSE3__)
inline Vector<int32_t, 4> nearest(Vector<double, 2> a, Vector<double, 2> b) {
  return Vector<int32_t, 4>(_mm_unpacklo_epi64(_mm_cvtpd_epi32(a), _mm_cvtpd_epi32(b)));
}
inline Vector<int32_t, 4> truncated(Vector<double, 2> a, Vector<double, 2> b) {
  return Vector<int32_t, 4>(_mm_unpacklo_epi64(_mm_cvttpd_epi32(a), _mm_cvttpd_epi32(b)));
}
#endif
#if defined(__AVX2__)
inline Vector<int32_t, 4> nearest(Vector<double, 4> a) { return Vector<int32_t, 4>(_mm256_cvtpd_epi32(a)); }
inline Vector<int32_t, 4> truncated(Vector<double, 4> a) { return Vector<int32_t, 4>(_mm256_cvttpd_epi32(a)); }
#endif
#if defined(__AVX512F__)
inline Vector<int32_t, 8> nearest(Vector<double, 8> a) { return Vector<int32_t, 8>(_mm512_cvtpd_epi32(a)); }
inline Vector<int32_t, 8> truncated(Vector<double, 8> a) { return Vector<int32_t, 8>(_mm512_cvttpd_epi32(a)); }
#endif

// Scalars, and vectors without an instruction of their own: element by element.
inline int32_t nearest(float a) {
#if defined(__SSE3__)
  return _mm_cvtss_si32(_mm_set_ss(a));
#else
  return a >= -2147483648.0F && a < 2147483648.0F ? static_cast<int32_t>(__builtin_lrintf(a)) : INT32_MIN;
#endif
}
inline int32_t nearest(double a) {
  return a >= -2147483648.0 && a <= 2147483647.0 ? static_cast<int32_t>(__builtin_lrint(a)) : INT32_MIN;
}
inline int32_t truncated(double a) { return a > -2147483649.0 && a < 2147483648.0 ? static_cast<int32_t>(a) : INT32_MIN; }
template <class V>
inline auto nearest(V a) {
  constexpr std::size_t kLanes = sizeof(V) / sizeof(a[0]);
  Vector<int32_t, kLanes> v;
  for (std::size_t i = 0; i < kLanes; ++i) v[i] = nearest(a[i]);
  return v;
}
inline Vector<int32_t, 4> nearestFour(const double* a) {
  return Vector<int32_t, 4>{nearest(a[0]), nearest(a[1]), nearest(a[2]), nearest(a[3])};
}
inline Vector<int32_t, 4> truncatedFour(const double* a) {
  return Vector<int32_t, 4>{truncated(a[0]), truncated(a[1]), truncated(a[2]), truncated(a[3])};
}

}  // namespace native

template <int N>
inline Lanes<int32_t, N> nearest(const Lanes<float, N>& a) {
  Lanes<int32_t, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = native::nearest(a.part[i]);
  return v;
}
inline Lanes<int32_t, 4> nearest(const Lanes<double, 4>& a) {
  Lanes<int32_t, 4> v;
#if defined(__AVX2__)
  v.part[0] = native::nearest(a.part[0]);
#elif defined(__SSE3__)
  v.part[0] = native::nearest(a.part[0], a.part[1]);
#else
  double all[4];
  a.store(all);
  v.part[0] = native::nearestFour(all);
#endif
  return v;
}
inline Lanes<int32_t, 4> truncated(const Lanes<double, 4>& a) {
  Lanes<int32_t, 4> v;
#if defined(__AVX2__)
  v.part[0] = native::truncated(a.part[0]);
#elif defined(__SSE3__)
  v.part[0] = native::truncated(a.part[0], a.part[1]);
#else
  double all[4];
  a.store(all);
  v.part[0] = native::truncatedFour(all);
#endif
  return v;
}
// Doubles in one register.
template <int N>
requires(N > 4 && N == kNativeLanes<double>) inline Lanes<int32_t, N> nearest(const Lanes<double, N>& a) {
  Lanes<int32_t, N> v;
  v.part[0] = native::nearest(a.part[0]);
  return v;
}
template <int N>
requires(N > 4 && N == kNativeLanes<double>) inline Lanes<int32_t, N> truncated(const Lanes<double, N>& a) {
  Lanes<int32_t, N> v;
  v.part[0] = native::truncated(a.part[0]);
  return v;
}

// 0 in place of a NaN.
template <class T, int N>
inline Lanes<T, N> zeroWhereNaN(const Lanes<T, N>& a) {
  return Lanes<T, N>::each(a, [](auto x) { return decltype(x)(x == x ? x : decltype(x){}); });
}

// The largest integer where x > limit, elsewhere a, of which such lanes hold the most negative integer.
template <int N>
inline Lanes<int32_t, N> largestAbove(const Lanes<int32_t, N>& a, const Lanes<float, N>& x, float limit) {
  Lanes<int32_t, N> v;
  if constexpr (N == 1) {
    v.part[0] = a.part[0] ^ -static_cast<int32_t>(x.part[0] > limit);
  } else {
    for (int i = 0; i < v.kParts; ++i) v.part[i] = a.part[i] ^ (x.part[i] > typename Lanes<float, N>::Part{} + limit);
  }
  return v;
}

}  // namespace qorsr
