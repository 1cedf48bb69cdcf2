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
// The headers of lanes/ are the only ones that know the instruction level. Kernels include this one for the usual verbs, and one of
// words.h, rounding.h, order.h for special ones.
#pragma once

#include "frame/lanes/integers.h"  // IWYU pragma: export
#include "frame/lanes/joins.h"     // IWYU pragma: export
#include "frame/lanes/native.h"    // IWYU pragma: export
#include "frame/lanes/permuted.h"  // IWYU pragma: export
#include "frame/lanes/tail.h"      // IWYU pragma: export
#include "frame/lanes/values.h"    // IWYU pragma: export
