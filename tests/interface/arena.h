// Memory for the areas of a call, between pages that cannot be touched, and used again by the next call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "kit/memory.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define QORSR_POISON(begin, bytes) ASAN_POISON_MEMORY_REGION(begin, bytes)
#define QORSR_UNPOISON(begin, bytes) ASAN_UNPOISON_MEMORY_REGION(begin, bytes)
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define QORSR_POISON(begin, bytes) ASAN_POISON_MEMORY_REGION(begin, bytes)
#define QORSR_UNPOISON(begin, bytes) ASAN_UNPOISON_MEMORY_REGION(begin, bytes)
#endif
#endif
#if !defined(QORSR_POISON)
#define QORSR_POISON(begin, bytes) static_cast<void>(0)
#define QORSR_UNPOISON(begin, bytes) static_cast<void>(0)
#endif

namespace interface_calls {

enum class Place {
  kAtEnd,
  kAtStart,
  kOddStart
};  // of an area within the pages: at the guard behind it, at that in front, one element later

class Arena {
 public:
  explicit Arena(std::size_t bytes) : pages_(bytes, kit::Place::kAtGuard, 1) {}

  bool holds(std::size_t bytes) const { return bytes + kMargin <= pages_.pages().size(); }

  // An area of so many bytes, its first element aligned to `alignment`. What lies around it is watched from here on.
  std::byte* lay(std::size_t bytes, Place place, std::size_t alignment) {
    const auto pages = pages_.pages();
    QORSR_UNPOISON(pages.data(), pages.size());
    const std::size_t last = (pages.size() - bytes) / alignment * alignment;
    const std::size_t offset = place == Place::kAtEnd ? last : place == Place::kAtStart ? 0 : alignment;
    area_ = pages.data() + offset;
    const std::size_t front = std::min(offset, kMargin), behind = std::min(pages.size() - offset - bytes, kMargin);
    front_ = {area_ - front, front};
    behind_ = {area_ + bytes, behind};
    std::memset(front_.data(), kCanary, front_.size());
    std::memset(behind_.data(), kCanary, behind_.size());
    QORSR_POISON(pages.data(), offset);
    QORSR_POISON(area_ + bytes, pages.size() - offset - bytes);
    return area_;
  }

  bool edgesKept() const {
    QORSR_UNPOISON(front_.data(), front_.size());
    QORSR_UNPOISON(behind_.data(), behind_.size());
    const auto kept = [](std::byte b) { return b == std::byte{kCanary}; };
    return std::all_of(front_.begin(), front_.end(), kept) && std::all_of(behind_.begin(), behind_.end(), kept);
  }

 private:
  static constexpr std::size_t kMargin = 512;
  static constexpr int kCanary = 0x5B;
  kit::GuardedPages pages_;
  std::byte* area_ = nullptr;
  std::span<std::byte> front_, behind_;
};

// Arenas that are not in use.
class Arenas {
 public:
  static std::unique_ptr<Arena> take(std::size_t bytes) {
    auto& free = unused();
    for (auto& arena : free) {
      if (!arena->holds(bytes)) continue;
      std::swap(arena, free.back());
      auto taken = std::move(free.back());
      free.pop_back();
      return taken;
    }
    return std::make_unique<Arena>(std::max<std::size_t>(2 * bytes, kUsual));
  }
  static void giveBack(std::unique_ptr<Arena> arena) { unused().push_back(std::move(arena)); }

 private:
  static constexpr std::size_t kUsual = 1 << 16;
  static std::vector<std::unique_ptr<Arena>>& unused() {
    static std::vector<std::unique_ptr<Arena>> arenas;
    return arenas;
  }
};

}  // namespace interface_calls
