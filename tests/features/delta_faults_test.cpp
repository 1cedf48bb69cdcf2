// What the delta members refuse, in their order, with nothing written.
#include <gtest/gtest.h>

#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

// ---- Streaming members ----

template <class T>
struct Args {
  const T* source;
  const T* table;
  int32_t width;
  T* destination;
  int32_t step, height, flags;
};

constexpr int32_t kBegin = 1, kEnd = 2;
constexpr int32_t kAuroraWidth = 13;

// `parts`: how many times the width a row holds. `startUp`: rows that begin asks for.
template <class T>
void expectFaults(int32_t parts, int32_t startUp, bool table, bool aurora, QorStatus (*call)(const Args<T>&)) {
  using A = Args<T>;
  const std::vector<T> source(20 * 14, T(1)), entries(39, T(1));
  std::vector<T> destination(40 * 40, T(7));
  const int32_t rowWidth = parts * (aurora ? kAuroraWidth : 5);
  const A valid{source.data(), entries.data(), 5, destination.data(), rowWidth, startUp, kBegin | kEnd};
  kit::FaultTable<A> faults(valid, call, {{destination.data(), std::ssize(destination)}});
  faults.fault("null source", qorStatusNullPointer, &A::source, nullptr);
  faults.fault("null destination", qorStatusNullPointer, &A::destination, nullptr);
  if (table) faults.fault("null table", qorStatusNullPointer, &A::table, nullptr);
  if (!aurora) faults.fault("width zero", qorStatusBadSize, &A::width, 0);
  if (!aurora) faults.fault("width negative", qorStatusBadSize, &A::width, INT32_MIN);
  faults.fault("height negative", qorStatusBadSize, &A::height, -1, &A::flags, kEnd);
  faults.fault("height lowest", qorStatusBadSize, &A::height, INT32_MIN, &A::flags, kEnd);
  faults.fault("height zero without end", qorStatusBadSize, &A::height, 0, &A::flags, ~kEnd & ~kBegin);
  faults.fault("step below width", qorStatusBadStride, &A::step, rowWidth - 1, kit::against(&A::width));
  faults.fault("step negative", qorStatusBadStride, &A::step, INT32_MIN);
  if (!aurora) faults.fault("step of the widest width", qorStatusBadStride, &A::width, INT32_MAX, &A::step, INT32_MAX);
  faults.fault("height below the start-up count", qorStatusBadSize, &A::height, startUp - 1, &A::flags, kBegin);
  faults.fault("height zero with begin and end", qorStatusBadSize, &A::height, 0, &A::flags, kBegin | kEnd);
  faults.check();
}

TEST(DeltaFaults, Float) {
  using A = Args<float>;
#define SOURCE a.source
#define REST a.width, a.destination, a.step, a.height
  expectFaults<float>(2, 2, false, false, [](const A& a) { return qorsDelta_Win1_32f_D2(SOURCE, REST, 1, a.flags); });
  expectFaults<float>(2, 4, false, false, [](const A& a) { return qorsDelta_Win2_32f_D2(SOURCE, REST, 1, a.flags); });
  expectFaults<float>(3, 3, false, false, [](const A& a) { return qorsDeltaDelta_Win1_32f_D2(SOURCE, REST, 1, 1, a.flags); });
  expectFaults<float>(3, 6, false, false, [](const A& a) { return qorsDeltaDelta_Win2_32f_D2(SOURCE, REST, 1, 1, a.flags); });
  expectFaults<float>(2, 2, true, false, [](const A& a) { return qorsDeltaMul_Win1_32f_D2(SOURCE, a.table, REST, a.flags); });
  expectFaults<float>(2, 4, true, false, [](const A& a) { return qorsDeltaMul_Win2_32f_D2(SOURCE, a.table, REST, a.flags); });
  expectFaults<float>(3, 3, true, false, [](const A& a) { return qorsDeltaDeltaMul_Win1_32f_D2(SOURCE, a.table, REST, a.flags); });
  expectFaults<float>(3, 6, true, false, [](const A& a) { return qorsDeltaDeltaMul_Win2_32f_D2(SOURCE, a.table, REST, a.flags); });
  expectFaults<float>(3, 8, false, true,
                      [](const A& a) { return qorsDeltaDelta_Aurora_32f_D2(SOURCE, a.destination, a.step, a.height, a.flags); });
  expectFaults<float>(3, 8, true, true, [](const A& a) {
    return qorsDeltaDeltaMul_Aurora_32f_D2(SOURCE, a.table, a.destination, a.step, a.height, a.flags);
  });
}

TEST(DeltaFaults, Int16) {
  using A = Args<int16_t>;
  using T = int16_t;
  expectFaults<T>(2, 2, false, false, [](const A& a) { return qorsDelta_Win1_16s_D2Sfs(SOURCE, REST, 1, a.flags, 0); });
  expectFaults<T>(2, 4, false, false, [](const A& a) { return qorsDelta_Win2_16s_D2Sfs(SOURCE, REST, 1, a.flags, 0); });
  expectFaults<T>(3, 3, false, false, [](const A& a) { return qorsDeltaDelta_Win1_16s_D2Sfs(SOURCE, REST, 1, 1, a.flags, 0); });
  expectFaults<T>(3, 6, false, false, [](const A& a) { return qorsDeltaDelta_Win2_16s_D2Sfs(SOURCE, REST, 1, 1, a.flags, 0); });
  expectFaults<T>(2, 2, true, false, [](const A& a) { return qorsDeltaMul_Win1_16s_D2Sfs(SOURCE, a.table, REST, a.flags, 0); });
  expectFaults<T>(2, 4, true, false, [](const A& a) { return qorsDeltaMul_Win2_16s_D2Sfs(SOURCE, a.table, REST, a.flags, 0); });
  expectFaults<T>(3, 3, true, false,
                  [](const A& a) { return qorsDeltaDeltaMul_Win1_16s_D2Sfs(SOURCE, a.table, REST, a.flags, 0); });
  expectFaults<T>(3, 6, true, false,
                  [](const A& a) { return qorsDeltaDeltaMul_Win2_16s_D2Sfs(SOURCE, a.table, REST, a.flags, 0); });
  expectFaults<T>(3, 8, false, true,
                  [](const A& a) { return qorsDeltaDelta_Aurora_16s_D2Sfs(SOURCE, a.destination, a.step, a.height, a.flags, 0); });
  expectFaults<T>(3, 8, true, true, [](const A& a) {
    return qorsDeltaDeltaMul_Aurora_16s_D2Sfs(SOURCE, a.table, a.destination, a.step, a.height, a.flags, 0);
  });
#undef SOURCE
#undef REST
}

TEST(DeltaFaults, AuroraNeeds39ElementsARow) {
  const std::vector<float> source(8 * 14);
  std::vector<float> rows(8 * 39);
  EXPECT_EQ(qorsDeltaDelta_Aurora_32f_D2(source.data(), rows.data(), 38, 8, 1), qorStatusBadStride);
  EXPECT_EQ(qorsDeltaDelta_Aurora_32f_D2(source.data(), rows.data(), 39, 8, 1), qorStatusOk);
}

// ---- Whole utterances ----

template <class T>
struct BlockArgs {
  T* buffer;
  const T* table;
  int32_t height, step, width, offset, window;
};

template <class T>
void expectBlockFaults(bool table, QorStatus (*call)(const BlockArgs<T>&)) {
  using A = BlockArgs<T>;
  const std::vector<T> entries(10, T(1));
  std::vector<T> buffer(8 * 13, T(7));
  kit::FaultTable<A> faults({buffer.data(), entries.data(), 8, 13, 5, 3, 4}, call, {{buffer.data(), std::ssize(buffer)}});
  faults.fault("null buffer", qorStatusNullPointer, &A::buffer, nullptr);
  if (table) faults.fault("null table", qorStatusNullPointer, &A::table, nullptr);
  faults.fault("height zero", qorStatusBadSize, &A::height, 0);
  faults.fault("height negative", qorStatusBadSize, &A::height, INT32_MIN);
  faults.fault("width zero", qorStatusBadSize, &A::width, 0);
  faults.fault("window zero", qorStatusBadSize, &A::window, 0);
  faults.fault("window negative", qorStatusBadSize, &A::window, INT32_MIN);
  faults.fault("offset negative", qorStatusBadSize, &A::offset, -1);
  faults.fault("height below two window sizes", qorStatusBadSize, &A::height, 7, kit::against(&A::window));
  faults.fault("window of half the integers and more", qorStatusBadSize, &A::window, 0x40000001);
  faults.fault("step below the deltas", qorStatusBadStride, &A::step, 12);
  faults.fault("step negative", qorStatusBadStride, &A::step, INT32_MIN);
  faults.fault("step below the farthest offset", qorStatusBadStride, &A::offset, INT32_MAX, &A::step, INT32_MAX);
  faults.fault("step below the widest width", qorStatusBadStride, &A::width, INT32_MAX, &A::step, INT32_MAX);
  faults.check();
}

TEST(EvalDeltaFaults, EveryMember) {
  expectBlockFaults<float>(false, [](const BlockArgs<float>& a) {
    return qorsEvalDelta_32f_D2(a.buffer, a.height, a.step, a.width, a.offset, a.window, 1);
  });
  expectBlockFaults<float>(true, [](const BlockArgs<float>& a) {
    return qorsEvalDeltaMul_32f_D2(a.buffer, a.height, a.step, a.table, a.width, a.offset, a.window);
  });
  expectBlockFaults<int16_t>(false, [](const BlockArgs<int16_t>& a) {
    return qorsEvalDelta_16s_D2Sfs(a.buffer, a.height, a.step, a.width, a.offset, a.window, 1, 0);
  });
  expectBlockFaults<int16_t>(true, [](const BlockArgs<int16_t>& a) {
    return qorsEvalDeltaMul_16s_D2Sfs(a.buffer, a.height, a.step, a.table, a.width, a.offset, a.window, 0);
  });
}

// ---- Environment ----

TEST(Delta, KeepsTheEnvironment) {
  kit::Random random;
  const auto reals = random.vector<float>(12 * 14, kit::Random::kNasty);
  const auto fixed = random.vector<int16_t>(12 * 14);
  std::vector<float> realRows(12 * 39);
  std::vector<int16_t> fixedRows(12 * 39);
  kit::expectEnvironmentKept([&] { qorsDeltaDelta_Win2_32f_D2(reals.data(), 13, realRows.data(), 39, 12, 2, 3, 3); });
  kit::expectEnvironmentKept([&] { qorsDeltaDelta_Aurora_32f_D2(reals.data(), realRows.data(), 39, 12, 3); });
  kit::expectEnvironmentKept([&] { qorsDeltaDelta_Aurora_16s_D2Sfs(fixed.data(), fixedRows.data(), 39, 12, 3, 1); });
}

}  // namespace
