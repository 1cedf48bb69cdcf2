// What a codebook holds inside: the tree with its lists of near leaves, the cells of its grid, the bits of an index.
#include <gtest/gtest.h>

#include "quantise/codebook_fixture.h"
#include "quantise/codebook_search.h"

namespace {

template <class Kind>
class CodebookInside : public testing::Test {};
using Kinds = testing::Types<books::Float, books::Int16>;
TYPED_TEST_SUITE(CodebookInside, Kinds);

template <class T>
void expectNode(const qorsr::CodebookTree& tree, int32_t at, const model::Node<T>& node, int32_t dimension) {
  if (at < 0) {
    ASSERT_TRUE(node.leaf());
    ASSERT_EQ(~at, node.codeword);
    ASSERT_EQ(tree.neighbourCount, std::ssize(node.neighbours));
    for (int32_t i = 0; i < tree.neighbourCount; ++i)
      ASSERT_EQ(tree.neighboursOf(~at)[i], node.neighbours[static_cast<std::size_t>(i)]->codeword);
    return;
  }
  ASSERT_FALSE(node.leaf());
  const auto four = model::Codebook<T>::grandchildren(&node);
  for (int i = 0; i < 4; ++i)
    ASSERT_BITS(tree.rowsOf<T>(at, dimension) + i * dimension, four[static_cast<std::size_t>(i)]->centroid.data(), dimension);
  expectNode(tree, tree.children()[2 * at], *node.left, dimension);
  expectNode(tree, tree.children()[2 * at + 1], *node.right, dimension);
}

TYPED_TEST(CodebookInside, TheTreeIsThatOfTheModel) {
  using T = typename TypeParam::T;
  kit::Random random(21);
  for (const int32_t n : {1, 2, 5, 8, 13}) {
    for (const int32_t size : {1, 2, 3, 4, 5, 16, 17, 32, 33}) {
      for (const int32_t mode : {2, 3}) {
        const auto rows = books::dataOf<T>(random, mode == 2 ? books::kUniform : books::kClusters, 80, n);
        const auto weights = books::weightsOf<T>(random, n);
        model::Codebook<T> expected;
        if (expected.make(rows, weights, size, mode) < 0) continue;
        books::Book<TypeParam> book;
        const auto source = books::spread(rows, n, kit::Place::kAligned);
        ASSERT_GE(TypeParam::makeWeighted(&book.state, source.data(), weights.data(), n, n, 80, size, mode), 0);
        EXPECT_EQ(book.state->last, expected.depth());
        EXPECT_EQ(book.state->indexBits, qorsr::bitsOfIndex(static_cast<int32_t>(std::ssize(expected.book()))));
        const auto& tree = qorsr::treeOf(*book.state);
        expectNode<T>(tree, tree.isLeaf() ? ~0 : 0, expected.root(), n);
        if (this->HasFatalFailure()) FAIL() << "dimension " << n << " size " << size << " mode " << mode;
      }
    }
  }
}

TYPED_TEST(CodebookInside, ListsOfAGridAreThoseOfTheModel) {
  using T = typename TypeParam::T;
  kit::Random random(22);
  for (const int32_t n : {1, 2}) {
    int grids = 0;
    for (int i = 0; i < 6; ++i) {
      const auto rows = books::dataOf<T>(random, i % 2 == 0 ? books::kUniform : books::kClusters, 100 + 20 * i, n);
      const model::Row<T> weights = n == 1 ? model::Row<T>{3} : model::Row<T>{1, static_cast<T>(i + 1)};
      model::Codebook<T> expected;
      const auto height = static_cast<int32_t>(rows.size());
      ASSERT_EQ(expected.make(rows, weights, height, 1), qorStatusOk);
      books::Book<TypeParam> book;
      const auto source = books::spread(rows, n, kit::Place::kAligned);
      ASSERT_EQ(TypeParam::makeWeighted(&book.state, source.data(), weights.data(), n, n, height, height, 1), qorStatusOk);
      ASSERT_EQ((book.state->flags & qorsr::kHasGrid) != 0, expected.hasGrid());
      if (!expected.hasGrid()) continue;
      ++grids;
      const qorsr::CodebookGrid& grid = qorsr::gridOf(*book.state);
      ASSERT_EQ(grid.entries(), std::ssize(expected.gridLists()));
      for (int32_t e = 0; e < grid.entries(); ++e) {
        const auto list = grid.lists()[e];
        const int32_t* const first = grid.indexAt(list.begin);
        ASSERT_EQ(std::vector<int32_t>(first, first + list.count), expected.gridLists()[static_cast<std::size_t>(e)])
            << "list " << e;
      }
    }
    EXPECT_GT(grids, 2) << "dimension " << n;
  }
}

TYPED_TEST(CodebookInside, CellsOf16BitRowsBeginAThousandthEarlier) {
  using T = typename TypeParam::T;
  EXPECT_EQ(qorsr::cellOf<T>(0.9995F, 4), sizeof(T) == 2 ? 1 : 0);
  EXPECT_EQ(qorsr::cellOf<T>(0.998F, 4), 0);
  EXPECT_EQ(qorsr::cellOf<T>(3.9995F, 4), sizeof(T) == 2 ? 4 : 3);
  EXPECT_EQ(qorsr::cellOf<T>(-0.0005F, 4), -1) << "below the grid, whatever is added";
  EXPECT_EQ(qorsr::cellOf<T>(-0.0F, 4), 0);
  for (const float far : {4.0F, 1e30F, std::numeric_limits<float>::infinity(), std::nanf("")}) {
    EXPECT_EQ(qorsr::cellOf<T>(far, 4), 4) << far;
  }
}

TYPED_TEST(CodebookInside, BitsOfAnIndex) {
  for (const auto& [count, bits] : {std::pair{1, 0}, {2, 1}, {3, 2}, {4, 2}, {5, 3}, {256, 8}, {257, 9}, {16383, 14}}) {
    EXPECT_EQ(qorsr::bitsOfIndex(count), bits) << count;
    const std::vector<typename TypeParam::T> rows(static_cast<std::size_t>(count) * 3);
    books::Book<TypeParam> book;
    ASSERT_EQ(TypeParam::make(&book.state, rows.data(), 3, 3, count, count, 1), qorStatusOk);
    EXPECT_EQ(book.state->indexBits, bits);
  }
}

TYPED_TEST(CodebookInside, ReadyFloatRowsLeaveTheBitsOfAnIndexAsTheyWere) {
  const typename TypeParam::T rows[15] = {};
  std::vector<std::byte> block(1024, std::byte{0x5A});
  auto* const state = reinterpret_cast<typename TypeParam::State*>(block.data());
  ASSERT_EQ(TypeParam::init(state, rows, 3, 3, 5, 5, 1), qorStatusOk);
  EXPECT_EQ(state->indexBits, sizeof(rows[0]) == 4 ? 0x5A5A5A5A : 3);
  EXPECT_EQ(state->last, 4);
}

TYPED_TEST(CodebookInside, EmptyListsFindNothing) {
  using T = typename TypeParam::T;
  std::vector<T> rows(20);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = static_cast<T>(i * 10);
  books::Book<TypeParam> book;
  ASSERT_EQ(TypeParam::make(&book.state, rows.data(), 1, 1, 20, 20, 1), qorStatusOk);
  ASSERT_NE(book.state->flags & qorsr::kHasGrid, 0U);
  auto& grid = qorsr::gridIn(book.state->grid);
  for (int32_t e = 0; e < grid.entries(); ++e) grid.lists()[e].count = 0;
  int32_t index = 5;
  typename TypeParam::Distance distance = 0;
  ASSERT_EQ(TypeParam::quantiseDist(rows.data(), 1, &index, &distance, 1, book.state, 40), qorStatusOk);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(distance, TypeParam::converted(std::sqrt(model::kLargestFloat), 40));
}

}  // namespace
