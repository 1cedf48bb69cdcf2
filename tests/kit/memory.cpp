#include "kit/memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace kit {
namespace {
constexpr int kCanary = 0x5B;
}

GuardedPages::GuardedPages(std::size_t bytes, Place place, std::size_t elementSize) : areaBytes_(bytes) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  pagesBytes_ = (bytes + 128 + page - 1) / page * page;
  mapBytes_ = pagesBytes_ + 2 * page;
  void* map = mmap(nullptr, mapBytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (map == MAP_FAILED) {
    std::perror("mmap");
    std::abort();
  }
  map_ = static_cast<std::byte*>(map);
  std::byte* const pages = map_ + page;
  std::memset(pages, kCanary, pagesBytes_);
  mprotect(map_, page, PROT_NONE);
  mprotect(pages + pagesBytes_, page, PROT_NONE);
  area_ = place == Place::kAtGuard ? pages + pagesBytes_ - bytes : place == Place::kAligned ? pages : pages + elementSize;
}

GuardedPages::GuardedPages(GuardedPages&& other) noexcept
    : map_(std::exchange(other.map_, nullptr)),
      mapBytes_(other.mapBytes_),
      pagesBytes_(other.pagesBytes_),
      areaBytes_(other.areaBytes_),
      area_(other.area_) {}

GuardedPages::~GuardedPages() {
  if (map_ != nullptr) munmap(map_, mapBytes_);
}

bool GuardedPages::edgesKept() const {
  const std::byte* const pages = map_ + (mapBytes_ - pagesBytes_) / 2;
  for (const std::byte* p = pages; p < area_; ++p) {
    if (*p != std::byte{kCanary}) return false;
  }
  for (const std::byte* p = area_ + areaBytes_; p < pages + pagesBytes_; ++p) {
    if (*p != std::byte{kCanary}) return false;
  }
  return true;
}

}  // namespace kit
