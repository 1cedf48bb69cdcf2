// Constants that measuring chose, where the best value depends on the level or on the machine's caches. Results do not depend on any
// of them. Beside each: what was measured, and in which benchmark it shows.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

// ---- Columns ----

// Columns of one block: four registers are enough independent sums to hide the latency of an addition (column_statistics).
template <class T>
inline constexpr int kWidestBlock = 4 * kNativeLanes<T>;

// Elements that are each computed alone have no chain of additions, so one register is enough: wider blocks only leave a longer rest
// (re_estimation, row_edits).
template <class T>
inline constexpr int kOneRegister = kNativeLanes<T>;

// A wide, tall matrix of more bytes than kTiledBytes is taken in tiles of about kTileBytes (column_statistics, 512 columns).
inline constexpr int64_t kTiledBytes = 256 * 1024, kTileBytes = 32 * 1024;

// Rows whose sums are taken four at a time, unless they come from memory, which is read fastest in its order: matrices of more
// bytes, with at least so many columns (column_statistics, SumRow).
inline constexpr int64_t kFarBytes = 512 * 1024;
inline constexpr int32_t kFarColumns = 64;

// ---- Products of a matrix and a vector (products) ----

// Rows of floats that 16 sums each are kept of: what the registers hold.
inline constexpr int kFloatRowsTogether = kNativeBytes > 16 ? 4 : 2;

// Sums in double that are finished together, and rows of 16-bit numbers that give them.
inline constexpr int kSumsTogether = std::max(kNativeLanes<double>, 4);

// ---- Time warping (dtw) ----

// Registers of cells whose distances are summed in double together: two gain 1.05 to 1.1 below 512 bits and lose as much there.
inline constexpr int kDoubleWarpRegisters = kNativeBytes > 32 ? 1 : 2;

}  // namespace qorsr
