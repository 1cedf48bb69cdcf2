// The version record: every field, and one pointer for the life of the library.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "qorsr.h"

namespace {

// Taken before main, and so before any other call.
const QorLibraryVersion* const atStart = qorsrGetLibVersion();

TEST(Version, Fields) {
  const QorLibraryVersion* const version = qorsrGetLibVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->versionMajor, 6);
  EXPECT_EQ(version->versionMinor, 0);
  EXPECT_EQ(version->buildMajor, 167);
  EXPECT_EQ(version->buildMinor, 665);
  EXPECT_EQ(version->targetCode[0], 't');
  EXPECT_EQ(version->targetCode[1], '7');
  EXPECT_EQ(version->targetCode[2], 0);
  EXPECT_EQ(version->targetCode[3], 0);
  EXPECT_STREQ(version->fileName, "qorsrt7-6.0.dll");
  EXPECT_STREQ(version->versionText, "6.0 Update 2 build 167.41");
  EXPECT_STREQ(version->buildDate, "Feb 23 2009");
}

TEST(Version, ThePointerNeverChanges) {
  const float source[] = {1.0F};
  float result = 0;
  EXPECT_EQ(qorsMeanColumn_32f_D2(source, 1, 1, &result, 1), qorStatusOk);
  EXPECT_EQ(qorsrGetLibVersion(), atStart);
}

TEST(Version, LayoutOfTheRecord) {
  EXPECT_EQ(offsetof(QorLibraryVersion, versionMajor), 0u);
  EXPECT_EQ(offsetof(QorLibraryVersion, versionMinor), 4u);
  EXPECT_EQ(offsetof(QorLibraryVersion, buildMajor), 8u);
  EXPECT_EQ(offsetof(QorLibraryVersion, buildMinor), 12u);
  EXPECT_EQ(offsetof(QorLibraryVersion, targetCode), 16u);
  EXPECT_EQ(offsetof(QorLibraryVersion, fileName), sizeof(void*) == 8 ? 24u : 20u);
  EXPECT_EQ(sizeof(QorLibraryVersion), offsetof(QorLibraryVersion, fileName) + 3 * sizeof(const char*));
  static_assert(std::is_same_v<decltype(qorsrGetLibVersion()), const QorLibraryVersion*>);
}

TEST(Version, StatusValues) {
  static_assert(sizeof(QorStatus) == 4 && std::is_signed_v<QorStatus>);
  const struct {
    QorStatus status, value;
  } table[] = {{qorStatusOk, 0},
               {qorStatusDegenerateInput, 4},
               {qorStatusDivideByZero, 6},
               {qorStatusLogZero, 7},
               {qorStatusLogNegative, 8},
               {qorStatusAllFloored, 11},
               {qorStatusZeroOccupancy, 16},
               {qorStatusCdbkSizeChanged, 31},
               {qorStatusFailed, -2},
               {qorStatusBadArgument, -5},
               {qorStatusBadSize, -6},
               {qorStatusBadRange, -7},
               {qorStatusNullPointer, -8},
               {qorStatusNoMemory, -9},
               {qorStatusZeroDivisor, -10},
               {qorStatusBadFftOrder, -15},
               {qorStatusBadFftFlag, -16},
               {qorStatusBadContext, -17},
               {qorStatusBadStride, -37},
               {qorStatusNoConvergence, -65},
               {qorStatusBadCodebookMode, -66},
               {qorStatusBadStatistic, -67},
               {qorStatusFBankNotReady, -69},
               {qorStatusBadFBankFlag, -70},
               {qorStatusBadFBankFrequency, -71},
               {qorStatusLspRootsLost, -114},
               {qorStatusBadLspOrder, -115},
               {qorStatusUnstableReflection, -116},
               {qorStatusUnstableFilter, -117},
               {qorStatusBadLength, -119},
               {qorStatusBadMode, -9999}};
  for (const auto& row : table) EXPECT_EQ(row.status, row.value);
}

}  // namespace
