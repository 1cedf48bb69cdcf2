// What a width costs: scores of 1 to 64 dimensions, each against the next larger multiple of four, where a width that fills no
// register should not cost more than one that does.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"

namespace {

constexpr int32_t kWidest = 64;
constexpr int32_t kCount = 256;
using Times = std::vector<double>;  // nanoseconds of one Gaussian, by width

// The least time of several sweeps over all widths, so that one disturbance does not fall on one width alone.
template <class Call>
Times timesOf(const Call& call) {
  using Clock = std::chrono::steady_clock;
  constexpr int kSweeps = 40, kCalls = 20;
  Times least(kWidest + 1, 1e30);
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    for (int32_t w = 1; w <= kWidest; ++w) {
      call(w);
      const auto begin = Clock::now();
      for (int k = 0; k < kCalls; ++k) call(w);
      const double time = std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
      double& known = least[static_cast<std::size_t>(w)];
      known = std::min(known, time / (kCalls * kCount));
    }
  }
  return least;
}

void print(const bench::Level& level, const char* member, const Times& times) {
  std::printf("\n%s, %s: nanoseconds of a multiple of four, and what the three widths below it cost of that\n", member,
              level.name.c_str());
  double worst = 0;
  int32_t worstWidth = 0;
  for (int32_t four = 4; four <= kWidest; four += 4) {
    const double full = times[static_cast<std::size_t>(four)];
    std::printf("  %2d: %6.2f ", four, full);
    for (int32_t w = four - 3; w < four; ++w) {
      const double ratio = times[static_cast<std::size_t>(w)] / full;
      std::printf("  %5.2f", ratio);
      if (ratio > worst) worst = ratio, worstWidth = w;
    }
    std::printf("%s", four % 16 == 0 ? "\n" : "   ");
  }
  std::printf("  worst: %.2f, width %d\n", worst, worstWidth);
}

#define OURS(name) level.ours<decltype(name)>(#name)

void compareWidths(const bench::Level& level) {
  const std::vector<float> data(static_cast<std::size_t>(kCount) * kWidest, 0.5F);
  std::vector<float> scores(kCount);
  const float* d = data.data();
  float* s = scores.data();
  print(level, "LogGaussMultiMix 32f",
        timesOf([=, f = OURS(qorsLogGaussMultiMix_32f_D2)](int32_t w) { f(d, d, kWidest, d, w, s, kCount); }));
  print(level, "LogGauss 32f", timesOf([=, f = OURS(qorsLogGauss_32f_D2)](int32_t w) { f(d, kWidest, d, d, w, s, kCount, 1.0F); }));
  print(level, "LogGauss IdVar 32f",
        timesOf([=, f = OURS(qorsLogGauss_IdVar_32f_D2)](int32_t w) { f(d, kWidest, d, w, s, kCount, 1.0F); }));
  print(level, "LogGaussSingle 32f", timesOf([=, f = OURS(qorsLogGaussSingle_32f)](int32_t w) {
          for (int32_t i = 0; i < kCount; ++i) f(d + i * kWidest, d, d, w, s, 1.0F);
        }));
}

}  // namespace

int main() {
  for (const bench::Level& level : bench::levels()) compareWidths(level);
}
