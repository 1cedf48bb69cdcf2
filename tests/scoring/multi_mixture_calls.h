// One call for every member of the mixture and multi-mixture scorers: the shape of its argument list tells which arguments it
// takes.
#pragma once

#include <cstdint>

#include "qorsr.h"

namespace cases {

using I = int32_t;

template <class T, class R>
struct ModelArgs {
  const T *means, *variances;
  const T *const *meanRows, *const *varianceRows;
  int32_t stride;
  const T* x;
  int32_t width;
  const R* vals;
  R* result;
  int32_t count;
  int32_t sf;
};

// ---- Multi-mixtures: a vector that is vals and result, vals and result, or a result alone ----

template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, const T*, I, R*, I), const ModelArgs<T, R>& a) {
  return f(a.means, a.variances, a.stride, a.x, a.width, a.result, a.count);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, const T*, I, R*, I, I), const ModelArgs<T, R>& a) {
  return f(a.means, a.variances, a.stride, a.x, a.width, a.result, a.count, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T* const*, const T*, I, R*, I), const ModelArgs<T, R>& a) {
  return f(a.meanRows, a.varianceRows, a.x, a.width, a.result, a.count);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T* const*, const T*, I, R*, I, I), const ModelArgs<T, R>& a) {
  return f(a.meanRows, a.varianceRows, a.x, a.width, a.result, a.count, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, const T*, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.means, a.variances, a.stride, a.x, a.width, a.vals, a.result, a.count);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, const T*, I, const R*, R*, I, I), const ModelArgs<T, R>& a) {
  return f(a.means, a.variances, a.stride, a.x, a.width, a.vals, a.result, a.count, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T* const*, const T*, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.meanRows, a.varianceRows, a.x, a.width, a.vals, a.result, a.count);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T* const*, const T*, I, const R*, R*, I, I), const ModelArgs<T, R>& a) {
  return f(a.meanRows, a.varianceRows, a.x, a.width, a.vals, a.result, a.count, a.sf);
}

// ---- Mixtures: one result ----

template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, I, I, const R*, R*), const ModelArgs<T, R>& a) {
  return f(a.x, a.means, a.variances, a.count, a.stride, a.width, a.vals, a.result);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, I, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.x, a.means, a.variances, a.count, a.stride, a.width, a.vals, a.result, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, I, I, const R*, R*), const ModelArgs<T, R>& a) {
  return f(a.x, a.means, a.count, a.stride, a.width, a.vals, a.result);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T*, I, I, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.x, a.means, a.count, a.stride, a.width, a.vals, a.result, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T* const*, const T* const*, I, I, const R*, R*), const ModelArgs<T, R>& a) {
  return f(a.x, a.meanRows, a.varianceRows, a.count, a.width, a.vals, a.result);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T* const*, const T* const*, I, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.x, a.meanRows, a.varianceRows, a.count, a.width, a.vals, a.result, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T* const*, I, I, const R*, R*), const ModelArgs<T, R>& a) {
  return f(a.x, a.meanRows, a.count, a.width, a.vals, a.result);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, const T* const*, I, I, const R*, R*, I), const ModelArgs<T, R>& a) {
  return f(a.x, a.meanRows, a.count, a.width, a.vals, a.result, a.sf);
}

// Whether a listed member has a mixture of identity variances, and whether its first vector is vals and result in one.
template <class F>
struct ModelShape {
  static constexpr bool kUnit = false, kInPlace = false;
};
template <class T, class R, class... Rest>
struct ModelShape<QorStatus (*)(const T*, const T* const*, I, I, const R*, R*, Rest...)> {
  static constexpr bool kUnit = true, kInPlace = false;
};
template <class T, class R, class... Rest>
struct ModelShape<QorStatus (*)(const T* const*, const T* const*, const T*, I, R*, I, Rest...)> {
  static constexpr bool kUnit = false, kInPlace = true;
};

}  // namespace cases
