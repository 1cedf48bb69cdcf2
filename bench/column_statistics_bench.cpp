// Column and row statistics against the plain loop and a reading pass: a block that stays in the cache, and one that does not.
#include <cstdint>
#include <string>
#include <vector>

#include "column_statistics_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

struct Block {
  std::string name;
  int32_t height, width;
  std::vector<float> reals;
  std::vector<int16_t> integers;

  Block(std::string label, int32_t h, int32_t w)
      : name(std::move(label)), height(h), width(w), reals(static_cast<std::size_t>(h) * w), integers(reals.size()) {
    for (std::size_t i = 0; i < reals.size(); ++i) {
      integers[i] = static_cast<int16_t>(i * 40503 % 65536 - 32768);
      reals[i] = static_cast<float>(integers[i]) / 1000.0F;
    }
  }
  std::string task(const std::string& operation) const {
    return operation + ", " + std::to_string(height) + " x " + std::to_string(width) + " (" + name + ")";
  }
};

// Every contender of one task.
template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, const void* data, std::size_t bytes, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name}, ours);
  bench::add({task, "plain", level.name}, plain);
  bench::add({task, "read", level.name}, bench::readPass(level, data, bytes));
}

void addTasks(const bench::Level& level, const Block& b) {
  static std::vector<float> means(100000), variances(100000);
  static std::vector<int32_t> wideMeans(100000), wideVariances(100000);
  const float* x = b.reals.data();
  const int16_t* x16 = b.integers.data();
  const std::size_t bytes = b.reals.size() * sizeof(float);
  const int32_t h = b.height, w = b.width;
#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)
  compare(
      level, b.task("SumColumn 32f"), x, bytes, [=, f = OURS(qorsSumColumn_32f_D2)] { f(x, w, h, means.data(), w); },
      [=, f = PLAIN(plainSumColumn_32f)] { f(x, w, h, means.data(), w); });
  compare(
      level, b.task("SumRow 32f"), x, bytes, [=, f = OURS(qorsSumRow_32f_D2)] { f(x, w, w, means.data(), h); },
      [=, f = PLAIN(plainSumRow_32f)] { f(x, w, w, means.data(), h); });
  compare(
      level, b.task("MeanVarColumn 32f"), x, bytes,
      [=, f = OURS(qorsMeanVarColumn_32f_D2)] { f(x, h, w, means.data(), variances.data(), w); },
      [=, f = PLAIN(plainMeanVarColumn_32f)] { f(x, h, w, means.data(), variances.data(), w); });
  compare(
      level, b.task("MeanVarColumn 16s32s"), x16, bytes / 2,
      [=, f = OURS(qorsMeanVarColumn_16s32s_D2Sfs)] { f(x16, h, w, wideMeans.data(), wideVariances.data(), w, 0); },
      [=, f = PLAIN(plainMeanVarColumn_16s32s)] { f(x16, h, w, wideMeans.data(), wideVariances.data(), w); });
  if (w > 100) return;  // a row of w * h elements, so that the conversion of float sums to integers is most of the work
  compare(
      level, "conversion of " + std::to_string(w * h) + " sums, SumColumn 16s32s", x16, bytes / 2,
      [=, f = OURS(qorsSumColumn_16s32s_D2Sfs)] { f(x16, w * h, 1, wideMeans.data(), w * h, 3); },
      [=, f = PLAIN(plainSumColumn_16s32s)] { f(x16, w * h, 1, wideMeans.data(), w * h, 0.125F); });
#undef OURS
#undef PLAIN
}

}  // namespace

int main(int argc, char** argv) {
  static const Block blocks[] = {{"an utterance", 100, 39}, {"in cache", 1000, 13}, {"beyond the caches", 100000, 160}};
  for (const bench::Level& level : bench::levels()) {
    for (const Block& block : blocks) addTasks(level, block);
  }
  return bench::run(argc, argv);
}
