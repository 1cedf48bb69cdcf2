// Argument checks: the first that fails decides, and what stands behind it is not looked at. Rows in both layouts.
#include "frame/checks.h"

#include <gtest/gtest.h>

#include <climits>

#include "frame/rows.h"

namespace {

using namespace qorsr;

TEST(Checks, NothingWrong) {
  const float x = 0;
  const float* const list[] = {&x};
  EXPECT_EQ(Checks(), qorStatusOk);
  EXPECT_EQ(Checks().null(&x, list).size(1, INT_MAX).atLeast(2, 2).index(0, 1).require(true, qorStatusFailed), qorStatusOk);
  EXPECT_EQ(Checks().stride(StridedRows{&x, 5}, 5).stride(ListedRows{list}, INT_MAX), qorStatusOk);
}

TEST(Checks, EachAlone) {
  const float x = 0;
  const float* const none = nullptr;
  const float* const* const noList = nullptr;
  EXPECT_EQ(Checks().null(none), qorStatusNullPointer);
  EXPECT_EQ(Checks().null(&x, none), qorStatusNullPointer);
  EXPECT_EQ(Checks().null(none, &x, &x), qorStatusNullPointer);
  EXPECT_EQ(Checks().null(StridedRows{none, 3}), qorStatusNullPointer);
  EXPECT_EQ(Checks().null(ListedRows{noList}), qorStatusNullPointer);
  EXPECT_EQ(Checks().null(ListedRows{&none}), qorStatusOk) << "row pointers are not looked at";
  EXPECT_EQ(Checks().size(0), qorStatusBadSize);
  EXPECT_EQ(Checks().size(1, INT_MIN), qorStatusBadSize);
  EXPECT_EQ(Checks().size(-1, 1), qorStatusBadSize);
  EXPECT_EQ(Checks().atLeast(2, 1), qorStatusBadSize);
  EXPECT_EQ(Checks().atLeast(2, 2, 1), qorStatusBadSize);
  EXPECT_EQ(Checks().stride(StridedRows{&x, 4}, 5), qorStatusBadStride);
  EXPECT_EQ(Checks().stride(StridedRows{&x, INT_MIN}, 1), qorStatusBadStride);
  EXPECT_EQ(Checks().stride(StridedRows{&x, INT_MAX}, int64_t{3} * INT_MAX), qorStatusBadStride) << "bounds are 64 bits wide";
  EXPECT_EQ(Checks().index(-1, 5), qorStatusBadSize);
  EXPECT_EQ(Checks().index(5, 5), qorStatusBadSize);
  EXPECT_EQ(Checks().index(INT_MIN, INT_MAX), qorStatusBadSize);
  EXPECT_EQ(Checks().require(false, qorStatusBadRange), qorStatusBadRange);
  EXPECT_EQ(Checks().require([] { return false; }, qorStatusBadMode), qorStatusBadMode);
  EXPECT_EQ(Checks().require([] { return true; }, qorStatusBadMode), qorStatusOk);
}

TEST(Checks, TheFirstThatFailsDecides) {
  const float* const none = nullptr;
  const StridedRows narrow{none, 1};
  EXPECT_EQ(Checks().null(none).size(0).stride(narrow, 2), qorStatusNullPointer);
  EXPECT_EQ(Checks().size(0).null(none).stride(narrow, 2), qorStatusBadSize);
  EXPECT_EQ(Checks().stride(narrow, 2).size(0).null(none), qorStatusBadStride);
  EXPECT_EQ(Checks().require(false, qorStatusBadRange).null(none).size(0), qorStatusBadRange);
  EXPECT_EQ(Checks().size(1).index(2, 1).null(none), qorStatusBadSize);
}

TEST(Checks, AConditionBehindAFailureIsNotEvaluated) {
  const int* const none = nullptr;
  bool evaluated = false;
  const auto look = [&] {
    evaluated = true;
    return *none == 0;
  };
  EXPECT_EQ(Checks().null(none).require(look, qorStatusBadRange), qorStatusNullPointer);
  EXPECT_FALSE(evaluated);
}

TEST(Rows, BothLayouts) {
  float block[12] = {};
  const StridedRows strided{block, 4};
  EXPECT_EQ(strided[0], block);
  EXPECT_EQ(strided[2], block + 8);
  float* list[] = {block + 7, block + 1};
  const ListedRows listed{list};
  EXPECT_EQ(listed[0], block + 7);
  EXPECT_EQ(listed[1], block + 1);
  EXPECT_EQ((StridedRows<float>{nullptr, INT_MAX}.stride), INT_MAX);
}

TEST(Rows, AlignmentOfRowPointers) {
  alignas(16) float block[40] = {};
  const float* aligned[] = {block, block + 4, block + 36};
  const float* one[] = {block, block + 4, block + 5};
  EXPECT_TRUE(rowsAligned(aligned, 3));
  EXPECT_FALSE(rowsAligned(one, 3));
  EXPECT_TRUE(rowsAligned(one, 2));
  EXPECT_TRUE(rowsAligned(one, 0));
  EXPECT_TRUE(rowsAligned(one, -5));
  EXPECT_TRUE(rowsAligned(static_cast<const float* const*>(nullptr), 0));
  const float* nothing[] = {nullptr};
  EXPECT_TRUE(rowsAligned(nothing, 1));
}

}  // namespace
