// The entry of every test program: seed, instruction level, digests.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/random.h"
#include "qorsr.h"

namespace {

constexpr int kSkipped = 77;  // known to the build as "skipped"
constexpr uint64_t kFnvOffset = 0xCBF29CE484222325u, kFnvPrime = 0x100000001B3u;

uint64_t runningDigest = kFnvOffset;
std::string digestLines;

const char* environmentValue(const char* name) { return std::getenv(name); }

class Bookkeeper : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    runningDigest = kFnvOffset;
    kit::Core::refuseNone();
  }
  void OnTestEnd(const testing::TestInfo& test) override {
    if (kit::Core::outstanding() != 0) {
      ADD_FAILURE() << kit::Core::outstanding() << " blocks are left allocated";
    }
    char line[32];
    std::snprintf(line, sizeof(line), "%016llx ", static_cast<unsigned long long>(runningDigest));
    digestLines += line + std::string(test.test_suite_name()) + "." + test.name() + "\n";
  }
};

bool machineHas([[maybe_unused]] const std::string& level) {
#if defined(__x86_64__)
  if (level == "x86-64-v3")
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2");
  if (level == "x86-64-v4") {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512cd") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
  }
#endif
  return true;
}

}  // namespace

namespace kit {

uint64_t seed() {
  static const uint64_t value =
      environmentValue("QORSR_SEED") ? std::strtoull(environmentValue("QORSR_SEED"), nullptr, 0) : 20090223;
  return value;
}

void digestBits(uint64_t bits) {
  for (int i = 0; i < 8; ++i) runningDigest = (runningDigest ^ ((bits >> (8 * i)) & 0xFF)) * kFnvPrime;
}

const std::vector<int32_t>& lengths() {
  static const std::vector<int32_t> all = [] {
    std::vector<int32_t> v;
    for (int32_t n = 1; n <= 40; ++n) v.push_back(n);
    v.insert(v.end(), {63, 64, 65, 100, 257});
    return v;
  }();
  return all;
}

const std::vector<int32_t>& shortLengths() {
  static const std::vector<int32_t> some = {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 31, 39};
  return some;
}

}  // namespace kit

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (const char* level = environmentValue("QORSR_EXPECT_LEVEL")) {
    if (!machineHas(level)) {
      std::printf("skipped: this machine has no %s\n", level);
      return kSkipped;
    }
    Dl_info module;
    const bool found = dladdr(reinterpret_cast<const void*>(&qorsrGetLibVersion), &module) != 0;
    const std::string path = found ? module.dli_fname : "";
    const bool baseline = path.find("glibc-hwcaps") == std::string::npos;
    if (path.find(level) == std::string::npos && !(baseline && std::string(level) == "baseline")) {
      std::printf("the loader chose %s, expected level %s\n", path.c_str(), level);
      return EXIT_FAILURE;
    }
  }
  std::printf("seed %llu (set QORSR_SEED for another)\n", static_cast<unsigned long long>(kit::seed()));
  testing::UnitTest::GetInstance()->listeners().Append(new Bookkeeper);
  const int result = RUN_ALL_TESTS();
  if (const char* file = environmentValue("QORSR_DIGEST")) std::ofstream(file) << digestLines;
  return result;
}
