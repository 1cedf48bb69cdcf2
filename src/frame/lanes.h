// Lanes<T, N>: N numbers that an algorithm works on at once, the same N at every instruction level.
//
// The number of lanes belongs to the algorithm, because it fixes the grouping of a float sum: the same source gives the same bits
// in registers of 128, 256 and 512 bits. Lanes<T, N> is an array of the widest native vectors that fit; N is a power of two, and N
// = 1 is a plain scalar, so that one kernel serves blocks of columns and a last column alone.
//
// What the operations promise at every level and with both compilers:
//   min(a, b) is a < b ? a : b, max(a, b) is a > b ? a : b, lane by lane: a NaN on either side gives b.
//   Joins add in the order that their names say. Nothing is contracted, nothing reassociated.
//   A Tail reads and writes its first n elements only; lanes beyond hold the fill value.
//
// The verbs, by what one wants; T is the type of the lanes, N their number. What one kernel alone needs stands beside that kernel.
//
//   a constant, memory      Lanes<T, N>(x), ::load(p), ::of(a, b, c, d), a.store(p); loadAs<To, N>(p) converts what it loads
//   arithmetic              + - * / += -= *=, min, max, abs, minusAbs, sqrt; integers: >> shiftRight shiftLeft subtractSaturated
//   products of int16       pairDots(a, b), neighbours added; upperProducts(a, b), the upper halves
//   other types             as<To>(a), as static_cast does; saturated(a) to int16; truncated(a) and nearest(a) to int32, with what
//                           belongs to them in rounding.h; ScaleShift, shifts by a scale factor
//   choices                 selectLess(x, y, a, b), anyLess, allLess; zeroWhereNaN
//   orders                  permuted<Order>(a, b), any fixed one; interleaved<G>(a, b), reversed, transposed(a, b, c, d)
//   halves                  lowerHalf, upperHalf, concatenated(a, b)
//   joins                   joinHalves(a), the sum of all lanes, or joinHalves(a, b, c, d) of four sets; joinedTo<M>(a), M sums
//   the first n lanes       Tail<T, N>(n).load(p, fill), .store(v, p)
//   register by register    Tail::forParts, Lanes::each
//
// The headers of lanes/ know the instruction level; so do a few kernels with a verb that is theirs alone. Kernels include this one for
// the usual verbs, and rounding.h for floats that become integers.
#pragma once

#include "frame/lanes/integers.h"  // IWYU pragma: export
#include "frame/lanes/joins.h"     // IWYU pragma: export
#include "frame/lanes/native.h"    // IWYU pragma: export
#include "frame/lanes/permuted.h"  // IWYU pragma: export
#include "frame/lanes/tail.h"      // IWYU pragma: export
#include "frame/lanes/values.h"    // IWYU pragma: export
