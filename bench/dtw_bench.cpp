// Dynamic time warping against the plain loop: words of about half a second, at several widths, and longer utterances.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "dtw_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

// Two sequences that resemble each other: the second is the first at another pace.
struct Pair {
  int32_t height1, height2, width;
  std::vector<float> first, second, work;
  std::vector<int16_t> first16, second16;

  Pair(int32_t h1, int32_t h2, int32_t w) : height1(h1), height2(h2), width(w), work(2 * static_cast<std::size_t>(h1)) {
    const auto fill = [w](int32_t h, std::vector<float>& rows, std::vector<int16_t>& rows16) {
      for (int32_t r = 0; r < h; ++r) {
        for (int32_t c = 0; c < w; ++c) {
          const float t = static_cast<float>(r) / static_cast<float>(h);
          rows.push_back(std::sin(12.0F * t * static_cast<float>(c % 5 + 1)) + 0.2F * static_cast<float>((r * 31 + c * 7) % 11));
          rows16.push_back(static_cast<int16_t>(1000.0F * rows.back()));
        }
      }
    };
    fill(h1, first, first16);
    fill(h2, second, second16);
  }
};

void addTasks(const bench::Level& level, const Pair& p, int32_t delta, float beam) {
  const std::string shape = std::to_string(p.height1) + " and " + std::to_string(p.height2) + " rows of " +
                            std::to_string(p.width) + ", delta " + std::to_string(delta) + (beam < 1e6F ? ", pruned" : "");
  static float distance;
  static int32_t distance32;
  const auto ours = level.ours<decltype(qorsDTW_L2_32f_D2)>("qorsDTW_L2_32f_D2");
  const auto ours16 = level.ours<decltype(qorsDTW_L2Low_16s32s_D2Sfs)>("qorsDTW_L2Low_16s32s_D2Sfs");
  const auto plain = level.plain<decltype(plainDtw_32f)>("plainDtw_32f");
  const Pair* q = &p;
  float* work = const_cast<float*>(p.work.data());
  bench::add({"DTW 32f, " + shape, "ours", level.name, 1, "alignments"},
             [=] { ours(q->first.data(), q->height1, q->second.data(), q->height2, q->width, q->width, &distance, delta, beam); });
  bench::add({"DTW 32f, " + shape, "plain", level.name}, [=] {
    distance = plain(q->first.data(), q->height1, q->second.data(), q->height2, q->width, q->width, delta, beam, work);
  });
  if (p.width != 13) return;
  bench::add({"DTW 16s, " + shape, "ours", level.name, 1, "alignments"}, [=] {
    ours16(q->first16.data(), q->height1, q->second16.data(), q->height2, q->width, q->width, &distance32, delta, 1 << 30, 0);
  });
}

}  // namespace

int main(int argc, char** argv) {
  static const std::vector<Pair> words = {{60, 50, 1},  {60, 50, 4},  {60, 50, 8},    {60, 50, 12},
                                          {60, 50, 13}, {60, 50, 39}, {400, 350, 13}, {120, 100, 39}};
  for (const bench::Level& level : bench::levels()) {
    for (const Pair& p : words) addTasks(level, p, p.height2 / 8, 1e30F);
    addTasks(level, words[4], 10, 20.0F);
    addTasks(level, words[6], 40, 60.0F);
  }
  return bench::run(argc, argv);
}
