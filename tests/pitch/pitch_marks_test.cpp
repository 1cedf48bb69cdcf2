// Pitch marks to frequencies: exact reciprocals, equal marks, scale factors, faults, memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/convert.h"
#include "qorsr.h"

namespace {

constexpr float kInfinite = std::numeric_limits<float>::infinity();

// 1 / difference times the scale; infinite where the difference is zero.
template <class T>
QorStatus frequencies(const std::vector<T>& marks, float scale, std::vector<float>& result) {
  QorStatus status = qorStatusOk;
  float before = 0.0F;
  for (const T mark : marks) {
    const float difference = static_cast<float>(mark) - before;
    before = static_cast<float>(mark);
    if (difference == 0.0F) status = qorStatusDivideByZero;
    result.push_back(difference == 0.0F ? kInfinite : 1.0F / difference * scale);
  }
  return status;
}

// Rising marks, with equal ones now and then where `repeats` says so.
template <class T>
std::vector<T> rising(kit::Random& random, int32_t length, int kind) {
  std::vector<T> marks;
  double t = kind == 2 ? 0.0 : 3.0;
  for (int32_t i = 0; i < length; ++i) {
    marks.push_back(kind == 3 ? random.nasty<T>() : static_cast<T>(t));
    if (kind == 0 || random.integer(0, 5) > 0) t = std::fmod(t + random.real(1.0, 90.0), 30000.0);
  }
  return marks;
}

std::vector<int32_t> manyLengths() {
  std::vector<int32_t> all = kit::lengths();
  all.insert(all.end(), {99, 101, 1000});
  return all;
}

TEST(PitchMarks, Float) {
  kit::Random random;
  for (const int32_t length : manyLengths()) {
    for (int kind = 0; kind < 4; ++kind) {
      const kit::Place place = kit::kPlaces[(length + kind) % 3];
      const auto marks = rising<float>(random, length, kind);
      const kit::Area<float> source(marks, place), candidates(length, place);
      std::vector<float> expected;
      const QorStatus status = frequencies(marks, 1.0F, expected);
      ASSERT_EQ(qorsPitchmarkToF0Cand_32f(source.data(), candidates.data(), length), status) << length << " kind " << kind;
      ASSERT_BITS(candidates.values(), expected) << length << " kind " << kind;
      ASSERT_TRUE(candidates.edgesKept());
    }
  }
}

TEST(PitchMarks, Int16) {
  kit::Random random;
  for (const int32_t length : manyLengths()) {
    for (int kind = 0; kind < 4; ++kind) {
      for (const int32_t sf : {0, -13, -8, 3, -128, 150, INT32_MIN, INT32_MAX}) {
        const kit::Place place = kit::kPlaces[(length + kind) % 3];
        const auto marks = rising<int16_t>(random, length, kind);
        const kit::Area<int16_t> source(marks, place), candidates(length, place);
        std::vector<float> floats;
        const QorStatus status = frequencies(marks, model::scaleMultiplier(sf), floats);
        std::vector<int16_t> expected;
        for (const float f : floats) expected.push_back(model::convertScaled<int16_t>(f, 1, 0));
        ASSERT_EQ(qorsPitchmarkToF0Cand_16s_Sfs(source.data(), candidates.data(), length, sf), status);
        ASSERT_BITS(candidates.values(), expected) << length << " kind " << kind << " scale factor " << sf;
        ASSERT_TRUE(candidates.edgesKept());
      }
    }
  }
}

TEST(PitchMarks, EqualMarksAreInfinite) {
  const float marks[] = {0.0F, 4.0F, 4.0F, -0.0F, 0.0F};
  float candidates[5];
  EXPECT_EQ(qorsPitchmarkToF0Cand_32f(marks, candidates, 5), qorStatusDivideByZero);
  EXPECT_BITS(std::vector<float>(candidates, candidates + 5), {kInfinite, 0.25F, kInfinite, -0.25F, kInfinite});
  const float minusZero = -0.0F;
  EXPECT_EQ(qorsPitchmarkToF0Cand_32f(&minusZero, candidates, 1), qorStatusDivideByZero);
  EXPECT_BITS(candidates[0], kInfinite);
  const int16_t marks16[] = {0, 4, 4};
  int16_t candidates16[3];
  EXPECT_EQ(qorsPitchmarkToF0Cand_16s_Sfs(marks16, candidates16, 3, -10), qorStatusDivideByZero);
  EXPECT_BITS(std::vector<int16_t>(candidates16, candidates16 + 3), {32767, 256, 32767});
}

TEST(PitchMarks, AFlagThatWasRaisedBeforeIsNoWarning) {
  const float marks[] = {1.0F, 4.0F};
  float candidates[2];
  kit::expectEnvironmentKept([&] { EXPECT_EQ(qorsPitchmarkToF0Cand_32f(marks, candidates, 2), qorStatusOk); });
}

TEST(PitchMarks, LeaveNoFlagBehind) {
  const float marks[] = {0.0F, 1.0F, 4.0F, 4.0F, 7.0F};
  const int16_t marks16[] = {0, 1, 4, 4, 7};
  float candidates[5];
  int16_t candidates16[5];
  kit::expectNoFlagRaised([&] { qorsPitchmarkToF0Cand_32f(marks, candidates, 5); });
  kit::expectNoFlagRaised([&] { qorsPitchmarkToF0Cand_16s_Sfs(marks16, candidates16, 5, -8); });
  kit::expectEnvironmentKept([&] { qorsPitchmarkToF0Cand_32f(marks, candidates, 5); });
}

TEST(PitchMarkFaults, EveryMember) {
  struct A {
    const float* marks;
    const int16_t* marks16;
    float* candidates;
    int16_t* candidates16;
    int32_t length;
  };
  const float marks[] = {1, 2, 3};
  const int16_t marks16[] = {1, 2, 3};
  float candidates[3] = {7, 7, 7};
  int16_t candidates16[3] = {7, 7, 7};
  const A valid = {marks, marks16, candidates, candidates16, 3};
  kit::FaultTable<A>(valid, [](const A& a) { return qorsPitchmarkToF0Cand_32f(a.marks, a.candidates, a.length); },
                     {{candidates, 3}})
      .fault("null marks", qorStatusNullPointer, &A::marks, nullptr)
      .fault("null candidates", qorStatusNullPointer, &A::candidates, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
  kit::FaultTable<A>(valid, [](const A& a) { return qorsPitchmarkToF0Cand_16s_Sfs(a.marks16, a.candidates16, a.length, -3); },
                     {{candidates16, 3}})
      .fault("null marks", qorStatusNullPointer, &A::marks16, nullptr)
      .fault("null candidates", qorStatusNullPointer, &A::candidates16, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
}

TEST(PitchMarks, EveryRefusedAllocationIsReported) {
  std::vector<int16_t> marks(101, 5), candidates(101);
  const auto calls = [&](int32_t length) {
    return kit::expectEveryRefusalReported(
        [&] { return qorsPitchmarkToF0Cand_16s_Sfs(marks.data(), candidates.data(), length, 0); });
  };
  EXPECT_EQ(calls(100), 0);
  EXPECT_EQ(calls(101), 1);
}

}  // namespace
