// A C++ program that brings its own allocator pair: the library then takes its scratch memory from there.
#include <qorcore.h>
#include <qorsr.h>

#include <array>
#include <cstdlib>
#include <iostream>

namespace {
int allocations = 0, releases = 0;
}

extern "C" __attribute__((visibility("default"))) void* qorMalloc(int32_t size) {
  ++allocations;
  return std::malloc(static_cast<std::size_t>(size));
}
extern "C" __attribute__((visibility("default"))) void qorFree(void* block) {
  ++releases;
  std::free(block);
}

int main() {
  const std::array<int16_t, 6> frames = {10, -20, 20, -40, 60, -60};
  std::array<int16_t, 2> means = {};
  const QorStatus status = qorsMeanColumn_16s_D2(frames.data(), 3, 2, means.data(), 2);
  std::cout << qorsrGetLibVersion()->versionText << ": status " << status << ", means " << means[0] << " " << means[1] << ", "
            << allocations << " allocation(s)\n";
  return status == qorStatusOk && means[0] == 30 && means[1] == -40 && allocations > 0 && allocations == releases ? EXIT_SUCCESS
                                                                                                                  : EXIT_FAILURE;
}
