// Growing a codebook by splits: leaves, their centroids and members, and the rounds of Lloyd's algorithm behind each split.
//
// A split gives the half of a leaf's rows that lie nearest to its centroid to a new leaf. Up to 20 rounds then recompute the centroid
// of each leaf from its rows, in their order, and give each row to its nearest leaf, scanning upward by the margin rule; a leaf keeps
// its last row. The rounds end behind one in which no row moved: the next would find the same centroids, distances and answers.
//
// Distances that cannot have changed are kept. A leaf whose rows stayed keeps its centroid in bits. Each row keeps the distance to
// its leaf, and a bound below those to all other leaves, so that a round computes the distances to the changed leaves alone, a block
// of rows together; where one leaf is nearer than that bound and all others by more than the margin, the order of the scan cannot
// show. Otherwise the row is scanned as defined. Memory: rows in float, and four numbers a row.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "frame/bits.h"
#include "frame/convert.h"
#include "quantise/codebook_search.h"

namespace qorsr {

// A node of the tree while it grows. Children are nodes; -1 of a leaf.
struct GrowingNode {
  int32_t members;  // of an inner node: when it was split
  int32_t depth;
  int32_t left, right;
  int32_t leaf;  // its place among the leaves
};

template <class T>
class LloydTraining {
 public:
  // `weights` null: every weight is 1.
  LloydTraining(const T* source, int64_t step, const T* weights, int32_t dimension, int32_t height, int32_t size)
      : source_(source),
        step_(step),
        dimension_(dimension),
        height_(height),
        blocks_((int64_t{height} + kBlock - 1) / kBlock),
        area_(bytesFor(dimension, height, size)),
        weighted_(weights != nullptr) {
    if (!area_) return;
    std::byte* next = area_.get();
    const auto take = [&next]<class E>(E*& array, int64_t count) {
      array = reinterpret_cast<E*>(next);
      next += padded(count * static_cast<int64_t>(sizeof(E)));
    };
    take(columns_, blocks_ * kBlock * dimension);
    take(weights_, dimension);
    take(temporary_, dimension);
    take(label_, height);
    take(distance_, height);
    take(others_, height);
    take(order_, height);
    take(centroids_, int64_t{size} * dimension);
    take(sums_, int64_t{size} * dimension);
    take(nodes_, 2 * int64_t{size});
    take(nodeOf_, size);
    take(members_, size);
    take(spread_, size);
    take(table_, size);
    take(freshLeaves_, size);
    take(stale_, size);
    take(fresh_, size);
    for (int32_t j = 0; j < dimension; ++j) weights_[j] = weighted_ ? static_cast<float>(weights[j]) : 1.0F;
    for (int64_t b = 0; b < blocks_; ++b) {
      const int64_t left = height - b * kBlock;
      storeColumns(source + b * kBlock * step, step, static_cast<int32_t>(left < kBlock ? left : kBlock), dimension,
                   columns_ + b * kBlock * dimension);
    }
  }

  explicit operator bool() const { return static_cast<bool>(area_); }

  int32_t leaves() const { return leaves_; }
  const float* centroidOf(int32_t leaf) const { return centroids_ + int64_t{leaf} * dimension_; }
  const GrowingNode* nodes() const { return nodes_; }
  int32_t nodeCount() const { return 2 * leaves_ - 1; }
  // One number a leaf, free for use when the tree has grown.
  float* table() const { return table_; }

  // Grows to `size` leaves, or as many as there are leaves to split.
  QorStatus grow(int32_t size, int32_t mode) {
    plantRoot();
    while (leaves_ < size) {
      const int32_t leaf = mode == kSplitBySpread ? widest() : largest();
      if (leaf < 0) return qorStatusCdbkSizeChanged;
      if (const QorStatus bad = split(leaf)) return bad;
    }
    return qorStatusOk;
  }

 private:
  using Sum = std::conditional_t<sizeof(T) == 4, float, double>;
  static constexpr float kNone = std::numeric_limits<float>::max();
  static constexpr int32_t kRounds = 20, kMostRepairs = 1000;
  static constexpr double kSame = 1e-6, kRowAtCentroid = 1e-5;

  static int64_t padded(int64_t bytes) { return (bytes + 31) / 32 * 32; }
  // Beyond what an allocation can be: any number above that.
  static int64_t bytesFor(int32_t dimension, int32_t height, int32_t size) {
    const int64_t rows = (int64_t{height} + kBlock - 1) / kBlock * kBlock;
    if (dimension > INT32_MAX / rows || dimension > INT32_MAX / int64_t{size}) return int64_t{INT32_MAX} + 1;
    return rows * dimension * 4 + int64_t{size} * dimension * (4 + static_cast<int64_t>(sizeof(Sum))) + int64_t{dimension} * 8 +
           int64_t{height} * 16 + int64_t{size} * (2 * static_cast<int64_t>(sizeof(GrowingNode)) + 24) + 16 * 32;
  }

  const T* row(int32_t r) const { return source_ + r * step_; }
  float* centroid(int32_t leaf) { return centroids_ + int64_t{leaf} * dimension_; }

  template <class F>
  auto withRowWeights(const F& f) const {
    if (weighted_) return f(SharedRow<float>{weights_});
    return f(UnitRows{});
  }
  float distance(const float* a, const float* b) const {
    return withRowWeights([&](const auto& weights) { return squaredDistance(a, b, weights, dimension_); });
  }
  // Row r as floats.
  const float* rowInFloats(int32_t r) const { return rowInFloat(row(r), dimension_, temporary_); }

  // ---- Centroids ----

  // Means of the rows of all stale leaves, which are then fresh. required: float sums are divided; 16-bit ones multiplied by the
  // reciprocal in double and rounded to nearest, ties to even.
  void refreshCentroids() {
    std::swap(fresh_, stale_);
    std::fill_n(stale_, leaves_, uint8_t{0});
    for (int32_t i = 0; i < leaves_; ++i) {
      if (fresh_[i]) std::fill_n(sums_ + int64_t{i} * dimension_, dimension_, Sum(0));
    }
    for (int32_t r = 0; r < height_; ++r) {
      const int32_t leaf = label_[r];
      if (!fresh_[leaf]) continue;
      const T* const x = row(r);
      Sum* const sum = sums_ + int64_t{leaf} * dimension_;
      coverColumnsOnce<Sum, kNativeLanes<Sum>>(
          dimension_, [&](int32_t j, auto n) __attribute__((always_inline)) {
            (Lanes<Sum, n>::load(sum + j) + loadAs<Sum, n>(x + j)).store(sum + j);
          });
    }
    for (int32_t i = 0; i < leaves_; ++i) {
      if (!fresh_[i]) continue;
      const Sum* const sum = sums_ + int64_t{i} * dimension_;
      float* const c = centroid(i);
      if constexpr (sizeof(T) == 4) {
        const auto count = static_cast<float>(members_[i]);
        for (int32_t j = 0; j < dimension_; ++j) c[j] = sum[j] / count;
      } else {
        const double reciprocal = 1.0 / static_cast<double>(members_[i]);
        for (int32_t j = 0; j < dimension_; ++j)
          c[j] = static_cast<float>(saturate<int16_t>(limitAndRound<int32_t>(sum[j] * reciprocal)));
      }
    }
  }

  void plantRoot() {
    leaves_ = 1;
    nodes_[0] = {height_, 1, -1, -1, 0};
    nodeOf_[0] = 0;
    members_[0] = height_;
    std::fill_n(label_, height_, 0);
    std::fill_n(distance_, height_, 0.0F);
    std::fill_n(others_, height_, kNone);
    spread_[0] = 0.0F;
    stale_[0] = 1;
    if (height_ == 1) {
      std::memcpy(centroid(0), rowInFloats(0), static_cast<std::size_t>(dimension_) * sizeof(float));
      return;
    }
    refreshCentroids();
    // required: of float rows distances within the noise of the centroid's elements are zero.
    float least = centroid(0)[0], most = least;
    for (int32_t j = 1; j < dimension_; ++j) {
      if (centroid(0)[j] < least) least = centroid(0)[j];
      if (centroid(0)[j] > most) most = centroid(0)[j];
    }
    const double noise = std::max(static_cast<double>(most) * 1e-6, static_cast<double>(least) * -1e-6);
    float widest = 0.0F;
    for (int32_t r = 0; r < height_; ++r) {
      const float d = distance(rowInFloats(r), centroid(0));
      if (sizeof(T) == 4 && !isBelow(noise, static_cast<double>(d))) continue;
      distance_[r] = d;
      if (isBelow(static_cast<double>(widest), static_cast<double>(d))) widest = d;
    }
    spread_[0] = widest * 2.0F;
  }

  // ---- Which leaf is split ----

  int32_t widest() const {
    int32_t leaf = -1;
    float best = 0.0F;
    for (int32_t i = 0; i < leaves_; ++i) {
      if (!isBelow(static_cast<double>(best), static_cast<double>(spread_[i]))) continue;
      best = spread_[i];
      leaf = i;
    }
    return leaf;
  }
  int32_t largest() const {
    int32_t leaf = -1, best = 0;
    for (int32_t i = 0; i < leaves_; ++i) {
      if (!isBelow(0.0, static_cast<double>(spread_[i]))) continue;
      const bool larger = sizeof(T) == 4 ? isBelow(static_cast<double>(static_cast<float>(best)),
                                                   static_cast<double>(static_cast<float>(members_[i])))
                                         : members_[i] > best;
      if (!larger) continue;
      best = members_[i];
      leaf = i;
    }
    return leaf;
  }

  // ---- Splitting ----

  // The leaf s becomes a node; its left child is the new leaf t, its right child takes its place.
  QorStatus split(int32_t s) {
    if (members_[s] < 2) return qorStatusBadSize;
    const int32_t t = leaves_++, parent = nodeOf_[s], parentMembers = members_[s];
    GrowingNode& node = nodes_[parent];
    node.members = parentMembers;
    node.left = 2 * t - 1;
    node.right = 2 * t;
    node.leaf = -1;
    nodes_[node.left] = {0, node.depth + 1, -1, -1, t};
    nodes_[node.right] = {0, node.depth + 1, -1, -1, s};
    nodeOf_[t] = node.left;
    nodeOf_[s] = node.right;
    spread_[t] = 0.0F;
    members_[t] = seedNearerHalf(s, t);
    members_[s] = parentMembers - members_[t];
    stale_[s] = stale_[t] = 1;
    for (int32_t round = 0; round < kRounds; ++round) {
      refreshCentroids();
      if (static_cast<double>(distance(centroid(s), centroid(t))) <= kSame) {
        if (const QorStatus bad = separate(s, t, parentMembers)) return bad;
        stale_[t] = 1;  // its centroid is no mean: it is computed anew
      }
      if (assign() == 0) break;
    }
    updateSpreads();
    for (int32_t i = 0; i < leaves_; ++i) nodes_[nodeOf_[i]].members = members_[i];
    return qorStatusOk;
  }

  // Gives label t to the members / 2 rows of s with the smallest stored distances; which, where some are equal but for the margin, a
  // scan by the margin rule decides. The distances are sorted, and cut into runs between which there are clear margins: each run has
  // scans of its own.
  int32_t seedNearerHalf(int32_t s, int32_t t) {
    int32_t count = 0;
    for (int32_t r = 0; r < height_; ++r) {
      const bool found = label_[r] == s && isBelow(static_cast<double>(distance_[r]), static_cast<double>(kNone));
      if (found) order_[count++] = r;
    }
    const int32_t wanted = std::min(members_[s] / 2, count);
    const auto nearer = [this](int32_t a, int32_t b) {
      return distance_[a] < distance_[b] || (distance_[a] == distance_[b] && a < b);
    };
    std::sort(order_, order_ + count, nearer);
    for (int32_t taken = 0; taken < wanted;) {
      int32_t end = taken + 1;
      while (end < count && !(distance_[order_[end]] > distance_[order_[end - 1]] * kClearMargin)) ++end;
      if (distance_[order_[taken]] == distance_[order_[end - 1]]) {
        for (; taken < end && taken < wanted; ++taken) giveSeed(order_[taken], t);
        taken = std::min(end, wanted);
      } else {
        std::sort(order_ + taken, order_ + end);
        for (int32_t left = std::min(end, wanted) - taken; left > 0; --left) giveSeed(nextOfRun(taken, end), t);
        taken = std::min(end, wanted);
      }
    }
    return wanted;
  }
  void giveSeed(int32_t r, int32_t t) {
    label_[r] = t;
    distance_[r] = kNone;
  }
  int32_t nextOfRun(int32_t begin, int32_t end) const {
    Nearest nearest;
    for (int32_t i = begin; i < end; ++i) MarginScan::take(nearest, distance_[order_[i]], order_[i]);
    return nearest.index;
  }

  // Moves the centroid of t, which is that of s, toward rows of both until the two tell these apart.
  QorStatus separate(int32_t s, int32_t t, int32_t parentMembers) {
    const auto isTheirs = [&](int32_t r) { return label_[r] == s || label_[r] == t; };
    float *const a = centroid(t), *const b = centroid(s);
    int32_t p = 0;
    while (p < height_ && !isTheirs(p)) ++p;
    for (int32_t iteration = 1;; ++iteration) {
      if (p < height_ && static_cast<double>(distance(rowInFloats(p), a)) < kRowAtCentroid) {
        for (++p; p < height_; ++p) {
          if (isTheirs(p) && static_cast<double>(distance(rowInFloats(p), a)) >= kRowAtCentroid) break;
        }
      }
      if (p >= height_ || iteration > kMostRepairs) return qorStatusBadArgument;
      moveToward(a, row(p), iteration);
      float sum = 0.0F;
      for (int32_t r = 0; r < height_; ++r) {
        if (!isTheirs(r)) continue;
        const float* const x = rowInFloats(r);
        const float dA = distance(x, a), dB = distance(x, b);
        sum += __builtin_fabsf(dA == 0.0F ? dA - dB : (dA - dB) / dA);
      }
      if (!(static_cast<double>(parentMembers) * 1e-6 >= static_cast<double>(sum))) return qorStatusOk;
    }
  }
  // required: in float, of 16-bit rows in double and truncated.
  void moveToward(float* c, const T* x, int32_t iteration) const {
    if constexpr (sizeof(T) == 4) {
      const float share = static_cast<float>(iteration) / 100.0F;
      for (int32_t j = 0; j < dimension_; ++j) c[j] = c[j] + share * ((c[j] + x[j]) / 2.0F - c[j]);
    } else {
      const double share = static_cast<double>(iteration) / 100.0;
      for (int32_t j = 0; j < dimension_; ++j) {
        const auto from = static_cast<double>(c[j]);
        c[j] = truncateOrLowest<int16_t>(from + share * ((from + static_cast<double>(x[j])) / 2.0 - from));
      }
    }
  }

  // ---- Assignment ----

  // Gives each row to its nearest leaf, and returns how many moved. `fresh_`: whose centroids are new in this round.
  int64_t assign() {
    freshCount_ = 0;
    for (int32_t i = 0; i < leaves_; ++i) {
      if (fresh_[i]) freshLeaves_[freshCount_++] = i;
    }
    int64_t moves = 0;
    for (int64_t b = 0; b < blocks_; ++b) {
      const float* const columns = columns_ + b * kBlock * dimension_;
      const NearestOfBlock nearest =
          weighted_ ? nearestFresh(columns, BlockWeights{weights_}) : nearestFresh(columns, UnitBlockWeights());
      float best[kBlock], second[kBlock];
      int32_t index[kBlock];
      nearest.best.store(best);
      nearest.second.store(second);
      nearest.index.store(index);
      const auto first = static_cast<int32_t>(b * kBlock), count = std::min(kBlock, height_ - first);
      for (int32_t i = 0; i < count; ++i) moves += assignRow(first + i, {index[i], best[i]}, second[i]) ? 1 : 0;
    }
    return moves;
  }

  template <class Weigh>
  [[gnu::noinline, gnu::flatten]] NearestOfBlock nearestFresh(const float* columns, Weigh weigh) const {
    NearestOfBlock nearest(kNone);
    for (int32_t i = 0; i < freshCount_; ++i) {
      const int32_t leaf = freshLeaves_[i];
      nearest.add(blockDistances(columns, centroidOf(leaf), weigh, dimension_), leaf);
    }
    return nearest;
  }

  // `fresh`: the nearest of the fresh leaves; `second`: the distance of the next of them. Whether the row moves.
  bool assignRow(int32_t r, Nearest fresh, float second) {
    const int32_t own = label_[r];
    Nearest winner = fresh;
    float others = std::min(others_[r], second);
    if (!fresh_[own]) {
      if (distance_[r] < fresh.square) {
        winner = {own, distance_[r]};
        others = std::min(others_[r], fresh.square);
      } else {
        others = std::min(others, distance_[r]);
      }
    }
    const bool clear = winner.index >= 0 && others > winner.square * kClearMargin;
    if (!clear || (winner.index != own && members_[own] < 2)) return scanAndAssign(r);
    others_[r] = others;
    return give(r, winner);
  }

  // As defined: all leaves in order.
  bool scanAndAssign(int32_t r) {
    withRowWeights([&](const auto& weights) {
      squaredDistances(rowInFloats(r), StridedRows<const float>{centroids_, dimension_}, weights, leaves_, dimension_, table_);
    });
    Nearest winner;
    for (int32_t i = 0; i < leaves_; ++i) MarginScan::take(winner, table_[i], i);
    const int32_t own = label_[r];
    if (winner.index < 0 || members_[own] < 2) winner.index = own;
    const bool moves = give(r, {winner.index, table_[winner.index]});
    others_[r] = kNone;
    for (int32_t i = 0; i < leaves_; ++i) {
      if (i != winner.index && table_[i] < others_[r]) others_[r] = table_[i];
    }
    return moves;
  }

  bool give(int32_t r, const Nearest& to) {
    const int32_t own = label_[r];
    distance_[r] = to.square;
    if (to.index == own) return false;
    label_[r] = to.index;
    --members_[own];
    ++members_[to.index];
    stale_[own] = stale_[to.index] = 1;
    return true;
  }

  // Twice the largest distance of a row to its leaf.
  void updateSpreads() {
    std::fill_n(spread_, leaves_, 0.0F);
    for (int32_t r = 0; r < height_; ++r) {
      float& spread = spread_[label_[r]];
      if (isBelow(static_cast<double>(spread), static_cast<double>(distance_[r]))) spread = distance_[r];
    }
    for (int32_t i = 0; i < leaves_; ++i) spread_[i] = members_[i] < 2 ? 0.0F : spread_[i] * 2.0F;
  }

  const T* source_;
  int64_t step_;
  int32_t dimension_, height_;
  int64_t blocks_;
  Scratch<std::byte> area_;
  bool weighted_;
  int32_t leaves_ = 0, freshCount_ = 0;

  float* columns_;               // the rows in blocks, as storeColumns() lays them
  float *weights_, *temporary_;  // in float; a row in float
  int32_t *label_, *order_;      // of each row its leaf; rows in the order of a split
  float *distance_, *others_;    // of each row to its leaf; a bound below those to all others
  float* centroids_;             // of the leaves
  Sum* sums_;                    // of a leaf's rows
  GrowingNode* nodes_;           // the root first, children behind their parent
  int32_t *nodeOf_, *members_;   // of each leaf
  float *spread_, *table_;       // of each leaf; one number a leaf
  int32_t* freshLeaves_;         // in order
  uint8_t *stale_, *fresh_;      // whose rows changed since its centroid was computed; whose centroid is new in a round
};

}  // namespace qorsr
