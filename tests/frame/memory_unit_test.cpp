// Allocation wrappers, alignment by hand, and scratch memory.
#include "frame/memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

#include "kit/core.h"

namespace {

using namespace qorsr;
using kit::Core;

// `allocate` asks for `elementSize` bytes an element, never for less than one element, and never for more than 32 bits can say.
template <class Allocate>
void expectWrapper(Allocate allocate, int64_t elementSize) {
  for (const int64_t count : {int64_t{0}, int64_t{-1}, int64_t{INT32_MIN}, std::numeric_limits<int64_t>::min(),
                              INT32_MAX / elementSize + 1, int64_t{INT32_MAX} + 1, std::numeric_limits<int64_t>::max(),
                              std::numeric_limits<int64_t>::max() / elementSize, (int64_t{1} << 32) + 1, (int64_t{1} << 61) + 1}) {
    const int64_t calls = Core::calls();
    EXPECT_EQ(allocate(count), nullptr) << count;
    EXPECT_EQ(Core::calls(), calls) << count << " must not reach the allocator";
  }
  for (const int64_t count : {1, 2, 3, 1000}) {
    const int64_t calls = Core::calls(), held = Core::outstanding();
    auto* block = allocate(count);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(Core::calls(), calls + 1);
    EXPECT_EQ(Core::lastSize(), count * elementSize);
    EXPECT_EQ(Core::outstanding(), held + 1);
    release(block);
    EXPECT_EQ(Core::outstanding(), held);
  }
  Core::refuse(0);
  EXPECT_EQ(allocate(5), nullptr);
  Core::refuseNone();
}

TEST(Memory, Wrappers) {
  expectWrapper(allocateElements<uint8_t>, 1);
  expectWrapper(allocateElements<int16_t>, 2);
  expectWrapper(allocateElements<int32_t>, 4);
  expectWrapper(allocateElements<double>, 8);
  expectWrapper([](int64_t bytes) { return allocateBytes(bytes); }, 1);
}

TEST(Memory, AlignUpGivesTheNextMultiple) {
  for (const std::size_t alignment : {std::size_t{1}, std::size_t{2}, std::size_t{16}, std::size_t{32}, std::size_t{64}}) {
    for (std::uintptr_t address = 4096; address < 4096 + 200; ++address) {
      const auto raised = reinterpret_cast<std::uintptr_t>(alignUp(reinterpret_cast<char*>(address), alignment));
      EXPECT_EQ(raised % alignment, 0u);
      EXPECT_GE(raised, address);
      EXPECT_LT(raised - address, alignment);
    }
  }
  EXPECT_EQ(kAreaAlignment, 32u);
}

template <class T, int StackCount>
void expectScratch(int64_t count) {
  const int64_t calls = Core::calls(), held = Core::outstanding();
  const bool onStack = count <= StackCount;
  {
    const Scratch<T, StackCount> scratch(count);
    ASSERT_TRUE(scratch) << count;
    ASSERT_NE(scratch.get(), nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(scratch.get()) % 32, 0u);
    EXPECT_EQ(Core::calls(), calls + (onStack ? 0 : 1)) << count << " elements, " << StackCount << " on the stack";
    for (int64_t i = 0; i < count; ++i)
      scratch[static_cast<std::ptrdiff_t>(i)] = static_cast<T>(i);  // the core module watches the ends
    EXPECT_EQ(scratch.get()[count - 1], static_cast<T>(count - 1));
  }
  EXPECT_EQ(Core::outstanding(), held) << "not released";
  if (onStack) return;
  Core::refuse(0);
  {
    const Scratch<T, StackCount> scratch(count);
    EXPECT_FALSE(scratch);
    EXPECT_EQ(scratch.get(), nullptr);
  }
  Core::refuseNone();
  EXPECT_EQ(Core::outstanding(), held);
}

TEST(Memory, ScratchIsAlignedAndReleased) {
  // Many times: the core module of the tests hands out every alignment in turn.
  for (int round = 0; round < 40; ++round) {
    for (const int64_t count : {1, 2, 7, 8, 111, 112, 113, 1000}) {
      expectScratch<float, 0>(count);
      expectScratch<float, 112>(count);
      expectScratch<double, 8>(count);
      expectScratch<int16_t, 1>(count);
      expectScratch<uint8_t, 0>(count);
    }
  }
}

TEST(Memory, ScratchOfAnImpossibleSizeIsNull) {
  const int64_t calls = Core::calls();
  for (const int64_t count : {int64_t{INT32_MAX} / 8, int64_t{INT32_MAX}, int64_t{INT32_MAX} + 1, int64_t{1} << 40,
                              int64_t{1} << 61, std::numeric_limits<int64_t>::max()}) {
    EXPECT_FALSE((Scratch<double, 0>(count))) << count;
    EXPECT_FALSE((Scratch<double, 16>(count))) << count;
  }
  for (const int64_t count : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min()})
    EXPECT_FALSE((Scratch<double, 0>(count))) << count;
  EXPECT_EQ(Core::calls(), calls);
}

}  // namespace
