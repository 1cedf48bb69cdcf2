// Voice activity beside a plain loop: decisions of a stream of frames.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"
#include "voice_activity_plain.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

constexpr int kFrames = 256;

// Noise, and every 64 frames a word of 20.
template <class T>
struct Stream {
  std::vector<T> bands, values;
  std::vector<int32_t> block = std::vector<int32_t>(16);
  int32_t decision = 0;

  Stream() {
    uint32_t seed = 1;
    for (int n = 0; n < kFrames; ++n) {
      const double loudness = n % 64 < 44 ? 10 : 80;
      const auto next = [&] {
        seed = seed * 1664525U + 1013904223U;
        return static_cast<T>(loudness * (seed >> 8) / 16777216.0);
      };
      for (int i = 0; i < 25; ++i) bands.push_back(next());
      for (int i = 0; i < 64; ++i) values.push_back(next());
    }
  }
};

template <class T, class State, class Init, class Ours, class Plain, class Record>
void addStream(const bench::Level& level, const std::string& task, Init init, Ours ours, Plain plain, Record record) {
  const auto s = std::make_shared<Stream<T>>();
  auto* const state = reinterpret_cast<State*>(s->block.data());
  bench::add({task, "ours", level.name, kFrames, "frames"}, [=] {
    init(state);
    for (int n = 0; n < kFrames; ++n)
      ours(&s->bands[static_cast<std::size_t>(n) * 25], &s->values[static_cast<std::size_t>(n) * 64], 0, &s->decision, state);
  });
  bench::add({task, "plain", level.name, kFrames, "frames"}, [=]() mutable {
    record = Record{};
    record.hangover = 23;
    for (int n = 0; n < kFrames; ++n) {
      s->decision = plain(&s->bands[static_cast<std::size_t>(n) * 25], &s->values[static_cast<std::size_t>(n) * 64], 0, &record);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    addStream<float, VADState_Aurora_32f>(level, "VADDecision_Aurora_32f", OURS(qorsVADInit_Aurora_32f),
                                          OURS(qorsVADDecision_Aurora_32f), PLAIN(plainActivity_32f), PlainActivity<float>());
    addStream<int16_t, VADState_Aurora_16s>(level, "VADDecision_Aurora_16s", OURS(qorsVADInit_Aurora_16s),
                                            OURS(qorsVADDecision_Aurora_16s), PLAIN(plainActivity_16s), PlainActivity<int32_t>());
  }
  return bench::run(argc, argv);
}
