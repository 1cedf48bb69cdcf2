// The searches of one vector, ready rows in the caller's memory, faults, memory, environment.
#include <cstring>

#include "kit/environment.h"
#include "kit/faults.h"
#include "quantise/codebook_fixture.h"

namespace {

using books::Book;

template <class Kind>
class VectorQuantisation : public testing::Test {};
using Kinds = testing::Types<books::Float, books::Int16>;
TYPED_TEST_SUITE(VectorQuantisation, Kinds);

// ---- The K nearest, and all within a ratio ----

template <class Kind>
struct Answer {
  std::vector<int32_t> indices;
  std::vector<typename Kind::Distance> distances;
};

template <class Kind>
Answer<Kind> expectedSort(std::vector<float> table, int32_t k, int32_t scaleFactor) {
  Answer<Kind> answer;
  for (int32_t i = 0; i < k; ++i) {
    const std::size_t at = model::smallestEntry(table);
    answer.indices.push_back(static_cast<int32_t>(at));
    answer.distances.push_back(Kind::converted(std::sqrt(table[at]), scaleFactor));
    table[at] = model::kLargestFloat;
  }
  return answer;
}

// `integer`: of 16-bit distances.
template <class Kind>
Answer<Kind> expectedWithin(std::vector<float> table, float nearest, float threshold, int32_t scaleFactor, bool integer) {
  float limit = threshold * threshold * nearest * nearest;
  int32_t most = 0;
  if (integer) {
    const int32_t scaled = model::convertScaled<int32_t>(nearest, 1, scaleFactor);
    const float product = static_cast<float>(scaled) * threshold;
    most = product >= -2147483648.0F && product < 2147483648.0F ? static_cast<int32_t>(product) : INT32_MIN;
    float power = 1.0F;
    for (int32_t i = 0; i < std::abs(scaleFactor); ++i) power *= scaleFactor < 0 ? 0.5F : 2.0F;
    const float back = static_cast<float>(scaled) * power;
    limit = threshold * threshold * back * back;
  }
  Answer<Kind> answer;
  const double bound = static_cast<double>(limit) * 1.000001;
  if (bound < 0) return answer;
  for (std::size_t i = 0; i < table.size(); ++i) {
    const std::size_t at = model::smallestEntry(table);
    if (static_cast<double>(table[at]) > bound) break;
    const float root = std::sqrt(table[at]);
    if (!integer || model::convertScaled<int32_t>(root, 1, scaleFactor) <= most) {
      answer.indices.push_back(static_cast<int32_t>(at));
      answer.distances.push_back(Kind::converted(root, scaleFactor));
    }
    table[at] = model::kLargestFloat;
  }
  return answer;
}

template <class Kind>
void expectSingles(kit::Random& random, typename Kind::State* state, const model::Codebook<typename Kind::T>& book,
                   const model::Row<typename Kind::T>& query) {
  const auto count = static_cast<int32_t>(book.book().size());
  const kit::Place place = kit::kPlaces[random.integer(0, 2)];
  const kit::Area<typename Kind::T> x(query, place);
  const auto table = book.distances(query);
  const auto scaleFactor = static_cast<int32_t>(random.integer(-4, 6));
  for (const int32_t k : {1, (count + 1) / 2, count}) {
    const auto expected = expectedSort<Kind>(table, k, scaleFactor);
    kit::Area<int32_t> indices(k, place);
    kit::Area<typename Kind::Distance> distances(k, place);
    ASSERT_EQ(Kind::sort(x.data(), indices.data(), state, k), qorStatusOk);
    ASSERT_BITS(indices.values(), expected.indices) << "k " << k;
    indices.fill(-9);
    ASSERT_EQ(Kind::sortDist(x.data(), indices.data(), distances.data(), state, k, scaleFactor), qorStatusOk);
    ASSERT_BITS(indices.values(), expected.indices) << "k " << k;
    ASSERT_BITS(distances.values(), expected.distances) << "k " << k;
    ASSERT_TRUE(indices.edgesKept() && distances.edgesKept());
  }
  const float nearest = std::sqrt(book.search(query).square);
  for (const float threshold : {1.0F, 1.3F, 4.0F, 3e38F}) {
    SCOPED_TRACE(threshold);
    kit::Area<int32_t> indices(count, place);
    kit::Area<typename Kind::Distance> distances(count, place);
    const auto check = [&](const Answer<Kind>& expected, int32_t found, bool withDistances) {
      ASSERT_EQ(found, std::ssize(expected.indices));
      ASSERT_BITS(indices.data(), expected.indices.data(), found);
      if (withDistances) {
        ASSERT_BITS(distances.data(), expected.distances.data(), found);
      }
      for (int32_t i = found; i < count; ++i) ASSERT_EQ(indices[i], -9);
      ASSERT_TRUE(indices.edgesKept() && distances.edgesKept());
    };
    int32_t found = -1;
    indices.fill(-9);
    ASSERT_EQ(Kind::within(x.data(), indices.data(), state, threshold, &found), qorStatusOk);
    check(expectedWithin<Kind>(table, nearest, threshold, 0, false), found, false);
    indices.fill(-9);
    ASSERT_EQ(Kind::withinDist(x.data(), indices.data(), distances.data(), state, threshold, &found, scaleFactor), qorStatusOk);
    check(expectedWithin<Kind>(table, nearest, threshold, scaleFactor, sizeof(query[0]) == 2), found, true);
  }
}

TYPED_TEST(VectorQuantisation, OfOneVector) {
  using T = typename TypeParam::T;
  kit::Random random(11);
  for (const int32_t n : {1, 2, 3, 8, 13, 130}) {
    for (const int32_t height : {1, 2, 5, 13, 50, 200}) {
      for (const int32_t mode : {1, 2}) {
        for (int kind = 0; kind < books::kData; ++kind) {
          if (mode == 2 && height == 200) continue;
          const auto rows = books::dataOf<T>(random, static_cast<books::Data>(kind), height, n);
          const auto weights = books::weightsOf<T>(random, n);
          model::Codebook<T> expected;
          const int32_t size = mode == 1 ? height : (height + 2) / 3;
          if (expected.make(rows, weights, size, mode) < 0) continue;
          Book<TypeParam> book;
          ASSERT_GE(TypeParam::makeWeighted(&book.state, books::spread(rows, n, kit::Place::kAligned).data(), weights.data(), n, n,
                                            height, size, mode),
                    0);
          for (const auto& query : books::queriesOf(random, rows, 6)) {
            expectSingles<TypeParam>(random, book.state, expected, query);
            if (this->HasFatalFailure())
              FAIL() << "dimension " << n << " height " << height << " mode " << mode << " data " << kind;
          }
        }
      }
    }
  }
}

// ---- Ready rows ----

int64_t strideOf(int64_t dimension, int64_t step) {
  return dimension == 1 || dimension == 2 || dimension == 4 ? dimension : (step + 7) / 8 * 8;
}

TYPED_TEST(VectorQuantisation, OfReadyRowsAtEveryAddress) {
  using T = typename TypeParam::T;
  kit::Random random(12);
  for (const auto& [n, step, height] : {std::array{1, 1, 1},
                                        {1, 3, 20},
                                        {2, 2, 7},
                                        {3, 3, 5},
                                        {4, 5, 9},
                                        {8, 8, 3},
                                        {8, 9, 40},
                                        {13, 13, 33},
                                        {39, 40, 12},
                                        {129, 129, 4}}) {
    const auto rows = books::dataOf<T>(random, books::kUniform, height, n);
    const auto source = books::spread(rows, step, kit::Place::kAtGuard);
    model::Codebook<T> expected;
    expected.wrap(rows, 1);
    int32_t bytes = 0;
    ASSERT_EQ(TypeParam::getSize(n, step, height, height, 1, &bytes), qorStatusOk);
    ASSERT_EQ(bytes, TypeParam::bytes(n, strideOf(n, step), height));
    for (int64_t shift = 0; shift < 32; shift += static_cast<int64_t>(sizeof(T))) {
      kit::Area<uint8_t> area(bytes + shift, kit::Place::kAtGuard);
      std::memset(area.data(), 0xFF, static_cast<std::size_t>(bytes + shift));
      auto* const state = reinterpret_cast<typename TypeParam::State*>(area.data());
      ASSERT_EQ(TypeParam::init(state, source.data(), n, step, height, height, 1), qorStatusOk);
      books::expectRows<TypeParam>(state, expected);
      books::expectSearch<TypeParam>(random, state, expected, books::queriesOf(random, rows, 20));
      expectSingles<TypeParam>(random, state, expected, rows[0]);
      if (this->HasFatalFailure()) FAIL() << "dimension " << n << " height " << height << " shift " << shift;
      for (int64_t i = bytes; i < bytes + shift; ++i) ASSERT_EQ(area[i], 0xFF);
      ASSERT_TRUE(area.edgesKept());
    }
  }
}

TYPED_TEST(VectorQuantisation, OfAnUnknownModeFindsNothing) {
  const typename TypeParam::T rows[4] = {1, 2, 3, 4}, x[2] = {1, 2};
  for (const int32_t mode : {0, 4, -1, INT32_MIN}) {
    int32_t bytes = 0;
    ASSERT_EQ(TypeParam::getSize(2, 2, 2, 2, mode, &bytes), qorStatusOk);
    kit::Area<std::byte> block(bytes, kit::Place::kAligned);
    auto* const state = reinterpret_cast<typename TypeParam::State*>(block.data());
    ASSERT_EQ(TypeParam::init(state, rows, 2, 2, 2, 2, mode), qorStatusOk);
    int32_t index[2] = {-9, -9}, count = -9;
    typename TypeParam::Distance distance[2] = {5, 5};
    EXPECT_EQ(TypeParam::quantise(x, 2, index, 1, state), qorStatusOk);
    EXPECT_EQ(TypeParam::quantiseDist(x, 2, index, distance, 1, state, 1), qorStatusOk);
    EXPECT_EQ(index[0], -9);
    EXPECT_EQ(distance[0], 5);
    EXPECT_EQ(TypeParam::within(x, index, state, 1.5F, &count), qorStatusOk);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(TypeParam::sort(x, index, state, 2), qorStatusOk);
    EXPECT_EQ(index[0], 0);
    EXPECT_EQ(TypeParam::free(state), qorStatusBadMode);
  }
}

// ---- Known answers ----

TYPED_TEST(VectorQuantisation, OfExactTiesGivesTheFirst) {
  const std::vector<typename TypeParam::T> rows = {5, 5, 5, 1, 3, 7, 1, 9, 3, 7, 7, 5};
  const typename TypeParam::T x[2] = {2, 8};
  for (const int32_t n : {1, 2}) {
    Book<TypeParam> book;
    ASSERT_EQ(TypeParam::make(&book.state, rows.data(), n, n, 12 / n - 1, 12 / n - 1, 1), qorStatusOk);
    int32_t index[2];
    for (const int32_t height : {1, 2}) {
      ASSERT_EQ(TypeParam::quantise(x, n, index, height > 2 / n ? 1 : height, book.state), qorStatusOk);
      EXPECT_EQ(index[0], n == 1 ? 3 : 2);
    }
  }
}

TEST(VectorQuantisationMargin, NearTiesGoToTheFirstWithWeightsAlone) {
  const float rows[] = {1.0F, 1.0F, 1.0F, 0.9999998F, 1.0F, 1.0F}, one[] = {1, 1, 1}, two[] = {2, 2, 2}, x[3] = {};
  for (const bool weighted : {false, true}) {
    CdbkState_32f* state = nullptr;
    ASSERT_EQ(qorsCdbkInitAlloc_WgtL2_32f(&state, rows, weighted ? two : one, 3, 3, 2, 2, 1), qorStatusOk);
    int32_t index = -1;
    ASSERT_EQ(qorsVQ_32f(x, 3, &index, 1, state), qorStatusOk);
    EXPECT_EQ(index, weighted ? 0 : 1);
    qorsCdbkFree_32f(state);
  }
}

// ---- Faults ----

template <class Kind>
struct Args {
  typename Kind::State** out;
  typename Kind::State* state;
  const typename Kind::T* source;
  const typename Kind::T* weights;
  int32_t dimension, step, height, size, mode;
  int32_t* indices;
  typename Kind::Distance* distances;
  int32_t* count;
  float threshold;
  int32_t k;
};

template <class Kind>
struct Faults {
  using T = typename Kind::T;
  using A = Args<Kind>;
  std::vector<T> rows = std::vector<T>(64, 1);
  std::vector<T> weights = {1, 2};
  Book<Kind> book;
  typename Kind::State* made = nullptr;
  int32_t indices[4] = {-9, -9, -9, -9}, count = -9;
  typename Kind::Distance distances[4] = {5, 5, 5, 5};
  std::vector<std::byte> block = std::vector<std::byte>(4096);

  Faults() {
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = static_cast<T>(i * i % 23);
    EXPECT_EQ(Kind::make(&book.state, rows.data(), 2, 2, 4, 4, 1), qorStatusOk);
  }
  A valid() { return {&made, book.state, rows.data(), weights.data(), 2, 3, 4, 4, 1, indices, distances, &count, 1.0F, 4}; }
  std::vector<kit::Watched> watched() { return {{indices, 4}, {distances, 4}, {&count, 1}, {block.data(), 4096}, {&made, 1}}; }
};

TYPED_TEST(VectorQuantisation, RefusesFaultsInOrder) {
  using F = Faults<TypeParam>;
  using A = typename F::A;
  F f;
  const auto blocks = [&](bool distances) {
    kit::FaultTable<A> table(
        f.valid(),
        [=](const A& a) {
          return distances ? TypeParam::quantiseDist(a.source, a.step, a.indices, a.distances, a.height, a.state, 0)
                           : TypeParam::quantise(a.source, a.step, a.indices, a.height, a.state);
        },
        f.watched());
    table.fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("null source", qorStatusNullPointer, &A::source, nullptr)
        .fault("null indices", qorStatusNullPointer, &A::indices, nullptr);
    if (distances) table.fault("null distances", qorStatusNullPointer, &A::distances, nullptr);
    table.fault("step 0", qorStatusBadSize, &A::step, 0)
        .fault("height 0", qorStatusBadSize, &A::height, 0)
        .fault("height negative", qorStatusBadSize, &A::height, INT32_MIN)
        .fault("step below dimension", qorStatusBadSize, &A::step, 1)
        .check();
  };
  blocks(false);
  blocks(true);
  const auto sort = [&](bool distances) {
    kit::FaultTable<A> table(
        f.valid(),
        [=](const A& a) {
          return distances ? TypeParam::sortDist(a.source, a.indices, a.distances, a.state, a.k, 0)
                           : TypeParam::sort(a.source, a.indices, a.state, a.k);
        },
        f.watched());
    table.fault("null vector", qorStatusNullPointer, &A::source, nullptr)
        .fault("null indices", qorStatusNullPointer, &A::indices, nullptr);
    if (distances) table.fault("null distances", qorStatusNullPointer, &A::distances, nullptr);
    table.fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("k 0", qorStatusBadSize, &A::k, 0)
        .fault("k above the count", qorStatusBadSize, &A::k, 5)
        .check();
  };
  sort(false);
  sort(true);
  const auto within = [&](bool distances) {
    kit::FaultTable<A> table(
        f.valid(),
        [=](const A& a) {
          return distances ? TypeParam::withinDist(a.source, a.indices, a.distances, a.state, a.threshold, a.count, 0)
                           : TypeParam::within(a.source, a.indices, a.state, a.threshold, a.count);
        },
        f.watched());
    table.fault("null vector", qorStatusNullPointer, &A::source, nullptr)
        .fault("null indices", qorStatusNullPointer, &A::indices, nullptr);
    if (distances) table.fault("null distances", qorStatusNullPointer, &A::distances, nullptr);
    table.fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("null count", qorStatusNullPointer, &A::count, nullptr)
        .fault("threshold below 1", qorStatusBadArgument, &A::threshold, 0.999F)
        .fault("threshold negative", qorStatusBadArgument, &A::threshold, -2.0F)
        .check();
  };
  within(false);
  within(true);
}

TYPED_TEST(VectorQuantisation, CodebooksRefuseFaultsInOrder) {
  using F = Faults<TypeParam>;
  using A = typename F::A;
  F f;
  const auto sizes = [](kit::FaultTable<A>& table, bool ready, bool dimensionFirst = false) {
    if (!dimensionFirst) table.fault("dimension 0", qorStatusBadSize, &A::dimension, 0);
    table.fault("step 0", qorStatusBadSize, &A::step, 0)
        .fault("height 0", qorStatusBadSize, &A::height, 0)
        .fault("size 0", qorStatusBadSize, &A::size, 0)
        .fault("dimension above step", qorStatusBadSize, &A::dimension, 4)
        .fault("size above 16383", qorStatusBadSize, &A::size, 16384, &A::height, 16384)
        .fault("size above height", qorStatusBadSize, &A::size, 5);
    if (ready) table.fault("size below height", qorStatusBadSize, &A::size, 3);
  };
  const auto modes = [](kit::FaultTable<A>& table) {
    table.fault("mode 2", qorStatusBadCodebookMode, &A::mode, 2).fault("mode 3", qorStatusBadCodebookMode, &A::mode, 3);
  };
  {
    kit::FaultTable<A> table(
        f.valid(), [](const A& a) { return TypeParam::getSize(a.dimension, a.step, a.height, a.size, a.mode, a.count); },
        f.watched());
    modes(table);
    table.fault("null bytes", qorStatusNullPointer, &A::count, nullptr);
    sizes(table, true);
    table.check();
  }
  {
    A valid = f.valid();
    valid.state = reinterpret_cast<typename TypeParam::State*>(f.block.data());
    kit::FaultTable<A> table(
        valid, [](const A& a) { return TypeParam::init(a.state, a.source, a.dimension, a.step, a.height, a.size, a.mode); },
        f.watched());
    modes(table);
    table.fault("null source", qorStatusNullPointer, &A::source, nullptr)
        .fault("null state", qorStatusNullPointer, &A::state, nullptr);
    sizes(table, true);
    table.check();
  }
  const auto released = [](const A& a, QorStatus status) {
    if (status >= 0) {
      TypeParam::free(*a.out);
      *a.out = nullptr;
    }
    return status;
  };
  {
    kit::FaultTable<A> table(
        f.valid(),
        [&](const A& a) {
          return released(a, TypeParam::makeWeighted(a.out, a.source, a.weights, a.dimension, a.step, a.height, a.size, a.mode));
        },
        f.watched());
    table.fault("null source", qorStatusNullPointer, &A::source, nullptr)
        .fault("null weights", qorStatusNullPointer, &A::weights, nullptr);
    sizes(table, false);
    static const typename TypeParam::T negative[2] = {1, -1};
    table.fault("negative weight", qorStatusBadArgument, &A::weights, &negative[0])
        .fault("mode 0", qorStatusBadCodebookMode, &A::mode, 0)
        .fault("mode 4", qorStatusBadCodebookMode, &A::mode, 4)
        .fault("null state", qorStatusNullPointer, &A::out, nullptr)
        .check();
  }
  {
    kit::FaultTable<A> table(
        f.valid(),
        [&](const A& a) { return released(a, TypeParam::make(a.out, a.source, a.dimension, a.step, a.height, a.size, a.mode)); },
        f.watched());
    table.fault("dimension 0", qorStatusBadSize, &A::dimension, 0).fault("null source", qorStatusNullPointer, &A::source, nullptr);
    sizes(table, false, true);
    table.fault("mode 0", qorStatusBadCodebookMode, &A::mode, 0)
        .fault("null state", qorStatusNullPointer, &A::out, nullptr)
        .check();
  }
  {
    kit::FaultTable<A> table(
        f.valid(), [](const A& a) { return TypeParam::count(a.state, a.count); }, f.watched());
    table.fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("null count", qorStatusNullPointer, &A::count, nullptr)
        .check();
  }
  {
    std::vector<typename TypeParam::T> rows(16);
    A valid = f.valid();
    valid.source = rows.data();
    kit::FaultTable<A> table(
        valid, [](const A& a) { return TypeParam::rows(a.state, const_cast<typename TypeParam::T*>(a.source), a.step); },
        {{rows.data(), 16}});
    table.fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("null destination", qorStatusNullPointer, &A::source, nullptr)
        .fault("step 0", qorStatusBadSize, &A::step, 0)
        .fault("step below dimension", qorStatusBadSize, &A::step, 1)
        .check();
  }
  EXPECT_EQ(TypeParam::free(nullptr), qorStatusNullPointer);
}

TYPED_TEST(VectorQuantisation, SizesBeyond32BitsAreRefused) {
  int32_t bytes = -7;
  for (const auto& [n, step, height] :
       {std::array{1, 1, 16384}, {3, INT32_MAX, 1}, {3, INT32_MAX, 16383}, {INT32_MAX, INT32_MAX, 16383}, {70000, 70000, 16383}}) {
    EXPECT_EQ(TypeParam::getSize(n, step, height, height, 1, &bytes), qorStatusBadSize) << n << " " << step << " " << height;
  }
  EXPECT_EQ(bytes, -7);
  EXPECT_EQ(TypeParam::getSize(1, INT32_MAX, 16383, 16383, 1, &bytes), qorStatusOk) << "rows of one element have no gaps";
}

TYPED_TEST(VectorQuantisation, StatesOfBothTypesAreReleasedByEither) {
  const typename TypeParam::T rows[2] = {1, 2};
  for (const int32_t mode : {1, 2}) {
    typename TypeParam::State* state = nullptr;
    ASSERT_EQ(TypeParam::make(&state, rows, 1, 1, 2, 2, mode), qorStatusOk);
    int32_t count = 0;
    EXPECT_EQ(qorsGetCdbkSize_16s(reinterpret_cast<CdbkState_16s*>(state), &count), qorStatusOk);
    EXPECT_EQ(qorsGetCdbkSize_32f(reinterpret_cast<CdbkState_32f*>(state), &count), qorStatusOk);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(sizeof(rows[0]) == 4 ? qorsCdbkFree_16s(reinterpret_cast<CdbkState_16s*>(state))
                                   : qorsCdbkFree_32f(reinterpret_cast<CdbkState_32f*>(state)),
              qorStatusOk);
  }
}

// ---- Memory and environment ----

TYPED_TEST(VectorQuantisation, AllocatesAboveDimension128Alone) {
  for (const int32_t n : {128, 129}) {
    const std::vector<typename TypeParam::T> rows(static_cast<std::size_t>(n) * 3, 1);
    for (const int32_t mode : {1, 2}) {
      Book<TypeParam> book;
      ASSERT_GE(TypeParam::make(&book.state, rows.data(), n, n, 3, 3, mode), 0);
      int32_t indices[3], count;
      typename TypeParam::Distance distances[3];
      const auto calls = {
          kit::expectEveryRefusalReported([&] { return TypeParam::quantise(rows.data(), n, indices, 3, book.state); }),
          kit::expectEveryRefusalReported(
              [&] { return TypeParam::quantiseDist(rows.data(), n, indices, distances, 3, book.state, 0); }),
          kit::expectEveryRefusalReported([&] { return TypeParam::within(rows.data(), indices, book.state, 1.0F, &count); })};
      for (const int64_t allocations : calls) EXPECT_EQ(allocations, n == 128 ? 0 : 1);
    }
  }
}

TYPED_TEST(VectorQuantisation, KeepsTheEnvironment) {
  kit::Random random(13);
  const auto rows = books::dataOf<typename TypeParam::T>(random, books::kClusters, 40, 5);
  const auto source = books::spread(rows, 5, kit::Place::kAligned);
  for (const int32_t mode : {1, 2}) {
    kit::expectEnvironmentKept([&] {
      Book<TypeParam> book;
      const std::vector<typename TypeParam::T> weights(5, 3);
      ASSERT_GE(TypeParam::makeWeighted(&book.state, source.data(), weights.data(), 5, 5, 40, mode == 1 ? 40 : 8, mode), 0);
      int32_t indices[40], count = 0;
      typename TypeParam::Distance distances[40];
      ASSERT_EQ(TypeParam::quantiseDist(source.data(), 5, indices, distances, 40, book.state, 3), qorStatusOk);
      ASSERT_EQ(TypeParam::sortDist(source.data(), indices, distances, book.state, 8, -3), qorStatusOk);
      ASSERT_EQ(TypeParam::withinDist(source.data(), indices, distances, book.state, 2.0F, &count, 1), qorStatusOk);
    });
  }
}

}  // namespace
