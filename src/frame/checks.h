// Argument checks, in the order that a family writes them down.
//
//   if (QorStatus bad = Checks().stride(rows, width).null(rows, result).size(width, height)) return bad;
//
// The first check that fails decides; those behind it are not evaluated, so `require` may follow a pointer that `null` has tested.
// The order is behaviour: it stands once a family, in one line.
#pragma once

#include "frame/rows.h"
#include "qorsr.h"

namespace qorsr {

template <class T>
bool isNull(T* pointer) {
  return pointer == nullptr;
}
template <class T>
bool isNull(const StridedRows<T>& rows) {
  return rows.base == nullptr;
}
template <class T>
bool isNull(const ListedRows<T>& rows) {
  return rows.list == nullptr;
}

class Checks {
 public:
  // Every pointer (or the base or list of rows) is there.
  template <class... Pointers>
  Checks& null(const Pointers&... pointers) {
    return fail((isNull(pointers) || ...), qorStatusNullPointer);
  }

  // Every size is at least 1.
  template <class... Sizes>
  Checks& size(Sizes... sizes) {
    return fail(((sizes < 1) || ...), qorStatusBadSize);
  }

  // Every size is at least `least`.
  template <class... Sizes>
  Checks& atLeast(int32_t least, Sizes... sizes) {
    return fail(((sizes < least) || ...), qorStatusBadSize);
  }

  // The stride holds `width` elements. Row pointers have no stride and always pass.
  template <class T>
  Checks& stride(const StridedRows<T>& rows, int64_t width) {
    return fail(rows.stride < width, qorStatusBadStride);
  }
  template <class T>
  Checks& stride(const ListedRows<T>&, int64_t) {
    return *this;
  }

  // 0 <= index < count.
  Checks& index(int32_t index, int32_t count) { return fail(index < 0 || index >= count, qorStatusBadSize); }

  // Any other condition: a bool, or a callable that runs only if nothing failed before.
  template <class Condition>
  Checks& require(Condition condition, QorStatus otherwise) {
    if (status_ != qorStatusOk) return *this;
    if constexpr (requires { condition(); }) {
      return fail(!condition(), otherwise);
    } else {
      return fail(!condition, otherwise);
    }
  }

  operator QorStatus() const { return status_; }

 private:
  Checks& fail(bool failed, QorStatus status) {
    if (failed && status_ == qorStatusOk) status_ = status;
    return *this;
  }

  QorStatus status_ = qorStatusOk;
};

}  // namespace qorsr
