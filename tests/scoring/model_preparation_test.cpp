// Constants of Gaussians, block-diagonal records and language model scores.
#include "model/model_preparation.h"

#include <gtest/gtest.h>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

// ---- Constants of Gaussians ----

template <class T>
void expectConstants(QorStatus (*apart)(const T*, const T*, T*, int32_t), QorStatus (*inPlace)(const T*, T*, int32_t)) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      const auto kind = kit::kKinds[random.integer(0, 2)];
      const kit::Area<T> weights(random.vector<T>(n, kind), place), gconsts(random.vector<T>(n, kind), place), result(n, place);
      std::vector<T> expected;
      for (int32_t i = 0; i < n; ++i) expected.push_back(weights[i] - gconsts[i] * T(0.5));
      ASSERT_EQ(apart(weights.data(), gconsts.data(), result.data(), n), qorStatusOk);
      ASSERT_BITS(result.values(), expected);
      ASSERT_EQ(inPlace(weights.data(), gconsts.data(), n), qorStatusOk);
      ASSERT_BITS(gconsts.values(), expected);
      ASSERT_TRUE(result.edgesKept() && gconsts.edgesKept());
    }
  }
}

TEST(OutProbPreCalc, Float) { expectConstants<float>(qorsOutProbPreCalc_32f, qorsOutProbPreCalc_32f_I); }
TEST(OutProbPreCalc, Double) { expectConstants<double>(qorsOutProbPreCalc_64f, qorsOutProbPreCalc_64f_I); }

TEST(OutProbPreCalc, IntegerRoundsByPosition) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (int pointers = 0; pointers < 8; ++pointers) {  // one bit a pointer: not aligned
      const auto place = [&](int bit) { return (pointers >> bit & 1) != 0 ? kit::Place::kOddStart : kit::Place::kAligned; };
      const auto kind = kit::kKinds[random.integer(0, 2)];
      const auto w = random.vector<int32_t>(n, kind), g = random.vector<int32_t>(n, kind);
      const kit::Area<int32_t> weights(w, place(0)), gconsts(g, place(1)), result(n, place(2));
      ASSERT_EQ(qorsOutProbPreCalc_32s(weights.data(), gconsts.data(), result.data(), n), qorStatusOk);
      ASSERT_BITS(result.values(), model::outProbPreCalc(w, g, pointers == 0)) << "length " << n << " pointers " << pointers;
      ASSERT_EQ(qorsOutProbPreCalc_32s_I(weights.data(), gconsts.data(), n), qorStatusOk);
      ASSERT_BITS(gconsts.values(), model::outProbPreCalc(w, g, (pointers & 3) == 0)) << "length " << n << " pointers " << pointers;
      ASSERT_TRUE(result.edgesKept() && gconsts.edgesKept());
    }
  }
}

TEST(OutProbPreCalc, AHalfOfThree) {
  alignas(16) const int32_t weights[7] = {}, gconsts[7] = {3, 3, 3, 3, 3, 3, 3};
  alignas(16) int32_t result[7];
  ASSERT_EQ(qorsOutProbPreCalc_32s(weights, gconsts, result, 7), qorStatusOk);
  EXPECT_BITS(std::vector<int32_t>(result, result + 7), std::vector<int32_t>({-1, -1, -1, -1, -1, -1, -2}));
  ASSERT_EQ(qorsOutProbPreCalc_32s(weights + 1, gconsts, result, 6), qorStatusOk);
  EXPECT_BITS(std::vector<int32_t>(result, result + 6), std::vector<int32_t>({-1, -1, -1, -1, -2, -2}));
  const int32_t largest[1] = {INT32_MAX}, weight[1] = {0};
  int32_t one;
  ASSERT_EQ(qorsOutProbPreCalc_32s(weight, largest, &one, 1), qorStatusOk);
  EXPECT_EQ(one, 1 << 30) << "gconst + 1 wraps before the shift";
}

template <class T>
void expectConstantFaults(QorStatus (*apart)(const T*, const T*, T*, int32_t), QorStatus (*inPlace)(const T*, T*, int32_t)) {
  struct Args {
    const T *weights, *gconsts;
    T *result, *both;
    int32_t length;
  };
  const T data[4] = {1, 2, 3, 4};
  T result[4] = {7, 7, 7, 7};
  kit::FaultTable<Args>({data, data, result, result, 4},
                        [=](const Args& a) { return apart(a.weights, a.gconsts, a.result, a.length); }, {{result, 4}})
      .fault("null weights", qorStatusNullPointer, &Args::weights, nullptr)
      .fault("null gconsts", qorStatusNullPointer, &Args::gconsts, nullptr)
      .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .fault("length negative", qorStatusBadSize, &Args::length, INT32_MIN)
      .check();
  kit::FaultTable<Args>({data, data, result, result, 4}, [=](const Args& a) { return inPlace(a.weights, a.both, a.length); },
                        {{result, 4}})
      .fault("null weights", qorStatusNullPointer, &Args::weights, nullptr)
      .fault("null both", qorStatusNullPointer, &Args::both, nullptr)
      .fault("length zero", qorStatusBadSize, &Args::length, 0)
      .check();
}

TEST(OutProbPreCalc, Faults) {
  expectConstantFaults<float>(qorsOutProbPreCalc_32f, qorsOutProbPreCalc_32f_I);
  expectConstantFaults<int32_t>(qorsOutProbPreCalc_32s, qorsOutProbPreCalc_32s_I);
  expectConstantFaults<double>(qorsOutProbPreCalc_64f, qorsOutProbPreCalc_64f_I);
}

// ---- Language model scores ----

TEST(ScaleLM, Float) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      const kit::Area<float> source(random.vector<float>(n, kit::kKinds[random.integer(0, 2)]), place), result(n, place);
      const float floor = random.plain<float>(), scale = random.plain<float>(), offset = random.plain<float>();
      std::vector<float> expected;
      for (int32_t i = 0; i < n; ++i) expected.push_back((source[i] > floor ? source[i] : floor) * scale + offset);
      ASSERT_EQ(qorsScaleLM_32f(source.data(), result.data(), n, floor, scale, offset), qorStatusOk);
      ASSERT_BITS(result.values(), expected);
      ASSERT_TRUE(result.edgesKept());
    }
  }
  const float odd[2] = {NAN, -INFINITY};
  float result[2];
  ASSERT_EQ(qorsScaleLM_32f(odd, result, 2, -4.0F, 2.0F, 1.0F), qorStatusOk);
  EXPECT_BITS(result[0], -7.0F);
  EXPECT_BITS(result[1], -7.0F);
}

TEST(ScaleLM, Int16) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const kit::Place place : kit::kPlaces) {
      const auto kind = kit::kKinds[random.integer(0, 2)];
      const kit::Area<int16_t> source(random.vector<int16_t>(n, kind), place);
      const kit::Area<int32_t> result(n, place);
      const auto floor = random.value<int16_t>(kind), scale = random.value<int16_t>(kind);
      const auto offset = random.value<int32_t>(kind);
      std::vector<int32_t> expected;
      for (int32_t i = 0; i < n; ++i) {
        const int64_t kept = source[i] > floor ? source[i] : floor;
        expected.push_back(model::wrapTo32(kept * scale + offset));
      }
      ASSERT_EQ(qorsScaleLM_16s32s(source.data(), result.data(), n, floor, scale, offset), qorStatusOk);
      ASSERT_BITS(result.values(), expected);
      ASSERT_TRUE(result.edgesKept());
    }
  }
  const int16_t below[1] = {-30000};
  int32_t result = 0;
  ASSERT_EQ(qorsScaleLM_16s32s(below, &result, 1, -100, 7, 3), qorStatusOk);
  EXPECT_EQ(result, -697);
}

TEST(ScaleLM, Faults) {
  struct Args {
    const void* source;
    void* result;
    int32_t length;
  };
  const float data[4] = {1, 2, 3, 4};
  float result[4] = {7, 7, 7, 7};
  const auto check = [&](QorStatus (*call)(const Args&)) {
    kit::FaultTable<Args>({data, result, 4}, call, {{result, 4}})
        .fault("null source", qorStatusNullPointer, &Args::source, nullptr)
        .fault("null result", qorStatusNullPointer, &Args::result, nullptr)
        .fault("length zero", qorStatusBadSize, &Args::length, 0)
        .check();
  };
  check([](const Args& a) {
    return qorsScaleLM_32f(static_cast<const float*>(a.source), static_cast<float*>(a.result), a.length, 0, 1, 0);
  });
  check([](const Args& a) {
    return qorsScaleLM_16s32s(static_cast<const int16_t*>(a.source), static_cast<int32_t*>(a.result), a.length, 0, 1, 0);
  });
}

// ---- Block-diagonal records: what the exports show; the scorers that read them show the rest ----

template <class Record, class T>
void expectRecords(QorStatus (*make)(Record**, const T* const*, const int32_t*, int32_t), QorStatus (*release)(Record*)) {
  kit::Random random;
  for (const std::vector<int32_t>& sizes : {std::vector<int32_t>{1}, {3}, {13, 13, 13}, {1, 2, 3, 4, 5}, {40, 7}}) {
    std::vector<kit::Area<T>> rows;
    std::vector<const T*> pointers;
    for (const int32_t size : sizes) {
      for (int32_t i = 0; i < size; ++i) pointers.push_back(rows.emplace_back(random.vector<T>(size), kit::Place::kAtGuard).data());
    }
    const kit::Area<int32_t> blockSizes(sizes, kit::Place::kAtGuard);
    const auto count = static_cast<int32_t>(sizes.size());
    const int64_t allocations = kit::expectEveryRefusalReported([&] {
      Record* record = nullptr;
      const QorStatus status = make(&record, pointers.data(), blockSizes.data(), count);
      EXPECT_EQ(record == nullptr, status != qorStatusOk);
      if (record != nullptr) {
        EXPECT_EQ(release(record), qorStatusOk);
      }
      return status;
    });
    EXPECT_EQ(allocations, 1);
  }
  EXPECT_EQ(release(nullptr), qorStatusNullPointer);
}

TEST(BlockDMatrix, MadeAndReleased) {
  expectRecords<BlockDMatrix_16s, int16_t>(qorsBlockDMatrixInitAlloc_16s, qorsBlockDMatrixFree_16s);
  expectRecords<BlockDMatrix_32f, float>(qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f);
  expectRecords<BlockDMatrix_64f, double>(qorsBlockDMatrixInitAlloc_64f, qorsBlockDMatrixFree_64f);
}

template <class Record, class T>
void expectRecordFaults(QorStatus (*make)(Record**, const T* const*, const int32_t*, int32_t), QorStatus (*release)(Record*)) {
  struct Args {
    Record** record;
    const T* const* rows;
    const int32_t* sizes;
    int32_t count;
  };
  static const T row[2] = {1, 2};
  static const T* const rows[3] = {row, row, row};
  static const int32_t sizes[2] = {2, 1}, zeroSize[2] = {2, 0}, negativeSize[2] = {-1, 2};
  Record* const untouched = reinterpret_cast<Record*>(0x10);
  Record* record = untouched;
  const int64_t before = kit::Core::calls();
  kit::FaultTable<Args>({&record, rows, sizes, 2},
                        [=](const Args& a) {
                          const QorStatus status = make(a.record, a.rows, a.sizes, a.count);
                          if (status == qorStatusOk) release(*a.record);
                          return status;
                        },
                        {{&record, 1}})
      .fault("null record", qorStatusNullPointer, &Args::record, nullptr)
      .fault("null rows", qorStatusNullPointer, &Args::rows, nullptr)
      .fault("null sizes", qorStatusNullPointer, &Args::sizes, nullptr)
      .fault("count zero", qorStatusBadSize, &Args::count, 0)
      .fault("count negative", qorStatusBadSize, &Args::count, INT32_MIN)
      .fault("sizes with a zero", qorStatusBadSize, &Args::sizes, zeroSize)
      .fault("sizes with a negative one", qorStatusBadSize, &Args::sizes, negativeSize)
      .check();
  EXPECT_EQ(kit::Core::calls() - before, 1) << "a refused call allocates nothing";
}

TEST(BlockDMatrix, Faults) {
  expectRecordFaults<BlockDMatrix_16s, int16_t>(qorsBlockDMatrixInitAlloc_16s, qorsBlockDMatrixFree_16s);
  expectRecordFaults<BlockDMatrix_32f, float>(qorsBlockDMatrixInitAlloc_32f, qorsBlockDMatrixFree_32f);
  expectRecordFaults<BlockDMatrix_64f, double>(qorsBlockDMatrixInitAlloc_64f, qorsBlockDMatrixFree_64f);
}

TEST(BlockDMatrix, ARecordThatNoAllocatorCanHold) {
  const float row[1] = {1.0F};
  const float* const rows[1] = {row};
  const std::vector<int32_t> sizes(5, INT32_MAX);
  BlockDMatrix_32f* record = nullptr;
  const int64_t before = kit::Core::calls();
  EXPECT_EQ(qorsBlockDMatrixInitAlloc_32f(&record, rows, sizes.data(), 5), qorStatusNoMemory);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(kit::Core::calls(), before);
}

TEST(ModelPreparation, KeepsTheEnvironment) {
  const float source[5] = {1, 2, 3, 1e30F, 1e-30F};
  float result[5];
  kit::expectEnvironmentKept([&] { qorsScaleLM_32f(source, result, 5, 0.0F, 1e20F, 1.0F); });
  kit::expectEnvironmentKept([&] { qorsOutProbPreCalc_32f(source, source, result, 5); });
}

}  // namespace
