// Diagonalisation of a bidiagonal matrix by implicit-shift QR sweeps (Golub and Reinsch), with both factors.
//
// The numbers of a sweep do not depend on the factors. So a sweep first computes all its rotations, and then turns the columns of
// V, and of U, in one pass each: for a block of rows the columns go by, each loaded and stored once. Rows are independent, so the
// width of a block does not show; columns are padded to whole blocks, and the padding is turned along.
#pragma once

#include <cstdint>

#include "frame/column_blocks.h"
#include "frame/lanes.h"
#include "matching/bidiagonal.h"
#include "qorsr.h"

namespace qorsr {

// The root of a^2 + b^2 without overflow or underflow between.
inline double hypotenuse(double a, double b) {
  constexpr double kLarge = 0x1p510, kSmall = 0x1p-510;
  const double x = __builtin_fabs(a), y = __builtin_fabs(b), most = x > y ? x : y;
  const auto scaled = [&](double up, double down) {
    const double p = x * down, q = y * down;
    return up * __builtin_sqrt(p * p + q * q);
  };
  if (most >= kLarge) return scaled(kLarge, kSmall);
  if (most <= kSmall) return scaled(kSmall, kLarge);
  return __builtin_sqrt(x * x + y * y);
}

struct Rotation {
  double c, s;
};

// A rotation of elements a of one column and b of another: a' = c a + s b, b' = c b - s a.
template <class L>
struct Turn {
  L c, s;

  explicit Turn(const Rotation& r) : c(r.c), s(r.s) {}
  L first(const L& a, const L& b) const { return c * a + s * b; }
  L second(const L& a, const L& b) const { return b * c - a * s; }
};

// Turns columns l and l + 1 by turns[0], l + 1 and l + 2 by turns[1], and so on, `count` times.
inline void rotateChain(const Columns& columns, int32_t l, int32_t count, const Rotation* turns) {
  coverColumnsOnce<double>(static_cast<int32_t>(columns.pitch), [=](int32_t r, auto lanes) {
    using L = Lanes<double, lanes>;
    double* x = columns[l] + r;
    L carried = L::load(x);
    for (int32_t j = 0; j < count; ++j, x += columns.pitch) {
      const Turn<L> turn(turns[j]);
      const L next = L::load(x + columns.pitch);
      turn.first(carried, next).store(x);
      carried = turn.second(carried, next);
    }
    carried.store(x);
  });
}

// Turns column `fixed` with columns first, first + 1, and so on, in turn.
inline void rotateAgainst(const Columns& columns, int32_t fixed, int32_t first, int32_t count, const Rotation* turns) {
  coverColumnsOnce<double>(static_cast<int32_t>(columns.pitch), [=](int32_t r, auto lanes) {
    using L = Lanes<double, lanes>;
    L carried = L::load(columns[fixed] + r);
    for (int32_t j = 0; j < count; ++j) {
      const Turn<L> turn(turns[j]);
      double* const other = columns[int64_t{first} + j] + r;
      const L x = L::load(other);
      turn.second(carried, x).store(other);
      carried = turn.first(carried, x);
    }
    carried.store(columns[fixed] + r);
  });
}

class QrSweeps {
 public:
  // w and e: the diagonal and the superdiagonal, e[0] = 0. turns: room for twice as many rotations as there are columns.
  QrSweeps(const Columns& u, const Columns& v, double* w, double* e, double norm, Rotation* turns)
      : u_(u), v_(v), w_(w), e_(e), norm_(norm), turnsU_(turns), turnsV_(turns + u.width) {}

  // qorStatusNoConvergence when a value is not found after limit - 1 sweeps; the arrays then hold what was reached.
  QorStatus run(int32_t limit) {
    for (int32_t k = u_.width - 1; k >= 0; --k) {
      for (int32_t its = 1;; ++its) {
        const int32_t l = split(k);
        if (l == k) break;
        // A NaN at the end of the block spreads over all of it and stays: no sweep would converge.
        if (its == limit || w_[k] != w_[k]) return qorStatusNoConvergence;
        sweep(l, k);
      }
      if (w_[k] < 0.0) {
        w_[k] = -w_[k];
        scale(v_[k], v_.height, -1.0);
      }
    }
    return qorStatusOk;
  }

 private:
  bool negligible(double x) const { return __builtin_fabs(x) + norm_ == norm_; }

  // The first index of the block that ends at k. A zero on the diagonal in front of it is removed.
  int32_t split(int32_t k) {
    for (int32_t l = k; l > 0; --l) {
      if (negligible(e_[l])) return l;
      if (negligible(w_[l - 1])) {
        cancel(l, k);
        return l;
      }
    }
    return 0;
  }

  // Turns e[l] away, w[l - 1] being negligible.
  void cancel(int32_t l, int32_t k) {
    double c = 0.0, s = 1.0;
    int32_t count = 0;
    for (int32_t i = l; i <= k; ++i) {
      const double f = s * e_[i];
      e_[i] = c * e_[i];
      if (negligible(f)) break;
      const double g = w_[i], h = hypotenuse(f, g);
      w_[i] = h;
      c = g / h;
      s = -f / h;
      turnsU_[count++] = {c, s};
    }
    rotateAgainst(u_, l - 1, l, count, turnsU_);
  }

  // The shift: an eigenvalue of the trailing 2 x 2 minor.
  double shifted(int32_t l, int32_t k) const {
    const double x = w_[l], y = w_[k - 1], z = w_[k], g = e_[k - 1], h = e_[k];
    const double f = ((y - z) * (y + z) + (g - h) * (g + h)) / ((h + h) * y);
    const double root = hypotenuse(f, 1.0), sign = f < 0.0 ? -root : root;
    return ((x - z) * (x + z) + h * (y / (f + sign) - h)) / x;
  }

  void sweep(int32_t l, int32_t k) {
    double c = 1.0, s = 1.0, f = shifted(l, k), x = w_[l];
    for (int32_t j = l; j < k; ++j) {
      const int32_t i = j + 1;
      double g = e_[i], y = w_[i];
      double h = s * g;
      g = c * g;
      double z = hypotenuse(f, h);
      e_[j] = z;
      if (z != 0.0) c = f / z, s = h / z;
      f = x * c + g * s;
      g = g * c - x * s;
      h = y * s;
      y = y * c;
      turnsV_[j - l] = {c, s};
      z = hypotenuse(f, h);
      w_[j] = z;
      if (z != 0.0) {
        const double reciprocal = 1.0 / z;
        c = f * reciprocal, s = h * reciprocal;
      }
      f = c * g + s * y;
      x = c * y - s * g;
      turnsU_[j - l] = {c, s};
    }
    e_[l] = 0.0;
    e_[k] = f;
    w_[k] = x;
    rotateChain(v_, l, k - l, turnsV_);
    rotateChain(u_, l, k - l, turnsU_);
  }

  Columns u_, v_;
  double *w_, *e_, norm_;
  Rotation *turnsU_, *turnsV_;
};

}  // namespace qorsr
