#include "kit/core.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

#include "qorcore.h"

#if defined(__SANITIZE_ADDRESS__)
#define QORSR_TEST_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QORSR_TEST_POISON 1
#endif
#endif
#if defined(QORSR_TEST_POISON)
#include <sanitizer/asan_interface.h>
#endif

namespace {

constexpr int kRubbish = 0xA7, kFence = 0x3C;
constexpr std::size_t kFenceBytes = 64;

struct Block {
  std::byte* base;
  std::size_t bytes, lead;
};

std::mutex mutex;
std::map<void*, Block>& blocks() {
  static std::map<void*, Block> all;
  return all;
}
int64_t callCount = 0, refuseAt = -1;
int32_t sizeAsked = 0;

// Under the address sanitizer, the bytes behind a block may not even be read. (In front of a block at an odd address the sanitizer
// cannot tell its bytes from the block's.)
void closeFence([[maybe_unused]] const Block& block, [[maybe_unused]] bool closed) {
#if defined(QORSR_TEST_POISON)
  std::byte* const fence = block.base + block.lead + block.bytes;
  if (closed) ASAN_POISON_MEMORY_REGION(fence, kFenceBytes);
  if (!closed) ASAN_UNPOISON_MEMORY_REGION(fence, kFenceBytes);
#endif
}

void die(const char* what) {
  std::fprintf(stderr, "core module of the tests: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* qorMalloc(int32_t size) {
  const std::scoped_lock lock(mutex);
  if (size < 1) die("qorMalloc was called with a size below 1");
  const int64_t call = callCount++;
  sizeAsked = size;
  if (call == refuseAt) return nullptr;
  const auto bytes = static_cast<std::size_t>(size);
  const std::size_t lead = kFenceBytes + static_cast<std::size_t>(call % 31);  // no alignment may be relied upon
  auto* base = static_cast<std::byte*>(std::malloc(lead + bytes + kFenceBytes));
  if (base == nullptr) return nullptr;
  std::memset(base, kFence, lead);
  std::memset(base + lead, kRubbish, bytes);
  std::memset(base + lead + bytes, kFence, kFenceBytes);
  const Block block{base, bytes, lead};
  blocks()[base + lead] = block;
  closeFence(block, true);
  return base + lead;
}

__attribute__((visibility("default"))) void qorFree(void* pointer) {
  const std::scoped_lock lock(mutex);
  const auto found = blocks().find(pointer);
  if (found == blocks().end()) die("qorFree was given what qorMalloc did not return");
  const Block block = found->second;
  closeFence(block, false);
  for (std::size_t i = 0; i < block.lead; ++i) {
    if (block.base[i] != std::byte{kFence}) die("something was written in front of a block");
  }
  for (std::size_t i = 0; i < kFenceBytes; ++i) {
    if (block.base[block.lead + block.bytes + i] != std::byte{kFence}) die("something was written behind a block");
  }
  std::free(block.base);
  blocks().erase(found);
}
}

namespace kit {

int64_t Core::calls() { return callCount; }
int64_t Core::outstanding() { return static_cast<int64_t>(blocks().size()); }
int32_t Core::lastSize() { return sizeAsked; }
std::vector<std::byte> Core::contents() {
  std::vector<std::byte> all;
  for (const auto& [pointer, block] : blocks()) {
    const auto* const begin = static_cast<const std::byte*>(pointer);
    all.insert(all.end(), begin, begin + block.bytes);
  }
  return all;
}
void Core::refuse(int64_t nth) { refuseAt = callCount + nth; }
void Core::refuseNone() { refuseAt = -1; }

int64_t expectEveryRefusalReported(const std::function<QorStatus()>& call) {
  const int64_t before = Core::calls(), held = Core::outstanding();
  EXPECT_GE(call(), 0) << "without a refusal";
  EXPECT_EQ(Core::outstanding(), held) << "the successful call left something allocated";
  const int64_t allocations = Core::calls() - before;
  for (int64_t i = 0; i < allocations; ++i) {
    Core::refuse(i);
    EXPECT_EQ(call(), qorStatusNoMemory) << "allocation " << i << " of " << allocations << " refused";
    Core::refuseNone();
    EXPECT_EQ(Core::outstanding(), held) << "allocation " << i << " of " << allocations << " refused: something stays allocated";
  }
  return allocations;
}

}  // namespace kit
