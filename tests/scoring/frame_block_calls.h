// One call for every member of the frame-block scorers: the shape of its argument list tells which arguments it takes.
#pragma once

#include <cstdint>

#include "qorsr.h"

namespace cases {

template <class T, class R>
struct BlockArgs {
  const T* source;
  const T* const* rows;
  int32_t stride;
  const T *mean, *variance;
  int32_t width;
  R* result;
  int32_t height;
  R val;
  int32_t sf;
};

using I = int32_t;

template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, I, const T*, const T*, I, R*, I, R), const BlockArgs<T, R>& a) {
  return f(a.source, a.stride, a.mean, a.variance, a.width, a.result, a.height, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, I, const T*, const T*, I, R*, I, R, I), const BlockArgs<T, R>& a) {
  return f(a.source, a.stride, a.mean, a.variance, a.width, a.result, a.height, a.val, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, I, const T*, I, R*, I, R), const BlockArgs<T, R>& a) {
  return f(a.source, a.stride, a.mean, a.width, a.result, a.height, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, I, const T*, I, R*, I, R, I), const BlockArgs<T, R>& a) {
  return f(a.source, a.stride, a.mean, a.width, a.result, a.height, a.val, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T*, const T*, I, R*, I, R), const BlockArgs<T, R>& a) {
  return f(a.rows, a.mean, a.variance, a.width, a.result, a.height, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T*, const T*, I, R*, I, R, I), const BlockArgs<T, R>& a) {
  return f(a.rows, a.mean, a.variance, a.width, a.result, a.height, a.val, a.sf);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T*, I, R*, I, R), const BlockArgs<T, R>& a) {
  return f(a.rows, a.mean, a.width, a.result, a.height, a.val);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T*, I, R*, I, R, I), const BlockArgs<T, R>& a) {
  return f(a.rows, a.mean, a.width, a.result, a.height, a.val, a.sf);
}
// Distances.
template <class T, class R>
QorStatus call(QorStatus (*f)(const T*, I, const T*, const T*, I, R*, I), const BlockArgs<T, R>& a) {
  return f(a.source, a.stride, a.mean, a.variance, a.width, a.result, a.height);
}
template <class T, class R>
QorStatus call(QorStatus (*f)(const T* const*, const T*, const T*, I, R*, I), const BlockArgs<T, R>& a) {
  return f(a.rows, a.mean, a.variance, a.width, a.result, a.height);
}

// Whether a member has a variance argument, and the types of its elements and results.
template <class F>
struct Signature;
template <class T, class... Rest>
struct Signature<QorStatus (*)(const T* const*, const T*, const T*, I, Rest...)> {
  using Element = T;
  static constexpr bool kUnit = false;
};
template <class T, class... Rest>
struct Signature<QorStatus (*)(const T* const*, const T*, I, Rest...)> {
  using Element = T;
  static constexpr bool kUnit = true;
};

}  // namespace cases
