// What the evaluation of a float filter bank wants to find ready made: weights in the order in which it takes them.
//
// Section s, from 1 to n, is where filter s falls and filter s + 1 rises: bins c[s] + 1 to c[s+1], and for the rising side the
// centre c[s] too. It has blocks of eight bins and a rest of up to seven. The rest lies in a window of eight bins that begins one bin
// in front of it, or further to the left where the bins end. Four sections make a group. Its row j has the weights of bin j of each
// section's window, 0 if that bin is not of the rest. A centre is bin 0 of the window, or further to the right, if its section has no
// blocks; else row 0, of which the rest has nothing, has its weight.
//
// Groups follow each other, each as long as its kind needs. They lie behind the rows of the n filters, in the room of two rows and of
// tables that the size rule has there. A bank without a plan (its centres fall or leave the bins, a section has too many blocks, or
// the room is too small) is evaluated filter by filter.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "features/filter_bank.h"
#include "features/filter_bank_integer.h"

namespace qorsr {

inline constexpr int kGroup = 4;
inline constexpr int kMostBlocks = 15;  // of one section

enum class GroupKind : int32_t {
  kShort,      // GroupHead alone
  kLong,       // and LongRows
  kOneBlock,   // and BlockHead, with one row of bins, and the weights of one block of each section
  kTwoBlocks,  // with two
  kBlocks,     // with `blocks`
};

using BinRow = int32_t[kGroup];  // bins as byte offsets

struct alignas(4 * kGroup) GroupHead {
  float rising[4][kGroup];
  float falling[3][kGroup];  // from row 1 on: the first bin of a window is nowhere a falling one
  BinRow window;
  GroupKind kind;
  int32_t blocks;  // of every section; those that a section does not have weigh nothing
};
struct alignas(4 * kGroup) LongRows {
  float rising[4][kGroup];
  float falling[4][kGroup];
};
struct alignas(4 * kGroup) BlockWeights {
  float falling[8], rising[8];
};
struct alignas(4 * kGroup) BlockHead {
  BinRow centre;
};

// What stands behind a GroupHead; pointers to what its kind does not have are not to be used. An evaluation that knows kind and
// number of blocks leaves nothing to compute here.
template <class Head>
struct GroupParts {
  template <class T>
  using Like = std::conditional_t<std::is_const_v<Head>, const T, T>;

  Like<LongRows>* longRows;
  Like<BlockHead>* blockHead;
  Like<BinRow>* bins;  // where blocks begin; a row for each block
  Like<BlockWeights>* weights;
  Head* next;

  [[gnu::always_inline]] explicit GroupParts(Head* head, GroupKind kind, int blocks)
      : longRows(reinterpret_cast<Like<LongRows>*>(head + 1)),
        blockHead(reinterpret_cast<Like<BlockHead>*>(longRows + (kind >= GroupKind::kLong ? 1 : 0))),
        bins(reinterpret_cast<Like<BinRow>*>(blockHead + (kind >= GroupKind::kOneBlock ? 1 : 0))),
        weights(reinterpret_cast<Like<BlockWeights>*>(bins + blocks)),
        next(reinterpret_cast<Head*>(weights + blocks * kGroup)) {}
  explicit GroupParts(Head* head) : GroupParts(head, head->kind, head->blocks) {}
};

// ---- Construction ----

// A section's bins and blocks.
struct PlannedSection {
  int32_t centre, last, blocks, restStart, window;

  PlannedSection(const int32_t* centers, int32_t s, int32_t half)
      : centre(centers[s]),
        last(centers[s + 1]),
        blocks((last - centre) / 8),
        restStart(centre + 8 * blocks),
        window(std::min(restStart, half - 7)) {}
};

// Sections s to s + count - 1: what decides of the group's size.
inline void describeGroup(GroupHead& group, const BankView<const float>& bank, int32_t s, int count) {
  std::memset(&group, 0, sizeof(group));
  const int32_t* const c = bank.centers;
  bool carried = c[s] - c[s - 1] + (s == 1) >= 8, longWindows = false;  // blocks of the section in front
  for (int i = 0; i < count; ++i) {
    const PlannedSection section(c, s + i, bank.half);
    group.blocks = std::max(group.blocks, section.blocks);
    longWindows |= section.last - section.window >= 4;
  }
  group.kind = group.blocks == 1             ? GroupKind::kOneBlock
               : group.blocks == 2           ? GroupKind::kTwoBlocks
               : group.blocks > 2 || carried ? GroupKind::kBlocks
               : longWindows                 ? GroupKind::kLong
                                             : GroupKind::kShort;
}

inline void copyWeights(float* to, const float* from, int64_t count) { std::memcpy(to, from, static_cast<std::size_t>(4 * count)); }

// Sections s to s + count - 1: bins and weights, into areas that were clear.
inline void fillGroup(GroupHead& group, const BankView<const float>& bank, int32_t s, int count) {
  const GroupParts<GroupHead> parts(&group);
  for (int i = 0; i < count; ++i) {
    const PlannedSection section(bank.centers, s + i, bank.half);
    const float* const falling = bank.falling(s + i);
    const float* const rising = s + i < bank.filterCount ? bank.rising(s + i + 1) : nullptr;
    group.window[i] = 4 * section.window;
    if (group.kind >= GroupKind::kOneBlock) parts.blockHead->centre[i] = 4 * (section.blocks > 0 ? section.centre : section.window);
    for (int32_t b = 0; b < section.blocks; ++b) {
      BlockWeights& block = parts.weights[i * group.blocks + b];
      parts.bins[b][i] = 4 * (section.centre + 1 + 8 * b);
      copyWeights(block.falling, falling + 8 * b, 8);
      if (rising != nullptr) copyWeights(block.rising, rising + 8 * b + 1, 8);
    }
    for (int32_t bin = section.restStart; bin <= section.last; ++bin) {
      const int32_t j = bin - section.window, element = bin - section.centre;
      const bool isRest = bin > section.restStart, isCentre = !isRest && section.blocks == 0;
      if (isRest) copyWeights(j < 4 ? &group.falling[j - 1][i] : &parts.longRows->falling[j - 4][i], falling + element - 1, 1);
      if (rising != nullptr && (isRest || isCentre)) {
        copyWeights(j < 4 ? &group.rising[j][i] : &parts.longRows->rising[j - 4][i], rising + element, 1);
      }
    }
    if (rising != nullptr && section.blocks > 0) copyWeights(&group.rising[0][i], rising, 1);
  }
}

// ---- Plans of either kind ----

// Makes the plan at `begin`; false if it does not fit in front of `end`, or the bank can have none.
inline bool planGroups(const BankView<const float>& bank, std::byte* begin, const std::byte* end) {
  const int32_t n = bank.filterCount, *const c = bank.centers;
  bool possible = bank.half >= 7 && c[0] >= 0 && c[n + 1] <= bank.half && std::is_sorted(c, c + n + 2);
  for (int32_t s = 1; s <= n && possible; ++s) possible = (c[s + 1] - c[s]) / 8 <= kMostBlocks;
  auto* group = reinterpret_cast<GroupHead*>(begin);
  for (int64_t s = 1; s <= n && possible; s += kGroup) {
    const auto count = static_cast<int>(std::min<int64_t>(kGroup, n + 1 - s));
    const auto first = static_cast<int32_t>(s);
    if (reinterpret_cast<std::byte*>(group + 1) > end) return false;
    describeGroup(*group, bank, first, count);
    auto* const behind = reinterpret_cast<std::byte*>(group + 1);
    auto* const next = reinterpret_cast<std::byte*>(GroupParts<GroupHead>(group).next);
    if (next > end) return false;
    std::memset(behind, 0, static_cast<std::size_t>(next - behind));
    fillGroup(*group, bank, first, count);
    group = reinterpret_cast<GroupHead*>(next);
  }
  return possible;
}

// The weights of filter k have changed.
inline void replanGroups(const BankView<const float>& bank, int32_t k, std::byte* begin) {
  auto* group = reinterpret_cast<GroupHead*>(begin);
  for (int64_t s = 1; s <= k; s += kGroup, group = GroupParts<GroupHead>(group).next) {
    const auto count = static_cast<int>(std::min<int64_t>(kGroup, bank.filterCount + 1 - s));
    if (s + kGroup >= k) fillGroup(*group, bank, static_cast<int32_t>(s), count);
  }
}

// Where a bank's plan begins.
template <class Bank>
auto* planOf(Bank* bank) {
  using Byte = std::conditional_t<std::is_const_v<Bank>, const std::byte, std::byte>;
  const int64_t rows = 4 * int64_t{bank->filterCount} * rowElements(halfLength(*bank));
  return areaAt<Byte>(bank, bank->falling + static_cast<int32_t>(rows));
}

// To be called when centres have changed: makes the plan, if there can be one.
inline void planEvaluation(FilterBankRecord* bank) {
  const TransformSize size = transformSize(bank->fftLength);
  const int64_t bytes = filterBankBytes<FBankState_32f>(bank->filterCount, size, bank->fftSpec != 0);
  const std::byte* const end = reinterpret_cast<std::byte*>(bank) + bytes;
  bank->planned = bank->wholeWeights ? planBank<int16_t>(viewAs<const int32_t>(bank), planOf(bank), end)
                                     : planGroups(viewAs<const float>(bank), planOf(bank), end);
}
// To be called when the weights of filter k have changed.
inline void replanEvaluation(FilterBankRecord* bank, int32_t k) {
  if (!bank->planned) return;
  if (bank->wholeWeights) {
    replanFilter<int16_t>(viewAs<const int32_t>(bank), k, planOf(bank));
  } else {
    replanGroups(viewAs<const float>(bank), k, planOf(bank));
  }
}

}  // namespace qorsr
