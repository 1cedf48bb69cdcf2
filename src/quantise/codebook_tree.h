// The search tree of a trained codebook: what a descent reads, in the order in which it reads it.
//
// Nodes with children are numbered 0 (the root) and up; a child is such a number, or, of a leaf, the complement of its codeword. Of
// each node the four rows that decide between its children lie side by side: the centroids of left-left, left-right, right-left and
// right-right; a child that is a leaf stands for both of its own. Of each leaf there is a list of leaves near it.
#pragma once

#include <cstdint>

#include "quantise/codebook.h"

namespace qorsr {

struct CodebookTree {
  int32_t leaves, neighbourCount;
  int64_t neighbours, rows;  // bytes from the record

  bool isLeaf() const { return leaves == 1; }
  // Left and right child of each node.
  int32_t* children() const { return at<int32_t>(sizeof(CodebookTree)); }
  // neighbourCount codewords of each leaf, the nearest first.
  int32_t* neighboursOf(int32_t leaf) const { return at<int32_t>(neighbours) + int64_t{leaf} * neighbourCount; }
  // Four rows of a node, without gaps.
  template <class T>
  T* rowsOf(int32_t node, int32_t dimension) const {
    return at<T>(rows) + int64_t{4} * dimension * node;
  }

 private:
  template <class T>
  T* at(int64_t offset) const {
    return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(this) + static_cast<uintptr_t>(offset));
  }
};

inline CodebookTree& treeIn(void* block) { return *static_cast<CodebookTree*>(alignUp(block)); }
inline const CodebookTree& treeOf(const CodebookRecord& record) { return treeIn(record.tree); }

// A block for a tree; null when there is no memory.
template <class T>
void* allocateTree(int32_t leaves, int32_t neighbourCount, int32_t dimension) {
  const int64_t children = sizeof(CodebookTree), neighbours = children + (int64_t{leaves} - 1) * 2 * 4,
                rows = (neighbours + int64_t{leaves} * neighbourCount * 4 + 31) / 32 * 32,
                bytes = rows + (int64_t{leaves} - 1) * 4 * dimension * static_cast<int64_t>(sizeof(T));
  void* const block = allocateBytes(bytes + static_cast<int64_t>(kAreaAlignment) - 1);
  if (block != nullptr) treeIn(block) = {leaves, neighbourCount, neighbours, rows};
  return block;
}

// The longest list of neighbours that a codebook has.
inline constexpr int32_t kMostNeighbours = 14;

// None up to two leaves, else at least four: floor(log2(leaves)), and one more if that is no power of two.
inline int32_t neighbourCountOf(int32_t leaves) {
  if (leaves < 3) return 0;
  int32_t log = 4;
  while (leaves >= int64_t{2} << log) ++log;
  return leaves > 1 << log ? log + 1 : log;
}

}  // namespace qorsr
