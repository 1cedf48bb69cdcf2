// Signal conditioning against the plain loop, from single samples to 4096.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "conditioning_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

struct Signal {
  int32_t length;
  std::vector<float> x, y, sums = std::vector<float>(256), squares = sums;
  std::vector<int16_t> x16, y16;
  std::vector<uint8_t> y8;
  float before = 0, result = 0;
  int16_t before16 = 0;
  int32_t count = 0;

  explicit Signal(int32_t n) : length(n) {
    uint32_t noise = 1;
    for (int32_t i = 0; i < 13 * n; ++i) {  // room for a track of vectors of 13
      noise = noise * 1664525U + 1013904223U;
      x16.push_back(static_cast<int16_t>(static_cast<int16_t>(noise >> 16) / 4));  // far from the limits, as speech is
      x.push_back(static_cast<float>(x16.back()) / 1000.0F);
    }
    y.resize(x.size());
    y16.resize(x.size());
    y8.resize(x.size());
  }
};

void compare(const bench::Level& level, const Signal& s, const std::string& member, const std::function<void()>& ours,
             const std::function<void()>& plain) {
  const std::string task = member + ", " + std::to_string(s.length);
  bench::add({task, "ours", level.name}, ours);
  bench::add({task, "plain", level.name}, plain);
}

void addOffsets(const bench::Level& level, Signal& s) {
  Signal* t = &s;
  const int32_t n = s.length;
  const auto filter = [=](auto f) { return [=] { f(t->x.data(), t->y.data(), n, &t->before, 1.0F, 0.999F); }; };
  compare(level, s, "CompensateOffset_32f", filter(OURS(qorsCompensateOffset_32f)), filter(PLAIN(plainCompensateOffset_32f)));
  const auto filter16 = [=](auto f) { return [=] { f(t->x16.data(), t->y16.data(), n, &t->before16, 1, 0.999F); }; };
  compare(level, s, "CompensateOffset_16s", filter16(OURS(qorsCompensateOffset_16s)), filter16(PLAIN(plainCompensateOffset_16s)));
  const auto fixed = [=](auto f) { return [=] { f(t->x16.data(), t->y16.data(), n, &t->before16, 1, 32735); }; };
  compare(level, s, "CompensateOffsetQ15_16s", fixed(OURS(qorsCompensateOffsetQ15_16s)),
          fixed(PLAIN(plainCompensateOffsetQ15_16s)));
  const auto mean = [=](auto f) { return [=] { f(t->y16.data(), n); }; };
  compare(level, s, "ZeroMean_16s", mean(OURS(qorsZeroMean_16s)), mean(PLAIN(plainZeroMean_16s)));
}

void addSignChanges(const bench::Level& level, Signal& s) {
  Signal* t = &s;
  const int32_t n = s.length;
  const auto rate = [=](auto f) { return [=] { f(t->x.data(), n, &t->result); }; };
  const auto count = [=](auto f) { return [=] { f(t->x.data(), n, &t->count); }; };
  const auto count16 = [=](auto f) { return [=] { f(t->x16.data(), n, &t->count); }; };
  compare(level, s, "SignChangeRate_32f", rate(OURS(qorsSignChangeRate_32f)), rate(PLAIN(plainSignChangeRate_32f)));
  compare(level, s, "SignChangeRate_Count0_32f", rate(OURS(qorsSignChangeRate_Count0_32f)),
          rate(PLAIN(plainSignChangeRate_Count0_32f)));
  compare(level, s, "SignChangeRateXor_32f", count(OURS(qorsSignChangeRateXor_32f)), count(PLAIN(plainSignChangeRateXor_32f)));
  compare(level, s, "SignChangeRate_16s", count16(OURS(qorsSignChangeRate_16s)), count16(PLAIN(plainSignChangeRate_16s)));
  compare(level, s, "SignChangeRate_Count0_16s", count16(OURS(qorsSignChangeRate_Count0_16s)),
          count16(PLAIN(plainSignChangeRate_Count0_16s)));
}

void addEnergies(const bench::Level& level, Signal& s, int32_t step) {
  Signal* t = &s;
  const int32_t n = s.length;
  const std::string apart = step == 1 ? "" : " every " + std::to_string(step);
  const auto found = [=](auto f) { return [=] { f(t->y.data(), step, n, 50.0F, 1.0F); }; };
  const auto given = [=](auto f) { return [=] { f(t->y.data(), step, n, 50.0F, 9.0F, 1.0F); }; };
  const auto found16 = [=](auto f) { return [=] { f(t->y16.data(), step, n, 50, 1, 0.5F); }; };
  const auto given16 = [=](auto f) { return [=] { f(t->y16.data(), step, n, 50, 9, 1, 0.5F); }; };
  compare(level, s, "NormEnergy_32f" + apart, found(OURS(qorsNormEnergy_32f)), found(PLAIN(plainNormEnergy_32f)));
  compare(level, s, "NormEnergy_RT_32f" + apart, given(OURS(qorsNormEnergy_RT_32f)), given(PLAIN(plainNormEnergy_RT_32f)));
  compare(level, s, "NormEnergy_16s" + apart, found16(OURS(qorsNormEnergy_16s)), found16(PLAIN(plainNormEnergy_16s)));
  compare(level, s, "NormEnergy_RT_16s" + apart, given16(OURS(qorsNormEnergy_RT_16s)), given16(PLAIN(plainNormEnergy_RT_16s)));
}

void addSums(const bench::Level& level, Signal& s, int32_t width) {
  Signal* t = &s;
  const int32_t height = std::max(s.length / width, 1);
  const auto sums = [=](auto f) { return [=] { f(t->x.data(), width, height, t->sums.data(), t->squares.data(), width); }; };
  const auto sums16 = [=](auto f) { return [=] { f(t->x16.data(), width, height, t->sums.data(), t->squares.data(), width); }; };
  const std::string columns = " of " + std::to_string(width) + " columns";
  compare(level, s, "SumMeanVar_32f" + columns, sums(OURS(qorsSumMeanVar_32f)), sums(PLAIN(plainSumMeanVar_32f)));
  compare(level, s, "SumMeanVar_32f_I" + columns, sums(OURS(qorsSumMeanVar_32f_I)), sums(PLAIN(plainSumMeanVar_32f)));
  compare(level, s, "SumMeanVar_16s32f" + columns, sums16(OURS(qorsSumMeanVar_16s32f)), sums16(PLAIN(plainSumMeanVar_16s32f)));
}

void addRanges(const bench::Level& level, Signal& s) {
  Signal* t = &s;
  const int32_t n = s.length;
  const auto reals = [=](auto f) { return [=] { f(t->x.data(), t->y.data(), n, 0.05F, 0.95F, 1.0F); }; };
  const auto given = [=](auto f) { return [=] { f(t->x.data(), t->y.data(), n, -30.0F, 30.0F, 0.05F, 0.95F, 1.0F); }; };
  const auto shorts = [=](auto f) { return [=] { f(t->x16.data(), t->y16.data(), n, 0.05F, 0.95F, 1000); }; };
  const auto bytes = [=](auto f) { return [=] { f(t->x.data(), t->y8.data(), n, 0.05F, 0.95F, 255); }; };
  compare(level, s, "NormalizeInRange_32f", reals(OURS(qorsNormalizeInRange_32f)), reals(PLAIN(plainNormalizeInRange_32f)));
  compare(level, s, "NormalizeInRangeMinMax_32f", given(OURS(qorsNormalizeInRangeMinMax_32f)),
          given(PLAIN(plainNormalizeInRangeMinMax_32f)));
  compare(level, s, "NormalizeInRange_16s", shorts(OURS(qorsNormalizeInRange_16s)), shorts(PLAIN(plainNormalizeInRange_16s)));
  compare(level, s, "NormalizeInRange_32f8u", bytes(OURS(qorsNormalizeInRange_32f8u)), bytes(PLAIN(plainNormalizeInRange_32f8u)));
}

}  // namespace

int main(int argc, char** argv) {
  static Signal signals[] = {Signal(1), Signal(5), Signal(13), Signal(39), Signal(100), Signal(240), Signal(1000), Signal(4096)};
  for (const bench::Level& level : bench::levels()) {
    for (Signal& s : signals) {
      addOffsets(level, s);
      addSignChanges(level, s);
      addEnergies(level, s, 1);
      addEnergies(level, s, 13);
      if (s.length > 1) addSums(level, s, s.length < 100 ? s.length : 39);
      addRanges(level, s);
    }
  }
  return bench::run(argc, argv);
}
