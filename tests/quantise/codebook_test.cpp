// Codebooks made and trained: rows, statuses and searches against the plain model.
#include "quantise/codebook_fixture.h"

namespace {

using books::Book;

template <class Kind>
class Codebook : public testing::Test {};
using Kinds = testing::Types<books::Float, books::Int16>;
TYPED_TEST_SUITE(Codebook, Kinds);

// Makes a codebook as told and compares it with the model. The number of cells of a grid, or of repairs of a training.
template <class Kind>
void expectBook(kit::Random& random, const model::Rows<typename Kind::T>& rows, const model::Row<typename Kind::T>* weights,
                int32_t size, int32_t mode, int32_t gap, model::Codebook<typename Kind::T>* expected) {
  using T = typename Kind::T;
  const auto n = static_cast<int32_t>(rows[0].size()), height = static_cast<int32_t>(rows.size());
  const QorStatus status = expected->make(rows, weights != nullptr ? *weights : model::Row<T>(rows[0].size(), T(1)), size, mode);
  const auto source = books::spread(rows, n + gap, kit::kPlaces[random.integer(0, 2)]);
  const int64_t before = kit::Core::outstanding();
  {
    Book<Kind> book;
    const QorStatus actual = weights != nullptr
                                 ? Kind::makeWeighted(&book.state, source.data(), weights->data(), n, n + gap, height, size, mode)
                                 : Kind::make(&book.state, source.data(), n, n + gap, height, size, mode);
    ASSERT_EQ(actual, status);
    if (status < 0) {
      ASSERT_EQ(book.state, nullptr);
      ASSERT_EQ(kit::Core::outstanding(), before);
      return;
    }
    books::expectRows<Kind>(book.state, *expected);
    books::expectSearch<Kind>(random, book.state, *expected,
                              books::queriesOf(random, rows, static_cast<int32_t>(random.integer(1, 70))));
  }
  ASSERT_EQ(kit::Core::outstanding(), before);
}

template <class Kind>
void sweep(kit::Random& random, int32_t height, int32_t n, int32_t size, int32_t mode, bool weighted) {
  for (int kind = 0; kind < books::kData; ++kind) {
    const auto rows = books::dataOf<typename Kind::T>(random, static_cast<books::Data>(kind), height, n);
    const auto weights = books::weightsOf<typename Kind::T>(random, n);
    model::Codebook<typename Kind::T> expected;
    expectBook<Kind>(random, rows, weighted ? &weights : nullptr, size, mode, static_cast<int32_t>(random.integer(0, 5)),
                     &expected);
    if (testing::Test::HasFatalFailure())
      FAIL() << "height " << height << " dimension " << n << " size " << size << " mode " << mode << " data " << kind
             << (weighted ? " weighted" : "");
  }
}

TYPED_TEST(Codebook, OfEveryRow) {
  kit::Random random(1);
  for (const int32_t n : {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 17, 39, 64, 129}) {
    for (const int32_t height : {1, 2, 3, 5, 10, 11, 12, 40, 100}) {
      for (const bool weighted : {false, true}) {
        const int32_t size = random.integer(0, 1) == 0 ? height : static_cast<int32_t>(random.integer(1, height));
        sweep<TypeParam>(random, height, n, size, 1, weighted);
        if (this->HasFatalFailure()) return;
      }
    }
  }
}

TYPED_TEST(Codebook, OfEveryRowWithAGrid) {
  kit::Random random(2);
  int grids = 0;
  for (const int32_t n : {1, 2}) {
    for (const int32_t height : {11, 20, 60, 200, 333}) {
      for (int kind = 0; kind < books::kData; ++kind) {
        if (n == 2 && height > 200) continue;  // the model computes all anew
        for (const double offset : {0.0, 20.0, -20.0}) {
          auto rows = books::dataOf<typename TypeParam::T>(random, static_cast<books::Data>(kind), height, n);
          for (auto& row : rows) {
            for (auto& x : row)
              x = books::limited<typename TypeParam::T>(static_cast<double>(x) + offset * (sizeof(x) == 2 ? 1000 : 1));
          }
          const auto weights = books::weightsOf<typename TypeParam::T>(random, n);
          model::Codebook<typename TypeParam::T> expected;
          expectBook<TypeParam>(random, rows, random.integer(0, 1) == 0 ? &weights : nullptr, height, 1, 0, &expected);
          if (this->HasFatalFailure())
            FAIL() << "height " << height << " dimension " << n << " data " << kind << " offset " << offset;
          grids += expected.hasGrid() ? 1 : 0;
        }
      }
    }
  }
  EXPECT_GT(grids, 20);
}

TYPED_TEST(Codebook, OfSplits) {
  kit::Random random(3);
  for (const int32_t n : {1, 2, 3, 4, 5, 8, 13, 16, 39}) {
    for (const int32_t height : {1, 2, 3, 4, 7, 12, 33, 60}) {
      for (const int32_t size : {1, 2, 3, 4, 5, 9, 17, 40}) {
        if (size > height) continue;
        for (const int32_t mode : {2, 3}) sweep<TypeParam>(random, height, n, size, mode, random.integer(0, 1) == 0);
        if (this->HasFatalFailure()) return;
      }
    }
  }
}

TYPED_TEST(Codebook, OfManyRows) {
  kit::Random random(4);
  for (const int32_t mode : {2, 3}) {
    for (const bool weighted : {false, true}) {
      sweep<TypeParam>(random, 400, mode == 2 ? 13 : 2, 34, mode, weighted);
      if (this->HasFatalFailure()) return;
    }
  }
}

TYPED_TEST(Codebook, OfDimensionsBeyondTheStack) {
  kit::Random random(5);
  for (const int32_t n : {64, 128, 129, 200}) {
    for (const int32_t mode : {1, 2}) {
      sweep<TypeParam>(random, 30, n, 9, mode, n % 2 == 1);
      if (this->HasFatalFailure()) return;
    }
  }
}

// Rows in pairs that nearly coincide: the last splits find two centroids in one place, and mend that or give up.
TYPED_TEST(Codebook, OfRowsThatNearlyCoincide) {
  kit::Random random(8);
  int mended = 0, givenUp = 0, ended = 0;
  for (int i = 0; i < 400; ++i) {
    const auto n = static_cast<int32_t>(random.integer(1, 4)), height = static_cast<int32_t>(random.integer(4, 24));
    const double apart = std::ldexp(1.0, static_cast<int>(random.integer(-14, -6)));
    model::Rows<typename TypeParam::T> rows;
    for (int32_t r = 0; r < height; ++r) {
      model::Row<typename TypeParam::T> row;
      for (int32_t j = 0; j < n; ++j) {
        const double u = random.real(-1.0, 1.0);
        const double far = static_cast<double>(random.integer(0, 1) * 3);
        row.push_back(static_cast<typename TypeParam::T>(sizeof(row[0]) == 2 ? std::nearbyint(far + u) : far + apart * u));
      }
      rows.push_back(row);
    }
    model::Codebook<typename TypeParam::T> expected;
    const auto size = static_cast<int32_t>(random.integer(2, height));
    const auto mode = static_cast<int32_t>(random.integer(2, 3));
    expectBook<TypeParam>(random, rows, nullptr, size, mode, 0, &expected);
    if (this->HasFatalFailure()) FAIL() << "case " << i;
    const bool failed = expected.book().empty();
    mended += expected.repairs() > 0 && !failed ? 1 : 0;
    givenUp += failed ? 1 : 0;
    ended += !failed && std::ssize(expected.book()) < size ? 1 : 0;
  }
  if (sizeof(typename TypeParam::T) == 4) {
    EXPECT_GT(mended, 5);
  }
  EXPECT_GT(givenUp + ended, 5);
  std::printf("mended %d, given up %d, ended early %d\n", mended, givenUp, ended);
}

// ---- Known answers ----

TYPED_TEST(Codebook, OfEqualRowsStaysOneLeaf) {
  const std::vector<typename TypeParam::T> rows(40, 3);
  for (const int32_t mode : {2, 3}) {
    Book<TypeParam> book;
    ASSERT_EQ(TypeParam::make(&book.state, rows.data(), 2, 2, 20, 4, mode), qorStatusCdbkSizeChanged);
    int32_t count = 0;
    ASSERT_EQ(TypeParam::count(book.state, &count), qorStatusOk);
    EXPECT_EQ(count, 1);
  }
}

TYPED_TEST(Codebook, OfTwoClustersFindsTheirMeans) {
  const std::vector<typename TypeParam::T> rows = {0, 2, 100, 104, 0, 2, 104, 100, 1, 102};
  for (const int32_t mode : {2, 3}) {
    Book<TypeParam> book;
    ASSERT_EQ(TypeParam::make(&book.state, rows.data(), 1, 1, 10, 2, mode), qorStatusOk);
    typename TypeParam::T words[2];
    ASSERT_EQ(TypeParam::rows(book.state, words, 1), qorStatusOk);
    std::sort(words, words + 2);
    EXPECT_EQ(words[0], 1);
    EXPECT_EQ(words[1], 102);
  }
}

TYPED_TEST(Codebook, OfOneRowAnswersZero) {
  const typename TypeParam::T row[3] = {1, 2, 3};
  for (const int32_t mode : {1, 2, 3}) {
    Book<TypeParam> book;
    ASSERT_EQ(TypeParam::make(&book.state, row, 3, 3, 1, 1, mode), qorStatusOk);
    kit::Random random(6);
    for (const auto& x : books::queriesOf<typename TypeParam::T>(random, {{1, 2, 3}}, 40)) {
      int32_t index = -5;
      ASSERT_EQ(TypeParam::quantise(x.data(), 3, &index, 1, book.state), qorStatusOk);
      EXPECT_EQ(index, 0);
    }
  }
}

// ---- Allocation ----

TYPED_TEST(Codebook, EveryRefusedAllocationIsReported) {
  kit::Random random(7);
  for (const auto& [n, mode] : {std::pair{1, 1}, {2, 1}, {13, 1}, {13, 2}, {2, 3}, {200, 2}}) {
    const auto rows = books::dataOf<typename TypeParam::T>(random, books::kUniform, 100, n);
    const auto source = books::spread(rows, n, kit::Place::kAligned);
    const std::vector<typename TypeParam::T> weights(static_cast<std::size_t>(n), 2);
    const int64_t made = kit::expectEveryRefusalReported([&, dimension = n, how = mode] {
      Book<TypeParam> book;
      const QorStatus status =
          TypeParam::makeWeighted(&book.state, source.data(), weights.data(), dimension, dimension, 100, how == 1 ? 100 : 9, how);
      EXPECT_EQ(book.state == nullptr, status < 0);
      return status;
    });
    EXPECT_GE(made, mode == 1 && n == 13 ? 1 : 2) << n << " " << mode;
  }
}

TYPED_TEST(Codebook, SizesThatNoMemoryHoldsAreRefused) {
  Book<TypeParam> book;
  const typename TypeParam::T row[1] = {};
  EXPECT_EQ(TypeParam::make(&book.state, row, 1, INT32_MAX, INT32_MAX, 1, 1), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::make(&book.state, row, INT32_MAX, INT32_MAX, 1, 1, 2), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::make(&book.state, row, INT32_MAX, INT32_MAX, INT32_MAX, 16383, 2), qorStatusNoMemory);
  EXPECT_EQ(TypeParam::make(&book.state, row, 1, 1, INT32_MAX, 1, 3), qorStatusNoMemory);
  EXPECT_EQ(book.state, nullptr);
}

}  // namespace
