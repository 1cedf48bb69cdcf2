// Evaluation of filter banks in float.
//
//   Each filter has eight lanes. A section's bins go to lanes 0 to 7 in blocks of eight, and what remains of it to lane 0, one by
//   one; element 0 of a rising section goes to lane 0 on its own before the blocks, but for that of the first filter, whose blocks
//   begin with it. ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)).
//
// Additions to lane 0 wait for each other, and most sections are narrow; so kGroup filters are summed at once, in the lanes of one
// register. A bank's plan (filter_bank_plan.h) has their weights in that order. For each group of sections in turn:
//
//   1. Blocks of eight are added section by section, to the lanes of the filter that falls there and of the one that rises. What
//      belongs to lane 0 of the falling one is kept, since its rising side's rest comes first.
//   2. The bins of the rests, four at a time, are turned, so that register j holds bin j of each section. Then lane 0 of the filters
//      that rise is one addition a bin; and so is that of the filters that fall, which rose one section earlier: their sums are
//      those of the rising ones, moved by one lane.
//   3. The lanes are turned and joined.
//
// A weight of 0 stands for a bin that a section does not have. A sum that begins with +0 is never -0, so adding 0 does not change
// it; but 0 times infinity is not 0: if any result is not finite, all are found once more filter by filter (evaluateFilter).
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "features/filter_bank.h"
#include "features/filter_bank_plan.h"
#include "frame/bits.h"
#include "frame/lanes.h"

namespace qorsr {

// ---- Lanes ----

// Lane 0 from memory, zeros elsewhere.
template <int N>
inline Lanes<float, N> loadLane0(const float* p) {
  Lanes<float, N> v(0.0F);
  v.part[0] = typename Lanes<float, N>::Part{*p};
  return v;
}

constexpr int behindLane0(int i, int n) { return i == 0 ? 0 : n + i; }

// a, with 0 in lane 0.
template <int N>
inline Lanes<float, N> clearLane0(const Lanes<float, N>& a) {
  return permuted<behindLane0>(Lanes<float, N>(0.0F), a);
}

// Lanes a3 b0 b1 b2. In two steps: of one shuffle GCC 12 makes more.
inline Lanes<float, 4> movedByOne(const Lanes<float, 4>& a, const Lanes<float, 4>& b) {
  const auto ends = __builtin_shufflevector(a.part[0], b.part[0], 3, 3, 4, 4);
  Lanes<float, 4> v;
  v.part[0] = __builtin_shufflevector(ends, b.part[0], 0, 2, 5, 6);
  return v;
}

// Stores the first n < 4 lanes.
inline void storeFirst(const Lanes<float, 4>& a, float* p, int32_t n) {
  if (n >= 2) {
    lowerHalf(a).store(p);
    if (n == 3) p[2] = a.part[0][2];
  } else if (n == 1) {
    p[0] = a.part[0][0];
  }
}

// ---- One filter, any centres ----

// Adds a section to a filter's lanes.
inline void addSection(Lanes<float, 8>& sum, const float* weights, const float* x, int32_t count) {
  int32_t i = 0;
  for (; i <= count - 8; i += 8) sum += Lanes<float, 8>::load(weights + i) * Lanes<float, 8>::load(x + i);
  float lane0 = sum.part[0][0];
  for (; i < count; ++i) lane0 += weights[i] * x[i];
  sum.part[0][0] = lane0;
}

inline float evaluateFilter(const BankView<const float>& bank, int32_t k, const float* x) {
  Lanes<float, 8> sum(0.0F);
  Section section = bank.risingSection(k);
  const float* weights = bank.rising(k);
  if (k > 1 && section.count > 0) {
    sum.part[0][0] += weights[0] * x[section.first];
    ++section.first, --section.count, ++weights;
  }
  addSection(sum, weights, x + section.first, section.count);
  section = bank.fallingSection(k);
  addSection(sum, bank.falling(k), x + section.first, section.count);
  return joinHalves(sum);
}

// ---- Group by group ----

class PlannedEvaluation {
 public:
  PlannedEvaluation(int32_t n, const int32_t* centers, const float* firstRising, const float* x)
      : x_(x), lanes_(0.0F), total_(0.0F), left_(n) {
    addSection(lanes_, firstRising, x + centers[0], centers[1] - centers[0] + 1);
    risen_ = Row(lanes_.part[0][0]);
  }

  // False: some result is not finite, and may be so because of a weight of 0.
  [[gnu::always_inline]] bool evaluate(const GroupHead* group, float* result) {
    while (left_ > 0) {
      switch (group->kind) {
        case GroupKind::kShort:
          run<GroupKind::kShort, 0>(group, result);
          break;
        case GroupKind::kLong:
          run<GroupKind::kLong, 0>(group, result);
          break;
        case GroupKind::kOneBlock:
          run<GroupKind::kOneBlock, 1>(group, result);
          break;
        case GroupKind::kTwoBlocks:
          run<GroupKind::kTwoBlocks, 2>(group, result);
          break;
        default:
          run<GroupKind::kBlocks, kMostBlocks>(group, result);
          break;
      }
    }
    return allLess(abs(total_), Row(std::numeric_limits<float>::infinity()));
  }

 private:
  using Row = Lanes<float, kGroup>;
  using Four = Lanes<float, 4>;
  using Eight = Lanes<float, 8>;
  using Parts = GroupParts<const GroupHead>;

  // Groups of one kind.
  template <GroupKind Kind, int Blocks>
  [[gnu::always_inline]] void run(const GroupHead*& group, float*& result) {
    do {
      const Parts parts(group, Kind, Blocks == kMostBlocks ? group->blocks : Blocks);
      const Row sums = evaluateGroup<Kind, Blocks>(*group, parts);
      total_ += sums;
      if (left_ >= kGroup) {
        sums.store(result);
      } else {
        storeFirst(sums, result, left_);
      }
      result += kGroup;
      left_ -= kGroup;
      group = parts.next;
    } while (left_ > 0 && group->kind == Kind);
  }

  static Row weights(const float* row) { return Row::load(static_cast<const float*>(__builtin_assume_aligned(row, 4 * kGroup))); }
  static Eight eightWeights(const float* p) { return Eight::load(static_cast<const float*>(__builtin_assume_aligned(p, 16))); }
  const float* binsAt(int32_t offset) const {
    return reinterpret_cast<const float*>(reinterpret_cast<const std::byte*>(x_) + offset);
  }

  // Bins From to From + 3 of the windows.
  template <int From>
  [[gnu::always_inline]] Transposed windows(const GroupHead& group) const {
    Four four[kGroup];
    for (int i = 0; i < kGroup; ++i) four[i] = Four::load(binsAt(group.window[i]) + From);
    return turned(four);
  }

  static Transposed turned(const Four (&sets)[kGroup]) { return transposed(sets[0], sets[1], sets[2], sets[3]); }

  // What sections' blocks add up to.
  template <int Most>
  struct BlockSums {
    Four risen[kGroup];        // lanes 0 to 3 behind the rising blocks
    Four heads[Most][kGroup];  // lane 0 of the falling blocks: for lane 0 of the sum, in its turn
    Four ends[kGroup];         // lanes 0 and 4, 1 and 5, ... of filters that have fallen; lane 0 is left out
  };
  template <int Most>
  [[gnu::always_inline]] void addBlocks(BlockSums<Most>& sums, const GroupHead& group, const Parts& parts, int blocks) {
    Eight falls = lanes_;
    const BlockWeights* block = parts.weights;
    for (int i = 0; i < kGroup; ++i) {
      Eight rises = loadLane0<8>(&group.rising[0][i]) * loadLane0<8>(binsAt(parts.blockHead->centre[i]));
      for (int b = 0; b < blocks; ++b, ++block) {
        const Eight bins = Eight::load(binsAt(parts.bins[b][i])), product = eightWeights(block->falling) * bins;
        falls += product;
        rises += eightWeights(block->rising) * bins;
        sums.heads[b][i] = lowerHalf(product);
      }
      sums.risen[i] = lowerHalf(rises);
      sums.ends[i] = lowerHalf(clearLane0(falls)) + upperHalf(falls);
      falls = rises;
    }
    lanes_ = falls;
  }

  // Blocks: how many; kMostBlocks if unknown.
  template <GroupKind Kind, int Blocks>
  [[gnu::always_inline]] Row evaluateGroup(const GroupHead& group, const Parts& parts) {
    const int blocks = Blocks == kMostBlocks ? group.blocks : Blocks;
    BlockSums<Blocks == 0 ? 1 : Blocks> sums;
    Row rising(0.0F);
    if constexpr (Kind >= GroupKind::kOneBlock) {
      addBlocks(sums, group, parts, blocks);
      rising += turned(sums.risen).lane[0];
    }
    const auto low = windows<0>(group);
    if constexpr (Kind < GroupKind::kOneBlock) {
      rising += weights(group.rising[0]) * low.lane[0];
      lanes_ = Eight(0.0F);
    }
    for (int j = 1; j < 4; ++j) rising += weights(group.rising[j]) * low.lane[j];
    Transposed high;
    if constexpr (Kind >= GroupKind::kLong) {
      high = windows<4>(group);
      for (int j = 0; j < 4; ++j) rising += weights(parts.longRows->rising[j]) * high.lane[j];
    }
    Row falling = movedByOne(risen_, rising);
    risen_ = rising;
    if constexpr (Kind >= GroupKind::kOneBlock) {
      for (int b = 0; b < blocks; ++b) falling += turned(sums.heads[b]).lane[0];
    }
    for (int j = 1; j < 4; ++j) falling += weights(group.falling[j - 1]) * low.lane[j];
    if constexpr (Kind >= GroupKind::kLong) {
      for (int j = 0; j < 4; ++j) falling += weights(parts.longRows->falling[j]) * high.lane[j];
    }
    if constexpr (Kind >= GroupKind::kOneBlock) {
      const auto joined = turned(sums.ends);
      falling = ((falling + joined.lane[0]) + joined.lane[2]) + (joined.lane[1] + joined.lane[3]);
    }
    return falling;
  }

  const float* x_;
  Row risen_;    // lane 0 of the filters behind their rising sections; the last one is the next group's first
  Eight lanes_;  // the next group's first filter's lanes, but for lane 0
  Row total_;
  int32_t left_;  // results to come
};

[[gnu::noinline]] inline void evaluateEach(const FBankState_32f* state, const float* x, float* result) {
  const auto bank = viewOf(state);
  for (int32_t k = 1; k <= bank.filterCount; ++k) result[k - 1] = evaluateFilter(bank, k, x);
}

inline void evaluateBank(const FBankState_32f* bank, const float* x, float* result) {
  if (bank->planned) {
    PlannedEvaluation evaluation(bank->filterCount, areaAt<const int32_t>(bank, bank->centers),
                                 areaAt<const float>(bank, bank->rising), x);
    if (evaluation.evaluate(reinterpret_cast<const GroupHead*>(planOf(bank)), result)) return;
  }
  evaluateEach(bank, x, result);
}

}  // namespace qorsr
