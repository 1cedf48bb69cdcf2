// States of the cosine transform: sizes, layout in a block at every address, faults, allocation.
#include <gtest/gtest.h>

#include <cstring>

#include "features/dct_lifter_forms.h"
#include "kit/compare.h"
#include "kit/core.h"
#include "kit/faults.h"
#include "kit/memory.h"

namespace {

using forms::Args;

// ---- Sizes ----

int64_t padded(int64_t n) { return n + (8 - n % 8) % 8; }
int64_t size32f(int64_t n, int64_t m) { return (m * padded(n) + padded(n) + 2 * m) * 4 + 124; }
int64_t size16s(int64_t n, int64_t m) { return (padded(n) * (m + 1) + m) * 4 + 8 * m + 164; }
int64_t sizeMulC016s(int64_t n, int64_t m) { return (n * 4 + 36) * (m + 1) + 8 * m + 132; }

struct Sizer {
  const char* name;
  QorStatus (*size)(int32_t, int32_t, int32_t*);
  int64_t (*rule)(int64_t, int64_t);
  int32_t longest;
};
constexpr Sizer kSizers[] = {
    {"32f", qorsDCTLifterGetSize_32f, size32f, INT32_MAX},
    {"C0_32f", qorsDCTLifterGetSize_C0_32f, size32f, INT32_MAX},
    {"Mul_32f", qorsDCTLifterGetSize_Mul_32f, size32f, INT32_MAX},
    {"MulC0_32f", qorsDCTLifterGetSize_MulC0_32f, size32f, INT32_MAX},
    {"16s", qorsDCTLifterGetSize_16s, size16s, INT32_MAX},
    {"C0_16s", qorsDCTLifterGetSize_C0_16s, size16s, INT32_MAX},
    {"Mul_16s", qorsDCTLifterGetSize_Mul_16s, size16s, INT32_MAX},
    {"MulC0_16s", qorsDCTLifterGetSize_MulC0_16s, sizeMulC016s, 8192},
};

TEST(DctLifterSize, FollowsItsRule) {
  for (const Sizer& sizer : kSizers) {
    SCOPED_TRACE(sizer.name);
    for (int32_t n = 1; n <= 70; ++n) {
      for (int32_t m = 1; m <= n; ++m) {
        int32_t bytes = 0;
        ASSERT_EQ(sizer.size(n, m, &bytes), qorStatusOk);
        ASSERT_EQ(bytes, sizer.rule(n, m));
      }
    }
    int32_t bytes = 0;
    EXPECT_EQ(sizer.size(23, 12, &bytes), qorStatusOk);
    EXPECT_EQ(bytes, sizer.rule == size32f ? 1468 : sizer.rule == size16s ? 1556 : 1892);
  }
}

TEST(DctLifterSize, OfWhatDoesNotFit32BitsIsRefused) {
  for (const Sizer& sizer : kSizers) {
    SCOPED_TRACE(sizer.name);
    for (const int32_t n : {8192, 8193, 23000, 23166, 23200, 100000, INT32_MAX}) {
      for (const int32_t m : {1, 100, 8192, 23000, 23166, 23200, 100000, INT32_MAX}) {
        int32_t bytes = -7;
        const bool fits = m <= n && n <= sizer.longest && (m + int64_t{1}) <= INT64_MAX / 5 / n && sizer.rule(n, m) <= INT32_MAX;
        ASSERT_EQ(sizer.size(n, m, &bytes), fits ? qorStatusOk : qorStatusBadSize) << n << " " << m;
        ASSERT_EQ(bytes, fits ? sizer.rule(n, m) : -7);
      }
    }
  }
}

// ---- Layout ----

// Makes a state at every address modulo 32 in a block that ends at a page that cannot be touched, or less than 32 bytes before it,
// and uses it. `State` and its areas must stay inside the reported size.
template <class State, class Forms, class Use>
void expectFitsAtEveryAddress(const Forms& forms, int64_t elementBytes, Use use) {
  kit::Random random;
  for (const auto& [n, m] : {std::pair{1, 1}, {2, 1}, {8, 1}, {7, 7}, {8, 8}, {16, 5}, {23, 12}, {26, 13}, {40, 40}}) {
    const Args args = Args::random(random, n, m);
    for (const auto& form : forms) {
      SCOPED_TRACE(form.name);
      int32_t bytes = 0;
      ASSERT_EQ(form.size(n, m, &bytes), qorStatusOk);
      for (int64_t shift = 0; shift < 32; shift += elementBytes) {
        kit::Area<uint8_t> area(bytes + shift, kit::Place::kAtGuard);
        std::memset(area.data(), 0xFF, static_cast<std::size_t>(bytes + shift));  // as floats: NaN
        auto* state = reinterpret_cast<State*>(area.data());
        ASSERT_EQ(form.init(state, args), qorStatusOk);
        use(state, args, form);
        for (int64_t i = bytes; i < bytes + shift; ++i) ASSERT_EQ(area[i], 0xFF) << "n " << n << " m " << m << " shift " << shift;
        ASSERT_TRUE(area.edgesKept());
      }
    }
  }
}

TEST(DctLifterLayout, FloatStatesFitAtEveryAddress) {
  kit::Random random;
  expectFitsAtEveryAddress<DCTLifterState_32f>(forms::kInBlock32f, 4, [&](auto* state, const Args& a, const auto& form) {
    const auto x = random.vector<float>(a.n);
    std::vector<float> result(static_cast<std::size_t>(a.m + (form.hasC0 ? 1 : 0)));
    ASSERT_EQ(qorsDCTLifter_32f(x.data(), result.data(), state), qorStatusOk);
    ASSERT_BITS(result, model::dctLifter(x, form.lifter(a), form.hasC0));
  });
}

TEST(DctLifterLayout, IntegerStatesFitAtEveryAddress) {
  kit::Random random;
  expectFitsAtEveryAddress<DCTLifterState_16s>(forms::kInBlock16s, 2, [&](auto* state, const Args& a, const auto& form) {
    const auto x = random.vector<int16_t>(a.n, kit::Random::kSmall);
    std::vector<int16_t> result(static_cast<std::size_t>(a.m + (form.hasC0 ? 1 : 0)));
    ASSERT_EQ(qorsDCTLifter_16s_Sfs(x.data(), result.data(), state, -2), qorStatusOk);
    ASSERT_BITS(result, model::dctLifterScaled(x, form.lifter(a), form.hasC0, -2));
  });
}

// ---- Allocation ----

template <class State, class Forms>
void expectAllocations(const Forms& forms, QorStatus (*release)(State*)) {
  kit::Random random;
  const Args args = Args::random(random, 26, 13);
  Args tooLarge = args;
  tooLarge.n = tooLarge.m = 100000;
  tooLarge.weights.resize(100000);
  for (const auto& form : forms) {
    SCOPED_TRACE(form.name);
    EXPECT_EQ(kit::expectEveryRefusalReported([&] {
                State* state = nullptr;
                const QorStatus status = form.make(&state, args);
                if (status == qorStatusOk) release(state);
                return status;
              }),
              1);
    State* const before = reinterpret_cast<State*>(&random);
    State* state = before;
    kit::Core::refuse(0);
    EXPECT_EQ(form.make(&state, args), qorStatusNoMemory);
    kit::Core::refuseNone();
    EXPECT_EQ(state, before);
    EXPECT_EQ(form.make(&state, tooLarge), qorStatusNoMemory);
    EXPECT_EQ(state, before);
  }
  EXPECT_EQ(release(nullptr), qorStatusNullPointer);
}
TEST(DctLifterAlloc, Float) { expectAllocations(forms::kAllocated32f, qorsDCTLifterFree_32f); }
TEST(DctLifterAlloc, Integers) { expectAllocations(forms::kAllocated16s, qorsDCTLifterFree_16s); }

TEST(DctLifterInit, OfWhatDoesNotFit32BitsIsRefused) {
  char block[64];
  std::memset(block, 0x11, sizeof(block));
  Args args{100000, 100000, 22, 1, 1, std::vector<float>(100000), std::vector<int32_t>(100000)};
  for (const auto& form : forms::kInBlock32f) {
    EXPECT_EQ(form.init(reinterpret_cast<DCTLifterState_32f*>(block), args), qorStatusBadSize);
  }
  for (const auto& form : forms::kInBlock16s) {
    EXPECT_EQ(form.init(reinterpret_cast<DCTLifterState_16s*>(block), args), qorStatusBadSize);
  }
  for (const char c : block) EXPECT_EQ(c, 0x11);
}

TEST(DctLifterInit, ALengthBeyond8192IsRefusedByOneSizeOnly) {
  const std::vector<int32_t> weights = {3};
  std::vector<uint8_t> block(4 * 9000 * 2 + 4096);
  auto* state = reinterpret_cast<DCTLifterState_16s*>(block.data());
  ASSERT_EQ(qorsDCTLifterInit_MulC0_16s(state, 9000, weights.data(), 1), qorStatusOk);
  const std::vector<int16_t> x(9000, 1);
  int16_t result[2];
  ASSERT_EQ(qorsDCTLifter_16s_Sfs(x.data(), result, state, 0), qorStatusOk);
  EXPECT_EQ(result[1], 27000);
}

// ---- Faults ----

TEST(DctLifterFaults, Size) {
  struct A {
    int32_t n, m;
    int32_t* size;
  };
  int32_t size = 5;
  for (const Sizer& sizer : kSizers) {
    SCOPED_TRACE(sizer.name);
    kit::FaultTable<A> table({26, 13, &size}, [&](const A& a) { return sizer.size(a.n, a.m, a.size); }, {{&size, 1}});
    table.fault("null size", qorStatusNullPointer, &A::size, nullptr);
    table.fault("n zero", qorStatusBadSize, &A::n, 0);
    table.fault("n negative", qorStatusBadSize, &A::n, INT32_MIN);
    table.fault("m zero", qorStatusBadSize, &A::m, 0);
    table.fault("m negative", qorStatusBadSize, &A::m, INT32_MIN);
    table.fault("m above n", qorStatusBadSize, &A::m, 27, kit::against(&A::n));
    if (sizer.longest == 8192) table.fault("n above 8192", qorStatusBadSize, &A::n, 8193);
    table.check();
  }
}

struct Making {
  void* target;  // the block, or where the pointer goes
  int32_t n, m, length;
  const float* weights;
  const int32_t* whole;
};

void expectMakingFaults(bool given, QorStatus (*make)(const Making&), std::vector<kit::Watched> watched, void* target) {
  const float weights[13] = {};
  const int32_t whole[13] = {};
  using A = Making;
  kit::FaultTable<A> table({target, 26, 13, 22, weights, whole}, make, std::move(watched));
  table.fault("null target", qorStatusNullPointer, &A::target, nullptr);
  if (given) table.fault("null weights", qorStatusNullPointer, &A::weights, nullptr, &A::whole, nullptr);
  table.fault("n zero", qorStatusBadSize, &A::n, 0);
  table.fault("m zero", qorStatusBadSize, &A::m, 0);
  table.fault("m negative", qorStatusBadSize, &A::m, INT32_MIN);
  if (!given) table.fault("length zero", qorStatusBadSize, &A::length, 0);
  table.fault("n below m", qorStatusBadSize, &A::n, 12, kit::against(&A::m));
  table.check();
}

TEST(DctLifterFaults, InBlock) {
  std::vector<uint8_t> block(8192, 0x22);
  const auto expect = [&](bool given, QorStatus (*make)(const Making&)) {
    expectMakingFaults(given, make, {{block.data(), 8192}}, block.data());
  };
  using M = Making;
#define STATE(type) static_cast<DCTLifterState_##type*>(a.target)
  expect(false, [](const M& a) { return qorsDCTLifterInit_32f(STATE(32f), a.n, a.m, a.length, 1); });
  expect(false, [](const M& a) { return qorsDCTLifterInit_16s(STATE(16s), a.n, a.m, a.length, 1); });
  expect(false, [](const M& a) { return qorsDCTLifterInit_C0_32f(STATE(32f), a.n, a.m, a.length, 1, 1); });
  expect(false, [](const M& a) { return qorsDCTLifterInit_C0_16s(STATE(16s), a.n, a.m, a.length, 1, 1); });
  expect(true, [](const M& a) { return qorsDCTLifterInit_Mul_32f(STATE(32f), a.n, a.weights, a.m); });
  expect(true, [](const M& a) { return qorsDCTLifterInit_Mul_16s(STATE(16s), a.n, a.weights, a.m); });
  expect(true, [](const M& a) { return qorsDCTLifterInit_MulC0_32f(STATE(32f), a.n, a.weights, a.m); });
  expect(true, [](const M& a) { return qorsDCTLifterInit_MulC0_16s(STATE(16s), a.n, a.whole, a.m); });
#undef STATE
}

// The call, and the release of what it made.
template <class State>
QorStatus released(QorStatus status, State** target, QorStatus (*release)(State*)) {
  if (status == qorStatusOk) release(*target);
  return status;
}

TEST(DctLifterFaults, Allocated) {
  void* pointer = &pointer;
  const auto expect = [&](bool given, QorStatus (*make)(const Making&)) {
    expectMakingFaults(given, make, {{&pointer, 1}}, &pointer);
  };
  using M = Making;
  const int64_t held = kit::Core::outstanding();
#define MADE(type, call)                                                           \
  [](const M& a) {                                                                 \
    auto** const state = static_cast<DCTLifterState_##type**>(a.target);           \
    return released<DCTLifterState_##type>(call, state, qorsDCTLifterFree_##type); \
  }
  expect(false, MADE(32f, qorsDCTLifterInitAlloc_32f(state, a.n, a.m, a.length, 1)));
  expect(false, MADE(16s, qorsDCTLifterInitAlloc_16s(state, a.n, a.m, a.length, 1)));
  expect(false, MADE(32f, qorsDCTLifterInitAlloc_C0_32f(state, a.n, a.m, a.length, 1, 1)));
  expect(false, MADE(16s, qorsDCTLifterInitAlloc_C0_16s(state, a.n, a.m, a.length, 1, 1)));
  expect(true, MADE(32f, qorsDCTLifterInitAlloc_Mul_32f(state, a.n, a.weights, a.m)));
  expect(true, MADE(16s, qorsDCTLifterInitAlloc_Mul_16s(state, a.n, a.weights, a.m)));
  expect(true, MADE(32f, qorsDCTLifterInitAlloc_MulC0_32f(state, a.n, a.weights, a.m)));
  expect(true, MADE(16s, qorsDCTLifterInitAlloc_MulC0_16s(state, a.n, a.weights, a.m)));
#undef MADE
  EXPECT_EQ(kit::Core::outstanding(), held);
}

TEST(DctLifterFaults, Transforms) {
  DCTLifterState_32f* real = nullptr;
  DCTLifterState_16s* fixed = nullptr;
  ASSERT_EQ(qorsDCTLifterInitAlloc_32f(&real, 8, 4, 22, 1), qorStatusOk);
  ASSERT_EQ(qorsDCTLifterInitAlloc_16s(&fixed, 8, 4, 22, 1), qorStatusOk);
  const float x[8] = {};
  float y[4] = {1, 2, 3, 4};
  const int16_t x16[8] = {};
  const int32_t x32[8] = {};
  int16_t y16[4] = {1, 2, 3, 4};
  EXPECT_EQ(qorsDCTLifter_32f(nullptr, y, real), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_32f(x, nullptr, real), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_32f(x, y, nullptr), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_16s_Sfs(nullptr, y16, fixed, 0), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_16s_Sfs(x16, nullptr, fixed, 0), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_16s_Sfs(x16, y16, nullptr, 0), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_32s16s_Sfs(nullptr, y16, fixed, 0), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_32s16s_Sfs(x32, nullptr, fixed, 0), qorStatusNullPointer);
  EXPECT_EQ(qorsDCTLifter_32s16s_Sfs(x32, y16, nullptr, 0), qorStatusNullPointer);
  EXPECT_EQ(y[0] + y[3], 5);
  EXPECT_EQ(y16[0] + y16[3], 5);
  qorsDCTLifterFree_32f(real);
  qorsDCTLifterFree_16s(fixed);
}

}  // namespace
