// Vectors quantised in parts and formed again: indices against the search of each part alone, all formats, the bits of a stream against
// a plain writer, faults, memory.
#include <gtest/gtest.h>

#include <memory>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Float {
  typedef float T;
  typedef CdbkState_32f State;
  static constexpr auto getSize = qorsCdbkGetSize_32f;
  static constexpr auto init = qorsCdbkInit_L2_32f;
  static constexpr auto train = qorsCdbkInitAlloc_L2_32f;
  static constexpr auto trainWeighted = qorsCdbkInitAlloc_WgtL2_32f;
  static constexpr auto free = qorsCdbkFree_32f;
  static constexpr auto search = qorsVQ_32f;
  static constexpr auto rows = qorsGetCodebook_32f;
  static constexpr auto count = qorsGetCdbkSize_32f;
  static constexpr auto split16s = qorsSplitVQ_32f16s;
  static constexpr auto split8u = qorsSplitVQ_32f8u;
  static constexpr auto split1u = qorsSplitVQ_32f1u;
  static constexpr auto form16s = qorsFormVectorVQ_16s32f;
  static constexpr auto form8u = qorsFormVectorVQ_8u32f;
  static constexpr auto form1u = qorsFormVectorVQ_1u32f;
};
struct Short {
  typedef int16_t T;
  typedef CdbkState_16s State;
  static constexpr auto getSize = qorsCdbkGetSize_16s;
  static constexpr auto init = qorsCdbkInit_L2_16s;
  static constexpr auto train = qorsCdbkInitAlloc_L2_16s;
  static constexpr auto trainWeighted = qorsCdbkInitAlloc_WgtL2_16s;
  static constexpr auto free = qorsCdbkFree_16s;
  static constexpr auto search = qorsVQ_16s;
  static constexpr auto rows = qorsGetCodebook_16s;
  static constexpr auto count = qorsGetCdbkSize_16s;
  static constexpr auto split16s = qorsSplitVQ_16s16s;
  static constexpr auto split8u = qorsSplitVQ_16s8u;
  static constexpr auto split1u = qorsSplitVQ_16s1u;
  static constexpr auto form16s = qorsFormVectorVQ_16s16s;
  static constexpr auto form8u = qorsFormVectorVQ_8u16s;
  static constexpr auto form1u = qorsFormVectorVQ_1u16s;
};

int32_t bitsFor(int32_t count) {
  int32_t bits = 0;
  while ((int64_t{1} << bits) < count) ++bits;
  return bits;
}

// Bits of one number after the other, the most significant first, into a stream.
void writeBits(Bytes& stream, int64_t at, int32_t value, int32_t bits) {
  for (int32_t i = bits - 1; i >= 0; --i, ++at) {
    if ((static_cast<uint32_t>(value) >> i & 1) != 0) {
      stream[static_cast<std::size_t>(at / 8)] = static_cast<uint8_t>(stream[static_cast<std::size_t>(at / 8)] | 0x80 >> at % 8);
    }
  }
}

enum class Kind { kReady, kTree, kWeighted, kWithoutSearch };

// A codebook, and its rows as a plain table.
template <class M>
class Book {
 public:
  using T = typename M::T;
  Book(kit::Random& random, int32_t dimension, int32_t rows, Kind kind) : dimension_(dimension) {
    const auto source = random.vector<T>(int64_t{rows} * dimension);
    if (kind == Kind::kReady || kind == Kind::kWithoutSearch) {
      int32_t bytes = 0;
      const int32_t mode = kind == Kind::kReady ? 1 : 9;
      EXPECT_EQ(M::getSize(dimension, dimension, rows, rows, mode, &bytes), qorStatusOk);
      block_ = std::make_unique<std::byte[]>(static_cast<std::size_t>(bytes));
      state = reinterpret_cast<typename M::State*>(block_.get());
      EXPECT_EQ(M::init(state, source.data(), dimension, dimension, rows, rows, mode), qorStatusOk);
    } else {
      std::vector<T> weights(static_cast<std::size_t>(dimension), T{1});
      weights[0] = T{2};
      EXPECT_GE(kind == Kind::kTree ? M::train(&state, source.data(), dimension, dimension, rows, std::max(1, rows / 2), 2)
                                    : M::trainWeighted(&state, source.data(), weights.data(), dimension, dimension, rows, rows, 1),
                0);
    }
    EXPECT_EQ(M::count(state, &count), qorStatusOk);
    // Ready rows of floats: what the memory held.
    bits = block_ && std::is_same_v<M, Float> ? 0 : bitsFor(count);
    table.resize(static_cast<std::size_t>(int64_t{count} * dimension));
    EXPECT_EQ(M::rows(state, table.data(), dimension), qorStatusOk);
  }
  ~Book() {
    if (!block_) {
      EXPECT_EQ(M::free(state), qorStatusOk);
    }
  }
  Book(const Book&) = delete;
  Book& operator=(const Book&) = delete;

  int32_t dimension() const { return dimension_; }
  typename M::State* state = nullptr;
  int32_t count = 0, bits = 0;
  std::vector<T> table;

 private:
  int32_t dimension_;
  std::unique_ptr<std::byte[]> block_;
};

template <class M>
struct Books {
  using T = typename M::T;
  std::vector<std::unique_ptr<Book<M>>> books;
  std::vector<const typename M::State*> states;
  int32_t dimensions = 0, bits = 0;

  void add(kit::Random& random, int32_t dimension, int32_t rows, Kind kind) {
    books.push_back(std::make_unique<Book<M>>(random, dimension, rows, kind));
    states.push_back(books.back()->state);
    dimensions += dimension;
    bits += books.back()->bits;
  }
  int32_t size() const { return static_cast<int32_t>(books.size()); }

  // The index of each part of each row, by the search of one codebook alone; -1 where it has none.
  std::vector<int32_t> search(const T* source, int32_t stride, int32_t height) const {
    std::vector<int32_t> all(static_cast<std::size_t>(height) * books.size(), -1);
    int32_t first = 0;
    for (std::size_t j = 0; j < books.size(); ++j) {
      for (int32_t r = 0; r < height; ++r) {
        int32_t index = -1;
        EXPECT_EQ(M::search(source + int64_t{r} * stride + first, books[j]->dimension(), &index, 1, states[j]), qorStatusOk);
        all[static_cast<std::size_t>(r) * books.size() + j] = index;
      }
      first += books[j]->dimension();
    }
    return all;
  }
};

template <class M>
void checkRoundTrip(kit::Random& random, const Books<M>& b, int32_t height, bool bytes) {
  using T = typename M::T;
  const int32_t count = b.size();
  const kit::Place place = kit::kPlaces[random.integer(0, 2)];
  const auto gap = static_cast<int32_t>(random.integer(0, 3));
  kit::Matrix<T> source(height, b.dimensions, b.dimensions + gap, place);
  source.fill(random, kit::Random::kPlain);
  const std::vector<int32_t> expected = b.search(source.block(), source.stride(), height);
  const auto at = [&](int32_t r, int32_t j) { return expected[static_cast<std::size_t>(r * count + j)]; };
  std::vector<T> formed, formedOfBits;
  for (int32_t r = 0; r < height; ++r) {
    for (int32_t j = 0; j < count; ++j) {
      const auto& book = *b.books[static_cast<std::size_t>(j)];
      const int32_t row = at(r, j) < 0 ? book.count - 1 : at(r, j);
      formed.insert(formed.end(), book.table.begin() + row * book.dimension(), book.table.begin() + (row + 1) * book.dimension());
      const auto first = book.table.begin() + (book.bits == 0 ? 0 : row * book.dimension());
      formedOfBits.insert(formedOfBits.end(), first, first + book.dimension());
    }
  }
  const auto expectFormed = [&](const std::vector<T>& wanted, const auto& form) {
    kit::Matrix<T> result(height, b.dimensions, b.dimensions + gap, place);
    ASSERT_EQ(form(result.block(), result.stride()), qorStatusOk);
    ASSERT_BITS(result.values(), wanted);
    ASSERT_TRUE(result.gapsKept());
  };
  const auto expectElements = [&](auto zero, const auto& split, const auto& form) {
    using Index = decltype(zero);
    kit::Matrix<Index> indices(height, count, count + gap, place);
    ASSERT_EQ(split(source.block(), source.stride(), indices.block(), indices.stride(), height, b.states.data(), count),
              qorStatusOk);
    std::vector<Index> wanted;
    for (const int32_t index : expected) wanted.push_back(static_cast<Index>(index));
    ASSERT_BITS(indices.values(), wanted);
    ASSERT_TRUE(indices.gapsKept());
    expectFormed(formed, [&](T* result, int32_t stride) {
      return form(indices.block(), indices.stride(), result, stride, height, b.states.data(), count);
    });
  };
  expectElements(int16_t{}, M::split16s, M::form16s);
  if (bytes) expectElements(uint8_t{}, M::split8u, M::form8u);
  // A stream whose rows begin anywhere in a byte; what is not an index is cleared.
  const int32_t bitStride = std::max(1, b.bits + gap);
  const int64_t streamBytes = (int64_t{height} * bitStride + 7) / 8;
  Bytes wanted(static_cast<std::size_t>(streamBytes), 0);
  for (int32_t r = 0; r < height; ++r) {
    int64_t bit = int64_t{r} * bitStride;
    for (int32_t j = 0; j < count; ++j) {
      const int32_t bits = b.books[static_cast<std::size_t>(j)]->bits;
      writeBits(wanted, bit, at(r, j), bits);
      bit += bits;
    }
  }
  kit::Area<uint8_t> stream(streamBytes, kit::Place::kAtGuard);
  stream.fill(0xFF);
  ASSERT_EQ(M::split1u(source.block(), source.stride(), stream.data(), bitStride, height, b.states.data(), count), qorStatusOk);
  ASSERT_BITS(stream.values(), wanted);
  ASSERT_TRUE(stream.edgesKept());
  expectFormed(formedOfBits, [&](T* result, int32_t stride) {
    return M::form1u(stream.data(), bitStride, result, stride, height, b.states.data(), count);
  });
}

template <class M>
void roundTrips() {
  kit::Random random;
  for (int32_t count = 1; count <= 20; ++count) {
    Books<M> b;
    for (int32_t j = 0; j < count; ++j) {
      static constexpr int32_t kDimensions[] = {1, 2, 3, 4, 5, 8, 13};
      static constexpr int32_t kRows[] = {1, 2, 3, 4, 7, 8, 16, 33, 100, 255, 256};
      const auto kind = static_cast<Kind>(random.integer(0, 3));
      const auto dimension = kDimensions[random.integer(0, 6)];
      b.add(random, dimension, kRows[random.integer(0, 10)], kind == Kind::kWithoutSearch && j % 3 != 0 ? Kind::kReady : kind);
    }
    for (const int32_t height : {1, 2, 5, 17}) {
      checkRoundTrip(random, b, height, true);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}
TEST(SplitQuantisation, FloatsThereAndBack) { roundTrips<Float>(); }
TEST(SplitQuantisation, ShortsThereAndBack) { roundTrips<Short>(); }

TEST(SplitQuantisation, LargeBooksAndLargeDimensions) {
  kit::Random random;
  Books<Float> b;
  b.add(random, 3, 257, Kind::kWeighted);
  b.add(random, 1, 5000, Kind::kWeighted);
  b.add(random, 2, 1, Kind::kWeighted);
  b.add(random, 2, 16383, Kind::kReady);
  b.add(random, 5, 700, Kind::kWeighted);
  checkRoundTrip(random, b, 9, false);
  b.add(random, 130, 40, Kind::kReady);  // needs memory
  b.add(random, 1, 2, Kind::kReady);
  b.add(random, 200, 30, Kind::kTree);
  checkRoundTrip(random, b, 9, false);
  std::vector<float> source(3 * 400);
  std::vector<int16_t> indices(3 * 8, 77);
  const int64_t refused = kit::expectEveryRefusalReported([&] {
    std::fill(indices.begin(), indices.end(), int16_t{77});
    const QorStatus status = qorsSplitVQ_32f16s(source.data(), 400, indices.data(), 8, 3, b.states.data(), 8);
    if (status != qorStatusOk) {
      EXPECT_EQ(indices, std::vector<int16_t>(24, 77));
    }
    return status;
  });
  EXPECT_GT(refused, 1);
}

TEST(SplitQuantisation, OneBookIsItsSearch) {
  kit::Random random;
  Books<Float> b;
  b.add(random, 5, 30, Kind::kTree);
  checkRoundTrip(random, b, 100, true);
}

TEST(SplitQuantisation, IndicesThatABookHasNot) {
  kit::Random random;
  Books<Float> b;
  b.add(random, 2, 5, Kind::kReady);
  const std::vector<int16_t> indices = {-1, 5, 32767, INT16_MIN, 4};
  std::vector<float> result(10);
  ASSERT_EQ(qorsFormVectorVQ_16s32f(indices.data(), 1, result.data(), 2, 5, b.states.data(), 1), qorStatusOk);
  for (std::size_t i = 0; i < 10; ++i) EXPECT_BITS(result[i], b.books[0]->table[8 + i % 2]);
}

// The bits of an index are what the memory held, but no more than an index has.
TEST(SplitQuantisation, ReadyRowsOfFloatsInMemoryOfAnyContents) {
  const std::vector<float> rows = {1.0F, 2.0F, 3.0F};
  int32_t bytes = 0;
  ASSERT_EQ(qorsCdbkGetSize_32f(1, 1, 3, 3, 1, &bytes), qorStatusOk);
  for (const int fill : {0x00, 0x7F, 0xFF}) {
    std::vector<std::byte> block(static_cast<std::size_t>(bytes), static_cast<std::byte>(fill));
    auto* state = reinterpret_cast<CdbkState_32f*>(block.data());
    ASSERT_EQ(qorsCdbkInit_L2_32f(state, rows.data(), 1, 1, 3, 3, 1), qorStatusOk);
    const CdbkState_32f* states[] = {state, state};
    const std::vector<float> source = {3.1F, 1.9F};
    Bytes stream(8, 0xFF);
    std::vector<float> result(2);
    ASSERT_EQ(qorsSplitVQ_32f1u(source.data(), 2, stream.data(), 62, 1, states, 2), qorStatusOk);
    ASSERT_EQ(qorsFormVectorVQ_1u32f(stream.data(), 62, result.data(), 2, 1, states, 2), qorStatusOk);
    const bool bits = fill == 0x7F;
    EXPECT_BITS(result, bits ? std::vector<float>{3.0F, 2.0F} : std::vector<float>{1.0F, 1.0F});
    EXPECT_EQ(qorsSplitVQ_32f1u(source.data(), 2, stream.data(), 61, 1, states, 2), bits ? qorStatusBadSize : qorStatusOk);
  }
}

// ---- Faults ----

template <class M, class Index>
struct Arguments {
  const typename M::T* source;
  int32_t stride;
  Index* indices;
  int32_t indexStride, height;
  const typename M::State* const* states;
  int32_t count;
  typename M::T* result;
};

// Two codebooks of dimensions 3 and 2, of 4 and 7 rows: 5 elements, 5 bits.
template <class M, class Index, bool Bits>
void faultsOf(QorStatus (*split)(const typename M::T*, int32_t, Index*, int32_t, int32_t, const typename M::State* const*, int32_t),
              QorStatus (*form)(const Index*, int32_t, typename M::T*, int32_t, int32_t, const typename M::State* const*,
                                int32_t)) {
  using T = typename M::T;
  using A = Arguments<M, Index>;
  kit::Random random;
  Books<M> b, large;
  b.add(random, 3, 4, Kind::kWeighted);
  b.add(random, 2, 7, Kind::kWeighted);
  large.add(random, 3, 257, Kind::kReady);
  large.add(random, 2, 7, Kind::kReady);
  const std::vector<const typename M::State*> missing = {b.states[0], nullptr};
  const std::vector<T> source(60, T{3});
  std::vector<Index> indices(60, Index{0});
  std::vector<T> result(60, T{77});
  const int32_t least = Bits ? 5 : 2;
  const A valid = {source.data(), 5, indices.data(), least, 4, b.states.data(), 2, result.data()};
  kit::FaultTable<A> encode(
      valid, [=](const A& a) { return split(a.source, a.stride, a.indices, a.indexStride, a.height, a.states, a.count); },
      {{indices.data(), 60}});
  encode.fault("null states", qorStatusNullPointer, &A::states, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null indices", qorStatusNullPointer, &A::indices, nullptr)
      .fault("source stride zero", qorStatusBadSize, &A::stride, 0)
      .fault("index stride zero", qorStatusBadSize, &A::indexStride, 0)
      .fault("height zero", qorStatusBadSize, &A::height, 0)
      .fault("no books", qorStatusBadSize, &A::count, 0)
      .fault("null book", qorStatusNullPointer, &A::states, missing.data(), kit::against(&A::count));
  if (sizeof(Index) == 1 && !Bits) {
    encode.fault("book of 257", qorStatusBadSize, &A::states, large.states.data(), kit::against(&A::count));
  }
  encode.fault("source stride too small", qorStatusBadSize, &A::stride, 4)
      .fault("index stride too small", qorStatusBadSize, &A::indexStride, least - 1)
      .check();
  kit::FaultTable<A> decode(
      valid, [=](const A& a) { return form(a.indices, a.indexStride, a.result, a.stride, a.height, a.states, a.count); },
      {{result.data(), 60}});
  decode.fault("null states", qorStatusNullPointer, &A::states, nullptr)
      .fault("null indices", qorStatusNullPointer, &A::indices, nullptr)
      .fault("null result", qorStatusNullPointer, &A::result, nullptr)
      .fault("no books", qorStatusBadSize, &A::count, -1)
      .fault("index stride zero", qorStatusBadSize, &A::indexStride, 0)
      .fault("result stride zero", qorStatusBadSize, &A::stride, 0)
      .fault("height zero", qorStatusBadSize, &A::height, 0);
  if (!Bits) decode.fault("index stride too small", qorStatusBadSize, &A::indexStride, least - 1);
  decode.fault("null book", qorStatusNullPointer, &A::states, missing.data(), kit::against(&A::count));
  if (sizeof(Index) == 1 && !Bits) {
    decode.fault("book of 257", qorStatusBadSize, &A::states, large.states.data(), kit::against(&A::count));
  }
  decode.fault("result stride too small", qorStatusBadSize, &A::stride, 4);
  if (Bits) decode.fault("index stride too small", qorStatusBadSize, &A::indexStride, least - 1);
  decode.check();
  std::fill(indices.begin(), indices.end(), Index{0});
}

template <class M>
void allFaults() {
  faultsOf<M, int16_t, false>(M::split16s, M::form16s);
  faultsOf<M, uint8_t, false>(M::split8u, M::form8u);
  faultsOf<M, uint8_t, true>(M::split1u, M::form1u);
}
TEST(SplitQuantisationFaults, Floats) { allFaults<Float>(); }
TEST(SplitQuantisationFaults, Shorts) { allFaults<Short>(); }

TEST(SplitQuantisation, KeepsTheEnvironmentAndAllocatesNothing) {
  kit::Random random;
  Books<Float> b;
  b.add(random, 3, 20, Kind::kReady);
  b.add(random, 4, 20, Kind::kTree);
  const auto source = random.vector<float>(70);
  std::vector<uint8_t> stream(100);
  std::vector<float> result(70);
  const int64_t before = kit::Core::calls();
  kit::expectEnvironmentKept([&] {
    qorsSplitVQ_32f1u(source.data(), 7, stream.data(), 11, 10, b.states.data(), 2);
    qorsFormVectorVQ_1u32f(stream.data(), 11, result.data(), 7, 10, b.states.data(), 2);
  });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
